#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace wcref {

// The operation recorder of the reference host: keeps the save flag and, as text, every
// *_db_save call it receives. It records nothing to a database.
class Recorder {
public:
    static Recorder& instance();

    bool saveFlag() const;
    void setSaveFlag(bool on);
    void record(std::string call);
    std::vector<std::string> records() const;
    void clear();

private:
    Recorder() = default;

    mutable std::mutex lock_;
    bool save_flag_ = false;
    std::vector<std::string> records_;
};

}  // namespace wcref

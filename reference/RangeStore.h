#pragma once

#include <QString>
#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "Korvo_UIAPI.h"

namespace wcref {

// Default levels of one check item, written in mil.
struct RangeDefault {
    const char* name;
    double red;
    double yellow;
    double green;
};

// The severity ranges of every range key. Row i of a key belongs to value i of the key's item
// enumeration. Levels are engine values (nm). Changes are kept in
// "<Common::getPath()>/config/ranges.json", which holds only the rows that differ from the
// defaults:
//   {"version": 1, "ranges": {"<key>": [{"name": ..., "RedLv": ..., "YellowLv": ...,
//                                        "GreenLv": ...}, ...]}}
// The file is read at the first use and again whenever the application directory changes.
class RangeStore {
public:
    static RangeStore& instance();

    // The default tables, levels in mil; one entry per range key.
    static const std::map<std::string, std::vector<RangeDefault>>& defaults();
    static QString filePath();

    bool records(const std::string& key, std::vector<Korvo::UIAPI::Analysis_Ranges_Record>& out);
    int itemOfName(const std::string& key, const std::string& name);
    int itemOfRow(const std::string& key, int row);
    std::string nameOfItem(const std::string& key, int item);
    bool change(const std::string& key, const std::string& name, const std::string& level,
                double value);
    // Applies every change, then writes the file once; false when any change was refused.
    bool changeMany(const std::string& key,
                    const std::vector<Korvo::UIAPI::Ranges_Level_Change>& changes);
    // How many times the file was written since the process started (for tests and benchmarks).
    int saves() const { return saves_; }
    // Drops what was read; the next call reads the file again.
    void invalidate();

    using Table = std::map<std::string, std::vector<Korvo::UIAPI::Analysis_Ranges_Record>>;
    // Reads a range file over `table` (the defaults); false, with the reason, when the file is
    // not a range file. On failure `table` may be partly changed: parse into a copy.
    static bool parse(const QByteArray& bytes, Table& table, QString& error);
    static Table defaultTable();

private:
    RangeStore() = default;
    void ensureLoaded();
    bool save();
    bool applyLocked(const std::string& key, const std::string& name, const std::string& level,
                     double value);

    std::mutex lock_;
    bool loaded_ = false;
    QString loaded_from_;
    Table table_;
    std::atomic<int> saves_{0};
};

}  // namespace wcref

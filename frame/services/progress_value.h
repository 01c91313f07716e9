#pragma once
// The progress block shared by a long engine operation and the GUI thread that waits for it.
// Every field is read and written under `lock`; the accessors below take it themselves.

#include <mutex>
#include <string>

namespace Korvo {
namespace COMMON {

struct progress_state {
    std::mutex lock;
    double value = 0.0;
    std::string status = "Start calculating, please wait!";
    bool stop_requested = false;

    double get_value() {
        std::lock_guard<std::mutex> guard(lock);
        return value;
    }
    void set_value(double v) {
        std::lock_guard<std::mutex> guard(lock);
        value = v;
    }
    std::string get_status() {
        std::lock_guard<std::mutex> guard(lock);
        return status;
    }
    void set_status(const std::string& text) {
        std::lock_guard<std::mutex> guard(lock);
        status = text;
    }
    bool is_stop_requested() {
        std::lock_guard<std::mutex> guard(lock);
        return stop_requested;
    }
    void request_stop() {
        std::lock_guard<std::mutex> guard(lock);
        stop_requested = true;
    }
};

// `partial` lets an operation publish what it has computed so far; the GUI thread may only
// read it under `lock`.
template <typename T>
struct progress_value : progress_state {
    T partial{};
};

template <>
struct progress_value<void> : progress_state {};

}  // namespace COMMON
}  // namespace Korvo

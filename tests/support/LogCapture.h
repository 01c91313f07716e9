#pragma once
// Collects the error lines glog writes while it is alive, from any thread.

#include <glog/logging.h>

#include <mutex>
#include <string>
#include <vector>

namespace wctest {

class LogCapture : public google::LogSink {
public:
    LogCapture() { google::AddLogSink(this); }
    ~LogCapture() override { google::RemoveLogSink(this); }

    using google::LogSink::send;
    void send(google::LogSeverity severity, const char*, const char*, int, const std::tm*,
              const char* message, size_t length) override {
        if (severity < google::GLOG_ERROR) {
            return;
        }
        std::lock_guard<std::mutex> guard(lock_);
        errors_.emplace_back(message, length);
    }

    std::vector<std::string> errors() {
        std::lock_guard<std::mutex> guard(lock_);
        return errors_;
    }

    bool contains(const std::string& line) {
        for (const std::string& error : errors()) {
            if (error == line) {
                return true;
            }
        }
        return false;
    }

private:
    std::mutex lock_;
    std::vector<std::string> errors_;
};

}  // namespace wctest

#pragma once
// The state behind the reference engine: jobs, hooks, the call log and the duration of long
// operations, all under one mutex (stored results live in ResultDatabase). Engine operations run on
// the GUI thread and, for the long ones, on one worker thread at a time.

#include <chrono>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "EngineJob.h"
#include "ReferenceEngine.h"

namespace wcref {

class EngineStore {
public:
    static EngineStore& instance();

    // Records the call and hands back a copy of the hook (empty when the operation is not
    // replaced). Call it before locking the store; the hook is then run without the lock so
    // that it may call the engine itself.
    template <typename Hook>
    Hook enter(const char* operation, std::vector<std::string> arguments,
               Hook EngineHooks::*member) {
        std::lock_guard<std::mutex> guard(mutex);
        recordLocked(operation, std::move(arguments));
        return hooks.*member;
    }

    void recordLocked(const char* operation, std::vector<std::string> arguments);

    // Lookups with the lock held; they log what is missing and answer nullptr.
    EngineJob* job(const std::string& name);
    EngineStep* step(const std::string& job_name, const std::string& step_name);
    EngineLayerData* layer(const std::string& job_name, const std::string& step_name,
                           const std::string& layer_name);

    std::mutex mutex;
    std::map<std::string, EngineJob> jobs;
    std::deque<EngineCall> calls;
    size_t callBytes = 0;  // text held by `calls`
    EngineHooks hooks;
    std::chrono::milliseconds long_operation_duration{kDefaultLongOperationMs};
    bool has_screen_box = false;
    Korvo::API::reply_box screen_box;

    static constexpr int kDefaultLongOperationMs = 10;
};

// Shorthands for the files that implement the operations.
inline EngineStore& store() {
    return EngineStore::instance();
}

template <typename Hook>
Hook enter(const char* operation, std::vector<std::string> arguments, Hook EngineHooks::*member) {
    return store().enter(operation, std::move(arguments), member);
}

}  // namespace wcref

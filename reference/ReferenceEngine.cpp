#include "ReferenceEngine.h"

#include <glog/logging.h>

#include "EngineCallText.h"
#include "EngineStore.h"
#include "ResultDatabase.h"
#include "SampleJob.h"

namespace wcref {

EngineStore& EngineStore::instance() {
    static EngineStore store;
    return store;
}

namespace {

size_t textBytes(const EngineCall& call) {
    size_t bytes = call.operation.size();
    for (const std::string& argument : call.arguments) {
        bytes += argument.size();
    }
    return bytes;
}

}  // namespace

void EngineStore::recordLocked(const char* operation, std::vector<std::string> arguments) {
    for (std::string& argument : arguments) {
        if (argument.size() > kCallArgumentBytes) {
            const size_t dropped = argument.size() - kCallArgumentBytes;
            argument.resize(kCallArgumentBytes);
            argument += "...(" + std::to_string(dropped) + " more bytes)";
        }
    }
    EngineCall call{operation, std::move(arguments)};
    callBytes += textBytes(call);
    calls.push_back(std::move(call));
    while (calls.size() > kCallLogCapacity || (callBytes > kCallLogBytes && calls.size() > 1)) {
        callBytes -= textBytes(calls.front());
        calls.pop_front();
    }
}

EngineJob* EngineStore::job(const std::string& name) {
    auto found = jobs.find(name);
    if (found == jobs.end()) {
        LOG(ERROR) << "job " << name << " is not opened";
        return nullptr;
    }
    return &found->second;
}

EngineStep* EngineStore::step(const std::string& job_name, const std::string& step_name) {
    EngineJob* j = job(job_name);
    if (j == nullptr) {
        return nullptr;
    }
    EngineStep* s = j->step(step_name);
    if (s == nullptr) {
        LOG(ERROR) << "step " << step_name << " does not exist in job " << job_name;
    }
    return s;
}

EngineLayerData* EngineStore::layer(const std::string& job_name, const std::string& step_name,
                                    const std::string& layer_name) {
    EngineStep* s = step(job_name, step_name);
    if (s == nullptr) {
        return nullptr;
    }
    auto found = s->layers.find(layer_name);
    if (found == s->layers.end()) {
        LOG(ERROR) << "layer " << layer_name << " does not exist in job " << job_name;
        return nullptr;
    }
    return &found->second;
}

void resetEngine() {
    clearResultDatabase();
    EngineStore& store = EngineStore::instance();
    std::lock_guard<std::mutex> guard(store.mutex);
    store.jobs.clear();
    store.calls.clear();
    store.callBytes = 0;
    store.hooks = EngineHooks{};
    store.long_operation_duration = std::chrono::milliseconds(EngineStore::kDefaultLongOperationMs);
    store.has_screen_box = false;
}

void setScreenBox(const Korvo::API::reply_box& box) {
    EngineStore& store = EngineStore::instance();
    std::lock_guard<std::mutex> guard(store.mutex);
    store.has_screen_box = true;
    store.screen_box = box;
}

bool openSampleJob(const std::string& job) {
    return Korvo::API::open_job(job, ":sample");
}

std::vector<EngineCall> engineCalls() {
    EngineStore& store = EngineStore::instance();
    std::lock_guard<std::mutex> guard(store.mutex);
    return {store.calls.begin(), store.calls.end()};
}

void clearEngineCalls() {
    EngineStore& store = EngineStore::instance();
    std::lock_guard<std::mutex> guard(store.mutex);
    store.calls.clear();
    store.callBytes = 0;
}

EngineHooks& engineHooks() {
    return EngineStore::instance().hooks;
}

void setLongOperationDuration(std::chrono::milliseconds duration) {
    EngineStore& store = EngineStore::instance();
    std::lock_guard<std::mutex> guard(store.mutex);
    store.long_operation_duration = std::max(duration, std::chrono::milliseconds(0));
}

std::chrono::milliseconds longOperationDuration() {
    EngineStore& store = EngineStore::instance();
    std::lock_guard<std::mutex> guard(store.mutex);
    return store.long_operation_duration;
}

}  // namespace wcref

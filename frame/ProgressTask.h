#pragma once
// The worker side shared by the fixed progress classes: a block that carries the worker's inputs
// and outcome (a `succeeded` flag written under the block's lock), the worker, and the future
// of the task that runs the worker on the block. The classes forward their public face to it.

#include <glog/logging.h>

#include <chrono>
#include <future>
#include <type_traits>

#include "progress_value.h"

namespace wc {

template <class Task>
class ProgressTask {
    static_assert(std::is_base_of<Korvo::COMMON::progress_value<void>, Task>::value,
                  "a task is a progress block");

public:
    using Worker = void (*)(Korvo::COMMON::progress_value<void>*);

    explicit ProgressTask(Worker worker) : worker_(worker) {}
    // The worker holds a pointer to the block, so the block may not go before the worker.
    ~ProgressTask() { wait(); }
    ProgressTask(const ProgressTask&) = delete;
    ProgressTask& operator=(const ProgressTask&) = delete;

    // Starts the worker and returns at once; refused (and logged) while a worker still runs.
    void start() {
        if (running()) {
            LOG(ERROR) << "a progress worker was started while it still runs";
            return;
        }
        Korvo::COMMON::progress_value<void>* block = &task_;
        result_ = std::async(std::launch::async, worker_, block);
    }

    double value() { return task_.get_value(); }
    bool succeeded() {
        std::lock_guard<std::mutex> guard(task_.lock);
        return task_.succeeded;
    }

    bool finished() const {
        return result_.valid() &&
               result_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }
    bool running() const { return result_.valid() && !finished(); }
    void wait() const {
        if (result_.valid()) {
            result_.wait();
        }
    }

    Task& task() { return task_; }

private:
    Worker worker_;
    Task task_;
    std::future<void> result_;
};

}  // namespace wc

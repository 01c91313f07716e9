#pragma once
// The worker side shared by the fixed progress classes: a block that carries the worker's inputs
// and outcome, and the future of the task that runs the worker on it.

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

    ProgressTask() = default;
    // The worker holds a pointer to the block, so the block may not go before the worker.
    ~ProgressTask() { wait(); }
    ProgressTask(const ProgressTask&) = delete;
    ProgressTask& operator=(const ProgressTask&) = delete;

    // Returns at once; false while a worker still runs.
    bool start(Worker worker) {
        if (running()) {
            return false;
        }
        Korvo::COMMON::progress_value<void>* block = &task_;
        result_ = std::async(std::launch::async, worker, block);
        return true;
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
    Task task_;
    std::future<void> result_;
};

}  // namespace wc

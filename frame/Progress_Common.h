#pragma once
// A worker function run on its own task with one progress block. The caller polls get_value(),
// get_status() and isFinish() from the GUI thread.

#include <future>
#include <string>

#include "frame/WidgetCommonExport.h"
#include "progress_value.h"

class WIDGET_COMMON_EXPORT Progress_Common {
public:
    using Worker = void (*)(Korvo::COMMON::progress_value<void>*);

    Progress_Common() = default;
    // Waits for a running worker: it holds a pointer to the block.
    ~Progress_Common();
    Progress_Common(const Progress_Common&) = delete;
    Progress_Common& operator=(const Progress_Common&) = delete;

    void set_func(Worker func);
    // Starts the worker and returns at once. Does nothing without a worker or while one runs.
    void do_process();
    double get_value();
    std::string get_status();
    bool isFinish() const;
    // The worker body: the stored function on `block`.
    void process(Korvo::COMMON::progress_value<void>* block);

    // For a stop request from the GUI thread.
    Korvo::COMMON::progress_value<void>& block() { return block_; }

private:
    Worker func_ = nullptr;
    Korvo::COMMON::progress_value<void> block_;
    std::future<void> result_;
};

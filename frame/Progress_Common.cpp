#include "Progress_Common.h"

#include <glog/logging.h>

#include "ProgressWorkerGuard.h"

Progress_Common::~Progress_Common() {
    if (result_.valid()) {
        result_.wait();
    }
}

void Progress_Common::set_func(Worker func) {
    func_ = func;
}

void Progress_Common::do_process() {
    if (func_ == nullptr) {
        LOG(ERROR) << "Progress_Common started without a worker";
        return;
    }
    if (result_.valid() && !isFinish()) {
        LOG(ERROR) << "Progress_Common started while its worker runs";
        return;
    }
    result_ = std::async(std::launch::async, [this] { process(&block_); });
}

double Progress_Common::get_value() {
    return block_.get_value();
}

std::string Progress_Common::get_status() {
    return block_.get_status();
}

bool Progress_Common::isFinish() const {
    return result_.valid() &&
           result_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

void Progress_Common::process(Korvo::COMMON::progress_value<void>* block) {
    if (func_ == nullptr || block == nullptr) {
        return;
    }
    wc::runProgressWorker(__FILE__, __LINE__, [&] { func_(block); });
}

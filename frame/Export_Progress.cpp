#include "Export_Progress.h"

#include <glog/logging.h>

#include <utility>

#include "ProgressWorkerGuard.h"

Export_Progress::Export_Progress(std::string job, std::string step, std::string layer,
                                 Korvo::API::export_type type, std::string path) {
    Task& task = run_.task();
    task.job = std::move(job);
    task.step = std::move(step);
    task.layer = std::move(layer);
    task.type = type;
    task.path = std::move(path);
}

void Export_Progress::process(Korvo::COMMON::progress_value<void>* block) {
    if (block == nullptr) {
        return;
    }
    auto* task = static_cast<Task*>(block);
    bool ok = false;
    wc::runProgressWorker(__FILE__, __LINE__, [&] {
        ok = Korvo::API::layer_export(task->job, task->step, task->layer, task->type, task->path,
                                      task);
    });
    if (!ok) {
        LOG(ERROR) << "Export of layer " << task->layer << " of " << task->job << "/" << task->step
                   << " to " << task->path << " failed";
    }
    std::lock_guard<std::mutex> guard(task->lock);
    task->succeeded = ok;
}

#pragma once
// Exports one layer through the engine on a worker task.

#include <string>

#include "Korvo_API.h"
#include "ProgressTask.h"
#include "frame/WidgetCommonExport.h"
#include "progress_value.h"

class WIDGET_COMMON_EXPORT Export_Progress {
public:
    Export_Progress(std::string job, std::string step, std::string layer,
                    Korvo::API::export_type type, std::string path);

    // Starts the export and returns at once.
    void do_process() { run_.start(); }
    double get_value() { return run_.value(); }
    bool isFinish() const { return run_.finished(); }
    // The engine reported success; meaningful once isFinish().
    bool succeeded() { return run_.succeeded(); }
    // For a stop request from the GUI thread; the engine polls it.
    Korvo::COMMON::progress_value<void>& block() { return run_.task(); }

    // The worker body. `block` must be this class's own block (the one do_process passes).
    static void process(Korvo::COMMON::progress_value<void>* block);

private:
    struct Task : Korvo::COMMON::progress_value<void> {
        std::string job;
        std::string step;
        std::string layer;
        Korvo::API::export_type type = Korvo::API::export_gerber;
        std::string path;
        bool succeeded = false;  // under lock
    };

    wc::ProgressTask<Task> run_{&Export_Progress::process};
};

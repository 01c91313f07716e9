#pragma once
// The run of the signal layer checks behind the progress window, in the two ways the dialog
// offers: layer by layer on the engine, or whole on the check-list service. The dialog shows
// what came back; these functions only run and collect.

#include <QString>
#include <string>
#include <vector>

#include "CheckListService.h"
#include "Korvo_Analysis_types.h"
#include "frame/BackgroundRun.h"

class QWidget;

namespace wc {

// How a run ended.
enum class SignalRunEnd {
    DialogGone,     // the dialog was destroyed during the run: nothing of it may be touched
    Stopped,        // stopped by the user, or the worker failed
    Done,           // the result is complete
    ServiceBusy,    // the service runs another check; the earlier result stays
    ServiceFailed,  // the service gave no result; the earlier result stays
};

// The progress window's options for a run of `dialog`: texts translated in the dialog's
// context, a worker's exception reported at `file`:`line`.
BackgroundRunOptions signalRunOptions(QWidget* dialog, const char* label, const char* title,
                                      const char* file, int line);

// What both ways of running are asked: the form's record and tests, the ranges of the range
// editor, the job's folder in the database.
Korvo::CheckList::signal_check_request signalCheckRequest(
    const QString& job, const QString& step, const Korvo::API::signal_check_params& params,
    const std::vector<Korvo::API::signal_layers_checks_list>& tests, int scope);

// The engine's check on `layers`, one worker per layer. `result` is emptied first and takes
// each layer's answer once it is complete, counted in `processed`; a stop keeps whole layers.
SignalRunEnd runSignalChecksPerLayer(QWidget* dialog,
                                     const Korvo::CheckList::signal_check_request& request,
                                     const std::vector<std::string>& layers,
                                     Korvo::API::signal_check_result_map& result, int& processed);

// The whole check on the check-list service (request.parameters is the parameter string).
// Only Done replaces `result` and `processed`.
SignalRunEnd runSignalChecksOnService(QWidget* dialog,
                                      const Korvo::CheckList::signal_check_request& request,
                                      Korvo::API::signal_check_result_map& result, int& processed);

}  // namespace wc

#pragma once
// What a check dialog hands the results viewer beside the result, so that the viewer can waive
// hits, show the waived ones and compare the shown run with an earlier one: where the waivers
// are kept, which stored run is shown, the run to compare with, and how to load another stored
// run of the same kind.

#include <QString>
#include <functional>
#include <memory>

#include "HitTriage.h"
#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

struct WIDGET_COMMON_EXPORT TriageContext {
    TriageScope scope;  // kind, job and step the waivers and runs are kept under
    int run_id = -1;    // the shown run in the result database; -1 when it is not stored
    // The run compared with when the user picks none: the previous run of the same job, step and
    // check (none for a first run).
    std::shared_ptr<const ResultsModel> earlier;
    QString earlier_label;  // how that run is named in the viewer, e.g. its time
    // Loads a stored run of the kind as a model (false with the reason in `error`).
    std::function<bool(int id, ResultsModel& model, QString* error)> load_run;
    // Why the waivers and the history are not available; empty when they are.
    QString unavailable;
};

}  // namespace wc

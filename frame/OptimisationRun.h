#pragma once
// The run of a DFM optimisation, shared by the optimisation dialogs: one engine call on a worker
// behind the progress window, polled every 200 ms; a stop shows the dialog's "terminated" text,
// turns the view button red, and keeps polling until the engine returns with what it had done;
// then the view button turns green, the time label and the count are written, and the host is
// told the job changed (also when the run ended by an exception).
//
//     wc::OptimisationOutcome outcome = wc::runOptimisation(
//         *controls_, this, "Widget_Teardrops", texts, job, layers, result_,
//         [job, step, params](const auto& layers, auto& result, auto* progress) {
//             return Korvo::API::teardrop_create_DFM_op(job, step, layers, params, result,
//                                                       progress);
//         });

#include <QDateTime>
#include <QElapsedTimer>
#include <QPointer>
#include <QString>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "frame/BackgroundRun.h"
#include "frame/ExceptionGuard.h"
#include "frame/RunControls.h"
#include "frame/WidgetCommonExport.h"
#include "progress_value.h"

class QWidget;

namespace wc {

struct OptimisationTexts {
    const char* terminated = "";  // "SignalLayer opt terminated", ...
    // The count as "%n": the catalogue words each plural form in the dialog's language.
    const char* processed = "%n layers were processed";
};

struct OptimisationOutcome {
    bool stopped = false;      // the user stopped the run; the result is what was done by then
    bool dialog_gone = false;  // the dialog was destroyed while the engine ran
    bool engine_ok = false;    // what the engine call returned
    bool completed = false;    // the worker returned and the run's end was shown
    int layer_count = 0;       // the number of layers the run was given

    // Whether the dialog may take and show what the engine produced: it is still there and the
    // run reached its completion (also after a stop). An engine call that failed is logged
    // under `operation` first.
    bool resultToShow(const char* operation) const;
};

// The pieces of the run that do not depend on the result type.
// Texts are translated in the dialog's context, so a catalogue lists them under the dialog.
class WIDGET_COMMON_EXPORT OptimisationRunner {
public:
    OptimisationRunner(RunControls& controls, QWidget* dialog, const char* source_file,
                       OptimisationTexts texts, QString job);
    // Sends the two job notifications once the run has started, however it ends.
    ~OptimisationRunner();
    OptimisationRunner(const OptimisationRunner&) = delete;
    OptimisationRunner& operator=(const OptimisationRunner&) = delete;

    BackgroundRunOptions options(int line);
    // The stop as the user sees it, called once when it is first seen.
    void onStop();
    // Completion: green view button, time label and count.
    void complete(int layer_count);
    bool dialogGone() const { return dialog_.isNull(); }

    static constexpr int kPollMs = 200;

private:
    RunControls& controls_;
    QPointer<QWidget> dialog_;
    const char* source_file_;
    OptimisationTexts texts_;
    QString job_;
    QDateTime start_;
    QElapsedTimer timer_;
};

template <class Result>
struct OptimisationBlock : Korvo::COMMON::progress_value<void> {
    Result result;
    bool ok = false;
};

// Runs `call(layers, result, progress)` on a worker. Once the worker has returned, `result`
// gets what the engine produced (also after a stop) and `completed` is set; until then the
// caller's map is not touched, so a viewer showing it stays valid during the run. `layers` must not
// be empty: the dialog reports an empty list itself, with no run and no notification.
template <class Result, class Call>
OptimisationOutcome runOptimisation(RunControls& controls, QWidget* dialog, const char* source_file,
                                    const OptimisationTexts& texts, const QString& job,
                                    const std::vector<std::string>& layers, Result& result,
                                    Call call, int line = __builtin_LINE()) {
    OptimisationOutcome outcome;
    outcome.layer_count = static_cast<int>(layers.size());
    OptimisationRunner runner(controls, dialog, source_file, texts, job);
    auto block = std::make_shared<OptimisationBlock<Result>>();
    QString description;
    const bool ran = runCatching(
        [&] {
            const RunOutcome run = BackgroundRun::once(
                runner.options(line), block, [layers, call](OptimisationBlock<Result>& b) mutable {
                    b.result = Result();
                    b.ok = call(layers, b.result, &b);
                });
            outcome.stopped = run.end == RunEnd::Stopped;
            outcome.dialog_gone = run.owner_destroyed || runner.dialogGone();
        },
        description);
    if (outcome.dialog_gone) {
        return outcome;
    }
    if (!ran) {
        logException(source_file, line, description);
        reportException(dialog, description);
        return outcome;
    }
    // The worker has returned (the run waits for it), so the block is ours to read.
    result = std::move(block->result);
    outcome.engine_ok = block->ok;
    runner.complete(outcome.layer_count);
    outcome.completed = true;
    return outcome;
}

}  // namespace wc

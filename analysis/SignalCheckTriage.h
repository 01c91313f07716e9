#pragma once
// What the signal layer check hands its results viewer for triage, and its summary without the
// waived hits. After each run (or a result loaded from the database) it reads the waivers of the
// job and step, applies them, and picks the run to compare with: the dialog's previous run of the
// same job and step, or else the newest stored one.
//
// A database that cannot be reached costs nothing of the run: every hit stays shown, the summary
// counts them all, and the dialog says once why waivers and history are missing.

#include <QObject>
#include <QString>
#include <memory>

#include "HitTriage.h"
#include "ResultAdapters.h"
#include "SignalCheckForm.h"
#include "TriageContext.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT SignalCheckTriage {
public:
    // The kind the signal layer check's waivers and runs are stored under.
    static constexpr const char* kKind = "SignalLayer";

    // A new result of `job` and `step`; `stored_id` is its id in the database (-1 when it is a
    // run not stored). Reads the waivers and applies them.
    void setResult(std::shared_ptr<const SignalLayerResult> result, const QString& job,
                   const QString& step, int stored_id = -1);
    // The shown result was stored under `id` ("Save").
    void setStoredId(int id) { context_.run_id = id; }

    const TriageContext& context() const { return context_; }
    // Why the waivers and history are missing, empty when they are not.
    const QString& unavailable() const { return context_.unavailable; }
    const WaiverMatch& waivers() const { return match_; }
    // The summary over the hits no waiver covers.
    ResultSummary summary() const;

private:
    void chooseEarlier(const QString& job, const QString& step);

    std::shared_ptr<const SignalLayerResult> result_;
    std::shared_ptr<const ResultsModel> model_;
    TriageRun run_;
    WaiverMatch match_;
    TriageContext context_;
    // The result shown before this one, and where it came from.
    std::shared_ptr<const ResultsModel> previous_model_;
    TriageScope previous_scope_;
    QString previous_time_;
    QString shown_time_;
};

// The summary label's three passes over the hits no waiver covers.
WIDGET_COMMON_EXPORT ResultSummary summariseOpenHits(const TriageRun& run,
                                                     const WaiverMatch& waivers);

}  // namespace wc

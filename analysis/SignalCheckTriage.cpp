#include "SignalCheckTriage.h"

#include <glog/logging.h>

#include <QCoreApplication>
#include <QDateTime>
#include <array>

#include "Korvo_API.h"

namespace wc {
namespace {

const char* const kContext = "Widget_SignalLayerChecks";

std::shared_ptr<const ResultsModel> modelFor(std::shared_ptr<const SignalLayerResult> result) {
    return std::make_shared<const ResultsModel>(
        modelOf(std::move(result), AdapterInput{"SignalLayerRanges", {}, {}}));
}

QString notAvailable(const std::string& why) {
    return QCoreApplication::translate(kContext,
                                       "The waivers and the history are not available: %1")
        .arg(QString::fromStdString(why));
}

}  // namespace

ResultSummary summariseOpenHits(const TriageRun& run, const WaiverMatch& waivers) {
    // Three passes like the summary of a whole result, over the open hits only: the lowest
    // level any open hit has decides.
    std::array<bool, 3> open{};
    for (std::size_t number = 0; number < run.size(); ++number) {
        const int level = run[number].level;
        if (level < 3 && !waivers.isWaived(number)) {
            open[level] = true;
            if (level == SevRed) {
                break;
            }
        }
    }
    if (open[SevRed]) {
        return ResultSummary::Red;
    }
    if (open[SevYellow]) {
        return ResultSummary::Yellow;
    }
    return open[SevGreen] ? ResultSummary::Green : ResultSummary::NoHit;
}

void SignalCheckTriage::setResult(std::shared_ptr<const SignalLayerResult> result,
                                  const QString& job, const QString& step, int stored_id) {
    if (model_) {
        previous_model_ = model_;
        previous_scope_ = context_.scope;
        previous_time_ = shown_time_;
    }
    result_ = std::move(result);
    model_ = modelFor(result_);
    run_ = TriageRun(*model_);
    shown_time_ = QDateTime::currentDateTime().toString(QStringLiteral("yyyy.MM.dd hh:mm:ss"));

    context_ = TriageContext{};
    context_.scope = {kKind, job.toStdString(), step.toStdString()};
    context_.run_id = stored_id;
    context_.load_run = [](int id, ResultsModel& model, QString* error) {
        Korvo::API::dms_signal_check_params params;
        auto loaded = std::make_shared<SignalLayerResult>();
        if (!Korvo::API::getSignalLayerAnalysisResult(id, params, *loaded)) {
            if (error != nullptr) {
                *error = QCoreApplication::translate(kContext, "The stored run %1 cannot be read.")
                             .arg(id);
            }
            return false;
        }
        model = modelOf(std::shared_ptr<const SignalLayerResult>(std::move(loaded)),
                        AdapterInput{"SignalLayerRanges", {}, {}});
        return true;
    };

    std::vector<Korvo::API::analysis_waiver> waivers;
    std::string error;
    match_ = WaiverMatch{};
    if (Korvo::API::getAnalysisWaivers(kKind, context_.scope.job, context_.scope.step, waivers,
                                       error)) {
        match_ = applyWaivers(run_, waivers);
    } else {
        context_.unavailable = notAvailable(error);
        LOG(WARNING) << "signal layer check: " << context_.unavailable.toStdString();
    }
    chooseEarlier(job, step);
}

// The previous run of this dialog when it was of the same job and step; else the newest stored
// run that is not the shown one.
void SignalCheckTriage::chooseEarlier(const QString& job, const QString& step) {
    const TriageScope& scope = context_.scope;
    if (previous_model_ && previous_scope_.job == scope.job && previous_scope_.step == scope.step) {
        context_.earlier = previous_model_;
        context_.earlier_label =
            QCoreApplication::translate(kContext, "previous run, %1").arg(previous_time_);
        return;
    }
    if (!context_.unavailable.isEmpty()) {
        return;
    }
    std::vector<Korvo::API::analysis_run_info> runs;
    std::string error;
    if (!Korvo::API::getAnalysisRuns(kKind, job.toStdString(), step.toStdString(), runs, error)) {
        context_.unavailable = notAvailable(error);
        return;
    }
    for (const Korvo::API::analysis_run_info& stored : runs) {
        if (stored.id == context_.run_id) {
            continue;
        }
        ResultsModel model;
        QString why;
        if (context_.load_run(stored.id, model, &why)) {
            context_.earlier = std::make_shared<const ResultsModel>(std::move(model));
            context_.earlier_label = QString::fromStdString(stored.time);
        } else {
            LOG(WARNING) << why.toStdString();
        }
        return;
    }
}

ResultSummary SignalCheckTriage::summary() const {
    return summariseOpenHits(run_, match_);
}

}  // namespace wc

#include "SignalCheckRun.h"

#include <glog/logging.h>

#include <QWidget>
#include <memory>

#include "Common.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "analysis/SignalCheckForm.h"
#include "frame/RangeMap.h"
#include "frame/Translate.h"

namespace wc {

namespace {

using Korvo::API::signal_check_params;
using Korvo::API::signal_check_range;
using Korvo::API::signal_check_result;
using Korvo::API::signal_check_result_map;
using Korvo::API::signal_layers_checks_items;
using Korvo::API::signal_layers_checks_list;
using Korvo::CheckList::signal_check_request;

// The progress texts of a run, in the dialog's context.
const char* const kPleaseWait = QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Please wait");
const char* const kProcessing = QT_TRANSLATE_NOOP("Widget_SignalLayerChecks", "Processing");

// The progress block of one layer: the engine's block plus the layer's answer.
struct LayerBlock : Korvo::COMMON::progress_value<signal_check_result_map> {
    std::map<signal_layers_checks_items, signal_check_result> layer_result;
    bool ok = false;
};

struct ServiceBlock : Korvo::COMMON::progress_value<void> {
    signal_check_result_map result;
    Korvo::CheckList::service_answer answer = Korvo::CheckList::service_answer::failed;
};

}  // namespace

BackgroundRunOptions signalRunOptions(QWidget* dialog, const char* label, const char* title,
                                      const char* file, int line) {
    BackgroundRunOptions options;
    options.parent = dialog;
    options.label = translateFor(dialog, QString::fromLatin1(label));
    options.title = translateFor(dialog, QString::fromLatin1(title));
    options.source_file = file;
    options.source_line = line;
    return options;
}

signal_check_request signalCheckRequest(const QString& job, const QString& step,
                                        const signal_check_params& params,
                                        const std::vector<signal_layers_checks_list>& tests,
                                        int scope) {
    signal_check_request request;
    request.job = job.toStdString();
    request.step = step.toStdString();
    request.job_folder = (Common::getPath_database() + QStringLiteral("/job/") + job).toStdString();
    request.params = params;
    request.tests = tests;
    request.ranges = buildRangeMap<signal_layers_checks_items, signal_check_range>(kSignalRangeKey,
                                                                                   toCheckRange);
    request.scope = scope;
    return request;
}

SignalRunEnd runSignalChecksPerLayer(QWidget* dialog, const signal_check_request& request,
                                     const std::vector<std::string>& layers,
                                     signal_check_result_map& result, int& processed) {
    result.clear();
    processed = 0;
    BackgroundRunOptions options =
        signalRunOptions(dialog, kPleaseWait, kProcessing, "SignalCheckRun.cpp", __LINE__);
    // Each layer's answer is complete before the next starts, so a stop keeps whole layers.
    options.stop = StopBehaviour::WaitForWorker;
    BackgroundRun run(options);
    for (const std::string& layer : layers) {
        if (run.stopRequested()) {
            return SignalRunEnd::Stopped;
        }
        auto block = std::make_shared<LayerBlock>();
        const RunOutcome outcome = run.step(block, [request, layer](LayerBlock& b) {
            Korvo::UIAPI::getContourAccuracy();
            b.ok = Korvo::API::signal_layers_checks(request.job, request.step, layer,
                                                    request.params, request.tests, request.ranges,
                                                    b.layer_result, &b, request.scope);
        });
        if (outcome.owner_destroyed) {
            return SignalRunEnd::DialogGone;  // `result` went with the dialog
        }
        if (outcome.worker_returned && !outcome.worker_threw) {
            if (!block->ok) {
                LOG(ERROR) << "signal_layers_checks failed on layer " << layer;
            }
            result[layer] = std::move(block->layer_result);
            ++processed;
        }
        if (!outcome.finished() || run.stopRequested()) {
            return SignalRunEnd::Stopped;
        }
    }
    return SignalRunEnd::Done;
}

SignalRunEnd runSignalChecksOnService(QWidget* dialog, const signal_check_request& request,
                                      signal_check_result_map& result, int& processed) {
    auto block = std::make_shared<ServiceBlock>();
    const RunOutcome outcome = BackgroundRun::once(
        signalRunOptions(dialog, kPleaseWait, kProcessing, "SignalCheckRun.cpp", __LINE__), block,
        [request](ServiceBlock& b) {
            b.answer = Korvo::CheckList::runSignalLayerCheckList(request, b.result, &b);
        });
    if (outcome.owner_destroyed) {
        return SignalRunEnd::DialogGone;
    }
    if (!outcome.worker_returned || outcome.worker_threw) {
        return SignalRunEnd::Stopped;
    }
    switch (block->answer) {
        case Korvo::CheckList::service_answer::busy:
            return SignalRunEnd::ServiceBusy;
        case Korvo::CheckList::service_answer::failed:
            LOG(ERROR) << "the check-list service failed on " << request.parameters;
            return SignalRunEnd::ServiceFailed;
        case Korvo::CheckList::service_answer::done:
            break;
    }
    result = std::move(block->result);
    processed = static_cast<int>(result.size());
    return SignalRunEnd::Done;
}

}  // namespace wc

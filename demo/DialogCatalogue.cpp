#include "DialogCatalogue.h"

#include <QComboBox>
#include <QObject>

#include "FeatureFilterEntry.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "OptimisationEntries.h"
#include "StepRepeatDemo.h"
#include "analysis/Widget_Ranges.h"
#include "analysis/Widget_ResultsViewer.h"
#include "analysis/Widget_SignalLayerChecks.h"
#include "edit/Widget_Contourize.h"
#include "edit/contourize_params.h"
#include "frame/RangeMap.h"

namespace demo {
namespace {

QString lengthText(const DemoContext& context, double engine) {
    // Engine values are shown back in the display unit, as a host would echo them.
    const double mil = engine / 25400.0;
    return QString::number(engine, 'f', 0) + " nm (" +
           Korvo::UIAPI::getUnitJudgeString(context.host, mil, 4) + " " +
           QString::fromStdString(Korvo::UIAPI::getUnitStringType(context.host, 1)) + ")";
}

DialogEntry contourize() {
    DialogEntry entry;
    entry.menu = QStringLiteral("Contourize...");
    entry.group = QStringLiteral("Edit");
    entry.create = [](const DemoContext& context) -> QWidget* {
        auto* dialog = new Widget_Contourize(context.host);
        QObject::connect(
            dialog, &Widget_Contourize::send_Contourize_Info, dialog,
            [context](QObject* record) {
                // The record lives on the dialog's stack during this call only.
                const auto* params = reinterpret_cast<const contourize_params*>(record);
                context.log(QStringLiteral("send_Contourize_Info: accuracy %1, max size %2, "
                                           "separate to islands %3, mode %4")
                                .arg(lengthText(context, params->accuracy))
                                .arg(lengthText(context, params->max_size))
                                .arg(params->separate_to_islands ? "yes" : "no")
                                .arg(params->mode));
            },
            Qt::DirectConnection);
        return dialog;
    };
    entry.changeUnit = [](QWidget* w) { static_cast<Widget_Contourize*>(w)->change_unit(); };
    entry.changeLanguage = [](QWidget* w) {
        static_cast<Widget_Contourize*>(w)->change_language();
    };
    entry.apply = [](QWidget* w) { static_cast<Widget_Contourize*>(w)->on_Apply_clicked(); };
    return entry;
}

// What the viewer shows when the host opens it on its own: the reference engine's signal layer
// check of every signal layer of the shown step, at the dialog's default distances.
std::shared_ptr<const Korvo::API::signal_check_result_map> sampleSignalResult(
    const DemoContext& context) {
    using namespace Korvo::API;
    auto result = std::make_shared<signal_check_result_map>();
    std::vector<std::string> steps;
    std::vector<layer_info> layers;
    get_matrix(context.job.toStdString(), steps, layers);
    const auto ranges = wc::buildRangeMap<signal_layers_checks_items, signal_check_range>(
        "SignalLayerRanges", wc::toCheckRange);
    signal_check_params params;
    params.spacing = 8 * 25400.0;
    params.drill_to_copper = 8 * 25400.0;
    params.rout_to_copper = 8 * 25400.0;
    params.sliver_min = 4 * 25400.0;
    params.min_pad_overlap = 2 * 25400.0;
    params.apply_to = "All";
    const std::vector<signal_layers_checks_list> tests = {
        sl_spacing, sl_drill, sl_rout, sl_size, sl_sliver, sl_smd, sl_pad_connection};
    for (const layer_info& layer : layers) {
        if (layer.type == "signal" && layer.context == "board") {
            params.layers = layer.name;
            signal_layers_checks(context.job.toStdString(), context.step.toStdString(), layer.name,
                                 params, tests, ranges, (*result)[layer.name], nullptr, 0);
        }
    }
    return result;
}

DialogEntry resultsViewer() {
    DialogEntry entry;
    entry.menu = QStringLiteral("Results Viewer...");
    entry.group = QStringLiteral("Analysis");
    entry.create = [](const DemoContext& context) -> QWidget* {
        auto* viewer = new Widget_ResultsViewer(0, context.host, sampleSignalResult(context));
        viewer->setJobAndStep(context.job, context.step);
        return viewer;
    };
    entry.changeUnit = [](QWidget* w) { static_cast<Widget_ResultsViewer*>(w)->change_unit(); };
    entry.changeLanguage = [](QWidget* w) {
        static_cast<Widget_ResultsViewer*>(w)->change_language();
    };
    // Every severity admitted, then the first hit shown in the view.
    entry.apply = [](QWidget* w) {
        if (auto* level = w->findChild<QComboBox*>(QStringLiteral("m_pLevelCB"))) {
            level->setCurrentIndex(level->count() - 1);
            QMetaObject::invokeMethod(w, "on_Level_changed", Qt::DirectConnection,
                                      Q_ARG(QString, level->currentText()));
        }
        static_cast<Widget_ResultsViewer*>(w)->on_Right_clicked();
    };
    return entry;
}

DialogEntry ranges() {
    DialogEntry entry;
    entry.menu = QStringLiteral("Ranges...");
    entry.group = QStringLiteral("Analysis");
    entry.create = [](const DemoContext& context) -> QWidget* {
        return new Widget_Ranges(std::string("SignalLayerRanges"),
                                 std::string("Signal Layer Check"), context.host, context.host);
    };
    entry.changeUnit = [](QWidget* w) { static_cast<Widget_Ranges*>(w)->change_units(); };
    entry.changeLanguage = [](QWidget* w) { static_cast<Widget_Ranges*>(w)->change_language(); };
    return entry;
}

DialogEntry signalLayerChecks() {
    DialogEntry entry;
    entry.menu = QStringLiteral("Signal Layer Checks...");
    entry.group = QStringLiteral("Analysis");
    entry.create = [](const DemoContext& context) -> QWidget* {
        auto* dialog = new Widget_SignalLayerChecks(context.job, context.step, context.host,
                                                    Korvo::UIAPI::Check_Engine);
        // The reference result database is always at hand.
        dialog->on_db_connected(true);
        return dialog;
    };
    entry.changeUnit = [](QWidget* w) {
        static_cast<Widget_SignalLayerChecks*>(w)->change_units();
    };
    entry.changeLanguage = [](QWidget* w) {
        static_cast<Widget_SignalLayerChecks*>(w)->change_language();
    };
    // "Run globally" on the sample job; the status line tells what came back.
    entry.apply = [](QWidget* w) {
        static_cast<Widget_SignalLayerChecks*>(w)->on_RunGlobally_clicked();
    };
    return entry;
}

}  // namespace

const std::vector<DialogEntry>& dialogCatalogue() {
    static const std::vector<DialogEntry> entries = {
        contourize(),       signalLayerChecks(), resultsViewer(), ranges(),    featureFilter(),
        stepRepeatEditor(), signalLayerOpt(),    solderMaskOpt(), teardrops(), nfpRemoval()};
    return entries;
}

}  // namespace demo

#include "DialogCatalogue.h"

#include <QObject>

#include "FeatureFilterEntry.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "StepRepeatDemo.h"
#include "analysis/Widget_Ranges.h"
#include "analysis/Widget_ResultsViewer.h"
#include "edit/Widget_Contourize.h"
#include "edit/contourize_params.h"

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

// The reference engine computes no checks, so the viewer is shown a small result generated over
// the pads and lines of the sample job's copper layers: every hit refers to a real feature.
std::shared_ptr<const Korvo::API::signal_check_result_map> sampleSignalResult(
    const DemoContext& context) {
    using namespace Korvo::API;
    auto result = std::make_shared<signal_check_result_map>();
    std::vector<std::string> steps;
    std::vector<layer_info> layers;
    get_matrix(context.job.toStdString(), steps, layers);
    const signal_layers_checks_items items[] = {sli_pad_to_pad_spacing, sli_line_width,
                                                sli_smd_to_smd_spacing, sli_pad_size};
    for (const layer_info& layer : layers) {
        if (layer.type != "signal") {
            continue;
        }
        std::vector<featureInfo> features;
        get_all_feature_info(context.job.toStdString(), context.step.toStdString(), layer.name,
                             features, FT_Pad | FT_Line);
        for (std::size_t i = 0; i < features.size(); ++i) {
            const featureInfo& f = features[i];
            check_info hit;
            hit.value = 25400.0 * (2.0 + double((i * 37) % 50) / 10.0);  // 2 to 7 mil
            hit.shape.kind = check_points::box;
            hit.shape.points = {{f.start.x - 10 * 25400.0, f.start.y - 10 * 25400.0},
                                {f.start.x + 10 * 25400.0, f.start.y + 10 * 25400.0}};
            hit.features = {{layer.row, f.id}};
            signal_check_result& record = (*result)[layer.name][items[i % 4]];
            record.item = items[i % 4];
            auto& list = i % 7 == 0   ? record.red
                         : i % 3 == 0 ? record.yellow
                         : i % 5 == 0 ? record.other
                                      : record.green;
            list.push_back(hit);
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
    entry.apply = [](QWidget* w) { static_cast<Widget_ResultsViewer*>(w)->on_Right_clicked(); };
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

}  // namespace

const std::vector<DialogEntry>& dialogCatalogue() {
    static const std::vector<DialogEntry> entries = {
        contourize(), resultsViewer(), ranges(), featureFilter(), stepRepeatEditor()};
    return entries;
}

}  // namespace demo

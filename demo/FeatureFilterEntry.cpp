#include "FeatureFilterEntry.h"

#include <QObject>

#include "Korvo_API.h"
#include "toolbar/Grc_Tbv_featuresfilter.h"

namespace demo {

DialogEntry featureFilter() {
    DialogEntry entry;
    entry.menu = QStringLiteral("Feature filter...");
    entry.group = QStringLiteral("Graphic toolbar");
    entry.create = [](const DemoContext& context) -> QWidget* {
        // The demo has no toolbar object: the window is the host handle.
        auto* popup = new Grc_Tbv_featuresfilter(context.host);
        std::vector<std::string> steps;
        std::vector<Korvo::API::layer_info> layers;
        Korvo::API::get_graphics(context.job.toStdString(), steps, layers);
        QStringList names;
        for (const Korvo::API::layer_info& layer : layers) {
            names << QString::fromStdString(layer.name);
        }
        popup->get_job_info(context.job, context.step, names);
        QObject::connect(
            popup, &Grc_Tbv_featuresfilter::Change_Filter_Attitude_Signal, popup,
            [context] { context.log(QStringLiteral("toolbar: a filter is in force")); });
        QObject::connect(popup, &Grc_Tbv_featuresfilter::Reset_Filter_Attitude_Signal, popup,
                         [context] { context.log(QStringLiteral("toolbar: no filter")); });
        return popup;
    };
    entry.changeUnit = [](QWidget* w) { static_cast<Grc_Tbv_featuresfilter*>(w)->change_unit(); };
    entry.changeLanguage = [](QWidget* w) {
        static_cast<Grc_Tbv_featuresfilter*>(w)->change_language();
    };
    // The tour runs a predefined filter: the job list highlights the SMD pads.
    entry.apply = [](QWidget* w) {
        static_cast<Grc_Tbv_featuresfilter*>(w)->on_UserFilter_chosen(
            QStringLiteral("Highlight Smd Pads"));
    };
    return entry;
}

}  // namespace demo

#include "DialogCatalogue.h"

#include <QObject>

#include "Korvo_UIAPI.h"
#include "analysis/Widget_SignalLayerChecks.h"
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
    static const std::vector<DialogEntry> entries = {contourize(), signalLayerChecks()};
    return entries;
}

}  // namespace demo

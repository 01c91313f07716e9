#include "OptimisationEntries.h"

#include <QObject>

#include "dfm/Widget_NFPRemoval.h"
#include "dfm/Widget_SignalLayerOpt.h"
#include "dfm/Widget_SolderMaskOpt.h"
#include "dfm/Widget_Teardrops.h"

namespace demo {
namespace {

// The four optimisation dialogs are built, switched and run alike; a parameter set saved with
// "Save As" is echoed in the log as the host would store it.
template <class Dialog>
DialogEntry optimisation(const char* menu, void (Dialog::*run)()) {
    DialogEntry entry;
    entry.menu = QString::fromUtf8(menu);
    entry.group = QStringLiteral("DFM");
    entry.create = [](const DemoContext& context) -> QWidget* {
        auto* dialog = new Dialog(context.job, context.step, context.host);
        QObject::connect(dialog, &Dialog::send_Sel_Template_Name, dialog,
                         [context](const QString& name) {
                             context.log(QStringLiteral("send_Sel_Template_Name: ") + name);
                         });
        return dialog;
    };
    entry.changeUnit = [](QWidget* w) { static_cast<Dialog*>(w)->change_units(); };
    entry.changeLanguage = [](QWidget* w) { static_cast<Dialog*>(w)->change_language(); };
    entry.apply = [run](QWidget* w) { (static_cast<Dialog*>(w)->*run)(); };
    return entry;
}

}  // namespace

DialogEntry signalLayerOpt() {
    return optimisation<Widget_SignalLayerOpt>("Signal Layer Optimization...",
                                               &Widget_SignalLayerOpt::on_unGlobally_clicked);
}

DialogEntry solderMaskOpt() {
    return optimisation<Widget_SolderMaskOpt>("Solder Mask Optimization...",
                                              &Widget_SolderMaskOpt::on_m_pRunGlobalPB_clicked);
}

DialogEntry teardrops() {
    return optimisation<Widget_Teardrops>("Advanced Teardrop Creation...",
                                          &Widget_Teardrops::on_m_pRunGlobalPB_clicked);
}

DialogEntry nfpRemoval() {
    return optimisation<Widget_NFPRemoval>("NFP Removal...",
                                           &Widget_NFPRemoval::on_m_pRunGlobalPB_clicked);
}

}  // namespace demo

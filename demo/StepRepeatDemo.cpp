#include "StepRepeatDemo.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QPointer>
#include <QSplitter>

#include "PanelView.h"
#include "StepRepeatTable.h"
#include "steprepeat/Widget_SR_Edit.h"

namespace demo {
namespace {

// The sample job's panel step; the popup edits it whatever step the host shows.
const char* const kPanelStep = "panel";

struct Parts {
    QPointer<PanelView> view;
    QPointer<StepRepeatTable> table;
};

Parts& parts() {
    static Parts p;
    return p;
}

}  // namespace

void refreshStepRepeatDock() {
    // The table follows the view's refreshed().
    if (parts().view) {
        parts().view->refresh();
    }
}

DialogEntry stepRepeatEditor() {
    DialogEntry entry;
    entry.menu = QStringLiteral("Step and Repeat Edit...");
    entry.group = QStringLiteral("Step");
    entry.create = [](const DemoContext& context) -> QWidget* {
        auto* popup = new Widget_SR_Edit(context.job.toStdString(), kPanelStep, context.host);
        QObject::connect(popup, &Widget_SR_Edit::send_SR_Changed, popup, [context] {
            context.log(QStringLiteral("send_SR_Changed: the panel table was written"));
            refreshStepRepeatDock();
        });
        if (parts().view) {
            parts().view->setPopup(popup);
        }
        return popup;
    };
    entry.changeUnit = [](QWidget* w) {
        static_cast<Widget_SR_Edit*>(w)->change_unit();
        refreshStepRepeatDock();
    };
    entry.changeLanguage = [](QWidget* w) { static_cast<Widget_SR_Edit*>(w)->change_language(); };
    // The tour picks the array's lower row with a rectangle, so the drawing shows a selection.
    entry.apply = [](QWidget* w) {
        auto* popup = static_cast<Widget_SR_Edit*>(w);
        popup->on_RectangleSelect_clicked();
        const double mil = 25400.0;
        popup->receive_SR_Select_point({QPointF(0, 0), QPointF(7000 * mil, 2100 * mil)});
        popup->on_SingleSelect_clicked();
    };
    return entry;
}

QDockWidget* makeStepRepeatDock(const DemoContext& context, QMainWindow* window) {
    auto* dock = new QDockWidget(QObject::tr("Step and repeat"), window);
    dock->setObjectName(QStringLiteral("dock_StepRepeat"));
    auto* split = new QSplitter(Qt::Vertical, dock);
    auto* view = new PanelView(split);
    auto* table = new StepRepeatTable(context.host, split);
    split->addWidget(view);
    split->addWidget(table);
    split->setStretchFactor(0, 3);
    dock->setWidget(split);
    QObject::connect(view, &PanelView::refreshed, table, &StepRepeatTable::refresh);
    parts().view = view;
    parts().table = table;
    view->showStep(context.job.toStdString(), kPanelStep);
    table->showStep(context.job.toStdString(), kPanelStep);
    return dock;
}

}  // namespace demo

#include "StepRepeatDemo.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDockWidget>

#include "DemoWindow.h"
#include "GraphicView.h"
#include "StepRepeatTable.h"
#include "frame/PluginMessages.h"
#include "steprepeat/Widget_SR_Edit.h"

namespace demo {
namespace {

// The sample job's panel step; the popup edits it whatever step the host shows.
const char* const kPanelStep = "panel";

StepRepeatHost* current = nullptr;

QPointF toQt(const Korvo::API::point& p) {
    return QPointF(p.x, p.y);
}

}  // namespace

StepRepeatHost::StepRepeatHost(DemoWindow* window) : QObject(window), window_(window) {
    current = this;
    auto* dock = new QDockWidget(QObject::tr("Step and repeat table"), window);
    dock->setObjectName(QStringLiteral("dock_StepRepeat"));
    table_ = new StepRepeatTable(window, dock);
    dock->setWidget(table_);
    window->addDockWidget(Qt::BottomDockWidgetArea, dock);

    QObject::connect(window, &DemoWindow::stepShown, table_,
                     [this](const QString& job, const QString& step) {
                         table_->showStep(job.toStdString(), step.toStdString());
                     });
    GraphicView* view = window->view();
    QObject::connect(view, &GraphicView::pointPicked, this,
                     [this](const Korvo::API::point& at, bool shift) { picked(toQt(at), shift); });
    QObject::connect(view, &GraphicView::rectanglePicked, this,
                     [this](const Korvo::API::point& a, const Korvo::API::point& b, bool) {
                         if (!popup_.isNull() && popupButtonChecked("pushButton_RectangleSelect")) {
                             popup_->receive_SR_Select_point({toQt(a), toQt(b)});
                         }
                     });
    QObject::connect(view, &GraphicView::pointDoubleClicked, this, [this] {
        if (!popup_.isNull() && polygon_.size() >= 3) {
            const QVector<QPointF> vertices = polygon_;
            polygon_.clear();
            popup_->receive_SR_PolygonSelect_point(vertices);
        }
    });
    // The popup asks the view for the reference instance by message.
    window->onMessage(wc::code::PickReferenceStep, [this](const PluginMetaData& message) {
        if (message.receiver == wc::module::GraphicView) {
            awaitingReference_ = true;
            window_->log(QObject::tr("view: pick the reference instance"));
        }
    });
}

StepRepeatHost::~StepRepeatHost() {
    if (current == this) {
        current = nullptr;
    }
}

StepRepeatHost* StepRepeatHost::instance() {
    return current;
}

void StepRepeatHost::setPopup(Widget_SR_Edit* popup) {
    popup_ = popup;
    // The popup edits the panel, so the view shows it.
    window_->showStep(QString::fromLatin1(kPanelStep));
}

void StepRepeatHost::refresh() {
    window_->view()->reload();
    table_->refresh();
}

bool StepRepeatHost::popupButtonChecked(const char* name) const {
    const auto* button =
        popup_ ? popup_->findChild<QAbstractButton*>(QString::fromLatin1(name)) : nullptr;
    return button != nullptr && button->isChecked();
}

// Shift is read by the popup itself (getShiftEnpress), as the host's view would leave it.
void StepRepeatHost::picked(const QPointF& at, bool) {
    if (popup_.isNull() || !popup_->isVisible()) {
        return;
    }
    if (awaitingReference_) {
        awaitingReference_ = false;
        popup_->receive_SR_second_Select_point(at);
    } else if (popupButtonChecked("pushButton_PolygonSelect")) {
        polygon_ << at;
    } else if (!popupButtonChecked("pushButton_RectangleSelect")) {
        popup_->receive_SR_Select_point({at});
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
            if (StepRepeatHost::instance() != nullptr) {
                StepRepeatHost::instance()->refresh();
            }
        });
        if (StepRepeatHost::instance() != nullptr) {
            StepRepeatHost::instance()->setPopup(popup);
        }
        return popup;
    };
    entry.changeUnit = [](QWidget* w) {
        static_cast<Widget_SR_Edit*>(w)->change_unit();
        if (StepRepeatHost::instance() != nullptr) {
            StepRepeatHost::instance()->refresh();
        }
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

}  // namespace demo

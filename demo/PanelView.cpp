#include "PanelView.h"

#include <QAbstractButton>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <map>

#include "Korvo_API.h"
#include "PluginBus.h"
#include "StepRepeatGeometry.h"
#include "frame/PluginMessages.h"
#include "steprepeat/Widget_SR_Edit.h"

namespace {

constexpr double kMargin = 0.06;  // share of the view left around the panel

}  // namespace

PanelView::PanelView(QWidget* parent) : QWidget(parent) {
    setMinimumSize(320, 240);
    setAutoFillBackground(true);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, QColor(18, 22, 28));
    setPalette(palette);
    // The popup asks the view for a reference pick by message; the host refreshes by message.
    subscription_ = wcref::PluginBus::instance().subscribe([this](const PluginMetaData& message) {
        if (message.code == wc::code::PickReferenceStep &&
            message.receiver == wc::module::GraphicView) {
            awaiting_reference_ = true;
            update();
        } else if (message.code == wc::code::RefreshGraphic) {
            refresh();
        }
    });
}

PanelView::~PanelView() {
    wcref::PluginBus::instance().unsubscribe(subscription_);
}

void PanelView::showStep(const std::string& job, const std::string& step) {
    job_ = job;
    step_ = step;
    refresh();
}

void PanelView::refresh() {
    profile_.clear();
    instances_.clear();
    box_ = {};
    if (job_.empty()) {
        return;
    }
    Korvo::API::get_profile(job_, step_, profile_);
    box_ = wcref::boxOfPoints(profile_);
    std::vector<Korvo::API::step_repeat_op> rows;
    Korvo::API::get_step_repeat(job_, step_, rows);
    std::map<std::string, std::vector<Korvo::API::point>> outlines;
    for (const Korvo::API::step_repeat_op& row : rows) {
        Korvo::API::get_profile(job_, row.step_name, outlines[row.step_name]);
    }
    for (const wcref::RepeatInstance& instance : wcref::expandRepeatRows(rows)) {
        const Korvo::API::step_repeat_op& row = rows[instance.row];
        const std::vector<Korvo::API::point>& child = outlines[row.step_name];
        Placed placed;
        for (const Korvo::API::point& p : child) {
            const Korvo::API::point q = wcref::placePoint(p, instance.angle, instance.mirror);
            placed.outline.push_back({q.x + instance.position.x, q.y + instance.position.y});
        }
        placed.box = wcref::instanceBox(wcref::boxOfPoints(child), instance);
        placed.selected = row.selection.count(instance.index) != 0;
        // The view shows the whole table even when instances stray off the panel.
        box_.xmin = std::min(box_.xmin, placed.box.xmin);
        box_.ymin = std::min(box_.ymin, placed.box.ymin);
        box_.xmax = std::max(box_.xmax, placed.box.xmax);
        box_.ymax = std::max(box_.ymax, placed.box.ymax);
        instances_.push_back(std::move(placed));
    }
    update();
    emit refreshed();
}

QPointF PanelView::toScreen(const Korvo::API::point& p) const {
    const double w = std::max(1.0, box_.xmax - box_.xmin);
    const double h = std::max(1.0, box_.ymax - box_.ymin);
    const double scale = (1.0 - 2 * kMargin) * std::min(width() / w, height() / h);
    const double ox = (width() - w * scale) / 2.0;
    const double oy = (height() - h * scale) / 2.0;
    // y grows upwards on the board and downwards on the screen.
    return QPointF(ox + (p.x - box_.xmin) * scale, height() - oy - (p.y - box_.ymin) * scale);
}

QPointF PanelView::toBoard(const QPointF& s) const {
    const double w = std::max(1.0, box_.xmax - box_.xmin);
    const double h = std::max(1.0, box_.ymax - box_.ymin);
    const double scale = (1.0 - 2 * kMargin) * std::min(width() / w, height() / h);
    const double ox = (width() - w * scale) / 2.0;
    const double oy = (height() - h * scale) / 2.0;
    return QPointF(box_.xmin + (s.x() - ox) / scale, box_.ymin + (height() - oy - s.y()) / scale);
}

void PanelView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto polygon = [this](const std::vector<Korvo::API::point>& points) {
        QPolygonF shape;
        for (const Korvo::API::point& p : points) {
            shape << toScreen(p);
        }
        return shape;
    };
    painter.setPen(QPen(QColor(230, 200, 60), 1.5));
    painter.drawPolygon(polygon(profile_));
    for (const Placed& placed : instances_) {
        painter.setPen(QPen(QColor(90, 170, 255), 1.0));
        painter.setBrush(placed.selected ? QColor(255, 120, 40, 150) : QColor(90, 170, 255, 40));
        painter.drawPolygon(polygon(placed.outline));
        // The first corner of the child outline marks how the instance is turned and mirrored.
        if (!placed.outline.empty()) {
            painter.setBrush(QColor(255, 255, 255));
            painter.drawEllipse(toScreen(placed.outline.front()), 2.5, 2.5);
        }
    }
    painter.setPen(QColor(200, 200, 200));
    QString caption = QString::fromStdString(job_ + " / " + step_) +
                      QStringLiteral("  (%1 instances)").arg(instances_.size());
    if (awaiting_reference_) {
        caption += tr("  - pick the reference instance");
    } else if (!polygon_.isEmpty()) {
        caption += tr("  - double-click closes the polygon");
    }
    painter.drawText(rect().adjusted(8, 6, -8, -6), Qt::AlignLeft | Qt::AlignTop, caption);
    if (polygon_.size() > 1) {
        painter.setPen(QPen(QColor(255, 255, 255), 1.0, Qt::DashLine));
        QPolygonF open;
        for (const QPointF& p : polygon_) {
            open << toScreen({p.x(), p.y()});
        }
        painter.drawPolyline(open);
    }
}

bool PanelView::popupButtonChecked(const char* name) const {
    const auto* button =
        popup_ ? popup_->findChild<QAbstractButton*>(QString::fromLatin1(name)) : nullptr;
    return button != nullptr && button->isChecked();
}

void PanelView::mousePressEvent(QMouseEvent* event) {
    press_ = event->localPos();
}

void PanelView::mouseReleaseEvent(QMouseEvent* event) {
    if (popup_.isNull() || event->button() != Qt::LeftButton) {
        return;
    }
    const QPointF at = toBoard(event->localPos());
    if (awaiting_reference_) {
        awaiting_reference_ = false;
        popup_->receive_SR_second_Select_point(at);
    } else if (popupButtonChecked("pushButton_PolygonSelect")) {
        polygon_ << at;
        update();
    } else if (popupButtonChecked("pushButton_RectangleSelect")) {
        popup_->receive_SR_Select_point({toBoard(press_), at});
    } else {
        popup_->receive_SR_Select_point({at});
    }
}

void PanelView::mouseDoubleClickEvent(QMouseEvent*) {
    if (!popup_.isNull() && polygon_.size() >= 3) {
        const QVector<QPointF> vertices = polygon_;
        polygon_.clear();
        popup_->receive_SR_PolygonSelect_point(vertices);
    }
}

void PanelView::setPopup(Widget_SR_Edit* popup) {
    popup_ = popup;
}

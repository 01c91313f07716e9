#include "JobView.h"

#include <QPainter>
#include <QPainterPath>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "Korvo_API.h"
#include "StepRepeatGeometry.h"

namespace {

// The child step's profile, turned and mirrored as the engine places the instance, at (x, y).
std::vector<Korvo::API::point> placedOutline(const std::vector<Korvo::API::point>& outline,
                                             const Korvo::API::step_repeat_op& row, int i, int j) {
    std::vector<Korvo::API::point> placed;
    for (const auto& p : outline) {
        const Korvo::API::point q = wcref::placePoint(p, row.angle, row.mirror);
        placed.push_back({row.x + i * double(row.dx) + q.x, row.y + j * double(row.dy) + q.y});
    }
    return placed;
}

// Width and height of a standard symbol in engine units ("r60", "s40", "rect60x80",
// "oval40x80"); symbol numbers count in mil.
QSizeF symbolSize(const std::string& symbol) {
    const QString name = QString::fromStdString(symbol);
    QRegularExpression pattern(QStringLiteral("^([a-z]+)([0-9.]+)(?:x([0-9.]+))?"));
    const QRegularExpressionMatch match = pattern.match(name);
    if (!match.hasMatch()) {
        return QSizeF(10 * 25400.0, 10 * 25400.0);
    }
    const double w = match.captured(2).toDouble() * 25400.0;
    const double h = match.captured(3).isEmpty() ? w : match.captured(3).toDouble() * 25400.0;
    return QSizeF(w, h);
}

}  // namespace

JobView::JobView(QWidget* parent) : QWidget(parent) {
    setMinimumSize(480, 360);
    setAutoFillBackground(true);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, QColor(18, 22, 28));
    setPalette(palette);
}

void JobView::showLayer(const std::string& job, const std::string& step, const std::string& layer) {
    job_ = job;
    step_ = step;
    layer_ = layer;
    profile_.clear();
    features_.clear();
    instances_.clear();
    Korvo::API::get_profile(job, step, profile_);
    Korvo::API::get_all_feature_info(job, step, layer, features_, Korvo::API::FT_All);
    std::vector<Korvo::API::step_repeat_op> rows;
    if (Korvo::API::get_step_repeat(job, step, rows)) {
        for (const auto& row : rows) {
            std::vector<Korvo::API::point> child;
            Korvo::API::get_profile(job, row.step_name, child);
            for (int j = 0; j < row.ny; ++j) {
                for (int i = 0; i < row.nx; ++i) {
                    instances_.push_back(placedOutline(child, row, i, j));
                }
            }
        }
    }
    Korvo::API::reply_box box;
    if (Korvo::API::profile_box(job, step, box)) {
        fitTo(box);
    }
    update();
}

void JobView::fitTo(const Korvo::API::reply_box& box) {
    box_ = box;
    const double w = std::max(1.0, box.xmax - box.xmin);
    const double h = std::max(1.0, box.ymax - box.ymin);
    scale_ = 0.9 * std::min(width() / w, height() / h);
    offset_ = QPointF((width() - w * scale_) / 2.0, (height() - h * scale_) / 2.0);
}

QPointF JobView::toScreen(const Korvo::API::point& p) const {
    // y grows upwards on the board and downwards on the screen.
    return QPointF(offset_.x() + (p.x - box_.xmin) * scale_,
                   height() - offset_.y() - (p.y - box_.ymin) * scale_);
}

void JobView::paintEvent(QPaintEvent*) {
    fitTo(box_);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    auto polygon = [this](const std::vector<Korvo::API::point>& points) {
        QPolygonF shape;
        for (const auto& p : points) {
            shape << toScreen(p);
        }
        return shape;
    };
    painter.setPen(QPen(QColor(230, 200, 60), 1.5));
    painter.drawPolygon(polygon(profile_));
    painter.setPen(QPen(QColor(90, 170, 255), 1.0));
    for (const auto& outline : instances_) {
        painter.drawPolygon(polygon(outline));
    }
    const QColor copper(220, 120, 60);
    painter.setPen(QPen(copper, 1.0));
    painter.setBrush(copper);
    for (const auto& f : features_) {
        const QSizeF size = symbolSize(f.symbol) * scale_;
        switch (f.type) {
            case Korvo::API::feature_pad: {
                const QRectF shape(toScreen(f.start) - QPointF(size.width(), size.height()) / 2,
                                   size);
                if (f.symbol.rfind("rect", 0) == 0 || f.symbol.rfind("s", 0) == 0) {
                    painter.drawRect(shape);
                } else {
                    painter.drawRoundedRect(shape, size.width() / 2, size.height() / 2);
                }
                break;
            }
            case Korvo::API::feature_line:
            case Korvo::API::feature_arc:
                painter.setPen(
                    QPen(copper, std::max(1.0, size.width()), Qt::SolidLine, Qt::RoundCap));
                painter.drawLine(toScreen(f.start), toScreen(f.end));
                painter.setPen(QPen(copper, 1.0));
                break;
            case Korvo::API::feature_surface:
                painter.drawPolygon(polygon(f.contour));
                break;
            case Korvo::API::feature_text:
                painter.drawText(toScreen(f.start), QString::fromStdString(f.text));
                break;
        }
    }
    painter.setPen(QColor(200, 200, 200));
    painter.drawText(rect().adjusted(8, 6, -8, -6), Qt::AlignLeft | Qt::AlignTop,
                     QString::fromStdString(job_ + " / " + step_ + " / " + layer_) +
                         QStringLiteral("  (%1 features)").arg(features_.size()));
}

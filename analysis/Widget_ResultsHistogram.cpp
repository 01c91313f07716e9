#include "Widget_ResultsHistogram.h"

#include <QPainter>
#include <QPainterPath>

#include "frame/DialogTexts.h"

namespace {
constexpr int kMargin = 40;
}

Widget_ResultsHistogram::Widget_ResultsHistogram(QWidget* parent) : QWidget(parent, Qt::Window) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    setObjectName(QStringLiteral("Widget_ResultsHistogram"));
    setMinimumSize(420, 300);
    resize(520, 340);
    wc::setSourceText(this, this, QT_TR_NOOP("Results Histogram"));
}

// The chart's own texts are translated as it is painted.
void Widget_ResultsHistogram::change_language() {
    wc::retranslate(this);
    update();
}

void Widget_ResultsHistogram::setHistogram(const QString& title, const QString& unit,
                                           wc::ValueHistogram histogram) {
    title_ = title;
    unit_ = unit;
    histogram_ = std::move(histogram);
    update();
}

void Widget_ResultsHistogram::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    painter.setPen(Qt::black);
    const QRect chart = rect().adjusted(kMargin + 10, kMargin, -kMargin / 2, -kMargin);
    painter.drawText(QRect(0, 0, width(), kMargin), Qt::AlignCenter, title_);
    if (histogram_.bins.empty()) {
        painter.drawText(chart, Qt::AlignCenter, tr("No results"));
        return;
    }
    painter.drawLine(chart.bottomLeft(), chart.bottomRight());
    painter.drawLine(chart.bottomLeft(), chart.topLeft());
    const std::size_t top = std::max<std::size_t>(1, histogram_.largest());
    const int count = int(histogram_.bins.size());
    const double bar_width = double(chart.width()) / count;
    painter.setBrush(QColor(70, 110, 200));
    for (int i = 0; i < count; ++i) {
        const double height = double(histogram_.bins[i]) / double(top) * chart.height();
        painter.drawRect(QRectF(chart.left() + i * bar_width, chart.bottom() - height,
                                std::max(1.0, bar_width - 1.0), height));
    }
    const QFontMetrics metrics = painter.fontMetrics();
    painter.drawText(QRect(0, chart.top() - metrics.height() / 2, kMargin + 5, metrics.height()),
                     Qt::AlignRight, QString::number(qulonglong(top)));
    painter.drawText(QRect(0, chart.bottom() - metrics.height() / 2, kMargin + 5, metrics.height()),
                     Qt::AlignRight, QStringLiteral("0"));
    const QRect axis(chart.left(), chart.bottom() + 4, chart.width(), metrics.height());
    painter.drawText(axis, Qt::AlignLeft, QString::number(histogram_.minimum, 'f', 3));
    painter.drawText(axis, Qt::AlignRight, QString::number(histogram_.maximum, 'f', 3));
    painter.drawText(axis.translated(0, metrics.height()), Qt::AlignHCenter, unit_);
}

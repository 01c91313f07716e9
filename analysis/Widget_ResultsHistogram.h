#pragma once
// How the measured values of the viewer's current category are spread, as a bar chart.

#include <QString>
#include <QWidget>

#include "ValueHistogram.h"
#include "frame/WidgetCommonExport.h"

class WIDGET_COMMON_EXPORT Widget_ResultsHistogram : public QWidget {
    Q_OBJECT
public:
    explicit Widget_ResultsHistogram(QWidget* parent);

    // `title` names the category, `unit` the display unit of the values.
    void setHistogram(const QString& title, const QString& unit, wc::ValueHistogram histogram);
    const wc::ValueHistogram& histogram() const { return histogram_; }

public slots:
    void change_language();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    wc::ValueHistogram histogram_;
    QString title_;
    QString unit_;
};

#pragma once
// The step-and-repeat part of the demo host: the popup's catalogue row, a dock with the table of
// the shown step's step-and-repeat rows, and the graphic view's picks answered to the popup's
// slots (a click, a rectangle, a polygon closed by a double click, and the reference pick the
// popup asks for with its message).

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QVector>

#include "DialogCatalogue.h"

class DemoWindow;
class StepRepeatTable;
class Widget_SR_Edit;

namespace demo {

class StepRepeatHost : public QObject {
public:
    explicit StepRepeatHost(DemoWindow* window);
    ~StepRepeatHost() override;

    static StepRepeatHost* instance();
    void setPopup(Widget_SR_Edit* popup);
    // Re-reads the table and redraws the view after the popup wrote the table.
    void refresh();

private:
    void picked(const QPointF& at, bool shift);
    bool popupButtonChecked(const char* name) const;

    DemoWindow* window_;
    StepRepeatTable* table_ = nullptr;
    QPointer<Widget_SR_Edit> popup_;
    bool awaitingReference_ = false;
    QVector<QPointF> polygon_;
};

DialogEntry stepRepeatEditor();

}  // namespace demo

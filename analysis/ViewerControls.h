#pragma once
// The results viewer's controls as data. A control is one row: the member that holds it (its type
// is the control's kind), its object name, its text (a combo box's items), its place in the
// window's grid and the slot its signal reaches. place() makes, names, labels (through
// wc::DialogTexts, so that the language follows), wires and places one row.

#include <glog/logging.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QList>
#include <QListWidget>
#include <QPushButton>
#include <type_traits>
#include <variant>

#include "HitTableView.h"
#include "MeasureComboBox.h"
#include "TriagePanel.h"
#include "Widget_ResultsViewer.h"
#include "ZeLineEdit.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"

// The guard around every slot body of the viewer's files: an exception is logged with the file
// name of the viewer's mode and the line.
#define VIEWER_GUARDED(...) guardedSlot(__LINE__, [&]() __VA_ARGS__)

template <typename Body>
bool Widget_ResultsViewer::guardedSlot(int line, Body&& body) {
    return wc::guarded(this, mode_->source_file, line, std::forward<Body>(body));
}

namespace wc::viewer {

using Viewer = Widget_ResultsViewer;
using Korvo::UIAPI::ZeLineEdit;

template <typename T>
using Member = T* Viewer::*;
using ControlMember =
    std::variant<Member<QPushButton>, Member<QLabel>, Member<QCheckBox>, Member<QComboBox>,
                 Member<MeasureComboBox>, Member<QListWidget>, Member<ZeLineEdit>,
                 Member<QLineEdit>, Member<HitTableView>, Member<TriagePanel>>;
using ControlSlot =
    std::variant<std::monostate, void (Viewer::*)(), void (Viewer::*)(int),
                 void (Viewer::*)(const QString&), void (Viewer::*)(QListWidgetItem*),
                 void (Viewer::*)(int, std::size_t)>;

// The look of the lists, the combo boxes and the histogram button, and the "Sv:" colours.
const char* const kSelectedBlack =
    "QListWidget::item:selected{background-color:rgb(0, 0, 0); color:rgb(255, 255, 255)}";
const char* const kSelectedBlue =
    "QListWidget::Item:selected{background:blue;}QListWidget::item:selected:!active{background:"
    "lightblue;}";
const char* const kComboItems = "QComboBox QAbstractItemView::item{height:20px}";
const char* const kHistogramPicture =
    "QPushButton{background-image:url(:/Widget_Common/Resources/Results histogram1.jpg)}";
const QColor kLevelColours[kSeverityCount] = {QColor(255, 0, 0), QColor(255, 255, 0),
                                              QColor(0, 255, 0), QColor(255, 255, 255)};

struct Place {
    int row;
    int column;
    int span = 1;
};

struct Control {
    ControlMember member;
    const char* name;
    QList<const char*> texts;
    Place where;
    ControlSlot slot;
};

// The signal through which a control of each kind reaches its slot; labels have none.
template <typename T>
struct Wiring {
    using Slot = std::monostate;
};
template <>
struct Wiring<QPushButton> {
    using Slot = void (Viewer::*)();
    static constexpr auto signal = &QPushButton::clicked;
};
template <>
struct Wiring<QLineEdit> {
    using Slot = void (Viewer::*)();
    static constexpr auto signal = &QLineEdit::returnPressed;
};
template <>
struct Wiring<ZeLineEdit> : Wiring<QLineEdit> {};
template <>
struct Wiring<QCheckBox> {
    using Slot = void (Viewer::*)(int);
    static constexpr auto signal = &QCheckBox::stateChanged;
};
template <>
struct Wiring<QComboBox> {
    using Slot = void (Viewer::*)(const QString&);
    static constexpr auto signal = &QComboBox::textActivated;
};
template <>
struct Wiring<MeasureComboBox> : Wiring<QComboBox> {};
template <>
struct Wiring<QListWidget> {
    using Slot = void (Viewer::*)(QListWidgetItem*);
    static constexpr auto signal = &QListWidget::itemClicked;
};
template <>
struct Wiring<HitTableView> {
    using Slot = void (Viewer::*)(int, std::size_t);
    static constexpr auto signal = &HitTableView::hitPicked;
};

template <typename T>
T* make(QWidget* parent) {
    return new T(parent);
}
template <>
inline ZeLineEdit* make<ZeLineEdit>(QWidget* parent) {
    return new ZeLineEdit(Korvo::UIAPI::ZeE_PositiveInteger, parent);
}

template <typename T>
void place(Viewer* viewer, Member<T> member, const Control& control, QGridLayout* grid) {
    T* widget = make<T>(viewer);
    viewer->*member = widget;
    widget->setObjectName(QLatin1String(control.name));
    if constexpr (std::is_base_of_v<QComboBox, T>) {
        setSourceItems(viewer, widget, control.texts);
    } else if (!control.texts.isEmpty()) {  // a line edit's is its placeholder
        setSourceText(viewer, widget, control.texts.front());
    }
    using Slot = typename Wiring<T>::Slot;
    if constexpr (!std::is_same_v<Slot, std::monostate>) {
        if (const Slot* slot = std::get_if<Slot>(&control.slot)) {
            QObject::connect(widget, Wiring<T>::signal, viewer, *slot);
        } else {
            LOG(ERROR) << control.name << " reaches no slot";
        }
    }
    grid->addWidget(widget, control.where.row, control.where.column, 1, control.where.span);
}

}  // namespace wc::viewer

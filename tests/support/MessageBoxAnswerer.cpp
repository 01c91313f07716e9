#include "MessageBoxAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPushButton>
#include <QWidget>

namespace wctest {

MessageBoxAnswerer::MessageBoxAnswerer(QMessageBox::StandardButton answer) : answer_(answer) {
    timer_.setInterval(5);
    connect(&timer_, &QTimer::timeout, this, &MessageBoxAnswerer::poll);
    timer_.start();
}

MessageBoxAnswerer::~MessageBoxAnswerer() {
    timer_.stop();
}

void MessageBoxAnswerer::script(const QList<QMessageBox::StandardButton>& answers) {
    scripted_ = answers;
}

ShownBox MessageBoxAnswerer::last() const {
    return boxes_.isEmpty() ? ShownBox() : boxes_.last();
}

QStringList MessageBoxAnswerer::texts() const {
    QStringList result;
    for (const ShownBox& box : boxes_) {
        result.append(box.text);
    }
    return result;
}

void MessageBoxAnswerer::poll() {
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
        if (box->isVisible()) {
            answer(box);
            return;
        }
    }
    // Offscreen platforms do not always report the modal widget; look at the windows too.
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        if (box != nullptr && box->isVisible()) {
            answer(box);
            return;
        }
    }
}

void MessageBoxAnswerer::answer(QMessageBox* box) {
    if (seen_) {
        seen_(box);
    }
    const QMessageBox::StandardButton wanted =
        scripted_.isEmpty() ? answer_ : scripted_.takeFirst();
    QAbstractButton* button = box->button(wanted);
    if (button == nullptr) {
        button = box->defaultButton();
    }
    if (button == nullptr) {
        button = box->escapeButton();
    }
    if (button == nullptr && !box->buttons().isEmpty()) {
        button = box->buttons().first();
    }
    ShownBox shown;
    shown.title = box->windowTitle();
    shown.text = box->text();
    shown.icon = box->icon();
    if (button != nullptr) {
        shown.pressed = box->standardButton(button);
        shown.pressed_text = button->text();
    }
    boxes_.append(shown);
    if (button != nullptr) {
        button->click();
    } else {
        box->done(0);
    }
}

}  // namespace wctest

#pragma once
// The child a test drives, found by its object name; a missing child ends the program with the
// name, so that a renamed widget is not mistaken for a failing check.

#include <QAbstractButton>
#include <QLabel>
#include <QWidget>

namespace wctest {

template <typename T = QWidget>
T* child(const QObject& parent, const QString& name) {
    T* found = parent.findChild<T*>(name);
    if (found == nullptr) {
        qFatal("no child %s", qPrintable(name));
    }
    return found;
}

inline QString labelText(const QObject& parent, const QString& name) {
    return child<QLabel>(parent, name)->text();
}

// Clicks the button as a user would, with its signals.
inline void click(const QObject& parent, const QString& name) {
    child<QAbstractButton>(parent, name)->click();
}

}  // namespace wctest

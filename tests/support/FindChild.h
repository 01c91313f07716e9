#pragma once
// The child a test drives, found by its object name; a missing child ends the program with the
// name, so that a renamed widget is not mistaken for a failing check.

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

}  // namespace wctest

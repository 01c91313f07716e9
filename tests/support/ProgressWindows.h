#pragma once
// The progress window of a run as a user meets it: stopping it, seeing whether one is shown, and
// a stopper that presses stop as soon as one shows, noting what the dialog shows meanwhile.

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include "FindChild.h"
#include "ZeProgressDialog.h"

namespace wctest {

// Presses stop in every progress window there is; true when there was one.
inline bool stopProgressWindows() {
    bool found = false;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<ZeProgressDialog*>(widget)) {
            window->requestStop();
            found = true;
        }
    }
    return found;
}

inline bool isProgressShown() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<ZeProgressDialog*>(widget) != nullptr && widget->isVisible()) {
            return true;
        }
    }
    return false;
}

// Presses stop as soon as a progress window shows (when `active`), then notes what the dialog
// shows, "status text|view button style", while the engine is still winding down.
class Stopper {
public:
    explicit Stopper(QWidget& dialog, bool active = true) {
        QObject::connect(&timer_, &QTimer::timeout, [this, &dialog] {
            stopped_ = stopProgressWindows() || stopped_;
            if (stopped_) {
                seen_.append(child<QLabel>(dialog, "label_Status")->text() + "|" +
                             child<QPushButton>(dialog, "pushButton_View")->styleSheet());
            }
        });
        if (active) {
            timer_.start(5);
        }
    }
    const QStringList& seen() const { return seen_; }

private:
    QTimer timer_;
    bool stopped_ = false;
    QStringList seen_;
};

}  // namespace wctest

#pragma once
// What the tests of the optimisation dialogs share: finding children, stopping a run from the
// progress window as the user does, and what the notifications after a run must be.

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <thread>

#include "PluginSpy.h"
#include "ZeProgressDialog.h"
#include "progress_value.h"

namespace dfmtest {

inline const QString kGreen =
    QStringLiteral("QPushButton{background-image:url(:/Widget_Common/Resources/viewgreen.jpg)}");
inline const QString kRed =
    QStringLiteral("QPushButton{background-image:url(:/Widget_Common/Resources/viewred.jpg)}");

template <typename T = QWidget>
T* child(QWidget& dialog, const QString& name) {
    T* found = dialog.findChild<T*>(name);
    if (found == nullptr) {
        qFatal("no child %s", qPrintable(name));
    }
    return found;
}

inline QString labelText(QWidget& dialog, const char* name) {
    return child<QLabel>(dialog, QString::fromLatin1(name))->text();
}

inline QString viewStyle(QWidget& dialog) {
    return child<QPushButton>(dialog, QStringLiteral("pushButton_View"))->styleSheet();
}

// Presses stop in the progress window as soon as it shows, then notes what the dialog shows
// (status text and view button) while the engine is still winding down.
class Stopper {
public:
    explicit Stopper(QWidget& dialog) : dialog_(dialog) {
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (auto* window = qobject_cast<ZeProgressDialog*>(widget)) {
                    window->requestStop();
                    stopped_ = true;
                }
            }
            if (stopped_) {
                seen_.append(labelText(dialog_, "label_Status") + "|" + viewStyle(dialog_));
            }
        });
        timer_.start(5);
    }
    // What was shown after the stop, in order, without repeats.
    QStringList seen() const {
        QStringList distinct;
        for (const QString& shown : seen_) {
            if (distinct.isEmpty() || distinct.last() != shown) {
                distinct.append(shown);
            }
        }
        return distinct;
    }

private:
    QWidget& dialog_;
    QTimer timer_;
    bool stopped_ = false;
    QStringList seen_;
};

// An engine that works until it is asked to stop, then takes a little longer to wind down.
inline void workUntilStopped(Korvo::COMMON::progress_value<void>* progress) {
    while (!progress->is_stop_requested()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
}

// The two notifications after a run, matrix first.
inline void verifyNotifications(const wctest::PluginSpy& spy, const QString& job) {
    QCOMPARE(spy.codes(), QList<int>({20002401, 20002400}));
    const wctest::SeenMessage matrix = spy.messages().at(0);
    const wctest::SeenMessage graphic = spy.messages().at(1);
    QCOMPARE(matrix.sender, QStringLiteral("CAM_PNData_View.dll"));
    QCOMPARE(matrix.receiver, QStringLiteral("Matrix.dll"));
    QCOMPARE(matrix.values.value("DstType").toString(), QStringLiteral("Matrix"));
    QCOMPARE(graphic.sender, QStringLiteral("CAM_PNData_View.dll"));
    QCOMPARE(graphic.receiver, QStringLiteral("Graphic_JobList.dll"));
    QCOMPARE(graphic.values.value("DstType").toString(), QStringLiteral("Graphic"));
    QCOMPARE(graphic.values.value("Job").toString(), job);
}

}  // namespace dfmtest

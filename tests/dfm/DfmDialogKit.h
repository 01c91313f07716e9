#pragma once
// What the tests of the optimisation dialogs share: an engine operation that records what it was
// given, saving a parameter set, and what the notifications after a run must be.

#include <QInputDialog>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

#include <chrono>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "FindChild.h"
#include "PluginSpy.h"
#include "ProgressWindows.h"
#include "ReferenceEngine.h"
#include "progress_value.h"

namespace dfmtest {

using wctest::child;
using wctest::Stopper;

inline const QString kGreen =
    QStringLiteral("QPushButton{background-image:url(:/Widget_Common/Resources/viewgreen.jpg)}");
inline const QString kRed =
    QStringLiteral("QPushButton{background-image:url(:/Widget_Common/Resources/viewred.jpg)}");

inline QString labelText(QWidget& dialog, const char* name) {
    return child<QLabel>(dialog, QString::fromLatin1(name))->text();
}

inline QString viewStyle(QWidget& dialog) {
    return child<QPushButton>(dialog, QStringLiteral("pushButton_View"))->styleSheet();
}

// An engine that works until it is asked to stop, then takes a little longer to wind down.
inline void workUntilStopped(Korvo::COMMON::progress_value<void>* progress) {
    while (!progress->is_stop_requested()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
}

// Stands in for one optimisation while it lives: notes each call (on the worker; the test reads
// after the run), puts `answer` into the result, works until stopped if asked to, then ends as
// `mode` says.
template <typename Params, typename Result>
class EngineSpy {
public:
    enum Mode { Succeed, Fail, Throw };
    using Hook =
        std::function<bool(const std::string&, const std::string&, const std::vector<std::string>&,
                           Params, Result&, Korvo::COMMON::progress_value<void>*)>;

    explicit EngineSpy(Hook wcref::EngineHooks::*member, Mode mode = Succeed)
        : mode(mode), member_(member), previous_(wcref::engineHooks().*member) {
        wcref::engineHooks().*member =
            [this](const std::string&, const std::string&, const std::vector<std::string>& l,
                   Params p, Result& result, Korvo::COMMON::progress_value<void>* progress) {
                {
                    std::lock_guard<std::mutex> guard(lock_);
                    params.push_back(p);
                    layers.push_back(l);
                }
                result = answer;
                if (wait_for_stop) {
                    workUntilStopped(progress);
                }
                if (this->mode == Throw) {
                    throw std::runtime_error("engine broke");
                }
                return this->mode != Fail;
            };
    }
    ~EngineSpy() { wcref::engineHooks().*member_ = std::move(previous_); }

    int calls() const { return int(params.size()); }
    const Params& last() const { return params.back(); }

    Mode mode;
    bool wait_for_stop = false;
    Result answer;
    std::vector<Params> params;
    std::vector<std::vector<std::string>> layers;

private:
    std::mutex lock_;
    Hook wcref::EngineHooks::*member_;
    Hook previous_;
};

// "Save As" as the user meets it: the name dialog, then OK; the dialog names the new set once.
template <typename Dialog>
void saveAs(Dialog& dialog, const QString& name) {
    QSignalSpy named(&dialog, &Dialog::send_Sel_Template_Name);
    dialog.on_m_pSaveAsPB_clicked();
    auto* ask = child<QInputDialog>(dialog, QStringLiteral("templateNameDialog"));
    ask->setTextValue(name);
    ask->accept();
    QCOMPARE(named.count(), 1);
    QCOMPARE(named.at(0).at(0).toString(), name);
}

// Layer names as the tests write them, "top;bottom".
inline QString joined(const std::vector<std::string>& names) {
    QStringList list;
    for (const std::string& name : names) {
        list << QString::fromStdString(name);
    }
    return list.join(';');
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

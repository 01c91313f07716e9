#pragma once
// What the tests of the optimisation dialogs share: an engine operation that records what it was
// given, saving a parameter set, and what every dialog must show after its checks and its run.

#include <QInputDialog>
#include <QLineEdit>
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
#include "MessageBoxAnswerer.h"
#include "PluginSpy.h"
#include "ProgressWindows.h"
#include "ReferenceEngine.h"
#include "SampleJobScene.h"
#include "progress_value.h"

namespace dfmtest {

using wctest::child;
using wctest::labelText;
using wctest::Stopper;

inline const QString kGreen =
    QStringLiteral("QPushButton{background-image:url(:/Widget_Common/Resources/viewgreen.jpg)}");
inline const QString kRed =
    QStringLiteral("QPushButton{background-image:url(:/Widget_Common/Resources/viewred.jpg)}");

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

// The field of `key`, "lineEdit_<key>".
inline QLineEdit* field(QWidget& dialog, const QString& key) {
    return child<QLineEdit>(dialog, QStringLiteral("lineEdit_") + key);
}

// Types "key=text" pairs into their fields, in order.
inline void typeFields(QWidget& dialog, const QStringList& pairs) {
    for (const QString& pair : pairs) {
        field(dialog, pair.section('=', 0, 0))->setText(pair.section('=', 1));
    }
}

// The checks before a run: `message` in an Information box and no engine call, or, when it is
// empty, no box and one call.
inline void verifyChecked(const wctest::MessageBoxAnswerer& boxes, int calls,
                          const QString& message) {
    const bool runs = message.isEmpty();
    QCOMPARE(boxes.texts(), runs ? QStringList() : QStringList{message});
    QVERIFY(runs || boxes.last().title == "Information");
    QCOMPARE(calls, runs ? 1 : 0);
}

// A run that found no layer: said so, and neither the engine nor the host hears of it.
template <typename Dialog>
void verifyNoRun(Dialog& dialog, int calls, const wctest::PluginSpy& plugins) {
    QCOMPARE(labelText(dialog, "label_Status"), "No layers were processed");
    QCOMPARE(calls, 0);
    QCOMPARE(plugins.count(), 0);
    QVERIFY(!dialog.hasResults());
}

// A run that reached the engine, however it ended: the host told of the job twice, matrix
// first, no box, the layers counted, the view button green and the run's time shown.
inline void verifyRunEnded(QWidget& dialog, const wctest::PluginSpy& spy,
                           const wctest::MessageBoxAnswerer& boxes, const QString& status) {
    QCOMPARE(spy.codes(), QList<int>({20002401, 20002400}));
    const char* const routes[][2] = {{"Matrix.dll", "Matrix"}, {"Graphic_JobList.dll", "Graphic"}};
    for (int i = 0; i < 2; ++i) {
        const wctest::SeenMessage& message = spy.messages().at(i);
        QCOMPARE(message.sender, QStringLiteral("CAM_PNData_View.dll"));
        QCOMPARE(message.receiver, QString::fromLatin1(routes[i][0]));
        QCOMPARE(message.values.value("DstType").toString(), QString::fromLatin1(routes[i][1]));
        QCOMPARE(message.values.value("Job").toString(), wctest::SampleJobScene::kJob);
    }
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(labelText(dialog, "label_Status"), status);
    QCOMPARE(viewStyle(dialog), kGreen);
    QVERIFY(labelText(dialog, "label_Time").contains(" - "));
}

}  // namespace dfmtest

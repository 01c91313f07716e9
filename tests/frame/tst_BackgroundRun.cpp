#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>

#include "DataRows.h"
#include "LogCapture.h"
#include "ZeProgressDialog.h"
#include "frame/BackgroundRun.h"
#include "frame/ExceptionGuard.h"

using namespace std::chrono_literals;
using Block = Korvo::COMMON::progress_value<void>;
using Clock = std::chrono::steady_clock;
using wc::BackgroundRun;
using wc::BackgroundRunOptions;
using wc::RunEnd;
using wc::StopBehaviour;

Q_DECLARE_METATYPE(wc::StopBehaviour)

namespace {

using wctest::row;

// Counts how often the GUI side writes the stop flag.
struct CountingBlock : Block {
    std::atomic<int> stop_writes{0};
    void request_stop() {
        ++stop_writes;
        Block::request_stop();
    }
};

// Sleeps in small steps for `limit` or until a stop request.
void workUntil(Block& block, Clock::duration limit) {
    const Clock::time_point until = Clock::now() + limit;
    while (Clock::now() < until && !block.is_stop_requested()) {
        std::this_thread::sleep_for(2ms);
    }
}

int openProgressWindows() {
    int count = 0;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        count += qobject_cast<ZeProgressDialog*>(widget) != nullptr ? 1 : 0;
    }
    return count;
}

}  // namespace

class tst_BackgroundRun : public QObject {
    Q_OBJECT

private slots:
    void cleanup() {
        QVERIFY(BackgroundRun::waitForDetachedWorkers(10000));
        QCOMPARE(BackgroundRun::detachedWorkers(), 0);
        QCOMPARE(openProgressWindows(), 0);
    }

    void windowShape_data() {
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("shown_label");
        QTest::addColumn<QString>("shown_title");
        row("default texts", QString(), QString(), "Processing", "Please wait");
        row("swapped by the caller", "Please wait", "Processing", "Please wait", "Processing");
    }
    void windowShape() {
        QFETCH(QString, label);
        QFETCH(QString, title);
        QFETCH(QString, shown_label);
        QFETCH(QString, shown_title);

        QWidget owner;
        BackgroundRun* current = nullptr;
        int checked = 0;
        auto release = std::make_shared<std::atomic<bool>>(false);
        // Qt completes the requested flags; compare with what it makes of the same request.
        QWidget reference;
        reference.setWindowFlags(Qt::Dialog | Qt::WindowTitleHint);
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();

        BackgroundRunOptions options;
        options.parent = &owner;
        options.label = label;
        options.title = title;
        options.on_poll = [&](double value) {
            ZeProgressDialog* window = current->progressWindow();
            if (*release || window == nullptr) {
                return;
            }
            *release = true;
            QCOMPARE(window->size(), QSize(250, 60));
            QCOMPARE(window->pos(), QPoint(area.x() + area.width() - 250, 0));
            QCOMPARE(window->windowFlags(), reference.windowFlags());
            QCOMPARE(window->windowModality(), Qt::ApplicationModal);
            QVERIFY(window->findChild<QPushButton*>() == nullptr);
            QVERIFY(window->isVisible());
            QCOMPARE(window->labelText(), shown_label);
            QCOMPARE(window->windowTitle(), shown_title);
            QCOMPARE(window->minimum(), 0);  // a busy indicator, not a bar
            QCOMPARE(window->maximum(), 0);
            QCOMPARE(window->parentWidget(), &owner);
            QCOMPARE(value, 42.5);
            ++checked;
        };
        BackgroundRun run(options);
        current = &run;
        const wc::RunOutcome outcome = run.step([release](Block& block) {
            block.set_value(42.5);
            const Clock::time_point until = Clock::now() + 10s;
            while (!*release && Clock::now() < until) {
                std::this_thread::sleep_for(1ms);
            }
        });
        QVERIFY(outcome.finished());
        QCOMPARE(checked, 1);
        run.finish();
        QVERIFY(run.progressWindow() == nullptr);
    }

    void runWithoutStop_data() {
        QTest::addColumn<StopBehaviour>("behaviour");
        QTest::addColumn<int>("poll_ms");
        QTest::addColumn<bool>("use_once");
        QTest::addColumn<int>("work_ms");
        const auto leave = StopBehaviour::LeaveAtOnce;
        const auto wait = StopBehaviour::WaitForWorker;
        row("quick, leave at once, once", leave, 20, true, 0);
        row("quick, leave at once, scoped", leave, 20, false, 0);
        row("quick, wait for worker, once", wait, 200, true, 0);
        row("quick, wait for worker, scoped", wait, 200, false, 0);
        row("450 ms, 20 ms polling", leave, 20, true, 450);
        row("450 ms, 200 ms polling", wait, 200, false, 450);
    }
    void runWithoutStop() {
        QFETCH(StopBehaviour, behaviour);
        QFETCH(int, poll_ms);
        QFETCH(bool, use_once);
        QFETCH(int, work_ms);

        BackgroundRunOptions options;
        options.stop = behaviour;
        options.poll_ms = poll_ms;
        int polls = 0;
        options.on_poll = [&polls](double) { ++polls; };
        auto ran = std::make_shared<std::atomic<bool>>(false);
        auto work = [ran, work_ms](Block&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(work_ms));
            *ran = true;
        };
        int ticks = 0;
        QTimer ticker;
        ticker.setInterval(5);
        connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
        ticker.start();

        QElapsedTimer timer;
        timer.start();
        wc::RunOutcome outcome;
        if (use_once) {
            outcome = BackgroundRun::once(options, std::make_shared<Block>(), work);
        } else {
            BackgroundRun run(options);
            outcome = run.step(work);
            QVERIFY(run.progressWindow() != nullptr);
        }
        const qint64 elapsed = timer.elapsed();
        QVERIFY(*ran);
        QVERIFY(outcome.finished() && outcome.worker_returned && !outcome.worker_threw);
        QCOMPARE(outcome.polls, polls);
        QCOMPARE(openProgressWindows(), 0);
        if (work_ms == 0) {
            // Not a single poll period was slept through.
            QCOMPARE(polls, 0);
            QVERIFY2(elapsed < 1000, qPrintable(QString::number(elapsed)));
        } else {
            // A GUI thread that slept whole poll periods would see a handful of ticks at most.
            QVERIFY2(ticks >= 20, qPrintable(QString::number(ticks)));
            QVERIFY(polls >= 1 && polls <= work_ms / poll_ms + 1);
        }
    }

    void stopSetsFlagOnce_data() {
        QTest::addColumn<StopBehaviour>("behaviour");
        QTest::addColumn<int>("trigger");
        const char* triggers[] = {"requestStop", "Escape", "close", "owner destroyed"};
        for (int trigger = 0; trigger < 4; ++trigger) {
            QTest::addRow("leave at once, %s", triggers[trigger])
                << StopBehaviour::LeaveAtOnce << trigger;
            QTest::addRow("wait for worker, %s", triggers[trigger])
                << StopBehaviour::WaitForWorker << trigger;
        }
    }
    void stopSetsFlagOnce() {
        QFETCH(StopBehaviour, behaviour);
        QFETCH(int, trigger);

        auto owner = std::make_unique<QWidget>();
        owner->show();
        auto block = std::make_shared<CountingBlock>();
        auto saw_stop = std::make_shared<std::atomic<bool>>(false);
        auto done = std::make_shared<std::atomic<bool>>(false);
        int stop_calls = 0;
        bool stopped = false;
        int polls_after_stop = 0;
        BackgroundRunOptions options;
        options.stop = behaviour;
        options.parent = owner.get();
        options.on_stop_requested = [&] {
            ++stop_calls;
            stopped = true;
        };
        options.on_poll = [&](double) { polls_after_stop += stopped ? 1 : 0; };
        BackgroundRun run(options);
        QTimer::singleShot(60, [&] {
            ZeProgressDialog* window = run.progressWindow();
            QVERIFY(window != nullptr);
            if (trigger == 0) {
                window->requestStop();
            } else if (trigger == 1) {
                QTest::keyClick(window, Qt::Key_Escape);
            } else if (trigger == 2) {
                window->close();
            } else {
                owner.reset();
                stopped = true;
            }
        });

        // The worker lingers after the stop, as an engine winding down, still using its block.
        const wc::RunOutcome outcome = run.step(block, [saw_stop, done](CountingBlock& shared) {
            workUntil(shared, 10s);
            *saw_stop = shared.is_stop_requested();
            for (int i = 0; i < 100; ++i) {
                shared.set_value(i);
                std::this_thread::sleep_for(4ms);
            }
            *done = true;
        });
        const bool done_on_return = *done;
        const bool owner_gone = trigger == 3;
        const bool waits = behaviour == StopBehaviour::WaitForWorker && !owner_gone;
        QCOMPARE(outcome.end, RunEnd::Stopped);
        QCOMPARE(outcome.owner_destroyed, owner_gone);
        QCOMPARE(block->stop_writes.load(), 1);
        // Nothing calls back into a dialog that is gone.
        QCOMPARE(stop_calls, owner_gone ? 0 : 1);
        QVERIFY(run.stopRequested());
        QCOMPARE(outcome.worker_returned, waits);
        QCOMPARE(done_on_return, waits);
        if (waits) {
            QVERIFY2(polls_after_stop >= 3, qPrintable(QString::number(polls_after_stop)));
        } else {
            QCOMPARE(polls_after_stop, 0);
            QVERIFY(BackgroundRun::detachedWorkers() >= 1);
        }
        QCOMPARE(run.progressWindow() == nullptr, owner_gone);

        // Once stopped, the run starts nothing more.
        auto second = std::make_shared<CountingBlock>();
        auto ran = std::make_shared<std::atomic<bool>>(false);
        QCOMPARE(run.step(second, [ran](CountingBlock&) { *ran = true; }).end, RunEnd::Stopped);
        QVERIFY(!*ran);
        QCOMPARE(second->stop_writes.load(), 0);
        QCOMPARE(stop_calls, owner_gone ? 0 : 1);
        QCOMPARE(block->stop_writes.load(), 1);

        block.reset();  // the worker holds its own reference
        QVERIFY(BackgroundRun::waitForDetachedWorkers(10000));
        QVERIFY(*saw_stop && *done);
    }

    void workerExceptionEndsAsFinished_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("source_file");
        row("standard exception", 0, "engine failed", QString());
        row("QString", 1, QString::fromUtf8("层不存在"), QString());
        row("anything else", 2, "Unknown exception", QString());
        row("at the dialog's place", 0, "engine failed", "Widget_SignalLayerChecks.cpp");
    }
    void workerExceptionEndsAsFinished() {
        QFETCH(int, kind);
        QFETCH(QString, expected);
        QFETCH(QString, source_file);

        wctest::LogCapture log;
        const QByteArray file = source_file.toUtf8();
        BackgroundRunOptions options;
        if (!source_file.isEmpty()) {
            options.source_file = file.constData();
            options.source_line = 321;
        }
        const std::string text = expected.toStdString();
        const wc::RunOutcome outcome =
            BackgroundRun::once(options, std::make_shared<Block>(), [kind, text](Block&) {
                std::this_thread::sleep_for(30ms);
                if (kind == 0) {
                    throw std::runtime_error(text);
                }
                if (kind == 1) {
                    throw QString::fromStdString(text);
                }
                throw 42;
            });
        QVERIFY(outcome.finished() && outcome.worker_returned && outcome.worker_threw);
        QCOMPARE(outcome.error, expected);
        QVERIFY(log.contains(wc::exceptionDescriptionLine(expected)));
        // This file's own place, at whatever line, unless the dialog gives one.
        std::string place = source_file.isEmpty() ? wc::exceptionPlaceLine("BackgroundRun.cpp", 0)
                                                  : wc::exceptionPlaceLine(file.constData(), 321);
        if (source_file.isEmpty()) {
            place.pop_back();
        }
        const std::vector<std::string> errors = log.errors();
        QVERIFY(std::any_of(errors.begin(), errors.end(), [&place](const std::string& line) {
            return line.rfind(place, 0) == 0;
        }));
    }

    void perLayerLoop_data() {
        QTest::addColumn<StopBehaviour>("behaviour");
        QTest::addColumn<int>("stop_layer");
        QTest::addColumn<bool>("between_layers");
        QTest::addColumn<int>("expected_started");
        row("no stop", StopBehaviour::LeaveAtOnce, -1, false, 5);
        row("stop in the first layer", StopBehaviour::LeaveAtOnce, 0, false, 1);
        row("stop in the third layer", StopBehaviour::LeaveAtOnce, 2, false, 3);
        row("stop after the second layer", StopBehaviour::LeaveAtOnce, 1, true, 2);
        row("waiting, stop in the third layer", StopBehaviour::WaitForWorker, 2, false, 3);
    }
    void perLayerLoop() {
        QFETCH(StopBehaviour, behaviour);
        QFETCH(int, stop_layer);
        QFETCH(bool, between_layers);
        QFETCH(int, expected_started);

        auto started = std::make_shared<std::atomic<int>>(0);
        BackgroundRun* current = nullptr;
        int layer = -1;
        std::set<ZeProgressDialog*> windows;
        BackgroundRunOptions options;
        options.stop = behaviour;
        options.on_poll = [&](double) {
            windows.insert(current->progressWindow());
            if (!between_layers && layer == stop_layer) {
                current->progressWindow()->requestStop();
            }
        };
        BackgroundRun run(options);
        current = &run;
        int stopped_steps = 0;
        for (layer = 0; layer < 5 && !run.stopRequested(); ++layer) {
            const wc::RunOutcome outcome = run.step([started](Block& block) {
                ++*started;
                workUntil(block, 150ms);
            });
            stopped_steps += outcome.end == RunEnd::Stopped ? 1 : 0;
            if (between_layers && layer == stop_layer) {
                run.progressWindow()->requestStop();
            }
        }
        QVERIFY(BackgroundRun::waitForDetachedWorkers(10000));
        QCOMPARE(started->load(), expected_started);
        QCOMPARE(run.stopRequested(), stop_layer >= 0);
        QCOMPARE(stopped_steps, stop_layer >= 0 && !between_layers ? 1 : 0);
        // One window for the whole loop.
        QCOMPARE(windows.size(), std::size_t(1));
        QVERIFY(*windows.begin() != nullptr);
        run.finish();
        QVERIFY(run.progressWindow() == nullptr);
    }

    // A worker that never honours its stop flag delays the host's exit by the exit wait only.
    void exitWaitIsBounded() {
        QProcess child;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("WC_STUCK_WORKER_CHILD", "1");
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(), QStringList());
        const bool ended = child.waitForFinished(60000);
        if (!ended) {
            child.kill();
            child.waitForFinished();
        }
        QVERIFY2(ended, "the process waited for its stuck worker");
        QCOMPARE(child.exitStatus(), QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0);
        QVERIFY(child.readAllStandardError().contains("did not end within 200 ms"));
    }
};

namespace {

// The child process of exitWaitIsBounded: stops a run whose worker ignores the stop flag, so the
// worker is left running, and returns from main.
int leaveStuckWorkerAndExit(int argc, char** argv) {
    QApplication app(argc, argv);
    BackgroundRun::setExitWait(200);
    auto* owner = new QWidget;
    BackgroundRunOptions options;
    options.parent = owner;
    QTimer::singleShot(50, [owner] { delete owner; });
    const wc::RunOutcome outcome = BackgroundRun::once(
        options, std::make_shared<Block>(), [](Block&) { std::this_thread::sleep_for(1h); });
    return outcome.worker_returned ? 1 : 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsSet("WC_STUCK_WORKER_CHILD")) {
        return leaveStuckWorkerAndExit(argc, argv);
    }
    QApplication app(argc, argv);
    QTEST_SET_MAIN_SOURCE_PATH
    tst_BackgroundRun test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_BackgroundRun.moc"

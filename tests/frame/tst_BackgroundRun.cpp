#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QtTest>
#include <atomic>
#include <chrono>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>

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

// Counts how often the GUI side writes the stop flag.
struct CountingBlock : Block {
    std::atomic<int> stop_writes{0};
    void request_stop() {
        ++stop_writes;
        Block::request_stop();
    }
};

struct WorkerTrace {
    std::atomic<bool> saw_stop{false};
    std::atomic<bool> done{false};
};

// Works until asked to stop (at most `limit`), then lingers before returning, as an engine that
// needs time to wind down.
auto stoppableWork(std::shared_ptr<WorkerTrace> trace, std::chrono::milliseconds linger,
                   std::chrono::milliseconds limit) {
    return [trace, linger, limit](auto& block) {
        const Clock::time_point until = Clock::now() + limit;
        while (Clock::now() < until && !block.is_stop_requested()) {
            std::this_thread::sleep_for(2ms);
        }
        trace->saw_stop = block.is_stop_requested();
        std::this_thread::sleep_for(linger);
        trace->done = true;
    };
}

enum Trigger { ByRequest, ByEscape, ByClose };

void triggerStop(ZeProgressDialog* window, int how) {
    if (window == nullptr) {
        return;
    }
    switch (how) {
        case ByRequest:
            window->requestStop();
            break;
        case ByEscape:
            QTest::keyClick(window, Qt::Key_Escape);
            break;
        default:
            window->close();
            break;
    }
}

int openProgressWindows() {
    int count = 0;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<ZeProgressDialog*>(widget) != nullptr) {
            ++count;
        }
    }
    return count;
}

}  // namespace

class tst_BackgroundRun : public QObject {
    Q_OBJECT

private slots:
    void cleanup();
    void windowShape_data();
    void windowShape();
    void quickRunClosesWithoutWaiting_data();
    void quickRunClosesWithoutWaiting();
    void eventsKeepFlowing_data();
    void eventsKeepFlowing();
    void stopSetsFlagOnce_data();
    void stopSetsFlagOnce();
    void workerExceptionEndsAsFinished_data();
    void workerExceptionEndsAsFinished();
    void perLayerLoop_data();
    void perLayerLoop();
    void ownerDestroyedDuringRun_data();
    void ownerDestroyedDuringRun();
};

void tst_BackgroundRun::cleanup() {
    QVERIFY(BackgroundRun::waitForDetachedWorkers(10000));
    QCOMPARE(BackgroundRun::detachedWorkers(), 0);
    QCOMPARE(openProgressWindows(), 0);
}

void tst_BackgroundRun::windowShape_data() {
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("expected_label");
    QTest::addColumn<QString>("expected_title");
    QTest::newRow("default texts") << QString() << QString() << "Processing"
                                   << "Please wait";
    QTest::newRow("texts swapped by the caller") << "Please wait"
                                                 << "Processing"
                                                 << "Please wait"
                                                 << "Processing";
}

void tst_BackgroundRun::windowShape() {
    QFETCH(QString, label);
    QFETCH(QString, title);
    QFETCH(QString, expected_label);
    QFETCH(QString, expected_title);

    QWidget owner;
    BackgroundRun* current = nullptr;
    bool seen = false;
    QSize size;
    QPoint position;
    Qt::WindowFlags flags;
    Qt::WindowModality modality = Qt::NonModal;
    bool has_button = true;
    bool visible = false;
    QString shown_label;
    QString shown_title;
    int minimum = -1;
    int maximum = -1;
    double value = -1.0;
    QWidget* window_parent = nullptr;
    auto release = std::make_shared<std::atomic<bool>>(false);

    BackgroundRunOptions options;
    options.parent = &owner;
    options.label = label;
    options.title = title;
    options.on_poll = [&](double polled) {
        ZeProgressDialog* window = current->progressWindow();
        if (seen || window == nullptr) {
            return;
        }
        seen = true;
        size = window->size();
        position = window->pos();
        flags = window->windowFlags();
        modality = window->windowModality();
        has_button = window->findChild<QPushButton*>() != nullptr;
        visible = window->isVisible();
        shown_label = window->labelText();
        shown_title = window->windowTitle();
        minimum = window->minimum();
        maximum = window->maximum();
        window_parent = window->parentWidget();
        value = polled;
        *release = true;
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
    QVERIFY(seen);
    QCOMPARE(size, QSize(250, 60));
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    QCOMPARE(position, QPoint(area.x() + area.width() - 250, 0));
    // Qt completes the requested flags; compare with what it makes of the same request.
    QWidget reference;
    reference.setWindowFlags(Qt::Dialog | Qt::WindowTitleHint);
    QCOMPARE(flags, reference.windowFlags());
    QCOMPARE(flags & Qt::WindowType_Mask, Qt::Dialog);
    QCOMPARE(modality, Qt::ApplicationModal);
    QVERIFY(!has_button);
    QVERIFY(visible);
    QCOMPARE(shown_label, expected_label);
    QCOMPARE(shown_title, expected_title);
    QCOMPARE(minimum, 0);
    QCOMPARE(maximum, 0);
    QCOMPARE(window_parent, &owner);
    QCOMPARE(value, 42.5);
    run.finish();
    QVERIFY(run.progressWindow() == nullptr);
}

void tst_BackgroundRun::quickRunClosesWithoutWaiting_data() {
    QTest::addColumn<StopBehaviour>("behaviour");
    QTest::addColumn<int>("poll_ms");
    QTest::addColumn<bool>("use_once");
    QTest::newRow("check dialog, once") << StopBehaviour::LeaveAtOnce << 20 << true;
    QTest::newRow("check dialog, scoped run") << StopBehaviour::LeaveAtOnce << 20 << false;
    QTest::newRow("optimisation, once") << StopBehaviour::WaitForWorker << 200 << true;
    QTest::newRow("optimisation, scoped run") << StopBehaviour::WaitForWorker << 200 << false;
}

void tst_BackgroundRun::quickRunClosesWithoutWaiting() {
    QFETCH(StopBehaviour, behaviour);
    QFETCH(int, poll_ms);
    QFETCH(bool, use_once);

    BackgroundRunOptions options;
    options.stop = behaviour;
    options.poll_ms = poll_ms;
    int polls = 0;
    options.on_poll = [&polls](double) { ++polls; };
    auto ran = std::make_shared<std::atomic<bool>>(false);
    auto work = [ran](Block&) { *ran = true; };

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
    QVERIFY(outcome.finished());
    QVERIFY(outcome.worker_returned);
    QVERIFY(!outcome.worker_threw);
    // Not a single poll period was slept through.
    QCOMPARE(outcome.polls, 0);
    QCOMPARE(polls, 0);
    QCOMPARE(openProgressWindows(), 0);
    QVERIFY2(elapsed < 1000, qPrintable(QString::number(elapsed)));
}

void tst_BackgroundRun::eventsKeepFlowing_data() {
    QTest::addColumn<int>("poll_ms");
    QTest::newRow("20 ms polling") << 20;
    QTest::newRow("200 ms polling") << 200;
}

void tst_BackgroundRun::eventsKeepFlowing() {
    QFETCH(int, poll_ms);
    BackgroundRunOptions options;
    options.poll_ms = poll_ms;
    int polls = 0;
    options.on_poll = [&polls](double) { ++polls; };
    int ticks = 0;
    QTimer ticker;
    ticker.setInterval(5);
    connect(&ticker, &QTimer::timeout, [&ticks] { ++ticks; });
    ticker.start();
    const wc::RunOutcome outcome = BackgroundRun::once(
        options, std::make_shared<Block>(), [](Block&) { std::this_thread::sleep_for(450ms); });
    QVERIFY(outcome.finished());
    // A GUI thread that slept whole poll periods would see a handful of ticks at most.
    QVERIFY2(ticks >= 20, qPrintable(QString::number(ticks)));
    QVERIFY(polls >= 1);
    QVERIFY(polls <= 450 / poll_ms + 1);
}

void tst_BackgroundRun::stopSetsFlagOnce_data() {
    QTest::addColumn<StopBehaviour>("behaviour");
    QTest::addColumn<int>("trigger");
    const std::pair<const char*, StopBehaviour> behaviours[] = {
        {"leave at once", StopBehaviour::LeaveAtOnce},
        {"wait for worker", StopBehaviour::WaitForWorker}};
    const std::pair<const char*, int> triggers[] = {
        {"requestStop", ByRequest}, {"Escape", ByEscape}, {"close", ByClose}};
    for (const auto& behaviour : behaviours) {
        for (const auto& trigger : triggers) {
            QTest::addRow("%s, %s", behaviour.first, trigger.first)
                << behaviour.second << trigger.second;
        }
    }
}

void tst_BackgroundRun::stopSetsFlagOnce() {
    QFETCH(StopBehaviour, behaviour);
    QFETCH(int, trigger);

    auto block = std::make_shared<CountingBlock>();
    auto trace = std::make_shared<WorkerTrace>();
    int stop_calls = 0;
    bool stopped = false;
    int polls_after_stop = 0;
    BackgroundRunOptions options;
    options.stop = behaviour;
    options.on_stop_requested = [&] {
        ++stop_calls;
        stopped = true;
    };
    options.on_poll = [&](double) {
        if (stopped) {
            ++polls_after_stop;
        }
    };
    BackgroundRun run(options);
    QTimer::singleShot(60, [&run, trigger] { triggerStop(run.progressWindow(), trigger); });

    const wc::RunOutcome outcome = run.step(block, stoppableWork(trace, 400ms, 10s));
    const bool done_on_return = trace->done;

    QCOMPARE(outcome.end, RunEnd::Stopped);
    QCOMPARE(block->stop_writes.load(), 1);
    QCOMPARE(stop_calls, 1);
    QVERIFY(run.stopRequested());
    if (behaviour == StopBehaviour::LeaveAtOnce) {
        QVERIFY(!outcome.worker_returned);
        QVERIFY(!done_on_return);
        QCOMPARE(polls_after_stop, 0);
        QVERIFY(BackgroundRun::detachedWorkers() >= 1);
    } else {
        QVERIFY(outcome.worker_returned);
        QVERIFY(done_on_return);
        QVERIFY2(polls_after_stop >= 3, qPrintable(QString::number(polls_after_stop)));
    }
    QVERIFY(BackgroundRun::waitForDetachedWorkers(10000));
    QVERIFY(trace->saw_stop);
    QVERIFY(trace->done);
    QCOMPARE(block->stop_writes.load(), 1);

    // Once stopped, the run starts nothing more.
    auto second = std::make_shared<CountingBlock>();
    auto ran = std::make_shared<std::atomic<bool>>(false);
    const wc::RunOutcome next = run.step(second, [ran](CountingBlock&) { *ran = true; });
    QCOMPARE(next.end, RunEnd::Stopped);
    QVERIFY(!*ran);
    QCOMPARE(second->stop_writes.load(), 0);
    QCOMPARE(stop_calls, 1);
}

void tst_BackgroundRun::workerExceptionEndsAsFinished_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("source_file");
    QTest::newRow("standard exception") << 0 << "engine failed" << QString();
    QTest::newRow("std::string") << 1 << "bad layer" << QString();
    QTest::newRow("QString") << 2 << QString::fromUtf8("层不存在") << QString();
    QTest::newRow("C text") << 3 << "no job" << QString();
    QTest::newRow("anything else") << 4 << "Unknown exception" << QString();
    QTest::newRow("reported at the dialog's place") << 0 << "engine failed"
                                                    << "Widget_SignalLayerChecks.cpp";
}

void tst_BackgroundRun::workerExceptionEndsAsFinished() {
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
            switch (kind) {
                case 0:
                    throw std::runtime_error(text);
                case 1:
                    throw text;
                case 2:
                    throw QString::fromStdString(text);
                case 3:
                    throw "no job";
                default:
                    throw 42;
            }
        });

    QVERIFY(outcome.finished());
    QVERIFY(outcome.worker_returned);
    QVERIFY(outcome.worker_threw);
    QCOMPARE(outcome.error, expected);
    QVERIFY(log.contains(wc::exceptionDescriptionLine(expected)));
    if (source_file.isEmpty()) {
        std::string place = wc::exceptionPlaceLine("BackgroundRun.cpp", 0);
        place.pop_back();  // the line number
        bool found = false;
        for (const std::string& line : log.errors()) {
            found = found || line.rfind(place, 0) == 0;
        }
        QVERIFY(found);
    } else {
        QVERIFY(log.contains(wc::exceptionPlaceLine(file.constData(), 321)));
    }
}

void tst_BackgroundRun::perLayerLoop_data() {
    QTest::addColumn<StopBehaviour>("behaviour");
    QTest::addColumn<int>("stop_layer");
    QTest::addColumn<bool>("between_layers");
    QTest::addColumn<int>("expected_started");
    QTest::newRow("no stop") << StopBehaviour::LeaveAtOnce << -1 << false << 5;
    QTest::newRow("stop in the first layer") << StopBehaviour::LeaveAtOnce << 0 << false << 1;
    QTest::newRow("stop in the third layer") << StopBehaviour::LeaveAtOnce << 2 << false << 3;
    QTest::newRow("stop after the second layer") << StopBehaviour::LeaveAtOnce << 1 << true << 2;
    QTest::newRow("stop after the last layer") << StopBehaviour::LeaveAtOnce << 4 << true << 5;
    QTest::newRow("waiting, stop in the third layer")
        << StopBehaviour::WaitForWorker << 2 << false << 3;
}

void tst_BackgroundRun::perLayerLoop() {
    QFETCH(StopBehaviour, behaviour);
    QFETCH(int, stop_layer);
    QFETCH(bool, between_layers);
    QFETCH(int, expected_started);

    const int layers = 5;
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
    for (layer = 0; layer < layers; ++layer) {
        if (run.stopRequested()) {
            break;
        }
        const wc::RunOutcome outcome = run.step([started](Block& block) {
            ++*started;
            const Clock::time_point until = Clock::now() + 150ms;
            while (Clock::now() < until && !block.is_stop_requested()) {
                std::this_thread::sleep_for(2ms);
            }
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

void tst_BackgroundRun::ownerDestroyedDuringRun_data() {
    QTest::addColumn<StopBehaviour>("behaviour");
    QTest::newRow("leave at once") << StopBehaviour::LeaveAtOnce;
    QTest::newRow("wait for worker") << StopBehaviour::WaitForWorker;
}

void tst_BackgroundRun::ownerDestroyedDuringRun() {
    QFETCH(StopBehaviour, behaviour);

    auto* owner = new QWidget;
    owner->show();
    QPointer<QWidget> watch(owner);
    bool deleted = false;
    int callbacks_after_delete = 0;
    auto block = std::make_shared<CountingBlock>();
    auto trace = std::make_shared<WorkerTrace>();
    BackgroundRunOptions options;
    options.stop = behaviour;
    options.parent = owner;
    options.on_poll = [&](double) { callbacks_after_delete += deleted ? 1 : 0; };
    options.on_stop_requested = [&] { callbacks_after_delete += deleted ? 1 : 0; };
    QTimer::singleShot(60, [&] {
        delete owner;
        deleted = true;
    });
    wc::RunOutcome outcome;
    {
        BackgroundRun run(options);
        outcome = run.step(block, [trace](CountingBlock& shared) {
            // Keeps using the block after the dialog is gone.
            while (!shared.is_stop_requested()) {
                std::this_thread::sleep_for(2ms);
            }
            for (int i = 0; i < 100; ++i) {
                shared.set_value(i);
                std::this_thread::sleep_for(2ms);
            }
            trace->done = true;
        });
        QVERIFY(run.stopRequested());
        QVERIFY(run.progressWindow() == nullptr);
    }
    QVERIFY(watch.isNull());
    QCOMPARE(outcome.end, RunEnd::Stopped);
    QVERIFY(outcome.owner_destroyed);
    QVERIFY(!outcome.worker_returned);
    QCOMPARE(callbacks_after_delete, 0);
    QCOMPARE(block->stop_writes.load(), 1);
    block.reset();  // the worker holds its own reference
    QVERIFY(BackgroundRun::waitForDetachedWorkers(10000));
    QVERIFY(trace->done);
}

QTEST_MAIN(tst_BackgroundRun)
#include "tst_BackgroundRun.moc"

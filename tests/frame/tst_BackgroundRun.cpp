// Background work behind a progress window: the run with its window, stop and exceptions, and
// the progress workers (folder copy, export, import, plain function).

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>

#include "DataColumns.h"
#include "DataRows.h"
#include "LogCapture.h"
#include "ReferenceEngine.h"
#include "TemporaryWorkingDirectory.h"
#include "ZeProgressDialog.h"
#include "frame/BackgroundRun.h"
#include "frame/CopyFile_Progress.h"
#include "frame/ExceptionGuard.h"
#include "frame/Export_Progress.h"
#include "frame/Import_Progress.h"
#include "frame/Progress_Common.h"

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

// A folder tree written as "path=content" entries; a path ending in "/" is an empty folder.
void writeTree(const QString& root, const QStringList& entries) {
    for (const QString& entry : entries) {
        const QString path = root + QLatin1Char('/') + entry.section(QLatin1Char('='), 0, 0);
        QVERIFY(path.endsWith(QLatin1Char('/'))
                    ? QDir().mkpath(path)
                    : wctest::writeFile(path, entry.section(QLatin1Char('='), 1).toUtf8()));
    }
}

// The files below `root` as sorted "path=content" entries.
QStringList readTree(const QString& root) {
    QStringList entries;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        const QString content = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                                               : QStringLiteral("<unreadable>");
        entries << QDir(root).relativeFilePath(file.fileName()) + QLatin1Char('=') + content;
    }
    entries.sort();
    return entries;
}

template <typename Worker>
bool waitUntilFinished(Worker& worker) {
    QElapsedTimer timer;
    timer.start();
    while (!worker.isFinish() && timer.elapsed() < 10000) {
        std::this_thread::sleep_for(1ms);
    }
    return worker.isFinish();
}

// Starts a copy, export or import worker and checks how it ends.
template <typename Worker>
void runToEnd(Worker& worker, bool ok, double value) {
    QVERIFY(!worker.isFinish());
    worker.do_process();
    QVERIFY(waitUntilFinished(worker));
    QCOMPARE(worker.succeeded(), ok);
    QCOMPARE(worker.get_value(), value);
}

std::atomic<bool> g_release{false};
std::atomic<bool> g_worker_done{false};

void waitForRelease() {
    while (!g_release) {
        std::this_thread::sleep_for(1ms);
    }
}

void workerSettingValue(Block* block) {
    waitForRelease();
    block->set_value(75.0);
    block->set_status("Copying layers");
    g_worker_done = true;
}

void workerThrowing(Block*) {
    waitForRelease();
    throw std::runtime_error("disk full");
}

void workerIdle(Block*) {
    waitForRelease();
}

}  // namespace

class tst_BackgroundRun : public QObject {
    Q_OBJECT

private slots:
    void cleanup() {
        wcref::resetEngine();
        g_release = false;
        g_worker_done = false;
        QVERIFY(BackgroundRun::waitForDetachedWorkers(10000));
        QCOMPARE(BackgroundRun::detachedWorkers(), 0);
        QCOMPARE(openProgressWindows(), 0);
    }

    // A run that ends without a stop, at once or scoped, keeps the GUI thread turning; while it
    // works its window shows in the host's shape with the caller's texts or the default ones.
    void runWithoutStop_data() {
        wctest::columns<StopBehaviour, int, bool, int, QString, QString, QString, QString>(
            "behaviour", "poll_ms", "use_once", "work_ms", "label", "title", "shown_label",
            "shown_title");
        const auto leave = StopBehaviour::LeaveAtOnce;
        const auto wait = StopBehaviour::WaitForWorker;
        const QString none;
        row("quick, leave at once, once", leave, 20, true, 0, none, none, none, none);
        row("quick, wait for worker, scoped", wait, 200, false, 0, none, none, none, none);
        row("450 ms, 20 ms polling, default texts", leave, 20, true, 450, none, none, "Processing",
            "Please wait");
        row("450 ms, 200 ms polling, texts swapped by the caller", wait, 200, false, 450,
            "Please wait", "Processing", "Please wait", "Processing");
    }
    void runWithoutStop() {
        QFETCH(StopBehaviour, behaviour);
        QFETCH(int, poll_ms);
        QFETCH(bool, use_once);
        QFETCH(int, work_ms);
        QFETCH(QString, label);
        QFETCH(QString, title);
        QFETCH(QString, shown_label);
        QFETCH(QString, shown_title);

        QWidget owner;
        // Qt completes the requested flags; compare with what it makes of the same request.
        QWidget reference;
        reference.setWindowFlags(Qt::Dialog | Qt::WindowTitleHint);
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        BackgroundRunOptions options;
        options.parent = &owner;
        options.label = label;
        options.title = title;
        options.stop = behaviour;
        options.poll_ms = poll_ms;
        int polls = 0;
        int checked = 0;
        options.on_poll = [&](double value) {
            ++polls;
            ZeProgressDialog* window = owner.findChild<ZeProgressDialog*>();
            if (checked > 0 || value != 42.5 || window == nullptr) {
                return;  // checked once, as soon as the worker has reported its value
            }
            ++checked;
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
        };
        auto ran = std::make_shared<std::atomic<bool>>(false);
        auto work = [ran, work_ms](Block& block) {
            block.set_value(42.5);
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
            run.finish();
            QVERIFY(run.progressWindow() == nullptr);
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
            QCOMPARE(checked, 1);
        }
    }

    void stopSetsFlagOnce_data() {
        wctest::columns<StopBehaviour, int>("behaviour", "trigger");
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

    // The text of each kind of exception comes from runCatching, which the guard's test proves
    // for every kind; here the run's own ending and the place it logs.
    void workerExceptionEndsAsFinished_data() {
        QTest::addColumn<QString>("source_file");
        row("at the run's place", QString());
        row("at the dialog's place", "Widget_SignalLayerChecks.cpp");
    }
    void workerExceptionEndsAsFinished() {
        QFETCH(QString, source_file);

        wctest::LogCapture log;
        const QByteArray file = source_file.toUtf8();
        BackgroundRunOptions options;
        if (!source_file.isEmpty()) {
            options.source_file = file.constData();
            options.source_line = 321;
        }
        const wc::RunOutcome outcome =
            BackgroundRun::once(options, std::make_shared<Block>(), [](Block&) {
                std::this_thread::sleep_for(30ms);
                throw QString::fromUtf8("层不存在");
            });
        QVERIFY(outcome.finished() && outcome.worker_returned && outcome.worker_threw);
        QCOMPARE(outcome.error, QString::fromUtf8("层不存在"));
        QVERIFY(log.contains(wc::exceptionDescriptionLine(QString::fromUtf8("层不存在"))));
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
        wctest::columns<StopBehaviour, int, bool, int>("behaviour", "stop_layer", "between_layers",
                                                       "expected_started");
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

    void copyDirFile_data() {
        wctest::columns<QStringList, QStringList, QString, QString, bool, bool, QStringList>(
            "source", "destination", "from", "to", "overwrite", "ok", "expected");

        const QStringList nested = {"a.txt=1", "sub/b.txt=2", "sub/deep/c.txt=3", ".hidden=h"};
        const QStringList fresh = {"a.txt=new", "sub/b.txt=2"};
        const QStringList existing = {"a.txt=old", "sub/z.txt=9"};
        const QStringList none;
        row("nested tree into a new folder", nested, none, "src", "out/new", false, true,
            QStringList{".hidden=h", "a.txt=1", "sub/b.txt=2", "sub/deep/c.txt=3"});
        row("existing files kept without overwrite", fresh, existing, "src", "dst", false, true,
            QStringList{"a.txt=old", "sub/b.txt=2", "sub/z.txt=9"});
        row("existing files replaced with overwrite", fresh, existing, "src", "dst", true, true,
            QStringList{"a.txt=new", "sub/b.txt=2", "sub/z.txt=9"});
        row("empty source folder", QStringList{"empty/"}, none, "src/empty", "dst", false, true,
            none);
        row("missing source", none, none, "nowhere", "dst", false, false, none);
        row("source is a file", QStringList{"a.txt=1"}, none, "src/a.txt", "dst", false, false,
            none);
        row("file in the way of a subfolder", QStringList{"a.txt=1", "sub/b.txt=2"},
            QStringList{"sub=blocking"}, "src", "dst", true, false,
            QStringList{"a.txt=1", "sub=blocking"});
    }
    void copyDirFile() {
        QFETCH(QStringList, source);
        QFETCH(QStringList, destination);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(bool, overwrite);
        QFETCH(bool, ok);
        QFETCH(QStringList, expected);

        QTemporaryDir root;
        QVERIFY(root.isValid());
        writeTree(root.filePath("src"), source);
        writeTree(root.filePath("dst"), destination);
        const QStringList source_before = readTree(root.filePath("src"));
        wctest::LogCapture log;
        QCOMPARE(CopyFile_Progress::CopyDirFile(root.filePath(from), root.filePath(to), overwrite),
                 ok);
        QCOMPARE(readTree(root.filePath(to)), expected);
        QCOMPARE(readTree(root.filePath("src")), source_before);
        QCOMPARE(log.errors().empty(), ok);
    }

    void progressCommon_data() {
        wctest::columns<int, double, QString>("worker", "value", "status");
        row("reports progress", 0, 75.0, "Copying layers");
        row("throws", 1, 0.0, "Start calculating, please wait!");
        row("reports nothing", 2, 0.0, "Start calculating, please wait!");
    }
    void progressCommon() {
        QFETCH(int, worker);
        QFETCH(double, value);
        QFETCH(QString, status);

        const Progress_Common::Worker workers[] = {&workerSettingValue, &workerThrowing,
                                                   &workerIdle};
        wctest::LogCapture log;
        Progress_Common progress;
        progress.do_process();  // no worker yet: nothing starts
        QVERIFY(!progress.isFinish());
        progress.set_func(workers[worker]);
        QCOMPARE(progress.get_status(), std::string("Start calculating, please wait!"));
        progress.do_process();
        QVERIFY(!progress.isFinish());  // returned while the worker is held back
        g_release = true;
        QVERIFY(waitUntilFinished(progress));
        QCOMPARE(progress.get_value(), value);
        QCOMPARE(QString::fromStdString(progress.get_status()), status);
        QCOMPARE(log.contains(wc::exceptionDescriptionLine(QStringLiteral("disk full"))),
                 worker == 1);
    }

    void destructorWaitsForWorker() {
        {
            Progress_Common progress;
            progress.set_func(&workerSettingValue);
            progress.do_process();
            std::thread([] {
                std::this_thread::sleep_for(100ms);
                g_release = true;
            }).detach();
            QVERIFY(!g_worker_done);
        }
        QVERIFY(g_worker_done);
    }

    // The host's copy, export and import workers, with what they leave in "out".
    // copy: "source>destination" pairs below the temporary folder; code 1 stops it first.
    // export: what the engine must be asked; code 1 it succeeds, 0 it fails, 2 it throws.
    // import: program ("@" places it, a script, in the temporary folder) and arguments ("%U"
    // stands for the unpack folder, which already holds a job); code is the exit code.
    void progressWorkers_data() {
        wctest::columns<QString, QStringList, long, bool, double, QStringList>(
            "worker", "input", "code", "ok", "value", "expected");
        const auto exported = [](Korvo::API::export_type type) {
            return QStringList{"job1", "pcb", "top", QString::number(int(type)), "/tmp/out.gbr"};
        };
        const QStringList none;
        const QStringList unpacked{"matrix=m", "steps/pcb/attr=a"};
        row("copy two folders", "copy", QStringList{"one>out/a", "two>out/b/c"}, 0L, true, 100.0,
            QStringList{"a/1.txt=1", "a/sub/2.txt=2", "b/c/3.txt=3"});
        row("copy, a missing source does not stop the rest", "copy",
            QStringList{"missing>out/m", "two>out/b"}, 0L, false, 100.0, QStringList{"b/3.txt=3"});
        row("copy into its own subfolder", "copy", QStringList{"one>one/copy", "two>out/b"}, 0L,
            false, 100.0, QStringList{"b/3.txt=3"});
        row("copy stopped before it starts", "copy", QStringList{"one>out/a", "two>out/b"}, 1L,
            false, 0.0, none);
        row("export, engine succeeds", "export", exported(Korvo::API::export_gerber), 1L, true,
            100.0, none);
        row("export, engine fails", "export", exported(Korvo::API::export_drill), 0L, false, 100.0,
            none);
        row("export, engine throws", "export", exported(Korvo::API::export_dxf), 2L, false, 100.0,
            none);
        row("import unpacked by a program", "import",
            QStringList{"sh", "-c 'mkdir -p \"%U/steps\" && printf x > \"%U/steps/pcb.txt\"'"}, 0L,
            true, 100.0, QStringList{"matrix=m", "steps/pcb.txt=x", "steps/pcb/attr=a"});
        row("import, failing program copies nothing", "import",
            QStringList{"sh", "-c 'printf x > \"%U/half.txt\"; exit 4'"}, 4L, false, 0.0, none);
        row("import, exit code through the shell", "import", QStringList{"exit", "3"}, 3L, false,
            0.0, none);
        row("import, missing program", "import", QStringList{"/nonexistent/program", ""}, 127L,
            false, 0.0, none);
        row("import, blank and quote in the program path", "import",
            QStringList{"@my tool's.sh", "5"}, 5L, false, 0.0, none);
        row("import, no program, folder already unpacked", "import", QStringList{"", ""}, 0L, true,
            100.0, unpacked);
    }
    void progressWorkers() {
        QFETCH(QString, worker);
        QFETCH(QStringList, input);
        QFETCH(long, code);
        QFETCH(bool, ok);
        QFETCH(double, value);
        QFETCH(QStringList, expected);

        QTemporaryDir root;
        QVERIFY(root.isValid());
        writeTree(root.filePath("one"), {"1.txt=1", "sub/2.txt=2"});
        writeTree(root.filePath("two"), {"3.txt=3"});
        wctest::LogCapture log;
        if (worker == "copy") {
            std::vector<CopyFile_Progress::FolderPair> folders;
            for (const QString& pair : input) {
                folders.emplace_back(root.filePath(pair.section(QLatin1Char('>'), 0, 0)),
                                     root.filePath(pair.section(QLatin1Char('>'), 1)));
            }
            CopyFile_Progress copy(folders, false);
            if (code == 1) {
                copy.block().request_stop();
            }
            runToEnd(copy, ok, value);
            QCOMPARE(readTree(root.filePath("one")), (QStringList{"1.txt=1", "sub/2.txt=2"}));
        } else if (worker == "export") {
            auto seen = std::make_shared<QStringList>();
            auto seen_block = std::make_shared<const void*>(nullptr);
            wcref::engineHooks().layer_export =
                [seen, seen_block, code](const std::string& job, const std::string& step,
                                         const std::string& layer, Korvo::API::export_type kind,
                                         const std::string& path, Block* block) {
                    *seen = QStringList{QString::fromStdString(job), QString::fromStdString(step),
                                        QString::fromStdString(layer), QString::number(int(kind)),
                                        QString::fromStdString(path)};
                    *seen_block = block;
                    block->set_value(100.0);
                    if (code == 2) {
                        throw std::runtime_error("writer crashed");
                    }
                    return code == 1;
                };
            Export_Progress exporter(
                input[0].toStdString(), input[1].toStdString(), input[2].toStdString(),
                Korvo::API::export_type(input[3].toInt()), input[4].toStdString());
            runToEnd(exporter, ok, value);
            QCOMPARE(*seen, input);
            QCOMPARE(*seen_block, static_cast<const void*>(&exporter.block()));
            QCOMPARE(log.contains(wc::exceptionDescriptionLine(QStringLiteral("writer crashed"))),
                     code == 2);
        } else {
            const QString unpacked = root.filePath("unpack/job1");
            writeTree(unpacked, {"matrix=m", "steps/pcb/attr=a"});
            QString program = input[0];
            const QString arguments = QString(input[1]).replace(QStringLiteral("%U"), unpacked);
            if (program.startsWith(QLatin1Char('@'))) {
                program = root.filePath(program.mid(1));
                QVERIFY(wctest::writeFile(program, "#!/bin/sh\nexit \"$1\"\n"));
                QVERIFY(QFile::setPermissions(
                    program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
            }
            if (!program.isEmpty()) {
                QCOMPARE(Import_Progress::mysystem(program, arguments), code);
            }
            Import_Progress import(program, arguments, unpacked, root.filePath("out"), false);
            runToEnd(import, ok, value);
            QCOMPARE(import.exitCode(), code);
        }
        QCOMPARE(readTree(root.filePath("out")), expected);
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

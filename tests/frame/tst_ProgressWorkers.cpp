#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "DataRows.h"
#include "LogCapture.h"
#include "ReferenceEngine.h"
#include "frame/CopyFile_Progress.h"
#include "frame/ExceptionGuard.h"
#include "frame/Export_Progress.h"
#include "frame/Import_Progress.h"
#include "frame/Progress_Common.h"

using namespace std::chrono_literals;
using Block = Korvo::COMMON::progress_value<void>;

namespace {

using wctest::row;

// A folder tree written as "path=content" entries; a path ending in "/" is an empty folder.
void writeTree(const QString& root, const QStringList& entries) {
    for (const QString& entry : entries) {
        const QString path = root + QLatin1Char('/') + entry.section(QLatin1Char('='), 0, 0);
        QVERIFY(QDir().mkpath(path.endsWith(QLatin1Char('/')) ? path : QFileInfo(path).path()));
        if (!path.endsWith(QLatin1Char('/'))) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(entry.section(QLatin1Char('='), 1).toUtf8());
        }
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

class tst_ProgressWorkers : public QObject {
    Q_OBJECT

private slots:
    void cleanup() {
        wcref::resetEngine();
        g_release = false;
        g_worker_done = false;
    }

    void copyDirFile_data() {
        QTest::addColumn<QStringList>("source");
        QTest::addColumn<QStringList>("destination");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<bool>("overwrite");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QStringList>("expected");

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
        // The import's copy must agree.
        if (ok) {
            QVERIFY(Import_Progress::CopyDirFiles(root.filePath(from), root.filePath("again"),
                                                  overwrite));
            QCOMPARE(readTree(root.filePath("again")), readTree(root.filePath(from)));
        }
    }

    void copyFileProgress_data() {
        QTest::addColumn<QStringList>("pairs");  // "source>destination" below the temporary folder
        QTest::addColumn<bool>("stop_first");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QStringList>("expected");  // files below "out"

        row("two folders", QStringList{"one>out/a", "two>out/b/c"}, false, true,
            QStringList{"a/1.txt=1", "a/sub/2.txt=2", "b/c/3.txt=3"});
        row("a missing source does not stop the rest", QStringList{"missing>out/m", "two>out/b"},
            false, false, QStringList{"b/3.txt=3"});
        row("into its own subfolder", QStringList{"one>one/copy", "two>out/b"}, false, false,
            QStringList{"b/3.txt=3"});
        row("stopped before it starts", QStringList{"one>out/a", "two>out/b"}, true, false,
            QStringList());
    }
    void copyFileProgress() {
        QFETCH(QStringList, pairs);
        QFETCH(bool, stop_first);
        QFETCH(bool, ok);
        QFETCH(QStringList, expected);

        QTemporaryDir root;
        QVERIFY(root.isValid());
        writeTree(root.filePath("one"), {"1.txt=1", "sub/2.txt=2"});
        writeTree(root.filePath("two"), {"3.txt=3"});
        std::vector<CopyFile_Progress::FolderPair> folders;
        for (const QString& pair : pairs) {
            folders.emplace_back(root.filePath(pair.section(QLatin1Char('>'), 0, 0)),
                                 root.filePath(pair.section(QLatin1Char('>'), 1)));
        }
        CopyFile_Progress copy(folders, false);
        QVERIFY(!copy.isFinish());
        if (stop_first) {
            copy.block().request_stop();
        }
        copy.do_process();
        QVERIFY(waitUntilFinished(copy));
        QCOMPARE(copy.succeeded(), ok);
        QCOMPARE(readTree(root.filePath("out")), expected);
        QCOMPARE(copy.get_value(), stop_first ? 0.0 : 100.0);
        QCOMPARE(readTree(root.filePath("one")), (QStringList{"1.txt=1", "sub/2.txt=2"}));
    }

    void progressCommon_data() {
        QTest::addColumn<int>("worker");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("status");
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

    void exportProgress_data() {
        QTest::addColumn<int>("answer");  // 0 false, 1 true, 2 throws
        QTest::addColumn<int>("type");
        row("engine succeeds", 1, int(Korvo::API::export_gerber));
        row("engine fails", 0, int(Korvo::API::export_drill));
        row("engine throws", 2, int(Korvo::API::export_dxf));
    }
    void exportProgress() {
        QFETCH(int, answer);
        QFETCH(int, type);

        auto seen = std::make_shared<QStringList>();
        auto seen_block = std::make_shared<const void*>(nullptr);
        wcref::engineHooks().layer_export =
            [seen, seen_block, answer](const std::string& job, const std::string& step,
                                       const std::string& layer, Korvo::API::export_type kind,
                                       const std::string& path, Block* block) {
                *seen = QStringList{QString::fromStdString(job), QString::fromStdString(step),
                                    QString::fromStdString(layer), QString::number(int(kind)),
                                    QString::fromStdString(path)};
                *seen_block = block;
                block->set_value(100.0);
                if (answer == 2) {
                    throw std::runtime_error("writer crashed");
                }
                return answer == 1;
            };
        wctest::LogCapture log;
        Export_Progress exporter("job1", "pcb", "top", Korvo::API::export_type(type),
                                 "/tmp/out.gbr");
        exporter.do_process();
        QVERIFY(waitUntilFinished(exporter));
        QCOMPARE(exporter.succeeded(), answer == 1);
        QCOMPARE(*seen, (QStringList{"job1", "pcb", "top", QString::number(type), "/tmp/out.gbr"}));
        QCOMPARE(*seen_block, static_cast<const void*>(&exporter.block()));
        QCOMPARE(exporter.get_value(), 100.0);
        QCOMPARE(log.contains(wc::exceptionDescriptionLine(QStringLiteral("writer crashed"))),
                 answer == 2);
    }

    void importProgress_data() {
        QTest::addColumn<QString>("program");    // "@" places it, a script, in the temporary folder
        QTest::addColumn<QString>("arguments");  // "%U" stands for the unpack folder
        QTest::addColumn<QStringList>("prefilled");
        QTest::addColumn<long>("code");
        QTest::addColumn<QStringList>("expected");

        const QStringList none;
        const QStringList unpacked{"matrix=m", "steps/pcb/attr=a"};
        row("unpacked by a program", "sh",
            "-c 'mkdir -p \"%U/steps\" && printf x > \"%U/steps/pcb.txt\"'", none, 0L,
            QStringList{"steps/pcb.txt=x"});
        row("failing program copies nothing", "sh", "-c 'printf x > \"%U/half.txt\"; exit 4'", none,
            4L, none);
        row("exit code through the shell", "exit", "3", unpacked, 3L, none);
        row("missing program", "/nonexistent/program", QString(), unpacked, 127L, none);
        row("blank and quote in the program path", "@my tool's.sh", "5", unpacked, 5L, none);
        row("no program, folder already unpacked", QString(), QString(), unpacked, 0L, unpacked);
    }
    void importProgress() {
        QFETCH(QString, program);
        QFETCH(QString, arguments);
        QFETCH(QStringList, prefilled);
        QFETCH(long, code);
        QFETCH(QStringList, expected);

        QTemporaryDir root;
        QVERIFY(root.isValid());
        const QString unpacked = root.filePath("unpack/job1");
        const QString destination = root.filePath("jobs/job1");
        writeTree(unpacked, prefilled);
        arguments.replace(QStringLiteral("%U"), unpacked);
        if (program.startsWith(QLatin1Char('@'))) {
            program = root.filePath(program.mid(1));
            QFile script(program);
            QVERIFY(script.open(QIODevice::WriteOnly));
            script.write("#!/bin/sh\nexit \"$1\"\n");
            script.close();
            QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        }
        if (!program.isEmpty()) {
            QCOMPARE(Import_Progress::mysystem(program, arguments), code);
        }
        Import_Progress import(program, arguments, unpacked, destination, false);
        import.do_process();
        QVERIFY(waitUntilFinished(import));
        QCOMPARE(import.succeeded(), code == 0);
        QCOMPARE(import.exitCode(), code);
        QCOMPARE(readTree(destination), expected);
        QCOMPARE(import.get_value(), code == 0 ? 100.0 : 0.0);
    }
};

QTEST_MAIN(tst_ProgressWorkers)
#include "tst_ProgressWorkers.moc"

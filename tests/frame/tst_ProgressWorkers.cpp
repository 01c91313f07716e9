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

// A folder tree written as "path=content" entries; a path ending in "/" is an empty folder.
void writeTree(const QString& root, const QStringList& entries) {
    for (const QString& entry : entries) {
        const QString path = entry.section(QLatin1Char('='), 0, 0);
        const QString target = root + QLatin1Char('/') + path;
        if (path.endsWith(QLatin1Char('/'))) {
            QVERIFY(QDir().mkpath(target));
            continue;
        }
        QVERIFY(QDir().mkpath(QFileInfo(target).absolutePath()));
        QFile file(target);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(entry.section(QLatin1Char('='), 1).toUtf8());
    }
}

// The files below `root` as sorted "path=content" entries.
QStringList readTree(const QString& root) {
    QStringList entries;
    QDirIterator it(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            entries << QDir(root).relativeFilePath(path) + QStringLiteral("=<unreadable>");
            continue;
        }
        entries << QDir(root).relativeFilePath(path) + QLatin1Char('=') +
                       QString::fromUtf8(file.readAll());
    }
    entries.sort();
    return entries;
}

template <typename Worker>
bool waitUntilFinished(Worker& worker) {
    QElapsedTimer timer;
    timer.start();
    while (!worker.isFinish()) {
        if (timer.elapsed() > 10000) {
            return false;
        }
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

std::atomic<bool> g_release{false};
std::atomic<bool> g_worker_done{false};

void workerSettingValue(Block* block) {
    while (!g_release) {
        std::this_thread::sleep_for(1ms);
    }
    block->set_value(75.0);
    block->set_status("Copying layers");
    g_worker_done = true;
}

void workerThrowing(Block*) {
    while (!g_release) {
        std::this_thread::sleep_for(1ms);
    }
    throw std::runtime_error("disk full");
}

void workerIdle(Block*) {
    while (!g_release) {
        std::this_thread::sleep_for(1ms);
    }
}

}  // namespace

class tst_ProgressWorkers : public QObject {
    Q_OBJECT

private slots:
    void cleanup();
    void copyDirFile_data();
    void copyDirFile();
    void copyFileProgress_data();
    void copyFileProgress();
    void progressCommon_data();
    void progressCommon();
    void destructorWaitsForWorker();
    void exportProgress_data();
    void exportProgress();
    void mysystem_data();
    void mysystem();
    void importProgress_data();
    void importProgress();
};

void tst_ProgressWorkers::cleanup() {
    wcref::resetEngine();
    g_release = false;
    g_worker_done = false;
}

void tst_ProgressWorkers::copyDirFile_data() {
    QTest::addColumn<QStringList>("source");
    QTest::addColumn<QStringList>("destination");
    QTest::addColumn<QString>("source_path");
    QTest::addColumn<QString>("destination_path");
    QTest::addColumn<bool>("overwrite");
    QTest::addColumn<bool>("expected_ok");
    QTest::addColumn<QStringList>("expected");

    const QStringList nested = {"a.txt=1", "sub/b.txt=2", "sub/deep/c.txt=3", ".hidden=h"};
    QTest::newRow("nested tree into a new folder")
        << nested << QStringList() << "src"
        << "out/new" << false << true
        << QStringList{".hidden=h", "a.txt=1", "sub/b.txt=2", "sub/deep/c.txt=3"};
    const QStringList fresh = {"a.txt=new", "sub/b.txt=2"};
    const QStringList existing = {"a.txt=old", "sub/z.txt=9"};
    QTest::newRow("existing files kept without overwrite")
        << fresh << existing << "src"
        << "dst" << false << true << QStringList{"a.txt=old", "sub/b.txt=2", "sub/z.txt=9"};
    QTest::newRow("existing files replaced with overwrite")
        << fresh << existing << "src"
        << "dst" << true << true << QStringList{"a.txt=new", "sub/b.txt=2", "sub/z.txt=9"};
    QTest::newRow("empty source folder") << QStringList{"empty/"} << QStringList() << "src/empty"
                                         << "dst" << false << true << QStringList();
    QTest::newRow("missing source") << QStringList() << QStringList() << "nowhere"
                                    << "dst" << false << false << QStringList();
    QTest::newRow("source is a file") << QStringList{"a.txt=1"} << QStringList() << "src/a.txt"
                                      << "dst" << false << false << QStringList();
    QTest::newRow("file in the way of a subfolder")
        << QStringList{"a.txt=1", "sub/b.txt=2"} << QStringList{"sub=blocking"} << "src"
        << "dst" << true << false << QStringList{"a.txt=1", "sub=blocking"};
}

void tst_ProgressWorkers::copyDirFile() {
    QFETCH(QStringList, source);
    QFETCH(QStringList, destination);
    QFETCH(QString, source_path);
    QFETCH(QString, destination_path);
    QFETCH(bool, overwrite);
    QFETCH(bool, expected_ok);
    QFETCH(QStringList, expected);

    QTemporaryDir root;
    QVERIFY(root.isValid());
    writeTree(root.filePath("src"), source);
    writeTree(root.filePath("dst"), destination);
    const QStringList source_before = readTree(root.filePath("src"));

    wctest::LogCapture log;
    const bool ok = CopyFile_Progress::CopyDirFile(root.filePath(source_path),
                                                   root.filePath(destination_path), overwrite);
    QCOMPARE(ok, expected_ok);
    QCOMPARE(readTree(root.filePath(destination_path)), expected);
    QCOMPARE(readTree(root.filePath("src")), source_before);
    QCOMPARE(log.errors().empty(), expected_ok);
    // The copy under another name must agree.
    if (expected_ok) {
        QVERIFY(Import_Progress::CopyDirFiles(root.filePath(source_path), root.filePath("again"),
                                              overwrite));
        QCOMPARE(readTree(root.filePath("again")), readTree(root.filePath(source_path)));
    }
}

void tst_ProgressWorkers::copyFileProgress_data() {
    QTest::addColumn<QStringList>("pairs");  // "source>destination" below the temporary folder
    QTest::addColumn<bool>("stop_first");
    QTest::addColumn<bool>("expected_ok");
    QTest::addColumn<QStringList>("expected");  // files below "out"

    QTest::newRow("two folders") << QStringList{"one>out/a", "two>out/b/c"} << false << true
                                 << QStringList{"a/1.txt=1", "a/sub/2.txt=2", "b/c/3.txt=3"};
    QTest::newRow("a missing source does not stop the rest")
        << QStringList{"missing>out/m", "two>out/b"} << false << false << QStringList{"b/3.txt=3"};
    QTest::newRow("into its own subfolder")
        << QStringList{"one>one/copy", "two>out/b"} << false << false << QStringList{"b/3.txt=3"};
    QTest::newRow("stopped before it starts")
        << QStringList{"one>out/a", "two>out/b"} << true << false << QStringList();
}

void tst_ProgressWorkers::copyFileProgress() {
    QFETCH(QStringList, pairs);
    QFETCH(bool, stop_first);
    QFETCH(bool, expected_ok);
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
    QCOMPARE(copy.get_value(), 0.0);
    if (stop_first) {
        copy.block().request_stop();
    }
    copy.do_process();
    QVERIFY(waitUntilFinished(copy));
    QCOMPARE(copy.succeeded(), expected_ok);
    QCOMPARE(readTree(root.filePath("out")), expected);
    QCOMPARE(copy.get_value(), stop_first ? 0.0 : 100.0);
    QCOMPARE(readTree(root.filePath("one")), (QStringList{"1.txt=1", "sub/2.txt=2"}));
}

void tst_ProgressWorkers::progressCommon_data() {
    QTest::addColumn<int>("worker");
    QTest::addColumn<double>("expected_value");
    QTest::addColumn<QString>("expected_status");
    QTest::addColumn<bool>("expected_log");
    QTest::newRow("reports progress") << 0 << 75.0 << "Copying layers" << false;
    QTest::newRow("throws") << 1 << 0.0 << "Start calculating, please wait!" << true;
    QTest::newRow("reports nothing") << 2 << 0.0 << "Start calculating, please wait!" << false;
}

void tst_ProgressWorkers::progressCommon() {
    QFETCH(int, worker);
    QFETCH(double, expected_value);
    QFETCH(QString, expected_status);
    QFETCH(bool, expected_log);

    const Progress_Common::Worker workers[] = {&workerSettingValue, &workerThrowing, &workerIdle};
    wctest::LogCapture log;
    Progress_Common progress;
    progress.do_process();  // no worker yet: nothing starts
    QVERIFY(!progress.isFinish());
    progress.set_func(workers[worker]);
    QCOMPARE(progress.get_status(), std::string("Start calculating, please wait!"));
    progress.do_process();
    // Returned while the worker is held back.
    QVERIFY(!progress.isFinish());
    g_release = true;
    QVERIFY(waitUntilFinished(progress));
    QCOMPARE(progress.get_value(), expected_value);
    QCOMPARE(QString::fromStdString(progress.get_status()), expected_status);
    QCOMPARE(log.contains(wc::exceptionDescriptionLine(QStringLiteral("disk full"))), expected_log);
}

void tst_ProgressWorkers::destructorWaitsForWorker() {
    {
        Progress_Common progress;
        progress.set_func(&workerSettingValue);
        progress.do_process();
        std::thread releaser([] {
            std::this_thread::sleep_for(100ms);
            g_release = true;
        });
        releaser.detach();
        QVERIFY(!g_worker_done);
    }
    QVERIFY(g_worker_done);
}

void tst_ProgressWorkers::exportProgress_data() {
    QTest::addColumn<int>("answer");  // 0 false, 1 true, 2 throws
    QTest::addColumn<bool>("expected_ok");
    QTest::addColumn<int>("type");
    QTest::newRow("engine succeeds") << 1 << true << int(Korvo::API::export_gerber);
    QTest::newRow("engine fails") << 0 << false << int(Korvo::API::export_drill);
    QTest::newRow("engine throws") << 2 << false << int(Korvo::API::export_dxf);
}

void tst_ProgressWorkers::exportProgress() {
    QFETCH(int, answer);
    QFETCH(bool, expected_ok);
    QFETCH(int, type);

    struct Seen {
        std::string job, step, layer, path;
        int type = -1;
        const void* block = nullptr;
    };
    auto seen = std::make_shared<Seen>();
    wcref::engineHooks().layer_export =
        [seen, answer](const std::string& job, const std::string& step, const std::string& layer,
                       Korvo::API::export_type kind, const std::string& path, Block* block) {
            *seen = Seen{job, step, layer, path, int(kind), block};
            block->set_value(100.0);
            if (answer == 2) {
                throw std::runtime_error("writer crashed");
            }
            return answer == 1;
        };
    wctest::LogCapture log;
    Export_Progress exporter("job1", "pcb", "top", Korvo::API::export_type(type), "/tmp/out.gbr");
    exporter.do_process();
    QVERIFY(waitUntilFinished(exporter));
    QCOMPARE(exporter.succeeded(), expected_ok);
    QCOMPARE(seen->job, std::string("job1"));
    QCOMPARE(seen->step, std::string("pcb"));
    QCOMPARE(seen->layer, std::string("top"));
    QCOMPARE(seen->path, std::string("/tmp/out.gbr"));
    QCOMPARE(seen->type, type);
    QCOMPARE(seen->block, static_cast<const void*>(&exporter.block()));
    QCOMPARE(exporter.get_value(), 100.0);
    QCOMPARE(log.contains(wc::exceptionDescriptionLine(QStringLiteral("writer crashed"))),
             answer == 2);
}

void tst_ProgressWorkers::mysystem_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<int>("expected");
    QTest::newRow("true") << "true" << QString() << 0;
    QTest::newRow("false") << "false" << QString() << 1;
    QTest::newRow("exit code through the shell") << "exit"
                                                 << "3" << 3;
    QTest::newRow("arguments as one command line") << "sh"
                                                   << "-c 'exit 7'" << 7;
    QTest::newRow("missing program") << "/nonexistent/program" << QString() << 127;
    QTest::newRow("blank and quote in the program path") << "@my tool's.sh"
                                                         << "5" << 5;
}

void tst_ProgressWorkers::mysystem() {
    QFETCH(QString, program);
    QFETCH(QString, arguments);
    QFETCH(int, expected);

    QTemporaryDir root;
    QVERIFY(root.isValid());
    if (program.startsWith(QLatin1Char('@'))) {
        program = root.filePath(program.mid(1));
        QFile script(program);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nexit \"$1\"\n");
        script.close();
        QVERIFY(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    QCOMPARE(Import_Progress::mysystem(program, arguments), long(expected));
}

void tst_ProgressWorkers::importProgress_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("arguments");  // "%U" stands for the unpack folder
    QTest::addColumn<QStringList>("prefilled");
    QTest::addColumn<bool>("expected_ok");
    QTest::addColumn<long>("expected_code");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("unpacked by a program")
        << "sh"
        << "-c 'mkdir -p \"%U/steps\" && printf x > \"%U/steps/pcb.txt\"'" << QStringList() << true
        << 0L << QStringList{"steps/pcb.txt=x"};
    QTest::newRow("failing program copies nothing")
        << "sh"
        << "-c 'printf x > \"%U/half.txt\"; exit 4'" << QStringList() << false << 4L
        << QStringList();
    QTest::newRow("no program, folder already unpacked")
        << QString() << QString() << QStringList{"matrix=m", "steps/pcb/attr=a"} << true << 0L
        << QStringList{"matrix=m", "steps/pcb/attr=a"};
}

void tst_ProgressWorkers::importProgress() {
    QFETCH(QString, program);
    QFETCH(QString, arguments);
    QFETCH(QStringList, prefilled);
    QFETCH(bool, expected_ok);
    QFETCH(long, expected_code);
    QFETCH(QStringList, expected);

    QTemporaryDir root;
    QVERIFY(root.isValid());
    const QString unpacked = root.filePath("unpack/job1");
    const QString destination = root.filePath("jobs/job1");
    writeTree(unpacked, prefilled);
    arguments.replace(QStringLiteral("%U"), unpacked);

    Import_Progress import(program, arguments, unpacked, destination, false);
    import.do_process();
    QVERIFY(waitUntilFinished(import));
    QCOMPARE(import.succeeded(), expected_ok);
    QCOMPARE(import.exitCode(), expected_code);
    QCOMPARE(readTree(destination), expected);
    QCOMPARE(import.get_value(), expected_ok ? 100.0 : 0.0);
}

QTEST_MAIN(tst_ProgressWorkers)
#include "tst_ProgressWorkers.moc"

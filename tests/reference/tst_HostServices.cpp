#include <QtTest>

#include "Common.h"
#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "TemporaryWorkingDirectory.h"

using namespace Korvo::UIAPI;

namespace {

bool writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace

class tst_HostServices : public QObject {
    Q_OBJECT

private slots:
    void formatTime_data() {
        QTest::addColumn<int>("ms");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0 << "0:00:00.000";
        QTest::newRow("millis") << 7 << "0:00:00.007";
        QTest::newRow("mixed") << 3723004 << "1:02:03.004";
        QTest::newRow("minute edge") << 59999 << "0:00:59.999";
        QTest::newRow("past a day") << 90000000 << "25:00:00.000";
        QTest::newRow("negative") << -5 << "0:00:00.000";
    }
    void formatTime() {
        QFETCH(int, ms);
        QFETCH(QString, text);
        QCOMPARE(Korvo::UIAPI::formatTime(ms), text);
    }

    void erfList_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("names");
        QTest::newRow("listed, sorted, .json only") << "TeardropsRanges" << true << "A;a.b;b";
        QTest::newRow("no folder") << "DrillRanges" << false << "";
        // Keys that would leave ERFconfig/ are refused.
        QTest::newRow("parent") << ".." << false << "";
        QTest::newRow("separator") << "../TeardropsRanges" << false << "";
        QTest::newRow("backslash") << "a\\b" << false << "";
        QTest::newRow("drive") << "C:" << false << "";
        QTest::newRow("empty") << "" << false << "";
    }
    void erfList() {
        QFETCH(QString, key);
        QFETCH(bool, ok);
        QFETCH(QString, names);
        wctest::TemporaryWorkingDirectory dir;
        QVERIFY(writeFile(dir.filePath("ERFconfig/x.json"), "{}"));
        const QString folder = dir.filePath("ERFconfig/TeardropsRanges/");
        for (const char* file : {"b.json", "A.json", "a.b.json", "notes.txt", ".json", "c.JSON"})
            QVERIFY(writeFile(folder + file, "{}"));
        QVERIFY(QDir().mkpath(folder + "sub.json"));

        QStringList found{"stale"};
        QCOMPARE(getERFList(key, found), ok);
        QCOMPARE(found.join(';'), names);
        QCOMPARE(getERFList(key), found);
    }

    void saveTextAndPaths() {
        wctest::TemporaryWorkingDirectory dir;
        const QString folder = dir.filePath("a/b/c");
        QVERIFY(!saveTextByIODevice(folder + "/t.txt", "x"));  // folder missing
        QVERIFY(checkDir(folder));
        QVERIFY(checkDir(folder));
        QVERIFY(!checkDir(""));
        QVERIFY(saveTextByIODevice(folder + "/t.txt", QString::fromUtf8("Läge 1\n")));
        QVERIFY(saveTextByIODevice(folder + "/t.txt", "second"));
        QFile file(folder + "/t.txt");
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("second"));
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{"t.txt"});  // no leftovers

        wcref::setApplicationDir("/opt/cam/");
        QCOMPARE(Common::getPath_database(), QString("/opt/cam/database"));
        wcref::setApplicationDir(QString());
        QCOMPARE(Common::getPath(), QCoreApplication::applicationDirPath());
    }
};

QTEST_MAIN(tst_HostServices)
#include "tst_HostServices.moc"

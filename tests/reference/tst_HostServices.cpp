#include <QtTest>

#include "CheckListReaders.h"
#include "Common.h"
#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "TemporaryWorkingDirectory.h"
#include "common_cache.h"

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

    void checkList_data() {
        QTest::addColumn<QByteArray>("hits");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("summary");  // layer:item:red/yellow/green/other ...
        QTest::newRow("two layers")
            << QByteArray(
                   "top;0;red;50800;0;0;50800;0\n# note\ntop;0;yellow;76200;1;1;2;2\n"
                   "bottom;36;green;127000;5;5;5;9\n\ntop;71;other;0;3;3;3;3\n")
            << true << "bottom:36:0/0/1/0 top:0:1/1/0/0 top:71:0/0/0/1";
        QTest::newRow("no hits") << QByteArray() << true << "";
        QTest::newRow("layer not in header")
            << QByteArray("inner1;0;red;1;0;0;0;0\n") << false << "";
        QTest::newRow("unknown level") << QByteArray("top;0;blue;1;0;0;0;0\n") << false << "";
        QTest::newRow("item out of range") << QByteArray("top;72;red;1;0;0;0;0\n") << false << "";
        QTest::newRow("too few fields") << QByteArray("top;0;red;1;0;0;0\n") << false << "";
        QTest::newRow("value not a number") << QByteArray("top;0;red;x;0;0;0;0\n") << false << "";
    }
    void checkList() {
        QFETCH(QByteArray, hits);
        QFETCH(bool, ok);
        QFETCH(QString, summary);
        QTemporaryDir dir;
        QVERIFY(writeFile(dir.filePath("checklist.hdr"), "# layers\ntop\n\nbottom\n"));
        QVERIFY(writeFile(dir.filePath("checklist.res"), hits));

        Korvo::API::signal_check_result_map result;
        result["previous"];
        QCOMPARE(SignalLayersCheckListReader::parse(dir.path().toStdString(), "checklist.hdr",
                                                    "checklist.res", result),
                 ok);
        if (!ok) {
            QCOMPARE(result.size(), size_t(1));  // untouched
            QVERIFY(result.count("previous"));
            return;
        }
        QCOMPARE(result.size(), size_t(2));  // every header layer, hits or not
        QStringList parts;
        for (const auto& [layer, items] : result) {
            for (const auto& [item, r] : items) {
                QCOMPARE(r.item, item);
                parts << QStringLiteral("%1:%2:%3/%4/%5/%6")
                             .arg(QString::fromStdString(layer))
                             .arg(item)
                             .arg(r.red.size())
                             .arg(r.yellow.size())
                             .arg(r.green.size())
                             .arg(r.other.size());
            }
        }
        QCOMPARE(parts.join(' '), summary);
        if (!summary.isEmpty()) {
            const auto& hit =
                result.at("top").at(Korvo::API::sli_pad_to_pad_spacing).yellow.front();
            QCOMPARE(hit.value, 76200.0);
            QCOMPARE(hit.shape.points.size(), size_t(2));
            QCOMPARE(hit.shape.points[1].x, 2.0);
        }
    }

    void checkListFiles() {
        QTemporaryDir dir;
        QVERIFY(writeFile(dir.filePath("checklist.hdr"), "top\n"));
        const std::string folder = dir.path().toStdString();
        Korvo::API::signal_check_result_map result;
        QVERIFY(
            !SignalLayersCheckListReader::parse(folder, "checklist.hdr", "missing.res", result));
        QVERIFY(
            !SignalLayersCheckListReader::parse(folder, "missing.hdr", "checklist.hdr", result));
        QVERIFY(result.empty());
        // An absolute name is used as it is.
        QVERIFY(writeFile(dir.filePath("checklist.res"), ""));
        QVERIFY(SignalLayersCheckListReader::parse(
            "/nowhere", dir.filePath("checklist.hdr").toStdString(),
            dir.filePath("checklist.res").toStdString(), result));
        QCOMPARE(result.size(), size_t(1));
    }

    void resultFilterDocument() {
        QVERIFY(TqAnalysisFilter::instance()->document("none").isNull());
        Korvo::API::signal_check_result_map results;
        auto& spacing = results["top"][Korvo::API::sli_pad_to_pad_spacing];
        Korvo::API::check_info hit;
        hit.value = 50800;
        hit.shape.points = {{1, 2}, {3, 4}};
        spacing.red = {hit, hit};
        spacing.other = {hit};
        Json::Value params;
        params["spacing"] = 203200;
        TqAnalysisFilter::instance()->setSignalLayerJsonResult4EDA("run1", params, results);

        const Json::Value doc = TqAnalysisFilter::instance()->document("run1");
        QCOMPARE(doc["params"]["spacing"].asInt(), 203200);
        const Json::Value& item = doc["results"]["top"][0];
        QCOMPARE(QString::fromStdString(item["name"].asString()), QString("Pad to Pad Spacing"));
        QCOMPARE(item["red"].asInt(), 2);
        QCOMPARE(item["other"].asInt(), 1);
        QCOMPARE(item["hits"].size(), 3u);
        QCOMPARE(QString::fromStdString(item["hits"][2]["level"].asString()), QString("other"));
        QCOMPARE(item["hits"][0]["points"][1][0].asDouble(), 3.0);
    }
};

QTEST_MAIN(tst_HostServices)
#include "tst_HostServices.moc"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>
#include <cmath>
#include <set>

#include "HostSettings.h"
#include "Korvo_DFM_types.h"
#include "Korvo_UIAPI.h"
#include "RangeStore.h"
#include "TemporaryWorkingDirectory.h"

using namespace Korvo::UIAPI;
using namespace Korvo::API;

namespace {

const std::string kSignal = "SignalLayerRanges";
const std::string kPadToPad = "Pad to Pad Spacing";

bool sameLevels(const std::vector<Analysis_Ranges_Record>& a,
                const std::vector<Analysis_Ranges_Record>& b) {
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i].name != b[i].name || a[i].RedLv != b[i].RedLv || a[i].YellowLv != b[i].YellowLv ||
            a[i].GreenLv != b[i].GreenLv)
            return false;
    }
    return true;
}

// A range file whose signal-layer list is `entries`.
QByteArray signalFile(const char* entries) {
    return QByteArray(R"({"ranges": {"SignalLayerRanges": [)") + entries + "]}}";
}

}  // namespace

class tst_RangeStore : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        wctest::TemporaryWorkingDirectory empty;
        wcref::reloadRanges();
        QVERIFY(getRanges(kSignal, signal_defaults_));
    }

    void init() {
        dir_ = std::make_unique<wctest::TemporaryWorkingDirectory>();
        QVERIFY(dir_->isValid());
        wcref::reloadRanges();
    }

    void cleanup() {
        dir_.reset();
        wcref::reloadRanges();
    }

    void defaultRows_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("items");  // size of the key's item enumeration
        QTest::newRow("signal") << "SignalLayerRanges" << sli_netlist_short + 1;
        QTest::newRow("solder mask") << "SolderMaskRanges" << smi_isolated_mask + 1;
        QTest::newRow("silk screen") << "SilkScreenRanges" << ssi_silk_isolated + 1;
        QTest::newRow("drill") << "DrillRanges" << dci_tool_count + 1;
        QTest::newRow("board drill") << "BoardDrillRanges" << bdi_extra_hole + 1;
        QTest::newRow("power ground") << "PowerGroundRanges" << pgi_drill_to_plane + 1;
        QTest::newRow("power ground opt") << "PowerGroundOptRanges" << pgo_unresolved + 1;
        QTest::newRow("surface") << "SurfaceAnalyzerRanges" << sai_surface_to_drill + 1;
        QTest::newRow("pad snapping") << "PadSnappingRanges" << psi_pad_ambiguous + 1;
        QTest::newRow("teardrops") << "TeardropsRanges" << tdi_skipped_spacing + 1;
        QTest::newRow("prepare") << "PrePareRanges" << pci_duplicate_features + 1;
        QTest::newRow("nfp") << "NFPRemoval" << nfp_marked + 1;
        QTest::newRow("signal opt") << "SignalLayerOptRanges" << sdi_reshape + 1;
        QTest::newRow("solder mask opt") << "SolderMaskOptRanges" << smo_vertical_flow + 1;
    }
    // Row k is item k of the enumeration, by number and by name. Levels are written in mil and
    // kept in nanometres: a level stored raw in mil would be tiny. Each row either has no levels
    // or runs strictly one way (minimum or maximum rules).
    void defaultRows() {
        QFETCH(QString, key);
        QFETCH(int, items);
        const std::string k = key.toStdString();
        std::vector<Analysis_Ranges_Record> records;
        QVERIFY(getRanges(k, records));
        QCOMPARE(static_cast<int>(records.size()), items);

        std::set<std::string> names;
        for (int row = 0; row < items; ++row) {
            const std::string& name = records[row].name;
            QVERIFY2(!name.empty() && names.insert(name).second, name.c_str());
            QCOMPARE(getRangesEnum(k, name), row);
            QCOMPARE(getRangesEnum(k, row), row);
            QCOMPARE(getRangesName(k, row), name);
            const Analysis_Ranges_Record& r = records[row];
            for (double level : {r.RedLv, r.YellowLv, r.GreenLv}) {
                QVERIFY2(level == 0.0 || level >= 25400.0 / 4, name.c_str());
                QVERIFY2(std::fmod(level, 25400.0 / 4) == 0.0, name.c_str());
            }
            const bool none = r.RedLv == 0 && r.YellowLv == 0 && r.GreenLv == 0;
            const bool rising = r.RedLv < r.YellowLv && r.YellowLv < r.GreenLv;
            const bool falling = r.RedLv > r.YellowLv && r.YellowLv > r.GreenLv;
            QVERIFY2(none || rising || falling, name.c_str());
        }
        QCOMPARE(getRangesEnum(k, items), -1);
        QCOMPARE(getRangesEnum(k, -1), -1);
        QCOMPARE(getRangesEnum(k, std::string("No Such Item")), -1);
        QCOMPARE(getRangesName(k, items), std::string());

        records.resize(3);
        QVERIFY(!getRanges("NoSuchRanges", records));
        QVERIFY(records.empty());
        QCOMPARE(getRangesEnum("NoSuchRanges", kPadToPad), -1);
    }

    void changePersists() {
        QVERIFY(changeRangesValue(kSignal, kPadToPad, "RedLv", 50800.0));
        QVERIFY(changeRangesValue(kSignal, "Line Width", "GreenLv", 152400.0));
        QVERIFY(changeRangesValue("DrillRanges", "Hole Size", "YellowLv", 228600.0));

        wcref::reloadRanges();
        const auto signal = getRanges(kSignal);
        QCOMPARE(signal[sli_pad_to_pad_spacing].RedLv, 50800.0);
        QCOMPARE(signal[sli_pad_to_pad_spacing].YellowLv, signal_defaults_[0].YellowLv);
        QCOMPARE(signal[sli_line_width].GreenLv, 152400.0);
        QCOMPARE(getRanges("DrillRanges")[dci_hole_size].YellowLv, 228600.0);

        // Only what differs from the defaults is stored.
        const QJsonObject ranges = QJsonDocument::fromJson(wctest::readFile(rangeFile()))
                                       .object()
                                       .value("ranges")
                                       .toObject();
        QCOMPARE(ranges.keys(), (QStringList{"DrillRanges", "SignalLayerRanges"}));
        QCOMPARE(ranges.value("SignalLayerRanges").toArray().size(), 2);

        // Back to the default value: the row leaves the file.
        QVERIFY(changeRangesValue(kSignal, kPadToPad, "RedLv", signal_defaults_[0].RedLv));
        QVERIFY(changeRangesValue(kSignal, "Line Width", "GreenLv",
                                  signal_defaults_[sli_line_width].GreenLv));
        wcref::reloadRanges();
        QVERIFY(sameLevels(getRanges(kSignal), signal_defaults_));
        QVERIFY(!QString::fromUtf8(wctest::readFile(rangeFile())).contains("SignalLayerRanges"));
    }

    void batchWritesTheFileOnce() {
        // A whole table, as a template load puts it back: 3 levels of every row.
        std::vector<Ranges_Level_Change> changes;
        for (const Analysis_Ranges_Record& record : signal_defaults_) {
            changes.push_back({record.name, "RedLv", record.RedLv + 1});
            changes.push_back({record.name, "YellowLv", record.YellowLv + 1});
            changes.push_back({record.name, "GreenLv", record.GreenLv + 1});
        }
        changes.push_back({"no such range", "RedLv", 1.0});
        const int saves = wcref::RangeStore::instance().saves();
        QVERIFY(!changeRangesValues(kSignal, changes));  // one refused, the rest kept
        QCOMPARE(wcref::RangeStore::instance().saves(), saves + 1);
        wcref::reloadRanges();
        const auto stored = getRanges(kSignal);
        QCOMPARE(stored.back().GreenLv, signal_defaults_.back().GreenLv + 1);
        QCOMPARE(stored.front().RedLv, signal_defaults_.front().RedLv + 1);
    }

    void applicationDirSwitchRereads() {
        QVERIFY(changeRangesValue(kSignal, kPadToPad, "GreenLv", 254000.0));
        wctest::TemporaryWorkingDirectory other;
        QVERIFY(sameLevels(getRanges(kSignal), signal_defaults_));
        wcref::setApplicationDir(dir_->path());
        QCOMPARE(getRanges(kSignal)[0].GreenLv, 254000.0);
    }

    void refusedChange_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("level");
        QTest::addColumn<double>("value");
        const QString signal = QString::fromStdString(kSignal);
        const QString pad = QString::fromStdString(kPadToPad);
        QTest::newRow("unknown level") << signal << pad << "BlueLv" << 1.0;
        QTest::newRow("level case") << signal << pad << "redlv" << 1.0;
        QTest::newRow("unknown name") << signal << "Pad to Nothing"
                                      << "RedLv" << 1.0;
        QTest::newRow("name of other key") << "DrillRanges" << pad << "RedLv" << 1.0;
        QTest::newRow("unknown key") << "NoSuchRanges" << pad << "RedLv" << 1.0;
        QTest::newRow("not a number") << signal << pad << "RedLv" << std::nan("");
        QTest::newRow("infinite") << signal << pad << "GreenLv" << HUGE_VAL;
    }
    void refusedChange() {
        QFETCH(QString, key);
        QFETCH(QString, name);
        QFETCH(QString, level);
        QFETCH(double, value);
        QVERIFY(
            !changeRangesValue(key.toStdString(), name.toStdString(), level.toStdString(), value));
        QVERIFY(sameLevels(getRanges(kSignal), signal_defaults_));
        QVERIFY(!QFile::exists(rangeFile()));
    }

    void badFileFallsBack_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("not JSON") << QByteArray("ranges = all of them");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("array at top") << QByteArray("[1, 2, 3]");
        QTest::newRow("no ranges") << QByteArray(R"({"version": 1})");
        QTest::newRow("ranges not object") << QByteArray(R"({"ranges": []})");
        QTest::newRow("key not array") << QByteArray(R"({"ranges": {"SignalLayerRanges": {}}})");
        QTest::newRow("unknown key") << QByteArray(R"({"ranges": {"Nope": []}})");
        QTest::newRow("entry not object") << signalFile(R"("Pad to Pad Spacing")");
        QTest::newRow("unknown name")
            << signalFile(R"({"name": "X", "RedLv": 1, "YellowLv": 2, "GreenLv": 3})");
        QTest::newRow("level as text") << signalFile(
            R"({"name": "Pad to Pad Spacing", "RedLv": "1", "YellowLv": 2, "GreenLv": 3})");
        QTest::newRow("level missing")
            << signalFile(R"({"name": "Pad to Pad Spacing", "RedLv": 1, "YellowLv": 2})");
        // A bad row after a good one: nothing of the file is taken.
        QTest::newRow("good then bad") << signalFile(
            R"({"name": "Pad to Pad Spacing", "RedLv": 1, "YellowLv": 2, "GreenLv": 3},
               {"name": "Line Width"})");
    }
    void badFileFallsBack() {
        QFETCH(QByteArray, content);
        QVERIFY(wctest::writeFile(rangeFile(), content));
        wcref::reloadRanges();
        QVERIFY(sameLevels(getRanges(kSignal), signal_defaults_));
        QCOMPARE(wctest::readFile(rangeFile()), content);  // kept for the user to look at

        QVERIFY(changeRangesValue(kSignal, kPadToPad, "YellowLv", 88900.0));
        wcref::reloadRanges();
        const auto records = getRanges(kSignal);
        QCOMPARE(records[0].YellowLv, 88900.0);
        QCOMPARE(records[0].RedLv, signal_defaults_[0].RedLv);
    }

private:
    QString rangeFile() const { return dir_->filePath(QStringLiteral("config/ranges.json")); }

    std::unique_ptr<wctest::TemporaryWorkingDirectory> dir_;
    std::vector<Analysis_Ranges_Record> signal_defaults_;
};

QTEST_MAIN(tst_RangeStore)
#include "tst_RangeStore.moc"

#include <QtTest>

#include <memory>

#include "DataColumns.h"
#include "DataRows.h"
#include "analysis/HitTriage.h"
#include "analysis/ResultAdapters.h"
#include "analysis/WaiverFile.h"

using namespace Korvo::API;
using wctest::row;

namespace {

constexpr double kMil = 25400.0;
const wc::TriageScope kScope{"SignalLayer", "job1", "pcb"};

check_info hitAt(double x, double y, const QString& nets = {}) {
    check_info hit;
    hit.shape.points = {{x - 1000.0, y}, {x + 1000.0, y}};  // the middle at (x, y)
    for (const QString& net : nets.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        hit.nets.push_back(net.toStdString());
    }
    return hit;
}

// A run written as hits "<layer a|b><item 1|2>@<x>,<y>[/<net>,<net>]", in mil, each in the red
// list of its layer and item; written in the model's order (layer, then item), a hit's place in
// the text is its number.
struct Run {
    explicit Run(const QString& text) : model(modelOf(text)), triage(model) {}
    static wc::ResultsModel modelOf(const QString& text) {
        auto result = std::make_shared<signal_check_result_map>();
        for (const QString& spec : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
            const QStringList parts = spec.mid(3).split(QLatin1Char('/'));
            const QStringList at = parts[0].split(QLatin1Char(','));
            const auto item = spec[1] == QLatin1Char('1') ? sli_pad_to_pad_spacing : sli_line_width;
            signal_check_result& record = (*result)[spec.left(1).toStdString()][item];
            record.item = item;
            record.red.push_back(
                hitAt(at[0].toDouble() * kMil, at[1].toDouble() * kMil, parts.value(1)));
        }
        return wc::modelOf(result, {"SignalLayerRanges", "", {}});
    }
    wc::ResultsModel model;
    wc::TriageRun triage;
};

QString numbers(const std::vector<std::size_t>& values) {
    QStringList out;
    for (std::size_t value : values) {
        out << QString::number(value);
    }
    return out.join(QLatin1Char(' '));
}

// Every field of a waiver on one line.
QString fields(const analysis_waiver& w) {
    std::string out = std::to_string(w.id) + "|" + w.kind + "|" + w.job + "|" + w.step + "|" +
                      std::to_string(w.scope) + "|" + std::to_string(w.item) + "|" + w.layer + "|";
    for (const std::string& net : w.nets) {
        out += net + ",";
    }
    out += "|" + w.identity + "|" + w.reason + "|" + w.user + "|" + w.time;
    for (const waiver_reason& r : w.history) {
        out += "|" + r.reason + "/" + r.user + "/" + r.time;
    }
    return QString::fromStdString(out);
}

// The valid waiver file the refusals change one thing of.
const QString kValidFile = QStringLiteral(
    R"({"format": "waivers", "version": 1, "kind": "SignalLayer", "job": "job1", "step": "pcb",
        "waivers": [{"id": 3, "kind": "SignalLayer", "job": "job1", "step": "pcb", "scope": "hit",
                     "item": 1, "layer": "top", "nets": ["GND", "VCC"],
                     "identity": "00000000000000ff@1,2", "reason": "r", "user": "u",
                     "time": "2024.01.02 03:04:05",
                     "history": [{"reason": "r", "user": "u", "time": "2024.01.02 03:04:05"}]}]})");

}  // namespace

class tst_HitTriage : public QObject {
    Q_OBJECT
private slots:
    void identityText_data() {
        wctest::columns<QString, bool>("text", "valid");
        row("zero", "0000000000000000@0,0", true);
        row("ordinary", "00f0a1b2c3d4e5f6@-123,4567", true);
        row("extremes", "ffffffffffffffff@-9223372036854775808,9223372036854775807", true);
        for (const char* bad :
             {"", "00F0A1B2C3D4E5F6@1,2", "0f0a1b2c3d4e5f6@1,2", "000f0a1b2c3d4e5f6@1,2",
              "00f0a1b2c3d4e5f6@01,2", "00f0a1b2c3d4e5f6@-0,2", "00f0a1b2c3d4e5f6@+1,2",
              "00f0a1b2c3d4e5f6@1, 2", "00f0a1b2c3d4e5f6@1,2x", "00f0a1b2c3d4e5f6@1,",
              "00f0a1b2c3d4e5f6@12", "00f0a1b2c3d4e5f6@1,2,3", "00f0a1b2c3d4e5f6,1@2",
              "00f0a1b2c3d4e5f6@9223372036854775808,0", "0x0a1b2c3d4e5f6@1,2"}) {
            row(QByteArray("refused: ").append(bad).constData(), bad, false);
        }
    }

    void identityText() {
        QFETCH(QString, text);
        QFETCH(bool, valid);
        const auto identity = wc::HitIdentity::fromText(text.toStdString());
        QCOMPARE(identity.has_value(), valid);
        QCOMPARE(identity ? QString::fromStdString(identity->text()) : text, text);
    }

    // A hit of item 0 on "top" between GND and VCC, signature 42, at (199, -50) grid steps,
    // against one moved by (dx, dy) steps and changed as the row says. Cells are 100 steps (the
    // tolerance) wide, so x crosses a cell border from 1 step on, y from 51 steps down.
    void identity_data() {
        wctest::columns<int, int, int, QString, QString, qulonglong, bool>(
            "dx", "dy", "item", "layer", "nets", "signature", "same");
        row("x just under", 99, 0, 0, "top", "GND,VCC", 42ull, true);
        row("x at the tolerance", 100, 0, 0, "top", "GND,VCC", 42ull, true);
        row("x just over", 101, 0, 0, "top", "GND,VCC", 42ull, false);
        row("y just under", 0, -99, 0, "top", "GND,VCC", 42ull, true);
        row("y just over", 0, -101, 0, "top", "GND,VCC", 42ull, false);
        row("y across zero", 0, 99, 0, "top", "GND,VCC", 42ull, true);
        row("both at the tolerance", -100, -100, 0, "top", "GND,VCC", 42ull, true);
        row("x under, y over", 99, 101, 0, "top", "GND,VCC", 42ull, false);
        row("nets in the other order", 0, 0, 0, "top", "VCC,GND", 42ull, true);
        row("another net", 0, 0, 0, "top", "GND,VDD", 42ull, false);
        row("one net fewer", 0, 0, 0, "top", "GND", 42ull, false);
        row("another item", 0, 0, 1, "top", "GND,VCC", 42ull, false);
        row("another layer", 0, 0, 0, "bot", "GND,VCC", 42ull, false);
        row("another signature", 0, 0, 0, "top", "GND,VCC", 43ull, false);
        row("net names run together", 0, 0, 0, "top", "G,NDVCC", 42ull, false);
    }

    void identity() {
        QFETCH(int, dx);
        QFETCH(int, dy);
        QFETCH(int, item);
        QFETCH(QString, layer);
        QFETCH(QString, nets);
        QFETCH(qulonglong, signature);
        QFETCH(bool, same);
        const double x = 199 * 254.0;
        const double y = -50 * 254.0;
        check_info base = hitAt(x, y, "GND,VCC");
        base.signature = 42;
        check_info moved = hitAt(x + dx * 254.0, y + dy * 254.0, nets);
        moved.signature = signature;
        const wc::HitIdentity before = wc::identityOf(0, "top", base);
        const wc::HitIdentity after = wc::identityOf(item, layer.toStdString(), moved);
        QCOMPARE(before.sameHit(after), same);
        QCOMPARE(after.sameHit(before), same);
        const wc::IdentityIndex index({wc::identityOf(0, "top", hitAt(x - 3 * kMil, y)), before,
                                       wc::identityOf(0, "top", hitAt(x, y + 3 * kMil))});
        QCOMPARE(index.matches(after),
                 same ? std::vector<std::size_t>{1} : std::vector<std::size_t>{});
        // Stored with waivers, so the hash must never change: FNV-1a over the documented bytes.
        base.signature = 0x1234;
        base.shape.points = {{kMil, -kMil}};
        QCOMPARE(wc::identityOf(0, "top", base).text(), std::string("452f041a4404e8fe@100,-100"));
    }

    void compareRuns_data() {
        wctest::columns<QString, QString, QString, QString>("earlier", "shown", "states", "fixed");
        row("the same run", "a1@0,0 a1@10,0", "a1@0,0 a1@10,0", "uu", "");
        row("a hit added", "a1@0,0", "a1@0,0 a1@10,0", "un", "");
        row("a hit removed", "a1@0,0 a1@10,0", "a1@10,0", "u", "0");
        row("moved under the tolerance", "a1@0,0", "a1@0.9,-0.9", "u", "");
        row("moved over the tolerance", "a1@0,0", "a1@1.1,0", "n", "0");
        row("duplicated in the shown run", "a1@0,0", "a1@0,0 a1@0,0", "un", "");
        row("duplicated in the earlier run", "a1@0,0 a1@0,0", "a1@0,0", "u", "1");
        row("the nearest partner, not the first", "a1@0.8,0 a1@-0.1,0", "a1@0,0 a1@1.6,0", "uu",
            "");
        row("another layer", "a1@0,0", "b1@0,0", "n", "0");
        row("another item", "a1@0,0", "a2@0,0", "n", "0");
        row("nets in the other order", "a1@0,0/A,B", "a1@0,0/B,A", "u", "");
        row("another net", "a1@0,0/A,B", "a1@0,0/A,C", "n", "0");
        row("no earlier run", "", "a1@0,0 b2@0,0", "nn", "");
        row("nothing shown", "a1@0,0 b2@0,0", "", "", "0 1");
    }

    void compareRuns() {
        QFETCH(QString, earlier);
        QFETCH(QString, shown);
        QFETCH(QString, states);
        QFETCH(QString, fixed);
        const Run before(earlier);
        const Run now(shown);
        const wc::RunComparison comparison = wc::compareRuns(now.triage, before.triage);
        QString got;
        for (wc::RunState state : comparison.state) {
            got += state == wc::RunState::New ? QLatin1Char('n') : QLatin1Char('u');
        }
        QCOMPARE(got, states);
        QCOMPARE(numbers(comparison.fixed), fixed);
        QCOMPARE(int(comparison.count(wc::RunState::New)), states.count(QLatin1Char('n')));
        QCOMPARE(int(comparison.count(wc::RunState::Unchanged)), states.count(QLatin1Char('u')));
    }

    // Waivers made of the earlier run's hits: "h<n>" of hit n, "p<n>" of its two nets, "x" a
    // one-hit waiver whose identity is no identity. `covered` gives each shown hit's waiver.
    void applyWaivers_data() {
        wctest::columns<QString, QString, QString, QString, QString>("earlier", "waivers", "shown",
                                                                     "covered", "stale");
        row("one hit", "a1@0,0/A,B", "h0", "a1@0.5,0/A,B a1@5,0/A,B", "0-", "");
        row("one hit, gone", "a1@0,0/A,B", "h0", "a1@5,0/A,B", "-", "0");
        row("one hit of another layer", "a1@0,0", "h0", "b1@0,0", "-", "0");
        row("a net pair on every layer, of its item only", "a1@0,0/A,B", "p0",
            "a1@9,9/B,A a1@0,0/A,C a2@0,0/A,B b1@3,3/A,B", "0--0", "");
        row("one hit over a net pair", "a1@0,0/A,B a1@5,0/A,B", "p0 h1", "a1@0,0/A,B a1@5,0/A,B",
            "01", "");
        row("one hit over a net pair listed after it", "a1@0,0/A,B a1@5,0/A,B", "h1 p0",
            "a1@0,0/A,B a1@5,0/A,B", "10", "");
        row("a net pair that wins no hit is not stale", "a1@0,0/A,B", "h0 p0", "a1@0,0/A,B", "0",
            "");
        row("two net pairs of one pair of nets", "a1@0,0/A,B", "p0 p0", "a1@0,0/A,B", "0", "");
        row("a stale net pair", "a1@0,0/A,B", "p0", "a1@0,0/A,C a1@0,0/A", "--", "0");
        row("no identity", "a1@0,0", "x h0", "a1@0,0", "1", "0");
        row("two waivers of one hit", "a1@0,0", "h0 h0", "a1@0,0", "0", "1");
        row("close hits, each its nearest", "a1@0,0 a1@0.4,0", "h0 h1", "a1@0.3,0 a1@0.1,0", "10",
            "");
    }

    void applyWaivers() {
        QFETCH(QString, earlier);
        QFETCH(QString, waivers);
        QFETCH(QString, shown);
        QFETCH(QString, covered);
        QFETCH(QString, stale);
        const Run before(earlier);
        std::vector<analysis_waiver> list;
        for (const QString& token : waivers.split(QLatin1Char(' '))) {
            const std::size_t number = token.mid(1).toUInt();
            if (token == QLatin1String("x")) {
                list.push_back(wc::waiverForHit(before.triage, 0, kScope, "r", "u"));
                list.back().identity = "nonsense";
            } else if (token[0] == QLatin1Char('h')) {
                list.push_back(wc::waiverForHit(before.triage, number, kScope, "r", "u"));
            } else {
                list.push_back(*wc::waiverForNets(before.triage, number, kScope, "r", "u"));
            }
        }
        const Run now(shown);
        const wc::WaiverMatch match = wc::applyWaivers(now.triage, list);
        QString got;
        for (std::int32_t waiver : match.waiver) {
            got += waiver < 0 ? QLatin1Char('-') : QChar('0' + waiver);
        }
        QCOMPARE(got, covered);
        QCOMPARE(numbers(match.stale), stale);
        QCOMPARE(int(match.waived), covered.size() - covered.count(QLatin1Char('-')));
    }

    // Waivers of the hit "a1@1,2/<nets>" as fields(), the identity written "id".
    void waiverRecords_data() {
        wctest::columns<QString, QString, QString>("nets", "hit", "pair");
        row("two nets", "VCC,GND", "-1|SignalLayer|job1|pcb|0|0|a|GND,VCC,|id|harmless|ann|now",
            "-1|SignalLayer|job1|pcb|1|0||GND,VCC,||harmless|ann|now");
        row("one net", "GND", "-1|SignalLayer|job1|pcb|0|0|a|GND,|id|harmless|ann|now", "");
        row("no net", "", "-1|SignalLayer|job1|pcb|0|0|a||id|harmless|ann|now", "");
        row("one net twice", "A,A", "-1|SignalLayer|job1|pcb|0|0|a|A,A,|id|harmless|ann|now", "");
    }

    void waiverRecords() {
        QFETCH(QString, nets);
        QFETCH(QString, hit);
        QFETCH(QString, pair);
        const Run run(QStringLiteral("a1@1,2/") + nets);
        const QDateTime start = QDateTime::currentDateTime().addSecs(-1);
        auto stamped = [&start](analysis_waiver waiver) {
            const QDateTime time = QDateTime::fromString(QString::fromStdString(waiver.time),
                                                         QStringLiteral("yyyy.MM.dd hh:mm:ss"));
            waiver.time = time >= start && time <= QDateTime::currentDateTime() ? "now" : "?";
            return fields(waiver);
        };
        analysis_waiver one = wc::waiverForHit(run.triage, 0, kScope, "harmless", "ann");
        QCOMPARE(one.identity, run.triage[0].identity.text());
        one.identity = "id";
        QCOMPARE(stamped(one), hit);
        const auto two = wc::waiverForNets(run.triage, 0, kScope, "harmless", "ann");
        QCOMPARE(two ? stamped(*two) : QString(), pair);
        QVERIFY(!wc::waiverForNets(run.triage, 1, kScope, "harmless", "ann"));
        QVERIFY_EXCEPTION_THROWN(wc::waiverForHit(run.triage, 1, kScope, "", ""),
                                 std::out_of_range);
    }

    void waiverFileRoundTrip() {
        QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("waivers.json"));
        const Run run(QStringLiteral("a1@0,0/VCC,GND"));
        std::vector<analysis_waiver> waivers{
            wc::waiverForHit(run.triage, 0, kScope, "wide \"enough\"", "张三"),
            *wc::waiverForNets(run.triage, 0, kScope, "by design", "ann")};
        waivers[0].id = 7;
        waivers[0].history = {{"first", "bo", "2024.01.02 03:04:05"}, {"second", "张三", "now"}};
        QString error;
        QVERIFY(wc::writeWaiverFile(path, kScope, waivers, &error));
        std::vector<analysis_waiver> read(1);
        QVERIFY2(wc::readWaiverFile(path, kScope, read, &error), qPrintable(error));
        QCOMPARE(read.size(), waivers.size());
        waivers[0].id = -1;
        for (std::size_t i = 0; i < waivers.size(); ++i) {
            QCOMPARE(fields(read[i]), fields(waivers[i]));
        }
        // The file the refusals start from is a good one.
        QFile valid(path);
        QVERIFY(valid.open(QIODevice::WriteOnly) && valid.write(kValidFile.toUtf8()) > 0);
        valid.close();
        QVERIFY2(wc::readWaiverFile(path, kScope, read, &error), qPrintable(error));
        QVERIFY(read.size() == 1 && read[0].id == -1 && read[0].history.size() == 1);
        // A folder that does not exist: refused by name, nothing left behind.
        const QString nowhere = folder.filePath(QStringLiteral("missing/waivers.json"));
        QVERIFY(!wc::writeWaiverFile(nowhere, kScope, waivers, &error));
        QVERIFY2(error.contains(nowhere), qPrintable(error));
        QVERIFY(!QFile::exists(nowhere));
    }

    // The valid file with the first `from` replaced by `to` ("-": no file at all).
    void waiverFileRefusals_data() {
        wctest::columns<QString, QString, QString>("from", "to", "message");
        row("no file", "-", "", "cannot be read");
        row("not JSON", "]}]}", "]}]", "is not JSON: ");
        row("no object", kValidFile, "[1, 2]", "holds no JSON object");
        row("no format", R"("format": "waivers", )", "", R"("format" is missing or not a text)");
        row("another format", R"("waivers", "version")", R"("templates", "version")",
            R"("format" is not "waivers")");
        row("another version", R"("version": 1)", R"("version": 2)", "is of version 2");
        row("version as text", R"("version": 1)", R"("version": "1")",
            R"("version" is missing or not a whole number)");
        row("waivers not a list", R"("waivers": [{)", R"("waivers": 5, "x": [{)",
            R"("waivers" is missing or not a list)");
        row("a waiver not an object", R"("waivers": [{)", R"("waivers": [7, {)",
            R"("waivers[0]" is not an object)");
        row("a fraction of an item", R"("item": 1)", R"("item": 1.5)",
            R"("waivers[0].item" is missing or not a whole number)");
        row("another scope", R"("scope": "hit")", R"("scope": "layer")",
            R"("waivers[0].scope" is neither "hit" nor "net pair")");
        row("a net not a text", R"(["GND", "VCC"])", R"(["GND", 5])",
            R"("waivers[0].nets[1]" is missing or not a text)");
        row("a reason without user", R"("r", "user": "u", "time": "2024.01.02 03:04:05"}])",
            R"("r", "time": "2024.01.02 03:04:05"}])",
            R"("waivers[0].history[0].user" is missing or not a text)");
        row("another job", R"("job": "job1")", R"("job": "other")",
            "is for job other, step pcb, not for job job1, step pcb.");
        row("another step", R"("step": "pcb")", R"("step": "panel")",
            "is for job job1, step panel, not for job job1, step pcb.");
        row("another kind", R"("kind": "SignalLayer")", R"("kind": "SolderMask")",
            "holds waivers of the SolderMask analysis, not of the SignalLayer analysis.");
        row("a waiver of another job", R"("id": 3, "kind": "SignalLayer", "job": "job1")",
            R"("id": 3, "kind": "SignalLayer", "job": "other")", "is for job other, step pcb");
    }

    void waiverFileRefusals() {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, message);
        QTemporaryDir folder;
        // "%2" in the name: messages must not take it for a place of their own.
        const QString path = folder.filePath(QStringLiteral("waivers %2.json"));
        if (from != QLatin1String("-")) {
            QString text = kValidFile;
            QVERIFY(text.contains(from));
            text.replace(text.indexOf(from), from.size(), to);
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) >= 0);
        }
        std::vector<analysis_waiver> waivers(1);
        waivers[0].reason = "kept";
        QString error;
        QVERIFY(!wc::readWaiverFile(path, kScope, waivers, &error));
        QVERIFY(waivers.size() == 1 && waivers[0].reason == "kept");
        QVERIFY2(error.contains(path) && error.contains(message), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(tst_HitTriage)
#include "tst_HitTriage.moc"

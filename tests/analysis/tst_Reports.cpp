#include <QtTest>

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <QXmlStreamReader>
#include <cmath>
#include <memory>

#include "DataColumns.h"
#include "DataRows.h"
#include "analysis/Report.h"
#include "analysis/ReportOutput.h"
#include "analysis/ReportSchema.h"
#include "analysis/ResultAdapters.h"

using namespace Korvo::API;
using wctest::row;

namespace {

constexpr double kMil = 25400.0;
const wc::TriageScope kScope{"SignalLayer", "job1", "pcb"};

// A result written as hits "<layer> <P|L> <r|y|g|o> <x>,<y> <value>/<required> [<net>|<net>]"
// separated by ";", lengths in mil; P is "Pad to Pad Spacing", L "Line Width".
struct Run {
    explicit Run(const QString& text) : model(modelOf(text)), triage(model) {}
    static wc::ResultsModel modelOf(const QString& text) {
        auto result = std::make_shared<signal_check_result_map>();
        for (const QString& spec : text.split(QLatin1Char(';'))) {
            const QStringList part = spec.simplified().split(QLatin1Char(' '));
            const auto item =
                part[1] == QLatin1String("P") ? sli_pad_to_pad_spacing : sli_line_width;
            signal_check_result& record = (*result)[part[0].toStdString()][item];
            record.item = item;
            const int level = QStringLiteral("rygo").indexOf(part[2]);
            auto* list =
                std::array{&record.red, &record.yellow, &record.green, &record.other}[level];
            const QStringList at = part[3].split(QLatin1Char(','));
            const QStringList measure = part[4].split(QLatin1Char('/'));
            check_info hit;
            const double x = at[0].toDouble() * kMil;
            const double y = at[1].toDouble() * kMil;
            hit.shape.points = {{x - 1000.0, y}, {x + 1000.0, y}};  // the middle at (x, y)
            hit.value = measure[0].toDouble() * kMil;
            hit.required = measure[1].toDouble() * kMil;
            for (const QString& net : part.value(5).split(QLatin1Char('|'), Qt::SkipEmptyParts)) {
                hit.nets.push_back(net.toStdString());
            }
            list->push_back(hit);
        }
        return wc::modelOf(result, {"SignalLayerRanges", "", {}});
    }
    wc::ResultsModel model;
    wc::TriageRun triage;
};

// Numbered in the model's order: bottom E 0, F 1, G 2; top A 3, B 4, C 5, D 6. B moved 2 mil
// since the earlier run, so its earlier self is fixed, as is the earlier X.
const QString kShown = QStringLiteral(
    "top P r 1,2 3/4 GND|VCC; top P y 10,-5 3.5/4 N,1|N\"2; top P g 20,0 4.5/4;"
    "top L r 0,0 2/3 GND; bottom P g 5,5 4.8/5 A|B; bottom P o 7.25,-1.5 6/0;"
    "bottom L y 3,3 3.25/4 VCC");
const QString kEarlier = QStringLiteral(
    "top P r 1,2 3/4 GND|VCC; top P y 12,-5 3.5/4 N,1|N\"2; top L r 0,0 2/3 GND;"
    "bottom P g 5,5 4.8/5 A|B; bottom L r 30,30 1/3 VCC");

// Every hit of the scene as the CSV report's columns, "|" between them, lengths in mil, nets
// joined by ";"; "@" stands for the identity.
const QStringList kHits = {
    "bottom|Pad to Pad Spacing|A;B|4.8|5|-0.2|5|5|  |green|unchanged|unchanged|@|",
    "bottom|Pad to Pad Spacing||6|||7.25|-1.5||other|new|new|@|",
    "bottom|Line Width|VCC|3.25|4|-0.75|3|3|!|yellow|new|new|@|",
    "top|Pad to Pad Spacing|GND;VCC|3|4|-1|1|2|!!|red|waived|unchanged|@|by design",
    "top|Pad to Pad Spacing|N,1;N\"2|3.5|4|-0.5|10|-5|!|yellow|new|new|@|",
    "top|Pad to Pad Spacing||4.5|4|0.5|20|0|  |green|new|new|@|",
    "top|Line Width|GND|2|3|-1|0|0|!!|red|waived|unchanged|@|wide enough",
    "bottom|Line Width|VCC|1|3|-2|30|30|!!|red|fixed||@|",
    "top|Pad to Pad Spacing|N,1;N\"2|3.5|4|-0.5|12|-5|!|yellow|fixed||@|",
};

const QStringList kLevels{"red", "yellow", "green", "other"};

std::array<bool, 4> levelsOf(const QString& text) {
    return {text.contains('r'), text.contains('y'), text.contains('g'), text.contains('o')};
}

// The shown run with its earlier run and waivers: of hit D, a stale net pair, of hit A, and of
// A's nets, which matches A but does not win it and so is not stale.
struct Scene {
    Run shown{kShown};
    Run earlier{kEarlier};
    std::vector<analysis_waiver> waivers;
    wc::WaiverMatch match;
    wc::RunComparison comparison;

    Scene() {
        waivers.push_back(wc::waiverForHit(shown.triage, 6, kScope, "wide enough", "ann"));
        waivers.push_back(*wc::waiverForNets(shown.triage, 3, kScope, "stale", "ann"));
        waivers.back().nets = {"P", "Q"};
        waivers.push_back(wc::waiverForHit(shown.triage, 3, kScope, "by design", "bo"));
        waivers.push_back(*wc::waiverForNets(shown.triage, 3, kScope, "same nets", "bo"));
        match = wc::applyWaivers(shown.triage, waivers);
        comparison = wc::compareRuns(shown.triage, earlier.triage);
    }

    wc::ReportInput input(wc::ReportUnit unit, const QString& levels = QStringLiteral("rygo"),
                          bool compared = true, bool waived = true) const {
        wc::ReportInput in;
        in.kind = QStringLiteral("SignalLayer");
        in.caption = QStringLiteral(" Signal Layer Checks ");
        in.job = QStringLiteral("job1");
        in.step = QStringLiteral("pcb");
        in.time = QDateTime(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::OffsetFromUTC, 3600);
        in.unit = unit;
        in.parameters = {{"Spacing", "10"}, {"Layer", ".type=signal"}};
        in.levels = levelsOf(levels);
        in.not_run = {{"Drill", "no drill layer"}};
        in.model = &shown.model;
        in.run = &shown.triage;
        if (waived) {
            in.waivers = &waivers;
            in.waiver_match = &match;
        }
        if (compared) {
            in.earlier_model = &earlier.model;
            in.earlier = &earlier.triage;
            in.comparison = &comparison;
            in.earlier_label = QStringLiteral("2024.01.01 10:00:00");
        }
        return in;
    }

    QByteArray write(wc::ReportFormat format, const wc::ReportInput& in) const {
        wc::ReportModel report;
        QString error;
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        if (!wc::buildReport(in, report, &error) ||
            !wc::writeReport(report, format, buffer, &error)) {
            qWarning() << error;
            return {};
        }
        return buffer.data();
    }

    // kHits with each hit's identity.
    QStringList expected() const {
        QStringList out;
        for (int i = 0; i < kHits.size(); ++i) {
            const std::size_t fixed[] = {1, 3};
            const auto& identity =
                i < 7 ? shown.triage[i].identity : earlier.triage[fixed[i - 7]].identity;
            out << QString(kHits[i]).replace('@', QString::fromStdString(identity.text()));
        }
        return out;
    }
};

// A length of the report as mil, to a thousandth; empty for null.
QString mil(const QJsonValue& value, bool mm) {
    if (value.isNull() || value.isUndefined() || value == QString()) {
        return {};
    }
    const double v = value.isString() ? value.toString().toDouble() : value.toDouble();
    return QString::number(std::round((mm ? v / 0.0254 : v) * 1000.0) / 1000.0 + 0.0);
}

QString texts(const QJsonValue& list) {
    QStringList out;
    for (const QJsonValue& text : list.toArray()) {
        out << text.toString();
    }
    return out.join(QLatin1Char(';'));
}

// A hit of the JSON report (or one made of a SARIF result) in the scene's form.
QString hitLine(const QJsonObject& hit, bool mm) {
    QStringList out;
    for (const char* column : {"layer", "item", "nets", "value", "required", "difference", "x", "y",
                               "severity", "level", "state", "baseline", "identity", "waiver"}) {
        const QJsonValue value = hit[column];
        out << (value.isArray()                      ? texts(value)
                : value.isObject()                   ? value["reason"].toString()
                : value.isDouble() || value.isNull() ? mil(value, mm)
                                                     : value.toString());
    }
    return out.join(QLatin1Char('|'));
}

QStringList fromJson(const QByteArray& bytes, bool mm) {
    const QJsonObject root = QJsonDocument::fromJson(bytes).object();
    QStringList out;
    for (const char* list : {"hits", "fixed"}) {
        for (const QJsonValue& hit : root[list].toArray()) {
            out << hitLine(hit.toObject(), mm);
        }
    }
    return out;
}

// RFC 4180: fields quoted or not, quotes doubled inside quotes, each record ended by CR LF.
// What is not of that form ends the reading with a field "<malformed>".
QList<QStringList> parseCsv(const QString& text) {
    static const QRegularExpression field(
        QStringLiteral("\\G(?:\"((?:[^\"]|\"\")*)\"|([^,\"\\r\\n]*))(,|\\r\\n)"));
    QList<QStringList> records{{}};
    for (int at = 0; at < text.size();) {
        const QRegularExpressionMatch match = field.match(text, at);
        if (!match.hasMatch()) {
            records.last() << QStringLiteral("<malformed>");
            break;
        }
        records.last() << match.captured(1).replace(QLatin1String("\"\""), QLatin1String("\"")) +
                              match.captured(2);
        at = match.capturedEnd();
        if (match.captured(3) != QLatin1String(",")) {
            records << QStringList();
        }
    }
    records.removeLast();
    return records;
}

QStringList fromCsv(const QByteArray& bytes, bool mm) {
    const QList<QStringList> records = parseCsv(QString::fromUtf8(bytes));
    QStringList out;
    for (QStringList fields : records.mid(1)) {
        fields[2].replace(QLatin1String("; "), QLatin1String(";"));
        for (int i = 3; i < 8; ++i) {
            fields[i] = mil(fields[i], mm);
        }
        out << fields.join(QLatin1Char('|'));
    }
    const QString header = QStringLiteral(
                               "Layer,Item,Nets,Value%1,Required%1,Difference%1,X%1,Y%1,"
                               "Severity,Level,State,Baseline,Identity,Waiver reason")
                               .arg(mm ? QStringLiteral(" (mm)") : QStringLiteral(" (mil)"));
    if (records.value(0).join(QLatin1Char(',')) != header) {
        out << QStringLiteral("<header>");
    }
    return out;
}

// The hits of a SARIF run in the scene's form; what does not hold together (rule, artifact,
// suppression kind, a fixed hit not "absent") is marked in the line.
QStringList fromSarif(const QByteArray& bytes, bool mm) {
    const QJsonObject run = QJsonDocument::fromJson(bytes)["runs"][0].toObject();
    const QJsonArray rules = run["tool"]["driver"]["rules"].toArray();
    const QJsonArray artifacts = run["artifacts"].toArray();
    const QStringList levels{"error", "warning", "note", "none"};
    QStringList out;
    for (const QJsonValue& value : run["results"].toArray()) {
        const QJsonObject r = value.toObject();
        const QJsonObject p = r["properties"].toObject();
        const QJsonObject physical = r["locations"][0]["physicalLocation"].toObject();
        const QJsonObject at = physical["region"]["properties"].toObject();
        const QString baseline = r["baselineState"].toString();
        QJsonObject hit = p;
        hit["x"] = at["x"];
        hit["y"] = at["y"];
        hit["level"] = kLevels.value(levels.indexOf(r["level"].toString()));
        hit["baseline"] = baseline == QLatin1String("absent") ? QString() : baseline;
        hit["identity"] = r["partialFingerprints"]["hitIdentity/v1"];
        if (r.contains("suppressions")) {
            hit["waiver"] = QJsonObject{{"reason", r["suppressions"][0]["justification"]}};
        }
        QString line = hitLine(hit, mm);
        const QString rule = QStringLiteral("SignalLayer/") + p["item"].toString();
        const QString uri = QString::fromLatin1(QUrl::toPercentEncoding(p["layer"].toString()));
        const QJsonObject artifact = physical["artifactLocation"].toObject();
        if (r["ruleId"] != rule || rules[r["ruleIndex"].toInt()]["id"] != rule) {
            line += QStringLiteral("<rule>");
        }
        if (artifact["uri"] != uri ||
            artifacts[artifact["index"].toInt()]["location"]["uri"] != uri ||
            at["unit"] != (mm ? "mm" : "mil")) {
            line += QStringLiteral("<artifact>");
        }
        if (r.contains("suppressions") && r["suppressions"][0]["kind"] != "external") {
            line += QStringLiteral("<suppression>");
        }
        if ((baseline == QLatin1String("absent")) != (p["state"] == "fixed")) {
            line += QStringLiteral("<absent>");
        }
        out << line;
    }
    return out;
}

// A device that takes nothing.
class FullDisk : public QIODevice {
public:
    FullDisk() {
        open(QIODevice::WriteOnly);
        setErrorString(QStringLiteral("No space left on device"));
    }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64) override { return -1; }
};

QJsonObject schema() {
    QFile file(QStringLiteral(WIDGET_COMMON_REPORT_SCHEMA));
    file.open(QIODevice::ReadOnly);
    return QJsonDocument::fromJson(file.readAll()).object();
}

// "7: red 0/1/1/1, ..." (new/unchanged/waived/fixed per reported level) of a JSON counts object.
QString counts(const QJsonObject& counts) {
    QStringList levels;
    for (const QString& level : kLevels) {
        const QJsonObject n = counts[level].toObject();
        const QString states = QStringLiteral("%1 %2/%3/%4/%5").arg(level);
        levels << (n.isEmpty() ? QString()
                               : states.arg(n["new"].toInt())
                                     .arg(n["unchanged"].toInt())
                                     .arg(n["waived"].toInt())
                                     .arg(n["fixed"].toInt()));
    }
    levels.removeAll(QString());
    return QString::number(counts["hits"].toInt()) + QStringLiteral(": ") + levels.join(", ");
}

}  // namespace

class tst_Reports : public QObject {
    Q_OBJECT
private slots:
    // Each format read back gives the scene's hits, in mil and in mm alike.
    void hitsInEveryFormat_data() {
        wctest::columns<int, bool>("format", "mm");
        for (const auto& [name, format] :
             {std::pair{"json", wc::ReportFormat::Json}, std::pair{"csv", wc::ReportFormat::Csv},
              std::pair{"sarif", wc::ReportFormat::Sarif}}) {
            row(QByteArray(name).append(" in mil").constData(), int(format), false);
            row(QByteArray(name).append(" in mm").constData(), int(format), true);
        }
    }

    void hitsInEveryFormat() {
        QFETCH(int, format);
        QFETCH(bool, mm);
        const Scene scene;
        const QByteArray bytes =
            scene.write(wc::ReportFormat(format),
                        scene.input(mm ? wc::ReportUnit::Millimetre : wc::ReportUnit::Mil));
        QVERIFY(!bytes.isEmpty());
        const QStringList got = format == int(wc::ReportFormat::Json)  ? fromJson(bytes, mm)
                                : format == int(wc::ReportFormat::Csv) ? fromCsv(bytes, mm)
                                                                       : fromSarif(bytes, mm);
        QCOMPARE(got, scene.expected());
        if (format == int(wc::ReportFormat::Csv)) {
            // A net name with a comma and a quote: one quoted field, the quote doubled.
            QVERIFY(bytes.contains(R"(,"N,1; N""2",)"));
            QVERIFY(bytes.contains(R"(,"  ",green,)"));
        }
    }

    // The JSON report conforms to docs/report-schema.json and says what was run and counted.
    void jsonReport_data() {
        wctest::columns<QString, bool, bool, QString, QString, QString>(
            "levels", "compared", "waived", "total", "comparison", "waivers");
        row("everything", "rygo", true, true,
            "7: red 0/0/2/1, yellow 2/0/0/1, green 1/1/0/0, other 1/0/0/0", "4/1/2",
            "1 false, 0 true, 1 false, 0 false");
        row("red and yellow only", "ry", true, true, "4: red 0/0/2/1, yellow 2/0/0/1", "2/0/2",
            "1 false, 0 true, 1 false, 0 false");
        row("no earlier run, no waivers", "rygo", false, false,
            "7: red 2/0/0/0, yellow 2/0/0/0, green 2/0/0/0, other 1/0/0/0", "null", "null");
    }

    void jsonReport() {
        QFETCH(QString, levels);
        QFETCH(bool, compared);
        QFETCH(bool, waived);
        QFETCH(QString, total);
        QFETCH(QString, comparison);
        QFETCH(QString, waivers);
        const Scene scene;
        const QByteArray bytes = scene.write(
            wc::ReportFormat::Json, scene.input(wc::ReportUnit::Mil, levels, compared, waived));
        const QJsonObject root = QJsonDocument::fromJson(bytes).object();  // {} if not JSON
        const QJsonObject rules = schema();
        QVERIFY(!rules.isEmpty());
        const QStringList problems = wc::schemaProblems(rules, root);
        QVERIFY2(problems.isEmpty(), qPrintable(problems.join('\n')));

        QCOMPARE(counts(root["summary"]["total"].toObject()), total);
        const QJsonArray rows = root["summary"]["rows"].toArray();
        QCOMPARE(rows.size(), 4);
        QCOMPARE(root["hits"].toArray().size(), total.section(':', 0, 0).toInt());
        QCOMPARE(root["fixed"].toArray().size(), compared ? 2 : 0);
        const QJsonObject against = root["comparison"].toObject();
        QCOMPARE(against.isEmpty() ? QStringLiteral("null")
                                   : QStringLiteral("%1/%2/%3")
                                         .arg(against["new"].toInt())
                                         .arg(against["unchanged"].toInt())
                                         .arg(against["fixed"].toInt()),
                 comparison);
        QStringList listed;
        for (const QJsonValue& waiver : root["waivers"].toArray()) {
            listed << QString::number(waiver["hits"].toInt()) +
                          (waiver["stale"].toBool() ? " true" : " false");
        }
        QCOMPARE(root["waivers"].isNull() ? QStringLiteral("null") : listed.join(", "), waivers);
        QString reported;
        for (const QJsonValue& level : root["levels"].toArray()) {
            if (level["reported"].toBool()) {
                reported += level["level"].toString().at(0);
            }
        }
        QCOMPARE(reported, levels);
        QCOMPARE(root["analysis"]["caption"].toString(), QStringLiteral("Signal Layer Checks"));
        QCOMPARE(root["time"].toString(), QStringLiteral("2024-01-02T03:04:05+01:00"));
        QCOMPARE(root["parameters"][1]["value"].toString(), QStringLiteral(".type=signal"));
        QCOMPARE(root["checksNotRun"][0]["reason"].toString(), QStringLiteral("no drill layer"));
    }

    // One test case per item and layer, failed by its open hits; the checks not run skipped.
    void junitReport_data() {
        wctest::columns<QString, bool, QString, QString, QString>("levels", "mm", "totals", "cases",
                                                                  "message");
        row("every level, mil", "rygo", false, "5 3 1",
            "bottom/Pad to Pad Spacing 2, bottom/Line Width 1 fixed, "
            "top/Pad to Pad Spacing 2 waived, top/Line Width 0 waived, /Drill skipped",
            "Pad to Pad Spacing on bottom: 4.8 mil, required 5 mil (difference -0.2 mil), "
            "at (5, 5) mil, nets A; B");
        row("red and yellow, mm", "ry", true, "5 2 1",
            "bottom/Pad to Pad Spacing 0, bottom/Line Width 1 fixed, "
            "top/Pad to Pad Spacing 1 waived, top/Line Width 0 waived, /Drill skipped",
            "Line Width on bottom: 0.08255 mm, required 0.1016 mm (difference -0.01905 mm), "
            "at (0.0762, 0.0762) mm, net VCC");
    }

    void junitReport() {
        QFETCH(QString, levels);
        QFETCH(bool, mm);
        QFETCH(QString, totals);
        QFETCH(QString, cases);
        QFETCH(QString, message);
        const Scene scene;
        const QByteArray bytes =
            scene.write(wc::ReportFormat::JUnit,
                        scene.input(mm ? wc::ReportUnit::Millimetre : wc::ReportUnit::Mil, levels));
        QXmlStreamReader xml(bytes);
        QStringList got;  // "<layer>/<item> <failures>[ <state of its other hits>]"
        QString first;
        int failures = 0;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement) {
                continue;
            }
            const QXmlStreamAttributes a = xml.attributes();
            const auto value = [&a](const char* name) { return a.value(name).toString(); };
            const QString name = xml.name().toString();
            if (name == QLatin1String("testsuites") || name == QLatin1String("testsuite")) {
                QCOMPARE(value("tests") + ' ' + value("failures") + ' ' + value("skipped"), totals);
                QCOMPARE(value("errors"), QStringLiteral("0"));
            } else if (name == QLatin1String("testcase")) {
                QCOMPARE(value("time"), QStringLiteral("0"));
                got << value("classname").mid(12) + '/' + value("name") + QStringLiteral(" 0");
                failures = 0;
            } else if (name == QLatin1String("failure")) {
                first = first.isEmpty() ? value("message") : first;
                got.last() = got.last().section(' ', 0, -2) + ' ' + QString::number(++failures);
            } else if (name == QLatin1String("skipped")) {
                got.last() = got.last().section(' ', 0, -2) + QStringLiteral(" skipped");
            } else if (name == QLatin1String("system-out")) {
                got.last() += ' ' + xml.readElementText().section(QRegularExpression("[ :]"), 0, 0);
            }
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(got.join(QStringLiteral(", ")), cases);
        QCOMPARE(first, message);
    }

    // Texts of a result come from files: whatever bytes they hold, each format stays well formed
    // and valid UTF-8. Numbers are rounded, never in exponent form, never "-0".
    void escaping_data() {
        wctest::columns<QString, QByteArray, QByteArray>("format", "input", "written");
        row("json: quote and backslash", "json", QByteArray("a\"b\\c"),
            QByteArray("\"a\\\"b\\\\c\""));
        row("json: controls", "json", QByteArray("a\x01\tb\n"), QByteArray("\"a\\u0001\\tb\\n\""));
        row("json: not UTF-8", "json", QByteArray("a\xff\xed\xa0\x80"),
            QByteArray("\"a\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\""));
        row("json: UTF-8 kept", "json", QByteArray("\xe5\xbc\xa0\xf0\x9f\x98\x80"),
            QByteArray("\"\xe5\xbc\xa0\xf0\x9f\x98\x80\""));
        row("xml: markup", "xml", QByteArray("<a & \"b\">"),
            QByteArray("&lt;a &amp; &quot;b&quot;&gt;"));
        row("xml: controls", "xml", QByteArray("a\x01\tb\n"),
            QByteArray("a\xef\xbf\xbd&#9;b&#10;"));
        row("csv: comma and quote", "csv", QByteArray("N,1\""), QByteArray("\"N,1\"\"\""));
        row("csv: line break", "csv", QByteArray("a\r\nb"), QByteArray("\"a\r\nb\""));
        row("csv: blanks at the ends", "csv", QByteArray("  "), QByteArray("\"  \""));
        row("csv: overlong form", "csv", QByteArray("\xc0\x80"),
            QByteArray("\xef\xbf\xbd\xef\xbf\xbd"));
        row("number: a fraction", "5", QByteArray("3.2"), QByteArray("3.2"));
        row("number: binary noise", "5", QByteArray("0.30000000000000004"), QByteArray("0.3"));
        row("number: the last place", "5", QByteArray("0.00001"), QByteArray("0.00001"));
        row("number: rounded up", "6", QByteArray("-2.4999996"), QByteArray("-2.5"));
        row("number: no -0", "5", QByteArray("-0.000001"), QByteArray("0"));
        row("number: large", "5", QByteArray("1234567.891"), QByteArray("1234567.891"));
        row("number: beyond 64 bits", "5", QByteArray("1e20"), QByteArray("100000000000000000000"));
        row("number: not a number", "5", QByteArray("nan"), QByteArray(""));
    }

    void escaping() {
        QFETCH(QString, format);
        QFETCH(QByteArray, input);
        QFETCH(QByteArray, written);
        std::string out;
        const std::string_view text(input.constData(), std::size_t(input.size()));
        if (format == QLatin1String("json")) {
            wc::appendJsonString(out, text);
        } else if (format == QLatin1String("xml")) {
            wc::appendXmlText(out, text);
        } else if (format == QLatin1String("csv")) {
            wc::appendCsvField(out, text);
        } else {
            wc::appendNumber(out, input.toDouble(), format.toInt());
        }
        QCOMPARE(QByteArray::fromStdString(out), written);
    }

    // The validator finds what breaks the schema, so that a conforming report means something.
    void schemaValidator_data() {
        wctest::columns<QString, QString, bool, QString>("from", "to", "inSchema", "problem");
        row("no unit", "\"unit\": \"mil\",", "", false, "$: \"unit\" is missing");
        row("another unit", "\"unit\": \"mil\"", "\"unit\": \"inch\"", false,
            "$.unit: not one of the values allowed");
        row("another version", "\"version\": 1", "\"version\": 2", false,
            "$.version: not the value required");
        row("a value as text", "\"value\": 4.8", "\"value\": \"4.8\"", false,
            "$.hits[0].value: not of the type number");
        row("a member too many", "\"unit\": \"mil\"", "\"unit\": \"mil\", \"colour\": 1", false,
            "$.colour: nothing is allowed here");
        row("a bad identity", "\"unchanged\", \"identity\": \"", "\"unchanged\", \"identity\": \"x",
            false, "$.hits[0].identity: \"x");
        row("a negative count", "{\"hits\": 7", "{\"hits\": -7", false,
            "$.summary.total.hits: below 0");
        row("a fraction of a count", "{\"hits\": 7", "{\"hits\": 7.5", false,
            "$.summary.total.hits: not of the type integer");
        row("a keyword not checked", "\"minItems\": 4", "\"maxItems\": 4", true,
            "schema keyword \"maxItems\" is not checked");
        row("a reference to nowhere", "\"#/$defs/level\"", "\"#/$defs/levels\"", true,
            "schema reference \"#/$defs/levels\" leads nowhere");
    }

    void schemaValidator() {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(bool, inSchema);
        QFETCH(QString, problem);
        const Scene scene;
        QString report = QString::fromUtf8(
            scene.write(wc::ReportFormat::Json, scene.input(wc::ReportUnit::Mil)));
        QString rules = QString::fromUtf8(QJsonDocument(schema()).toJson());
        QString& text = inSchema ? rules : report;
        QVERIFY(text.contains(from));
        text.replace(text.indexOf(from), from.size(), to);
        const QStringList problems =
            wc::schemaProblems(QJsonDocument::fromJson(rules.toUtf8()).object(),
                               QJsonDocument::fromJson(report.toUtf8()).object());
        QVERIFY2(!problems.isEmpty() && problems.filter(problem).size() == problems.size(),
                 qPrintable(problems.join('\n')));
    }

    // Files are written whole or not at all, and an existing file only with force.
    void saveReport_data() {
        wctest::columns<QString, QString, bool, QString>("existing", "name", "force", "message");
        row("a new file", "", "report.json", false, "");
        row("an existing file", "file", "report.json", false, "already exists");
        row("an existing file, forced", "file", "report.json", true, "");
        row("a folder that does not exist", "", "missing/report.json", true, "does not exist");
        row("a folder", "folder", "report.json", true, "it is a folder");
    }

    void saveReport() {
        QFETCH(QString, existing);
        QFETCH(QString, name);
        QFETCH(bool, force);
        QFETCH(QString, message);
        const Scene scene;
        wc::ReportModel report;
        QVERIFY(wc::buildReport(scene.input(wc::ReportUnit::Mil), report, nullptr));
        QTemporaryDir folder;
        const QString path = folder.filePath(name);
        QFile old(path);
        if (existing == QLatin1String("file")) {
            QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old report") == 10);
            old.close();
        } else if (existing == QLatin1String("folder")) {
            QVERIFY(QDir(folder.path()).mkdir(name));
        }
        QString error;
        const bool saved = wc::saveReport(report, wc::ReportFormat::Json, path, force, &error);
        QCOMPARE(saved, message.isEmpty());
        QVERIFY2(saved || (error.contains(path) && error.contains(message)), qPrintable(error));
        // Nothing beside the report: no temporary file, no folder made.
        QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 saved || !existing.isEmpty() ? QStringList{"report.json"} : QStringList{});
        if (existing != QLatin1String("folder") && old.open(QIODevice::ReadOnly)) {
            const QByteArray content = old.readAll();
            QCOMPARE(content == "old report", !saved);
            QVERIFY(!saved ||
                    QJsonDocument::fromJson(content)["format"] == QLatin1String("analysis report"));
        }
    }

    // A device that refuses the report: every writer says so.
    void writeFailure_data() {
        wctest::columns<int>("format");
        row("json", int(wc::ReportFormat::Json));
        row("csv", int(wc::ReportFormat::Csv));
        row("junit", int(wc::ReportFormat::JUnit));
        row("sarif", int(wc::ReportFormat::Sarif));
    }

    void writeFailure() {
        QFETCH(int, format);
        const Scene scene;
        wc::ReportModel report;
        QVERIFY(wc::buildReport(scene.input(wc::ReportUnit::Mil), report, nullptr));
        FullDisk disk;
        QString error;
        QVERIFY(!wc::writeReport(report, wc::ReportFormat(format), disk, &error));
        QCOMPARE(error, QStringLiteral("No space left on device"));
        QCOMPARE(wc::reportFormat(wc::reportFormatName(wc::ReportFormat(format)).toUpper()),
                 std::optional(wc::ReportFormat(format)));
    }

    // Pieces of other results are refused, and the report is left as it was.
    void buildRefusals_data() {
        wctest::columns<QString, QString>("fault", "message");
        row("no result", "model", "has no result");
        row("no run", "run", "has no result");
        row("waivers without their match", "match", "were not applied");
        row("a match of another run", "other match", "were not applied");
        row("no earlier run", "earlier", "was not compared");
        row("a comparison of another run", "other comparison", "was not compared");
    }

    void buildRefusals() {
        QFETCH(QString, fault);
        QFETCH(QString, message);
        const Scene scene;
        const Run other(QStringLiteral("top P r 1,2 3/4"));
        const wc::WaiverMatch other_match = wc::applyWaivers(other.triage, scene.waivers);
        const wc::RunComparison other_comparison = wc::compareRuns(other.triage, other.triage);
        wc::ReportInput in = scene.input(wc::ReportUnit::Mil);
        in.model = fault == QLatin1String("model") ? nullptr : in.model;
        in.run = fault == QLatin1String("run") ? nullptr : in.run;
        in.waiver_match = fault == QLatin1String("match")         ? nullptr
                          : fault == QLatin1String("other match") ? &other_match
                                                                  : in.waiver_match;
        in.earlier = fault == QLatin1String("earlier") ? nullptr : in.earlier;
        in.comparison =
            fault == QLatin1String("other comparison") ? &other_comparison : in.comparison;
        wc::ReportModel report;
        report.rows.resize(3);
        QString error;
        QVERIFY(!wc::buildReport(in, report, &error));
        QVERIFY2(error.contains(message), qPrintable(error));
        QCOMPARE(report.rows.size(), std::size_t(3));
    }
};

QTEST_GUILESS_MAIN(tst_Reports)
#include "tst_Reports.moc"

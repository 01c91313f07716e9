// Excellon coordinate formats: what headers say, which reading registers the holes onto the
// copper, libgerbv reading a drill file in the chosen format, and the gerbv example boards'
// plated holes landing in their pads.

#include <QtTest>
#include <cmath>

#include "DataRows.h"
#include "DrillFormat.h"
#include "GerberImport.h"
#include "JobFromFolder.h"
#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "TemporaryWorkingDirectory.h"

using namespace Korvo::API;
using wcref::DrillChoice;
using wcref::DrillFormat;
using wcref::DrillHeader;
using wcref::DrillNumberFormat;
using wcref::HoleText;
using wcref::PadSite;

namespace {

const QString kExamples = "/usr/share/doc/gerbv/examples/";
constexpr double kNmPerInch = 25400000.0;

// "INCH,LZ 2:3", "METRIC,TZ 3:3", "INCH,DP" (decimal points) as a format.
DrillNumberFormat formatOf(const QString& text) {
    DrillNumberFormat f;
    f.units = text.startsWith("METRIC") ? "mm" : "inch";
    f.zeros = text.contains(",LZ") ? "trailing" : text.contains(",DP") ? "none" : "leading";
    const QRegularExpressionMatch m = QRegularExpression("(\\d):(\\d)").match(text);
    f.integer_digits = m.hasMatch() ? m.captured(1).toInt() : 2;
    f.decimal_digits = m.hasMatch() ? m.captured(2).toInt() : 4;
    return f;
}

// `value` (in the format's unit) written as a drill file writes it; zeros "none" writes a
// decimal point.
QString written(double value, const DrillNumberFormat& f) {
    const QString sign = value < 0 ? "-" : "";
    if (f.zeros == "none") {
        return sign + QString::number(std::abs(value), 'f', f.decimal_digits);
    }
    const qint64 n = std::llround(std::abs(value) * std::pow(10.0, f.decimal_digits));
    QString digits = QString::number(n).rightJustified(f.integer_digits + f.decimal_digits, '0');
    if (f.zeros == "trailing") {
        while (digits.size() > 1 && digits.endsWith('0')) {
            digits.chop(1);
        }
    } else {
        while (digits.size() > 1 && digits.startsWith('0')) {
            digits.remove(0, 1);
        }
    }
    return sign + digits;
}

// Hole centres of the synthetic board, in inch: spread irregularly over 4 x 3 inch.
std::vector<QPointF> holeCentres(int count) {
    std::vector<QPointF> out;
    for (int k = 0; k < count; ++k) {
        out.emplace_back(0.25 + 0.31 * k + 0.07 * (k % 3), 0.4 + 0.23 * (k % 7) + 0.05 * (k % 2));
    }
    return out;
}

std::vector<HoleText> holeTexts(const std::vector<QPointF>& centres, const DrillNumberFormat& f) {
    const double scale = f.units == "mm" ? 25.4 : 1.0;
    std::vector<HoleText> out;
    for (const QPointF& c : centres) {
        out.push_back(
            {written(c.x() * scale, f).toStdString(), written(c.y() * scale, f).toStdString()});
    }
    return out;
}

// 60 mil round pads at the holes, shifted by `shift` inch, and SMD pads between them.
std::vector<PadSite> padsAt(const std::vector<QPointF>& centres, double shift) {
    std::vector<PadSite> out;
    for (const QPointF& c : centres) {
        for (const QPointF& at : {c, c + QPointF(0.12, 0.05)}) {
            PadSite p;
            p.x = (at.x() + shift) * kNmPerInch;
            p.y = (at.y() + shift) * kNmPerInch;
            p.half_width = p.half_height = 0.03 * kNmPerInch;
            p.round = true;
            out.push_back(p);
        }
    }
    return out;
}

QByteArray drillFile(const QString& header, const std::vector<HoleText>& holes) {
    QByteArray out = "M48\n" + header.toLatin1() + "\nT01C0.030\n%\nT01\n";
    for (const HoleText& h : holes) {
        out += "X" + QByteArray::fromStdString(h.x) + "Y" + QByteArray::fromStdString(h.y) + "\n";
    }
    return out + "M30\n";
}

QByteArray copperFile(const std::vector<QPointF>& centres) {
    QByteArray out = "%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.0600*%\n%ADD11R,0.0400X0.0200*%\nD10*\n";
    for (const QPointF& c : centres) {
        out += "X" + QByteArray::number(qRound(c.x() * 10000)) + "Y" +
               QByteArray::number(qRound(c.y() * 10000)) + "D03*\n";
    }
    out += "D11*\nX1000Y1000D03*\n";
    return out + "M02*\n";
}

std::vector<point> centresOf(const std::vector<featureInfo>& features,
                             const std::string& plating = "") {
    std::vector<point> out;
    for (const featureInfo& f : features) {
        const auto drill = f.attributes.find(".drill");
        if (f.type == feature_pad && drill != f.attributes.end() &&
            (plating.empty() || drill->second == plating)) {
            out.push_back(f.start);
        }
    }
    return out;
}

}  // namespace

class tst_DrillFormat : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob("import"));
    }

    void headers_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("units");
        QTest::addColumn<QString>("zeros");  // left out
        QTest::addColumn<int>("integer");
        QTest::addColumn<int>("decimal");
        QTest::addColumn<QString>("plating");
        QTest::addColumn<bool>("points");
        // LZ keeps the leading zeros: the trailing ones are left out.
        wctest::row("protel", "M48\n;FILE_FORMAT=2:3\nINCH,LZ\n;TYPE=PLATED\nT1C0.012\n%\n", "inch",
                    "trailing", 2, 3, "plated", false);
        wctest::row("format comment with spaces", "M48\n; FILE_FORMAT = 4 : 4\nINCH,TZ\n%\n",
                    "inch", "leading", 4, 4, "", false);
        wctest::row("metric with digits", "M48\nMETRIC,TZ,000.000\n%\n", "mm", "leading", 3, 3, "",
                    false);
        wctest::row("metric digits before zeros", "M48\nMETRIC,0000.00,LZ\n%\n", "mm", "trailing",
                    4, 2, "", false);
        wctest::row("inch digits", "M48\nINCH,00.0000\n%\n", "inch", "", 2, 4, "", false);
        wctest::row("M71 after the header", "M48\nT01C.864\n%\nG90\nM71\nG05\nX40500Y6270\n", "mm",
                    "", 0, 0, "", false);
        wctest::row("M72 before the header", "G90\nM72\nM48\nT0C0.006\n%\nX100Y200\n", "inch", "",
                    0, 0, "", false);
        wctest::row("units after the first hole do not count", "M48\n%\nT01\nX100Y100\nM71\n", "",
                    "", 0, 0, "", false);
        wctest::row("non-plated comment", "M48\n;TYPE=NON_PLATED\nINCH\n%\n", "inch", "", 0, 0,
                    "non_plated", false);
        wctest::row("X2 plated", "M48\n; #@! TF.FileFunction,Plated,1,4,PTH\nMETRIC\n%\n", "mm", "",
                    0, 0, "plated", false);
        wctest::row("X2 non-plated", "M48\n; #@! TF.FileFunction,NonPlated,1,4,NPTH\n%\n", "", "",
                    0, 0, "non_plated", false);
        wctest::row("decimal points", "M48\nMETRIC\n%\nT01\nX1.5Y2.25\nX3.0\n", "mm", "", 0, 0, "",
                    true);
        wctest::row("says nothing", "%\nT1C0.028F200S100\nX002250Y002300\nM30\n", "", "", 0, 0, "",
                    false);
    }
    void headers() {
        QFETCH(QString, text);
        QFETCH(QString, units);
        QFETCH(QString, zeros);
        QFETCH(int, integer);
        QFETCH(int, decimal);
        QFETCH(QString, plating);
        QFETCH(bool, points);
        const DrillHeader h = DrillFormat::readHeader(text.toStdString());
        QCOMPARE(QString::fromStdString(h.units), units);
        QCOMPARE(QString::fromStdString(h.zeros), zeros);
        QCOMPARE(h.integer_digits, integer);
        QCOMPARE(h.decimal_digits, decimal);
        QCOMPARE(QString::fromStdString(h.plating), plating);
        QCOMPARE(h.decimal_points, points);
    }

    void decode_data() {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("format");
        QTest::addColumn<double>("value");  // in the format's unit
        wctest::row("trailing zeros left out", "0152", "INCH,LZ 2:3", 1.52);
        wctest::row("leading zeros left out", "0152", "INCH,TZ 2:3", 0.152);
        wctest::row("all digits", "015200", "INCH,TZ 2:4", 1.52);
        wctest::row("negative", "-0152", "INCH,LZ 2:3", -1.52);
        wctest::row("one integer digit", "15", "INCH,LZ 1:4", 1.5);
        wctest::row("metric", "40500", "METRIC,TZ 3:3", 40.5);
        wctest::row("decimal point wins", "1.52", "INCH,TZ 2:4", 1.52);
    }
    void decode() {
        QFETCH(QString, token);
        QFETCH(QString, format);
        QFETCH(double, value);
        const DrillNumberFormat f = formatOf(format);
        double nm = 0;
        QVERIFY(DrillFormat::decode(token.toStdString(), f, nm));
        QCOMPARE(nm, value * (f.units == "mm" ? 1e6 : kNmPerInch));
        QVERIFY(!DrillFormat::decode("", f, nm));
        QVERIFY(!DrillFormat::decode("1.2.3", f, nm));
    }

    // Drilled hits only, with modal axes; routed moves, repeats and origins are not holes.
    void holes_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("holes");
        wctest::row("modal axes", "M48\nINCH\n%\nT01\nX0152Y00455\nY0166\nX03\nM30\n",
                    "0152,00455 0152,0166 03,0166");
        wctest::row("routing", "M48\n%\nT03\nG00X2550Y80000\nM15\nG01Y79500\nM16\nG05\nX1Y2\n",
                    "1,2");
        wctest::row("slot start, repeat and origin", "%\nG93X0Y0\nX10Y20G85X30Y20\nR3X5\nX7Y8\n",
                    "10,20 7,8");
        wctest::row("tool line in the body", "%\nT1C0.028F200S100\nX002250Y002300\n",
                    "002250,002300");
    }
    void holes() {
        QFETCH(QString, text);
        QFETCH(QString, holes);
        QStringList got;
        for (const HoleText& h : DrillFormat::holes(text.toStdString())) {
            got << QString::fromStdString(h.x + "," + h.y);
        }
        QCOMPARE(got.join(' '), holes);
    }

    void platingOfName_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("plating");
        wctest::row("-NPTH suffix", "board-NPTH.drl", "non_plated");
        wctest::row("-PTH suffix", "board-PTH.drl", "plated");
        wctest::row("pcb unplated", "numpres.pcb.output_unplated-drill.grb", "non_plated");
        wctest::row("pcb plated", "hellboard.plated-drill.cnc", "plated");
        wctest::row("spelled out", "Board-Non-Plated.TXT", "non_plated");
        wctest::row("npth in the name", "holes_npth.xln", "non_plated");
        wctest::row("says nothing", "SE_SG_IF_V2.TXT", "");
    }
    void platingOfName() {
        QFETCH(QString, name);
        QFETCH(QString, plating);
        QCOMPARE(QString::fromStdString(DrillFormat::platingOfName(name.toStdString())), plating);
    }

    // The reading that puts the holes onto the pads is chosen; the header's when it does as well.
    void registration_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("written");  // the format the coordinates are written in
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("pads");  // "at the holes", "elsewhere", "none"
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<bool>("by_header");
        QTest::addColumn<bool>("warned");
        wctest::row("header right", ";FILE_FORMAT=2:3\nINCH,LZ", "INCH,LZ 2:3", 40, "at the holes",
                    "INCH,LZ 2:3", true, false);
        // libgerbv's own reading, leading zeros left out, would be wrong here too.
        wctest::row("header silent about zeros", "INCH", "INCH,LZ 2:4", 40, "at the holes",
                    "INCH,LZ 2:4", false, false);
        wctest::row("header says TZ, trailing zeros left out", "INCH,TZ", "INCH,LZ 2:4", 40,
                    "at the holes", "INCH,LZ 2:4", false, false);
        wctest::row("metric header, inch coordinates", "METRIC,TZ,000.000", "INCH,TZ 2:4", 40,
                    "at the holes", "INCH,TZ 3:4", false, false);
        wctest::row("decimal points in the wrong unit", "METRIC", "INCH,DP 2:3", 40, "at the holes",
                    "INCH,TZ 2:4", false, false);
        wctest::row("too few holes", "INCH,TZ", "INCH,LZ 2:4", 3, "at the holes", "INCH,TZ 2:4",
                    true, true);
        wctest::row("no copper", "INCH,TZ", "INCH,LZ 2:4", 40, "none", "INCH,TZ 2:4", true, true);
        wctest::row("nothing registers", "INCH,TZ", "INCH,LZ 2:4", 40, "elsewhere", "INCH,TZ 2:4",
                    true, true);
    }
    void registration() {
        QFETCH(QString, header);
        QFETCH(QString, written);
        QFETCH(int, count);
        QFETCH(QString, pads);
        QFETCH(QString, chosen);
        QFETCH(bool, by_header);
        QFETCH(bool, warned);
        const std::vector<QPointF> centres = holeCentres(count);
        const std::vector<HoleText> texts = holeTexts(centres, formatOf(written));
        std::vector<PadSite> sites;
        if (pads != "none") {
            sites = padsAt(holeCentres(40), pads == "elsewhere" ? 5.0 : 0.0);
        }
        const std::string text = drillFile(header, texts).toStdString();
        const DrillChoice c =
            DrillFormat::choose(DrillFormat::readHeader(text), DrillFormat::holes(text), sites);
        QCOMPARE(QString::fromStdString(DrillFormat::describe(c.format)), chosen);
        QCOMPARE(c.by_header, by_header);
        QCOMPARE(!c.warning.empty(), warned);
        QCOMPARE(c.holes, count);
        QVERIFY2(QString::fromStdString(c.source).startsWith(by_header ? "header" : "registration"),
                 c.source.c_str());
        if (!warned) {
            QCOMPARE(c.share, 1.0);
        }
    }

    // Through the engine: file_identify chooses the format against the copper of the drill
    // file's folder, file_translate reads it in that format whatever libgerbv would guess, and
    // in exactly the format given when the caller changes it.
    void translateInChosenFormat_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("override");  // read again in this format
        // libgerbv reads this header's X0152 as 0.152 inch on its own, as 15.2 when told LZ 2:3.
        wctest::row("format comment before LZ", ";FILE_FORMAT=2:3\nINCH,LZ", "INCH,LZ 2:3",
                    "header", "INCH,TZ 2:3");
        wctest::row("silent header", "INCH", "INCH,LZ 2:4", "registration", "INCH,TZ 2:4");
        // libgerbv keeps the header's unit whatever it is told: coordinates and tool sizes are
        // rescaled afterwards.
        wctest::row("metric header, inch file", "METRIC,TZ,000.000", "INCH,TZ 2:4", "registration",
                    "METRIC,TZ 3:3");
    }
    void translateInChosenFormat() {
        QFETCH(QString, header);
        QFETCH(QString, written);
        QFETCH(QString, source);
        QFETCH(QString, override);
        QTemporaryDir dir;
        const std::vector<QPointF> centres = holeCentres(30);
        QVERIFY(wctest::writeFile(dir.filePath("board.gtl"), copperFile(centres)));
        const QString drill = dir.filePath("board.txt");
        QVERIFY(wctest::writeFile(drill, drillFile(header, holeTexts(centres, formatOf(written)))));

        std::string format;
        file_Parameters parameters;
        std::string message;
        QVERIFY(file_identify(drill.toStdString(), format, parameters, message));
        QCOMPARE(format, std::string("excellon"));
        QVERIFY2(QString::fromStdString(parameters.format_source).startsWith(source),
                 parameters.format_source.c_str());
        std::time_t started = 0;
        std::time_t finished = 0;
        std::map<int, int> counts;
        QVERIFY(file_translate("import", "pcb", "drill", drill.toStdString(), parameters, started,
                               finished, counts));
        std::vector<featureInfo> features;
        QVERIFY(get_all_feature_info("import", "pcb", "drill", features, FT_Pad));
        QCOMPARE(int(features.size()), 30);
        QCOMPARE(features.front().symbol, std::string("r30"));
        for (size_t k = 0; k < centres.size(); ++k) {
            QVERIFY(std::abs(features[k].start.x - centres[k].x() * kNmPerInch) < 100);
            QVERIFY(std::abs(features[k].start.y - centres[k].y() * kNmPerInch) < 100);
        }

        // The caller's format is read as given.
        const DrillNumberFormat other = formatOf(override);
        parameters.units = other.units;
        parameters.zeros = other.zeros;
        parameters.integer_digits = other.integer_digits;
        parameters.decimal_digits = other.decimal_digits;
        QVERIFY(file_translate("import", "pcb", "drill", drill.toStdString(), parameters, started,
                               finished, counts));
        QVERIFY(get_all_feature_info("import", "pcb", "drill", features, FT_Pad));
        QCOMPARE(int(features.size()), 30);
        const std::vector<HoleText> texts = holeTexts(centres, formatOf(written));
        for (size_t k = 0; k < centres.size(); ++k) {
            double x = 0;
            QVERIFY(DrillFormat::decode(texts[k].x, other, x));
            QVERIFY2(std::abs(features[k].start.x - x) < 100,
                     qPrintable(QString("%1 != %2").arg(features[k].start.x).arg(x)));
        }
    }

    // Plating from the file reaches the holes, and an unplated drill file of the folder gives
    // non-plated holes.
    void platingReachesTheHoles() {
        QTemporaryDir dir;
        const std::vector<QPointF> centres = holeCentres(12);
        const DrillNumberFormat f = formatOf("INCH,TZ 2:4");
        QVERIFY(wctest::writeFile(dir.filePath("board.gtl"), copperFile(centres)));
        QVERIFY(wctest::writeFile(dir.filePath("board.gbl"), copperFile(centres)));
        QVERIFY(wctest::writeFile(dir.filePath("board-PTH.drl"),
                                  drillFile("INCH,TZ", holeTexts(centres, f))));
        QVERIFY(wctest::writeFile(
            dir.filePath("mounting.drl"),
            drillFile("INCH,TZ\n;TYPE=NON_PLATED", holeTexts({QPointF(0.1, 0.1)}, f))));
        wcref::EngineJob job;
        std::string message;
        QVERIFY(wcref::JobFromFolder::build("plating", dir.path().toStdString(), job, message));
        const wcref::EngineStep& step = job.steps.front();
        QCOMPARE(int(centresOf(step.layers.at("board-pth.drl").features, "plated").size()), 12);
        QCOMPARE(int(centresOf(step.layers.at("mounting.drl").features, "non_plated").size()), 1);
        QVERIFY(step.attributes.at(wcref::kDrillFormatKey + "board-pth.drl") ==
                "INCH,TZ 2:4, plated");
        QVERIFY(QString::fromStdString(
                    step.attributes.at(wcref::kDrillFormatSourceKey + "board-pth.drl"))
                    .startsWith("header (100% of 12 holes"));
        // One hole is too few to register: the header is kept and says so.
        QVERIFY(QString::fromStdString(
                    step.attributes.at(wcref::kDrillFormatSourceKey + "mounting.drl"))
                    .contains("not checked"));
    }

    // The example boards' plated holes, read by JobFromFolder::build, are centred in pads of
    // each outer copper layer (named here, since not every board's copper is typed by its name).
    void exampleBoards_data() {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("drill");
        QTest::addColumn<QStringList>("copper");
        wctest::row("protel-pnp", "protel-pnp", "SE_SG_IF_V2.TXT",
                    QStringList{"SE_SG_IF_V2.GTL", "SE_SG_IF_V2.GBL"});
        wctest::row("hellboard", "hellboard", "hellboard.plated-drill.cnc",
                    QStringList{"hellboard.front.gbr", "hellboard.back.gbr"});
        wctest::row("orcad", "orcad", "thruhole.tap", QStringList{"rs232_cm.top", "rs232_cm.bot"});
        wctest::row("nollezappare", "nollezappare", "ThruHolePlated.ncd",
                    QStringList{"EtchLayer2Bottom.gdo"});
        wctest::row("numpres", "numpres", "numpres.pcb.output_plated-drill.grb",
                    QStringList{"numpres.pcb.output_group1.grb", "numpres.pcb.output_group2.grb"});
        wctest::row("ekf2", "ekf2", "drill0.exc", QStringList{"l0.grb", "l5.grb"});
    }
    void exampleBoards() {
        QFETCH(QString, folder);
        QFETCH(QString, drill);
        QFETCH(QStringList, copper);
        const QString path = kExamples + folder;
        if (!QDir(path).exists()) {
            QSKIP("the gerbv examples are not installed");
        }
        wcref::EngineJob job;
        std::string message;
        QVERIFY2(
            wcref::JobFromFolder::build(folder.toStdString(), path.toStdString(), job, message),
            message.c_str());
        const wcref::EngineStep& step = job.steps.front();
        const std::string layer = drill.toLower().toStdString();
        QVERIFY(step.layers.count(layer) == 1);
        std::vector<featureInfo> holes = step.layers.at(layer).features;
        std::string how = step.attributes.at(wcref::kDrillFormatKey + layer) + ", " +
                          step.attributes.at(wcref::kDrillFormatSourceKey + layer);
        std::vector<PadSite> named;
        for (const QString& name : copper) {
            const auto found = step.layers.find(name.toLower().toStdString());
            QVERIFY(found != step.layers.end());
            const std::vector<PadSite> pads = wcref::GerberImport::padSites(found->second.features);
            named.insert(named.end(), pads.begin(), pads.end());
        }
        const std::string file = (path + "/" + drill).toStdString();
        std::map<int, int> counts;
        if (how.find("no copper") != std::string::npos) {
            // The folder's copper is not typed as outer copper by its names yet: the drill file
            // is read as build reads it once it is, registered against the named layers.
            std::string format;
            file_Parameters parameters;
            QVERIFY(wcref::GerberImport::identify(file, format, parameters, message, named));
            QVERIFY(wcref::GerberImport::read(file, layer, holes, counts, message, &parameters));
            DrillNumberFormat chosen;
            chosen.units = parameters.units;
            chosen.zeros = parameters.zeros;
            chosen.integer_digits = parameters.integer_digits;
            chosen.decimal_digits = parameters.decimal_digits;
            how = DrillFormat::describe(chosen) +
                  ", registered against the named copper: " + parameters.format_source;
        }
        const std::vector<point> plated = centresOf(holes, "plated");
        QVERIFY(plated.size() >= 4);
        // libgerbv's own reading, for the record.
        std::vector<featureInfo> before;
        QVERIFY(wcref::GerberImport::read(file, "before", before, counts, message));
        for (const QString& name : copper) {
            const std::vector<PadSite> pads = wcref::GerberImport::padSites(
                step.layers.at(name.toLower().toStdString()).features);
            const double share = DrillFormat::shareOnPads(plated, pads);
            qInfo("%s %s on %s: %.1f%% of %d plated holes in pads (libgerbv alone: %.1f%%); %s",
                  qPrintable(folder), qPrintable(drill), qPrintable(name), share * 100,
                  int(plated.size()), DrillFormat::shareOnPads(centresOf(before), pads) * 100,
                  how.c_str());
            QVERIFY2(share >= 0.95, qPrintable(name));
        }
    }
};

QTEST_GUILESS_MAIN(tst_DrillFormat)
#include "tst_DrillFormat.moc"

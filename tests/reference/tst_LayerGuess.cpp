// Typing fabrication files as matrix rows: X2 file attributes, the file names of every example
// board of the gerbv package, the outline-only content rule, and a board's rows put in order.

#include <QtTest>

#include "DataRows.h"
#include "GerberImport.h"
#include "LayerGuess.h"
#include "TemporaryWorkingDirectory.h"

using namespace Korvo::API;
using wcref::LayerGuess;
namespace lg = wcref::layerguess;

namespace {

const QString kExamples = "/usr/share/doc/gerbv/examples/";
constexpr double kMil = 25400.0;

featureInfo line(double x1, double y1, double x2, double y2, const char* symbol = "r8") {
    featureInfo f;
    f.type = feature_line;
    f.symbol = symbol;
    f.start = {x1 * kMil, y1 * kMil};
    f.end = {x2 * kMil, y2 * kMil};
    return f;
}

// A closed rectangle of four lines, corners (x, y) and (x + w, y + h), in mil.
std::vector<featureInfo> rectangle(double x, double y, double w, double h,
                                   const char* symbol = "r8") {
    return {line(x, y, x + w, y, symbol), line(x + w, y, x + w, y + h, symbol),
            line(x + w, y + h, x, y + h, symbol), line(x, y + h, x, y, symbol)};
}

featureInfo circle(double cx, double cy, double r) {
    featureInfo f;
    f.type = feature_arc;
    f.symbol = "r5";
    f.center = {cx * kMil, cy * kMil};
    f.start = {(cx + r) * kMil, cy * kMil};
    f.end = f.start;
    return f;
}

std::vector<featureInfo> operator+(std::vector<featureInfo> a, const std::vector<featureInfo>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

using Features = std::vector<featureInfo>;

}  // namespace

Q_DECLARE_METATYPE(Features)

class tst_LayerGuess : public QObject {
    Q_OBJECT

private slots:
    void fileFunction_data() {
        QTest::addColumn<QString>("function");
        QTest::addColumn<QString>("polarity");
        QTest::addColumn<bool>("decided");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("side");
        QTest::addColumn<QString>("negative");  // "yes" or "no"
        QTest::addColumn<int>("order");
        QTest::addColumn<QString>("span");  // "from-to" of a drill layer
        wctest::row("top copper", "Copper,L1,Top", "Positive", true, "signal", "top", "no", 1,
                    "0-0");
        wctest::row("inner plane", "Copper,L3,Inr,Plane", "Negative", true, "power_ground", "inner",
                    "yes", 3, "0-0");
        wctest::row("mixed bottom", "Copper,L6,Bot,Mixed", "", true, "mixed", "bottom", "no", 6,
                    "0-0");
        wctest::row("signal inner, spaces and case", " copper , l2 , INR , Signal ", "positive",
                    true, "signal", "inner", "no", 2, "0-0");
        wctest::row("mask", "Soldermask,Top", "Negative", true, "solder_mask", "top", "yes", 0,
                    "0-0");
        wctest::row("mask with index", "Soldermask,Bot,2", "", true, "solder_mask", "bottom", "no",
                    0, "0-0");
        wctest::row("legend", "Legend,Bot", "", true, "silk_screen", "bottom", "no", 0, "0-0");
        wctest::row("paste", "Paste,Top", "", true, "solder_paste", "top", "no", 0, "0-0");
        wctest::row("profile", "Profile,NP", "", true, "rout", "none", "no", 0, "0-0");
        wctest::row("plated through", "Plated,1,6,PTH", "", true, "drill", "none", "no", 0, "1-6");
        wctest::row("blind, written upside down", "Plated,3,1,Blind,Drill", "", true, "drill",
                    "none", "no", 0, "1-3");
        wctest::row("non-plated", "NonPlated,1,4,NPTH,Rout", "", true, "drill", "none", "no", 0,
                    "1-4");
        wctest::row("assembly drawing", "AssemblyDrawing,Top", "", true, "document", "top", "no", 0,
                    "0-0");
        wctest::row("fabrication drawing", "FabricationDrawing", "", true, "document", "none", "no",
                    0, "0-0");
        wctest::row("unknown polarity read as positive", "Legend,Top", "Sideways", true,
                    "silk_screen", "top", "no", 0, "0-0");
        // What cannot be typed decides nothing: the name has its say.
        wctest::row("none", "", "Negative", false, "", "", "no", 0, "0-0");
        wctest::row("unknown function", "Hologram,Top", "", false, "", "", "no", 0, "0-0");
        wctest::row("copper without number", "Copper,Top", "", false, "", "", "no", 0, "0-0");
        wctest::row("copper without side", "Copper,L2", "", false, "", "", "no", 0, "0-0");
        wctest::row("mask of an inner layer", "Soldermask,Inr", "", false, "", "", "no", 0, "0-0");
    }
    void fileFunction() {
        QFETCH(QString, function);
        QFETCH(QString, polarity);
        QFETCH(bool, decided);
        QFETCH(QString, type);
        QFETCH(QString, side);
        QFETCH(QString, negative);
        QFETCH(int, order);
        QFETCH(QString, span);
        LayerGuess g;
        g.info.name = "kept";
        QCOMPARE(lg::fromFileFunction(function.toStdString(), polarity.toStdString(), g), decided);
        QCOMPARE(QString::fromStdString(g.info.name), QString("kept"));
        if (!decided) {
            QCOMPARE(QString::fromStdString(g.decided_by), QString("nothing"));
            QVERIFY(g.info.type.empty());
            return;
        }
        QCOMPARE(QString::fromStdString(g.decided_by), QString("attributes"));
        QCOMPARE(QString::fromStdString(g.info.type), type);
        QCOMPARE(QString::fromStdString(g.info.side), side);
        QCOMPARE(QString::fromStdString(g.info.polarity),
                 negative == "yes" ? QString("negative") : QString("positive"));
        QCOMPARE(QString::fromStdString(g.info.context),
                 type == "document" ? QString("misc") : QString("board"));
        QCOMPARE(g.order, order);
        QCOMPARE(QString("%1-%2").arg(g.span_from).arg(g.span_to), span);
    }

    // Every layer file of every example board: its type and side from the name, and for
    // Excellon files from the content (the test reads the file to tell).
    void exampleFileNames_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("side");
        QTest::addColumn<int>("order");
        const auto add = [](const char* file, const char* type, const char* side, int order = 0) {
            wctest::row(file, file, type, side, order);
        };
        // ekf2: neutral names. The planes are named; the signal layers are the user's to type.
        for (const char* f : {"ekf2/l0.grb", "ekf2/d1.grb", "ekf2/resplan.grb"}) {
            add(f, "document", "none");
        }
        add("ekf2/gnd.grb", "power_ground", "inner");
        add("ekf2/pow.grb", "power_ground", "inner");
        add("ekf2/pow3.grb", "power_ground", "inner");
        for (const char* f :
             {"ekf2/drill0.exc", "ekf2/drill1.exc", "ekf2/drill20.exc", "ekf2/drill30.exc"}) {
            add(f, "drill", "none");
        }
        // numpres: names by side word and group number.
        add("numpres/numpres.pcb.output_componentmask.grb", "solder_mask", "top");
        add("numpres/numpres.pcb.output_soldermask.grb", "solder_mask", "bottom");
        add("numpres/numpres.pcb.output_componentsilk.grb", "silk_screen", "top");
        add("numpres/numpres.pcb.output_group1.grb", "signal", "inner", 1);
        add("numpres/numpres.pcb.output_group2.grb", "signal", "inner", 2);
        add("numpres/numpres.pcb.output_plated-drill.grb", "drill", "none");
        add("numpres/numpres.pcb.output_unplated-drill.grb", "drill", "none");
        // hellboard: the same program, later names.
        add("hellboard/hellboard.front.gbr", "signal", "top");
        add("hellboard/hellboard.back.gbr", "signal", "bottom");
        add("hellboard/hellboard.group1.gbr", "signal", "inner", 1);
        add("hellboard/hellboard.group2.gbr", "signal", "inner", 2);
        add("hellboard/hellboard.fab.gbr", "document", "none");
        add("hellboard/hellboard.plated-drill.cnc", "drill", "none");
        // nollezappare: layer number and side in one word.
        add("nollezappare/EtchLayer2Bottom.gdo", "signal", "bottom", 2);
        add("nollezappare/AssemblyTop.gdo", "document", "none");
        add("nollezappare/ThruHolePlated.ncd", "drill", "none");
        // orcad: three-letter extensions.
        add("orcad/rs232_cm.top", "signal", "top");
        add("orcad/rs232_cm.bot", "signal", "bottom");
        add("orcad/rs232_cm.smt", "solder_mask", "top");
        add("orcad/rs232_cm.smb", "solder_mask", "bottom");
        add("orcad/rs232_cm.sst", "silk_screen", "top");
        add("orcad/rs232_cm.ssb", "silk_screen", "bottom");
        add("orcad/rs232_cm.ast", "document", "none");
        add("orcad/thruhole.tap", "drill", "none");
        // protel-pnp: the G?? extensions.
        add("protel-pnp/SE_SG_IF_V2.GTL", "signal", "top");
        add("protel-pnp/SE_SG_IF_V2.GBL", "signal", "bottom");
        add("protel-pnp/SE_SG_IF_V2.GTS", "solder_mask", "top");
        add("protel-pnp/SE_SG_IF_V2.GBS", "solder_mask", "bottom");
        add("protel-pnp/SE_SG_IF_V2.GTO", "silk_screen", "top");
        add("protel-pnp/SE_SG_IF_V2.GBO", "silk_screen", "bottom");
        add("protel-pnp/SE_SG_IF_V2.GM1", "rout", "none");
        add("protel-pnp/SE_SG_IF_V2.GM2", "document", "none");
        add("protel-pnp/SE_SG_IF_V2.TXT", "drill", "none");
        // Single files of the other folders.
        add("thermal/bpB.GP1", "power_ground", "inner", 1);
        add("pick-and-place/LED.frontsilk.gbr", "silk_screen", "top");
        add("eaglecad1/top-cop.gbx", "signal", "top");
        add("dan/top.gbx", "signal", "top");
        add("dan/top_sr.gbx", "document", "none");
        add("amacro-ref/jj1.drl", "drill", "none");
        for (const char* f : {"am-test/am-test.gbx", "cslk/cslk.gbx", "polarity/6_vbat.gbr",
                              "trailing/cd1r2.1_sieb0.off"}) {
            add(f, "document", "none");
        }
    }
    void exampleFileNames() {
        QFETCH(QString, file);
        QFETCH(QString, type);
        QFETCH(QString, side);
        QFETCH(int, order);
        const QString path = kExamples + file;
        QVERIFY2(QFileInfo::exists(path), qPrintable(path));
        bool excellon = false;
        std::string why;
        QVERIFY2(wcref::GerberImport::kind(path.toStdString(), excellon, why), why.c_str());
        const LayerGuess g = lg::guessFile(path.toStdString(), excellon, {});
        QCOMPARE(QString::fromStdString(g.info.type), type);
        QCOMPARE(QString::fromStdString(g.info.side), side);
        QCOMPARE(g.order, order);
        QCOMPARE(QString::fromStdString(g.info.name), QFileInfo(file).fileName().toLower());
        QCOMPARE(QString::fromStdString(g.info.context),
                 type == "document" ? QString("misc") : QString("board"));
    }

    void outlineOnly_data() {
        QTest::addColumn<Features>("features");
        QTest::addColumn<bool>("outline");
        const Features board = rectangle(0, 0, 4000, 3000);
        wctest::row("rectangle", board, true);
        wctest::row("rectangle with a cut-out", board + rectangle(1000, 1000, 500, 500), true);
        wctest::row("rectangle with a round hole", board + Features{circle(2000, 1500, 100)}, true);
        wctest::row("round board", Features{circle(0, 0, 1000)}, true);
        Features open = board;
        open.pop_back();
        wctest::row("open outline", open, false);
        Features spur = board;
        spur.push_back(line(0, 0, -100, -100));
        wctest::row("outline with a spur", spur, false);
        Features gap = board;
        gap[1].start.y += 0.1 * kMil;  // 2.5 um apart: not joined
        wctest::row("corner not closed", gap, false);
        Features near = board;
        near[1].start.y += 0.02 * kMil;  // half a micrometre: the same corner
        wctest::row("corner closed to half a micrometre", near, true);
        wctest::row("two boards side by side", board + rectangle(5000, 0, 4000, 3000), false);
        wctest::row("thick lines", rectangle(0, 0, 4000, 3000, "r25"), false);
        wctest::row("line at the width limit", rectangle(0, 0, 4000, 3000, "r20"), true);
        wctest::row("unknown symbol", rectangle(0, 0, 4000, 3000, "ap10"), false);
        Features pad = board;
        pad.emplace_back();
        pad.back().symbol = "r8";
        pad.back().start = {100 * kMil, 100 * kMil};
        wctest::row("outline and a pad", pad, false);
        Features erased = board;
        erased[2].positive = false;
        wctest::row("negative line", erased, false);
        wctest::row("nothing", Features{}, false);
    }
    void outlineOnly() {
        QFETCH(Features, features);
        QFETCH(bool, outline);
        QCOMPARE(lg::isOutlineOnly(features), outline);
    }

    // The rule on files read through libgerbv: a written outline with rounded corners and a
    // slot, the example boards' outline (with a title drawn beside it) and artwork.
    void outlineOnlyFiles_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("outline");
        wctest::row("rounded outline with a slot", ":rounded", true);
        wctest::row("rounded outline, one corner open", ":open", false);
        wctest::row("outline with a title", "protel-pnp/SE_SG_IF_V2.GM1", false);
        wctest::row("copper", "protel-pnp/SE_SG_IF_V2.GTL", false);
        wctest::row("silk", "protel-pnp/SE_SG_IF_V2.GTO", false);
        wctest::row("fabrication drawing", "hellboard/hellboard.fab.gbr", false);
        wctest::row("drill drawing", "protel-pnp/SE_SG_IF_V2.GD1", false);
    }
    void outlineOnlyFiles() {
        QFETCH(QString, file);
        QFETCH(bool, outline);
        QTemporaryDir dir;
        QString path = kExamples + file;
        if (file.startsWith(':')) {
            // 1 x 0.8 inch with 0.1 inch corner arcs (G75, quadrant arcs), a 0.2 inch slot
            // inside; ":open" leaves the last corner arc out.
            QByteArray text =
                "%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.008*%\nD10*\nG75*\n"
                "X1000Y0D02*\nX9000Y0D01*\nG03X10000Y1000I0J1000D01*\nG01X10000Y7000D01*\n"
                "G03X9000Y8000I-1000J0D01*\nG01X1000Y8000D01*\nG03X0Y7000I0J-1000D01*\n"
                "G01X0Y1000D01*\n";
            if (file == ":rounded") {
                text += "G03X1000Y0I1000J0D01*\n";
            }
            text +=
                "G01X4000Y4000D02*\nX6000Y4000D01*\nX6000Y4500D01*\nX4000Y4500D01*\n"
                "X4000Y4000D01*\nM02*\n";
            path = dir.filePath("neutral.gbr");
            QVERIFY(wctest::writeFile(path, text));
        }
        std::vector<featureInfo> features;
        std::map<int, int> counts;
        std::string why;
        QVERIFY2(wcref::GerberImport::read(path.toStdString(), "l", features, counts, why),
                 why.c_str());
        QCOMPARE(lg::isOutlineOnly(features), outline);
        // An outline-only file with a neutral name is the profile; anything else stays a
        // document.
        const LayerGuess g = lg::guess("neutral.gbr", false, {}, features);
        QCOMPARE(QString::fromStdString(g.info.type), outline ? QString("rout") : "document");
    }

    // Which rule wins: attributes over the name, Excellon over both, content only where
    // nothing else decided.
    void precedence_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("excellon");
        QTest::addColumn<QString>("function");
        QTest::addColumn<bool>("outline");  // features: a board outline, else none
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("side");
        QTest::addColumn<QString>("decided_by");
        wctest::row("attributes over the name", "board.gbl", false, "Copper,L1,Top", false,
                    "signal", "top", "attributes");
        wctest::row("name when no attributes", "board.gbl", false, "", false, "signal", "bottom",
                    "name");
        wctest::row("name over content", "board.gtl", false, "", true, "signal", "top", "name");
        wctest::row("content when the name says nothing", "l7.grb", false, "", true, "rout", "none",
                    "content");
        wctest::row("attributes over content", "l7.grb", false, "Legend,Top", true, "silk_screen",
                    "top", "attributes");
        wctest::row("Excellon whatever its name", "board.gtl", true, "", false, "drill", "none",
                    "content");
        wctest::row("Excellon whatever its attributes", "x.drl", true, "Copper,L1,Top", false,
                    "drill", "none", "content");
        wctest::row("Excellon with a drill name", "b.plated-drill.cnc", true, "", false, "drill",
                    "none", "name");
        wctest::row("nothing decides", "l7.grb", false, "", false, "document", "none", "nothing");
        wctest::row("negative without a function", "board.gp1", false, "|Negative", false,
                    "power_ground", "inner", "name");
    }
    void precedence() {
        QFETCH(QString, file);
        QFETCH(bool, excellon);
        QFETCH(QString, function);
        QFETCH(bool, outline);
        QFETCH(QString, type);
        QFETCH(QString, side);
        QFETCH(QString, decided_by);
        // "function|polarity"
        wcref::X2Attributes attributes;
        attributes.file_function = function.section('|', 0, 0).toStdString();
        attributes.file_polarity = function.section('|', 1).toStdString();
        const LayerGuess g = lg::guess(file.toStdString(), excellon, attributes,
                                       outline ? rectangle(0, 0, 100, 100) : Features{});
        QCOMPARE(QString::fromStdString(g.info.polarity),
                 attributes.file_polarity == "Negative" ? "negative" : "positive");
        QCOMPARE(QString::fromStdString(g.info.type), type);
        QCOMPARE(QString::fromStdString(g.info.side), side);
        QCOMPARE(QString::fromStdString(g.decided_by), decided_by);
    }

    // A board's guessed rows in matrix order, with drill spans. Rows are "file|function" (the
    // function may be empty); the answer lists name:side per row, then each drill's span.
    void settle_data() {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QString>("order");
        QTest::addColumn<QString>("spans");
        wctest::row(
            "group-only copper gets outer sides",
            QStringList{"b.output_group2.grb|", "b.output_componentmask.grb|",
                        "b.plated-drill.cnc|", "b.output_group1.grb|", "b.output_soldermask.grb|"},
            "b.output_componentmask.grb:top b.output_group1.grb:top "
            "b.output_group2.grb:bottom b.output_soldermask.grb:bottom "
            "b.plated-drill.cnc:none",
            "b.output_group1.grb-b.output_group2.grb");
        wctest::row("named outer copper keeps the inner ones inner",
                    QStringList{"b.g2|", "b.gbl|", "b.g1|", "b.gtl|", "b.txt|Plated,1,4,PTH"},
                    "b.gtl:top b.g1:inner b.g2:inner b.gbl:bottom b.txt:none", "b.gtl-b.gbl");
        wctest::row(
            "attribute layer numbers order and span",
            QStringList{"c.gbr|Copper,L3,Bot", "a.gbr|Copper,L2,Inr", "b.gbr|Copper,L1,Top",
                        "d.gbr|Plated,1,2,Blind", "e.gbr|Plated,1,3,PTH", "f.gbr|Profile,NP"},
            "b.gbr:top a.gbr:inner c.gbr:bottom d.gbr:none e.gbr:none f.gbr:none",
            "b.gbr-a.gbr b.gbr-c.gbr");
        wctest::row(
            "span beyond the stack falls back to the outer layers",
            QStringList{"a.gbr|Copper,L1,Top", "b.gbr|Copper,L2,Bot", "d.gbr|Plated,1,8,PTH"},
            "a.gbr:top b.gbr:bottom d.gbr:none", "a.gbr-b.gbr");
        wctest::row("planes alone are never made outer layers",
                    QStringList{"gnd.grb|", "l0.grb|", "pow.grb|"},
                    "gnd.grb:inner pow.grb:inner l0.grb:none", "");
        wctest::row("no copper, no span", QStringList{"d.gbr|Plated,1,2,PTH", "x.gbr|"},
                    "d.gbr:none x.gbr:none", "-");
    }
    void settle() {
        QFETCH(QStringList, files);
        QFETCH(QString, order);
        QFETCH(QString, spans);
        std::vector<LayerGuess> rows;
        for (const QString& entry : files) {
            const QStringList parts = entry.split('|');
            wcref::X2Attributes attributes;
            attributes.file_function = parts[1].toStdString();
            const bool excellon = parts[0].endsWith(".cnc");
            rows.push_back(lg::guess(parts[0].toStdString(), excellon, attributes, {}));
        }
        lg::settleLayers(rows);
        QStringList got;
        QStringList drills;
        for (size_t k = 0; k < rows.size(); ++k) {
            QCOMPARE(rows[k].info.row, static_cast<int>(k) + 1);
            got << QString::fromStdString(rows[k].info.name + ":" + rows[k].info.side);
            if (rows[k].info.type == "drill") {
                drills << QString::fromStdString(rows[k].info.drill_start + "-" +
                                                 rows[k].info.drill_end);
            }
        }
        QCOMPARE(got.join(' '), order);
        QCOMPARE(drills.join(' '), spans);
    }
};

QTEST_MAIN(tst_LayerGuess)
#include "tst_LayerGuess.moc"

// Import of Gerber and Excellon files through libgerbv, jobs built from a folder of them, and a
// whole board checked: the example boards of the gerbv package and small files written here.

#include <QtTest>

#include "DataRows.h"
#include "JobFromFolder.h"
#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "TemporaryWorkingDirectory.h"

using namespace Korvo::API;

namespace {

const QString kExamples = "/usr/share/doc/gerbv/examples/";
constexpr double kMil = 25400.0;
const std::string kJob = "protel";
const std::string kTop = "se_sg_if_v2.gtl";

struct Import {
    bool identified = false;
    bool translated = false;
    std::string format;
    file_Parameters parameters;
    std::string message;
    std::vector<featureInfo> features;  // of the layer afterwards
};

// Identifies `path` and translates it, with what identification found, into `layer` of the job
// "import", whether identification succeeded or not.
Import import(const QString& path, const std::string& layer = "layer") {
    Import r;
    r.identified = file_identify(path.toStdString(), r.format, r.parameters, r.message);
    std::time_t started = 0;
    std::time_t finished = 0;
    std::map<int, int> counts;
    r.translated = file_translate("import", "pcb", layer, path.toStdString(), r.parameters, started,
                                  finished, counts);
    get_all_feature_info("import", "pcb", layer, r.features, FT_All);
    return r;
}

int countSymbol(const std::vector<featureInfo>& features, const std::string& symbol) {
    return static_cast<int>(
        std::count_if(features.begin(), features.end(),
                      [&](const featureInfo& f) { return f.symbol == symbol; }));
}

bool isSpacing(signal_layers_checks_items item) {
    return item <= sli_surface_to_surface_spacing ||
           (item >= sli_smd_to_smd_spacing && item <= sli_smd_to_line_spacing);
}

}  // namespace

class tst_GerberImport : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob("import"));
    }

    void knownFiles_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("units");
        QTest::addColumn<int>("features");
        QTest::addColumn<QString>("symbol");
        QTest::addColumn<int>("with_symbol");
        // Counts are the file's flashes, draws and regions; per symbol, the uses of its aperture.
        // The macro file flashes 9 dots and 9 macros and draws 5 lines.
        wctest::row("protel top copper", "protel-pnp/SE_SG_IF_V2.GTL", "gerber274x", "inch", 9722,
                    "r80", 11);
        wctest::row("protel drills", "protel-pnp/SE_SG_IF_V2.TXT", "excellon", "inch", 427, "r12",
                    106);
        // T02 (1 mm) plunges twice; its routed moves in G00/G01 mode are not read by libgerbv.
        wctest::row("metric drills", "amacro-ref/jj1.drl", "excellon", "mm", 3, "r39.370079", 2);
        wctest::row("square apertures", "dan/top.gbx", "gerber274x", "inch", 457, "s40", 52);
        wctest::row("step and repeat 2 x 3", "dan/top_sr.gbx", "gerber274x", "inch", 6 * 457, "r8",
                    6 * 182);
        wctest::row("the benchmarks' board", "hellboard/hellboard.front.gbr", "gerber274x", "inch",
                    1845 + 360, "r60", 360);
        wctest::row("aperture macros", "am-test/am-test.gbx", "gerber274x", "inch", 9 + 9 + 5,
                    "macro_outline_d15", 1);
    }
    void knownFiles() {
        QFETCH(QString, file);
        QFETCH(QString, format);
        QFETCH(QString, units);
        QFETCH(int, features);
        QFETCH(QString, symbol);
        QFETCH(int, with_symbol);
        const Import r = import(kExamples + file);
        QVERIFY(r.identified && r.translated);
        QCOMPARE(QString::fromStdString(r.format), format);
        QCOMPARE(QString::fromStdString(r.parameters.units), units);
        QCOMPARE(int(r.features.size()), features);
        QCOMPARE(countSymbol(r.features, symbol.toStdString()), with_symbol);
        // A macro pad keeps its outline.
        for (const featureInfo& f : r.features)
            QVERIFY2(f.symbol.rfind("macro_", 0) != 0 || f.contour.size() >= 3, f.symbol.c_str());
    }

    // The same square region with a hole and a clear-polarity pad, in inch and in mm, lands on
    // the same nanometres.
    void regionsHolesPolarityUnits_data() {
        QTest::addColumn<QString>("text");
        wctest::row("inch",
                    "%FSLAX24Y24*%%MOIN*%%ADD10C,0.0100*%G36*X0Y0D02*X10000Y0D01*"
                    "X10000Y10000D01*X0Y10000D01*X0Y0D01*X2500Y2500D02*X7500Y2500D01*"
                    "X7500Y7500D01*X2500Y7500D01*X2500Y2500D01*G37*%LPC*%D10*"
                    "X5000Y5000D03*M02*");
        wctest::row("mm",
                    "%FSLAX34Y34*%%MOMM*%%ADD10C,0.2540*%G36*X0Y0D02*X254000Y0D01*"
                    "X254000Y254000D01*X0Y254000D01*X0Y0D01*X63500Y63500D02*"
                    "X190500Y63500D01*X190500Y190500D01*X63500Y190500D01*"
                    "X63500Y63500D01*G37*%LPC*%D10*X127000Y127000D03*M02*");
    }
    void regionsHolesPolarityUnits() {
        QFETCH(QString, text);
        QTemporaryDir dir;
        const QString path = dir.filePath("board.gbr");
        QVERIFY(wctest::writeFile(path, text.replace("*", "*\n").toLatin1()));
        const std::vector<featureInfo> loaded = import(path).features;
        QCOMPARE(int(loaded.size()), 2);
        const featureInfo& surface = loaded[0];
        QCOMPARE(surface.type, feature_surface);
        QCOMPARE(int(surface.contour.size()), 4);
        QCOMPARE(int(surface.holes.size()), 1);
        QCOMPARE(surface.holes[0][0].x, 250 * kMil);
        QCOMPARE(surface.contour[2].x, 1000 * kMil);
        const featureInfo& pad = loaded[1];
        QVERIFY(!pad.positive);
        QCOMPARE(pad.symbol, std::string("r10"));
        QCOMPARE(pad.start.x, 500 * kMil);
    }

    void badFilesAreRefused_data() {
        QTest::addColumn<QByteArray>("content");
        wctest::row("empty", QByteArray());
        wctest::row("text", QByteArray("hello\nthis is not a board\n"));
        wctest::row("binary", QByteArray(2000, '\x9c'));
        wctest::row("garbage coordinates",
                    QByteArray("%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.010*%\nD10*\nX0Y0D02*\n"
                               "X1000Y1000D01*\nX2000Y!!!garbage*\nM02*\n"));
        wctest::row("truncated", QByteArray("%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.010*%\nD10*\n"
                                            "X0Y0D02*\nX1000Y1000D01*\n"));
        wctest::row("undefined aperture",
                    QByteArray("%FSLAX24Y24*%\n%MOIN*%\n%ADD10C,0.010*%\nD99*\nX0Y0D03*\nM02*\n"));
    }
    void badFilesAreRefused() {
        QFETCH(QByteArray, content);
        QTemporaryDir dir;
        const QString path = dir.filePath("bad.gbr");
        QVERIFY(wctest::writeFile(path, content));
        std::vector<featureInfo> before;
        QVERIFY(get_all_feature_info("import", "pcb", "top", before, FT_All));
        // Translation refuses the file too, and the layer keeps what it had.
        const Import r = import(path, "top");
        QVERIFY(!r.identified && !r.translated);
        QVERIFY(!r.message.empty());
        QCOMPARE(r.features.size(), before.size());
    }

    void layerGuesses_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("drill");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("side");
        // The protel board's names are proven by jobFromFolder.
        wctest::row("protel inner", "B.G2", false, "signal", "inner");
        wctest::row("plane", "bpB.GP1", false, "power_ground", "inner");
        wctest::row("hyphenated front", "board-F_Cu.gbr", false, "signal", "top");
        wctest::row("hyphenated inner", "board-In1_Cu.gbr", false, "signal", "inner");
        wctest::row("outline", "board-Edge_Cuts.gbr", false, "rout", "none");
        // The benchmarks' board names its layers by side and group.
        wctest::row("dotted front", "hellboard.front.gbr", false, "signal", "top");
        wctest::row("dotted back", "hellboard.back.gbr", false, "signal", "bottom");
        wctest::row("dotted group", "hellboard.group2.gbr", false, "signal", "inner");
        wctest::row("dotted mask", "board.backmask.gbr", false, "solder_mask", "bottom");
        wctest::row("dotted silk", "board.frontsilk.gbr", false, "silk_screen", "top");
        wctest::row("fabrication drawing", "hellboard.fab.gbr", false, "document", "none");
        wctest::row("unknown", "B.GD1", false, "document", "none");
    }
    void layerGuesses() {
        QFETCH(QString, file);
        QFETCH(bool, drill);
        QFETCH(QString, type);
        QFETCH(QString, side);
        const layer_info row = wcref::JobFromFolder::guessLayer(file.toStdString(), drill);
        QCOMPARE(QString::fromStdString(row.type), type);
        QCOMPARE(QString::fromStdString(row.side), side);
        QCOMPARE(QString::fromStdString(row.context), type == "document" ? "misc" : "board");
    }

    void jobFromFolder() {
        QVERIFY(open_job(kJob, (kExamples + "protel-pnp").toStdString()));
        std::vector<std::string> steps;
        std::vector<layer_info> layers;
        QCOMPARE(get_matrix(kJob, steps, layers), std::string("OK"));
        QStringList order;
        for (const layer_info& l : layers) {
            order << QString::fromStdString(l.type + ":" + l.side);
        }
        QCOMPARE(order.join(' '),
                 QString("silk_screen:top solder_mask:top signal:top signal:bottom "
                         "solder_mask:bottom silk_screen:bottom drill:none rout:none "
                         "document:none document:none document:none"));
        const layer_info& drill = layers[6];
        QCOMPARE(drill.drill_start, std::string("se_sg_if_v2.gtl"));
        QCOMPARE(drill.drill_end, std::string("se_sg_if_v2.gbl"));
        reply_box box;
        QVERIFY(profile_box(kJob, "pcb", box));
        QVERIFY(box.xmax - box.xmin > 3000 * kMil && box.ymax - box.ymin > 3000 * kMil);
        // Outer pads without a hole are SMD pads; drilled ones are not.
        std::vector<featureInfo> top;
        QVERIFY(get_all_feature_info(kJob, "pcb", kTop, top, FT_Pad));
        const auto smd = std::count_if(top.begin(), top.end(), [](const featureInfo& f) {
            return f.attributes.count(".smd") != 0;
        });
        QVERIFY(smd > 100 && smd < int(top.size()));
        QVERIFY(!open_job("nothing", QDir::tempPath().toStdString() + "/no-such-folder"));
    }
    // The protel board checked through the engine call of the check dialog. Its
    // tightest clearance rule is 4 mil (its .RUL file): just below it no spacing
    // hit may appear; at wider spacings every hit measures below the spacing asked for.
    void spacingAgainstTheDesignRules_data() {
        QTest::addColumn<double>("spacing");  // mil
        QTest::addColumn<bool>("hits");
        wctest::row("below the 4 mil rule", 3.9, false);
        wctest::row("the 8 mil rule", 8.0, true);
        wctest::row("12 mil", 12.0, true);
    }
    void spacingAgainstTheDesignRules() {
        QFETCH(double, spacing);
        QFETCH(bool, hits);
        QVERIFY(open_job(kJob, (kExamples + "protel-pnp").toStdString()));
        signal_check_params params;
        params.layers = kTop;
        params.spacing = spacing * kMil;
        params.drill_to_copper = 14 * kMil;
        params.rout_to_copper = 25 * kMil;
        params.sliver_min = 2 * kMil;
        params.min_pad_overlap = 5 * kMil;
        std::vector<signal_layers_checks_list> tests;
        for (int t = sl_spacing; t <= sl_pad_connection; ++t) {
            tests.push_back(static_cast<signal_layers_checks_list>(t));
        }
        std::map<signal_layers_checks_items, signal_check_result> result;
        Korvo::COMMON::progress_value<signal_check_result_map> progress;
        QVERIFY(signal_layers_checks(kJob, "pcb", kTop, params, tests, {}, result, &progress, 0));
        QCOMPARE(progress.get_value(), 100.0);

        std::vector<layer_info> layers;
        std::vector<std::string> steps;
        get_matrix(kJob, steps, layers);
        std::map<int, std::set<int>> ids;  // layer row -> feature ids
        for (const layer_info& l : layers) {
            std::vector<featureInfo> features;
            get_all_feature_info(kJob, "pcb", l.name, features, FT_All);
            for (const featureInfo& f : features) {
                ids[l.row].insert(f.id);
            }
        }
        int spacing_hits = 0;
        for (const auto& entry : result) {
            for (const auto* list : {&entry.second.red, &entry.second.yellow, &entry.second.green,
                                     &entry.second.other}) {
                for (const check_info& hit : *list) {
                    QVERIFY(hit.shape.points.size() == 2);
                    QVERIFY(!hit.features.empty());
                    for (const feature_ref& ref : hit.features) {
                        QVERIFY(ids[ref.layer_row].count(ref.id) == 1);
                    }
                    if (isSpacing(entry.first)) {
                        ++spacing_hits;
                        QVERIFY(hit.value < spacing * kMil);
                    }
                }
            }
        }
        QCOMPARE(spacing_hits > 0, hits);
    }
};

QTEST_GUILESS_MAIN(tst_GerberImport)
#include "tst_GerberImport.moc"

// The reference DFM operations on a small hand-made job with one planted case per rule: what
// each finds, how it grades it and what it changes in the job; and a stopped run that keeps
// exactly the changes of the hits it reports.

#include <QtTest>
#include <atomic>
#include <future>
#include <thread>

#include "EngineStore.h"
#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "SyntheticJob.h"

using namespace Korvo::API;
using Progress = Korvo::COMMON::progress_value<void>;

namespace {

constexpr double kMil = 25400.0;
const std::string kJob = "dfm";

point mil(double x, double y) {
    return {x * kMil, y * kMil};
}

featureInfo pad(const std::string& symbol, double x, double y,
                std::map<std::string, std::string> attributes = {}) {
    featureInfo f;
    f.type = feature_pad;
    f.symbol = symbol;
    f.start = f.end = mil(x, y);
    f.attributes = std::move(attributes);
    return f;
}

featureInfo line(const std::string& symbol, double x0, double y0, double x1, double y1) {
    featureInfo f;
    f.type = feature_line;
    f.symbol = symbol;
    f.start = mil(x0, y0);
    f.end = mil(x1, y1);
    return f;
}

layer_info row(const std::string& name, int number, const std::string& type,
               const std::string& side) {
    layer_info info;
    info.name = name;
    info.row = number;
    info.context = "board";
    info.type = type;
    info.polarity = "positive";
    info.side = side;
    return info;
}

// One planted case per rule; positions in mil.
//  top:  A r40 on a 30 mil hole at (0,0), ring 5, free to grow; B the same at (200,0) with a
//        trace of another island 5 mil away; two traces 3 mil apart at y=100/113; a line 7 mil
//        under A; teardrop pads T (drilled, 500,0), U (800,0, old teardrop) and V (undrilled,
//        1100,0, copper 5 mil from where its fillet would be), W (undrilled, 1400,0) where a
//        half-circle arc starts.
//  top_mask: r44 over A (clearance 2), two r30 openings 5 mil apart at y=300.
//  l2:   isolated drilled pad (0,0), connected pad (200,0) with a covered r10 (210,0), a
//        duplicate pair (500,0) on a trace, a r20 pad drilled over by a 30 mil hole (700,0).
void openPlantedJob() {
    wcref::EngineJob job;
    job.name = kJob;
    job.matrix = {row("top_mask", 1, "solder_mask", "top"), row("top", 2, "signal", "top"),
                  row("l2", 3, "signal", "inner"), row("bottom", 4, "signal", "bottom"),
                  row("drill", 5, "drill", "none")};
    job.matrix[4].drill_start = "top";
    job.matrix[4].drill_end = "bottom";
    wcref::EngineStep step;
    step.name = "pcb";
    for (const layer_info& info : job.matrix) {
        step.layers[info.name];
    }
    wcref::EngineLayerData& top = step.layers["top"];
    top.add(pad("r40", 0, 0));
    top.add(pad("r40", 200, 0));
    top.add(line("r10", 230, -50, 230, 50));
    top.add(line("r10", 0, 100, 100, 100));
    top.add(line("r10", 0, 113, 100, 113));
    top.add(line("r6", -50, -30, 50, -30));
    top.add(pad("r40", 500, 0));
    top.add(line("r8", 500, 0, 600, 0));
    top.add(pad("r40", 800, 0));
    top.add(line("r8", 800, 0, 900, 0));
    featureInfo old;
    old.type = feature_surface;
    old.contour = {mil(800, 20), mil(830, 4), mil(830, -4), mil(800, -20)};
    old.attributes[".tear_drop"] = "";
    top.add(old);
    top.add(pad("r40", 1100, 0));
    top.add(line("r8", 1100, 0, 1200, 0));
    top.add(line("r2", 1095, 26, 1105, 26));
    top.add(pad("r40", 1400, 0));
    featureInfo arc;
    arc.type = feature_arc;
    arc.symbol = "r8";
    arc.start = mil(1400, 0);
    arc.end = mil(1500, 0);
    arc.center = mil(1450, 0);
    arc.clockwise = true;
    top.add(arc);
    wcref::EngineLayerData& mask = step.layers["top_mask"];
    mask.add(pad("r44", 0, 0));
    mask.add(pad("r30", 0, 300));
    mask.add(pad("r30", 35, 300));
    wcref::EngineLayerData& l2 = step.layers["l2"];
    l2.add(pad("r40", 0, 0));
    l2.add(pad("r40", 200, 0));
    l2.add(line("r8", 200, 0, 300, 0));
    l2.add(pad("r10", 210, 0));
    l2.add(pad("r40", 500, 0));
    l2.add(pad("r40", 500, 0));
    l2.add(line("r8", 500, 0, 600, 0));
    l2.add(pad("r20", 700, 0));
    l2.add(line("r8", 700, 0, 700, 100));
    wcref::EngineLayerData& drill = step.layers["drill"];
    for (const point& p : {point{0, 0}, point{200, 0}, point{700, 0}}) {
        drill.add(pad("r30", p.x, p.y, {{".drill", "plated"}}));
    }
    drill.add(pad("r20", 500, 0, {{".drill", "plated"}}));
    drill.add(pad("r20", 800, 0, {{".drill", "plated"}}));
    job.steps.push_back(std::move(step));
    std::lock_guard<std::mutex> guard(wcref::store().mutex);
    wcref::store().jobs[kJob] = std::move(job);
}

dfm_range_value range(double red, double yellow, double green) {
    return dfm_range_value{{red * kMil, yellow * kMil}, green * kMil};
}

enum Op { SignalOp, MaskOp, TeardropOp, NfpOp };

// What one hit list holds, from any of the four result kinds.
struct Found {
    std::vector<check_info> levels[4];
};

template <typename Record>
Found levelsOf(const Record& r) {
    Found found;
    found.levels[0] = r.red;
    found.levels[1] = r.yellow;
    found.levels[2] = r.green;
    found.levels[3] = r.other;
    return found;
}

// Runs `op` with the planted job's parameters changed by `variant`; the hits of `item`.
Found run(int op, const QString& variant, int item) {
    Progress progress;
    Found found;
    switch (op) {
        case SignalOp: {
            signal_layer_DFM_op_params p;
            p.pth_ar_min = 6 * kMil;
            p.pth_ar_opt = 7 * kMil;
            p.spacing_min = 4 * kMil;
            p.pad_up = variant != "no pad up";
            p.ranges = {{sdi_pth_annular_ring, range(4, 6, 7)},
                        {sdi_spacing, range(2, 3, 4)},
                        {sdi_pad_up, range(0, 0, 0)}};
            signal_layer_DFM_result_map results;
            if (!signal_layer_DFM_op(kJob, "pcb", {"top"}, p, results, &progress)) {
                return found;
            }
            const auto hits = results["top"].find(static_cast<signal_layer_DFM_op_items>(item));
            return hits == results["top"].end() ? found : levelsOf(hits->second);
        }
        case MaskOp: {
            solder_mask_DFM_params p;
            p.clearance_min = 3 * kMil;
            p.clearance_opt = 4 * kMil;
            p.coverage_min = 4 * kMil;
            p.bridge_size = 6 * kMil;
            p.do_resize = variant != "no resize";
            p.ranges = {{smo_clearance_resized, range(1, 3, 4)},
                        {smo_clearance_below_min, range(1, 3, 4)},
                        {smo_bridge_below_min, range(3, 4, 6)}};
            solder_mask_DFM_result_map results;
            if (!solder_mask_DFM_op(kJob, "pcb", {"top_mask", "top"}, p, results, &progress)) {
                return found;
            }
            const auto hits = results.find(static_cast<solder_mask_DFM_op_items>(item));
            if (hits != results.end() && hits->second.size() == 1) {
                found = levelsOf(hits->second.front());
            }
            return found;
        }
        case TeardropOp: {
            teardrop_create_DFM_op_params p;
            p.drill_size_max = 40 * kMil;
            p.trace_width_max = 15 * kMil;
            p.copper_spacing = 6 * kMil;
            p.report_only = variant == "report";
            p.ranges = {{tdi_created_drilled, range(4, 5, 6)},
                        {tdi_missing_drilled, range(6, 8, 12)},
                        {tdi_skipped_spacing, range(4, 6, 7)},
                        {tdi_deleted_old, range(0, 0, 0)}};
            teardrop_result_map results;
            if (!teardrop_create_DFM_op(kJob, "pcb", {"top"}, p, results, &progress)) {
                return found;
            }
            const auto hits = results.find(static_cast<teardrop_create_DFM_op_items>(item));
            return hits == results.end() ? found : levelsOf(hits->second);
        }
        case NfpOp: {
            NFP_removal_DFM_op_params p;
            p.pad_kinds = variant == "only covered" ? std::vector<int32_t>{4}
                                                    : std::vector<int32_t>{1, 3, 2, 4};
            p.action = variant == "mark" ? 1 : 0;
            p.pth = variant != "no pth";
            p.ranges = {{nfp_isolated_removed, range(0, 0, 0)},
                        {nfp_covered_removed, range(5, 20, 30)}};
            NFP_removal_result_map results;
            if (!NFP_removal_DFM_op(kJob, "pcb", {"top", "l2"}, p, results, &progress)) {
                return found;
            }
            const auto hits = results.find(static_cast<NFP_removal_DFM_op_items>(item));
            return hits == results.end() ? found : levelsOf(hits->second);
        }
    }
    return found;
}

std::vector<featureInfo> layerFeatures(const std::string& layer) {
    std::vector<featureInfo> features;
    get_all_feature_info(kJob, "pcb", layer, features, FT_All);
    return features;
}

}  // namespace

class tst_DfmOperations : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        openPlantedJob();
    }
    void cleanupTestCase() { wcref::resetEngine(); }

    // One row per rule: the item's hits (count, level, value, required) and then the job: the pads
    // at `at` on `layer` (each its symbol and its ".nfp" mark) and the number of teardrop surfaces
    // on the layer.
    void findsGradesAndChanges_data() {
        QTest::addColumn<int>("op");
        QTest::addColumn<QString>("variant");
        QTest::addColumn<int>("item");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("level");  // 0 red .. 3 other
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("required");  // the record's value the hit was held against
        QTest::addColumn<QString>("layer");
        QTest::addColumn<QPointF>("at");
        QTest::addColumn<QString>("pads");  // "symbol" or "symbol:mark", ';' between pads
        QTest::addColumn<int>("teardrops");
        QTest::addColumn<bool>("edited");  // the step's edit counter moved
        const QPointF a(0, 0);
        // clang-format off
        QTest::newRow("ring under min, pad enlarged")
            << int(SignalOp) << "" << int(sdi_pad_up) << 1 << 0 << 5.0 << 6.0 << "top" << a << "r44" << 1 << true;
        QTest::newRow("ring under min, growth would break spacing")
            << int(SignalOp) << "" << int(sdi_pth_annular_ring) << 1 << 1 << 5.0 << 6.0 << "top" << QPointF(200, 0) << "r40" << 1 << true;
        QTest::newRow("ring under min, pad up off")
            << int(SignalOp) << "no pad up" << int(sdi_pth_annular_ring) << 2 << 1 << 5.0 << 6.0 << "top" << a << "r40" << 1 << false;
        QTest::newRow("spacing between islands reported")
            << int(SignalOp) << "" << int(sdi_spacing) << 1 << 2 << 3.0 << 4.0 << "top" << QPointF(0, 100) << "" << 1 << true;
        QTest::newRow("mask clearance resized")
            << int(MaskOp) << "" << int(smo_clearance_resized) << 1 << 1 << 2.0 << 3.0 << "top_mask" << a << "r48" << 0 << true;
        QTest::newRow("mask clearance kept without resize")
            << int(MaskOp) << "no resize" << int(smo_clearance_below_min) << 1 << 1 << 2.0 << 3.0 << "top_mask" << a << "r44" << 0 << false;
        QTest::newRow("mask coverage after the resize")
            << int(MaskOp) << "" << int(smo_coverage_below_min) << 1 << 3 << 3.0 << 4.0 << "top_mask" << a << "r48" << 0 << true;
        QTest::newRow("mask coverage met without resize")
            << int(MaskOp) << "no resize" << int(smo_coverage_below_min) << 0 << 0 << 0.0 << 0.0 << "top_mask" << a << "r44" << 0 << false;
        QTest::newRow("mask bridge reported")
            << int(MaskOp) << "" << int(smo_bridge_below_min) << 1 << 2 << 5.0 << 6.0 << "top_mask" << QPointF(35, 300) << "r30" << 0 << true;
        QTest::newRow("teardrops added, old one replaced")
            << int(TeardropOp) << "" << int(tdi_created_drilled) << 2 << 3 << 10.0 << 0.0 << "top" << QPointF(500, 0) << "r40" << 3 << true;
        QTest::newRow("old teardrop deleted")
            << int(TeardropOp) << "" << int(tdi_deleted_old) << 1 << 0 << 0.0 << 0.0 << "top" << QPointF(800, 0) << "r40" << 3 << true;
        QTest::newRow("teardrop too close to copper")
            << int(TeardropOp) << "" << int(tdi_skipped_spacing) << 1 << 1 << 5.0 << 6.0 << "top" << QPointF(1100, 0) << "r40" << 3 << true;
        QTest::newRow("teardrop on an arc end")
            << int(TeardropOp) << "" << int(tdi_created_undrilled) << 1 << 3 << 16.0 << 0.0 << "top" << QPointF(1400, 0) << "r40" << 3 << true;
        QTest::newRow("report only changes nothing")
            << int(TeardropOp) << "report" << int(tdi_missing_drilled) << 1 << 2 << 10.0 << 0.0 << "top" << QPointF(500, 0) << "r40" << 1 << false;
        QTest::newRow("isolated pad removed")
            << int(NfpOp) << "" << int(nfp_isolated_removed) << 1 << 0 << 40.0 << 0.0 << "l2" << a << "" << 0 << true;
        QTest::newRow("covered pad removed")
            << int(NfpOp) << "" << int(nfp_covered_removed) << 1 << 1 << 10.0 << 0.0 << "l2" << QPointF(210, 0) << "" << 0 << true;
        QTest::newRow("duplicate removed, original kept")
            << int(NfpOp) << "" << int(nfp_duplicate_removed) << 1 << 3 << 40.0 << 0.0 << "l2" << QPointF(500, 0) << "r40" << 0 << true;
        QTest::newRow("drilled over pad removed")
            << int(NfpOp) << "" << int(nfp_drilled_over_removed) << 1 << 3 << 20.0 << 0.0 << "l2" << QPointF(700, 0) << "" << 0 << true;
        QTest::newRow("isolated pad marked")
            << int(NfpOp) << "mark" << int(nfp_marked) << 4 << 3 << 40.0 << 0.0 << "l2" << a << "r40:isolated" << 0 << true;
        QTest::newRow("kind not asked for stays")
            << int(NfpOp) << "only covered" << int(nfp_isolated_removed) << 0 << 0 << 0.0 << 0.0 << "l2" << a << "r40" << 0 << true;
        QTest::newRow("plated holes off")
            << int(NfpOp) << "no pth" << int(nfp_isolated_removed) << 0 << 0 << 0.0 << 0.0 << "l2" << a << "r40" << 0 << true;
        QTest::newRow("connected pad stays")
            << int(NfpOp) << "" << int(nfp_covered_removed) << 1 << 1 << 10.0 << 0.0 << "l2" << QPointF(200, 0) << "r40" << 0 << true;
        // clang-format on
    }
    void findsGradesAndChanges() {
        QFETCH(int, op);
        QFETCH(QString, variant);
        QFETCH(int, item);
        QFETCH(int, count);
        QFETCH(int, level);
        QFETCH(double, value);
        QFETCH(double, required);
        QFETCH(QString, layer);
        QFETCH(QPointF, at);
        QFETCH(QString, pads);
        QFETCH(int, teardrops);
        QFETCH(bool, edited);
        const int edits = get_editop_count(kJob, "pcb");

        const Found found = run(op, variant, item);
        int total = 0;
        for (const auto& list : found.levels) {
            total += static_cast<int>(list.size());
        }
        QCOMPARE(total, count);
        if (count > 0) {
            QVERIFY2(!found.levels[level].empty(), "hit graded into another level");
            const check_info& hit = found.levels[level].front();
            QCOMPARE(qRound(hit.value / kMil * 1000), qRound(value * 1000));
            QCOMPARE(qRound(hit.required / kMil * 1000), qRound(required * 1000));
            QVERIFY(!hit.features.empty() && !hit.shape.points.empty() && hit.signature != 0);
        }

        QStringList here;
        int surfaces = 0;
        for (const featureInfo& f : layerFeatures(layer.toStdString())) {
            if (f.type == feature_pad && std::abs(f.start.x - at.x() * kMil) < 1 &&
                std::abs(f.start.y - at.y() * kMil) < 1) {
                const auto mark = f.attributes.find(".nfp");
                here << QString::fromStdString(
                    mark == f.attributes.end() ? f.symbol : f.symbol + ":" + mark->second);
            }
            surfaces += f.type == feature_surface && f.attributes.count(".tear_drop") != 0;
        }
        QCOMPARE(here.join(';'), pads);
        QCOMPARE(surfaces, teardrops);
        QCOMPARE(get_editop_count(kJob, "pcb") != edits, edited);
    }

    // The run's scope picks the pads that are judged: the four planted pads of l2 lie at x = 0
    // (isolated), 210 (covered), 500 (duplicate) and 700 (drilled over).
    void scopeLimitsNfp_data() {
        QTest::addColumn<int>("scope");
        QTest::addColumn<int>("apply_to");
        QTest::addColumn<int>("judged");
        QTest::newRow("whole step") << 0 << 0 << 4;
        QTest::newRow("on screen") << 1 << 0 << 2;
        QTest::newRow("inside profile") << 2 << 0 << 2;
        QTest::newRow("selected") << 3 << 0 << 1;
        QTest::newRow("apply to selected") << 0 << 1 << 1;
    }
    void scopeLimitsNfp() {
        QFETCH(int, scope);
        QFETCH(int, apply_to);
        QFETCH(int, judged);
        wcref::setScreenBox({450 * kMil, -100 * kMil, 750 * kMil, 100 * kMil});
        QVERIFY(set_step_profile(kJob, "pcb",
                                 {mil(-100, -100), mil(250, -100), mil(250, 100), mil(-100, 100)}));
        for (const featureInfo& f : layerFeatures("l2")) {
            if (f.type == feature_pad && f.start.x == 0) {
                QVERIFY(select_feature_by_info(kJob, "pcb", "l2", f));
            }
        }
        NFP_removal_DFM_op_params p;
        p.pad_kinds = {1, 2, 3, 4};
        p.action = 1;
        p.scope = scope;
        p.apply_to = apply_to;
        NFP_removal_result_map results;
        QVERIFY(NFP_removal_DFM_op(kJob, "pcb", {"l2"}, p, results, nullptr));
        QCOMPARE(int(results[nfp_marked].other.size()), judged);
    }

    // A teardrop added by one run is recognised by the next: nothing is added twice.
    void teardropsAreNotAddedTwice() {
        teardrop_create_DFM_op_params p;
        p.drill_size_max = 40 * kMil;
        p.trace_width_max = 15 * kMil;
        p.delete_old_teardrops = 1;
        teardrop_result_map first;
        QVERIFY(teardrop_create_DFM_op(kJob, "pcb", {"top"}, p, first, nullptr));
        QCOMPARE(int(first[tdi_created_drilled].other.size() +
                     first[tdi_created_undrilled].other.size()),
                 3);
        teardrop_result_map second;
        QVERIFY(teardrop_create_DFM_op(kJob, "pcb", {"top"}, p, second, nullptr));
        QVERIFY(second.count(tdi_created_drilled) == 0 && second.count(tdi_created_undrilled) == 0);
    }

    // A run stopped half-way succeeds with part of the hits, and the job holds exactly the
    // changes of those hits.
    void stopKeepsWhatWasFound() {
        QVERIFY(wcref::openSyntheticJob("full", 30000, 0, 1));
        QVERIFY(wcref::openSyntheticJob("stopped", 30000, 0, 1));
        signal_layer_DFM_op_params p;
        p.pth_ar_min = 8 * kMil;
        p.pth_ar_opt = 9 * kMil;
        p.spacing_min = 4 * kMil;
        signal_layer_DFM_result_map all;
        QVERIFY(signal_layer_DFM_op("full", "pcb", {"top"}, p, all, nullptr));
        const size_t cells =
            all["top"][sdi_pad_up].red.size() + all["top"][sdi_pad_up].other.size();
        QCOMPARE(int(cells), 10000);

        Progress progress;
        std::atomic<bool> done{false};
        auto stopper = std::async(std::launch::async, [&] {
            while (!done && progress.get_value() < 40.0) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            progress.request_stop();
        });
        signal_layer_DFM_result_map part;
        const bool ok = signal_layer_DFM_op("stopped", "pcb", {"top"}, p, part, &progress);
        done = true;
        stopper.get();
        QVERIFY(ok);
        QVERIFY(progress.get_value() < 100.0);
        const size_t hits = part["top"][sdi_pad_up].other.size();
        QVERIFY2(hits > 0 && hits < cells, QByteArray::number(qulonglong(hits)).constData());
        std::vector<featureInfo> features;
        QVERIFY(get_all_feature_info("stopped", "pcb", "top", features, FT_Pad));
        size_t enlarged = 0;
        for (const featureInfo& f : features) {
            enlarged += f.symbol == "r46";
        }
        QCOMPARE(enlarged, hits);
    }
};

QTEST_GUILESS_MAIN(tst_DfmOperations)
#include "tst_DfmOperations.moc"

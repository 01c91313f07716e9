// The reference signal layer check on small hand-made layers: exact distances and points in
// mil and mm, islands, each test just below and above its distance, grading at the range
// boundaries, scopes, stopping, and the generated board's planted violations.

#include <QtTest>
#include <future>

#include "CopperGeometry.h"
#include "DataRows.h"
#include "SignalChecks.h"
#include "SyntheticJob.h"

using namespace Korvo::API;
using wcref::CheckLayer;
using wcref::SignalCheckInput;
using wcref::SignalChecks;
using wcref::SignalResult;

namespace {

// Builds features in one unit (mil or mm); sizes in the same unit.
class Scene {
public:
    explicit Scene(double nm_per_unit) : unit_(nm_per_unit) {}
    point at(double x, double y) const { return {x * unit_, y * unit_}; }
    std::string round(double d) const {
        return wcref::CopperGeometry::symbolName(wcref::SymbolSize::round, d * unit_, d * unit_);
    }
    featureInfo& pad(double d, double x, double y) {
        featureInfo f = make(feature_pad, round(d));
        f.start = f.end = at(x, y);
        return add(f);
    }
    featureInfo& rect(double w, double h, double x, double y) {
        featureInfo f = make(feature_pad, wcref::CopperGeometry::symbolName(
                                              wcref::SymbolSize::rectangle, w * unit_, h * unit_));
        f.start = f.end = at(x, y);
        return add(f);
    }
    featureInfo& line(double w, double x0, double y0, double x1, double y1) {
        featureInfo f = make(feature_line, round(w));
        f.start = at(x0, y0);
        f.end = at(x1, y1);
        return add(f);
    }
    featureInfo& arc(double w, double r, double cx, double cy) {  // quarter, counter-clockwise
        featureInfo f = make(feature_arc, round(w));
        f.start = at(cx + r, cy);
        f.end = at(cx, cy + r);
        f.center = at(cx, cy);
        f.clockwise = false;
        return add(f);
    }
    CheckLayer layer;

private:
    featureInfo make(feature_type type, const std::string& symbol) {
        featureInfo f;
        f.type = type;
        f.symbol = symbol;
        return f;
    }
    featureInfo& add(featureInfo f) {
        f.id = static_cast<int>(layer.features.size()) + 1;
        layer.features.push_back(f);
        return layer.features.back();
    }
    double unit_;
};

constexpr double kMil = 25400.0;
constexpr double kMm = 1000000.0;

SignalResult check(const SignalCheckInput& input, signal_layers_checks_list test, double distance,
                   const wcref::SignalRanges& ranges = {}, int scope = 0) {
    signal_check_params params;
    params.spacing = params.drill_to_copper = params.rout_to_copper = params.sliver_min =
        params.min_pad_overlap = distance;
    SignalResult result;
    SignalChecks::run(input, params, {test}, ranges, result, nullptr, scope);
    return result;
}

std::vector<check_info> allHits(const SignalResult& result) {
    std::vector<check_info> hits;
    for (const auto& entry : result) {
        for (const auto* list :
             {&entry.second.red, &entry.second.yellow, &entry.second.green, &entry.second.other}) {
            hits.insert(hits.end(), list->begin(), list->end());
        }
    }
    return hits;
}

}  // namespace

Q_DECLARE_METATYPE(signal_layers_checks_items)

class tst_SignalChecks : public QObject {
    Q_OBJECT

private slots:
    // Two features 'unit' apart: the value and the points are exact (arcs within the chord
    // error); a spacing a nanometre wider finds the hit, one a nanometre narrower does not.
    void exactDistance_data() {
        QTest::addColumn<double>("unit");
        QTest::addColumn<int>("pair");
        QTest::addColumn<double>("distance");  // in the unit
        QTest::addColumn<QPointF>("on_first");
        QTest::addColumn<QPointF>("on_second");
        QTest::addColumn<double>("tolerance");  // nm
        QTest::addColumn<signal_layers_checks_items>("item");
        for (const auto& u : {std::make_pair("mil", kMil), std::make_pair("mm", kMm)}) {
            const double s = u.first == std::string("mil") ? 1.0 : 0.1;  // mm scenes are smaller
            const QByteArray tag(u.first);
            QTest::newRow((tag + " pads").constData())
                << u.second << 0 << 20 * s << QPointF(5 * s, 0) << QPointF(25 * s, 0) << 0.0
                << sli_pad_to_pad_spacing;
            QTest::newRow((tag + " pad and trace").constData())
                << u.second << 1 << 12 * s << QPointF(5 * s, 0) << QPointF(17 * s, 0) << 0.0
                << sli_pad_to_line_spacing;
            QTest::newRow((tag + " rectangle and pad").constData())
                << u.second << 2 << 15 * s << QPointF(10 * s, 0) << QPointF(25 * s, 0) << 0.0
                << sli_pad_to_pad_spacing;
            QTest::newRow((tag + " trace end to trace").constData())
                << u.second << 3 << 7 * s << QPointF(0, 3 * s) << QPointF(0, 10 * s) << 0.0
                << sli_line_to_line_spacing;
            QTest::newRow((tag + " two arcs").constData())
                << u.second << 4 << 12 * s << QPointF(52 * s, 0) << QPointF(64 * s, 0)
                << 3 * wcref::kMaxChordError << sli_arc_to_arc_spacing;
        }
    }
    void exactDistance() {
        QFETCH(double, unit);
        QFETCH(int, pair);
        QFETCH(double, distance);
        QFETCH(QPointF, on_first);
        QFETCH(QPointF, on_second);
        QFETCH(double, tolerance);
        QFETCH(signal_layers_checks_items, item);
        const double s = unit == kMil ? 1.0 : 0.1;
        Scene scene(unit);
        switch (pair) {
            case 0:
                scene.pad(10 * s, 0, 0);
                scene.pad(10 * s, 30 * s, 0);
                break;
            case 1:
                scene.pad(10 * s, 0, 0);
                scene.line(6 * s, 20 * s, -50 * s, 20 * s, 50 * s);
                break;
            case 2:
                scene.rect(20 * s, 10 * s, 0, 0);
                scene.pad(10 * s, 30 * s, 0);
                break;
            case 3:
                scene.line(6 * s, 0, -40 * s, 0, 0);
                scene.line(4 * s, -30 * s, 12 * s, 30 * s, 12 * s);
                break;
            case 4:
                scene.arc(4 * s, 50 * s, 0, 0);
                scene.arc(4 * s, 66 * s, 0, 0);
                break;
        }
        SignalCheckInput input;
        input.copper = scene.layer;
        const double nm = distance * unit;
        const SignalResult wider = check(input, sl_spacing, nm + tolerance + 1);
        QCOMPARE(int(wider.size()), 1);
        QCOMPARE(wider.begin()->first, item);
        const std::vector<check_info> hits = allHits(wider);
        QCOMPARE(int(hits.size()), 1);
        const check_info& hit = hits[0];
        // Sizes in mm go through symbol names in mil: exact to a twentieth of a nanometre.
        const double exact = 0.05;
        QVERIFY2(std::abs(hit.value - nm) <= tolerance + exact,
                 qPrintable(QString::number(hit.value)));
        QCOMPARE(hit.shape.kind, check_points::line);
        // Flattened arcs meet anywhere along their length: compare the radii there.
        const auto near = [&](const point& p, const QPointF& q) {
            if (tolerance > 0) {
                return std::abs(std::hypot(p.x, p.y) - std::hypot(q.x(), q.y()) * unit) <=
                       tolerance;
            }
            return std::hypot(p.x - q.x() * unit, p.y - q.y() * unit) <= exact;
        };
        QVERIFY(near(hit.shape.points[0], on_first) || near(hit.shape.points[0], on_second));
        QVERIFY(near(hit.shape.points[1], on_first) || near(hit.shape.points[1], on_second));
        QCOMPARE(int(hit.features.size()), 2);
        QVERIFY(allHits(check(input, sl_spacing, nm - tolerance - 1)).empty());
    }

    // Touching and overlapping features are one island: never a spacing hit between them, but
    // the copper beyond still measures from the island's edge.
    void islandsNeverHitThemselves() {
        Scene scene(kMil);
        scene.pad(10, 0, 0);
        scene.line(6, 8, 0, 50, 0);               // its round end touches the pad's edge at x = 5
        scene.pad(20, 50, 0);                     // overlaps the line's end
        const int far = scene.pad(10, 73, 0).id;  // 8 mil beyond the big pad's edge
        SignalCheckInput input;
        input.copper = scene.layer;
        const std::vector<check_info> hits = allHits(check(input, sl_spacing, 10 * kMil));
        QCOMPARE(int(hits.size()), 1);
        QCOMPARE(hits[0].value, 8 * kMil);
        QCOMPARE(hits[0].features[1].id, far);
        // Joined by a trace, the far pad is part of the island.
        scene.line(2, 50, 0, 73, 0);
        input.copper = scene.layer;
        QVERIFY(allHits(check(input, sl_spacing, 10 * kMil)).empty());
    }

    // Each of the other tests with a planted violation: found just above its distance, gone
    // just below it.
    void otherTests_data() {
        QTest::addColumn<int>("test");
        QTest::addColumn<double>("value");  // mil
        QTest::addColumn<signal_layers_checks_items>("item");
        wctest::row("drill to copper", int(sl_drill), 9.0, sli_pth_to_copper);
        wctest::row("missing pad", int(sl_drill), 30.0, sli_missing_pad_for_pth);
        wctest::row("rout to line", int(sl_rout), 16.0, sli_rout_to_line);
        wctest::row("smd to pad", int(sl_smd), 6.0, sli_smd_to_pad_spacing);
        wctest::row("sliver", int(sl_sliver), 4.0, sli_copper_sliver);
        wctest::row("pad overlap", int(sl_pad_connection), 3.0, sli_pad_connection_overlap);
    }
    void otherTests() {
        QFETCH(int, test);
        QFETCH(double, value);
        QFETCH(signal_layers_checks_items, item);
        Scene scene(kMil);
        SignalCheckInput input;
        Scene drills(kMil);
        drills.layer.row = 9;
        const auto hole = [&drills](double d, double x, double y) {
            drills.pad(d, x, y).attributes[".drill"] = "plated";
        };
        if (item == sli_pth_to_copper) {
            scene.pad(36, 0, 0);
            hole(30, 0, 0);                  // in its own pad: no violation
            scene.line(6, 27, -40, 27, 40);  // 27 - 3 - 15 = 9 mil from the hole
        } else if (item == sli_missing_pad_for_pth) {
            hole(30, 0, 0);
            scene.line(6, 0, -40, 0, 40);  // copper through the hole, but no pad
        } else if (item == sli_rout_to_line) {
            scene.line(6, 20, -40, 20, 40);
            drills.line(2, 0, -100, 0, 100);  // a rout line of 2 mil: 20 - 3 - 1 = 16 mil
        } else if (item == sli_smd_to_pad_spacing) {
            scene.rect(20, 10, 0, 0).attributes[".smd"] = "";
            scene.pad(10, 21, 0);  // 21 - 5 - 10
        } else if (item == sli_copper_sliver) {
            scene.pad(10, 0, 0);
            scene.pad(10, 14, 0);  // 4 mil apart, joined round about by traces
            scene.line(4, 0, 0, 0, 30);
            scene.line(4, 0, 30, 14, 30);
            scene.line(4, 14, 30, 14, 0);
        } else if (item == sli_pad_connection_overlap) {
            scene.pad(20, 0, 0);
            scene.line(4, 9, 0, 40, 0);  // ends 1 mil inside the pad: 1 + 2 (half width)
        }
        input.copper = scene.layer;
        if (item == sli_rout_to_line) {
            input.routs = {drills.layer};
        } else {
            input.drills = {drills.layer};
        }
        const auto test_item = static_cast<signal_layers_checks_list>(test);
        const SignalResult result = check(input, test_item, value * kMil + 1);
        const std::vector<check_info> hits = allHits(result);
        QCOMPARE(int(hits.size()), 1);
        QCOMPARE(result.begin()->first, item);
        QVERIFY2(std::abs(hits[0].value - value * kMil) < 0.05,
                 qPrintable(QString::number(hits[0].value)));
        if (item != sli_missing_pad_for_pth) {  // a missing pad is no distance
            QVERIFY(allHits(check(input, test_item, value * kMil - 1)).empty());
        }
    }

    void sizes() {
        Scene scene(kMm);
        scene.line(0.1, 0, 0, 1, 0);  // 3.94 mil
        scene.line(0.2, 0, 5, 1, 5);  // 7.87 mil: above the green level
        scene.pad(0.15, 5, 5).attributes[".smd"] = "";
        SignalCheckInput input;
        input.copper = scene.layer;
        const wcref::SignalRanges ranges{{sli_line_width, {3 * kMil, 4 * kMil, 5 * kMil}},
                                         {sli_smd_width, {6 * kMil, 8 * kMil, 10 * kMil}}};
        const SignalResult result = check(input, sl_size, 0, ranges);
        QCOMPARE(int(result.size()), 2);
        QCOMPARE(int(result.at(sli_line_width).yellow.size()), 1);
        QVERIFY(std::abs(result.at(sli_line_width).yellow[0].value - 0.1 * kMm) < 0.05);
        QCOMPARE(result.at(sli_line_width).yellow[0].shape.kind, check_points::box);
        QCOMPARE(int(result.at(sli_smd_width).red.size()), 1);
    }

    void grading_data() {
        QTest::addColumn<double>("value");          // mil
        QTest::addColumn<QList<double>>("levels");  // red, yellow, green in mil; none if empty
        QTest::addColumn<int>("list");              // 0 red, 1 yellow, 2 green, 3 other
        const QList<double> levels{3, 4, 5};
        wctest::row("below red", 2.999, levels, 0);
        wctest::row("at red", 3.0, levels, 1);
        wctest::row("at yellow", 4.0, levels, 2);
        wctest::row("just below green", 4.999, levels, 2);
        wctest::row("at green", 5.0, levels, 3);
        wctest::row("levels all zero", 50.0, QList<double>{0, 0, 0}, 0);
        wctest::row("no range", 1.0, QList<double>{}, 3);
    }
    void grading() {
        QFETCH(double, value);
        QFETCH(QList<double>, levels);
        QFETCH(int, list);
        wcref::SignalRanges ranges;
        if (!levels.isEmpty())
            ranges[sli_pad_to_pad_spacing] = {levels[0] * kMil, levels[1] * kMil, levels[2] * kMil};
        SignalResult result;
        check_info hit;
        hit.value = value * kMil;
        SignalChecks::grade(sli_pad_to_pad_spacing, hit, ranges, result);
        const signal_check_result& record = result.at(sli_pad_to_pad_spacing);
        QCOMPARE(record.item, sli_pad_to_pad_spacing);
        QList<int> expected{0, 0, 0, 0};
        expected[list] = 1;
        QCOMPARE((QList<int>{int(record.red.size()), int(record.yellow.size()),
                             int(record.green.size()), int(record.other.size())}),
                 expected);
    }

    // Two violations, one on each side of the board; scopes 1, 2 and 3 keep the left one.
    void scopes_data() {
        QTest::addColumn<int>("scope");
        QTest::addColumn<int>("hits");
        wctest::row("whole step", 0, 2);
        wctest::row("on screen", 1, 1);
        wctest::row("inside profile", 2, 1);
        wctest::row("selected", 3, 1);
    }
    void scopes() {
        QFETCH(int, scope);
        QFETCH(int, hits);
        Scene scene(kMil);
        const int left = scene.pad(10, 0, 0).id;
        scene.pad(10, 20, 0);
        scene.pad(10, 1000, 0);
        scene.pad(10, 1020, 0);
        scene.layer.selected = {left};
        SignalCheckInput input;
        input.copper = scene.layer;
        input.has_screen_box = true;
        input.screen_box = {-100 * kMil, -100 * kMil, 100 * kMil, 100 * kMil};
        input.profile = {{-50 * kMil, -50 * kMil},
                         {500 * kMil, -50 * kMil},
                         {500 * kMil, 50 * kMil},
                         {-50 * kMil, 50 * kMil}};
        const std::vector<check_info> found =
            allHits(check(input, sl_spacing, 12 * kMil, {}, scope));
        QCOMPARE(int(found.size()), hits);
        if (hits == 1) {
            QCOMPARE(found[0].features[0].id, left);
        }
    }

    // The generated board holds exactly its planted violations; a stop request ends a long
    // run early with what it found so far.
    void plantedViolationsAndStop() {
        SignalCheckInput input;
        input.copper.features = wcref::syntheticCopper(30000, 17, 7, nullptr);
        for (size_t k = 0; k < input.copper.features.size(); ++k) {
            input.copper.features[k].id = static_cast<int>(k) + 1;
        }
        const std::vector<check_info> hits = allHits(check(input, sl_spacing, 10 * kMil));
        QCOMPARE(int(hits.size()), 17);
        for (const check_info& hit : hits) {
            QCOMPARE(hit.value, 8 * kMil);
        }

        input.copper.features = wcref::syntheticCopper(100000, 0, 7, nullptr);
        Korvo::COMMON::progress_state progress;
        signal_check_params params;
        params.spacing = 10 * kMil;
        SignalResult result;
        QElapsedTimer timer;
        timer.start();
        auto run = std::async(std::launch::async, [&] {
            return SignalChecks::run(input, params, {sl_spacing, sl_size}, {}, result, &progress,
                                     0);
        });
        QThread::msleep(5);
        progress.request_stop();
        QVERIFY(!run.get());
        QVERIFY(progress.get_value() < 100.0);
        QVERIFY(timer.elapsed() < 200);
    }
};

QTEST_GUILESS_MAIN(tst_SignalChecks)
#include "tst_SignalChecks.moc"

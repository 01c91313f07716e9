// The reference signal layer check on small hand-made layers: exact distances and points in
// mil and mm, islands, each test just below and above its distance, grading at the range
// boundaries, scopes, stopping, and the generated board's planted violations.

#include <QtTest>
#include <future>

#include "CopperGeometry.h"
#include "DataRows.h"
#include "ResultRecord.h"
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
    // An arc of radius r about (cx, cy) from angle `from` to `to` (degrees).
    featureInfo& arcFrom(double w, double cx, double cy, double r, double from, double to,
                         bool clockwise = false) {
        featureInfo f = make(feature_arc, round(w));
        const double pi = 3.14159265358979323846;
        f.center = at(cx, cy);
        f.start = at(cx + r * std::cos(from * pi / 180), cy + r * std::sin(from * pi / 180));
        f.end = at(cx + r * std::cos(to * pi / 180), cy + r * std::sin(to * pi / 180));
        f.clockwise = clockwise;
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

// Runs one test with its own distance at `distance` and every other distance a nanometre and a
// half wider, so that a test measuring or reporting against another test's distance shows.
SignalResult check(const SignalCheckInput& input, signal_layers_checks_list test, double distance,
                   const wcref::SignalRanges& ranges = {}, int scope = 0) {
    signal_check_params params;
    params.spacing = params.drill_to_copper = params.rout_to_copper = params.sliver_min =
        params.min_pad_overlap = distance + 1.5;
    using P = signal_check_params;
    static const std::map<signal_layers_checks_list, double P::*> own{
        {sl_spacing, &P::spacing},       {sl_smd, &P::spacing},
        {sl_drill, &P::drill_to_copper}, {sl_rout, &P::rout_to_copper},
        {sl_sliver, &P::sliver_min},     {sl_pad_connection, &P::min_pad_overlap}};
    if (own.count(test) != 0) {
        params.*own.at(test) = distance;
    }
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
    // Two features 'unit' apart: the value and the points are exact (concentric arcs meet in
    // the middle of their shared turn); a spacing a nanometre wider finds the hit, one a
    // nanometre narrower does not.
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
            const double diagonal = std::sqrt(0.5);
            QTest::newRow((tag + " two arcs").constData())
                << u.second << 4 << 12 * s << QPointF(52 * s * diagonal, 52 * s * diagonal)
                << QPointF(64 * s * diagonal, 64 * s * diagonal) << 0.0 << sli_arc_to_arc_spacing;
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
        const auto near = [&](const point& p, const QPointF& q) {
            return std::hypot(p.x - q.x() * unit, p.y - q.y() * unit) <= tolerance + exact;
        };
        QVERIFY(near(hit.shape.points[0], on_first) || near(hit.shape.points[0], on_second));
        QVERIFY(near(hit.shape.points[1], on_first) || near(hit.shape.points[1], on_second));
        QCOMPARE(int(hit.features.size()), 2);
        QCOMPARE(hit.required, nm + tolerance + 1);  // the "Spacing" sent
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

    // A pad beside the corner of a trace (a board's real layout): the pad is closer to the
    // diagonal segment than to the straight one, and the straight one's gap passes the
    // diagonal's copper, so the check gives one hit, at the true clearance, not one per segment.
    void padBesideTraceCornerIsOneHit() {
        Scene scene(kMil);
        scene.pad(43, 15, 32);
        scene.line(12, 0, 0, -33, 33);
        scene.line(12, 0, 0, 0, -53);
        SignalCheckInput input;
        input.copper = scene.layer;
        const std::vector<check_info> hits = allHits(check(input, sl_spacing, 10 * kMil));
        QCOMPARE(int(hits.size()), 1);
        QVERIFY(std::abs(hits[0].value - (47 / std::sqrt(2.0) - 27.5) * kMil) < 0.05);
        QCOMPARE(hits[0].features[1].id, 2);
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
        QCOMPARE(hits[0].required, item == sli_missing_pad_for_pth ? 0.0 : value * kMil + 1);
        if (item != sli_missing_pad_for_pth) {  // a missing pad is no distance
            QVERIFY(allHits(check(input, test_item, value * kMil - 1)).empty());
        }
    }

    // Arcs are measured on their true circles: a layout at exactly 6 mil from an arc measures
    // 6 mil to the nanometre, is a hit at a spacing a nanometre wider and none at 6 or 5.99 mil.
    // Rows put the closest point inside the arc, at its end, on the inner side, and on sweeps
    // that do not face the other shape (where the full circles would touch).
    void arcsAtSixMil_data() {
        QTest::addColumn<int>("scene");
        QTest::addColumn<signal_layers_checks_items>("item");
        wctest::row("line across the arc's middle", 0, sli_line_to_arc_spacing);
        wctest::row("slanted line", 1, sli_line_to_arc_spacing);
        wctest::row("pad outside", 2, sli_pad_to_arc_spacing);
        wctest::row("pad inside the circle", 3, sli_pad_to_arc_spacing);
        wctest::row("rectangular pad", 4, sli_pad_to_arc_spacing);
        wctest::row("arcs facing each other", 5, sli_arc_to_arc_spacing);
        wctest::row("concentric arcs", 6, sli_arc_to_arc_spacing);
        wctest::row("pad beside the arc's end", 7, sli_pad_to_arc_spacing);
        wctest::row("arcs turned away", 8, sli_arc_to_arc_spacing);
        wctest::row("surface above the arc", 9, sli_line_to_surface_spacing);
    }
    void arcsAtSixMil() {
        QFETCH(int, scene);
        QFETCH(signal_layers_checks_items, item);
        Scene sc(kMil);
        const double pi = 3.14159265358979323846;
        const auto polar = [pi](double r, double degrees) {
            return std::make_pair(r * std::cos(degrees * pi / 180),
                                  r * std::sin(degrees * pi / 180));
        };
        // An upper half circle of radius 50 about the origin, 4 mil wide: its copper reaches
        // from radius 48 to 52.
        if (scene <= 4 || scene == 9) {
            sc.arcFrom(4, 0, 0, 50, 0, 180);
        }
        switch (scene) {
            case 0:
                sc.line(4, -20, 60, 20, 60);  // 52 + 6 + 2
                break;
            case 1: {  // across the radius at 45 degrees, 60 from the centre
                const auto a = polar(60, 45);
                const auto d = polar(20, 135);
                sc.line(4, a.first - d.first, a.second - d.second, a.first + d.first,
                        a.second + d.second);
                break;
            }
            case 2: {
                const auto c = polar(52 + 6 + 5, 30);
                sc.pad(10, c.first, c.second);
                break;
            }
            case 3: {
                const auto c = polar(48 - 6 - 5, 120);
                sc.pad(10, c.first, c.second);
                break;
            }
            case 4:
                sc.rect(20, 10, 0, 63);  // lower edge at 58
                break;
            case 5:  // right half of one circle, left half of another 110 mil on
                sc.layer.features.clear();
                sc.arcFrom(4, 0, 0, 50, -45, 45);
                sc.arcFrom(4, 110, 0, 50, 135, 225);
                break;
            case 6:
                sc.layer.features.clear();
                sc.arcFrom(4, 0, 0, 50, 0, 90);
                sc.arcFrom(4, 0, 0, 60, 45, 180);
                break;
            case 7: {  // the pad faces the arc's end cap at (0, 50), not its sweep
                sc.layer.features.clear();
                sc.arcFrom(4, 0, 0, 50, 90, 180);
                const auto c = polar(2 + 6 + 5, -30);
                sc.pad(10, c.first, 50 + c.second);
                break;
            }
            case 8:  // upper left and upper right quarters of circles that cross below
                sc.layer.features.clear();
                sc.arcFrom(4, 0, 0, 50, 90, 180);
                sc.arcFrom(4, 10, 0, 50, 0, 90);
                break;
            case 9: {
                featureInfo& f = sc.pad(1, 0, 0);
                f.type = feature_surface;
                f.contour = {sc.at(-30, 58), sc.at(30, 58), sc.at(30, 80), sc.at(-30, 80)};
                break;
            }
        }
        SignalCheckInput input;
        input.copper = sc.layer;
        const double six = 6 * kMil;
        const SignalResult result = check(input, sl_spacing, six + 1);
        const std::vector<check_info> hits = allHits(result);
        QCOMPARE(int(hits.size()), 1);
        QCOMPARE(result.begin()->first, item);
        QVERIFY2(std::abs(hits[0].value - six) <= 1.0, qPrintable(QString::number(hits[0].value)));
        const point& a = hits[0].shape.points[0];
        const point& b = hits[0].shape.points[1];
        QVERIFY(std::abs(std::hypot(a.x - b.x, a.y - b.y) - hits[0].value) <= 1.0);
        QVERIFY(allHits(check(input, sl_spacing, six)).empty());
        QVERIFY(allHits(check(input, sl_spacing, 5.99 * kMil)).empty());
    }

    // Copper that touches in the file is one piece, however thin and whatever the arcs: no
    // spacing hit between its parts.
    void touchingCopper_data() {
        QTest::addColumn<int>("scene");
        wctest::row("line tangent to an arc's outer edge", 0);
        wctest::row("pad touching an arc's inner edge", 1);
        wctest::row("thin arc whose end point is off its circle, and a line from it", 2);
        wctest::row("thin arcs crossing", 3);
        wctest::row("arc ending on a surface's edge", 4);
    }
    void touchingCopper() {
        QFETCH(int, scene);
        Scene sc(kMil);
        switch (scene) {
            case 0:
                sc.arcFrom(4, 0, 0, 50, 0, 180);
                sc.line(4, -20, 54, 20, 54);
                break;
            case 1:
                sc.arcFrom(4, 0, 0, 50, 0, 180);
                sc.pad(10, 0, 43);  // its top at 48
                break;
            case 2: {
                // The end point lies half a mil outside the circle through the start.
                featureInfo& arc = sc.arcFrom(0.2, 0, 0, 50, 0, 90);
                arc.end = sc.at(0, 50.5);
                sc.line(0.2, 0, 50.5, -30, 50.5);
                break;
            }
            case 3:
                sc.arcFrom(0.1, 0, 0, 50, 0, 180);
                sc.arcFrom(0.1, 60, 0, 50, 90, 270);
                break;
            case 4: {
                sc.arcFrom(4, 0, 0, 50, 0, 90);  // ends at (0, 50), its cap reaching y = 52
                featureInfo& f = sc.pad(1, 0, 0);
                f.type = feature_surface;
                f.contour = {sc.at(-30, 52), sc.at(30, 52), sc.at(30, 80), sc.at(-30, 80)};
                break;
            }
        }
        SignalCheckInput input;
        input.copper = sc.layer;
        // Wide enough that any gap between the parts would show.
        QVERIFY(allHits(check(input, sl_spacing, 200 * kMil)).empty());
    }

    // A pour drawn as overlapping strokes is one island with no gap inside: strokes two apart
    // do not touch but the stroke between covers their gap, and stroke ends that reach a pad
    // lie in other copper (the pour's outline), so they are no traces entering the pad. An
    // outside pad 8 mil from the pour sees one island.
    void strokedPour_data() {
        QTest::addColumn<int>("kind");
        wctest::row("parallel strokes", 0);
        wctest::row("hatched", 1);
        wctest::row("concentric arc strokes", 2);
    }
    void strokedPour() {
        QFETCH(int, kind);
        Scene sc(kMil);
        if (kind == 0) {
            // 13 mil strokes 7 mil apart: strokes two apart leave 1 mil between them.
            for (int k = 0; k <= 10; ++k) {
                sc.line(13, 7 * k, 0, 7 * k, 40);
            }
            sc.line(13, 0, 40, 70, 40);  // the outline along the top
            sc.pad(20, 35, 56);          // reaches 0.5 mil into the outline and the strokes
        } else if (kind == 1) {
            // 13 mil strokes 20 mil apart both ways: 7 mil square holes.
            for (int k = 0; k <= 4; ++k) {
                sc.line(13, 20 * k, 0, 20 * k, 80);
                sc.line(13, 0, 20 * k, 80, 20 * k);
            }
            sc.pad(20, 40, 96);  // on the top stroke's edge, 0.5 mil deep
        } else {
            for (int k = 0; k <= 6; ++k) {
                sc.arcFrom(13, 0, 0, 50 + 7 * k, 0, 90);
            }
            sc.line(13, 50, 0, 92, 0);  // the outline along the start
            sc.pad(20, 71, -16);        // reaches 0.5 mil into it
        }
        // 8 mil left of the first stroke, or of the end cap of the arc of radius 57.
        const int near_id = sc.pad(10, -19.5, kind == 2 ? 57 : 30).id;
        SignalCheckInput input;
        input.copper = sc.layer;
        signal_check_params params;
        params.spacing = 8.1 * kMil;
        params.sliver_min = 2 * kMil;
        params.min_pad_overlap = 1 * kMil;
        SignalResult result;
        SignalChecks::run(input, params, {sl_spacing, sl_sliver, sl_pad_connection}, {}, result,
                          nullptr, 0);
        const std::vector<check_info> hits = allHits(result);
        QVERIFY2(int(hits.size()) == 1, qPrintable(QString::number(hits.size())));
        QCOMPARE(hits[0].features[1].id, near_id);
        QVERIFY(std::abs(hits[0].value - 8 * kMil) <= 1.0);
    }

    // Real gaps inside one island are slivers, measured halfway along a gap between parallel
    // edges; a trace barely entering a pad is still a pad connection hit, also when it ends a
    // run of segments or is an arc; one whose end another stroke covers is not.
    void realGapsAndConnections_data() {
        QTest::addColumn<int>("test");
        QTest::addColumn<double>("value");    // mil; 0 for no hit
        QTest::addColumn<QPointF>("middle");  // of the hit's line, for a sliver
        wctest::row("notch between two traces", int(sl_sliver), 1.0, QPointF(20, 2.5));
        wctest::row("notch between concentric arcs", int(sl_sliver), 1.0,
                    QPointF(52.5 * std::cos(3.14159265358979323846 / 4),
                            52.5 * std::sin(3.14159265358979323846 / 4)));
        wctest::row("notch between a pad and a trace", int(sl_sliver), 1.0, QPointF(20, 5.5));
        wctest::row("trace entering a pad", int(sl_pad_connection), 2.5, QPointF());
        wctest::row("last segment of a trace", int(sl_pad_connection), 2.5, QPointF());
        wctest::row("arc entering a pad", int(sl_pad_connection), 2.5, QPointF());
        wctest::row("trace end inside a crossing stroke", int(sl_pad_connection), 0.0, QPointF());
    }
    void realGapsAndConnections() {
        QFETCH(int, test);
        QFETCH(double, value);
        QFETCH(QPointF, middle);
        Scene sc(kMil);
        const QByteArray tag = QTest::currentDataTag();
        if (tag == "notch between two traces") {
            sc.line(4, 0, 0, 40, 0);
            sc.line(4, 0, 5, 40, 5);  // 5 - 4 = 1 mil of gap, closed at x = 0
            sc.line(4, 0, 0, 0, 5);
        } else if (tag == "notch between concentric arcs") {
            sc.arcFrom(4, 0, 0, 50, 0, 90);
            sc.arcFrom(4, 0, 0, 55, 0, 90);
            sc.line(4, 50, 0, 55, 0);  // closes the notch at its start
        } else if (tag == "notch between a pad and a trace") {
            sc.rect(40, 10, 20, 0);   // upper edge at 5
            sc.line(4, 0, 8, 40, 8);  // lower edge at 6
            sc.line(4, 0, 8, 0, 0);   // joins them at x = 0
        } else if (tag == "trace entering a pad") {
            sc.pad(20, 0, 0);
            sc.line(4, 9.5, 0, 40, 0);  // 0.5 in, plus half the width
        } else if (tag == "last segment of a trace") {
            sc.pad(20, 0, 0);
            sc.line(4, 40, 30, 20, 0);
            sc.line(4, 20, 0, 9.5, 0);
        } else if (tag == "arc entering a pad") {
            sc.pad(20, 0, 0);
            sc.arcFrom(4, 39.5, 0, 30, 90, 180);  // ends at (9.5, 0)
        } else {
            sc.pad(20, 0, 0);
            sc.line(4, 9.5, 0, 40, 0);
            sc.line(4, 9.5, -20, 9.5, 20);  // covers the end
        }
        SignalCheckInput input;
        input.copper = sc.layer;
        const auto test_item = static_cast<signal_layers_checks_list>(test);
        const double limit = test_item == sl_sliver ? 2 * kMil : 3 * kMil;
        const std::vector<check_info> hits = allHits(check(input, test_item, limit));
        if (value == 0) {
            QVERIFY(hits.empty());
            return;
        }
        QCOMPARE(int(hits.size()), 1);
        QVERIFY2(std::abs(hits[0].value - value * kMil) <= 1.0,
                 qPrintable(QString::number(hits[0].value / kMil)));
        if (test_item == sl_sliver) {
            const point& a = hits[0].shape.points[0];
            const point& b = hits[0].shape.points[1];
            QVERIFY2(std::hypot((a.x + b.x) / 2 - middle.x() * kMil,
                                (a.y + b.y) / 2 - middle.y() * kMil) <= 1.0,
                     qPrintable(
                         QString("%1 %2").arg((a.x + b.x) / 2 / kMil).arg((a.y + b.y) / 2 / kMil)));
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
        QCOMPARE(result.at(sli_line_width).yellow[0].required, 5 * kMil);  // the green level
        QCOMPARE(int(result.at(sli_smd_width).red.size()), 1);
    }

    // A hit's signature knows its features' shapes and sizes, not where they lie, their ids or
    // their order: moved, or listed otherwise, the scene gives the same signatures; a feature of
    // another size or shape gives another. The scene: a pad 12 mil from a line, and 500 mil on
    // an arc 6 mil from a surface.
    void signatures_data() {
        QTest::addColumn<bool>("same");
        wctest::row("moved", true);
        wctest::row("listed backwards, other ids", true);
        wctest::row("larger pad", false);
        wctest::row("square pad", false);
        wctest::row("longer line", false);
        wctest::row("arc of a wider sweep", false);
        wctest::row("surface with a notch", false);
    }
    void signatures() {
        QFETCH(bool, same);
        const auto signatures = [](const QByteArray& change) {
            const double dx = change == "moved" ? 1234.56 : 0;
            const double dy = change == "moved" ? -789.01 : 0;
            Scene sc(kMil);
            sc.pad(change == "larger pad" ? 11 : 10, dx, dy);
            if (change == "square pad") {
                sc.layer.features.back().symbol = "s10";
            }
            sc.line(6, 20 + dx, -50 + dy, 20 + dx, (change == "longer line" ? 80 : 50) + dy);
            sc.arcFrom(4, 500 + dx, dy, 50, 0, change == "arc of a wider sweep" ? 200 : 180);
            featureInfo& surface = sc.pad(1, 0, 0);
            surface.type = feature_surface;
            std::vector<QPointF> outline{{-30, 58}, {30, 58}, {30, 80}, {-30, 80}};
            if (change == "surface with a notch") {
                outline = {{-30, 58}, {30, 58},  {30, 80},  {10, 80},
                           {10, 70},  {-10, 70}, {-10, 80}, {-30, 80}};
            }
            for (const QPointF& p : outline) {
                surface.contour.push_back(sc.at(500 + dx + p.x(), dy + p.y()));
            }
            if (change == "listed backwards, other ids") {
                std::reverse(sc.layer.features.begin(), sc.layer.features.end());
                for (featureInfo& f : sc.layer.features) {
                    f.id += 1000;
                }
            }
            SignalCheckInput input;
            input.copper = sc.layer;
            std::vector<std::pair<int, quint64>> found;
            for (const auto& [item, record] : check(input, sl_spacing, 20 * kMil)) {
                for (const check_info& hit : record.other) {
                    found.emplace_back(item, hit.signature);
                }
            }
            return found;
        };
        const auto before = signatures("");
        const auto after = signatures(QTest::currentDataTag());
        QCOMPARE(int(before.size()), 2);
        QCOMPARE(int(after.size()), 2);
        QVERIFY(before[0].second != 0 && before[1].second != 0 && after[0].second != 0 &&
                after[1].second != 0 && before[0].second != before[1].second);
        QCOMPARE(after == before, same);
    }

    // A stored result keeps each hit's required value and signature, all 64 bits of it, through
    // a write and a read; a row written before they existed reads them as 0, and one holding
    // them in a form the writer never gives is refused.
    void storedRequiredAndSignature_data() {
        QTest::addColumn<QString>("fields");  // added to a stored hit
        QTest::addColumn<bool>("reads");
        QTest::addColumn<double>("required");
        QTest::addColumn<quint64>("signature");
        wctest::row("written before", "", true, 0.0, quint64(0));
        wctest::row("both", R"(,"r":254000.5,"s":"fedcba9876543210")", true, 254000.5,
                    quint64(0xfedcba9876543210ULL));
        wctest::row("signature as a number", R"(,"s":255)", false, 0.0, quint64(0));
        wctest::row("signature in capitals", R"(,"s":"FEDCBA9876543210")", false, 0.0, quint64(0));
        wctest::row("short signature", R"(,"s":"ff")", false, 0.0, quint64(0));
        wctest::row("required as text", R"(,"r":"1")", false, 0.0, quint64(0));
    }
    void storedRequiredAndSignature() {
        QFETCH(QString, fields);
        QFETCH(bool, reads);
        QFETCH(double, required);
        QFETCH(quint64, signature);
        const QString text = R"({"top":[{"item":0,"red":[{"v":1,"k":0,"p":[],"f":[])" + fields +
                             R"(}],"yellow":[],"green":[],"other":[]}]})";
        Korvo::API::signal_check_result_map read;
        QCOMPARE(wcref::resultrecord::resultFromJson(text, read), reads);
        if (!reads) {
            QVERIFY(read.empty());
            return;
        }
        Korvo::API::signal_check_result_map again;
        QVERIFY(
            wcref::resultrecord::resultFromJson(wcref::resultrecord::resultToJson(read), again));
        for (const auto* result : {&read, &again}) {
            const check_info& hit = result->at("top").at(sli_pad_to_pad_spacing).red.at(0);
            QCOMPARE(hit.required, required);
            QCOMPARE(quint64(hit.signature), signature);
        }
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

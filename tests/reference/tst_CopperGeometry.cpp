// The exact arc primitive of the reference engine's copper geometry, against brute force: the
// middle arc sampled densely and each sample measured exactly to the other shape. Random
// shapes from a fixed seed; each row is one kind of pair. Also the arc's box, which the R-tree
// candidate search relies on, and the join of an arc to a file end point off its circle. Last,
// the grown box and the union-find that the checks, the nets and the optimisations share.

#include <QtTest>
#include <random>

#include "CopperGeometry.h"

using Korvo::API::featureInfo;
using Korvo::API::point;
using wcref::ArcBand;
using wcref::CopperGeometry;
using wcref::CopperShape;

namespace bg = boost::geometry;

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kMil = 25400.0;

point arcPoint(const ArcBand& arc, double t) {  // t in [0, 1] along the sweep
    const double angle = arc.start + arc.sweep * t;
    return {arc.centre.x + arc.radius * std::cos(angle),
            arc.centre.y + arc.radius * std::sin(angle)};
}

double pointSegment(const point& p, const point& a, const point& b) {
    point c1;
    point c2;
    return CopperGeometry::segmentDistance(p, p, a, b, c1, c2);
}

// A random arc in a 200 mil square: radius 5 to 80 mil, any start, sweep up to a full turn.
ArcBand randomArc(std::mt19937& rng) {
    std::uniform_real_distribution<double> pos(-100 * kMil, 100 * kMil);
    std::uniform_real_distribution<double> radius(5 * kMil, 80 * kMil);
    std::uniform_real_distribution<double> angle(-kPi, kPi);
    std::uniform_real_distribution<double> sweep(0.05, 2 * kPi);
    ArcBand arc;
    arc.centre = {pos(rng), pos(rng)};
    arc.radius = radius(rng);
    arc.start = angle(rng);
    arc.sweep = sweep(rng);
    return arc;
}

point randomPoint(std::mt19937& rng) {
    std::uniform_real_distribution<double> pos(-150 * kMil, 150 * kMil);
    return {pos(rng), pos(rng)};
}

bool onArc(const ArcBand& arc, const point& p) {
    const double r = std::hypot(p.x - arc.centre.x, p.y - arc.centre.y);
    double turn =
        std::fmod(std::atan2(p.y - arc.centre.y, p.x - arc.centre.x) - arc.start, 2 * kPi);
    if (turn < 0) {
        turn += 2 * kPi;
    }
    return std::abs(r - arc.radius) < 1e-3 && (turn <= arc.sweep + 1e-9 || turn >= 2 * kPi - 1e-9);
}

featureInfo arcFeature(const point& start, const point& end, const point& centre, bool clockwise,
                       double width_mil) {
    featureInfo f;
    f.type = Korvo::API::feature_arc;
    f.symbol = CopperGeometry::symbolName(wcref::SymbolSize::round, width_mil * kMil, 0);
    f.start = start;
    f.end = end;
    f.center = centre;
    f.clockwise = clockwise;
    return f;
}

}  // namespace

class tst_CopperGeometry : public QObject {
    Q_OBJECT

private slots:
    // Exact distances never exceed the sampled ones and fall short of them by no more than the
    // sampling step; the returned points lie on the shapes and realise the distance.
    void againstSampling_data() {
        QTest::addColumn<int>("pair");
        QTest::newRow("arc and segment") << 0;
        QTest::newRow("arc and point") << 1;
        QTest::newRow("two arcs") << 2;
        QTest::newRow("two concentric arcs") << 3;
        QTest::newRow("arc band and polygon") << 4;
    }
    void againstSampling() {
        QFETCH(int, pair);
        std::mt19937 rng(1234 + pair);
        constexpr int kSamples = 10000;
        for (int round = 0; round < 200; ++round) {
            const ArcBand arc = randomArc(rng);
            ArcBand other = randomArc(rng);
            if (pair == 3) {
                other.centre = arc.centre;
            }
            const point p = randomPoint(rng);
            const point q = pair == 1 ? p : randomPoint(rng);
            GeoPolygonHolder polygon(p, q);
            double exact = 0;
            point on_arc;
            point on_other;
            if (pair <= 1) {
                exact = CopperGeometry::arcSegmentDistance(arc, p, q, on_arc, on_other);
                QVERIFY(pointSegment(on_other, p, q) < 1e-3);
            } else if (pair <= 3) {
                exact = CopperGeometry::arcArcDistance(arc, other, on_arc, on_other);
                QVERIFY(onArc(other, on_other));
            } else {
                CopperShape band;
                band.arcs.push_back(arc);
                band.arcs.back().half_width = 3 * kMil;
                exact = CopperGeometry::distance(band, polygon.shape, on_arc, on_other);
            }
            if (pair != 4) {
                QVERIFY2(onArc(arc, on_arc), qPrintable(QString::number(round)));
                QVERIFY(std::abs(std::hypot(on_arc.x - on_other.x, on_arc.y - on_other.y) - exact) <
                        1e-3);
            }
            double sampled = std::numeric_limits<double>::infinity();
            for (int k = 0; k <= kSamples; ++k) {
                const point s = arcPoint(arc, double(k) / kSamples);
                double d = 0;
                if (pair <= 1) {
                    d = pointSegment(s, p, q);
                } else if (pair <= 3) {
                    point c1;
                    point c2;
                    d = CopperGeometry::arcSegmentDistance(other, s, s, c1, c2);
                } else {
                    d = std::max(
                        0.0, bg::distance(wcref::GeoPoint(s.x, s.y), polygon.polygon) - 3 * kMil);
                }
                sampled = std::min(sampled, d);
            }
            // Two sample points are arc.radius * sweep / kSamples apart.
            const double step = arc.radius * arc.sweep / kSamples;
            QVERIFY2(exact <= sampled + 1e-3 && exact >= sampled - step,
                     qPrintable(QString("round %1: exact %2, sampled %3")
                                    .arg(round)
                                    .arg(exact, 0, 'f', 3)
                                    .arg(sampled, 0, 'f', 3)));
        }
    }

    // The box of an arc holds every point of its copper: a box too small hides the arc from
    // the candidate search. Rows cross the axis directions or not.
    void arcBoxHoldsTheArc_data() {
        QTest::addColumn<double>("from");  // degrees
        QTest::addColumn<double>("to");
        QTest::addColumn<bool>("clockwise");
        QTest::newRow("first quadrant") << 10.0 << 80.0 << false;
        QTest::newRow("across the top") << 60.0 << 120.0 << false;
        QTest::newRow("across the left, clockwise") << 200.0 << 150.0 << true;
        QTest::newRow("across zero") << -30.0 << 30.0 << false;
        QTest::newRow("most of a turn, clockwise") << 10.0 << 20.0 << true;
        QTest::newRow("full circle") << 45.0 << 45.0 << false;
    }
    void arcBoxHoldsTheArc() {
        QFETCH(double, from);
        QFETCH(double, to);
        QFETCH(bool, clockwise);
        const point c{1000 * kMil, -500 * kMil};
        const double r = 40 * kMil;
        const auto at = [&](double degrees) {
            return point{c.x + r * std::cos(degrees * kPi / 180),
                         c.y + r * std::sin(degrees * kPi / 180)};
        };
        const CopperShape shape =
            CopperGeometry::copperOf(arcFeature(at(from), at(to), c, clockwise, 6));
        QCOMPARE(int(shape.arcs.size()), 1);
        const ArcBand& arc = shape.arcs.front();
        double lo_x = 1e300, lo_y = 1e300, hi_x = -1e300, hi_y = -1e300;
        for (int k = 0; k <= 3600; ++k) {
            const point s = arcPoint(arc, k / 3600.0);
            lo_x = std::min(lo_x, s.x - 3 * kMil);
            lo_y = std::min(lo_y, s.y - 3 * kMil);
            hi_x = std::max(hi_x, s.x + 3 * kMil);
            hi_y = std::max(hi_y, s.y + 3 * kMil);
        }
        // The arc runs from the file's start to its end in the file's direction.
        const point first = arcPoint(arc, clockwise ? 1.0 : 0.0);
        QVERIFY(std::hypot(first.x - at(from).x, first.y - at(from).y) < 1e-3);
        const double slack = 1e-3;
        QVERIFY(shape.box.min_corner().x() <= lo_x + slack &&
                shape.box.min_corner().y() <= lo_y + slack);
        QVERIFY(shape.box.max_corner().x() >= hi_x - slack &&
                shape.box.max_corner().y() >= hi_y - slack);
        // ... and no more than that, so that the search stays tight.
        QVERIFY(shape.box.min_corner().x() >= lo_x - r / 100 &&
                shape.box.max_corner().y() <= hi_y + r / 100);
    }

    // A file whose end point lies off the arc's circle (rounded centre offsets): the copper
    // still reaches the end point, so what touches it there touches the arc.
    void endPointOffTheCircle_data() {
        QTest::addColumn<double>("off");  // mil the end point lies outside the circle
        QTest::newRow("on the circle") << 0.0;
        QTest::newRow("a tenth of a mil out") << 0.1;
        QTest::newRow("half a mil in") << -0.5;
        QTest::newRow("two mil out") << 2.0;
    }
    void endPointOffTheCircle() {
        QFETCH(double, off);
        const point c{0, 0};
        const point start{50 * kMil, 0};
        const point end{0, (50 + off) * kMil};
        const CopperShape arc = CopperGeometry::copperOf(arcFeature(start, end, c, false, 0.2));
        CopperShape dot;
        dot.capsules.push_back({end, end, 0.0});
        point a;
        point b;
        QCOMPARE(CopperGeometry::distance(arc, dot, a, b), 0.0);
        QCOMPARE(CopperGeometry::distance(dot, arc, a, b), 0.0);
    }

    // A search box: every side moved out by the same amount.
    void grownBox_data() {
        QTest::addColumn<QRectF>("box");  // x, y, width, height
        QTest::addColumn<double>("by");
        QTest::addColumn<QRectF>("expected");
        QTest::newRow("by the touch tolerance")
            << QRectF(0, 0, 10, 20) << wcref::kTouch << QRectF(-0.5, -0.5, 11, 21);
        QTest::newRow("a point grows into a square")
            << QRectF(3, 4, 0, 0) << 2.0 << QRectF(1, 2, 4, 4);
    }
    void grownBox() {
        QFETCH(QRectF, box);
        QFETCH(double, by);
        QFETCH(QRectF, expected);
        const wcref::GeoBox g =
            wcref::grown(wcref::GeoBox({box.left(), box.top()}, {box.right(), box.bottom()}), by);
        QCOMPARE(QRectF(QPointF(g.min_corner().x(), g.min_corner().y()),
                        QPointF(g.max_corner().x(), g.max_corner().y())),
                 expected);
    }

    // Disjoint sets: "a-b" joins, "+" adds an element, "copy" keeps a copy that later joins must
    // not reach. Sets are written "0 1|2", in order.
    void unionFind_data() {
        QTest::addColumn<int>("n");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("sets");
        QTest::addColumn<QString>("copied");
        // clang-format off
        QTest::newRow("nothing joined") << 3 << "" << "0|1|2" << "";
        QTest::newRow("a chain") << 5 << "0-1 1-2 2-3" << "0 1 2 3|4" << "";
        QTest::newRow("a star") << 4 << "0-1 0-2 0-3" << "0 1 2 3" << "";
        QTest::newRow("added after joins") << 2 << "0-1 + + 3-2" << "0 1|2 3" << "";
        QTest::newRow("a copy keeps its sets") << 4 << "0-1 copy 2-3 1-2" << "0 1 2 3" << "0 1|2|3";
        // clang-format on
    }
    void unionFind() {
        QFETCH(int, n);
        QFETCH(QString, steps);
        QFETCH(QString, sets);
        QFETCH(QString, copied);
        wcref::UnionFind uf(static_cast<size_t>(n));
        wcref::UnionFind copy;
        for (const QString& step : steps.split(' ', Qt::SkipEmptyParts)) {
            if (step == "+") {
                const size_t next = uf.size();
                QCOMPARE(uf.add(), next);
            } else if (step == "copy") {
                copy = uf;
            } else {
                uf.join(step.section('-', 0, 0).toUInt(), step.section('-', 1, 1).toUInt());
            }
        }
        QCOMPARE(setsOf(uf), sets);
        if (!copied.isEmpty()) {
            QCOMPARE(setsOf(copy), copied);
        }
    }

private:
    // The sets of `uf`, each in order, ordered by their first element.
    static QString setsOf(wcref::UnionFind& uf) {
        std::map<size_t, QStringList> by_root;
        std::vector<size_t> order;
        for (size_t k = 0; k < uf.size(); ++k) {
            const size_t root = uf.find(k);
            if (by_root.count(root) == 0) {
                order.push_back(root);
            }
            by_root[root] << QString::number(k);
        }
        QStringList out;
        for (size_t root : order) {
            out << by_root[root].join(' ');
        }
        return out.join('|');
    }

    // A convex polygon about the segment p-q (the hull of four points near its ends), as a
    // polygon and as copper.
    struct GeoPolygonHolder {
        GeoPolygonHolder(const point& p, const point& q) {
            const double w = 4 * kMil;
            bg::model::multi_point<wcref::GeoPoint> cloud;
            for (const point& v : {point{p.x - w, p.y - w}, point{q.x + w, q.y - w / 2},
                                   point{q.x + w / 2, q.y + w}, point{p.x - w / 2, p.y + w}}) {
                cloud.emplace_back(v.x, v.y);
            }
            bg::convex_hull(cloud, polygon);
            shape.polygons.push_back(polygon);
        }
        wcref::GeoPolygon polygon;
        CopperShape shape;
    };
};

QTEST_GUILESS_MAIN(tst_CopperGeometry)
#include "tst_CopperGeometry.moc"

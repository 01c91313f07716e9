// Step-and-repeat geometry and the engine's instance selection on the sample panel.

#include <QtTest>
#include <cmath>

#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "StepRepeatGeometry.h"

using Korvo::API::point;
using Korvo::API::reply_box;
using Korvo::API::step_repeat_op;

Q_DECLARE_METATYPE(std::vector<point>)

namespace {

constexpr double kMil = 25400.0;
const std::string kJob = "sample_job";

point mil(double x, double y) {
    return {x * kMil, y * kMil};
}

std::vector<point> square(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

// "row:index" of every selected instance, in table order.
QString selectionText(const std::vector<step_repeat_op>& rows) {
    QStringList parts;
    for (size_t r = 0; r < rows.size(); ++r) {
        for (int index : rows[r].selection)
            parts << QString("%1:%2").arg(r).arg(index);
    }
    return parts.join(';');
}

QString storedSelection() {
    std::vector<step_repeat_op> rows;
    if (!Korvo::API::get_step_repeat(kJob, "panel", rows))
        return "get_step_repeat failed";
    return selectionText(rows);
}

}  // namespace

class tst_StepRepeat : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob(kJob));
    }

    void instanceBox_data() {
        QTest::addColumn<int>("angle");
        QTest::addColumn<bool>("mirror");
        QTest::addColumn<QList<double>>("box");  // xmin, ymin, xmax, ymax
        // Child box 0..2000 x 0..1500 placed at (100, 200); rotation is clockwise.
        QTest::newRow("0") << 0 << false << QList<double>{100, 200, 2100, 1700};
        QTest::newRow("90") << 90 << false << QList<double>{100, -1800, 1600, 200};
        QTest::newRow("180") << 180 << false << QList<double>{-1900, -1300, 100, 200};
        QTest::newRow("270") << 270 << false << QList<double>{-1400, 200, 100, 2200};
        QTest::newRow("-90 is 270") << -90 << false << QList<double>{-1400, 200, 100, 2200};
        QTest::newRow("450 is 90") << 450 << false << QList<double>{100, -1800, 1600, 200};
        QTest::newRow("mirror") << 0 << true << QList<double>{-1900, 200, 100, 1700};
        QTest::newRow("mirror 90") << 90 << true << QList<double>{100, 200, 1600, 2200};
        QTest::newRow("mirror 180") << 180 << true << QList<double>{100, -1300, 2100, 200};
        QTest::newRow("mirror 270") << 270 << true << QList<double>{-1400, -1800, 100, 200};
        QTest::newRow("45") << 45 << false
                            << QList<double>{100, 200 - 2000 * M_SQRT1_2, 100 + 3500 * M_SQRT1_2,
                                             200 + 1500 * M_SQRT1_2};
    }
    void instanceBox() {
        QFETCH(int, angle);
        QFETCH(bool, mirror);
        QFETCH(QList<double>, box);
        wcref::RepeatInstance instance;
        instance.position = {100, 200};
        instance.angle = angle;
        instance.mirror = mirror;
        const reply_box b = wcref::instanceBox({0, 0, 2000, 1500}, instance);
        const QList<double> actual{b.xmin, b.ymin, b.xmax, b.ymax};
        for (int k = 0; k < 4; ++k)
            QVERIFY2(std::abs(actual[k] - box[k]) < 1e-6, qPrintable(QString::number(k)));
    }

    void expansionOrder() {
        step_repeat_op row;
        row.x = 10;
        row.y = 20;
        row.dx = 100;
        row.dy = -50;
        row.nx = 3;
        row.ny = 2;
        step_repeat_op single;
        single.nx = single.ny = 1;
        const auto instances = wcref::expandRepeatRows({row, single});
        QCOMPARE(instances.size(), size_t(7));
        // The selection key of instance (i, j) is i + j * nx.
        QCOMPARE(instances[4].index, 4);
        QCOMPARE(instances[4].i, 1);
        QCOMPARE(instances[4].j, 1);
        QCOMPARE(instances[4].position.x, 110.0);
        QCOMPARE(instances[4].position.y, -30.0);
        QCOMPARE(instances[6].row, 1);
        QCOMPARE(instances[6].index, 0);
    }

    void pointInPolygon_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inside");
        // L shape: the square 0..10 without its upper right quarter 5..10 x 5..10.
        QTest::newRow("inside lower arm") << 8.0 << 2.0 << true;
        QTest::newRow("inside the notch") << 8.0 << 8.0 << false;
        QTest::newRow("outside") << 12.0 << 2.0 << false;
        QTest::newRow("on an outer edge") << 0.0 << 7.0 << true;
        QTest::newRow("on the notch edge") << 7.0 << 5.0 << true;
        QTest::newRow("on the inner vertex") << 5.0 << 5.0 << true;
        QTest::newRow("level with a vertex, outside") << -1.0 << 5.0 << false;
        QTest::newRow("level with a vertex, inside") << 2.0 << 5.0 << true;
    }
    void pointInPolygon() {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(bool, inside);
        const std::vector<point> shape = {{0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 10}, {0, 10}};
        QCOMPARE(wcref::pointInPolygon({x, y}, shape), inside);
    }

    void distance_data() {
        QTest::addColumn<std::vector<point>>("first");
        QTest::addColumn<std::vector<point>>("second");
        QTest::addColumn<int>("distance");
        QTest::addColumn<QList<double>>("points");  // x1, y1, x2, y2 when the pair is unique
        const std::vector<point> unit = square(0, 0, 10, 10);
        const std::vector<point> triangle{{25, 0}, {25, 10}, {15, 5}};
        QTest::newRow("diagonal gap")
            << unit << square(13, 14, 20, 20) << 5 << QList<double>{10, 10, 13, 14};
        QTest::newRow("vertex towards edge")
            << triangle << unit << 5 << QList<double>{15, 5, 10, 5};
        QTest::newRow("side by side") << unit << square(20, 0, 30, 10) << 10 << QList<double>{};
        QTest::newRow("truncated")
            << unit << square(11, 11, 20, 20) << 1 << QList<double>{10, 10, 11, 11};
        QTest::newRow("touching corner")
            << unit << square(10, 10, 20, 20) << 0 << QList<double>{10, 10, 10, 10};
        QTest::newRow("shared edge") << unit << square(10, 2, 20, 8) << 0 << QList<double>{};
        QTest::newRow("overlapping") << unit << square(5, 5, 15, 15) << 0 << QList<double>{};
        QTest::newRow("second inside first")
            << unit << square(2, 2, 4, 4) << 0 << QList<double>{2, 2, 2, 2};
        QTest::newRow("first inside second")
            << square(2, 2, 4, 4) << unit << 0 << QList<double>{2, 2, 2, 2};
        QTest::newRow("empty outline") << std::vector<point>{} << unit << -1 << QList<double>{};
    }
    void distance() {
        QFETCH(std::vector<point>, first);
        QFETCH(std::vector<point>, second);
        QFETCH(int, distance);
        QFETCH(QList<double>, points);
        point a{-99, -99};
        point b{-99, -99};
        QCOMPARE(Korvo::API::distance_of_polygon(first, second, a, b), distance);
        if (distance >= 0)  // the points realise the distance, whatever pair was chosen
            QCOMPARE(static_cast<int>(std::hypot(a.x - b.x, a.y - b.y)), distance);
        const QList<double> actual{a.x, a.y, b.x, b.y};
        for (int k = 0; k < points.size(); ++k)
            QCOMPARE(actual[k], points[k]);
    }

    void select_data() {
        QTest::addColumn<std::vector<point>>("points");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("selected");
        // Sample panel, in mil: row 0 is 3 x 2 boards at x 500 + 2200 i, y 500 + 1700 j (each
        // 2000 x 1500); row 1 is a column of two boards turned by 90, x 7200..8700, y 500..2500
        // and 2700..4700.
        using P = std::vector<point>;
        QTest::newRow("pick first board") << P{mil(600, 600)} << 0 << "0:0";
        QTest::newRow("pick middle upper") << P{mil(3000, 2300)} << 0 << "0:4";
        QTest::newRow("pick rotated board") << P{mil(8000, 3000)} << 0 << "1:1";
        QTest::newRow("pick on a board edge") << P{mil(2500, 2000)} << 0 << "0:0";
        QTest::newRow("pick in a gap") << P{mil(2600, 600)} << 0 << "";
        QTest::newRow("pick outside") << P{mil(9500, 100)} << 0 << "";
        QTest::newRow("rectangle, two centres") << P{mil(0, 0), mil(5000, 2100)} << 1 << "0:0;0:1";
        QTest::newRow("rectangle, corners reversed")
            << P{mil(5000, 2100), mil(0, 0)} << 1 << "0:0;0:1";
        QTest::newRow("rectangle, whole panel")
            << P{mil(0, 0), mil(9000, 7000)} << 1 << "0:0;0:1;0:2;0:3;0:4;0:5;1:0;1:1";
        QTest::newRow("rectangle, box only partly inside")
            << P{mil(7000, 0), mil(9000, 1400)} << 1 << "";
        QTest::newRow("rectangle, rotated centre")
            << P{mil(7000, 0), mil(9000, 2600)} << 1 << "1:0";
        QTest::newRow("polygon triangle")
            << P{mil(0, 0), mil(9000, 0), mil(0, 7000)} << 1 << "0:0;0:1;0:2;0:3;0:4";
    }
    void select() {
        QFETCH(std::vector<point>, points);
        QFETCH(int, mode);
        QFETCH(QString, selected);
        std::vector<step_repeat_op> rows;
        QVERIFY(Korvo::API::select_step_repeat(kJob, "panel", rows, points, mode));
        QCOMPARE(selectionText(rows), selected);
        QCOMPARE(storedSelection(), selected);
    }

    void selectionAddsUpAndClears() {
        std::vector<step_repeat_op> rows;
        const int edits = Korvo::API::get_editop_count(kJob, "panel");
        QVERIFY(Korvo::API::select_step_repeat(kJob, "panel", rows, {mil(600, 600)}, 0));
        QVERIFY(Korvo::API::select_step_repeat(kJob, "panel", rows, {mil(8000, 1000)}, 0));
        QCOMPARE(storedSelection(), QString("0:0;1:0"));
        QVERIFY(Korvo::API::clear_select_step_repeat(kJob, "panel"));
        QCOMPARE(storedSelection(), QString());
        QCOMPARE(Korvo::API::get_editop_count(kJob, "panel"), edits);  // selecting is no edit

        QVERIFY(!Korvo::API::select_step_repeat(kJob, "panel", rows, {}, 0));
        QVERIFY(!Korvo::API::select_step_repeat(kJob, "panel", rows, {mil(1, 1)}, 1));
        QVERIFY(!Korvo::API::select_step_repeat(kJob, "panel", rows, {mil(1, 1)}, 2));
        QVERIFY(!Korvo::API::select_step_repeat(kJob, "nosuch", rows, {mil(1, 1)}, 0));
        QVERIFY(!Korvo::API::clear_select_step_repeat(kJob, "nosuch"));
    }

    // A pick takes the last placed of overlapping instances; a stored selection keeps only
    // indices the row has.
    void overlapsAndForeignSelection() {
        step_repeat_op first;
        first.step_name = "pcb";
        step_repeat_op second = first;
        second.x = static_cast<int32_t>(1000 * kMil);
        QVERIFY(Korvo::API::set_step_repeat(kJob, "panel", {first, second}));
        std::vector<step_repeat_op> rows;
        QVERIFY(Korvo::API::select_step_repeat(kJob, "panel", rows, {mil(1500, 700)}, 0));
        QCOMPARE(selectionText(rows), QString("1:0"));
        QVERIFY(Korvo::API::select_step_repeat(kJob, "panel", rows, {mil(500, 700)}, 0));
        QCOMPARE(selectionText(rows), QString("0:0;1:0"));

        first.nx = first.ny = 2;
        first.selection = {-1, 0, 3, 4};
        QVERIFY(Korvo::API::set_step_repeat(kJob, "panel", {first}));
        QCOMPARE(storedSelection(), QString("0:0;0:3"));
    }

    void setRepeatValidation_data() {
        QTest::addColumn<QString>("child");
        QTest::addColumn<int>("nx");
        QTest::addColumn<int>("ny");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("valid") << "pcb" << 4 << 1 << true;
        QTest::newRow("no columns") << "pcb" << 0 << 2 << false;
        QTest::newRow("no rows") << "pcb" << 2 << 0 << false;
        QTest::newRow("negative count") << "pcb" << -1 << 1 << false;
        QTest::newRow("itself") << "panel" << 1 << 1 << false;
        QTest::newRow("unknown step") << "nosuch" << 1 << 1 << false;
        QTest::newRow("its parent") << "carrier" << 1 << 1 << false;
        QTest::newRow("its grandparent") << "pallet" << 1 << 1 << false;
        QTest::newRow("unrelated empty step") << "coupon" << 2 << 2 << true;
    }
    void setRepeatValidation() {
        QFETCH(QString, child);
        QFETCH(int, nx);
        QFETCH(int, ny);
        QFETCH(bool, accepted);
        // pallet places carrier, which places panel.
        for (const char* name : {"carrier", "pallet", "coupon"})
            QVERIFY(Korvo::API::create_step(kJob, name, 0));
        step_repeat_op holds;
        holds.step_name = "panel";
        QVERIFY(Korvo::API::set_step_repeat(kJob, "carrier", {holds}));
        holds.step_name = "carrier";
        QVERIFY(Korvo::API::set_step_repeat(kJob, "pallet", {holds}));

        std::vector<step_repeat_op> before;
        QVERIFY(Korvo::API::get_step_repeat(kJob, "panel", before));
        const int edits = Korvo::API::get_editop_count(kJob, "panel");
        step_repeat_op row;
        row.step_name = child.toStdString();
        row.nx = nx;
        row.ny = ny;
        QCOMPARE(Korvo::API::set_step_repeat(kJob, "panel", {row}), accepted);
        std::vector<step_repeat_op> after;
        QVERIFY(Korvo::API::get_step_repeat(kJob, "panel", after));
        QCOMPARE(after.size(), accepted ? size_t(1) : before.size());
        QCOMPARE(Korvo::API::get_editop_count(kJob, "panel"), edits + (accepted ? 1 : 0));
    }
};

QTEST_MAIN(tst_StepRepeat)
#include "tst_StepRepeat.moc"

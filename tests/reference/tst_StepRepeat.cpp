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
        for (int index : rows[r].selection) {
            parts << QString("%1:%2").arg(r).arg(index);
        }
    }
    return parts.join(';');
}

QString storedSelection() {
    std::vector<step_repeat_op> rows;
    if (!Korvo::API::get_step_repeat("sample_job", "panel", rows)) {
        return "get_step_repeat failed";
    }
    return selectionText(rows);
}

}  // namespace

class tst_StepRepeat : public QObject {
    Q_OBJECT

private slots:
    void init();
    void instanceBox_data();
    void instanceBox();
    void expansionOrder();
    void pointInPolygon_data();
    void pointInPolygon();
    void distance_data();
    void distance();
    void select_data();
    void select();
    void selectionAddsUpAndClears();
    void pickTakesLastPlacedOfOverlapping();
    void setRepeatValidation_data();
    void setRepeatValidation();
    void setRepeatDropsForeignSelection();
};

void tst_StepRepeat::init() {
    wcref::resetEngine();
    QVERIFY(wcref::openSampleJob("sample_job"));
}

void tst_StepRepeat::instanceBox_data() {
    QTest::addColumn<int>("angle");
    QTest::addColumn<bool>("mirror");
    QTest::addColumn<double>("xmin");
    QTest::addColumn<double>("ymin");
    QTest::addColumn<double>("xmax");
    QTest::addColumn<double>("ymax");

    // Child box 0..2000 x 0..1500 placed at (100, 200); rotation is clockwise.
    QTest::newRow("0") << 0 << false << 100.0 << 200.0 << 2100.0 << 1700.0;
    QTest::newRow("90") << 90 << false << 100.0 << -1800.0 << 1600.0 << 200.0;
    QTest::newRow("180") << 180 << false << -1900.0 << -1300.0 << 100.0 << 200.0;
    QTest::newRow("270") << 270 << false << -1400.0 << 200.0 << 100.0 << 2200.0;
    QTest::newRow("-90 is 270") << -90 << false << -1400.0 << 200.0 << 100.0 << 2200.0;
    QTest::newRow("450 is 90") << 450 << false << 100.0 << -1800.0 << 1600.0 << 200.0;
    QTest::newRow("mirror") << 0 << true << -1900.0 << 200.0 << 100.0 << 1700.0;
    QTest::newRow("mirror 90") << 90 << true << 100.0 << 200.0 << 1600.0 << 2200.0;
    QTest::newRow("mirror 180") << 180 << true << 100.0 << -1300.0 << 2100.0 << 200.0;
    QTest::newRow("mirror 270") << 270 << true << -1400.0 << -1800.0 << 100.0 << 200.0;
    QTest::newRow("45") << 45 << false << 100.0 << 200.0 - 2000 * M_SQRT1_2
                        << 100.0 + 3500 * M_SQRT1_2 << 200.0 + 1500 * M_SQRT1_2;
}

void tst_StepRepeat::instanceBox() {
    QFETCH(int, angle);
    QFETCH(bool, mirror);
    QFETCH(double, xmin);
    QFETCH(double, ymin);
    QFETCH(double, xmax);
    QFETCH(double, ymax);

    wcref::RepeatInstance instance;
    instance.position = {100, 200};
    instance.angle = angle;
    instance.mirror = mirror;
    const reply_box box = wcref::instanceBox({0, 0, 2000, 1500}, instance);
    QVERIFY(std::abs(box.xmin - xmin) < 1e-6);
    QVERIFY(std::abs(box.ymin - ymin) < 1e-6);
    QVERIFY(std::abs(box.xmax - xmax) < 1e-6);
    QVERIFY(std::abs(box.ymax - ymax) < 1e-6);
}

void tst_StepRepeat::expansionOrder() {
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

void tst_StepRepeat::pointInPolygon_data() {
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

void tst_StepRepeat::pointInPolygon() {
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(bool, inside);
    const std::vector<point> shape = {{0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 10}, {0, 10}};
    QCOMPARE(wcref::pointInPolygon({x, y}, shape), inside);
}

void tst_StepRepeat::distance_data() {
    QTest::addColumn<std::vector<point>>("first");
    QTest::addColumn<std::vector<point>>("second");
    QTest::addColumn<int>("distance");
    QTest::addColumn<bool>("checkPoints");
    QTest::addColumn<double>("x1");
    QTest::addColumn<double>("y1");
    QTest::addColumn<double>("x2");
    QTest::addColumn<double>("y2");

    const std::vector<point> unit = square(0, 0, 10, 10);
    QTest::newRow("diagonal gap") << unit << square(13, 14, 20, 20) << 5 << true << 10.0 << 10.0
                                  << 13.0 << 14.0;
    QTest::newRow("vertex towards edge") << std::vector<point>{{25, 0}, {25, 10}, {15, 5}} << unit
                                         << 5 << true << 15.0 << 5.0 << 10.0 << 5.0;
    QTest::newRow("side by side") << unit << square(20, 0, 30, 10) << 10 << false << 0.0 << 0.0
                                  << 0.0 << 0.0;
    QTest::newRow("truncated") << unit << square(11, 11, 20, 20) << 1 << true << 10.0 << 10.0
                               << 11.0 << 11.0;
    QTest::newRow("touching corner")
        << unit << square(10, 10, 20, 20) << 0 << true << 10.0 << 10.0 << 10.0 << 10.0;
    QTest::newRow("shared edge") << unit << square(10, 2, 20, 8) << 0 << false << 0.0 << 0.0 << 0.0
                                 << 0.0;
    QTest::newRow("overlapping") << unit << square(5, 5, 15, 15) << 0 << false << 0.0 << 0.0 << 0.0
                                 << 0.0;
    QTest::newRow("second inside first")
        << unit << square(2, 2, 4, 4) << 0 << true << 2.0 << 2.0 << 2.0 << 2.0;
    QTest::newRow("first inside second")
        << square(2, 2, 4, 4) << unit << 0 << true << 2.0 << 2.0 << 2.0 << 2.0;
    QTest::newRow("empty outline")
        << std::vector<point>{} << unit << -1 << false << 0.0 << 0.0 << 0.0 << 0.0;
}

void tst_StepRepeat::distance() {
    QFETCH(std::vector<point>, first);
    QFETCH(std::vector<point>, second);
    QFETCH(int, distance);
    QFETCH(bool, checkPoints);

    point on_first{-99, -99};
    point on_second{-99, -99};
    QCOMPARE(Korvo::API::distance_of_polygon(first, second, on_first, on_second), distance);
    if (distance >= 0) {
        // The points realise the distance, whatever pair was chosen.
        const double gap = std::hypot(on_first.x - on_second.x, on_first.y - on_second.y);
        QCOMPARE(static_cast<int>(gap), distance);
    }
    if (checkPoints) {
        QFETCH(double, x1);
        QFETCH(double, y1);
        QFETCH(double, x2);
        QFETCH(double, y2);
        QCOMPARE(on_first.x, x1);
        QCOMPARE(on_first.y, y1);
        QCOMPARE(on_second.x, x2);
        QCOMPARE(on_second.y, y2);
    }
}

void tst_StepRepeat::select_data() {
    QTest::addColumn<std::vector<point>>("points");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("selected");

    // Sample panel, in mil: row 0 is 3 x 2 boards at x 500 + 2200 i, y 500 + 1700 j (each
    // 2000 x 1500); row 1 is a column of two boards turned by 90, x 7200..8700, y 500..2500
    // and 2700..4700.
    QTest::newRow("pick first board") << std::vector<point>{mil(600, 600)} << 0 << "0:0";
    QTest::newRow("pick middle upper") << std::vector<point>{mil(3000, 2300)} << 0 << "0:4";
    QTest::newRow("pick rotated board") << std::vector<point>{mil(8000, 3000)} << 0 << "1:1";
    QTest::newRow("pick on a board edge") << std::vector<point>{mil(2500, 2000)} << 0 << "0:0";
    QTest::newRow("pick in a gap") << std::vector<point>{mil(2600, 600)} << 0 << "";
    QTest::newRow("pick outside") << std::vector<point>{mil(9500, 100)} << 0 << "";
    QTest::newRow("rectangle, two centres")
        << std::vector<point>{mil(0, 0), mil(5000, 2100)} << 1 << "0:0;0:1";
    QTest::newRow("rectangle, corners reversed")
        << std::vector<point>{mil(5000, 2100), mil(0, 0)} << 1 << "0:0;0:1";
    QTest::newRow("rectangle, whole panel")
        << std::vector<point>{mil(0, 0), mil(9000, 7000)} << 1 << "0:0;0:1;0:2;0:3;0:4;0:5;1:0;1:1";
    QTest::newRow("rectangle, box only partly inside")
        << std::vector<point>{mil(7000, 0), mil(9000, 1400)} << 1 << "";
    QTest::newRow("rectangle, rotated centre")
        << std::vector<point>{mil(7000, 0), mil(9000, 2600)} << 1 << "1:0";
    QTest::newRow("polygon triangle")
        << std::vector<point>{mil(0, 0), mil(9000, 0), mil(0, 7000)} << 1 << "0:0;0:1;0:2;0:3;0:4";
}

void tst_StepRepeat::select() {
    QFETCH(std::vector<point>, points);
    QFETCH(int, mode);
    QFETCH(QString, selected);

    std::vector<step_repeat_op> rows;
    QVERIFY(Korvo::API::select_step_repeat("sample_job", "panel", rows, points, mode));
    QCOMPARE(selectionText(rows), selected);
    QCOMPARE(storedSelection(), selected);
}

void tst_StepRepeat::selectionAddsUpAndClears() {
    std::vector<step_repeat_op> rows;
    const int edits = Korvo::API::get_editop_count("sample_job", "panel");
    QVERIFY(Korvo::API::select_step_repeat("sample_job", "panel", rows, {mil(600, 600)}, 0));
    QVERIFY(Korvo::API::select_step_repeat("sample_job", "panel", rows, {mil(8000, 1000)}, 0));
    QCOMPARE(storedSelection(), QString("0:0;1:0"));
    QVERIFY(Korvo::API::clear_select_step_repeat("sample_job", "panel"));
    QCOMPARE(storedSelection(), QString());
    QCOMPARE(Korvo::API::get_editop_count("sample_job", "panel"), edits);

    QVERIFY(!Korvo::API::select_step_repeat("sample_job", "panel", rows, {}, 0));
    QVERIFY(!Korvo::API::select_step_repeat("sample_job", "panel", rows, {mil(1, 1)}, 1));
    QVERIFY(!Korvo::API::select_step_repeat("sample_job", "panel", rows, {mil(1, 1)}, 2));
    QVERIFY(!Korvo::API::select_step_repeat("sample_job", "nosuch", rows, {mil(1, 1)}, 0));
    QVERIFY(!Korvo::API::clear_select_step_repeat("sample_job", "nosuch"));
}

void tst_StepRepeat::pickTakesLastPlacedOfOverlapping() {
    step_repeat_op first;
    first.step_name = "pcb";
    step_repeat_op second = first;
    second.x = static_cast<int32_t>(1000 * kMil);
    QVERIFY(Korvo::API::set_step_repeat("sample_job", "panel", {first, second}));
    std::vector<step_repeat_op> rows;
    QVERIFY(Korvo::API::select_step_repeat("sample_job", "panel", rows, {mil(1500, 700)}, 0));
    QCOMPARE(selectionText(rows), QString("1:0"));
    QVERIFY(Korvo::API::select_step_repeat("sample_job", "panel", rows, {mil(500, 700)}, 0));
    QCOMPARE(selectionText(rows), QString("0:0;1:0"));
}

void tst_StepRepeat::setRepeatValidation_data() {
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

void tst_StepRepeat::setRepeatValidation() {
    QFETCH(QString, child);
    QFETCH(int, nx);
    QFETCH(int, ny);
    QFETCH(bool, accepted);

    // pallet places carrier, which places panel.
    for (const char* name : {"carrier", "pallet", "coupon"}) {
        QVERIFY(Korvo::API::create_step("sample_job", name, 0));
    }
    step_repeat_op holds;
    holds.step_name = "panel";
    QVERIFY(Korvo::API::set_step_repeat("sample_job", "carrier", {holds}));
    holds.step_name = "carrier";
    QVERIFY(Korvo::API::set_step_repeat("sample_job", "pallet", {holds}));

    std::vector<step_repeat_op> before;
    QVERIFY(Korvo::API::get_step_repeat("sample_job", "panel", before));
    const int edits = Korvo::API::get_editop_count("sample_job", "panel");
    step_repeat_op row;
    row.step_name = child.toStdString();
    row.nx = nx;
    row.ny = ny;
    QCOMPARE(Korvo::API::set_step_repeat("sample_job", "panel", {row}), accepted);

    std::vector<step_repeat_op> after;
    QVERIFY(Korvo::API::get_step_repeat("sample_job", "panel", after));
    QCOMPARE(after.size(), accepted ? size_t(1) : before.size());
    QCOMPARE(Korvo::API::get_editop_count("sample_job", "panel"), edits + (accepted ? 1 : 0));
}

void tst_StepRepeat::setRepeatDropsForeignSelection() {
    step_repeat_op row;
    row.step_name = "pcb";
    row.nx = 2;
    row.ny = 2;
    row.selection = {-1, 0, 3, 4};
    QVERIFY(Korvo::API::set_step_repeat("sample_job", "panel", {row}));
    QCOMPARE(storedSelection(), QString("0:0;0:3"));
}

QTEST_MAIN(tst_StepRepeat)
#include "tst_StepRepeat.moc"

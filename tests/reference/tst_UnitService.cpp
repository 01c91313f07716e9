#include <QtTest>

#include "HostSettings.h"
#include "Korvo_UIAPI.h"

using namespace Korvo::UIAPI;

namespace {
const int kImperial = 0;
const int kMetric = 1;
}  // namespace

class tst_UnitService : public QObject {
    Q_OBJECT

private slots:
    void init() { wcref::resetUnits(); }
    void cleanupTestCase() { wcref::resetUnits(); }

    void judgeString_data();
    void judgeString();
    void judgeData_data();
    void judgeData();
    void judgeStringMetric_data();
    void judgeStringMetric();
    void apiAndMilData_data();
    void apiAndMilData();
    void previousUnit_data();
    void previousUnit();
    void unitStrings_data();
    void unitStrings();
    void valueLegal_data();
    void valueLegal();
    void symbols_data();
    void symbols();
    void symbolLegal_data();
    void symbolLegal();
    void handlesAndDefault();
    void selectionMaskAndShift();
};

void tst_UnitService::judgeString_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("mil");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("text");
    QTest::newRow("mil default") << kImperial << 8.0 << 2 << "8.00";
    QTest::newRow("mil fraction") << kImperial << 0.25 << 2 << "0.25";
    QTest::newRow("mm 8 mil") << kMetric << 8.0 << 2 << "0.20";
    QTest::newRow("mm 10 mil, 3 decimals") << kMetric << 10.0 << 3 << "0.254";
    QTest::newRow("mm no decimals rounds") << kMetric << 100.0 << 0 << "3";
    QTest::newRow("mm negative") << kMetric << -100.0 << 2 << "-2.54";
}

void tst_UnitService::judgeString() {
    QFETCH(int, unit);
    QFETCH(double, mil);
    QFETCH(int, decimals);
    int handle = 0;
    setUnit(&handle, unit);
    QFETCH(QString, text);
    QCOMPARE(getUnitJudgeString(&handle, mil, decimals), text);
}

void tst_UnitService::judgeData_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("mil");
    QTest::addColumn<int>("truncated");
    QTest::addColumn<int>("rounded");
    QTest::addColumn<double>("exact");
    QTest::newRow("mil 2") << kImperial << 2.0 << 2 << 2 << 2.0;
    QTest::newRow("mil 7.6") << kImperial << 7.6 << 7 << 8 << 7.6;
    QTest::newRow("mm 2-mil limit reads 0") << kMetric << 2.0 << 0 << 0 << 0.0508;
    QTest::newRow("mm 20 mil") << kMetric << 20.0 << 0 << 1 << 0.508;
    QTest::newRow("mm 100 mil") << kMetric << 100.0 << 2 << 3 << 2.54;
    QTest::newRow("mm -100 mil toward zero") << kMetric << -100.0 << -2 << -3 << -2.54;
    QTest::newRow("mm 8000 mil") << kMetric << 8000.0 << 203 << 203 << 203.2;
}

void tst_UnitService::judgeData() {
    QFETCH(int, unit);
    QFETCH(double, mil);
    QFETCH(int, truncated);
    QFETCH(int, rounded);
    QFETCH(double, exact);
    int handle = 0;
    setUnit(&handle, unit);
    QCOMPARE(getUnitJudgeData(&handle, mil), truncated);
    QCOMPARE(getUnitJudgeData2(&handle, mil), rounded);
    QVERIFY(qAbs(getUnitJudgeDouble(&handle, mil) - exact) < 1e-9);
}

void tst_UnitService::judgeStringMetric_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<double>("engine");
    QTest::addColumn<QString>("text");
    QTest::newRow("mil 8") << kImperial << 203200.0 << "8.000";
    QTest::newRow("mil half") << kImperial << 12700.0 << "0.500";
    QTest::newRow("mm 8 mil") << kMetric << 203200.0 << "0.203";
    QTest::newRow("mm 1") << kMetric << 1000000.0 << "1.000";
    QTest::newRow("mm zero") << kMetric << 0.0 << "0.000";
}

void tst_UnitService::judgeStringMetric() {
    QFETCH(int, unit);
    QFETCH(double, engine);
    int handle = 0;
    setUnit(&handle, unit);
    QFETCH(QString, text);
    QCOMPARE(getUnitJudgeStringMetric(&handle, engine), text);
}

void tst_UnitService::apiAndMilData_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("display");
    QTest::addColumn<double>("engine");
    QTest::addColumn<double>("mil");
    QTest::newRow("mil length") << kImperial << 1 << 8.0 << 203200.0 << 8.0;
    QTest::newRow("mm length") << kMetric << 1 << 0.2032 << 203200.0 << 8.0;
    QTest::newRow("mil area") << kImperial << 2 << 1.0 << 645160000.0 << 1.0;
    QTest::newRow("mm area") << kMetric << 2 << 1.0 << 1e12 << 1.0 / (0.0254 * 0.0254);
    QTest::newRow("mil unit-free") << kImperial << 0 << 5.0 << 5.0 << 5.0;
    QTest::newRow("mm unit-free") << kMetric << 3 << 45.0 << 45.0 << 45.0;
}

void tst_UnitService::apiAndMilData() {
    QFETCH(int, unit);
    QFETCH(int, kind);
    QFETCH(double, display);
    QFETCH(double, engine);
    QFETCH(double, mil);
    int handle = 0;
    setUnit(&handle, unit);
    QVERIFY(qFuzzyCompare(getUnitAPIData(&handle, kind, display), engine));
    QVERIFY(qFuzzyCompare(getUnitMilData(&handle, kind, display), mil));
    if (kind == 1)
        QVERIFY(qFuzzyCompare(getUnitPointData(&handle, display), engine));
}

void tst_UnitService::previousUnit_data() {
    QTest::addColumn<QList<int>>("units");
    QTest::addColumn<double>("typed");
    QTest::addColumn<double>("expected");
    QTest::newRow("never changed") << QList<int>{} << 8.0 << 8.0;
    QTest::newRow("default to mm") << QList<int>{kMetric} << 8.0 << 0.2032;
    QTest::newRow("mil to mm") << QList<int>{kImperial, kMetric} << 8.0 << 0.2032;
    QTest::newRow("mm to mil") << QList<int>{kMetric, kImperial} << 0.2032 << 8.0;
    QTest::newRow("mm set twice") << QList<int>{kImperial, kMetric, kMetric} << 0.2 << 0.2;
    QTest::newRow("back and forth") << QList<int>{kMetric, kImperial, kMetric} << 10.0 << 0.254;
}

void tst_UnitService::previousUnit() {
    QFETCH(QList<int>, units);
    QFETCH(double, typed);
    QFETCH(double, expected);
    int handle = 0;
    for (int unit : units)
        setUnit(&handle, unit);
    QVERIFY(qAbs(getUnitData(&handle, typed) - expected) < 1e-9);
}

void tst_UnitService::unitStrings_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("flavour");
    QTest::addColumn<QString>("text");
    QTest::newRow("mil field") << kImperial << 1 << "mil";
    QTest::newRow("mil other") << kImperial << 0 << "inch";
    QTest::newRow("mm field") << kMetric << 1 << "mm";
    QTest::newRow("mm other") << kMetric << 0 << "mm";
}

void tst_UnitService::unitStrings() {
    QFETCH(int, unit);
    QFETCH(int, flavour);
    int handle = 0;
    setUnit(&handle, unit);
    QFETCH(QString, text);
    QCOMPARE(QString::fromStdString(getUnitStringType(&handle, flavour)), text);
}

void tst_UnitService::valueLegal_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("value");
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<bool>("legal");
    QTest::newRow("mil upper bound") << kImperial << "2" << 0.0 << 2.0 << true;
    QTest::newRow("mil above") << kImperial << "2.0001" << 0.0 << 2.0 << false;
    QTest::newRow("mil lower bound") << kImperial << "1.001" << 1.001 << 100000.0 << true;
    QTest::newRow("mil below") << kImperial << "1" << 1.001 << 100000.0 << false;
    QTest::newRow("mm upper bound") << kMetric << "0.0508" << 0.0 << 2.0 << true;
    QTest::newRow("mm above") << kMetric << "0.0509" << 0.0 << 2.0 << false;
    QTest::newRow("mm negative") << kMetric << "-0.1" << 0.0 << 2.0 << false;
    QTest::newRow("not a number") << kImperial << "abc" << 0.0 << 2.0 << false;
    QTest::newRow("empty") << kMetric << "" << 0.0 << 2.0 << false;
}

void tst_UnitService::valueLegal() {
    QFETCH(int, unit);
    QFETCH(QString, value);
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(bool, legal);
    int handle = 0;
    setUnit(&handle, unit);
    QCOMPARE(isNumValueLegal(value, min, max, &handle), legal);
    bool number = false;
    const double v = value.toDouble(&number);
    if (number)
        QCOMPARE(isValueLegal(v, min, max, &handle), legal);
}

void tst_UnitService::symbols_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("engine");
    QTest::addColumn<QString>("display");
    QTest::newRow("mil round") << kImperial << "r10"
                               << "r10";
    QTest::newRow("mm round") << kMetric << "r10"
                              << "r0.254";
    QTest::newRow("mm rect") << kMetric << "rect20x40"
                             << "rect0.508x1.016";
    QTest::newRow("mm oval") << kMetric << "oval8x12"
                             << "oval0.2032x0.3048";
    QTest::newRow("mm donut") << kMetric << "donut_r20x10"
                              << "donut_r0.508x0.254";
    QTest::newRow("mm fraction") << kMetric << "s5.5"
                                 << "s0.1397";
    QTest::newRow("mm no number") << kMetric << "star"
                                  << "star";
}

void tst_UnitService::symbols() {
    QFETCH(int, unit);
    QFETCH(QString, engine);
    QFETCH(QString, display);
    int handle = 0;
    setUnit(&handle, unit);

    QString shown = engine;
    setSymbolUIData(&handle, shown);
    QCOMPARE(shown, display);
    QString from_mil = engine;
    setSymbolDataByMilUnit(&handle, from_mil);
    QCOMPARE(from_mil, display);

    QString back = display;
    setSymbolAPIData(&handle, back);
    QCOMPARE(back, engine);
    QString to_mil = display;
    setSymbolDataByUnit(&handle, kImperial, to_mil);
    QCOMPARE(to_mil, engine);
}

void tst_UnitService::symbolLegal_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<bool>("legal");
    // Limits 1..100 mil.
    QTest::newRow("mil inside") << kImperial << "rect20x40" << true;
    QTest::newRow("mil one number outside") << kImperial << "rect20x400" << false;
    QTest::newRow("mm inside") << kMetric << "r0.254" << true;
    QTest::newRow("mm read as mil is outside") << kMetric << "r10" << false;
    QTest::newRow("no number") << kImperial << "star" << false;
}

void tst_UnitService::symbolLegal() {
    QFETCH(int, unit);
    QFETCH(QString, symbol);
    int handle = 0;
    setUnit(&handle, unit);
    QFETCH(bool, legal);
    QCOMPARE(isSymbolValueLegal(symbol, 1.0, 100.0, &handle), legal);
}

void tst_UnitService::handlesAndDefault() {
    int a = 0;
    int b = 0;
    QCOMPARE(getUnit(&a), kImperial);
    wcref::setDefaultUnit(kMetric);
    QCOMPARE(getUnit(&a), kMetric);
    setUnit(&a, kImperial);
    QCOMPARE(getUnit(&a), kImperial);
    QCOMPARE(getUnit(&b), kMetric);

    setUnit(&b, 7);  // refused
    QCOMPARE(getUnit(&b), kMetric);
    wcref::setDefaultUnit(-1);  // refused
    QCOMPARE(wcref::defaultUnit(), kMetric);

    wcref::resetUnits();
    QCOMPARE(getUnit(&a), kImperial);
    QCOMPARE(getUnit(&b), kImperial);
    QCOMPARE(getUnitData(&a, 8.0), 8.0);
}

void tst_UnitService::selectionMaskAndShift() {
    int a = 0;
    int b = 0;
    QCOMPARE(getSelectedPara(&a), 127);
    setSelectedPara(&a, 1 | 2 | 64);
    QCOMPARE(getSelectedPara(&a), 67);
    QCOMPARE(getSelectedPara(&b), 127);
    wcref::resetUnits();
    QCOMPARE(getSelectedPara(&a), 127);

    wcref::setShiftPressedForTest(1);
    QVERIFY(getShiftEnpress(&a));
    wcref::setShiftPressedForTest(0);
    QVERIFY(!getShiftEnpress(&a));
    wcref::setShiftPressedForTest(-1);
    QVERIFY(!getShiftEnpress(&a));  // offscreen: nothing held down
}

QTEST_MAIN(tst_UnitService)
#include "tst_UnitService.moc"

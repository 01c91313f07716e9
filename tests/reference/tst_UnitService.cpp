#include <QtTest>

#include "HostSettings.h"
#include "Korvo_UIAPI.h"

using namespace Korvo::UIAPI;

namespace {

const int kMil = 0;
const int kMm = 1;

// One mil value through every display form: fixed decimals, truncated, exact, and the 3-decimal
// form of the same length given in engine units.
struct Judge {
    int unit;
    double mil;
    int decimals;
    QString text;
    int truncated;
    double exact;
    QString engine_text;
};

}  // namespace

Q_DECLARE_METATYPE(Judge)

class tst_UnitService : public QObject {
    Q_OBJECT

private slots:
    void init() { wcref::resetUnits(); }
    void cleanupTestCase() { wcref::resetUnits(); }

    void judge_data() {
        QTest::addColumn<Judge>("row");
        QTest::newRow("mil 8") << Judge{kMil, 8, 2, "8.00", 8, 8, "8.000"};
        QTest::newRow("mil fraction") << Judge{kMil, 0.25, 2, "0.25", 0, 0.25, "0.250"};
        QTest::newRow("mil 7.6") << Judge{kMil, 7.6, 2, "7.60", 7, 7.6, "7.600"};
        QTest::newRow("mm 2-mil limit reads 0") << Judge{kMm, 2, 2, "0.05", 0, 0.0508, "0.051"};
        QTest::newRow("mm 8") << Judge{kMm, 8, 2, "0.20", 0, 0.2032, "0.203"};
        QTest::newRow("mm 3 decimals") << Judge{kMm, 10, 3, "0.254", 0, 0.254, "0.254"};
        QTest::newRow("mm 20") << Judge{kMm, 20, 2, "0.51", 0, 0.508, "0.508"};
        QTest::newRow("mm no decimals") << Judge{kMm, 100, 0, "3", 2, 2.54, "2.540"};
        QTest::newRow("mm negative") << Judge{kMm, -100, 2, "-2.54", -2, -2.54, "-2.540"};
        QTest::newRow("mm 8000") << Judge{kMm, 8000, 2, "203.20", 203, 203.2, "203.200"};
    }
    void judge() {
        QFETCH(Judge, row);
        int handle = 0;
        setUnit(&handle, row.unit);
        QCOMPARE(getUnitJudgeString(&handle, row.mil, row.decimals), row.text);
        QCOMPARE(getUnitJudgeData(&handle, row.mil), row.truncated);
        QVERIFY(qAbs(getUnitJudgeDouble(&handle, row.mil) - row.exact) < 1e-9);
        QCOMPARE(getUnitJudgeStringMetric(&handle, row.mil * 25400.0), row.engine_text);
    }

    void apiData_data() {
        QTest::addColumn<int>("unit");
        QTest::addColumn<int>("kind");  // 1 length, 2 area, else unit-free
        QTest::addColumn<double>("display");
        QTest::addColumn<double>("engine");
        QTest::newRow("mil length") << kMil << 1 << 8.0 << 203200.0;
        QTest::newRow("mm length") << kMm << 1 << 0.2032 << 203200.0;
        QTest::newRow("mil area") << kMil << 2 << 1.0 << 645160000.0;
        QTest::newRow("mm area") << kMm << 2 << 1.0 << 1e12;
        QTest::newRow("mil unit-free") << kMil << 0 << 5.0 << 5.0;
        QTest::newRow("mm unit-free") << kMm << 3 << 45.0 << 45.0;
    }
    void apiData() {
        QFETCH(int, unit);
        QFETCH(int, kind);
        QFETCH(double, display);
        QFETCH(double, engine);
        int handle = 0;
        setUnit(&handle, unit);
        QVERIFY(qFuzzyCompare(getUnitAPIData(&handle, kind, display), engine));
    }

    // Re-expressing a typed value after the host changed the unit.
    void previousUnit_data() {
        QTest::addColumn<QList<int>>("units");
        QTest::addColumn<double>("typed");
        QTest::addColumn<double>("expected");
        QTest::newRow("never changed") << QList<int>{} << 8.0 << 8.0;
        QTest::newRow("default to mm") << QList<int>{kMm} << 8.0 << 0.2032;
        QTest::newRow("mil to mm") << QList<int>{kMil, kMm} << 8.0 << 0.2032;
        QTest::newRow("mm to mil") << QList<int>{kMm, kMil} << 0.2032 << 8.0;
        QTest::newRow("mm set twice") << QList<int>{kMil, kMm, kMm} << 0.2 << 0.2;
        QTest::newRow("back and forth") << QList<int>{kMm, kMil, kMm} << 10.0 << 0.254;
    }
    void previousUnit() {
        QFETCH(QList<int>, units);
        QFETCH(double, typed);
        QFETCH(double, expected);
        int handle = 0;
        for (int unit : units)
            setUnit(&handle, unit);
        QVERIFY(qAbs(getUnitData(&handle, typed) - expected) < 1e-9);
    }

    void symbols_data() {
        QTest::addColumn<int>("unit");
        QTest::addColumn<QString>("engine");
        QTest::addColumn<QString>("display");
        QTest::newRow("mil round") << kMil << QString("r10") << "r10";
        QTest::newRow("mm round") << kMm << QString("r10") << "r0.254";
        QTest::newRow("mm rect") << kMm << QString("rect20x40") << "rect0.508x1.016";
        QTest::newRow("mm oval") << kMm << QString("oval8x12") << "oval0.2032x0.3048";
        QTest::newRow("mm donut") << kMm << QString("donut_r20x10") << "donut_r0.508x0.254";
        QTest::newRow("mm fraction") << kMm << QString("s5.5") << "s0.1397";
        QTest::newRow("mm no number") << kMm << QString("star") << "star";
    }
    void symbols() {
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
    }

    void handlesAndDefault() {
        int a = 0;
        int b = 0;
        wcref::setDefaultUnit(kMm);
        QCOMPARE(getUnit(&a), kMm);  // the default reaches handles never set
        setUnit(&a, kMil);
        QCOMPARE(getUnit(&b), kMm);
        setUnit(&b, 7);  // refused
        QCOMPARE(getUnit(&b), kMm);
        wcref::setDefaultUnit(-1);  // refused
        QCOMPARE(wcref::defaultUnit(), kMm);
        wcref::resetUnits();
        QCOMPARE(getUnit(&b), kMil);
        QCOMPARE(getUnitData(&a, 8.0), 8.0);
    }
};

QTEST_MAIN(tst_UnitService)
#include "tst_UnitService.moc"

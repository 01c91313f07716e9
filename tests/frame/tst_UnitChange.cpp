#include <QLabel>
#include <QtTest>

#include "UnitScope.h"
#include "ZeLineEdit.h"
#include "frame/UnitChange.h"

// What change_unit() does beyond lengths, which the dialogs' own tests round-trip.
class tst_UnitChange : public QObject {
    Q_OBJECT

private slots:
    void unitLabels_data() {
        QTest::addColumn<int>("unit");
        QTest::addColumn<int>("flavour");
        QTest::addColumn<QString>("text");
        QTest::newRow("mil, field form") << 0 << 1 << "mil";
        QTest::newRow("mil, second form") << 0 << 0 << "inch";
        QTest::newRow("mm, field form") << 1 << 1 << "mm";
        QTest::newRow("mm, second form") << 1 << 0 << "mm";
    }
    void unitLabels() {
        QFETCH(int, unit);
        QFETCH(int, flavour);
        QFETCH(QString, text);

        QWidget host;
        wctest::UnitScope scope(&host, unit);
        QLabel first(QStringLiteral("?"));
        QLabel second(QStringLiteral("?"));
        wc::refreshUnitLabels(&host, {&first, &second}, flavour);
        QCOMPARE(first.text(), text);
        QCOMPARE(second.text(), text);
    }

    void anglesAreNotConverted() {
        QWidget host;
        wctest::UnitScope scope(&host, 0);
        QWidget dialog(&host);
        Korvo::UIAPI::ZeLineEdit angle(QStringLiteral("90"), Korvo::UIAPI::ZeE_Angle, &dialog);
        Korvo::UIAPI::ZeLineEdit length(QStringLiteral("100"), Korvo::UIAPI::ZeE_Float, &dialog);
        scope.change(1);
        wc::changeZeUnits(&host, {&angle, &length});
        QCOMPARE(angle.text(), QStringLiteral("90"));
        QCOMPARE(length.text(), QStringLiteral("2.54"));
    }
};

QTEST_MAIN(tst_UnitChange)
#include "tst_UnitChange.moc"

#include <QLabel>
#include <QLineEdit>
#include <QtTest>

#include "UnitScope.h"
#include "ZeLineEdit.h"
#include "frame/UnitChange.h"

// What change_unit() does to fields and unit labels when the host switches the display unit.
class tst_UnitChange : public QObject {
    Q_OBJECT

private slots:
    void unitLabels_data();
    void unitLabels();
    void selfConvertingFields_data();
    void selfConvertingFields();
};

void tst_UnitChange::unitLabels_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("flavour");
    QTest::addColumn<QString>("text");

    QTest::newRow("mil, field form") << 0 << 1 << "mil";
    QTest::newRow("mil, second form") << 0 << 0 << "inch";
    QTest::newRow("mm, field form") << 1 << 1 << "mm";
    QTest::newRow("mm, second form") << 1 << 0 << "mm";
}

void tst_UnitChange::unitLabels() {
    QFETCH(int, unit);
    QFETCH(int, flavour);
    QFETCH(QString, text);

    QWidget host;
    wctest::UnitScope scope(&host, unit);
    QWidget dialog;
    QLabel first(QStringLiteral("?"), &dialog);
    QLabel second(QStringLiteral("?"), &dialog);
    wc::refreshUnitLabels(&host, {&first, &second}, flavour);
    QCOMPARE(first.text(), text);
    QCOMPARE(second.text(), text);
}

void tst_UnitChange::selfConvertingFields_data() {
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("length, mil to mm") << 0 << int(Korvo::UIAPI::ZeE_Float) << "100"
                                       << "2.54";
    QTest::newRow("length, mm to mil") << 1 << int(Korvo::UIAPI::ZeE_Float) << "2.54"
                                       << "100";
    QTest::newRow("angle is not a length") << 0 << int(Korvo::UIAPI::ZeE_Angle) << "90"
                                           << "90";
}

void tst_UnitChange::selfConvertingFields() {
    QFETCH(int, from);
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(QString, expected);

    QWidget host;
    wctest::UnitScope scope(&host, from);
    QWidget dialog(&host);
    Korvo::UIAPI::ZeLineEdit field(text, Korvo::UIAPI::ZeERegExp(kind), &dialog);
    scope.change(1 - from);
    wc::changeZeUnits(&host, {&field});
    QCOMPARE(field.text(), expected);
}

QTEST_MAIN(tst_UnitChange)
#include "tst_UnitChange.moc"

#include <QValidator>
#include <QtTest>

#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "ZeLineEdit.h"
#include "ZeProgressDialog.h"

using namespace Korvo::UIAPI;

Q_DECLARE_METATYPE(QValidator::State)

class tst_ZeWidgets : public QObject {
    Q_OBJECT

private slots:
    void init() { wcref::resetUnits(); }
    void cleanupTestCase() { wcref::resetUnits(); }

    void validators_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QValidator::State>("state");
        const auto A = QValidator::Acceptable;
        const auto I = QValidator::Intermediate;
        const auto X = QValidator::Invalid;
        QTest::newRow("float integer") << 3 << "8" << A;
        QTest::newRow("float negative") << 3 << "-12.5" << A;
        QTest::newRow("float five decimals") << 3 << "0.12345" << A;
        QTest::newRow("float six decimals") << 3 << "0.123456" << X;
        QTest::newRow("float leading zero") << 3 << "08" << X;
        QTest::newRow("float zero point") << 3 << "0." << A;
        QTest::newRow("float trailing point") << 3 << "12." << I;
        // Sixteen digits only pass with decimals (the third alternative), so typing may go on.
        QTest::newRow("float sixteen digits") << 3 << "1234567890123456" << I;
        QTest::newRow("float sixteen digits and decimals") << 3 << "1234567890123456.5" << A;
        QTest::newRow("float letters") << 3 << "1e5" << X;
        QTest::newRow("float comma") << 3 << "1,5" << X;
        QTest::newRow("positive float minus") << 4 << "-1" << X;
        QTest::newRow("positive float") << 4 << "2.54" << A;
        QTest::newRow("integer negative") << 1 << "-7" << A;
        QTest::newRow("integer fraction") << 1 << "7.5" << X;
        QTest::newRow("positive integer minus") << 2 << "-7" << X;
        QTest::newRow("positive integer zero") << 2 << "0" << A;
        QTest::newRow("layer name") << 5 << "top;l2_gnd+1" << A;
        QTest::newRow("layer upper case") << 5 << "Top" << X;
        QTest::newRow("layer too long") << 5 << QString(65, 'a') << X;
        QTest::newRow("symbol") << 6 << "rect20x40" << A;
        QTest::newRow("symbol with separator") << 6 << "r10;r20" << X;
        QTest::newRow("angle 360") << 7 << "360" << A;
        QTest::newRow("angle fraction") << 7 << "359.5" << A;
        QTest::newRow("angle above") << 7 << "361" << X;
        QTest::newRow("angle 360.5") << 7 << "360.5" << X;
        QTest::newRow("angle negative") << 7 << "-1" << X;
    }
    void validators() {
        QFETCH(int, kind);
        QFETCH(QString, text);
        QFETCH(QValidator::State, state);
        ZeLineEdit edit(static_cast<ZeERegExp>(kind), nullptr);
        QVERIFY(edit.validator() != nullptr);
        int position = 0;
        QCOMPARE(edit.validator()->validate(text, position), state);
    }

    void changeunit_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("mil");
        QTest::addColumn<QString>("mm");
        QTest::newRow("float 8") << 3 << QString("8") << "0.2032";
        QTest::newRow("float negative") << 3 << QString("-100") << "-2.54";
        QTest::newRow("positive float") << 4 << QString("0.25") << "0.00635";
        QTest::newRow("float six digits") << 3 << QString("12345.6") << "313.578";
        QTest::newRow("empty") << 3 << QString() << "";
        QTest::newRow("not a number") << 3 << QString("abc") << "abc";
        QTest::newRow("integer kind unchanged") << 1 << QString("8") << "8";
        QTest::newRow("angle kind unchanged") << 7 << QString("45") << "45";
    }
    void changeunit() {
        QFETCH(int, kind);
        QFETCH(QString, mil);
        QFETCH(QString, mm);
        ZeLineEdit edit(mil, static_cast<ZeERegExp>(kind), nullptr);
        QCOMPARE(edit.textUnit(), 0);
        edit.changeunit(0);  // same unit: untouched
        QCOMPARE(edit.text(), mil);
        edit.changeunit(1);
        QCOMPARE(edit.text(), mm);
        edit.changeunit(1);  // already metric: not converted twice
        QCOMPARE(edit.text(), mm);
        edit.changeunit(0);
        // Back within the six significant digits of the 'g' form.
        bool number = false;
        const double original = mil.toDouble(&number);
        if (number && kind >= 3 && kind <= 4)
            QVERIFY(qAbs(edit.text().toDouble() - original) <= qAbs(original) * 1e-5);
        else
            QCOMPARE(edit.text(), mil);
        edit.changeunit(5);  // unknown code: ignored
        QCOMPARE(edit.textUnit(), 0);
    }

    // A new field takes the unit of the host handle above it, else the default unit.
    void textUnitFollowsHandle() {
        QWidget handle;
        QWidget dialog(&handle);
        setUnit(&handle, 1);
        ZeLineEdit inside(getUnitJudgeString(&handle, 8.0, 2), ZeE_Float, &dialog);
        QCOMPARE(inside.textUnit(), 1);
        setUnit(&handle, 0);
        inside.changeunit(getUnit(&handle));
        QCOMPARE(inside.text(), QString("7.87402"));  // "0.20" mm back in mil

        wcref::setDefaultUnit(1);
        ZeLineEdit loose("1", ZeE_Float, nullptr);
        QCOMPARE(loose.textUnit(), 1);
    }

    void progressStop_data() {
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("stays_visible");
        QTest::newRow("escape") << "escape" << true;
        QTest::newRow("cancel button") << "cancel" << true;
        QTest::newRow("close window") << "close" << false;
        QTest::newRow("request") << "request" << true;
        QTest::newRow("other key") << "key" << true;
    }
    void progressStop() {
        QFETCH(QString, how);
        QFETCH(bool, stays_visible);
        ZeProgressDialog dialog("Please wait", "Stop", 0, 100);
        dialog.setMinimumDuration(0);
        dialog.setValue(10);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(!dialog.isDialogStop());

        if (how == "escape")
            QTest::keyClick(&dialog, Qt::Key_Escape);
        else if (how == "cancel")
            emit dialog.canceled();
        else if (how == "close")
            dialog.close();
        else if (how == "request")
            dialog.requestStop();
        else
            QTest::keyClick(&dialog, Qt::Key_A);

        QCOMPARE(dialog.isDialogStop(), how != "key");
        QCOMPARE(dialog.isVisible(), stays_visible);
        QVERIFY(!dialog.wasCanceled());
        QCOMPARE(dialog.value(), 10);
    }
};

QTEST_MAIN(tst_ZeWidgets)
#include "tst_ZeWidgets.moc"

// The shared field helpers: the input patterns, the out-of-range message, the mouse-leave
// commit, and what a unit change does beyond lengths (the dialogs' tests round-trip those).

#include <QLabel>
#include <QLineEdit>
#include <QRegExpValidator>
#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "UnitScope.h"
#include "ZeLineEdit.h"
#include "frame/FieldCommit.h"
#include "frame/UnitChange.h"
#include "frame/Validators.h"

using wctest::row;

class tst_FieldHelpers : public QObject {
    Q_OBJECT

private slots:
    void accepts_data() {
        wctest::columns<QString, QString, bool>("kind", "text", "acceptable");

        const struct {
            const char* kind;
            const char* text;
            bool acceptable;
        } rows[] = {
            {"float", "7", true},
            {"float", "123456789012345", true},
            {"float", "1234567890123456", false},
            {"float", "0.", true},
            {"float", "0", false},
            {"float", "0.12345", true},
            {"float", "0.123456", false},
            {"float", "-0.5", true},
            {"float", "-42", true},
            {"float", "01", false},
            {"float", "1.", false},
            {"float", "12345678901234567.5", true},  // the digit limit is for integers only
            {"float", "+1", false},
            {"float", "1e5", false},
            {"float", "1,5", false},
            {"float", "", false},
            {"float", "-", false},
            {"name", "top_sig-1", true},
            {"name", "a_b+c.d;e-f", true},
            {"name", "Top", false},
            {"name", "top sig", false},
            {"name", "top/sig", false},
            {"name", "", true},
            {"nocjk", "Layer 1 (top)", true},
            {"nocjk", "", true},
        };
        for (const auto& row : rows) {
            QTest::addRow("%s \"%s\"", row.kind, row.text)
                << row.kind << QString::fromLatin1(row.text) << row.acceptable;
        }
        QTest::newRow("name 64 characters") << "name" << QString(64, QLatin1Char('a')) << true;
        QTest::newRow("name 65 characters") << "name" << QString(65, QLatin1Char('a')) << false;
        const QChar a(QLatin1Char('a'));
        QTest::newRow("nocjk U+4E00") << "nocjk" << QString(QChar(0x4E00)) << false;
        QTest::newRow("nocjk U+9FA5") << "nocjk" << QString(QChar(0x9FA5)) << false;
        QTest::newRow("nocjk U+6B65 in a word")
            << "nocjk" << QString(a) + QChar(0x6B65) + a << false;
        QTest::newRow("nocjk U+9FA6") << "nocjk" << QString(QChar(0x9FA6)) << true;
        QTest::newRow("nocjk U+4DFF") << "nocjk" << QString(QChar(0x4DFF)) << true;
        QTest::newRow("nocjk full-width colon") << "nocjk" << QString(QChar(0xFF1A)) << true;
    }
    void accepts() {
        QFETCH(QString, kind);
        QFETCH(QString, text);
        QFETCH(bool, acceptable);

        QObject owner;
        QRegExpValidator* validator =
            kind == QLatin1String("float")  ? wc::makeFloatValidator(&owner)
            : kind == QLatin1String("name") ? wc::makeNameValidator(&owner)
                                            : wc::makeNoCjkValidator(&owner);
        int position = 0;
        QCOMPARE(validator->validate(text, position) == QValidator::Acceptable, acceptable);
    }

    // The dialogs' tests prove the message with limits from 0; here a negative lower limit.
    void illegalFloatMessage() {
        QCOMPARE(wc::illegalFloatMessage("x_offset", "-5000", -100, 100),
                 "Illegal float value\nfloating value for field \"x_offset\" is out of range: "
                 "-5000\nlegal values: from -100 to 100");
    }

    void insideAsTested_data() {
        wctest::columns<QRect, QPoint, bool>("rect", "point", "inside");
        const QRect origin(0, 0, 100, 30);
        const QRect offset(20, 5, 200, 40);
        row("origin: middle", origin, QPoint(50, 15), true);
        row("origin: on the left edge", origin, QPoint(0, 15), false);
        row("origin: past the width", origin, QPoint(100, 15), false);
        // The test is x < width and y < height, not the right and bottom edges: kept as the host
        // has it.
        row("offset: near the left end", offset, QPoint(100, 20), true);
        row("offset: inside, beyond width", offset, QPoint(210, 20), false);
        row("offset: inside, beyond height", offset, QPoint(100, 42), false);
        row("top below height: never inside", QRect(10, 60, 200, 25), QPoint(50, 70), false);
        row("left of the rectangle", offset, QPoint(10, 20), false);
    }
    void insideAsTested() {
        QFETCH(QRect, rect);
        QFETCH(QPoint, point);
        QFETCH(bool, inside);
        QCOMPARE(wc::insideAsTested(rect, point), inside);
    }

    void commitPendingOnLeave_data() {
        wctest::columns<QPoint, QStringList, QStringList, QList<int>>("pos", "texts", "committed",
                                                                      "expected");
        const QPoint in(100, 20);
        const QPoint out(300, 20);
        row("inside: nothing, even edited", in, QStringList{"1", "5"}, QStringList{"1", "3"},
            QList<int>{});
        row("outside: only the edited field", out, QStringList{"1", "5"}, QStringList{"1", "3"},
            QList<int>{1});
        row("outside: never committed", out, QStringList{"1", "5"}, QStringList{"", ""},
            QList<int>{0, 1});
        row("outside: empty field left alone", out, QStringList{"", "5"}, QStringList{"1", "5"},
            QList<int>{});
    }
    void commitPendingOnLeave() {
        QFETCH(QPoint, pos);
        QFETCH(QStringList, texts);
        QFETCH(QStringList, committed);
        QFETCH(QList<int>, expected);

        QLineEdit e0(texts[0]);
        QLineEdit e1(texts[1]);
        wc::NumericField f0{&e0, QStringLiteral("a"), 0.0, 2.0, QStringLiteral("0"), committed[0]};
        wc::NumericField f1{&e1, QStringLiteral("b"), 0.0, 2.0, QStringLiteral("0"), committed[1]};
        QList<int> called;
        const int count = wc::commitPendingOnLeave(pos, QRect(20, 5, 200, 40), {&f0, &f1},
                                                   [&called](int field) { called.append(field); });
        QCOMPARE(called, expected);
        QCOMPARE(count, expected.size());
    }

    void unitLabels_data() {
        wctest::columns<int, int, QString>("unit", "flavour", "text");
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

QTEST_MAIN(tst_FieldHelpers)
#include "tst_FieldHelpers.moc"

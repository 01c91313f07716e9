#include <QLineEdit>
#include <QtTest>

#include "DataRows.h"
#include "frame/FieldCommit.h"

using wctest::row;

// The out-of-range message and the mouse-leave commit shared by the dialogs.
class tst_FieldCommit : public QObject {
    Q_OBJECT

private slots:
    void illegalFloatMessage_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("lower");
        QTest::addColumn<int>("upper");
        QTest::addColumn<QString>("expected");
        row("accuracy", "accuracy", "2.5", 0, 2,
            "Illegal float value\nfloating value for field \"accuracy\" is out of range: 2.5\n"
            "legal values: from 0 to 2");
        row("negative lower limit", "x_offset", "-5000", -100, 100,
            "Illegal float value\nfloating value for field \"x_offset\" is out of range: -5000\n"
            "legal values: from -100 to 100");
    }
    void illegalFloatMessage() {
        QFETCH(QString, name);
        QFETCH(QString, text);
        QFETCH(int, lower);
        QFETCH(int, upper);
        QFETCH(QString, expected);
        QCOMPARE(wc::illegalFloatMessage(name, text, lower, upper), expected);
    }

    void insideAsTested_data() {
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<bool>("inside");
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
        QTest::addColumn<QPoint>("pos");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QStringList>("committed");
        QTest::addColumn<QList<int>>("expected");
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
};

QTEST_MAIN(tst_FieldCommit)
#include "tst_FieldCommit.moc"

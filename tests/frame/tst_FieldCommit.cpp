#include <QLineEdit>
#include <QWidget>
#include <QtTest>

#include "MessageBoxAnswerer.h"
#include "UnitScope.h"
#include "frame/FieldCommit.h"

// The field commit, the whole-form check and the mouse-leave commit shared by the dialogs.
class tst_FieldCommit : public QObject {
    Q_OBJECT

private slots:
    void illegalFloatMessage_data();
    void illegalFloatMessage();
    void insideAsTested_data();
    void insideAsTested();
    void judgeFields_data();
    void judgeFields();
    void commitPendingOnLeave_data();
    void commitPendingOnLeave();
};

void tst_FieldCommit::illegalFloatMessage_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");
    QTest::addColumn<QString>("expected");

    QTest::newRow("accuracy in mil")
        << "accuracy"
        << "2.5" << 0 << 2
        << "Illegal float value\nfloating value for field \"accuracy\" is out of range: 2.5\n"
           "legal values: from 0 to 2";
    QTest::newRow("clean hole size in mm")
        << "clean_hole_size"
        << "300" << 0 << 203
        << "Illegal float value\nfloating value for field \"clean_hole_size\" is out of range: "
           "300\nlegal values: from 0 to 203";
    QTest::newRow("negative lower limit")
        << "x_offset"
        << "-5000" << -100 << 100
        << "Illegal float value\nfloating value for field \"x_offset\" is out of range: -5000\n"
           "legal values: from -100 to 100";
}

void tst_FieldCommit::illegalFloatMessage() {
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(int, lower);
    QFETCH(int, upper);
    QFETCH(QString, expected);
    QCOMPARE(wc::illegalFloatMessage(name, text, lower, upper), expected);
}

void tst_FieldCommit::insideAsTested_data() {
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<bool>("inside");

    // A rectangle at the origin behaves as expected...
    QTest::newRow("origin: middle") << QRect(0, 0, 100, 30) << QPoint(50, 15) << true;
    QTest::newRow("origin: on the left edge") << QRect(0, 0, 100, 30) << QPoint(0, 15) << false;
    QTest::newRow("origin: past the width") << QRect(0, 0, 100, 30) << QPoint(100, 15) << false;
    // ...an offset one is cut at x < width and y < height, not at its right and bottom edges.
    QTest::newRow("offset: near the left end") << QRect(20, 5, 200, 40) << QPoint(100, 20) << true;
    QTest::newRow("offset: inside, beyond width")
        << QRect(20, 5, 200, 40) << QPoint(210, 20) << false;
    QTest::newRow("offset: inside, beyond height")
        << QRect(20, 5, 200, 40) << QPoint(100, 42) << false;
    QTest::newRow("lower than tall: never inside")
        << QRect(10, 60, 200, 25) << QPoint(50, 70) << false;
    QTest::newRow("outside, left of the x") << QRect(20, 5, 200, 40) << QPoint(10, 20) << false;
}

void tst_FieldCommit::insideAsTested() {
    QFETCH(QRect, rect);
    QFETCH(QPoint, point);
    QFETCH(bool, inside);
    QCOMPARE(wc::insideAsTested(rect, point), inside);
}

void tst_FieldCommit::judgeFields_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("message");

    QTest::newRow("mil: both inside") << 0 << "1"
                                      << "3" << true << "";
    QTest::newRow("mil: first empty") << 0 << ""
                                      << "3" << false << "Illegal field value";
    QTest::newRow("mil: second empty") << 0 << "1"
                                       << "" << false << "Illegal field value";
    QTest::newRow("mil: first above, silent") << 0 << "3"
                                              << "3" << false << "";
    QTest::newRow("mil: second above, silent") << 0 << "1"
                                               << "8001" << false << "";
    QTest::newRow("mil: negative, silent") << 0 << "-1"
                                           << "3" << false << "";
    QTest::newRow("mm: any positive first refused") << 1 << "0.01"
                                                    << "3" << false << "";
    QTest::newRow("mm: zero first accepted") << 1 << "0."
                                             << "3" << true << "";
}

void tst_FieldCommit::judgeFields() {
    QFETCH(int, unit);
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, accepted);
    QFETCH(QString, message);

    QWidget host;
    QWidget dialog;
    wctest::UnitScope scope(&host, unit);
    wctest::MessageBoxAnswerer boxes;
    QLineEdit first_edit(first);
    QLineEdit second_edit(second);
    wc::NumericField a{&first_edit, QStringLiteral("accuracy"), 0.0,
                       2.0,         QStringLiteral("0.25"),     QString()};
    wc::NumericField b{
        &second_edit, QStringLiteral("clean_hole_size"), 0.0, 8000.0, QStringLiteral("3"),
        QString()};

    QCOMPARE(wc::judgeFields(&dialog, &host, {&a, &b}), accepted);
    QCOMPARE(boxes.count(), message.isEmpty() ? 0 : 1);
    if (!message.isEmpty()) {
        QCOMPARE(boxes.last().title, QStringLiteral("Information"));
        QCOMPARE(boxes.last().text, message);
    }
    // The check never changes what the user typed.
    QCOMPARE(first_edit.text(), first);
    QCOMPARE(second_edit.text(), second);
}

void tst_FieldCommit::commitPendingOnLeave_data() {
    QTest::addColumn<QPoint>("pos");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("committed");
    QTest::addColumn<QList<int>>("expected");

    QTest::newRow("inside: nothing even with an edit")
        << QPoint(100, 20) << QStringList{"1", "5"} << QStringList{"1", "3"} << QList<int>{};
    QTest::newRow("outside: the edited second field")
        << QPoint(300, 20) << QStringList{"1", "5"} << QStringList{"1", "3"} << QList<int>{1};
    QTest::newRow("outside: both never committed")
        << QPoint(300, 20) << QStringList{"1", "5"} << QStringList{"", ""} << QList<int>{0, 1};
    QTest::newRow("outside: empty field is left alone")
        << QPoint(300, 20) << QStringList{"", "5"} << QStringList{"1", "5"} << QList<int>{};
    QTest::newRow("geometrically inside, beyond width: commits")
        << QPoint(210, 20) << QStringList{"1", "5"} << QStringList{"1", "3"} << QList<int>{1};
}

void tst_FieldCommit::commitPendingOnLeave() {
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

QTEST_MAIN(tst_FieldCommit)
#include "tst_FieldCommit.moc"

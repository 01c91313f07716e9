#include <QComboBox>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QtTest>

#include <stdexcept>

#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "MessageBoxAnswerer.h"
#include "UnitScope.h"
#include "edit/Widget_Contourize.h"
#include "edit/contourize_params.h"

namespace {

using wctest::child;
using wctest::labelText;
using wctest::row;

// The fields' defaults and unit labels as shown in one unit.
struct Shown {
    int unit;
    QString accuracy, max_size, unit_text;
};

// A max size text through a unit change and back.
struct RoundTrip {
    int from;
    QString text, converted, back;
};

// What is typed and chosen, and the record the dialog must emit.
struct Typed {
    int unit;
    QString accuracy, max_size;
    int islands_index;
    QString mode_button;
    double accuracy_nm, max_size_nm;
    int mode;
};

// A field typed, a button pressed, and what follows: boxes, records emitted, still open.
struct Press {
    int unit;
    QString button, field, text;
    QStringList messages;
    int emitted;
    bool visible;
};

// A field typed and Return pressed, and what it shows after with the box it raised.
struct Commit {
    int unit;
    QString field, typed, after, message;
};

// The dialog on a host of its own, shown in `unit`.
struct Scene {
    explicit Scene(int unit) : scope(&host, unit) {}
    QWidget host;
    wctest::UnitScope scope;
    Widget_Contourize dialog{&host};
};

QLineEdit* accuracy(QWidget& dialog) {
    return child<QLineEdit>(dialog, QStringLiteral("lineEdit_Accuracy"));
}

QLineEdit* maxSize(QWidget& dialog) {
    return child<QLineEdit>(dialog, QStringLiteral("lineEdit_MaxSize"));
}

// Copies every record the dialog emits, while the record still exists.
struct RecordCatcher {
    explicit RecordCatcher(Widget_Contourize& dialog) {
        QObject::connect(
            &dialog, &Widget_Contourize::send_Contourize_Info, &dialog,
            [this](QObject* params) {
                records.append(*reinterpret_cast<const contourize_params*>(params));
            },
            Qt::DirectConnection);
    }
    QList<contourize_params> records;
};

void retype(QLineEdit* edit, const QString& text) {
    edit->clear();
    QTest::keyClicks(edit, text);
}

}  // namespace

Q_DECLARE_METATYPE(Shown)
Q_DECLARE_METATYPE(RoundTrip)
Q_DECLARE_METATYPE(Typed)
Q_DECLARE_METATYPE(Press)
Q_DECLARE_METATYPE(Commit)

// The dialog as the host drives it: construction, Apply/Ok/Close, field commits, unit and
// language changes, the mouse-leave commit and a throwing host slot.
class tst_Widget_Contourize : public QObject {
    Q_OBJECT

private slots:
    void windowAsTheHostExpects_data() {
        QTest::addColumn<Shown>("c");
        // 0.25 mil and 3 mil, shown with two decimals.
        row("mil", Shown{0, "0.25", "3.00", "mil"});
        row("mm", Shown{1, "0.01", "0.08", "mm"});
    }
    void windowAsTheHostExpects() {
        QFETCH(Shown, c);
        Scene scene(c.unit);
        Widget_Contourize& dialog = scene.dialog;
        QCOMPARE(dialog.windowTitle(), "Contourize");
        QVERIFY(dialog.testAttribute(Qt::WA_MouseTracking));  // the mouse-leave commit needs moves
        QVERIFY(!dialog.testAttribute(Qt::WA_DeleteOnClose));

        QCOMPARE(accuracy(dialog)->text(), c.accuracy);
        QCOMPARE(maxSize(dialog)->text(), c.max_size);
        QCOMPARE(labelText(dialog, "label_AccuracyUnit"), c.unit_text);
        QCOMPARE(labelText(dialog, "label_MaxSizeUnit"), c.unit_text);
        auto* islands = child<QComboBox>(dialog, QStringLiteral("comboBox_SeparateToIslands"));
        QCOMPARE(islands->count(), 2);
        QCOMPARE(islands->currentText(), "Yes");
        QCOMPARE(islands->itemText(1), "No");
        QVERIFY(child<QRadioButton>(dialog, QStringLiteral("radioButton_XorY"))->isChecked());
        // Typing is limited by the shared float pattern.
        QTest::keyClicks(maxSize(dialog), QStringLiteral("x-"));
        QCOMPARE(maxSize(dialog)->text(), c.max_size);
    }

    void emittedRecord_data() {
        QTest::addColumn<Typed>("c");
        row("mil defaults", Typed{0, "0.25", "3.00", 0, "radioButton_XorY", 6350.0, 76200.0, 1});
        row("mil, no islands, X and Y",
            Typed{0, "1.5", "100", 1, "radioButton_XandY", 38100.0, 2540000.0, 2});
        row("mil at both limits, area",
            Typed{0, "2", "8000", 0, "radioButton_Area", 50800.0, 203200000.0, 3});
        // In mm the accuracy limit truncates to 0, so only zero passes.
        row("mm", Typed{1, "0.", "200.5", 1, "radioButton_Area", 0.0, 200500000.0, 3});
    }
    void emittedRecord() {
        QFETCH(Typed, c);
        Scene scene(c.unit);
        Widget_Contourize& dialog = scene.dialog;
        RecordCatcher catcher(dialog);
        wctest::MessageBoxAnswerer boxes;
        accuracy(dialog)->setText(c.accuracy);
        maxSize(dialog)->setText(c.max_size);
        child<QComboBox>(dialog, QStringLiteral("comboBox_SeparateToIslands"))
            ->setCurrentIndex(c.islands_index);
        child<QRadioButton>(dialog, c.mode_button)->setChecked(true);
        child<QPushButton>(dialog, QStringLiteral("pushButton_Apply"))->click();

        QCOMPARE(boxes.count(), 0);
        QCOMPARE(catcher.records.size(), 1);
        const contourize_params& record = catcher.records.first();
        QVERIFY(qAbs(record.accuracy - c.accuracy_nm) < 1e-6);
        QVERIFY(qAbs(record.max_size - c.max_size_nm) < 1e-3);
        QCOMPARE(record.separate_to_islands, c.islands_index == 0);
        QCOMPARE(record.mode, c.mode);
    }

    void buttons_data() {
        QTest::addColumn<Press>("c");
        const QStringList none;
        const QStringList illegal{QStringLiteral("Illegal field value")};
        const char* apply = "pushButton_Apply";
        const char* ok = "pushButton_Ok";
        const char* acc = "lineEdit_Accuracy";
        row("Apply, valid", Press{0, apply, acc, "1", none, 1, true});
        row("Apply, accuracy empty", Press{0, apply, acc, "", illegal, 0, true});
        row("Apply, max size empty", Press{0, apply, "lineEdit_MaxSize", "", illegal, 0, true});
        row("Apply, above limit: silent", Press{0, apply, acc, "3", none, 0, true});
        row("Apply, below limit: silent", Press{0, apply, acc, "-1", none, 0, true});
        row("Apply in mm, default accuracy above 0: silent",
            Press{1, apply, acc, "0.01", none, 0, true});
        row("Ok, valid", Press{0, ok, acc, "1", none, 1, false});
        // Ok closes even though nothing was applied: kept as the host has it.
        row("Ok, empty", Press{0, ok, acc, "", illegal, 0, false});
        row("Close", Press{0, "pushButton_Close", acc, "1", none, 0, false});
    }
    void buttons() {
        QFETCH(Press, c);
        Scene scene(c.unit);
        Widget_Contourize& dialog = scene.dialog;
        dialog.show();
        QSignalSpy spy(&dialog, &Widget_Contourize::send_Contourize_Info);
        wctest::MessageBoxAnswerer boxes;
        child<QLineEdit>(dialog, c.field)->setText(c.text);
        QTest::mouseClick(child<QPushButton>(dialog, c.button), Qt::LeftButton);

        QCOMPARE(boxes.texts(), c.messages);
        for (const wctest::ShownBox& box : boxes.boxes()) {
            QCOMPARE(box.title, "Information");
        }
        QCOMPARE(spy.count(), c.emitted);
        QCOMPARE(dialog.isVisible(), c.visible);
        QCOMPARE(child<QLineEdit>(dialog, c.field)->text(),
                 c.text);  // never changes what was typed
    }

    void returnCommitsOneField_data() {
        QTest::addColumn<Commit>("c");
        row("mil accuracy inside", Commit{0, "lineEdit_Accuracy", "1.5", "1.5", ""});
        // The limit truncates to 0 mm, and the reset text stays the raw "0.25" even in mm.
        row("mm accuracy above",
            Commit{
                1, "lineEdit_Accuracy", "0.01", "0.25",
                "Illegal float value\nfloating value for field \"accuracy\" is out of range: 0.01\n"
                "legal values: from 0 to 0"});
        row("mm max size inside", Commit{1, "lineEdit_MaxSize", "203", "203", ""});
        row("mm max size above", Commit{1, "lineEdit_MaxSize", "204", "3",
                                        "Illegal float value\nfloating value for field "
                                        "\"clean_hole_size\" is out of range: "
                                        "204\nlegal values: from 0 to 203"});
    }
    void returnCommitsOneField() {
        QFETCH(Commit, c);
        Scene scene(c.unit);
        Widget_Contourize& dialog = scene.dialog;
        dialog.show();
        QSignalSpy spy(&dialog, &Widget_Contourize::send_Contourize_Info);
        wctest::MessageBoxAnswerer boxes;
        QLineEdit* edit = child<QLineEdit>(dialog, c.field);
        QLineEdit* other = edit == accuracy(dialog) ? maxSize(dialog) : accuracy(dialog);
        const QString other_before = other->text();

        retype(edit, c.typed);
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(edit->text(), c.after);
        QCOMPARE(boxes.texts(), c.message.isEmpty() ? QStringList() : QStringList{c.message});
        QCOMPARE(other->text(), other_before);
        QCOMPARE(spy.count(), 0);
    }

    void unitChangeRoundTrip_data() {
        QTest::addColumn<RoundTrip>("c");
        row("mil default size", RoundTrip{0, "3.00", "0.0762", "3"});
        // 6 significant digits: more precise texts come back rounded.
        row("mil, precise", RoundTrip{0, "12345.67891", "313.58", "12345.7"});
        row("mm one", RoundTrip{1, "1", "39.3701", "1"});
        row("empty stays empty", RoundTrip{0, "", "", ""});
    }
    void unitChangeRoundTrip() {
        QFETCH(RoundTrip, c);
        Scene scene(c.from);
        Widget_Contourize& dialog = scene.dialog;
        maxSize(dialog)->setText(c.text);
        const QString unit_before = labelText(dialog, "label_MaxSizeUnit");

        scene.scope.change(1 - c.from);
        dialog.change_unit();
        QCOMPARE(maxSize(dialog)->text(), c.converted);
        QVERIFY(labelText(dialog, "label_MaxSizeUnit") != unit_before);

        scene.scope.change(c.from);
        dialog.change_unit();
        QCOMPARE(maxSize(dialog)->text(), c.back);
        QCOMPARE(labelText(dialog, "label_MaxSizeUnit"), unit_before);
        QCOMPARE(labelText(dialog, "label_AccuracyUnit"), unit_before);
    }

    // Where a move counts as inside is frame/tst_FieldHelpers' concern; here the dialog hands it
    // its first field and its fields.
    void mouseLeaveCommit_data() {
        QTest::addColumn<bool>("commits");
        row("inside the first field", false);
        row("below every field", true);
    }
    void mouseLeaveCommit() {
        QFETCH(bool, commits);

        Scene scene(0);
        Widget_Contourize& dialog = scene.dialog;
        dialog.resize(600, 300);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        wctest::MessageBoxAnswerer boxes;
        // An uncommitted edit in the second field, above its limit.
        retype(maxSize(dialog), QStringLiteral("9000"));

        const QRect first = accuracy(dialog)->geometry();
        const QPoint pos = commits ? QPoint(5, dialog.height() - 5)
                                   : QPoint(first.x() + 1, (first.y() + first.height()) / 2);
        QMouseEvent move(QEvent::MouseMove, pos, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&dialog, &move);

        QCOMPARE(maxSize(dialog)->text(), commits ? QStringLiteral("3") : QStringLiteral("9000"));
        QCOMPARE(boxes.count(), commits ? 1 : 0);
        if (commits) {
            QVERIFY(boxes.last().text.contains(QStringLiteral("\"clean_hole_size\"")));
            // Committed now: a second move leaves it alone.
            QApplication::sendEvent(&dialog, &move);
            QCOMPARE(boxes.count(), 1);
        }
    }

    void changeLanguage_data() {
        wctest::columns<QString, QString, QString>("name", "before", "after");
        row("accuracy", "label_Accuracy", "Accuracy :", "Accuracy           :");
        row("max size", "label_MaxSize", "Max Size :", "Max Size          :");
        row("mode", "label_Mode", "Mode :", "Mode          :");
        row("islands", "label_SeparateToIslands", "Separate to Islands :", "Separate to Islands :");
        row("group title", "label_CleanHoles", "     Clean Holes", "     Clean Holes");
        row("radio", "radioButton_XandY", "X and Y", "X and Y");
    }
    void changeLanguage() {
        QFETCH(QString, name);
        QFETCH(QString, before);
        QFETCH(QString, after);

        Scene scene(0);
        Widget_Contourize& dialog = scene.dialog;
        QObject* widget = child(dialog, name);
        QCOMPARE(widget->property("text").toString(), before);
        accuracy(dialog)->setText(QStringLiteral("1.5"));
        dialog.change_language();
        QCOMPARE(widget->property("text").toString(), after);
        QCOMPARE(accuracy(dialog)->text(), "1.5");
        QCOMPARE(dialog.windowTitle(), "Contourize");
    }

    void throwingHostSlotKeepsDialogUsable() {
        Scene scene(0);
        Widget_Contourize& dialog = scene.dialog;
        dialog.show();
        wctest::MessageBoxAnswerer boxes;

        auto refusal = connect(
            &dialog, &Widget_Contourize::send_Contourize_Info, &dialog,
            [](QObject*) { throw std::runtime_error("host refused"); }, Qt::DirectConnection);
        child<QPushButton>(dialog, QStringLiteral("pushButton_Apply"))->click();
        QCOMPARE(boxes.texts(), QStringList{QStringLiteral("host refused")});
        QVERIFY(dialog.isVisible());

        disconnect(refusal);
        RecordCatcher catcher(dialog);
        child<QPushButton>(dialog, QStringLiteral("pushButton_Ok"))->click();
        QCOMPARE(catcher.records.size(), 1);
        QCOMPARE(boxes.count(), 1);
        QVERIFY(!dialog.isVisible());
    }
};

QTEST_MAIN(tst_Widget_Contourize)
#include "tst_Widget_Contourize.moc"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QtTest>
#include <stdexcept>

#include "MessageBoxAnswerer.h"
#include "UnitScope.h"
#include "edit/Widget_Contourize.h"
#include "edit/contourize_params.h"
#include "frame/ExceptionGuard.h"

// The dialog as the host drives it: construction, Apply/Ok/Close, field commits, unit and
// language changes, the mouse-leave commit and the slot guard.
class tst_Widget_Contourize : public QObject {
    Q_OBJECT

private slots:
    void windowAsTheHostExpects();
    void defaults_data();
    void defaults();
    void emittedRecord_data();
    void emittedRecord();
    void buttons_data();
    void buttons();
    void returnCommitsOneField_data();
    void returnCommitsOneField();
    void unitChangeRoundTrip_data();
    void unitChangeRoundTrip();
    void mouseLeaveCommit_data();
    void mouseLeaveCommit();
    void changeLanguage_data();
    void changeLanguage();
    void guardedSlotKeepsDialogUsable_data();
    void guardedSlotKeepsDialogUsable();
    void throwingHostSlotKeepsDialogUsable();
};

namespace {

template <typename T>
T* child(QWidget& dialog, const char* name) {
    T* found = dialog.findChild<T*>(QString::fromLatin1(name));
    if (found == nullptr) {
        qFatal("no child %s", name);
    }
    return found;
}

QLineEdit* accuracy(QWidget& dialog) {
    return child<QLineEdit>(dialog, "lineEdit_Accuracy");
}

QLineEdit* maxSize(QWidget& dialog) {
    return child<QLineEdit>(dialog, "lineEdit_MaxSize");
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

void tst_Widget_Contourize::windowAsTheHostExpects() {
    QWidget host;
    wctest::UnitScope scope(&host, 0);
    Widget_Contourize dialog(&host);

    // Qt adds the system menu hint whenever a close button is asked for.
    QCOMPARE(int(dialog.windowFlags() & ~Qt::WindowSystemMenuHint), 0x8001003);
    QVERIFY(dialog.isWindow());
    QCOMPARE(dialog.parentWidget(), &host);
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Contourize"));
    QCOMPARE(dialog.focusPolicy(), Qt::StrongFocus);
    QVERIFY(dialog.testAttribute(Qt::WA_MouseTracking));
    QVERIFY(!dialog.testAttribute(Qt::WA_DeleteOnClose));

    for (const char* name :
         {"label_Accuracy", "label_MaxSize", "label_SeparateToIslands", "label_Mode"}) {
        QCOMPARE(child<QLabel>(dialog, name)->width(), 125);
    }
    QLabel* title = child<QLabel>(dialog, "label_CleanHoles");
    QCOMPARE(title->text(), QStringLiteral("     Clean Holes"));
    QCOMPARE(title->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    // Typing is limited by the shared float pattern.
    QTest::keyClicks(maxSize(dialog), QStringLiteral("x-"));
    QCOMPARE(maxSize(dialog)->text(), QStringLiteral("3.00"));
}

void tst_Widget_Contourize::defaults_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("accuracy");
    QTest::addColumn<QString>("max_size");
    QTest::addColumn<QString>("unit_text");

    // 0.25 mil and 3 mil, shown with two decimals.
    QTest::newRow("mil") << 0 << "0.25"
                         << "3.00"
                         << "mil";
    QTest::newRow("mm") << 1 << "0.01"
                        << "0.08"
                        << "mm";
}

void tst_Widget_Contourize::defaults() {
    QFETCH(int, unit);
    QFETCH(QString, accuracy);
    QFETCH(QString, max_size);
    QFETCH(QString, unit_text);

    QWidget host;
    wctest::UnitScope scope(&host, unit);
    Widget_Contourize dialog(&host);

    QCOMPARE(::accuracy(dialog)->text(), accuracy);
    QCOMPARE(maxSize(dialog)->text(), max_size);
    QCOMPARE(child<QLabel>(dialog, "label_AccuracyUnit")->text(), unit_text);
    QCOMPARE(child<QLabel>(dialog, "label_MaxSizeUnit")->text(), unit_text);
    QComboBox* islands = child<QComboBox>(dialog, "comboBox_SeparateToIslands");
    QCOMPARE(islands->count(), 2);
    QCOMPARE(islands->currentText(), QStringLiteral("Yes"));
    QCOMPARE(islands->itemText(1), QStringLiteral("No"));
    QVERIFY(child<QRadioButton>(dialog, "radioButton_XorY")->isChecked());
}

void tst_Widget_Contourize::emittedRecord_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("accuracy");
    QTest::addColumn<QString>("max_size");
    QTest::addColumn<int>("islands_index");
    QTest::addColumn<QString>("mode_button");
    QTest::addColumn<double>("accuracy_nm");
    QTest::addColumn<double>("max_size_nm");
    QTest::addColumn<bool>("islands");
    QTest::addColumn<int>("mode");

    QTest::newRow("mil defaults") << 0 << "0.25"
                                  << "3.00" << 0 << "radioButton_XorY" << 6350.0 << 76200.0 << true
                                  << 1;
    QTest::newRow("mil, no islands, X and Y")
        << 0 << "1.5"
        << "100" << 1 << "radioButton_XandY" << 38100.0 << 2540000.0 << false << 2;
    QTest::newRow("mil at both limits, area")
        << 0 << "2"
        << "8000" << 0 << "radioButton_Area" << 50800.0 << 203200000.0 << true << 3;
    // In mm the accuracy limit truncates to 0, so only zero passes.
    QTest::newRow("mm") << 1 << "0."
                        << "200.5" << 1 << "radioButton_Area" << 0.0 << 200500000.0 << false << 3;
    QTest::newRow("mm, negative-free small size")
        << 1 << "0.0"
        << "0.08" << 0 << "radioButton_XorY" << 0.0 << 80000.0 << true << 1;
}

void tst_Widget_Contourize::emittedRecord() {
    QFETCH(int, unit);
    QFETCH(QString, accuracy);
    QFETCH(QString, max_size);
    QFETCH(int, islands_index);
    QFETCH(QString, mode_button);
    QFETCH(double, accuracy_nm);
    QFETCH(double, max_size_nm);
    QFETCH(bool, islands);
    QFETCH(int, mode);

    QWidget host;
    wctest::UnitScope scope(&host, unit);
    Widget_Contourize dialog(&host);
    RecordCatcher catcher(dialog);
    QSignalSpy spy(&dialog, &Widget_Contourize::send_Contourize_Info);
    wctest::MessageBoxAnswerer boxes;

    ::accuracy(dialog)->setText(accuracy);
    maxSize(dialog)->setText(max_size);
    child<QComboBox>(dialog, "comboBox_SeparateToIslands")->setCurrentIndex(islands_index);
    dialog.findChild<QRadioButton*>(mode_button)->setChecked(true);
    child<QPushButton>(dialog, "pushButton_Apply")->click();

    QCOMPARE(boxes.count(), 0);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(catcher.records.size(), 1);
    const contourize_params& record = catcher.records.first();
    QVERIFY2(qAbs(record.accuracy - accuracy_nm) < 1e-6,
             qPrintable(QString::number(record.accuracy)));
    QVERIFY2(qAbs(record.max_size - max_size_nm) < 1e-3,
             qPrintable(QString::number(record.max_size)));
    QCOMPARE(record.separate_to_islands, islands);
    QCOMPARE(record.mode, mode);
}

void tst_Widget_Contourize::buttons_data() {
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("accuracy");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<int>("emitted");
    QTest::addColumn<bool>("visible");

    const QStringList none;
    const QStringList illegal{QStringLiteral("Illegal field value")};
    QTest::newRow("Apply, valid") << "pushButton_Apply"
                                  << "1" << none << 1 << true;
    QTest::newRow("Apply, empty") << "pushButton_Apply"
                                  << "" << illegal << 0 << true;
    QTest::newRow("Apply, above limit: silent") << "pushButton_Apply"
                                                << "3" << none << 0 << true;
    QTest::newRow("Ok, valid") << "pushButton_Ok"
                               << "1" << none << 1 << false;
    // Ok closes even though nothing was applied: kept.
    QTest::newRow("Ok, empty") << "pushButton_Ok"
                               << "" << illegal << 0 << false;
    QTest::newRow("Ok, above limit") << "pushButton_Ok"
                                     << "3" << none << 0 << false;
    QTest::newRow("Close") << "pushButton_Close"
                           << "1" << none << 0 << false;
}

void tst_Widget_Contourize::buttons() {
    QFETCH(QString, button);
    QFETCH(QString, accuracy);
    QFETCH(QStringList, messages);
    QFETCH(int, emitted);
    QFETCH(bool, visible);

    QWidget host;
    wctest::UnitScope scope(&host, 0);
    Widget_Contourize dialog(&host);
    dialog.show();
    QSignalSpy spy(&dialog, &Widget_Contourize::send_Contourize_Info);
    wctest::MessageBoxAnswerer boxes;

    ::accuracy(dialog)->setText(accuracy);
    QTest::mouseClick(dialog.findChild<QPushButton*>(button), Qt::LeftButton);

    QCOMPARE(boxes.texts(), messages);
    for (const wctest::ShownBox& box : boxes.boxes()) {
        QCOMPARE(box.title, QStringLiteral("Information"));
    }
    QCOMPARE(spy.count(), emitted);
    QCOMPARE(dialog.isVisible(), visible);
    QCOMPARE(::accuracy(dialog)->text(), accuracy);
}

void tst_Widget_Contourize::returnCommitsOneField_data() {
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("message");

    QTest::newRow("mil accuracy inside") << 0 << "lineEdit_Accuracy"
                                         << "1.5"
                                         << "1.5"
                                         << "";
    QTest::newRow("mil accuracy above")
        << 0 << "lineEdit_Accuracy"
        << "2.5"
        << "0.25"
        << "Illegal float value\nfloating value for field \"accuracy\" is out of range: 2.5\n"
           "legal values: from 0 to 2";
    // The limit truncates to 0 mm, and the reset text stays the raw "0.25" even in mm.
    QTest::newRow("mm accuracy small value")
        << 1 << "lineEdit_Accuracy"
        << "0.01"
        << "0.25"
        << "Illegal float value\nfloating value for field \"accuracy\" is out of range: 0.01\n"
           "legal values: from 0 to 0";
    QTest::newRow("mil max size above")
        << 0 << "lineEdit_MaxSize"
        << "8000.5"
        << "3"
        << "Illegal float value\nfloating value for field \"clean_hole_size\" is out of range: "
           "8000.5\nlegal values: from 0 to 8000";
    QTest::newRow("mm max size inside") << 1 << "lineEdit_MaxSize"
                                        << "203"
                                        << "203"
                                        << "";
    QTest::newRow("mm max size above")
        << 1 << "lineEdit_MaxSize"
        << "204"
        << "3"
        << "Illegal float value\nfloating value for field \"clean_hole_size\" is out of range: "
           "204\nlegal values: from 0 to 203";
}

void tst_Widget_Contourize::returnCommitsOneField() {
    QFETCH(int, unit);
    QFETCH(QString, field);
    QFETCH(QString, typed);
    QFETCH(QString, after);
    QFETCH(QString, message);

    QWidget host;
    wctest::UnitScope scope(&host, unit);
    Widget_Contourize dialog(&host);
    dialog.show();
    QSignalSpy spy(&dialog, &Widget_Contourize::send_Contourize_Info);
    wctest::MessageBoxAnswerer boxes;
    QLineEdit* edit = dialog.findChild<QLineEdit*>(field);
    QLineEdit* other = edit == accuracy(dialog) ? maxSize(dialog) : accuracy(dialog);
    const QString other_before = other->text();

    retype(edit, typed);
    QCOMPARE(edit->text(), typed);
    QTest::keyClick(edit, Qt::Key_Return);

    QCOMPARE(edit->text(), after);
    QCOMPARE(boxes.count(), message.isEmpty() ? 0 : 1);
    if (!message.isEmpty()) {
        QCOMPARE(boxes.last().title, QStringLiteral("Information"));
        QCOMPARE(boxes.last().text, message);
    }
    QCOMPARE(other->text(), other_before);
    QCOMPARE(spy.count(), 0);
}

void tst_Widget_Contourize::unitChangeRoundTrip_data() {
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("converted");
    QTest::addColumn<QString>("back");

    QTest::newRow("mil default accuracy") << 0 << "0.25"
                                          << "0.00635"
                                          << "0.25";
    QTest::newRow("mil default size") << 0 << "3.00"
                                      << "0.0762"
                                      << "3";
    // 6 significant digits: more precise texts come back rounded.
    QTest::newRow("mil, precise") << 0 << "12345.67891"
                                  << "313.58"
                                  << "12345.7";
    QTest::newRow("mm one") << 1 << "1"
                            << "39.3701"
                            << "1";
    QTest::newRow("empty stays empty") << 0 << ""
                                       << ""
                                       << "";
}

void tst_Widget_Contourize::unitChangeRoundTrip() {
    QFETCH(int, from);
    QFETCH(QString, text);
    QFETCH(QString, converted);
    QFETCH(QString, back);

    QWidget host;
    wctest::UnitScope scope(&host, from);
    Widget_Contourize dialog(&host);
    maxSize(dialog)->setText(text);
    const QString unit_before = child<QLabel>(dialog, "label_MaxSizeUnit")->text();

    scope.change(1 - from);
    dialog.change_unit();
    QCOMPARE(maxSize(dialog)->text(), converted);
    QVERIFY(child<QLabel>(dialog, "label_MaxSizeUnit")->text() != unit_before);

    scope.change(from);
    dialog.change_unit();
    QCOMPARE(maxSize(dialog)->text(), back);
    QCOMPARE(child<QLabel>(dialog, "label_MaxSizeUnit")->text(), unit_before);
    QCOMPARE(child<QLabel>(dialog, "label_AccuracyUnit")->text(), unit_before);
}

void tst_Widget_Contourize::mouseLeaveCommit_data() {
    QTest::addColumn<QString>("where");
    QTest::addColumn<bool>("commits");

    QTest::newRow("inside the first field as tested") << "inside" << false;
    QTest::newRow("in the field past its width") << "past_width" << true;
    QTest::newRow("below every field") << "outside" << true;
}

void tst_Widget_Contourize::mouseLeaveCommit() {
    QFETCH(QString, where);
    QFETCH(bool, commits);

    QWidget host;
    wctest::UnitScope scope(&host, 0);
    Widget_Contourize dialog(&host);
    dialog.resize(600, 300);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    wctest::MessageBoxAnswerer boxes;

    // An uncommitted edit in the second field, above its limit.
    retype(maxSize(dialog), QStringLiteral("9000"));

    const QRect first = accuracy(dialog)->geometry();
    const int y = (first.y() + first.height()) / 2;
    QPoint pos;
    if (where == QLatin1String("inside")) {
        pos = QPoint(first.x() + 1, y);
    } else if (where == QLatin1String("past_width")) {
        pos = QPoint(first.width() + 1, y);
        QVERIFY(first.contains(pos));
    } else {
        pos = QPoint(5, dialog.height() - 5);
    }
    QCOMPARE(wc::insideAsTested(first, pos), !commits);

    QMouseEvent move(QEvent::MouseMove, pos, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&dialog, &move);

    if (commits) {
        QCOMPARE(maxSize(dialog)->text(), QStringLiteral("3"));
        QCOMPARE(boxes.count(), 1);
        QVERIFY(boxes.last().text.contains(QStringLiteral("\"clean_hole_size\"")));
        // Committed now: a second move leaves it alone.
        QApplication::sendEvent(&dialog, &move);
        QCOMPARE(boxes.count(), 1);
    } else {
        QCOMPARE(maxSize(dialog)->text(), QStringLiteral("9000"));
        QCOMPARE(boxes.count(), 0);
    }
}

void tst_Widget_Contourize::changeLanguage_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");

    QTest::newRow("accuracy") << "label_Accuracy"
                              << "Accuracy :"
                              << "Accuracy           :";
    QTest::newRow("max size") << "label_MaxSize"
                              << "Max Size :"
                              << "Max Size          :";
    QTest::newRow("mode") << "label_Mode"
                          << "Mode :"
                          << "Mode          :";
    QTest::newRow("islands") << "label_SeparateToIslands"
                             << "Separate to Islands :"
                             << "Separate to Islands :";
    QTest::newRow("group title") << "label_CleanHoles"
                                 << "     Clean Holes"
                                 << "     Clean Holes";
    QTest::newRow("radio") << "radioButton_XandY"
                           << "X and Y"
                           << "X and Y";
    QTest::newRow("button") << "pushButton_Apply"
                            << "Apply"
                            << "Apply";
}

void tst_Widget_Contourize::changeLanguage() {
    QFETCH(QString, name);
    QFETCH(QString, before);
    QFETCH(QString, after);

    QWidget host;
    wctest::UnitScope scope(&host, 0);
    Widget_Contourize dialog(&host);
    auto text = [&dialog, &name]() {
        QObject* found = dialog.findChild<QObject*>(name);
        return found == nullptr ? QStringLiteral("<missing>") : found->property("text").toString();
    };
    QCOMPARE(text(), before);
    accuracy(dialog)->setText(QStringLiteral("1.5"));

    dialog.change_language();
    QCOMPARE(text(), after);
    QCOMPARE(accuracy(dialog)->text(), QStringLiteral("1.5"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Contourize"));
}

void tst_Widget_Contourize::guardedSlotKeepsDialogUsable_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("description");

    QTest::newRow("standard exception") << 0 << "engine refused";
    QTest::newRow("std::string") << 1 << "bad layer";
    QTest::newRow("QString") << 2 << "no job";
    QTest::newRow("text") << 3 << "out of memory";
}

void tst_Widget_Contourize::guardedSlotKeepsDialogUsable() {
    QFETCH(int, kind);
    QFETCH(QString, description);

    QWidget host;
    wctest::UnitScope scope(&host, 0);
    Widget_Contourize dialog(&host);
    dialog.show();
    wctest::MessageBoxAnswerer boxes;
    const std::string bytes = description.toStdString();

    const bool completed = wc::guarded(&dialog, __FILE__, __LINE__, [&]() {
        switch (kind) {
            case 0:
                throw std::runtime_error(bytes);
            case 1:
                throw bytes;
            case 2:
                throw description;
            default:
                throw bytes.c_str();
        }
    });
    QVERIFY(!completed);
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral("Information"));
    QCOMPARE(boxes.last().text, description);

    QSignalSpy spy(&dialog, &Widget_Contourize::send_Contourize_Info);
    dialog.on_Apply_clicked();
    QCOMPARE(spy.count(), 1);
    QVERIFY(dialog.isVisible());
}

void tst_Widget_Contourize::throwingHostSlotKeepsDialogUsable() {
    QWidget host;
    wctest::UnitScope scope(&host, 0);
    Widget_Contourize dialog(&host);
    dialog.show();
    wctest::MessageBoxAnswerer boxes;

    auto refusal = connect(
        &dialog, &Widget_Contourize::send_Contourize_Info, &dialog,
        [](QObject*) { throw std::runtime_error("host refused"); }, Qt::DirectConnection);
    child<QPushButton>(dialog, "pushButton_Apply")->click();
    QCOMPARE(boxes.texts(), QStringList{QStringLiteral("host refused")});
    QVERIFY(dialog.isVisible());

    disconnect(refusal);
    RecordCatcher catcher(dialog);
    child<QPushButton>(dialog, "pushButton_Ok")->click();
    QCOMPARE(catcher.records.size(), 1);
    QCOMPARE(boxes.count(), 1);
    QVERIFY(!dialog.isVisible());
}

QTEST_MAIN(tst_Widget_Contourize)
#include "tst_Widget_Contourize.moc"

// The UI service library's stand-in: display units, the Ze widgets, widget values as JSON,
// time texts and parameter-set lists.

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QJsonArray>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QValidator>
#include <QtTest>
#include <functional>

#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "TemporaryWorkingDirectory.h"
#include "ZeLineEdit.h"
#include "ZeProgressDialog.h"

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

// One widget kind: how to build it in its default state, how a user changes it and the value
// the change is saved as.
struct Kind {
    std::function<QObject*(QWidget*)> make;
    std::function<void(QObject*)> change;
    QJsonValue changed;
};

template <typename W>
std::function<void(QObject*)> on(std::function<void(W*)> change) {
    return [change](QObject* o) { change(static_cast<W*>(o)); };
}

const std::map<QString, Kind>& kinds() {
    static const std::map<QString, Kind> table = {
        {"line edit",
         {[](QWidget* p) { return new QLineEdit("8.00", p); },
          on<QLineEdit>([](QLineEdit* w) { w->setText("12.5"); }), "12.5"}},
        {"ZeLineEdit",
         {[](QWidget* p) { return new ZeLineEdit("1", ZeE_Float, p); },
          on<QLineEdit>([](QLineEdit* w) { w->setText("-3.25"); }), "-3.25"}},
        {"label",
         {[](QWidget* p) { return new QLabel("inch", p); },
          on<QLabel>([](QLabel* w) { w->setText("mm"); }), "mm"}},
        {"check box",
         {[](QWidget* p) { return new QCheckBox("Sliver", p); },
          on<QCheckBox>([](QCheckBox* w) { w->setChecked(true); }), true}},
        {"radio button",
         {[](QWidget* p) { return new QRadioButton("Area", p); },
          on<QRadioButton>([](QRadioButton* w) { w->setChecked(true); }), true}},
        {"combo box",
         {[](QWidget* p) {
              auto* combo = new QComboBox(p);
              combo->addItems({"Yes", "No", "Skip"});
              return combo;
          },
          on<QComboBox>([](QComboBox* w) { w->setCurrentIndex(2); }), 2}},
        {"button group",
         {[](QWidget* p) {
              auto* group = new QButtonGroup(p);
              for (int id = 1; id <= 3; ++id)
                  group->addButton(new QRadioButton(QString::number(id), p), id);
              group->button(1)->setChecked(true);
              return group;
          },
          on<QButtonGroup>([](QButtonGroup* w) { w->button(3)->setChecked(true); }), 3}},
        {"spin box",
         {[](QWidget* p) {
              auto* spin = new QSpinBox(p);
              spin->setRange(0, 100);
              return spin;
          },
          on<QSpinBox>([](QSpinBox* w) { w->setValue(42); }), 42}},
        {"double spin box",
         {[](QWidget* p) {
              auto* spin = new QDoubleSpinBox(p);
              spin->setRange(0, 100);
              return spin;
          },
          on<QDoubleSpinBox>([](QDoubleSpinBox* w) { w->setValue(2.5); }), 2.5}},
        {"table",
         {[](QWidget* p) {
              auto* table = new QTableWidget(1, 2, p);
              table->setItem(0, 0, new QTableWidgetItem("a"));
              table->setItem(0, 1, new QTableWidgetItem("b"));
              return table;
          },
          on<QTableWidget>([](QTableWidget* w) {
              w->setRowCount(3);
              w->item(0, 0)->setText("x");
              w->setItem(1, 0, new QTableWidgetItem("1"));
          }),
          QJsonArray{QJsonArray{"x", "b"}, QJsonArray{"1", ""}, QJsonArray{"", ""}}}},
        {"group box",
         {[](QWidget* p) {
              auto* box = new QGroupBox("Advanced", p);
              box->setCheckable(true);
              return box;
          },
          on<QGroupBox>([](QGroupBox* w) { w->setChecked(false); }), false}},
    };
    return table;
}

QObject* makeField(const QString& kind, QWidget* form) {
    QObject* widget = kinds().at(kind).make(form);
    widget->setObjectName("field");
    return widget;
}

QJsonValue read(QObject* widget) {
    QJsonObject object;
    readListToJson({widget}, object);
    return object.value(widget->objectName());
}

}  // namespace

Q_DECLARE_METATYPE(Judge)
Q_DECLARE_METATYPE(QValidator::State)

class tst_UiServices : public QObject {
    Q_OBJECT

private slots:
    void init() { wcref::resetUnits(); }
    void cleanupTestCase() { wcref::resetUnits(); }

    void formatTime_data() {
        QTest::addColumn<int>("ms");
        QTest::addColumn<QString>("text");
        QTest::newRow("mixed") << 3723004 << "1:02:03.004";
        QTest::newRow("minute edge") << 59999 << "0:00:59.999";
        QTest::newRow("past a day") << 90000000 << "25:00:00.000";
        QTest::newRow("negative") << -5 << "0:00:00.000";
    }
    void formatTime() {
        QFETCH(int, ms);
        QFETCH(QString, text);
        QCOMPARE(Korvo::UIAPI::formatTime(ms), text);
    }

    void erfList_data() {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QString>("names");
        QTest::newRow("listed, sorted, .json only") << "TeardropsRanges" << true << "A;a.b;b";
        QTest::newRow("no folder") << "DrillRanges" << false << "";
    }
    void erfList() {
        QFETCH(QString, key);
        QFETCH(bool, ok);
        QFETCH(QString, names);
        wctest::TemporaryWorkingDirectory dir;
        QVERIFY(wctest::writeFile(dir.filePath("ERFconfig/x.json"), "{}"));
        const QString folder = dir.filePath("ERFconfig/TeardropsRanges/");
        for (const char* file : {"b.json", "A.json", "a.b.json", "notes.txt", ".json", "c.JSON"})
            QVERIFY(wctest::writeFile(folder + file, "{}"));
        QVERIFY(QDir().mkpath(folder + "sub.json"));

        QStringList found{"stale"};
        QCOMPARE(getERFList(key, found), ok);
        QCOMPARE(found.join(';'), names);
        QCOMPARE(getERFList(key), found);
    }

    void judge_data() {
        QTest::addColumn<Judge>("row");
        QTest::newRow("mil fraction") << Judge{kMil, 0.25, 2, "0.25", 0, 0.25, "0.250"};
        QTest::newRow("mil 7.6") << Judge{kMil, 7.6, 2, "7.60", 7, 7.6, "7.600"};
        QTest::newRow("mm 2-mil limit reads 0") << Judge{kMm, 2, 2, "0.05", 0, 0.0508, "0.051"};
        QTest::newRow("mm 8") << Judge{kMm, 8, 2, "0.20", 0, 0.2032, "0.203"};
        QTest::newRow("mm 3 decimals") << Judge{kMm, 10, 3, "0.254", 0, 0.254, "0.254"};
        QTest::newRow("mm no decimals") << Judge{kMm, 100, 0, "3", 2, 2.54, "2.540"};
        QTest::newRow("mm negative") << Judge{kMm, -100, 2, "-2.54", -2, -2.54, "-2.540"};
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

    // A unit belongs to its handle; a handle never set has mil.
    void unitPerHandle() {
        int a = 0;
        int b = 0;
        setUnit(&a, kMm);
        QCOMPARE(getUnit(&a), kMm);
        QCOMPARE(getUnit(&b), kMil);
    }

    void validators_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QValidator::State>("state");
        const auto A = QValidator::Acceptable;
        const auto I = QValidator::Intermediate;
        const auto X = QValidator::Invalid;
        // The two kinds the dialogs use: lengths and the viewer's hit index.
        QTest::newRow("float integer") << 3 << "8" << A;
        QTest::newRow("float negative") << 3 << "-12.5" << A;
        QTest::newRow("float five decimals") << 3 << "0.12345" << A;
        QTest::newRow("float six decimals") << 3 << "0.123456" << X;
        QTest::newRow("float trailing point") << 3 << "12." << I;
        QTest::newRow("float letters") << 3 << "1e5" << X;
        QTest::newRow("float comma") << 3 << "1,5" << X;
        QTest::newRow("positive integer minus") << 2 << "-7" << X;
        QTest::newRow("positive integer zero") << 2 << "0" << A;
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
        QTest::newRow("float negative") << 3 << QString("-100") << "-2.54";
        QTest::newRow("float six digits") << 3 << QString("12345.6") << "313.578";
        QTest::newRow("empty") << 3 << QString() << "";
        QTest::newRow("not a number") << 3 << QString("abc") << "abc";
        QTest::newRow("integer kind unchanged") << 1 << QString("8") << "8";
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
        if (number && kind == 3)
            QVERIFY(qAbs(edit.text().toDouble() - original) <= qAbs(original) * 1e-5);
        else
            QCOMPARE(edit.text(), mil);
    }

    // A new field takes the unit of the host handle above it.
    void textUnitFollowsHandle() {
        QWidget handle;
        QWidget dialog(&handle);
        setUnit(&handle, 1);
        ZeLineEdit inside("0.20", ZeE_Float, &dialog);
        QCOMPARE(inside.textUnit(), 1);
    }

    // Escape, closing and requestStop() are proven on the run's window without a cancel button
    // by frame/tst_BackgroundRun; here the cancel button and a key that must not stop.
    void progressStop_data() {
        QTest::addColumn<bool>("cancel");
        QTest::newRow("cancel button") << true;
        QTest::newRow("other key") << false;
    }
    void progressStop() {
        QFETCH(bool, cancel);
        ZeProgressDialog dialog("Please wait", "Stop", 0, 100);
        dialog.setMinimumDuration(0);
        dialog.setValue(10);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY(!dialog.isDialogStop());

        if (cancel)
            emit dialog.canceled();
        else
            QTest::keyClick(&dialog, Qt::Key_A);

        QCOMPARE(dialog.isDialogStop(), cancel);
        QVERIFY(dialog.isVisible());
        QVERIFY(!dialog.wasCanceled());
        QCOMPARE(dialog.value(), 10);
    }

    void roundTrip_data() {
        QTest::addColumn<QString>("kind");
        for (const auto& entry : kinds())
            QTest::newRow(qPrintable(entry.first)) << entry.first;
    }
    void roundTrip() {
        QFETCH(QString, kind);
        const QJsonValue expected = kinds().at(kind).changed;
        QWidget source_form;
        QObject* source = makeField(kind, &source_form);
        kinds().at(kind).change(source);
        QJsonObject saved;
        readListToJson({source}, saved);
        QCOMPARE(saved.value("field"), expected);

        QWidget target_form;
        QObject* target = makeField(kind, &target_form);
        QVERIFY(read(target) != expected);
        QList<QObject*> list{target};
        writeJsonToList(saved, list);
        QCOMPARE(read(target), expected);
    }

    void wrongTypeLeavesWidget_data() {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("line edit number") << "line edit" << QJsonValue(5);
        QTest::newRow("ZeLineEdit null") << "ZeLineEdit" << QJsonValue();
        QTest::newRow("label bool") << "label" << QJsonValue(true);
        QTest::newRow("check box text") << "check box" << QJsonValue("true");
        QTest::newRow("radio text") << "radio button" << QJsonValue("yes");
        QTest::newRow("combo text") << "combo box" << QJsonValue("2");
        QTest::newRow("combo out of range") << "combo box" << QJsonValue(7);
        QTest::newRow("combo fraction") << "combo box" << QJsonValue(1.5);
        QTest::newRow("group text") << "button group" << QJsonValue("3");
        QTest::newRow("group unknown id") << "button group" << QJsonValue(9);
        QTest::newRow("spin text") << "spin box" << QJsonValue("42");
        QTest::newRow("spin fraction") << "spin box" << QJsonValue(2.5);
        QTest::newRow("double spin text") << "double spin box" << QJsonValue("2.5");
        QTest::newRow("table text") << "table" << QJsonValue("x");
        QTest::newRow("table flat") << "table" << QJsonValue(QJsonArray{"a", "b"});
        QTest::newRow("table number cell")
            << "table" << QJsonValue(QJsonArray{QJsonArray{"a", "b"}, QJsonArray{"c", 1}});
        QTest::newRow("group box number") << "group box" << QJsonValue(0);
    }
    void wrongTypeLeavesWidget() {
        QFETCH(QString, kind);
        QFETCH(QJsonValue, value);
        QWidget form;
        QObject* widget = makeField(kind, &form);
        const QJsonValue before = read(widget);
        QList<QObject*> list{widget};
        writeJsonToList(QJsonObject{{"field", value}}, list);
        QCOMPARE(read(widget), before);
    }

    // A set saved before a field existed leaves that field as it is; keys without a widget
    // are ignored.
    void missingKeyLeavesWidget() {
        QWidget form;
        QObject* widget = makeField("line edit", &form);
        QList<QObject*> list{widget};
        writeJsonToList(QJsonObject{{"unrelated", "x"}}, list);
        QCOMPARE(read(widget), QJsonValue("8.00"));
    }
};

QTEST_MAIN(tst_UiServices)
#include "tst_UiServices.moc"

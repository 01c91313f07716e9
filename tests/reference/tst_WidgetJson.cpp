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
#include <QtTest>
#include <functional>

#include "Korvo_UIAPI.h"
#include "ZeLineEdit.h"

using namespace Korvo::UIAPI;

namespace {

// One widget kind: how to build it in its default state and how a user changes it.
struct Kind {
    std::function<QObject*(QWidget*)> make;
    std::function<void(QObject*)> change;
};

QTableWidget* makeTable(QWidget* parent) {
    auto* table = new QTableWidget(1, 2, parent);
    table->setItem(0, 0, new QTableWidgetItem("a"));
    table->setItem(0, 1, new QTableWidgetItem("b"));
    return table;
}

QButtonGroup* makeGroup(QWidget* parent) {
    auto* group = new QButtonGroup(parent);
    for (int id = 1; id <= 3; ++id)
        group->addButton(new QRadioButton(QString::number(id), parent), id);
    group->button(1)->setChecked(true);
    return group;
}

const std::map<QString, Kind>& kinds() {
    static const std::map<QString, Kind> table = {
        {"line edit",
         {[](QWidget* p) { return new QLineEdit("8.00", p); },
          [](QObject* o) { static_cast<QLineEdit*>(o)->setText("12.5"); }}},
        {"ZeLineEdit",
         {[](QWidget* p) { return new ZeLineEdit("1", ZeE_Float, p); },
          [](QObject* o) { static_cast<QLineEdit*>(o)->setText("-3.25"); }}},
        {"label",
         {[](QWidget* p) { return new QLabel("inch", p); },
          [](QObject* o) { static_cast<QLabel*>(o)->setText("mm"); }}},
        {"check box",
         {[](QWidget* p) { return new QCheckBox("Sliver", p); },
          [](QObject* o) { static_cast<QCheckBox*>(o)->setChecked(true); }}},
        {"radio button",
         {[](QWidget* p) { return new QRadioButton("Area", p); },
          [](QObject* o) { static_cast<QRadioButton*>(o)->setChecked(true); }}},
        {"combo box",
         {[](QWidget* p) {
              auto* combo = new QComboBox(p);
              combo->addItems({"Yes", "No", "Skip"});
              return combo;
          },
          [](QObject* o) { static_cast<QComboBox*>(o)->setCurrentIndex(2); }}},
        {"button group",
         {[](QWidget* p) { return makeGroup(p); },
          [](QObject* o) { static_cast<QButtonGroup*>(o)->button(3)->setChecked(true); }}},
        {"spin box",
         {[](QWidget* p) {
              auto* spin = new QSpinBox(p);
              spin->setRange(0, 100);
              return spin;
          },
          [](QObject* o) { static_cast<QSpinBox*>(o)->setValue(42); }}},
        {"double spin box",
         {[](QWidget* p) {
              auto* spin = new QDoubleSpinBox(p);
              spin->setRange(0, 100);
              return spin;
          },
          [](QObject* o) { static_cast<QDoubleSpinBox*>(o)->setValue(2.5); }}},
        {"table",
         {[](QWidget* p) { return makeTable(p); },
          [](QObject* o) {
              auto* table = static_cast<QTableWidget*>(o);
              table->setRowCount(3);
              table->item(0, 0)->setText("x");
              table->setItem(1, 0, new QTableWidgetItem("1"));
          }}},
        {"group box",
         {[](QWidget* p) {
              auto* box = new QGroupBox("Advanced", p);
              box->setCheckable(true);
              return box;
          },
          [](QObject* o) { static_cast<QGroupBox*>(o)->setChecked(false); }}},
    };
    return table;
}

QJsonValue read(QObject* widget) {
    QJsonObject object;
    readListToJson({widget}, object);
    return object.value(widget->objectName());
}

}  // namespace

class tst_WidgetJson : public QObject {
    Q_OBJECT

private slots:
    void roundTrip_data();
    void roundTrip();
    void wrongTypeLeavesWidget_data();
    void wrongTypeLeavesWidget();
    void keysByNameOrPosition();
    void missingKeysIgnored();
};

void tst_WidgetJson::roundTrip_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QJsonValue>("expected");
    QTest::newRow("line edit") << "line edit" << QJsonValue("12.5");
    QTest::newRow("ZeLineEdit") << "ZeLineEdit" << QJsonValue("-3.25");
    QTest::newRow("label") << "label" << QJsonValue("mm");
    QTest::newRow("check box") << "check box" << QJsonValue(true);
    QTest::newRow("radio button") << "radio button" << QJsonValue(true);
    QTest::newRow("combo box") << "combo box" << QJsonValue(2);
    QTest::newRow("button group") << "button group" << QJsonValue(3);
    QTest::newRow("spin box") << "spin box" << QJsonValue(42);
    QTest::newRow("double spin box") << "double spin box" << QJsonValue(2.5);
    QTest::newRow("table") << "table"
                           << QJsonValue(QJsonArray{QJsonArray{"x", "b"}, QJsonArray{"1", ""},
                                                    QJsonArray{"", ""}});
    QTest::newRow("group box") << "group box" << QJsonValue(false);
}

void tst_WidgetJson::roundTrip() {
    QFETCH(QString, kind);
    QFETCH(QJsonValue, expected);
    const Kind& k = kinds().at(kind);

    QWidget source_form;
    QObject* source = k.make(&source_form);
    source->setObjectName("field");
    k.change(source);
    QJsonObject saved;
    readListToJson({source}, saved);
    QCOMPARE(saved.value("field"), expected);

    QWidget target_form;
    QObject* target = k.make(&target_form);
    target->setObjectName("field");
    QVERIFY(read(target) != expected);
    QList<QObject*> list{target};
    writeJsonToList(saved, list);
    QCOMPARE(read(target), expected);
}

void tst_WidgetJson::wrongTypeLeavesWidget_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QJsonValue>("value");
    QTest::newRow("line edit number") << "line edit" << QJsonValue(5);
    QTest::newRow("ZeLineEdit null") << "ZeLineEdit" << QJsonValue();
    QTest::newRow("label bool") << "label" << QJsonValue(true);
    QTest::newRow("check box text") << "check box" << QJsonValue("true");
    QTest::newRow("check box number") << "check box" << QJsonValue(1);
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

void tst_WidgetJson::wrongTypeLeavesWidget() {
    QFETCH(QString, kind);
    QFETCH(QJsonValue, value);
    QWidget form;
    QObject* widget = kinds().at(kind).make(&form);
    widget->setObjectName("field");
    const QJsonValue before = read(widget);
    QList<QObject*> list{widget};
    writeJsonToList(QJsonObject{{"field", value}}, list);
    QCOMPARE(read(widget), before);
}

void tst_WidgetJson::keysByNameOrPosition() {
    QWidget form;
    auto* unnamed = new QLineEdit("a", &form);
    auto* named = new QCheckBox(&form);
    named->setObjectName("sliver");
    auto* second_unnamed = new QSpinBox(&form);
    second_unnamed->setValue(7);
    QJsonObject object;
    readListToJson({unnamed, nullptr, named, second_unnamed}, object);
    QCOMPARE(object, (QJsonObject{{"#0", "a"}, {"sliver", false}, {"#3", 7}}));

    // The position decides where an unnamed value goes back.
    QList<QObject*> list{second_unnamed, unnamed};
    writeJsonToList(QJsonObject{{"#0", 9}, {"#1", "b"}}, list);
    QCOMPARE(second_unnamed->value(), 9);
    QCOMPARE(unnamed->text(), QString("b"));
}

void tst_WidgetJson::missingKeysIgnored() {
    QWidget form;
    auto* edit = new QLineEdit("8.00", &form);
    edit->setObjectName("spacing");
    auto* box = new QCheckBox(&form);
    box->setObjectName("drill");
    box->setChecked(true);
    QList<QObject*> list{edit, box};
    writeJsonToList(QJsonObject{{"drill", false}, {"unrelated", "x"}}, list);
    QCOMPARE(edit->text(), QString("8.00"));
    QVERIFY(!box->isChecked());
}

QTEST_MAIN(tst_WidgetJson)
#include "tst_WidgetJson.moc"

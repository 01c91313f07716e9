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

class tst_WidgetJson : public QObject {
    Q_OBJECT

private slots:
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

    // Unnamed widgets are keyed by position; keys without a widget are ignored.
    void keysByNameOrPosition() {
        QWidget form;
        auto* unnamed = new QLineEdit("a", &form);
        auto* named = new QCheckBox(&form);
        named->setObjectName("sliver");
        auto* second_unnamed = new QSpinBox(&form);
        second_unnamed->setValue(7);
        QJsonObject object;
        readListToJson({unnamed, nullptr, named, second_unnamed}, object);
        QCOMPARE(object, (QJsonObject{{"#0", "a"}, {"sliver", false}, {"#3", 7}}));

        named->setChecked(true);
        QList<QObject*> list{second_unnamed, unnamed, named};
        writeJsonToList(QJsonObject{{"#0", 9}, {"#1", "b"}, {"unrelated", "x"}}, list);
        QCOMPARE(second_unnamed->value(), 9);
        QCOMPARE(unnamed->text(), QString("b"));
        QVERIFY(named->isChecked());  // no key: left as it is
    }
};

QTEST_MAIN(tst_WidgetJson)
#include "tst_WidgetJson.moc"

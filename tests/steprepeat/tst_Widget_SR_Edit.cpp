// The step-and-repeat editor against the reference engine's sample panel: questions and status
// texts, writes and undo grouping, picks, messages and refusals.
//
// Sample panel (mil): profile 0..9000 x 0..7000; a 3 x 2 array of "pcb" (2000 x 1500) at
// (500, 500) with pitch (2200, 1700); a column of two "pcb" turned 90 at x 7200..8700,
// y 500..2500 and 2700..4700.

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTranslator>
#include <QtTest>
#include <stdexcept>

#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "HostSettings.h"
#include "Korvo_API.h"
#include "MarkingTranslator.h"
#include "MessageBoxAnswerer.h"
#include "PluginSpy.h"
#include "ReferenceEngine.h"
#include "ScopedEngineHook.h"
#include "StepRepeatGeometry.h"
#include "UnitScope.h"
#include "frame/PluginMessages.h"
#include "steprepeat/Widget_SR_Edit.h"

using Korvo::API::step_repeat_op;
using wctest::click;
using wctest::labelText;
using wctest::row;

namespace {

const std::string kJob = "sample_job";
const std::string kPanel = "panel";
constexpr double kMil = 25400.0;

QPointF mil(double x, double y) {
    return {x * kMil, y * kMil};
}

std::vector<step_repeat_op> table() {
    std::vector<step_repeat_op> rows;
    Korvo::API::get_step_repeat(kJob, kPanel, rows);
    return rows;
}

int writes() {
    int n = 0;
    for (const wcref::EngineCall& call : wcref::engineCalls()) {
        n += call.operation == "set_step_repeat";
    }
    return n;
}

// Boxes of every instance of the panel, as the engine places them.
std::vector<Korvo::API::reply_box> engineBoxes() {
    const std::vector<step_repeat_op> rows = table();
    Korvo::API::reply_box child;
    Korvo::API::profile_box(kJob, "pcb", child);
    std::vector<Korvo::API::reply_box> boxes;
    for (const wcref::RepeatInstance& i : wcref::expandRepeatRows(rows)) {
        boxes.push_back(wcref::instanceBox(child, i));
    }
    return boxes;
}

QString shownText(const QObject* object) {
    if (auto* box = qobject_cast<const QGroupBox*>(object)) {
        return box->title();
    }
    if (object->isWidgetType() && static_cast<const QWidget*>(object)->isWindow()) {
        return static_cast<const QWidget*>(object)->windowTitle();
    }
    return object->property("text").toString();
}

QString question(const char* words) {
    return QStringLiteral(
               "The %1 operation requires at least 1 step(s),while you have 0 step(s) selected, "
               "The operation will be performed on all steps,continue?")
        .arg(QLatin1String(words));
}

}  // namespace

class tst_Widget_SR_Edit : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob(kJob));
        wcref::setShiftPressedForTest(0);
    }

    void questionOnEmptySelection_data() {
        wctest::columns<QString, QString, QString>("button", "status", "question");
        row("copy", "pushButton_Copy", "Copy Select Step", question("copy steps"));
        row("move", "pushButton_Move", "Move Select Step", question("move steps"));
        row("delete", "pushButton_Delete", "Delete Select Step", question("delete steps"));
        row("rotate", "pushButton_Rotate", "Rotate Select Step", question("rotate steps"));
        row("replace", "pushButton_Replace", "Replace Select Step", question("replace steps"));
        row("mirror h", "pushButton_MirrorHorizontal", "Mirror Select Step Horizontally",
            question("horizontal mirror steps"));
        row("mirror v", "pushButton_MirrorVertical", "Mirror Select Step Vertically",
            question("vertical mirror steps"));
        row("reduce", "pushButton_ReduceNesting", "Reduce S&R nesting", question("Reduce nesting"));
        row("highest", "pushButton_ReduceHighestLevel", "Reduce S&R highest level only",
            question("Reduce nesting"));
        row("align left", "pushButton_AlignLeft", "Align Left", question("Align Steps"));
        row("centre y", "pushButton_CenterY", "Center on Y Axis", question("Align Steps"));
        row("pack left", "pushButton_PackLeft", "Pack Left", question("Align Steps"));
        row("pack both", "pushButton_PackTopBottom", "Pack top and bottom",
            question("Align Steps"));
        row("space", "pushButton_SpaceEvenlyH", "Space evenly horizontal", question("Align Steps"));
        row("grid asks reduce nesting", "pushButton_AlignToGrid", "Align to grid",
            question("Reduce nesting"));
        row("centre h", "pushButton_PackCenterH", "Pack to center horisontally",
            QStringLiteral("Operation will be performed on all steps.Continue?"));
        row("centre v", "pushButton_PackCenterV", "Pack to center vertically",
            QStringLiteral("Operation will be performed on all steps.Continue?"));
    }
    // No leaves the table as it was and returns to single select.
    void questionOnEmptySelection() {
        QFETCH(QString, button);
        QFETCH(QString, status);
        QFETCH(QString, question);
        QWidget host;
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        wctest::PluginSpy spy;
        QString status_seen;
        auto* label = dialog.findChild<QLabel*>(QStringLiteral("label_Status"));
        wctest::MessageBoxAnswerer answerer(QMessageBox::No);
        // The status is set before the question is asked.
        answerer.onEachBox([&](QMessageBox*) { status_seen = label->text(); });
        wcref::clearEngineCalls();
        click(dialog, button);
        QCOMPARE(answerer.count(), 1);
        QCOMPARE(answerer.last().title, "Information");
        QCOMPARE(answerer.last().text, question);
        QCOMPARE(status_seen, status);
        QCOMPARE(writes(), 0);
        QVERIFY(spy.withCode(wc::code::PickReferenceStep).isEmpty());
        QCOMPARE(label->text(), "Single Select");
        QVERIFY(dialog.findChild<QPushButton*>("pushButton_SingleSelect")->isChecked());
    }

    void yesPacksEverythingAsOneEdit_data() {
        wctest::columns<int, QString>("unit", "gap");
        row("mil", 0, "100");
        row("mm", 1, "2.54");
    }
    // Yes selects every instance; the operation is one write and one edit.
    void yesPacksEverythingAsOneEdit() {
        QFETCH(int, unit);
        QFETCH(QString, gap);
        QWidget host;
        wctest::UnitScope scope(&host, unit);
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        dialog.findChild<QLineEdit*>("lineEdit_HorizGap")->setText(gap);
        const int edits = Korvo::API::get_editop_count(kJob, kPanel);
        wctest::MessageBoxAnswerer answerer(QMessageBox::Yes);
        wctest::PluginSpy spy;
        QSignalSpy changed(&dialog, &Widget_SR_Edit::send_SR_Changed);
        wcref::clearEngineCalls();
        click(dialog, "pushButton_PackLeft");
        QCOMPARE(answerer.count(), 1);
        QCOMPARE(writes(), 1);
        QCOMPARE(Korvo::API::get_editop_count(kJob, kPanel), edits + 1);
        QCOMPARE(changed.count(), 1);
        QVERIFY(!spy.withCode(wc::code::RefreshGraphic).isEmpty());
        // Columns at 0, 2100 and 4200 mil, gap 100; the turned column follows at 6300.
        QList<double> lefts;
        for (const auto& b : engineBoxes()) {
            lefts << b.xmin / kMil;
        }
        std::sort(lefts.begin(), lefts.end());
        QCOMPARE(lefts, (QList<double>{0, 0, 2100, 2100, 4200, 4200, 6300, 6300}));
        QCOMPARE(labelText(dialog, "label_SelectedSteps"), "Selected Steps : 8");
    }

    void selectionPicks_data() {
        // Mode 0 picks single, 1 by rectangle, 2 by polygon.
        wctest::columns<int, bool, int>("mode", "shift", "selected");
        row("single replaces", 0, false, 1);
        row("single with shift adds", 0, true, 2);
        row("rectangle replaces", 1, false, 2);
        row("rectangle with shift adds", 1, true, 3);
        row("polygon always replaces", 2, true, 2);
    }
    void selectionPicks() {
        QFETCH(int, mode);
        QFETCH(bool, shift);
        QFETCH(int, selected);
        QWidget host;
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        // First pick: the turned instance at the lower right.
        dialog.receive_SR_Select_point({mil(8000, 1500)});
        QCOMPARE(labelText(dialog, "label_SelectedSteps"), "Selected Steps : 1");
        wcref::setShiftPressedForTest(shift ? 1 : 0);
        const char* buttons[3] = {"pushButton_SingleSelect", "pushButton_RectangleSelect",
                                  "pushButton_PolygonSelect"};
        click(dialog, buttons[mode]);
        if (mode == 0) {
            dialog.receive_SR_Select_point({mil(1500, 1250)});
        } else if (mode == 1) {
            // The two lower left instances of the array.
            dialog.receive_SR_Select_point({mil(0, 0), mil(4000, 2200)});
        } else {
            dialog.receive_SR_PolygonSelect_point(
                {mil(0, 0), mil(4000, 0), mil(4000, 2200), mil(0, 2200)});
        }
        QCOMPARE(labelText(dialog, "label_SelectedSteps"),
                 QStringLiteral("Selected Steps : %1").arg(selected));
    }

    // Two array instances aligned left to the step picked as reference, in one edit; a pick on
    // no step, or on two overlapping ones, says so and changes nothing, the selection included.
    void alignToReference_data() {
        wctest::columns<bool, QPointF, QStringList, int>("overlapping", "pick", "messages",
                                                         "aligned");
        row("on the turned step at x 7200", false, mil(8000, 3500), QStringList(), 2);
        row("on no step", false, mil(100, 6900), QStringList{"Illegal step specified"}, 0);
        row("on two overlapping steps", true, mil(7500, 3500),
            QStringList{"Illegal step specified"}, 0);
    }
    void alignToReference() {
        QFETCH(bool, overlapping);
        QFETCH(QPointF, pick);
        QFETCH(QStringList, messages);
        QFETCH(int, aligned);
        if (overlapping) {
            // A plain "pcb" at 6000..8000 x 3000..4500 lies over the upper turned step, and on
            // top of it: the engine's pick would name it alone.
            std::vector<step_repeat_op> rows = table();
            step_repeat_op over;
            over.step_name = "pcb";
            over.x = 6000 * kMil;
            over.y = 3000 * kMil;
            rows.push_back(over);
            QVERIFY(Korvo::API::set_step_repeat(kJob, kPanel, rows));
        }
        QWidget host;
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        dialog.receive_SR_Select_point({mil(1500, 1250)});  // array (0, 0)
        wcref::setShiftPressedForTest(1);
        dialog.receive_SR_Select_point({mil(5900, 2900)});  // array (2, 1)
        wctest::PluginSpy spy;
        click(dialog, "pushButton_AlignLeft");
        const QList<wctest::SeenMessage> picks = spy.withCode(20000267);
        QCOMPARE(picks.size(), 1);
        QCOMPARE(picks.front().sender, "Graphic_MenuBar_Step.dll");
        QCOMPARE(picks.front().receiver, "Graphic_View.dll");
        const std::vector<Korvo::API::reply_box> before = engineBoxes();
        const int edits = Korvo::API::get_editop_count(kJob, kPanel);
        wctest::MessageBoxAnswerer answerer;
        dialog.receive_SR_second_Select_point(pick);
        QCOMPARE(answerer.texts(), messages);
        QCOMPARE(Korvo::API::get_editop_count(kJob, kPanel), edits + (aligned > 0 ? 1 : 0));
        const std::vector<Korvo::API::reply_box> after = engineBoxes();
        QCOMPARE(after.size(), before.size());
        int moved = 0;
        for (size_t k = 0; k < after.size(); ++k) {
            moved += after[k].xmin != before[k].xmin;
            QVERIFY(after[k].xmin == before[k].xmin || after[k].xmin == 7200 * kMil);
        }
        QCOMPARE(moved, aligned);
        QCOMPARE(labelText(dialog, "label_SelectedSteps"), "Selected Steps : 2");
    }

    void refusals_data() {
        wctest::columns<QString, QString, QString>("setup", "button", "message");
        row("overlap", "overlap", "pushButton_PackLeft", "There are overlapping pcss selected!");
        row("grid of turned and plain", "all", "pushButton_AlignToGrid",
            "Steps are not aligned properly /n Different steps or step angle/mirror not match");
        row("modify none", "none", "pushButton_ModifyEntry",
            "The Modify Entry operation requires 1 step!");
        row("modify two rows", "all", "pushButton_ModifyEntry",
            "The Modify Entry operation requires only 1 step!");
        row("rotate -1", "all -1", "pushButton_Rotate", "angle must be in range of '0' to '360'!");
        row("rotate 361", "all 361", "pushButton_Rotate",
            "angle must be in range of '0' to '360'!");
        row("rotate 0", "all 0", "pushButton_Rotate", "");
        row("rotate 360", "all 360", "pushButton_Rotate", "");
        row("cycle", "cycle", "pushButton_Add", "illegal step & repeat nesting ");
    }
    // A refused operation says why and writes nothing.
    void refusals() {
        QFETCH(QString, setup);
        QFETCH(QString, button);
        QFETCH(QString, message);
        QWidget host;
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        std::vector<step_repeat_op> rows = table();
        if (setup == "overlap") {
            rows[1].x = rows[0].x + 100 * kMil;  // the column now overlaps the array
        }
        if (setup.startsWith("all") || setup == "overlap") {
            for (step_repeat_op& r : rows) {
                for (int k = 0; k < r.nx * r.ny; ++k) {
                    r.selection.insert(k);
                }
            }
        }
        if (setup == "cycle") {
            // "frame" places the panel; the panel may then not place "frame".
            QVERIFY(Korvo::API::create_step(kJob, "frame", 0));
            step_repeat_op holder;
            holder.step_name = kPanel;
            QVERIFY(Korvo::API::set_step_repeat(kJob, "frame", {holder}));
        }
        QVERIFY(Korvo::API::set_step_repeat(kJob, kPanel, rows));
        dialog.All_Refresh();
        if (setup.startsWith("all ")) {
            dialog.findChild<QLineEdit*>("lineEdit_Angle")->setText(setup.mid(4));
        }
        if (setup == "cycle") {
            dialog.findChild<QComboBox*>("comboBox_Step")->setCurrentText("frame");
        }
        wctest::MessageBoxAnswerer answerer(QMessageBox::Yes);
        wcref::clearEngineCalls();
        click(dialog, button);
        if (message.isEmpty()) {
            QCOMPARE(answerer.count(), 0);
            QCOMPARE(writes(), 1);
            return;
        }
        QCOMPARE(answerer.texts().value(answerer.count() - 1), message);
        QCOMPARE(answerer.last().title, "Information");
        QCOMPARE(writes(), 0);
        QCOMPARE(labelText(dialog, "label_Status"), "Single Select");
    }

    // A new size rewrites the profile, the margins and the table as one edit.
    void panelSizeIsOneEdit() {
        QWidget host;
        wctest::UnitScope unit(&host, 0);
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        QVERIFY(Korvo::API::set_panel_margin(kJob, kPanel, 100, 100, 100, 100));
        dialog.findChild<QLineEdit*>("lineEdit_PanelWidth")->setText("10000");
        dialog.findChild<QLineEdit*>("lineEdit_PanelHeight")->setText("8000");
        dialog.findChild<QCheckBox*>("checkBox_KeepSR")->setChecked(false);
        dialog.findChild<QCheckBox*>("checkBox_KeepMargin")->setChecked(false);
        const int edits = Korvo::API::get_editop_count(kJob, kPanel);
        click(dialog, "pushButton_PanelSize");
        QCOMPARE(Korvo::API::get_editop_count(kJob, kPanel), edits + 1);
        Korvo::API::reply_box box;
        QVERIFY(Korvo::API::profile_box(kJob, kPanel, box));
        QCOMPARE(box.xmax / kMil, 10000.0);
        QCOMPARE(box.ymax / kMil, 8000.0);
        // The instances follow the centre: half the growth, 500 mil each way.
        QCOMPARE(table().front().x / kMil, 1000.0);
        QCOMPARE(table().back().y / kMil, 3000.0);
        std::map<std::string, std::string> attributes;
        Korvo::API::get_step_attributes(kJob, kPanel, attributes);
        QCOMPARE(attributes[".panel_margin_left"], std::string("0"));
    }

    void reduceNestingReadsTheChildTables_data() {
        wctest::columns<bool, QString>("highestOnly", "steps");
        row("all levels", false, QStringLiteral("pcb pcb"));
        row("highest level only", true, QStringLiteral("mid mid"));
    }
    // panel -> "outer" at (1000, 0) -> "mid" twice -> "pcb".
    void reduceNestingReadsTheChildTables() {
        QFETCH(bool, highestOnly);
        QFETCH(QString, steps);
        QVERIFY(Korvo::API::create_step(kJob, "mid", 0));
        QVERIFY(Korvo::API::create_step(kJob, "outer", 0));
        step_repeat_op leaf;
        leaf.step_name = "pcb";
        QVERIFY(Korvo::API::set_step_repeat(kJob, "mid", {leaf}));
        step_repeat_op mids;
        mids.step_name = "mid";
        mids.dx = 3000 * kMil;
        mids.nx = 2;
        QVERIFY(Korvo::API::set_step_repeat(kJob, "outer", {mids}));
        step_repeat_op outer;
        outer.step_name = "outer";
        outer.x = 1000 * kMil;
        outer.selection = {0};
        QVERIFY(Korvo::API::set_step_repeat(kJob, kPanel, {outer}));
        QWidget host;
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        click(dialog, highestOnly ? "pushButton_ReduceHighestLevel" : "pushButton_ReduceNesting");
        QStringList names;
        QList<int> xs;
        for (const step_repeat_op& r : table()) {
            for (int i = 0; i < r.nx; ++i) {
                names << QString::fromStdString(r.step_name);
                xs << int((r.x + i * r.dx) / kMil);
            }
        }
        QCOMPARE(names.join(' '), steps);
        QCOMPARE(xs, (QList<int>{1000, 4000}));
    }

    void exceptionIsGuarded() {
        QWidget host;
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        wctest::MessageBoxAnswerer answerer;
        {
            wctest::ScopedEngineHook hook(
                &wcref::EngineHooks::get_step_repeat,
                [](const std::string&, const std::string&, std::vector<step_repeat_op>&) -> bool {
                    throw std::runtime_error("table unreadable");
                });
            click(dialog, "pushButton_Delete");
        }
        QCOMPARE(answerer.texts(), QStringList{"table unreadable"});
        dialog.receive_SR_Select_point({mil(1500, 1250)});
        QCOMPARE(labelText(dialog, "label_SelectedSteps"), "Selected Steps : 1");
    }

    // Each public on_<Control>_clicked slot finds the command it forwards to.
    void everySlotReachesItsCommand() {
        QWidget host;
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        wctest::MessageBoxAnswerer answerer(QMessageBox::No);
        const QMetaObject* meta = dialog.metaObject();
        for (int k = meta->methodOffset(); k < meta->methodCount(); ++k) {
            const QMetaMethod slot = meta->method(k);
            if (slot.name().startsWith("on_") && slot.name().endsWith("_clicked")) {
                QVERIFY(slot.invoke(&dialog, Qt::DirectConnection));
            }
        }
        for (const QString& text : answerer.texts()) {
            QVERIFY2(!text.startsWith("no step-and-repeat command"), qPrintable(text));
        }
    }

    void changeLanguage_data() {
        wctest::columns<QString, QString>("name", "english");
        row("title", "", "S&R Edit Popup");
        row("button", "pushButton_ReduceNesting", "Reduce S&&R nesting");
        row("button with its own status", "pushButton_PanelSize", "Set Size");
        row("status", "label_Status", "Single Select");
        row("count", "label_SelectedSteps", "Selected Steps : %1");
        row("field label", "label_HorizGap", "Horiz gap:");
        row("unit", "label_HorizGapUnit", "mil");
        row("group", "groupBox_Align", "Align");
        row("radio", "radioButton_StepCenter", "Step Center");
        row("check box", "checkBox_EntryMirror", "Mirror");
        row("label", "label_KeepSR", "Keep S&R :");
    }
    // Every text follows the language, there and back; the count stays in the counting text.
    void changeLanguage() {
        QFETCH(QString, name);
        QFETCH(QString, english);
        QWidget host;
        wctest::UnitScope unit(&host, 0);
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        dialog.receive_SR_Select_point({mil(1500, 1250)});
        QObject* object = name.isEmpty() ? &dialog : wctest::child<QObject>(dialog, name);
        const QString shown = english.contains("%1") ? english.arg(1) : english;
        QCOMPARE(shownText(object), shown);
        {
            wctest::MarkingTranslator brackets("Widget_SR_Edit");
            dialog.change_language();
            QCOMPARE(shownText(object), QLatin1Char('[') + shown + QLatin1Char(']'));
        }
        dialog.change_language();
        QCOMPARE(shownText(object), shown);
    }

    void marginsInNanometres() {
        QWidget host;
        wctest::UnitScope unit(&host, 0);
        Widget_SR_Edit dialog(kJob, kPanel, &host);
        dialog.findChild<QLineEdit*>("lineEdit_MarginLeft")->setText("250");
        dialog.findChild<QLineEdit*>("lineEdit_MarginTop")->setText("10");
        click(dialog, "pushButton_Margins");
        std::map<std::string, std::string> attributes;
        Korvo::API::get_step_attributes(kJob, kPanel, attributes);
        QCOMPARE(attributes[".panel_margin_left"], std::to_string(int(250 * kMil)));
        QCOMPARE(attributes[".panel_margin_top"], std::to_string(int(10 * kMil)));
    }
};

QTEST_MAIN(tst_Widget_SR_Edit)
#include "tst_Widget_SR_Edit.moc"

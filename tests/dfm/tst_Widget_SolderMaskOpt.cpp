#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "DfmDialogKit.h"
#include "MarkingTranslator.h"
#include "UnitScope.h"
#include "analysis/Widget_ResultsViewer.h"
#include "dfm/SolderMaskOptChecks.h"
#include "dfm/Widget_SolderMaskOpt.h"

using namespace Korvo::API;
using dfmtest::child;
using dfmtest::field;
using dfmtest::labelText;
using wctest::row;

namespace {

const char* const kJob = wctest::SampleJobScene::kJob;
using Entries = std::map<int32_t, int32_t>;
using EngineSpy = dfmtest::EngineSpy<solder_mask_DFM_params, solder_mask_DFM_result_map>;
constexpr auto kOperation = &wcref::EngineHooks::solder_mask_DFM_op;

// Three typed fields and the scope chosen, and what the record must hold.
struct Typed {
    int unit;
    QString clearance_opt, flow_add, cut_coverage;
    bool selected;
    int button;
    int clearance_opt_nm, flow_add_nm, cut_coverage_nm, scope;
};

// The record's int fields in declared order, with the field that fills each.
struct IntField {
    int32_t solder_mask_DFM_params::*member;
    const char* key;
};
const IntField kIntFields[] = {
    {&solder_mask_DFM_params::clearance_min, "ClearanceMin"},
    {&solder_mask_DFM_params::clearance_opt, "ClearanceOpt"},
    {&solder_mask_DFM_params::coverage_min, "CoverageMin"},
    {&solder_mask_DFM_params::coverage_opt, "CoverageOpt"},
    {&solder_mask_DFM_params::bridge_size, "BridgeSize"},
    {&solder_mask_DFM_params::max_oversize_clearance, "MaxOversizeClearance"},
    {&solder_mask_DFM_params::intersect_width, "IntersectWidth"},
    {&solder_mask_DFM_params::cut_surplus_coverage, "CutSurplusCoverage"},
    {&solder_mask_DFM_params::cut_surplus_clearance, "CutSurplusClearance"},
    {&solder_mask_DFM_params::smd_surplus_coverage, "SMDSurplusCoverage"},
    {&solder_mask_DFM_params::smd_surplus_clearance, "SMDSurplusClearance"},
    {&solder_mask_DFM_params::bga_surplus_coverage, "BGASurplusCoverage"},
    {&solder_mask_DFM_params::bga_surplus_clearance, "BGASurplusClearance"},
    {&solder_mask_DFM_params::pad_in_surface_clearance, "PadInSurfaceClearance"},
    {&solder_mask_DFM_params::prevent_vertical_flow_add, "PreventVerticalFlowAdd"},
    {&solder_mask_DFM_params::prevent_vertical_flow_delete, "PreventVerticalFlowDel"},
    {&solder_mask_DFM_params::gas_resize_without_drill, "GasResizeNoDrill"},
    {&solder_mask_DFM_params::gas_resize_with_drill, "GasResizeHasDrill"},
    {&solder_mask_DFM_params::partial_and_gas_resize, "PartialGasResize"},
    {&solder_mask_DFM_params::partial_clearance, "PartialClearance"},
};

QString delMessage(const QString& text, const QString& upper) {
    return "Illegal float value\nfloating value for field \"Prevent vertical flow del\" is out of "
           "range: " +
           text + "\nlegal values: from 0 to " + upper;
}

}  // namespace

Q_DECLARE_METATYPE(Typed)
Q_DECLARE_METATYPE(Entries)

class tst_Widget_SolderMaskOpt : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(scene_.open()); }
    void cleanup() { QVERIFY(scene_.close()); }

    void tableToMap_data() {
        wctest::columns<int, wc::RangeRows, Entries>("unit", "rows", "entries");
        using Rows = wc::RangeRows;
        row("empty", 0, Rows{}, Entries{});
        row("half rows left out", 0, Rows{{"4", ""}, {"", "1"}, {"-", "1"}, {"6", "0.5"}},
            Entries{{152400, 12700}});
        row("truncated", 0, Rows{{"0.33333", "-0.33333"}}, Entries{{8466, -8466}});
        row("later range wins", 0, Rows{{"2", "1"}, {"2.0", "3"}}, Entries{{50800, 76200}});
        row("mm", 1, Rows{{"0.5", "0.125"}, {"0.25", "0"}}, Entries{{250000, 0}, {500000, 125000}});
    }
    void tableToMap() {
        QFETCH(int, unit);
        QFETCH(wc::RangeRows, rows);
        QFETCH(Entries, entries);
        wctest::UnitScope scope(scene_.host(), unit);
        QCOMPARE(wc::rangeTableMap(rows, scene_.host()), entries);
    }

    void everyFieldInItsMember() {
        wctest::UnitScope scope(scene_.host(), 0);
        EngineSpy spy(kOperation);
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        // Distinct quarter mils, exact in engine units.
        for (size_t i = 0; i < std::size(kIntFields); ++i) {
            field(dialog, kIntFields[i].key)->setText(QString::number(0.25 * double(i + 1)));
        }
        child<QRadioButton>(dialog, "radioButton_UseExistingMask_No")->click();
        child<QRadioButton>(dialog, "radioButton_FanShave_No")->click();
        child<QRadioButton>(dialog, "radioButton_DoResize_No")->click();
        child<QCheckBox>(dialog, "checkBox_Advance")->click();
        QVERIFY(child<QGroupBox>(dialog, "groupBox_AdvancedSurplus")->isEnabled());
        dialog.on_m_pRunGlobalPB_clicked();

        QCOMPARE(spy.calls(), 1);
        QCOMPARE(spy.layers.back(), (std::vector<std::string>{"top_mask", "bottom_mask"}));
        for (size_t i = 0; i < std::size(kIntFields); ++i) {
            QCOMPARE(spy.last().*kIntFields[i].member, int32_t(6350 * (i + 1)));
        }
        const solder_mask_DFM_params& p = spy.last();
        QVERIFY(p.advanced_surplus && p.is_round && p.apply_to_all && p.use_shaves && p.pth);
        QVERIFY(!p.use_existing_mask && !p.fan_shave && !p.do_resize);
        QVERIFY(p.smd_compensate_ranges.empty());
        QVERIFY(p.gas_ranges.empty());
        QCOMPARE(p.ranges.size(), Korvo::UIAPI::getRanges("SolderMaskOptRanges").size());
        QCOMPARE(p.scope, 0);
        // Left at their defaults by this dialog.
        QVERIFY(p.min_mask_dam == 0 && !p.keep_existing_shaves);
    }

    void recordFromTypedValues_data() {
        QTest::addColumn<Typed>("c");
        // Truncated toward zero, not rounded and not floored.
        row("mil truncated",
            Typed{0, "0.33333", "-0.33333", "7.5", false, 0, 8466, -8466, 190500, 0});
        row("mil at the limits", Typed{0, "200", "-8", "0", false, 1, 5080000, -203200, 0, 1});
        row("mm profile", Typed{1, "5", "-0.125", "0.0625", false, 2, 5000000, -125000, 62500, 2});
        row("mm selected", Typed{1, "0.125", "0.2", "1.5", true, 0, 125000, 200000, 1500000, 3});
        row("mil selected", Typed{0, "5", "0", "0", true, 2, 127000, 0, 0, 3});
    }
    void recordFromTypedValues() {
        QFETCH(Typed, c);
        wctest::UnitScope units(scene_.host(), c.unit);
        EngineSpy spy(kOperation);
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        if (c.unit == 1) {  // small enough to pass the first round
            dfmtest::typeFields(dialog, {"BridgeSize=0", "CoverageMin=0"});
        }
        field(dialog, "ClearanceOpt")->setText(c.clearance_opt);
        field(dialog, "PreventVerticalFlowAdd")->setText(c.flow_add);
        field(dialog, "CutSurplusCoverage")->setText(c.cut_coverage);
        if (c.selected) {
            child<QRadioButton>(dialog, "radioButton_ApplyTo_Selected")->click();
        }
        const char* buttons[] = {"pushButton_RunGlobally", "pushButton_RunScreen",
                                 "pushButton_RunProfile"};
        child<QPushButton>(dialog, buttons[c.button])->click();

        QCOMPARE(spy.calls(), 1);
        QCOMPARE(spy.last().clearance_opt, c.clearance_opt_nm);
        QCOMPARE(spy.last().prevent_vertical_flow_add, c.flow_add_nm);
        QCOMPARE(spy.last().cut_surplus_coverage, c.cut_coverage_nm);
        QCOMPARE(spy.last().apply_to_all, !c.selected);
        QCOMPARE(spy.last().scope, c.scope);
    }

    void checksBeforeTheRun_data() {
        // "key=text" pairs typed; the message, or empty when the run starts.
        wctest::columns<int, QStringList, QString>("unit", "edits", "message");
        row("bridge empty", 0, QStringList{"BridgeSize="},
            "Illegal floating parameter : Empty text-box ! ");
        row("bridge above 20", 0, QStringList{"BridgeSize=20.5"},
            "The Value : 20.5 is outside of (0,20) !");
        row("clearance min negative", 0, QStringList{"ClearanceMin=-1"},
            "The Value : -1 is outside of (0,100) !");
        row("bridge checked before clearance min", 0,
            QStringList{"ClearanceMin=101", "BridgeSize=21"},
            "The Value : 21 is outside of (0,20) !");
        row("coverage min before clearance opt", 0, QStringList{"ClearanceOpt=201", "CoverageMin="},
            "Illegal floating parameter : Empty text-box ! ");
        row("pad in surface at 270", 0, QStringList{"PadInSurfaceClearance=270"}, "");
        row("pad in surface above", 0, QStringList{"PadInSurfaceClearance=270.5"},
            "The Value : 270.5 is outside of (0,270) !");
        // In mm the limits read as whole millimetres: 270 mil (6.858 mm) reads 6.
        row("mm coverage opt", 1, QStringList{"BridgeSize=0", "CoverageMin=0", "CoverageOpt=6.5"},
            "The Value : 6.5 is outside of (0,6) !");
        // Engine units: only the first check admits negatives.
        row("flow add -5 mil passes", 0, QStringList{"PreventVerticalFlowAdd=-5"}, "");
        row("flow add -8.5 mil", 0, QStringList{"PreventVerticalFlowAdd=-8.5"},
            "Illegal float value\nfloating value for field \"Prevent vertical flow add\" is out "
            "of range: -8.5\nlegal values: from 0 to 8");
        row("flow del -1 mil", 0, QStringList{"PreventVerticalFlowDel=-1"}, delMessage("-1", "8"));
        row("partial clearance 9 mil", 0, QStringList{"PartialClearance=9"}, delMessage("9", "8"));
        row("gas no drill negative", 0, QStringList{"GasResizeNoDrill=-0.5"},
            delMessage("-0.5", "8"));
        row("gas has drill at 8 passes", 0, QStringList{"GasResizeHasDrill=8"}, "");
        row("del checked before partial", 0,
            QStringList{"PartialClearance=9", "PreventVerticalFlowDel=-2"}, delMessage("-2", "8"));
        row("mm partial and gas", 1,
            QStringList{"BridgeSize=0", "CoverageMin=0", "PartialGasResize=0.21"},
            delMessage("0.21", "0"));
        row("mm gas no drill 0.2 passes", 1,
            QStringList{"BridgeSize=0", "CoverageMin=0", "GasResizeNoDrill=0.2"}, "");
    }
    void checksBeforeTheRun() {
        QFETCH(int, unit);
        QFETCH(QStringList, edits);
        QFETCH(QString, message);
        wctest::UnitScope scope(scene_.host(), unit);
        EngineSpy spy(kOperation);
        wctest::PluginSpy messages;
        wctest::MessageBoxAnswerer answerer;
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        dfmtest::typeFields(dialog, edits);
        dialog.on_m_pRunGlobalPB_clicked();
        dfmtest::verifyChecked(answerer, spy.calls(), message);
        QCOMPARE(messages.count(), message.isEmpty() ? 2 : 0);
        QCOMPARE(labelText(dialog, "label_Time") == "No results", !message.isEmpty());
    }

    void noLayers_data() {
        QTest::addColumn<QString>("expression");
        row("empty field", "");
        row("no such layers", ".type=solder_mask&context=misc");
    }
    void noLayers() {
        QFETCH(QString, expression);
        EngineSpy spy(kOperation);
        wctest::PluginSpy messages;
        wctest::MessageBoxAnswerer answerer;
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        dialog.setLayerText(expression);
        // An engine value out of range is not reached: the layers come first.
        field(dialog, "PartialClearance")->setText("9");
        dialog.on_m_pRunGlobalPB_clicked();
        dfmtest::verifyNoRun(dialog, spy.calls(), messages);
        QCOMPARE(answerer.count(), 0);
    }

    // However the run ends (stopped, the engine failing or throwing), the host is told twice, a
    // worker's exception is logged, not shown, and what the engine produced is shown.
    void runEnds_data() {
        wctest::columns<int, bool>("mode", "stopped");
        row("engine succeeds", int(EngineSpy::Succeed), false);
        row("engine fails", int(EngineSpy::Fail), false);
        row("engine throws", int(EngineSpy::Throw), false);
        row("stopped", int(EngineSpy::Succeed), true);
    }
    void runEnds() {
        QFETCH(int, mode);
        QFETCH(bool, stopped);
        EngineSpy spy(kOperation, EngineSpy::Mode(mode));
        std::vector<solder_mask_DFM_op_result>& bridges = spy.answer[smo_bridge_removed];
        bridges.resize(2);
        bridges[0].red.resize(1);
        bridges[1].yellow.resize(2);
        spy.wait_for_stop = stopped;
        wctest::PluginSpy messages;
        wctest::MessageBoxAnswerer answerer;
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        dfmtest::Stopper stopper(dialog, stopped);
        dialog.on_m_pRunGlobalPB_clicked();
        QCOMPARE(stopper.seen().contains("SolderMask opt terminated|" + dfmtest::kRed), stopped);
        QCOMPARE(spy.calls(), 1);
        dfmtest::verifyRunEnded(dialog, messages, answerer, "2 layers were processed");
        QVERIFY(dialog.hasResults());
        QCOMPARE(labelText(dialog, "label_Summary"), "!!");
        QCOMPARE(labelText(dialog, "label_Changes"), "Changes: 3");
        dialog.on_m_pViewResultPB_clicked();
        auto* viewer = scene_.host()->findChild<Widget_ResultsViewer*>();
        QVERIFY(viewer != nullptr);
        QCOMPARE(viewer->mode(), 8);
        QCOMPARE(dialog.result().at(smo_bridge_removed).size(), size_t(2));
    }

    void parameterSetRoundTrip() {
        wctest::UnitScope scope(scene_.host(), 0);
        EngineSpy spy(kOperation);
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        auto* smd = child<QTableWidget>(dialog, "tableWidget_SMDCompensateRange");
        for (int i = 0; i < 3; ++i) {
            child<QPushButton>(dialog, "pushButton_AddSMDRow")->click();
        }
        qobject_cast<QLineEdit*>(smd->cellWidget(0, 0))->setText("4");
        qobject_cast<QLineEdit*>(smd->cellWidget(0, 1))->setText("1");
        qobject_cast<QLineEdit*>(smd->cellWidget(1, 0))->setText("6");
        qobject_cast<QLineEdit*>(smd->cellWidget(1, 1))->setText("2");
        child<QPushButton>(dialog, "pushButton_DeleteSMDRow")->click();
        dialog.setgastablerow({{"3", "0.5"}});
        field(dialog, "BridgeSize")->setText("7");
        child<QRadioButton>(dialog, "radioButton_IsRound_No")->click();
        child<QCheckBox>(dialog, "checkBox_Advance")->click();

        dfmtest::saveAs(dialog, "mine");

        const wc::RangeRows saved_smd = dialog.smdCompensateRows();
        QCOMPARE(saved_smd, (wc::RangeRows{{"4", "1"}, {"6", "2"}}));
        dialog.setTableRow({});
        dialog.setgastablerow({{"9", "9"}, {"8", "8"}});
        field(dialog, "BridgeSize")->setText("1");
        child<QRadioButton>(dialog, "radioButton_IsRound_Yes")->click();
        child<QCheckBox>(dialog, "checkBox_Advance")->click();

        dialog.setErfValues("mine");
        QCOMPARE(field(dialog, "ERF")->text(), "mine");
        QCOMPARE(field(dialog, "BridgeSize")->text(), "7");
        QVERIFY(child<QRadioButton>(dialog, "radioButton_IsRound_No")->isChecked());
        QVERIFY(child<QGroupBox>(dialog, "groupBox_AdvancedSurplus")->isEnabled());
        QCOMPARE(dialog.smdCompensateRows(), saved_smd);
        QCOMPARE(dialog.gasRows(), (wc::RangeRows{{"3", "0.5"}}));
        // The restored cells are editors again and reach the record.
        QVERIFY(qobject_cast<QLineEdit*>(smd->cellWidget(1, 1)) != nullptr);
        dialog.on_m_pRunGlobalPB_clicked();
        QCOMPARE(spy.last().smd_compensate_ranges,
                 (std::map<int32_t, int32_t>{{101600, 25400}, {152400, 50800}}));
        QCOMPARE(spy.last().gas_ranges, (std::map<int32_t, int32_t>{{76200, 12700}}));
        QCOMPARE(spy.last().bridge_size, 177800);
        QVERIFY(!spy.last().is_round && spy.last().advanced_surplus);
    }

    void unitChangeConvertsFieldsAndCells() {
        wctest::UnitScope scope(scene_.host(), 0);
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        dialog.setgastablerow({{"8", ""}});
        QCOMPARE(field(dialog, "BridgeSize")->text(), "4.00");
        scope.change(1);
        dialog.change_units();
        QCOMPARE(field(dialog, "BridgeSize")->text(), "0.1016");
        QCOMPARE(field(dialog, "CutSurplusClearance")->text(), "0.0127");
        QCOMPARE(dialog.gasRows(), (wc::RangeRows{{"0.2032", ""}}));
        QCOMPARE(labelText(dialog, "label_BridgeSizeUnit"), "mm");
    }

    // The form's texts follow the language in the dialog's own translation context.
    void changeLanguage_data() {
        wctest::columns<QString, QString>("name", "text");
        row("choice", "label_ApplyTo", "[Apply to]");
        row("answer", "radioButton_IsRound_Yes", "[Yes]");
        row("page header", "label_OptHeader", "[Opt :]");
        row("advance", "checkBox_Advance", "[Advance]");
    }
    void changeLanguage() {
        QFETCH(QString, name);
        QFETCH(QString, text);
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        wctest::MarkingTranslator marking("Widget_SolderMaskOpt");
        dialog.change_language();
        QCOMPARE(child<QObject>(dialog, name)->property("text").toString(), text);
        QCOMPARE(child<QTabWidget>(dialog, "tabWidget_Pages")->tabText(1), "[Advanced]");
    }

private:
    wctest::SampleJobScene scene_;
};

QTEST_MAIN(tst_Widget_SolderMaskOpt)
#include "tst_Widget_SolderMaskOpt.moc"

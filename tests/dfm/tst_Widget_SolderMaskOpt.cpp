#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QtTest>

#include <mutex>
#include <stdexcept>
#include <thread>

#include "DataRows.h"
#include "MessageBoxAnswerer.h"
#include "PluginSpy.h"
#include "ReferenceEngine.h"
#include "SampleJobScene.h"
#include "ScopedEngineHook.h"
#include "UnitScope.h"
#include "ZeProgressDialog.h"
#include "analysis/Widget_ResultsViewer.h"
#include "dfm/SolderMaskOptChecks.h"
#include "dfm/Widget_SolderMaskOpt.h"
#include "frame/BackgroundRun.h"
#include "frame/RunControls.h"

using namespace Korvo::API;
using wctest::row;

namespace {

const char* const kJob = wctest::SampleJobScene::kJob;
using Entries = QList<QPair<int, int>>;
const QString kGreen = wc::RunControls::viewStyle(wc::RunControls::ViewState::Fresh);
const QString kRed = wc::RunControls::viewStyle(wc::RunControls::ViewState::Stopped);

template <typename T = QWidget>
T* child(QWidget& dialog, const QString& name) {
    T* found = dialog.findChild<T*>(name);
    if (found == nullptr) {
        qFatal("no child %s", qPrintable(name));
    }
    return found;
}

void type(QWidget& dialog, const QString& key, const QString& text) {
    child<QLineEdit>(dialog, QStringLiteral("lineEdit_") + key)->setText(text);
}

QString text(QWidget& dialog, const char* label) {
    return child<QLabel>(dialog, QString::fromLatin1(label))->text();
}

// Small mm values that pass the first round, so that a row reaches the engine-unit checks.
void passFirstChecksInMm(QWidget& dialog) {
    type(dialog, "BridgeSize", "0");
    type(dialog, "CoverageMin", "0");
}

// What the engine was given; the hook runs on the worker, the test reads after the run.
struct EngineSpy {
    enum Mode { Succeed, Fail, Throw, WaitForStop };
    std::mutex lock;
    Mode mode = Succeed;
    int calls = 0;
    std::vector<std::string> layers;
    solder_mask_DFM_params params;
    solder_mask_DFM_result_map answer;

    auto hook() {
        return [this](const std::string&, const std::string&, const std::vector<std::string>& l,
                      solder_mask_DFM_params p, solder_mask_DFM_result_map& result,
                      Korvo::COMMON::progress_value<void>* progress) {
            {
                std::lock_guard<std::mutex> guard(lock);
                ++calls;
                layers = l;
                params = p;
            }
            if (mode == Throw) {
                throw std::runtime_error("engine broke");
            }
            if (mode == WaitForStop) {
                while (!progress->is_stop_requested()) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(2));
                }
                // Winding down, as an engine finishing the feature at hand.
                std::this_thread::sleep_for(std::chrono::milliseconds(150));
            }
            result = answer;
            return mode != Fail;
        };
    }
};

solder_mask_DFM_op_result hits(int red, int yellow, int green) {
    solder_mask_DFM_op_result record;
    record.red.resize(static_cast<size_t>(red));
    record.yellow.resize(static_cast<size_t>(yellow));
    record.green.resize(static_cast<size_t>(green));
    return record;
}

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

class tst_Widget_SolderMaskOpt : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(scene_.open()); }
    void cleanup() { QVERIFY(scene_.close()); }

    // ---- without a window --------------------------------------------------------------------

    void tableToMap_data() {
        QTest::addColumn<int>("unit");
        QTest::addColumn<wc::RangeRows>("rows");
        QTest::addColumn<Entries>("entries");
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
        std::map<int32_t, int32_t> expected;
        for (const auto& entry : entries) {
            expected[entry.first] = entry.second;
        }
        QCOMPARE(wc::rangeTableMap(rows, scene_.host()), expected);
    }

    // ---- the record ---------------------------------------------------------------------------

    void everyFieldInItsMember() {
        wctest::UnitScope scope(scene_.host(), 0);
        EngineSpy spy;
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::solder_mask_DFM_op, spy.hook());
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        // Distinct quarter mils, exact in engine units.
        for (size_t i = 0; i < std::size(kIntFields); ++i) {
            type(dialog, kIntFields[i].key, QString::number(0.25 * double(i + 1)));
        }
        child<QRadioButton>(dialog, "radioButton_UseExistingMask_No")->click();
        child<QRadioButton>(dialog, "radioButton_FanShave_No")->click();
        child<QRadioButton>(dialog, "radioButton_DoResize_No")->click();
        child<QCheckBox>(dialog, "checkBox_Advance")->click();
        QVERIFY(child<QGroupBox>(dialog, "groupBox_AdvancedSurplus")->isEnabled());
        dialog.on_m_pRunGlobalPB_clicked();

        QCOMPARE(spy.calls, 1);
        QCOMPARE(spy.layers, (std::vector<std::string>{"top_mask", "bottom_mask"}));
        for (size_t i = 0; i < std::size(kIntFields); ++i) {
            QCOMPARE(spy.params.*kIntFields[i].member, int32_t(6350 * (i + 1)));
        }
        const solder_mask_DFM_params& p = spy.params;
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
        QTest::addColumn<int>("unit");
        QTest::addColumn<QString>("clearance_opt");
        QTest::addColumn<QString>("flow_add");
        QTest::addColumn<QString>("cut_coverage");
        QTest::addColumn<wc::RangeRows>("smd_rows");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("clearance_opt_nm");
        QTest::addColumn<int>("flow_add_nm");
        QTest::addColumn<int>("cut_coverage_nm");
        QTest::addColumn<int>("smd_range_nm");
        QTest::addColumn<int>("scope");
        // Truncated toward zero, not rounded and not floored.
        row("mil truncated", 0, "0.33333", "-0.33333", "7.5", wc::RangeRows{{"4", "1"}}, false, 0,
            8466, -8466, 190500, 101600, 0);
        row("mil at the limits", 0, "200", "-8", "0", wc::RangeRows{}, false, 1, 5080000, -203200,
            0, -1, 1);
        row("mm profile", 1, "5", "-0.125", "0.0625", wc::RangeRows{{"0.5", "0.25"}}, false, 2,
            5000000, -125000, 62500, 500000, 2);
        row("mm selected", 1, "0.125", "0.2", "1.5", wc::RangeRows{}, true, 0, 125000, 200000,
            1500000, -1, 3);
        row("mil selected", 0, "5", "0", "0", wc::RangeRows{}, true, 2, 127000, 0, 0, -1, 3);
    }
    void recordFromTypedValues() {
        QFETCH(int, unit);
        QFETCH(QString, clearance_opt);
        QFETCH(QString, flow_add);
        QFETCH(QString, cut_coverage);
        QFETCH(wc::RangeRows, smd_rows);
        QFETCH(bool, selected);
        QFETCH(int, button);
        QFETCH(int, clearance_opt_nm);
        QFETCH(int, flow_add_nm);
        QFETCH(int, cut_coverage_nm);
        QFETCH(int, smd_range_nm);
        QFETCH(int, scope);
        wctest::UnitScope units(scene_.host(), unit);
        EngineSpy spy;
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::solder_mask_DFM_op, spy.hook());
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        if (unit == 1) {
            passFirstChecksInMm(dialog);
        }
        type(dialog, "ClearanceOpt", clearance_opt);
        type(dialog, "PreventVerticalFlowAdd", flow_add);
        type(dialog, "CutSurplusCoverage", cut_coverage);
        dialog.setTableRow(smd_rows);
        if (selected) {
            child<QRadioButton>(dialog, "radioButton_ApplyTo_Selected")->click();
        }
        const char* buttons[] = {"pushButton_RunGlobally", "pushButton_RunScreen",
                                 "pushButton_RunProfile"};
        child<QPushButton>(dialog, buttons[button])->click();

        QCOMPARE(spy.calls, 1);
        QCOMPARE(spy.params.clearance_opt, clearance_opt_nm);
        QCOMPARE(spy.params.prevent_vertical_flow_add, flow_add_nm);
        QCOMPARE(spy.params.cut_surplus_coverage, cut_coverage_nm);
        QCOMPARE(spy.params.apply_to_all, !selected);
        QCOMPARE(spy.params.scope, scope);
        QCOMPARE(int(spy.params.smd_compensate_ranges.size()), smd_range_nm < 0 ? 0 : 1);
        if (smd_range_nm >= 0) {
            QCOMPARE(spy.params.smd_compensate_ranges.begin()->first, smd_range_nm);
        }
        QVERIFY(spy.params.gas_ranges.empty());
    }

    // ---- checks before the run ----------------------------------------------------------------

    void checksBeforeTheRun_data() {
        QTest::addColumn<int>("unit");
        QTest::addColumn<QStringList>("edits");  // "Key=text", typed in order
        QTest::addColumn<QString>("message");    // empty: the run starts
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
        row("mm bridge just under 20 mil passes", 1, QStringList{"BridgeSize=0.5"}, "");
        row("mm bridge just over 20 mil", 1, QStringList{"BridgeSize=0.51"},
            "The Value : 0.51 is outside of (0,0.508) !");
        row("mm coverage opt", 1, QStringList{"BridgeSize=0", "CoverageMin=0", "CoverageOpt=6.9"},
            "The Value : 6.9 is outside of (0,6.858) !");
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
            delMessage("0.21", "0.203"));
        row("mm gas no drill 0.2 passes", 1,
            QStringList{"BridgeSize=0", "CoverageMin=0", "GasResizeNoDrill=0.2"}, "");
    }
    void checksBeforeTheRun() {
        QFETCH(int, unit);
        QFETCH(QStringList, edits);
        QFETCH(QString, message);
        wctest::UnitScope scope(scene_.host(), unit);
        EngineSpy spy;
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::solder_mask_DFM_op, spy.hook());
        wctest::PluginSpy messages;
        wctest::MessageBoxAnswerer answerer;
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        for (const QString& edit : edits) {
            type(dialog, edit.section('=', 0, 0), edit.section('=', 1));
        }
        dialog.on_m_pRunGlobalPB_clicked();
        if (message.isEmpty()) {
            QCOMPARE(answerer.count(), 0);
            QCOMPARE(spy.calls, 1);
            QCOMPARE(messages.count(), 2);
        } else {
            QCOMPARE(answerer.count(), 1);
            QCOMPARE(answerer.last().title, "Information");
            QCOMPARE(answerer.last().text, message);
            QCOMPARE(spy.calls, 0);
            QCOMPARE(messages.count(), 0);
            QCOMPARE(text(dialog, "label_Time"), "No results");
        }
    }

    void noLayers_data() {
        QTest::addColumn<QString>("expression");
        row("empty field", "");
        row("no such layers", ".type=solder_mask&context=misc");
    }
    void noLayers() {
        QFETCH(QString, expression);
        EngineSpy spy;
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::solder_mask_DFM_op, spy.hook());
        wctest::PluginSpy messages;
        wctest::MessageBoxAnswerer answerer;
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        dialog.setLayerText(expression);
        // An engine value out of range is not reached: the layers come first.
        type(dialog, "PartialClearance", "9");
        dialog.on_m_pRunGlobalPB_clicked();
        QCOMPARE(text(dialog, "label_Status"), "No layers were processed");
        QCOMPARE(spy.calls, 0);
        QCOMPARE(messages.count(), 0);
        QCOMPARE(answerer.count(), 0);
        QVERIFY(!dialog.hasResults());
    }

    // ---- the run ------------------------------------------------------------------------------

    void cancelThenCompletion() {
        EngineSpy spy;
        spy.mode = EngineSpy::WaitForStop;
        spy.answer[smo_bridge_removed] = {hits(1, 0, 0), hits(0, 2, 0)};
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::solder_mask_DFM_op, spy.hook());
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        QLabel* status = child<QLabel>(dialog, "label_Status");
        QPushButton* view = child<QPushButton>(dialog, "pushButton_View");
        QList<QPair<QString, QString>> seen;
        QTimer stopper;
        QObject::connect(&stopper, &QTimer::timeout, [&] {
            const QPair<QString, QString> now{status->text(), view->styleSheet()};
            if (seen.isEmpty() || seen.last() != now) {
                seen.append(now);
            }
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (auto* window = qobject_cast<ZeProgressDialog*>(widget)) {
                    window->requestStop();
                }
            }
        });
        stopper.start(5);
        dialog.on_m_pRunGlobalPB_clicked();
        stopper.stop();

        QVERIFY2(seen.contains({"SolderMask opt terminated", kRed}), qPrintable(seen.last().first));
        QCOMPARE(status->text(), "2 layers were processed");
        QCOMPARE(view->styleSheet(), kGreen);
        QVERIFY(text(dialog, "label_Time").contains(" - "));
        QVERIFY(dialog.hasResults());
        QCOMPARE(text(dialog, "label_Summary"), "!!");
        QCOMPARE(text(dialog, "label_Changes"), "Changes: 3");

        dialog.on_m_pViewResultPB_clicked();
        auto* viewer = scene_.host()->findChild<Widget_ResultsViewer*>();
        QVERIFY(viewer != nullptr);
        QCOMPARE(viewer->mode(), 8);
        QCOMPARE(dialog.result().at(smo_bridge_removed).size(), size_t(2));
    }

    void notifications_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("has_results");
        row("engine succeeds", int(EngineSpy::Succeed), true);
        row("engine fails", int(EngineSpy::Fail), true);
        row("engine throws", int(EngineSpy::Throw), false);
    }
    void notifications() {
        QFETCH(int, mode);
        QFETCH(bool, has_results);
        EngineSpy spy;
        spy.mode = EngineSpy::Mode(mode);
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::solder_mask_DFM_op, spy.hook());
        wctest::PluginSpy messages;
        wctest::MessageBoxAnswerer answerer;
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        dialog.on_m_pRunGlobalPB_clicked();
        QCOMPARE(spy.calls, 1);
        QCOMPARE(messages.codes(), (QList<int>{20002401, 20002400}));
        const QString receivers[] = {"Matrix.dll", "Graphic_JobList.dll"};
        const QString kinds[] = {"Matrix", "Graphic"};
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(messages.messages()[i].sender, "CAM_PNData_View.dll");
            QCOMPARE(messages.messages()[i].receiver, receivers[i]);
            QCOMPARE(messages.messages()[i].values.value("DstType").toString(), kinds[i]);
        }
        // A worker's exception is logged, not shown.
        QCOMPARE(answerer.count(), 0);
        QCOMPARE(text(dialog, "label_Status"), "2 layers were processed");
        QCOMPARE(dialog.hasResults(), has_results);
    }

    // ---- parameter sets and units -------------------------------------------------------------

    void parameterSetRoundTrip() {
        wctest::UnitScope scope(scene_.host(), 0);
        EngineSpy spy;
        wctest::ScopedEngineHook hook(&wcref::EngineHooks::solder_mask_DFM_op, spy.hook());
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        QSignalSpy named(&dialog, SIGNAL(send_Sel_Template_Name(QString)));
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
        type(dialog, "BridgeSize", "7");
        child<QRadioButton>(dialog, "radioButton_IsRound_No")->click();
        child<QCheckBox>(dialog, "checkBox_Advance")->click();

        dialog.on_m_pSaveAsPB_clicked();
        auto* name_dialog = dialog.findChild<QInputDialog*>("templateNameDialog");
        QVERIFY(name_dialog != nullptr);
        name_dialog->setTextValue("mine");
        name_dialog->accept();
        QCOMPARE(named.count(), 1);
        QCOMPARE(named.at(0).at(0).toString(), "mine");

        const wc::RangeRows saved_smd = dialog.smdCompensateRows();
        QCOMPARE(saved_smd, (wc::RangeRows{{"4", "1"}, {"6", "2"}}));
        dialog.setTableRow({});
        dialog.setgastablerow({{"9", "9"}, {"8", "8"}});
        type(dialog, "BridgeSize", "1");
        child<QRadioButton>(dialog, "radioButton_IsRound_Yes")->click();
        child<QCheckBox>(dialog, "checkBox_Advance")->click();

        dialog.setErfValues("mine");
        QCOMPARE(child<QLineEdit>(dialog, "lineEdit_ERF")->text(), "mine");
        QCOMPARE(child<QLineEdit>(dialog, "lineEdit_BridgeSize")->text(), "7");
        QVERIFY(child<QRadioButton>(dialog, "radioButton_IsRound_No")->isChecked());
        QVERIFY(child<QGroupBox>(dialog, "groupBox_AdvancedSurplus")->isEnabled());
        QCOMPARE(dialog.smdCompensateRows(), saved_smd);
        QCOMPARE(dialog.gasRows(), (wc::RangeRows{{"3", "0.5"}}));
        // The restored cells are editors again and reach the record.
        QVERIFY(qobject_cast<QLineEdit*>(smd->cellWidget(1, 1)) != nullptr);
        dialog.on_m_pRunGlobalPB_clicked();
        QCOMPARE(spy.params.smd_compensate_ranges,
                 (std::map<int32_t, int32_t>{{101600, 25400}, {152400, 50800}}));
        QCOMPARE(spy.params.gas_ranges, (std::map<int32_t, int32_t>{{76200, 12700}}));
        QCOMPARE(spy.params.bridge_size, 177800);
        QVERIFY(!spy.params.is_round && spy.params.advanced_surplus);
    }

    void unitChangeConvertsFieldsAndCells() {
        wctest::UnitScope scope(scene_.host(), 0);
        Widget_SolderMaskOpt dialog(kJob, "pcb", scene_.host());
        dialog.setgastablerow({{"8", ""}});
        QCOMPARE(child<QLineEdit>(dialog, "lineEdit_BridgeSize")->text(), "4.00");
        scope.change(1);
        dialog.change_units();
        QCOMPARE(child<QLineEdit>(dialog, "lineEdit_BridgeSize")->text(), "0.1016");
        QCOMPARE(child<QLineEdit>(dialog, "lineEdit_CutSurplusClearance")->text(), "0.0127");
        QCOMPARE(dialog.gasRows(), (wc::RangeRows{{"0.2032", ""}}));
        QCOMPARE(text(dialog, "label_BridgeSizeUnit"), "mm");
    }

private:
    wctest::SampleJobScene scene_;
};

QTEST_MAIN(tst_Widget_SolderMaskOpt)
#include "tst_Widget_SolderMaskOpt.moc"

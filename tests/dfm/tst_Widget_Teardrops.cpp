#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>
#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "DfmDialogKit.h"
#include "UnitScope.h"
#include "analysis/Widget_ResultsViewer.h"
#include "dfm/Widget_Teardrops.h"

using namespace Korvo::API;
using dfmtest::child;
using dfmtest::field;
using wctest::row;

namespace {

const char* const kJob = wctest::SampleJobScene::kJob;
using EngineSpy = dfmtest::EngineSpy<teardrop_create_DFM_op_params, teardrop_result_map>;
constexpr auto kOperation = &wcref::EngineHooks::teardrop_create_DFM_op;

// Length fields in screen order.
const QStringList kLengths = {"AnnRingMin",    "DrillSizeMin",  "DrillSizeMax",
                              "TraceWidthMin", "TraceWidthMax", "CuSpacing",
                              "DrillSpacing",  "OvalExcess",    "Extend"};

}  // namespace

class tst_Widget_Teardrops : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(scene_.open()); }
    void cleanup() { QVERIFY(scene_.close()); }

    void windowAsTheHostExpects() {
        wctest::UnitScope unit(scene_.host(), 0);
        Widget_Teardrops dialog(kJob, "pcb", scene_.host());
        QCOMPARE(dialog.windowTitle(), "Advanced Teardrop Creation");
        QCOMPARE(child<QCheckBox>(dialog, "checkBox_UndrilledPads")->text(), "UNndrilled Pads");
        QCOMPARE(dfmtest::labelText(dialog, "label_ArcAngleHint"), "(0-20)");
        QCOMPARE(field(dialog, "Layer")->text(), ".type=signal&context=board");
        QStringList defaults;
        for (const QString& key : kLengths) {
            defaults.append(field(dialog, key)->text());
        }
        QCOMPARE(defaults, QStringList({"5.00", "0.00", "80.00", "0.00", "15.00", "5.00", "11.00",
                                        "3.00", "11.00"}));
        QCOMPARE(dialog.getDefaultLayerList(), QStringList({"top", "l3", "bottom"}));
    }

    // Every length typed distinct, so that a field landing in the wrong member shows.
    void recordFromTypedValues_data() {
        wctest::columns<int, QStringList, QList<int>, bool>("unit", "lengths", "expected_nm",
                                                            "options");
        row("mil", 0, QStringList{"1", "2", "3", "4", "5", "6", "7", "8", "9"},
            QList<int>{25400, 50800, 76200, 101600, 127000, 152400, 177800, 203200, 228600}, false);
        // 3.33333 mil is 84666.58 nm: truncated, not rounded.
        row("mil truncated", 0,
            QStringList{"3.33333", "0", "80", "0", "15", "5", "11", "3", "0.00003"},
            QList<int>{84666, 0, 2032000, 0, 381000, 127000, 279400, 76200, 0}, true);
        row("mm", 1, QStringList{"0", "1.5", "5", "0.25", "2", "0", "6", "0.5", "12.5"},
            QList<int>{0, 1500000, 5000000, 250000, 2000000, 0, 6000000, 500000, 12500000}, true);
    }
    void recordFromTypedValues() {
        QFETCH(int, unit);
        QFETCH(QStringList, lengths);
        QFETCH(QList<int>, expected_nm);
        QFETCH(bool, options);
        wctest::UnitScope scope(scene_.host(), unit);
        EngineSpy spy(kOperation);
        wctest::MessageBoxAnswerer answerer;
        Widget_Teardrops dialog(kJob, "pcb", scene_.host());
        for (int i = 0; i < kLengths.size(); ++i) {
            field(dialog, kLengths[i])->setText(lengths[i]);
        }
        if (options) {
            field(dialog, "LineWidthRatio")->setText("0.75");
            child<QComboBox>(dialog, "comboBox_Type")->setCurrentIndex(4);
            field(dialog, "ArcAngle")->setText("20");
            child<QCheckBox>(dialog, "checkBox_DrilledPads")->setChecked(false);
            child<QRadioButton>(dialog, "radioButton_DeleteOld_Skip")->setChecked(true);
            child<QRadioButton>(dialog, "radioButton_ApplyTo_Selected")->setChecked(true);
            child<QRadioButton>(dialog, "radioButton_WorkMode_Report")->setChecked(true);
            child<QRadioButton>(dialog, "radioButton_ConsiderSolderMask_Yes")->setChecked(true);
        }
        field(dialog, "Layer")->setText("top;bottom");
        dialog.on_m_pScreenOnlyPB_clicked();
        QCOMPARE(answerer.texts(), QStringList());
        QCOMPARE(spy.calls(), 1);
        const teardrop_create_DFM_op_params& p = spy.last();
        const QList<int> got = {p.annular_ring_min, p.drill_size_min,         p.drill_size_max,
                                p.trace_width_min,  p.trace_width_max,        p.copper_spacing,
                                p.drill_spacing,    p.oval_excess_over_trace, p.extend};
        QCOMPARE(got, expected_nm);
        QCOMPARE(p.drilled_pads, !options);
        QCOMPARE(p.undrilled_pads, true);
        QCOMPARE(p.line_width_ratio, options ? 0.75 : 0.5);
        QCOMPARE(p.teardrop_type, options ? 4 : 0);
        QCOMPARE(p.arc_angle_given, options);
        QCOMPARE(p.arc_angle, options ? 20 : 0);
        QCOMPARE(p.delete_old_teardrops, options ? 2 : 0);
        // "Selected" wins over the pressed button.
        QCOMPARE(p.scope, options ? 3 : 1);
        QCOMPARE(p.report_only, options);
        QCOMPARE(p.consider_solder_mask, options);
        QCOMPARE(p.ranges.size(), Korvo::UIAPI::getRanges("TeardropsRanges").size());
        QCOMPARE(spy.layers.front(), (std::vector<std::string>{"top", "bottom"}));
    }

    void checksBeforeTheRun_data() {
        // "key=text" pairs typed; the message, or empty when the run starts.
        wctest::columns<int, QStringList, QString>("unit", "typed", "message");
        row("twenty at its edge", 0, QStringList{"AnnRingMin=20", "CuSpacing=20"}, "");
        row("ring above", 0, QStringList{"AnnRingMin=20.01"},
            "The Value : 20.01 is outside of (0,20) !");
        row("ring below", 0, QStringList{"AnnRingMin=-0.5"},
            "The Value : -0.5 is outside of (0,20) !");
        row("drill min edges", 0, QStringList{"DrillSizeMin=100.5"},
            "The Value : 100.5 is outside of (0,100) !");
        row("drill max", 0, QStringList{"DrillSizeMax=200.1"},
            "The Value : 200.1 is outside of (0,200) !");
        row("drill spacing edge", 0, QStringList{"DrillSpacing=270"}, "");
        row("drill spacing above", 0, QStringList{"DrillSpacing=271"},
            "The Value : 271 is outside of (0,270) !");
        // Copper spacing is checked before drill size max, the other way round on screen.
        row("order", 0, QStringList{"DrillSizeMax=201", "CuSpacing=21", "DrillSpacing=300"},
            "The Value : 21 is outside of (0,20) !");
        row("ring first", 0, QStringList{"DrillSizeMin=101", "AnnRingMin=25"},
            "The Value : 25 is outside of (0,20) !");
        // In mm the limits read as whole millimetres: 20 mil reads 0, 200 mil (5.08 mm) 5.
        row("mm ring reads 0", 1, QStringList{"AnnRingMin=0.1"},
            "The Value : 0.1 is outside of (0,0) !");
        row("mm drill max at its limit", 1, QStringList{"DrillSizeMax=5"}, "");
        row("mm drill max over", 1, QStringList{"DrillSizeMax=5.05"},
            "The Value : 5.05 is outside of (0,5) !");
        row("empty length", 0, QStringList{"Extend="},
            "Illegal floating parameter : Empty text-box ! ");
        row("empty ratio", 0, QStringList{"LineWidthRatio="},
            "Illegal floating parameter : Empty text-box ! ");
        row("empty before range", 0, QStringList{"AnnRingMin=99", "TraceWidthMax="},
            "Illegal floating parameter : Empty text-box ! ");
        row("unchecked length beyond the record", 0, QStringList{"Extend=90000"},
            "The Value : 90000 is outside of (0,80000) !");
        row("empty arc angle is fine", 0, QStringList{"ArcAngle="}, "");
        row("half-typed", 0, QStringList{"CuSpacing=-"}, "Illegal floating parameter : -");
    }
    void checksBeforeTheRun() {
        QFETCH(int, unit);
        QFETCH(QStringList, typed);
        QFETCH(QString, message);
        wctest::UnitScope scope(scene_.host(), unit);
        EngineSpy spy(kOperation);
        wctest::MessageBoxAnswerer answerer;
        wctest::PluginSpy plugins;
        Widget_Teardrops dialog(kJob, "pcb", scene_.host());
        if (unit == 1) {
            dfmtest::typeFields(dialog, {"AnnRingMin=0", "CuSpacing=0"});
        }
        dfmtest::typeFields(dialog, typed);
        dialog.on_m_pRunGlobalPB_clicked();
        dfmtest::verifyChecked(answerer, spy.calls(), message);
        QCOMPARE(plugins.count(), message.isEmpty() ? 2 : 0);
    }

    // However the run ends (stopped, the engine failing or throwing), what the engine produced
    // is kept and shown, the host is told twice, a worker's exception is logged, not shown, and
    // any parameter change makes the shown result stale.
    void runEnds_data() {
        wctest::columns<int, bool, QString, QString>("mode", "stopped", "layers", "status");
        row("engine succeeds", int(EngineSpy::Succeed), false, "top", "1 layers were processed");
        row("engine fails", int(EngineSpy::Fail), false, "top", "1 layers were processed");
        row("engine throws", int(EngineSpy::Throw), false, "top", "1 layers were processed");
        row("stopped", int(EngineSpy::Succeed), true, "top;l3;bottom", "3 layers were processed");
    }
    void runEnds() {
        QFETCH(int, mode);
        QFETCH(bool, stopped);
        QFETCH(QString, layers);
        QFETCH(QString, status);
        EngineSpy spy(kOperation, EngineSpy::Mode(mode));
        spy.answer[tdi_created_drilled].red.resize(2);
        spy.wait_for_stop = stopped;
        wctest::MessageBoxAnswerer answerer;
        wctest::PluginSpy plugins;
        Widget_Teardrops dialog(kJob, "pcb", scene_.host());
        field(dialog, "Layer")->setText(layers);
        dfmtest::Stopper stopper(dialog, stopped);
        dialog.on_m_pInsideProfilePB_clicked();
        QCOMPARE(stopper.seen().contains("TearDrop dfm terminated|" + dfmtest::kRed), stopped);
        QCOMPARE(spy.calls(), 1);
        dfmtest::verifyRunEnded(dialog, plugins, answerer, status);
        QVERIFY(dialog.hasResults());
        QCOMPARE(dialog.result().at(tdi_created_drilled).red.size(), size_t(2));
        dialog.on_m_pViewResultPB_clicked();
        QVERIFY(dialog.resultsViewer() != nullptr);
        QCOMPARE(dialog.resultsViewer()->kind(), wc::ViewerKind::Teardrops);
        QCOMPARE(dfmtest::joined(dialog.resultsViewer()->model().layers().at(0).layer_names),
                 layers);
        child<QComboBox>(dialog, "comboBox_Type")->setCurrentIndex(2);
        QCOMPARE(dfmtest::viewStyle(dialog), QString());
    }

    void noLayerNoRun() {
        EngineSpy spy(kOperation);
        wctest::PluginSpy plugins;
        Widget_Teardrops dialog(kJob, "pcb", scene_.host());
        field(dialog, "Layer")->setText("nosuch");
        dialog.on_m_pRunGlobalPB_clicked();
        dfmtest::verifyNoRun(dialog, spy.calls(), plugins);
    }

    void parameterSetRoundTrip() {
        wctest::UnitScope unit(scene_.host(), 0);
        Widget_Teardrops dialog(kJob, "pcb", scene_.host());
        field(dialog, "LineWidthRatio")->setText("0.75");
        child<QComboBox>(dialog, "comboBox_Type")->setCurrentIndex(3);
        field(dialog, "ArcAngle")->setText("12");
        child<QCheckBox>(dialog, "checkBox_UndrilledPads")->setChecked(false);
        field(dialog, "DrillSpacing")->setText("250");
        child<QRadioButton>(dialog, "radioButton_DeleteOld_No")->setChecked(true);
        child<QRadioButton>(dialog, "radioButton_WorkMode_Report")->setChecked(true);

        dfmtest::saveAs(dialog, "wide");
        QCOMPARE(dialog.get_Teardrops_ERF(), QStringList{"wide"});

        Widget_Teardrops other(kJob, "pcb", scene_.host());
        other.setErfValues("wide");
        QCOMPARE(field(other, "ERF")->text(), "wide");
        QCOMPARE(field(other, "LineWidthRatio")->text(), "0.75");
        QCOMPARE(child<QComboBox>(other, "comboBox_Type")->currentIndex(), 3);
        QCOMPARE(field(other, "ArcAngle")->text(), "12");
        QVERIFY(!child<QCheckBox>(other, "checkBox_UndrilledPads")->isChecked());
        QCOMPARE(field(other, "DrillSpacing")->text(), "250");
        QVERIFY(child<QRadioButton>(other, "radioButton_DeleteOld_No")->isChecked());
        QVERIFY(child<QRadioButton>(other, "radioButton_WorkMode_Report")->isChecked());

        // Lengths saved in mil come back in the unit shown now.
        unit.change(1);
        Widget_Teardrops metric(kJob, "pcb", scene_.host());
        metric.setErfValues("wide");
        QCOMPARE(field(metric, "DrillSpacing")->text(), "6.35");
        QCOMPARE(field(metric, "AnnRingMin")->text(), "0.127");
    }

private:
    wctest::SampleJobScene scene_;
};

QTEST_MAIN(tst_Widget_Teardrops)
#include "tst_Widget_Teardrops.moc"

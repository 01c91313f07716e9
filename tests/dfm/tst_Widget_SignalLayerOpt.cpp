#include <QCheckBox>
#include <QRadioButton>
#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "DfmDialogKit.h"
#include "UnitScope.h"
#include "ZeLineEdit.h"
#include "analysis/Widget_ResultsViewer.h"
#include "dfm/Widget_SignalLayerOpt.h"

using namespace Korvo::API;
using Params = signal_layer_DFM_op_params;
using wctest::row;

namespace {

const char* const kJob = wctest::SampleJobScene::kJob;
using dfmtest::child;
using dfmtest::field;
using EngineSpy = dfmtest::EngineSpy<Params, signal_layer_DFM_result_map>;
constexpr auto kOperation = &wcref::EngineHooks::signal_layer_DFM_op;

// The length fields, with the member each fills.
const std::pair<const char*, int32_t Params::*> kLengths[] = {
    {"PTHARMin", &Params::pth_ar_min},
    {"PTHAROpt", &Params::pth_ar_opt},
    {"VIAARMin", &Params::via_ar_min},
    {"VIAAROpt", &Params::via_ar_opt},
    {"LaserARMin", &Params::laser_ar_min},
    {"LaserAROpt", &Params::laser_ar_opt},
    {"BuriedARMin", &Params::buried_ar_min},
    {"BuriedAROpt", &Params::buried_ar_opt},
    {"SpacingMin", &Params::spacing_min},
    {"SpacingOpt", &Params::spacing_opt},
    {"PadToPadMin", &Params::pad_to_pad_spacing_min},
    {"PadToPadOpt", &Params::pad_to_pad_spacing_opt},
    {"AloneDrill", &Params::alone_drill_to_pad},
    {"SMDtoSMD", &Params::smd_to_smd},
    {"BGAtoBGA", &Params::bga_to_bga},
    {"SMDShaving", &Params::smd_shaving_limit},
    {"BGAShaving", &Params::bga_shaving_limit}};

}  // namespace

class tst_Widget_SignalLayerOpt : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(scene_.open()); }
    void cleanup() { QVERIFY(scene_.close()); }

    // Every field goes to its own member, truncated to whole nanometres, in either unit; the
    // disabled rows and the options the dialog does not own never reach the record.
    void record_data() {
        wctest::columns<int, bool, QString, int>("unit", "selected", "button", "scope");
        row("mil, globally", 0, false, "pushButton_RunGlobally", 0);
        row("mil, profile", 0, false, "pushButton_RunProfile", 2);
        row("mm, screen", 1, false, "pushButton_RunScreen", 1);
        row("mm, Selected wins over the button", 1, true, "pushButton_RunGlobally", 3);
    }
    void record() {
        QFETCH(int, unit);
        QFETCH(bool, selected);
        QFETCH(QString, button);
        QFETCH(int, scope);
        wctest::UnitScope units(scene_.host(), unit);
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        // Distinct values per field, so that any two swapped members show. Fractions of a nanometre
        // on purpose: the record truncates. In mm the limits read as whole millimetres (20 and 30
        // mil read 0), so only zeros pass there.
        const double base = unit == 0 ? 0.5 : 0.0;
        const double step = unit == 0 ? 0.5 : 0.0;
        const double nm = unit == 0 ? 25400.0 : 1e6;
        if (unit == 1) {
            for (auto* edit : dialog.findChildren<Korvo::UIAPI::ZeLineEdit*>()) {
                edit->setText(QStringLiteral("0"));
            }
        }
        for (size_t i = 0; i < std::size(kLengths); ++i) {
            field(dialog, kLengths[i].first)
                ->setText(QString::number(base + step * i + step / 3.0, 'f', 4));
        }
        for (const char* disabled : {"NVIAARMin", "NVIAAROpt", "LREFrom", "LRETo", "Reduction"}) {
            QVERIFY(!field(dialog, disabled)->isEnabled());
            field(dialog, disabled)
                ->setText(unit == 0 ? QStringLiteral("0.3") : QStringLiteral("0"));
        }
        child<QCheckBox>(dialog, "checkBox_ReRout")->setChecked(true);
        child<QCheckBox>(dialog, "checkBox_PadDn")->setChecked(false);
        child<QCheckBox>(dialog, "checkBox_VIAPadExpand")->setChecked(true);
        child<QRadioButton>(dialog, "radioButton_ApplyTo_Selected")->setChecked(selected);
        EngineSpy spy(kOperation);
        wctest::MessageBoxAnswerer boxes;
        child<QPushButton>(dialog, button)->click();
        QCOMPARE(boxes.texts(), QStringList());

        QCOMPARE(spy.calls(), 1);
        const Params& p = spy.last();
        for (const auto& [key, member] : kLengths) {
            QCOMPARE(p.*member, static_cast<int32_t>(field(dialog, key)->text().toDouble() * nm));
        }
        QCOMPARE(p.scope, scope);
        QVERIFY(p.pad_up && p.shave && p.shave_same_net);
        QVERIFY(!p.pad_down && p.reroute);
        QVERIFY(!p.line_down && !p.reshape);
        QVERIFY(p.via_pad_expand_within_copper);
        const Params defaults;
        QCOMPARE(p.repair_passes, defaults.repair_passes);
        QCOMPARE(p.minimum_tolerance, defaults.minimum_tolerance);
        QVERIFY(p.second_ranges.empty());
        QVERIFY(!p.ranges.empty());
        QCOMPARE(spy.layers.back(), (std::vector<std::string>{"top", "l3", "bottom"}));
    }

    // The run's checks: the five required fields first, then every non-empty field against
    // twenty, or thirty for the LRE, %Reduction and Abs.Min rows, in the display unit.
    void checks_data() {
        wctest::columns<int, QString, QString, QString>("unit", "key", "text", "message");
        row("empty required field", 0, "SpacingMin", "", "Illegal floating parameter");
        row("empty optional field runs", 0, "SpacingOpt", "", "");
        row("25 fails twenty", 0, "PTHAROpt", "25",
            "Floating parameter out of range Value 25 is outside of (0, 20)");
        row("twenty itself passes", 0, "BGAShaving", "20", "");
        row("negative fails", 0, "SMDtoSMD", "-1",
            "Floating parameter out of range Value -1 is outside of (0, 20)");
        row("LRE To: accepts thirty", 0, "LRETo", "30", "");
        row("Abs.Min: refuses above thirty", 0, "AbsMin", "30.5",
            "Floating parameter out of range Value 30.5 is outside of (0, 30)");
        // In mm, twenty mil (0.508 mm) reads as the whole number 0.
        row("mm: twenty mil reads 0", 1, "PTHARMin", "0.5",
            "Floating parameter out of range Value 0.5 is outside of (0, 0)");
    }
    void checks() {
        QFETCH(int, unit);
        QFETCH(QString, key);
        QFETCH(QString, text);
        QFETCH(QString, message);
        wctest::UnitScope units(scene_.host(), unit);
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        field(dialog, key)->setText(text);
        EngineSpy spy(kOperation);
        wctest::MessageBoxAnswerer boxes;
        dialog.on_unGlobally_clicked();
        dfmtest::verifyChecked(boxes, spy.calls(), message);
    }

    void shaveEnablesShaveSameNetWithoutTouchingIt() {
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        auto* shave = child<QCheckBox>(dialog, "checkBox_Shave");
        auto* same_net = child<QCheckBox>(dialog, "checkBox_ShaveSameNet");
        shave->click();
        QVERIFY(!same_net->isEnabled());
        QVERIFY(same_net->isChecked());
        EngineSpy spy(kOperation);
        dialog.on_unGlobally_clicked();
        QVERIFY(!spy.last().shave);
        QVERIFY(spy.last().shave_same_net);
        shave->click();
        QVERIFY(same_net->isEnabled());
    }

    void noLayerNoRunNoNotification() {
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        dialog.setAffectedLayers({});
        EngineSpy spy(kOperation);
        wctest::PluginSpy messages;
        dialog.on_RunProfile_clicked();
        dfmtest::verifyNoRun(dialog, spy.calls(), messages);
    }

    // A stop shows the terminated text and a red view button while the engine finishes; its
    // return overwrites both, keeps what it produced and tells the host twice. An engine that
    // throws ends the same way, logged and not shown.
    void stopThenCompletion_data() {
        QTest::addColumn<bool>("throws");
        row("engine stops", false);
        row("engine throws after the stop", true);
    }
    void stopThenCompletion() {
        QFETCH(bool, throws);
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        dialog.setAffectedLayers({"top", "bottom"});
        EngineSpy spy(kOperation, throws ? EngineSpy::Throw : EngineSpy::Fail);
        spy.answer["top"][sdi_spacing].yellow.resize(1);
        spy.wait_for_stop = true;
        wctest::PluginSpy messages;
        wctest::MessageBoxAnswerer boxes;
        {
            dfmtest::Stopper stopper(dialog);
            dialog.on_unGlobally_clicked();
            QVERIFY(stopper.seen().contains("SignalLayer opt terminated|" + dfmtest::kRed));
        }
        dfmtest::verifyRunEnded(dialog, messages, boxes, "2 layers were processed");
        QVERIFY(dialog.hasResults());
        QCOMPARE(dialog.result().size(), size_t(1));
    }

    void viewerShowsTheRunWithKindSeven() {
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        EngineSpy spy(kOperation);
        for (const char* layer : {"top", "l3", "bottom"}) {
            spy.answer[layer][sdi_pad_up].red.resize(2);
        }
        dialog.on_unGlobally_clicked();
        dialog.on_Check_clicked();
        auto* viewer = scene_.host()->findChild<Widget_ResultsViewer*>();
        QVERIFY(viewer != nullptr);
        QCOMPARE(viewer->tag(), 7);
        QCOMPARE(viewer->kind(), wc::ViewerKind::SignalLayerDFM);
        QCOMPARE(viewer->model().layers().size(), dialog.result().size());
        // A second run refreshes the same window.
        dialog.on_unGlobally_clicked();
        dialog.on_Check_clicked();
        QCOMPARE(scene_.host()->findChildren<Widget_ResultsViewer*>().size(), 1);
    }

    void parameterSetRoundTrip() {
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        field(dialog, "PTHARMin")->setText("7.25");
        child<QCheckBox>(dialog, "checkBox_Shave")->click();
        dialog.setAffectedLayers({"top"});
        dfmtest::saveAs(dialog, "thin copper");

        Widget_SignalLayerOpt other(kJob, "pcb", scene_.host());
        other.setErfValues("thin copper");
        QCOMPARE(field(other, "PTHARMin")->text(), "7.25");
        QVERIFY(!child<QCheckBox>(other, "checkBox_Shave")->isChecked());
        QVERIFY(!child<QCheckBox>(other, "checkBox_ShaveSameNet")->isEnabled());
        QCOMPARE(dfmtest::field(other, "Layer")->text(), "top");
        QCOMPARE(dfmtest::field(other, "ERF")->text(), "thin copper");
    }

    void unitChangeConvertsEveryFieldIncludingDisabledOnes() {
        wctest::UnitScope units(scene_.host(), 0);
        Widget_SignalLayerOpt dialog(kJob, "pcb", scene_.host());
        units.change(1);
        dialog.change_unit();
        QCOMPARE(field(dialog, "AloneDrill")->text(), "0.3048");
        QCOMPARE(field(dialog, "LRETo")->text(), "0.254");
    }

private:
    wctest::SampleJobScene scene_;
};

QTEST_MAIN(tst_Widget_SignalLayerOpt)
#include "tst_Widget_SignalLayerOpt.moc"

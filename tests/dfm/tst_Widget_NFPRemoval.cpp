#include <QtTest>

#include "DataColumns.h"
#include "DataRows.h"
#include "DfmDialogKit.h"
#include "analysis/Widget_ResultsViewer.h"
#include "dfm/Widget_NFPRemoval.h"

using namespace Korvo::API;
using dfmtest::child;
using wctest::click;
using wctest::row;

namespace {

const char* const kJob = wctest::SampleJobScene::kJob;
using EngineSpy = dfmtest::EngineSpy<NFP_removal_DFM_op_params, NFP_removal_result_map>;
constexpr auto kOperation = &wcref::EngineHooks::NFP_removal_DFM_op;

}  // namespace

class tst_Widget_NFPRemoval : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(scene_.open()); }
    void cleanup() { QVERIFY(scene_.close()); }

    // Clicks on the dialog, then the record the engine got. Columns of the record: pth, npth,
    // via, remove undrilled, apply to, action, scope, pad kinds.
    void recordFromTheForm_data() {
        wctest::columns<QStringList, QString, QList<int>, QList<int>>("clicks", "run", "record",
                                                                      "kinds");
        row("defaults", QStringList{}, "RunGlobally", QList<int>{1, 0, 1, 1, 0, 0, 0},
            QList<int>{1, 4});
        // Codes in the order of the boxes, not in code order.
        row("all kinds, screen", QStringList{"checkBox_Duplicate", "checkBox_DrilledOver"},
            "RunScreen", QList<int>{1, 0, 1, 1, 0, 0, 1}, QList<int>{1, 3, 2, 4});
        row("selected wins", QStringList{"radioButton_ApplyTo_Selected"}, "RunProfile",
            QList<int>{1, 0, 1, 1, 1, 0, 3}, QList<int>{1, 4});
        row("everything else",
            QStringList{"checkBox_PTH", "checkBox_NPTH", "checkBox_Via",
                        "radioButton_RemoveUndrilled_No", "radioButton_Action_Mark",
                        "checkBox_Isolated", "checkBox_DrilledOver"},
            "RunGlobally", QList<int>{0, 1, 0, 0, 0, 1, 0}, QList<int>{3, 4});
        // Shown and saved only: the record stays as with the defaults.
        row("never in the record",
            QStringList{"checkBox_PTHPressfit", "checkBox_ViaLaser", "checkBox_ViaPhoto",
                        "radioButton_WorkOn_Copper"},
            "RunGlobally", QList<int>{1, 0, 1, 1, 0, 0, 0}, QList<int>{1, 4});
    }
    void recordFromTheForm() {
        QFETCH(QStringList, clicks);
        QFETCH(QString, run);
        QFETCH(QList<int>, record);
        QFETCH(QList<int>, kinds);
        EngineSpy spy(kOperation);
        Widget_NFPRemoval dialog(kJob, "pcb", scene_.host());
        for (const QString& name : clicks) {
            click(dialog, name);
        }
        click(dialog, "pushButton_" + run);
        QCOMPARE(spy.calls(), 1);
        const NFP_removal_DFM_op_params& p = spy.last();
        QCOMPARE((QList<int>{p.pth, p.npth, p.via, p.remove_undrilled_pads, p.apply_to, p.action,
                             p.scope}),
                 record);
        QCOMPARE(QList<int>(p.pad_kinds.begin(), p.pad_kinds.end()), kinds);
        QCOMPARE(p.ranges.size(), Korvo::UIAPI::getRanges("NFPRemoval").size());
        // The default layers are the inner copper layers.
        QCOMPARE(spy.layers.front(), (std::vector<std::string>{"l3", "l4"}));
    }

    void layerError_data() {
        QTest::addColumn<QString>("layers");
        row("empty", "");
        row("missing", "nosuch");
        row("one of two missing", "l3;nosuch");
        row("filter naming nothing", ".type=rout&context=board");
    }
    void layerError() {
        QFETCH(QString, layers);
        EngineSpy spy(kOperation);
        wctest::MessageBoxAnswerer answerer;
        wctest::PluginSpy plugins;
        Widget_NFPRemoval dialog(kJob, "pcb", scene_.host());
        dfmtest::field(dialog, "Layer")->setText(layers);
        dialog.on_m_pRunGlobalPB_clicked();
        dfmtest::verifyChecked(answerer, spy.calls(), "Layer error!");
        QCOMPARE(plugins.count(), 0);
        QCOMPARE(dfmtest::labelText(dialog, "label_Status"), QString());
        QVERIFY(!dialog.hasResults());
    }

    // However the run ends (stopped, or the engine throwing), what the engine produced is kept,
    // the host is told twice, a worker's exception is logged, not shown, and any parameter change
    // makes the shown result stale.
    void runEnds_data() {
        wctest::columns<bool, bool, QString, QString>("throws", "stopped", "layers", "status");
        row("engine returns", false, false, "l3", "1 NFP Removal layers processed");
        row("engine throws", true, false, "l3", "1 NFP Removal layers processed");
        row("stopped", false, true, "top;l3;l4;bottom", "4 NFP Removal layers processed");
    }
    void runEnds() {
        QFETCH(bool, throws);
        QFETCH(bool, stopped);
        QFETCH(QString, layers);
        QFETCH(QString, status);
        EngineSpy spy(kOperation, throws ? EngineSpy::Throw : EngineSpy::Succeed);
        spy.answer[nfp_isolated_removed].yellow.resize(3);
        spy.wait_for_stop = stopped;
        wctest::MessageBoxAnswerer answerer;
        wctest::PluginSpy plugins;
        Widget_NFPRemoval dialog(kJob, "pcb", scene_.host());
        dfmtest::field(dialog, "Layer")->setText(layers);
        dfmtest::Stopper stopper(dialog, stopped);
        dialog.on_m_pScreenOnlyPB_clicked();
        QCOMPARE(stopper.seen().contains("Remove NFP terminated|" + dfmtest::kRed), stopped);
        dfmtest::verifyRunEnded(dialog, plugins, answerer, status);
        QVERIFY(dialog.hasResults());
        QCOMPARE(dialog.result().at(nfp_isolated_removed).yellow.size(), size_t(3));
        click(dialog, "checkBox_Covered");
        QCOMPARE(dfmtest::viewStyle(dialog), QString());
    }

    void resultLabelAndViewer_data() {
        wctest::columns<int, int, int, QString>("red", "yellow", "green", "style");
        row("red wins", 1, 2, 3, "QLabel{background-color:rgb(255,0,0);}");
        row("yellow", 0, 2, 3, "QLabel{background-color:rgb(255,255,0);}");
        row("green", 0, 0, 3, "QLabel{background-color:rgb(0,255,0);}");
        row("no hit", 0, 0, 0, "");
    }
    void resultLabelAndViewer() {
        QFETCH(int, red);
        QFETCH(int, yellow);
        QFETCH(int, green);
        QFETCH(QString, style);
        EngineSpy spy(kOperation);
        spy.answer[nfp_covered_removed].red.resize(static_cast<size_t>(red));
        spy.answer[nfp_marked].yellow.resize(static_cast<size_t>(yellow));
        spy.answer[nfp_marked].green.resize(static_cast<size_t>(green));
        Widget_NFPRemoval dialog(kJob, "pcb", scene_.host());
        dialog.on_m_pRunGlobalPB_clicked();
        auto* time = child<QLabel>(dialog, "label_Time");
        QCOMPARE(time->styleSheet(), style);
        QVERIFY(QRegularExpression("^\\d{4}\\.\\d\\d\\.\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} - ")
                    .match(time->text())
                    .hasMatch());
        QCOMPARE(dfmtest::labelText(dialog, "label_Status"), "2 NFP Removal layers processed");

        // The open viewer follows the next run with its layers.
        dialog.on_m_pViewResultPB_clicked();
        Widget_ResultsViewer* viewer = dialog.resultsViewer();
        QVERIFY(viewer != nullptr);
        QCOMPARE(viewer->kind(), wc::ViewerKind::NFPRemoval);
        dfmtest::field(dialog, "Layer")->setText("top;l3");
        dialog.on_m_pRunGlobalPB_clicked();
        QCOMPARE(dialog.resultsViewer(), viewer);
        QCOMPARE(dfmtest::joined(viewer->model().layers().at(0).layer_names), "top;l3");
    }

    void parameterSetRoundTrip() {
        Widget_NFPRemoval dialog(kJob, "pcb", scene_.host());
        const QStringList changed = {"checkBox_Isolated",
                                     "checkBox_Duplicate",
                                     "checkBox_ViaLaser",
                                     "radioButton_WorkOn_Copper",
                                     "radioButton_RemoveUndrilled_No",
                                     "radioButton_ApplyTo_Selected",
                                     "radioButton_Action_Mark"};
        for (const QString& name : changed) {
            click(dialog, name);
        }
        dfmtest::saveAs(dialog, "inner only");
        QVERIFY(dialog.isErfFileExist("inner only"));

        Widget_NFPRemoval other(kJob, "pcb", scene_.host());
        other.setErfValues("inner only");
        for (const QString& name : changed) {
            auto* button = child<QAbstractButton>(other, name);
            // Check boxes toggled from their defaults, radios chosen.
            const bool was_default_on = name == "checkBox_Isolated";
            QCOMPARE(button->isChecked(), !was_default_on);
        }
        QCOMPARE(dfmtest::field(other, "ERF")->text(), "inner only");
    }

private:
    wctest::SampleJobScene scene_;
};

QTEST_MAIN(tst_Widget_NFPRemoval)
#include "tst_Widget_NFPRemoval.moc"

#include <QCheckBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <mutex>
#include <thread>

#include "CheckListService.h"
#include "DataColumns.h"
#include "DataRows.h"
#include "FindChild.h"
#include "Korvo_API.h"
#include "MarkingTranslator.h"
#include "MessageBoxAnswerer.h"
#include "ProgressWindows.h"
#include "ReferenceEngine.h"
#include "ResultDatabase.h"
#include "SampleJobScene.h"
#include "ScopedEngineHook.h"
#include "UnitScope.h"
#include "analysis/SignalCheckForm.h"
#include "analysis/Widget_ResultsViewer.h"
#include "analysis/Widget_SignalLayerChecks.h"
#include "common_cache.h"

using namespace Korvo::API;
using wctest::row;

namespace {

const char* const kJob = wctest::SampleJobScene::kJob;

using wctest::child;
using wctest::labelText;

QPushButton* button(QWidget& dialog, const char* name) {
    return child<QPushButton>(dialog, QString::fromLatin1(name));
}

// What the engine's check was asked while the spy lives, layer by layer (on the worker). While
// `hold` is set a call works on until its run is stopped or `hold` is cleared.
struct EngineSpy {
    using Hook = decltype(wcref::EngineHooks::signal_layers_checks);
    std::mutex lock;
    std::vector<std::string> layers;
    std::vector<int> scopes;
    std::vector<signal_check_params> params;
    size_t ranges = 0;
    std::atomic<bool> hold{false};
    // Hits each layer returns.
    std::map<signal_layers_checks_items, signal_check_result> answer;

    Hook hook() {
        return [this](const std::string&, const std::string&, const std::string& layer,
                      signal_check_params p, std::vector<signal_layers_checks_list>,
                      std::map<signal_layers_checks_items, signal_check_range> r,
                      std::map<signal_layers_checks_items, signal_check_result>& result,
                      Korvo::COMMON::progress_value<signal_check_result_map>* progress, int scope) {
            {
                std::lock_guard<std::mutex> guard(lock);
                layers.push_back(layer);
                scopes.push_back(scope);
                params.push_back(p);
                ranges = r.size();
            }
            result = answer;
            while (hold && (progress == nullptr || !progress->is_stop_requested())) {
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            return true;
        };
    }
    int calls() {
        std::lock_guard<std::mutex> guard(lock);
        return int(layers.size());
    }
    // In place of the engine's check while the spy lives.
    wctest::ScopedEngineHook<Hook> installed{&wcref::EngineHooks::signal_layers_checks, hook()};
};

// Red hits lie between the nets "GND" and "VCC".
signal_check_result withHits(int red, int yellow, int green) {
    signal_check_result result;
    result.red.resize(static_cast<size_t>(red));
    for (check_info& hit : result.red) {
        hit.nets = {"VCC", "GND"};
    }
    result.yellow.resize(static_cast<size_t>(yellow));
    result.green.resize(static_cast<size_t>(green));
    return result;
}

wc::SignalCheckForm formWithTests(const QList<int>& checked) {
    wc::SignalCheckForm form;
    form.layers = QStringLiteral("top;bottom");
    form.distances = {"10", "25", "14", "10", "5"};
    for (int test : checked) {
        form.tests[static_cast<size_t>(test)] = true;
    }
    return form;
}

}  // namespace

class tst_Widget_SignalLayerChecks : public QObject {
    Q_OBJECT

private slots:
    void init() { QVERIFY(scene_.open()); }
    void cleanup() { QVERIFY(scene_.close()); }

    void parameterString_data() {
        QTest::addColumn<QList<int>>("tests");
        QTest::addColumn<QString>("pp_tests");
        row("none", QList<int>{}, "");
        row("one", QList<int>{sl_drill}, "Drill");
        // SMD's token differs from its label "Smd"; only the last token stands alone.
        row("several", QList<int>{sl_spacing, sl_smd, sl_pad_connection},
            "Spacing\\;SMD\\;Pad Connection Check");
    }
    void parameterString() {
        QFETCH(QList<int>, tests);
        QFETCH(QString, pp_tests);
        wc::SignalCheckForm form = formWithTests(tests);
        form.apply_to = 1;
        form.compensated_rout = 2;
        QCOMPARE(wc::signalLayerParams(form),
                 "((pp_layer=top;bottom)(pp_spacing=10)(pp_r2c=25)(pp_d2c=14)(pp_sliver=10)"
                 "(pp_min_pad_overlap=5)(pp_tests=" +
                     pp_tests +
                     ")(pp_selected=Selected)(pp_check_missing_pads_for_drills=Yes)"
                     "(pp_use_compensated_rout=Skeleton)(pp_sm_spacing=No)),mode=regular");
    }

    void recordInBothUnits_data() {
        wctest::columns<int, QString, double>("unit", "spacing", "spacing_nm");
        row("mil", 0, "10", 254000.0);
        row("mm", 1, "0.254", 254000.0);
    }
    void recordInBothUnits() {
        QFETCH(int, unit);
        QFETCH(QString, spacing);
        QFETCH(double, spacing_nm);
        wctest::UnitScope scope(scene_.host(), unit);
        wc::SignalCheckForm form = formWithTests({sl_spacing});
        form.distances[wc::DistSpacing] = spacing;
        form.distances[wc::DistDrillToCu] = QStringLiteral("1");
        form.distances[wc::DistRoutToCu] = QStringLiteral("2");
        const signal_check_params p = wc::signalCheckParams(form, scene_.host());
        QCOMPARE(p.spacing, spacing_nm);
        // Drill before rout in the record, the other way round on screen.
        QVERIFY(p.drill_to_copper < p.rout_to_copper);
        QCOMPARE(p.apply_to, std::string("All"));
        QVERIFY(p.check_missing_pads_for_drills && !p.use_compensated_rout && p.always_on);
        QCOMPARE(p.mode, 3);
        QCOMPARE(p.thresholds.size(), size_t(17));
        QCOMPARE(p.thresholds[14], 127000000.0);
        QCOMPARE(p.threshold_enabled, std::vector<bool>(17, true));
    }

    void recordShownBack() {
        signal_check_params p;
        p.spacing = 254000;       // 10 mil
        p.apply_to = "anything";  // not "All": "Selected"
        p.use_compensated_rout = true;
        p.check_missing_pads_for_drills = false;
        wc::SignalCheckForm form = formWithTests({sl_spacing, sl_drill});
        form.compensated_rout = 2;
        wc::showSignalCheckParams(p, {sl_smd, signal_layers_checks_list(10), sl_pad_connection},
                                  form);
        QCOMPARE(form.distances[wc::DistSpacing], "10");
        QCOMPARE(form.apply_to, 1);
        QCOMPARE(form.compensated_rout, 0);
        QCOMPARE(form.missing_pads, 1);
        QCOMPARE(wc::checkedSignalTests(form),
                 (std::vector<signal_layers_checks_list>{sl_smd, sl_pad_connection}));
    }

    void summary_data() {
        wctest::columns<int, int, int, bool, QString, QString>("red", "yellow", "green", "waived",
                                                               "text", "style");
        row("red wins", 1, 3, 2, false, "!!", "QLabel{background:red;}");
        row("yellow", 0, 2, 5, false, "!", "QLabel{background:yellow;}");
        row("only green", 0, 0, 1, false, "", "QLabel{background:green;}");
        // The label keeps what it showed before.
        row("no hit", 0, 0, 0, false, "before", "QLabel{background:blue;}");
        // Waived hits do not colour the summary; a result whose hits are all waived is one
        // without a hit.
        row("red waived", 2, 3, 2, true, "!", "QLabel{background:yellow;}");
        row("all waived", 1, 0, 0, true, "before", "QLabel{background:blue;}");
    }
    void summary() {
        QFETCH(int, red);
        QFETCH(int, yellow);
        QFETCH(int, green);
        QFETCH(bool, waived);
        QFETCH(QString, text);
        QFETCH(QString, style);
        if (waived) {
            // Every pad size hit between GND and VCC, on any layer.
            analysis_waiver waiver;
            waiver.kind = "SignalLayer";
            waiver.job = kJob;
            waiver.step = "pcb";
            waiver.scope = waive_net_pair;
            waiver.item = sli_pad_size;
            waiver.nets = {"GND", "VCC"};
            waiver.reason = "pads of the power connector";
            QVERIFY(insertAnalysisWaiver(waiver).success);
        }
        EngineSpy spy;
        spy.answer[sli_line_width] = withHits(0, 0, 0);
        spy.answer[sli_pad_size] = withHits(red, yellow, green);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        auto* summary = child<QLabel>(dialog, "label_Summary");
        summary->setText("before");
        summary->setStyleSheet("QLabel{background:blue;}");
        dialog.on_RunGlobally_clicked();
        QCOMPARE(summary->text(), text);
        QCOMPARE(summary->styleSheet(), style);
        QCOMPARE(button(dialog, "pushButton_View")->styleSheet(),
                 "QPushButton{background-image:url(:/Widget_Common/Resources/viewgreen.jpg)}");
        // Any change to the form makes the shown result stale.
        child<QCheckBox>(dialog, "checkBox_Sliver")->click();
        QCOMPARE(button(dialog, "pushButton_View")->styleSheet(), QString());
    }

    // A result database that cannot be read costs nothing of the run: every hit colours the
    // summary, and a box that does not hold the dialog up says once why waivers are missing.
    void unreadableDatabaseKeepsTheRun() {
        const QString file = wcref::resultDatabase().name;
        QVERIFY(QDir().mkpath(QFileInfo(file).absolutePath()));
        QFile garbage(file);
        QVERIFY(garbage.open(QIODevice::WriteOnly));
        garbage.write(QByteArray(4096, 'x'));
        garbage.close();
        EngineSpy spy;
        spy.answer[sli_pad_size] = withHits(1, 0, 0);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        for (int run = 0; run < 2; ++run) {
            dialog.on_RunGlobally_clicked();
        }
        QCOMPARE(child<QLabel>(dialog, "label_Summary")->text(), QString("!!"));
        const auto boxes = dialog.findChildren<QMessageBox*>();
        QCOMPARE(boxes.size(), 1);
        QVERIFY2(
            boxes.front()->text().startsWith("The waivers and the history are not available: "),
            qPrintable(boxes.front()->text()));
        QVERIFY(boxes.front()->text().contains(QFileInfo(file).fileName()));
        QCOMPARE(wctest::readFile(file), QByteArray(4096, 'x'));
    }

    void windowAsTheHostExpects() {
        wctest::UnitScope scope(scene_.host(), 0);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        QCOMPARE(dialog.windowTitle(), "Signal Layer Check");
        QCOMPARE(child<QLineEdit>(dialog, "lineEdit_Layer")->text(),
                 ".type=signal|mixed&side=top|bottom&context=board");
        QCOMPARE(child<QLineEdit>(dialog, "lineEdit_ERF")->text(), "Outer(Mils)");
        QCOMPARE(labelText(dialog, "label_MinimumPadoverlap"), " Minimum pad overlap:");
        QCOMPARE(child<QRadioButton>(dialog, "radioButton_CompensatedRout_No")->isChecked(), true);
        // Two columns, read row by row.
        const QStringList expected = {
            "Spacing", "Stubs", "Drill",      "Center", "Rout",
            "Smd",     "Size",  "Bottleneck", "Sliver", "Pad Connection Check"};
        QStringList shown;
        for (QCheckBox* box : child(dialog, "groupBox_TestList")->findChildren<QCheckBox*>()) {
            QVERIFY(box->isChecked());
            shown.append(box->text());
        }
        QCOMPARE(shown, expected);
        QCOMPARE(button(dialog, "pushButton_RunGlobally")->toolTip(), "Run globally");
        QCOMPARE(labelText(dialog, "label_Time"), "No results");
    }

    void scopeReachingTheEngine_data() {
        wctest::columns<QStringList, bool, QList<int>, int>("presses", "selected", "scopes",
                                                            "remembered");
        row("global after screen", QStringList{"RunScreen", "RunGlobally"}, false, QList<int>{1, 0},
            0);
        row("selected, profile", QStringList{"RunProfile"}, true, QList<int>{3}, 3);
    }
    void scopeReachingTheEngine() {
        QFETCH(QStringList, presses);
        QFETCH(bool, selected);
        QFETCH(QList<int>, scopes);
        QFETCH(int, remembered);
        EngineSpy spy;
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        child<QLineEdit>(dialog, "lineEdit_Layer")->setText("top");
        child<QRadioButton>(dialog,
                            selected ? "radioButton_ApplyTo_Selected" : "radioButton_ApplyTo_All")
            ->setChecked(true);
        for (const QString& press : presses) {
            wctest::click(dialog, "pushButton_" + press);
        }
        QCOMPARE(QList<int>(spy.scopes.begin(), spy.scopes.end()), scopes);
        QCOMPARE(dialog.rememberedScope(), remembered);
        QCOMPARE(spy.params.back().apply_to, std::string(selected ? "Selected" : "All"));
        QVERIFY(spy.ranges > 0);
        QCOMPARE(labelText(dialog, "label_Status"), "1 layer was processed");
    }

    void layersAndEmptyFields_data() {
        wctest::columns<QString, QString, QStringList, QString, int>("layers", "spacing", "boxes",
                                                                     "status", "engine_calls");
        row("missing one", "top;nosuch;bottom", "10",
            QStringList{"WARNING!|nosuch is not exists !"}, "2 layers were processed", 2);
        row("only missing", "nosuch", "10", QStringList{"WARNING!|nosuch is not exists !"},
            "No layers were processed", 0);
        row("empty distance", "top", "", QStringList{"Information|illegal floating parameter"}, "",
            0);
    }
    void layersAndEmptyFields() {
        QFETCH(QString, layers);
        QFETCH(QString, spacing);
        QFETCH(QStringList, boxes);
        QFETCH(QString, status);
        QFETCH(int, engine_calls);
        EngineSpy spy;
        wctest::MessageBoxAnswerer answerer;
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        child<QLineEdit>(dialog, "lineEdit_Layer")->setText(layers);
        child<QLineEdit>(dialog, "lineEdit_Spacing")->setText(spacing);
        dialog.on_RunGlobally_clicked();
        QStringList shown;
        for (const wctest::ShownBox& box : answerer.boxes()) {
            shown.append(box.title + "|" + box.text);
        }
        QCOMPARE(shown, boxes);
        QCOMPARE(labelText(dialog, "label_Status"), status);
        QCOMPARE(int(spy.layers.size()), engine_calls);
        QCOMPARE(int(dialog.result().size()), engine_calls);
    }

    void stopBetweenLayers() {
        // The first layer's worker waits until the user has stopped the run.
        EngineSpy spy;
        spy.answer[sli_line_width] = withHits(1, 0, 0);
        spy.hold = true;
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        child<QLineEdit>(dialog, "lineEdit_Layer")->setText("top;l3;bottom");
        wctest::Stopper stopper(dialog);
        dialog.on_RunGlobally_clicked();
        QCOMPARE(spy.calls(), 1);
        QCOMPARE(labelText(dialog, "label_Status"), "SignalLayer check terminated");
        QCOMPARE(button(dialog, "pushButton_View")->styleSheet(),
                 "QPushButton{background-image:url(:/Widget_Common/Resources/viewred.jpg)}");
        QCOMPARE(labelText(dialog, "label_Summary"), QString());
    }

    void templateJsonAsWritten() {
        wctest::UnitScope scope(scene_.host(), 0);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        child<QCheckBox>(dialog, "checkBox_Smd")->setChecked(false);
        child<QRadioButton>(dialog, "radioButton_CompensatedRout_Skeleton")->setChecked(true);
        child<QLineEdit>(dialog, "lineEdit_Spacing")->setText("7.5");
        dialog.get_ERF_Name("mine");
        const QJsonObject root = QJsonDocument::fromJson(savedSet("mine")).object();
        const QByteArray expected =
            R"([{"Spacing":"7.5"},{"Rout to Cu":"25.00"},{"Drill to Cu":"14.00"},)"
            R"({"Sliver min":"10.00"},{"Minimum Pad overlap":"5.00"},{"Test list":[)"
            R"({"Spacing":true},{"Stubs":true},{"Drill":true},{"Center":true},{"Rout":true},)"
            R"({"Smd":false},{"Size":true},{"Bottleneck":true},{"Sliver":true},)"
            R"({"Pad Connection Check":true}]},{"Apply to":0},)"
            R"({"Check Missing Pads for Drills":0},{"Use Compensated Rout":2},)"
            R"({"Sort Spacing by Solder Mask":1}])";
        QCOMPARE(
            QJsonDocument(root.value("signalLayerChecks").toArray()).toJson(QJsonDocument::Compact),
            expected);
        const QJsonArray ranges = root.value("rangesList").toArray();
        QCOMPARE(ranges.size(), int(Korvo::UIAPI::getRanges("SignalLayerRanges").size()));
        QCOMPARE(dialog.isErfFileExist("mine"), true);
    }

    void overwriteQuestion_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("spacing_in_file");
        QTest::addColumn<QString>("language");
        row("yes rewrites", int(QMessageBox::Yes), "3", "");
        row("no keeps", int(QMessageBox::No), "10.00", "");
        // The question is the dialog's own text.
        row("asked in the dialog's language", int(QMessageBox::No), "10.00",
            "Widget_SignalLayerChecks");
    }
    void overwriteQuestion() {
        QFETCH(int, answer);
        QFETCH(QString, spacing_in_file);
        QFETCH(QString, language);
        const QByteArray context = language.toLatin1();
        std::unique_ptr<wctest::MarkingTranslator> marking;
        if (!language.isEmpty()) {
            marking = std::make_unique<wctest::MarkingTranslator>(context.constData());
        }
        const auto tr = [&language](const QString& text) {
            return language.isEmpty() ? text : "[" + text + "]";
        };
        wctest::UnitScope scope(scene_.host(), 0);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        dialog.get_ERF_Name("set");
        child<QLineEdit>(dialog, "lineEdit_Spacing")->setText("3");
        wctest::MessageBoxAnswerer answerer{QMessageBox::StandardButton(answer)};
        dialog.get_ERF_Name("set");
        QCOMPARE(answerer.count(), 1);
        QCOMPARE(answerer.last().title, tr("Warning"));
        QCOMPARE(answerer.last().text,
                 "set" + tr(" have a same name file! Do you want to overwrite?"));
        const QJsonArray entries =
            QJsonDocument::fromJson(savedSet("set")).object().value("signalLayerChecks").toArray();
        QCOMPARE(entries.at(0).toObject().value("Spacing").toString(), spacing_in_file);
    }

    void templateRoundTripRestoresSkeleton() {
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        child<QRadioButton>(dialog, "radioButton_CompensatedRout_Skeleton")->setChecked(true);
        child<QCheckBox>(dialog, "checkBox_Stubs")->setChecked(false);
        std::vector<Korvo::UIAPI::Analysis_Ranges_Record> ranges;
        Korvo::UIAPI::getRanges("SignalLayerRanges", ranges);
        QVERIFY(Korvo::UIAPI::changeRangesValue("SignalLayerRanges", ranges[3].name, "RedLv", 777));
        dialog.get_ERF_Name("skeleton");
        QVERIFY(Korvo::UIAPI::changeRangesValue("SignalLayerRanges", ranges[3].name, "RedLv", 1));

        Widget_SignalLayerChecks other(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        other.get_ERF_text("skeleton");
        QCOMPARE(child<QLineEdit>(other, "lineEdit_ERF")->text(), "skeleton");
        QVERIFY(child<QRadioButton>(other, "radioButton_CompensatedRout_Skeleton")->isChecked());
        QVERIFY(!child<QCheckBox>(other, "checkBox_Stubs")->isChecked());
        QCOMPARE(Korvo::UIAPI::getRanges("SignalLayerRanges")[3].RedLv, 777.0);

        // A broken file leaves the form as it was and says why.
        QVERIFY(wctest::writeFile(setPath("broken"), R"({"signalLayerChecks":[{"Apply to":7}]})"));
        wctest::MessageBoxAnswerer answerer;
        other.get_ERF_text("broken");
        QCOMPARE(answerer.count(), 1);
        QVERIFY(answerer.last().text.contains("Apply to"));
        QVERIFY(child<QRadioButton>(other, "radioButton_CompensatedRout_Skeleton")->isChecked());
    }

    void databaseRoundTripDropsSkeleton() {
        EngineSpy spy;
        spy.answer[sli_pad_size] = withHits(0, 2, 0);
        wctest::UnitScope scope(scene_.host(), 1);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        dialog.on_db_connected(true);
        child<QLineEdit>(dialog, "lineEdit_Layer")->setText("top;bottom");
        child<QLineEdit>(dialog, "lineEdit_Slivermin")->setText("0.1");
        child<QRadioButton>(dialog, "radioButton_CompensatedRout_Skeleton")->setChecked(true);
        child<QCheckBox>(dialog, "checkBox_Drill")->setChecked(false);
        dialog.on_RunGlobally_clicked();

        wctest::MessageBoxAnswerer answerer;
        dialog.on_SaveToDb_clicked();
        QCOMPARE(answerer.count(), 1);
        QVERIFY2(answerer.last().text.startsWith("Save success: "),
                 qPrintable(answerer.last().text));

        Widget_SignalLayerChecks other(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        other.on_db_connected(true);
        other.refresh_load_result(0);
        // Distances come back in mil whatever the unit; a flag cannot say "Skeleton".
        QCOMPARE(child<QLineEdit>(other, "lineEdit_Slivermin")->text(), "3.93701");
        QVERIFY(child<QRadioButton>(other, "radioButton_CompensatedRout_No")->isChecked());
        QVERIFY(!child<QCheckBox>(other, "checkBox_Drill")->isChecked());
        QCOMPARE(other.result().size(), size_t(2));
        QCOMPARE(other.result().at("top").at(sli_pad_size).yellow.size(), size_t(2));
        QCOMPARE(labelText(other, "label_Summary"), "!");
    }

    // "Save" while this dialog's own run is under way does nothing, as a second run button
    // does: no box, no record. The viewer's raise reaches the host through Signal_check_raise.
    void busyDialogAndRaise() {
        EngineSpy spy;
        spy.hold = true;
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        dialog.on_db_connected(true);
        child<QLineEdit>(dialog, "lineEdit_Layer")->setText("top;bottom");
        wctest::MessageBoxAnswerer boxes;
        const size_t stored = Korvo::API::getCheckResultMaster().size();
        QTimer::singleShot(20, &dialog, [&] {
            dialog.on_SaveToDb_clicked();
            dialog.on_RunScreen_clicked();
            spy.hold = false;
        });
        dialog.on_RunGlobally_clicked();
        QCOMPARE(boxes.texts(), QStringList());
        QCOMPARE(Korvo::API::getCheckResultMaster().size(), stored);
        QCOMPARE(spy.calls(), 2);  // one run over both layers, none from the second button
        QCOMPARE(dialog.rememberedScope(), 0);

        dialog.on_ViewResult_clicked();
        auto* viewer = scene_.host()->findChildren<Widget_ResultsViewer*>().value(0);
        QVERIFY(viewer != nullptr);
        QSignalSpy raised(&dialog, &Widget_SignalLayerChecks::Signal_check_raise);
        emit viewer->Signal_check_raise();
        QCOMPARE(raised.count(), 1);
        delete viewer;
    }

    // The texts of the result database are the dialog's own: a language of the dialog reaches
    // them.
    void databaseMessages_data() {
        QTest::addColumn<bool>("marked");
        row("English", false);
        row("the dialog's language", true);
    }
    void databaseMessages() {
        QFETCH(bool, marked);
        std::unique_ptr<wctest::MarkingTranslator> language;
        if (marked) {
            language = std::make_unique<wctest::MarkingTranslator>("Widget_SignalLayerChecks");
        }
        const auto tr = [marked](const QString& text) { return marked ? "[" + text + "]" : text; };
        wctest::MessageBoxAnswerer answerer;
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        dialog.on_LoadFromDb_clicked();
        dialog.on_SaveToDb_clicked();
        dialog.on_check_result_2_db_end({false, -1, "disk full"});
        // Ids the database does not hold are named; a position it lacks is only logged.
        dialog.on_db_connected(true);
        QString id = "x";
        dialog.get_analysis_result_from_db(id);
        QString tq_id = "tq";
        dialog.get_tq_analysis_result_from_db(tq_id);
        dialog.refresh_load_result(-1);
        QCOMPARE(answerer.texts(), QStringList({tr("DB connection failed"), tr("Save 2 db failed"),
                                                tr("Save failed") + ": disk full",
                                                tr("No stored check with id ") + "x",
                                                tr("No stored check with id ") + "tq"}));
        QCOMPARE(answerer.last().title, tr("Information"));
        QVERIFY(dialog.result().empty());
    }

    // The count in the viewer's wording, two blanks for one layer (the wording itself is
    // frame/tst_RunControls' concern).
    void viewerCountFromTheCache() {
        signal_check_result_map cached;
        cached["l1"];
        Korvo::Cache::common_cache::instance()->setSignalResult(cached);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Engine);
        dialog.viewSetShowResult();
        QCOMPARE(labelText(dialog, "label_Status"), "1 layer  was processed");
        QCOMPARE(dialog.layersWithinCheck().size(), 1);
    }

    void serviceRunsTheCheckOrIsBusy() {
        EngineSpy spy;
        spy.answer[sli_smd_pitch] = withHits(0, 0, 1);
        Widget_SignalLayerChecks dialog(kJob, "pcb", scene_.host(), Korvo::UIAPI::Check_Service);
        child<QLineEdit>(dialog, "lineEdit_Layer")->setText("top;bottom");
        child<QRadioButton>(dialog, "radioButton_ApplyTo_Selected")->setChecked(true);
        dialog.on_RunProfile_clicked();
        QCOMPARE(labelText(dialog, "label_Status"), "2 layers were processed");
        QCOMPARE(QList<int>(spy.scopes.begin(), spy.scopes.end()), QList<int>({3, 3}));
        QCOMPARE(labelText(dialog, "label_Summary"), QString());

        // A second check while one is under way is refused.
        spy.hold = true;
        std::thread first([] {
            Korvo::CheckList::signal_check_request request;
            request.job = kJob;
            request.step = "pcb";
            request.params.layers = "top";
            signal_check_result_map result;
            Korvo::CheckList::runSignalLayerCheckList(request, result, nullptr);
        });
        while (spy.calls() < 3) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        dialog.on_RunGlobally_clicked();
        spy.hold = false;
        first.join();
        QCOMPARE(labelText(dialog, "label_Status"), "the service is busy");
        QCOMPARE(dialog.result().size(), size_t(2));  // the earlier result stays
    }

private:
    QString setPath(const QString& name) const {
        return scene_.working().filePath("ERFconfig/SignalLayerRanges/" + name + ".json");
    }
    // A saved parameter set as written, empty when there is none.
    QByteArray savedSet(const QString& name) const { return wctest::readFile(setPath(name)); }

    wctest::SampleJobScene scene_;
};

QTEST_MAIN(tst_Widget_SignalLayerChecks)
#include "tst_Widget_SignalLayerChecks.moc"

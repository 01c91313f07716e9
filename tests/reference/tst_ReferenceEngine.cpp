// The reference engine: jobs and matrix, features and edits, hooks and the call log, long
// operations with their stop flag, and exports.

#include <QtTest>
#include <chrono>
#include <functional>
#include <future>
#include <set>

#include "Korvo_API.h"
#include "ReferenceEngine.h"

using namespace Korvo::API;
using Progress = Korvo::COMMON::progress_value<void>;
using CheckProgress = Korvo::COMMON::progress_value<signal_check_result_map>;
using Call = std::function<void()>;

Q_DECLARE_METATYPE(Call)

namespace {

constexpr double kMil = 25400.0;
const std::string kJob = "sample_job";

std::vector<featureInfo> features(const std::string& step, const std::string& layer,
                                  int mask = FT_All) {
    std::vector<featureInfo> found;
    get_all_feature_info(kJob, step, layer, found, mask);
    return found;
}

const featureInfo* findAt(const std::vector<featureInfo>& list, double x_mil, double y_mil) {
    for (const featureInfo& f : list) {
        if (std::abs(f.start.x - x_mil * kMil) < 1e-3 && std::abs(f.start.y - y_mil * kMil) < 1e-3)
            return &f;
    }
    return nullptr;
}

enum LongOperation { SignalChecks, SignalOpt, MaskOpt, Teardrops, NfpRemoval, LayerOut, StepOut };

// Runs one long operation on `layer` of "pcb", files below `folder`; stale results must go.
bool runLong(int operation, const std::string& layer, Progress* progress, CheckProgress* checks,
             const QString& folder) {
    const std::vector<std::string> layers{layer};
    switch (operation) {
        case SignalChecks: {
            std::map<signal_layers_checks_items, signal_check_result> result{{sli_line_width, {}}};
            return signal_layers_checks(kJob, "pcb", layer, {}, {sl_spacing}, {}, result, checks,
                                        0) &&
                   result.empty();
        }
        case SignalOpt: {
            signal_layer_DFM_result_map results{{"stale", {}}};
            return signal_layer_DFM_op(kJob, "pcb", layers, {}, results, progress) &&
                   results.empty();
        }
        case MaskOpt: {
            solder_mask_DFM_result_map results{{smo_bridge_removed, {}}};
            return solder_mask_DFM_op(kJob, "pcb", layers, {}, results, progress) &&
                   results.empty();
        }
        case Teardrops: {
            // The record's defaults delete the old teardrops and create none.
            teardrop_result_map results{{tdi_skipped_spacing, {}}};
            return teardrop_create_DFM_op(kJob, "pcb", layers, {}, results, progress) &&
                   results.count(tdi_skipped_spacing) == 0;
        }
        case NfpRemoval: {
            NFP_removal_result_map results{{nfp_marked, {}}};
            return NFP_removal_DFM_op(kJob, "pcb", layers, {}, results, progress) &&
                   results.empty();
        }
        case LayerOut:
            return layer_export(kJob, "pcb", layer, export_gerber,
                                (folder + "/layer.txt").toStdString(), progress);
        case StepOut:
            return Export_step(kJob, layer == "nosuch" ? "nosuch" : "pcb",
                               (folder + "/step").toStdString(), progress);
    }
    return false;
}

}  // namespace

class tst_ReferenceEngine : public QObject {
    Q_OBJECT

private slots:
    void init() {
        wcref::resetEngine();
        QVERIFY(wcref::openSampleJob(kJob));
    }

    void jobsAndMatrix() {
        QVERIFY(!open_job("other", "/some/folder/other"));
        QVERIFY(open_job("second", ""));
        std::vector<std::string> opened;
        QCOMPARE(get_opened_jobs(opened), 2);
        QCOMPARE(opened, (std::vector<std::string>{kJob, "second"}));
        // Reopening keeps the edits of the open job.
        QVERIFY(bind_editop_count(kJob, "pcb", 7));
        QVERIFY(open_job(kJob, ":sample"));
        QCOMPARE(get_editop_count(kJob, "pcb"), 7);
        QCOMPARE(close_job("second"), 0);
        QCOMPARE(close_job("second"), -1);
        QCOMPARE(get_editop_count("second", "pcb"), -1);

        std::vector<std::string> steps;
        std::vector<layer_info> layers;
        QCOMPARE(get_matrix(kJob, steps, layers), std::string("OK"));
        QCOMPARE(steps, (std::vector<std::string>{"pcb", "panel"}));
        for (size_t k = 0; k < layers.size(); ++k) {
            QVERIFY(k == 0 || layers[k - 1].row < layers[k].row);
            QCOMPARE(layers[k].drill_start.empty(), layers[k].type != "drill");
        }
        QVERIFY(create_step(kJob, "coupon", 0));
        QVERIFY(!create_step(kJob, "coupon", 0));
        std::map<int, std::string> step_map;
        QCOMPARE(get_matrix(kJob, step_map, layers), std::string("OK"));
        QCOMPARE(step_map, (std::map<int, std::string>{{1, "pcb"}, {2, "panel"}, {3, "coupon"}}));

        std::vector<layer_info> shown;
        QVERIFY(wcref::setDisplayedLayers(kJob, {"bottom", "top"}));
        QVERIFY(!wcref::setDisplayedLayers(kJob, {"nosuch"}));
        QCOMPARE(get_graphics(kJob, steps, shown), std::string("OK"));
        QCOMPARE(shown.size(), size_t(2));
        QCOMPARE(shown[0].name, std::string("top"));  // matrix order, not the order given
        QVERIFY(get_matrix("nosuch", steps, layers) != "OK");
        QVERIFY(get_graphics("nosuch", steps, shown) != "OK");
    }

    void typeMask_data() {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<int>("mask");
        QTest::newRow("pads") << "top" << int(FT_Pad);
        QTest::newRow("lines and arcs") << "top" << int(FT_Line | FT_Arc);
        QTest::newRow("surfaces") << "top" << int(FT_Surface);
        QTest::newRow("texts") << "top_silk" << int(FT_Text);
        QTest::newRow("negative pads") << "l5_pwr" << int(FT_Pad | FT_Negative);
        QTest::newRow("positive only") << "l5_pwr" << int(FT_All & ~FT_Negative);
    }
    void typeMask() {
        QFETCH(QString, layer);
        QFETCH(int, mask);
        const std::vector<featureInfo> all = features("pcb", layer.toStdString());
        const std::vector<featureInfo> some = features("pcb", layer.toStdString(), mask);
        QVERIFY(!some.empty() && some.size() < all.size());
        const int polarity = mask & (FT_Positive | FT_Negative);
        int expected = 0;
        for (const featureInfo& f : all) {
            const bool type_ok = (mask & f.type) != 0;
            const bool polarity_ok =
                polarity == 0 || (mask & (f.positive ? FT_Positive : FT_Negative));
            expected += (type_ok && polarity_ok) ? 1 : 0;
        }
        QCOMPARE(int(some.size()), expected);
    }

    void selectionAndHighlight() {
        const std::vector<featureInfo> top = features("pcb", "top");
        QVERIFY(select_feature_by_info(kJob, "pcb", "top", top[3]));
        featureInfo by_place = top[5];  // no id: found by its place
        by_place.id = -1;
        QVERIFY(select_feature_by_info(kJob, "pcb", "top", by_place));
        featureInfo missing = top[5];
        missing.id = 100000;
        QVERIFY(!select_feature_by_info(kJob, "pcb", "top", missing));
        std::vector<featureInfo> selected;
        QVERIFY(get_selected_feature_info(kJob, "pcb", "top", selected));
        QCOMPARE(selected.size(), size_t(2));
        QCOMPARE(selected[1].id, top[5].id);

        QVERIFY(clear_selected_features(kJob, "pcb", "top"));
        QVERIFY(get_selected_feature_info(kJob, "pcb", "top", selected));
        QVERIFY(selected.empty());
        select_features(kJob, "pcb", "top");
        QVERIFY(get_selected_feature_info(kJob, "pcb", "top", selected));
        QCOMPARE(selected.size(), top.size());

        QVERIFY(!clear_highlighted_features(kJob, "pcb", "nosuch"));
        QVERIFY(!get_selected_feature_info(kJob, "nosuch", "top", selected));
    }

    void transformSelected_data() {
        QTest::addColumn<QString>("ops");  // r rotate, x/y mirror, s scale, m move
        QTest::addColumn<double>("angle");
        QTest::addColumn<double>("x");  // where the pad at (200, 200) mil ends, anchor (100, 0)
        QTest::addColumn<double>("y");
        QTest::newRow("move") << "m" << 0.0 << 210.0 << 220.0;
        QTest::newRow("rotate 90 clockwise") << "r" << 90.0 << 300.0 << -100.0;
        QTest::newRow("rotate 180") << "r" << 180.0 << 0.0 << -200.0;
        QTest::newRow("mirror x") << "x" << 0.0 << 0.0 << 200.0;
        QTest::newRow("mirror y") << "y" << 0.0 << 200.0 << -200.0;
        QTest::newRow("scale") << "s" << 0.0 << 300.0 << 600.0;
        QTest::newRow("scale then move") << "sm" << 0.0 << 310.0 << 620.0;
        QTest::newRow("mirror then rotate") << "rx" << 90.0 << 300.0 << 100.0;
    }
    void transformSelected() {
        QFETCH(QString, ops);
        QFETCH(double, angle);
        QFETCH(double, x);
        QFETCH(double, y);
        const std::vector<featureInfo> before = features("pcb", "top");
        const featureInfo* pad = findAt(before, 200, 200);
        QVERIFY(pad != nullptr && findAt(before, 300, 200) != nullptr);
        QVERIFY(select_feature_by_info(kJob, "pcb", "top", *pad));
        const int edits = get_editop_count(kJob, "pcb");
        const bool mirror_x = ops.contains('x');
        const bool mirror_y = ops.contains('y');
        QVERIFY(transform(kJob, "pcb", "top", 0, ops.contains('r'), mirror_x, mirror_y,
                          ops.contains('s'), ops.contains('m'), {100 * kMil, 0}, angle, 2.0, 3.0,
                          10 * kMil, 20 * kMil));
        const std::vector<featureInfo> after = features("pcb", "top");
        const featureInfo* moved = findAt(after, x, y);
        QVERIFY(moved != nullptr);
        QCOMPARE(moved->id, pad->id);
        QCOMPARE(moved->mirror, mirror_x != mirror_y);
        QVERIFY(findAt(after, 300, 200) != nullptr);  // not selected, not moved
        QCOMPARE(get_editop_count(kJob, "pcb"), edits + 1);
    }

    void flattenPlacesEveryBoard() {
        // Eight boards on the panel: each board's drills land, placed, in the panel's drill layer.
        const size_t board_drills = features("pcb", "drill").size();
        const size_t panel_drills = features("panel", "drill").size();
        const int edits = get_editop_count(kJob, "panel");
        QVERIFY(flatten_step(kJob, "panel", "drill", "drill"));
        const std::vector<featureInfo> flat = features("panel", "drill");
        QCOMPARE(flat.size(), panel_drills + 8 * board_drills);
        QCOMPARE(get_editop_count(kJob, "panel"), edits + 1);
        // Board hole (200, 200) in the first board at (500, 500) and in the first rotated board at
        // (7200, 2500): clockwise by 90, (200, 200) becomes (200, -200).
        QVERIFY(findAt(flat, 700, 700) != nullptr);
        QVERIFY(findAt(flat, 7400, 2300) != nullptr);
        std::set<int> ids;
        for (const featureInfo& f : flat)
            QVERIFY(ids.insert(f.id).second);
        QVERIFY(!flatten_step(kJob, "panel", "drill", "nosuch"));
    }

    void profile() {
        reply_box box;
        QVERIFY(!set_step_profile(kJob, "pcb", {{0, 0}, {1, 1}}));  // not an area
        QVERIFY(set_step_profile(kJob, "pcb", {{0, 0}, {10, 0}, {10, 20}}));
        QVERIFY(profile_box(kJob, "pcb", box));
        QCOMPARE(box.ymax, 20.0);
        QVERIFY(set_step_profile(kJob, "pcb", {}));
        QVERIFY(!has_profile(kJob, "pcb"));
        QVERIFY(!profile_box(kJob, "pcb", box));
    }

    void hookReplacesAndRecords() {
        wcref::clearEngineCalls();
        wcref::engineHooks().get_editop_count = [](const std::string& job,
                                                   const std::string& step) {
            return job == kJob && step == "pcb" ? -3 : 0;
        };
        wcref::engineHooks().set_step_repeat = [](auto&&...) { return false; };
        QCOMPARE(get_editop_count(kJob, "pcb"), -3);
        QVERIFY(!set_step_repeat(kJob, "panel", {}));
        std::vector<step_repeat_op> rows;
        QVERIFY(get_step_repeat(kJob, "panel", rows));
        QCOMPARE(rows.size(), size_t(2));  // the hook refused, nothing was written

        const std::vector<wcref::EngineCall> calls = wcref::engineCalls();
        QCOMPARE(calls.size(), size_t(3));
        QCOMPARE(calls[0].operation, std::string("get_editop_count"));
        QCOMPARE(calls[0].arguments, (std::vector<std::string>{kJob, "pcb"}));
        QCOMPARE(calls[1].operation, std::string("set_step_repeat"));
        wcref::resetEngine();
        QVERIFY(wcref::engineCalls().empty());
        QVERIFY(!wcref::engineHooks().get_editop_count);
    }

    // A large table is logged by its beginning; a flood of such writes keeps the
    // log within its byte budget and keeps the newest call.
    void callLogBoundedInBytes() {
        wcref::clearEngineCalls();
        std::vector<step_repeat_op> rows(200);
        for (step_repeat_op& row : rows)
            row.step_name = "pcb";
        wcref::engineHooks().set_step_repeat = [](auto&&...) { return true; };
        const size_t writes = 2 * wcref::kCallLogBytes / wcref::kCallArgumentBytes;
        for (size_t k = 0; k < writes; ++k) {
            set_step_repeat(kJob, k + 1 == writes ? "last" : "panel", rows);
        }
        const std::vector<wcref::EngineCall> calls = wcref::engineCalls();
        size_t bytes = 0;
        for (const wcref::EngineCall& call : calls) {
            for (const std::string& argument : call.arguments) {
                QVERIFY(argument.size() < wcref::kCallArgumentBytes + 32);
                bytes += argument.size();
            }
        }
        QVERIFY(calls.size() < writes);
        QVERIFY(bytes <= wcref::kCallLogBytes);
        QCOMPARE(calls.back().arguments[1], std::string("last"));
        QVERIFY(QString::fromStdString(calls.back().arguments[2]).endsWith("more bytes)"));
    }

    // How the call log writes the arguments ('*' in an expected argument matches anything).
    void callArguments_data() {
        QTest::addColumn<Call>("call");
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("points") << Call([] {
            std::vector<step_repeat_op> rows;
            select_step_repeat(kJob, "panel", rows, {{1, 2}, {3.5, -4}}, 1);
        }) << "select_step_repeat"
                                << QStringList{"sample_job", "panel", "(1,2);(3.5,-4)", "1"};
        QTest::newRow("DFM scope") << Call([] {
            signal_layer_DFM_op_params params;
            params.scope = 3;
            signal_layer_DFM_result_map results;
            signal_layer_DFM_op(kJob, "pcb", {"top", "bottom"}, params, results, nullptr);
        }) << "signal_layer_DFM_op" << QStringList{"sample_job", "pcb", "top;bottom", "*scope=3*"};
        QTest::newRow("check scope")
            << Call([] {
                   signal_check_params params;
                   params.layers = "top";
                   std::map<signal_layers_checks_items, signal_check_result> result;
                   signal_layers_checks(kJob, "pcb", "top", params, {sl_spacing, sl_pad_connection},
                                        {}, result, nullptr, 2);
               })
            << "signal_layers_checks"
            << QStringList{"sample_job", "pcb", "top", "*layers=top*", "0;9", "ranges{0}", "2"};
    }
    void callArguments() {
        QFETCH(Call, call);
        QFETCH(QString, operation);
        QFETCH(QStringList, arguments);
        wcref::clearEngineCalls();
        call();
        const std::vector<wcref::EngineCall> calls = wcref::engineCalls();
        QCOMPARE(calls.size(), size_t(1));
        QCOMPARE(QString::fromStdString(calls[0].operation), operation);
        QCOMPARE(int(calls[0].arguments.size()), arguments.size());
        for (int k = 0; k < arguments.size(); ++k) {
            const QString actual = QString::fromStdString(calls[0].arguments[k]);
            QRegExp pattern(arguments[k], Qt::CaseSensitive, QRegExp::Wildcard);
            QVERIFY2(pattern.exactMatch(actual), qPrintable(actual));
        }
    }

    void longOperation_data() {
        QTest::addColumn<int>("operation");
        QTest::newRow("signal checks") << int(SignalChecks);
        QTest::newRow("signal optimisation") << int(SignalOpt);
        QTest::newRow("solder mask optimisation") << int(MaskOpt);
        QTest::newRow("teardrops") << int(Teardrops);
        QTest::newRow("NFP removal") << int(NfpRemoval);
        QTest::newRow("layer export") << int(LayerOut);
        QTest::newRow("step export") << int(StepOut);
    }
    void longOperation() {
        QFETCH(int, operation);
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        // Runs to 100 with a progress block, and without one.
        Progress progress;
        CheckProgress checks;
        QVERIFY(runLong(operation, "top", &progress, &checks, folder.path()));
        QCOMPARE(operation == SignalChecks ? checks.get_value() : progress.get_value(), 100.0);
        QVERIFY(runLong(operation, "top", nullptr, nullptr, folder.path()));

        // A stop requested before the start ends the run at once, still successfully.
        wcref::setLongOperationDuration(std::chrono::milliseconds(2000));
        Progress stopped;
        CheckProgress checks_stopped;
        stopped.request_stop();
        checks_stopped.request_stop();
        QElapsedTimer timer;
        timer.start();
        QVERIFY(runLong(operation, "top", &stopped, &checks_stopped, folder.path()));
        QVERIFY(timer.elapsed() < 1000);
        QVERIFY(stopped.get_value() < 100.0 && checks_stopped.get_value() < 100.0);
        // Unknown layer (or step) fails.
        QVERIFY(!runLong(operation, "nosuch", nullptr, nullptr, folder.path()));
    }

    void stopWhileRunning() {
        wcref::setLongOperationDuration(std::chrono::milliseconds(2000));
        Progress progress;
        QElapsedTimer timer;
        timer.start();
        auto worker = std::async(std::launch::async, [&progress] {
            teardrop_result_map results;
            return teardrop_create_DFM_op(kJob, "pcb", {"top", "bottom"}, {}, results, &progress);
        });
        // The GUI thread keeps using the engine while the worker runs.
        for (int k = 0; k < 5; ++k) {
            QVERIFY(!features("pcb", "l3").empty());
            QThread::msleep(10);
        }
        progress.request_stop();
        QVERIFY(worker.get());
        QVERIFY(timer.elapsed() < 1500);
        QVERIFY(progress.get_value() < 100.0);
    }

    void exportsNeedTheirFolder() {
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        QVERIFY(!layer_export(kJob, "pcb", "drill", export_drill,
                              folder.filePath("missing/dir/x.txt").toStdString(), nullptr));
        QVERIFY(Export_step(kJob, "panel", folder.filePath("panel").toStdString(), nullptr));
        QCOMPARE(QDir(folder.filePath("panel")).entryList(QDir::Files).size(), 14);  // one a layer
    }
};

QTEST_MAIN(tst_ReferenceEngine)
#include "tst_ReferenceEngine.moc"

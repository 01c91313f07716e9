// The reference engine on the sample job: jobs and matrix, features and edits, hooks and the call
// log, long operations with their stop flag, exports, step-and-repeat geometry and instance
// selection, and layer expressions, directly and through the UI service the dialogs call.

#include <QtTest>
#include <chrono>
#include <cmath>
#include <future>
#include <set>

#include "DataRows.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "LayerExpression.h"
#include "ReferenceEngine.h"
#include "StepRepeatGeometry.h"

using namespace Korvo::API;
using Progress = Korvo::COMMON::progress_value<void>;
using CheckProgress = Korvo::COMMON::progress_value<signal_check_result_map>;

Q_DECLARE_METATYPE(std::vector<point>)

using wctest::row;

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

enum LongOperation { SignalChecks, SignalOpt, MaskOpt, Teardrops, NfpRemoval, LayerOut };

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
    }
    return false;
}

point mil(double x, double y) {
    return {x * kMil, y * kMil};
}

std::vector<point> square(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

// "row:index" of every selected instance, in table order.
QString selectionText(const std::vector<step_repeat_op>& rows) {
    QStringList parts;
    for (size_t r = 0; r < rows.size(); ++r) {
        for (int index : rows[r].selection)
            parts << QString("%1:%2").arg(r).arg(index);
    }
    return parts.join(';');
}

QString storedSelection() {
    std::vector<step_repeat_op> rows;
    if (!get_step_repeat(kJob, "panel", rows))
        return "get_step_repeat failed";
    return selectionText(rows);
}

QString joined(const std::vector<std::string>& names) {
    QStringList list;
    for (const std::string& name : names)
        list << QString::fromStdString(name);
    return list.join(';');
}

std::vector<std::string> viaService(const QString& expression) {
    return Korvo::UIAPI::getAnalyzeAndDFMLayers("sample_job", expression.toStdString());
}

// The sample job's matrix.
std::vector<layer_info> matrix() {
    std::vector<std::string> steps;
    std::vector<layer_info> layers;
    get_matrix(kJob, steps, layers);
    return layers;
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
        QVERIFY(get_matrix("nosuch", steps, layers) != "OK");
        QVERIFY(get_graphics("nosuch", steps, shown) != "OK");
    }

    void typeMask_data() {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<int>("mask");
        QTest::newRow("pads") << "top" << int(FT_Pad);
        QTest::newRow("lines and arcs") << "top" << int(FT_Line | FT_Arc);
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
        QVERIFY(select_feature_by_info(kJob, "pcb", "top", top[5]));
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
        QVERIFY(!get_selected_feature_info(kJob, "nosuch", "top", selected));
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

    void longOperation_data() {
        QTest::addColumn<int>("operation");
        QTest::newRow("signal checks") << int(SignalChecks);
        QTest::newRow("signal optimisation") << int(SignalOpt);
        QTest::newRow("solder mask optimisation") << int(MaskOpt);
        QTest::newRow("teardrops") << int(Teardrops);
        QTest::newRow("NFP removal") << int(NfpRemoval);
        QTest::newRow("layer export") << int(LayerOut);
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
        // Unknown layer fails.
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

    void exportNeedsItsFolder() {
        QTemporaryDir folder;
        QVERIFY(!layer_export(kJob, "pcb", "drill", export_drill,
                              folder.filePath("missing/dir/x.txt").toStdString(), nullptr));
    }

    void pointInPolygon_data() {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inside");
        // L shape: the square 0..10 without its upper right quarter 5..10 x 5..10.
        QTest::newRow("inside lower arm") << 8.0 << 2.0 << true;
        QTest::newRow("inside the notch") << 8.0 << 8.0 << false;
        QTest::newRow("outside") << 12.0 << 2.0 << false;
        QTest::newRow("on an outer edge") << 0.0 << 7.0 << true;
        QTest::newRow("on the notch edge") << 7.0 << 5.0 << true;
        QTest::newRow("on the inner vertex") << 5.0 << 5.0 << true;
        QTest::newRow("level with a vertex, outside") << -1.0 << 5.0 << false;
        QTest::newRow("level with a vertex, inside") << 2.0 << 5.0 << true;
    }
    void pointInPolygon() {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(bool, inside);
        const std::vector<point> shape = {{0, 0}, {10, 0}, {10, 5}, {5, 5}, {5, 10}, {0, 10}};
        QCOMPARE(wcref::pointInPolygon({x, y}, shape), inside);
    }

    // The step-and-repeat editor reads 0 as "the two instances touch or overlap".
    void distance_data() {
        QTest::addColumn<std::vector<point>>("first");
        QTest::addColumn<std::vector<point>>("second");
        QTest::addColumn<int>("distance");
        const std::vector<point> unit = square(0, 0, 10, 10);
        QTest::newRow("diagonal gap") << unit << square(13, 14, 20, 20) << 5;
        QTest::newRow("vertex towards edge")
            << std::vector<point>{{25, 0}, {25, 10}, {15, 5}} << unit << 5;
        QTest::newRow("side by side") << unit << square(20, 0, 30, 10) << 10;
        QTest::newRow("truncated") << unit << square(11.2, 11.2, 20, 20) << 1;  // 1.697
        QTest::newRow("touching corner") << unit << square(10, 10, 20, 20) << 0;
        QTest::newRow("shared edge") << unit << square(10, 2, 20, 8) << 0;
        QTest::newRow("overlapping") << unit << square(5, 5, 15, 15) << 0;
        QTest::newRow("second inside first") << unit << square(2, 2, 4, 4) << 0;
        QTest::newRow("first inside second") << square(2, 2, 4, 4) << unit << 0;
        QTest::newRow("empty outline") << std::vector<point>{} << unit << -1;
    }
    void distance() {
        QFETCH(std::vector<point>, first);
        QFETCH(std::vector<point>, second);
        QFETCH(int, distance);
        point a;
        point b;
        QCOMPARE(distance_of_polygon(first, second, a, b), distance);
    }

    void select_data() {
        QTest::addColumn<std::vector<point>>("points");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("selected");
        // Sample panel, in mil: row 0 is 3 x 2 boards at x 500 + 2200 i, y 500 + 1700 j (each
        // 2000 x 1500); row 1 is a column of two boards turned by 90, x 7200..8700, y 500..2500
        // and 2700..4700.
        using P = std::vector<point>;
        QTest::newRow("pick first board") << P{mil(600, 600)} << 0 << "0:0";
        QTest::newRow("pick middle upper") << P{mil(3000, 2300)} << 0 << "0:4";
        QTest::newRow("pick rotated board") << P{mil(8000, 3000)} << 0 << "1:1";
        QTest::newRow("pick on a board edge") << P{mil(2500, 2000)} << 0 << "0:0";
        QTest::newRow("pick in a gap") << P{mil(2600, 600)} << 0 << "";
        QTest::newRow("rectangle, two centres") << P{mil(0, 0), mil(5000, 2100)} << 1 << "0:0;0:1";
        QTest::newRow("rectangle, corners reversed")
            << P{mil(5000, 2100), mil(0, 0)} << 1 << "0:0;0:1";
        QTest::newRow("rectangle, whole panel")
            << P{mil(0, 0), mil(9000, 7000)} << 1 << "0:0;0:1;0:2;0:3;0:4;0:5;1:0;1:1";
        QTest::newRow("rectangle, box only partly inside")
            << P{mil(7000, 0), mil(9000, 1400)} << 1 << "";
        QTest::newRow("rectangle, rotated centre")
            << P{mil(7000, 0), mil(9000, 2600)} << 1 << "1:0";
        QTest::newRow("polygon triangle")
            << P{mil(0, 0), mil(9000, 0), mil(0, 7000)} << 1 << "0:0;0:1;0:2;0:3;0:4";
    }
    void select() {
        QFETCH(std::vector<point>, points);
        QFETCH(int, mode);
        QFETCH(QString, selected);
        std::vector<step_repeat_op> rows;
        QVERIFY(select_step_repeat(kJob, "panel", rows, points, mode));
        QCOMPARE(selectionText(rows), selected);
        QCOMPARE(storedSelection(), selected);
    }

    void selectionAddsUpAndClears() {
        std::vector<step_repeat_op> rows;
        const int edits = get_editop_count(kJob, "panel");
        QVERIFY(select_step_repeat(kJob, "panel", rows, {mil(600, 600)}, 0));
        QVERIFY(select_step_repeat(kJob, "panel", rows, {mil(8000, 1000)}, 0));
        QCOMPARE(storedSelection(), QString("0:0;1:0"));
        QVERIFY(clear_select_step_repeat(kJob, "panel"));
        QCOMPARE(storedSelection(), QString());
        QCOMPARE(get_editop_count(kJob, "panel"), edits);  // selecting is no edit
    }

    // A pick takes the last placed of overlapping instances.
    void pickOnOverlaps() {
        step_repeat_op first;
        first.step_name = "pcb";
        step_repeat_op second = first;
        second.x = static_cast<int32_t>(1000 * kMil);
        QVERIFY(set_step_repeat(kJob, "panel", {first, second}));
        std::vector<step_repeat_op> rows;
        QVERIFY(select_step_repeat(kJob, "panel", rows, {mil(1500, 700)}, 0));
        QCOMPARE(selectionText(rows), QString("1:0"));
        QVERIFY(select_step_repeat(kJob, "panel", rows, {mil(500, 700)}, 0));
        QCOMPARE(selectionText(rows), QString("0:0;1:0"));
    }

    // An accepted table replaces the old one as one edit. The engine's refusals (no instances,
    // unknown step, nesting) are reached by no caller: the editor refuses first.
    void setRepeatIsOneEdit() {
        const int edits = get_editop_count(kJob, "panel");
        step_repeat_op row;
        row.step_name = "pcb";
        row.nx = 4;
        QVERIFY(set_step_repeat(kJob, "panel", {row}));
        std::vector<step_repeat_op> after;
        QVERIFY(get_step_repeat(kJob, "panel", after));
        QCOMPARE(after.size(), size_t(1));
        QCOMPARE(after[0].nx, 4);
        QCOMPARE(get_editop_count(kJob, "panel"), edits + 1);
    }

    // A filter ('.' first) answers in matrix order; a name list keeps its order and reports the
    // names the matrix lacks.
    void layerExpressions_data() {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("layers");
        QTest::addColumn<QString>("unknown");
        row("analysis default", ".type=signal|mixed&side=top|bottom&context=board", "top;bottom",
            "");
        row("signal and mixed", ".type=signal|mixed&context=board", "top;l3;l4;bottom", "");
        row("solder mask", ".type=solder_mask&context=board", "top_mask;bottom_mask", "");
        row("misc context", ".context=misc", "doc;fab_notes", "");
        row("negative", ".polarity=negative", "l2_gnd", "");
        row("name prefix", ".name=l*", "l2_gnd;l3;l4;l5_pwr", "");
        row("name alternatives and side", ".name=*_mask|*_silk&side=bottom",
            "bottom_mask;bottom_silk", "");
        row("name infix", ".name=*drill*", "drill;via_drill", "");
        row("star backtracks", ".name=*l", "drill;via_drill", "");
        row("two stars, anchored at both ends", ".name=b*t*m", "bottom", "");
        row("blanks around parts", "  . type = drill & side = none  ", "drill;via_drill", "");
        row("values are case-sensitive", ".type=Signal", "", "");
        row("terms all apply", ".type=signal&type=mixed", "", "");
        row("exact name", ".name=top", "top", "");
        row("given order kept", "bottom;l3;top", "bottom;l3;top", "");
        row("blanks and empty parts", " l3 ;; top ;", "l3;top", "");
        row("unknown in the middle", "top;nosuch;bottom", "top;bottom", "nosuch");
        row("repeated name once", "bottom;top;bottom", "bottom;top", "");
        row("case matters", "TOP;top", "top", "TOP");
        row("empty", "", "", "");
        row("point inside a name", "top;.type=signal", "top", ".type=signal");
    }
    void layerExpressions() {
        QFETCH(QString, expression);
        QFETCH(QString, layers);
        QFETCH(QString, unknown);
        const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
        QVERIFY2(parsed.ok, parsed.error.c_str());
        QCOMPARE(parsed.is_filter, expression.trimmed().startsWith('.'));
        std::vector<std::string> missing;
        QCOMPARE(joined(wcref::resolveLayerExpression(parsed, matrix(), &missing)), layers);
        QCOMPARE(joined(missing), unknown);
        QCOMPARE(joined(viaService(expression)), layers);
    }

    void malformed_data() {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("error");
        row("point alone", ".", "no terms");
        row("missing equals", ".type", "has no '='");
        row("empty alternative", ".type=signal|", "empty value");
        row("double ampersand", ".type=signal&&side=top", "term 2 is empty");
        row("lone ampersand", ".&", "term 1 is empty");
        row("unknown key", ".colour=red", "unknown key \"colour\"");
        row("two points", "..type=signal", "unknown key \".type\"");
        row("double equals", ".type==signal", "more than one '='");
    }
    void malformed() {
        QFETCH(QString, expression);
        QFETCH(QString, error);
        const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression.toStdString());
        QVERIFY(!parsed.ok);
        QVERIFY2(QString::fromStdString(parsed.error).contains(error), parsed.error.c_str());
        QVERIFY(wcref::resolveLayerExpression(parsed, matrix()).empty());
        QVERIFY(viaService(expression).empty());
    }
};

QTEST_MAIN(tst_ReferenceEngine)
#include "tst_ReferenceEngine.moc"

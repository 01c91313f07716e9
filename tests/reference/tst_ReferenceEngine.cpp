// The reference engine: jobs and matrix, features and edits, hooks and the call log, long
// operations with their stop flag, exports and the result database.

#include <QtTest>
#include <chrono>
#include <future>
#include <set>

#include "Korvo_API.h"
#include "ReferenceEngine.h"

using Korvo::API::featureInfo;
using Korvo::API::layer_info;
using Korvo::API::point;

namespace {

constexpr double kMil = 25400.0;
const std::string kJob = "sample_job";

std::vector<featureInfo> features(const std::string& step, const std::string& layer,
                                  int mask = Korvo::API::FT_All) {
    std::vector<featureInfo> found;
    Korvo::API::get_all_feature_info(kJob, step, layer, found, mask);
    return found;
}

const featureInfo* findAt(const std::vector<featureInfo>& list, double x_mil, double y_mil) {
    for (const featureInfo& f : list) {
        if (std::abs(f.start.x - x_mil * kMil) < 1e-3 &&
            std::abs(f.start.y - y_mil * kMil) < 1e-3) {
            return &f;
        }
    }
    return nullptr;
}

enum LongOperation {
    SignalChecks,
    SignalOpt,
    SolderMaskOpt,
    Teardrops,
    NfpRemoval,
    LayerExport,
    StepExport
};

// Runs one long operation on `layer` of "pcb"; files go below `folder`.
bool runLong(int operation, const std::string& layer, Korvo::COMMON::progress_value<void>* progress,
             Korvo::COMMON::progress_value<Korvo::API::signal_check_result_map>* check_progress,
             const QString& folder) {
    using namespace Korvo::API;
    const std::vector<std::string> layers{layer};
    switch (operation) {
        case SignalChecks: {
            std::map<signal_layers_checks_items, signal_check_result> result;
            result[sli_line_width];  // stale content must go
            const bool ok = signal_layers_checks(kJob, "pcb", layer, {}, {sl_spacing}, {}, result,
                                                 check_progress, 0);
            return ok && result.empty();
        }
        case SignalOpt: {
            signal_layer_DFM_result_map results;
            results["stale"];
            const bool ok = signal_layer_DFM_op(kJob, "pcb", layers, {}, results, progress);
            return ok && results.empty();
        }
        case SolderMaskOpt: {
            solder_mask_DFM_result_map results;
            results[smo_bridge_removed];
            const bool ok = solder_mask_DFM_op(kJob, "pcb", layers, {}, results, progress);
            return ok && results.empty();
        }
        case Teardrops: {
            teardrop_result_map results;
            results[tdi_deleted_old];
            const bool ok = teardrop_create_DFM_op(kJob, "pcb", layers, {}, results, progress);
            return ok && results.empty();
        }
        case NfpRemoval: {
            NFP_removal_result_map results;
            results[nfp_marked];
            const bool ok = NFP_removal_DFM_op(kJob, "pcb", layers, {}, results, progress);
            return ok && results.empty();
        }
        case LayerExport:
            return layer_export(kJob, "pcb", layer, export_gerber,
                                (folder + "/layer.txt").toStdString(), progress);
        case StepExport:
            return Export_step(kJob, layer == "nosuch" ? "nosuch" : "pcb",
                               (folder + "/step").toStdString(), progress);
    }
    return false;
}

}  // namespace

class tst_ReferenceEngine : public QObject {
    Q_OBJECT

private slots:
    void init();
    void jobs();
    void matrixAndGraphics();
    void sampleFeaturesAreConsistent_data();
    void sampleFeaturesAreConsistent();
    void typeMask_data();
    void typeMask();
    void selectionAndHighlight();
    void transformSelected_data();
    void transformSelected();
    void copyAndFlatten();
    void profileAndAttributes();
    void hookReplacesAndRecords_data();
    void hookReplacesAndRecords();
    void callArguments_data();
    void callArguments();
    void longOperation_data();
    void longOperation();
    void stopWhileRunning();
    void exportsWriteListings();
    void resultDatabase();
};

void tst_ReferenceEngine::init() {
    wcref::resetEngine();
    QVERIFY(wcref::openSampleJob(kJob));
}

void tst_ReferenceEngine::jobs() {
    QVERIFY(Korvo::API::is_job_opened(kJob));
    QVERIFY(!Korvo::API::open_job("other", "/some/folder/other"));
    QVERIFY(Korvo::API::open_job("second", ""));
    std::vector<std::string> opened;
    QCOMPARE(Korvo::API::get_opened_jobs(opened), 2);
    QCOMPARE(opened, (std::vector<std::string>{"sample_job", "second"}));

    // Reopening keeps the edits of the open job.
    QVERIFY(Korvo::API::bind_editop_count(kJob, "pcb", 7));
    QVERIFY(Korvo::API::open_job(kJob, ":sample"));
    QCOMPARE(Korvo::API::get_editop_count(kJob, "pcb"), 7);

    QCOMPARE(Korvo::API::close_job("second"), 0);
    QCOMPARE(Korvo::API::close_job("second"), -1);
    QVERIFY(!Korvo::API::is_job_opened("second"));
    QCOMPARE(Korvo::API::get_editop_count("second", "pcb"), -1);
}

void tst_ReferenceEngine::matrixAndGraphics() {
    std::vector<std::string> steps;
    std::vector<layer_info> layers;
    QCOMPARE(Korvo::API::get_matrix(kJob, steps, layers), std::string("OK"));
    QCOMPARE(steps, (std::vector<std::string>{"pcb", "panel"}));
    QCOMPARE(layers.size(), size_t(14));
    for (size_t k = 1; k < layers.size(); ++k) {
        QVERIFY(layers[k - 1].row < layers[k].row);
    }
    for (const layer_info& layer : layers) {
        QCOMPARE(layer.drill_start.empty(), layer.type != "drill");
    }

    std::map<int, std::string> step_map;
    QCOMPARE(Korvo::API::get_matrix(kJob, step_map, layers), std::string("OK"));
    QCOMPARE(step_map, (std::map<int, std::string>{{1, "pcb"}, {2, "panel"}}));
    QVERIFY(Korvo::API::create_step(kJob, "coupon", 0));
    QVERIFY(!Korvo::API::create_step(kJob, "coupon", 0));
    QCOMPARE(Korvo::API::get_matrix(kJob, step_map, layers), std::string("OK"));
    QCOMPARE(step_map[3], std::string("coupon"));
    QVERIFY(features("coupon", "top").empty());

    std::vector<layer_info> shown;
    QCOMPARE(Korvo::API::get_graphics(kJob, steps, shown), std::string("OK"));
    QCOMPARE(shown.size(), size_t(12));
    for (const layer_info& layer : shown) {
        QCOMPARE(layer.context, std::string("board"));
    }
    QVERIFY(wcref::setDisplayedLayers(kJob, {"bottom", "top"}));
    QVERIFY(!wcref::setDisplayedLayers(kJob, {"nosuch"}));
    QCOMPARE(Korvo::API::get_graphics(kJob, steps, shown), std::string("OK"));
    QCOMPARE(shown.size(), size_t(2));
    QCOMPARE(shown[0].name, std::string("top"));

    QVERIFY(Korvo::API::get_matrix("nosuch", steps, layers) != "OK");
    QVERIFY(Korvo::API::get_graphics("nosuch", steps, shown) != "OK");
}

void tst_ReferenceEngine::sampleFeaturesAreConsistent_data() {
    QTest::addColumn<QString>("layer");
    QTest::addColumn<QString>("attribute");
    QTest::addColumn<QString>("values");  // allowed values of `attribute` on pads, "" = present

    QTest::newRow("top smd") << "top"
                             << ".smd"
                             << "";
    QTest::newRow("bottom smd") << "bottom"
                                << ".smd"
                                << "";
    QTest::newRow("drill") << "drill"
                           << ".drill"
                           << "plated|non_plated";
    QTest::newRow("via drill") << "via_drill"
                               << ".drill"
                               << "via";
    QTest::newRow("top teardrops") << "top"
                                   << ".tear_drop"
                                   << "";
    QTest::newRow("inner signal") << "l3"
                                  << ""
                                  << "";
    QTest::newRow("plane") << "l5_pwr"
                           << ""
                           << "";
}

void tst_ReferenceEngine::sampleFeaturesAreConsistent() {
    QFETCH(QString, layer);
    QFETCH(QString, attribute);
    QFETCH(QString, values);

    const std::vector<featureInfo> all = features("pcb", layer.toStdString());
    QVERIFY(!all.empty());
    std::set<int> ids;
    int carrying = 0;
    for (const featureInfo& f : all) {
        QVERIFY(ids.insert(f.id).second);
        QCOMPARE(f.layer, layer.toStdString());
        auto found = f.attributes.find(attribute.toStdString());
        if (found != f.attributes.end()) {
            ++carrying;
            if (!values.isEmpty()) {
                QVERIFY(values.split('|').contains(QString::fromStdString(found->second)));
            }
        }
    }
    QCOMPARE(carrying > 0, !attribute.isEmpty());
    // A second job is built the same way.
    QVERIFY(Korvo::API::open_job("twin", ""));
    std::vector<featureInfo> twin;
    QVERIFY(Korvo::API::get_all_feature_info("twin", "pcb", layer.toStdString(), twin, 127));
    QCOMPARE(twin.size(), all.size());
    QCOMPARE(twin.back().start, all.back().start);
}

void tst_ReferenceEngine::typeMask_data() {
    QTest::addColumn<QString>("layer");
    QTest::addColumn<int>("mask");

    QTest::newRow("pads") << "top" << int(Korvo::API::FT_Pad);
    QTest::newRow("lines and arcs") << "top" << int(Korvo::API::FT_Line | Korvo::API::FT_Arc);
    QTest::newRow("surfaces") << "top" << int(Korvo::API::FT_Surface);
    QTest::newRow("texts") << "top_silk" << int(Korvo::API::FT_Text);
    QTest::newRow("negative pads") << "l5_pwr" << int(Korvo::API::FT_Pad | Korvo::API::FT_Negative);
    QTest::newRow("positive only")
        << "l5_pwr" << int(Korvo::API::FT_All & ~Korvo::API::FT_Negative);
}

void tst_ReferenceEngine::typeMask() {
    QFETCH(QString, layer);
    QFETCH(int, mask);

    const std::vector<featureInfo> all = features("pcb", layer.toStdString());
    const std::vector<featureInfo> some = features("pcb", layer.toStdString(), mask);
    QVERIFY(!some.empty());
    const int polarity = mask & (Korvo::API::FT_Positive | Korvo::API::FT_Negative);
    int expected = 0;
    for (const featureInfo& f : all) {
        const bool type_ok = (mask & f.type) != 0;
        const bool polarity_ok =
            polarity == 0 ||
            (mask & (f.positive ? Korvo::API::FT_Positive : Korvo::API::FT_Negative));
        expected += (type_ok && polarity_ok) ? 1 : 0;
    }
    QCOMPARE(int(some.size()), expected);
    QVERIFY(some.size() < all.size());
}

void tst_ReferenceEngine::selectionAndHighlight() {
    const std::vector<featureInfo> top = features("pcb", "top");
    std::vector<featureInfo> selected;
    QVERIFY(Korvo::API::select_feature_by_info(kJob, "pcb", "top", top[3]));
    featureInfo by_place = top[5];
    by_place.id = -1;
    QVERIFY(Korvo::API::select_feature_by_info(kJob, "pcb", "top", by_place));
    featureInfo missing = top[5];
    missing.id = 100000;
    QVERIFY(!Korvo::API::select_feature_by_info(kJob, "pcb", "top", missing));
    QVERIFY(Korvo::API::get_selected_feature_info(kJob, "pcb", "top", selected));
    QCOMPARE(selected.size(), size_t(2));
    QCOMPARE(selected[1].id, top[5].id);

    QVERIFY(Korvo::API::clear_selected_features(kJob, "pcb", "top"));
    QVERIFY(Korvo::API::get_selected_feature_info(kJob, "pcb", "top", selected));
    QVERIFY(selected.empty());
    Korvo::API::select_features(kJob, "pcb", "top");
    QVERIFY(Korvo::API::get_selected_feature_info(kJob, "pcb", "top", selected));
    QCOMPARE(selected.size(), top.size());

    Korvo::API::highlight_features(kJob, "pcb", "l3");
    QVERIFY(Korvo::API::highlight_feature_by_info(kJob, "pcb", "l4", features("pcb", "l4")[0]));
    QVERIFY(Korvo::API::clear_highlighted_features(kJob, "pcb", "l3"));
    QVERIFY(!Korvo::API::clear_highlighted_features(kJob, "pcb", "nosuch"));
    QVERIFY(!Korvo::API::get_selected_feature_info(kJob, "nosuch", "top", selected));
}

void tst_ReferenceEngine::transformSelected_data() {
    QTest::addColumn<bool>("rotate");
    QTest::addColumn<bool>("mirrorX");
    QTest::addColumn<bool>("mirrorY");
    QTest::addColumn<bool>("scale");
    QTest::addColumn<bool>("move");
    QTest::addColumn<double>("angle");
    QTest::addColumn<double>("x");  // where the pad at (200, 200) mil ends, anchor (100, 0)
    QTest::addColumn<double>("y");

    QTest::newRow("move") << false << false << false << false << true << 0.0 << 210.0 << 220.0;
    QTest::newRow("rotate 90 clockwise")
        << true << false << false << false << false << 90.0 << 300.0 << -100.0;
    QTest::newRow("rotate 180") << true << false << false << false << false << 180.0 << 0.0
                                << -200.0;
    QTest::newRow("mirror x") << false << true << false << false << false << 0.0 << 0.0 << 200.0;
    QTest::newRow("mirror y") << false << false << true << false << false << 0.0 << 200.0 << -200.0;
    QTest::newRow("scale") << false << false << false << true << false << 0.0 << 300.0 << 600.0;
    QTest::newRow("scale then move")
        << false << false << false << true << true << 0.0 << 310.0 << 620.0;
    QTest::newRow("mirror then rotate")
        << true << true << false << false << false << 90.0 << 300.0 << 100.0;
}

void tst_ReferenceEngine::transformSelected() {
    QFETCH(bool, rotate);
    QFETCH(bool, mirrorX);
    QFETCH(bool, mirrorY);
    QFETCH(bool, scale);
    QFETCH(bool, move);
    QFETCH(double, angle);
    QFETCH(double, x);
    QFETCH(double, y);

    const std::vector<featureInfo> before = features("pcb", "top");
    const featureInfo* pad = findAt(before, 200, 200);
    QVERIFY(pad != nullptr);
    const featureInfo* other = findAt(before, 300, 200);
    QVERIFY(other != nullptr);
    QVERIFY(Korvo::API::select_feature_by_info(kJob, "pcb", "top", *pad));
    const int edits = Korvo::API::get_editop_count(kJob, "pcb");

    QVERIFY(Korvo::API::transform(kJob, "pcb", "top", 0, rotate, mirrorX, mirrorY, scale, move,
                                  {100 * kMil, 0}, angle, 2.0, 3.0, 10 * kMil, 20 * kMil));
    const std::vector<featureInfo> after = features("pcb", "top");
    QVERIFY(findAt(after, x, y) != nullptr);
    QCOMPARE(findAt(after, x, y)->id, pad->id);
    QCOMPARE(findAt(after, x, y)->mirror, mirrorX != mirrorY);
    QVERIFY(findAt(after, 300, 200) != nullptr);  // not selected, not moved
    QCOMPARE(Korvo::API::get_editop_count(kJob, "pcb"), edits + 1);
}

void tst_ReferenceEngine::copyAndFlatten() {
    const size_t top = features("pcb", "top").size();
    const size_t doc = features("pcb", "doc").size();
    QVERIFY(Korvo::API::copy_layer_features(kJob, "pcb", "top", "doc", true));
    QCOMPARE(features("pcb", "doc").size(), doc + top);
    QVERIFY(Korvo::API::copy_layer_features(kJob, "pcb", "top", "doc", false));
    const std::vector<featureInfo> copied = features("pcb", "doc");
    QCOMPARE(copied.size(), top);
    QCOMPARE(copied.front().layer, std::string("doc"));
    QVERIFY(!Korvo::API::copy_layer_features(kJob, "pcb", "top", "nosuch", true));

    // Eight boards on the panel: each board's drills land, placed, in the panel's drill layer.
    const size_t board_drills = features("pcb", "drill").size();
    const size_t panel_drills = features("panel", "drill").size();
    const int edits = Korvo::API::get_editop_count(kJob, "panel");
    QVERIFY(Korvo::API::flatten_step(kJob, "panel", "drill", "drill"));
    const std::vector<featureInfo> flat = features("panel", "drill");
    QCOMPARE(flat.size(), panel_drills + 8 * board_drills);
    QCOMPARE(Korvo::API::get_editop_count(kJob, "panel"), edits + 1);
    // Board hole (200, 200) in the first board at (500, 500) and in the first rotated board at
    // (7200, 2500): clockwise by 90, (200, 200) becomes (200, -200).
    QVERIFY(findAt(flat, 700, 700) != nullptr);
    QVERIFY(findAt(flat, 7400, 2300) != nullptr);
    std::set<int> ids;
    for (const featureInfo& f : flat) {
        QVERIFY(ids.insert(f.id).second);
    }
    QVERIFY(!Korvo::API::flatten_step(kJob, "panel", "drill", "nosuch"));
}

void tst_ReferenceEngine::profileAndAttributes() {
    Korvo::API::reply_box box;
    QVERIFY(Korvo::API::profile_box(kJob, "pcb", box));
    QCOMPARE(box.xmax, 2000 * kMil);
    QCOMPARE(box.ymax, 1500 * kMil);
    QVERIFY(!Korvo::API::set_step_profile(kJob, "pcb", {{0, 0}, {1, 1}}));
    QVERIFY(Korvo::API::set_step_profile(kJob, "pcb", {{0, 0}, {10, 0}, {10, 20}}));
    QVERIFY(Korvo::API::profile_box(kJob, "pcb", box));
    QCOMPARE(box.ymax, 20.0);
    QVERIFY(Korvo::API::set_step_profile(kJob, "pcb", {}));
    QVERIFY(!Korvo::API::has_profile(kJob, "pcb"));
    QVERIFY(!Korvo::API::profile_box(kJob, "pcb", box));

    QVERIFY(Korvo::API::set_datum_point(kJob, "panel", {5, 6}));
    Korvo::API::step_header_info header;
    QVERIFY(Korvo::API::get_step_header_infos(kJob, "panel", header));
    QCOMPARE(header.datum, (point{5, 6}));
    QCOMPARE(header.repeat_rows, 2);
    QVERIFY(header.has_profile);

    std::map<std::string, std::string> attributes;
    QVERIFY(Korvo::API::get_step_attributes(kJob, "panel", attributes));
    const size_t count = attributes.size();
    QVERIFY(Korvo::API::edit_step_attributes(kJob, "panel", {{".new", "1"}}));
    QVERIFY(Korvo::API::get_step_attributes(kJob, "panel", attributes));
    QCOMPARE(attributes.size(), count + 1);
    QCOMPARE(attributes[".new"], std::string("1"));
    // datum, attributes: two edits on top of the sample's zero.
    QCOMPARE(Korvo::API::get_editop_count(kJob, "panel"), 2);
}

void tst_ReferenceEngine::hookReplacesAndRecords_data() {
    QTest::addColumn<int>("answer");
    QTest::newRow("positive") << 42;
    QTest::newRow("negative") << -3;
}

void tst_ReferenceEngine::hookReplacesAndRecords() {
    QFETCH(int, answer);
    wcref::clearEngineCalls();
    wcref::engineHooks().get_editop_count = [answer](const std::string& job,
                                                     const std::string& step) {
        return job == kJob && step == "pcb" ? answer : 0;
    };
    wcref::engineHooks().set_step_repeat = [](auto&&...) { return false; };
    QCOMPARE(Korvo::API::get_editop_count(kJob, "pcb"), answer);
    QVERIFY(!Korvo::API::set_step_repeat(kJob, "panel", {}));
    std::vector<Korvo::API::step_repeat_op> rows;
    QVERIFY(Korvo::API::get_step_repeat(kJob, "panel", rows));
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

void tst_ReferenceEngine::callArguments_data() {
    QTest::addColumn<int>("which");
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("select_step_repeat")
        << 0 << "select_step_repeat" << QStringList{"sample_job", "panel", "(1,2);(3.5,-4)", "1"};
    QTest::newRow("DFM scope") << 1 << "signal_layer_DFM_op"
                               << QStringList{"sample_job", "pcb", "top;bottom", "*scope=3*"};
    QTest::newRow("check scope") << 2 << "signal_layers_checks"
                                 << QStringList{"sample_job", "pcb",       "top", "*layers=top*",
                                                "0;9",        "ranges{0}", "2"};
    QTest::newRow("set_datum_point")
        << 3 << "set_datum_point" << QStringList{"sample_job", "pcb", "(0.25,100)"};
    QTest::newRow("NFP kinds") << 4 << "NFP_removal_DFM_op"
                               << QStringList{"sample_job", "pcb", "top", "*pad_kinds=1;3*"};
}

void tst_ReferenceEngine::callArguments() {
    QFETCH(int, which);
    QFETCH(QString, operation);
    QFETCH(QStringList, arguments);

    using namespace Korvo::API;
    wcref::clearEngineCalls();
    switch (which) {
        case 0: {
            std::vector<step_repeat_op> rows;
            select_step_repeat(kJob, "panel", rows, {{1, 2}, {3.5, -4}}, 1);
            break;
        }
        case 1: {
            signal_layer_DFM_op_params params;
            params.scope = 3;
            signal_layer_DFM_result_map results;
            signal_layer_DFM_op(kJob, "pcb", {"top", "bottom"}, params, results, nullptr);
            break;
        }
        case 2: {
            signal_check_params params;
            params.layers = "top";
            std::map<signal_layers_checks_items, signal_check_result> result;
            signal_layers_checks(kJob, "pcb", "top", params, {sl_spacing, sl_pad_connection}, {},
                                 result, nullptr, 2);
            break;
        }
        case 3:
            set_datum_point(kJob, "pcb", {0.25, 100});
            break;
        case 4: {
            NFP_removal_DFM_op_params params;
            params.pad_kinds = {1, 3};
            NFP_removal_result_map results;
            NFP_removal_DFM_op(kJob, "pcb", {"top"}, params, results, nullptr);
            break;
        }
    }
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

void tst_ReferenceEngine::longOperation_data() {
    QTest::addColumn<int>("operation");
    QTest::newRow("signal checks") << int(SignalChecks);
    QTest::newRow("signal optimisation") << int(SignalOpt);
    QTest::newRow("solder mask optimisation") << int(SolderMaskOpt);
    QTest::newRow("teardrops") << int(Teardrops);
    QTest::newRow("NFP removal") << int(NfpRemoval);
    QTest::newRow("layer export") << int(LayerExport);
    QTest::newRow("step export") << int(StepExport);
}

void tst_ReferenceEngine::longOperation() {
    QFETCH(int, operation);
    QTemporaryDir folder;
    QVERIFY(folder.isValid());

    // Runs to 100 with a block, and without one.
    Korvo::COMMON::progress_value<void> progress;
    Korvo::COMMON::progress_value<Korvo::API::signal_check_result_map> check_progress;
    QVERIFY(runLong(operation, "top", &progress, &check_progress, folder.path()));
    const double reached =
        operation == SignalChecks ? check_progress.get_value() : progress.get_value();
    QCOMPARE(reached, 100.0);
    QVERIFY(runLong(operation, "top", nullptr, nullptr, folder.path()));

    // A stop requested before the start ends the run at once, still successfully.
    wcref::setLongOperationDuration(std::chrono::milliseconds(2000));
    Korvo::COMMON::progress_value<void> stopped;
    Korvo::COMMON::progress_value<Korvo::API::signal_check_result_map> check_stopped;
    stopped.request_stop();
    check_stopped.request_stop();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(runLong(operation, "top", &stopped, &check_stopped, folder.path()));
    QVERIFY(timer.elapsed() < 1000);
    QVERIFY(stopped.get_value() < 100.0 && check_stopped.get_value() < 100.0);

    // Unknown layer (or step) fails before any progress.
    QVERIFY(!runLong(operation, "nosuch", nullptr, nullptr, folder.path()));
}

void tst_ReferenceEngine::stopWhileRunning() {
    wcref::setLongOperationDuration(std::chrono::milliseconds(2000));
    Korvo::COMMON::progress_value<void> progress;
    QElapsedTimer timer;
    timer.start();
    auto worker = std::async(std::launch::async, [&progress] {
        Korvo::API::teardrop_result_map results;
        return Korvo::API::teardrop_create_DFM_op(kJob, "pcb", {"top", "bottom"}, {}, results,
                                                  &progress);
    });
    // The GUI thread keeps using the engine while the worker runs.
    for (int k = 0; k < 5; ++k) {
        QCOMPARE(int(features("pcb", "l3").size()) > 0, true);
        QThread::msleep(10);
    }
    progress.request_stop();
    QVERIFY(worker.get());
    QVERIFY(timer.elapsed() < 1500);
    QVERIFY(progress.get_value() < 100.0);
}

void tst_ReferenceEngine::exportsWriteListings() {
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString path = folder.filePath("drill.txt");
    QVERIFY(Korvo::API::layer_export(kJob, "pcb", "drill", Korvo::API::export_drill,
                                     path.toStdString(), nullptr));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    const std::vector<featureInfo> drills = features("pcb", "drill");
    QVERIFY(lines.contains(QString("features %1").arg(drills.size())));
    QVERIFY(lines.contains("format drill"));
    QCOMPARE(lines.filter(QRegExp("^pad ")).size(), int(drills.size()));
    QCOMPARE(lines.filter("non_plated").size(), 4);

    QVERIFY(!Korvo::API::layer_export(kJob, "pcb", "drill", Korvo::API::export_drill,
                                      folder.filePath("missing/dir/x.txt").toStdString(), nullptr));
    QVERIFY(
        Korvo::API::Export_step(kJob, "panel", folder.filePath("panel").toStdString(), nullptr));
    QCOMPARE(QDir(folder.filePath("panel")).entryList(QDir::Files).size(), 14);
}

void tst_ReferenceEngine::resultDatabase() {
    Korvo::API::dms_signal_check_params params;
    params.job = kJob;
    params.step = "pcb";
    params.scope = 2;
    params.params.layers = "top;bottom";
    params.tests = {Korvo::API::sl_spacing, Korvo::API::sl_smd};
    Korvo::API::signal_check_result_map result;
    Korvo::API::check_info hit;
    hit.value = 1234;
    result["top"][Korvo::API::sli_line_width].red.push_back(hit);

    const auto first = Korvo::API::insertSignalLayerAnalysisResult(params, result);
    params.step = "panel";
    const auto second = Korvo::API::insertSignalLayerAnalysisResult(params, {});
    QVERIFY(first.success && second.success);
    QVERIFY(first.id != second.id);
    QCOMPARE(first.message, "stored as " + std::to_string(first.id));

    Korvo::API::dms_signal_check_params loaded;
    Korvo::API::signal_check_result_map loaded_result;
    QVERIFY(Korvo::API::getSignalLayerAnalysisResult(first.id, loaded, loaded_result));
    QCOMPARE(loaded.step, std::string("pcb"));
    QCOMPARE(loaded.scope, 2);
    QCOMPARE(loaded.tests.size(), size_t(2));
    QCOMPARE(loaded_result["top"][Korvo::API::sli_line_width].red.at(0).value, 1234.0);
    QVERIFY(!Korvo::API::getSignalLayerAnalysisResult(second.id + 1, loaded, loaded_result));

    Korvo::API::signal_check_result_map tq;
    QVERIFY(Korvo::API::getTqSignalLayerAnalysisResult("tq" + std::to_string(first.id), tq));
    QCOMPARE(tq.size(), size_t(1));
    for (const std::string& key : std::vector<std::string>{
             "tq", "tqx", std::to_string(first.id), "tq-1", "tq999", "tq99999999999999999999"}) {
        QVERIFY2(!Korvo::API::getTqSignalLayerAnalysisResult(key, tq), key.c_str());
    }

    const auto master = Korvo::API::getCheckResultMaster();
    QCOMPARE(master.size(), size_t(2));
    const std::vector<std::string>& entry = master.at(second.id);
    QCOMPARE(entry.size(), size_t(5));
    QCOMPARE(entry[0], std::string("SignalLayer"));
    QCOMPARE(entry[1], kJob);
    QCOMPARE(entry[2], std::string("panel"));
    QVERIFY(!entry[3].empty());
}

QTEST_MAIN(tst_ReferenceEngine)
#include "tst_ReferenceEngine.moc"

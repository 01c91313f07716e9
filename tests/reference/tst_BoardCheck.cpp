// A real board end to end: the protel example of the gerbv package (copper, mask, silk and
// drill files) opened as a job and checked through the engine call the check dialog makes,
// with the range table the dialog builds.

#include <QtTest>

#include "DataRows.h"
#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "ReferenceEngine.h"

using namespace Korvo::API;

namespace {

constexpr double kMil = 25400.0;
const std::string kJob = "protel";
const std::string kTop = "se_sg_if_v2.gtl";

std::map<signal_layers_checks_items, signal_check_range> dialogRanges() {
    std::map<signal_layers_checks_items, signal_check_range> ranges;
    std::vector<Korvo::UIAPI::Analysis_Ranges_Record> records;
    Korvo::UIAPI::getRanges("SignalLayerRanges", records);
    for (const auto& r : records) {
        const auto item = static_cast<signal_layers_checks_items>(
            Korvo::UIAPI::getRangesEnum("SignalLayerRanges", r.name));
        ranges[item] = {r.RedLv, r.YellowLv, r.GreenLv};
    }
    return ranges;
}

bool isSpacing(signal_layers_checks_items item) {
    return item <= sli_surface_to_surface_spacing ||
           (item >= sli_smd_to_smd_spacing && item <= sli_smd_to_line_spacing);
}

}  // namespace

class tst_BoardCheck : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        wcref::resetEngine();
        QVERIFY(open_job(kJob, "/usr/share/doc/gerbv/examples/protel-pnp"));
    }

    // The board's tightest clearance rule is 4 mil (its .RUL file): just below it no spacing
    // hit may appear; at wider spacings every hit measures below the spacing asked for.
    void spacingAgainstTheDesignRules_data() {
        QTest::addColumn<double>("spacing");  // mil
        QTest::addColumn<bool>("hits");
        wctest::row("below the 4 mil rule", 3.9, false);
        wctest::row("the 8 mil rule", 8.0, true);
        wctest::row("12 mil", 12.0, true);
    }
    void spacingAgainstTheDesignRules() {
        QFETCH(double, spacing);
        QFETCH(bool, hits);
        signal_check_params params;
        params.layers = kTop;
        params.spacing = spacing * kMil;
        params.drill_to_copper = 14 * kMil;
        params.rout_to_copper = 25 * kMil;
        params.sliver_min = 2 * kMil;
        params.min_pad_overlap = 5 * kMil;
        std::vector<signal_layers_checks_list> tests;
        for (int t = sl_spacing; t <= sl_pad_connection; ++t) {
            tests.push_back(static_cast<signal_layers_checks_list>(t));
        }
        std::map<signal_layers_checks_items, signal_check_result> result;
        Korvo::COMMON::progress_value<signal_check_result_map> progress;
        QVERIFY(signal_layers_checks(kJob, "pcb", kTop, params, tests, dialogRanges(), result,
                                     &progress, 0));
        QCOMPARE(progress.get_value(), 100.0);

        std::vector<layer_info> layers;
        std::vector<std::string> steps;
        get_matrix(kJob, steps, layers);
        std::map<int, std::set<int>> ids;  // layer row -> feature ids
        for (const layer_info& l : layers) {
            std::vector<featureInfo> features;
            get_all_feature_info(kJob, "pcb", l.name, features, FT_All);
            for (const featureInfo& f : features) {
                ids[l.row].insert(f.id);
            }
        }
        int spacing_hits = 0;
        for (const auto& entry : result) {
            for (const auto* list : {&entry.second.red, &entry.second.yellow, &entry.second.green,
                                     &entry.second.other}) {
                for (const check_info& hit : *list) {
                    QVERIFY(hit.shape.points.size() == 2);
                    QVERIFY(!hit.features.empty());
                    for (const feature_ref& ref : hit.features) {
                        QVERIFY(ids[ref.layer_row].count(ref.id) == 1);
                    }
                    if (isSpacing(entry.first)) {
                        ++spacing_hits;
                        QVERIFY(hit.value < spacing * kMil);
                    }
                }
            }
        }
        QCOMPARE(spacing_hits > 0, hits);
    }
};

QTEST_MAIN(tst_BoardCheck)
#include "tst_BoardCheck.moc"

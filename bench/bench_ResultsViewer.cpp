// The results viewer against what peers do (a QListWidget with one item per hit), on a result of
// 1,000,000 hits over 20 layers x 71 categories, one category of layer01 holding 100,000 hits;
// and the viewer's triage of that result: 10,000 waivers and an earlier run with a tenth of its
// hits elsewhere. Run with --benchmark_repetitions=5 and read the medians.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <cstdlib>
#include <memory>

#include "Korvo_UIAPI.h"
#include "ReferenceEngine.h"
#include "analysis/HitTriage.h"
#include "analysis/TriagePanel.h"
#include "analysis/Widget_ResultsViewer.h"

using namespace Korvo::API;
using waiver = Korvo::API::analysis_waiver;

namespace {

constexpr int kLayers = 20;
constexpr int kCategories = 71;
constexpr std::size_t kHits = 1000000;
constexpr std::size_t kBigCategory = 100000;

std::size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

std::vector<check_info> makeHits(std::size_t count, std::size_t seed) {
    std::vector<check_info> hits(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t k = (seed + i) * 2654435761u;
        check_info& hit = hits[i];
        hit.value = 25400.0 * (1.0 + double(k % 500) / 100.0);  // 1 to 6 mil in 0.01 steps
        const double x = double(k % 100000) * 1000.0;
        const double y = double((k / 100000) % 100000) * 1000.0;
        hit.shape.kind = check_points::line;
        hit.shape.points = {{x, y}, {x + hit.value, y}};
        hit.features = {{int32_t(k % 14), int32_t(k % 5000)}, {int32_t(k % 14), int32_t(k % 4999)}};
    }
    return hits;
}

// One record: 10 % red, 20 % yellow, 50 % green, 20 % other.
signal_check_result makeRecord(signal_layers_checks_items item, std::size_t count,
                               std::size_t seed) {
    signal_check_result record;
    record.item = item;
    const std::size_t red = count / 10;
    const std::size_t yellow = count / 5;
    const std::size_t other = count / 5;
    record.red = makeHits(red, seed);
    record.yellow = makeHits(yellow, seed + red);
    record.other = makeHits(other, seed + red + yellow);
    record.green = makeHits(count - red - yellow - other, seed + red + yellow + other);
    return record;
}

// The big category's hits lie between two of 57 nets (350 pairs), so that grouping by net has
// groups.
void nameNets(signal_check_result& record) {
    std::size_t k = 0;
    for (auto* list : {&record.red, &record.yellow, &record.green, &record.other}) {
        for (check_info& hit : *list) {
            hit.nets = {"N" + std::to_string(k % 50), "N" + std::to_string(k % 7 + 50)};
            ++k;
        }
    }
}

std::shared_ptr<const signal_check_result_map> makeResult() {
    auto result = std::make_shared<signal_check_result_map>();
    const std::size_t rest = (kHits - kBigCategory) / (kLayers * kCategories - 1);
    std::size_t made = 0;
    for (int layer = 0; layer < kLayers; ++layer) {
        char name[16];
        std::snprintf(name, sizeof name, "layer%02d", layer + 1);
        for (int item = 0; item < kCategories; ++item) {
            const bool big = layer == 0 && item == 0;
            std::size_t count = big ? kBigCategory : rest;
            if (layer == kLayers - 1 && item == kCategories - 1) {
                count = kHits - made;  // the remainder, so the total is exact
            }
            const auto key = static_cast<signal_layers_checks_items>(item);
            (*result)[name][key] = makeRecord(key, count, made);
            if (big) {
                nameNets((*result)[name][key]);
            }
            made += count;
        }
    }
    return result;
}

// Built once: its size is reported by BM_Memory.
struct Fixture {
    std::size_t result_bytes = 0;
    std::shared_ptr<const signal_check_result_map> result;
    QWidget host;

    Fixture() {
        const std::size_t before = heapInUse();
        result = makeResult();
        result_bytes = heapInUse() - before;
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

// What peers do: one list item per hit, with its value as text.
void fillList(QListWidget& list, const signal_check_result_map& result, int level) {
    list.clear();
    for (const auto& [layer, items] : result) {
        for (const auto& [item, record] : items) {
            const std::vector<check_info>* lists[] = {&record.red, &record.yellow, &record.green,
                                                      &record.other};
            for (int l = 0; l <= level; ++l) {
                for (const check_info& hit : *lists[l]) {
                    // Data set before the item joins the list: setting it afterwards makes
                    // every insertion look the item up again.
                    auto* row = new QListWidgetItem(QString::number(hit.value / 25400.0, 'f', 3));
                    row->setData(Qt::UserRole,
                                 QVariant::fromValue<qulonglong>(reinterpret_cast<quintptr>(&hit)));
                    list.addItem(row);
                }
            }
        }
    }
}

// ---- the viewer -----------------------------------------------------------------------------

void BM_Viewer_Refresh(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(&f.host);
    for (auto _ : state) {
        viewer.RefreshSignalLayerChecksData(f.result);
    }
    state.counters["hits"] = double(viewer.model().total());
}

// Each "Sv:" entry in turn.
void cycleSeverity(benchmark::State& state, Widget_ResultsViewer& viewer) {
    auto* level = viewer.findChild<QComboBox*>("m_pLevelCB");
    int entry = 0;
    for (auto _ : state) {
        level->setCurrentIndex(entry);
        viewer.on_Level_changed(level->currentText());
        entry = (entry + 1) % 4;
    }
}

void BM_Viewer_SeverityChange(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    cycleSeverity(state, viewer);
}

void BM_Viewer_Next(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    for (auto _ : state) {
        if (viewer.currentIndex() == viewer.currentCount()) {
            viewer.on_First_clicked();
        } else {
            viewer.on_Right_clicked();
        }
    }
}

// Show All over the 100,000 hits of layer01's first category (at "All").
void BM_Viewer_ShowAll100k(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    auto* level = viewer.findChild<QComboBox*>("m_pLevelCB");
    level->setCurrentIndex(wc::SevAll);
    viewer.on_Level_changed(level->currentText());
    viewer.findChild<QCheckBox*>("m_pShowAllCB")->setChecked(true);
    for (auto _ : state) {
        viewer.on_m_pShowAllCB_CheckState_Changed(Qt::Checked);
        benchmark::DoNotOptimize(viewer.drawingData().shapes.data());
    }
    state.counters["shapes"] = double(viewer.drawingData().shapes.size());
}

void BM_Viewer_SortTable100k(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    auto* level = viewer.findChild<QComboBox*>("m_pLevelCB");
    level->setCurrentIndex(wc::SevAll);
    viewer.on_Level_changed(level->currentText());
    auto* table = viewer.findChild<QTableView*>("m_pHitTable");
    bool ascending = false;
    for (auto _ : state) {
        table->sortByColumn(1, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        ascending = !ascending;
    }
    state.counters["rows"] = double(table->model()->rowCount());
}

// ---- triage -----------------------------------------------------------------------------------

// The waivers come from the engine hook, so that what is measured is the viewer, not the
// database (bench_ResultDatabase measures listing them).
struct TriageFixture {
    wc::TriageContext context;
    std::vector<waiver> waivers;

    TriageFixture() {
        Fixture& f = fixture();
        const wc::ResultsModel shown = wc::modelOf(f.result, {"SignalLayerRanges", "", {}});
        const wc::TriageRun run(shown);
        context.scope = {"SignalLayer", "bench", "pcb"};
        for (std::size_t number = 0; number < run.size(); number += run.size() / 10000) {
            waivers.push_back(wc::waiverForHit(run, number, context.scope, "bench", "bench"));
            waivers.back().id = int(waivers.size());
        }
        // The earlier run: every tenth hit of each list 10 mil away.
        auto earlier = std::make_shared<signal_check_result_map>(*f.result);
        for (auto& [layer, items] : *earlier) {
            for (auto& [item, record] : items) {
                for (auto* list : {&record.red, &record.yellow, &record.green, &record.other}) {
                    for (std::size_t i = 0; i < list->size(); i += 10) {
                        for (point& p : (*list)[i].shape.points) {
                            p.x += 254000.0;
                        }
                    }
                }
            }
        }
        context.earlier = std::make_shared<wc::ResultsModel>(
            wc::modelOf(std::shared_ptr<const signal_check_result_map>(earlier),
                        {"SignalLayerRanges", "", {}}));
        context.earlier_label = "earlier";
        wcref::engineHooks().getAnalysisWaivers = [this](const std::string&, const std::string&,
                                                         const std::string&,
                                                         std::vector<waiver>& out, std::string&) {
            out = waivers;
            return true;
        };
        wcref::engineHooks().getAnalysisRuns =
            [](const std::string&, const std::string&, const std::string&,
               std::vector<analysis_run_info>& runs, std::string&) {
                runs.clear();
                return true;
            };
    }
};

TriageFixture& triageFixture() {
    static TriageFixture f;
    return f;
}

// Identifying a million hits, applying the waivers and comparing with the earlier run: once per
// run of the check.
void BM_Viewer_SetTriage(benchmark::State& state) {
    Fixture& f = fixture();
    TriageFixture& t = triageFixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    for (auto _ : state) {
        viewer.setTriage(t.context);
    }
    state.counters["waived"] = double(viewer.triage().triage().waivedCount());
    state.counters["new"] = double(viewer.triage().triage().count(wc::RunState::New));
}

// The lists again under each "Sv:" entry, with the waived hits left out and the new ones
// counted.
void BM_Viewer_SeverityChangeTriaged(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    viewer.setTriage(triageFixture().context);
    cycleSeverity(state, viewer);
}

// From the open hits to the new ones only and back.
void BM_Viewer_ViewChangeTriaged(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    viewer.setTriage(triageFixture().context);
    auto* views = viewer.findChild<QComboBox*>("m_pViewCB");
    int entry = 0;
    for (auto _ : state) {
        entry = entry == 0 ? 1 : 0;
        views->setCurrentIndex(entry);
        emit views->activated(entry);
    }
}

// Grouping every hit of layer01 (144,000 at "All") by item (1) or by net (3), and back.
void BM_Viewer_Group(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    auto* level = viewer.findChild<QComboBox*>("m_pLevelCB");
    level->setCurrentIndex(wc::SevAll);
    viewer.on_Level_changed(level->currentText());
    auto* group = viewer.findChild<QComboBox*>("m_pGroupCB");
    for (auto _ : state) {
        group->setCurrentIndex(int(state.range(0)));
        viewer.on_Group_changed(group->currentText());
        group->setCurrentIndex(0);
        viewer.on_Group_changed(group->currentText());
    }
    group->setCurrentIndex(int(state.range(0)));
    viewer.on_Group_changed(group->currentText());
    state.counters["rows"] =
        double(viewer.findChild<QTableView*>("m_pHitTable")->model()->rowCount());
}

// The text filter over the 100,000 hits of layer01's first category.
void BM_Viewer_Find100k(benchmark::State& state) {
    Fixture& f = fixture();
    Widget_ResultsViewer viewer(0, &f.host, f.result);
    auto* level = viewer.findChild<QComboBox*>("m_pLevelCB");
    level->setCurrentIndex(wc::SevAll);
    viewer.on_Level_changed(level->currentText());
    auto* find = viewer.findChild<QLineEdit*>("m_pFindLE");
    bool on = false;
    for (auto _ : state) {
        on = !on;
        find->setText(on ? QStringLiteral("^3\\.1") : QString());
        viewer.on_Find_pressed();
    }
}

// ---- the baseline: a QListWidget with one item per hit --------------------------------------

void BM_List_Refresh(benchmark::State& state) {
    Fixture& f = fixture();
    QListWidget list;
    for (auto _ : state) {
        fillList(list, *f.result, 3);
    }
    state.counters["hits"] = double(list.count());
}

void BM_List_SeverityChange(benchmark::State& state) {
    Fixture& f = fixture();
    QListWidget list;
    int entry = 0;
    for (auto _ : state) {
        fillList(list, *f.result, entry);
        entry = (entry + 1) % 4;
    }
}

void BM_List_Next(benchmark::State& state) {
    Fixture& f = fixture();
    QListWidget list;
    fillList(list, *f.result, 3);
    int row = 0;
    for (auto _ : state) {
        row = (row + 1) % list.count();
        list.setCurrentRow(row);
        auto* hit = reinterpret_cast<const check_info*>(
            list.item(row)->data(Qt::UserRole).value<qulonglong>());
        benchmark::DoNotOptimize(hit->shape.points.data());
    }
}

void BM_List_ShowAll100k(benchmark::State& state) {
    Fixture& f = fixture();
    QListWidget list;
    list.setSelectionMode(QAbstractItemView::ExtendedSelection);
    const auto& record = f.result->at("layer01").at(sli_pad_to_pad_spacing);
    signal_check_result_map one;
    one["layer01"][sli_pad_to_pad_spacing] = record;
    fillList(list, one, 3);
    std::vector<std::vector<point>> shapes;
    for (auto _ : state) {
        list.selectAll();
        shapes.clear();
        for (QListWidgetItem* item : list.selectedItems()) {
            const auto* hit =
                reinterpret_cast<const check_info*>(item->data(Qt::UserRole).value<qulonglong>());
            shapes.push_back(hit->shape.points);
        }
        list.clearSelection();
    }
    state.counters["shapes"] = double(shapes.size());
}

void BM_List_Sort100k(benchmark::State& state) {
    Fixture& f = fixture();
    QListWidget list;
    signal_check_result_map one;
    one["layer01"][sli_pad_to_pad_spacing] = f.result->at("layer01").at(sli_pad_to_pad_spacing);
    fillList(list, one, 3);
    bool ascending = false;
    for (auto _ : state) {
        list.sortItems(ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        ascending = !ascending;
    }
}

// ---- memory ---------------------------------------------------------------------------------

void BM_Memory(benchmark::State& state) {
    Fixture& f = fixture();
    std::size_t viewer_bytes = 0;
    std::size_t list_bytes = 0;
    for (auto _ : state) {
        const std::size_t before = heapInUse();
        auto viewer = std::make_unique<Widget_ResultsViewer>(0, &f.host, f.result);
        viewer_bytes = heapInUse() - before;
        viewer.reset();
        const std::size_t list_before = heapInUse();
        auto list = std::make_unique<QListWidget>();
        fillList(*list, *f.result, 3);
        list_bytes = heapInUse() - list_before;
    }
    state.counters["result_MB"] = double(f.result_bytes) / 1e6;
    state.counters["viewer_MB"] = double(viewer_bytes) / 1e6;
    state.counters["viewer_pct"] = 100.0 * double(viewer_bytes) / double(f.result_bytes);
    state.counters["list_MB"] = double(list_bytes) / 1e6;
}

BENCHMARK(BM_Viewer_Refresh)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_List_Refresh)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Viewer_SeverityChange)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_List_SeverityChange)->Unit(benchmark::kMillisecond)->Iterations(4);
BENCHMARK(BM_Viewer_Next)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_List_Next)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Viewer_ShowAll100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_List_ShowAll100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Viewer_SortTable100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_List_Sort100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Viewer_SetTriage)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_Viewer_SeverityChangeTriaged)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Viewer_ViewChangeTriaged)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Viewer_Group)->Unit(benchmark::kMillisecond)->Arg(1)->Arg(3);
BENCHMARK(BM_Viewer_Find100k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Memory)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Panel geometry at production size: 1,000 and 10,000 single instances, and one 100 x 100
// array, every instance selected. Targets at 10,000: expansion 5 ms, align to a reference
// 10 ms, pack left 100 ms, space evenly 20 ms, rectangle select 5 ms.

#include <benchmark/benchmark.h>

#include <random>

#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "steprepeat/PanelGeometry.h"

using namespace wc::panel;

namespace {

// A coupon of 1 x 0.8 mm on a pitch of 1.3 x 1.0 mm, each single nudged at random inside its
// cell so that packing and spacing have work to do.
constexpr int kWidth = 1000000;
constexpr int kHeight = 800000;
constexpr int kPitchX = 1300000;
constexpr int kPitchY = 1000000;

int columnsFor(int count) {
    return count >= 10000 ? 100 : 40;
}

Rows singles(int count) {
    std::mt19937 random(7);
    std::uniform_int_distribution<int> nudge(0, 250000);
    const int columns = columnsFor(count);
    Rows rows;
    rows.reserve(count);
    for (int k = 0; k < count; ++k) {
        step_repeat_op r;
        r.step_name = "coupon";
        r.x = (k % columns) * kPitchX + nudge(random);
        r.y = (k / columns) * kPitchY + nudge(random) / 2;
        r.selection.insert(0);
        rows.push_back(std::move(r));
    }
    return rows;
}

Rows array() {
    step_repeat_op r;
    r.step_name = "coupon";
    r.dx = kPitchX;
    r.dy = kPitchY;
    r.nx = 100;
    r.ny = 100;
    for (int k = 0; k < r.nx * r.ny; ++k) {
        r.selection.insert(r.selection.end(), k);
    }
    return {r};
}

Rows panelOf(const benchmark::State& state) {
    return state.range(0) == 0 ? array() : singles(static_cast<int>(state.range(0)));
}

PanelFrame frame() {
    PanelFrame f;
    f.child_boxes["coupon"] = {0, 0, kWidth, kHeight};
    f.panel = {-5000000, -5000000, 140000000, 110000000};
    f.gap = 50000;
    return f;
}

void label(benchmark::State& state) {
    state.SetLabel(state.range(0) == 0 ? "100 x 100 array" : "single instances");
    state.counters["instances"] = state.range(0) == 0 ? 10000 : double(state.range(0));
}

void BM_Expansion(benchmark::State& state) {
    const Rows rows = panelOf(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(expandInstances(rows));
    }
    label(state);
}

void BM_AlignToReference(benchmark::State& state) {
    const Rows rows = panelOf(state);
    const PanelFrame f = frame();
    const reply_box reference{0, 0, kWidth, kHeight};
    for (auto _ : state) {
        benchmark::DoNotOptimize(alignToReference(rows, reference, AlignKind::Left, f.child_boxes));
    }
    label(state);
}

void BM_PackLeft(benchmark::State& state) {
    const Rows rows = panelOf(state);
    const PanelFrame f = frame();
    for (auto _ : state) {
        const Outcome out = do_align(rows, PackEdge::Left, f);
        if (!out.ok()) {
            state.SkipWithError("pack refused");
        }
        benchmark::DoNotOptimize(out);
    }
    label(state);
}

void BM_SpaceEvenly(benchmark::State& state) {
    const Rows rows = panelOf(state);
    const PanelFrame f = frame();
    for (auto _ : state) {
        benchmark::DoNotOptimize(arrange_selected_steps(rows, Axis::Horizontal, f));
    }
    label(state);
}

// The engine's rectangle select over a quarter of the panel, as the popup asks for it.
void BM_RectangleSelect(benchmark::State& state) {
    wcref::resetEngine();
    wcref::openSampleJob("bench");
    Korvo::API::create_step("bench", "coupon", 0);
    Korvo::API::set_step_profile("bench", "coupon",
                                 {{0, 0}, {kWidth, 0}, {kWidth, kHeight}, {0, kHeight}});
    Korvo::API::set_step_repeat("bench", "panel", withNoneSelected(panelOf(state)));
    const std::vector<Korvo::API::point> corners{{0, 0}, {65000000, 50000000}};
    Rows rows;
    for (auto _ : state) {
        Korvo::API::clear_select_step_repeat("bench", "panel");
        Korvo::API::select_step_repeat("bench", "panel", rows, corners, 1);
    }
    state.counters["selected"] = selectedCount(rows);
    label(state);
    wcref::resetEngine();
}

}  // namespace

#define PANEL_SIZES ->Arg(1000)->Arg(10000)->Arg(0)->Unit(benchmark::kMillisecond)
BENCHMARK(BM_Expansion) PANEL_SIZES;
BENCHMARK(BM_AlignToReference) PANEL_SIZES;
BENCHMARK(BM_PackLeft) PANEL_SIZES;
BENCHMARK(BM_SpaceEvenly) PANEL_SIZES;
BENCHMARK(BM_RectangleSelect) PANEL_SIZES;

BENCHMARK_MAIN();

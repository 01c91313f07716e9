// Triage of a result of 1,000,000 hits (10 layers x 10 items): its identities and index, the
// comparison with an earlier run of as many hits of which 10 % changed, and 10,000 waivers
// applied to it. Run with --benchmark_repetitions=5 and read the medians.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <memory>

#include "analysis/HitTriage.h"
#include "analysis/ResultAdapters.h"

using namespace Korvo::API;

namespace {

std::size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// 10 layers x 10 items x 10,000 hits, their nets drawn from 1,000 names.
constexpr int kLayers = 10;
constexpr int kItems = 10;
constexpr std::size_t kPerRecord = 10000;
constexpr std::size_t kNets = 1000;
constexpr std::size_t kWaivers = 10000;
constexpr double kMil = 25400.0;

std::uint64_t scramble(std::uint64_t k) {
    k = (k ^ (k >> 31)) * 0x7fb5d329728ea185ull;
    return k ^ (k >> 27);
}

std::string netName(std::uint64_t k) {
    char name[16];
    std::snprintf(name, sizeof name, "NET%04u", unsigned(k % kNets));
    return name;
}

// Hit `k` of a run over a board of 10 x 10 inches. Earlier runs differ from the later one in
// one hit in ten (half moved by 2 mil, half elsewhere), and one in four of the rest lies 0.3 mil
// away, a measurement that shifted a little.
check_info makeHit(std::uint64_t k, bool earlier) {
    const std::uint64_t r = scramble(k + 1);
    double x = double(r % 10000) * kMil;
    double y = double((r / 10000) % 10000) * kMil;
    const std::uint64_t change = (r >> 40) % 40;
    if (earlier && change < 2) {
        x += 2 * kMil;
    } else if (earlier && change < 4) {
        x = double((r >> 20) % 10000) * kMil;
    } else if (earlier && change < 14) {
        y += 0.3 * kMil;
    }
    check_info hit;
    hit.value = 3 * kMil;
    hit.shape.points = {{x - 1.5 * kMil, y}, {x + 1.5 * kMil, y}};
    const std::uint64_t net = r >> 8;
    hit.nets = {netName(net), netName(net + 1 + (r >> 24) % (kNets - 1))};
    hit.signature = (r >> 50) % 50;
    return hit;
}

std::shared_ptr<const signal_check_result_map> makeResult(bool earlier) {
    auto result = std::make_shared<signal_check_result_map>();
    std::uint64_t k = 0;
    for (int layer = 0; layer < kLayers; ++layer) {
        char name[16];
        std::snprintf(name, sizeof name, "layer%02d", layer + 1);
        for (int item = 0; item < kItems; ++item) {
            signal_check_result& record =
                (*result)[name][static_cast<signal_layers_checks_items>(item)];
            record.item = static_cast<signal_layers_checks_items>(item);
            record.red.reserve(kPerRecord);
            for (std::size_t i = 0; i < kPerRecord; ++i) {
                record.red.push_back(makeHit(k++, earlier));
            }
        }
    }
    return result;
}

struct Fixture {
    wc::ResultsModel shown_model;
    wc::ResultsModel earlier_model;
    std::size_t triage_bytes = 0;
    std::unique_ptr<wc::TriageRun> shown;
    std::unique_ptr<wc::TriageRun> earlier;
    std::vector<analysis_waiver> waivers;

    Fixture() {
        const wc::AdapterInput input{"SignalLayerRanges", "", {}};
        shown_model = wc::modelOf(makeResult(false), input);
        earlier_model = wc::modelOf(makeResult(true), input);
        const std::size_t before = heapInUse();
        shown = std::make_unique<wc::TriageRun>(shown_model);
        triage_bytes = heapInUse() - before;
        earlier = std::make_unique<wc::TriageRun>(earlier_model);
        // Half one-hit waivers, one in ten of them of a hit that is gone; half net pairs.
        const wc::TriageScope scope{"SignalLayer", "job", "pcb"};
        const std::size_t stride = shown->size() / kWaivers;
        for (std::size_t i = 0; i < kWaivers; ++i) {
            const std::size_t number = i * stride;
            if (i % 2 == 0) {
                waivers.push_back(wc::waiverForHit(*shown, number, scope, "bench", "bench"));
                if (i % 20 == 0) {
                    wc::HitIdentity gone = (*shown)[number].identity;
                    gone.x += 1000;
                    waivers.back().identity = gone.text();
                }
            } else {
                waivers.push_back(*wc::waiverForNets(*shown, number, scope, "bench", "bench"));
            }
        }
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_TriageRun(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        wc::TriageRun run(f.shown_model);
        benchmark::DoNotOptimize(run.size());
    }
    state.counters["hits"] = double(f.shown->size());
    state.counters["run_MB"] = double(f.triage_bytes) / 1e6;
}

void BM_CompareRuns(benchmark::State& state) {
    Fixture& f = fixture();
    wc::RunComparison comparison;
    for (auto _ : state) {
        comparison = wc::compareRuns(*f.shown, *f.earlier);
    }
    state.counters["new"] = double(comparison.count(wc::RunState::New));
    state.counters["unchanged"] = double(comparison.count(wc::RunState::Unchanged));
    state.counters["fixed"] = double(comparison.fixed.size());
}

void BM_ApplyWaivers(benchmark::State& state) {
    Fixture& f = fixture();
    wc::WaiverMatch match;
    for (auto _ : state) {
        match = wc::applyWaivers(*f.shown, f.waivers);
    }
    state.counters["waivers"] = double(f.waivers.size());
    state.counters["waived"] = double(match.waived);
    state.counters["stale"] = double(match.stale.size());
}

}  // namespace

BENCHMARK(BM_TriageRun)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_CompareRuns)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK(BM_ApplyWaivers)->Unit(benchmark::kMillisecond)->Repetitions(5);

BENCHMARK_MAIN();

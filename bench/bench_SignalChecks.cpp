// Spacing check of the reference engine on generated copper layers: 10,000 to 100,000
// features. The target is a median of at most 1 s and a peak of at most 200 MB at 100,000
// features (run that size alone to read its peak), and growth close to n log n.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <map>

#include "SignalChecks.h"
#include "SyntheticJob.h"

namespace {

const wcref::SignalCheckInput& layerOf(int features) {
    static std::map<int, wcref::SignalCheckInput> made;
    auto found = made.find(features);
    if (found == made.end()) {
        wcref::SignalCheckInput input;
        input.copper.features = wcref::syntheticCopper(features, features / 1000, 1, nullptr);
        for (size_t k = 0; k < input.copper.features.size(); ++k) {
            input.copper.features[k].id = static_cast<int>(k) + 1;
        }
        found = made.emplace(features, std::move(input)).first;
    }
    return found->second;
}

void BM_SpacingCheck(benchmark::State& state) {
    const wcref::SignalCheckInput& input = layerOf(static_cast<int>(state.range(0)));
    Korvo::API::signal_check_params params;
    params.spacing = 10 * 25400.0;
    size_t hits = 0;
    for (auto _ : state) {
        wcref::SignalResult result;
        wcref::SignalChecks::run(input, params, {Korvo::API::sl_spacing}, {}, result, nullptr, 0);
        hits = result.empty() ? 0 : result.begin()->second.other.size();
        benchmark::DoNotOptimize(result);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["hits"] = static_cast<double>(hits);
    state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
    state.SetComplexityN(state.range(0));
}

}  // namespace

BENCHMARK(BM_SpacingCheck)
    ->Arg(10000)
    ->Arg(30000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true)
    ->Complexity(benchmark::oNLogN);

BENCHMARK_MAIN();

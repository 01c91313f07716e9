// The reference DFM operations on generated boards of 10,000 and 100,000 features: the signal
// layer optimisation enlarging every plated pad (rings 6 mil, minimum 8), and teardrops on every
// trace end. Each iteration works on a freshly generated job, made outside the timing. The
// target is the spacing check's: a median of at most 1 s at 100,000 features, growth close to
// n log n.

#include <benchmark/benchmark.h>

#include "Korvo_API.h"
#include "ReferenceEngine.h"
#include "SyntheticJob.h"

namespace {

constexpr double kMil = 25400.0;

void freshJob(int features) {
    Korvo::API::close_job("bench");
    wcref::openSyntheticJob("bench", features, features / 1000, 1);
}

void BM_SignalLayerPadUp(benchmark::State& state) {
    wcref::setLongOperationDuration(std::chrono::milliseconds(0));
    Korvo::API::signal_layer_DFM_op_params params;
    params.pth_ar_min = 8 * kMil;
    params.pth_ar_opt = 9 * kMil;
    params.spacing_min = 4 * kMil;
    size_t hits = 0;
    for (auto _ : state) {
        state.PauseTiming();
        freshJob(static_cast<int>(state.range(0)));
        state.ResumeTiming();
        Korvo::API::signal_layer_DFM_result_map results;
        Korvo::API::signal_layer_DFM_op("bench", "pcb", {"top"}, params, results, nullptr);
        hits = results["top"][Korvo::API::sdi_pad_up].other.size();
    }
    state.counters["enlarged"] = static_cast<double>(hits);
    state.SetComplexityN(state.range(0));
}

void BM_Teardrops(benchmark::State& state) {
    wcref::setLongOperationDuration(std::chrono::milliseconds(0));
    Korvo::API::teardrop_create_DFM_op_params params;
    params.drill_size_max = 40 * kMil;
    params.trace_width_max = 15 * kMil;
    params.copper_spacing = 4 * kMil;
    size_t made = 0;
    for (auto _ : state) {
        state.PauseTiming();
        freshJob(static_cast<int>(state.range(0)));
        state.ResumeTiming();
        Korvo::API::teardrop_result_map results;
        Korvo::API::teardrop_create_DFM_op("bench", "pcb", {"top"}, params, results, nullptr);
        made = results[Korvo::API::tdi_created_drilled].other.size() +
               results[Korvo::API::tdi_created_undrilled].other.size();
    }
    state.counters["created"] = static_cast<double>(made);
    state.SetComplexityN(state.range(0));
}

}  // namespace

BENCHMARK(BM_SignalLayerPadUp)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(3)
    ->ReportAggregatesOnly(true)
    ->Complexity(benchmark::oNLogN);
BENCHMARK(BM_Teardrops)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(3)
    ->ReportAggregatesOnly(true)
    ->Complexity(benchmark::oNLogN);

BENCHMARK_MAIN();

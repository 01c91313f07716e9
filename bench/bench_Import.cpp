// Import of the largest example board of the gerbv package (a 1.7 MB front copper layer)
// through libgerbv into engine features.

#include <benchmark/benchmark.h>

#include "GerberImport.h"

namespace {

void BM_ImportLargestExample(benchmark::State& state) {
    const std::string path = "/usr/share/doc/gerbv/examples/hellboard/hellboard.front.gbr";
    size_t count = 0;
    for (auto _ : state) {
        std::vector<Korvo::API::featureInfo> features;
        std::map<int, int> tools;
        std::string message;
        if (!wcref::GerberImport::read(path, "front", features, tools, message)) {
            state.SkipWithError(message.c_str());
            return;
        }
        count = features.size();
    }
    state.counters["features"] = static_cast<double>(count);
}

}  // namespace

BENCHMARK(BM_ImportLargestExample)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

BENCHMARK_MAIN();

// The result database of the reference engine on its default SQLite file.
//
// BM_SaveRun stores one run of a signal layer check through insertSignalLayerAnalysisResult:
// 10^6 hits over four layers and four items, each with a value, a box, two features and two
// nets; hits_per_s counts hits stored per second of real time, peak_MB the process's peak.
// BM_StoreWaiver stores one waiver (its own connection and durable transaction).
// BM_ListWaivers reads back 10,000 stored waivers of one job and step, each with one reason;
// they are stored once, one by one, on a memory file system when there is one (/dev/shm), where
// storing them takes seconds instead of minutes of waiting for the disk.
//
// WIDGET_COMMON_BENCH_BRIEF (bench/run --brief) stores 10^4 hits and lists 1,000 waivers.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <cstdlib>
#include <string>

#include "HostSettings.h"
#include "Korvo_API.h"
#include "ResultDatabase.h"

namespace {

using namespace Korvo::API;

bool brief() {
    return std::getenv("WIDGET_COMMON_BENCH_BRIEF") != nullptr;
}

// A fresh application folder below `base`, so the database below it starts empty.
struct Scene {
    explicit Scene(const QString& base = QDir::tempPath())
        : dir(base + QStringLiteral("/bench_ResultDatabase-XXXXXX")) {
        wcref::setApplicationDir(dir.path());
        wcref::setResultDatabase({});
    }
    ~Scene() { wcref::setApplicationDir(QString()); }
    QTemporaryDir dir;
};

analysis_waiver someWaiver(int k) {
    analysis_waiver waiver;
    waiver.kind = "SignalLayer";
    waiver.job = "bench";
    waiver.step = "pcb";
    waiver.item = sli_line_to_line_spacing;
    waiver.layer = "layer0";
    waiver.nets = {"GND", "N1"};
    waiver.identity = "spacing layer0 GND N1 @" + std::to_string(k);
    waiver.reason = "clearance agreed with the customer";
    waiver.user = "bench";
    return waiver;
}

signal_check_result_map runOf(int hits) {
    const signal_layers_checks_items items[] = {sli_line_width, sli_pad_size,
                                                sli_line_to_line_spacing, sli_smd_pitch};
    signal_check_result_map result;
    for (int k = 0; k < hits; ++k) {
        check_info hit;
        hit.value = 25400.0 + k % 977;
        hit.shape.kind = check_points::box;
        hit.shape.points = {{1000.0 * k, 2000.5}, {1000.0 * k + 380, 2500.5}};
        hit.features = {{3, k}, {3, k + 1}};
        hit.nets = {"N" + std::to_string(k % 5000), "GND"};
        const std::string layer = "layer" + std::to_string(k % 4);
        result[layer][items[(k / 4) % 4]].red.push_back(std::move(hit));
    }
    return result;
}

void BM_SaveRun(benchmark::State& state) {
    Scene scene;
    const int hits = static_cast<int>(state.range(0));
    const signal_check_result_map result = runOf(hits);
    dms_signal_check_params params;
    params.job = "bench";
    params.step = "pcb";
    params.params.layers = "layer0;layer1;layer2;layer3";
    for (auto _ : state) {
        const Quorin::DBS_API::CreateSesult answer =
            insertSignalLayerAnalysisResult(params, result);
        if (!answer.success) {
            state.SkipWithError(answer.message.c_str());
            break;
        }
        state.PauseTiming();
        wcref::clearResultDatabase();
        state.ResumeTiming();
    }
    state.counters["hits_per_s"] = benchmark::Counter(
        static_cast<double>(hits), benchmark::Counter::kIsIterationInvariantRate);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
}
BENCHMARK(BM_SaveRun)
    ->Arg(brief() ? 10000 : 1000000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1)
    ->Repetitions(brief() ? 1 : 5)
    ->ReportAggregatesOnly(true);

void BM_StoreWaiver(benchmark::State& state) {
    Scene scene;
    int k = 0;
    for (auto _ : state) {
        const Quorin::DBS_API::CreateSesult answer = insertAnalysisWaiver(someWaiver(k++));
        if (!answer.success) {
            state.SkipWithError(answer.message.c_str());
            break;
        }
    }
}
BENCHMARK(BM_StoreWaiver)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Repetitions(brief() ? 1 : 5)
    ->ReportAggregatesOnly(true);

// Stores `count` waivers once, in a folder kept for every repetition; false when one failed.
bool storeWaivers(int count) {
    static Scene scene(QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm")
                                                                 : QDir::tempPath());
    static const bool stored = [count] {
        for (int k = 0; k < count; ++k) {
            if (!insertAnalysisWaiver(someWaiver(k)).success) {
                return false;
            }
        }
        return true;
    }();
    return stored;
}

void BM_ListWaivers(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    if (!storeWaivers(count)) {
        state.SkipWithError("a waiver was not stored");
        return;
    }
    std::vector<analysis_waiver> waivers;
    std::string error;
    for (auto _ : state) {
        if (!getAnalysisWaivers("SignalLayer", "bench", "pcb", waivers, error) ||
            waivers.size() != static_cast<size_t>(count)) {
            state.SkipWithError("the waivers were not listed");
            break;
        }
    }
}
BENCHMARK(BM_ListWaivers)
    ->Arg(brief() ? 1000 : 10000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(brief() ? 1 : 5)
    ->ReportAggregatesOnly(true);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

// Reports of a result of 1,000,000 hits (10 layers x 10 items, every severity list), compared
// with an earlier run of which one hit in ten moved and with 2,000 waivers applied: building the
// report model, and writing it as JSON, CSV, JUnit XML and SARIF to a device that only counts
// the bytes, so that the disk does not set the pace. Run with --benchmark_repetitions=5 and read
// the medians.

#include <benchmark/benchmark.h>

#include <QIODevice>
#include <cstdio>
#include <memory>

#include "analysis/Report.h"
#include "analysis/ResultAdapters.h"

using namespace Korvo::API;

namespace {

constexpr int kLayers = 10;
constexpr int kItems = 10;
constexpr std::size_t kPerRecord = 10000;
constexpr std::size_t kWaivers = 2000;
constexpr double kMil = 25400.0;

std::uint64_t mix(std::uint64_t k) {
    k ^= k >> 33;
    k *= 0xff51afd7ed558ccdull;
    k ^= k >> 33;
    k *= 0xc4ceb9fe1a85ec53ull;
    return k ^ (k >> 33);
}

// Hit `k` somewhere on a 10 x 10 inch board, between two of 2,000 nets. In the earlier run one
// hit in ten lay 3 mil to the left.
check_info hitOf(std::uint64_t k, bool earlier) {
    const std::uint64_t r = mix(k);
    const double x = double(r % 100000) * kMil / 10.0 - (earlier && k % 10 == 0 ? 3 * kMil : 0.0);
    const double y = double((r >> 17) % 100000) * kMil / 10.0;
    check_info hit;
    hit.value = double(2 + r % 3) * kMil;
    hit.required = 5 * kMil;
    hit.shape.points = {{x, y - hit.value / 2}, {x, y + hit.value / 2}};
    hit.nets = {"NET_" + std::to_string((r >> 34) % 2000), "NET_" + std::to_string(k % 2000)};
    hit.signature = r >> 50;
    return hit;
}

std::shared_ptr<const signal_check_result_map> resultOf(bool earlier) {
    auto result = std::make_shared<signal_check_result_map>();
    std::uint64_t k = 0;
    for (int layer = 0; layer < kLayers; ++layer) {
        const std::string name = "signal_" + std::to_string(layer + 1);
        for (int item = 0; item < kItems; ++item) {
            const auto id = static_cast<signal_layers_checks_items>(item * 7);
            signal_check_result& record = (*result)[name][id];
            record.item = id;
            // Four in ten red, three yellow, two green, one in the fourth list.
            for (std::size_t i = 0; i < kPerRecord; ++i, ++k) {
                const std::size_t level = k % 10;
                auto& list = level < 4   ? record.red
                             : level < 7 ? record.yellow
                             : level < 9 ? record.green
                                         : record.other;
                list.push_back(hitOf(k, earlier));
            }
        }
    }
    return result;
}

// Takes every byte and keeps only their number.
class CountingDevice : public QIODevice {
public:
    CountingDevice() { open(QIODevice::WriteOnly); }
    qint64 bytes = 0;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override {
        bytes += size;
        return size;
    }
};

struct Fixture {
    wc::ResultsModel model;
    wc::ResultsModel earlier_model;
    std::unique_ptr<wc::TriageRun> run;
    std::unique_ptr<wc::TriageRun> earlier;
    wc::RunComparison comparison;
    std::vector<analysis_waiver> waivers;
    wc::WaiverMatch match;
    wc::ReportInput input;
    wc::ReportModel report;

    Fixture() {
        const wc::AdapterInput adapter{"SignalLayerRanges", "", {}};
        model = wc::modelOf(resultOf(false), adapter);
        earlier_model = wc::modelOf(resultOf(true), adapter);
        run = std::make_unique<wc::TriageRun>(model);
        earlier = std::make_unique<wc::TriageRun>(earlier_model);
        comparison = wc::compareRuns(*run, *earlier);
        const wc::TriageScope scope{"SignalLayer", "bench", "pcb"};
        for (std::size_t i = 0; i < kWaivers; ++i) {
            const std::size_t number = i * (run->size() / kWaivers);
            waivers.push_back(i % 2 == 0
                                  ? wc::waiverForHit(*run, number, scope, "bench", "bench")
                                  : *wc::waiverForNets(*run, number, scope, "bench", "bench"));
        }
        match = wc::applyWaivers(*run, waivers);
        input.kind = QStringLiteral("SignalLayer");
        input.caption = QStringLiteral("Signal Layer Checks");
        input.job = QStringLiteral("bench");
        input.step = QStringLiteral("pcb");
        input.time = QDateTime::currentDateTime();
        input.parameters = {{QStringLiteral("Spacing"), QStringLiteral("10")}};
        input.model = &model;
        input.run = run.get();
        input.waivers = &waivers;
        input.waiver_match = &match;
        input.earlier_model = &earlier_model;
        input.earlier = earlier.get();
        input.comparison = &comparison;
        if (!wc::buildReport(input, report, nullptr)) {
            std::fprintf(stderr, "the bench report cannot be built\n");
            std::abort();
        }
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_BuildReport(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        wc::ReportModel report;
        benchmark::DoNotOptimize(wc::buildReport(f.input, report, nullptr));
    }
    const wc::ReportModel& r = f.report;
    state.counters["hits"] = double(r.total.hits());
    state.counters["fixed"] = double(r.total.state(wc::ReportState::Fixed));
    state.counters["waived"] = double(r.total.state(wc::ReportState::Waived));
    state.counters["model_KB"] =
        double(r.spans.capacity() * sizeof(wc::ReportSpan) +
               r.fixed.capacity() * sizeof(wc::ReportFixedHit) +
               r.rows.capacity() * sizeof(wc::ReportRow) + r.waiver_hits.capacity() * 8) /
        1e3;
}

void BM_Write(benchmark::State& state, wc::ReportFormat format) {
    Fixture& f = fixture();
    qint64 bytes = 0;
    for (auto _ : state) {
        CountingDevice device;
        if (!wc::writeReport(f.report, format, device, nullptr)) {
            state.SkipWithError("the device refused the report");
        }
        bytes = device.bytes;
    }
    state.counters["MB"] = double(bytes) / 1e6;
    state.counters["bytes_per_hit"] = double(bytes) / double(f.report.total.hits());
}

}  // namespace

BENCHMARK(BM_BuildReport)->Unit(benchmark::kMillisecond)->Repetitions(5);
BENCHMARK_CAPTURE(BM_Write, json, wc::ReportFormat::Json)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5);
BENCHMARK_CAPTURE(BM_Write, csv, wc::ReportFormat::Csv)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5);
BENCHMARK_CAPTURE(BM_Write, junit, wc::ReportFormat::JUnit)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5);
BENCHMARK_CAPTURE(BM_Write, sarif, wc::ReportFormat::Sarif)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5);

BENCHMARK_MAIN();

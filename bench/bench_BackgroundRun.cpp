// How late a 5 ms GUI timer fires while a background run polls a 2 s worker: the interface must
// keep repainting and reacting while the engine works.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include "ZeProgressDialog.h"
#include "frame/BackgroundRun.h"

namespace {

using Block = Korvo::COMMON::progress_value<void>;
using Clock = std::chrono::steady_clock;

constexpr int kTickMs = 5;
constexpr auto kWork = std::chrono::milliseconds(2000);
// An engine notices a stop only between its own stages.
constexpr auto kStage = std::chrono::milliseconds(250);
// The stop comes between two stages, so a run that waits for its worker waits about 150 ms.
constexpr int kStopAfterMs = 1100;

struct Lateness {
    double median_ms = 0.0;
    double max_ms = 0.0;
    double ticks = 0.0;
};

Lateness measure(wc::StopBehaviour behaviour, int poll_ms, bool stop) {
    std::vector<double> late;
    late.reserve(1000);
    QElapsedTimer clock;
    qint64 last = -1;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    ticker.setInterval(kTickMs);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        if (last >= 0) {
            late.push_back(static_cast<double>(now - last) / 1e6 - kTickMs);
        }
        last = now;
    });

    wc::BackgroundRunOptions options;
    options.stop = behaviour;
    options.poll_ms = poll_ms;
    options.on_poll = [](double value) { benchmark::DoNotOptimize(value); };
    wc::BackgroundRun run(options);
    if (stop) {
        QTimer::singleShot(kStopAfterMs, [&run] {
            if (ZeProgressDialog* window = run.progressWindow()) {
                window->requestStop();
            }
        });
    }
    clock.start();
    ticker.start();
    run.step([](Block& block) {
        const Clock::time_point start = Clock::now();
        while (Clock::now() - start < kWork) {
            std::this_thread::sleep_for(kStage);
            block.set_value(100.0 * static_cast<double>((Clock::now() - start).count()) /
                            static_cast<double>(Clock::duration(kWork).count()));
            if (block.is_stop_requested()) {
                return;
            }
        }
    });
    ticker.stop();
    run.finish();
    wc::BackgroundRun::waitForDetachedWorkers(10000);

    Lateness result;
    result.ticks = static_cast<double>(late.size());
    if (!late.empty()) {
        std::sort(late.begin(), late.end());
        result.median_ms = late[late.size() / 2];
        result.max_ms = late.back();
    }
    return result;
}

void BM_GuiLateness(benchmark::State& state, wc::StopBehaviour behaviour, int poll_ms, bool stop) {
    Lateness lateness;
    for (auto _ : state) {
        lateness = measure(behaviour, poll_ms, stop);
    }
    state.counters["median_late_ms"] = lateness.median_ms;
    state.counters["max_late_ms"] = lateness.max_ms;
    state.counters["ticks"] = lateness.ticks;
}

}  // namespace

BENCHMARK_CAPTURE(BM_GuiLateness, leave_at_once_20ms, wc::StopBehaviour::LeaveAtOnce, 20, false)
    ->Iterations(1)
    ->Repetitions(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_GuiLateness, wait_for_worker_200ms, wc::StopBehaviour::WaitForWorker, 200,
                  false)
    ->Iterations(1)
    ->Repetitions(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_GuiLateness, leave_at_once_20ms_stopped, wc::StopBehaviour::LeaveAtOnce, 20,
                  true)
    ->Iterations(1)
    ->Repetitions(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_GuiLateness, wait_for_worker_200ms_stopped, wc::StopBehaviour::WaitForWorker,
                  200, true)
    ->Iterations(1)
    ->Repetitions(3)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
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

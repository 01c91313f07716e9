// Time to the first picture when the demo host opens the largest example board of the gerbv
// package: the folder read as a job, the window built and its graphic view painted once.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QPixmap>

#include "DemoWindow.h"
#include "GraphicView.h"
#include "Korvo_API.h"
#include "ReferenceEngine.h"

namespace {

const char* const kBoard = "/usr/share/doc/gerbv/examples/hellboard";

void BM_FirstPicture(benchmark::State& state) {
    if (!QDir(kBoard).exists()) {
        state.SkipWithError("the gerbv package's examples are not installed");
        return;
    }
    for (auto _ : state) {
        wcref::resetEngine();
        DemoWindow window;
        window.resize(1100, 760);
        if (!window.openFabricationFiles(QString::fromLatin1(kBoard))) {
            state.SkipWithError("the board did not open");
            return;
        }
        const QPixmap picture = window.view()->grab();
        benchmark::DoNotOptimize(picture.cacheKey());
    }
}

}  // namespace

BENCHMARK(BM_FirstPicture)->Unit(benchmark::kMillisecond)->UseRealTime()->Repetitions(3);

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

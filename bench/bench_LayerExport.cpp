// Export of the largest example board of the gerbv package (hellboard: eight layers, its front
// copper 1.7 MB) as Gerber and Excellon files through libgerbv, and the import of what was
// written as a job again.

#include <benchmark/benchmark.h>

#include <QDir>
#include <QTemporaryDir>

#include "JobFromFolder.h"
#include "Korvo_API.h"
#include "LayerExport.h"
#include "ReferenceEngine.h"

namespace {

const char* const kBoard = "/usr/share/doc/gerbv/examples/hellboard";

// Writes every layer of the board's step into `folder`; the number of files, 0 on a failure.
int exportBoard(const QString& folder) {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> matrix;
    Korvo::API::get_matrix("board", steps, matrix);
    const std::map<std::string, std::string> names = wcref::LayerExport::fileNames(matrix);
    for (const Korvo::API::layer_info& row : matrix) {
        const std::string path =
            QDir(folder).filePath(QString::fromStdString(names.at(row.name))).toStdString();
        if (!Korvo::API::layer_export("board", "pcb", row.name, wcref::LayerExport::formatOf(row),
                                      path, nullptr)) {
            return 0;
        }
    }
    return static_cast<int>(matrix.size());
}

void BM_ExportAndReimportLargestExample(benchmark::State& state) {
    wcref::resetEngine();
    wcref::setLongOperationDuration(std::chrono::milliseconds(0));
    if (!Korvo::API::open_job("board", kBoard)) {
        state.SkipWithError("the gerbv package's examples are not installed");
        return;
    }
    size_t features = 0;
    int files = 0;
    for (auto _ : state) {
        QTemporaryDir folder;
        files = exportBoard(folder.path());
        wcref::EngineJob again;
        std::string message;
        if (files == 0 ||
            !wcref::JobFromFolder::build("again", folder.path().toStdString(), again, message)) {
            state.SkipWithError("the board did not come back");
            return;
        }
        features = 0;
        for (const auto& layer : again.steps.front().layers) {
            features += layer.second.features.size();
        }
    }
    state.counters["files"] = files;
    state.counters["features"] = static_cast<double>(features);
}

}  // namespace

BENCHMARK(BM_ExportAndReimportLargestExample)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

BENCHMARK_MAIN();

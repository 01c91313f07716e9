// Putting a saved template's "rangesList" back into the range store: every level of every
// "SignalLayerRanges" row (216 changes). One change at a time rewrites the range file per change;
// the batch writes it once.

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>

#include "HostSettings.h"
#include "Korvo_UIAPI.h"
#include "frame/ParameterSetForm.h"

namespace {

const char* const kKey = "SignalLayerRanges";

struct Scene {
    Scene() {
        wcref::setApplicationDir(dir.path());
        wcref::reloadRanges();
        // Every level moved by one nanometre, so every change differs from the stored value.
        QJsonObject ranges = wc::withRanges(kKey, QJsonObject());
        QJsonArray rows = ranges.value("rangesList").toArray();
        for (int i = 0; i < rows.size(); ++i) {
            QJsonObject row = rows[i].toObject();
            for (const char* level : {"RedLv", "YellowLv", "GreenLv"}) {
                row.insert(level, row.value(level).toDouble() + 1);
            }
            rows[i] = row;
        }
        moved.insert("rangesList", rows);
        original = wc::withRanges(kKey, QJsonObject());
    }
    ~Scene() { wcref::setApplicationDir(QString()); }

    QTemporaryDir dir;
    QJsonObject moved;
    QJsonObject original;
};

void BM_TemplateRangesOneByOne(benchmark::State& state) {
    Scene scene;
    bool flip = false;
    for (auto _ : state) {
        const QJsonObject& object = flip ? scene.original : scene.moved;
        flip = !flip;
        for (const QJsonValue& value : object.value("rangesList").toArray()) {
            const QJsonObject row = value.toObject();
            for (const char* level : {"RedLv", "YellowLv", "GreenLv"}) {
                Korvo::UIAPI::changeRangesValue(kKey, row.value("name").toString().toStdString(),
                                                level, row.value(level).toDouble());
            }
        }
    }
}
BENCHMARK(BM_TemplateRangesOneByOne)->Unit(benchmark::kMillisecond);

void BM_TemplateRangesBatch(benchmark::State& state) {
    Scene scene;
    bool flip = false;
    for (auto _ : state) {
        wc::applyRangesList(kKey, flip ? scene.original : scene.moved);
        flip = !flip;
    }
}
BENCHMARK(BM_TemplateRangesBatch)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

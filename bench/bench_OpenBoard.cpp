// Opening the largest example board of the gerbv package (hellboard: every file of its folder)
// into a job with JobFromFolder::build, and the share of that time spent inside libgerbv.
//
// How the share is measured: this program defines the libgerbv functions that do the work of
// an import, gerbv_open_image and gerbv_open_layer_from_filename (reading and parsing one file
// into an image) and gerbv_destroy_project (freeing it); creating the empty project is not
// counted. The program's symbols are exported (ENABLE_EXPORTS), so the dynamic linker binds
// the reference library's calls to these definitions, which time the real functions found
// with dlsym(RTLD_NEXT); a call that libgerbv makes to another of them from inside one is
// counted once. Whatever the import calls them for (identifying a file, reading it, trying a
// drill file's coordinate formats, files it then refuses) is counted, so the share stays right
// as the import gains steps; the benchmark itself only calls build. "parses" is the number of
// files libgerbv parsed per build, "libgerbv_ms" its time per build. Should the import reach
// libgerbv through a function not listed here, no parse is seen and the benchmark says so
// instead of reporting a share.

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <chrono>
#include <string>

#include "JobFromFolder.h"

namespace {

using Clock = std::chrono::steady_clock;

struct GerbvTime {
    Clock::duration spent{};
    long parses = 0;
    int depth = 0;         // libgerbv calls under way: only the outermost one is timed
    bool missing = false;  // a libgerbv function was not found behind ours
};

GerbvTime& gerbvTime() {
    static GerbvTime time;
    return time;
}

template <typename Function>
Function real(const char* name) {
    Function function = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
    if (function == nullptr) {
        gerbvTime().missing = true;
    }
    return function;
}

// Calls libgerbv's `function` and adds its time unless an outer libgerbv call is timing it.
template <typename Function, typename... Args>
auto timed(Function function, Args... args) {
    GerbvTime& time = gerbvTime();
    const Clock::time_point start = Clock::now();
    ++time.depth;
    struct Leave {
        GerbvTime& time;
        Clock::time_point start;
        ~Leave() {
            if (--time.depth == 0) {
                time.spent += Clock::now() - start;
            }
        }
    } leave{time, start};
    return function(args...);
}

}  // namespace

// libgerbv's own declarations take a gerbv_project_t*, gchar and gboolean; the C names are
// what binds, and the arguments pass through unchanged.
extern "C" {

int gerbv_open_image(void* project, const char* file_name, int index, int reload, void* attributes,
                     int attribute_count, int force) {
    using Open = int (*)(void*, const char*, int, int, void*, int, int);
    static const Open open = real<Open>("gerbv_open_image");
    if (open == nullptr) {
        return -1;
    }
    if (gerbvTime().depth == 0) {
        ++gerbvTime().parses;
    }
    return timed(open, project, file_name, index, reload, attributes, attribute_count, force);
}

void gerbv_open_layer_from_filename(void* project, const char* file_name) {
    using Open = void (*)(void*, const char*);
    static const Open open = real<Open>("gerbv_open_layer_from_filename");
    if (open == nullptr) {
        return;
    }
    if (gerbvTime().depth == 0) {
        ++gerbvTime().parses;
    }
    timed(open, project, file_name);
}

void gerbv_destroy_project(void* project) {
    using Destroy = void (*)(void*);
    static const Destroy destroy = real<Destroy>("gerbv_destroy_project");
    if (destroy != nullptr) {
        timed(destroy, project);
    }
}
}

namespace {

void BM_OpenLargestBoard(benchmark::State& state) {
    const std::string folder = "/usr/share/doc/gerbv/examples/hellboard";
    size_t layers = 0;
    size_t features = 0;
    Clock::duration total{};
    gerbvTime() = GerbvTime{};
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        {
            wcref::EngineJob job;
            std::string message;
            if (!wcref::JobFromFolder::build("hellboard", folder, job, message)) {
                state.SkipWithError(message.c_str());
                return;
            }
            layers = job.matrix.size();
            features = 0;
            for (const auto& layer : job.steps.front().layers) {
                features += layer.second.features.size();
            }
            benchmark::DoNotOptimize(job);
        }
        total += Clock::now() - start;
    }
    const GerbvTime& gerbv = gerbvTime();
    if (gerbv.missing || gerbv.parses == 0) {
        state.SkipWithError("the libgerbv calls of the import were not seen: the share is unknown");
        return;
    }
    const double iterations = static_cast<double>(state.iterations());
    state.counters["layers"] = static_cast<double>(layers);
    state.counters["features"] = static_cast<double>(features);
    state.counters["parses"] = static_cast<double>(gerbv.parses) / iterations;
    state.counters["libgerbv_ms"] =
        std::chrono::duration<double, std::milli>(gerbv.spent).count() / iterations;
    state.counters["libgerbv_share"] = std::chrono::duration<double>(gerbv.spent).count() /
                                       std::chrono::duration<double>(total).count();
}

}  // namespace

BENCHMARK(BM_OpenLargestBoard)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

BENCHMARK_MAIN();

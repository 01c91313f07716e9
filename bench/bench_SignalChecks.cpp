// Spacing check of the reference engine on generated copper layers: 10,000 to 100,000
// features. The target is a median of at most 1 s and a peak of at most 200 MB at 100,000
// features (run that size alone to read its peak), and growth close to n log n.
//
// BM_SpacingCheckWithNets runs the same check with a net on every feature.
//
// BM_SpacingCheckGeos is a baseline a host could use instead: the same query written on GEOS
// through its C API (built only when GEOS was found). Both count the pairs of features of
// different islands closer than the spacing, edge to edge; an island is copper that touches
// (within half a nanometre), as in the engine. GEOS has no discs or capsules: a round pad is a
// buffered point and a round line a buffered segment with round caps, polygons whose vertices
// lie on the true circle (kQuadrantSegments per quarter), so GEOS measures every gap between
// round ends up to 2 % of the radii too long and a pair closer than the spacing by less than
// that can be missed. The generated layer has no such pair: its planted gaps (8 mil) lie on
// the axes, where the buffers have vertices, and all other gaps are 28 mil or more, so the two
// counts agree.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdint>
#include <map>
#include <numeric>
#include <string>
#include <vector>

#include "CopperGeometry.h"
#include "SignalChecks.h"
#include "SyntheticJob.h"

#ifdef WIDGET_COMMON_BENCH_GEOS
#define GEOS_USE_ONLY_R_API
#include <geos_c.h>
#endif

namespace {

wcref::SignalCheckInput makeLayer(int features) {
    wcref::SignalCheckInput input;
    input.copper.features = wcref::syntheticCopper(features, features / 1000, 1, nullptr);
    for (size_t k = 0; k < input.copper.features.size(); ++k) {
        input.copper.features[k].id = static_cast<int>(k) + 1;
    }
    return input;
}

const wcref::SignalCheckInput& layerOf(int features) {
    static std::map<int, wcref::SignalCheckInput> made;
    auto found = made.find(features);
    if (found == made.end()) {
        found = made.emplace(features, makeLayer(features)).first;
    }
    return found->second;
}

// The same layer with a net on every feature: each generated cell (its r40 pad, its trace or
// surface and its via pad, in the generator's order) is one net. Of the planted r20 pads every
// second one joins the net of the cell it sits in, a pair of one net that the check routes to
// the same-net items; the others get a net of their own and stay spacing pairs.
const wcref::SignalCheckInput& layerWithNetsOf(int features) {
    static std::map<int, wcref::SignalCheckInput> made;
    auto found = made.find(features);
    if (found == made.end()) {
        wcref::SignalCheckInput input = makeLayer(features);
        int cell = -1;
        int planted = 0;
        for (const Korvo::API::featureInfo& f : input.copper.features) {
            const bool pad = f.type == Korvo::API::feature_pad;
            if (pad && f.symbol == "r40") {
                input.net_names.push_back("cell" + std::to_string(input.net_names.size()));
                cell = static_cast<int>(input.net_names.size()) - 1;
            }
            if (pad && f.symbol == "r20" && planted++ % 2 == 1) {
                input.net_names.push_back("planted" + std::to_string(input.net_names.size()));
                input.copper.nets.push_back(static_cast<int>(input.net_names.size()) - 1);
            } else {
                input.copper.nets.push_back(cell);
            }
        }
        found = made.emplace(features, std::move(input)).first;
    }
    return found->second;
}

constexpr double kSpacing = 10 * wcref::kNmPerMil;
// Features closer than this touch and are one island, as in the engine.
constexpr double kTouch = 0.5;

bool sameNetItem(Korvo::API::signal_layers_checks_items item) {
    return item == Korvo::API::sli_same_net_pad_to_pad ||
           item == Korvo::API::sli_same_net_pad_to_line ||
           item == Korvo::API::sli_same_net_line_to_line;
}

// Hits of the spacing items (`same_net` false) or of the same-net items: the pairs reported.
size_t pairsOf(const wcref::SignalResult& result, bool same_net) {
    size_t pairs = 0;
    for (const auto& item : result) {
        if (sameNetItem(item.first) == same_net) {
            pairs += item.second.red.size() + item.second.yellow.size() + item.second.green.size() +
                     item.second.other.size();
        }
    }
    return pairs;
}

void finish(benchmark::State& state, size_t pairs) {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["pairs"] = static_cast<double>(pairs);
    state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
    state.SetComplexityN(state.range(0));
}

void BM_SpacingCheck(benchmark::State& state) {
    const wcref::SignalCheckInput& input = layerOf(static_cast<int>(state.range(0)));
    Korvo::API::signal_check_params params;
    params.spacing = kSpacing;
    size_t pairs = 0;
    for (auto _ : state) {
        wcref::SignalResult result;
        wcref::SignalChecks::run(input, params, {Korvo::API::sl_spacing}, {}, result, nullptr, 0);
        pairs = pairsOf(result, false);
        benchmark::DoNotOptimize(result);
    }
    finish(state, pairs);
}

// Every feature carries a net: "pairs" counts the spacing pairs between nets, "same_net_pairs"
// those the check routes to the same-net items (half the planted pairs each once the check
// reads nets; before that every planted pair is a spacing pair).
void BM_SpacingCheckWithNets(benchmark::State& state) {
    const wcref::SignalCheckInput& input = layerWithNetsOf(static_cast<int>(state.range(0)));
    Korvo::API::signal_check_params params;
    params.spacing = kSpacing;
    size_t pairs = 0;
    size_t same_net = 0;
    for (auto _ : state) {
        wcref::SignalResult result;
        wcref::SignalChecks::run(input, params, {Korvo::API::sl_spacing}, {}, result, nullptr, 0);
        pairs = pairsOf(result, false);
        same_net = pairsOf(result, true);
        benchmark::DoNotOptimize(result);
    }
    state.counters["same_net_pairs"] = static_cast<double>(same_net);
    finish(state, pairs);
}

#ifdef WIDGET_COMMON_BENCH_GEOS

// Segments per quarter circle of a GEOS buffer (its default).
constexpr int kQuadrantSegments = 8;

// One GEOS context with the geometries and tree of one run, freed together.
class GeosRun {
public:
    GeosRun() : handle_(GEOS_init_r()) {}
    ~GeosRun() {
        if (tree_ != nullptr) {
            GEOSSTRtree_destroy_r(handle_, tree_);
        }
        for (GEOSGeometry* g : shapes_) {
            GEOSGeom_destroy_r(handle_, g);
        }
        GEOS_finish_r(handle_);
    }
    GeosRun(const GeosRun&) = delete;
    GeosRun& operator=(const GeosRun&) = delete;

    // The copper of a round pad, a round line or a surface; false for anything else.
    bool add(const Korvo::API::featureInfo& f) {
        GEOSGeometry* shape = nullptr;
        const wcref::SymbolSize symbol = wcref::CopperGeometry::parseSymbol(f.symbol);
        if (f.type == Korvo::API::feature_surface) {
            shape = polygon(f);
        } else if (symbol.kind == wcref::SymbolSize::round &&
                   (f.type == Korvo::API::feature_pad ||
                    (f.type == Korvo::API::feature_line && f.start.x == f.end.x &&
                     f.start.y == f.end.y))) {
            GEOSGeometry* centre = GEOSGeom_createPointFromXY_r(handle_, f.start.x, f.start.y);
            shape = GEOSBuffer_r(handle_, centre, symbol.width / 2, kQuadrantSegments);
            GEOSGeom_destroy_r(handle_, centre);
        } else if (symbol.kind == wcref::SymbolSize::round && f.type == Korvo::API::feature_line) {
            GEOSCoordSequence* ends = GEOSCoordSeq_create_r(handle_, 2, 2);
            GEOSCoordSeq_setXY_r(handle_, ends, 0, f.start.x, f.start.y);
            GEOSCoordSeq_setXY_r(handle_, ends, 1, f.end.x, f.end.y);
            GEOSGeometry* axis = GEOSGeom_createLineString_r(handle_, ends);
            shape = GEOSBufferWithStyle_r(handle_, axis, symbol.width / 2, kQuadrantSegments,
                                          GEOSBUF_CAP_ROUND, GEOSBUF_JOIN_ROUND, 5.0);
            GEOSGeom_destroy_r(handle_, axis);
        }
        if (shape == nullptr) {
            return false;
        }
        shapes_.push_back(shape);
        return true;
    }

    // Pairs of different islands closer than `spacing`: candidates from an STRtree queried
    // with each shape's envelope grown by the spacing, measured with GEOSDistance_r.
    size_t spacingPairs(double spacing) {
        tree_ = GEOSSTRtree_create_r(handle_, 10);
        for (size_t k = 0; k < shapes_.size(); ++k) {
            GEOSSTRtree_insert_r(handle_, tree_, shapes_[k], itemOf(k));
        }
        struct Near {
            size_t a;
            size_t b;
        };
        std::vector<Near> near;
        wcref::UnionFind islands(shapes_.size());
        std::vector<size_t> found;
        for (size_t i = 0; i < shapes_.size(); ++i) {
            double x0 = 0;
            double y0 = 0;
            double x1 = 0;
            double y1 = 0;
            GEOSGeom_getXMin_r(handle_, shapes_[i], &x0);
            GEOSGeom_getYMin_r(handle_, shapes_[i], &y0);
            GEOSGeom_getXMax_r(handle_, shapes_[i], &x1);
            GEOSGeom_getYMax_r(handle_, shapes_[i], &y1);
            GEOSGeometry* reach = GEOSGeom_createRectangle_r(handle_, x0 - spacing, y0 - spacing,
                                                             x1 + spacing, y1 + spacing);
            found.clear();
            GEOSSTRtree_query_r(
                handle_, tree_, reach,
                [](void* item, void* into) {
                    static_cast<std::vector<size_t>*>(into)->push_back(
                        static_cast<size_t>(reinterpret_cast<uintptr_t>(item)));
                },
                &found);
            GEOSGeom_destroy_r(handle_, reach);
            for (const size_t j : found) {
                if (j <= i) {
                    continue;
                }
                double d = 0;
                if (GEOSDistance_r(handle_, shapes_[i], shapes_[j], &d) != 1) {
                    continue;
                }
                if (d <= kTouch) {
                    islands.join(i, j);
                } else if (d < spacing) {
                    near.push_back({i, j});
                }
            }
        }
        // A check with nets would drop (or route elsewhere) here the pairs of one net.
        size_t pairs = 0;
        for (const Near& n : near) {
            pairs += islands.find(n.a) != islands.find(n.b) ? 1 : 0;
        }
        return pairs;
    }

private:
    static void* itemOf(size_t k) { return reinterpret_cast<void*>(static_cast<uintptr_t>(k)); }

    GEOSGeometry* ring(const std::vector<Korvo::API::point>& points) {
        GEOSCoordSequence* sequence =
            GEOSCoordSeq_create_r(handle_, static_cast<unsigned>(points.size() + 1), 2);
        for (size_t k = 0; k <= points.size(); ++k) {
            const Korvo::API::point& p = points[k % points.size()];
            GEOSCoordSeq_setXY_r(handle_, sequence, static_cast<unsigned>(k), p.x, p.y);
        }
        return GEOSGeom_createLinearRing_r(handle_, sequence);
    }

    GEOSGeometry* polygon(const Korvo::API::featureInfo& f) {
        if (f.contour.size() < 3) {
            return nullptr;
        }
        std::vector<GEOSGeometry*> holes;
        for (const std::vector<Korvo::API::point>& hole : f.holes) {
            if (hole.size() >= 3) {
                holes.push_back(ring(hole));
            }
        }
        return GEOSGeom_createPolygon_r(handle_, ring(f.contour), holes.data(),
                                        static_cast<unsigned>(holes.size()));
    }

    GEOSContextHandle_t handle_;
    GEOSSTRtree* tree_ = nullptr;
    std::vector<GEOSGeometry*> shapes_;
};

void BM_SpacingCheckGeos(benchmark::State& state) {
    const wcref::SignalCheckInput& input = layerOf(static_cast<int>(state.range(0)));
    size_t pairs = 0;
    for (auto _ : state) {
        GeosRun run;
        for (const Korvo::API::featureInfo& f : input.copper.features) {
            if (!run.add(f)) {
                state.SkipWithError(
                    "the GEOS baseline knows only round pads, round lines and "
                    "surfaces");
                return;
            }
        }
        pairs = run.spacingPairs(kSpacing);
        benchmark::DoNotOptimize(pairs);
    }
    finish(state, pairs);
}

#endif  // WIDGET_COMMON_BENCH_GEOS

// The three board sizes every spacing benchmark runs, five times each, fitted to n log n.
void boardSizes(benchmark::internal::Benchmark* spacing) {
    spacing->Arg(10000)
        ->Arg(30000)
        ->Arg(100000)
        ->Unit(benchmark::kMillisecond)
        ->Repetitions(5)
        ->ReportAggregatesOnly(true)
        ->Complexity(benchmark::oNLogN);
}

}  // namespace

BENCHMARK(BM_SpacingCheck)->Apply(boardSizes);

BENCHMARK(BM_SpacingCheckWithNets)->Apply(boardSizes);

#ifdef WIDGET_COMMON_BENCH_GEOS
BENCHMARK(BM_SpacingCheckGeos)->Apply(boardSizes);
#endif

BENCHMARK_MAIN();

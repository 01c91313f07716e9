// Teardrops (DfmOperations.h): a fillet where a round trace leaves a pad, skipped where it
// would come too close to other copper or holes; old teardrops deleted first when asked.

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <optional>

#include "DfmCopper.h"
#include "DfmDriver.h"
#include "DfmOperations.h"

namespace wcref {

namespace bgi = boost::geometry::index;
using namespace Korvo::API;
using namespace dfm;

namespace {

using TeardropResult = std::map<teardrop_create_DFM_op_items, teardrop_create_DFM_op_result>;

struct Fillet {
    featureInfo surface;
    CopperShape shape;
    size_t island = 0;
    HitFeature trace;
    HitFeature pad;
    teardrop_create_DFM_op_items item;
    double value = 0.0;
};

// An end of a trace and where the trace goes from it.
struct TraceEnd {
    unsigned trace = 0;  // the trace's piece
    double half_width = 0.0;
    double length = 0.0;  // along the trace
    point at;
    point next;  // the next point along the trace
    point far;   // the trace's other end
};

// Unit vector from `a` towards `b`; zero when they coincide.
point direction(const point& a, const point& b) {
    const double d = length(a, b);
    return d > 0 ? point{(b.x - a.x) / d, (b.y - a.y) / d} : point{0, 0};
}

// One layer: hits go to `result`, deletions to the pass's edits and the fillets to add to what
// work() returns (their hits follow once they have ids).
class TeardropPass {
public:
    TeardropPass(LayerPass& pass, const teardrop_create_DFM_op_params& params,
                 TeardropResult& result)
        : pass_(pass), params_(params), result_(result) {}

    std::deque<Fillet> work() {
        const std::set<size_t> old = deleteOld();
        if (!buildCopper(pass_.layer.copper, pass_.run, pass_.from, pass_.at(0.3), copper_, old)) {
            return {};
        }
        holes_ = Holes(pass_.layer.drills);
        made_.emplace();
        for (unsigned t = 0; t < copper_.pieces.size(); ++t) {
            if (pass_.run.stop(pass_.at(0.3 + 0.7 * t / copper_.pieces.size()))) {
                break;
            }
            fromTrace(t);
        }
        return std::move(made_->fillets);
    }

private:
    bool isTeardrop(unsigned k) const {
        return copper_.feature(k).attributes.count(".tear_drop") != 0;
    }

    // Deletes the teardrop surfaces in scope when asked; the indices of those features.
    std::set<size_t> deleteOld() {
        std::set<size_t> old;
        if (params_.report_only || params_.delete_old_teardrops != 0) {
            return old;
        }
        const CheckLayer& layer = pass_.layer.copper;
        for (size_t k = 0; k < layer.features.size(); ++k) {
            const featureInfo& f = layer.features[k];
            if (f.type == feature_surface && f.attributes.count(".tear_drop") != 0) {
                const CopperShape surface = CopperGeometry::copperOf(f);
                if (inScope(f, surface.box, layer, pass_.input, params_.scope)) {
                    old.insert(k);
                    pass_.edits.push_back(editOf(Edit::remove, f));
                    // A deletion measures nothing and holds nothing against a value.
                    grade(tdi_deleted_old, boxHit(0.0, 0.0, surface.box, {{{layer.row, f.id}, &f}}),
                          params_.ranges, result_);
                }
            }
        }
        return old;
    }

    // Both ends of piece `t` when it is a round trace within the width limits.
    void fromTrace(unsigned t) {
        const featureInfo& trace = copper_.feature(t);
        const SymbolSize width = CopperGeometry::parseSymbol(trace.symbol);
        if ((trace.type != feature_line && trace.type != feature_arc) ||
            width.kind != SymbolSize::round || isTeardrop(t) ||
            width.width < params_.trace_width_min || width.width > params_.trace_width_max ||
            !inScope(trace, copper_.shape(t).box, pass_.layer.copper, pass_.input, params_.scope)) {
            return;
        }
        std::vector<point> axis{trace.start, trace.end};
        if (trace.type == feature_arc) {
            axis = CopperGeometry::arcPoints(trace.start, trace.end, trace.center, trace.clockwise);
        }
        TraceEnd end;
        end.trace = t;
        end.half_width = width.width / 2;
        for (size_t k = 0; k + 1 < axis.size(); ++k) {
            end.length += length(axis[k], axis[k + 1]);
        }
        for (int e = 0; e < 2 && axis.size() >= 2; ++e) {
            end.at = e == 0 ? axis.front() : axis.back();
            end.next = e == 0 ? axis[1] : axis[axis.size() - 2];
            end.far = e == 0 ? axis.back() : axis.front();
            for (unsigned p : copper_.near(CopperGeometry::pointShape(end.at).box)) {
                onPad(end, p);
            }
        }
    }

    // The trace end on piece `p`: a fillet made, reported or skipped when `p` is a pad the
    // record asks for that the trace leaves and that has no teardrop there yet.
    void onPad(const TraceEnd& end, unsigned p) {
        SymbolSize size;
        double hx = 0;
        double hy = 0;
        const CopperShape& pad = copper_.shape(p);
        if (p == end.trace || !halfSizes(copper_.feature(p), size, hx, hy) ||
            !covers(pad, end.at) || covers(pad, end.far)) {
            return;
        }
        const Hole* hole = holes_.of(pad);
        const bool wanted = hole != nullptr ? params_.drilled_pads &&
                                                  hole->diameter >= params_.drill_size_min &&
                                                  hole->diameter <= params_.drill_size_max
                                            : params_.undrilled_pads;
        const double r = std::min(hx, hy);
        Fillet fillet;
        if (!wanted || end.half_width >= r || hasTeardrop(end.trace, p) ||
            !filletOf(end, p, r, fillet)) {
            return;
        }
        fillet.value = hole != nullptr
                           ? r - length(hole->centre, copper_.feature(p).start) - hole->diameter / 2
                           : r - end.half_width;
        point ca;
        point cb;
        double limit = 0.0;
        const double closest = closestObstacle(fillet, hole, ca, cb, limit);
        if (closest < std::numeric_limits<double>::infinity()) {
            grade(tdi_skipped_spacing,
                  distanceHit(closest, limit, ca, cb, {copper_.ref(end.trace), copper_.ref(p)}),
                  params_.ranges, result_);
            return;
        }
        const bool drilled = hole != nullptr;
        if (params_.report_only) {
            // The ring or margin of a teardrop's pad is reported, not held against the record.
            grade(drilled ? tdi_missing_drilled : tdi_missing_undrilled,
                  boxHit(fillet.value, 0.0, fillet.shape.box, {fillet.trace, fillet.pad}),
                  params_.ranges, result_);
            return;
        }
        fillet.item = drilled ? tdi_created_drilled : tdi_created_undrilled;
        made_->tree.insert(Entry(fillet.shape.box, static_cast<unsigned>(made_->fillets.size())));
        made_->fillets.push_back(std::move(fillet));
    }

    // Whether a teardrop of the layer touches both pad `p` and trace `t`.
    bool hasTeardrop(unsigned t, unsigned p) const {
        point pa;
        point pb;
        for (unsigned o : copper_.near(grown(copper_.shape(p).box, kTouch))) {
            if (o != t && isTeardrop(o) &&
                CopperGeometry::distance(copper_.shape(o), copper_.shape(p), pa, pb) <= kTouch &&
                CopperGeometry::distance(copper_.shape(o), copper_.shape(t), pa, pb) <= kTouch) {
                return true;
            }
        }
        return false;
    }

    // The straight fillet from the width of pad `p` (half-size `r`) across its centre to the
    // trace's width along the trace; false when there is no room for one.
    bool filletOf(const TraceEnd& end, unsigned p, double r, Fillet& fillet) const {
        const point c = copper_.feature(p).start;
        const point u = direction(end.at, end.next);
        const point n{-u.y, u.x};
        const double h = end.half_width;
        const double reach = std::min(r + (params_.extend > 0 ? params_.extend : r),
                                      (end.at.x - c.x) * u.x + (end.at.y - c.y) * u.y + end.length);
        if (reach <= r || (u.x == 0 && u.y == 0)) {
            return false;
        }
        fillet.surface.type = feature_surface;
        fillet.surface.contour = {{c.x + n.x * r, c.y + n.y * r},
                                  {c.x + u.x * reach + n.x * h, c.y + u.y * reach + n.y * h},
                                  {c.x + u.x * reach - n.x * h, c.y + u.y * reach - n.y * h},
                                  {c.x - n.x * r, c.y - n.y * r}};
        fillet.surface.attributes[".tear_drop"] = "";
        fillet.shape = CopperGeometry::copperOf(fillet.surface);
        fillet.island = copper_.island[end.trace];
        fillet.trace = copper_.ref(end.trace);
        fillet.pad = copper_.ref(p);
        return true;
    }

    // The closest copper of another island, other hole (than the pad's `hole`) or fillet of
    // another island made so far that is too close to `fillet`, with the two closest points and
    // the spacing it broke (copper or drill); infinity when none is.
    double closestObstacle(const Fillet& fillet, const Hole* hole, point& ca, point& cb,
                           double& limit) const {
        double closest = std::numeric_limits<double>::infinity();
        point pa;
        point pb;
        const auto consider = [&](double d, double spacing) {
            if ((d <= kTouch || d < spacing) && d < closest) {
                closest = d;
                ca = pa;
                cb = pb;
                limit = spacing;
            }
        };
        const double margin = std::max({static_cast<double>(params_.copper_spacing),
                                        static_cast<double>(params_.drill_spacing), 0.0}) +
                              kTouch;
        const GeoBox around = grown(fillet.shape.box, margin);
        for (unsigned j : copper_.near(around)) {
            if (copper_.island[j] != fillet.island) {
                consider(CopperGeometry::distance(fillet.shape, copper_.shape(j), pa, pb),
                         params_.copper_spacing);
            }
        }
        std::vector<Entry> found;
        holes_.tree.query(bgi::intersects(around), std::back_inserter(found));
        for (const Entry& entry : found) {
            if (&holes_.holes[entry.second] != hole) {
                consider(CopperGeometry::distance(fillet.shape, holes_.holes[entry.second].shape,
                                                  pa, pb),
                         params_.drill_spacing);
            }
        }
        found.clear();
        made_->tree.query(bgi::intersects(around), std::back_inserter(found));
        for (const Entry& entry : found) {
            const Fillet& other = made_->fillets[entry.second];
            if (other.island != fillet.island) {
                consider(CopperGeometry::distance(fillet.shape, other.shape, pa, pb),
                         params_.copper_spacing);
            }
        }
        return closest;
    }

    LayerPass& pass_;
    const teardrop_create_DFM_op_params& params_;
    TeardropResult& result_;
    Holes holes_;  // built after the copper, which keeps the peak memory lower
    Copper copper_;
    // The fillets made so far, set up once the copper and holes are: made any earlier, they
    // changed how the heap is reused from one run to the next (a tenth more page faults).
    struct Made {
        std::deque<Fillet> fillets;
        Tree tree;  // their boxes
    };
    std::optional<Made> made_;
};

// Writes the pass's edits and then its fillets to the layer: the new surfaces get their ids
// when written, and their hits name them.
void writeWithFillets(const std::string& job, const std::string& step, LayerPass& pass,
                      std::deque<Fillet>& fillets, const teardrop_create_DFM_op_params& params,
                      teardrop_result_map& results) {
    std::vector<Edit>& edits = pass.edits;
    const size_t first = edits.size();
    for (Fillet& fillet : fillets) {
        Edit edit;
        edit.kind = Edit::add;
        edit.feature = std::move(fillet.surface);
        edits.push_back(std::move(edit));
    }
    apply(job, step, pass.layer.info.name, edits);
    const int row = pass.layer.copper.row;
    for (size_t f = 0; f < fillets.size(); ++f) {
        const Fillet& fillet = fillets[f];
        // As when only reported, a made teardrop's value is held against nothing.
        const Edit& added = edits[first + f];
        grade(fillet.item,
              boxHit(fillet.value, 0.0, fillet.shape.box,
                     {fillet.trace, fillet.pad, {{row, added.new_id}, &added.feature}}),
              params.ranges, results);
    }
    edits.clear();  // written
}

}  // namespace

bool DfmOperations::teardrops(const std::string& job, const std::string& step,
                              const std::vector<std::string>& layers,
                              const teardrop_create_DFM_op_params& params,
                              teardrop_result_map& results,
                              Korvo::COMMON::progress_state* progress) {
    results.clear();
    return forEachLayer(job, step, layers, progress, everyLayer, [&](LayerPass& pass) {
        std::deque<Fillet> fillets = TeardropPass(pass, params, results).work();
        writeWithFillets(job, step, pass, fillets, params, results);
    });
}

}  // namespace wcref

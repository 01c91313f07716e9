// NFP removal (DfmOperations.h): pads of inner copper layers that are duplicates, covered by
// another pad, drilled over or isolated, removed or marked.

#include <algorithm>
#include <cmath>
#include <set>

#include "DfmCopper.h"
#include "DfmDriver.h"
#include "DfmOperations.h"

namespace wcref {

using namespace Korvo::API;
using namespace dfm;

namespace {

// The four corners of a box.
std::vector<point> cornersOf(const GeoBox& box) {
    return {{box.min_corner().x(), box.min_corner().y()},
            {box.max_corner().x(), box.min_corner().y()},
            {box.max_corner().x(), box.max_corner().y()},
            {box.min_corner().x(), box.max_corner().y()}};
}

// Whether pad `inner` lies wholly within pad `outer`; a non-round inner pad by its box.
bool coveredBy(const featureInfo& inner, const CopperShape& inner_shape, const featureInfo& outer,
               const CopperShape& outer_shape) {
    SymbolSize si;
    SymbolSize so;
    double ix = 0;
    double iy = 0;
    double ox = 0;
    double oy = 0;
    if (!halfSizes(inner, si, ix, iy) || !halfSizes(outer, so, ox, oy)) {
        return false;
    }
    const GeoBox& box = inner_shape.box;
    if (so.kind == SymbolSize::round) {
        if (si.kind == SymbolSize::round) {
            return length(inner.start, outer.start) + ix <= ox + kTouch;
        }
        const std::vector<point> corners = cornersOf(box);
        return std::all_of(corners.begin(), corners.end(), [&](const point& corner) {
            return length(corner, outer.start) <= ox + kTouch;
        });
    }
    if (!outer_shape.polygons.empty()) {
        GeoPolygon inner_box;
        bg::convert(box, inner_box);
        return bg::covered_by(inner_box, outer_shape.polygons.front());
    }
    // An oval outer pad: the inner box within the oval's straight part and its round ends.
    const Capsule& c = outer_shape.capsules.front();
    const std::vector<point> corners = cornersOf(box);
    return std::all_of(corners.begin(), corners.end(), [&](const point& corner) {
        point on_axis;
        point same;
        return CopperGeometry::segmentDistance(c.a, c.b, corner, corner, on_axis, same) <=
               c.radius + kTouch;
    });
}

const char* nfpKindName(NFP_removal_DFM_op_items item) {
    switch (item) {
        case nfp_duplicate_removed:
            return "duplicate";
        case nfp_covered_removed:
            return "covered";
        case nfp_drilled_over_removed:
            return "drilled_over";
        case nfp_undrilled_removed:
            return "undrilled";
        default:
            return "isolated";
    }
}

// One inner layer: hits go to `result`, removals and marks to the pass's edits.
class NfpPass {
public:
    NfpPass(LayerPass& pass, const NFP_removal_DFM_op_params& params,
            NFP_removal_result_map& result)
        : pass_(pass),
          params_(params),
          result_(result),
          kinds_(params.pad_kinds.begin(), params.pad_kinds.end()),
          scope_(params.apply_to == 1 ? 3 : params.scope) {}

    void work() {
        if (!buildCopper(pass_.layer.copper, pass_.run, pass_.from, pass_.at(0.4), copper_)) {
            return;
        }
        holes_ = Holes(pass_.layer.drills);
        gone_.assign(copper_.pieces.size(), false);
        for (unsigned k = 0; k < copper_.pieces.size(); ++k) {
            if (pass_.run.stop(pass_.at(0.4 + 0.6 * k / copper_.pieces.size()))) {
                return;
            }
            judge(k);
        }
    }

private:
    bool wanted(int32_t kind) const { return kinds_.count(kind) != 0; }

    // Pad `k` judged once, removed or marked when it is of a kind asked for.
    void judge(unsigned k) {
        const featureInfo& f = copper_.feature(k);
        const CopperShape& shape = copper_.shape(k);
        SymbolSize size;
        double hx = 0;
        double hy = 0;
        if (!halfSizes(f, size, hx, hy) ||
            !inScope(f, shape.box, pass_.layer.copper, pass_.input, scope_)) {
            return;
        }
        const Hole* hole = holes_.of(shape);
        if (hole != nullptr ? !(hole->kind == "non_plated" ? params_.npth
                                : hole->kind == "via"      ? params_.via
                                                           : params_.pth)
                            : !params_.remove_undrilled_pads) {
            return;
        }
        std::vector<HitFeature> refs{copper_.ref(k)};
        NFP_removal_DFM_op_items item = nfp_isolated_removed;
        if (!kindOf(k, hole, std::min(hx, hy), item, refs)) {
            return;
        }
        if (params_.action == 0) {
            gone_[k] = true;
            pass_.edits.push_back(editOf(Edit::remove, f));
        } else {
            Edit edit = editOf(Edit::mark, f);
            edit.attribute = {".nfp", nfpKindName(item)};
            pass_.edits.push_back(edit);
            item = nfp_marked;
        }
        // No kind compares the pad's size with a value of the record (a pad drilled over is held
        // against its own hole), so no hit has a required value.
        grade(item, boxHit(2 * std::min(hx, hy), 0.0, shape.box, refs), params_.ranges, result_);
    }

    // The first kind pad `k` is of (duplicate or covered, drilled over, isolated), adding the
    // features that make it so to `refs`; false when it is of none asked for.
    bool kindOf(unsigned k, const Hole* hole, double half, NFP_removal_DFM_op_items& item,
                std::vector<HitFeature>& refs) const {
        if (againstOtherPads(k, item, refs)) {
            return true;
        }
        if (hole != nullptr && wanted(3) && hole->diameter >= 2 * half) {
            item = nfp_drilled_over_removed;
            refs.push_back(hole->ref);
            return true;
        }
        if (!wanted(1) || touched(k)) {
            return false;
        }
        item = hole != nullptr ? nfp_isolated_removed : nfp_undrilled_removed;
        if (hole != nullptr) {
            refs.push_back(hole->ref);
        }
        return true;
    }

    // A duplicate of an earlier pad, or a pad covered by another one still there.
    bool againstOtherPads(unsigned k, NFP_removal_DFM_op_items& item,
                          std::vector<HitFeature>& refs) const {
        const featureInfo& f = copper_.feature(k);
        for (unsigned j : copper_.near(copper_.shape(k).box)) {
            const featureInfo& other = copper_.feature(j);
            if (j == k || gone_[j] || other.type != feature_pad) {
                continue;
            }
            const bool same = other.symbol == f.symbol && length(other.start, f.start) <= kTouch &&
                              std::abs(other.angle - f.angle) < 1e-6;
            if (same && j < k && wanted(2)) {
                item = nfp_duplicate_removed;
            } else if (!same && wanted(4) &&
                       coveredBy(f, copper_.shape(k), other, copper_.shape(j))) {
                item = nfp_covered_removed;
            } else {
                continue;
            }
            refs.push_back(copper_.ref(j));
            return true;
        }
        return false;
    }

    // Whether a line, arc or surface of the layer touches pad `k`.
    bool touched(unsigned k) const {
        point pa;
        point pb;
        for (unsigned j : copper_.near(grown(copper_.shape(k).box, kTouch))) {
            if (copper_.feature(j).type != feature_pad &&
                CopperGeometry::distance(copper_.shape(k), copper_.shape(j), pa, pb) <= kTouch) {
                return true;
            }
        }
        return false;
    }

    LayerPass& pass_;
    const NFP_removal_DFM_op_params& params_;
    NFP_removal_result_map& result_;
    Holes holes_;  // built after the copper, which keeps the peak memory lower
    const std::set<int32_t> kinds_;
    const int scope_;
    Copper copper_;
    std::vector<bool> gone_;  // pads removed by this run
};

}  // namespace

bool DfmOperations::nfpRemoval(const std::string& job, const std::string& step,
                               const std::vector<std::string>& layers,
                               const NFP_removal_DFM_op_params& params,
                               NFP_removal_result_map& results,
                               Korvo::COMMON::progress_state* progress) {
    results.clear();
    const auto innerCopper = [](const LayerInput& layer) {
        return layer.info.side == "inner" &&
               (layer.info.type == "signal" || layer.info.type == "mixed");
    };
    return forEachLayer(job, step, layers, progress, innerCopper,
                        [&](LayerPass& pass) { NfpPass(pass, params, results).work(); });
}

}  // namespace wcref

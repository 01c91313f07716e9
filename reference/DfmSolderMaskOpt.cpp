// The solder mask optimisation (DfmOperations.h): the clearance of each mask opening over its
// copper pad, resized to the optimum when asked; the coverage of other copper next to an
// opening and the mask bridges between openings, reported.

#include <algorithm>
#include <cmath>

#include "DfmCopper.h"
#include "DfmDriver.h"
#include "DfmOperations.h"

namespace wcref {

using namespace Korvo::API;
using namespace dfm;

namespace {

using SolderMaskResult = std::map<solder_mask_DFM_op_items, solder_mask_DFM_op_result>;

// Clearance of a mask opening over a copper pad: exact for two round pads, else the smaller of
// the two per-axis margins.
double clearanceOf(const featureInfo& opening, const featureInfo& pad) {
    SymbolSize so;
    SymbolSize sp;
    double ox = 0;
    double oy = 0;
    double px = 0;
    double py = 0;
    halfSizes(opening, so, ox, oy);
    halfSizes(pad, sp, px, py);
    if (so.kind == SymbolSize::round && sp.kind == SymbolSize::round) {
        return ox - px - length(opening.start, pad.start);
    }
    return std::min(ox - px - std::abs(opening.start.x - pad.start.x),
                    oy - py - std::abs(opening.start.y - pad.start.y));
}

// One mask layer over its copper: its hits go to `result`, its changes to the pass's edits.
class SolderMaskPass {
public:
    SolderMaskPass(LayerPass& pass, const solder_mask_DFM_params& params, SolderMaskResult& result)
        : pass_(pass), params_(params), result_(result) {}

    void work() {
        if (!buildCopper(pass_.layer.copper, pass_.run, pass_.from, pass_.at(0.2), openings_) ||
            !buildCopper(pass_.layer.beneath, pass_.run, pass_.at(0.2), pass_.at(0.4), copper_)) {
            return;
        }
        in_scope_.resize(openings_.pieces.size());
        pad_of_.assign(openings_.pieces.size(), -1);
        for (unsigned k = 0; k < openings_.pieces.size(); ++k) {
            if (pass_.run.stop(pass_.at(0.4 + 0.2 * k / openings_.pieces.size()))) {
                return;
            }
            clearance(k);
        }
        for (unsigned k = 0; k < openings_.pieces.size(); ++k) {
            if (pass_.run.stop(pass_.at(0.6 + 0.4 * k / openings_.pieces.size()))) {
                return;
            }
            if (in_scope_[k] && pad_of_[k] >= 0 && params_.coverage_min > 0) {
                coverage(k);
            }
            if (params_.bridge_size > 0) {
                bridges(k);
            }
        }
    }

private:
    // The copper pad under opening `k` (the nearest whose centre the opening covers), or -1.
    int padUnder(unsigned k) const {
        const featureInfo& o = openings_.feature(k);
        int found = -1;
        double nearest = 0;
        for (unsigned j : copper_.near(openings_.shape(k).box)) {
            const featureInfo& p = copper_.feature(j);
            SymbolSize ps;
            double px = 0;
            double py = 0;
            if (halfSizes(p, ps, px, py) && covers(openings_.shape(k), p.start) &&
                (found < 0 || length(p.start, o.start) < nearest)) {
                found = static_cast<int>(j);
                nearest = length(p.start, o.start);
            }
        }
        return found;
    }

    // Scope, pad and clearance of opening `k`, the opening resized when asked.
    void clearance(unsigned k) {
        const featureInfo& o = openings_.feature(k);
        in_scope_[k] =
            inScope(o, openings_.shape(k).box, pass_.layer.copper, pass_.input, params_.scope);
        SymbolSize size;
        double ox = 0;
        double oy = 0;
        if (!in_scope_[k] || !halfSizes(o, size, ox, oy)) {
            return;
        }
        pad_of_[k] = padUnder(k);
        if (pad_of_[k] < 0 || params_.clearance_min <= 0) {
            return;
        }
        const unsigned p = static_cast<unsigned>(pad_of_[k]);
        const double clearance = clearanceOf(o, copper_.feature(p));
        if (clearance >= params_.clearance_min) {
            return;
        }
        // Resized or not, the clearance was held against the minimum.
        const check_info hit = boxHit(clearance, params_.clearance_min, copper_.shape(p).box,
                                      {openings_.ref(k), copper_.ref(p)});
        if (!params_.do_resize || params_.clearance_opt <= clearance) {
            grade(smo_clearance_below_min, hit, params_.ranges, result_);
            return;
        }
        const double delta = 2 * std::ceil(params_.clearance_opt - clearance);
        featureInfo bigger = o;
        bigger.symbol =
            CopperGeometry::symbolName(size.kind, size.width + delta, size.height + delta);
        Edit edit = editOf(Edit::resize, o);
        edit.symbol = bigger.symbol;
        pass_.edits.push_back(edit);
        openings_.pieces[k].shape = CopperGeometry::copperOf(bigger);
        growth_ = std::max(growth_, delta / 2);
        grade(smo_clearance_resized, hit, params_.ranges, result_);
    }

    // The mask between opening `k` and copper it must keep covered.
    void coverage(unsigned k) {
        const CopperShape& shape = openings_.shape(k);
        point pa;
        point pb;
        for (unsigned j : copper_.near(grown(shape.box, params_.coverage_min + kTouch))) {
            if (copper_.island[j] == copper_.island[pad_of_[k]]) {
                continue;
            }
            const double d = CopperGeometry::distance(shape, copper_.shape(j), pa, pb);
            if (d < params_.coverage_min) {
                grade(smo_coverage_below_min,
                      distanceHit(d, params_.coverage_min, pa, pb,
                                  {openings_.ref(k), copper_.ref(j)}),
                      params_.ranges, result_);
            }
        }
    }

    // The mask slivers between opening `k` and the openings after it.
    void bridges(unsigned k) {
        const CopperShape& shape = openings_.shape(k);
        point pa;
        point pb;
        for (unsigned j :
             openings_.near(grown(shape.box, params_.bridge_size + growth_ + kTouch))) {
            if (j <= k || (!in_scope_[k] && !in_scope_[j])) {
                continue;
            }
            const double d = CopperGeometry::distance(shape, openings_.shape(j), pa, pb);
            if (d > kTouch && d < params_.bridge_size) {
                grade(smo_bridge_below_min,
                      distanceHit(d, params_.bridge_size, pa, pb,
                                  {openings_.ref(k), openings_.ref(j)}),
                      params_.ranges, result_);
            }
        }
    }

    LayerPass& pass_;
    const solder_mask_DFM_params& params_;
    SolderMaskResult& result_;
    Copper openings_;  // the mask layer's pads
    Copper copper_;    // the copper beneath
    std::vector<bool> in_scope_;
    std::vector<int> pad_of_;  // copper piece under each opening
    double growth_ = 0.0;      // the most any opening grew
};

}  // namespace

bool DfmOperations::solderMask(const std::string& job, const std::string& step,
                               const std::vector<std::string>& layers,
                               const solder_mask_DFM_params& params,
                               solder_mask_DFM_result_map& results,
                               Korvo::COMMON::progress_state* progress) {
    results.clear();
    const auto overCopper = [](const LayerInput& layer) {
        return layer.info.type == "solder_mask" && !layer.beneath_info.name.empty();
    };
    return forEachLayer(job, step, layers, progress, overCopper, [&](LayerPass& pass) {
        SolderMaskResult result;
        SolderMaskPass(pass, params, result).work();
        for (auto& entry : result) {
            results[entry.first].push_back(std::move(entry.second));
        }
    });
}

}  // namespace wcref

// The signal layer optimisation (DfmOperations.h): annular rings under their minimum, the pads
// enlarged where nothing else comes too close, and the spacing between islands after the
// enlargements.

#include <algorithm>
#include <cmath>

#include "DfmCopper.h"
#include "DfmDriver.h"
#include "DfmOperations.h"

namespace wcref {

using namespace Korvo::API;
using namespace dfm;

namespace {

using SignalLayerResult = std::map<signal_layer_DFM_op_items, signal_layer_DFM_op_result>;

struct RingRule {
    signal_layer_DFM_op_items item;
    int32_t min;
    int32_t opt;
};

// The ring item and limits of a hole of `kind`; false when such holes have no ring to check.
bool ringRule(const std::string& kind, const signal_layer_DFM_op_params& p, RingRule& rule) {
    if (kind == "non_plated") {
        return false;
    }
    if (kind == "via") {
        rule = {sdi_via_annular_ring, p.via_ar_min, p.via_ar_opt};
    } else if (kind == "laser") {
        rule = {sdi_laser_annular_ring, p.laser_ar_min, p.laser_ar_opt};
    } else if (kind == "buried") {
        rule = {sdi_buried_annular_ring, p.buried_ar_min, p.buried_ar_opt};
    } else {
        rule = {sdi_pth_annular_ring, p.pth_ar_min, p.pth_ar_opt};
    }
    return rule.min > 0;
}

// One layer of the optimisation: its hits go to `result`, its changes to the pass's edits.
class SignalLayerPass {
public:
    SignalLayerPass(LayerPass& pass, const signal_layer_DFM_op_params& params,
                    SignalLayerResult& result)
        : pass_(pass), params_(params), result_(result) {}

    void work() {
        if (!buildCopper(pass_.layer.copper, pass_.run, pass_.from, pass_.at(0.3), copper_)) {
            return;
        }
        holes_ = Holes(pass_.layer.drills);
        in_scope_.resize(copper_.pieces.size());
        for (unsigned k = 0; k < copper_.pieces.size(); ++k) {
            in_scope_[k] = inScope(copper_.feature(k), copper_.shape(k).box, pass_.layer.copper,
                                   pass_.input, params_.scope);
        }
        if (enlargeRings()) {
            reportSpacing();
        }
    }

private:
    // Annular rings, enlarged in place while nothing else comes too close; false when stopped.
    bool enlargeRings() {
        for (unsigned k = 0; k < copper_.pieces.size(); ++k) {
            if (pass_.run.stop(pass_.at(0.3 + 0.4 * k / copper_.pieces.size()))) {
                return false;
            }
            if (in_scope_[k]) {
                ringOf(k);
            }
        }
        return true;
    }

    void ringOf(unsigned k) {
        const featureInfo& f = copper_.feature(k);
        SymbolSize size;
        double hx = 0;
        double hy = 0;
        if (!halfSizes(f, size, hx, hy)) {
            return;
        }
        const Hole* hole = holes_.of(copper_.shape(k));
        RingRule rule{};
        if (hole == nullptr || !ringRule(hole->kind, params_, rule)) {
            return;
        }
        const double ring = std::min(hx, hy) - length(hole->centre, f.start) - hole->diameter / 2;
        if (ring >= rule.min - params_.minimum_tolerance) {
            return;
        }
        const std::vector<HitFeature> refs{copper_.ref(k), hole->ref};
        if (params_.pad_up && rule.opt > ring && padUp(k, size, ring, rule, refs)) {
            return;
        }
        grade(rule.item, boxHit(ring, rule.min, copper_.shape(k).box, refs), params_.ranges,
              result_);
    }

    // Enlarges pad `k` so that its ring reaches the rule's optimum, unless the larger pad would
    // come closer than the spacing to (or touch) copper of another island; false when it stays
    // as it was. The hit names the pad as it was read.
    bool padUp(unsigned k, const SymbolSize& size, double ring, const RingRule& rule,
               const std::vector<HitFeature>& refs) {
        const double delta = 2 * std::ceil(rule.opt - ring);
        featureInfo bigger = copper_.feature(k);
        bigger.symbol =
            CopperGeometry::symbolName(size.kind, size.width + delta, size.height + delta);
        const CopperShape shape = CopperGeometry::copperOf(bigger);
        // The boxes in the tree are up to `growth_` too small.
        const double reach =
            std::max<double>(params_.spacing_min, kTouch) + std::max(growth_, delta / 2);
        bool blocked = shape.empty();
        point pa;
        point pb;
        for (unsigned j : copper_.near(grown(shape.box, reach))) {
            if (j != k && copper_.island[j] != copper_.island[k]) {
                const double d = CopperGeometry::distance(shape, copper_.shape(j), pa, pb);
                blocked = blocked || d <= kTouch || d < params_.spacing_min;
            }
        }
        if (blocked) {
            return false;
        }
        Edit edit = editOf(Edit::resize, copper_.feature(k));
        edit.symbol = bigger.symbol;
        pass_.edits.push_back(edit);
        // The ring was held against the minimum; the optimum is only what it grew to.
        grade(sdi_pad_up, boxHit(ring, rule.min, shape.box, refs), params_.ranges, result_);
        copper_.pieces[k].shape = shape;
        growth_ = std::max(growth_, delta / 2);
        return true;
    }

    // Spacing between islands, after the enlargements.
    void reportSpacing() {
        const double reach =
            std::max(params_.spacing_min, params_.pad_to_pad_spacing_min) + growth_ + kTouch;
        if (reach <= growth_ + kTouch) {
            return;
        }
        point pa;
        point pb;
        for (unsigned i = 0; i < copper_.pieces.size(); ++i) {
            if (pass_.run.stop(pass_.at(0.7 + 0.3 * i / copper_.pieces.size()))) {
                return;
            }
            for (unsigned j : copper_.near(grown(copper_.shape(i).box, reach))) {
                if (j <= i || copper_.island[i] == copper_.island[j] ||
                    (!in_scope_[i] && !in_scope_[j])) {
                    continue;
                }
                const double d =
                    CopperGeometry::distance(copper_.shape(i), copper_.shape(j), pa, pb);
                const bool pads = copper_.feature(i).type == feature_pad &&
                                  copper_.feature(j).type == feature_pad;
                if (pads && params_.pad_to_pad_spacing_min > 0) {
                    if (d < params_.pad_to_pad_spacing_min) {
                        grade(sdi_pad_to_pad_spacing,
                              distanceHit(d, params_.pad_to_pad_spacing_min, pa, pb,
                                          {copper_.ref(i), copper_.ref(j)}),
                              params_.ranges, result_);
                    }
                } else if (d < params_.spacing_min) {
                    grade(sdi_spacing,
                          distanceHit(d, params_.spacing_min, pa, pb,
                                      {copper_.ref(i), copper_.ref(j)}),
                          params_.ranges, result_);
                }
            }
        }
    }

    LayerPass& pass_;
    const signal_layer_DFM_op_params& params_;
    SignalLayerResult& result_;
    Holes holes_;  // built after the copper, which keeps the peak memory lower
    Copper copper_;
    std::vector<bool> in_scope_;
    double growth_ = 0.0;  // the most any pad grew
};

}  // namespace

bool DfmOperations::signalLayer(const std::string& job, const std::string& step,
                                const std::vector<std::string>& layers,
                                const signal_layer_DFM_op_params& params,
                                signal_layer_DFM_result_map& results,
                                Korvo::COMMON::progress_state* progress) {
    results.clear();
    return forEachLayer(job, step, layers, progress, everyLayer, [&](LayerPass& pass) {
        SignalLayerResult result;
        SignalLayerPass(pass, params, result).work();
        if (!result.empty()) {
            results[pass.layer.info.name] = std::move(result);
        }
    });
}

}  // namespace wcref

#include "DfmOperations.h"

#include <glog/logging.h>

#include <algorithm>
#include <boost/geometry/index/rtree.hpp>
#include <chrono>
#include <cmath>
#include <deque>
#include <numeric>
#include <set>
#include <thread>
#include <unordered_map>

#include "CopperGeometry.h"
#include "EngineStore.h"
#include "SignalChecks.h"
#include "StepRepeatGeometry.h"

namespace wcref {

namespace bgi = boost::geometry::index;
using namespace Korvo::API;

namespace {

using Entry = std::pair<GeoBox, unsigned>;
using Tree = bgi::rtree<Entry, bgi::quadratic<16>>;
using Clock = std::chrono::steady_clock;

point centreOf(const GeoBox& box) {
    return {(box.min_corner().x() + box.max_corner().x()) / 2,
            (box.min_corner().y() + box.max_corner().y()) / 2};
}

// Progress, the stop flag and the run's least duration. Work reports its share in 0..100;
// finish() spends what is left of the duration, so that the dialogs' progress windows and
// their stop buttons behave alike whatever the size of the job.
class Run {
public:
    Run(Korvo::COMMON::progress_state* progress, std::chrono::milliseconds duration)
        : progress_(progress), start_(Clock::now()), end_(start_ + duration) {}

    bool startStopped() {
        stopped_ = progress_ != nullptr && progress_->is_stop_requested();
        return stopped_;
    }
    // True once the caller asked to stop; polls at most every 5 ms of work.
    bool stop(double done) {
        if (progress_ == nullptr || stopped_) {
            return stopped_;
        }
        const Clock::time_point now = Clock::now();
        if (now - last_ >= std::chrono::milliseconds(5)) {
            last_ = now;
            done_ = std::min(99.0, std::max(done_, done));
            progress_->set_value(done_);
            stopped_ = progress_->is_stop_requested();
        }
        return stopped_;
    }
    bool stopped() const { return stopped_; }
    void finish() {
        if (progress_ == nullptr || stopped_) {
            return;
        }
        while (true) {
            const Clock::time_point now = Clock::now();
            if (progress_->is_stop_requested()) {
                stopped_ = true;
                LOG(INFO) << "DFM operation stopped at " << progress_->get_value() << "%";
                return;
            }
            if (now >= end_) {
                progress_->set_value(100.0);
                return;
            }
            const double share = std::chrono::duration<double>(now - start_) /
                                 std::chrono::duration<double>(end_ - start_);
            progress_->set_value(std::min(99.0, std::max(done_, 100.0 * share)));
            std::this_thread::sleep_for(
                std::min<Clock::duration>(end_ - now, std::chrono::milliseconds(20)));
        }
    }

private:
    Korvo::COMMON::progress_state* progress_;
    Clock::time_point start_;
    Clock::time_point end_;
    Clock::time_point last_{};
    double done_ = 0.0;
    bool stopped_ = false;
};

// ---- input ------------------------------------------------------------------------------------

struct LayerInput {
    layer_info info;
    CheckLayer copper;
    std::vector<CheckLayer> drills;  // drill layers spanning the layer
    layer_info beneath_info;         // solder mask layers: the copper under them
    CheckLayer beneath;
};

struct JobInput {
    std::vector<LayerInput> layers;
    std::vector<point> profile;
    bool has_screen_box = false;
    reply_box screen_box;
    std::chrono::milliseconds duration{0};
};

// Copies what a run reads with the store's lock held. False (logged) for an unknown job, step
// or layer, or no layer.
bool snapshot(const std::string& job, const std::string& step,
              const std::vector<std::string>& layers, JobInput& input) {
    std::lock_guard<std::mutex> guard(store().mutex);
    EngineJob* j = store().job(job);
    EngineStep* s = store().step(job, step);
    if (j == nullptr || s == nullptr) {
        return false;
    }
    if (layers.empty()) {
        LOG(ERROR) << "no layer given to a DFM operation on " << job << "/" << step;
        return false;
    }
    const auto rowOf = [j](const std::string& name) {
        const layer_info* info = j->layer(name);
        return info != nullptr ? info->row : 0;
    };
    const auto copy = [s](const layer_info& info) {
        CheckLayer out;
        out.row = info.row;
        const EngineLayerData& data = s->layers[info.name];
        out.features = data.features;
        out.selected = data.selected;
        return out;
    };
    const auto isCopper = [](const layer_info& info) {
        return info.context == "board" && (info.type == "signal" || info.type == "mixed");
    };
    for (const std::string& name : layers) {
        const layer_info* info = j->layer(name);
        if (info == nullptr || store().layer(job, step, name) == nullptr) {
            return false;
        }
        LayerInput layer;
        layer.info = *info;
        layer.copper = copy(*info);
        for (const layer_info& other : j->matrix) {
            if (other.type == "drill") {
                const int first = other.drill_start.empty() ? 0 : rowOf(other.drill_start);
                const int last = other.drill_end.empty() ? 1 << 30 : rowOf(other.drill_end);
                if (info->row >= std::min(first, last) && info->row <= std::max(first, last)) {
                    layer.drills.push_back(copy(other));
                }
            }
        }
        if (info->type == "solder_mask") {
            const layer_info* nearest = nullptr;
            for (const layer_info& other : j->matrix) {
                if (isCopper(other) &&
                    (nearest == nullptr ||
                     std::abs(other.row - info->row) < std::abs(nearest->row - info->row))) {
                    nearest = &other;
                }
            }
            if (nearest != nullptr) {
                layer.beneath_info = *nearest;
                layer.beneath = copy(*nearest);
            }
        }
        input.layers.push_back(std::move(layer));
    }
    input.profile = s->profile;
    input.has_screen_box = store().has_screen_box;
    input.screen_box = store().screen_box;
    input.duration = store().long_operation_duration;
    return true;
}

bool inScope(const featureInfo& f, const GeoBox& box, const CheckLayer& layer,
             const JobInput& input, int scope) {
    if (scope == 3) {
        return layer.selected.count(f.id) != 0;
    }
    const point centre = centreOf(box);
    if (scope == 1) {
        return !input.has_screen_box || boxContains(input.screen_box, centre);
    }
    if (scope == 2) {
        return input.profile.size() < 3 || pointInPolygon(centre, input.profile);
    }
    return true;
}

// ---- copper -----------------------------------------------------------------------------------

struct Piece {
    size_t feature = 0;  // index into the layer's features
    CopperShape shape;
};

// The positive copper of a layer, its R-tree and its islands.
struct Copper {
    std::vector<Piece> pieces;
    Tree tree;
    std::vector<size_t> island;  // per piece

    std::vector<unsigned> near(const GeoBox& box) const {
        std::vector<Entry> found;
        tree.query(bgi::intersects(box), std::back_inserter(found));
        std::vector<unsigned> out;
        out.reserve(found.size());
        for (const Entry& e : found) {
            out.push_back(e.second);
        }
        return out;
    }
};

// False when stopped. `skip` names feature indices left out (features about to be deleted).
bool buildCopper(const std::vector<featureInfo>& features, Run& run, double from, double to,
                 Copper& copper, const std::set<size_t>& skip = {}) {
    for (size_t k = 0; k < features.size(); ++k) {
        if (run.stop(from + (to - from) / 2 * k / features.size())) {
            return false;
        }
        const featureInfo& f = features[k];
        if (!f.positive || f.type == feature_text || skip.count(k) != 0) {
            continue;
        }
        Piece piece{k, CopperGeometry::copperOf(f)};
        if (!piece.shape.empty()) {
            copper.pieces.push_back(std::move(piece));
        }
    }
    std::vector<Entry> entries;
    entries.reserve(copper.pieces.size());
    for (unsigned k = 0; k < copper.pieces.size(); ++k) {
        entries.emplace_back(copper.pieces[k].shape.box, k);
    }
    copper.tree = Tree(entries.begin(), entries.end());
    UnionFind islands(copper.pieces.size());
    point pa;
    point pb;
    for (unsigned i = 0; i < copper.pieces.size(); ++i) {
        if (run.stop(from + (to - from) * (0.5 + 0.5 * i / copper.pieces.size()))) {
            return false;
        }
        for (unsigned j : copper.near(grown(copper.pieces[i].shape.box, kTouch))) {
            if (j > i && CopperGeometry::distance(copper.pieces[i].shape, copper.pieces[j].shape,
                                                  pa, pb) <= kTouch) {
                islands.join(i, j);
            }
        }
    }
    copper.island.resize(copper.pieces.size());
    for (size_t k = 0; k < copper.pieces.size(); ++k) {
        copper.island[k] = islands.find(k);
    }
    return true;
}

bool covers(const CopperShape& shape, const point& p) {
    point a;
    point b;
    return CopperGeometry::distance(CopperGeometry::pointShape(p), shape, a, b) <= kTouch;
}

// A hole of a drill layer.
struct Hole {
    feature_ref ref;
    point centre;
    double diameter = 0.0;
    std::string kind;  // ".drill": "plated", "non_plated", "via", ...
    CopperShape shape;
};

struct Holes {
    std::vector<Hole> holes;
    Tree tree;

    explicit Holes(const std::vector<CheckLayer>& layers) {
        for (const CheckLayer& layer : layers) {
            for (const featureInfo& f : layer.features) {
                const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
                if (f.type != feature_pad || size.kind != SymbolSize::round) {
                    continue;
                }
                const auto kind = f.attributes.find(".drill");
                holes.push_back({{layer.row, f.id},
                                 f.start,
                                 size.width,
                                 kind != f.attributes.end() ? kind->second : std::string(),
                                 CopperGeometry::copperOf(f)});
            }
        }
        std::vector<Entry> entries;
        for (unsigned k = 0; k < holes.size(); ++k) {
            entries.emplace_back(holes[k].shape.box, k);
        }
        tree = Tree(entries.begin(), entries.end());
    }
    // The largest hole whose centre lies on `pad`, or nullptr.
    const Hole* of(const CopperShape& pad) const {
        std::vector<Entry> found;
        tree.query(bgi::intersects(pad.box), std::back_inserter(found));
        const Hole* best = nullptr;
        for (const Entry& e : found) {
            const Hole& h = holes[e.second];
            if ((best == nullptr || h.diameter > best->diameter) && covers(pad, h.centre)) {
                best = &h;
            }
        }
        return best;
    }
};

// Half-sizes of a standard pad along x and y (rotations by quarter turns swap them).
bool halfSizes(const featureInfo& f, SymbolSize& size, double& hx, double& hy) {
    size = CopperGeometry::parseSymbol(f.symbol);
    if (f.type != feature_pad || f.contour.size() >= 3 || size.kind == SymbolSize::none) {
        return false;
    }
    hx = size.width / 2;
    hy = size.height / 2;
    const long quarter = std::lround(f.angle / 90.0);
    if (std::abs(f.angle - 90.0 * quarter) < 1e-6 && (quarter % 2) != 0) {
        std::swap(hx, hy);
    }
    return true;
}

double length(const point& a, const point& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

// ---- hits and grading -------------------------------------------------------------------------

check_info distanceHit(double value, const point& a, const point& b,
                       std::vector<feature_ref> features) {
    check_info hit;
    hit.value = value;
    hit.shape.kind = check_points::line;
    hit.shape.points = {a, b};
    hit.features = std::move(features);
    return hit;
}

check_info boxHit(double value, const GeoBox& box, std::vector<feature_ref> features) {
    check_info hit;
    hit.value = value;
    hit.shape.kind = check_points::box;
    hit.shape.points = {{box.min_corner().x(), box.min_corner().y()},
                        {box.max_corner().x(), box.max_corner().y()}};
    hit.features = std::move(features);
    return hit;
}

template <typename Item, typename Record>
void grade(Item item, check_info hit, const std::map<Item, dfm_range_value>& ranges,
           std::map<Item, Record>& result) {
    Record& record = result[item];
    record.item = item;
    const auto range = ranges.find(item);
    if (range == ranges.end()) {
        record.other.push_back(std::move(hit));
        return;
    }
    const double red = range->second.limits.first;
    const double yellow = range->second.limits.second;
    const double green = range->second.value;
    if (red == 0 && yellow == 0 && green == 0) {
        record.red.push_back(std::move(hit));
    } else if (hit.value < red) {
        record.red.push_back(std::move(hit));
    } else if (hit.value < yellow) {
        record.yellow.push_back(std::move(hit));
    } else if (hit.value < green) {
        record.green.push_back(std::move(hit));
    } else {
        record.other.push_back(std::move(hit));
    }
}

// ---- changes ----------------------------------------------------------------------------------

struct Edit {
    enum Kind { resize, remove, mark, add };
    Kind kind = resize;
    int id = -1;  // the feature changed, as read
    std::string symbol_read;
    point start_read;
    std::string symbol;                             // resize
    std::pair<std::string, std::string> attribute;  // mark: name and value
    featureInfo feature;                            // add
    int new_id = -1;                                // add: the id given
    bool applied = false;
};

Edit editOf(Edit::Kind kind, const featureInfo& f) {
    Edit edit;
    edit.kind = kind;
    edit.id = f.id;
    edit.symbol_read = f.symbol;
    edit.start_read = f.start;
    return edit;
}

// Writes the edits of one layer under the lock; one edit of the step when anything changed.
void apply(const std::string& job, const std::string& step, const std::string& layer,
           std::vector<Edit>& edits) {
    if (edits.empty()) {
        return;
    }
    std::lock_guard<std::mutex> guard(store().mutex);
    EngineStep* s = store().step(job, step);
    if (s == nullptr || s->layers.count(layer) == 0) {
        return;
    }
    EngineLayerData& data = s->layers[layer];
    std::unordered_map<int, size_t> index;
    for (size_t k = 0; k < data.features.size(); ++k) {
        index[data.features[k].id] = k;
    }
    // featureInfo copies rather than moves when a vector grows: make room once.
    data.features.reserve(data.features.size() +
                          std::count_if(edits.begin(), edits.end(),
                                        [](const Edit& e) { return e.kind == Edit::add; }));
    std::set<int> removed;
    bool changed = false;
    for (Edit& edit : edits) {
        if (edit.kind == Edit::add) {
            edit.feature.layer = layer;
            edit.new_id = data.add(std::move(edit.feature)).id;
            edit.applied = changed = true;
            continue;
        }
        const auto found = index.find(edit.id);
        if (found == index.end() || data.features[found->second].symbol != edit.symbol_read ||
            length(data.features[found->second].start, edit.start_read) > kTouch) {
            LOG(WARNING) << "feature " << edit.id << " of " << layer
                         << " changed during the DFM operation; left alone";
            continue;
        }
        featureInfo& f = data.features[found->second];
        switch (edit.kind) {
            case Edit::resize:
                f.symbol = edit.symbol;
                break;
            case Edit::remove:
                removed.insert(f.id);
                break;
            case Edit::mark:
                f.attributes[edit.attribute.first] = edit.attribute.second;
                break;
            case Edit::add:
                break;
        }
        edit.applied = changed = true;
    }
    if (!removed.empty()) {
        data.features.erase(
            std::remove_if(data.features.begin(), data.features.end(),
                           [&removed](const featureInfo& f) { return removed.count(f.id) != 0; }),
            data.features.end());
        for (int id : removed) {
            data.selected.erase(id);
            data.highlighted.erase(id);
        }
    }
    if (changed) {
        ++s->editops;
    }
}

// The share of the whole run that layer `k` of `n` covers.
double share(size_t k, size_t n, double within) {
    return 100.0 * (static_cast<double>(k) + within) / static_cast<double>(std::max<size_t>(1, n));
}

// ---- signal layer -----------------------------------------------------------------------------

struct RingRule {
    signal_layer_DFM_op_items item;
    int32_t min;
    int32_t opt;
};

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

void signalLayerOne(const JobInput& input, const LayerInput& layer,
                    const signal_layer_DFM_op_params& params,
                    std::map<signal_layer_DFM_op_items, signal_layer_DFM_op_result>& result,
                    std::vector<Edit>& edits, Run& run, double from, double to) {
    const std::vector<featureInfo>& features = layer.copper.features;
    Copper copper;
    if (!buildCopper(features, run, from, from + (to - from) * 0.3, copper)) {
        return;
    }
    const Holes holes(layer.drills);
    const auto ref = [&](unsigned k) {
        return feature_ref{layer.copper.row, features[copper.pieces[k].feature].id};
    };
    std::vector<bool> in_scope(copper.pieces.size());
    for (size_t k = 0; k < copper.pieces.size(); ++k) {
        in_scope[k] = inScope(features[copper.pieces[k].feature], copper.pieces[k].shape.box,
                              layer.copper, input, params.scope);
    }

    // Annular rings, enlarged in place while nothing else comes too close.
    double growth = 0.0;  // the most any pad grew: boxes in the tree are that much too small
    point pa;
    point pb;
    for (unsigned k = 0; k < copper.pieces.size(); ++k) {
        if (run.stop(from + (to - from) * (0.3 + 0.4 * k / copper.pieces.size()))) {
            return;
        }
        const featureInfo& f = features[copper.pieces[k].feature];
        SymbolSize size;
        double hx = 0;
        double hy = 0;
        if (!in_scope[k] || !halfSizes(f, size, hx, hy)) {
            continue;
        }
        const Hole* hole = holes.of(copper.pieces[k].shape);
        RingRule rule{};
        if (hole == nullptr || !ringRule(hole->kind, params, rule)) {
            continue;
        }
        const double ring = std::min(hx, hy) - length(hole->centre, f.start) - hole->diameter / 2;
        if (ring >= rule.min - params.minimum_tolerance) {
            continue;
        }
        const std::vector<feature_ref> refs{ref(k), hole->ref};
        if (params.pad_up && rule.opt > ring) {
            const double delta = 2 * std::ceil(rule.opt - ring);
            featureInfo bigger = f;
            bigger.symbol =
                CopperGeometry::symbolName(size.kind, size.width + delta, size.height + delta);
            const CopperShape shape = CopperGeometry::copperOf(bigger);
            const double reach =
                std::max<double>(params.spacing_min, kTouch) + std::max(growth, delta / 2);
            bool blocked = shape.empty();
            for (unsigned j : copper.near(grown(shape.box, reach))) {
                if (j != k && copper.island[j] != copper.island[k]) {
                    const double d =
                        CopperGeometry::distance(shape, copper.pieces[j].shape, pa, pb);
                    blocked = blocked || d <= kTouch || d < params.spacing_min;
                }
            }
            if (!blocked) {
                Edit edit = editOf(Edit::resize, f);
                edit.symbol = bigger.symbol;
                edits.push_back(edit);
                grade(sdi_pad_up, boxHit(ring, shape.box, refs), params.ranges, result);
                copper.pieces[k].shape = shape;
                growth = std::max(growth, delta / 2);
                continue;
            }
        }
        grade(rule.item, boxHit(ring, copper.pieces[k].shape.box, refs), params.ranges, result);
    }

    // Spacing between islands, after the enlargements.
    const double reach =
        std::max(params.spacing_min, params.pad_to_pad_spacing_min) + growth + kTouch;
    if (reach <= growth + kTouch) {
        return;
    }
    for (unsigned i = 0; i < copper.pieces.size(); ++i) {
        if (run.stop(from + (to - from) * (0.7 + 0.3 * i / copper.pieces.size()))) {
            return;
        }
        for (unsigned j : copper.near(grown(copper.pieces[i].shape.box, reach))) {
            if (j <= i || copper.island[i] == copper.island[j] || (!in_scope[i] && !in_scope[j])) {
                continue;
            }
            const double d =
                CopperGeometry::distance(copper.pieces[i].shape, copper.pieces[j].shape, pa, pb);
            const bool pads = features[copper.pieces[i].feature].type == feature_pad &&
                              features[copper.pieces[j].feature].type == feature_pad;
            if (pads && params.pad_to_pad_spacing_min > 0) {
                if (d < params.pad_to_pad_spacing_min) {
                    grade(sdi_pad_to_pad_spacing, distanceHit(d, pa, pb, {ref(i), ref(j)}),
                          params.ranges, result);
                }
            } else if (d < params.spacing_min) {
                grade(sdi_spacing, distanceHit(d, pa, pb, {ref(i), ref(j)}), params.ranges, result);
            }
        }
    }
}

// ---- solder mask ------------------------------------------------------------------------------

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

void solderMaskOne(const JobInput& input, const LayerInput& layer,
                   const solder_mask_DFM_params& params,
                   std::map<solder_mask_DFM_op_items, solder_mask_DFM_op_result>& result,
                   std::vector<Edit>& edits, Run& run, double from, double to) {
    const std::vector<featureInfo>& masks = layer.copper.features;
    const std::vector<featureInfo>& cu = layer.beneath.features;
    Copper openings;
    Copper copper;
    if (!buildCopper(masks, run, from, from + (to - from) * 0.2, openings) ||
        !buildCopper(cu, run, from + (to - from) * 0.2, from + (to - from) * 0.4, copper)) {
        return;
    }
    const auto maskRef = [&](unsigned k) {
        return feature_ref{layer.copper.row, masks[openings.pieces[k].feature].id};
    };
    const auto cuRef = [&](unsigned k) {
        return feature_ref{layer.beneath.row, cu[copper.pieces[k].feature].id};
    };
    std::vector<bool> in_scope(openings.pieces.size());
    std::vector<int> pad_of(openings.pieces.size(), -1);  // copper piece under each opening
    double growth = 0.0;
    for (unsigned k = 0; k < openings.pieces.size(); ++k) {
        if (run.stop(from + (to - from) * (0.4 + 0.2 * k / openings.pieces.size()))) {
            return;
        }
        const featureInfo& o = masks[openings.pieces[k].feature];
        in_scope[k] = inScope(o, openings.pieces[k].shape.box, layer.copper, input, params.scope);
        SymbolSize size;
        double ox = 0;
        double oy = 0;
        if (!in_scope[k] || !halfSizes(o, size, ox, oy)) {
            continue;
        }
        double nearest = 0;
        for (unsigned j : copper.near(openings.pieces[k].shape.box)) {
            const featureInfo& p = cu[copper.pieces[j].feature];
            SymbolSize ps;
            double px = 0;
            double py = 0;
            if (halfSizes(p, ps, px, py) && covers(openings.pieces[k].shape, p.start) &&
                (pad_of[k] < 0 || length(p.start, o.start) < nearest)) {
                pad_of[k] = static_cast<int>(j);
                nearest = length(p.start, o.start);
            }
        }
        if (pad_of[k] < 0 || params.clearance_min <= 0) {
            continue;
        }
        const featureInfo& pad = cu[copper.pieces[pad_of[k]].feature];
        const double clearance = clearanceOf(o, pad);
        if (clearance >= params.clearance_min) {
            continue;
        }
        const std::vector<feature_ref> refs{maskRef(k), cuRef(pad_of[k])};
        if (params.do_resize && params.clearance_opt > clearance) {
            const double delta = 2 * std::ceil(params.clearance_opt - clearance);
            featureInfo bigger = o;
            bigger.symbol =
                CopperGeometry::symbolName(size.kind, size.width + delta, size.height + delta);
            Edit edit = editOf(Edit::resize, o);
            edit.symbol = bigger.symbol;
            edits.push_back(edit);
            openings.pieces[k].shape = CopperGeometry::copperOf(bigger);
            growth = std::max(growth, delta / 2);
            grade(smo_clearance_resized,
                  boxHit(clearance, copper.pieces[pad_of[k]].shape.box, refs), params.ranges,
                  result);
        } else {
            grade(smo_clearance_below_min,
                  boxHit(clearance, copper.pieces[pad_of[k]].shape.box, refs), params.ranges,
                  result);
        }
    }

    point pa;
    point pb;
    for (unsigned k = 0; k < openings.pieces.size(); ++k) {
        if (run.stop(from + (to - from) * (0.6 + 0.4 * k / openings.pieces.size()))) {
            return;
        }
        const CopperShape& shape = openings.pieces[k].shape;
        // Coverage: the mask between this opening and copper it must keep covered.
        if (in_scope[k] && pad_of[k] >= 0 && params.coverage_min > 0) {
            for (unsigned j : copper.near(grown(shape.box, params.coverage_min + kTouch))) {
                if (copper.island[j] == copper.island[pad_of[k]]) {
                    continue;
                }
                const double d = CopperGeometry::distance(shape, copper.pieces[j].shape, pa, pb);
                if (d < params.coverage_min) {
                    grade(smo_coverage_below_min, distanceHit(d, pa, pb, {maskRef(k), cuRef(j)}),
                          params.ranges, result);
                }
            }
        }
        // Bridges: the mask sliver between two openings.
        if (params.bridge_size > 0) {
            for (unsigned j :
                 openings.near(grown(shape.box, params.bridge_size + growth + kTouch))) {
                if (j <= k || (!in_scope[k] && !in_scope[j])) {
                    continue;
                }
                const double d = CopperGeometry::distance(shape, openings.pieces[j].shape, pa, pb);
                if (d > kTouch && d < params.bridge_size) {
                    grade(smo_bridge_below_min, distanceHit(d, pa, pb, {maskRef(k), maskRef(j)}),
                          params.ranges, result);
                }
            }
        }
    }
}

// ---- teardrops --------------------------------------------------------------------------------

struct Fillet {
    featureInfo surface;
    CopperShape shape;
    size_t island = 0;
    feature_ref trace;
    feature_ref pad;
    teardrop_create_DFM_op_items item;
    double value = 0.0;
};

// Unit vector from `a` towards `b`; zero when they coincide.
point direction(const point& a, const point& b) {
    const double d = length(a, b);
    return d > 0 ? point{(b.x - a.x) / d, (b.y - a.y) / d} : point{0, 0};
}

void teardropsOne(const JobInput& input, const LayerInput& layer,
                  const teardrop_create_DFM_op_params& params,
                  std::map<teardrop_create_DFM_op_items, teardrop_create_DFM_op_result>& result,
                  std::vector<Edit>& edits, std::deque<Fillet>& made, Run& run, double from,
                  double to) {
    const std::vector<featureInfo>& features = layer.copper.features;
    std::set<size_t> old;
    if (!params.report_only && params.delete_old_teardrops == 0) {
        for (size_t k = 0; k < features.size(); ++k) {
            const featureInfo& f = features[k];
            if (f.type == feature_surface && f.attributes.count(".tear_drop") != 0) {
                const CopperShape shape = CopperGeometry::copperOf(f);
                if (inScope(f, shape.box, layer.copper, input, params.scope)) {
                    old.insert(k);
                    edits.push_back(editOf(Edit::remove, f));
                    grade(tdi_deleted_old, boxHit(0.0, shape.box, {{layer.copper.row, f.id}}),
                          params.ranges, result);
                }
            }
        }
    }
    Copper copper;
    if (!buildCopper(features, run, from, from + (to - from) * 0.3, copper, old)) {
        return;
    }
    const Holes holes(layer.drills);
    const auto ref = [&](unsigned k) {
        return feature_ref{layer.copper.row, features[copper.pieces[k].feature].id};
    };
    const auto isTeardrop = [&](unsigned k) {
        return features[copper.pieces[k].feature].attributes.count(".tear_drop") != 0;
    };
    std::deque<Fillet> fillets;
    Tree made_tree;  // the fillets' boxes
    point pa;
    point pb;
    for (unsigned t = 0; t < copper.pieces.size(); ++t) {
        if (run.stop(from + (to - from) * (0.3 + 0.7 * t / copper.pieces.size()))) {
            break;
        }
        const featureInfo& trace = features[copper.pieces[t].feature];
        const SymbolSize width = CopperGeometry::parseSymbol(trace.symbol);
        if ((trace.type != feature_line && trace.type != feature_arc) ||
            width.kind != SymbolSize::round || isTeardrop(t) ||
            width.width < params.trace_width_min || width.width > params.trace_width_max ||
            !inScope(trace, copper.pieces[t].shape.box, layer.copper, input, params.scope)) {
            continue;
        }
        const double h = width.width / 2;
        std::vector<point> axis{trace.start, trace.end};
        if (trace.type == feature_arc) {
            axis = CopperGeometry::arcPoints(trace.start, trace.end, trace.center, trace.clockwise);
        }
        double trace_length = 0;
        for (size_t k = 0; k + 1 < axis.size(); ++k) {
            trace_length += length(axis[k], axis[k + 1]);
        }
        for (int end = 0; end < 2 && axis.size() >= 2; ++end) {
            const point e = end == 0 ? axis.front() : axis.back();
            const point next = end == 0 ? axis[1] : axis[axis.size() - 2];
            const point far = end == 0 ? axis.back() : axis.front();
            for (unsigned p : copper.near(CopperGeometry::pointShape(e).box)) {
                const featureInfo& pad = features[copper.pieces[p].feature];
                SymbolSize size;
                double hx = 0;
                double hy = 0;
                if (p == t || !halfSizes(pad, size, hx, hy) || !covers(copper.pieces[p].shape, e) ||
                    covers(copper.pieces[p].shape, far)) {
                    continue;
                }
                const Hole* hole = holes.of(copper.pieces[p].shape);
                const bool wanted = hole != nullptr ? params.drilled_pads &&
                                                          hole->diameter >= params.drill_size_min &&
                                                          hole->diameter <= params.drill_size_max
                                                    : params.undrilled_pads;
                if (!wanted) {
                    continue;
                }
                const double r = std::min(hx, hy);
                if (h >= r) {
                    continue;
                }
                bool has_one = false;
                for (unsigned o : copper.near(grown(copper.pieces[p].shape.box, kTouch))) {
                    has_one = has_one ||
                              (o != t && isTeardrop(o) &&
                               CopperGeometry::distance(copper.pieces[o].shape,
                                                        copper.pieces[p].shape, pa, pb) <= kTouch &&
                               CopperGeometry::distance(copper.pieces[o].shape,
                                                        copper.pieces[t].shape, pa, pb) <= kTouch);
                }
                if (has_one) {
                    continue;
                }
                // Straight fillet: the pad's width across its centre to the trace's width.
                const point c = pad.start;
                const point u = direction(e, next);
                const point n{-u.y, u.x};
                const double reach = std::min(r + (params.extend > 0 ? params.extend : r),
                                              (e.x - c.x) * u.x + (e.y - c.y) * u.y + trace_length);
                if (reach <= r || (u.x == 0 && u.y == 0)) {
                    continue;
                }
                Fillet fillet;
                fillet.surface.type = feature_surface;
                fillet.surface.contour = {
                    {c.x + n.x * r, c.y + n.y * r},
                    {c.x + u.x * reach + n.x * h, c.y + u.y * reach + n.y * h},
                    {c.x + u.x * reach - n.x * h, c.y + u.y * reach - n.y * h},
                    {c.x - n.x * r, c.y - n.y * r}};
                fillet.surface.attributes[".tear_drop"] = "";
                fillet.shape = CopperGeometry::copperOf(fillet.surface);
                fillet.island = copper.island[t];
                fillet.trace = ref(t);
                fillet.pad = ref(p);
                fillet.value =
                    hole != nullptr ? r - length(hole->centre, c) - hole->diameter / 2 : r - h;
                // Spacing to other copper, to other holes and to the fillets made so far.
                double closest = std::numeric_limits<double>::infinity();
                point ca;
                point cb;
                const auto consider = [&](double d, double limit) {
                    if ((d <= kTouch || d < limit) && d < closest) {
                        closest = d;
                        ca = pa;
                        cb = pb;
                    }
                };
                const double margin = std::max({static_cast<double>(params.copper_spacing),
                                                static_cast<double>(params.drill_spacing), 0.0}) +
                                      kTouch;
                for (unsigned j : copper.near(grown(fillet.shape.box, margin))) {
                    if (copper.island[j] != fillet.island) {
                        consider(
                            CopperGeometry::distance(fillet.shape, copper.pieces[j].shape, pa, pb),
                            params.copper_spacing);
                    }
                }
                std::vector<Entry> found;
                holes.tree.query(bgi::intersects(grown(fillet.shape.box, margin)),
                                 std::back_inserter(found));
                for (const Entry& entry : found) {
                    if (&holes.holes[entry.second] != hole) {
                        consider(CopperGeometry::distance(fillet.shape,
                                                          holes.holes[entry.second].shape, pa, pb),
                                 params.drill_spacing);
                    }
                }
                found.clear();
                made_tree.query(bgi::intersects(grown(fillet.shape.box, margin)),
                                std::back_inserter(found));
                for (const Entry& entry : found) {
                    const Fillet& other = fillets[entry.second];
                    if (other.island != fillet.island) {
                        consider(CopperGeometry::distance(fillet.shape, other.shape, pa, pb),
                                 params.copper_spacing);
                    }
                }
                if (closest < std::numeric_limits<double>::infinity()) {
                    grade(tdi_skipped_spacing, distanceHit(closest, ca, cb, {ref(t), ref(p)}),
                          params.ranges, result);
                    continue;
                }
                const bool drilled = hole != nullptr;
                if (params.report_only) {
                    grade(drilled ? tdi_missing_drilled : tdi_missing_undrilled,
                          boxHit(fillet.value, fillet.shape.box, {fillet.trace, fillet.pad}),
                          params.ranges, result);
                    continue;
                }
                fillet.item = drilled ? tdi_created_drilled : tdi_created_undrilled;
                made_tree.insert(Entry(fillet.shape.box, static_cast<unsigned>(fillets.size())));
                fillets.push_back(std::move(fillet));
            }
        }
    }
    made = std::move(fillets);
}

// ---- NFP removal ------------------------------------------------------------------------------

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
        for (const point& corner : {point{box.min_corner().x(), box.min_corner().y()},
                                    point{box.max_corner().x(), box.min_corner().y()},
                                    point{box.max_corner().x(), box.max_corner().y()},
                                    point{box.min_corner().x(), box.max_corner().y()}}) {
            if (length(corner, outer.start) > ox + kTouch) {
                return false;
            }
        }
        return true;
    }
    if (!outer_shape.polygons.empty()) {
        GeoPolygon inner_box;
        bg::convert(box, inner_box);
        return bg::covered_by(inner_box, outer_shape.polygons.front());
    }
    // An oval outer pad: the inner box within the oval's straight part and its round ends.
    const Capsule& c = outer_shape.capsules.front();
    for (const point& corner : {point{box.min_corner().x(), box.min_corner().y()},
                                point{box.max_corner().x(), box.min_corner().y()},
                                point{box.max_corner().x(), box.max_corner().y()},
                                point{box.min_corner().x(), box.max_corner().y()}}) {
        point on_axis;
        point same;
        if (CopperGeometry::segmentDistance(c.a, c.b, corner, corner, on_axis, same) >
            c.radius + kTouch) {
            return false;
        }
    }
    return true;
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

void nfpOne(const JobInput& input, const LayerInput& layer, const NFP_removal_DFM_op_params& params,
            std::map<NFP_removal_DFM_op_items, NFP_removal_DFM_op_result>& result,
            std::vector<Edit>& edits, Run& run, double from, double to) {
    const std::vector<featureInfo>& features = layer.copper.features;
    Copper copper;
    if (!buildCopper(features, run, from, from + (to - from) * 0.4, copper)) {
        return;
    }
    const Holes holes(layer.drills);
    const std::set<int32_t> kinds(params.pad_kinds.begin(), params.pad_kinds.end());
    const int scope = params.apply_to == 1 ? 3 : params.scope;
    const auto ref = [&](unsigned k) {
        return feature_ref{layer.copper.row, features[copper.pieces[k].feature].id};
    };
    std::vector<bool> gone(copper.pieces.size(), false);
    point pa;
    point pb;
    for (unsigned k = 0; k < copper.pieces.size(); ++k) {
        if (run.stop(from + (to - from) * (0.4 + 0.6 * k / copper.pieces.size()))) {
            return;
        }
        const featureInfo& f = features[copper.pieces[k].feature];
        const CopperShape& shape = copper.pieces[k].shape;
        SymbolSize size;
        double hx = 0;
        double hy = 0;
        if (!halfSizes(f, size, hx, hy) || !inScope(f, shape.box, layer.copper, input, scope)) {
            continue;
        }
        const Hole* hole = holes.of(shape);
        if (hole != nullptr ? !(hole->kind == "non_plated" ? params.npth
                                : hole->kind == "via"      ? params.via
                                                           : params.pth)
                            : !params.remove_undrilled_pads) {
            continue;
        }
        std::vector<feature_ref> refs{ref(k)};
        bool found = false;
        NFP_removal_DFM_op_items item = nfp_isolated_removed;
        for (unsigned j : copper.near(shape.box)) {
            const featureInfo& other = features[copper.pieces[j].feature];
            if (j == k || gone[j] || other.type != feature_pad) {
                continue;
            }
            const bool same = other.symbol == f.symbol && length(other.start, f.start) <= kTouch &&
                              std::abs(other.angle - f.angle) < 1e-6;
            if (same && j < k && kinds.count(2) != 0) {
                item = nfp_duplicate_removed;
            } else if (!same && kinds.count(4) != 0 &&
                       coveredBy(f, shape, other, copper.pieces[j].shape)) {
                item = nfp_covered_removed;
            } else {
                continue;
            }
            refs.push_back(ref(j));
            found = true;
            break;
        }
        if (!found && hole != nullptr && kinds.count(3) != 0 &&
            hole->diameter >= 2 * std::min(hx, hy)) {
            item = nfp_drilled_over_removed;
            refs.push_back(hole->ref);
            found = true;
        }
        if (!found && kinds.count(1) != 0) {
            bool touched = false;
            for (unsigned j : copper.near(grown(shape.box, kTouch))) {
                touched = touched || (features[copper.pieces[j].feature].type != feature_pad &&
                                      CopperGeometry::distance(shape, copper.pieces[j].shape, pa,
                                                               pb) <= kTouch);
            }
            if (!touched) {
                item = hole != nullptr ? nfp_isolated_removed : nfp_undrilled_removed;
                if (hole != nullptr) {
                    refs.push_back(hole->ref);
                }
                found = true;
            }
        }
        if (!found) {
            continue;
        }
        if (params.action == 0) {
            gone[k] = true;
            edits.push_back(editOf(Edit::remove, f));
        } else {
            Edit edit = editOf(Edit::mark, f);
            edit.attribute = {".nfp", nfpKindName(item)};
            edits.push_back(edit);
            item = nfp_marked;
        }
        grade(item, boxHit(2 * std::min(hx, hy), shape.box, std::move(refs)), params.ranges,
              result);
    }
}

bool isInnerCopper(const layer_info& info) {
    return info.side == "inner" && (info.type == "signal" || info.type == "mixed");
}

}  // namespace

// ---- the operations ---------------------------------------------------------------------------

namespace {

// What every operation does around its per-layer work: the snapshot, the run's progress and
// stop, and the edits written back layer by layer. `one(layer, from, to)` works on one layer
// between the two progress shares and returns its edits (after putting its hits in the
// operation's result); layers `wanted` refuses are skipped. A stopped run keeps the layers done.
template <typename Wanted, typename One>
bool forEachLayer(const std::string& job, const std::string& step,
                  const std::vector<std::string>& layers, Korvo::COMMON::progress_state* progress,
                  JobInput& input, Wanted wanted, One one) {
    if (!snapshot(job, step, layers, input)) {
        return false;
    }
    Run run(progress, input.duration);
    const size_t n = input.layers.size();
    for (size_t k = 0; k < n && !run.startStopped(); ++k) {
        const LayerInput& layer = input.layers[k];
        if (!wanted(layer)) {
            continue;
        }
        std::vector<Edit> edits = one(layer, run, share(k, n, 0), share(k, n, 1));
        apply(job, step, layer.info.name, edits);
        if (run.stopped()) {
            return true;
        }
    }
    run.finish();
    return true;
}

bool everyLayer(const LayerInput&) {
    return true;
}

}  // namespace

bool DfmOperations::signalLayer(const std::string& job, const std::string& step,
                                const std::vector<std::string>& layers,
                                const signal_layer_DFM_op_params& params,
                                signal_layer_DFM_result_map& results,
                                Korvo::COMMON::progress_state* progress) {
    results.clear();
    JobInput input;
    return forEachLayer(job, step, layers, progress, input, everyLayer,
                        [&](const LayerInput& layer, Run& run, double from, double to) {
                            std::map<signal_layer_DFM_op_items, signal_layer_DFM_op_result> result;
                            std::vector<Edit> edits;
                            signalLayerOne(input, layer, params, result, edits, run, from, to);
                            if (!result.empty()) {
                                results[layer.info.name] = std::move(result);
                            }
                            return edits;
                        });
}

bool DfmOperations::solderMask(const std::string& job, const std::string& step,
                               const std::vector<std::string>& layers,
                               const solder_mask_DFM_params& params,
                               solder_mask_DFM_result_map& results,
                               Korvo::COMMON::progress_state* progress) {
    results.clear();
    JobInput input;
    return forEachLayer(
        job, step, layers, progress, input,
        [](const LayerInput& layer) {
            return layer.info.type == "solder_mask" && !layer.beneath_info.name.empty();
        },
        [&](const LayerInput& layer, Run& run, double from, double to) {
            std::map<solder_mask_DFM_op_items, solder_mask_DFM_op_result> result;
            std::vector<Edit> edits;
            solderMaskOne(input, layer, params, result, edits, run, from, to);
            for (auto& entry : result) {
                results[entry.first].push_back(std::move(entry.second));
            }
            return edits;
        });
}

bool DfmOperations::teardrops(const std::string& job, const std::string& step,
                              const std::vector<std::string>& layers,
                              const teardrop_create_DFM_op_params& params,
                              teardrop_result_map& results,
                              Korvo::COMMON::progress_state* progress) {
    results.clear();
    JobInput input;
    return forEachLayer(
        job, step, layers, progress, input, everyLayer,
        [&](const LayerInput& layer, Run& run, double from, double to) {
            std::vector<Edit> edits;
            std::deque<Fillet> fillets;
            teardropsOne(input, layer, params, results, edits, fillets, run, from, to);
            // The new surfaces get their ids when written; their hits follow.
            const size_t first = edits.size();
            for (Fillet& fillet : fillets) {
                Edit edit;
                edit.kind = Edit::add;
                edit.feature = std::move(fillet.surface);
                edits.push_back(std::move(edit));
            }
            apply(job, step, layer.info.name, edits);
            for (size_t f = 0; f < fillets.size(); ++f) {
                const Fillet& fillet = fillets[f];
                grade(
                    fillet.item,
                    boxHit(fillet.value, fillet.shape.box,
                           {fillet.trace, fillet.pad, {layer.copper.row, edits[first + f].new_id}}),
                    params.ranges, results);
            }
            // Written above, where the new ids are needed.
            return std::vector<Edit>();
        });
}

bool DfmOperations::nfpRemoval(const std::string& job, const std::string& step,
                               const std::vector<std::string>& layers,
                               const NFP_removal_DFM_op_params& params,
                               NFP_removal_result_map& results,
                               Korvo::COMMON::progress_state* progress) {
    results.clear();
    JobInput input;
    return forEachLayer(
        job, step, layers, progress, input,
        [](const LayerInput& layer) { return isInnerCopper(layer.info); },
        [&](const LayerInput& layer, Run& run, double from, double to) {
            std::vector<Edit> edits;
            nfpOne(input, layer, params, results, edits, run, from, to);
            return edits;
        });
}

}  // namespace wcref

#include "SignalChecks.h"

#include <glog/logging.h>

#include <algorithm>
#include <array>
#include <boost/geometry/index/rtree.hpp>
#include <chrono>
#include <cmath>
#include <numeric>

#include "CopperGeometry.h"
#include "StepRepeatGeometry.h"

namespace wcref {

namespace bgi = boost::geometry::index;
using namespace Korvo::API;

namespace {

// A measured distance counts as below a limit only when it is below by more than this: a
// layout at exactly the limit, read from inches or millimetres, lands a few femtometres either
// side of it.
constexpr double kLimitSlack = 1e-3;

bool below(double value, double limit) {
    return value < limit - kLimitSlack;
}

bool samePoint(const point& a, const point& b) {
    return std::abs(a.x - b.x) <= kTouch && std::abs(a.y - b.y) <= kTouch;
}

// A gap's two ends to the nanometre, in either order.
std::array<long long, 4> gapKey(const point& a, const point& b) {
    std::array<long long, 4> key{std::llround(a.x), std::llround(a.y), std::llround(b.x),
                                 std::llround(b.y)};
    if (std::make_pair(key[2], key[3]) < std::make_pair(key[0], key[1])) {
        std::swap(key[0], key[2]);
        std::swap(key[1], key[3]);
    }
    return key;
}

enum Kind { kPad, kLine, kArc, kSurface };

struct Piece {
    size_t feature = 0;  // index into the layer's features
    Kind kind = kPad;
    bool smd = false;
    bool in_scope = true;
    int net = -1;  // index into SignalCheckInput::net_names
    CopperShape shape;
};

using Entry = std::pair<GeoBox, unsigned>;
using Tree = bgi::rtree<Entry, bgi::quadratic<16>>;

// Reports progress and polls the stop flag at most every 20 ms of work.
class Poller {
public:
    explicit Poller(Korvo::COMMON::progress_state* progress) : progress_(progress) {}
    // `done` in 0..100; true when the caller asked to stop.
    bool stop(double done) {
        if (progress_ == nullptr || (++calls_ & 31) != 0) {
            return stopped_;
        }
        const auto now = std::chrono::steady_clock::now();
        if (now - last_ >= std::chrono::milliseconds(20)) {
            last_ = now;
            progress_->set_value(std::min(99.0, done));
            stopped_ = progress_->is_stop_requested();
        }
        return stopped_;
    }
    bool stopped() const { return stopped_; }
    bool startStopped() {
        stopped_ = progress_ != nullptr && progress_->is_stop_requested();
        return stopped_;
    }

private:
    Korvo::COMMON::progress_state* progress_;
    unsigned calls_ = 0;
    bool stopped_ = false;
    std::chrono::steady_clock::time_point last_ = std::chrono::steady_clock::now();
};

signal_layers_checks_items spacingItem(const Piece& a, const Piece& b, bool smd_items) {
    if (smd_items && (a.smd || b.smd)) {
        const Piece& other = a.smd ? b : a;
        if (other.kind == kPad) {
            return other.smd ? sli_smd_to_smd_spacing : sli_smd_to_pad_spacing;
        }
        return sli_smd_to_line_spacing;
    }
    Kind x = std::min(a.kind, b.kind);
    Kind y = std::max(a.kind, b.kind);
    static const signal_layers_checks_items table[4][4] = {
        {sli_pad_to_pad_spacing, sli_pad_to_line_spacing, sli_pad_to_arc_spacing,
         sli_pad_to_surface_spacing},
        {sli_pad_to_line_spacing, sli_line_to_line_spacing, sli_line_to_arc_spacing,
         sli_line_to_surface_spacing},
        {sli_pad_to_arc_spacing, sli_line_to_arc_spacing, sli_arc_to_arc_spacing,
         sli_line_to_surface_spacing},
        {sli_pad_to_surface_spacing, sli_line_to_surface_spacing, sli_line_to_surface_spacing,
         sli_surface_to_surface_spacing},
    };
    return table[x][y];
}

// The same-net item of a pair of one net: pads with pads, pads with anything else, the rest.
signal_layers_checks_items sameNetItem(const Piece& a, const Piece& b) {
    if (a.kind == kPad && b.kind == kPad) {
        return sli_same_net_pad_to_pad;
    }
    return a.kind == kPad || b.kind == kPad ? sli_same_net_pad_to_line : sli_same_net_line_to_line;
}

bool insideArea(const GeoBox& box, const SignalCheckInput& input, int scope) {
    const point centre{(box.min_corner().x() + box.max_corner().x()) / 2,
                       (box.min_corner().y() + box.max_corner().y()) / 2};
    if (scope == 1) {
        return !input.has_screen_box || boxContains(input.screen_box, centre);
    }
    if (scope == 2) {
        return input.profile.size() < 3 || pointInPolygon(centre, input.profile);
    }
    return true;
}

// The copper a rout feature cuts: surfaces by their edge.
CopperShape routShape(const featureInfo& f) {
    if (f.type != feature_surface) {
        return CopperGeometry::copperOf(f);
    }
    CopperShape shape;
    const auto ring = [&shape](const std::vector<point>& r) {
        for (size_t k = 0; k < r.size(); ++k) {
            shape.capsules.push_back({r[k], r[(k + 1) % r.size()], 0.0});
        }
    };
    ring(f.contour);
    for (const auto& hole : f.holes) {
        ring(hole);
    }
    CopperShape solid = CopperGeometry::copperOf(f);
    shape.box = solid.box;
    return shape;
}

// How deep a line's end reaches into a pad: the end's depth inside the pad plus half the width
// (negative when it stops short). `edge` receives the pad edge point nearest the end.
double padOverlap(const point& end, double half_width, const CopperShape& pad, point& edge) {
    if (!pad.capsules.empty()) {
        const Capsule& c = pad.capsules.front();
        point on_axis;
        point same;
        const double d = CopperGeometry::segmentDistance(c.a, c.b, end, end, on_axis, same);
        if (d > 0) {
            edge = {on_axis.x + (end.x - on_axis.x) / d * c.radius,
                    on_axis.y + (end.y - on_axis.y) / d * c.radius};
        } else {
            edge = {on_axis.x + c.radius, on_axis.y};
        }
        return c.radius - d + half_width;
    }
    if (pad.polygons.empty()) {
        return -1;
    }
    const GeoPolygon& polygon = pad.polygons.front();
    double best = std::numeric_limits<double>::infinity();
    const auto& ring = polygon.outer();
    for (size_t k = 0; k + 1 < ring.size(); ++k) {
        point on_edge;
        point same;
        const double d = CopperGeometry::segmentDistance({ring[k].x(), ring[k].y()},
                                                         {ring[k + 1].x(), ring[k + 1].y()}, end,
                                                         end, on_edge, same);
        if (d < best) {
            best = d;
            edge = on_edge;
        }
    }
    const bool inside = bg::covered_by(GeoPoint(end.x, end.y), polygon);
    return (inside ? best : -best) + half_width;
}

}  // namespace

void SignalChecks::grade(signal_layers_checks_items item, check_info hit,
                         const SignalRanges& ranges, SignalResult& result) {
    signal_check_result& record = result[item];
    record.item = item;
    const auto range = ranges.find(item);
    if (range == ranges.end()) {
        record.other.push_back(std::move(hit));
        return;
    }
    const signal_check_range& r = range->second;
    if (r.red == 0 && r.yellow == 0 && r.green == 0) {
        record.red.push_back(std::move(hit));
    } else if (hit.value < r.red) {
        record.red.push_back(std::move(hit));
    } else if (hit.value < r.yellow) {
        record.yellow.push_back(std::move(hit));
    } else if (hit.value < r.green) {
        record.green.push_back(std::move(hit));
    } else {
        record.other.push_back(std::move(hit));
    }
}

bool SignalChecks::run(const SignalCheckInput& input, const signal_check_params& params,
                       const std::vector<signal_layers_checks_list>& tests,
                       const SignalRanges& ranges, SignalResult& result,
                       Korvo::COMMON::progress_state* progress, int scope) {
    result.clear();
    const std::set<signal_layers_checks_list> on(tests.begin(), tests.end());
    const bool spacing = on.count(sl_spacing) != 0 && params.spacing > 0;
    const bool smd = on.count(sl_smd) != 0 && params.spacing > 0;
    const bool sliver = on.count(sl_sliver) != 0 && params.sliver_min > 0;
    Poller poll(progress);
    if (poll.startStopped()) {
        return false;
    }

    // Copper pieces and their index.
    const std::vector<featureInfo>& features = input.copper.features;
    std::vector<Piece> pieces;
    pieces.reserve(features.size());
    for (size_t k = 0; k < features.size(); ++k) {
        if (poll.stop(10.0 * k / features.size())) {
            return false;
        }
        const featureInfo& f = features[k];
        if (!f.positive || f.type == feature_text) {
            continue;
        }
        Piece piece;
        piece.feature = k;
        piece.kind = f.type == feature_pad    ? kPad
                     : f.type == feature_line ? kLine
                     : f.type == feature_arc  ? kArc
                                              : kSurface;
        piece.smd = f.type == feature_pad && f.attributes.count(".smd") != 0;
        piece.shape = CopperGeometry::copperOf(f);
        if (piece.shape.empty()) {
            continue;
        }
        piece.in_scope = scope == 3 ? input.copper.selected.count(f.id) != 0
                                    : insideArea(piece.shape.box, input, scope);
        piece.net = k < input.copper.nets.size() ? input.copper.nets[k] : -1;
        pieces.push_back(std::move(piece));
    }
    std::vector<Entry> entries;
    entries.reserve(pieces.size());
    for (unsigned k = 0; k < pieces.size(); ++k) {
        entries.emplace_back(pieces[k].shape.box, k);
    }
    const Tree tree(entries.begin(), entries.end());
    const auto ref = [&](const Piece& p) {
        const featureInfo& f = features[p.feature];
        return HitFeature{{input.copper.row, f.id}, &f};
    };
    // The hit names the nets of its copper, each once, in the order of its features.
    const auto named = [&input](check_info hit, std::initializer_list<int> nets) {
        for (int net : nets) {
            if (net < 0 || static_cast<size_t>(net) >= input.net_names.size()) {
                continue;
            }
            const std::string& name = input.net_names[static_cast<size_t>(net)];
            if (std::find(hit.nets.begin(), hit.nets.end(), name) == hit.nets.end()) {
                hit.nets.push_back(name);
            }
        }
        return hit;
    };

    // Whether copper other than pieces `a` and `b` reaches into the disc whose diameter is the
    // gap from `pa` to `pb`: then the gap is the mouth of a notch that copper closes, or
    // copper fills it, and the void is narrower elsewhere (between that copper and a or b).
    // Copper merely touching the disc, such as a copy of a or b, does not count.
    const auto gapFilled = [&](unsigned a, unsigned b, const point& pa, const point& pb) {
        const double half = std::hypot(pb.x - pa.x, pb.y - pa.y) / 2;
        const point middle{(pa.x + pb.x) / 2, (pa.y + pb.y) / 2};
        const CopperShape dot = CopperGeometry::pointShape(middle);
        std::vector<Entry> in_disc;
        tree.query(bgi::intersects(grown(dot.box, half)), std::back_inserter(in_disc));
        point qa;
        point qb;
        for (const Entry& e : in_disc) {
            if (e.second == a || e.second == b) {
                continue;
            }
            const double d = CopperGeometry::distance(pieces[e.second].shape, dot, qa, qb);
            if (d <= 0 || d < half - kTouch) {
                return true;
            }
        }
        return false;
    };
    // Whether the point `end` of line or arc `k` lies in other copper than pads and copies of
    // the line itself: the end of a pour's stroke, or a vertex where a trace goes on.
    const auto endCovered = [&](unsigned k, const point& end) {
        const CopperShape dot = CopperGeometry::pointShape(end);
        std::vector<Entry> at_end;
        tree.query(bgi::intersects(dot.box), std::back_inserter(at_end));
        const featureInfo& f = features[pieces[k].feature];
        point qa;
        point qb;
        for (const Entry& e : at_end) {
            const Piece& other = pieces[e.second];
            const featureInfo& g = features[other.feature];
            const bool copy = g.type == f.type && g.symbol == f.symbol &&
                              samePoint(g.start, f.start) && samePoint(g.end, f.end);
            if (e.second != k && other.kind != kPad && !copy &&
                CopperGeometry::distance(other.shape, dot, qa, qb) <= kTouch) {
                return true;
            }
        }
        return false;
    };

    // Islands, and the close pairs the gap tests need once the islands are known.
    struct Near {
        unsigned a;
        unsigned b;
        double d;
        point pa;
        point pb;
    };
    const double reach =
        std::max({spacing || smd ? params.spacing : 0.0, sliver ? params.sliver_min : 0.0, kTouch});
    UnionFind islands(pieces.size());
    std::vector<Near> near;
    std::vector<Entry> found;
    for (unsigned i = 0; i < pieces.size(); ++i) {
        if (poll.stop(10.0 + 30.0 * i / pieces.size())) {
            return false;
        }
        found.clear();
        tree.query(bgi::intersects(grown(pieces[i].shape.box, reach)), std::back_inserter(found));
        for (const Entry& e : found) {
            const unsigned j = e.second;
            if (j <= i) {
                continue;
            }
            point pa;
            point pb;
            const double d = CopperGeometry::distance(pieces[i].shape, pieces[j].shape, pa, pb);
            if (d <= kTouch) {
                islands.join(i, j);
            } else if (d < reach) {
                near.push_back({i, j, d, pa, pb});
            }
        }
    }

    std::set<std::array<long long, 4>> sliver_gaps;  // one hit per gap, however many copies
    for (size_t k = 0; k < near.size(); ++k) {
        if (poll.stop(40.0 + 10.0 * k / near.size())) {
            return false;
        }
        const Near& n = near[k];
        const Piece& a = pieces[n.a];
        const Piece& b = pieces[n.b];
        if (!a.in_scope && !b.in_scope) {
            continue;
        }
        const bool same = islands.find(n.a) == islands.find(n.b);
        if (same) {
            if (sliver && below(n.d, params.sliver_min) && !gapFilled(n.a, n.b, n.pa, n.pb) &&
                sliver_gaps.insert(gapKey(n.pa, n.pb)).second) {
                grade(sli_copper_sliver,
                      named(distanceHit(n.d, params.sliver_min, n.pa, n.pb, {ref(a), ref(b)}),
                            {a.net, b.net}),
                      ranges, result);
            }
            continue;
        }
        // As for slivers, a gap that other copper reaches into is no free gap: the narrower
        // one between that copper and a or b is reported instead.
        if (!below(n.d, params.spacing) || gapFilled(n.a, n.b, n.pa, n.pb)) {
            continue;
        }
        // Spacing, SMD and same-net pairs are all held against "Spacing".
        const check_info hit =
            named(distanceHit(n.d, params.spacing, n.pa, n.pb, {ref(a), ref(b)}), {a.net, b.net});
        if (a.net >= 0 && a.net == b.net) {
            // Two pieces of one net, joined elsewhere (through a hole, on another layer).
            if (spacing || smd) {
                grade(sameNetItem(a, b), hit, ranges, result);
            }
            continue;
        }
        const bool smd_pair = a.smd || b.smd;
        if ((smd && smd_pair) || (spacing && !(smd && smd_pair))) {
            grade(spacingItem(a, b, smd), hit, ranges, result);
        }
    }

    // Sizes.
    if (on.count(sl_size) != 0) {
        for (size_t k = 0; k < pieces.size(); ++k) {
            if (poll.stop(50.0 + 10.0 * k / pieces.size())) {
                return false;
            }
            const Piece& p = pieces[k];
            const featureInfo& f = features[p.feature];
            const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
            if (!p.in_scope || size.kind == SymbolSize::none || p.kind == kSurface) {
                continue;
            }
            signal_layers_checks_items item = sli_pad_size;
            double value = std::min(size.width, size.height);
            if (p.kind == kLine || p.kind == kArc) {
                item = p.kind == kLine ? sli_line_width : sli_arc_width;
                value = size.width;
            } else if (p.smd) {
                item = sli_smd_width;
            }
            const auto range = ranges.find(item);
            if (range != ranges.end() && value < range->second.green) {
                grade(item, boxHit(value, range->second.green, p.shape.box, {ref(p)}), ranges,
                      result);
            }
        }
    }

    // Drills and routs against the copper.
    const auto against = [&](const CheckLayer& layer, double limit, bool drill, double from,
                             double to) {
        for (size_t k = 0; k < layer.features.size(); ++k) {
            if (poll.stop(from + (to - from) * k / std::max<size_t>(1, layer.features.size()))) {
                return false;
            }
            const featureInfo& f = layer.features[k];
            const CopperShape shape = drill ? CopperGeometry::copperOf(f) : routShape(f);
            if (shape.empty()) {
                continue;
            }
            const bool hole_in_scope =
                scope == 3 ? layer.selected.count(f.id) != 0 : insideArea(shape.box, input, scope);
            found.clear();
            tree.query(bgi::intersects(grown(shape.box, std::max(limit, kTouch))),
                       std::back_inserter(found));
            std::set<size_t> touched;
            std::vector<Near> close;
            bool padded = false;
            for (const Entry& e : found) {
                point pa;
                point pb;
                const double d = CopperGeometry::distance(shape, pieces[e.second].shape, pa, pb);
                if (d <= kTouch) {
                    touched.insert(islands.find(e.second));
                    if (pieces[e.second].kind == kPad || pieces[e.second].kind == kSurface) {
                        padded = padded ||
                                 CopperGeometry::distance(CopperGeometry::pointShape(f.start),
                                                          pieces[e.second].shape, pa, pb) <= kTouch;
                    }
                } else if (below(d, limit)) {
                    close.push_back({e.second, 0, d, pa, pb});
                }
            }
            const std::string kind =
                f.attributes.count(".drill") ? f.attributes.at(".drill") : std::string();
            const int hole_net = k < layer.nets.size() ? layer.nets[k] : -1;
            for (const Near& n : close) {
                const Piece& p = pieces[n.a];
                if ((drill && touched.count(islands.find(n.a)) != 0) ||
                    (!hole_in_scope && !p.in_scope)) {
                    continue;
                }
                signal_layers_checks_items item;
                if (drill) {
                    item = kind == "via"          ? sli_via_to_copper
                           : kind == "non_plated" ? sli_npth_to_copper
                                                  : sli_pth_to_copper;
                } else {
                    item = p.kind == kPad       ? (p.smd ? sli_rout_to_smd : sli_rout_to_pad)
                           : p.kind == kSurface ? sli_rout_to_surface
                                                : sli_rout_to_line;
                }
                grade(item,
                      named(distanceHit(n.d, limit, n.pa, n.pb, {{{layer.row, f.id}, &f}, ref(p)}),
                            {hole_net, p.net}),
                      ranges, result);
            }
            if (drill && input.outer && params.check_missing_pads_for_drills &&
                kind != "non_plated" && f.type == feature_pad && !padded && hole_in_scope) {
                const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
                // A missing pad is a count: no rule's value to hold the hole's size against.
                grade(kind == "via" ? sli_missing_pad_for_via : sli_missing_pad_for_pth,
                      named(boxHit(size.width, 0.0, shape.box, {{{layer.row, f.id}, &f}}),
                            {hole_net}),
                      ranges, result);
            }
        }
        return true;
    };
    if (on.count(sl_drill) != 0) {
        for (size_t k = 0; k < input.drills.size(); ++k) {
            const double from = 60.0 + 15.0 * k / input.drills.size();
            if (!against(input.drills[k], params.drill_to_copper, true, from,
                         from + 15.0 / input.drills.size())) {
                return false;
            }
        }
    }
    if (on.count(sl_rout) != 0 && params.rout_to_copper > 0) {
        for (size_t k = 0; k < input.routs.size(); ++k) {
            const double from = 75.0 + 10.0 * k / input.routs.size();
            if (!against(input.routs[k], params.rout_to_copper, false, from,
                         from + 10.0 / input.routs.size())) {
                return false;
            }
        }
    }

    // Pad connections: each end of a round line or arc that lands on a pad of its island.
    if (on.count(sl_pad_connection) != 0 && params.min_pad_overlap > 0) {
        for (size_t k = 0; k < pieces.size(); ++k) {
            if (poll.stop(85.0 + 15.0 * k / pieces.size())) {
                return false;
            }
            const Piece& line = pieces[k];
            const featureInfo& f = features[line.feature];
            const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
            if ((line.kind != kLine && line.kind != kArc) || size.kind != SymbolSize::round) {
                continue;
            }
            const double half = size.width / 2;
            for (const point& end : {f.start, f.end}) {
                found.clear();
                tree.query(bgi::intersects(GeoBox(GeoPoint(end.x - half, end.y - half),
                                                  GeoPoint(end.x + half, end.y + half))),
                           std::back_inserter(found));
                for (const Entry& e : found) {
                    const Piece& pad = pieces[e.second];
                    if (pad.kind != kPad || (!line.in_scope && !pad.in_scope) ||
                        islands.find(e.second) != islands.find(k)) {
                        continue;
                    }
                    point edge;
                    const double overlap = padOverlap(end, half, pad.shape, edge);
                    // An end in other copper is a stroke of a pour or a vertex inside a trace.
                    if (overlap > kTouch && below(overlap, params.min_pad_overlap) &&
                        !endCovered(k, end)) {
                        grade(sli_pad_connection_overlap,
                              named(distanceHit(overlap, params.min_pad_overlap, end, edge,
                                                {ref(line), ref(pad)}),
                                    {line.net}),
                              ranges, result);
                    }
                }
            }
        }
    }
    if (progress != nullptr) {
        progress->set_value(100.0);
    }
    return true;
}

}  // namespace wcref

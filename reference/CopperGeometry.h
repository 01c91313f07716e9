#pragma once
// The copper a feature covers, as the reference engine measures it.
//
// Round things stay exact: a round pad is a disc, an oval pad and a line drawn with a round
// symbol are capsules (a segment widened by a radius, round ends), and an arc drawn with a
// round symbol is an arc band (the points within half the width of the circular arc: an
// annular sector with round ends), so distances between them are exact, also between arcs
// and between an arc and a polygon. Everything else becomes Boost.Geometry polygons: square
// and rectangular pads, lines drawn with square or rectangular symbols (the hull of the symbol
// at both ends), surfaces with their holes, and pads whose outline is kept (macro and polygon
// apertures). Lines and arcs drawn with oval symbols are hulls of the flattened symbol, and arcs
// drawn with square, rectangular or oval symbols stay polygonal: hulls of the symbol along
// chords of at most kMaxChordError, which may cut up to that much inside the true edge.
//
// An arc's radius is its start point's distance from the centre. When the file's end point
// lies off that circle (rounded centre offsets), a capsule of the arc's width joins the arc's
// end to the file's end point, so that what touches the end point in the file still does.
//
// Symbol names in the engine's spelling, sizes in mil: "r<d>" round, "s<w>" square,
// "rect<w>x<h>" rectangle, "oval<w>x<h>" obround. A pad with an unknown symbol name and no
// outline covers nothing and is skipped by the checks.

#include <boost/geometry.hpp>
#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "Korvo_Analysis_types.h"

namespace wcref {

namespace bg = boost::geometry;
using GeoPoint = bg::model::d2::point_xy<double>;
using GeoPolygon = bg::model::polygon<GeoPoint>;  // clockwise, closed
using GeoBox = bg::model::box<GeoPoint>;

// Largest distance between a chord and the arc it replaces, in nanometres (0.02 mil): for
// outlines of round and oval symbols, contours of surfaces and arcs drawn with non-round
// symbols.
constexpr double kMaxChordError = 500.0;

// Nanometres per mil.
constexpr double kNmPerMil = 25400.0;

// Copper closer than this touches (one island, no gap): engine lengths are whole nanometres.
constexpr double kTouch = 0.5;

struct SymbolSize {
    enum Kind { none, round, square, rectangle, oval };
    Kind kind = none;
    double width = 0.0;  // nanometres
    double height = 0.0;
};

// A segment widened by `radius` with round ends; a disc when a == b.
struct Capsule {
    Korvo::API::point a;
    Korvo::API::point b;
    double radius = 0.0;
};

// The points within `half_width` of the circular arc of `radius` about `centre` that starts
// at angle `start` and turns `sweep` radians counter-clockwise: an annular sector with round
// ends. A full circle turns 2 pi.
struct ArcBand {
    Korvo::API::point centre;
    double radius = 0.0;
    double start = 0.0;  // radians
    double sweep = 0.0;  // radians, in (0, 2 pi]
    double half_width = 0.0;
};

struct CopperShape {
    std::vector<Capsule> capsules;
    std::vector<ArcBand> arcs;
    std::vector<GeoPolygon> polygons;
    GeoBox box{GeoPoint(0, 0), GeoPoint(0, 0)};
    bool empty() const { return capsules.empty() && arcs.empty() && polygons.empty(); }
};

// `box` with each side moved outwards by `by`: the candidates of a search within `by` of it.
inline GeoBox grown(const GeoBox& box, double by) {
    return GeoBox(GeoPoint(box.min_corner().x() - by, box.min_corner().y() - by),
                  GeoPoint(box.max_corner().x() + by, box.max_corner().y() + by));
}

// Disjoint sets over 0..n-1 with path halving: the islands of copper and the nets they join.
class UnionFind {
public:
    explicit UnionFind(size_t n = 0) : parent_(n) { std::iota(parent_.begin(), parent_.end(), 0); }
    size_t add() {
        parent_.push_back(parent_.size());
        return parent_.size() - 1;
    }
    size_t size() const { return parent_.size(); }
    size_t find(size_t x) {
        while (parent_[x] != x) {
            parent_[x] = parent_[parent_[x]];
            x = parent_[x];
        }
        return x;
    }
    void join(size_t a, size_t b) { parent_[find(a)] = find(b); }

private:
    std::vector<size_t> parent_;
};

// A feature a hit concerns: its reference and the record it was measured on (for the hit's
// signature; nullptr where the record is not at hand, and the signature is then 0).
struct HitFeature {
    Korvo::API::feature_ref ref;
    const Korvo::API::featureInfo* record = nullptr;
};

// The signature of a hit's features (`check_info::signature`): what they are, never where.
// For each feature, its type and its size: a pad or a line by its symbol's shape kind and
// dimensions (a pad whose outline is kept by that outline's width, height and area instead),
// a line also by its length, an arc by its symbol, its radius and its sweep, a surface by its
// outline's width and height and its area (holes taken out). Lengths are rounded to 0.1 mil
// (2540 engine units), areas to the square of that, sweeps to a hundredth of a degree. The
// per-feature values are sorted, so that the order of the features in the hit or on the layer
// does not count, and hashed with 64-bit FNV-1a, which is the same in every build and on every
// platform. Position, ids and layer never enter, nor the angle a symbol is placed at; an
// outline's width and height are those of its box along x and y, so a turned surface can read
// as another. 0 when a record is missing or there is no feature; never 0 otherwise. A size
// within a rounding of a step's boundary can read as the next step after a change smaller than
// the step: the hit is then a new one.
std::uint64_t hitSignature(const std::vector<const Korvo::API::featureInfo*>& records);

// The hits the checks and the optimisations report: a distance as the line between its two
// closest points, a size or a count as the feature's box. `required` is the rule's value the
// measurement was held against (0 where the item has none); the signature comes from the
// features' records.
Korvo::API::check_info distanceHit(double value, double required, const Korvo::API::point& a,
                                   const Korvo::API::point& b,
                                   const std::vector<HitFeature>& features);
Korvo::API::check_info boxHit(double value, double required, const GeoBox& box,
                              const std::vector<HitFeature>& features);

class CopperGeometry {
public:
    // The size a symbol name stands for; kind none when it is not a standard symbol.
    static SymbolSize parseSymbol(const std::string& name);
    // The engine's name for a standard symbol of this size (sizes in nanometres).
    static std::string symbolName(SymbolSize::Kind kind, double width, double height);
    // Mil with at most six decimals (a fortieth of a nanometre), trailing zeros dropped:
    // 13 -> "13", 1 mm -> "39.370079".
    static std::string milText(double nanometres);

    // Points from `start` to `end` along the arc about `centre` (a full circle when they
    // coincide), each chord within kMaxChordError of the arc of radius `radius_extra` larger.
    static std::vector<Korvo::API::point> arcPoints(const Korvo::API::point& start,
                                                    const Korvo::API::point& end,
                                                    const Korvo::API::point& centre, bool clockwise,
                                                    double radius_extra = 0.0);

    static CopperShape copperOf(const Korvo::API::featureInfo& feature);
    // A single point as a shape: what covers it, touches it.
    static CopperShape pointShape(const Korvo::API::point& p);

    // The arc from `start` to `end` about `centre` (a full circle when they coincide) widened
    // by `half_width`; radius and start angle from `start`, end angle from `end`.
    static ArcBand arcBand(const Korvo::API::point& start, const Korvo::API::point& end,
                           const Korvo::API::point& centre, bool clockwise, double half_width);

    // Shortest distance between two shapes and the two points that realise it; 0 when they
    // touch or overlap (the points then lie on the contact).
    static double distance(const CopperShape& a, const CopperShape& b, Korvo::API::point& on_a,
                           Korvo::API::point& on_b);

    // Closest points of the arc band's middle arc (half width ignored) and the segment p-q,
    // and of two middle arcs; return their distance, 0 where they cross.
    static double arcSegmentDistance(const ArcBand& arc, const Korvo::API::point& p,
                                     const Korvo::API::point& q, Korvo::API::point& on_arc,
                                     Korvo::API::point& on_segment);
    static double arcArcDistance(const ArcBand& a, const ArcBand& b, Korvo::API::point& on_a,
                                 Korvo::API::point& on_b);

    // Closest points of segments p1-q1 and p2-q2; returns their distance.
    static double segmentDistance(const Korvo::API::point& p1, const Korvo::API::point& q1,
                                  const Korvo::API::point& p2, const Korvo::API::point& q2,
                                  Korvo::API::point& c1, Korvo::API::point& c2);
};

}  // namespace wcref

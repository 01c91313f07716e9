#pragma once
// The copper a DFM optimisation works on: the positive features of one layer as
// CopperGeometry.h measures them, in a Boost.Geometry R-tree, with the islands they form
// (pieces that touch are one island, built from the whole layer); the holes of the drill layers
// spanning it; and the half-sizes of standard pads.

#include <boost/geometry/index/rtree.hpp>
#include <cmath>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "CopperGeometry.h"
#include "DfmDriver.h"

namespace wcref::dfm {

using Entry = std::pair<GeoBox, unsigned>;
using Tree = boost::geometry::index::rtree<Entry, boost::geometry::index::quadratic<16>>;

struct Piece {
    size_t feature = 0;  // index into the layer's features
    CopperShape shape;
};

// The positive copper of a layer, its R-tree and its islands.
struct Copper {
    const CheckLayer* layer = nullptr;  // the layer it was read from
    std::vector<Piece> pieces;
    Tree tree;
    std::vector<size_t> island;  // per piece

    const Korvo::API::featureInfo& feature(unsigned k) const {
        return layer->features[pieces[k].feature];
    }
    const CopperShape& shape(unsigned k) const { return pieces[k].shape; }
    // Piece `k` as a hit names it.
    HitFeature ref(unsigned k) const { return {{layer->row, feature(k).id}, &feature(k)}; }

    // The pieces whose boxes meet `box`.
    std::vector<unsigned> near(const GeoBox& box) const {
        std::vector<Entry> found;
        tree.query(boost::geometry::index::intersects(box), std::back_inserter(found));
        std::vector<unsigned> out;
        out.reserve(found.size());
        for (const Entry& e : found) {
            out.push_back(e.second);
        }
        return out;
    }
};

// Fills `copper` from `layer`, reporting progress from `from` to `to`; false when stopped.
// `skip` names feature indices left out (features about to be deleted).
bool buildCopper(const CheckLayer& layer, Run& run, double from, double to, Copper& copper,
                 const std::set<size_t>& skip = {});

// Whether `shape` covers the point `p`.
bool covers(const CopperShape& shape, const Korvo::API::point& p);

// A hole of a drill layer.
struct Hole {
    HitFeature ref;  // into the drill layer it was read from
    Korvo::API::point centre;
    double diameter = 0.0;
    std::string kind;  // ".drill": "plated", "non_plated", "via", ...
    CopperShape shape;
};

// The round holes of drill layers and their R-tree.
struct Holes {
    std::vector<Hole> holes;
    Tree tree;

    Holes() = default;
    explicit Holes(const std::vector<CheckLayer>& layers);
    // The largest hole whose centre lies on `pad`, or nullptr.
    const Hole* of(const CopperShape& pad) const;
};

// Half-sizes of a standard pad along x and y (rotations by quarter turns swap them); false for
// other features and pads without a standard symbol.
bool halfSizes(const Korvo::API::featureInfo& f, SymbolSize& size, double& hx, double& hy);

inline double length(const Korvo::API::point& a, const Korvo::API::point& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace wcref::dfm

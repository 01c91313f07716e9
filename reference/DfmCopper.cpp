#include "DfmCopper.h"

#include <algorithm>

namespace wcref::dfm {

namespace bgi = boost::geometry::index;
using namespace Korvo::API;

bool buildCopper(const CheckLayer& layer, Run& run, double from, double to, Copper& copper,
                 const std::set<size_t>& skip) {
    const std::vector<featureInfo>& features = layer.features;
    copper.layer = &layer;
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

Holes::Holes(const std::vector<CheckLayer>& layers) {
    for (const CheckLayer& layer : layers) {
        for (const featureInfo& f : layer.features) {
            const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
            if (f.type != feature_pad || size.kind != SymbolSize::round) {
                continue;
            }
            const auto kind = f.attributes.find(".drill");
            holes.push_back({{{layer.row, f.id}, &f},
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

const Hole* Holes::of(const CopperShape& pad) const {
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

}  // namespace wcref::dfm

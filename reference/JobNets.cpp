#include "JobNets.h"

#include <glog/logging.h>

#include <algorithm>
#include <boost/geometry/index/rtree.hpp>
#include <set>

#include "CopperGeometry.h"

namespace wcref {

namespace bgi = boost::geometry::index;
using Korvo::API::feature_ref;
using Korvo::API::featureInfo;
using Korvo::API::layer_info;
using Korvo::API::point;

namespace {

constexpr size_t kNone = static_cast<size_t>(-1);

using Entry = std::pair<GeoBox, size_t>;
using Tree = bgi::rtree<Entry, bgi::quadratic<16>>;

bool isCopper(const layer_info& l) {
    return l.context == "board" &&
           (l.type == "signal" || l.type == "power_ground" || l.type == "mixed");
}

// The copper of one layer: its pieces (positive features), its cuts (clear features, or a
// plane's clearances) and their indexes.
struct CopperLayer {
    const layer_info* info = nullptr;
    const std::vector<featureInfo>* features = nullptr;
    bool plane = false;
    size_t plane_node = kNone;
    std::vector<size_t> node;  // per feature: its node, kNone when it is no copper
    std::vector<CopperShape> shapes;
    Tree copper;
    Tree cuts;

    // True when a cut drawn after `after` (any cut when `after` is kNone) covers `p`.
    bool cutAt(const point& p, size_t after) const {
        std::vector<Entry> found;
        cuts.query(bgi::intersects(grown(GeoBox(GeoPoint(p.x, p.y), GeoPoint(p.x, p.y)), kTouch)),
                   std::back_inserter(found));
        point a;
        point b;
        for (const Entry& e : found) {
            if ((after == kNone || e.second > after) &&
                CopperGeometry::distance(CopperGeometry::pointShape(p), shapes[e.second], a, b) <=
                    kTouch) {
                return true;
            }
        }
        return false;
    }

    // Nodes of the copper `shape` touches (and that no later cut removes at `centre`).
    std::vector<size_t> touching(const CopperShape& shape, const point& centre) const {
        std::vector<size_t> out;
        if (plane) {
            if (!cutAt(centre, kNone)) {
                out.push_back(plane_node);
            }
            return out;
        }
        std::vector<Entry> found;
        copper.query(bgi::intersects(grown(shape.box, kTouch)), std::back_inserter(found));
        point a;
        point b;
        for (const Entry& e : found) {
            if (CopperGeometry::distance(shape, shapes[e.second], a, b) <= kTouch &&
                !cutAt(centre, e.second)) {
                out.push_back(node[e.second]);
            }
        }
        return out;
    }
};

void buildLayer(CopperLayer& layer, UnionFind& sets) {
    const std::vector<featureInfo>& features = *layer.features;
    layer.node.assign(features.size(), kNone);
    layer.shapes.resize(features.size());
    std::vector<Entry> copper;
    std::vector<Entry> cuts;
    for (size_t k = 0; k < features.size(); ++k) {
        const featureInfo& f = features[k];
        if (f.type == Korvo::API::feature_text) {
            continue;
        }
        layer.shapes[k] = CopperGeometry::copperOf(f);
        if (layer.shapes[k].empty()) {
            continue;
        }
        // On a plane every drawn feature is a clearance, whatever its own polarity.
        if (layer.plane || !f.positive) {
            cuts.emplace_back(layer.shapes[k].box, k);
            continue;
        }
        layer.node[k] = sets.add();
        copper.emplace_back(layer.shapes[k].box, k);
    }
    layer.copper = Tree(copper.begin(), copper.end());
    layer.cuts = Tree(cuts.begin(), cuts.end());
    if (layer.plane) {
        layer.plane_node = sets.add();
        return;
    }
    std::vector<Entry> found;
    point a;
    point b;
    for (const Entry& entry : copper) {
        found.clear();
        layer.copper.query(bgi::intersects(grown(entry.first, kTouch)), std::back_inserter(found));
        for (const Entry& e : found) {
            if (e.second > entry.second &&
                CopperGeometry::distance(layer.shapes[entry.second], layer.shapes[e.second], a,
                                         b) <= kTouch) {
                sets.join(layer.node[entry.second], layer.node[e.second]);
            }
        }
    }
}

bool plated(const featureInfo& hole) {
    const auto kind = hole.attributes.find(".drill");
    return hole.type != Korvo::API::feature_text && hole.type != Korvo::API::feature_surface &&
           (kind == hole.attributes.end() || kind->second != "non_plated");
}

}  // namespace

std::string StepNets::nameOf(const std::string& layer, size_t feature_index) const {
    const auto found = of.find(layer);
    if (found == of.end() || feature_index >= found->second.size() ||
        found->second[feature_index] < 0) {
        return {};
    }
    return names[static_cast<size_t>(found->second[feature_index])];
}

StepNets JobNets::derive(const EngineJob& job, const EngineStep& step,
                         const std::vector<TestPoint>& netlist) {
    StepNets out;
    UnionFind sets;
    std::vector<CopperLayer> layers;
    const auto dataOf = [&step](const std::string& name) -> const std::vector<featureInfo>* {
        const auto found = step.layers.find(name);
        return found == step.layers.end() ? nullptr : &found->second.features;
    };
    for (const layer_info& info : job.matrix) {
        const std::vector<featureInfo>* features = dataOf(info.name);
        if (!isCopper(info) || features == nullptr) {
            continue;
        }
        CopperLayer layer;
        layer.info = &info;
        layer.features = features;
        layer.plane = info.polarity == "negative";
        buildLayer(layer, sets);
        layers.push_back(std::move(layer));
    }
    const auto rowOf = [&job](const std::string& name, int fallback) {
        const layer_info* l = job.layer(name);
        return l != nullptr ? l->row : fallback;
    };

    // Plated holes join what they touch on every copper layer of their span.
    struct Holes {
        const layer_info* info;
        const std::vector<featureInfo>* features;
        std::vector<size_t> node;
    };
    std::vector<Holes> drills;
    for (const layer_info& info : job.matrix) {
        const std::vector<featureInfo>* features = dataOf(info.name);
        if (info.type != "drill" || features == nullptr) {
            continue;
        }
        const int first = rowOf(info.drill_start, 0);
        const int last = rowOf(info.drill_end, 1 << 30);
        Holes holes{&info, features, std::vector<size_t>(features->size(), kNone)};
        for (size_t k = 0; k < features->size(); ++k) {
            const featureInfo& hole = (*features)[k];
            if (!plated(hole)) {
                continue;
            }
            const CopperShape shape = CopperGeometry::copperOf(hole);
            if (shape.empty()) {
                continue;
            }
            holes.node[k] = sets.add();
            for (const CopperLayer& layer : layers) {
                const int row = layer.info->row;
                if (row < std::min(first, last) || row > std::max(first, last)) {
                    continue;
                }
                for (size_t n : layer.touching(shape, hole.start)) {
                    sets.join(holes.node[k], n);
                }
            }
        }
        drills.push_back(std::move(holes));
    }

    // The names the files give: X2 ".net" attributes. Copper holding two names is a short
    // in the files' own terms; nodes of one name are one net.
    struct Named {
        size_t node;
        feature_ref feature;
        point at;
    };
    std::map<std::string, std::vector<Named>> by_name;
    const auto collect = [&](const std::vector<featureInfo>& features,
                             const std::vector<size_t>& nodes, int row) {
        for (size_t k = 0; k < features.size(); ++k) {
            const auto net = features[k].attributes.find(".net");
            if (nodes[k] != kNone && net != features[k].attributes.end() && !net->second.empty() &&
                net->second != "N/C") {
                by_name[net->second].push_back(
                    {nodes[k], {row, features[k].id}, features[k].start});
            }
        }
    };
    for (const CopperLayer& layer : layers) {
        collect(*layer.features, layer.node, layer.info->row);
    }
    for (const Holes& holes : drills) {
        collect(*holes.features, holes.node, holes.info->row);
    }
    std::map<size_t, std::pair<std::string, Named>> first_name;  // root -> first name met
    for (const auto& [name, named] : by_name) {
        for (const Named& n : named) {
            auto [it, inserted] = first_name.emplace(sets.find(n.node), std::make_pair(name, n));
            if (!inserted && it->second.first != name) {
                NetDifference d;
                d.kind = NetDifference::short_circuit;
                d.nets = {it->second.first, name};
                d.at = {it->second.second.at, n.at};
                d.features = {it->second.second.feature, n.feature};
                out.differences.push_back(std::move(d));
                break;  // one short per pair of names is enough to find it
            }
        }
    }
    // The copper's own connectivity, before names join anything: what a netlist is compared
    // with.
    UnionFind copper_sets = sets;
    for (const auto& entry : by_name) {
        for (const Named& n : entry.second) {
            sets.join(n.node, entry.second.front().node);
        }
    }
    std::map<size_t, std::string> root_name;
    for (const auto& [name, named] : by_name) {
        root_name.emplace(sets.find(named.front().node), name);
    }
    out.named_by_files = !by_name.empty();

    // The netlist: each test point lies on the copper of its side (or of any layer for a
    // through hole).
    if (!netlist.empty() && !layers.empty()) {
        std::map<std::string, std::vector<std::pair<size_t, const TestPoint*>>> points_of_net;
        std::map<size_t, std::vector<const TestPoint*>> points_on_root;
        for (const TestPoint& tp : netlist) {
            size_t found_node = kNone;
            for (size_t li = 0; li < layers.size() && found_node == kNone; ++li) {
                const bool outer_top = li == 0;
                const bool outer_bottom = li + 1 == layers.size();
                if ((tp.side == TestPoint::top && !outer_top) ||
                    (tp.side == TestPoint::bottom && !outer_bottom) ||
                    (tp.side == TestPoint::both && !outer_top && !outer_bottom)) {
                    continue;
                }
                for (size_t n : layers[li].touching(CopperGeometry::pointShape(tp.at), tp.at)) {
                    found_node = n;
                }
            }
            if (found_node == kNone) {
                continue;  // no copper at the point: the netlist and the copper do not overlap
            }
            const size_t root = copper_sets.find(found_node);
            if (tp.net != "N/C" && !tp.net.empty()) {
                points_of_net[tp.net].emplace_back(found_node, &tp);
            }
            points_on_root[root].push_back(&tp);
        }
        for (const auto& [net, points] : points_of_net) {
            std::set<size_t> seen{copper_sets.find(points.front().first)};
            for (const auto& [node, tp] : points) {
                if (seen.insert(copper_sets.find(node)).second) {
                    NetDifference d;
                    d.kind = NetDifference::open;
                    d.nets = {net};
                    d.at = {points.front().second->at, tp->at};
                    out.differences.push_back(std::move(d));
                }
            }
            if (!out.named_by_files) {
                for (const auto& entry : points) {
                    root_name.emplace(sets.find(entry.first), net);
                }
            }
        }
        for (const auto& [root, points] : points_on_root) {
            std::map<std::string, const TestPoint*> nets;
            for (const TestPoint* tp : points) {
                if (tp->net != "N/C" && !tp->net.empty()) {
                    nets.emplace(tp->net, tp);
                }
            }
            for (auto it = std::next(nets.begin(), nets.empty() ? 0 : 1); it != nets.end(); ++it) {
                NetDifference d;
                d.kind = NetDifference::short_circuit;
                d.nets = {nets.begin()->first, it->first};
                d.at = {nets.begin()->second->at, it->second->at};
                out.differences.push_back(std::move(d));
            }
        }
        out.named_by_files = out.named_by_files || !points_of_net.empty();
    }

    // Net indices in matrix and feature order; unnamed nets are numbered.
    std::map<size_t, int> index_of_root;
    std::set<std::string> used;
    for (const auto& entry : root_name) {
        used.insert(entry.second);
    }
    int numbered = 0;
    const auto indexOf = [&](size_t node) -> int {
        if (node == kNone) {
            return -1;
        }
        const size_t root = sets.find(node);
        auto found = index_of_root.find(root);
        if (found != index_of_root.end()) {
            return found->second;
        }
        std::string name;
        const auto named = root_name.find(root);
        if (named != root_name.end()) {
            name = named->second;
        } else {
            do {
                name = "$" + std::to_string(++numbered);
            } while (used.count(name) != 0);
        }
        out.names.push_back(name);
        const int index = static_cast<int>(out.names.size()) - 1;
        index_of_root.emplace(root, index);
        return index;
    };
    for (const CopperLayer& layer : layers) {
        std::vector<int>& nets = out.of[layer.info->name];
        nets.resize(layer.node.size(), -1);
        for (size_t k = 0; k < layer.node.size(); ++k) {
            nets[k] = indexOf(layer.node[k]);
        }
        if (layer.plane) {
            indexOf(layer.plane_node);
        }
    }
    for (const Holes& holes : drills) {
        std::vector<int>& nets = out.of[holes.info->name];
        nets.resize(holes.node.size(), -1);
        for (size_t k = 0; k < holes.node.size(); ++k) {
            nets[k] = indexOf(holes.node[k]);
        }
    }
    // Differences point at the copper under their test points where it is known.
    for (NetDifference& d : out.differences) {
        if (!d.features.empty()) {
            continue;
        }
        for (const point& p : d.at) {
            for (const CopperLayer& layer : layers) {
                std::vector<Entry> found;
                layer.copper.query(bgi::intersects(GeoBox(GeoPoint(p.x, p.y), GeoPoint(p.x, p.y))),
                                   std::back_inserter(found));
                point a;
                point b;
                const auto hit = std::find_if(found.begin(), found.end(), [&](const Entry& e) {
                    return CopperGeometry::distance(CopperGeometry::pointShape(p),
                                                    layer.shapes[e.second], a, b) <= kTouch;
                });
                if (hit != found.end()) {
                    d.features.push_back({layer.info->row, (*layer.features)[hit->second].id});
                    break;
                }
            }
        }
    }
    LOG(INFO) << "nets of " << job.name << "/" << step.name << ": " << out.names.size() << " nets, "
              << out.differences.size() << " differences from the netlist";
    return out;
}

}  // namespace wcref

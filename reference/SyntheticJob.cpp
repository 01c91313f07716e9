#include "SyntheticJob.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

#include "CopperGeometry.h"
#include "EngineStore.h"

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::point;

namespace {

constexpr double kPitch = 120.0;  // mil

point mil(double x, double y) {
    return {x * kNmPerMil, y * kNmPerMil};
}

featureInfo pad(const std::string& symbol, double x, double y) {
    featureInfo f;
    f.layer = "top";
    f.type = Korvo::API::feature_pad;
    f.symbol = symbol;
    f.start = f.end = mil(x, y);
    return f;
}

}  // namespace

std::vector<featureInfo> syntheticCopper(int features, int planted, unsigned seed,
                                         std::vector<featureInfo>* drills) {
    const int cells = std::max(1, (features + 2) / 3);
    const int side = static_cast<int>(std::ceil(std::sqrt(static_cast<double>(cells))));
    // Planted cells drawn from the seed with the engine's own generator, not a distribution,
    // so every standard library gives the same board.
    std::mt19937 generator(seed);
    std::set<int> marked;
    while (static_cast<int>(marked.size()) < std::min(planted, cells)) {
        marked.insert(static_cast<int>(generator() % static_cast<unsigned>(cells)));
    }
    std::vector<featureInfo> out;
    out.reserve(static_cast<size_t>(cells) * 3 + marked.size());
    for (int k = 0; k < cells; ++k) {
        const double x = (k % side) * kPitch;
        const double y = (k / side) * kPitch;
        out.push_back(pad("r40", x, y));
        if (k % 4 == 3) {
            featureInfo surface;
            surface.layer = "top";
            surface.type = Korvo::API::feature_surface;
            surface.contour = {mil(x + 10, y - 4), mil(x + 55, y - 4), mil(x + 55, y + 4),
                               mil(x + 10, y + 4)};
            surface.start = surface.end = surface.contour.front();
            out.push_back(surface);
        } else {
            featureInfo line;
            line.layer = "top";
            line.type = Korvo::API::feature_line;
            line.symbol = "r8";
            line.start = mil(x, y);
            line.end = mil(x + 60, y);
            out.push_back(line);
        }
        out.push_back(pad("r24", x + 60, y));
        if (marked.count(k) != 0) {
            out.push_back(pad("r20", x + 60, y + 30));
        }
        if (drills != nullptr) {
            featureInfo hole = pad("r28", x, y);
            hole.layer = "drill";
            hole.attributes[".drill"] = "plated";
            drills->push_back(hole);
            featureInfo via = pad("r12", x + 60, y);
            via.layer = "drill";
            via.attributes[".drill"] = "via";
            drills->push_back(via);
        }
    }
    return out;
}

EngineJob syntheticJob(const std::string& name, int features, int planted, unsigned seed) {
    EngineJob job;
    job.name = name;
    job.path = ":synthetic";
    Korvo::API::layer_info top;
    top.name = "top";
    top.row = 1;
    top.context = "board";
    top.type = "signal";
    top.polarity = "positive";
    top.side = "top";
    Korvo::API::layer_info drill = top;
    drill.name = "drill";
    drill.row = 2;
    drill.type = "drill";
    drill.side = "none";
    drill.drill_start = drill.drill_end = "top";
    job.matrix = {top, drill};
    job.displayed = {"top", "drill"};
    EngineStep step;
    step.name = "pcb";
    std::vector<featureInfo> holes;
    for (featureInfo& f : syntheticCopper(features, planted, seed, &holes)) {
        step.layers["top"].add(std::move(f));
    }
    for (featureInfo& f : holes) {
        step.layers["drill"].add(std::move(f));
    }
    const int cells = std::max(1, (features + 2) / 3);
    const double size = std::ceil(std::sqrt(static_cast<double>(cells))) * kPitch;
    step.profile = {mil(-60, -60), mil(size, -60), mil(size, size), mil(-60, size)};
    job.steps.push_back(std::move(step));
    return job;
}

bool openSyntheticJob(const std::string& name, int features, int planted, unsigned seed) {
    EngineJob job = syntheticJob(name, features, planted, seed);
    std::lock_guard<std::mutex> guard(store().mutex);
    store().jobs.emplace(name, std::move(job));
    return true;
}

}  // namespace wcref

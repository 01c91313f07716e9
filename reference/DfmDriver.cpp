#include "DfmDriver.h"

#include <glog/logging.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <thread>
#include <unordered_map>

#include "EngineStore.h"
#include "StepRepeatGeometry.h"

namespace wcref::dfm {

using namespace Korvo::API;

namespace {

point centreOf(const GeoBox& box) {
    return {(box.min_corner().x() + box.max_corner().x()) / 2,
            (box.min_corner().y() + box.max_corner().y()) / 2};
}

bool isCopper(const layer_info& info) {
    return info.context == "board" && (info.type == "signal" || info.type == "mixed");
}

// A matrix layer the step holds no entry for reads as empty (and gets one).
CheckLayer copyOf(EngineStep& step, const layer_info& info) {
    CheckLayer out;
    out.row = info.row;
    const EngineLayerData& data = step.layers[info.name];
    out.features = data.features;
    out.selected = data.selected;
    return out;
}

// One layer with the drill layers whose span covers it and, for a solder mask, the copper layer
// nearest to it in the matrix.
LayerInput layerOf(const EngineJob& job, EngineStep& step, const layer_info& info) {
    const auto rowOf = [&job](const std::string& name) {
        const layer_info* other = job.layer(name);
        return other != nullptr ? other->row : 0;
    };
    LayerInput layer;
    layer.info = info;
    layer.copper = copyOf(step, info);
    for (const layer_info& other : job.matrix) {
        if (other.type == "drill") {
            const int first = other.drill_start.empty() ? 0 : rowOf(other.drill_start);
            const int last = other.drill_end.empty() ? 1 << 30 : rowOf(other.drill_end);
            if (info.row >= std::min(first, last) && info.row <= std::max(first, last)) {
                layer.drills.push_back(copyOf(step, other));
            }
        }
    }
    if (info.type == "solder_mask") {
        const layer_info* nearest = nullptr;
        for (const layer_info& other : job.matrix) {
            if (isCopper(other) && (nearest == nullptr || std::abs(other.row - info.row) <
                                                              std::abs(nearest->row - info.row))) {
                nearest = &other;
            }
        }
        if (nearest != nullptr) {
            layer.beneath_info = *nearest;
            layer.beneath = copyOf(step, *nearest);
        }
    }
    return layer;
}

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
    for (const std::string& name : layers) {
        const layer_info* info = j->layer(name);
        if (info == nullptr || store().layer(job, step, name) == nullptr) {
            return false;
        }
        input.layers.push_back(layerOf(*j, *s, *info));
    }
    input.profile = s->profile;
    input.has_screen_box = store().has_screen_box;
    input.screen_box = store().screen_box;
    input.duration = store().long_operation_duration;
    return true;
}

// The share of the whole run that layer `k` of `n` covers.
double share(size_t k, size_t n, double within) {
    return 100.0 * (static_cast<double>(k) + within) / static_cast<double>(std::max<size_t>(1, n));
}

}  // namespace

void Run::finish() {
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

Edit editOf(Edit::Kind kind, const featureInfo& f) {
    Edit edit;
    edit.kind = kind;
    edit.id = f.id;
    edit.symbol_read = f.symbol;
    edit.start_read = f.start;
    return edit;
}

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
            std::hypot(data.features[found->second].start.x - edit.start_read.x,
                       data.features[found->second].start.y - edit.start_read.y) > kTouch) {
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

bool forEachLayer(const std::string& job, const std::string& step,
                  const std::vector<std::string>& layers, Korvo::COMMON::progress_state* progress,
                  const std::function<bool(const LayerInput&)>& wanted,
                  const std::function<void(LayerPass&)>& one) {
    JobInput input;
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
        LayerPass pass{input, layer, run, share(k, n, 0), share(k, n, 1), {}};
        one(pass);
        apply(job, step, layer.info.name, pass.edits);
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

}  // namespace wcref::dfm

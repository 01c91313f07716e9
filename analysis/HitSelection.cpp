#include "HitSelection.h"

#include <glog/logging.h>

#include <algorithm>

#include "Korvo_API.h"
#include "frame/RecordedCalls.h"

namespace wc {

void HitSelection::setJobAndStep(const QString& job, const QString& step) {
    clear();
    job_ = job;
    step_ = step;
}

// A hit names its features by layer row; the job's matrix gives the row's layer.
void HitSelection::select(const Korvo::API::check_info& hit) {
    clear();
    if (hit.features.empty()) {
        return;
    }
    if (job_.isEmpty()) {
        LOG(INFO) << "no job given: the hit's features are not selected";
        return;
    }
    const std::string job = job_.toStdString();
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    recordedGetMatrix(job, steps, layers);
    for (const Korvo::API::feature_ref& ref : hit.features) {
        auto layer = std::find_if(layers.begin(), layers.end(),
                                  [&ref](const auto& l) { return l.row == ref.layer_row; });
        if (layer == layers.end()) {
            LOG(ERROR) << "no layer in row " << ref.layer_row << " of " << job;
            continue;
        }
        Korvo::API::featureInfo feature;
        feature.id = ref.id;
        feature.layer = layer->name;
        if (!Korvo::API::select_feature_by_info(job, step_.toStdString(), layer->name, feature)) {
            LOG(ERROR) << "feature " << ref.id << " of " << layer->name << " not selected";
        }
        if (std::find(layers_.begin(), layers_.end(), layer->name) == layers_.end()) {
            layers_.push_back(layer->name);
        }
    }
}

void HitSelection::clear() {
    for (const std::string& layer : layers_) {
        recordedClearSelectedFeatures(job_.toStdString(), step_.toStdString(), layer);
    }
    layers_.clear();
}

}  // namespace wc

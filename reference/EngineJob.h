#pragma once
// The in-memory job of the reference engine: a layer matrix shared by all steps, and per step
// its profile, datum, attributes, step-and-repeat table, edit counter and the features of every
// layer with their selection and highlight marks.

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "Ipc356.h"
#include "Korvo_API_types.h"

namespace wcref {

struct StepNets;

struct EngineLayerData {
    std::vector<Korvo::API::featureInfo> features;
    std::set<int> selected;     // feature ids
    std::set<int> highlighted;  // feature ids
    int next_id = 1;            // ids are unique within the layer of one step

    Korvo::API::featureInfo& add(Korvo::API::featureInfo feature) {
        feature.id = next_id++;
        features.push_back(std::move(feature));
        return features.back();
    }
};

struct EngineStep {
    std::string name;
    int type = 0;
    std::vector<Korvo::API::point> profile;  // closed outline, empty when the step has none
    Korvo::API::point datum;
    std::map<std::string, std::string> attributes;
    std::vector<Korvo::API::step_repeat_op> repeat;
    std::map<std::string, EngineLayerData> layers;  // one entry per matrix layer
    int editops = 0;
    // The step's nets as last derived, and what they were derived from (JobNets.h).
    std::shared_ptr<const StepNets> nets;
    std::string nets_key;
};

struct EngineJob {
    std::string name;
    std::string path;
    std::vector<Korvo::API::layer_info> matrix;  // in row order
    std::vector<EngineStep> steps;               // in creation order
    std::set<std::string> displayed;             // layers shown in the graphic view
    std::vector<TestPoint> netlist;              // the job's IPC-D-356 netlist, when it has one

    EngineStep* step(const std::string& step_name) {
        for (EngineStep& s : steps) {
            if (s.name == step_name) {
                return &s;
            }
        }
        return nullptr;
    }
    const Korvo::API::layer_info* layer(const std::string& layer_name) const {
        for (const Korvo::API::layer_info& l : matrix) {
            if (l.name == layer_name) {
                return &l;
            }
        }
        return nullptr;
    }
};

}  // namespace wcref

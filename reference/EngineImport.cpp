// Korvo::API input operations of the reference engine: identification and translation of
// Gerber and Excellon files through libgerbv (GerberImport.h).

#include <glog/logging.h>

#include <ctime>

#include "EngineCallText.h"
#include "EngineStore.h"
#include "GerberImport.h"
#include "JobFromFolder.h"
#include "Korvo_API.h"

namespace ct = wcref::calltext;
using wcref::EngineHooks;
using wcref::enter;
using wcref::store;

namespace Korvo {
namespace API {

bool file_identify(const std::string& path, std::string& format, file_Parameters& parameters,
                   std::string& message) {
    if (auto hook = enter("file_identify", {path}, &EngineHooks::file_identify)) {
        return hook(path, format, parameters, message);
    }
    return wcref::GerberImport::identify(path, format, parameters, message);
}

bool file_translate(const std::string& job, const std::string& step, const std::string& layer,
                    const std::string& path, const file_Parameters& parameters,
                    std::time_t& started, std::time_t& finished, std::map<int, int>& tool_counts) {
    if (auto hook = enter("file_translate", {job, step, layer, path, parameters.format},
                          &EngineHooks::file_translate)) {
        return hook(job, step, layer, path, parameters, started, finished, tool_counts);
    }
    started = std::time(nullptr);
    {
        std::lock_guard<std::mutex> guard(store().mutex);
        if (store().step(job, step) == nullptr) {
            return false;
        }
    }
    if (layer.empty()) {
        LOG(ERROR) << "file_translate needs a layer name";
        return false;
    }
    std::vector<featureInfo> features;
    std::string message;
    if (!wcref::GerberImport::read(path, layer, features, tool_counts, message, &parameters)) {
        return false;
    }
    std::lock_guard<std::mutex> guard(store().mutex);
    wcref::EngineJob* j = store().job(job);
    wcref::EngineStep* s = store().step(job, step);
    if (j == nullptr || s == nullptr) {
        return false;  // closed while the file was read
    }
    if (j->layer(layer) == nullptr) {
        layer_info row;
        row.name = layer;
        row.row = static_cast<int>(j->matrix.size()) + 1;
        row.context = "misc";
        row.type = parameters.format == "excellon" ? "drill" : "document";
        row.polarity = "positive";
        row.side = "none";
        j->matrix.push_back(row);
        for (wcref::EngineStep& other : j->steps) {
            other.layers[layer];
        }
    }
    wcref::EngineLayerData& data = s->layers[layer];
    data = wcref::EngineLayerData{};
    for (featureInfo& f : features) {
        data.add(std::move(f));
    }
    if (parameters.format == "excellon" && parameters.zeros != "") {
        // What the layer was read in, as the job's import reports it.
        wcref::DrillNumberFormat read;
        read.units = parameters.units;
        read.zeros = parameters.zeros;
        read.integer_digits = parameters.integer_digits;
        read.decimal_digits = parameters.decimal_digits;
        s->attributes[wcref::kDrillFormatKey + layer] =
            wcref::DrillFormat::describe(read) +
            (parameters.plating.empty() ? "" : ", " + parameters.plating);
        s->attributes[wcref::kDrillFormatSourceKey + layer] =
            parameters.format_source.empty() ? "given by the caller" : parameters.format_source;
    }
    ++s->editops;
    finished = std::time(nullptr);
    return true;
}

}  // namespace API
}  // namespace Korvo

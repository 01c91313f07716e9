// The layer-expression service of the UI services, on the matrix of the reference engine.

#include <glog/logging.h>

#include "EngineStore.h"
#include "Korvo_UIAPI.h"
#include "LayerExpression.h"

namespace Korvo {
namespace UIAPI {

// Reads the matrix straight from the engine's store, so that resolving an expression leaves no
// engine call in the call log.
std::vector<std::string> getAnalyzeAndDFMLayers(const std::string& job,
                                                const std::string& expression) {
    std::vector<std::string> missing;
    return getAnalyzeAndDFMLayers(job, expression, missing);
}

std::vector<std::string> getAnalyzeAndDFMLayers(const std::string& job,
                                                const std::string& expression,
                                                std::vector<std::string>& missing) {
    missing.clear();
    const wcref::LayerExpression parsed = wcref::parseLayerExpression(expression);
    if (!parsed.ok) {
        LOG(ERROR) << "layer expression \"" << expression << "\": " << parsed.error;
        return {};
    }
    std::vector<API::layer_info> matrix;
    {
        wcref::EngineStore& store = wcref::EngineStore::instance();
        std::lock_guard<std::mutex> guard(store.mutex);
        const wcref::EngineJob* opened = store.job(job);
        if (opened == nullptr) {
            return {};
        }
        matrix = opened->matrix;
    }
    std::vector<std::string> unknown;
    std::vector<std::string> layers = wcref::resolveLayerExpression(parsed, matrix, &unknown);
    for (const std::string& name : unknown) {
        LOG(ERROR) << "layer " << name << " does not exist in job " << job;
    }
    missing = std::move(unknown);
    return layers;
}

}  // namespace UIAPI
}  // namespace Korvo

#pragma once
// Engine operations that the operation recorder mirrors. When saving is on, the recorder's twin
// is called with identical arguments immediately before the operation itself; dialogs call these
// instead of the bare operations so that the rule is kept in one place.

#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace wc {

std::string recordedGetGraphics(const std::string& job, std::vector<std::string>& steps,
                                std::vector<Korvo::API::layer_info>& layers);
std::string recordedGetMatrix(const std::string& job, std::vector<std::string>& steps,
                              std::vector<Korvo::API::layer_info>& layers);
bool recordedCreateStep(const std::string& job, const std::string& step, int type);
bool recordedClearSelectedFeatures(const std::string& job, const std::string& step,
                                   const std::string& layer);

}  // namespace wc

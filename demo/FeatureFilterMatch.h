#pragma once
// Whether a feature passes the feature filter's record, as the demo's job list decides it.

#include <vector>

#include "FeatureFilterSettings.h"
#include "Korvo_API_types.h"

namespace demo {

// Type and polarity bits, the symbol list ("*" and "?" as wildcards), the attribute conditions
// under their logic, and the position of the feature's anchor against `profile`.
bool matchesFilter(const FeatureFilterSettings& filter, const Korvo::API::featureInfo& feature,
                   const std::vector<Korvo::API::point>& profile);

}  // namespace demo

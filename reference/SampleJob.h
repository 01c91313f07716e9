#pragma once
// The sample job bundled with the reference engine: a 2000 x 1500 mil board step "pcb" with
// fourteen layers and a few hundred features, and a 9000 x 7000 mil "panel" step that places
// "pcb" eight times (a 3 x 2 array unrotated and a 1 x 2 column rotated by 90 degrees).
// Built deterministically: two calls give identical jobs.

#include <string>

#include "EngineJob.h"

namespace wcref {

constexpr double kNanometresPerMil = 25400.0;

EngineJob buildSampleJob(const std::string& name);

}  // namespace wcref

#pragma once
// Generated boards for scale: a step "pcb" whose copper layer "top" holds a grid of cells,
// each a round pad with a drill, a trace (every fourth cell a surface instead) and a via pad
// at its end, 120 mil apart so that cells never come closer than 28 mil. `planted` cells get
// one extra 20 mil pad 8 mil from their via pad: exactly `planted` spacing violations at
// 10 mil, each between two pads. Deterministic from the seed: equal arguments give equal jobs.
// Layers: "top" (signal) and "drill" (plated holes in the cell pads, vias in the via pads).

#include <string>
#include <vector>

#include "EngineJob.h"

namespace wcref {

// The copper layer alone (ids not yet given), about `features` features; holes go to
// `drills` when given.
std::vector<Korvo::API::featureInfo> syntheticCopper(int features, int planted, unsigned seed,
                                                     std::vector<Korvo::API::featureInfo>* drills);

EngineJob syntheticJob(const std::string& name, int features, int planted, unsigned seed);

// Opens the generated job in the reference engine (what the demo's --generate-job calls); a
// job of that name that is open already is kept.
bool openSyntheticJob(const std::string& name, int features, int planted, unsigned seed);

}  // namespace wcref

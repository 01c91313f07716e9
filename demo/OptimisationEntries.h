#pragma once

#include "DialogCatalogue.h"

namespace demo {

// The DFM optimisation dialogs; the tour presses "Run globally" on each.
DialogEntry signalLayerOpt();
DialogEntry solderMaskOpt();
DialogEntry teardrops();
DialogEntry nfpRemoval();

}  // namespace demo

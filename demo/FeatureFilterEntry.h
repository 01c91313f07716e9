#pragma once

#include "DialogCatalogue.h"

namespace demo {

// The feature filter popup of the graphic toolbar, working on the displayed layers.
DialogEntry featureFilter();

}  // namespace demo

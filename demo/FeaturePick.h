#pragma once
// The feature a click in the demo's view means: the nearest pad centre or line (pads, lines and
// arcs, by their centre line) on the displayed layers within a radius.

#include <optional>
#include <string>

#include "Korvo_API_types.h"

class GraphicView;

namespace demo {

struct PickedFeature {
    std::string layer;
    Korvo::API::featureInfo feature;
};

// A click in the view picks the nearest hit of every open results viewer, within a few pixels.
void forwardPicksToViewers(GraphicView* view);

std::optional<PickedFeature> nearestFeature(const GraphicView& view, const Korvo::API::point& at,
                                            double radius);

}  // namespace demo

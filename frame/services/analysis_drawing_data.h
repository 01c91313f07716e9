#pragma once
// What the results viewer hands to the graphic view with each of its messages (the payload of
// the PluginMetaData sent from "Graphic_MenuBar_Analysis.dll" to "Graphic_View.dll"). The record
// and everything it points to are valid only while the message is being delivered; a receiver
// copies what it keeps.

#include <cstdint>
#include <string>
#include <vector>

#include "Korvo_API_types.h"
#include "Korvo_Analysis_types.h"

namespace Korvo {
namespace API {

// One hit to draw. `points` points into the result the viewer shows (engine units, nanometres);
// it is not copied, so a hundred thousand shapes cost no more than their descriptors.
struct analysis_drawing_shape {
    check_points::kind_t kind = check_points::line;  // line, box (two corners) or polygon
    const point* points = nullptr;
    int32_t point_count = 0;
    double value = 0.0;  // measured value, engine units for lengths
    int32_t layer = 0;   // index into analysis_drawing_data::layer_names
};

struct analysis_drawing_data {
    enum zoom_policy_t : int32_t {
        auto_zoom = 0,  // "Auto Zoom": zoom so that `bounds` fills the view
        pan_only = 1,   // "Pan Only": keep the scale, centre on `bounds`
    };
    zoom_policy_t zoom_policy = auto_zoom;
    // "Replace layers": the view shows only `layer_names`; "Keep layers": it adds them to the
    // layers already shown.
    bool replace_layers = true;
    std::vector<std::string> layer_names;
    std::string item_name;   // the category (check item) the hits belong to
    std::string value_text;  // one hit: its value as the viewer shows it; all hits: empty
    int32_t index = 0;       // one hit: its position among the admitted hits, from 1; all hits: 0
    int32_t count = 0;       // admitted hits of the category under the current severity entry
    std::vector<analysis_drawing_shape> shapes;
    reply_box bounds;  // box around every point of `shapes`
};

}  // namespace API
}  // namespace Korvo

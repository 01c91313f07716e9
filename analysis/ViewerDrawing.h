#pragma once
// The drawing data the results viewer sends to the graphic view: a frame (zoom and layer policy,
// category, position), the shapes of the hits shown, pointing into the result, and the box
// around them.

#include <string>
#include <vector>

#include "ResultsModel.h"
#include "analysis_drawing_data.h"

namespace wc {

// A fresh frame without layer names, shapes or value text, and with empty bounds.
void startDrawing(Korvo::API::analysis_drawing_data& data, bool pan_only, bool replace_layers,
                  std::string item_name, int index, int count);
// Appends the job's layer names of every result layer that contributes to `hits`, in order;
// answers, per result layer, the index of its first name in data.layer_names.
std::vector<int> addLayerNames(Korvo::API::analysis_drawing_data& data, const ResultsModel& model,
                               const HitSequence& hits);
// Appends the hit's shape, drawn on `layer` (an index into data.layer_names), and widens the
// bounds around its points.
void addShape(Korvo::API::analysis_drawing_data& data, const Korvo::API::check_info& hit,
              int layer);
// How far `at` lies from a hit's shape (engine units): from a line's segments, from a box (0
// inside), from a polygon's edges (0 inside).
double distanceToShape(const Korvo::API::check_points& shape, const Korvo::API::point& at);
// Sends `data` under `code` from the analysis menu to the graphic view; bounds around nothing go
// as zeros.
void sendDrawing(const void* handle, int code, Korvo::API::analysis_drawing_data& data);

}  // namespace wc

#include "ViewerDrawing.h"

#include <algorithm>
#include <limits>

#include "QTpluginsManger4CAM.h"
#include "frame/PluginMessages.h"

namespace wc {

using Korvo::API::analysis_drawing_data;

void startDrawing(analysis_drawing_data& data, bool pan_only, bool replace_layers,
                  std::string item_name, int index, int count) {
    data.zoom_policy =
        pan_only ? analysis_drawing_data::pan_only : analysis_drawing_data::auto_zoom;
    data.replace_layers = replace_layers;
    data.layer_names.clear();
    data.item_name = std::move(item_name);
    data.value_text.clear();
    data.index = index;
    data.count = count;
    data.shapes.clear();
    const double inf = std::numeric_limits<double>::infinity();
    data.bounds = {inf, inf, -inf, -inf};
}

std::vector<int> addLayerNames(analysis_drawing_data& data, const ResultsModel& model,
                               const HitSequence& hits) {
    std::vector<int> first_name(model.layers().size(), 0);
    for (int layer : hits.layers()) {
        first_name[std::size_t(layer)] = int(data.layer_names.size());
        for (const std::string& name : model.layers()[std::size_t(layer)].layer_names) {
            data.layer_names.push_back(name);
        }
    }
    return first_name;
}

void addShape(analysis_drawing_data& data, const Korvo::API::check_info& hit, int layer) {
    const Korvo::API::check_points& shape = hit.shape;
    Korvo::API::analysis_drawing_shape out;
    out.kind = shape.kind;
    out.points = shape.points.data();
    out.point_count = int32_t(shape.points.size());
    out.value = hit.value;
    out.layer = layer;
    data.shapes.push_back(out);
    Korvo::API::reply_box& box = data.bounds;
    for (const Korvo::API::point& p : shape.points) {
        box.xmin = std::min(box.xmin, p.x);
        box.ymin = std::min(box.ymin, p.y);
        box.xmax = std::max(box.xmax, p.x);
        box.ymax = std::max(box.ymax, p.y);
    }
}

void sendDrawing(const void* handle, int code, analysis_drawing_data& data) {
    if (data.bounds.xmin > data.bounds.xmax) {
        data.bounds = {};  // nothing to draw
    }
    PluginMetaData message;
    message.sender = module::AnalysisMenu;
    message.receiver = module::GraphicView;
    message.code = code;
    message.payload = &data;
    QTpluginsManger4CAM::instance()->recMegToPlugin(const_cast<void*>(handle), message);
}

}  // namespace wc

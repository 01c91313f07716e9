#include "ViewerDrawing.h"

#include <algorithm>
#include <cmath>
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

namespace {

double segmentDistance(const Korvo::API::point& a, const Korvo::API::point& b,
                       const Korvo::API::point& p) {
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double length2 = dx * dx + dy * dy;
    const double t =
        length2 > 0.0 ? std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length2, 0.0, 1.0) : 0.0;
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

// Even-odd rule over the polygon's edges.
bool inside(const std::vector<Korvo::API::point>& polygon, const Korvo::API::point& p) {
    bool in = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const Korvo::API::point& a = polygon[i];
        const Korvo::API::point& b = polygon[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
            in = !in;
        }
    }
    return in;
}

}  // namespace

double distanceToShape(const Korvo::API::check_points& shape, const Korvo::API::point& at) {
    const std::vector<Korvo::API::point>& points = shape.points;
    if (points.empty()) {
        return std::numeric_limits<double>::infinity();
    }
    if (points.size() == 1) {
        return std::hypot(at.x - points[0].x, at.y - points[0].y);
    }
    if (shape.kind == Korvo::API::check_points::box) {
        const double x0 = std::min(points[0].x, points[1].x);
        const double x1 = std::max(points[0].x, points[1].x);
        const double y0 = std::min(points[0].y, points[1].y);
        const double y1 = std::max(points[0].y, points[1].y);
        return std::hypot(std::max({x0 - at.x, 0.0, at.x - x1}),
                          std::max({y0 - at.y, 0.0, at.y - y1}));
    }
    const bool closed = shape.kind == Korvo::API::check_points::polygon;
    if (closed && points.size() > 2 && inside(points, at)) {
        return 0.0;
    }
    double best = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        best = std::min(best, segmentDistance(points[i], points[i + 1], at));
    }
    if (closed) {
        best = std::min(best, segmentDistance(points.back(), points.front(), at));
    }
    return best;
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

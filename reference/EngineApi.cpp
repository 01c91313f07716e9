// Korvo::API on the in-memory jobs of the reference engine: jobs, steps, profiles,
// step-and-repeat tables and features. The long operations and the result database are in
// EngineLongOperations.cpp.

#include <glog/logging.h>

#include <QFileInfo>
#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>

#include "EngineCallText.h"
#include "EngineStore.h"
#include "FabricationArchive.h"
#include "JobFromFolder.h"
#include "Korvo_API.h"
#include "SampleJob.h"
#include "StepRepeatGeometry.h"

namespace ct = wcref::calltext;
using wcref::EngineHooks;
using wcref::EngineJob;
using wcref::EngineLayerData;
using wcref::EngineStep;
using wcref::EngineStore;
using wcref::enter;
using wcref::store;

namespace {

std::unique_lock<std::mutex> locked() {
    return std::unique_lock<std::mutex>(store().mutex);
}

Korvo::API::reply_box profileBoxOf(const EngineStep& step) {
    return wcref::boxOfPoints(step.profile);
}

// Moves every coordinate of a feature through `map`; `rotation` is added to the feature's
// angle and `mirrored` flips its mirror flag and the turning sense of arcs.
void mapFeature(Korvo::API::featureInfo& f,
                const std::function<Korvo::API::point(const Korvo::API::point&)>& map,
                double rotation, bool mirrored) {
    f.start = map(f.start);
    f.end = map(f.end);
    f.center = map(f.center);
    for (Korvo::API::point& p : f.contour) {
        p = map(p);
    }
    f.angle = std::fmod(f.angle + rotation, 360.0);
    if (f.angle < 0) {
        f.angle += 360.0;
    }
    if (mirrored) {
        f.mirror = !f.mirror;
        f.clockwise = !f.clockwise;
    }
}

// True when `from` places `target`, directly or through nested tables.
bool placesStep(EngineJob& job, const std::string& from, const std::string& target, int depth) {
    if (depth > 64) {
        return true;  // a cycle already exists; refuse further nesting
    }
    EngineStep* s = job.step(from);
    if (s == nullptr) {
        return false;
    }
    for (const Korvo::API::step_repeat_op& row : s->repeat) {
        if (row.step_name == target || placesStep(job, row.step_name, target, depth + 1)) {
            return true;
        }
    }
    return false;
}

// Features of `layer` of every instance placed in `step`, in the coordinates of `step`.
void collectPlaced(EngineJob& job, const EngineStep& step, const std::string& layer, int depth,
                   std::vector<Korvo::API::featureInfo>& out) {
    if (depth > 64) {
        return;
    }
    for (const wcref::RepeatInstance& instance : wcref::expandRepeatRows(step.repeat)) {
        EngineStep* child = job.step(step.repeat[instance.row].step_name);
        if (child == nullptr) {
            continue;
        }
        std::vector<Korvo::API::featureInfo> features = child->layers[layer].features;
        collectPlaced(job, *child, layer, depth + 1, features);
        const auto place = [&instance](const Korvo::API::point& p) {
            Korvo::API::point q = wcref::placePoint(p, instance.angle, instance.mirror);
            return Korvo::API::point{q.x + instance.position.x, q.y + instance.position.y};
        };
        for (Korvo::API::featureInfo& f : features) {
            mapFeature(f, place, instance.angle, instance.mirror);
            out.push_back(std::move(f));
        }
    }
}

bool sameFeature(const Korvo::API::featureInfo& stored, const Korvo::API::featureInfo& wanted) {
    if (wanted.id >= 0) {
        return stored.id == wanted.id;
    }
    return stored.type == wanted.type && stored.start == wanted.start &&
           stored.symbol == wanted.symbol;
}

// Marks every feature of the layer as selected or highlighted.
void markAll(const std::string& job, const std::string& step, const std::string& layer,
             std::set<int> EngineLayerData::*marks) {
    auto lock = locked();
    if (EngineLayerData* data = store().layer(job, step, layer)) {
        for (const Korvo::API::featureInfo& f : data->features) {
            (data->*marks).insert(f.id);
        }
    }
}

bool clearMarks(const std::string& job, const std::string& step, const std::string& layer,
                std::set<int> EngineLayerData::*marks) {
    auto lock = locked();
    EngineLayerData* data = store().layer(job, step, layer);
    if (data == nullptr) {
        return false;
    }
    (data->*marks).clear();
    return true;
}

bool markFeature(EngineLayerData& data, const Korvo::API::featureInfo& wanted,
                 std::set<int>& marks) {
    for (const Korvo::API::featureInfo& f : data.features) {
        if (sameFeature(f, wanted)) {
            marks.insert(f.id);
            return true;
        }
    }
    return false;
}

bool typePasses(const Korvo::API::featureInfo& f, int mask) {
    if ((mask & static_cast<int>(f.type)) == 0) {
        return false;
    }
    const int polarity = mask & (Korvo::API::FT_Negative | Korvo::API::FT_Positive);
    if (polarity == 0) {
        return true;
    }
    return (mask & (f.positive ? Korvo::API::FT_Positive : Korvo::API::FT_Negative)) != 0;
}

}  // namespace

namespace Korvo {
namespace API {

// ---- jobs, steps, layers --------------------------------------------------------------------

bool open_job(const std::string& job, const std::string& path) {
    if (auto hook = enter("open_job", {job, path}, &EngineHooks::open_job)) {
        return hook(job, path);
    }
    if (path != "" && path != ":sample") {
        if (!job.empty() && (QFileInfo(QString::fromStdString(path)).isDir() ||
                             wcref::FabricationArchive::isArchiveName(path))) {
            return wcref::JobFromFolder::open(job, path);
        }
        LOG(ERROR) << "the reference engine opens its sample job (path \"\" or \":sample\") "
                   << "or a folder or archive of Gerber and drill files, not " << path;
        return false;
    }
    if (job.empty()) {
        LOG(ERROR) << "open_job needs a job name";
        return false;
    }
    auto lock = locked();
    if (store().jobs.count(job) == 0) {
        store().jobs.emplace(job, wcref::buildSampleJob(job));
        LOG(INFO) << "opened the sample job as " << job;
    }
    return true;
}

int close_job(const std::string& job) {
    if (auto hook = enter("close_job", {job}, &EngineHooks::close_job)) {
        return hook(job);
    }
    auto lock = locked();
    return store().jobs.erase(job) == 1 ? 0 : -1;
}

bool is_job_opened(const std::string& job) {
    if (auto hook = enter("is_job_opened", {job}, &EngineHooks::is_job_opened)) {
        return hook(job);
    }
    auto lock = locked();
    return store().jobs.count(job) == 1;
}

int get_opened_jobs(std::vector<std::string>& jobs) {
    if (auto hook = enter("get_opened_jobs", {}, &EngineHooks::get_opened_jobs)) {
        return hook(jobs);
    }
    auto lock = locked();
    jobs.clear();
    for (const auto& entry : store().jobs) {
        jobs.push_back(entry.first);
    }
    return static_cast<int>(jobs.size());
}

bool create_step(const std::string& job, const std::string& step, int type) {
    if (auto hook =
            enter("create_step", {job, step, ct::number(type)}, &EngineHooks::create_step)) {
        return hook(job, step, type);
    }
    auto lock = locked();
    EngineJob* j = store().job(job);
    if (j == nullptr) {
        return false;
    }
    if (step.empty() || j->step(step) != nullptr) {
        LOG(ERROR) << "cannot create step \"" << step << "\" in job " << job;
        return false;
    }
    EngineStep created;
    created.name = step;
    created.type = type;
    for (const layer_info& layer : j->matrix) {
        created.layers[layer.name];
    }
    j->steps.push_back(std::move(created));
    return true;
}

bool flatten_step(const std::string& job, const std::string& step, const std::string& layer,
                  const std::string& destination_layer) {
    if (auto hook = enter("flatten_step", {job, step, layer, destination_layer},
                          &EngineHooks::flatten_step)) {
        return hook(job, step, layer, destination_layer);
    }
    auto lock = locked();
    EngineJob* j = store().job(job);
    EngineStep* s = store().step(job, step);
    if (j == nullptr || s == nullptr || j->layer(layer) == nullptr ||
        j->layer(destination_layer) == nullptr) {
        LOG(ERROR) << "flatten_step: unknown step or layer";
        return false;
    }
    std::vector<featureInfo> placed;
    collectPlaced(*j, *s, layer, 0, placed);
    EngineLayerData& destination = s->layers[destination_layer];
    for (featureInfo& f : placed) {
        f.layer = destination_layer;
        destination.add(std::move(f));
    }
    ++s->editops;
    return true;
}

std::string get_matrix(const std::string& job, std::vector<std::string>& steps,
                       std::vector<layer_info>& layers) {
    if (auto hook = enter("get_matrix", {job}, &EngineHooks::get_matrix)) {
        return hook(job, steps, layers);
    }
    auto lock = locked();
    EngineJob* j = store().job(job);
    if (j == nullptr) {
        return "job " + job + " is not opened";
    }
    steps.clear();
    for (const EngineStep& s : j->steps) {
        steps.push_back(s.name);
    }
    layers = j->matrix;
    return "OK";
}

std::string get_matrix(const std::string& job, std::map<int, std::string>& steps,
                       std::vector<layer_info>& layers) {
    if (auto hook = enter("get_matrix", {job}, &EngineHooks::get_matrix_steps_map)) {
        return hook(job, steps, layers);
    }
    auto lock = locked();
    EngineJob* j = store().job(job);
    if (j == nullptr) {
        return "job " + job + " is not opened";
    }
    steps.clear();
    int column = 0;
    for (const EngineStep& s : j->steps) {
        steps[++column] = s.name;
    }
    layers = j->matrix;
    return "OK";
}

std::string get_graphics(const std::string& job, std::vector<std::string>& steps,
                         std::vector<layer_info>& layers) {
    if (auto hook = enter("get_graphics", {job}, &EngineHooks::get_graphics)) {
        return hook(job, steps, layers);
    }
    auto lock = locked();
    EngineJob* j = store().job(job);
    if (j == nullptr) {
        return "job " + job + " is not opened";
    }
    steps.clear();
    for (const EngineStep& s : j->steps) {
        steps.push_back(s.name);
    }
    layers.clear();
    for (const layer_info& layer : j->matrix) {
        if (j->displayed.count(layer.name) != 0) {
            layers.push_back(layer);
        }
    }
    return "OK";
}

bool get_step_header_infos(const std::string& job, const std::string& step,
                           step_header_info& info) {
    if (auto hook =
            enter("get_step_header_infos", {job, step}, &EngineHooks::get_step_header_infos)) {
        return hook(job, step, info);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    info.name = s->name;
    info.datum = s->datum;
    info.has_profile = !s->profile.empty();
    info.profile_box = profileBoxOf(*s);
    info.repeat_rows = static_cast<int>(s->repeat.size());
    return true;
}

bool get_step_attributes(const std::string& job, const std::string& step,
                         std::map<std::string, std::string>& attributes) {
    if (auto hook = enter("get_step_attributes", {job, step}, &EngineHooks::get_step_attributes)) {
        return hook(job, step, attributes);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    attributes = s->attributes;
    return true;
}

// Sets the given attributes; attributes not named keep their values.
bool edit_step_attributes(const std::string& job, const std::string& step,
                          const std::map<std::string, std::string>& attributes) {
    if (auto hook = enter("edit_step_attributes", {job, step, ct::attributes(attributes)},
                          &EngineHooks::edit_step_attributes)) {
        return hook(job, step, attributes);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    for (const auto& entry : attributes) {
        s->attributes[entry.first] = entry.second;
    }
    ++s->editops;
    return true;
}

// ---- profile and step-and-repeat ------------------------------------------------------------

bool has_profile(const std::string& job, const std::string& step) {
    if (auto hook = enter("has_profile", {job, step}, &EngineHooks::has_profile)) {
        return hook(job, step);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    return s != nullptr && !s->profile.empty();
}

bool get_profile(const std::string& job, const std::string& step, std::vector<point>& outline) {
    if (auto hook = enter("get_profile", {job, step}, &EngineHooks::get_profile)) {
        return hook(job, step, outline);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr || s->profile.empty()) {
        return false;
    }
    outline = s->profile;
    return true;
}

// An outline needs three points; an empty outline removes the profile.
bool set_step_profile(const std::string& job, const std::string& step,
                      const std::vector<point>& outline) {
    if (auto hook = enter("set_step_profile", {job, step, ct::points(outline)},
                          &EngineHooks::set_step_profile)) {
        return hook(job, step, outline);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    if (!outline.empty() && outline.size() < 3) {
        LOG(ERROR) << "a profile needs at least three points, got " << outline.size();
        return false;
    }
    s->profile = outline;
    ++s->editops;
    return true;
}

bool profile_box(const std::string& job, const std::string& step, reply_box& box) {
    if (auto hook = enter("profile_box", {job, step}, &EngineHooks::profile_box)) {
        return hook(job, step, box);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr || s->profile.empty()) {
        return false;
    }
    box = profileBoxOf(*s);
    return true;
}

bool set_datum_point(const std::string& job, const std::string& step, const point& datum) {
    if (auto hook = enter("set_datum_point", {job, step, ct::point(datum)},
                          &EngineHooks::set_datum_point)) {
        return hook(job, step, datum);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    s->datum = datum;
    ++s->editops;
    return true;
}

bool get_step_repeat(const std::string& job, const std::string& step,
                     std::vector<step_repeat_op>& rows) {
    if (auto hook = enter("get_step_repeat", {job, step}, &EngineHooks::get_step_repeat)) {
        return hook(job, step, rows);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    rows = s->repeat;
    return true;
}

bool set_step_repeat(const std::string& job, const std::string& step,
                     const std::vector<step_repeat_op>& rows) {
    if (auto hook = enter("set_step_repeat", {job, step, ct::repeatRows(rows)},
                          &EngineHooks::set_step_repeat)) {
        return hook(job, step, rows);
    }
    auto lock = locked();
    EngineJob* j = store().job(job);
    EngineStep* s = store().step(job, step);
    if (j == nullptr || s == nullptr) {
        return false;
    }
    std::vector<step_repeat_op> accepted = rows;
    for (step_repeat_op& row : accepted) {
        if (row.nx < 1 || row.ny < 1) {
            LOG(ERROR) << "step-and-repeat row of " << row.step_name << " has " << row.nx << " x "
                       << row.ny << " instances";
            return false;
        }
        if (j->step(row.step_name) == nullptr) {
            LOG(ERROR) << "step-and-repeat row places unknown step " << row.step_name;
            return false;
        }
        if (row.step_name == step || placesStep(*j, row.step_name, step, 0)) {
            LOG(ERROR) << "illegal step & repeat nesting: " << row.step_name << " in " << step;
            return false;
        }
        const int count = row.nx * row.ny;
        for (auto it = row.selection.begin(); it != row.selection.end();) {
            it = (*it < 0 || *it >= count) ? row.selection.erase(it) : std::next(it);
        }
    }
    s->repeat = std::move(accepted);
    ++s->editops;
    return true;
}

bool select_step_repeat(const std::string& job, const std::string& step,
                        std::vector<step_repeat_op>& rows, const std::vector<point>& points,
                        int mode) {
    if (auto hook = enter("select_step_repeat", {job, step, ct::points(points), ct::number(mode)},
                          &EngineHooks::select_step_repeat)) {
        return hook(job, step, rows, points, mode);
    }
    auto lock = locked();
    EngineJob* j = store().job(job);
    EngineStep* s = store().step(job, step);
    if (j == nullptr || s == nullptr) {
        return false;
    }
    if ((mode == 0 && points.empty()) || (mode == 1 && points.size() < 2) ||
        (mode != 0 && mode != 1)) {
        LOG(ERROR) << "select_step_repeat: mode " << mode << " with " << points.size() << " points";
        return false;
    }
    std::map<std::string, reply_box> child_boxes;
    for (const step_repeat_op& row : s->repeat) {
        if (child_boxes.count(row.step_name) == 0) {
            EngineStep* child = j->step(row.step_name);
            child_boxes[row.step_name] = child ? profileBoxOf(*child) : reply_box{};
        }
    }
    const std::vector<wcref::RepeatInstance> instances = wcref::expandRepeatRows(s->repeat);
    const auto boxOf = [&](const wcref::RepeatInstance& instance) {
        return wcref::instanceBox(child_boxes[s->repeat[instance.row].step_name], instance);
    };
    if (mode == 0) {
        for (auto it = instances.rbegin(); it != instances.rend(); ++it) {
            if (wcref::boxContains(boxOf(*it), points.front())) {
                s->repeat[it->row].selection.insert(it->index);
                break;
            }
        }
    } else {
        std::vector<point> area = points;
        if (points.size() == 2) {
            const reply_box r = wcref::boxOfPoints(points);
            area = {{r.xmin, r.ymin}, {r.xmax, r.ymin}, {r.xmax, r.ymax}, {r.xmin, r.ymax}};
        }
        for (const wcref::RepeatInstance& instance : instances) {
            if (wcref::pointInPolygon(wcref::boxCentre(boxOf(instance)), area)) {
                s->repeat[instance.row].selection.insert(instance.index);
            }
        }
    }
    rows = s->repeat;
    return true;
}

bool clear_select_step_repeat(const std::string& job, const std::string& step) {
    if (auto hook = enter("clear_select_step_repeat", {job, step},
                          &EngineHooks::clear_select_step_repeat)) {
        return hook(job, step);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    for (step_repeat_op& row : s->repeat) {
        row.selection.clear();
    }
    return true;
}

int distance_of_polygon(const std::vector<point>& first, const std::vector<point>& second,
                        point& on_first, point& on_second) {
    if (auto hook = enter("distance_of_polygon", {ct::points(first), ct::points(second)},
                          &EngineHooks::distance_of_polygon)) {
        return hook(first, second, on_first, on_second);
    }
    const double d = wcref::polygonDistance(first, second, on_first, on_second);
    if (d < 0) {
        LOG(ERROR) << "distance_of_polygon: an outline has no points";
        return -1;
    }
    return d >= static_cast<double>(INT_MAX) ? INT_MAX : static_cast<int>(d);
}

// ---- features, selection, edits -------------------------------------------------------------

bool get_all_feature_info(const std::string& job, const std::string& step, const std::string& layer,
                          std::vector<featureInfo>& features, int type_mask) {
    if (auto hook = enter("get_all_feature_info", {job, step, layer, ct::number(type_mask)},
                          &EngineHooks::get_all_feature_info)) {
        return hook(job, step, layer, features, type_mask);
    }
    auto lock = locked();
    EngineLayerData* data = store().layer(job, step, layer);
    if (data == nullptr) {
        return false;
    }
    features.clear();
    for (const featureInfo& f : data->features) {
        if (typePasses(f, type_mask)) {
            features.push_back(f);
        }
    }
    return true;
}

void select_features(const std::string& job, const std::string& step, const std::string& layer) {
    if (auto hook = enter("select_features", {job, step, layer}, &EngineHooks::select_features)) {
        hook(job, step, layer);
        return;
    }
    markAll(job, step, layer, &EngineLayerData::selected);
}

// Finds the feature by id, or, when the id is negative, by type, position and symbol.
bool select_feature_by_info(const std::string& job, const std::string& step,
                            const std::string& layer, const featureInfo& feature) {
    if (auto hook = enter("select_feature_by_info", {job, step, layer, ct::feature(feature)},
                          &EngineHooks::select_feature_by_info)) {
        return hook(job, step, layer, feature);
    }
    auto lock = locked();
    EngineLayerData* data = store().layer(job, step, layer);
    return data != nullptr && markFeature(*data, feature, data->selected);
}

bool clear_selected_features(const std::string& job, const std::string& step,
                             const std::string& layer) {
    if (auto hook = enter("clear_selected_features", {job, step, layer},
                          &EngineHooks::clear_selected_features)) {
        return hook(job, step, layer);
    }
    return clearMarks(job, step, layer, &EngineLayerData::selected);
}

bool get_selected_feature_info(const std::string& job, const std::string& step,
                               const std::string& layer, std::vector<featureInfo>& features) {
    if (auto hook = enter("get_selected_feature_info", {job, step, layer},
                          &EngineHooks::get_selected_feature_info)) {
        return hook(job, step, layer, features);
    }
    auto lock = locked();
    EngineLayerData* data = store().layer(job, step, layer);
    if (data == nullptr) {
        return false;
    }
    features.clear();
    for (const featureInfo& f : data->features) {
        if (data->selected.count(f.id) != 0) {
            features.push_back(f);
        }
    }
    return true;
}

void highlight_features(const std::string& job, const std::string& step, const std::string& layer) {
    if (auto hook =
            enter("highlight_features", {job, step, layer}, &EngineHooks::highlight_features)) {
        hook(job, step, layer);
        return;
    }
    markAll(job, step, layer, &EngineLayerData::highlighted);
}

bool highlight_feature_by_info(const std::string& job, const std::string& step,
                               const std::string& layer, const featureInfo& feature) {
    if (auto hook = enter("highlight_feature_by_info", {job, step, layer, ct::feature(feature)},
                          &EngineHooks::highlight_feature_by_info)) {
        return hook(job, step, layer, feature);
    }
    auto lock = locked();
    EngineLayerData* data = store().layer(job, step, layer);
    return data != nullptr && markFeature(*data, feature, data->highlighted);
}

bool clear_highlighted_features(const std::string& job, const std::string& step,
                                const std::string& layer) {
    if (auto hook = enter("clear_highlighted_features", {job, step, layer},
                          &EngineHooks::clear_highlighted_features)) {
        return hook(job, step, layer);
    }
    return clearMarks(job, step, layer, &EngineLayerData::highlighted);
}

// Symbols keep their size when scaled: only coordinates move.
bool transform(const std::string& job, const std::string& step, const std::string& layer, int mode,
               bool rotate, bool mirror_x, bool mirror_y, bool scale, bool move,
               const point& anchor, double angle, double x_scale, double y_scale, double dx,
               double dy) {
    if (auto hook = enter("transform",
                          {job, step, layer, ct::number(mode), ct::flag(rotate), ct::flag(mirror_x),
                           ct::flag(mirror_y), ct::flag(scale), ct::flag(move), ct::point(anchor),
                           ct::number(angle), ct::number(x_scale), ct::number(y_scale),
                           ct::number(dx), ct::number(dy)},
                          &EngineHooks::transform)) {
        return hook(job, step, layer, mode, rotate, mirror_x, mirror_y, scale, move, anchor, angle,
                    x_scale, y_scale, dx, dy);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    EngineLayerData* data = store().layer(job, step, layer);
    if (s == nullptr || data == nullptr) {
        return false;
    }
    const auto map = [&](const point& p) {
        point q = p;
        if (scale) {
            q = {anchor.x + (q.x - anchor.x) * x_scale, anchor.y + (q.y - anchor.y) * y_scale};
        }
        if (mirror_x) {
            q.x = 2 * anchor.x - q.x;
        }
        if (mirror_y) {
            q.y = 2 * anchor.y - q.y;
        }
        if (rotate) {
            const point r = wcref::placePoint({q.x - anchor.x, q.y - anchor.y}, angle, false);
            q = {anchor.x + r.x, anchor.y + r.y};
        }
        if (move) {
            q = {q.x + dx, q.y + dy};
        }
        return q;
    };
    const bool mirrored = mirror_x != mirror_y;
    for (featureInfo& f : data->features) {
        if (data->selected.empty() || data->selected.count(f.id) != 0) {
            mapFeature(f, map, rotate ? angle : 0.0, mirrored);
        }
    }
    ++s->editops;
    return true;
}

bool copy_layer_features(const std::string& job, const std::string& step,
                         const std::string& source_layer, const std::string& destination_layer,
                         bool append) {
    if (auto hook = enter("copy_layer_features",
                          {job, step, source_layer, destination_layer, ct::flag(append)},
                          &EngineHooks::copy_layer_features)) {
        return hook(job, step, source_layer, destination_layer, append);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    EngineLayerData* source = store().layer(job, step, source_layer);
    EngineLayerData* destination = store().layer(job, step, destination_layer);
    if (s == nullptr || source == nullptr || destination == nullptr) {
        return false;
    }
    const std::vector<featureInfo> copied = source->features;
    if (!append) {
        *destination = EngineLayerData{};
    }
    for (featureInfo f : copied) {
        f.layer = destination_layer;
        destination->add(std::move(f));
    }
    ++s->editops;
    return true;
}

int get_editop_count(const std::string& job, const std::string& step) {
    if (auto hook = enter("get_editop_count", {job, step}, &EngineHooks::get_editop_count)) {
        return hook(job, step);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    return s == nullptr ? -1 : s->editops;
}

bool bind_editop_count(const std::string& job, const std::string& step, int count) {
    if (auto hook = enter("bind_editop_count", {job, step, ct::number(count)},
                          &EngineHooks::bind_editop_count)) {
        return hook(job, step, count);
    }
    auto lock = locked();
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    s->editops = count;
    return true;
}

}  // namespace API
}  // namespace Korvo

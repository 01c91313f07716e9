// Korvo::API panel operations of the reference engine: the steps a panel places and its margins.

#include <glog/logging.h>

#include <algorithm>
#include <set>

#include "EngineCallText.h"
#include "EngineStore.h"
#include "Korvo_API.h"

namespace ct = wcref::calltext;
using wcref::EngineHooks;
using wcref::EngineJob;
using wcref::EngineStep;
using wcref::enter;
using wcref::store;

namespace {

constexpr int kDeepestNesting = 64;

void collectPlacedSteps(EngineJob& job, const EngineStep& step, int depth,
                        std::set<std::string>& seen, std::vector<std::string>& out) {
    if (depth > kDeepestNesting) {
        return;
    }
    for (const Korvo::API::step_repeat_op& row : step.repeat) {
        if (!seen.insert(row.step_name).second) {
            continue;
        }
        out.push_back(row.step_name);
        if (const EngineStep* child = job.step(row.step_name)) {
            collectPlacedSteps(job, *child, depth + 1, seen, out);
        }
    }
}

}  // namespace

namespace Korvo {
namespace API {

bool get_all_step_repeat_steps(const std::string& job, const std::string& step,
                               std::vector<std::string>& steps) {
    if (auto hook = enter("get_all_step_repeat_steps", {job, step},
                          &EngineHooks::get_all_step_repeat_steps)) {
        return hook(job, step, steps);
    }
    std::lock_guard<std::mutex> lock(store().mutex);
    EngineJob* j = store().job(job);
    EngineStep* s = store().step(job, step);
    if (j == nullptr || s == nullptr) {
        return false;
    }
    steps.clear();
    std::set<std::string> seen;
    collectPlacedSteps(*j, *s, 0, seen, steps);
    return true;
}

bool set_panel_margin(const std::string& job, const std::string& step, int left, int right, int top,
                      int bottom) {
    if (auto hook = enter(
            "set_panel_margin",
            {job, step, ct::number(left), ct::number(right), ct::number(top), ct::number(bottom)},
            &EngineHooks::set_panel_margin)) {
        return hook(job, step, left, right, top, bottom);
    }
    std::lock_guard<std::mutex> lock(store().mutex);
    EngineStep* s = store().step(job, step);
    if (s == nullptr) {
        return false;
    }
    if (left < 0 || right < 0 || top < 0 || bottom < 0) {
        LOG(ERROR) << "set_panel_margin: negative margin for " << step;
        return false;
    }
    if (!s->profile.empty()) {
        double xmin = s->profile.front().x, xmax = xmin;
        double ymin = s->profile.front().y, ymax = ymin;
        for (const point& p : s->profile) {
            xmin = std::min(xmin, p.x);
            xmax = std::max(xmax, p.x);
            ymin = std::min(ymin, p.y);
            ymax = std::max(ymax, p.y);
        }
        if (double(left) + right >= xmax - xmin || double(top) + bottom >= ymax - ymin) {
            LOG(ERROR) << "set_panel_margin: margins leave no room inside the profile of " << step;
            return false;
        }
    }
    s->attributes[".panel_margin_left"] = std::to_string(left);
    s->attributes[".panel_margin_right"] = std::to_string(right);
    s->attributes[".panel_margin_top"] = std::to_string(top);
    s->attributes[".panel_margin_bottom"] = std::to_string(bottom);
    ++s->editops;
    return true;
}

}  // namespace API
}  // namespace Korvo

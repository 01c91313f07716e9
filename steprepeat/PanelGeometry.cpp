#include "PanelGeometry.h"

#include <algorithm>
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>
#include <climits>
#include <cmath>
#include <limits>
#include <numeric>

#include "frame/EngineInt.h"

namespace wc {
namespace panel {

namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;

namespace {

using BPoint = bg::model::point<double, 2, bg::cs::cartesian>;
using BBox = bg::model::box<BPoint>;
using Entry = std::pair<BBox, int>;
using Tree = bgi::rtree<Entry, bgi::rstar<16>>;

// Keeps touching boxes apart in the index, which counts shared edges as intersecting.
constexpr double kTouch = 1e-3;

BBox toBBox(const reply_box& b) {
    return BBox(BPoint(b.xmin, b.ymin), BPoint(b.xmax, b.ymax));
}

BBox shrunk(const reply_box& b) {
    return BBox(BPoint(b.xmin + kTouch, b.ymin + kTouch), BPoint(b.xmax - kTouch, b.ymax - kTouch));
}

step_repeat_op single(const step_repeat_op& row, int i, int j, bool selected) {
    step_repeat_op one;
    one.step_name = row.step_name;
    one.x = static_cast<int32_t>(row.x + static_cast<long long>(i) * row.dx);
    one.y = static_cast<int32_t>(row.y + static_cast<long long>(j) * row.dy);
    one.angle = row.angle;
    one.mirror = row.mirror;
    if (selected) {
        one.selection.insert(0);
    }
    return one;
}

reply_box childBox(const ChildBoxes& boxes, const std::string& step) {
    auto it = boxes.find(step);
    return it == boxes.end() ? reply_box{} : it->second;
}

reply_box unionBox(const std::vector<reply_box>& boxes) {
    reply_box u{std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
                std::numeric_limits<double>::lowest(), std::numeric_limits<double>::lowest()};
    for (const reply_box& b : boxes) {
        u.xmin = std::min(u.xmin, b.xmin);
        u.ymin = std::min(u.ymin, b.ymin);
        u.xmax = std::max(u.xmax, b.xmax);
        u.ymax = std::max(u.ymax, b.ymax);
    }
    return u;
}

int32_t clampInt(double v) {
    return wc::toEngineInt(v);
}

long long truncated(double v) {
    return static_cast<long long>(std::trunc(v));
}

// Boxes seen along a packing direction: the travel axis is u (an instance moves towards lower
// u), the other axis v. Packing right or up negates the travel axis.
struct Lane {
    double ulo, uhi, vlo, vhi;
};

Lane toLane(const reply_box& b, PackEdge edge) {
    switch (edge) {
        case PackEdge::Left:
            return {b.xmin, b.xmax, b.ymin, b.ymax};
        case PackEdge::Right:
            return {-b.xmax, -b.xmin, b.ymin, b.ymax};
        case PackEdge::Bottom:
            return {b.ymin, b.ymax, b.xmin, b.xmax};
        case PackEdge::Top:
            return {-b.ymax, -b.ymin, b.xmin, b.xmax};
    }
    return {};
}

BBox laneBox(const Lane& l) {
    return BBox(BPoint(l.ulo, l.vlo), BPoint(l.uhi, l.vhi));
}

// The edge limit in lane coordinates: how low u may go.
double laneLimit(const PanelFrame& frame, PackEdge edge) {
    switch (edge) {
        case PackEdge::Left:
            return frame.panel.xmin + frame.margins.left;
        case PackEdge::Right:
            return -(frame.panel.xmax - frame.margins.right);
        case PackEdge::Bottom:
            return frame.panel.ymin + frame.margins.bottom;
        case PackEdge::Top:
            return -(frame.panel.ymax - frame.margins.top);
    }
    return 0.0;
}

void shiftRow(step_repeat_op& row, PackEdge edge, long long d) {
    switch (edge) {
        case PackEdge::Left:
            row.x = clampInt(double(row.x) - d);
            break;
        case PackEdge::Right:
            row.x = clampInt(double(row.x) + d);
            break;
        case PackEdge::Top:
            row.y = clampInt(double(row.y) + d);
            break;
        case PackEdge::Bottom:
            row.y = clampInt(double(row.y) - d);
            break;
    }
}

// The expansion with the box of every instance: selected singles by their row, and the
// instances of unselected arrays as blockers.
struct Scene {
    Expansion expansion;
    std::vector<reply_box> selected_boxes;  // parallel to expansion.selected
    std::vector<reply_box> other_boxes;     // every unselected instance
};

Scene sceneOf(const Rows& rows, const ChildBoxes& boxes) {
    Scene scene;
    scene.expansion = expandInstances(rows);
    scene.selected_boxes.reserve(scene.expansion.selected.size());
    std::vector<char> is_selected(scene.expansion.rows.size(), 0);
    for (int index : scene.expansion.selected) {
        is_selected[index] = 1;
        const step_repeat_op& row = scene.expansion.rows[index];
        scene.selected_boxes.push_back(instanceBox(childBox(boxes, row.step_name), row));
    }
    for (size_t r = 0; r < scene.expansion.rows.size(); ++r) {
        if (is_selected[r]) {
            continue;
        }
        const step_repeat_op& row = scene.expansion.rows[r];
        const reply_box first = instanceBox(childBox(boxes, row.step_name), row);
        for (int j = 0; j < row.ny; ++j) {
            for (int i = 0; i < row.nx; ++i) {
                const double ox = double(i) * row.dx;
                const double oy = double(j) * row.dy;
                scene.other_boxes.push_back(
                    {first.xmin + ox, first.ymin + oy, first.xmax + ox, first.ymax + oy});
            }
        }
    }
    return scene;
}

bool knowsAllSteps(const Rows& rows, const ChildBoxes& boxes) {
    return std::all_of(rows.begin(), rows.end(),
                       [&](const step_repeat_op& row) { return boxes.count(row.step_name) != 0; });
}

// Whether two selected instances overlap: boxes from the index, outlines where the boxes
// cannot decide.
bool selectedOverlap(const Scene& scene, const OutlinesOverlap& overlap) {
    std::vector<Entry> entries;
    entries.reserve(scene.selected_boxes.size());
    for (size_t k = 0; k < scene.selected_boxes.size(); ++k) {
        entries.emplace_back(toBBox(scene.selected_boxes[k]), static_cast<int>(k));
    }
    const Tree tree(entries);
    std::vector<Entry> hits;
    for (size_t k = 0; k < scene.selected_boxes.size(); ++k) {
        hits.clear();
        tree.query(bgi::intersects(shrunk(scene.selected_boxes[k])), std::back_inserter(hits));
        for (const Entry& hit : hits) {
            if (hit.second <= static_cast<int>(k)) {
                continue;
            }
            if (!overlap) {
                return true;
            }
            const Rows& rows = scene.expansion.rows;
            if (overlap(rows[scene.expansion.selected[k]],
                        rows[scene.expansion.selected[hit.second]])) {
                return true;
            }
        }
    }
    return false;
}

// One packing task: a selected instance and the edge it travels to, in lane coordinates.
struct PackTask {
    int selected = 0;  // position in Scene::selected_boxes
    PackEdge edge = PackEdge::Left;
    double limit = 0.0;
};

// Boxes of instances a pack already moved; filled one by one, so a cheaper split than the
// bulk-loaded index of the instances that stay.
using MovedTree = bgi::rtree<Entry, bgi::quadratic<16>>;

// The far edge of the box in `path` nearest to the moving instance's front, or `stop`.
template <typename Index>
double nearestStop(const Index& index, const BBox& path, const BBox& front, double stop) {
    std::vector<Entry> nearest;
    index.query(bgi::intersects(path) && bgi::nearest(front, 1), std::back_inserter(nearest));
    return nearest.empty() ? stop : std::max(stop, nearest.front().first.max_corner().get<0>());
}

// The free distance an instance can travel towards the edge: up to the limit, or `gap` before
// the nearest box in its way, among the instances that stay and those already moved.
long long do_perpcs_align(const Lane& moving, double limit, const Tree& fixed,
                          const MovedTree& moved, double gap, double floor_u) {
    const double vlo = moving.vlo - gap + kTouch;
    const double vhi = moving.vhi + gap - kTouch;
    double stop = limit;
    if (vhi > vlo) {
        const BBox path(BPoint(floor_u, vlo), BPoint(moving.ulo, vhi));
        const BBox front(BPoint(moving.ulo, vlo), BPoint(moving.ulo, vhi));
        const double lowest = std::numeric_limits<double>::lowest();
        const double blocker = std::max(nearestStop(fixed, path, front, lowest),
                                        nearestStop(moved, path, front, lowest));
        if (blocker > lowest) {
            stop = std::max(stop, blocker + gap);
        }
    }
    const double free = moving.ulo - stop;
    return free > 0 ? static_cast<long long>(std::floor(free)) : 0;
}

// Packs the tasks of one lane frame, nearest to the edge first, so every instance still to move
// lies behind the one moving (all share one limit): the boxes in its way are the instances that
// stay and those already moved. Two at the same distance do not block each other. Boxes of
// moved instances are updated in `scene`.
void packLane(Scene& scene, std::vector<PackTask> tasks, PackEdge edge, double gap) {
    std::vector<Lane> lanes(scene.selected_boxes.size());
    std::vector<char> moving(scene.selected_boxes.size(), 0);
    for (const PackTask& t : tasks) {
        moving[t.selected] = 1;
    }
    std::vector<Entry> entries;
    entries.reserve(scene.selected_boxes.size() + scene.other_boxes.size());
    double floor_u = std::numeric_limits<double>::max();
    for (size_t k = 0; k < scene.selected_boxes.size(); ++k) {
        lanes[k] = toLane(scene.selected_boxes[k], edge);
        floor_u = std::min(floor_u, lanes[k].ulo);
        if (!moving[k]) {
            entries.emplace_back(laneBox(lanes[k]), static_cast<int>(k));
        }
    }
    for (const reply_box& b : scene.other_boxes) {
        const Lane l = toLane(b, edge);
        entries.emplace_back(laneBox(l), -1);
        floor_u = std::min(floor_u, l.ulo);
    }
    for (const PackTask& t : tasks) {
        floor_u = std::min(floor_u, t.limit);
    }
    floor_u -= 1.0;
    const Tree fixed(entries);
    MovedTree moved;
    std::sort(tasks.begin(), tasks.end(), [&](const PackTask& a, const PackTask& b) {
        return lanes[a.selected].ulo - a.limit < lanes[b.selected].ulo - b.limit;
    });
    for (const PackTask& t : tasks) {
        Lane& lane = lanes[t.selected];
        const long long d = do_perpcs_align(lane, t.limit, fixed, moved, gap, floor_u);
        if (d > 0) {
            lane.ulo -= d;
            lane.uhi -= d;
            shiftRow(scene.expansion.rows[scene.expansion.selected[t.selected]], edge, d);
            reply_box& b = scene.selected_boxes[t.selected];
            const bool horizontal = edge == PackEdge::Left || edge == PackEdge::Right;
            const double signed_d = (edge == PackEdge::Left || edge == PackEdge::Bottom) ? -d : d;
            (horizontal ? b.xmin : b.ymin) += signed_d;
            (horizontal ? b.xmax : b.ymax) += signed_d;
        }
        moved.insert(Entry(laneBox(lane), t.selected));
    }
}

Outcome refused(const Rows& rows, Refusal why) {
    return Outcome{why, rows};
}

Outcome packWith(const Rows& rows, const PanelFrame& frame, const OutlinesOverlap& overlap,
                 const std::function<void(Scene&)>& pack) {
    if (!knowsAllSteps(rows, frame.child_boxes)) {
        return refused(rows, Refusal::UnknownStep);
    }
    Scene scene = sceneOf(rows, frame.child_boxes);
    if (selectedOverlap(scene, overlap)) {
        return refused(rows, Refusal::Overlap);
    }
    pack(scene);
    return Outcome{Refusal::None, std::move(scene.expansion.rows)};
}

point boxMiddle(const reply_box& b) {
    return {(b.xmin + b.xmax) / 2.0, (b.ymin + b.ymax) / 2.0};
}

// Splits a lane of tasks by the side of `line` the box centre lies on.
void packSides(Scene& scene, Axis axis, const PanelFrame& frame, bool towards_centre) {
    const bool h = axis == Axis::Horizontal;
    const PackEdge low = h ? PackEdge::Left : PackEdge::Bottom;
    const PackEdge high = h ? PackEdge::Right : PackEdge::Top;
    const double lo = h ? frame.panel.xmin : frame.panel.ymin;
    const double hi = h ? frame.panel.xmax : frame.panel.ymax;
    const double middle = (lo + hi) / 2.0;
    std::vector<PackTask> to_low;
    std::vector<PackTask> to_high;
    const double half_low = std::floor(frame.gap / 2.0);
    const double half_high = frame.gap - half_low;
    for (size_t k = 0; k < scene.selected_boxes.size(); ++k) {
        const reply_box& b = scene.selected_boxes[k];
        const double centre = h ? (b.xmin + b.xmax) / 2.0 : (b.ymin + b.ymax) / 2.0;
        const bool before = centre < middle;
        if (towards_centre) {
            // Instances before the line travel up to it, the others down to it.
            if (before) {
                to_high.push_back({int(k), high, -(middle - half_low)});
            } else {
                to_low.push_back({int(k), low, middle + half_high});
            }
        } else if (before) {
            to_low.push_back({int(k), low, laneLimit(frame, low)});
        } else {
            to_high.push_back({int(k), high, laneLimit(frame, high)});
        }
    }
    packLane(scene, to_low, low, frame.gap);
    packLane(scene, to_high, high, frame.gap);
}

}  // namespace

// ---- instances and boxes --------------------------------------------------------------------

Expansion expandInstances(const Rows& rows) {
    Expansion out;
    out.rows.reserve(rows.size());
    for (const step_repeat_op& row : rows) {
        if (row.selection.empty()) {
            out.rows.push_back(row);
            continue;
        }
        for (int j = 0; j < row.ny; ++j) {
            for (int i = 0; i < row.nx; ++i) {
                const bool selected = row.selection.count(i + j * row.nx) != 0;
                if (selected) {
                    out.selected.push_back(static_cast<int>(out.rows.size()));
                }
                out.rows.push_back(single(row, i, j, selected));
            }
        }
    }
    return out;
}

int instanceCount(const Rows& rows) {
    long long n = 0;
    for (const step_repeat_op& row : rows) {
        n += static_cast<long long>(row.nx) * row.ny;
    }
    return static_cast<int>(n);
}

int selectedCount(const Rows& rows) {
    int n = 0;
    for (const step_repeat_op& row : rows) {
        const int count = row.nx * row.ny;
        for (int index : row.selection) {
            n += index >= 0 && index < count;
        }
    }
    return n;
}

int selectedRowCount(const Rows& rows) {
    return static_cast<int>(std::count_if(
        rows.begin(), rows.end(), [](const step_repeat_op& r) { return !r.selection.empty(); }));
}

Rows withAllSelected(Rows rows) {
    for (step_repeat_op& row : rows) {
        row.selection.clear();
        for (int k = 0; k < row.nx * row.ny; ++k) {
            row.selection.insert(row.selection.end(), k);
        }
    }
    return rows;
}

Rows withNoneSelected(Rows rows) {
    for (step_repeat_op& row : rows) {
        row.selection.clear();
    }
    return rows;
}

int normalAngle(long long angle) {
    return static_cast<int>(((angle % 360) + 360) % 360);
}

point placePoint(const point& p, int angle, bool mirror) {
    const double x = mirror ? -p.x : p.x;
    const double y = p.y;
    switch (normalAngle(angle)) {
        case 0:
            return {x, y};
        case 90:
            return {y, -x};
        case 180:
            return {-x, -y};
        case 270:
            return {-y, x};
        default:
            break;
    }
    const double radians = normalAngle(angle) * M_PI / 180.0;
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    return {x * c + y * s, -x * s + y * c};
}

reply_box instanceBox(const reply_box& child, const step_repeat_op& row, int i, int j) {
    const point corners[4] = {{child.xmin, child.ymin},
                              {child.xmax, child.ymin},
                              {child.xmax, child.ymax},
                              {child.xmin, child.ymax}};
    const double px = double(row.x) + double(i) * row.dx;
    const double py = double(row.y) + double(j) * row.dy;
    reply_box box{std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
                  std::numeric_limits<double>::lowest(), std::numeric_limits<double>::lowest()};
    for (const point& corner : corners) {
        const point p = placePoint(corner, row.angle, row.mirror);
        box.xmin = std::min(box.xmin, p.x + px);
        box.xmax = std::max(box.xmax, p.x + px);
        box.ymin = std::min(box.ymin, p.y + py);
        box.ymax = std::max(box.ymax, p.y + py);
    }
    return box;
}

std::vector<reply_box> instanceBoxes(const Rows& rows, const ChildBoxes& boxes) {
    std::vector<reply_box> out;
    out.reserve(static_cast<size_t>(instanceCount(rows)));
    for (const step_repeat_op& row : rows) {
        auto it = boxes.find(row.step_name);
        const reply_box first = it == boxes.end() ? reply_box{} : instanceBox(it->second, row);
        for (int j = 0; j < row.ny; ++j) {
            for (int i = 0; i < row.nx; ++i) {
                if (it == boxes.end()) {
                    out.push_back(reply_box{});
                    continue;
                }
                const double ox = double(i) * row.dx;
                const double oy = double(j) * row.dy;
                out.push_back({first.xmin + ox, first.ymin + oy, first.xmax + ox, first.ymax + oy});
            }
        }
    }
    return out;
}

bool boxesOverlap(const reply_box& a, const reply_box& b) {
    return a.xmin < b.xmax && b.xmin < a.xmax && a.ymin < b.ymax && b.ymin < a.ymax;
}

// ---- align to a reference instance ----------------------------------------------------------

Outcome alignToReference(const Rows& rows, const reply_box& reference, AlignKind kind,
                         const ChildBoxes& boxes) {
    if (!knowsAllSteps(rows, boxes)) {
        return refused(rows, Refusal::UnknownStep);
    }
    const long long rxmin = truncated(reference.xmin);
    const long long rxmax = truncated(reference.xmax);
    const long long rymin = truncated(reference.ymin);
    const long long rymax = truncated(reference.ymax);
    long long target = 0;
    switch (kind) {
        case AlignKind::Left:
            target = rxmin;
            break;
        case AlignKind::Right:
            target = rxmax;
            break;
        case AlignKind::Top:
            target = rymax;
            break;
        case AlignKind::Bottom:
            target = rymin;
            break;
        case AlignKind::CenterX:
            target = (rxmin + rxmax) / 2;  // C++ division truncates towards zero, as wanted
            break;
        case AlignKind::CenterY:
            target = (rymin + rymax) / 2;
            break;
    }
    Expansion e = expandInstances(rows);
    for (int index : e.selected) {
        step_repeat_op& row = e.rows[index];
        const reply_box b = instanceBox(childBox(boxes, row.step_name), row);
        const long long xmin = truncated(b.xmin);
        const long long xmax = truncated(b.xmax);
        const long long ymin = truncated(b.ymin);
        const long long ymax = truncated(b.ymax);
        switch (kind) {
            case AlignKind::Left:
                row.x = clampInt(double(row.x + target - xmin));
                break;
            case AlignKind::Right:
                row.x = clampInt(double(row.x + target - xmax));
                break;
            case AlignKind::Top:
                row.y = clampInt(double(row.y + target - ymax));
                break;
            case AlignKind::Bottom:
                row.y = clampInt(double(row.y + target - ymin));
                break;
            case AlignKind::CenterX:
                row.x = clampInt(double(row.x + target - (xmin + xmax) / 2));
                break;
            case AlignKind::CenterY:
                row.y = clampInt(double(row.y + target - (ymin + ymax) / 2));
                break;
        }
    }
    return Outcome{Refusal::None, std::move(e.rows)};
}

// ---- packing ----------------------------------------------------------------------------------

Outcome do_align(const Rows& rows, PackEdge edge, const PanelFrame& frame,
                 const OutlinesOverlap& overlap) {
    return packWith(rows, frame, overlap, [&](Scene& scene) {
        std::vector<PackTask> tasks;
        tasks.reserve(scene.selected_boxes.size());
        const double limit = laneLimit(frame, edge);
        for (size_t k = 0; k < scene.selected_boxes.size(); ++k) {
            tasks.push_back({static_cast<int>(k), edge, limit});
        }
        packLane(scene, tasks, edge, frame.gap);
    });
}

Outcome packBothWays(const Rows& rows, Axis axis, const PanelFrame& frame,
                     const OutlinesOverlap& overlap) {
    return packWith(rows, frame, overlap,
                    [&](Scene& scene) { packSides(scene, axis, frame, false); });
}

Outcome packToCentre(const Rows& rows, Axis axis, const PanelFrame& frame,
                     const OutlinesOverlap& overlap) {
    return packWith(rows, frame, overlap,
                    [&](Scene& scene) { packSides(scene, axis, frame, true); });
}

// ---- space evenly -----------------------------------------------------------------------------

namespace {

// Groups of boxes that overlap across the axis, chained, as indices into `lanes`.
std::vector<std::vector<int>> crossAxisGroups(const std::vector<Lane>& lanes) {
    std::vector<int> order(lanes.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&](int a, int b) { return lanes[a].vlo < lanes[b].vlo; });
    std::vector<std::vector<int>> groups;
    double reach = std::numeric_limits<double>::lowest();
    for (int k : order) {
        if (groups.empty() || lanes[k].vlo >= reach) {
            groups.emplace_back();
            reach = lanes[k].vhi;
        }
        groups.back().push_back(k);
        reach = std::max(reach, lanes[k].vhi);
    }
    return groups;
}

Tree unselectedTree(const Scene& scene) {
    std::vector<Entry> entries;
    entries.reserve(scene.other_boxes.size());
    for (size_t k = 0; k < scene.other_boxes.size(); ++k) {
        entries.emplace_back(toBBox(scene.other_boxes[k]), static_cast<int>(k));
    }
    return Tree(entries);
}

// The shift along the axis of each box of `group` (sorted by lower edge) that spaces it evenly;
// empty when the group stays: no room beyond the boxes' extents, or a box would come to overlap
// an unselected instance.
std::vector<long long> evenShifts(const std::vector<int>& group, const std::vector<Lane>& lanes,
                                  const Scene& scene, bool h, const Tree& unselected) {
    double lowest = std::numeric_limits<double>::max();
    double highest = std::numeric_limits<double>::lowest();
    double extents = 0.0;
    for (int k : group) {
        lowest = std::min(lowest, lanes[k].ulo);
        highest = std::max(highest, lanes[k].uhi);
        extents += lanes[k].uhi - lanes[k].ulo;
    }
    const double span = highest - lowest;
    if (!(span > extents)) {
        return {};
    }
    const long long gap = truncated((span - extents) / double(group.size() - 1));
    std::vector<long long> shifts(group.size(), 0);
    double previous_high = lanes[group.front()].uhi;
    for (size_t g = 1; g < group.size(); ++g) {
        const Lane& l = lanes[group[g]];
        shifts[g] = static_cast<long long>(std::ceil(previous_high + gap - l.ulo));
        previous_high = l.uhi + shifts[g];
        reply_box moved = scene.selected_boxes[group[g]];
        (h ? moved.xmin : moved.ymin) += shifts[g];
        (h ? moved.xmax : moved.ymax) += shifts[g];
        if (shifts[g] != 0 &&
            unselected.qbegin(bgi::intersects(shrunk(moved))) != unselected.qend()) {
            return {};
        }
    }
    return shifts;
}

}  // namespace

Outcome arrange_selected_steps(const Rows& rows, Axis axis, const PanelFrame& frame) {
    if (!knowsAllSteps(rows, frame.child_boxes)) {
        return refused(rows, Refusal::UnknownStep);
    }
    Scene scene = sceneOf(rows, frame.child_boxes);
    const bool h = axis == Axis::Horizontal;
    const PackEdge along = h ? PackEdge::Left : PackEdge::Bottom;
    std::vector<Lane> lanes(scene.selected_boxes.size());
    for (size_t k = 0; k < lanes.size(); ++k) {
        lanes[k] = toLane(scene.selected_boxes[k], along);
    }
    const Tree unselected = unselectedTree(scene);
    for (std::vector<int>& group : crossAxisGroups(lanes)) {
        if (group.size() < 2) {
            continue;
        }
        std::sort(group.begin(), group.end(),
                  [&](int a, int b) { return lanes[a].ulo < lanes[b].ulo; });
        const std::vector<long long> shifts = evenShifts(group, lanes, scene, h, unselected);
        for (size_t g = 1; g < shifts.size(); ++g) {
            step_repeat_op& row = scene.expansion.rows[scene.expansion.selected[group[g]]];
            if (h) {
                row.x = clampInt(double(row.x) + shifts[g]);
            } else {
                row.y = clampInt(double(row.y) + shifts[g]);
            }
        }
    }
    return Outcome{Refusal::None, std::move(scene.expansion.rows)};
}

// ---- align to grid ----------------------------------------------------------------------------

namespace {

// Clusters of overlapping intervals; returns the cluster of every item and the least start of
// each cluster, clusters in ascending order.
std::vector<int> clusters(const std::vector<double>& lo, const std::vector<double>& hi,
                          std::vector<double>& starts) {
    std::vector<int> order(lo.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](int a, int b) { return lo[a] < lo[b]; });
    std::vector<int> of(lo.size(), 0);
    double reach = std::numeric_limits<double>::lowest();
    for (int k : order) {
        if (starts.empty() || lo[k] >= reach) {
            starts.push_back(lo[k]);
            reach = hi[k];
        }
        reach = std::max(reach, hi[k]);
        of[k] = static_cast<int>(starts.size()) - 1;
    }
    return of;
}

long long pitch(const std::vector<double>& starts, double extent) {
    if (starts.size() < 2) {
        return 0;
    }
    const long long mean = truncated((starts.back() - starts.front()) / double(starts.size() - 1));
    return std::max(mean, static_cast<long long>(std::ceil(extent)));
}

}  // namespace

Outcome alignToGrid(const Rows& rows, const PanelFrame& frame) {
    if (!knowsAllSteps(rows, frame.child_boxes)) {
        return refused(rows, Refusal::UnknownStep);
    }
    Expansion e = expandInstances(rows);
    if (e.selected.empty()) {
        return Outcome{Refusal::None, rows};
    }
    const step_repeat_op& first = e.rows[e.selected.front()];
    for (int index : e.selected) {
        const step_repeat_op& r = e.rows[index];
        if (r.step_name != first.step_name || normalAngle(r.angle) != normalAngle(first.angle) ||
            r.mirror != first.mirror) {
            return refused(rows, Refusal::NotAligned);
        }
    }
    const reply_box b0 = instanceBox(childBox(frame.child_boxes, first.step_name), first);
    const double width = b0.xmax - b0.xmin;
    const double height = b0.ymax - b0.ymin;
    const size_t n = e.selected.size();
    std::vector<double> xlo(n), xhi(n), ylo(n), yhi(n);
    for (size_t k = 0; k < n; ++k) {
        const step_repeat_op& r = e.rows[e.selected[k]];
        xlo[k] = r.x;
        xhi[k] = r.x + width;
        ylo[k] = r.y;
        yhi[k] = r.y + height;
    }
    std::vector<double> xs;
    std::vector<double> ys;
    const std::vector<int> column = clusters(xlo, xhi, xs);
    const std::vector<int> line = clusters(ylo, yhi, ys);
    const long long dx = pitch(xs, width);
    const long long dy = pitch(ys, height);
    const long long x0 = truncated(xs.front());
    const long long y0 = truncated(ys.front());
    std::vector<int> cells(xs.size() * ys.size(), 0);
    for (size_t k = 0; k < n; ++k) {
        step_repeat_op& r = e.rows[e.selected[k]];
        r.x = clampInt(double(x0 + column[k] * dx));
        r.y = clampInt(double(y0 + line[k] * dy));
        ++cells[column[k] + line[k] * xs.size()];
    }
    const bool regular = std::all_of(cells.begin(), cells.end(), [](int c) { return c == 1; });
    if (!regular) {
        return Outcome{Refusal::None, std::move(e.rows)};
    }
    // Every cell holds one instance: the selection becomes one array in place of its singles.
    Rows out;
    out.reserve(e.rows.size() - n + 1);
    std::vector<char> chosen(e.rows.size(), 0);
    for (int index : e.selected) {
        chosen[index] = 1;
    }
    for (size_t r = 0; r < e.rows.size(); ++r) {
        if (static_cast<int>(r) == e.selected.front()) {
            step_repeat_op array = e.rows[r];
            array.x = clampInt(double(x0));
            array.y = clampInt(double(y0));
            array.dx = clampInt(double(dx));
            array.dy = clampInt(double(dy));
            array.nx = static_cast<int32_t>(xs.size());
            array.ny = static_cast<int32_t>(ys.size());
            array.selection.clear();
            for (int k = 0; k < array.nx * array.ny; ++k) {
                array.selection.insert(k);
            }
            out.push_back(std::move(array));
        } else if (!chosen[r]) {
            out.push_back(std::move(e.rows[r]));
        }
    }
    return Outcome{Refusal::None, std::move(out)};
}

// ---- edits -----------------------------------------------------------------------------------

Outcome copyInstances(const Rows& rows, int dx, int dy, const PanelFrame& frame) {
    Expansion e = expandInstances(rows);
    if (dx == 0 && dy == 0 && !e.selected.empty()) {
        std::vector<reply_box> boxes;
        for (int index : e.selected) {
            const step_repeat_op& r = e.rows[index];
            boxes.push_back(instanceBox(childBox(frame.child_boxes, r.step_name), r));
        }
        const reply_box u = unionBox(boxes);
        dx = clampInt(std::ceil(u.xmax - u.xmin) + frame.gap);
    }
    Rows copies;
    for (int index : e.selected) {
        step_repeat_op& original = e.rows[index];
        step_repeat_op copy = original;
        copy.x = clampInt(double(copy.x) + dx);
        copy.y = clampInt(double(copy.y) + dy);
        original.selection.clear();
        copies.push_back(std::move(copy));
    }
    e.rows.insert(e.rows.end(), copies.begin(), copies.end());
    return Outcome{Refusal::None, std::move(e.rows)};
}

Outcome moveInstances(const Rows& rows, int dx, int dy) {
    Expansion e = expandInstances(rows);
    for (int index : e.selected) {
        step_repeat_op& r = e.rows[index];
        r.x = clampInt(double(r.x) + dx);
        r.y = clampInt(double(r.y) + dy);
    }
    return Outcome{Refusal::None, std::move(e.rows)};
}

Outcome deleteInstances(const Rows& rows) {
    Expansion e = expandInstances(rows);
    Rows kept;
    kept.reserve(e.rows.size() - e.selected.size());
    for (step_repeat_op& r : e.rows) {
        if (r.selection.empty()) {
            kept.push_back(std::move(r));
        }
    }
    return Outcome{Refusal::None, std::move(kept)};
}

namespace {

// The point each selected instance turns or mirrors about.
std::vector<point> anchors(const Expansion& e, Anchor anchor, const ChildBoxes& boxes) {
    std::vector<reply_box> own;
    own.reserve(e.selected.size());
    for (int index : e.selected) {
        const step_repeat_op& r = e.rows[index];
        own.push_back(instanceBox(childBox(boxes, r.step_name), r));
    }
    std::vector<point> out;
    const point set_centre = own.empty() ? point{} : boxMiddle(unionBox(own));
    for (size_t k = 0; k < e.selected.size(); ++k) {
        const step_repeat_op& r = e.rows[e.selected[k]];
        switch (anchor) {
            case Anchor::StepDatum:
                out.push_back({double(r.x), double(r.y)});
                break;
            case Anchor::StepCenter:
                out.push_back(boxMiddle(own[k]));
                break;
            case Anchor::CenterOfSet:
                out.push_back(set_centre);
                break;
        }
    }
    return out;
}

int32_t rounded(double v) {
    return clampInt(std::round(v));
}

}  // namespace

Outcome rotateInstances(const Rows& rows, int angle, Anchor anchor, const ChildBoxes& boxes) {
    if (angle < 0 || angle > 360) {
        return refused(rows, Refusal::AngleRange);
    }
    if (!knowsAllSteps(rows, boxes)) {
        return refused(rows, Refusal::UnknownStep);
    }
    Expansion e = expandInstances(rows);
    const std::vector<point> about = anchors(e, anchor, boxes);
    for (size_t k = 0; k < e.selected.size(); ++k) {
        step_repeat_op& r = e.rows[e.selected[k]];
        // Turning the placed instance about a point turns its datum about it too.
        const point turned = placePoint({r.x - about[k].x, r.y - about[k].y}, angle, false);
        r.x = rounded(about[k].x + turned.x);
        r.y = rounded(about[k].y + turned.y);
        r.angle = normalAngle(static_cast<long long>(r.angle) + angle);
    }
    return Outcome{Refusal::None, std::move(e.rows)};
}

Outcome mirrorInstances(const Rows& rows, MirrorKind kind, Anchor anchor, const ChildBoxes& boxes) {
    if (!knowsAllSteps(rows, boxes)) {
        return refused(rows, Refusal::UnknownStep);
    }
    Expansion e = expandInstances(rows);
    const std::vector<point> about =
        anchors(e, kind == MirrorKind::Flip ? Anchor::StepCenter : anchor, boxes);
    for (size_t k = 0; k < e.selected.size(); ++k) {
        step_repeat_op& r = e.rows[e.selected[k]];
        // A mirror across x turns a clockwise angle a into -a; across y into 180 - a.
        if (kind == MirrorKind::Vertical) {
            r.y = rounded(2.0 * about[k].y - r.y);
            r.angle = normalAngle(180LL - r.angle);
        } else {
            r.x = rounded(2.0 * about[k].x - r.x);
            r.angle = normalAngle(-static_cast<long long>(r.angle));
        }
        r.mirror = !r.mirror;
    }
    return Outcome{Refusal::None, std::move(e.rows)};
}

Outcome replaceInstances(const Rows& rows, const std::string& step, const ChildBoxes& boxes) {
    if (!knowsAllSteps(rows, boxes) || boxes.count(step) == 0) {
        return refused(rows, Refusal::UnknownStep);
    }
    Expansion e = expandInstances(rows);
    for (int index : e.selected) {
        step_repeat_op& r = e.rows[index];
        const point before = boxMiddle(instanceBox(childBox(boxes, r.step_name), r));
        r.step_name = step;
        const point after = boxMiddle(instanceBox(childBox(boxes, step), r));
        r.x = clampInt(r.x + std::trunc(before.x - after.x));
        r.y = clampInt(r.y + std::trunc(before.y - after.y));
    }
    return Outcome{Refusal::None, std::move(e.rows)};
}

int selectedEntry(const Rows& rows) {
    int found = -1;
    for (size_t r = 0; r < rows.size(); ++r) {
        if (rows[r].selection.empty()) {
            continue;
        }
        if (found >= 0) {
            return -2;
        }
        found = static_cast<int>(r);
    }
    return found;
}

Outcome modifyEntry(const Rows& rows, const step_repeat_op& entry) {
    const int index = selectedEntry(rows);
    if (index == -1) {
        return refused(rows, Refusal::NoEntry);
    }
    if (index == -2) {
        return refused(rows, Refusal::ManyEntries);
    }
    if (entry.nx < 1 || entry.ny < 1) {
        return refused(rows, Refusal::BadEntry);
    }
    Rows out = rows;
    step_repeat_op& r = out[index];
    r.x = entry.x;
    r.y = entry.y;
    r.dx = entry.dx;
    r.dy = entry.dy;
    r.nx = entry.nx;
    r.ny = entry.ny;
    r.angle = normalAngle(entry.angle);
    r.mirror = entry.mirror;
    for (auto it = r.selection.begin(); it != r.selection.end();) {
        it = *it >= r.nx * r.ny ? r.selection.erase(it) : std::next(it);
    }
    if (r.selection.empty()) {
        r.selection.insert(0);
    }
    return Outcome{Refusal::None, std::move(out)};
}

namespace {

// One level: every selected instance of a step with a table becomes that table, placed.
bool reduceOnce(Rows& rows, const std::map<std::string, Rows>& tables) {
    Expansion e = expandInstances(rows);
    Rows out;
    bool changed = false;
    std::vector<char> chosen(e.rows.size(), 0);
    for (int index : e.selected) {
        chosen[index] = 1;
    }
    for (size_t k = 0; k < e.rows.size(); ++k) {
        const step_repeat_op& parent = e.rows[k];
        auto table = tables.find(parent.step_name);
        if (!chosen[k] || table == tables.end() || table->second.empty()) {
            out.push_back(parent);
            continue;
        }
        changed = true;
        const bool plain = normalAngle(parent.angle) == 0 && !parent.mirror;
        for (const step_repeat_op& child : table->second) {
            if (plain) {
                step_repeat_op placed = child;
                placed.x = clampInt(double(parent.x) + child.x);
                placed.y = clampInt(double(parent.y) + child.y);
                placed.selection.clear();
                for (int s = 0; s < child.nx * child.ny; ++s) {
                    placed.selection.insert(s);
                }
                out.push_back(std::move(placed));
                continue;
            }
            for (int j = 0; j < child.ny; ++j) {
                for (int i = 0; i < child.nx; ++i) {
                    const point q{double(child.x) + double(i) * child.dx,
                                  double(child.y) + double(j) * child.dy};
                    const point p = placePoint(q, parent.angle, parent.mirror);
                    step_repeat_op placed = single(child, i, j, true);
                    placed.x = rounded(parent.x + p.x);
                    placed.y = rounded(parent.y + p.y);
                    // The parent's mirror reverses the child's turning sense.
                    placed.angle = normalAngle(static_cast<long long>(parent.angle) +
                                               (parent.mirror ? -child.angle : child.angle));
                    placed.mirror = parent.mirror != child.mirror;
                    out.push_back(std::move(placed));
                }
            }
        }
    }
    rows = std::move(out);
    return changed;
}

}  // namespace

Outcome reduceNesting(const Rows& rows, const std::map<std::string, Rows>& tables,
                      bool highest_only) {
    constexpr int kDeepest = 64;
    Rows out = rows;
    for (int level = 0; reduceOnce(out, tables); ++level) {
        if (highest_only) {
            break;
        }
        if (level >= kDeepest) {
            return refused(rows, Refusal::Nesting);
        }
    }
    return Outcome{Refusal::None, std::move(out)};
}

}  // namespace panel
}  // namespace wc

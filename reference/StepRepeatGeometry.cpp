#include "StepRepeatGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace wcref {

using Korvo::API::point;
using Korvo::API::reply_box;
using Korvo::API::step_repeat_op;

std::vector<RepeatInstance> expandRepeatRows(const std::vector<step_repeat_op>& rows) {
    std::vector<RepeatInstance> instances;
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const step_repeat_op& row = rows[r];
        for (int j = 0; j < row.ny; ++j) {
            for (int i = 0; i < row.nx; ++i) {
                RepeatInstance instance;
                instance.row = r;
                instance.index = i + j * row.nx;
                instance.i = i;
                instance.j = j;
                instance.position.x = static_cast<double>(row.x) + static_cast<double>(i) * row.dx;
                instance.position.y = static_cast<double>(row.y) + static_cast<double>(j) * row.dy;
                instance.angle = row.angle;
                instance.mirror = row.mirror;
                instances.push_back(instance);
            }
        }
    }
    return instances;
}

point placePoint(const point& p, double angle, bool mirror) {
    const double x = mirror ? -p.x : p.x;
    const double y = p.y;
    const double whole = std::fmod(angle, 360.0);
    const double normal = whole < 0 ? whole + 360.0 : whole;
    // Clockwise rotation; right angles stay exact so boxes of placed steps stay integral.
    if (normal == 0.0) {
        return {x, y};
    }
    if (normal == 90.0) {
        return {y, -x};
    }
    if (normal == 180.0) {
        return {-x, -y};
    }
    if (normal == 270.0) {
        return {-y, x};
    }
    const double radians = normal * M_PI / 180.0;
    const double c = std::cos(radians);
    const double s = std::sin(radians);
    return {x * c + y * s, -x * s + y * c};
}

reply_box boxOfPoints(const std::vector<point>& points) {
    reply_box box;
    if (points.empty()) {
        return box;
    }
    box.xmin = box.xmax = points.front().x;
    box.ymin = box.ymax = points.front().y;
    for (const point& p : points) {
        box.xmin = std::min(box.xmin, p.x);
        box.xmax = std::max(box.xmax, p.x);
        box.ymin = std::min(box.ymin, p.y);
        box.ymax = std::max(box.ymax, p.y);
    }
    return box;
}

reply_box instanceBox(const reply_box& child_box, const RepeatInstance& instance) {
    const point corners[4] = {{child_box.xmin, child_box.ymin},
                              {child_box.xmax, child_box.ymin},
                              {child_box.xmax, child_box.ymax},
                              {child_box.xmin, child_box.ymax}};
    std::vector<point> placed;
    for (const point& corner : corners) {
        point p = placePoint(corner, instance.angle, instance.mirror);
        p.x += instance.position.x;
        p.y += instance.position.y;
        placed.push_back(p);
    }
    return boxOfPoints(placed);
}

point boxCentre(const reply_box& box) {
    return {(box.xmin + box.xmax) / 2.0, (box.ymin + box.ymax) / 2.0};
}

bool boxContains(const reply_box& box, const point& p) {
    return p.x >= box.xmin && p.x <= box.xmax && p.y >= box.ymin && p.y <= box.ymax;
}

namespace {

double cross(const point& o, const point& a, const point& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

// Exact for collinear points given as integers in double, which is what outlines hold.
bool onSegment(const point& p, const point& a, const point& b) {
    return cross(a, b, p) == 0.0 && p.x >= std::min(a.x, b.x) && p.x <= std::max(a.x, b.x) &&
           p.y >= std::min(a.y, b.y) && p.y <= std::max(a.y, b.y);
}

int sign(double v) {
    return (v > 0) - (v < 0);
}

// True when the closed segments share a point; `where` receives one such point.
bool segmentsMeet(const point& a, const point& b, const point& c, const point& d, point& where) {
    const int d1 = sign(cross(c, d, a));
    const int d2 = sign(cross(c, d, b));
    const int d3 = sign(cross(a, b, c));
    const int d4 = sign(cross(a, b, d));
    if (d1 * d2 < 0 && d3 * d4 < 0) {
        const double t = cross(c, d, a) / (cross(c, d, a) - cross(c, d, b));
        where = {a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
        return true;
    }
    const point candidates[4] = {a, b, c, d};
    const bool hits[4] = {d1 == 0 && onSegment(a, c, d), d2 == 0 && onSegment(b, c, d),
                          d3 == 0 && onSegment(c, a, b), d4 == 0 && onSegment(d, a, b)};
    for (int k = 0; k < 4; ++k) {
        if (hits[k]) {
            where = candidates[k];
            return true;
        }
    }
    return false;
}

point nearestOnSegment(const point& p, const point& a, const point& b) {
    const double vx = b.x - a.x;
    const double vy = b.y - a.y;
    const double length2 = vx * vx + vy * vy;
    if (length2 == 0.0) {
        return a;
    }
    const double t = std::clamp(((p.x - a.x) * vx + (p.y - a.y) * vy) / length2, 0.0, 1.0);
    return {a.x + t * vx, a.y + t * vy};
}

double distance(const point& a, const point& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

bool pointInPolygon(const point& p, const std::vector<point>& polygon) {
    const size_t n = polygon.size();
    if (n == 0) {
        return false;
    }
    bool inside = false;
    for (size_t k = 0, prev = n - 1; k < n; prev = k++) {
        const point& a = polygon[prev];
        const point& b = polygon[k];
        if (onSegment(p, a, b)) {
            return true;
        }
        if ((a.y > p.y) != (b.y > p.y)) {
            const double x = a.x + (p.y - a.y) * (b.x - a.x) / (b.y - a.y);
            if (p.x < x) {
                inside = !inside;
            }
        }
    }
    return inside;
}

double polygonDistance(const std::vector<point>& first, const std::vector<point>& second,
                       point& on_first, point& on_second) {
    if (first.empty() || second.empty()) {
        return -1.0;
    }
    const size_t n = first.size();
    const size_t m = second.size();
    double best = std::numeric_limits<double>::infinity();
    for (size_t i = 0; i < n; ++i) {
        const point& a = first[i];
        const point& b = first[(i + 1) % n];
        for (size_t k = 0; k < m; ++k) {
            const point& c = second[k];
            const point& d = second[(k + 1) % m];
            point where;
            if (segmentsMeet(a, b, c, d, where)) {
                on_first = on_second = where;
                return 0.0;
            }
            // Segments that do not meet are nearest at an end point of one of them.
            const point pairs[4][2] = {{a, nearestOnSegment(a, c, d)},
                                       {b, nearestOnSegment(b, c, d)},
                                       {nearestOnSegment(c, a, b), c},
                                       {nearestOnSegment(d, a, b), d}};
            for (const auto& pair : pairs) {
                const double dist = distance(pair[0], pair[1]);
                if (dist < best) {
                    best = dist;
                    on_first = pair[0];
                    on_second = pair[1];
                }
            }
        }
    }
    if (n >= 3 && pointInPolygon(second.front(), first)) {
        on_first = on_second = second.front();
        return 0.0;
    }
    if (m >= 3 && pointInPolygon(first.front(), second)) {
        on_first = on_second = first.front();
        return 0.0;
    }
    return best;
}

}  // namespace wcref

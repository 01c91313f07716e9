#include "CopperGeometry.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::point;

namespace {

constexpr double kPi = 3.14159265358979323846;

point add(const point& a, const point& b) {
    return {a.x + b.x, a.y + b.y};
}
point sub(const point& a, const point& b) {
    return {a.x - b.x, a.y - b.y};
}
point scale(const point& a, double f) {
    return {a.x * f, a.y * f};
}
double dot(const point& a, const point& b) {
    return a.x * b.x + a.y * b.y;
}
double length(const point& a) {
    return std::hypot(a.x, a.y);
}

// Clockwise rotation by `degrees` and an optional mirror in x, as pads are placed.
point orient(const point& p, double degrees, bool mirror) {
    const double x = mirror ? -p.x : p.x;
    const double r = -degrees * kPi / 180.0;
    return {x * std::cos(r) - p.y * std::sin(r), x * std::sin(r) + p.y * std::cos(r)};
}

// Outline of a standard symbol about the origin, counter-clockwise.
std::vector<point> symbolOutline(const SymbolSize& size) {
    const double w = size.width / 2;
    const double h = size.height / 2;
    if (size.kind == SymbolSize::square || size.kind == SymbolSize::rectangle) {
        return {{-w, -h}, {w, -h}, {w, h}, {-w, h}};
    }
    // Round and oval: a capsule along the longer side, flattened.
    const double r = std::min(w, h);
    const point a = w >= h ? point{-(w - r), 0} : point{0, -(h - r)};
    const point b = w >= h ? point{w - r, 0} : point{0, h - r};
    std::vector<point> out;
    const std::vector<point> first =
        CopperGeometry::arcPoints(add(b, w >= h ? point{0, -r} : point{r, 0}),
                                  add(b, w >= h ? point{0, r} : point{-r, 0}), b, false);
    const std::vector<point> second =
        CopperGeometry::arcPoints(add(a, w >= h ? point{0, r} : point{-r, 0}),
                                  add(a, w >= h ? point{0, -r} : point{r, 0}), a, false);
    out.insert(out.end(), first.begin(), first.end());
    out.insert(out.end(), second.begin(), second.end());
    return out;
}

GeoPolygon polygonOf(const std::vector<point>& outline,
                     const std::vector<std::vector<point>>& holes = {}) {
    GeoPolygon polygon;
    for (const point& p : outline) {
        polygon.outer().emplace_back(p.x, p.y);
    }
    for (const std::vector<point>& hole : holes) {
        polygon.inners().emplace_back();
        for (const point& p : hole) {
            polygon.inners().back().emplace_back(p.x, p.y);
        }
    }
    bg::correct(polygon);
    return polygon;
}

GeoPolygon hullOf(const std::vector<point>& points) {
    bg::model::multi_point<GeoPoint> cloud;
    for (const point& p : points) {
        cloud.emplace_back(p.x, p.y);
    }
    GeoPolygon hull;
    bg::convex_hull(cloud, hull);
    return hull;
}

void expand(GeoBox& box, bool& first, const GeoBox& more) {
    if (first) {
        box = more;
        first = false;
    } else {
        bg::expand(box, more);
    }
}

GeoBox capsuleBox(const Capsule& c) {
    return GeoBox(GeoPoint(std::min(c.a.x, c.b.x) - c.radius, std::min(c.a.y, c.b.y) - c.radius),
                  GeoPoint(std::max(c.a.x, c.b.x) + c.radius, std::max(c.a.y, c.b.y) + c.radius));
}

// Calls `visit(p, q)` for every edge of every ring of the polygon.
template <typename Visit>
void forEachEdge(const GeoPolygon& polygon, Visit visit) {
    const auto ring = [&visit](const GeoPolygon::ring_type& r) {
        for (size_t k = 0; k + 1 < r.size(); ++k) {
            visit(point{r[k].x(), r[k].y()}, point{r[k + 1].x(), r[k + 1].y()});
        }
    };
    ring(polygon.outer());
    for (const auto& inner : polygon.inners()) {
        ring(inner);
    }
}

struct Best {
    double distance = std::numeric_limits<double>::infinity();
    point a;
    point b;
    void offer(double d, const point& pa, const point& pb) {
        if (d < distance) {
            distance = d;
            a = pa;
            b = pb;
        }
    }
};

// Capsule against capsule: exact.
void capsuleCapsule(const Capsule& x, const Capsule& y, Best& best) {
    point cx;
    point cy;
    const double axis = CopperGeometry::segmentDistance(x.a, x.b, y.a, y.b, cx, cy);
    const double d = axis - x.radius - y.radius;
    if (d <= 0) {
        best.offer(0.0, cx, cy);
        return;
    }
    const point direction = scale(sub(cy, cx), 1.0 / axis);
    best.offer(d, add(cx, scale(direction, x.radius)), sub(cy, scale(direction, y.radius)));
}

// Capsule against polygon: the capsule's axis against the polygon's edges, less the radius.
void capsulePolygon(const Capsule& c, const GeoPolygon& polygon, Best& best) {
    const GeoPoint a(c.a.x, c.a.y);
    if (bg::covered_by(a, polygon)) {
        best.offer(0.0, c.a, c.a);
        return;
    }
    Best axis;
    forEachEdge(polygon, [&](const point& p, const point& q) {
        point on_axis;
        point on_edge;
        const double d = CopperGeometry::segmentDistance(c.a, c.b, p, q, on_axis, on_edge);
        axis.offer(d, on_axis, on_edge);
    });
    if (axis.distance - c.radius <= 0) {
        best.offer(0.0, axis.b, axis.b);
        return;
    }
    const point direction = scale(sub(axis.b, axis.a), 1.0 / axis.distance);
    best.offer(axis.distance - c.radius, add(axis.a, scale(direction, c.radius)), axis.b);
}

void polygonPolygon(const GeoPolygon& x, const GeoPolygon& y, Best& best) {
    if (bg::intersects(x, y)) {
        // A common point: a vertex of one inside the other, else where two edges cross.
        for (const GeoPoint& v : x.outer()) {
            if (bg::covered_by(v, y)) {
                best.offer(0.0, {v.x(), v.y()}, {v.x(), v.y()});
                return;
            }
        }
        for (const GeoPoint& v : y.outer()) {
            if (bg::covered_by(v, x)) {
                best.offer(0.0, {v.x(), v.y()}, {v.x(), v.y()});
                return;
            }
        }
    }
    forEachEdge(x, [&](const point& p1, const point& q1) {
        forEachEdge(y, [&](const point& p2, const point& q2) {
            point c1;
            point c2;
            const double d = CopperGeometry::segmentDistance(p1, q1, p2, q2, c1, c2);
            best.offer(d, c1, c2);
        });
    });
}

}  // namespace

SymbolSize CopperGeometry::parseSymbol(const std::string& name) {
    SymbolSize size;
    const auto number = [](const char* text, double& value, const char** rest) {
        char* end = nullptr;
        value = std::strtod(text, &end);
        *rest = end;
        return end != text && value > 0 && std::isfinite(value);
    };
    const char* rest = nullptr;
    double w = 0;
    double h = 0;
    const auto sized = [&](const char* prefix, SymbolSize::Kind kind, bool two) {
        const size_t n = std::char_traits<char>::length(prefix);
        if (name.compare(0, n, prefix) != 0 || !number(name.c_str() + n, w, &rest)) {
            return false;
        }
        if (two) {
            if (*rest != 'x' || !number(rest + 1, h, &rest)) {
                return false;
            }
        } else {
            h = w;
        }
        if (*rest != '\0') {
            return false;
        }
        size.kind = kind;
        size.width = w * kNmPerMil;
        size.height = h * kNmPerMil;
        return true;
    };
    if (sized("rect", SymbolSize::rectangle, true) || sized("oval", SymbolSize::oval, true) ||
        sized("r", SymbolSize::round, false) || sized("s", SymbolSize::square, false)) {
        return size;
    }
    return SymbolSize{};
}

std::string CopperGeometry::milText(double nanometres) {
    char text[64];
    std::snprintf(text, sizeof text, "%.6f", nanometres / kNmPerMil);
    std::string out = text;
    out.erase(out.find_last_not_of('0') + 1);
    if (!out.empty() && out.back() == '.') {
        out.pop_back();
    }
    return out;
}

std::string CopperGeometry::symbolName(SymbolSize::Kind kind, double width, double height) {
    switch (kind) {
        case SymbolSize::round:
            return "r" + milText(width);
        case SymbolSize::square:
            return "s" + milText(width);
        case SymbolSize::rectangle:
            return "rect" + milText(width) + "x" + milText(height);
        case SymbolSize::oval:
            return "oval" + milText(width) + "x" + milText(height);
        case SymbolSize::none:
            break;
    }
    return {};
}

std::vector<point> CopperGeometry::arcPoints(const point& start, const point& end,
                                             const point& centre, bool clockwise,
                                             double radius_extra) {
    const double radius = length(sub(start, centre));
    double a0 = std::atan2(start.y - centre.y, start.x - centre.x);
    double a1 = std::atan2(end.y - centre.y, end.x - centre.x);
    double sweep = clockwise ? a0 - a1 : a1 - a0;
    while (sweep <= 1e-12) {
        sweep += 2 * kPi;  // equal ends make a full circle
    }
    const double outer = radius + radius_extra;
    double step = 2 * kPi;
    if (outer > kMaxChordError) {
        step = 2 * std::acos(1.0 - kMaxChordError / outer);
    }
    const int pieces = std::max(1, static_cast<int>(std::ceil(sweep / step)));
    std::vector<point> out;
    out.reserve(pieces + 1);
    for (int k = 0; k <= pieces; ++k) {
        const double t = a0 + (clockwise ? -1 : 1) * sweep * k / pieces;
        out.push_back({centre.x + radius * std::cos(t), centre.y + radius * std::sin(t)});
    }
    out.front() = start;
    out.back() = end;
    return out;
}

CopperShape CopperGeometry::copperOf(const featureInfo& f) {
    CopperShape shape;
    const SymbolSize size = parseSymbol(f.symbol);
    switch (f.type) {
        case Korvo::API::feature_pad:
            if (f.contour.size() >= 3) {
                shape.polygons.push_back(polygonOf(f.contour, f.holes));
            } else if (size.kind == SymbolSize::round) {
                shape.capsules.push_back({f.start, f.start, size.width / 2});
            } else if (size.kind == SymbolSize::oval) {
                const double r = std::min(size.width, size.height) / 2;
                const point half = size.width >= size.height ? point{size.width / 2 - r, 0}
                                                             : point{0, size.height / 2 - r};
                shape.capsules.push_back({add(f.start, orient(scale(half, -1), f.angle, f.mirror)),
                                          add(f.start, orient(half, f.angle, f.mirror)), r});
            } else if (size.kind != SymbolSize::none) {
                std::vector<point> outline;
                for (const point& p : symbolOutline(size)) {
                    outline.push_back(add(f.start, orient(p, f.angle, f.mirror)));
                }
                shape.polygons.push_back(polygonOf(outline));
            }
            break;
        case Korvo::API::feature_line:
        case Korvo::API::feature_arc: {
            std::vector<point> axis{f.start, f.end};
            if (f.type == Korvo::API::feature_arc) {
                axis = arcPoints(f.start, f.end, f.center, f.clockwise, size.width / 2);
            }
            if (size.kind == SymbolSize::round) {
                // Chords cut inside the arc: widen them by the sagitta of the outer edge so
                // that the flattened arc covers the true one and what touches it still does.
                double widen = 0;
                if (f.type == Korvo::API::feature_arc && axis.size() > 1) {
                    const double r = length(sub(f.start, f.center));
                    const double half_chord = length(sub(axis[1], axis[0])) / 2;
                    if (r > 0 && half_chord < r) {
                        widen = (r - std::sqrt(r * r - half_chord * half_chord)) *
                                (r + size.width / 2) / r;
                    }
                }
                for (size_t k = 0; k + 1 < axis.size(); ++k) {
                    shape.capsules.push_back({axis[k], axis[k + 1], size.width / 2 + widen});
                }
            } else if (size.kind != SymbolSize::none) {
                const std::vector<point> outline = symbolOutline(size);
                for (size_t k = 0; k + 1 < axis.size(); ++k) {
                    std::vector<point> ends;
                    for (const point& p : outline) {
                        ends.push_back(add(axis[k], p));
                        ends.push_back(add(axis[k + 1], p));
                    }
                    shape.polygons.push_back(hullOf(ends));
                }
            }
            break;
        }
        case Korvo::API::feature_surface:
            if (f.contour.size() >= 3) {
                shape.polygons.push_back(polygonOf(f.contour, f.holes));
            }
            break;
        case Korvo::API::feature_text:
            break;  // texts are not copper the checks measure
    }
    bool first = true;
    for (const Capsule& c : shape.capsules) {
        expand(shape.box, first, capsuleBox(c));
    }
    for (const GeoPolygon& p : shape.polygons) {
        for (const GeoPoint& v : p.outer()) {
            expand(shape.box, first, GeoBox(v, v));
        }
    }
    return shape;
}

double CopperGeometry::distance(const CopperShape& a, const CopperShape& b, point& on_a,
                                point& on_b) {
    Best best;
    for (const Capsule& x : a.capsules) {
        for (const Capsule& y : b.capsules) {
            capsuleCapsule(x, y, best);
        }
        for (const GeoPolygon& y : b.polygons) {
            capsulePolygon(x, y, best);
        }
    }
    for (const GeoPolygon& x : a.polygons) {
        for (const Capsule& y : b.capsules) {
            Best swapped;
            capsulePolygon(y, x, swapped);
            best.offer(swapped.distance, swapped.b, swapped.a);
        }
        for (const GeoPolygon& y : b.polygons) {
            polygonPolygon(x, y, best);
        }
    }
    on_a = best.a;
    on_b = best.b;
    return best.distance;
}

// Closest points of two segments (after Ericson, Real-Time Collision Detection, 5.1.9).
double CopperGeometry::segmentDistance(const point& p1, const point& q1, const point& p2,
                                       const point& q2, point& c1, point& c2) {
    const point d1 = sub(q1, p1);
    const point d2 = sub(q2, p2);
    const point r = sub(p1, p2);
    const double a = dot(d1, d1);
    const double e = dot(d2, d2);
    const double f = dot(d2, r);
    double s = 0;
    double t = 0;
    const double tiny = 1e-18;
    if (a <= tiny && e <= tiny) {
        c1 = p1;
        c2 = p2;
        return length(sub(c1, c2));
    }
    if (a <= tiny) {
        t = std::clamp(f / e, 0.0, 1.0);
    } else {
        const double c = dot(d1, r);
        if (e <= tiny) {
            s = std::clamp(-c / a, 0.0, 1.0);
        } else {
            const double b = dot(d1, d2);
            const double denom = a * e - b * b;
            s = denom > tiny * a * e ? std::clamp((b * f - c * e) / denom, 0.0, 1.0) : 0.0;
            t = (b * s + f) / e;
            if (t < 0) {
                t = 0;
                s = std::clamp(-c / a, 0.0, 1.0);
            } else if (t > 1) {
                t = 1;
                s = std::clamp((b - c) / a, 0.0, 1.0);
            }
        }
    }
    c1 = add(p1, scale(d1, s));
    c2 = add(p2, scale(d2, t));
    return length(sub(c1, c2));
}

}  // namespace wcref

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

// The point of the band's middle arc at `angle`.
point arcAt(const ArcBand& arc, double angle) {
    return {arc.centre.x + arc.radius * std::cos(angle),
            arc.centre.y + arc.radius * std::sin(angle)};
}

// Whether the direction `angle` lies within the arc's sweep.
bool inSweep(const ArcBand& arc, double angle) {
    constexpr double kSlack = 1e-12;
    double turn = std::fmod(angle - arc.start, 2 * kPi);
    if (turn < 0) {
        turn += 2 * kPi;
    }
    return turn <= arc.sweep + kSlack || turn >= 2 * kPi - kSlack;
}

// Whether the ray from the arc's centre through `x` crosses the arc.
bool inSweep(const ArcBand& arc, const point& x) {
    return inSweep(arc, std::atan2(x.y - arc.centre.y, x.x - arc.centre.x));
}

GeoBox arcBox(const ArcBand& arc) {
    const point a = arcAt(arc, arc.start);
    const point b = arcAt(arc, arc.start + arc.sweep);
    GeoBox box(GeoPoint(std::min(a.x, b.x), std::min(a.y, b.y)),
               GeoPoint(std::max(a.x, b.x), std::max(a.y, b.y)));
    for (int k = 0; k < 4; ++k) {  // the extreme points the arc passes
        if (inSweep(arc, k * kPi / 2)) {
            const point p = arcAt(arc, k * kPi / 2);
            bg::expand(box, GeoPoint(p.x, p.y));
        }
    }
    return grown(box, arc.half_width);
}

// Distance from `p` to the middle arc and the arc point that realises it: the radial
// projection when it falls within the sweep, else the nearer end.
double pointArc(const point& p, const ArcBand& arc, point& on_arc) {
    const point v = sub(p, arc.centre);
    const double r = length(v);
    if (r > 0 && inSweep(arc, std::atan2(v.y, v.x))) {
        on_arc = add(arc.centre, scale(v, arc.radius / r));
        return std::abs(r - arc.radius);
    }
    const point a = arcAt(arc, arc.start);
    const point b = arcAt(arc, arc.start + arc.sweep);
    const double da = length(sub(p, a));
    const double db = length(sub(p, b));
    on_arc = da <= db ? a : b;
    return std::min(da, db);
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

// The closest pair found so far. Among pairs equally close (to a femtometre), one taken
// halfway along parallel edges or concentric arcs is kept: there the gap is shown and judged
// away from the ends, where other copper may close it.
struct Best {
    double distance = std::numeric_limits<double>::infinity();
    point a;
    point b;
    bool centred = false;
    void offer(double d, const point& pa, const point& pb, bool is_centred = false) {
        constexpr double kTie = 1e-6;
        if (d < distance - kTie || (d <= distance + kTie && (is_centred || !centred) &&
                                    (d < distance || (is_centred && !centred)))) {
            distance = d;
            a = pa;
            b = pb;
            centred = is_centred;
        }
    }
};

// Closest points of two segments. Parallel segments whose projections overlap are closest
// along a whole stretch: take its middle, so that a gap between parallel edges is shown, and
// judged, halfway along rather than at one end where other copper may close it.
double closestCentred(const point& p1, const point& q1, const point& p2, const point& q2, point& c1,
                      point& c2, bool& centred) {
    centred = false;
    const double d = CopperGeometry::segmentDistance(p1, q1, p2, q2, c1, c2);
    const point u = sub(q1, p1);
    const point v = sub(q2, p2);
    const double cross = u.x * v.y - u.y * v.x;
    const double uu = dot(u, u);
    const double vv = dot(v, v);
    if (uu <= 0 || vv <= 0 || cross * cross > 1e-24 * uu * vv) {
        return d;
    }
    const double lu = std::sqrt(uu);
    const double lv = std::sqrt(vv);
    const point e = scale(u, 1.0 / lu);
    const double s0 = dot(sub(p2, p1), e);
    const double s1 = dot(sub(q2, p1), e);
    const double lo = std::max(0.0, std::min(s0, s1));
    const double hi = std::min(lu, std::max(s0, s1));
    if (hi <= lo) {
        return d;
    }
    c1 = add(p1, scale(e, (lo + hi) / 2));
    const point f = scale(v, 1.0 / lv);
    c2 = add(p2, scale(f, std::clamp(dot(sub(c1, p2), f), 0.0, lv)));
    centred = true;
    return length(sub(c1, c2));
}

// Two middle lines `axis` apart at `cx` and `cy`, widened by `rx` and `ry`: the copper's
// distance and points, exact because a widened curve's edge lies along the normal.
void offerWidened(double axis, const point& cx, const point& cy, double rx, double ry, Best& best,
                  bool centred = false) {
    const double d = axis - rx - ry;
    if (d <= 0) {
        best.offer(0.0, cx, cy);
        return;
    }
    const point direction = scale(sub(cy, cx), 1.0 / axis);
    best.offer(d, add(cx, scale(direction, rx)), sub(cy, scale(direction, ry)), centred);
}

// Capsule against capsule: exact.
void capsuleCapsule(const Capsule& x, const Capsule& y, Best& best) {
    point cx;
    point cy;
    bool centred = false;
    const double axis = closestCentred(x.a, x.b, y.a, y.b, cx, cy, centred);
    offerWidened(axis, cx, cy, x.radius, y.radius, best, centred);
}

void arcCapsule(const ArcBand& x, const Capsule& y, Best& best) {
    point cx;
    point cy;
    const double axis = CopperGeometry::arcSegmentDistance(x, y.a, y.b, cx, cy);
    offerWidened(axis, cx, cy, x.half_width, y.radius, best);
}

void arcArc(const ArcBand& x, const ArcBand& y, Best& best) {
    point cx;
    point cy;
    const double axis = CopperGeometry::arcArcDistance(x, y, cx, cy);
    const bool concentric = x.centre.x == y.centre.x && x.centre.y == y.centre.y;
    offerWidened(axis, cx, cy, x.half_width, y.half_width, best, concentric);
}

// Arc band against polygon: the middle arc against the polygon's edges, less the half width;
// 0 when the arc starts inside the polygon (then it crosses no edge or lies inside).
void arcPolygon(const ArcBand& arc, const GeoPolygon& polygon, Best& best) {
    const point start = arcAt(arc, arc.start);
    if (bg::covered_by(GeoPoint(start.x, start.y), polygon)) {
        best.offer(0.0, start, start);
        return;
    }
    Best axis;
    forEachEdge(polygon, [&](const point& p, const point& q) {
        // No nearer than the edge is to the whole circle: skip edges that cannot do better.
        point on_arc;
        point on_edge;
        const double inner =
            CopperGeometry::segmentDistance(p, q, arc.centre, arc.centre, on_edge, on_arc);
        const double outer = std::max(length(sub(p, arc.centre)), length(sub(q, arc.centre)));
        if (std::max({0.0, inner - arc.radius, arc.radius - outer}) >= axis.distance) {
            return;
        }
        const double d = CopperGeometry::arcSegmentDistance(arc, p, q, on_arc, on_edge);
        axis.offer(d, on_arc, on_edge);
    });
    if (axis.distance - arc.half_width <= 0) {
        best.offer(0.0, axis.b, axis.b);
        return;
    }
    const point direction = scale(sub(axis.b, axis.a), 1.0 / axis.distance);
    best.offer(axis.distance - arc.half_width, add(axis.a, scale(direction, arc.half_width)),
               axis.b);
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
        bool centred = false;
        const double d = closestCentred(c.a, c.b, p, q, on_axis, on_edge, centred);
        axis.offer(d, on_axis, on_edge, centred);
    });
    if (axis.distance - c.radius <= 0) {
        best.offer(0.0, axis.b, axis.b);
        return;
    }
    const point direction = scale(sub(axis.b, axis.a), 1.0 / axis.distance);
    best.offer(axis.distance - c.radius, add(axis.a, scale(direction, c.radius)), axis.b,
               axis.centred);
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
            bool centred = false;
            const double d = closestCentred(p1, q1, p2, q2, c1, c2, centred);
            best.offer(d, c1, c2, centred);
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
            const double half = size.width / 2;
            const bool arc = f.type == Korvo::API::feature_arc;
            if (arc && size.kind == SymbolSize::round && length(sub(f.start, f.center)) >= 1.0) {
                const ArcBand band = arcBand(f.start, f.end, f.center, f.clockwise, half);
                shape.arcs.push_back(band);
                // The file's end point off the arc's circle: join it to the arc's end.
                const point end = arcAt(band, f.clockwise ? band.start : band.start + band.sweep);
                if (length(sub(end, f.end)) > 0.25) {
                    shape.capsules.push_back({end, f.end, half});
                }
                break;
            }
            std::vector<point> axis{f.start, f.end};
            if (arc && length(sub(f.start, f.center)) >= 1.0) {
                axis = arcPoints(f.start, f.end, f.center, f.clockwise, half);
            }
            if (size.kind == SymbolSize::round) {
                shape.capsules.push_back({axis.front(), axis.back(), half});
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
    for (const ArcBand& a : shape.arcs) {
        expand(shape.box, first, arcBox(a));
    }
    for (const GeoPolygon& p : shape.polygons) {
        for (const GeoPoint& v : p.outer()) {
            expand(shape.box, first, GeoBox(v, v));
        }
    }
    return shape;
}

CopperShape CopperGeometry::pointShape(const point& p) {
    CopperShape shape;
    shape.capsules.push_back({p, p, 0.0});
    shape.box = GeoBox(GeoPoint(p.x, p.y), GeoPoint(p.x, p.y));
    return shape;
}

ArcBand CopperGeometry::arcBand(const point& start, const point& end, const point& centre,
                                bool clockwise, double half_width) {
    const double a0 = std::atan2(start.y - centre.y, start.x - centre.x);
    const double a1 = std::atan2(end.y - centre.y, end.x - centre.x);
    double sweep = clockwise ? a0 - a1 : a1 - a0;
    while (sweep <= 1e-12) {
        sweep += 2 * kPi;  // equal ends make a full circle, as in arcPoints
    }
    ArcBand band;
    band.centre = centre;
    band.radius = length(sub(start, centre));
    band.start = clockwise ? a1 : a0;
    band.sweep = std::min(sweep, 2 * kPi);
    band.half_width = half_width;
    return band;
}

double CopperGeometry::arcSegmentDistance(const ArcBand& arc, const point& p, const point& q,
                                          point& on_arc, point& on_segment) {
    Best best;
    point on;
    // The segment's ends against the arc, the arc's ends against the segment.
    best.offer(pointArc(p, arc, on), on, p);
    best.offer(pointArc(q, arc, on), on, q);
    for (const double angle : {arc.start, arc.start + arc.sweep}) {
        const point e = arcAt(arc, angle);
        point c;
        point same;
        best.offer(segmentDistance(p, q, e, e, c, same), e, c);
    }
    const point d = sub(q, p);
    const double dd = dot(d, d);
    if (dd > 0 && best.distance > 0) {
        // Inside both: the segment point nearest the centre, and the arc point on its radius;
        // or where the segment crosses the circle.
        const double t = dot(sub(arc.centre, p), d) / dd;
        const point foot = add(p, scale(d, t));
        const point radial = sub(foot, arc.centre);
        const double h = length(radial);
        if (t > 0 && t < 1 && h > 0 && inSweep(arc, std::atan2(radial.y, radial.x))) {
            best.offer(std::abs(h - arc.radius), add(arc.centre, scale(radial, arc.radius / h)),
                       foot);
        }
        if (h <= arc.radius) {
            const double along = std::sqrt(arc.radius * arc.radius - h * h) / std::sqrt(dd);
            for (const double s : {t - along, t + along}) {
                const point x = add(p, scale(d, s));
                if (s >= 0 && s <= 1 && inSweep(arc, x)) {
                    best.offer(0.0, x, x);
                }
            }
        }
    }
    on_arc = best.a;
    on_segment = best.b;
    return best.distance;
}

double CopperGeometry::arcArcDistance(const ArcBand& a, const ArcBand& b, point& on_a,
                                      point& on_b) {
    Best best;
    point on;
    const point v = sub(b.centre, a.centre);
    const double gap = length(v);
    if (gap == 0) {
        // Concentric: where the sweeps share directions the radii differ by the distance; take
        // the middle of the shared turn that starts at one arc's start.
        for (const auto& first : {std::make_pair(&a, &b), std::make_pair(&b, &a)}) {
            const ArcBand& x = *first.first;
            const ArcBand& y = *first.second;
            if (!inSweep(y, x.start)) {
                continue;
            }
            double into = std::fmod(x.start - y.start, 2 * kPi);
            if (into < 0) {
                into += 2 * kPi;
            }
            const double shared = std::min(x.sweep, std::max(0.0, y.sweep - into));
            const double angle = x.start + shared / 2;
            best.offer(std::abs(a.radius - b.radius), arcAt(a, angle), arcAt(b, angle), true);
            break;
        }
    }
    // Each arc's ends against the other arc.
    for (const double angle : {a.start, a.start + a.sweep}) {
        const point e = arcAt(a, angle);
        best.offer(pointArc(e, b, on), e, on);
    }
    for (const double angle : {b.start, b.start + b.sweep}) {
        const point e = arcAt(b, angle);
        best.offer(pointArc(e, a, on), on, e);
    }
    if (gap > 0) {
        // Inside both sweeps, closest points lie on the line through the two centres.
        const double towards = std::atan2(v.y, v.x);
        for (const double ta : {towards, towards + kPi}) {
            for (const double tb : {towards, towards + kPi}) {
                if (inSweep(a, ta) && inSweep(b, tb)) {
                    const point pa = arcAt(a, ta);
                    const point pb = arcAt(b, tb);
                    best.offer(length(sub(pa, pb)), pa, pb);
                }
            }
        }
        // Where the circles cross.
        if (gap <= a.radius + b.radius && gap >= std::abs(a.radius - b.radius)) {
            const double along =
                (gap * gap + a.radius * a.radius - b.radius * b.radius) / (2 * gap);
            const double across = std::sqrt(std::max(0.0, a.radius * a.radius - along * along));
            const point u = scale(v, 1.0 / gap);
            const point base = add(a.centre, scale(u, along));
            for (const double side : {-1.0, 1.0}) {
                const point x = add(base, scale(point{-u.y, u.x}, side * across));
                if (inSweep(a, x) && inSweep(b, x)) {
                    best.offer(0.0, x, x);
                }
            }
        }
    }
    on_a = best.a;
    on_b = best.b;
    return best.distance;
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
    for (const ArcBand& x : a.arcs) {
        for (const Capsule& y : b.capsules) {
            arcCapsule(x, y, best);
        }
        for (const ArcBand& y : b.arcs) {
            arcArc(x, y, best);
        }
        for (const GeoPolygon& y : b.polygons) {
            arcPolygon(x, y, best);
        }
    }
    for (const ArcBand& y : b.arcs) {
        Best swapped;
        for (const Capsule& x : a.capsules) {
            arcCapsule(y, x, swapped);
        }
        for (const GeoPolygon& x : a.polygons) {
            arcPolygon(y, x, swapped);
        }
        best.offer(swapped.distance, swapped.b, swapped.a, swapped.centred);
    }
    for (const GeoPolygon& x : a.polygons) {
        for (const Capsule& y : b.capsules) {
            Best swapped;
            capsulePolygon(y, x, swapped);
            best.offer(swapped.distance, swapped.b, swapped.a, swapped.centred);
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

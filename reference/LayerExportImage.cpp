#include "LayerExportImage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <numeric>
#include <regex>

#include "CopperGeometry.h"
#include "DrillFormat.h"

// GLib's allocator (linked through libgerbv): gerbv_destroy_image frees what an image holds
// with g_free.
extern "C" {
void* g_malloc0(size_t size);
}

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::point;

namespace {

constexpr double kNmPerInch = 25400000.0;
constexpr double kPi = 3.14159265358979323846;
// Points of one outline primitive at most: libgerbv keeps 102 parameters per primitive
// (APERTURE_PARAMETERS_MAX), that is 48 points, and drops the rest of a longer outline when it
// reads one. Longer outlines are written as several primitives.
constexpr size_t kOutlinePoints = 40;

using Ring = std::vector<point>;

template <class T>
T* allocate() {
    return static_cast<T*>(g_malloc0(sizeof(T)));
}

double inch(double nm) {
    return nm / kNmPerInch;
}

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.7f", value);
    return text;
}

double cross(const point& o, const point& a, const point& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double area(const Ring& ring) {
    double twice = 0.0;
    for (size_t k = 0; k < ring.size(); ++k) {
        const point& a = ring[k];
        const point& b = ring[(k + 1) % ring.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return twice / 2;
}

// The ring without repeated points, turning counter-clockwise when `ccw`, else clockwise, from
// the same first point (a surface read back starts where it started).
Ring oriented(Ring ring, bool ccw) {
    ring.erase(std::unique(ring.begin(), ring.end()), ring.end());
    while (ring.size() > 1 && ring.front() == ring.back()) {
        ring.pop_back();
    }
    if (!ring.empty() && (area(ring) > 0) != ccw) {
        std::reverse(ring.begin() + 1, ring.end());
    }
    return ring;
}

// The size of a standard symbol, zero sizes included ("r0", the thinnest draw a file makes, or
// "rect35x0"), which CopperGeometry does not count as copper but a file still holds.
SymbolSize sizeOf(const std::string& symbol) {
    SymbolSize s = CopperGeometry::parseSymbol(symbol);
    static const std::regex zero(R"(^(rect|oval|r|s)(\d+(?:\.\d+)?)(?:x(\d+(?:\.\d+)?))?$)");
    std::smatch m;
    if (s.kind != SymbolSize::none || !std::regex_match(symbol, m, zero)) {
        return s;
    }
    const std::string kind = m[1];
    const bool two = kind == "rect" || kind == "oval";
    if (two != m[3].matched) {
        return s;
    }
    s.kind = kind == "r"      ? SymbolSize::round
             : kind == "s"    ? SymbolSize::square
             : kind == "rect" ? SymbolSize::rectangle
                              : SymbolSize::oval;
    s.width = std::stod(m[2]) * kNmPerMil;
    s.height = two ? std::stod(m[3]) * kNmPerMil : s.width;
    return s;
}

// How far `b` lies off the line from `a` to `c`, positive on the left: the size of a corner
// whatever the length of its edges.
double bend(const point& a, const point& b, const point& c) {
    const double base = std::hypot(c.x - a.x, c.y - a.y);
    return base > 0 ? cross(a, b, c) / base : 0.0;
}

// Counter-clockwise and convex, allowing dents of a nanometre: outlines made by Boost.Geometry
// unions carry such dents where straight edges meet arcs.
bool convex(const Ring& ring) {
    for (size_t k = 0; k < ring.size(); ++k) {
        if (bend(ring[k], ring[(k + 1) % ring.size()], ring[(k + 2) % ring.size()]) < -1.0) {
            return false;
        }
    }
    return true;
}

// Strictly inside: a point on an edge (outlines from unions carry runs of points on one line)
// does not keep the triangle from being an ear.
bool inTriangle(const point& p, const point& a, const point& b, const point& c) {
    return cross(a, b, p) > 0 && cross(b, c, p) > 0 && cross(c, a, p) > 0;
}

// Triangles whose union is the counter-clockwise simple ring, by clipping ears. Corners within a
// nanometre of flat (or that rounding leaves without an ear) are dropped: they add no area.
std::vector<Ring> triangles(Ring ring) {
    std::vector<Ring> out;
    while (ring.size() > 3) {
        const size_t n = ring.size();
        size_t cut = n;
        for (size_t k = 0; k < n && cut == n; ++k) {
            const point& a = ring[(k + n - 1) % n];
            const point& b = ring[k];
            const point& c = ring[(k + 1) % n];
            if (cross(a, b, c) <= 0) {
                continue;
            }
            if (bend(a, b, c) < 1.0) {
                cut = k;  // a sliver adds nothing but trouble to the reader's union
                break;
            }
            bool empty = true;
            for (size_t m = 0; m < n && empty; ++m) {
                const point& p = ring[m];
                empty = p == a || p == b || p == c || !inTriangle(p, a, b, c);
            }
            if (empty) {
                out.push_back({a, b, c});
                cut = k;
            }
        }
        if (cut == n) {
            // No ear: drop the flattest corner.
            double flattest = 1e300;
            for (size_t k = 0; k < n; ++k) {
                const double turn =
                    std::abs(bend(ring[(k + n - 1) % n], ring[k], ring[(k + 1) % n]));
                if (turn < flattest) {
                    flattest = turn;
                    cut = k;
                }
            }
        }
        ring.erase(ring.begin() + static_cast<std::ptrdiff_t>(cut));
    }
    if (ring.size() == 3 && cross(ring[0], ring[1], ring[2]) > 0) {
        out.push_back(ring);
    }
    return out;
}

// Outlines of at most kOutlinePoints points whose union is the counter-clockwise `ring`: the
// ring itself when short enough, fans from its first point when it is convex, else triangles.
// Neighbouring pieces share their vertices exactly, so their union has no seams.
std::vector<Ring> pieces(const Ring& ring) {
    if (ring.size() <= kOutlinePoints) {
        return {ring};
    }
    if (!convex(ring)) {
        return triangles(ring);
    }
    std::vector<Ring> out;
    for (size_t i = 1; i + 1 < ring.size();) {
        const size_t j = std::min(i + kOutlinePoints - 2, ring.size() - 1);
        Ring piece{ring.front()};
        piece.insert(piece.end(), ring.begin() + static_cast<std::ptrdiff_t>(i),
                     ring.begin() + static_cast<std::ptrdiff_t>(j) + 1);
        out.push_back(std::move(piece));
        i = j;
    }
    return out;
}

// A macro aperture drawing `outline` (exposure on) less `holes` (exposure off), all in
// nanometres about the flash point, as outline primitives of libgerbv's simplified form.
void fillMacro(gerbv_aperture_t& a, const Ring& outline, const std::vector<Ring>& holes) {
    a.type = GERBV_APTYPE_MACRO;
    gerbv_simplified_amacro_t** tail = &a.simplified;
    const auto add = [&](const Ring& piece, bool exposure) {
        auto* s = allocate<gerbv_simplified_amacro_t>();
        s->type = GERBV_APTYPE_MACRO_OUTLINE;
        double* p = s->parameter;
        p[OUTLINE_EXPOSURE] = exposure ? 1 : 0;
        p[OUTLINE_NUMBER_OF_POINTS] = static_cast<double>(piece.size());
        for (size_t k = 0; k <= piece.size(); ++k) {
            p[OUTLINE_X_IDX_OF_POINT(k)] = inch(piece[k % piece.size()].x);
            p[OUTLINE_Y_IDX_OF_POINT(k)] = inch(piece[k % piece.size()].y);
        }
        p[OUTLINE_ROTATION_IDX(p)] = 0;
        *tail = s;
        tail = &s->next;
    };
    for (const Ring& piece : pieces(oriented(outline, true))) {
        add(piece, true);
    }
    for (const Ring& hole : holes) {
        for (const Ring& piece : pieces(oriented(hole, true))) {
            add(piece, false);
        }
    }
}

// Clockwise rotation by `degrees` after an optional mirror in x, as the engine places pads.
point orient(const point& p, double degrees, bool mirror) {
    const double x = mirror ? -p.x : p.x;
    const double r = -degrees * kPi / 180.0;
    return {x * std::cos(r) - p.y * std::sin(r), x * std::sin(r) + p.y * std::cos(r)};
}

// The outline of a rectangle or obround symbol turned by `degrees`, about the origin.
Ring turnedOutline(const SymbolSize& s, double degrees, bool mirror) {
    const double w = s.width / 2;
    const double h = s.height / 2;
    Ring ring;
    if (s.kind == SymbolSize::oval) {
        const double r = std::min(w, h);
        const point a = w >= h ? point{-(w - r), 0} : point{0, -(h - r)};
        const point b = w >= h ? point{w - r, 0} : point{0, h - r};
        const point out = w >= h ? point{0, r} : point{-r, 0};
        ring = CopperGeometry::arcPoints({b.x - out.x, b.y - out.y}, {b.x + out.x, b.y + out.y}, b,
                                         false);
        const Ring back = CopperGeometry::arcPoints({a.x + out.x, a.y + out.y},
                                                    {a.x - out.x, a.y - out.y}, a, false);
        ring.insert(ring.end(), back.begin(), back.end());
    } else {
        ring = {{-w, -h}, {w, -h}, {w, h}, {-w, h}};
    }
    for (point& p : ring) {
        p = orient(p, degrees, mirror);
    }
    return ring;
}

// A standard aperture and its definition at full precision; false for other symbols.
bool fillStandard(const SymbolSize& s, gerbv_aperture_t& a, std::string& definition) {
    const double w = inch(s.width);
    const double h =
        inch(s.kind == SymbolSize::round || s.kind == SymbolSize::square ? s.width : s.height);
    a.parameter[0] = w;
    a.parameter[1] = h;
    a.nuf_parameters = 2;
    switch (s.kind) {
        case SymbolSize::round:
            a.type = GERBV_APTYPE_CIRCLE;
            a.parameter[1] = 0;
            a.nuf_parameters = 1;
            definition = "C," + number(w);
            return true;
        case SymbolSize::square:
        case SymbolSize::rectangle:
            a.type = GERBV_APTYPE_RECTANGLE;
            definition = "R," + number(w) + "X" + number(h);
            return true;
        case SymbolSize::oval:
            a.type = GERBV_APTYPE_OVAL;
            definition = "O," + number(w) + "X" + number(h);
            return true;
        case SymbolSize::none:
            break;
    }
    return false;
}

// A libgerbv image under construction: nets in the order of the features, apertures numbered
// from APERTURE_MIN without gaps (libgerbv's exporters renumber them that way before writing,
// so the numbers here are the numbers in the file), a new layer at each change of polarity.
class Builder {
public:
    explicit Builder(bool drill)
        : image_(gerbv_create_image(nullptr,
                                    drill ? "Excellon Drill File" : "RS274-X (Gerber) File")) {
        image_->layertype = drill ? GERBV_LAYERTYPE_DRILL : GERBV_LAYERTYPE_RS274X;
        last_ = image_->netlist;
        layer_ = image_->layers;
    }
    GerbvImage take() { return std::move(image_); }

    void polarity(bool positive) {
        const gerbv_polarity_t wanted = positive ? GERBV_POLARITY_DARK : GERBV_POLARITY_CLEAR;
        if (layer_->polarity != wanted) {
            auto* next = allocate<gerbv_layer_t>();
            next->stepAndRepeat.X = 1;
            next->stepAndRepeat.Y = 1;
            next->polarity = wanted;
            layer_->next = next;
            layer_ = next;
        }
    }
    // The number of the aperture known as `key`, made by `fill` when new; 0 when libgerbv has
    // no number left.
    int aperture(const std::string& key, const std::function<void(gerbv_aperture_t&)>& fill) {
        const auto found = codes_.find(key);
        if (found != codes_.end()) {
            return found->second;
        }
        if (next_ >= APERTURE_MAX) {
            return 0;
        }
        auto* a = allocate<gerbv_aperture_t>();
        a->unit = GERBV_UNIT_INCH;
        fill(*a);
        image_->aperture[next_] = a;
        codes_[key] = next_;
        return next_++;
    }
    gerbv_net_t* net(const point& from, const point& to, int aperture, gerbv_aperture_state_t state,
                     gerbv_interpolation_t how) {
        auto* n = allocate<gerbv_net_t>();
        n->start_x = inch(from.x);
        n->start_y = inch(from.y);
        n->stop_x = inch(to.x);
        n->stop_y = inch(to.y);
        n->aperture = aperture;
        n->aperture_state = state;
        n->interpolation = how;
        n->layer = layer_;
        n->state = image_->states;
        last_->next = n;
        last_ = n;
        return n;
    }

private:
    GerbvImage image_;
    gerbv_net_t* last_ = nullptr;
    gerbv_layer_t* layer_ = nullptr;
    std::map<std::string, int> codes_;
    int next_ = APERTURE_MIN;
};

int standardAperture(Builder& b, const SymbolSize& s, std::map<int, std::string>& definitions) {
    gerbv_aperture_t probe{};
    std::string definition;
    if (!fillStandard(s, probe, definition)) {
        return 0;
    }
    const int code = b.aperture(definition, [&](gerbv_aperture_t& a) {
        std::string unused;
        fillStandard(s, a, unused);
    });
    definitions[code] = definition;
    return code;
}

std::string ringKey(const Ring& ring, const point& about) {
    std::string key;
    for (const point& p : ring) {
        key += std::to_string(std::llround(p.x - about.x)) + "," +
               std::to_string(std::llround(p.y - about.y)) + ";";
    }
    return key;
}

// The aperture a pad flashes; 0 with the reason when there is none.
int padAperture(Builder& b, const featureInfo& f, std::map<int, std::string>& definitions,
                std::string& why) {
    const auto relative = [&](Ring ring) {
        for (point& p : ring) {
            p = {p.x - f.start.x, p.y - f.start.y};
        }
        return ring;
    };
    if (f.contour.size() >= 3 && f.symbol.rfind("poly", 0) == 0 && f.holes.empty()) {
        // A polygon aperture: diameter, vertices and the turn of its first vertex.
        const point v = {f.contour[0].x - f.start.x, f.contour[0].y - f.start.y};
        const double d = inch(2 * std::hypot(v.x, v.y));
        const int n = static_cast<int>(f.contour.size());
        const double turn = std::atan2(v.y, v.x) * 180.0 / kPi;
        const std::string definition =
            "P," + number(d) + "X" + std::to_string(n) + "X" + number(turn);
        const int code = b.aperture(definition, [&](gerbv_aperture_t& a) {
            a.type = GERBV_APTYPE_POLYGON;
            a.parameter[0] = d;
            a.parameter[1] = n;
            a.parameter[2] = turn;
            a.nuf_parameters = 3;
        });
        definitions[code] = definition;
        return code;
    }
    if (f.contour.size() >= 3) {
        std::string key = "macro:" + ringKey(f.contour, f.start);
        for (const Ring& hole : f.holes) {
            key += "|" + ringKey(hole, f.start);
        }
        return b.aperture(key, [&](gerbv_aperture_t& a) {
            std::vector<Ring> holes;
            for (const Ring& hole : f.holes) {
                holes.push_back(relative(hole));
            }
            fillMacro(a, relative(f.contour), holes);
        });
    }
    SymbolSize s = sizeOf(f.symbol);
    if (s.kind == SymbolSize::none) {
        why = "has the symbol \"" + f.symbol + "\", which names no size and has no outline";
        return 0;
    }
    const double turn = std::fmod(std::fmod(f.angle, 360.0) + 360.0, 360.0);
    const auto near = [&](double a) { return std::abs(turn - a) < 1e-9; };
    if (s.kind == SymbolSize::round || near(0) || near(180) || near(360)) {
        return standardAperture(b, s, definitions);
    }
    if (near(90) || near(270)) {
        std::swap(s.width, s.height);
        if (s.kind == SymbolSize::square) {
            s.height = s.width;
        }
        return standardAperture(b, s, definitions);
    }
    // Gerber turns no standard aperture: any other angle is a macro of the turned outline.
    const Ring outline = turnedOutline(s, f.angle, f.mirror);
    return b.aperture("macro:" + ringKey(outline, {0, 0}),
                      [&](gerbv_aperture_t& a) { fillMacro(a, outline, {}); });
}

// A region: the surface's outline counter-clockwise, each hole a further contour turning
// clockwise. Gerber asks for holes cut in by a bridge; libgerbv and the engine's import read a
// contour lying inside another as its hole, and turning the other way it is a hole under any
// fill rule.
void addRegion(Builder& b, const featureInfo& f) {
    const Ring outline = oriented(f.contour, true);
    b.net(outline.front(), outline.front(), 0, GERBV_APERTURE_STATE_ON,
          GERBV_INTERPOLATION_PAREA_START);
    point at = outline.front();
    const auto contour = [&](const Ring& ring) {
        b.net(at, ring.front(), 0, GERBV_APERTURE_STATE_OFF, GERBV_INTERPOLATION_LINEARx1);
        for (size_t k = 1; k <= ring.size(); ++k) {
            b.net(ring[k - 1], ring[k % ring.size()], 0, GERBV_APERTURE_STATE_ON,
                  GERBV_INTERPOLATION_LINEARx1);
        }
        at = ring.front();
    };
    contour(outline);
    for (const Ring& hole : f.holes) {
        const Ring ring = oriented(hole, false);
        if (ring.size() >= 3) {
            contour(ring);
        }
    }
    b.net(at, at, 0, GERBV_APERTURE_STATE_OFF, GERBV_INTERPOLATION_PAREA_END);
}

void addDraw(Builder& b, const featureInfo& f, int code) {
    if (f.type == Korvo::API::feature_line) {
        b.net(f.start, f.end, code, GERBV_APERTURE_STATE_ON, GERBV_INTERPOLATION_LINEARx1);
        return;
    }
    gerbv_net_t* n =
        b.net(f.start, f.end, code, GERBV_APERTURE_STATE_ON,
              f.clockwise ? GERBV_INTERPOLATION_CW_CIRCULAR : GERBV_INTERPOLATION_CCW_CIRCULAR);
    n->cirseg = allocate<gerbv_cirseg_t>();
    n->cirseg->cp_x = inch(f.center.x);
    n->cirseg->cp_y = inch(f.center.y);
    // The exporter reads the centre alone; the size is there for any other reader of the image.
    n->cirseg->width = n->cirseg->height =
        inch(2 * std::hypot(f.start.x - f.center.x, f.start.y - f.center.y));
}

bool finite(const featureInfo& f) {
    const auto ok = [](const point& p) { return std::isfinite(p.x) && std::isfinite(p.y); };
    bool all = ok(f.start) && ok(f.end) && ok(f.center);
    for (const point& p : f.contour) {
        all = all && ok(p);
    }
    for (const Ring& hole : f.holes) {
        all = all && std::all_of(hole.begin(), hole.end(), ok);
    }
    return all;
}

std::string featureName(const ExportLayer& layer, const featureInfo& f) {
    const char* kind = f.type == Korvo::API::feature_pad       ? "pad"
                       : f.type == Korvo::API::feature_line    ? "line"
                       : f.type == Korvo::API::feature_arc     ? "arc"
                       : f.type == Korvo::API::feature_surface ? "surface"
                                                               : "text";
    return "layer \"" + layer.row.name + "\": " + kind + " " + std::to_string(f.id) + " ";
}

}  // namespace

bool buildGerberImage(const ExportLayer& layer, GerberImage& out, std::string& message) {
    Builder b(false);
    for (const featureInfo& f : layer.features) {
        if (f.type == Korvo::API::feature_text) {
            continue;  // a comment of the file (LayerExport.cpp)
        }
        if (!finite(f)) {
            message = featureName(layer, f) + "lies at no finite place";
            return false;
        }
        b.polarity(f.positive);
        std::string why;
        int code = 0;
        if (f.type == Korvo::API::feature_surface) {
            if (oriented(f.contour, true).size() < 3) {
                message = featureName(layer, f) + "has fewer than three corners";
                return false;
            }
            addRegion(b, f);
            continue;
        }
        if (f.type == Korvo::API::feature_pad) {
            code = padAperture(b, f, out.definitions, why);
        } else {
            const SymbolSize s = sizeOf(f.symbol);
            code = standardAperture(b, s, out.definitions);
            why = "is drawn with \"" + f.symbol + "\", whose shape the engine does not keep";
        }
        if (code == 0) {
            message = featureName(layer, f) +
                      (why.empty() ? "needs more apertures than libgerbv holds" : why);
            return false;
        }
        if (f.type == Korvo::API::feature_pad) {
            b.net(f.start, f.start, code, GERBV_APERTURE_STATE_FLASH, GERBV_INTERPOLATION_LINEARx1);
        } else {
            addDraw(b, f, code);
        }
    }
    out.image = b.take();
    return true;
}

bool buildDrillImage(const ExportLayer& layer, DrillImage& out, std::string& message) {
    Builder b(true);
    std::string fallback = DrillFormat::platingOfName(layer.row.name);
    bool plated = false;
    bool non_plated = false;
    for (const featureInfo& f : layer.features) {
        const SymbolSize s = CopperGeometry::parseSymbol(f.symbol);
        const bool hole = f.type == Korvo::API::feature_pad && f.contour.empty();
        if ((!hole && f.type != Korvo::API::feature_line) || s.kind != SymbolSize::round ||
            !f.positive) {
            message = featureName(layer, f) + "with \"" + f.symbol +
                      "\" is no round hole or slot, all an Excellon file holds";
            return false;
        }
        if (!finite(f)) {
            message = featureName(layer, f) + "lies at no finite place";
            return false;
        }
        const auto found = f.attributes.find(".drill");
        const std::string plating = found != f.attributes.end() ? found->second : fallback;
        const bool is_plated = plating != "non_plated";
        (is_plated ? plated : non_plated) = true;
        const int code = b.aperture(f.symbol + (is_plated ? "|plated" : "|non_plated"),
                                    [&](gerbv_aperture_t& a) {
                                        a.type = GERBV_APTYPE_CIRCLE;
                                        a.parameter[0] = inch(s.width);
                                        a.nuf_parameters = 1;
                                    });
        if (code == 0) {
            message = featureName(layer, f) + "needs more tools than libgerbv holds";
            return false;
        }
        DrillTool& tool = out.tools[code];
        tool.diameter = inch(s.width);
        tool.plated = is_plated;
        const gerbv_net_t* n = b.net(f.start, hole ? f.start : f.end, code,
                                     hole ? GERBV_APERTURE_STATE_FLASH : GERBV_APERTURE_STATE_ON,
                                     GERBV_INTERPOLATION_LINEARx1);
        tool.holes.push_back({n->start_x, n->start_y, n->stop_x, n->stop_y, !hole});
    }
    out.plating = plated && non_plated                                  ? "mixed"
                  : non_plated || (!plated && fallback == "non_plated") ? "non_plated"
                                                                        : "plated";
    out.image = b.take();
    return true;
}

}  // namespace wcref

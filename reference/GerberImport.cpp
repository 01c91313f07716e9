#include "GerberImport.h"

#include <gerbv.h>
#include <glog/logging.h>
#undef MIN  // gerbv.h defines them with GNU statement expressions
#undef MAX

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cctype>
#include <cmath>
#include <memory>
#include <mutex>

#include "CopperGeometry.h"
#include "GerberX2.h"
#include "JobFromFolder.h"
#include "StepRepeatGeometry.h"

// From GLib (linked through libgerbv): lets libgerbv's diagnostics go to our log.
extern "C" {
typedef void (*GLogFunc)(const char* domain, int level, const char* message, void* data);
GLogFunc g_log_set_default_handler(GLogFunc handler, void* data);
}

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::file_Parameters;
using Korvo::API::point;

namespace {

constexpr double kNmPerInch = 25400000.0;
constexpr double kPi = 3.14159265358979323846;

// libgerbv keeps parser state in globals; one file at a time.
std::mutex& gerbvMutex() {
    static std::mutex mutex;
    return mutex;
}

void logGerbvMessage(const char*, int, const char* message, void*) {
    VLOG(1) << "libgerbv: " << (message != nullptr ? message : "");
}

struct ProjectDeleter {
    void operator()(gerbv_project_t* project) const { gerbv_destroy_project(project); }
};
using Project = std::unique_ptr<gerbv_project_t, ProjectDeleter>;

// Parses the file, an Excellon file with the drill attributes `attributes` when given; null
// with a reason when libgerbv cannot make a layer of it.
gerbv_image_t* openImage(const std::string& path, Project& project, std::string& message,
                         gerbv_HID_Attribute* attributes = nullptr, int n_attributes = 0) {
    static std::once_flag once;
    std::call_once(once, [] { g_log_set_default_handler(&logGerbvMessage, nullptr); });
    const QFileInfo info(QString::fromStdString(path));
    if (!info.isFile() || !info.isReadable()) {
        message = "cannot read " + path;
        return nullptr;
    }
    if (info.size() == 0) {
        message = path + " is empty";
        return nullptr;
    }
    project.reset(gerbv_create_project());
    if (gerbv_open_image(project.get(), path.c_str(), ++project->last_loaded, 0, attributes,
                         n_attributes, 1) == -1) {
        --project->last_loaded;
    }
    if (project->last_loaded < 0 || project->file[0] == nullptr ||
        project->file[0]->image == nullptr) {
        message = path + " is neither a Gerber nor an Excellon drill file";
        return nullptr;
    }
    gerbv_image_t* image = project->file[0]->image;
    if (image->layertype != GERBV_LAYERTYPE_RS274X && image->layertype != GERBV_LAYERTYPE_DRILL) {
        message = path + " is a pick-and-place list, not a layer";
        return nullptr;
    }
    const gerbv_error_list_t* errors = image->layertype == GERBV_LAYERTYPE_RS274X
                                           ? image->gerbv_stats->error_list
                                           : image->drill_stats->error_list;
    for (; errors != nullptr; errors = errors->next) {
        if (errors->error_text == nullptr || errors->type == GERBV_MESSAGE_NOTE) {
            continue;
        }
        const std::string text = errors->error_text;
        if (errors->type == GERBV_MESSAGE_FATAL ||
            text.find("Found unknown character") != std::string::npos ||
            text.find("Missing Gerber EOF") != std::string::npos) {
            message = path + " is damaged: " + text;
            return nullptr;
        }
        if (text.find("Unknown RS-274X extension found %T") != std::string::npos) {
            continue;  // an X2 attribute: libgerbv skips it, GerberX2 reads it
        }
        LOG(WARNING) << "import of " << path << ": " << text;
    }
    bool in_region = false;
    for (const gerbv_net_t* net = image->netlist; net != nullptr; net = net->next) {
        if (net->interpolation == GERBV_INTERPOLATION_PAREA_START ||
            net->interpolation == GERBV_INTERPOLATION_PAREA_END) {
            in_region = net->interpolation == GERBV_INTERPOLATION_PAREA_START;
            continue;
        }
        if (in_region || net->aperture_state == GERBV_APERTURE_STATE_OFF ||
            net->interpolation == GERBV_INTERPOLATION_DELETED) {
            continue;  // region edges need no aperture
        }
        if (net->aperture <= 0 || net->aperture >= APERTURE_MAX ||
            image->aperture[net->aperture] == nullptr) {
            message = path + " uses aperture D" + std::to_string(net->aperture) +
                      " but does not define it";
            return nullptr;
        }
    }
    return image;
}

// The unit the file declares in its header: Gerber %MO / G70 G71, Excellon INCH / METRIC /
// M71 M72. Inch when it says nothing, as both formats default to it.
std::string declaredUnits(const std::string& path, bool drill) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        return "inch";
    }
    const QByteArray head = file.read(64 * 1024).toUpper();
    const int mm = drill ? std::max(head.indexOf("METRIC"), head.indexOf("M71"))
                         : std::max(head.indexOf("%MOMM"), head.indexOf("G71"));
    const int inch = drill ? std::max(head.indexOf("INCH"), head.indexOf("M72"))
                           : std::max(head.indexOf("%MOIN"), head.indexOf("G70"));
    if (mm >= 0 && (inch < 0 || mm < inch)) {
        return "mm";
    }
    return "inch";
}

point nm(double x_inch, double y_inch) {
    return {x_inch * kNmPerInch, y_inch * kNmPerInch};
}

using MultiPolygon = bg::model::multi_polygon<GeoPolygon>;

std::vector<point> regular(double cx, double cy, double diameter, int vertices, double degrees) {
    std::vector<point> out;
    vertices = std::clamp(vertices, 3, 64);
    for (int k = 0; k < vertices; ++k) {
        const double a = (degrees + 360.0 * k / vertices) * kPi / 180.0;
        out.push_back({cx + diameter / 2 * std::cos(a), cy + diameter / 2 * std::sin(a)});
    }
    return out;
}

// A circle of a macro, in inches, flattened as finely as the nanometre arcs.
std::vector<point> circle(double cx, double cy, double diameter) {
    if (diameter <= 0) {
        return {};
    }
    const point start = nm(cx + diameter / 2, cy);
    std::vector<point> out = CopperGeometry::arcPoints(start, start, nm(cx, cy), false);
    out.pop_back();
    for (point& p : out) {
        p = {p.x / kNmPerInch, p.y / kNmPerInch};
    }
    return out;
}

std::vector<point> rotated(std::vector<point> points, double degrees) {
    const double a = degrees * kPi / 180.0;
    for (point& p : points) {
        p = {p.x * std::cos(a) - p.y * std::sin(a), p.x * std::sin(a) + p.y * std::cos(a)};
    }
    return points;
}

std::vector<point> box(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

void paint(MultiPolygon& shape, const std::vector<point>& outline, bool dark) {
    if (outline.size() < 3) {
        return;
    }
    GeoPolygon polygon;
    for (const point& p : outline) {
        polygon.outer().emplace_back(p.x, p.y);
    }
    bg::correct(polygon);
    MultiPolygon out;
    if (dark) {
        bg::union_(shape, polygon, out);
    } else {
        bg::difference(shape, polygon, out);
    }
    shape = std::move(out);
}

// Outline of a macro aperture about its flash point, in inches; the largest part.
bool macroOutline(const gerbv_aperture_t& aperture, std::vector<point>& outline,
                  std::vector<std::vector<point>>& holes) {
    MultiPolygon shape;
    for (const gerbv_simplified_amacro_t* s = aperture.simplified; s != nullptr; s = s->next) {
        const double* p = s->parameter;
        switch (s->type) {
            case GERBV_APTYPE_MACRO_CIRCLE:
                paint(shape, circle(p[CIRCLE_CENTER_X], p[CIRCLE_CENTER_Y], p[CIRCLE_DIAMETER]),
                      p[CIRCLE_EXPOSURE] != 0);
                break;
            case GERBV_APTYPE_MACRO_OUTLINE: {
                const int n = static_cast<int>(p[OUTLINE_NUMBER_OF_POINTS]);
                if (n < 2 || OUTLINE_ROTATION_IDX(p) >= APERTURE_PARAMETERS_MAX) {
                    break;
                }
                std::vector<point> points;
                for (int k = 0; k <= n; ++k) {
                    points.push_back({p[OUTLINE_X_IDX_OF_POINT(k)], p[OUTLINE_Y_IDX_OF_POINT(k)]});
                }
                paint(shape, rotated(points, p[OUTLINE_ROTATION_IDX(p)]), p[OUTLINE_EXPOSURE] != 0);
                break;
            }
            case GERBV_APTYPE_MACRO_POLYGON:
                paint(shape,
                      rotated(regular(p[POLYGON_CENTER_X], p[POLYGON_CENTER_Y], p[POLYGON_DIAMETER],
                                      static_cast<int>(p[POLYGON_NUMBER_OF_POINTS]), 0),
                              p[POLYGON_ROTATION]),
                      p[POLYGON_EXPOSURE] != 0);
                break;
            case GERBV_APTYPE_MACRO_MOIRE:  // kept as its outer circle
                paint(shape,
                      circle(p[MOIRE_CENTER_X], p[MOIRE_CENTER_Y], p[MOIRE_OUTSIDE_DIAMETER]),
                      true);
                break;
            case GERBV_APTYPE_MACRO_THERMAL: {
                const double cx = p[THERMAL_CENTER_X];
                const double cy = p[THERMAL_CENTER_Y];
                const double r = p[THERMAL_OUTSIDE_DIAMETER] / 2;
                const double gap = p[THERMAL_CROSSHAIR_THICKNESS] / 2;
                MultiPolygon ring;
                paint(ring, circle(cx, cy, 2 * r), true);
                paint(ring, circle(cx, cy, p[THERMAL_INSIDE_DIAMETER]), false);
                paint(ring, rotated(box(-r, -gap, r, gap), p[THERMAL_ROTATION]), false);
                paint(ring, rotated(box(-gap, -r, gap, r), p[THERMAL_ROTATION]), false);
                MultiPolygon out;
                bg::union_(shape, ring, out);
                shape = std::move(out);
                break;
            }
            case GERBV_APTYPE_MACRO_LINE20: {
                const point a{p[LINE20_START_X], p[LINE20_START_Y]};
                const point b{p[LINE20_END_X], p[LINE20_END_Y]};
                const double len = std::hypot(b.x - a.x, b.y - a.y);
                if (len <= 0) {
                    break;
                }
                const double w = p[LINE20_WIDTH] / 2;
                const point n{-(b.y - a.y) / len * w, (b.x - a.x) / len * w};
                paint(shape,
                      rotated({{a.x + n.x, a.y + n.y},
                               {b.x + n.x, b.y + n.y},
                               {b.x - n.x, b.y - n.y},
                               {a.x - n.x, a.y - n.y}},
                              p[LINE20_ROTATION]),
                      p[LINE20_EXPOSURE] != 0);
                break;
            }
            case GERBV_APTYPE_MACRO_LINE21: {
                const double w = p[LINE21_WIDTH] / 2;
                const double h = p[LINE21_HEIGHT] / 2;
                const double cx = p[LINE21_CENTER_X];
                const double cy = p[LINE21_CENTER_Y];
                paint(shape, rotated(box(cx - w, cy - h, cx + w, cy + h), p[LINE21_ROTATION]),
                      p[LINE21_EXPOSURE] != 0);
                break;
            }
            case GERBV_APTYPE_MACRO_LINE22: {
                const double x = p[LINE22_LOWER_LEFT_X];
                const double y = p[LINE22_LOWER_LEFT_Y];
                paint(shape,
                      rotated(box(x, y, x + p[LINE22_WIDTH], y + p[LINE22_HEIGHT]),
                              p[LINE22_ROTATION]),
                      p[LINE22_EXPOSURE] != 0);
                break;
            }
            default:
                break;
        }
    }
    if (shape.empty()) {
        return false;
    }
    const auto largest = std::max_element(
        shape.begin(), shape.end(),
        [](const GeoPolygon& a, const GeoPolygon& b) { return bg::area(a) < bg::area(b); });
    outline.clear();
    holes.clear();
    const auto ring = [](const GeoPolygon::ring_type& r) {
        std::vector<point> out;
        for (size_t k = 0; k + 1 < r.size(); ++k) {
            out.push_back({r[k].x(), r[k].y()});
        }
        return out;
    };
    outline = ring(largest->outer());
    for (const auto& inner : largest->inners()) {
        holes.push_back(ring(inner));
    }
    return true;
}

// How one aperture is written into features.
struct ApertureUse {
    std::string symbol;
    std::vector<point> outline;  // nanometres about the flash point; empty for standard symbols
    std::vector<std::vector<point>> holes;
};

ApertureUse useOf(const gerbv_aperture_t& a, int code) {
    ApertureUse use;
    const double* p = a.parameter;
    const double w = p[0] * kNmPerInch;
    const double h = p[1] * kNmPerInch;
    switch (a.type) {
        case GERBV_APTYPE_CIRCLE:
            use.symbol = CopperGeometry::symbolName(SymbolSize::round, w, w);
            break;
        case GERBV_APTYPE_RECTANGLE:
            use.symbol = std::abs(w - h) < 0.5
                             ? CopperGeometry::symbolName(SymbolSize::square, w, w)
                             : CopperGeometry::symbolName(SymbolSize::rectangle, w, h);
            break;
        case GERBV_APTYPE_OVAL:
            use.symbol = std::abs(w - h) < 0.5 ? CopperGeometry::symbolName(SymbolSize::round, w, w)
                                               : CopperGeometry::symbolName(SymbolSize::oval, w, h);
            break;
        case GERBV_APTYPE_POLYGON: {
            const int n = static_cast<int>(p[1]);
            use.symbol = "poly" + CopperGeometry::milText(w) + "x" + std::to_string(n);
            use.outline = regular(0, 0, w, n, p[2]);
            break;
        }
        case GERBV_APTYPE_MACRO: {
            std::string name = a.amacro != nullptr && a.amacro->name != nullptr
                                   ? std::string(a.amacro->name)
                                   : std::string("unnamed");
            std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) {
                return std::isalnum(c) ? static_cast<char>(std::tolower(c)) : '_';
            });
            use.symbol = "macro_" + name + "_d" + std::to_string(code);
            if (macroOutline(a, use.outline, use.holes)) {
                for (point& q : use.outline) {
                    q = {q.x * kNmPerInch, q.y * kNmPerInch};
                }
                for (auto& hole : use.holes) {
                    for (point& q : hole) {
                        q = {q.x * kNmPerInch, q.y * kNmPerInch};
                    }
                }
            }
            break;
        }
        default:
            use.symbol = "ap" + std::to_string(code);
            break;
    }
    return use;
}

// Placement of a net: image offset, the net's state (offset, scale, mirror) and one
// step-and-repeat copy.
struct Placement {
    double dx = 0;
    double dy = 0;
    double sx = 1;
    double sy = 1;
    point operator()(double x, double y) const { return nm(x * sx + dx, y * sy + dy); }
};

bool insideRing(const std::vector<point>& inner, const std::vector<point>& outer) {
    return !inner.empty() && outer.size() >= 3 && [&] {
        GeoPolygon polygon;
        for (const point& p : outer) {
            polygon.outer().emplace_back(p.x, p.y);
        }
        bg::correct(polygon);
        return bg::covered_by(GeoPoint(inner.front().x, inner.front().y), polygon);
    }();
}

// Turns the contours of one region into surfaces: a contour inside another is its hole.
void addRegion(std::vector<std::vector<point>>& contours, featureInfo base,
               std::vector<featureInfo>& out) {
    for (auto& c : contours) {
        if (c.size() > 1 && c.front() == c.back()) {
            c.pop_back();
        }
    }
    std::vector<std::vector<point>> outers;
    std::vector<std::vector<point>> inners;
    std::vector<bool> hole(contours.size(), false);
    for (size_t k = 0; k < contours.size(); ++k) {
        for (size_t m = 0; m < contours.size() && contours[k].size() >= 3; ++m) {
            if (m != k && insideRing(contours[k], contours[m])) {
                hole[k] = true;
                break;
            }
        }
    }
    for (size_t k = 0; k < contours.size(); ++k) {
        if (contours[k].size() >= 3) {
            (hole[k] ? inners : outers).push_back(std::move(contours[k]));
        }
    }
    for (auto& outer : outers) {
        featureInfo f = base;
        f.contour = std::move(outer);
        for (const auto& inner : inners) {
            if (insideRing(inner, f.contour)) {
                f.holes.push_back(inner);
            }
        }
        f.start = f.end = f.contour.front();
        out.push_back(std::move(f));
    }
}

std::string fileText(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.readAll().toStdString();
}

// libgerbv's drill attributes (drill.c, drill_attribute_list) for reading an Excellon file in
// `p`'s format: no autodetection, zero suppression (0 none, 1 leading, 2 trailing zeros left
// out), units (0 inch, 1 mm) and digits, which libgerbv takes as integer digits when trailing
// zeros are left out and as decimal digits otherwise.
std::vector<gerbv_HID_Attribute> drillAttributes(const file_Parameters& p) {
    std::vector<gerbv_HID_Attribute> a(4);
    for (gerbv_HID_Attribute& one : a) {
        one = gerbv_HID_Attribute{};
    }
    a[0].name = const_cast<char*>("autodetect");
    a[0].type = gerbv_HID_Attribute::HID_Boolean;
    a[0].default_val.int_value = 0;
    a[1].name = const_cast<char*>("zero_suppression");
    a[1].type = gerbv_HID_Attribute::HID_Enum;
    a[1].default_val.int_value = p.zeros == "leading" ? 1 : p.zeros == "trailing" ? 2 : 0;
    a[2].name = const_cast<char*>("units");
    a[2].type = gerbv_HID_Attribute::HID_Enum;
    a[2].default_val.int_value = p.units == "mm" ? 1 : 0;
    a[3].name = const_cast<char*>("digits");
    a[3].type = gerbv_HID_Attribute::HID_Integer;
    a[3].default_val.int_value = p.zeros == "trailing" ? p.integer_digits : p.decimal_digits;
    return a;
}

DrillNumberFormat numberFormatOf(const file_Parameters& p) {
    DrillNumberFormat f;
    f.units = p.units == "mm" ? "mm" : "inch";
    f.zeros = p.zeros;
    f.integer_digits = p.integer_digits;
    f.decimal_digits = p.decimal_digits;
    return f;
}

// Where we correct libgerbv. Told the format through its drill attributes, libgerbv still lets
// the file override two parts of it: a ";FILE_FORMAT=i:d" comment replaces the digits it was
// given with d (taken as integer digits when trailing zeros are left out, although d counts the
// decimal ones), and an INCH or METRIC statement in the header replaces the units. With its own
// autodetection it is worse: after ";FILE_FORMAT=2:3" it ignores the "INCH,LZ" that follows and
// assumes leading zeros left out, so the protel board's X0152 (1.52 inch) becomes 0.152 inch.
// Each override multiplies every coordinate by one factor, a power of ten, times 25.4 when the
// units differ; the factor is measured by matching libgerbv's hits against our own decoding of
// the same coordinates (`expected`, nanometres) and undone, on the tool sizes too for the unit
// part. Returns the factor applied (1 when libgerbv read the format asked for).
double correctDrillReading(gerbv_image_t* image, const std::vector<point>& expected,
                           const std::string& path) {
    std::vector<point> hits;
    for (const gerbv_net_t* net = image->netlist; net != nullptr; net = net->next) {
        if (net->aperture_state == GERBV_APERTURE_STATE_FLASH) {
            hits.push_back(nm(net->start_x, net->start_y));
        }
    }
    if (hits.empty() || expected.empty()) {
        return 1;
    }
    std::vector<point> sorted = expected;
    std::sort(sorted.begin(), sorted.end(),
              [](const point& a, const point& b) { return a.x < b.x; });
    const auto matches = [&](double factor) {
        constexpr double kTolerance = 500;  // nanometres
        int count = 0;
        for (const point& h : hits) {
            const point p{h.x * factor, h.y * factor};
            auto it = std::lower_bound(sorted.begin(), sorted.end(), p.x - kTolerance,
                                       [](const point& a, double x) { return a.x < x; });
            for (; it != sorted.end() && it->x <= p.x + kTolerance; ++it) {
                if (std::abs(it->y - p.y) <= kTolerance) {
                    ++count;
                    break;
                }
            }
        }
        return count;
    };
    double best = 1;
    int best_count = matches(1);
    double best_unit = 1;
    for (const double unit : {1.0, 25.4, 1 / 25.4}) {
        for (int power = -4; power <= 4; ++power) {
            const double factor = unit * std::pow(10.0, power);
            const int count = factor == 1 ? 0 : matches(factor);
            if (count > best_count) {
                best = factor;
                best_count = count;
                best_unit = unit;
            }
        }
    }
    if (2 * best_count < static_cast<int>(hits.size())) {
        LOG(WARNING) << "import of " << path << ": only " << best_count << " of " << hits.size()
                     << " drill hits read by libgerbv match the drill format asked for";
        return 1;
    }
    if (best == 1) {
        return 1;
    }
    LOG(INFO) << "import of " << path << ": libgerbv's drill coordinates corrected by a factor "
              << best;
    for (gerbv_net_t* net = image->netlist; net != nullptr; net = net->next) {
        net->start_x *= best;
        net->start_y *= best;
        net->stop_x *= best;
        net->stop_y *= best;
        if (net->cirseg != nullptr) {
            net->cirseg->cp_x *= best;
            net->cirseg->cp_y *= best;
            net->cirseg->width *= best;
            net->cirseg->height *= best;
        }
    }
    if (best_unit != 1) {
        for (int code = 0; code < APERTURE_MAX; ++code) {
            if (image->aperture[code] != nullptr) {
                image->aperture[code]->parameter[0] *= best_unit;
            }
        }
    }
    return best;
}

// Chooses the coordinate format of the Excellon file `path` by registering its holes onto
// `copper`, into `parameters`.
void chooseDrillFormat(const std::string& path, const std::vector<PadSite>& copper,
                       file_Parameters& parameters) {
    const std::string text = fileText(path);
    const DrillHeader header = DrillFormat::readHeader(text);
    const DrillChoice choice = DrillFormat::choose(header, DrillFormat::holes(text), copper);
    parameters.units = choice.format.units;
    parameters.zeros = choice.format.zeros;
    parameters.integer_digits = choice.format.integer_digits;
    parameters.decimal_digits = choice.format.decimal_digits;
    parameters.coordinates = header.incremental ? "incremental" : "absolute";
    parameters.format_source = choice.source;
    parameters.plating = DrillFormat::plating(
        QFileInfo(QString::fromStdString(path)).fileName().toStdString(), header);
    if (!choice.warning.empty()) {
        LOG(WARNING) << path << ": " << choice.warning;
    }
}

bool isOuterCopper(const Korvo::API::layer_info& row) {
    return (row.type == "signal" || row.type == "mixed") &&
           (row.side == "top" || row.side == "bottom");
}

}  // namespace

bool GerberImport::identify(const std::string& path, std::string& format,
                            file_Parameters& parameters, std::string& message) {
    bool drill = false;
    if (!kind(path, drill, message)) {
        LOG(ERROR) << "file_identify: " << message;
        return false;
    }
    return identify(path, format, parameters, message,
                    drill ? folderCopper(path) : std::vector<PadSite>{});
}

bool GerberImport::identify(const std::string& path, std::string& format,
                            file_Parameters& parameters, std::string& message,
                            const std::vector<PadSite>& copper) {
    std::unique_lock<std::mutex> guard(gerbvMutex());
    Project project;
    const gerbv_image_t* image = openImage(path, project, message);
    if (image == nullptr) {
        LOG(ERROR) << "file_identify: " << message;
        return false;
    }
    const bool drill = image->layertype == GERBV_LAYERTYPE_DRILL;
    parameters = file_Parameters{};
    parameters.format = format = drill ? "excellon" : "gerber274x";
    parameters.units = declaredUnits(path, drill);
    if (image->format != nullptr) {
        parameters.integer_digits = image->format->x_int;
        parameters.decimal_digits = image->format->x_dec;
        switch (image->format->omit_zeros) {
            case GERBV_OMIT_ZEROS_LEADING:
                parameters.zeros = "leading";
                break;
            case GERBV_OMIT_ZEROS_TRAILING:
                parameters.zeros = "trailing";
                break;
            default:
                parameters.zeros = "none";
                break;
        }
        parameters.coordinates =
            image->format->coordinate == GERBV_COORDINATE_INCREMENTAL ? "incremental" : "absolute";
    }
    guard.unlock();
    if (!drill) {
        message = path + " is a Gerber RS-274X file";
        return true;
    }
    // What libgerbv guessed is replaced by what the header says, checked against the copper.
    chooseDrillFormat(path, copper, parameters);
    message = path + " is an Excellon drill file, read as " +
              DrillFormat::describe(numberFormatOf(parameters)) + ": " + parameters.format_source;
    return true;
}

bool GerberImport::kind(const std::string& path, bool& drill, std::string& message) {
    std::lock_guard<std::mutex> guard(gerbvMutex());
    Project project;
    const gerbv_image_t* image = openImage(path, project, message);
    drill = image != nullptr && image->layertype == GERBV_LAYERTYPE_DRILL;
    return image != nullptr;
}

std::vector<PadSite> GerberImport::padSites(const std::vector<featureInfo>& features) {
    std::vector<PadSite> out;
    for (const featureInfo& f : features) {
        if (f.type != Korvo::API::feature_pad || !f.positive) {
            continue;
        }
        PadSite site;
        site.x = f.start.x;
        site.y = f.start.y;
        if (f.contour.size() >= 3) {
            const Korvo::API::reply_box box = boxOfPoints(f.contour);
            site.half_width = std::max(f.start.x - box.xmin, box.xmax - f.start.x);
            site.half_height = std::max(f.start.y - box.ymin, box.ymax - f.start.y);
        } else {
            const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
            if (size.kind == SymbolSize::none) {
                continue;
            }
            site.round = size.kind == SymbolSize::round;
            site.half_width = size.width / 2;
            site.half_height = size.kind == SymbolSize::round || size.kind == SymbolSize::square
                                   ? size.width / 2
                                   : size.height / 2;
        }
        out.push_back(site);
    }
    return out;
}

// file_identify gets nothing but a path, so a drill file is registered against the outer
// copper of its own folder: the files there that guessLayer types as top or bottom signal
// layers. Identifying every file of a folder would read that copper once per drill file, so
// the pads are kept per folder together with the names, sizes and times of the copper files;
// a changed, added or removed copper file makes the next identification read them again.
// JobFromFolder, which reads the copper anyway, passes its own pads instead.
std::vector<PadSite> GerberImport::folderCopper(const std::string& path) {
    const QFileInfo info(QString::fromStdString(path));
    const QString folder = info.absolutePath();
    std::vector<std::string> files;
    std::string signature;
    for (const QFileInfo& file :
         QDir(folder).entryInfoList(QDir::Files | QDir::Readable, QDir::Name)) {
        if (file.absoluteFilePath() == info.absoluteFilePath() ||
            !isOuterCopper(JobFromFolder::guessLayer(file.fileName().toStdString(), false))) {
            continue;
        }
        files.push_back(file.absoluteFilePath().toStdString());
        signature += files.back() + "|" + std::to_string(file.size()) + "|" +
                     std::to_string(file.lastModified().toMSecsSinceEpoch()) + "\n";
    }
    static std::mutex mutex;
    static std::map<std::string, std::pair<std::string, std::vector<PadSite>>> cache;
    {
        std::lock_guard<std::mutex> guard(mutex);
        const auto found = cache.find(folder.toStdString());
        if (found != cache.end() && found->second.first == signature) {
            return found->second.second;
        }
    }
    std::vector<PadSite> sites;
    for (const std::string& file : files) {
        bool drill = false;
        std::string why;
        std::vector<featureInfo> features;
        std::map<int, int> counts;
        if (kind(file, drill, why) && !drill && read(file, "copper", features, counts, why)) {
            const std::vector<PadSite> more = padSites(features);
            sites.insert(sites.end(), more.begin(), more.end());
        }
    }
    std::lock_guard<std::mutex> guard(mutex);
    cache[folder.toStdString()] = {signature, sites};
    return sites;
}

bool GerberImport::read(const std::string& path, const std::string& layer,
                        std::vector<featureInfo>& features, std::map<int, int>& tool_counts,
                        std::string& message, const file_Parameters* parameters) {
    const bool told =
        parameters != nullptr && parameters->format == "excellon" && !parameters->zeros.empty();
    std::vector<gerbv_HID_Attribute> attributes;
    if (told) {
        attributes = drillAttributes(*parameters);
    }
    std::lock_guard<std::mutex> guard(gerbvMutex());
    Project project;
    gerbv_image_t* image = openImage(path, project, message, told ? attributes.data() : nullptr,
                                     static_cast<int>(attributes.size()));
    if (image == nullptr) {
        LOG(ERROR) << "file_translate: " << message;
        return false;
    }
    const bool drill = image->layertype == GERBV_LAYERTYPE_DRILL;
    std::string plating = told ? parameters->plating : std::string();
    if (drill) {
        const std::string text = fileText(path);
        const DrillHeader header = DrillFormat::readHeader(text);
        if (told) {
            correctDrillReading(
                image, DrillFormat::place(DrillFormat::holes(text), numberFormatOf(*parameters)),
                path);
        }
        if (plating.empty()) {
            plating = DrillFormat::plating(
                QFileInfo(QString::fromStdString(path)).fileName().toStdString(), header);
        }
        if (plating.empty()) {
            plating = "plated";  // what most drill files hold
        }
    }
    std::map<int, ApertureUse> uses;
    const auto useFor = [&](int code) -> const ApertureUse& {
        auto found = uses.find(code);
        if (found == uses.end()) {
            found = uses.emplace(code, useOf(*image->aperture[code], code)).first;
        }
        return found->second;
    };
    features.clear();
    tool_counts.clear();
    std::vector<std::vector<point>> contours;
    featureInfo region;
    bool in_region = false;
    for (const gerbv_net_t* net = image->netlist; net != nullptr; net = net->next) {
        Placement place;
        place.dx = image->info != nullptr ? image->info->offsetA : 0;
        place.dy = image->info != nullptr ? image->info->offsetB : 0;
        if (net->state != nullptr) {
            place.sx =
                net->state->scaleA * (net->state->mirrorState == GERBV_MIRROR_STATE_FLIPA ||
                                              net->state->mirrorState == GERBV_MIRROR_STATE_FLIPAB
                                          ? -1
                                          : 1);
            place.sy =
                net->state->scaleB * (net->state->mirrorState == GERBV_MIRROR_STATE_FLIPB ||
                                              net->state->mirrorState == GERBV_MIRROR_STATE_FLIPAB
                                          ? -1
                                          : 1);
            place.dx += net->state->offsetA;
            place.dy += net->state->offsetB;
        }
        int nx = 1;
        int ny = 1;
        double step_x = 0;
        double step_y = 0;
        bool positive = true;
        if (net->layer != nullptr) {
            positive = net->layer->polarity != GERBV_POLARITY_CLEAR &&
                       net->layer->polarity != GERBV_POLARITY_NEGATIVE;
            nx = std::max(1, net->layer->stepAndRepeat.X);
            ny = std::max(1, net->layer->stepAndRepeat.Y);
            step_x = net->layer->stepAndRepeat.dist_X;
            step_y = net->layer->stepAndRepeat.dist_Y;
        }
        if (net->interpolation == GERBV_INTERPOLATION_PAREA_START) {
            if (in_region) {
                continue;  // libgerbv splits a region at each move; the region goes on
            }
            in_region = true;
            contours.clear();
            region = featureInfo{};
            region.layer = layer;
            region.type = Korvo::API::feature_surface;
            region.positive = positive;
            continue;
        }
        if (net->interpolation == GERBV_INTERPOLATION_PAREA_END) {
            // An end while the tool is off is libgerbv closing one contour at a move inside
            // the region, not the region's end.
            if (net->aperture_state == GERBV_APERTURE_STATE_OFF && net->next != nullptr &&
                net->next->interpolation == GERBV_INTERPOLATION_PAREA_START) {
                continue;
            }
            in_region = false;
            for (int i = 0; i < nx; ++i) {
                for (int j = 0; j < ny; ++j) {
                    std::vector<std::vector<point>> copy = contours;
                    const point shift = nm(i * step_x, j * step_y);
                    for (auto& c : copy) {
                        for (point& q : c) {
                            q = {q.x + shift.x, q.y + shift.y};
                        }
                    }
                    addRegion(copy, region, features);
                }
            }
            continue;
        }
        if (net->interpolation == GERBV_INTERPOLATION_DELETED) {
            continue;
        }
        if (in_region) {
            const point from = place(net->start_x, net->start_y);
            const point to = place(net->stop_x, net->stop_y);
            if (net->aperture_state == GERBV_APERTURE_STATE_OFF || contours.empty()) {
                contours.push_back({to});
                if (net->aperture_state == GERBV_APERTURE_STATE_OFF) {
                    continue;
                }
                contours.back() = {from};
            }
            if ((net->interpolation == GERBV_INTERPOLATION_CW_CIRCULAR ||
                 net->interpolation == GERBV_INTERPOLATION_CCW_CIRCULAR) &&
                net->cirseg != nullptr) {
                const std::vector<point> arc = CopperGeometry::arcPoints(
                    from, to, place(net->cirseg->cp_x, net->cirseg->cp_y),
                    net->interpolation == GERBV_INTERPOLATION_CW_CIRCULAR);
                contours.back().insert(contours.back().end(), arc.begin() + 1, arc.end());
            } else {
                contours.back().push_back(to);
            }
            continue;
        }
        if (net->aperture_state == GERBV_APERTURE_STATE_OFF || net->aperture <= 0 ||
            net->aperture >= APERTURE_MAX || image->aperture[net->aperture] == nullptr) {
            continue;
        }
        const ApertureUse& use = useFor(net->aperture);
        for (int i = 0; i < nx; ++i) {
            for (int j = 0; j < ny; ++j) {
                const double ox = i * step_x;
                const double oy = j * step_y;
                featureInfo f;
                f.layer = layer;
                f.positive = positive;
                f.symbol = use.symbol;
                f.start = place(net->start_x + ox, net->start_y + oy);
                f.end = place(net->stop_x + ox, net->stop_y + oy);
                if (net->aperture_state == GERBV_APERTURE_STATE_FLASH) {
                    f.type = Korvo::API::feature_pad;
                    f.start = f.end;
                    for (const point& q : use.outline) {
                        f.contour.push_back({f.start.x + q.x, f.start.y + q.y});
                    }
                    for (const auto& hole : use.holes) {
                        f.holes.emplace_back();
                        for (const point& q : hole) {
                            f.holes.back().push_back({f.start.x + q.x, f.start.y + q.y});
                        }
                    }
                    if (drill) {
                        f.attributes[".drill"] = plating;
                    }
                } else if ((net->interpolation == GERBV_INTERPOLATION_CW_CIRCULAR ||
                            net->interpolation == GERBV_INTERPOLATION_CCW_CIRCULAR) &&
                           net->cirseg != nullptr) {
                    f.type = Korvo::API::feature_arc;
                    f.center = place(net->cirseg->cp_x + ox, net->cirseg->cp_y + oy);
                    f.clockwise = net->interpolation == GERBV_INTERPOLATION_CW_CIRCULAR;
                } else {
                    f.type = Korvo::API::feature_line;
                }
                features.push_back(std::move(f));
                ++tool_counts[net->aperture];
            }
        }
    }
    if (!drill) {
        // libgerbv drops the X2 attributes; the nets come from a pass of our own.
        GerberX2::nameFeatures(GerberX2::read(path), features);
    }
    message = path + ": " + std::to_string(features.size()) + " features";
    LOG(INFO) << "imported " << message << " into layer " << layer;
    return true;
}

}  // namespace wcref

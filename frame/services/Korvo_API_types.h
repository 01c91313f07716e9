#pragma once
// Geometry, layer, feature and step records of the CAM engine. Lengths and coordinates are in
// engine units: nanometres, 25,400 per mil.

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Korvo {
namespace API {

struct point {
    double x = 0.0;
    double y = 0.0;
};

inline bool operator==(const point& a, const point& b) {
    return a.x == b.x && a.y == b.y;
}

struct reply_box {
    double xmin = 0.0;
    double ymin = 0.0;
    double xmax = 0.0;
    double ymax = 0.0;
};

// One row of a job's layer matrix.
struct layer_info {
    std::string name;
    int row = 0;
    std::string context;      // "board" or "misc"
    std::string type;         // "signal", "mixed", "power_ground", "solder_mask", "silk_screen",
                              // "solder_paste", "drill", "rout", "document"
    std::string polarity;     // "positive" or "negative"
    std::string side;         // "top", "bottom", "inner" or "none"
    std::string drill_start;  // first and last layer a drill layer spans, empty otherwise
    std::string drill_end;
};

// Bit set of feature types and polarities used by the feature filter and the selection service.
enum FeatureTypeMask : int {
    FT_Pad = 1,
    FT_Line = 2,
    FT_Arc = 4,
    FT_Surface = 8,
    FT_Text = 16,
    FT_Negative = 32,
    FT_Positive = 64,
    FT_All = 127,
};

enum feature_type : int {
    feature_pad = FT_Pad,
    feature_line = FT_Line,
    feature_arc = FT_Arc,
    feature_surface = FT_Surface,
    feature_text = FT_Text,
};

// One feature of a layer. Pads and texts use `start` as their position; lines and arcs run from
// `start` to `end` (arcs around `center`, clockwise when `clockwise`); surfaces are `contour`.
struct featureInfo {
    int id = -1;
    std::string layer;
    feature_type type = feature_pad;
    bool positive = true;
    std::string symbol;
    point start;
    point end;
    point center;
    bool clockwise = true;
    std::vector<point> contour;
    // Inner outlines of a surface (each inside `contour`); empty for other features.
    std::vector<std::vector<point>> holes;
    double angle = 0.0;
    bool mirror = false;
    std::string text;
    std::map<std::string, std::string> attributes;
};

// One row of a step-and-repeat table: the child step placed as an nx x ny array.
struct step_repeat_op {
    std::string step_name;
    int32_t x = 0;
    int32_t y = 0;
    int32_t dx = 0;
    int32_t dy = 0;
    int32_t nx = 1;
    int32_t ny = 1;
    int32_t angle = 0;
    bool mirror = false;
    std::set<int> selection;  // instance positions i + j * nx that are selected
};

// What file_identify found in an input file and file_translate reads it with.
struct file_Parameters {
    std::string format;      // "gerber274x" or "excellon"
    std::string units;       // "inch" or "mm", as the file declares them
    int integer_digits = 0;  // coordinate format; 0 when the file does not say
    int decimal_digits = 0;
    std::string zeros;        // "leading" or "trailing" (omitted zeros), "none"
    std::string coordinates;  // "absolute" or "incremental"
    // Excellon: how the coordinate format above was chosen, e.g. "header (98% of 427 holes on
    // pads)" or "registration (...)"; empty for Gerber.
    std::string format_source;
    std::string plating;  // Excellon: "plated", "non_plated" or "" when the file does not say
};

struct step_header_info {
    std::string name;
    point datum;
    reply_box profile_box;
    bool has_profile = false;
    int repeat_rows = 0;
};

}  // namespace API
}  // namespace Korvo

#pragma once
// What an Excellon drill file says about its coordinates, and which reading of them places its
// holes onto the copper.
//
// An Excellon coordinate without a decimal point is a string of digits whose meaning the header
// gives: the unit (INCH / METRIC, M72 / M71), which zeros are left out (Excellon's "LZ" keeps
// the leading zeros and leaves out trailing ones, "TZ" the reverse) and how many digits come
// before and after the decimal point (a ";FILE_FORMAT=i:d" comment, "METRIC,000.000" or
// "INCH,00.0000"). Headers are often silent or wrong about this, and a wrong reading scales
// every hole about the origin. `choose` therefore tries the plausible readings and keeps the
// one that puts the most holes inside pads of the outer copper layers; the header's reading
// wins when it does as well as the best within `kMargin`. With too few holes or no copper the
// header's reading is kept and the choice says it was not checked.
//
// Plating comes from ";TYPE=PLATED" / ";TYPE=NON_PLATED" comments, X2 file-function comments
// ("; #@! TF.FileFunction,Plated,..." / "NonPlated") and else from the file name ("-NPTH",
// "unplated", "non-plated", "npth" are non-plated; "-PTH", "plated" plated).

#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace wcref {

// How digit strings become lengths.
struct DrillNumberFormat {
    std::string units = "inch";     // "inch" or "mm"
    std::string zeros = "leading";  // zeros left out: "leading" (TZ), "trailing" (LZ) or "none"
    int integer_digits = 2;
    int decimal_digits = 4;
};

bool operator==(const DrillNumberFormat& a, const DrillNumberFormat& b);

// What the file states; each part empty or 0 when the file does not state it.
struct DrillHeader {
    std::string units;  // "inch" or "mm"
    std::string zeros;  // "leading" or "trailing" (left out), as DrillNumberFormat
    int integer_digits = 0;
    int decimal_digits = 0;
    std::string digits_from;      // the statement the digits come from, e.g. ";FILE_FORMAT=2:3"
    int fmat = 0;                 // FMAT,1 or FMAT,2
    bool decimal_points = false;  // its hole coordinates carry a decimal point
    bool incremental = false;     // ICI,ON or G91
    std::string plating;          // "plated", "non_plated" or "" from its comments

    // The format the header gives, with the customary defaults for what it leaves out:
    // inch, leading zeros left out, 2:4 in inch and 3:3 in mm.
    DrillNumberFormat reading() const;
    // What it stated, e.g. "INCH,LZ ;FILE_FORMAT=2:3", or "nothing".
    std::string stated() const;
};

// One hole as written; an axis the line leaves out repeats the last one.
struct HoleText {
    std::string x;
    std::string y;
};

// A pad to register holes against (nanometres): a disc of radius `half_width` when `round`,
// else a box of the half sizes.
struct PadSite {
    double x = 0.0;
    double y = 0.0;
    double half_width = 0.0;
    double half_height = 0.0;
    bool round = false;
};

struct DrillChoice {
    DrillNumberFormat format;
    std::string source;     // how it was chosen, for people
    bool by_header = true;  // the header's reading was kept
    bool checked = false;   // the holes were registered against copper
    double share = 0.0;     // of the holes on pads in the chosen format, when checked
    int holes = 0;
    std::string warning;  // why the format could not be decided; empty when it was
};

class DrillFormat {
public:
    // Fewer holes than this are not registered.
    static constexpr int kMinHoles = 4;
    // The header's reading is kept when its share of holes on pads is this close to the best.
    static constexpr double kMargin = 0.02;
    // Below this share of holes on pads no reading is trusted.
    static constexpr double kMinShare = 0.5;

    static DrillHeader readHeader(const std::string& text);
    // Plating from the file name alone: "plated", "non_plated" or "".
    static std::string platingOfName(const std::string& file_name);
    // The header's comments first, then the name.
    static std::string plating(const std::string& file_name, const DrillHeader& header);

    // The drilled holes of the file in order (routed moves and repeats left out).
    static std::vector<HoleText> holes(const std::string& text);
    // One coordinate in nanometres; false when `token` is not a number.
    static bool decode(const std::string& token, const DrillNumberFormat& format, double& nm);
    static std::vector<Korvo::API::point> place(const std::vector<HoleText>& holes,
                                                const DrillNumberFormat& format);
    // Share of `holes` whose centre lies inside one of `pads` (0 without holes).
    static double shareOnPads(const std::vector<Korvo::API::point>& holes,
                              const std::vector<PadSite>& pads);

    // The readings tried: both units, each way of leaving zeros out with the digit counts
    // that make a difference for it.
    static std::vector<DrillNumberFormat> candidates(const DrillHeader& header);
    static DrillChoice choose(const DrillHeader& header, const std::vector<HoleText>& holes,
                              const std::vector<PadSite>& pads);

    // "INCH,LZ 2:3" and the like.
    static std::string describe(const DrillNumberFormat& format);
};

}  // namespace wcref

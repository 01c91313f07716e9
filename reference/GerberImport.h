#pragma once
// Reads Gerber RS-274X and Excellon drill files through libgerbv into features of one layer.
//
// What becomes what (coordinates and sizes in nanometres whatever the file's unit and format):
// - a flash is a pad named after its aperture: "r<d>", "s<w>", "rect<w>x<h>", "oval<w>x<h>"
//   (sizes in mil); a polygon aperture is "poly<d>x<n>" and a macro aperture
//   "macro_<name>_d<code>", and both keep their outline in the pad's contour (the largest part
//   when a macro draws several, with its holes);
// - a draw is a line or an arc carrying its aperture's symbol;
// - a region is a surface; a contour of the region that lies inside another is its hole;
// - Excellon hits are round drill pads, routed slots are lines with the tool's symbol;
// - clear polarity makes the feature negative; step-and-repeat blocks are expanded.
// A file is refused, with the reason, when libgerbv cannot identify or read it, when it is
// not Gerber or Excellon (pick-and-place lists), when it holds characters that are not Gerber,
// when it ends without its end code, or when it uses an aperture it never defines (RS-274D
// data whose apertures live in a separate file).

#include <map>
#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace wcref {

class GerberImport {
public:
    static bool identify(const std::string& path, std::string& format,
                         Korvo::API::file_Parameters& parameters, std::string& message);

    // Features of the file for `layer`, ids not yet given; `tool_counts` maps aperture or tool
    // numbers to the features made with them.
    static bool read(const std::string& path, const std::string& layer,
                     std::vector<Korvo::API::featureInfo>& features,
                     std::map<int, int>& tool_counts, std::string& message);
};

}  // namespace wcref

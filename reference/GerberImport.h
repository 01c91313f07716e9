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
//
// Excellon coordinates are read in the format identification chose (DrillFormat: the header's
// reading unless another one puts clearly more holes onto the outer copper's pads); libgerbv is
// told that format through its drill attributes and what it cannot be told is corrected after
// it has read the file (see GerberImport.cpp). Drill pads carry ".drill" = "plated" or
// "non_plated" (plated unless the file or its name says otherwise).

#include <map>
#include <string>
#include <vector>

#include "DrillFormat.h"
#include "Korvo_API_types.h"

namespace wcref {

class GerberImport {
public:
    // What `path` is and, for a Gerber file, the format it declares. For an Excellon file the
    // coordinate format is chosen by registering its holes onto the outer copper of the folder
    // it lies in (`folderCopper`); `parameters.format_source` says how, `parameters.plating`
    // what the file says of its plating.
    static bool identify(const std::string& path, std::string& format,
                         Korvo::API::file_Parameters& parameters, std::string& message);
    // The same, registering an Excellon file's holes onto `copper` instead.
    static bool identify(const std::string& path, std::string& format,
                         Korvo::API::file_Parameters& parameters, std::string& message,
                         const std::vector<PadSite>& copper);
    // Whether libgerbv reads `path` as a layer, and whether that is an Excellon file.
    static bool kind(const std::string& path, bool& drill, std::string& message);

    // Features of the file for `layer`, ids not yet given; `tool_counts` maps aperture or tool
    // numbers to the features made with them. An Excellon file is read in the format of
    // `parameters` when they give one (zeros set), else in libgerbv's own reading.
    static bool read(const std::string& path, const std::string& layer,
                     std::vector<Korvo::API::featureInfo>& features,
                     std::map<int, int>& tool_counts, std::string& message,
                     const Korvo::API::file_Parameters* parameters = nullptr);

    // Pads of `features` (flashes; lines, arcs and surfaces are left out) as sites to register
    // drill holes against.
    static std::vector<PadSite> padSites(const std::vector<Korvo::API::featureInfo>& features);
    // Pad sites of the outer copper next to `path`: the files of its folder that
    // JobFromFolder::guessLayer types as top or bottom signal layers. Cached per folder (see
    // GerberImport.cpp).
    static std::vector<PadSite> folderCopper(const std::string& path);
};

}  // namespace wcref

#pragma once
// The libgerbv images LayerExport hands to libgerbv's exporters, built from a layer's features,
// with what the correction of libgerbv's output needs to know of them (LayerExport.cpp).

#include <gerbv.h>
#undef MIN  // gerbv.h defines them with GNU statement expressions
#undef MAX

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "LayerExport.h"

namespace wcref {

struct GerbvImageDeleter {
    void operator()(gerbv_image_t* image) const { gerbv_destroy_image(image); }
};
using GerbvImage = std::unique_ptr<gerbv_image_t, GerbvImageDeleter>;

struct GerberImage {
    GerbvImage image;
    // The standard apertures at full precision by number, as written after "%ADD<n>":
    // "C,0.0137795", "R,0.0600000X0.0800000", "P,0.0500000X8X22.5000000".
    std::map<int, std::string> definitions;
};

// One hole or slot in inches, as libgerbv gets it.
struct DrillHole {
    double x0 = 0.0;
    double y0 = 0.0;
    double x1 = 0.0;
    double y1 = 0.0;
    bool slot = false;

    // Whether `line` is what libgerbv writes for this hole: whole ten-thousandths of an inch.
    bool writtenAs(const std::string& line) const;
    // The hole with decimal points and six decimals.
    std::string text() const;
};

struct DrillTool {
    double diameter = 0.0;  // inches
    bool plated = true;
    std::vector<DrillHole> holes;  // in the order of the layer's features
};

struct DrillImage {
    GerbvImage image;
    std::map<int, DrillTool> tools;  // by number
    std::string plating;             // "plated", "non_plated" or "mixed"
};

// False with the reason (naming the feature) when a feature cannot be written.
bool buildGerberImage(const ExportLayer& layer, GerberImage& out, std::string& message);
bool buildDrillImage(const ExportLayer& layer, DrillImage& out, std::string& message);

}  // namespace wcref

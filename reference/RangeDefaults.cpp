// Default severity levels of every range key, in mil, one row per item in enumeration order.
// Minimum rules go red < yellow < green; maximum rules (off-centre, oversize) the other way.
// Items that count occurrences or are unit-free (missing, exposed, aspect ratio, angle) have
// no levels: the range editor shows every level as a length, so they stay at zero.

#include <iterator>

#include "Korvo_DFM_types.h"
#include "RangeStore.h"

namespace wcref {
namespace {

using namespace Korvo::API;

const RangeDefault kSignalLayer[] = {
    {"Pad to Pad Spacing", 3, 4, 5},
    {"Pad to Line Spacing", 3, 4, 5},
    {"Pad to Arc Spacing", 3, 4, 5},
    {"Pad to Surface Spacing", 3, 4, 5},
    {"Line to Line Spacing", 3, 4, 5},
    {"Line to Arc Spacing", 3, 4, 5},
    {"Line to Surface Spacing", 3, 4, 5},
    {"Arc to Arc Spacing", 3, 4, 5},
    {"Surface to Surface Spacing", 3, 4, 5},
    {"Same Net Pad to Pad", 2, 3, 4},
    {"Same Net Pad to Line", 2, 3, 4},
    {"Same Net Line to Line", 2, 3, 4},
    {"SMD to SMD Spacing", 4, 5, 6},
    {"SMD to Pad Spacing", 4, 5, 6},
    {"SMD to Line Spacing", 3, 4, 5},
    {"BGA to BGA Spacing", 4, 5, 6},
    {"BGA to Line Spacing", 3, 4, 5},
    {"Text to Copper", 4, 6, 8},
    {"Text to Text", 4, 6, 8},
    {"PTH Annular Ring", 4, 5, 6},
    {"Via Annular Ring", 3, 4, 5},
    {"Laser Via Annular Ring", 2, 3, 4},
    {"Buried Via Annular Ring", 3, 4, 5},
    {"NPTH to Copper", 8, 10, 12},
    {"PTH to Copper", 8, 10, 12},
    {"Via to Copper", 6, 8, 10},
    {"Laser Via to Copper", 4, 5, 6},
    {"Missing Pad for PTH", 0, 0, 0},
    {"Missing Pad for Via", 0, 0, 0},
    {"Drill to Plane", 8, 10, 12},
    {"Rout to Pad", 8, 10, 12},
    {"Rout to Line", 8, 10, 12},
    {"Rout to Surface", 8, 10, 12},
    {"Rout to SMD", 8, 10, 12},
    {"Rout to Text", 8, 10, 12},
    {"Compensated Rout to Copper", 6, 8, 10},
    {"Line Width", 3, 4, 5},
    {"Arc Width", 3, 4, 5},
    {"Pad Size", 8, 10, 12},
    {"SMD Width", 6, 8, 10},
    {"SMD Length", 8, 10, 12},
    {"BGA Diameter", 8, 10, 12},
    {"Surface Width", 3, 4, 5},
    {"Text Line Width", 4, 5, 6},
    {"Copper Sliver", 2, 3, 4},
    {"Copper Slot", 3, 4, 5},
    {"Line Sliver", 2, 3, 4},
    {"Surface Sliver", 2, 3, 4},
    {"Line Stub", 2, 3, 4},
    {"Arc Stub", 2, 3, 4},
    {"Dangling Line", 0, 0, 0},
    {"SMD Off Center", 3, 2, 1},
    {"Pad Off Center", 3, 2, 1},
    {"Drill Off Center", 3, 2, 1},
    {"Via Off Center", 3, 2, 1},
    {"SMD Pitch", 8, 10, 12},
    {"BGA Pitch", 16, 20, 24},
    {"SMD to Via", 4, 5, 6},
    {"SMD Neck Down", 2, 3, 4},
    {"SMD with Via in Pad", 0, 0, 0},
    {"Line Bottleneck", 3, 4, 5},
    {"Surface Bottleneck", 3, 4, 5},
    {"Neck Down Length", 30, 20, 10},
    {"Pad Connection Overlap", 2, 3, 4},
    {"Missing Pad Connection", 0, 0, 0},
    {"Partial Pad Connection", 0, 0, 0},
    {"Pad Entry Angle", 0, 0, 0},
    {"SM Sorted Pad to Pad", 3, 4, 5},
    {"SM Sorted Pad to Line", 3, 4, 5},
    {"SM Sorted Line to Line", 3, 4, 5},
    {"SM Sorted SMD Spacing", 4, 5, 6},
    {"Isolated Copper", 0, 0, 0},
    {"Netlist Open", 0, 0, 0},
    {"Netlist Short", 0, 0, 0},
};
static_assert(std::size(kSignalLayer) == sli_netlist_short + 1, "one row per item");

const RangeDefault kSolderMask[] = {
    {"Pad Clearance", 1, 1.5, 2},
    {"SMD Clearance", 1, 1.5, 2},
    {"BGA Clearance", 1, 1.5, 2},
    {"PTH Clearance", 2, 2.5, 3},
    {"Via Clearance", 1, 1.5, 2},
    {"NPTH Clearance", 2, 3, 4},
    {"Line Coverage", 1, 1.5, 2},
    {"Arc Coverage", 1, 1.5, 2},
    {"Surface Coverage", 1, 1.5, 2},
    {"Text Coverage", 1, 1.5, 2},
    {"Via Coverage", 1, 1.5, 2},
    {"Pad Coverage", 1, 1.5, 2},
    {"Pad to Pad Bridge", 3, 3.5, 4},
    {"SMD to SMD Bridge", 3, 3.5, 4},
    {"BGA to BGA Bridge", 3, 3.5, 4},
    {"Pad to SMD Bridge", 3, 3.5, 4},
    {"Mask Sliver", 2, 3, 4},
    {"Coverage Sliver", 2, 3, 4},
    {"Partial Clearance", 0, 0, 0},
    {"Partial Coverage", 0, 0, 0},
    {"Exposed Line", 0, 0, 0},
    {"Exposed Arc", 0, 0, 0},
    {"Exposed Surface", 0, 0, 0},
    {"Exposed Text", 0, 0, 0},
    {"Exposed Via", 0, 0, 0},
    {"Missing Pad Clearance", 0, 0, 0},
    {"Missing SMD Clearance", 0, 0, 0},
    {"Missing BGA Clearance", 0, 0, 0},
    {"Missing PTH Clearance", 0, 0, 0},
    {"Missing NPTH Clearance", 0, 0, 0},
    {"Clearance to Drill", 2, 3, 4},
    {"Clearance to Rout", 4, 6, 8},
    {"Mask to Rout", 4, 6, 8},
    {"Mask to Profile", 4, 6, 8},
    {"SMD Pitch", 8, 10, 12},
    {"BGA Pitch", 16, 20, 24},
    {"Gasket Width", 2, 3, 4},
    {"Gasket Size", 3, 4, 5},
    {"Tented Via", 0, 0, 0},
    {"Partially Tented Via", 0, 0, 0},
    {"Uncovered Via", 0, 0, 0},
    {"Partially Covered Pad", 0, 0, 0},
    {"Partially Covered SMD", 0, 0, 0},
    {"Partially Covered BGA", 0, 0, 0},
    {"Mask Surface Width", 3, 4, 5},
    {"Mask Line Width", 3, 4, 5},
    {"Mask Text Width", 4, 5, 6},
    {"Mask on Copper Only", 0, 0, 0},
    {"Mask to Mask Spacing", 3, 4, 5},
    {"Mask to Silk", 2, 3, 4},
    {"Mask to Text", 2, 3, 4},
    {"Gold Finger Clearance", 4, 6, 8},
    {"Gold Finger Coverage", 4, 6, 8},
    {"Test Point Clearance", 2, 3, 4},
    {"Test Point Coverage", 2, 3, 4},
    {"Fiducial Clearance", 20, 30, 40},
    {"Fiducial Coverage", 2, 3, 4},
    {"Plugged Via", 0, 0, 0},
    {"Via in Pad Clearance", 1, 1.5, 2},
    {"Degassing Opening", 4, 6, 8},
    {"Pad in Surface Clearance", 1, 1.5, 2},
    {"Oversize Clearance", 6, 5, 4},
    {"Undersize Clearance", 0.5, 1, 1.5},
    {"Mask Dam", 3, 3.5, 4},
    {"SMD Mask Dam", 3, 3.5, 4},
    {"BGA Mask Dam", 3, 3.5, 4},
    {"Open Copper Area", 0, 0, 0},
    {"Mask Overlap", 0, 0, 0},
    {"Mask Slot", 3, 4, 5},
    {"Isolated Mask", 0, 0, 0},
};
static_assert(std::size(kSolderMask) == smi_isolated_mask + 1, "one row per item");

const RangeDefault kSilkScreen[] = {
    {"Silk to Pad", 4, 5, 6},
    {"Silk to SMD", 4, 5, 6},
    {"Silk to BGA", 4, 5, 6},
    {"Silk to PTH", 6, 8, 10},
    {"Silk to Via", 3, 4, 5},
    {"Silk to NPTH", 8, 10, 12},
    {"Silk to Mask Opening", 2, 3, 4},
    {"Silk to Rout", 8, 10, 12},
    {"Silk to Profile", 8, 10, 12},
    {"Silk to Copper", 3, 4, 5},
    {"Silk Line Width", 4, 5, 6},
    {"Silk Text Height", 25, 30, 35},
    {"Silk Text Width", 20, 25, 30},
    {"Silk Text Line Width", 4, 5, 6},
    {"Silk to Silk", 4, 5, 6},
    {"Silk Sliver", 3, 4, 5},
    {"Silk over Mask Opening", 0, 0, 0},
    {"Silk over Pad", 0, 0, 0},
    {"Silk over Drill", 0, 0, 0},
    {"Silk outside Profile", 0, 0, 0},
    {"Silk on Gold Finger", 0, 0, 0},
    {"Silk on Test Point", 0, 0, 0},
    {"Silk Arc Width", 4, 5, 6},
    {"Silk Surface Width", 4, 5, 6},
    {"Polarity Mark", 0, 0, 0},
    {"Legend Spacing", 4, 5, 6},
    {"Component Outline", 4, 5, 6},
    {"Isolated Silk", 0, 0, 0},
};
static_assert(std::size(kSilkScreen) == ssi_silk_isolated + 1, "one row per item");

const RangeDefault kDrill[] = {
    {"Hole Size", 6, 8, 10},
    {"Hole to Hole", 8, 10, 12},
    {"Hole to Hole Same Net", 6, 8, 10},
    {"Hole to Rout", 8, 10, 12},
    {"Hole to Profile", 10, 15, 20},
    {"Duplicate Holes", 0, 0, 0},
    {"Touching Holes", 0, 0, 0},
    {"Covered Holes", 0, 0, 0},
    {"Missing Holes", 0, 0, 0},
    {"Extra Holes", 0, 0, 0},
    {"PTH Annular Ring", 4, 5, 6},
    {"Via Annular Ring", 3, 4, 5},
    {"NPTH Annular Ring", 4, 6, 8},
    {"Laser Via Size", 3, 4, 5},
    {"Stacked Laser Via", 0, 0, 0},
    {"Blind Via Span", 0, 0, 0},
    {"Buried Via Span", 0, 0, 0},
    {"Backdrill Depth", 0, 0, 0},
    {"Slot Length", 20, 30, 40},
    {"Slot Width", 20, 24, 28},
    {"Rout Width", 30, 40, 50},
    {"Rout to Copper", 8, 10, 12},
    {"PTH to NPTH", 10, 12, 14},
    {"Drill to Drill Layer", 0, 0, 0},
    {"Aspect Ratio", 0, 0, 0},
    {"Tool Count", 0, 0, 0},
};
static_assert(std::size(kDrill) == dci_tool_count + 1, "one row per item");

const RangeDefault kBoardDrill[] = {
    {"Hole to Hole", 8, 10, 12}, {"Hole Size", 6, 8, 10},      {"Hole to Profile", 10, 15, 20},
    {"Hole to Rout", 8, 10, 12}, {"Duplicate Holes", 0, 0, 0}, {"Touching Holes", 0, 0, 0},
    {"Drill Span", 0, 0, 0},     {"Aspect Ratio", 0, 0, 0},    {"Missing Hole", 0, 0, 0},
    {"Extra Hole", 0, 0, 0},
};
static_assert(std::size(kBoardDrill) == bdi_extra_hole + 1, "one row per item");

const RangeDefault kPowerGround[] = {
    {"Thermal Spoke Width", 6, 8, 10}, {"Thermal Air Gap", 6, 8, 10},
    {"PTH Clearance", 8, 10, 12},      {"Via Clearance", 6, 8, 10},
    {"NPTH Clearance", 10, 12, 14},    {"Plane to Profile", 10, 15, 20},
    {"Plane Sliver", 3, 4, 5},         {"Plane Necking", 4, 5, 6},
    {"Missing Thermal", 0, 0, 0},      {"Missing Clearance", 0, 0, 0},
    {"Isolated Plane", 0, 0, 0},       {"Drill to Plane", 8, 10, 12},
};
static_assert(std::size(kPowerGround) == pgi_drill_to_plane + 1, "one row per item");

const RangeDefault kPowerGroundOpt[] = {
    {"Thermal Repaired", 6, 8, 10}, {"Clearance Enlarged", 8, 10, 12},
    {"Sliver Filled", 3, 4, 5},     {"Isolated Plane Removed", 0, 0, 0},
    {"Spoke Widened", 6, 8, 10},    {"Clearance Added", 8, 10, 12},
    {"Plane Trimmed", 10, 15, 20},  {"Unresolved", 0, 0, 0},
};
static_assert(std::size(kPowerGroundOpt) == pgo_unresolved + 1, "one row per item");

const RangeDefault kSurfaceAnalyzer[] = {
    {"Surface Width", 3, 4, 5},   {"Surface Sliver", 2, 3, 4}, {"Surface Void", 3, 4, 5},
    {"Surface Necking", 3, 4, 5}, {"Surface Island", 0, 0, 0}, {"Surface to Drill", 8, 10, 12},
};
static_assert(std::size(kSurfaceAnalyzer) == sai_surface_to_drill + 1, "one row per item");

const RangeDefault kPadSnapping[] = {
    {"Pad Snapped", 1, 0.5, 0.25},
    {"Pad Off Grid", 1, 0.5, 0.25},
    {"Pad Unmatched", 0, 0, 0},
    {"Pad Ambiguous", 0, 0, 0},
};
static_assert(std::size(kPadSnapping) == psi_pad_ambiguous + 1, "one row per item");

const RangeDefault kTeardrops[] = {
    {"Created on Drilled Pads", 4, 5, 6}, {"Created on Undrilled Pads", 3, 4, 5},
    {"Missing on Drilled Pads", 0, 0, 0}, {"Missing on Undrilled Pads", 0, 0, 0},
    {"Old Teardrops Deleted", 0, 0, 0},   {"Skipped for Spacing", 3, 4, 5},
};
static_assert(std::size(kTeardrops) == tdi_skipped_spacing + 1, "one row per item");

const RangeDefault kPrepare[] = {
    {"Missing Profile", 0, 0, 0},        {"Missing Drill Layer", 0, 0, 0},
    {"Layer without Features", 0, 0, 0}, {"Unmatched Drill Tools", 0, 0, 0},
    {"Open Surfaces", 0, 0, 0},          {"Duplicate Features", 0, 0, 0},
};
static_assert(std::size(kPrepare) == pci_duplicate_features + 1, "one row per item");

const RangeDefault kNfpRemoval[] = {
    {"Isolated Pads Removed", 0, 0, 0},     {"Duplicate Pads Removed", 0, 0, 0},
    {"Drilled Over Pads Removed", 0, 0, 0}, {"Covered Pads Removed", 0, 0, 0},
    {"Undrilled Pads Removed", 0, 0, 0},    {"Pads Marked", 0, 0, 0},
};
static_assert(std::size(kNfpRemoval) == nfp_marked + 1, "one row per item");

const RangeDefault kSignalLayerOpt[] = {
    {"PTH Annular Ring", 4, 5, 6},
    {"Via Annular Ring", 3, 4, 5},
    {"Laser Via Annular Ring", 2, 3, 4},
    {"Buried Via Annular Ring", 3, 4, 5},
    {"Spacing", 3, 4, 5},
    {"Pad to Pad Spacing", 3, 4, 5},
    {"Drill to Pad", 8, 10, 12},
    {"SMD to SMD", 4, 5, 6},
    {"BGA to BGA", 4, 5, 6},
    {"SMD Shaving", 2, 3, 4},
    {"BGA Shaving", 2, 3, 4},
    {"Pad Up", 0, 0, 0},
    {"Pad Down", 0, 0, 0},
    {"Reroute", 0, 0, 0},
    {"Line Down", 0, 0, 0},
    {"Reshape", 0, 0, 0},
};
static_assert(std::size(kSignalLayerOpt) == sdi_reshape + 1, "one row per item");

const RangeDefault kSolderMaskOpt[] = {
    {"Clearance Resized", 1, 1.5, 2},  {"Clearance below Minimum", 1, 1.5, 2},
    {"Coverage Resized", 1, 1.5, 2},   {"Coverage below Minimum", 1, 1.5, 2},
    {"Bridge Removed", 3, 3.5, 4},     {"Bridge below Minimum", 3, 3.5, 4},
    {"Surplus Coverage Cut", 0, 0, 0}, {"Surplus Clearance Cut", 0, 0, 0},
    {"Gas Opening Resized", 4, 6, 8},  {"Partial Clearance", 0, 0, 0},
    {"Pad in Surface", 1, 1.5, 2},     {"Vertical Flow", 0, 0, 0},
};
static_assert(std::size(kSolderMaskOpt) == smo_vertical_flow + 1, "one row per item");

template <std::size_t N>
std::vector<RangeDefault> rows(const RangeDefault (&table)[N]) {
    return std::vector<RangeDefault>(std::begin(table), std::end(table));
}

}  // namespace

const std::map<std::string, std::vector<RangeDefault>>& RangeStore::defaults() {
    static const std::map<std::string, std::vector<RangeDefault>> tables = {
        {"SignalLayerRanges", rows(kSignalLayer)},
        {"SignalLayerOptRanges", rows(kSignalLayerOpt)},
        {"SolderMaskRanges", rows(kSolderMask)},
        {"SolderMaskOptRanges", rows(kSolderMaskOpt)},
        {"SilkScreenRanges", rows(kSilkScreen)},
        {"DrillRanges", rows(kDrill)},
        {"BoardDrillRanges", rows(kBoardDrill)},
        {"PowerGroundRanges", rows(kPowerGround)},
        {"PowerGroundOptRanges", rows(kPowerGroundOpt)},
        {"SurfaceAnalyzerRanges", rows(kSurfaceAnalyzer)},
        {"PadSnappingRanges", rows(kPadSnapping)},
        {"TeardropsRanges", rows(kTeardrops)},
        {"PrePareRanges", rows(kPrepare)},
        {"NFPRemoval", rows(kNfpRemoval)},
    };
    return tables;
}

}  // namespace wcref

#pragma once
// The signal layer check of the reference engine, on the layer's own geometry.
//
// Copper is every positive pad, line, arc and surface of the layer (CopperGeometry.h, where
// round pads, round line ends and arcs drawn with round symbols are exact); negative features
// are not subtracted and texts are not measured. Features that touch or overlap (within half a
// nanometre) are one island, one piece of copper: a pour drawn as overlapping strokes or
// hatched is one island. A distance is below a limit when it is below by more than a
// picometre, so that a layout at exactly the limit is no hit. Candidates come from
// a Boost.Geometry R-tree, so the work grows with n log n, not n squared. Distances are edge
// to edge; each hit carries the measured value, its shape (the two closest points as a line
// for a distance, the feature's box for a size or a missing pad), its features as (layer row,
// feature id) and their signature (`hitSignature`, CopperGeometry.h), and the value it was held
// against (`required`): the test's distance below, a size item's green level, 0 for a missing
// pad (a count).
//
// Tests and their rules:
// - Spacing: two features of different islands closer than "Spacing" -> pad/line/arc/surface
//   pair items ("Arc to Surface" counts as "Line to Surface"). The gap must be free: when other
//   copper reaches into the disc whose diameter is the gap, that copper is closer to one of
//   the two and its own, narrower gap is the hit, so a pad beside a trace corner gives one hit
//   at the corner's true clearance rather than one per segment.
// - Smd: the same rule for pairs with a pad carrying ".smd" -> "SMD to SMD", "SMD to Pad",
//   "SMD to Line" (lines, arcs and surfaces). With Smd on, such pairs leave the Spacing items;
//   with Smd off they count as pads there.
// - Drill: a hole of a drill layer spanning the layer closer than "Drill to Cu" to copper of
//   an island the hole does not touch -> "Via to Copper" (".drill" = "via"), "NPTH to Copper"
//   ("non_plated"), else "PTH to Copper". With "Check Missing Pads for Drills", a plated hole
//   or via whose centre no pad covers -> "Missing Pad for PTH" / "Missing Pad for Via", value
//   the hole's diameter.
// - Rout: a feature of a rout layer (a surface there counts by its edge) closer than
//   "Rout to Cu" to copper -> "Rout to Pad", "Rout to SMD", "Rout to Line", "Rout to Surface".
// - Size: a line or arc narrower, or a pad whose smaller side is smaller, than the item's
//   green level -> "Line Width", "Arc Width", "Pad Size", "SMD Width"; no range, no test.
// - Sliver: two features of the same island that do not touch but come closer than
//   "Sliver min", where the gap between them is empty: no other copper of the layer reaches
//   into the disc whose diameter is the gap between the two closest points (a narrow void
//   inside one piece of copper) -> "Copper Sliver". Copper in that disc fills the gap (the
//   middle stroke between strokes two apart in a pour) or closes it (the gap is the mouth of
//   a notch); the void is then narrower between that copper and the pair, a pair of its own.
//   Along parallel edges and concentric arcs the gap is taken halfway along their common
//   stretch. One hit per gap, however many copies of a feature share it.
// - Pad Connection Check: a round line or arc ending on a pad of its island whose copper
//   reaches less than "Minimum pad overlap" into the pad (the end's depth inside the pad plus
//   half the width) -> "Pad Connection Overlap". An end that lies in other copper than pads
//   and copies of the line is no trace entering the pad (a stroke of a pour ending in the
//   pour, a vertex where a trace goes on) and is not reported.
// - Nets: with the job's nets given (`nets` of the layers, `net_names`), a pair of different
//   islands of one net (joined through a hole or on another layer) goes to the same-net items
//   instead of the spacing items: "Same Net Pad to Pad", "Same Net Pad to Line" (a pad with a
//   line, arc or surface), "Same Net Line to Line" (the rest), under the Spacing or Smd test.
//   Every hit names the nets of its copper (`check_info::nets`): two for a spacing, one for a
//   same-net pair, a sliver or a pad connection, the hole's and the copper's for a drill.
//   Missing pads are looked for on outer layers only (`outer`).
// Not computed, their items stay empty: Stubs, Center, Bottleneck, BGA, text, annular ring,
// solder-mask-sorted and isolated copper items, necks inside one feature. The netlist items
// ("Netlist Open", "Netlist Short") come from the job's nets, not from this check
// (EngineLongOperations.cpp).
//
// Grading (minimum rules): a value below the item's red level is red, below yellow yellow,
// below green green; at or above green, or an item without a range, it goes to the fourth
// list ("other"), shown under "All". An item whose three levels are zero (a count, such as a
// missing pad) grades every hit red.
//
// Scope: 0 every feature; 1 features whose box centre lies in the screen box; 2 those inside
// the profile; 3 the selected ones. Islands are always built from the whole layer; a hit is
// kept when one of its features is in scope. Progress goes from 0 to 100; the stop flag is
// polled at least every 20 ms, and a stopped run keeps the hits found so far.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "Korvo_Analysis_types.h"
#include "progress_value.h"

namespace wcref {

struct CheckLayer {
    int row = 0;
    std::vector<Korvo::API::featureInfo> features;
    std::set<int> selected;  // feature ids
    // Net of each feature (an index into SignalCheckInput::net_names, -1 for none), parallel to
    // `features`; empty when the job's nets are unknown.
    std::vector<int> nets;
};

struct SignalCheckInput {
    CheckLayer copper;
    std::vector<CheckLayer> drills;  // drill layers spanning the copper layer
    std::vector<CheckLayer> routs;
    std::vector<Korvo::API::point> profile;
    std::vector<std::string> net_names;
    // An outer layer (top or bottom): only there does a plated hole need a pad; an inner layer
    // that a hole passes without a pad is a layer it does not connect to.
    bool outer = true;
    bool has_screen_box = false;
    Korvo::API::reply_box screen_box;
};

using SignalRanges =
    std::map<Korvo::API::signal_layers_checks_items, Korvo::API::signal_check_range>;
using SignalResult =
    std::map<Korvo::API::signal_layers_checks_items, Korvo::API::signal_check_result>;

class SignalChecks {
public:
    // Fills `result` with the items that have hits. False only when stopped.
    static bool run(const SignalCheckInput& input, const Korvo::API::signal_check_params& params,
                    const std::vector<Korvo::API::signal_layers_checks_list>& tests,
                    const SignalRanges& ranges, SignalResult& result,
                    Korvo::COMMON::progress_state* progress, int scope);

    // Puts the hit into the list its value earns under the item's range.
    static void grade(Korvo::API::signal_layers_checks_items item, Korvo::API::check_info hit,
                      const SignalRanges& ranges, SignalResult& result);
};

}  // namespace wcref

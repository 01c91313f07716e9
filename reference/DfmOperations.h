#pragma once
// The four DFM optimisations of the reference engine, on the layers' own geometry. Each is a
// file of its own (DfmSignalLayerOpt.cpp, DfmSolderMaskOpt.cpp, DfmTeardrops.cpp,
// DfmNfpRemoval.cpp); the run around their work on a layer is DfmDriver.h, the copper, holes and
// pad sizes they measure DfmCopper.h.
//
// Each run copies what it reads out of the store under the store's lock (the layer, the drill
// layers whose span covers it, the profile, the selection and the screen box), works without
// the lock, and writes its changes back under the lock, layer by layer, adding one to the step's
// edit counter for each layer it changed. A feature edited meanwhile by someone else (its
// symbol or position no longer what was read) is left alone. Copper and distances are those of
// CopperGeometry.h; candidates come from a Boost.Geometry R-tree. A drill hits a pad when the
// hole's centre lies on the pad; the largest such hole is the pad's drill.
//
// Every hit is graded into its item's four lists by the item's range: a value below the first
// limit is red, below the second yellow, below the range's value green, else the fourth list;
// an item without a range goes to the fourth list, and one whose three levels are zero (a
// count) grades every hit red. Values are engine units, compared with the levels as given.
// A hit carries its value, a shape (a line between the two closest points for a distance, the
// feature's box otherwise), its features as (layer row, feature id) and their signature as read
// (CopperGeometry.h), and the record's value it was held against (`required`: the minimum ring,
// spacing, clearance, coverage or bridge; the spacing a skipped teardrop broke; 0 for made,
// missing and deleted teardrops and for NFP removal, which hold no value against the record).
//
// Signal layer (results per layer name):
// - Annular ring: a pad with a drill whose ring (the pad's half-size less the hole's radius and
//   the hole's offset from the pad centre) is under the minimum of its kind (".drill" "via",
//   "laser", "buried", else PTH; non-plated holes have no ring) by more than
//   `minimum_tolerance`. With `pad_up` the pad's symbol is enlarged so that the ring reaches
//   the optimum (r40 -> r44), unless the larger pad would come closer than `spacing_min` to
//   (or touch) copper of another island: an enlarged pad is a "Pad Up" hit, a ring left as it
//   was a hit of its annular ring item; the value is the ring before the change.
// - Spacing: two features of different islands (copper that touches is one island) closer
//   than `pad_to_pad_spacing_min` (two pads) or `spacing_min` (other pairs), measured after
//   the enlargements; reported, never repaired.
// - Not done: pad down, shave (and shave same net), reroute, line down, reshape, SMD/BGA
//   spacing and shaving limits, alone drill to pad, via pads expanded within copper, the
//   second ranges; one pass whatever `repair_passes` says.
//
// Solder mask (one record per mask layer and item; layers not of type solder_mask are passed
// over). The copper beneath a mask layer is the signal or mixed layer nearest to it in the
// matrix.
// - Clearance: a mask opening (a pad of the mask layer) over a copper pad whose centre lies in
//   the opening, with clearance (per axis, round on round exactly) under `clearance_min`. With
//   `do_resize` the opening grows to `clearance_opt` ("Clearance Resized", value the clearance
//   before), else "Clearance below Minimum".
// - Coverage: copper of another island than the opening's pad closer to the opening than
//   `coverage_min` (0 when the opening exposes it) -> "Coverage below Minimum".
// - Bridge: two openings that do not touch with a mask sliver between them narrower than
//   `bridge_size` -> "Bridge below Minimum". Coverage and bridges are only reported.
// - Not done: surplus cuts, shaves, gas openings, partial clearance, pad in surface, vertical
//   flow, SMD compensation.
//
// Teardrops (one record per item for all layers):
// - A round line or arc (not itself a teardrop, width within the trace width limits) whose end
//   lies on a pad and that leaves the pad; drilled pads (drill within the drill size limits)
//   and undrilled pads as the record allows. An end that already has a teardrop (a feature
//   with ".tear_drop" touching both pad and trace) is passed over.
// - The fillet is a trapezoid from the pad's width across its centre to the trace's width
//   along the trace, `extend` beyond the pad edge (the pad's half-size when 0), never past
//   the trace's length (an arc's fillet follows the arc's direction at its end). It is skipped
//   ("Skipped for Spacing", value the distance) when it would come closer than `copper_spacing` to
//   copper of another island or than `drill_spacing` to another hole.
// - Repair adds the fillet as a surface carrying ".tear_drop" ("Created on ... Pads"); report
//   only changes nothing ("Missing on ... Pads"). Value: the pad's annular ring when drilled,
//   its half-size less the trace's half-width when not.
// - `delete_old_teardrops` 0 (and not report only) first removes the surfaces carrying
//   ".tear_drop" ("Old Teardrops Deleted", value 0); 1 and 2 keep them. Lines carrying the
//   attribute are traces and are never deleted. Not used: the type (always straight), the
//   line width ratio, the arc angle, the oval excess, the annular ring minimum and solder mask.
//
// NFP removal (one record per item for all layers; only inner signal or mixed layers):
// - Each pad is judged once, in this order, for the kinds listed in `pad_kinds`: duplicate (2:
//   an earlier pad with the same position, symbol and angle), covered (4: lying wholly within
//   another pad; a non-round pad judged by its box), drilled over (3: its drill at least as
//   wide as the pad's smaller side), isolated (1: no line, arc or surface of the layer touches
//   it). A drilled pad counts only when its hole's kind is enabled (pth, npth, via); an
//   undrilled pad only with `remove_undrilled_pads`, and an isolated undrilled pad is an
//   "Undrilled Pads Removed" hit.
// - Action 0 removes the pads; 1 marks them with the attribute ".nfp" (value the kind's name)
//   and grades them under "Pads Marked". Value: the pad's smaller side.
//
// Scope (record field, or 3 for NFP `apply_to` 1): 0 every feature; 1 features whose box
// centre lies in the screen box; 2 those inside the profile; 3 the selected ones. Islands are
// always built from the whole layer.
//
// Progress goes from 0 to 100 over at least the engine's long operation duration; the stop
// flag is polled at least every 20 ms. A stopped run returns true with the hits found so far
// and the changes made for them. False only for an unknown job, step or layer, or no layer.

#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "progress_value.h"

namespace wcref {

class DfmOperations {
public:
    static bool signalLayer(const std::string& job, const std::string& step,
                            const std::vector<std::string>& layers,
                            const Korvo::API::signal_layer_DFM_op_params& params,
                            Korvo::API::signal_layer_DFM_result_map& results,
                            Korvo::COMMON::progress_state* progress);
    static bool solderMask(const std::string& job, const std::string& step,
                           const std::vector<std::string>& layers,
                           const Korvo::API::solder_mask_DFM_params& params,
                           Korvo::API::solder_mask_DFM_result_map& results,
                           Korvo::COMMON::progress_state* progress);
    static bool teardrops(const std::string& job, const std::string& step,
                          const std::vector<std::string>& layers,
                          const Korvo::API::teardrop_create_DFM_op_params& params,
                          Korvo::API::teardrop_result_map& results,
                          Korvo::COMMON::progress_state* progress);
    static bool nfpRemoval(const std::string& job, const std::string& step,
                           const std::vector<std::string>& layers,
                           const Korvo::API::NFP_removal_DFM_op_params& params,
                           Korvo::API::NFP_removal_result_map& results,
                           Korvo::COMMON::progress_state* progress);
};

}  // namespace wcref

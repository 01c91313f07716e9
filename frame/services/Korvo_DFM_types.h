#pragma once
// Records of the DFM optimisations: item enumerations, parameter records (fields in the order
// the engine declares them) and results, which use the same four severity lists as analyses.

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Korvo_Analysis_types.h"

namespace Korvo {
namespace API {

// A range row as an optimisation takes it: the red and yellow levels as a pair of limits and
// the green level as the value aimed at.
struct dfm_range_value {
    std::pair<double, double> limits;
    double value = 0.0;
};

// ---- signal layer optimisation ("SignalLayerOptRanges") -------------------------------------

enum signal_layer_DFM_op_items : int {
    sdi_pth_annular_ring,
    sdi_via_annular_ring,
    sdi_laser_annular_ring,
    sdi_buried_annular_ring,
    sdi_spacing,
    sdi_pad_to_pad_spacing,
    sdi_alone_drill_to_pad,
    sdi_smd_to_smd,
    sdi_bga_to_bga,
    sdi_smd_shaving,
    sdi_bga_shaving,
    sdi_pad_up,
    sdi_pad_down,
    sdi_reroute,
    sdi_line_down,
    sdi_reshape,
};

struct signal_layer_DFM_op_result : item_result<signal_layer_DFM_op_items> {};

struct signal_layer_DFM_op_params {
    int32_t pth_ar_min = 0;
    int32_t pth_ar_opt = 0;
    int32_t via_ar_min = 0;
    int32_t via_ar_opt = 0;
    int32_t laser_ar_min = 0;
    int32_t laser_ar_opt = 0;
    int32_t buried_ar_min = 0;
    int32_t buried_ar_opt = 0;
    int32_t spacing_min = 0;
    int32_t spacing_opt = 0;
    int32_t pad_to_pad_spacing_min = 0;
    int32_t pad_to_pad_spacing_opt = 0;
    int32_t alone_drill_to_pad = 0;
    bool pad_up = true;
    bool shave = true;
    bool pad_down = false;
    bool reroute = false;
    bool line_down = false;
    bool reshape = false;
    // Repair passes over each layer: a pass repeats the repairs where the previous one left a
    // value under its minimum. The dialog leaves it at 1.
    int32_t repair_passes = 1;
    // How far under a minimum a value may stay and still count as met, in engine units. The
    // dialog leaves it at 0.
    int32_t minimum_tolerance = 0;
    std::map<signal_layer_DFM_op_items, dfm_range_value> ranges;
    int32_t scope = 0;
    int32_t smd_to_smd = 0;
    int32_t bga_to_bga = 0;
    int32_t smd_shaving_limit = 0;
    int32_t bga_shaving_limit = 0;
    bool shave_same_net = true;
    bool via_pad_expand_within_copper = false;
    std::map<signal_layer_DFM_op_items, dfm_range_value> second_ranges;
};

using signal_layer_DFM_result_map =
    std::map<std::string, std::map<signal_layer_DFM_op_items, signal_layer_DFM_op_result>>;

// ---- solder mask optimisation ("SolderMaskOptRanges") ---------------------------------------

enum solder_mask_DFM_op_items : int {
    smo_clearance_resized,
    smo_clearance_below_min,
    smo_coverage_resized,
    smo_coverage_below_min,
    smo_bridge_removed,
    smo_bridge_below_min,
    smo_surplus_coverage_cut,
    smo_surplus_clearance_cut,
    smo_gas_opening_resized,
    smo_partial_clearance,
    smo_pad_in_surface,
    smo_vertical_flow,
};

struct solder_mask_DFM_op_result : item_result<solder_mask_DFM_op_items> {};

struct solder_mask_DFM_params {
    int32_t clearance_min = 0;
    int32_t clearance_opt = 0;
    int32_t coverage_min = 0;
    int32_t coverage_opt = 0;
    int32_t bridge_size = 0;
    int32_t max_oversize_clearance = 0;
    int32_t intersect_width = 0;
    int32_t cut_surplus_coverage = 0;
    int32_t cut_surplus_clearance = 0;
    bool advanced_surplus = false;
    int32_t smd_surplus_coverage = 0;
    int32_t smd_surplus_clearance = 0;
    int32_t bga_surplus_coverage = 0;
    int32_t bga_surplus_clearance = 0;
    bool is_round = true;
    bool apply_to_all = true;
    bool use_existing_mask = true;
    bool use_shaves = true;
    bool do_resize = true;
    bool fan_shave = true;
    bool pth = true;
    int32_t pad_in_surface_clearance = 0;
    int32_t prevent_vertical_flow_add = 0;
    int32_t prevent_vertical_flow_delete = 0;
    int32_t gas_resize_without_drill = 0;
    int32_t gas_resize_with_drill = 0;
    int32_t partial_and_gas_resize = 0;
    int32_t partial_clearance = 0;
    std::map<int32_t, int32_t> smd_compensate_ranges;
    std::map<int32_t, int32_t> gas_ranges;
    std::map<solder_mask_DFM_op_items, dfm_range_value> ranges;
    // Left at their defaults by the dialog.
    int32_t min_mask_dam = 0;
    bool keep_existing_shaves = false;
    int32_t scope = 0;
};

using solder_mask_DFM_result_map =
    std::map<solder_mask_DFM_op_items, std::vector<solder_mask_DFM_op_result>>;

// ---- teardrops ("TeardropsRanges") ----------------------------------------------------------

enum teardrop_create_DFM_op_items : int {
    tdi_created_drilled,
    tdi_created_undrilled,
    tdi_missing_drilled,
    tdi_missing_undrilled,
    tdi_deleted_old,
    tdi_skipped_spacing,
};

struct teardrop_create_DFM_op_result : item_result<teardrop_create_DFM_op_items> {};

struct teardrop_create_DFM_op_params {
    bool drilled_pads = true;
    bool undrilled_pads = true;
    int32_t annular_ring_min = 0;
    int32_t drill_size_min = 0;
    int32_t drill_size_max = 0;
    int32_t copper_spacing = 0;
    int32_t drill_spacing = 0;
    int32_t delete_old_teardrops = 0;  // 0 yes, 1 no, 2 skip
    int32_t trace_width_min = 0;
    int32_t trace_width_max = 0;
    std::map<teardrop_create_DFM_op_items, dfm_range_value> ranges;
    int32_t teardrop_type = 0;  // 0 filleted .. 4 oval
    int32_t extend = 0;
    double line_width_ratio = 0.5;
    int32_t oval_excess_over_trace = 0;
    bool arc_angle_given = false;
    int32_t arc_angle = 0;
    bool consider_solder_mask = false;
    int32_t scope = 0;
    // "Work Mode" = "Report": the engine grades where teardrops are missing and changes nothing.
    bool report_only = false;
};

using teardrop_result_map = std::map<teardrop_create_DFM_op_items, teardrop_create_DFM_op_result>;

// ---- NFP removal ("NFPRemoval") -------------------------------------------------------------

enum NFP_removal_DFM_op_items : int {
    nfp_isolated_removed,
    nfp_duplicate_removed,
    nfp_drilled_over_removed,
    nfp_covered_removed,
    nfp_undrilled_removed,
    nfp_marked,
};

struct NFP_removal_DFM_op_result : item_result<NFP_removal_DFM_op_items> {};

struct NFP_removal_DFM_op_params {
    bool pth = true;
    bool npth = false;
    bool via = true;
    bool remove_undrilled_pads = true;
    int32_t apply_to = 0;            // 0 all, 1 selected
    int32_t action = 0;              // 0 remove, 1 mark
    std::vector<int32_t> pad_kinds;  // 1 isolated, 2 duplicate, 3 drilled over, 4 covered
    std::map<NFP_removal_DFM_op_items, dfm_range_value> ranges;
    // 0 globally, 1 on screen only, 2 inside the profile, 3 the selected features.
    int32_t scope = 0;
};

using NFP_removal_result_map = std::map<NFP_removal_DFM_op_items, NFP_removal_DFM_op_result>;

// ---- kinds the results viewer shows but no dialog of this library runs ----------------------

enum avoid_conductor_DFM_op_items : int {
    aci_moved_line,
    aci_shaved_pad,
    aci_unresolved,
};
struct avoid_conductor_DFM_op_result : item_result<avoid_conductor_DFM_op_items> {};

enum power_ground_layer_DFM_op_items : int {
    pgo_thermal_repaired,
    pgo_clearance_enlarged,
    pgo_sliver_filled,
    pgo_isolated_removed,
    pgo_spoke_widened,
    pgo_clearance_added,
    pgo_plane_trimmed,
    pgo_unresolved,
};
struct power_ground_layer_DFM_op_result : item_result<power_ground_layer_DFM_op_items> {};

enum pad_snapping_op_items : int {
    psi_pad_snapped,
    psi_pad_off_grid,
    psi_pad_unmatched,
    psi_pad_ambiguous,
};
struct pad_snapping_op_result : item_result<pad_snapping_op_items> {};

}  // namespace API
}  // namespace Korvo

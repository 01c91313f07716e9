#pragma once
// Records of the design-rule analyses: the hit (`check_info`), the four severity lists every
// result carries, and the parameter, item and result types of each analysis kind.

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "Korvo_API_types.h"

namespace Korvo {
namespace API {

// Shape of a measurement: the viewer draws `points` as a line (two points), a box (two corners)
// or a closed polygon.
struct check_points {
    enum kind_t : int { line = 0, box = 1, polygon = 2 };
    kind_t kind = line;
    std::vector<point> points;
};

// A feature a hit concerns: the layer's row in the job's matrix and the feature's id on that
// layer. Hits refer to features rather than copy them, so a result of a million hits stays small;
// whoever needs the whole feature looks it up (`get_all_feature_info`).
struct feature_ref {
    int32_t layer_row = 0;
    int32_t id = -1;
};

inline bool operator==(const feature_ref& a, const feature_ref& b) {
    return a.layer_row == b.layer_row && a.id == b.id;
}

// One hit of an analysis or optimisation.
struct check_info {
    double value = 0.0;  // measured value, engine units for lengths
    check_points shape;
    std::vector<feature_ref> features;
    // The nets of the concerned copper, one name per net (two for a spacing between nets, one
    // for a same-net pair); empty where the job's nets are unknown.
    std::vector<std::string> nets;
    // The rule's value the measurement was held against (the required distance, size or
    // overlap), engine units; 0 where the item has no single required value.
    double required = 0.0;
    // The concerned features' shape kinds and sizes, hashed by the engine; 0 where unknown. It
    // never depends on where the features are, on their ids or on their order in the layer, so
    // that the same features give the same signature after edits elsewhere on the board. With
    // the item, the layer, the nets and the measured location it identifies the hit across runs.
    std::uint64_t signature = 0;
};

// The four severity lists of a result record: red ("!!"), yellow ("!"), green ("  ") and a
// fourth that only the "All" severity entry admits.
template <typename Info>
struct severity_lists {
    std::vector<Info> red;
    std::vector<Info> yellow;
    std::vector<Info> green;
    std::vector<Info> other;
};

using check_levels = severity_lists<check_info>;

// Result of one item of one layer, tagged with its item.
template <typename Item>
struct item_result : check_levels {
    Item item{};
};

template <typename Item, typename Info>
struct check_reply {
    std::map<Item, severity_lists<Info>> items;
};

// ---- signal layer checks ------------------------------------------------------------------

// Tests in the order the dialog emits them.
enum signal_layers_checks_list : int {
    sl_spacing = 0,
    sl_drill = 1,
    sl_rout = 2,
    sl_size = 3,
    sl_sliver = 4,
    sl_stubs = 5,
    sl_center = 6,
    sl_smd = 7,
    sl_bottleneck = 8,
    sl_pad_connection = 9,
};

// Check items, in the row order of "SignalLayerRanges".
enum signal_layers_checks_items : int {
    sli_pad_to_pad_spacing,
    sli_pad_to_line_spacing,
    sli_pad_to_arc_spacing,
    sli_pad_to_surface_spacing,
    sli_line_to_line_spacing,
    sli_line_to_arc_spacing,
    sli_line_to_surface_spacing,
    sli_arc_to_arc_spacing,
    sli_surface_to_surface_spacing,
    sli_same_net_pad_to_pad,
    sli_same_net_pad_to_line,
    sli_same_net_line_to_line,
    sli_smd_to_smd_spacing,
    sli_smd_to_pad_spacing,
    sli_smd_to_line_spacing,
    sli_bga_to_bga_spacing,
    sli_bga_to_line_spacing,
    sli_text_to_copper,
    sli_text_to_text,
    sli_pth_annular_ring,
    sli_via_annular_ring,
    sli_laser_via_annular_ring,
    sli_buried_via_annular_ring,
    sli_npth_to_copper,
    sli_pth_to_copper,
    sli_via_to_copper,
    sli_laser_via_to_copper,
    sli_missing_pad_for_pth,
    sli_missing_pad_for_via,
    sli_drill_to_plane,
    sli_rout_to_pad,
    sli_rout_to_line,
    sli_rout_to_surface,
    sli_rout_to_smd,
    sli_rout_to_text,
    sli_compensated_rout_to_copper,
    sli_line_width,
    sli_arc_width,
    sli_pad_size,
    sli_smd_width,
    sli_smd_length,
    sli_bga_diameter,
    sli_surface_width,
    sli_text_line_width,
    sli_copper_sliver,
    sli_copper_slot,
    sli_line_sliver,
    sli_surface_sliver,
    sli_line_stub,
    sli_arc_stub,
    sli_dangling_line,
    sli_smd_off_center,
    sli_pad_off_center,
    sli_drill_off_center,
    sli_via_off_center,
    sli_smd_pitch,
    sli_bga_pitch,
    sli_smd_to_via,
    sli_smd_neck_down,
    sli_smd_with_via_in_pad,
    sli_line_bottleneck,
    sli_surface_bottleneck,
    sli_neck_down_length,
    sli_pad_connection_overlap,
    sli_missing_pad_connection,
    sli_partial_pad_connection,
    sli_pad_entry_angle,
    sli_sm_sorted_pad_to_pad,
    sli_sm_sorted_pad_to_line,
    sli_sm_sorted_line_to_line,
    sli_sm_sorted_smd_spacing,
    sli_isolated_copper,
    // Copper against the job's netlist: one net's pads on separate pieces of copper, and
    // copper that joins pads of different nets.
    sli_netlist_open,
    sli_netlist_short,
};

struct signal_check_result : item_result<signal_layers_checks_items> {};

struct signal_check_range {
    double red = 0.0;
    double yellow = 0.0;
    double green = 0.0;
};

// Parameters of one signal layer check run, in the order the dialog fills them.
struct signal_check_params {
    std::string layers;
    double spacing = 0.0;
    double drill_to_copper = 0.0;
    double rout_to_copper = 0.0;
    double sliver_min = 0.0;
    double min_pad_overlap = 0.0;
    std::string apply_to;  // "All" or "Selected"
    bool check_missing_pads_for_drills = true;
    bool use_compensated_rout = false;
    bool sort_spacing_by_solder_mask = false;
    bool always_on = true;
    int mode = 3;
    std::vector<double> thresholds;  // internal thresholds, engine units
    std::vector<bool> threshold_enabled;
};

// A stored check: what was run and on what.
struct dms_signal_check_params {
    std::string job;
    std::string step;
    signal_check_params params;
    std::vector<signal_layers_checks_list> tests;
    int scope = 0;
};

using signal_check_result_map =
    std::map<std::string, std::map<signal_layers_checks_items, signal_check_result>>;

// ---- further analysis kinds (results viewer modes) ------------------------------------------

// Check items of "SolderMaskRanges", in row order.
enum solder_mask_checks_items : int {
    smi_clearance_pad,
    smi_clearance_smd,
    smi_clearance_bga,
    smi_clearance_pth,
    smi_clearance_via,
    smi_clearance_npth,
    smi_coverage_line,
    smi_coverage_arc,
    smi_coverage_surface,
    smi_coverage_text,
    smi_coverage_via,
    smi_coverage_pad,
    smi_bridge_pad_to_pad,
    smi_bridge_smd_to_smd,
    smi_bridge_bga_to_bga,
    smi_bridge_pad_to_smd,
    smi_sliver_mask,
    smi_sliver_coverage,
    smi_partial_clearance,
    smi_partial_coverage,
    smi_exposed_line,
    smi_exposed_arc,
    smi_exposed_surface,
    smi_exposed_text,
    smi_exposed_via,
    smi_missing_clearance_pad,
    smi_missing_clearance_smd,
    smi_missing_clearance_bga,
    smi_missing_clearance_pth,
    smi_missing_clearance_npth,
    smi_clearance_to_drill,
    smi_clearance_to_rout,
    smi_mask_to_rout,
    smi_mask_to_profile,
    smi_smd_pitch,
    smi_bga_pitch,
    smi_gasket_width,
    smi_gasket_size,
    smi_via_tented,
    smi_via_partially_tented,
    smi_via_exposed,
    smi_pad_partially_covered,
    smi_smd_partially_covered,
    smi_bga_partially_covered,
    smi_mask_surface_width,
    smi_mask_line_width,
    smi_mask_text_width,
    smi_mask_on_copper_only,
    smi_mask_to_mask_spacing,
    smi_mask_to_silk,
    smi_mask_to_text,
    smi_gold_finger_clearance,
    smi_gold_finger_coverage,
    smi_test_point_clearance,
    smi_test_point_coverage,
    smi_fiducial_clearance,
    smi_fiducial_coverage,
    smi_plugged_via,
    smi_via_in_pad_clearance,
    smi_degassing_opening,
    smi_pad_in_surface_clearance,
    smi_oversize_clearance,
    smi_undersize_clearance,
    smi_mask_dam,
    smi_mask_dam_smd,
    smi_mask_dam_bga,
    smi_open_copper_area,
    smi_mask_overlap,
    smi_mask_slot,
    smi_isolated_mask,
};
struct solder_mask_check_result : item_result<solder_mask_checks_items> {};

// Check items of "SilkScreenRanges", in row order.
enum silk_screen_checks_items : int {
    ssi_silk_to_pad,
    ssi_silk_to_smd,
    ssi_silk_to_bga,
    ssi_silk_to_pth,
    ssi_silk_to_via,
    ssi_silk_to_npth,
    ssi_silk_to_mask_opening,
    ssi_silk_to_rout,
    ssi_silk_to_profile,
    ssi_silk_to_copper,
    ssi_silk_line_width,
    ssi_silk_text_height,
    ssi_silk_text_width,
    ssi_silk_text_line_width,
    ssi_silk_to_silk,
    ssi_silk_sliver,
    ssi_silk_over_mask_opening,
    ssi_silk_over_pad,
    ssi_silk_over_drill,
    ssi_silk_outside_profile,
    ssi_silk_on_gold_finger,
    ssi_silk_on_test_point,
    ssi_silk_arc_width,
    ssi_silk_surface_width,
    ssi_silk_polarity_mark,
    ssi_silk_legend_spacing,
    ssi_silk_component_outline,
    ssi_silk_isolated,
};
struct silk_screen_check_result : item_result<silk_screen_checks_items> {};

// Check items of "DrillRanges", in row order.
enum drill_check_item : int {
    dci_hole_size,
    dci_hole_to_hole,
    dci_hole_to_hole_same_net,
    dci_hole_to_rout,
    dci_hole_to_profile,
    dci_duplicate_hole,
    dci_touching_holes,
    dci_covered_holes,
    dci_missing_holes,
    dci_extra_holes,
    dci_pth_annular_ring,
    dci_via_annular_ring,
    dci_npth_annular_ring,
    dci_laser_via_size,
    dci_stacked_laser_via,
    dci_blind_via_span,
    dci_buried_via_span,
    dci_backdrill_depth,
    dci_slot_length,
    dci_slot_width,
    dci_rout_width,
    dci_rout_to_copper,
    dci_pth_to_npth,
    dci_drill_to_drill_layer,
    dci_aspect_ratio,
    dci_tool_count,
};
struct drill_check_result : item_result<drill_check_item> {};

enum board_drill_check_item : int {
    bdi_hole_to_hole,
    bdi_hole_size,
    bdi_hole_to_profile,
    bdi_hole_to_rout,
    bdi_duplicate_hole,
    bdi_touching_holes,
    bdi_drill_span,
    bdi_aspect_ratio,
    bdi_missing_hole,
    bdi_extra_hole,
};

enum power_ground_layers_checks_items : int {
    pgi_thermal_spoke_width,
    pgi_thermal_air_gap,
    pgi_clearance_pth,
    pgi_clearance_via,
    pgi_clearance_npth,
    pgi_plane_to_profile,
    pgi_plane_sliver,
    pgi_plane_necking,
    pgi_missing_thermal,
    pgi_missing_clearance,
    pgi_isolated_plane,
    pgi_drill_to_plane,
};
struct power_ground_check_result : item_result<power_ground_layers_checks_items> {};

enum prepare_check_items : int {
    pci_missing_profile,
    pci_missing_drill_layer,
    pci_layer_without_features,
    pci_unmatched_drill_tools,
    pci_open_surfaces,
    pci_duplicate_features,
};
struct prepare_check_result : item_result<prepare_check_items> {};

struct mrc_result_infos {
    std::string name;
    check_info info;
};

struct mrc_check_params {
    std::string job;
    std::string step;
    std::vector<std::string> layers;
};
using mrc_check_result =
    std::map<std::string, std::map<std::string, std::vector<mrc_result_infos>>>;

enum surface_analyser_items : int {
    sai_surface_width,
    sai_surface_sliver,
    sai_surface_void,
    sai_surface_necking,
    sai_surface_island,
    sai_surface_to_drill,
};
struct surface_analyser_result : item_result<surface_analyser_items> {};

// Filter state exchanged between the results viewer and the feature filter.
struct AnalysisFilterInfo {
    std::string layer;
    int item = -1;
    int level = 0;
    std::vector<std::tuple<int, int>> items;  // (item, hit index) pairs that pass the filter
};

}  // namespace API
}  // namespace Korvo

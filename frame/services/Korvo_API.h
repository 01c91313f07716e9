#pragma once
// The CAM engine as the dialogs see it. Every operation returns its outcome; nothing crosses this
// boundary as an exception. Long operations take the progress block as their last argument (a
// null pointer is allowed) and poll its stop flag.

#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "DBS_API.h"
#include "Korvo_API_types.h"
#include "Korvo_Analysis_types.h"
#include "Korvo_DFM_types.h"
#include "Korvo_Triage_types.h"
#include "progress_value.h"

namespace Korvo {
namespace API {

// ---- jobs, steps, layers --------------------------------------------------------------------
bool open_job(const std::string& job, const std::string& path);
int close_job(const std::string& job);
bool is_job_opened(const std::string& job);
int get_opened_jobs(std::vector<std::string>& jobs);
bool create_step(const std::string& job, const std::string& step, int type);
bool flatten_step(const std::string& job, const std::string& step, const std::string& layer,
                  const std::string& destination_layer);
std::string get_matrix(const std::string& job, std::vector<std::string>& steps,
                       std::vector<layer_info>& layers);
std::string get_matrix(const std::string& job, std::map<int, std::string>& steps,
                       std::vector<layer_info>& layers);
// Edits the matrix row `row` (rows count from 1), which must hold the layer `layer`, so that a
// caller working from an old copy of the matrix edits nothing: the layer takes the name,
// context, type, polarity, side and drill span of `info` (`info.row` is not read) and moves to
// `new_row`, the layers in between moving by one row. A renamed layer keeps its features in
// every step, and drill spans naming it follow the new name. Each step's edit counter goes up
// by one. Refused, with the reason logged and the matrix unchanged: an unknown job; a row or
// new row outside 1..layer count; a layer that is not in that row; an empty name, one with
// white space, or one another layer has; a context other than "board" or "misc"; an unknown
// type, polarity or side, or a side the type cannot have (copper is top, inner or bottom; mask,
// silk and paste top or bottom; drill and rout none); a drill span on a layer that is not a
// drill layer, with one end only, or with an end that is not a copper layer of the job; and
// changing a copper layer that a drill layer spans into something else.
bool change_matrix(const std::string& job, int row, int new_row, const std::string& layer,
                   const layer_info& info);
// Moves the layer in row `from` to row `to` (rows count from 1), the layers in between moving
// by one row; each step's edit counter goes up by one. Refused, with the reason logged and the
// matrix unchanged, for an unknown job or a row outside 1..layer count. A move onto its own
// row changes nothing and answers true.
bool move_layer_poi(const std::string& job, int from, int to);
// The layers currently displayed, in the same shape as get_matrix.
std::string get_graphics(const std::string& job, std::vector<std::string>& steps,
                         std::vector<layer_info>& layers);
bool get_step_header_infos(const std::string& job, const std::string& step, step_header_info& info);
bool get_step_attributes(const std::string& job, const std::string& step,
                         std::map<std::string, std::string>& attributes);
bool edit_step_attributes(const std::string& job, const std::string& step,
                          const std::map<std::string, std::string>& attributes);

// ---- profile and step-and-repeat ------------------------------------------------------------
bool has_profile(const std::string& job, const std::string& step);
bool get_profile(const std::string& job, const std::string& step, std::vector<point>& outline);
bool set_step_profile(const std::string& job, const std::string& step,
                      const std::vector<point>& outline);
bool profile_box(const std::string& job, const std::string& step, reply_box& box);
bool set_datum_point(const std::string& job, const std::string& step, const point& datum);
bool get_step_repeat(const std::string& job, const std::string& step,
                     std::vector<step_repeat_op>& rows);
bool set_step_repeat(const std::string& job, const std::string& step,
                     const std::vector<step_repeat_op>& rows);
// Marks the instances under `points`: mode 0 picks at points[0]; mode 1 selects inside the area
// (two points are opposite corners of a rectangle, three or more a closed polygon). `rows` is
// filled with the table and its new selection.
bool select_step_repeat(const std::string& job, const std::string& step,
                        std::vector<step_repeat_op>& rows, const std::vector<point>& points,
                        int mode);
bool clear_select_step_repeat(const std::string& job, const std::string& step);
// Shortest distance between two closed outlines and the two points that realise it; 0 when
// they touch or overlap.
int distance_of_polygon(const std::vector<point>& first, const std::vector<point>& second,
                        point& on_first, point& on_second);
// Every step placed in `step`, directly or through nested tables, each once, in the order it is
// first met (depth first, rows in table order).
bool get_all_step_repeat_steps(const std::string& job, const std::string& step,
                               std::vector<std::string>& steps);
// Distances kept free along the panel edges, engine units. Kept as the step attributes
// ".panel_margin_left", ".panel_margin_right", ".panel_margin_top" and ".panel_margin_bottom"
// (decimal text), so get_step_attributes reads them back. Negative margins, or margins that
// leave no room inside the profile, are refused.
bool set_panel_margin(const std::string& job, const std::string& step, int left, int right, int top,
                      int bottom);

// ---- features, selection, edits -------------------------------------------------------------
bool get_all_feature_info(const std::string& job, const std::string& step, const std::string& layer,
                          std::vector<featureInfo>& features, int type_mask);
void select_features(const std::string& job, const std::string& step, const std::string& layer);
bool select_feature_by_info(const std::string& job, const std::string& step,
                            const std::string& layer, const featureInfo& feature);
bool clear_selected_features(const std::string& job, const std::string& step,
                             const std::string& layer);
bool get_selected_feature_info(const std::string& job, const std::string& step,
                               const std::string& layer, std::vector<featureInfo>& features);
void highlight_features(const std::string& job, const std::string& step, const std::string& layer);
bool highlight_feature_by_info(const std::string& job, const std::string& step,
                               const std::string& layer, const featureInfo& feature);
bool clear_highlighted_features(const std::string& job, const std::string& step,
                                const std::string& layer);
// Moves, rotates, mirrors and scales the selected features of `layer` (all of them when none
// is selected) about `anchor`.
bool transform(const std::string& job, const std::string& step, const std::string& layer, int mode,
               bool rotate, bool mirror_x, bool mirror_y, bool scale, bool move,
               const point& anchor, double angle, double x_scale, double y_scale, double dx,
               double dy);
bool copy_layer_features(const std::string& job, const std::string& step,
                         const std::string& source_layer, const std::string& destination_layer,
                         bool append);
int get_editop_count(const std::string& job, const std::string& step);
bool bind_editop_count(const std::string& job, const std::string& step, int count);

// ---- analyses -------------------------------------------------------------------------------
bool signal_layers_checks(const std::string& job, const std::string& step, const std::string& layer,
                          signal_check_params params, std::vector<signal_layers_checks_list> tests,
                          std::map<signal_layers_checks_items, signal_check_range> ranges,
                          std::map<signal_layers_checks_items, signal_check_result>& result,
                          COMMON::progress_value<signal_check_result_map>* progress, int scope);
Quorin::DBS_API::CreateSesult insertSignalLayerAnalysisResult(
    const dms_signal_check_params& params, const signal_check_result_map& result);
bool getSignalLayerAnalysisResult(int id, dms_signal_check_params& params,
                                  signal_check_result_map& result);
bool getTqSignalLayerAnalysisResult(const std::string& key, signal_check_result_map& result);
// Stored checks: id -> (kind, job, step, time, description).
std::map<int, std::vector<std::string>> getCheckResultMaster();

// ---- waivers and the history of runs (result database) --------------------------------------
// Each answers false (or a CreateSesult without success) with the reason in `error` or `message`
// when the database cannot be reached or refuses; nothing stored changes then.
// Stores a waiver; one covering the same hits as a stored one adds its reason to that one's
// history and answers that one's id.
Quorin::DBS_API::CreateSesult insertAnalysisWaiver(const analysis_waiver& waiver);
// The waivers of a kind, job and step, oldest first, each with its history.
bool getAnalysisWaivers(const std::string& kind, const std::string& job, const std::string& step,
                        std::vector<analysis_waiver>& waivers, std::string& error);
bool deleteAnalysisWaiver(int id, std::string& error);
// The stored runs of a kind, job and step, newest first.
bool getAnalysisRuns(const std::string& kind, const std::string& job, const std::string& step,
                     std::vector<analysis_run_info>& runs, std::string& error);

// ---- DFM optimisations ----------------------------------------------------------------------
bool signal_layer_DFM_op(const std::string& job, const std::string& step,
                         const std::vector<std::string>& layers, signal_layer_DFM_op_params params,
                         signal_layer_DFM_result_map& results,
                         COMMON::progress_value<void>* progress);
bool solder_mask_DFM_op(const std::string& job, const std::string& step,
                        const std::vector<std::string>& layers, solder_mask_DFM_params params,
                        solder_mask_DFM_result_map& results,
                        COMMON::progress_value<void>* progress);
bool teardrop_create_DFM_op(const std::string& job, const std::string& step,
                            const std::vector<std::string>& layers,
                            teardrop_create_DFM_op_params params, teardrop_result_map& results,
                            COMMON::progress_value<void>* progress);
bool NFP_removal_DFM_op(const std::string& job, const std::string& step,
                        const std::vector<std::string>& layers, NFP_removal_DFM_op_params params,
                        NFP_removal_result_map& results, COMMON::progress_value<void>* progress);

// ---- input ----------------------------------------------------------------------------------
// Tells the format of a fabrication file: `format` is "gerber274x" or "excellon" and
// `parameters` what the file declares; false with a reason in `message` otherwise.
bool file_identify(const std::string& path, std::string& format, file_Parameters& parameters,
                   std::string& message);
// Loads one identified file as `layer` of the job's step (the layer joins the matrix as a
// "document" layer when it is new; its features in that step are replaced). `started` and
// `finished` bracket the work; `tool_counts` maps each aperture or tool number to the count of
// features made with it.
bool file_translate(const std::string& job, const std::string& step, const std::string& layer,
                    const std::string& path, const file_Parameters& parameters,
                    std::time_t& started, std::time_t& finished, std::map<int, int>& tool_counts);

// ---- output ---------------------------------------------------------------------------------
enum export_type : int { export_gerber = 0, export_drill = 1, export_dxf = 2 };
bool layer_export(const std::string& job, const std::string& step, const std::string& layer,
                  export_type type, const std::string& path,
                  COMMON::progress_value<void>* progress);
// Writes the step with all its layers below `folder` (used to hand a job to the check-list
// service).
bool Export_step(const std::string& job, const std::string& step, const std::string& folder,
                 COMMON::progress_value<void>* progress);

}  // namespace API
}  // namespace Korvo

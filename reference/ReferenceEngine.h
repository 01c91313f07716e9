#pragma once
// Control of the reference engine behind Korvo::API, for tests, benchmarks and the demo.
//
// The reference engine keeps jobs in memory. `open_job(job, path)` with path "" or ":sample"
// opens the bundled sample job (steps "pcb" and "panel") under any job name; a path naming a
// folder of Gerber and Excellon files opens a job built from them (JobFromFolder.h); other
// paths are refused. file_identify and file_translate read fabrication files through libgerbv
// (GerberImport.h). The signal layer check computes real hits (SignalChecks.h) and the four DFM
// operations real hits and changes (DfmOperations.h); the other analyses report progress and
// return success with empty results (see EngineLongOperations.cpp).
//
// Every engine operation can be replaced for one test through engineHooks(): when the member of
// that name is set, the operation records its call and returns the hook's answer instead of its
// own. Every call, hooked or not, is recorded in the call log with its arguments as text.
//
// Conventions of the reference engine where the boundary leaves a choice:
// - open_job of a name already open keeps that job and its edits, and answers true.
// - close_job answers 0 when the job was open, -1 otherwise; get_opened_jobs the count.
// - get_matrix / get_graphics answer "OK", or an error text naming the unknown job. The map
//   form numbers the steps from 1 in creation order.
// - get_graphics lists the displayed layers: all board layers of an opened job.
// - Every modifying operation on a step adds one to its edit counter (get_editop_count); the
//   selection of features or of step-and-repeat instances is not an edit.
// - get_all_feature_info: type bits 1..16 select types; when neither polarity bit (32, 64) is
//   set both polarities pass.
// - transform works on the selected features of the layer, or all when none is selected:
//   scale, then mirror (x_mirror flips x about the anchor, y_mirror flips y), then a clockwise
//   rotation by `angle` about the anchor, then the move by (dx, dy). `mode` is not used.
// - select_step_repeat adds to the selection: mode 0 selects the one instance under
//   points[0] placed last (the topmost when instances overlap); mode 1 selects every instance
//   whose box centre lies in the rectangle (two points) or polygon (three or more points);
//   edges count as inside. Instance boxes follow StepRepeatGeometry.h.
// - set_step_repeat refuses a row with nx or ny below 1, an unknown child step, or a child that
//   is the step itself or contains it (directly or deeper); selections outside a row are dropped.
// - distance_of_polygon answers -1 when an outline has no points.

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Korvo_API.h"

namespace wcref {

struct EngineCall {
    std::string operation;
    // Arguments as text, in call order: names as given, lists joined by ";", numbers in
    // shortest form, points as "(x,y)", records as "name{field=value,...}" with their scalar
    // fields (scope included). Output arguments are not recorded.
    std::vector<std::string> arguments;
};

// Operation overloads carry the suffix "_steps_map" (the get_matrix form with a step map).
struct EngineHooks {
    using string = std::string;
    using strings = std::vector<std::string>;
    template <typename T>
    using progress = Korvo::COMMON::progress_value<T>*;

    std::function<bool(const string&, const string&)> open_job;
    std::function<int(const string&)> close_job;
    std::function<bool(const string&)> is_job_opened;
    std::function<int(strings&)> get_opened_jobs;
    std::function<bool(const string&, const string&, int)> create_step;
    std::function<bool(const string&, const string&, const string&, const string&)> flatten_step;
    std::function<string(const string&, strings&, std::vector<Korvo::API::layer_info>&)> get_matrix;
    std::function<string(const string&, std::map<int, string>&,
                         std::vector<Korvo::API::layer_info>&)>
        get_matrix_steps_map;
    std::function<string(const string&, strings&, std::vector<Korvo::API::layer_info>&)>
        get_graphics;
    std::function<bool(const string&, const string&, Korvo::API::step_header_info&)>
        get_step_header_infos;
    std::function<bool(const string&, const string&, std::map<string, string>&)>
        get_step_attributes;
    std::function<bool(const string&, const string&, const std::map<string, string>&)>
        edit_step_attributes;
    std::function<bool(const string&, const string&)> has_profile;
    std::function<bool(const string&, const string&, std::vector<Korvo::API::point>&)> get_profile;
    std::function<bool(const string&, const string&, const std::vector<Korvo::API::point>&)>
        set_step_profile;
    std::function<bool(const string&, const string&, Korvo::API::reply_box&)> profile_box;
    std::function<bool(const string&, const string&, const Korvo::API::point&)> set_datum_point;
    std::function<bool(const string&, const string&, std::vector<Korvo::API::step_repeat_op>&)>
        get_step_repeat;
    std::function<bool(const string&, const string&,
                       const std::vector<Korvo::API::step_repeat_op>&)>
        set_step_repeat;
    std::function<bool(const string&, const string&, std::vector<Korvo::API::step_repeat_op>&,
                       const std::vector<Korvo::API::point>&, int)>
        select_step_repeat;
    std::function<bool(const string&, const string&)> clear_select_step_repeat;
    std::function<int(const std::vector<Korvo::API::point>&, const std::vector<Korvo::API::point>&,
                      Korvo::API::point&, Korvo::API::point&)>
        distance_of_polygon;
    std::function<bool(const string&, const string&, const string&,
                       std::vector<Korvo::API::featureInfo>&, int)>
        get_all_feature_info;
    std::function<void(const string&, const string&, const string&)> select_features;
    std::function<bool(const string&, const string&, const string&, const Korvo::API::featureInfo&)>
        select_feature_by_info;
    std::function<bool(const string&, const string&, const string&)> clear_selected_features;
    std::function<bool(const string&, const string&, const string&,
                       std::vector<Korvo::API::featureInfo>&)>
        get_selected_feature_info;
    std::function<void(const string&, const string&, const string&)> highlight_features;
    std::function<bool(const string&, const string&, const string&, const Korvo::API::featureInfo&)>
        highlight_feature_by_info;
    std::function<bool(const string&, const string&, const string&)> clear_highlighted_features;
    std::function<bool(const string&, const string&, const string&, int, bool, bool, bool, bool,
                       bool, const Korvo::API::point&, double, double, double, double, double)>
        transform;
    std::function<bool(const string&, const string&, const string&, const string&, bool)>
        copy_layer_features;
    std::function<int(const string&, const string&)> get_editop_count;
    std::function<bool(const string&, const string&, int)> bind_editop_count;
    std::function<bool(const string&, const string&, strings&)> get_all_step_repeat_steps;
    std::function<bool(const string&, const string&, int, int, int, int)> set_panel_margin;

    std::function<bool(
        const string&, const string&, const string&, Korvo::API::signal_check_params,
        std::vector<Korvo::API::signal_layers_checks_list>,
        std::map<Korvo::API::signal_layers_checks_items, Korvo::API::signal_check_range>,
        std::map<Korvo::API::signal_layers_checks_items, Korvo::API::signal_check_result>&,
        progress<Korvo::API::signal_check_result_map>, int)>
        signal_layers_checks;
    std::function<Quorin::DBS_API::CreateSesult(const Korvo::API::dms_signal_check_params&,
                                                const Korvo::API::signal_check_result_map&)>
        insertSignalLayerAnalysisResult;
    std::function<bool(int, Korvo::API::dms_signal_check_params&,
                       Korvo::API::signal_check_result_map&)>
        getSignalLayerAnalysisResult;
    std::function<bool(const string&, Korvo::API::signal_check_result_map&)>
        getTqSignalLayerAnalysisResult;
    std::function<std::map<int, strings>()> getCheckResultMaster;
    std::function<Quorin::DBS_API::CreateSesult(const Korvo::API::analysis_waiver&)>
        insertAnalysisWaiver;
    std::function<bool(const string&, const string&, const string&,
                       std::vector<Korvo::API::analysis_waiver>&, string&)>
        getAnalysisWaivers;
    std::function<bool(int, string&)> deleteAnalysisWaiver;
    std::function<bool(const string&, const string&, const string&,
                       std::vector<Korvo::API::analysis_run_info>&, string&)>
        getAnalysisRuns;

    std::function<bool(const string&, const string&, const strings&,
                       Korvo::API::signal_layer_DFM_op_params,
                       Korvo::API::signal_layer_DFM_result_map&, progress<void>)>
        signal_layer_DFM_op;
    std::function<bool(const string&, const string&, const strings&,
                       Korvo::API::solder_mask_DFM_params, Korvo::API::solder_mask_DFM_result_map&,
                       progress<void>)>
        solder_mask_DFM_op;
    std::function<bool(const string&, const string&, const strings&,
                       Korvo::API::teardrop_create_DFM_op_params, Korvo::API::teardrop_result_map&,
                       progress<void>)>
        teardrop_create_DFM_op;
    std::function<bool(const string&, const string&, const strings&,
                       Korvo::API::NFP_removal_DFM_op_params, Korvo::API::NFP_removal_result_map&,
                       progress<void>)>
        NFP_removal_DFM_op;
    std::function<bool(const string&, const string&, const string&, Korvo::API::export_type,
                       const string&, progress<void>)>
        layer_export;
    std::function<bool(const string&, const string&, const string&, progress<void>)> Export_step;
    std::function<bool(const string&, string&, Korvo::API::file_Parameters&, string&)>
        file_identify;
    std::function<bool(const string&, const string&, const string&, const string&,
                       const Korvo::API::file_Parameters&, std::time_t&, std::time_t&,
                       std::map<int, int>&)>
        file_translate;
};

// Drops every job, hook, recorded call and stored analysis result, and restores the default
// duration of long operations.
void resetEngine();

// Opens the sample job under `job`; a job already open under that name is kept as it is.
// Recorded as open_job.
bool openSampleJob(const std::string& job = "sample_job");

// The calls recorded since the last clear, oldest first. The log keeps the latest calls, at most
// kCallLogCapacity of them and kCallLogBytes of text, so that long interactive sessions do not
// grow without bound; an argument longer than kCallArgumentBytes (a large step-and-repeat table,
// say) keeps its beginning and says how much was cut.
constexpr size_t kCallLogCapacity = 100000;
constexpr size_t kCallLogBytes = 8 * 1024 * 1024;
constexpr size_t kCallArgumentBytes = 4096;
std::vector<EngineCall> engineCalls();
void clearEngineCalls();

// The hooks; set them from the test thread while no long operation runs.
EngineHooks& engineHooks();

// How long each long operation (checks, DFM operations, exports) takes to report its progress
// from 0 to 100 (DFM operations: at least this long); a few milliseconds by default.
void setLongOperationDuration(std::chrono::milliseconds duration);
std::chrono::milliseconds longOperationDuration();

// The area the graphic view shows, used by runs with scope 1 ("on screen only"); until it is
// set, such runs check the whole step.
void setScreenBox(const Korvo::API::reply_box& box);

}  // namespace wcref

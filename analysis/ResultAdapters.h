#pragma once
// One adapter per engine result type: each builds the viewer's ResultsModel over a result
// without copying a hit, and keeps the result alive through the model. Item names come from the
// range table of the mode's key (`getRangesName`); results keyed by text use the text.

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

namespace api = Korvo::API;

template <typename T>
using Shared = std::shared_ptr<const T>;

using SignalLayerResult = api::signal_check_result_map;
using SignalLayerDFMResult = api::signal_layer_DFM_result_map;
using SolderMaskResult =
    std::map<std::string, std::map<api::solder_mask_checks_items, api::solder_mask_check_result>>;
using SolderMaskOptResult = api::solder_mask_DFM_result_map;
// Silk screen layers are listed in descending name order.
using SilkScreenResult =
    std::map<std::string, std::map<api::silk_screen_checks_items, api::silk_screen_check_result>,
             std::greater<std::string>>;
using DrillResult = std::map<std::string, api::check_reply<api::drill_check_item, api::check_info>>;
using DrillTableResult = std::map<std::string, std::map<std::string, api::drill_check_result>>;
using BoardDrillResult =
    std::map<std::string, api::check_reply<api::board_drill_check_item, api::check_info>>;
using PowerGroundResult =
    std::map<std::string,
             std::map<api::power_ground_layers_checks_items, api::power_ground_check_result>>;
using PowerGroundDFMResult =
    std::map<std::string,
             std::map<api::power_ground_layer_DFM_op_items, api::power_ground_layer_DFM_op_result>>;
using PrepareResult = std::map<api::prepare_check_items, api::prepare_check_result>;
using MrcResult = api::mrc_check_result;
using SurfaceAnalyzerResult =
    std::map<std::string, std::map<api::surface_analyser_items, api::surface_analyser_result>>;
using PadSnappingResult = std::map<api::pad_snapping_op_items, api::pad_snapping_op_result>;
using TeardropsResult = api::teardrop_result_map;
using NFPRemovalResult = api::NFP_removal_result_map;
using AvoidConductorResult =
    std::map<api::avoid_conductor_DFM_op_items, api::avoid_conductor_DFM_op_result>;

// What an adapter takes beside the result: the range key its item names come from and, for a
// result of a whole step, the one entry under "Layers" and the job's layers that entry stands
// for. Results keyed by layer name use the key only; results keyed by text (the second drill
// form, MRC) use nothing.
struct WIDGET_COMMON_EXPORT AdapterInput {
    std::string range_key;
    std::string name;
    std::vector<std::string> layers;
};

// One adapter per result type, chosen by the type.
// Keyed by layer name, then item.
ResultsModel modelOf(Shared<SignalLayerResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<SignalLayerDFMResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<SolderMaskResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<SilkScreenResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<DrillResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<BoardDrillResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<PowerGroundResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<PowerGroundDFMResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<SurfaceAnalyzerResult> result, const AdapterInput& input);
// Keyed by layer name, then text; MRC differences have no severity and are all in the red list.
ResultsModel modelOf(Shared<DrillTableResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<MrcResult> result, const AdapterInput& input);
// A whole step (or the layers named), keyed by item: one entry under "Layers".
ResultsModel modelOf(Shared<SolderMaskOptResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<PrepareResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<PadSnappingResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<TeardropsResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<NFPRemovalResult> result, const AdapterInput& input);
ResultsModel modelOf(Shared<AvoidConductorResult> result, const AdapterInput& input);

}  // namespace wc

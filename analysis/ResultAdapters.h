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

// Results keyed by layer name.
ResultsModel signalLayerModel(Shared<SignalLayerResult> result, const std::string& range_key);
ResultsModel signalLayerDFMModel(Shared<SignalLayerDFMResult> result, const std::string& range_key);
ResultsModel solderMaskModel(Shared<SolderMaskResult> result, const std::string& range_key);
ResultsModel silkScreenModel(Shared<SilkScreenResult> result, const std::string& range_key);
ResultsModel drillModel(Shared<DrillResult> result, const std::string& range_key);
ResultsModel boardDrillModel(Shared<BoardDrillResult> result, const std::string& range_key);
ResultsModel powerGroundModel(Shared<PowerGroundResult> result, const std::string& range_key);
ResultsModel powerGroundDFMModel(Shared<PowerGroundDFMResult> result, const std::string& range_key);
ResultsModel surfaceAnalyzerModel(Shared<SurfaceAnalyzerResult> result,
                                  const std::string& range_key);
// Categories named by text; MRC differences have no severity and are all in the red list.
ResultsModel drillTableModel(Shared<DrillTableResult> result);
ResultsModel mrcModel(Shared<MrcResult> result);

// Results of a whole step (or of the layers named): one entry under "Layers", called `name`.
ResultsModel solderMaskOptModel(Shared<SolderMaskOptResult> result, const std::string& range_key,
                                const std::string& name, std::vector<std::string> layers);
ResultsModel prepareModel(Shared<PrepareResult> result, const std::string& range_key,
                          const std::string& name);
ResultsModel padSnappingModel(Shared<PadSnappingResult> result, const std::string& range_key,
                              const std::string& name);
ResultsModel teardropsModel(Shared<TeardropsResult> result, const std::string& range_key,
                            const std::string& name, std::vector<std::string> layers);
ResultsModel NFPRemovalModel(Shared<NFPRemovalResult> result, const std::string& range_key,
                             const std::string& name, std::vector<std::string> layers);
ResultsModel avoidConductorModel(Shared<AvoidConductorResult> result, const std::string& range_key,
                                 const std::string& name, std::vector<std::string> layers);

}  // namespace wc

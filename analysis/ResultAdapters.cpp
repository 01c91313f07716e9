#include "ResultAdapters.h"

#include <algorithm>
#include <set>

#include "Korvo_UIAPI.h"

namespace wc {
namespace {

ResultRecord recordOf(const api::severity_lists<api::check_info>& levels) {
    ResultRecord record;
    record.lists = {HitList(levels.red), HitList(levels.yellow), HitList(levels.green),
                    HitList(levels.other)};
    return record;
}

template <typename Item, typename Levels>
const std::map<Item, Levels>& itemsOf(const std::map<Item, Levels>& items) {
    return items;
}
template <typename Item, typename Info>
const std::map<Item, api::severity_lists<Info>>& itemsOf(
    const api::check_reply<Item, Info>& reply) {
    return reply.items;
}

template <typename Items>
std::vector<ResultCategory> categoriesOf(const Items& items, const std::string& range_key) {
    std::vector<ResultCategory> out;
    out.reserve(items.size());
    for (const auto& [item, levels] : items) {
        ResultCategory category;
        category.item = static_cast<int>(item);
        category.name = Korvo::UIAPI::getRangesName(range_key, category.item);
        category.records.push_back(recordOf(levels));
        out.push_back(std::move(category));
    }
    return out;
}

// layer name -> item -> severity lists (or a check_reply holding that map).
template <typename Result>
ResultsModel byLayerAndItem(Shared<Result> result, const AdapterInput& input) {
    std::vector<ResultLayer> layers;
    if (result) {
        for (const auto& [name, layer_result] : *result) {
            ResultLayer layer;
            layer.name = name;
            layer.layer_names = {name};
            layer.categories = categoriesOf(itemsOf(layer_result), input.range_key);
            layers.push_back(std::move(layer));
        }
    }
    return ResultsModel(result, std::move(layers));
}

template <typename Result>
ResultsModel wholeStep(Shared<Result> result, const AdapterInput& input) {
    std::vector<ResultLayer> layers;
    if (result && !result->empty()) {
        ResultLayer layer;
        layer.name = input.name;
        layer.layer_names = input.layers;
        layer.categories = categoriesOf(*result, input.range_key);
        layers.push_back(std::move(layer));
    }
    return ResultsModel(result, std::move(layers));
}

// Text-keyed categories get the position of their text among all texts of the result, so that
// the same text on two layers is one category.
template <typename Result, typename RecordsOf>
ResultsModel byLayerAndText(Shared<Result> result, RecordsOf records_of) {
    std::vector<ResultLayer> layers;
    if (result) {
        std::set<std::string> texts;
        for (const auto& [layer, categories] : *result) {
            for (const auto& [text, value] : categories) {
                texts.insert(text);
            }
        }
        const std::vector<std::string> table(texts.begin(), texts.end());
        for (const auto& [name, categories] : *result) {
            ResultLayer layer;
            layer.name = name;
            layer.layer_names = {name};
            for (const auto& [text, value] : categories) {
                ResultCategory category;
                category.item = static_cast<int>(
                    std::lower_bound(table.begin(), table.end(), text) - table.begin());
                category.name = text;
                category.records.push_back(records_of(value));
                layer.categories.push_back(std::move(category));
            }
            layers.push_back(std::move(layer));
        }
    }
    return ResultsModel(result, std::move(layers));
}

}  // namespace

// The adapters of one of the shapes above, one row per result type.
#define ADAPTER(Result, shape)                                               \
    ResultsModel modelOf(Shared<Result> result, const AdapterInput& input) { \
        return shape(std::move(result), input);                              \
    }

ADAPTER(SignalLayerResult, byLayerAndItem)
ADAPTER(SignalLayerDFMResult, byLayerAndItem)
ADAPTER(SolderMaskResult, byLayerAndItem)
ADAPTER(SilkScreenResult, byLayerAndItem)
ADAPTER(DrillResult, byLayerAndItem)
ADAPTER(BoardDrillResult, byLayerAndItem)
ADAPTER(PowerGroundResult, byLayerAndItem)
ADAPTER(PowerGroundDFMResult, byLayerAndItem)
ADAPTER(SurfaceAnalyzerResult, byLayerAndItem)
ADAPTER(PrepareResult, wholeStep)
ADAPTER(PadSnappingResult, wholeStep)
ADAPTER(TeardropsResult, wholeStep)
ADAPTER(NFPRemovalResult, wholeStep)
ADAPTER(AvoidConductorResult, wholeStep)

#undef ADAPTER

ResultsModel modelOf(Shared<DrillTableResult> result, const AdapterInput&) {
    return byLayerAndText(std::move(result),
                          [](const api::drill_check_result& levels) { return recordOf(levels); });
}

ResultsModel modelOf(Shared<MrcResult> result, const AdapterInput&) {
    return byLayerAndText(std::move(result), [](const std::vector<api::mrc_result_infos>& infos) {
        ResultRecord record;
        record.lists[SevRed] = HitList(infos, &api::mrc_result_infos::info);
        return record;
    });
}

// Each item holds several results, one record each.
ResultsModel modelOf(Shared<SolderMaskOptResult> result, const AdapterInput& input) {
    std::vector<ResultLayer> layers;
    if (result && !result->empty()) {
        ResultLayer layer;
        layer.name = input.name;
        layer.layer_names = input.layers;
        for (const auto& [item, results] : *result) {
            ResultCategory category;
            category.item = static_cast<int>(item);
            category.name = Korvo::UIAPI::getRangesName(input.range_key, category.item);
            for (const api::solder_mask_DFM_op_result& one : results) {
                category.records.push_back(recordOf(one));
            }
            layer.categories.push_back(std::move(category));
        }
        layers.push_back(std::move(layer));
    }
    return ResultsModel(result, std::move(layers));
}

}  // namespace wc

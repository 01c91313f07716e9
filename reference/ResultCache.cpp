// The result cache and the JSON export of results. The export keeps each document in memory
// under its key; the reference host sends nothing to an outside tool.

#include <json/value.h>

#include "Korvo_UIAPI.h"
#include "common_cache.h"

namespace Korvo {
namespace Cache {

common_cache* common_cache::instance() {
    static common_cache cache;
    return &cache;
}

}  // namespace Cache
}  // namespace Korvo

namespace {

using Korvo::API::check_info;
using Korvo::API::severity_lists;

Json::Value hitToJson(const check_info& hit, const char* level) {
    Json::Value out(Json::objectValue);
    out["level"] = level;
    out["value"] = hit.value;
    out["shape"] = static_cast<int>(hit.shape.kind);
    Json::Value points(Json::arrayValue);
    for (const Korvo::API::point& p : hit.shape.points) {
        Json::Value xy(Json::arrayValue);
        xy.append(p.x);
        xy.append(p.y);
        points.append(xy);
    }
    out["points"] = points;
    Json::Value features(Json::arrayValue);
    for (const Korvo::API::feature_ref& f : hit.features) {
        Json::Value ref(Json::objectValue);
        ref["layer_row"] = f.layer_row;
        ref["id"] = f.id;
        features.append(ref);
    }
    out["features"] = features;
    return out;
}

// {"item": n, "name": range name, "red": count, ..., "hits": [...]}
Json::Value itemToJson(int item, const std::string& range_key,
                       const severity_lists<check_info>& lists) {
    Json::Value out(Json::objectValue);
    out["item"] = item;
    out["name"] = Korvo::UIAPI::getRangesName(range_key, item);
    out["red"] = static_cast<Json::UInt64>(lists.red.size());
    out["yellow"] = static_cast<Json::UInt64>(lists.yellow.size());
    out["green"] = static_cast<Json::UInt64>(lists.green.size());
    out["other"] = static_cast<Json::UInt64>(lists.other.size());
    Json::Value hits(Json::arrayValue);
    for (const check_info& hit : lists.red)
        hits.append(hitToJson(hit, "red"));
    for (const check_info& hit : lists.yellow)
        hits.append(hitToJson(hit, "yellow"));
    for (const check_info& hit : lists.green)
        hits.append(hitToJson(hit, "green"));
    for (const check_info& hit : lists.other)
        hits.append(hitToJson(hit, "other"));
    out["hits"] = hits;
    return out;
}

// layer -> item -> severity lists, for any of the result map shapes.
template <typename LayerMap, typename ItemsOf>
Json::Value resultsToJson(const LayerMap& results, const std::string& range_key, ItemsOf items_of) {
    Json::Value out(Json::objectValue);
    for (const auto& [layer, layer_result] : results) {
        Json::Value items(Json::arrayValue);
        for (const auto& [item, lists] : items_of(layer_result))
            items.append(itemToJson(static_cast<int>(item), range_key, lists));
        out[layer] = items;
    }
    return out;
}

Json::Value documentOf(const Json::Value& params, Json::Value results) {
    Json::Value document(Json::objectValue);
    document["params"] = params;
    document["results"] = std::move(results);
    return document;
}

const auto kPlainItems = [](const auto& items) -> const auto& {
    return items;
};
const auto kReplyItems = [](const auto& reply) -> const auto& {
    return reply.items;
};

}  // namespace

TqAnalysisFilter* TqAnalysisFilter::instance() {
    static TqAnalysisFilter filter;
    return &filter;
}

void TqAnalysisFilter::setSignalLayerJsonResult4EDA(
    const std::string& key, const Json::Value& params,
    const Korvo::API::signal_check_result_map& results) {
    documents_[key] = documentOf(params, resultsToJson(results, "SignalLayerRanges", kPlainItems));
}

void TqAnalysisFilter::setSolderMaskJsonResult4EDA(
    const std::string& key, const Json::Value& params,
    const Korvo::Cache::common_cache::solder_mask_map& results) {
    documents_[key] = documentOf(params, resultsToJson(results, "SolderMaskRanges", kPlainItems));
}

void TqAnalysisFilter::setSilkScreenJsonResult4EDA(
    const std::string& key, const Json::Value& params,
    const Korvo::Cache::common_cache::silk_map& results) {
    documents_[key] = documentOf(params, resultsToJson(results, "SilkScreenRanges", kPlainItems));
}

void TqAnalysisFilter::setDrillJsonResult4EDA(
    const std::string& key, const Json::Value& params,
    const Korvo::Cache::common_cache::drill_map& results) {
    documents_[key] = documentOf(params, resultsToJson(results, "DrillRanges", kReplyItems));
}

void TqAnalysisFilter::setBoardDrillJsonResult4EDA(
    const std::string& key, const Json::Value& params,
    const std::map<std::string, Korvo::API::check_reply<Korvo::API::board_drill_check_item,
                                                        Korvo::API::check_info>>& results) {
    documents_[key] = documentOf(params, resultsToJson(results, "BoardDrillRanges", kReplyItems));
}

Json::Value TqAnalysisFilter::document(const std::string& key) const {
    auto it = documents_.find(key);
    return it == documents_.end() ? Json::Value() : it->second;
}

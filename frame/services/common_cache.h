#pragma once
// The last result of each analysis, kept between dialogs so that the results viewer can show it,
// and the export of results to an outside design tool as JSON.

#include <json/value.h>
#include <map>
#include <memory>
#include <string>

#include "Korvo_Analysis_types.h"

namespace Korvo {
namespace Cache {

// Results are held and handed out as shared, immutable maps: a getter never copies a result, and
// the viewer keeps the result it shows alive after the cache has moved on to a newer one. A
// getter never answers null; before any set it answers an empty map.
class common_cache {
public:
    template <typename T>
    using shared = std::shared_ptr<const T>;

    static common_cache* instance();

    void setSignalResult(API::signal_check_result_map result) { put(signal_, std::move(result)); }
    void setSignalResult(shared<API::signal_check_result_map> result) { put(signal_, result); }
    shared<API::signal_check_result_map> getSignalResult() const { return get(signal_); }

    using solder_mask_map =
        std::map<std::string,
                 std::map<API::solder_mask_checks_items, API::solder_mask_check_result>>;
    void setSolderMaskResult(solder_mask_map result) { put(solder_mask_, std::move(result)); }
    void setSolderMaskResult(shared<solder_mask_map> result) { put(solder_mask_, result); }
    shared<solder_mask_map> getSolderMaskResult() const { return get(solder_mask_); }

    using silk_map =
        std::map<std::string,
                 std::map<API::silk_screen_checks_items, API::silk_screen_check_result>>;
    void setSilkResult(silk_map result) { put(silk_, std::move(result)); }
    void setSilkResult(shared<silk_map> result) { put(silk_, result); }
    shared<silk_map> getSilkResult() const { return get(silk_); }

    using drill_map =
        std::map<std::string, API::check_reply<API::drill_check_item, API::check_info>>;
    void setDrillResult(drill_map result) { put(drill_, std::move(result)); }
    void setDrillResult(shared<drill_map> result) { put(drill_, result); }
    shared<drill_map> getDrillResult() const { return get(drill_); }

    void setMrcCheckResult(API::mrc_check_result result) { put(mrc_, std::move(result)); }
    void setMrcCheckResult(shared<API::mrc_check_result> result) { put(mrc_, result); }
    shared<API::mrc_check_result> getMrcCheckResult() const { return get(mrc_); }

    using prepare_map = std::map<API::prepare_check_items, API::prepare_check_result>;
    void setPrepareCheckResult(prepare_map result) { put(prepare_, std::move(result)); }
    void setPrepareCheckResult(shared<prepare_map> result) { put(prepare_, result); }
    shared<prepare_map> getPrepareCheckResult() const { return get(prepare_); }

    // Whether the last check of any kind ran through without a stop.
    void setOkCheckResult(bool ok) { ok_ = ok; }
    bool getOkCheckResult() const { return ok_; }

    void clear() { *this = common_cache(); }

private:
    template <typename T>
    static void put(shared<T>& slot, T&& value) {
        slot = std::make_shared<const T>(std::move(value));
    }
    template <typename T>
    static void put(shared<T>& slot, const shared<T>& value) {
        slot = value;
    }
    template <typename T>
    static shared<T> get(const shared<T>& slot) {
        static const shared<T> empty = std::make_shared<const T>();
        return slot ? slot : empty;
    }

    shared<API::signal_check_result_map> signal_;
    shared<solder_mask_map> solder_mask_;
    shared<silk_map> silk_;
    shared<drill_map> drill_;
    shared<API::mrc_check_result> mrc_;
    shared<prepare_map> prepare_;
    bool ok_ = false;
};

}  // namespace Cache
}  // namespace Korvo

// Hands analysis results to an outside design tool as JSON, filed under a key.
class TqAnalysisFilter {
public:
    static TqAnalysisFilter* instance();

    void setSignalLayerJsonResult4EDA(const std::string& key, const Json::Value& params,
                                      const Korvo::API::signal_check_result_map& results);
    void setSolderMaskJsonResult4EDA(const std::string& key, const Json::Value& params,
                                     const Korvo::Cache::common_cache::solder_mask_map& results);
    void setSilkScreenJsonResult4EDA(const std::string& key, const Json::Value& params,
                                     const Korvo::Cache::common_cache::silk_map& results);
    void setDrillJsonResult4EDA(const std::string& key, const Json::Value& params,
                                const Korvo::Cache::common_cache::drill_map& results);
    void setBoardDrillJsonResult4EDA(
        const std::string& key, const Json::Value& params,
        const std::map<std::string, Korvo::API::check_reply<Korvo::API::board_drill_check_item,
                                                            Korvo::API::check_info>>& results);

    // The document last filed under `key` ({"params": ..., "results": ...}); null when none.
    Json::Value document(const std::string& key) const;

private:
    std::map<std::string, Json::Value> documents_;
};

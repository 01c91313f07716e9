#pragma once
// The last result of each analysis, kept between dialogs so that the results viewer can show it,
// and the export of results to an outside design tool as JSON.

#include <json/value.h>
#include <map>
#include <string>

#include "Korvo_Analysis_types.h"

namespace Korvo {
namespace Cache {

class common_cache {
public:
    static common_cache* instance();

    void setSignalResult(const API::signal_check_result_map& result) { signal_ = result; }
    API::signal_check_result_map getSignalResult() const { return signal_; }

    using solder_mask_map =
        std::map<std::string,
                 std::map<API::solder_mask_checks_items, API::solder_mask_check_result>>;
    void setSolderMaskResult(const solder_mask_map& result) { solder_mask_ = result; }
    solder_mask_map getSolderMaskResult() const { return solder_mask_; }

    using silk_map =
        std::map<std::string,
                 std::map<API::silk_screen_checks_items, API::silk_screen_check_result>>;
    void setSilkResult(const silk_map& result) { silk_ = result; }
    silk_map getSilkResult() const { return silk_; }

    using drill_map =
        std::map<std::string, API::check_reply<API::drill_check_item, API::check_info>>;
    void setDrillResult(const drill_map& result) { drill_ = result; }
    drill_map getDrillResult() const { return drill_; }

    void setMrcCheckResult(const API::mrc_check_result& result) { mrc_ = result; }
    API::mrc_check_result getMrcCheckResult() const { return mrc_; }

    using prepare_map = std::map<API::prepare_check_items, API::prepare_check_result>;
    void setPrepareCheckResult(const prepare_map& result) { prepare_ = result; }
    prepare_map getPrepareCheckResult() const { return prepare_; }

    // Whether the last check of any kind ran through without a stop.
    void setOkCheckResult(bool ok) { ok_ = ok; }
    bool getOkCheckResult() const { return ok_; }

    void clear() { *this = common_cache(); }

private:
    API::signal_check_result_map signal_;
    solder_mask_map solder_mask_;
    silk_map silk_;
    drill_map drill_;
    API::mrc_check_result mrc_;
    prepare_map prepare_;
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

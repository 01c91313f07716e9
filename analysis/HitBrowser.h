#pragma once
// What the results viewer browses, without a widget: the result's model, the hits of the chosen
// category under the "Sv:" entry, those hits narrowed by a "Meas:" value and by the feature
// filter, and the position among the hits that pass.
//
// "Meas:" compares values as the display shows them: a hit's key is its value in thousandths of
// the display unit, rounded; `display_per_engine` converts engine values to display values.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "HitNavigator.h"
#include "HitRows.h"
#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

// (item, position in the category's hits) pairs that the feature filter passes.
using FilterItems = std::vector<std::tuple<int, int>>;

// A hit's "Meas:" key.
long long measureKey(const Korvo::API::check_info& hit, double display_per_engine);

class WIDGET_COMMON_EXPORT HitBrowser {
public:
    // A new result: no category, nothing narrowed by "Meas:" or the filter.
    void setModel(std::shared_ptr<const ResultsModel> model);
    const ResultsModel& model() const { return *model_; }
    const std::shared_ptr<const ResultsModel>& sharedModel() const { return model_; }
    // Every hit of the model by its number.
    const HitIndex& index() const { return index_; }

    // What a hit of any category must pass from the next choose() on: its mark in `marks` (by
    // hit number; null passes every hit) and `match` (empty passes every hit). `marks` must
    // outlive its use.
    using HitMatch = std::function<bool(const HitRef&)>;
    void setPass(const std::vector<std::uint8_t>* marks, HitMatch match);
    bool passes(const HitRef& hit) const;

    // Makes `item` (-1 for none) the category, over the chosen layers under the severity entry.
    // The "Meas:" value goes; the filter goes too when the item is another one. True when it
    // went.
    bool choose(const std::vector<int>& layers, int item, int severity);
    int item() const { return item_; }
    std::string itemName() const;
    // The category's hits under the severity entry, before narrowing.
    const HitSequence& hits() const { return hits_; }

    // The distinct "Meas:" keys of the category's hits, ascending.
    std::vector<long long> measureKeys(double display_per_engine) const;
    // Each narrows the hits anew and puts the navigation on the first that passes.
    void setMeasureKey(std::optional<long long> key, double display_per_engine);
    void setFilter(std::optional<FilterItems> filter, double display_per_engine);
    const std::optional<long long>& measureKey() const { return key_; }
    const std::optional<FilterItems>& filter() const { return filter_; }

    // Positions in hits() of the hits that pass, null when nothing narrows them.
    const std::vector<std::uint32_t>* admitted() const { return narrowed() ? &admitted_ : nullptr; }
    // The hit at a navigation position (none past the end).
    HitRef hitAt(std::size_t position) const;
    // The navigation position of the hit numbered `number`, if the navigation has it.
    std::optional<std::size_t> positionOf(std::size_t number) const;
    // The hits that pass of every category of `layers` under the severity entry, category by
    // category; those of the current category as the navigation steps through them.
    std::vector<TableHit> listAll(const std::vector<int>& layers, int severity) const;
    HitNavigator& navigator() { return navigator_; }
    const HitNavigator& navigator() const { return navigator_; }

private:
    bool narrowed() const {
        return key_.has_value() || filter_.has_value() || marks_ != nullptr || bool(match_);
    }
    void narrow(double display_per_engine);

    std::shared_ptr<const ResultsModel> model_ = std::make_shared<ResultsModel>();
    HitIndex index_;
    const std::vector<std::uint8_t>* marks_ = nullptr;
    HitMatch match_;
    int item_ = -1;
    HitSequence hits_;
    std::optional<long long> key_;
    std::optional<FilterItems> filter_;
    std::vector<std::uint32_t> admitted_;
    HitNavigator navigator_;
};

}  // namespace wc

#include "HitBrowser.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace wc {

long long measureKey(const Korvo::API::check_info& hit, double display_per_engine) {
    return std::llround(hit.value * (display_per_engine * 1000.0));
}

void HitBrowser::setModel(std::shared_ptr<const ResultsModel> model) {
    model_ = std::move(model);
    index_ = HitIndex(*model_);
    filter_.reset();
    choose({}, -1, SevRed);
}

void HitBrowser::setPass(const std::vector<std::uint8_t>* marks, HitMatch match) {
    marks_ = marks;
    match_ = std::move(match);
}

bool HitBrowser::passes(const HitRef& hit) const {
    return (marks_ == nullptr || (hit.number < marks_->size() && (*marks_)[hit.number] != 0)) &&
           (!match_ || match_(hit));
}

bool HitBrowser::choose(const std::vector<int>& layers, int item, int severity) {
    const bool drop_filter = item != item_ && filter_.has_value();
    if (drop_filter) {
        filter_.reset();
    }
    item_ = item;
    hits_ = item < 0 ? HitSequence() : model_->hits(layers, item, severity);
    key_.reset();
    narrow(1.0);  // without a "Meas:" key the unit does not matter
    return drop_filter;
}

std::string HitBrowser::itemName() const {
    for (const ResultLayer& layer : model_->layers()) {
        for (const ResultCategory& category : layer.categories) {
            if (category.item == item_) {
                return category.name;
            }
        }
    }
    return {};
}

std::vector<long long> HitBrowser::measureKeys(double display_per_engine) const {
    std::vector<long long> keys;
    keys.reserve(hits_.size());
    for (std::size_t i = 0; i < hits_.size(); ++i) {
        keys.push_back(wc::measureKey(*hits_.at(i).hit, display_per_engine));
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    return keys;
}

void HitBrowser::setMeasureKey(std::optional<long long> key, double display_per_engine) {
    key_ = key;
    narrow(display_per_engine);
}

void HitBrowser::setFilter(std::optional<FilterItems> filter, double display_per_engine) {
    filter_ = std::move(filter);
    narrow(display_per_engine);
}

HitRef HitBrowser::hitAt(std::size_t position) const {
    if (position >= navigator_.count()) {
        return {};
    }
    return hits_.at(narrowed() ? admitted_[position] : position);
}

// Positions follow hit numbers: the model numbers its hits in the order a sequence lists them.
std::optional<std::size_t> HitBrowser::positionOf(std::size_t number) const {
    std::size_t low = 0;
    std::size_t high = navigator_.count();
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (hitAt(middle).number < number) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    if (low < navigator_.count() && hitAt(low).number == number) {
        return low;
    }
    return std::nullopt;
}

std::vector<TableHit> HitBrowser::listAll(const std::vector<int>& layers, int severity) const {
    std::vector<TableHit> out;
    for (const CategoryEntry& entry : model_->categories(layers, severity)) {
        if (entry.item == item_) {
            for (std::size_t p = 0; p < navigator_.count(); ++p) {
                out.push_back({std::uint32_t(hitAt(p).number), std::uint32_t(p), item_});
            }
            continue;
        }
        const HitSequence hits = model_->hits(layers, entry.item, severity);
        std::uint32_t position = 0;
        for (std::size_t i = 0; i < hits.size(); ++i) {
            const HitRef hit = hits.at(i);
            if (passes(hit)) {
                out.push_back({std::uint32_t(hit.number), position++, entry.item});
            }
        }
    }
    return out;
}

// The filter names hits by their position in the category's hits; only its pairs of the current
// item count.
void HitBrowser::narrow(double display_per_engine) {
    admitted_.clear();
    if (narrowed()) {
        std::set<int> passing;
        for (const auto& [item, position] : filter_.value_or(FilterItems())) {
            if (item == item_) {
                passing.insert(position);
            }
        }
        for (std::size_t i = 0; i < hits_.size(); ++i) {
            const HitRef hit = hits_.at(i);
            if ((!filter_ || passing.count(int(i)) != 0) &&
                (!key_ || wc::measureKey(*hit.hit, display_per_engine) == *key_) && passes(hit)) {
                admitted_.push_back(std::uint32_t(i));
            }
        }
    }
    navigator_.reset(narrowed() ? admitted_.size() : hits_.size());
}

}  // namespace wc

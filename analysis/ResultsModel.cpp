#include "ResultsModel.h"

#include <algorithm>
#include <map>

namespace wc {

std::size_t ResultRecord::count(int severity) const {
    std::size_t sum = 0;
    for (int level = 0; level <= std::min(severity, kSeverityCount - 1); ++level) {
        sum += lists[level].size();
    }
    return sum;
}

std::size_t ResultCategory::count(int severity) const {
    std::size_t sum = 0;
    for (const ResultRecord& record : records) {
        sum += record.count(severity);
    }
    return sum;
}

std::size_t ResultLayer::count(int severity) const {
    std::size_t sum = 0;
    for (const ResultCategory& category : categories) {
        sum += category.count(severity);
    }
    return sum;
}

HitRef HitSequence::at(std::size_t position) const {
    if (position >= size_) {
        return {};
    }
    auto part = std::upper_bound(parts_.begin(), parts_.end(), position,
                                 [](std::size_t p, const Part& x) { return p < x.start; });
    --part;
    const std::size_t offset = position - part->start;
    return {&part->list[offset], part->layer, part->level, part->first + offset};
}

std::vector<int> HitSequence::layers() const {
    std::vector<int> out;
    for (const Part& part : parts_) {
        if (out.empty() || out.back() != part.layer) {
            out.push_back(part.layer);
        }
    }
    return out;
}

ResultsModel::ResultsModel(std::shared_ptr<const void> owner, std::vector<ResultLayer> layers)
    : owner_(std::move(owner)), layers_(std::move(layers)) {
    for (ResultLayer& layer : layers_) {
        for (ResultCategory& category : layer.categories) {
            for (ResultRecord& record : category.records) {
                for (int level = 0; level < kSeverityCount; ++level) {
                    record.first[level] = total_;
                    total_ += record.lists[level].size();
                }
            }
        }
    }
}

std::vector<CategoryEntry> ResultsModel::categories(const std::vector<int>& layers,
                                                    int severity) const {
    std::map<int, CategoryEntry> merged;
    for (int index : layers) {
        if (index < 0 || index >= static_cast<int>(layers_.size())) {
            continue;
        }
        for (const ResultCategory& category : layers_[index].categories) {
            const std::size_t all = category.count(SevAll);
            if (all == 0) {
                continue;
            }
            CategoryEntry& entry = merged[category.item];
            entry.item = category.item;
            entry.name = category.name;
            entry.count += category.count(severity);
            entry.all += all;
        }
    }
    std::vector<CategoryEntry> out;
    out.reserve(merged.size());
    for (auto& [item, entry] : merged) {
        out.push_back(std::move(entry));
    }
    return out;
}

HitSequence ResultsModel::hits(const std::vector<int>& layers, int item, int severity) const {
    HitSequence sequence;
    const int last_level = std::min(severity, kSeverityCount - 1);
    for (int index : layers) {
        if (index < 0 || index >= static_cast<int>(layers_.size())) {
            continue;
        }
        for (const ResultCategory& category : layers_[index].categories) {
            if (category.item != item) {
                continue;
            }
            for (const ResultRecord& record : category.records) {
                for (int level = 0; level <= last_level; ++level) {
                    if (record.lists[level].size() == 0) {
                        continue;
                    }
                    sequence.parts_.push_back(
                        {record.lists[level], index, level, sequence.size_, record.first[level]});
                    sequence.size_ += record.lists[level].size();
                }
            }
        }
    }
    return sequence;
}

}  // namespace wc

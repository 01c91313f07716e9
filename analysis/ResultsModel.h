#pragma once
// The one shape every analysis and optimisation result has as the results viewer sees it:
// layers -> categories (check items) -> records -> four hit lists (red, yellow, green, other).
// The model refers to the hits inside the engine's result and keeps that result alive; it never
// copies a hit. Counting under a severity entry sums list sizes; it never walks hits.

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "Korvo_Analysis_types.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

// The "Sv:" entries, cumulative: each admits its own list and those above it.
enum Severity : int { SevRed = 0, SevYellow = 1, SevGreen = 2, SevAll = 3 };
constexpr int kSeverityCount = 4;

// A view of hits stored in a vector, either of check_info itself or of records that hold one
// (`stride` apart).
class WIDGET_COMMON_EXPORT HitList {
public:
    HitList() = default;
    explicit HitList(const std::vector<Korvo::API::check_info>& hits)
        : base_(reinterpret_cast<const char*>(hits.data())),
          size_(hits.size()),
          stride_(sizeof(Korvo::API::check_info)) {}
    template <typename Record>
    HitList(const std::vector<Record>& records, Korvo::API::check_info Record::*member)
        : base_(records.empty() ? nullptr
                                : reinterpret_cast<const char*>(&(records.front().*member))),
          size_(records.size()),
          stride_(sizeof(Record)) {}

    std::size_t size() const { return size_; }
    const Korvo::API::check_info& operator[](std::size_t i) const {
        return *reinterpret_cast<const Korvo::API::check_info*>(base_ + i * stride_);
    }

private:
    const char* base_ = nullptr;
    std::size_t size_ = 0;
    std::size_t stride_ = 0;
};

struct WIDGET_COMMON_EXPORT ResultRecord {
    std::array<HitList, kSeverityCount> lists;
    // The model's number of each list's first hit (set by ResultsModel).
    std::array<std::size_t, kSeverityCount> first{};
    // Hits admitted by the severity entry: lists 0..severity.
    std::size_t count(int severity) const;
};

struct WIDGET_COMMON_EXPORT ResultCategory {
    int item = 0;  // the item's enumeration value, or its position in the model's name table
    std::string name;
    std::vector<ResultRecord> records;
    std::size_t count(int severity) const;
};

struct WIDGET_COMMON_EXPORT ResultLayer {
    std::string name;                      // as listed under "Layers"
    std::vector<std::string> layer_names;  // the job's layers it stands for
    std::vector<ResultCategory> categories;
    std::size_t count(int severity) const;
};

// One line of the category list: an item merged over the chosen layers.
struct WIDGET_COMMON_EXPORT CategoryEntry {
    int item = 0;
    std::string name;
    std::size_t count = 0;  // under the severity entry asked for
    std::size_t all = 0;    // under "All"
};

struct WIDGET_COMMON_EXPORT HitRef {
    const Korvo::API::check_info* hit = nullptr;
    int layer = -1;  // index into ResultsModel::layers()
    int level = 0;   // the list it comes from
    // The hit's number in its model: hits are numbered 0.. in the order layer, category,
    // record, level, position, so per-hit marks (waived, new, visited) are plain vectors.
    std::size_t number = 0;
};

// The admitted hits of one item over the chosen layers, in order: layer, record, then level.
// Positions are found by a binary search over the lists, so stepping costs nothing.
class WIDGET_COMMON_EXPORT HitSequence {
public:
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }
    HitRef at(std::size_t position) const;
    std::vector<int> layers() const;  // the layers that contribute, in order

private:
    friend class ResultsModel;
    struct Part {
        HitList list;
        int layer = 0;
        int level = 0;
        std::size_t start = 0;
        std::size_t first = 0;  // the model's number of the list's first hit
    };
    std::vector<Part> parts_;
    std::size_t size_ = 0;
};

class WIDGET_COMMON_EXPORT ResultsModel {
public:
    ResultsModel() = default;
    ResultsModel(std::shared_ptr<const void> owner, std::vector<ResultLayer> layers);

    const std::vector<ResultLayer>& layers() const { return layers_; }
    bool empty() const { return layers_.empty(); }
    // Every hit of the result under "All"; hit numbers run from 0 to total() - 1.
    std::size_t total() const { return total_; }

    // The items that carry any hit on the chosen layers, in item order.
    std::vector<CategoryEntry> categories(const std::vector<int>& layers, int severity) const;
    HitSequence hits(const std::vector<int>& layers, int item, int severity) const;

private:
    std::shared_ptr<const void> owner_;  // keeps the engine's result alive
    std::vector<ResultLayer> layers_;
    std::size_t total_ = 0;
};

}  // namespace wc

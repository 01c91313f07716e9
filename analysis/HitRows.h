#pragma once
// The hits the table lists beyond the current category, without a widget: every hit of a model
// found again by its number, and hits grouped by item, layer or net. Groups are computed over
// vectors of hit numbers, so a million hits cost a few passes over plain vectors.

#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

// One listed hit: its number in the model, its position among the hits of its category that the
// viewer lists (the navigation position when that category is the current one), and its item.
struct WIDGET_COMMON_EXPORT TableHit {
    std::uint32_t number = 0;
    std::uint32_t position = 0;
    std::int32_t item = 0;
};

// Every hit of a model by its number, found by a binary search over the model's lists.
class WIDGET_COMMON_EXPORT HitIndex {
public:
    HitIndex() = default;
    explicit HitIndex(const ResultsModel& model);

    // No hit past the end.
    HitRef at(std::size_t number) const;
    int itemOf(std::size_t number) const;

private:
    struct Part {
        std::size_t first = 0;
        HitList list;
        int layer = 0;
        int item = 0;
        int level = 0;
    };
    const Part* partOf(std::size_t number) const;
    std::vector<Part> parts_;
};

enum class GroupKey : int { None = 0, Item = 1, Layer = 2, Net = 3 };

struct WIDGET_COMMON_EXPORT HitGroup {
    QString label;          // the item's name, the layer's name or the nets ("GND / VCC")
    std::size_t begin = 0;  // the group's hits in the grouped vector
    std::size_t end = 0;
    std::size_t size() const { return end - begin; }
};

// Orders `hits` by group, keeping their order within a group, and answers the groups: items in
// ascending order, layers as listed, nets by name with the hits of no net last (labelled
// `no_net`).
WIDGET_COMMON_EXPORT std::vector<HitGroup> groupHits(std::vector<TableHit>& hits, GroupKey key,
                                                     const ResultsModel& model,
                                                     const HitIndex& index, const QString& no_net);

}  // namespace wc

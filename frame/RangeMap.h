#pragma once
// The engine's item map of a run built from the range records of one range key: each record is
// put under the item its name (or its row) resolves to; records that resolve to no item are
// left out. Later records of the same item overwrite earlier ones.

#include <map>
#include <string>
#include <vector>

#include "Korvo_DFM_types.h"
#include "Korvo_UIAPI.h"

namespace wc {

enum class RangeLookup { ByName, ByRow };

template <class Item, class Value, class Convert>
std::map<Item, Value> buildRangeMap(
    const std::string& key, const std::vector<Korvo::UIAPI::Analysis_Ranges_Record>& records,
    Convert convert, RangeLookup lookup = RangeLookup::ByName) {
    std::map<Item, Value> map;
    for (size_t row = 0; row < records.size(); ++row) {
        const int item = lookup == RangeLookup::ByName
                             ? Korvo::UIAPI::getRangesEnum(key, records[row].name)
                             : Korvo::UIAPI::getRangesEnum(key, static_cast<int>(row));
        if (item >= 0) {
            map[static_cast<Item>(item)] = convert(records[row]);
        }
    }
    return map;
}

// The same, reading the records of `key` from the range store.
template <class Item, class Value, class Convert>
std::map<Item, Value> buildRangeMap(const std::string& key, Convert convert,
                                    RangeLookup lookup = RangeLookup::ByName) {
    return buildRangeMap<Item, Value>(key, Korvo::UIAPI::getRanges(key), convert, lookup);
}

// An analysis takes the three levels as they stand.
inline Korvo::API::signal_check_range toCheckRange(
    const Korvo::UIAPI::Analysis_Ranges_Record& record) {
    return Korvo::API::signal_check_range{record.RedLv, record.YellowLv, record.GreenLv};
}

// An optimisation takes red and yellow as its pair of limits and green as the value aimed at.
inline Korvo::API::dfm_range_value toDfmRangeValue(
    const Korvo::UIAPI::Analysis_Ranges_Record& record) {
    Korvo::API::dfm_range_value value;
    value.limits = {record.RedLv, record.YellowLv};
    value.value = record.GreenLv;
    return value;
}

}  // namespace wc

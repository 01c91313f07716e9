// A stored signal layer check as the result database holds it: the parameter record's text, a
// line break, the result's text. Each reader refuses a text and leaves its output as it was, or
// reads only known test, item and shape kinds and finite numbers, and what it read writes to a
// text that reads back and writes again to the same text.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "ResultRecord.h"

namespace {

using namespace Korvo::API;
using namespace wcref::resultrecord;

bool sane(const std::vector<check_info>& hits) {
    for (const check_info& hit : hits) {
        if (!std::isfinite(hit.value) || hit.shape.kind < check_points::line ||
            hit.shape.kind > check_points::polygon) {
            return false;
        }
        for (const point& p : hit.shape.points) {
            if (!std::isfinite(p.x) || !std::isfinite(p.y)) {
                return false;
            }
        }
    }
    return true;
}

bool known(const dms_signal_check_params& record) {
    for (signal_layers_checks_list test : record.tests) {
        if (test < sl_spacing || test > sl_pad_connection) {
            return false;
        }
    }
    const signal_check_params& p = record.params;
    for (double value : p.thresholds) {
        if (!std::isfinite(value)) {
            return false;
        }
    }
    return std::isfinite(p.spacing) && std::isfinite(p.drill_to_copper) &&
           std::isfinite(p.rout_to_copper) && std::isfinite(p.sliver_min) &&
           std::isfinite(p.min_pad_overlap);
}

bool known(const signal_check_result_map& result) {
    for (const auto& [layer, items] : result) {
        for (const auto& [item, record] : items) {
            if (item < sli_pad_to_pad_spacing || item > sli_netlist_short || record.item != item ||
                !sane(record.red) || !sane(record.yellow) || !sane(record.green) ||
                !sane(record.other)) {
                return false;
            }
        }
    }
    return true;
}

template <typename Record>
void check(const QString& text, bool (*read)(const QString&, Record&),
           QString (*write)(const Record&)) {
    static const QString untouched = write(Record{});
    Record record;
    if (!read(text, record)) {
        if (write(record) != untouched) {
            __builtin_trap();  // a refused text was loaded in part
        }
        return;
    }
    const QString written = write(record);
    Record again;
    if (!known(record) || !read(written, again) || write(again) != written) {
        __builtin_trap();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    const int split = text.indexOf(QLatin1Char('\n'));
    check<dms_signal_check_params>(text.left(split), paramsFromJson, paramsToJson);
    if (split >= 0) {
        check<signal_check_result_map>(text.mid(split + 1), resultFromJson, resultToJson);
    }
    return 0;
}

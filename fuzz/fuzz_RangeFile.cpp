// The range store's file: any bytes are refused with a reason or give levels that are all
// finite numbers, one record per row of each key.

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "RangeStore.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const wcref::RangeStore::Table defaults = wcref::RangeStore::defaultTable();
    wcref::RangeStore::Table table = defaults;
    QString error;
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size));
    if (!wcref::RangeStore::parse(bytes, table, error)) {
        if (error.isEmpty()) {
            __builtin_trap();  // a refusal always says why
        }
        return 0;
    }
    for (const auto& [key, records] : table) {
        if (records.size() != defaults.at(key).size()) {
            __builtin_trap();
        }
        for (const auto& record : records) {
            if (!std::isfinite(record.RedLv) || !std::isfinite(record.YellowLv) ||
                !std::isfinite(record.GreenLv)) {
                __builtin_trap();
            }
        }
    }
    return 0;
}

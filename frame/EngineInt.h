#pragma once
// Engine lengths, counts and angles are int32. A field's value converted to engine units can be
// far outside that range (a pasted 1e308, "inf"), and casting such a double to an int is
// undefined: it is clamped to the int32 range instead, and truncated toward zero within it as
// the cast would. NaN gives 0.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace wc {

inline int32_t toEngineInt(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    constexpr double low = std::numeric_limits<int32_t>::min();
    constexpr double high = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(value, low, high));
}

}  // namespace wc

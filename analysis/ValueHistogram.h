#pragma once
// How measured values are spread: equal-width bins between the smallest and the largest value.

#include <cstddef>
#include <vector>

#include "frame/WidgetCommonExport.h"

namespace wc {

struct WIDGET_COMMON_EXPORT ValueHistogram {
    double minimum = 0.0;
    double maximum = 0.0;
    std::vector<std::size_t> bins;

    double binWidth() const;
    std::size_t largest() const;
};

// `bin_count` bins over the values' range; the largest value falls in the last bin. All values
// equal: everything in one bin of zero width. No values: no bins.
ValueHistogram histogramOf(const std::vector<double>& values, std::size_t bin_count);

}  // namespace wc

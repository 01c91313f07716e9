#include "ValueHistogram.h"

#include <algorithm>

namespace wc {

double ValueHistogram::binWidth() const {
    return bins.empty() ? 0.0 : (maximum - minimum) / double(bins.size());
}

std::size_t ValueHistogram::largest() const {
    return bins.empty() ? 0 : *std::max_element(bins.begin(), bins.end());
}

ValueHistogram histogramOf(const std::vector<double>& values, std::size_t bin_count) {
    ValueHistogram histogram;
    if (values.empty() || bin_count == 0) {
        return histogram;
    }
    const auto [low, high] = std::minmax_element(values.begin(), values.end());
    histogram.minimum = *low;
    histogram.maximum = *high;
    if (histogram.maximum == histogram.minimum) {
        histogram.bins.assign(1, values.size());
        return histogram;
    }
    histogram.bins.assign(bin_count, 0);
    const double scale = double(bin_count) / (histogram.maximum - histogram.minimum);
    for (double value : values) {
        const auto bin = std::size_t((value - histogram.minimum) * scale);
        ++histogram.bins[std::min(bin, bin_count - 1)];
    }
    return histogram;
}

}  // namespace wc

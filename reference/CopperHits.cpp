// The hits the checks and the optimisations report, and the signature of their features
// (CopperGeometry.h says what enters it).

#include <algorithm>
#include <array>
#include <cmath>

#include "CopperGeometry.h"

namespace wcref {

using Korvo::API::featureInfo;
using Korvo::API::point;

namespace {

constexpr double kPi = 3.14159265358979323846;
// Lengths in the signature are counted in steps of 0.1 mil, sweeps in hundredths of a degree.
constexpr double kLengthStep = 2540.0;
constexpr double kSweepStep = kPi / 18000.0;

// What one feature contributes: type, symbol kind, then four sizes.
using FeatureKey = std::array<std::int64_t, 6>;

std::int64_t steps(double value, double step) {
    return std::llround(value / step);
}

// Twice the signed area of a ring, taken about its first point so that it does not depend on
// where the ring lies.
double doubleArea(const std::vector<point>& ring) {
    double sum = 0.0;
    for (size_t k = 1; k + 1 < ring.size(); ++k) {
        const point a{ring[k].x - ring[0].x, ring[k].y - ring[0].y};
        const point b{ring[k + 1].x - ring[0].x, ring[k + 1].y - ring[0].y};
        sum += a.x * b.y - a.y * b.x;
    }
    return sum;
}

// Width and height of an outline's box and the area inside it, less its holes.
void outlineSizes(const featureInfo& f, FeatureKey& key) {
    double x0 = f.contour.front().x;
    double x1 = x0;
    double y0 = f.contour.front().y;
    double y1 = y0;
    for (const point& p : f.contour) {
        x0 = std::min(x0, p.x);
        x1 = std::max(x1, p.x);
        y0 = std::min(y0, p.y);
        y1 = std::max(y1, p.y);
    }
    double area = std::abs(doubleArea(f.contour));
    for (const std::vector<point>& hole : f.holes) {
        area -= std::abs(doubleArea(hole));
    }
    key[2] = steps(x1 - x0, kLengthStep);
    key[3] = steps(y1 - y0, kLengthStep);
    key[4] = steps(area / 2, kLengthStep * kLengthStep);
}

FeatureKey keyOf(const featureInfo& f) {
    FeatureKey key{static_cast<std::int64_t>(f.type), 0, 0, 0, 0, 0};
    if ((f.type == Korvo::API::feature_surface || f.type == Korvo::API::feature_pad) &&
        f.contour.size() >= 3) {
        key[1] = -1;  // an outline, not a symbol
        outlineSizes(f, key);
        return key;
    }
    const SymbolSize size = CopperGeometry::parseSymbol(f.symbol);
    key[1] = static_cast<std::int64_t>(size.kind);
    key[2] = steps(size.width, kLengthStep);
    key[3] = steps(size.height, kLengthStep);
    if (f.type == Korvo::API::feature_line) {
        key[4] = steps(std::hypot(f.end.x - f.start.x, f.end.y - f.start.y), kLengthStep);
    } else if (f.type == Korvo::API::feature_arc) {
        const ArcBand band = CopperGeometry::arcBand(f.start, f.end, f.center, f.clockwise, 0.0);
        key[4] = steps(band.radius, kLengthStep);
        key[5] = steps(band.sweep, kSweepStep);
    }
    return key;
}

// 64-bit FNV-1a over the bytes of each value, least significant first, so that the hash is
// the same on every platform and in every build.
class Fnv1a {
public:
    void add(std::int64_t value) {
        auto bits = static_cast<std::uint64_t>(value);
        for (int k = 0; k < 8; ++k) {
            hash_ ^= bits & 0xffu;
            hash_ *= 0x100000001b3ULL;
            bits >>= 8;
        }
    }
    std::uint64_t value() const { return hash_; }

private:
    std::uint64_t hash_ = 0xcbf29ce484222325ULL;
};

Korvo::API::check_info hitOf(double value, double required,
                             const std::vector<HitFeature>& features) {
    Korvo::API::check_info hit;
    hit.value = value;
    hit.required = required;
    hit.features.reserve(features.size());
    std::vector<const featureInfo*> records;
    records.reserve(features.size());
    for (const HitFeature& f : features) {
        hit.features.push_back(f.ref);
        records.push_back(f.record);
    }
    hit.signature = hitSignature(records);
    return hit;
}

}  // namespace

std::uint64_t hitSignature(const std::vector<const featureInfo*>& records) {
    if (records.empty()) {
        return 0;
    }
    std::vector<FeatureKey> keys;
    keys.reserve(records.size());
    for (const featureInfo* record : records) {
        if (record == nullptr) {
            return 0;
        }
        keys.push_back(keyOf(*record));
    }
    std::sort(keys.begin(), keys.end());
    Fnv1a hash;
    for (const FeatureKey& key : keys) {
        for (std::int64_t value : key) {
            hash.add(value);
        }
    }
    return hash.value() != 0 ? hash.value() : 1;  // 0 stays "unknown"
}

Korvo::API::check_info distanceHit(double value, double required, const point& a, const point& b,
                                   const std::vector<HitFeature>& features) {
    Korvo::API::check_info hit = hitOf(value, required, features);
    hit.shape.kind = Korvo::API::check_points::line;
    hit.shape.points = {a, b};
    return hit;
}

Korvo::API::check_info boxHit(double value, double required, const GeoBox& box,
                              const std::vector<HitFeature>& features) {
    Korvo::API::check_info hit = hitOf(value, required, features);
    hit.shape.kind = Korvo::API::check_points::box;
    hit.shape.points = {{box.min_corner().x(), box.min_corner().y()},
                        {box.max_corner().x(), box.max_corner().y()}};
    return hit;
}

}  // namespace wcref

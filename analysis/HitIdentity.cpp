#include "HitIdentity.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace wc {

namespace {

// The tolerance in grid steps: locations within it are the same, and a cell is this wide.
constexpr std::int64_t kToleranceSteps = 100;
static_assert(kIdentityTolerance == kToleranceSteps * kIdentityGrid,
              "the tolerance is a whole number of grid steps");

// FNV-1a over a byte stream of fixed-width numbers and length-prefixed texts: identities are
// stored with waivers, so their hash must not change with the compiler or the platform the way
// std::hash may.
class StableHash {
public:
    void number(std::uint64_t value) {
        for (int shift = 0; shift < 64; shift += 8) {
            byte(static_cast<unsigned char>(value >> shift));
        }
    }
    void text(const std::string& value) {
        number(value.size());
        for (char c : value) {
            byte(static_cast<unsigned char>(c));
        }
    }
    std::uint64_t value() const { return hash_; }

private:
    void byte(unsigned char b) {
        hash_ ^= b;
        hash_ *= 1099511628211ull;
    }
    std::uint64_t hash_ = 14695981039346656037ull;
};

// Spreads the bits of a key over the table's slots (the finaliser of splitmix64).
std::uint64_t mix(std::uint64_t x) {
    x ^= x >> 30;
    x *= 0xbf58476d1ce4e5b9ull;
    x ^= x >> 27;
    x *= 0x94d049bb133111ebull;
    return x ^ (x >> 31);
}

std::uint64_t cellOf(std::uint64_t what, std::int64_t cx, std::int64_t cy) {
    return mix(what ^ mix(static_cast<std::uint64_t>(cx) ^ mix(static_cast<std::uint64_t>(cy))));
}

// Rounds towards minus infinity, so that cell 0 is as wide as every other.
std::int64_t cellIndex(std::int64_t steps) {
    const std::int64_t q = steps / kToleranceSteps;
    return steps % kToleranceSteps < 0 ? q - 1 : q;
}

std::uint64_t distance(std::int64_t a, std::int64_t b) {
    // Unsigned, so that no pair of coordinates overflows.
    return a > b ? std::uint64_t(a) - std::uint64_t(b) : std::uint64_t(b) - std::uint64_t(a);
}

void prefetch(const void* address) {
#if defined(__GNUC__) || defined(__clang__)
    __builtin_prefetch(address);
#else
    (void)address;
#endif
}

std::int64_t quantised(double engine_units) {
    // Beyond 2^53 steps a double holds no whole numbers apart; such a location is nonsense, and
    // clamping keeps llround defined.
    constexpr double kLimit = 9007199254740992.0;
    const double steps = engine_units / kIdentityGrid;
    if (!std::isfinite(steps)) {
        return 0;
    }
    return std::llround(std::clamp(steps, -kLimit, kLimit));
}

}  // namespace

std::string HitIdentity::text() const {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%016llx@%lld,%lld", static_cast<unsigned long long>(what),
                  static_cast<long long>(x), static_cast<long long>(y));
    return buffer;
}

std::optional<HitIdentity> HitIdentity::fromText(const std::string& text) {
    // Read leniently, then demand that text() writes the very same text back: that refuses
    // upper-case digits, leading zeros, "-0", signs and blanks without listing them.
    const char* begin = text.data();
    const char* end = begin + text.size();
    const std::size_t at = text.find('@');
    const std::size_t comma = text.find(',');
    if (at != 16 || comma == std::string::npos || comma < at) {
        return std::nullopt;
    }
    HitIdentity identity;
    const auto what = std::from_chars(begin, begin + at, identity.what, 16);
    const auto x = std::from_chars(begin + at + 1, begin + comma, identity.x);
    const auto y = std::from_chars(begin + comma + 1, end, identity.y);
    if (what.ec != std::errc() || x.ec != std::errc() || y.ec != std::errc() ||
        identity.text() != text) {
        return std::nullopt;
    }
    return identity;
}

bool HitIdentity::sameHit(const HitIdentity& other) const {
    return what == other.what && distance(x, other.x) <= std::uint64_t(kToleranceSteps) &&
           distance(y, other.y) <= std::uint64_t(kToleranceSteps);
}

Korvo::API::point hitLocation(const Korvo::API::check_points& shape) {
    std::size_t count = shape.points.size();
    // A closed outline repeats its first point last; counted twice, it would pull the mean.
    if (shape.kind == Korvo::API::check_points::polygon && count > 1 &&
        shape.points.front() == shape.points.back()) {
        --count;
    }
    Korvo::API::point sum;
    for (std::size_t i = 0; i < count; ++i) {
        sum.x += shape.points[i].x;
        sum.y += shape.points[i].y;
    }
    if (count > 0) {
        sum.x /= double(count);
        sum.y /= double(count);
    }
    return sum;
}

HitIdentity identityOf(int item, const std::string& layer, const Korvo::API::check_info& hit) {
    StableHash hash;
    hash.number(static_cast<std::uint64_t>(static_cast<std::int64_t>(item)));
    hash.text(layer);
    const std::vector<std::string>& nets = hit.nets;
    hash.number(nets.size());
    // Nets in ascending order; a hit has at most two, so sorting is rarely needed.
    if (nets.size() == 2) {
        const bool swap = nets[1] < nets[0];
        hash.text(nets[swap ? 1 : 0]);
        hash.text(nets[swap ? 0 : 1]);
    } else {
        std::vector<const std::string*> sorted;
        for (const std::string& net : nets) {
            sorted.push_back(&net);
        }
        std::sort(sorted.begin(), sorted.end(),
                  [](const std::string* a, const std::string* b) { return *a < *b; });
        for (const std::string* net : sorted) {
            hash.text(*net);
        }
    }
    hash.number(hit.signature);
    const Korvo::API::point at = hitLocation(hit.shape);
    return {hash.value(), quantised(at.x), quantised(at.y)};
}

IdentityIndex::IdentityIndex(const std::vector<HitIdentity>& identities) {
    std::size_t capacity = 16;
    while (capacity < 2 * identities.size()) {
        capacity *= 2;
    }
    slots_.assign(capacity, Slot{});
    occupied_.assign(capacity / 16, 0);  // four bits per slot
    // Count each cell's identities, then give each cell its run of `entries_` and fill the runs
    // in position order.
    std::vector<std::uint32_t> slot_of(identities.size());
    for (std::size_t i = 0; i < identities.size(); ++i) {
        const HitIdentity& id = identities[i];
        const std::uint64_t cell = cellOf(id.what, cellIndex(id.x), cellIndex(id.y));
        std::size_t s = cell & (capacity - 1);
        while (slots_[s].count != 0 && slots_[s].cell != cell) {
            s = (s + 1) & (capacity - 1);
        }
        slots_[s].cell = cell;
        ++slots_[s].count;
        const std::uint64_t bit = (cell >> 32) & (occupied_.size() * 64 - 1);
        occupied_[bit / 64] |= 1ull << bit % 64;
        slot_of[i] = std::uint32_t(s);
    }
    std::uint32_t next = 0;
    for (Slot& slot : slots_) {
        slot.first = next;
        next += slot.count;
        slot.count = 0;  // counted up again while filling
    }
    entries_.resize(identities.size());
    for (std::size_t i = 0; i < identities.size(); ++i) {
        Slot& slot = slots_[slot_of[i]];
        entries_[slot.first + slot.count++] = {identities[i], std::uint32_t(i)};
    }
}

const IdentityIndex::Slot* IdentityIndex::find(std::uint64_t cell) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t s = cell & mask;; s = (s + 1) & mask) {
        if (slots_[s].count == 0) {
            return nullptr;
        }
        if (slots_[s].cell == cell) {
            return &slots_[s];
        }
    }
}

std::vector<std::size_t> IdentityIndex::matches(const HitIdentity& identity) const {
    std::vector<std::size_t> found;
    if (entries_.empty()) {
        return found;
    }
    const std::int64_t cx = cellIndex(identity.x);
    const std::int64_t cy = cellIndex(identity.y);
    // Most of the nine cells are empty, which the occupancy bits tell without reading the
    // table. The slots of the others lie far apart: asked for together, their cache misses
    // overlap instead of following one another.
    std::uint64_t cells[9];
    int count = 0;
    for (int k = 0; k < 9; ++k) {
        const std::uint64_t cell = cellOf(identity.what, cx + k % 3 - 1, cy + k / 3 - 1);
        const std::uint64_t bit = (cell >> 32) & (occupied_.size() * 64 - 1);
        if (occupied_[bit / 64] >> bit % 64 & 1) {
            cells[count++] = cell;
            prefetch(&slots_[cell & (slots_.size() - 1)]);
        }
    }
    for (int k = 0; k < count; ++k) {
        const Slot* slot = find(cells[k]);
        for (std::uint32_t e = slot ? slot->first : 0; slot && e < slot->first + slot->count; ++e) {
            const Entry& entry = entries_[e];
            if (entry.identity.sameHit(identity)) {
                // Nearest first, then by position: the square of the distance (below 2^15
                // within the tolerance) above the position.
                const std::int64_t dx = entry.identity.x - identity.x;
                const std::int64_t dy = entry.identity.y - identity.y;
                found.push_back(std::size_t(dx * dx + dy * dy) << 32 | entry.position);
            }
        }
    }
    std::sort(found.begin(), found.end());
    // Two of the nine cells may share a hash and so a run; each position is listed once.
    found.erase(std::unique(found.begin(), found.end()), found.end());
    for (std::size_t& key : found) {
        key &= 0xffffffffu;
    }
    return found;
}

}  // namespace wc

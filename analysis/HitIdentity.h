#pragma once
// What makes a hit the same hit in another run. Fabrication data carries no object identifiers,
// so a hit is known by what it is: its check item, its layer, the nets of its copper, the shape
// kinds and sizes of its features (the engine's `signature`) and where it was measured.
//
// Two hits are the same when item, layer, nets and signature are equal and their measured
// locations lie within kIdentityTolerance of each other, in x and in y. The location is the
// middle of the measurement: the midpoint of a distance line, the centre of a box, the mean of a
// polygon's points. It lies on the features or between them, so moving a feature by less than
// the tolerance keeps the hits it takes part in, and hits of features that did not move keep
// their identity whatever else changed on the board.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "Korvo_Analysis_types.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

// How far a measured location may move and the hit stay the same: 1 mil, in engine units.
constexpr double kIdentityTolerance = 25400.0;
// Locations are kept to a hundredth of a mil (engine units per grid step).
constexpr double kIdentityGrid = 254.0;

struct WIDGET_COMMON_EXPORT HitIdentity {
    std::uint64_t what = 0;  // item, layer, nets and signature, hashed
    std::int64_t x = 0;      // measured location, in grid steps
    std::int64_t y = 0;

    // "<what as 16 lower-case hex digits>@<x>,<y>", the form stored with waivers and reports.
    std::string text() const;
    // Nothing for any text that text() cannot have written.
    static std::optional<HitIdentity> fromText(const std::string& text);
    // Same item, layer, nets and signature, locations within the tolerance (inclusive, on the
    // quantised locations).
    bool sameHit(const HitIdentity& other) const;
    bool operator==(const HitIdentity& other) const {
        return what == other.what && x == other.x && y == other.y;
    }
};

// The middle of a measurement (engine units): the mean of its points, a polygon's closing point
// that repeats its first counted once.
WIDGET_COMMON_EXPORT Korvo::API::point hitLocation(const Korvo::API::check_points& shape);
// The identity of a hit of `item` on `layer`. Nets count in any order.
WIDGET_COMMON_EXPORT HitIdentity identityOf(int item, const std::string& layer,
                                            const Korvo::API::check_info& hit);

// Identities of one run, found again by identity within the tolerance. The index keeps what it
// needs of the identities, so it may be copied and moved freely.
class WIDGET_COMMON_EXPORT IdentityIndex {
public:
    IdentityIndex() = default;
    explicit IdentityIndex(const std::vector<HitIdentity>& identities);

    // The positions in the indexed vector of every identity that is the same hit as
    // `identity`, nearest first (ties by position).
    std::vector<std::size_t> matches(const HitIdentity& identity) const;

private:
    // Cells are one tolerance wide, so a match lies in the 3 x 3 cells around the identity's
    // own. A cell (what, cell x, cell y) is known by a 64-bit hash of the three; the slots of an
    // open-addressing table give each hash its run of entries. Cells whose hashes collide share
    // a run, which costs a comparison and never a wrong match.
    struct Slot {
        std::uint64_t cell = 0;
        std::uint32_t first = 0;
        std::uint32_t count = 0;  // 0: the slot is free
    };
    struct Entry {
        HitIdentity identity;
        std::uint32_t position = 0;
    };
    const Slot* find(std::uint64_t cell) const;
    std::vector<Entry> entries_;  // grouped by cell, ascending positions within a cell
    std::vector<Slot> slots_;     // a power of two long, at most half full
    // Four bits per slot; an occupied cell sets the one its hash's upper half points at. Small
    // enough to stay in the cache, they answer most look-ups of empty cells without the table.
    std::vector<std::uint64_t> occupied_;
};

}  // namespace wc

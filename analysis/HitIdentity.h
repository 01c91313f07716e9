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
    // Same item, layer, nets and signature, locations within the tolerance.
    bool sameHit(const HitIdentity& other) const;
    bool operator==(const HitIdentity& other) const {
        return what == other.what && x == other.x && y == other.y;
    }
};

// The middle of a measurement (engine units).
WIDGET_COMMON_EXPORT Korvo::API::point hitLocation(const Korvo::API::check_points& shape);
// The identity of a hit of `item` on `layer`. Nets count in any order.
WIDGET_COMMON_EXPORT HitIdentity identityOf(int item, const std::string& layer,
                                            const Korvo::API::check_info& hit);

// Identities of one run, found again by identity within the tolerance.
class WIDGET_COMMON_EXPORT IdentityIndex {
public:
    IdentityIndex() = default;
    explicit IdentityIndex(const std::vector<HitIdentity>& identities);

    // The positions in the indexed vector of every identity that is the same hit as
    // `identity`, nearest first (ties by position).
    std::vector<std::size_t> matches(const HitIdentity& identity) const;

private:
    // (what, cell x, cell y) -> positions; cells are one tolerance wide, so a match lies in the
    // 3 x 3 cells around the identity's own.
    struct CellKey {
        std::uint64_t what;
        std::int64_t cx;
        std::int64_t cy;
        bool operator==(const CellKey& o) const {
            return what == o.what && cx == o.cx && cy == o.cy;
        }
    };
    struct CellHash {
        std::size_t operator()(const CellKey& k) const;
    };
    const std::vector<HitIdentity>* identities_ = nullptr;
    std::unordered_map<CellKey, std::vector<std::uint32_t>, CellHash> cells_;
};

}  // namespace wc

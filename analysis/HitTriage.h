#pragma once
// Triage of one result without a widget: every hit of a ResultsModel with its identity, the
// comparison of two runs (each hit of the shown run new or unchanged, the earlier run's hits
// without a partner fixed), and the waivers of the result database applied to a run.
//
// Everything is indexed by the model's hit numbers (HitRef::number), so marks are plain vectors
// and a run of 10^6 hits costs a few vectors of that length.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HitIdentity.h"
#include "Korvo_Triage_types.h"
#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

// One hit of a run, in the model's numbering.
struct WIDGET_COMMON_EXPORT TriageHit {
    const Korvo::API::check_info* hit = nullptr;
    int layer = 0;  // index into the model's layers
    int item = 0;
    int level = 0;  // the severity list it is in
    HitIdentity identity;
};

class WIDGET_COMMON_EXPORT TriageRun {
public:
    TriageRun() = default;
    // Every hit of the model (which must outlive the run), identities included. A layer entry
    // that stands for several job layers identifies its hits by the entry's name.
    explicit TriageRun(const ResultsModel& model);

    std::size_t size() const { return hits_.size(); }
    const TriageHit& operator[](std::size_t number) const { return hits_[number]; }
    const std::string& layerName(const TriageHit& hit) const;
    const IdentityIndex& index() const { return index_; }

private:
    const ResultsModel* model_ = nullptr;
    std::vector<TriageHit> hits_;
    IdentityIndex index_;  // positions are hit numbers
};

enum class RunState : std::uint8_t { New = 0, Unchanged = 1 };

struct WIDGET_COMMON_EXPORT RunComparison {
    std::vector<RunState> state;     // per hit number of the shown run
    std::vector<std::size_t> fixed;  // hit numbers of the earlier run that have no partner
    std::size_t count(RunState wanted) const;
};

// Pairs each hit of `shown` with the nearest unpaired hit of `earlier` that is the same hit;
// paired hits are unchanged, the rest of `shown` new, the rest of `earlier` fixed.
WIDGET_COMMON_EXPORT RunComparison compareRuns(const TriageRun& shown, const TriageRun& earlier);

struct WIDGET_COMMON_EXPORT WaiverMatch {
    std::vector<std::int32_t> waiver;  // per hit number: index into the waivers, -1 when open
    std::vector<std::size_t> stale;    // indices of the waivers that match no hit
    std::size_t waived = 0;            // hits with a waiver
    bool isWaived(std::size_t number) const {
        return number < waiver.size() && waiver[number] >= 0;
    }
};

// Which waiver covers each hit: a one-hit waiver the nearest hit of the same identity (item and
// layer agreeing) that no earlier one-hit waiver took, a net-pair waiver every hit of its item
// whose two nets are the waiver's, on any layer. Where both cover a hit the one-hit waiver wins,
// where two net-pair waivers do the first. A waiver is stale when it matches no hit; one that
// matches hits but wins none of them is not.
WIDGET_COMMON_EXPORT WaiverMatch
applyWaivers(const TriageRun& run, const std::vector<Korvo::API::analysis_waiver>& waivers);

// Where a waiver is stored: the analysis kind ("SignalLayer", ...), its job and step.
struct WIDGET_COMMON_EXPORT TriageScope {
    std::string kind;
    std::string job;
    std::string step;
};

// A waiver of the hit `number`, and of every hit of its item between its two nets (nothing when
// the hit does not lie between two nets). Reason and user are the caller's; the time is now.
// waiverForHit throws std::out_of_range for a number the run does not have, waiverForNets
// answers nothing.
WIDGET_COMMON_EXPORT Korvo::API::analysis_waiver waiverForHit(const TriageRun& run,
                                                              std::size_t number,
                                                              const TriageScope& scope,
                                                              const std::string& reason,
                                                              const std::string& user);
WIDGET_COMMON_EXPORT std::optional<Korvo::API::analysis_waiver> waiverForNets(
    const TriageRun& run, std::size_t number, const TriageScope& scope, const std::string& reason,
    const std::string& user);

}  // namespace wc

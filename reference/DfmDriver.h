#pragma once
// What every DFM optimisation of the reference engine does around its work on one layer
// (DfmOperations.h says what each finds and changes): the snapshot of the layers it reads, the
// run's progress, stop and least duration, the scope of a feature, the grading of hits, and the
// edits written back layer by layer.

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "CopperGeometry.h"
#include "Korvo_DFM_types.h"
#include "SignalChecks.h"
#include "progress_value.h"

namespace wcref::dfm {

// Progress, the stop flag and the run's least duration. Work reports its share in 0..100;
// finish() spends what is left of the duration, so that the dialogs' progress windows and
// their stop buttons behave alike whatever the size of the job.
class Run {
public:
    using Clock = std::chrono::steady_clock;

    Run(Korvo::COMMON::progress_state* progress, std::chrono::milliseconds duration)
        : progress_(progress), start_(Clock::now()), end_(start_ + duration) {}

    bool startStopped() {
        stopped_ = progress_ != nullptr && progress_->is_stop_requested();
        return stopped_;
    }
    // True once the caller asked to stop; polls at most every 5 ms of work.
    bool stop(double done) {
        if (progress_ == nullptr || stopped_) {
            return stopped_;
        }
        const Clock::time_point now = Clock::now();
        if (now - last_ >= std::chrono::milliseconds(5)) {
            last_ = now;
            done_ = std::min(99.0, std::max(done_, done));
            progress_->set_value(done_);
            stopped_ = progress_->is_stop_requested();
        }
        return stopped_;
    }
    bool stopped() const { return stopped_; }
    void finish();

private:
    Korvo::COMMON::progress_state* progress_;
    Clock::time_point start_;
    Clock::time_point end_;
    Clock::time_point last_{};
    double done_ = 0.0;
    bool stopped_ = false;
};

// One layer as the run read it.
struct LayerInput {
    Korvo::API::layer_info info;
    CheckLayer copper;
    std::vector<CheckLayer> drills;       // drill layers spanning the layer
    Korvo::API::layer_info beneath_info;  // solder mask layers: the copper under them
    CheckLayer beneath;
};

struct JobInput {
    std::vector<LayerInput> layers;
    std::vector<Korvo::API::point> profile;
    bool has_screen_box = false;
    Korvo::API::reply_box screen_box;
    std::chrono::milliseconds duration{0};
};

// Whether feature `f` of `layer`, whose copper lies in `box`, is in the run's scope (0 every
// feature, 1 on screen, 2 inside the profile, 3 selected).
bool inScope(const Korvo::API::featureInfo& f, const GeoBox& box, const CheckLayer& layer,
             const JobInput& input, int scope);

// ---- grading (the hits come from CopperGeometry.h) -----------------------------------------

// Puts the hit into the list of `item`'s record that its value earns under the item's range.
template <typename Item, typename Record>
void grade(Item item, Korvo::API::check_info hit,
           const std::map<Item, Korvo::API::dfm_range_value>& ranges,
           std::map<Item, Record>& result) {
    Record& record = result[item];
    record.item = item;
    const auto range = ranges.find(item);
    if (range == ranges.end()) {
        record.other.push_back(std::move(hit));
        return;
    }
    const double red = range->second.limits.first;
    const double yellow = range->second.limits.second;
    const double green = range->second.value;
    if (red == 0 && yellow == 0 && green == 0) {
        record.red.push_back(std::move(hit));
    } else if (hit.value < red) {
        record.red.push_back(std::move(hit));
    } else if (hit.value < yellow) {
        record.yellow.push_back(std::move(hit));
    } else if (hit.value < green) {
        record.green.push_back(std::move(hit));
    } else {
        record.other.push_back(std::move(hit));
    }
}

// ---- changes ----------------------------------------------------------------------------------

struct Edit {
    enum Kind { resize, remove, mark, add };
    Kind kind = resize;
    int id = -1;  // the feature changed, as read
    std::string symbol_read;
    Korvo::API::point start_read;
    std::string symbol;                             // resize
    std::pair<std::string, std::string> attribute;  // mark: name and value
    Korvo::API::featureInfo feature;                // add
    int new_id = -1;                                // add: the id given
    bool applied = false;
};

// An edit of feature `f` as it was read.
Edit editOf(Edit::Kind kind, const Korvo::API::featureInfo& f);

// Writes the edits of one layer under the store's lock; one edit of the step when anything
// changed. A feature no longer as it was read is left alone (logged).
void apply(const std::string& job, const std::string& step, const std::string& layer,
           std::vector<Edit>& edits);

// ---- the run over the layers ------------------------------------------------------------------

// One layer's share of a run: what was read, the run, the layer's progress share and the edits
// written back once the operation is done with the layer.
struct LayerPass {
    const JobInput& input;
    const LayerInput& layer;
    Run& run;
    double from;
    double to;
    std::vector<Edit> edits;

    // The progress at `within` (0..1) of the layer's share.
    double at(double within) const { return from + (to - from) * within; }
};

// What every operation does around its per-layer work: the snapshot (false for an unknown job,
// step or layer, or no layer), the run's progress and stop, and each layer's edits written back
// after `one` (which puts its hits in the operation's result). Layers `wanted` refuses are
// skipped; a stopped run keeps the layers done.
bool forEachLayer(const std::string& job, const std::string& step,
                  const std::vector<std::string>& layers, Korvo::COMMON::progress_state* progress,
                  const std::function<bool(const LayerInput&)>& wanted,
                  const std::function<void(LayerPass&)>& one);

bool everyLayer(const LayerInput&);

}  // namespace wcref::dfm

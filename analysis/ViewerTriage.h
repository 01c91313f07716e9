#pragma once
// What the results viewer knows of triage, without a widget: the shown run's hits identified,
// the waivers applied to them, the comparison with an earlier run, and the view the user chose
// (open hits, new ones only, waived ones, or the earlier run's fixed hits). A view is a mark per
// hit number of the model it browses, and counts per layer, category and level, so the viewer's
// lists cost what they cost without triage.

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "HitTriage.h"
#include "Korvo_Triage_types.h"
#include "ResultsModel.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

enum class TriageView : int { Open = 0, NewOnly = 1, Waived = 2, Fixed = 3 };

// What the table's state column says of a hit.
enum class HitMark { None, New, Unchanged, Waived, Fixed };

class WIDGET_COMMON_EXPORT ViewerTriage {
public:
    // Identifies the hits of `shown`: no waivers, no comparison, the open hits in view.
    void start(std::shared_ptr<const ResultsModel> shown);
    void clear();
    bool active() const { return shown_ != nullptr; }

    void setWaivers(std::vector<Korvo::API::analysis_waiver> waivers);
    // Waivers the database stored, each under its id: a new one, or a reason added to the one it
    // kept under that id.
    void addWaivers(const std::vector<Korvo::API::analysis_waiver>& stored);
    void removeWaivers(const std::vector<int>& ids);
    const std::vector<Korvo::API::analysis_waiver>& waivers() const { return waivers_; }
    // The waivers that cover no hit of the shown run.
    std::vector<Korvo::API::analysis_waiver> staleWaivers() const;
    // The waiver of a hit of the shown run; null when it is open.
    const Korvo::API::analysis_waiver* waiverOf(std::size_t number) const;
    std::size_t waivedCount() const { return match_.waived; }

    // Compares the shown run with `earlier` (null: with none).
    void compareWith(std::shared_ptr<const ResultsModel> earlier);
    bool compared() const { return earlier_ != nullptr; }
    std::size_t count(RunState state) const { return comparison_.count(state); }
    std::size_t fixedCount() const { return comparison_.fixed.size(); }

    void setView(TriageView view);
    TriageView view() const { return view_; }
    // The model the view browses: the earlier run under "Fixed", the shown run otherwise.
    const std::shared_ptr<const ResultsModel>& viewed() const;
    // Per hit number of viewed(): 1 where the hit is in view; null when every hit is.
    const std::vector<std::uint8_t>* marks() const;

    struct Count {
        std::size_t hits = 0;   // in view
        std::size_t fresh = 0;  // of them, new against the earlier run
    };
    // The hits in view of `item` on `layers` (indices into viewed()'s layers) under the
    // severity entry.
    Count count(const std::vector<int>& layers, int item, int severity) const;
    HitMark mark(std::size_t number) const;  // of a hit of viewed()

    const TriageRun& run() const { return run_; }

private:
    void apply();  // the waivers onto the run, then the view
    void rebuild();
    bool inView(std::size_t number) const;

    std::shared_ptr<const ResultsModel> shown_;
    std::shared_ptr<const ResultsModel> earlier_;
    TriageRun run_;
    std::vector<Korvo::API::analysis_waiver> waivers_;
    WaiverMatch match_;
    RunComparison comparison_;
    TriageView view_ = TriageView::Open;
    std::vector<std::uint8_t> marks_;
    bool every_hit_in_view_ = true;
    // Per layer, category (as the model lists them) and level of viewed().
    std::vector<std::vector<std::array<Count, kSeverityCount>>> counts_;
};

}  // namespace wc

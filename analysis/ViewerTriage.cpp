#include "ViewerTriage.h"

#include <algorithm>

namespace wc {

namespace api = Korvo::API;

void ViewerTriage::start(std::shared_ptr<const ResultsModel> shown) {
    clear();
    shown_ = std::move(shown);
    run_ = TriageRun(*shown_);
    apply();
}

void ViewerTriage::clear() {
    run_ = TriageRun();
    shown_.reset();
    earlier_.reset();
    waivers_.clear();
    match_ = WaiverMatch();
    comparison_ = RunComparison();
    view_ = TriageView::Open;
    marks_.clear();
    every_hit_in_view_ = true;
    counts_.clear();
}

void ViewerTriage::setWaivers(std::vector<api::analysis_waiver> waivers) {
    waivers_ = std::move(waivers);
    apply();
}

void ViewerTriage::addWaivers(const std::vector<api::analysis_waiver>& stored) {
    for (const api::analysis_waiver& waiver : stored) {
        const api::waiver_reason reason{waiver.reason, waiver.user, waiver.time};
        auto kept =
            std::find_if(waivers_.begin(), waivers_.end(),
                         [&waiver](const api::analysis_waiver& w) { return w.id == waiver.id; });
        if (kept == waivers_.end()) {
            waivers_.push_back(waiver);
            waivers_.back().history = {reason};
        } else {
            kept->reason = reason.reason;
            kept->user = reason.user;
            kept->time = reason.time;
            kept->history.push_back(reason);
        }
    }
    apply();
}

void ViewerTriage::removeWaivers(const std::vector<int>& ids) {
    waivers_.erase(std::remove_if(waivers_.begin(), waivers_.end(),
                                  [&ids](const api::analysis_waiver& w) {
                                      return std::find(ids.begin(), ids.end(), w.id) != ids.end();
                                  }),
                   waivers_.end());
    apply();
}

std::vector<api::analysis_waiver> ViewerTriage::staleWaivers() const {
    std::vector<api::analysis_waiver> stale;
    for (std::size_t i : match_.stale) {
        stale.push_back(waivers_[i]);
    }
    return stale;
}

const api::analysis_waiver* ViewerTriage::waiverOf(std::size_t number) const {
    return match_.isWaived(number) ? &waivers_[std::size_t(match_.waiver[number])] : nullptr;
}

void ViewerTriage::compareWith(std::shared_ptr<const ResultsModel> earlier) {
    earlier_ = std::move(earlier);
    comparison_ = earlier_ ? compareRuns(run_, TriageRun(*earlier_)) : RunComparison();
    if (!earlier_ && (view_ == TriageView::NewOnly || view_ == TriageView::Fixed)) {
        view_ = TriageView::Open;
    }
    rebuild();
}

void ViewerTriage::setView(TriageView view) {
    view_ = compared() || view == TriageView::Open || view == TriageView::Waived ? view
                                                                                 : TriageView::Open;
    rebuild();
}

const std::shared_ptr<const ResultsModel>& ViewerTriage::viewed() const {
    return view_ == TriageView::Fixed ? earlier_ : shown_;
}

const std::vector<std::uint8_t>* ViewerTriage::marks() const {
    return every_hit_in_view_ ? nullptr : &marks_;
}

void ViewerTriage::apply() {
    if (shown_ != nullptr) {
        match_ = applyWaivers(run_, waivers_);
    }
    rebuild();
}

bool ViewerTriage::inView(std::size_t number) const {
    const bool fresh = compared() && comparison_.state[number] == RunState::New;
    switch (view_) {
        case TriageView::Open:
            return !match_.isWaived(number);
        case TriageView::NewOnly:
            return fresh && !match_.isWaived(number);
        case TriageView::Waived:
            return match_.isWaived(number);
        case TriageView::Fixed:
            break;
    }
    return false;
}

// The marks of the view, then the counts per list: a pass over the marks, list by list.
void ViewerTriage::rebuild() {
    counts_.clear();
    const ResultsModel* model = viewed().get();
    if (model == nullptr) {
        return;
    }
    marks_.assign(model->total(), 0);
    if (view_ == TriageView::Fixed) {
        for (std::size_t number : comparison_.fixed) {
            marks_[number] = 1;
        }
    } else {
        for (std::size_t number = 0; number < marks_.size(); ++number) {
            marks_[number] = inView(number) ? 1 : 0;
        }
    }
    every_hit_in_view_ = std::all_of(marks_.begin(), marks_.end(), [](auto m) { return m != 0; });
    const bool count_fresh = compared() && view_ != TriageView::Fixed;
    for (const ResultLayer& layer : model->layers()) {
        counts_.emplace_back(layer.categories.size());
        for (std::size_t c = 0; c < layer.categories.size(); ++c) {
            for (const ResultRecord& record : layer.categories[c].records) {
                for (int level = 0; level < kSeverityCount; ++level) {
                    Count& count = counts_.back()[c][std::size_t(level)];
                    const std::size_t first = record.first[level];
                    for (std::size_t n = first; n < first + record.lists[level].size(); ++n) {
                        count.hits += marks_[n];
                        count.fresh +=
                            count_fresh && marks_[n] && comparison_.state[n] == RunState::New;
                    }
                }
            }
        }
    }
}

ViewerTriage::Count ViewerTriage::count(const std::vector<int>& layers, int item,
                                        int severity) const {
    Count sum;
    const ResultsModel* model = viewed().get();
    if (model == nullptr) {
        return sum;
    }
    for (int l : layers) {
        if (l < 0 || std::size_t(l) >= counts_.size()) {
            continue;
        }
        const std::vector<ResultCategory>& categories = model->layers()[std::size_t(l)].categories;
        for (std::size_t c = 0; c < categories.size(); ++c) {
            if (categories[c].item != item) {
                continue;
            }
            for (int level = 0; level <= std::min(severity, kSeverityCount - 1); ++level) {
                sum.hits += counts_[std::size_t(l)][c][std::size_t(level)].hits;
                sum.fresh += counts_[std::size_t(l)][c][std::size_t(level)].fresh;
            }
        }
    }
    return sum;
}

HitMark ViewerTriage::mark(std::size_t number) const {
    if (!active()) {
        return HitMark::None;
    }
    if (view_ == TriageView::Fixed) {
        return HitMark::Fixed;
    }
    if (match_.isWaived(number)) {
        return HitMark::Waived;
    }
    if (!compared() || number >= comparison_.state.size()) {
        return HitMark::None;
    }
    return comparison_.state[number] == RunState::New ? HitMark::New : HitMark::Unchanged;
}

}  // namespace wc

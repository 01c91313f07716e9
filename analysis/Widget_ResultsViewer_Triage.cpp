#include "ViewerControls.h"
#include "Widget_ResultsViewer.h"
#include "frame/Translate.h"

// The results viewer's triage: the context a check dialog hands over, what the chosen view
// admits to the lists, the category lines with their new hits, and waiving from the current hit
// or the table's selected rows. The database work is the triage panel's (wc::TriagePanel).

void Widget_ResultsViewer::setTriage(const wc::TriageContext& context) {
    VIEWER_GUARDED({
        if (browser_.sharedModel() != shown_) {
            browse(shown_, true);
        }
        m_pTriage->start(context, shown_);
        m_pHitTable->setColumnHidden(wc::StateColumn, false);
        applyPass();
        refreshCategories();
    });
}

// What every category's hits must pass: the view's marks and the text filter.
void Widget_ResultsViewer::applyPass() {
    wc::HitBrowser::HitMatch match;
    if (!find_.pattern().isEmpty()) {
        match = [columns = hitColumns(), expression = find_](const wc::HitRef& hit) {
            return columns.matches(expression, hit);
        };
    }
    browser_.setPass(m_pTriage->active() ? m_pTriage->triage().marks() : nullptr, std::move(match));
}

// "Spacing (12)", and with a comparison "Spacing (12, 3 new)". Under triage a category is
// listed while the view admits any of its hits under "All".
std::vector<std::pair<int, QString>> Widget_ResultsViewer::listedCategories(int severity) const {
    const std::vector<int> layers = chosenLayers();
    const bool triaged = m_pTriage->active();
    const wc::ViewerTriage& triage = m_pTriage->triage();
    const bool with_new = triaged && triage.compared() && triage.view() != wc::TriageView::Fixed;
    std::vector<std::pair<int, QString>> out;
    for (const wc::CategoryEntry& entry : browser_.model().categories(layers, severity)) {
        std::size_t count = entry.count;
        std::size_t fresh = 0;
        if (triaged) {
            if (triage.count(layers, entry.item, wc::SevAll).hits == 0) {
                continue;
            }
            const wc::ViewerTriage::Count counted = triage.count(layers, entry.item, severity);
            count = counted.hits;
            fresh = counted.fresh;
        }
        const QString name = QString::fromStdString(entry.name);
        const QString line = with_new
                                 ? wc::translateFor(this, QT_TR_NOOP("%1 (%2, %n new)"), int(fresh))
                                       .arg(name)
                                       .arg(qulonglong(count))
                                 : QStringLiteral("%1 (%2)").arg(name).arg(qulonglong(count));
        out.emplace_back(entry.item, line);
    }
    return out;
}

// Waivers or the comparison changed what is in view; the navigation stays near its hit. Another
// run in view (the earlier run's fixed hits, or back) is browsed on the same layers.
void Widget_ResultsViewer::triageChanged(bool other_run) {
    VIEWER_GUARDED({
        if (other_run) {
            browse(m_pTriage->triage().viewed(), true);
            return;
        }
        const wc::HitNavigator& navigator = browser_.navigator();
        const std::optional<std::size_t> keep =
            navigator.valid() ? std::optional<std::size_t>(navigator.position()) : std::nullopt;
        applyPass();
        refreshCategories(keep);
    });
}

void Widget_ResultsViewer::waiveCurrent() {
    VIEWER_GUARDED({
        if (browser_.navigator().valid() && browser_.sharedModel() == shown_) {
            m_pTriage->waive({browser_.hitAt(browser_.navigator().position()).number});
        }
    });
}

void Widget_ResultsViewer::waiveRows() {
    VIEWER_GUARDED({
        std::vector<std::size_t> numbers;
        for (const wc::TableHit& hit : m_pHitTable->selectedHits()) {
            numbers.push_back(hit.number);
        }
        if (browser_.sharedModel() == shown_) {
            m_pTriage->waive(numbers);
        }
    });
}

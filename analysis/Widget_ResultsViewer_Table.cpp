#include <QLineEdit>

#include "ViewerControls.h"
#include "Widget_ResultsHistogram.h"
#include "Widget_ResultsViewer.h"

// The results viewer's hit table and what narrows it (grouping, the text filter, the feature
// filter's protocol), picks from the table and the graphic view, and the histogram.

namespace {

using Viewer = Widget_ResultsViewer;

constexpr int kValueDecimals = 3;
constexpr int kHistogramBins = 20;

}  // namespace

// ---- the hit table --------------------------------------------------------------------------

wc::HitColumns Widget_ResultsViewer::hitColumns() const {
    wc::HitColumns columns;
    columns.display_per_engine = displayPerEngine();
    columns.decimals = kValueDecimals;
    for (int i = 0; i < int(browser_.model().layers().size()); ++i) {
        columns.layer_names << layerListName(i);
    }
    if (m_pTriage->active()) {
        const wc::TriagePanel* triage = m_pTriage;
        columns.state = [triage](std::size_t number) { return triage->stateText(number); };
    }
    return columns;
}

// Ungrouped, the table lists the hits the navigation steps through; grouped, every listed hit
// of the chosen layers.
void Widget_ResultsViewer::refreshTable() {
    const QString unit = tr(Korvo::UIAPI::getUnitStringType(handle_, 1).c_str());
    const auto key = wc::GroupKey(m_pGroupCB->currentIndex());
    if (key == wc::GroupKey::None) {
        m_pHitTable->showNavigable(&browser_, hitColumns(), unit);
    } else {
        m_pHitTable->showGrouped(&browser_,
                                 browser_.listAll(chosenLayers(), m_pLevelCB->currentIndex()), key,
                                 hitColumns(), unit, tr("(no net)"));
    }
    const wc::TriagePanel* triage = m_pTriage;
    m_pHitTable->hitModel()->setMarks(browser_.sharedModel() == shown_ ? &visited_ : nullptr,
                                      [triage](std::size_t n) { return triage->stateTip(n); });
}

void Widget_ResultsViewer::on_Group_changed(const QString&) {
    VIEWER_GUARDED({
        refreshTable();
        change_current_result_label();
    });
}

void Widget_ResultsViewer::on_Find_pressed() {
    VIEWER_GUARDED({ applyFind(); });
}

// An expression that does not compile is named and filters nothing.
void Widget_ResultsViewer::applyFind() {
    const QString pattern = m_pFindLE->text();
    find_ = QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption);
    const bool invalid = !pattern.isEmpty() && !find_.isValid();
    if (invalid) {
        wc::setSourceText(this, m_pFindStatus, QT_TR_NOOP("Invalid expression: %1"),
                          {find_.errorString()});
        find_ = QRegularExpression();
    }
    m_pFindStatus->setVisible(invalid);
    applyPass();
    refreshCategories(browser_.navigator().valid()
                          ? std::optional<std::size_t>(browser_.navigator().position())
                          : std::nullopt);
}

// A row picked in the hit table: a hit of another category makes that category current; one
// that only moved in a sort is the hit already shown.
void Widget_ResultsViewer::showPicked(int item, std::size_t position) {
    VIEWER_GUARDED({
        if (item != browser_.item()) {
            for (int row = 0; row < m_pCategoriesList->count(); ++row) {
                if (m_pCategoriesList->item(row)->data(Qt::UserRole).toInt() == item) {
                    const QSignalBlocker blocker(m_pCategoriesList);
                    m_pCategoriesList->setCurrentRow(row);
                }
            }
            refreshHits(item, true, position);
            return;
        }
        wc::HitNavigator& navigator = browser_.navigator();
        if (position != navigator.position() && navigator.moveTo(position)) {
            getSignalLayerCurrentItemData();
        }
    });
}

bool Widget_ResultsViewer::pickHitAt(const Korvo::API::point& at, double radius) {
    bool picked = false;
    VIEWER_GUARDED({
        if (const auto hit = m_pHitTable->hitModel()->nearest(at, radius)) {
            showPicked(hit->item, hit->position);
            m_pHitTable->showPosition(browser_.navigator().position());
            picked = true;
        }
    });
    return picked;
}

// ---- the feature filter and the histogram -----------------------------------------------------

void Widget_ResultsViewer::on_Filter_clicked() {
    VIEWER_GUARDED({
        filter_info_ = Korvo::API::AnalysisFilterInfo();
        const std::vector<int> layers = chosenLayers();
        if (!layers.empty()) {
            filter_info_.layer = browser_.model().layers()[std::size_t(layers.front())].name;
        }
        filter_info_.item = browser_.item();
        filter_info_.level = m_pLevelCB->currentIndex();
        emit send_begin_filter(&filter_info_);
    });
}

void Widget_ResultsViewer::get_begin_filter_result(Korvo::API::AnalysisFilterInfo* info) {
    VIEWER_GUARDED({
        if (info != nullptr) {
            getSignalLayerFilterResult(*info);
        }
    });
}

void Widget_ResultsViewer::get_next_filter_result() {
    on_Right_clicked();
}

void Widget_ResultsViewer::get_prev_filter_result() {
    on_Left_clicked();
}

void Widget_ResultsViewer::reset_filter_result() {
    on_unfilter_analysis_items();
}

void Widget_ResultsViewer::on_filter_analysis_items(
    const std::vector<std::tuple<int, int>>& items) {
    VIEWER_GUARDED({
        browser_.setFilter(items, displayPerEngine());
        refreshTable();
        showCurrent();
    });
}

void Widget_ResultsViewer::on_unfilter_analysis_items() {
    VIEWER_GUARDED({
        if (browser_.filter()) {
            browser_.setFilter(std::nullopt, displayPerEngine());
            refreshTable();
            showCurrent();
        }
    });
}

// The filter answers with (item, hit position) pairs; the viewer then steps through those of the
// current category only and tells the other listeners which they are.
void Widget_ResultsViewer::getSignalLayerFilterResult(const Korvo::API::AnalysisFilterInfo& info) {
    browser_.setFilter(info.items, displayPerEngine());
    refreshTable();
    showCurrent();
    emit filter_analysis_items(*browser_.filter());
}

void Widget_ResultsViewer::on_View_clicked() {
    VIEWER_GUARDED({
        if (histogram_ == nullptr) {
            histogram_ = new Widget_ResultsHistogram(this);
            histogram_->setObjectName(QStringLiteral("m_pHistogram"));
        }
        getResultHistogramData();
        histogram_->show();
        histogram_->raise();
    });
}

void Widget_ResultsViewer::getResultHistogramData() {
    std::vector<double> values;
    const std::size_t count = browser_.navigator().count();
    values.reserve(count);
    const double factor = displayPerEngine();
    for (std::size_t position = 0; position < count; ++position) {
        values.push_back(browser_.hitAt(position).hit->value * factor);
    }
    const QString title = m_pCategoriesList->currentItem() != nullptr
                              ? m_pCategoriesList->currentItem()->text()
                              : QString();
    histogram_->setHistogram(title, tr(Korvo::UIAPI::getUnitStringType(handle_, 1).c_str()),
                             wc::histogramOf(values, kHistogramBins));
}

#include "Widget_ResultsViewer.h"

#include <glog/logging.h>

#include <QCloseEvent>
#include <QMessageBox>
#include <QSignalBlocker>
#include <QTimer>

#include "ViewerControls.h"
#include "ViewerDrawing.h"
#include "Widget_ResultsHistogram.h"
#include "frame/PluginMessages.h"

namespace {

using Viewer = Widget_ResultsViewer;
using namespace wc::viewer;

constexpr double kNanometresPerMil = 25400.0;
constexpr int kDefaultLevel = wc::SevGreen;
constexpr int kFindDelayMs = 400;  // the text filter follows typing after this pause

}  // namespace

// ---- construction ---------------------------------------------------------------------------

Widget_ResultsViewer::Widget_ResultsViewer(QWidget* parent)
    : Widget_ResultsViewer(parent, 0, Korvo::UIAPI::Check_Engine) {}

Widget_ResultsViewer::Widget_ResultsViewer(QWidget* parent, int tag, Check_Type type)
    : QWidget(parent, Qt::Window),
      handle_(parent),
      tag_(tag),
      check_type_(type),
      mode_(&wc::viewerMode(wc::ViewerKind::None)) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initResultsViewer(mode_->number);
}

Widget_ResultsViewer::~Widget_ResultsViewer() = default;

void Widget_ResultsViewer::setJobAndStep(const QString& job, const QString& step) {
    selection_.setJobAndStep(job, step);
}

void Widget_ResultsViewer::showModel(const wc::ViewerMode& mode, Raise raise,
                                     wc::ResultsModel model) {
    mode_ = &mode;
    raise_ = raise;
    VIEWER_GUARDED({
        selection_.clear();
        wc::setSourceText(this, m_pNamePB, mode_->caption);
        m_pToCADPB->setVisible(mode_->kind == wc::ViewerKind::PadSnapping);
        m_pTriage->stop();
        m_pHitTable->setColumnHidden(wc::StateColumn, true);
        shown_ = std::make_shared<const wc::ResultsModel>(std::move(model));
        visited_.clear();
        browse(shown_, false);
    });
}

void Widget_ResultsViewer::browse(std::shared_ptr<const wc::ResultsModel> model, bool keep_layers) {
    QStringList chosen;
    for (int layer : chosenLayers()) {
        chosen << layerListName(layer);
    }
    browser_.setModel(std::move(model));
    applyPass();
    refreshSingalLayerList();
    for (int row = 0; keep_layers && row < m_pLayersList->count(); ++row) {
        m_pLayersList->item(row)->setSelected(chosen.contains(m_pLayersList->item(row)->text()));
    }
    if (chosenLayers().empty() && m_pLayersList->count() > 0) {
        m_pLayersList->setCurrentRow(0);
    }
    refreshCategories();
}

// ---- building -------------------------------------------------------------------------------

void Widget_ResultsViewer::initResultsViewer(int mode) {
    LOG(INFO) << "results viewer built in mode " << mode;
    wc::setSourceText(this, this, QT_TR_NOOP("Results Viewer"));
    buildControls();
    configureControls();
    m_pToCADPB->setVisible(false);
    setFocusPolicy(Qt::StrongFocus);
    resize(720, 760);
}

void Widget_ResultsViewer::buildControls() {
    using V = Widget_ResultsViewer;
    // clang-format off
    static const wc::viewer::Control kControls[] = {
        {&V::m_pNamePB, "m_pNamePB", {}, {0, 0, 6}, &V::on_Name_clicked},
        {&V::m_pLayersLabel, "m_pLayersLabel", {QT_TR_NOOP("Layers")}, {1, 0}, {}},
        {&V::m_pNonePB, "m_pNonePB", {QT_TR_NOOP("None")}, {1, 1}, &V::on_None_clicked},
        {&V::m_pAllPB, "m_pAllPB", {QT_TR_NOOP("All")}, {1, 2}, &V::on_All_clicked},
        {&V::m_pCategoriesLabel, "m_pCategoriesLabel", {QT_TR_NOOP("Categories")}, {1, 3, 3}, {}},
        {&V::m_pLayersList, "m_pLayersList", {}, {2, 0, 3}, &V::on_m_pLayersList_itemClicked},
        {&V::m_pCategoriesList, "m_pCategoriesList", {}, {2, 3, 3},
         &V::on_m_pCategoriesList_itemClicked},
        {&V::m_pMeasLabel, "m_pMeasLabel", {QT_TR_NOOP("Meas:")}, {3, 0}, {}},
        {&V::m_pMeasCB, "m_pMeasCB", {QT_TR_NOOP("All")}, {3, 1, 2}, &V::on_Meas_changed},
        {&V::m_pLevelLabel, "m_pLevelLabel", {QT_TR_NOOP("Sv:")}, {3, 3}, {}},
        {&V::m_pLevelCB, "m_pLevelCB",
         {QT_TR_NOOP("!!"), QT_TR_NOOP("!"), QT_TR_NOOP("  "), QT_TR_NOOP("All")}, {3, 4, 2},
         &V::on_Level_changed},
        {&V::m_pFirstPB, "m_pFirstPB", {QT_TR_NOOP("First")}, {4, 0}, &V::on_First_clicked},
        {&V::m_pLeftPB, "m_pLeftPB", {QT_TR_NOOP("<---")}, {4, 1}, &V::on_Left_clicked},
        {&V::m_pRightPB, "m_pRightPB", {QT_TR_NOOP("--->")}, {4, 2}, &V::on_Right_clicked},
        {&V::m_pLastPB, "m_pLastPB", {QT_TR_NOOP("Last")}, {4, 3}, &V::on_Last_clicked},
        {&V::m_pIndexLabel, "m_pIndexLabel", {QT_TR_NOOP("Index:")}, {4, 4}, {}},
        {&V::m_pIndexLE, "m_pIndexLE", {}, {4, 5}, &V::on_Index_pressed},
        {&V::m_pCurrentResultLabel, "m_pCurrentResultLabel", {}, {5, 0, 6}, {}},
        {&V::m_pShowAllCB, "m_pShowAllCB", {QT_TR_NOOP("Show All")}, {6, 0},
         &V::on_m_pShowAllCB_CheckState_Changed},
        {&V::m_pSelectionCB, "m_pSelectionCB", {QT_TR_NOOP("Selection")}, {6, 1, 2},
         &V::on_m_pSelectionCB_CheckState_Changed},
        {&V::m_pAutoCB, "m_pAutoCB", {QT_TR_NOOP("Auto Zoom"), QT_TR_NOOP("Pan Only")}, {6, 3},
         &V::on_Auto_changed},
        {&V::m_pReplaceCB, "m_pReplaceCB",
         {QT_TR_NOOP("Replace layers"), QT_TR_NOOP("Keep layers")}, {6, 4, 2},
         &V::on_Replace_changed},
        {&V::m_pGroupLabel, "m_pGroupLabel", {QT_TR_NOOP("Group by:")}, {7, 0}, {}},
        {&V::m_pGroupCB, "m_pGroupCB",
         {QT_TR_NOOP("None"), QT_TR_NOOP("Item"), QT_TR_NOOP("Layer"), QT_TR_NOOP("Net")}, {7, 1},
         &V::on_Group_changed},
        {&V::m_pFindLabel, "m_pFindLabel", {QT_TR_NOOP("Find:")}, {7, 2}, {}},
        {&V::m_pFindLE, "m_pFindLE", {QT_TR_NOOP("Regular expression over the columns")},
         {7, 3, 3}, &V::on_Find_pressed},
        {&V::m_pFindStatus, "m_pFindStatus", {}, {8, 0, 6}, {}},
        {&V::m_pTriage, "m_pTriage", {}, {9, 0, 6}, {}},
        {&V::m_pHitTable, "m_pHitTable", {}, {10, 0, 6}, &V::showPicked},
        {&V::m_pViewPB, "m_pViewPB", {}, {11, 0}, &V::on_View_clicked},
        {&V::m_pFilterPB, "m_pFilterPB", {QT_TR_NOOP("Filter")}, {11, 1}, &V::on_Filter_clicked},
        {&V::m_pToCADPB, "m_pToCADPB", {QT_TR_NOOP("Edit")}, {11, 2}, &V::on_ToCAD_clicked},
        {&V::m_pClosePB, "m_pClosePB", {QT_TR_NOOP("Close")}, {11, 5}, &V::on_Close_clicked},
    };
    // clang-format on
    auto* grid = new QGridLayout(this);
    for (const wc::viewer::Control& control : kControls) {
        std::visit([&](auto member) { wc::viewer::place(this, member, control, grid); },
                   control.member);
    }
    grid->setRowStretch(2, 2);   // the lists
    grid->setRowStretch(10, 3);  // the hit table
}

void Widget_ResultsViewer::configureControls() {
    m_pLayersList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pLayersList->setStyleSheet(QString::fromLatin1(kSelectedBlack));
    m_pCategoriesList->setStyleSheet(QString::fromLatin1(kSelectedBlue));
    m_pCategoriesList->setUniformItemSizes(true);
    for (QListWidget* list : {m_pLayersList, m_pCategoriesList}) {
        list->setMinimumHeight(150);
    }
    for (QComboBox* combo : {static_cast<QComboBox*>(m_pMeasCB), m_pAutoCB, m_pReplaceCB}) {
        combo->setStyleSheet(QString::fromLatin1(kComboItems));
    }
    m_pMeasCB->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_pMeasCB->setMinimumContentsLength(10);
    for (int level = 0; level < wc::kSeverityCount; ++level) {
        m_pLevelCB->setItemData(level, kLevelColours[level], Qt::BackgroundRole);
    }
    m_pLevelCB->setCurrentIndex(kDefaultLevel);
    applyLevelStyle();
    m_pIndexLE->setFixedWidth(80);
    m_pCurrentResultLabel->setMinimumWidth(220);
    m_pViewPB->setStyleSheet(QString::fromLatin1(kHistogramPicture));
    m_pViewPB->setFixedSize(32, 32);
    m_pGroupCB->setStyleSheet(QString::fromLatin1(kComboItems));
    m_pFindStatus->setStyleSheet(QStringLiteral("color: red;"));
    m_pFindStatus->setVisible(false);
    auto* typing = new QTimer(this);
    typing->setSingleShot(true);
    typing->setInterval(kFindDelayMs);
    connect(m_pFindLE, &QLineEdit::textEdited, typing, qOverload<>(&QTimer::start));
    connect(typing, &QTimer::timeout, this, &Viewer::on_Find_pressed);
    m_pHitTable->setColumnHidden(wc::StateColumn, true);
    m_pHitTable->addAction(m_pTriage->waiveRowsAction());
    connect(m_pTriage, &wc::TriagePanel::changed, this, &Viewer::triageChanged);
    connect(m_pTriage, &wc::TriagePanel::waiveAsked, this, &Viewer::waiveCurrent);
    connect(m_pTriage, &wc::TriagePanel::waiveRowsAsked, this, &Viewer::waiveRows);
}

// ---- lists ----------------------------------------------------------------------------------

void Widget_ResultsViewer::refreshSingalLayerList() {
    const QSignalBlocker blocker(m_pLayersList);
    m_pLayersList->clear();
    for (int i = 0; i < int(browser_.model().layers().size()); ++i) {
        auto* item = new QListWidgetItem(layerListName(i), m_pLayersList);
        item->setData(Qt::UserRole, i);
    }
}

std::vector<int> Widget_ResultsViewer::chosenLayers() const {
    std::vector<int> layers;
    for (int row = 0; row < m_pLayersList->count(); ++row) {
        if (m_pLayersList->item(row)->isSelected()) {
            layers.push_back(m_pLayersList->item(row)->data(Qt::UserRole).toInt());
        }
    }
    return layers;
}

// The categories of the chosen layers with their counts under "Sv:"; the current category stays
// current when it is still listed, otherwise the first listed becomes current.
void Widget_ResultsViewer::refreshCategories(std::optional<std::size_t> keep) {
    const auto entries = listedCategories(m_pLevelCB->currentIndex());
    int current_row = entries.empty() ? -1 : 0;
    {
        const QSignalBlocker blocker(m_pCategoriesList);
        m_pCategoriesList->clear();
        for (const auto& [item, line] : entries) {
            auto* row = new QListWidgetItem(line, m_pCategoriesList);
            row->setData(Qt::UserRole, item);
            if (item == browser_.item()) {
                current_row = m_pCategoriesList->count() - 1;
            }
        }
        m_pCategoriesList->setCurrentRow(current_row);
    }
    refreshHits(entries.empty() ? -1 : entries[std::size_t(current_row)].first, false, keep);
}

// The lines again in the current language, nothing chosen anew.
void Widget_ResultsViewer::relabelCategories() {
    const auto entries = listedCategories(m_pLevelCB->currentIndex());
    for (int row = 0; row < m_pCategoriesList->count() && row < int(entries.size()); ++row) {
        m_pCategoriesList->item(row)->setText(entries[std::size_t(row)].second);
    }
}

// Another category drops the feature filter, and the filter is told.
void Widget_ResultsViewer::refreshHits(int item, bool announce, std::optional<std::size_t> keep) {
    if (browser_.choose(chosenLayers(), item, m_pLevelCB->currentIndex())) {
        emit send_reset_filter();
    }
    wc::HitNavigator& navigator = browser_.navigator();
    if (keep && navigator.count() > 0) {
        navigator.moveTo(std::min(*keep, navigator.count() - 1));
    }
    clearMeasureValueList();
    refreshTable();
    if (announce) {
        // The view learns which category is being browsed, with its layers and count.
        startDrawing(0);
        wc::addLayerNames(drawing_, browser_.model(), browser_.hits());
        wc::sendDrawing(handle_, wc::code::CategoryClicked, drawing_);
    }
    showCurrent();
}

// "Meas:" lists the values of the category's hits when it opens.
void Widget_ResultsViewer::clearMeasureValueList() {
    m_pMeasCB->reset(tr("All"), [this] { return browser_.measureKeys(displayPerEngine()); });
}

QString Widget_ResultsViewer::layerListName(int layer) const {
    return QString::fromStdString(browser_.model().layers()[std::size_t(layer)].name);
}

double Widget_ResultsViewer::displayPerEngine() const {
    return Korvo::UIAPI::getUnitJudgeDouble(handle_, 1.0) / kNanometresPerMil;
}

// The "Sv:" box takes the colour of its entry.
void Widget_ResultsViewer::applyLevelStyle() {
    m_pLevelCB->setStyleSheet(QStringLiteral("QComboBox{background:%1;}")
                                  .arg(kLevelColours[m_pLevelCB->currentIndex()].name()) +
                              QString::fromLatin1(kComboItems));
}

// ---- slots, in the order the user meets them ------------------------------------------------

void Widget_ResultsViewer::on_Name_clicked() {
    VIEWER_GUARDED({
        if (raise_ != nullptr) {
            emit(this->*raise_)();
        }
    });
}

void Widget_ResultsViewer::on_m_pLayersList_itemClicked(QListWidgetItem*) {
    VIEWER_GUARDED({ refreshCategories(); });
}

void Widget_ResultsViewer::on_None_clicked() {
    VIEWER_GUARDED({
        m_pLayersList->clearSelection();
        refreshCategories();
    });
}

void Widget_ResultsViewer::on_All_clicked() {
    VIEWER_GUARDED({
        m_pLayersList->selectAll();
        refreshCategories();
    });
}

void Widget_ResultsViewer::on_m_pCategoriesList_itemClicked(QListWidgetItem* item) {
    VIEWER_GUARDED({
        if (item == nullptr) {
            return;
        }
        refreshHits(item->data(Qt::UserRole).toInt(), true);
    });
}

void Widget_ResultsViewer::on_Meas_changed(const QString&) {
    VIEWER_GUARDED({
        browser_.setMeasureKey(m_pMeasCB->chosenKey(), displayPerEngine());
        refreshTable();
        showCurrent();
    });
}

void Widget_ResultsViewer::on_First_clicked() {
    step(&wc::HitNavigator::first, nullptr);
}

// Before the first filtered hit, the filter is asked for its previous set.
void Widget_ResultsViewer::on_Left_clicked() {
    step(&wc::HitNavigator::previous, &Viewer::send_prev_filter);
}

// Past the last filtered hit, the filter is asked for its next set.
void Widget_ResultsViewer::on_Right_clicked() {
    step(&wc::HitNavigator::next, &Viewer::send_next_filter);
}

void Widget_ResultsViewer::on_Last_clicked() {
    step(&wc::HitNavigator::last, nullptr);
}

void Widget_ResultsViewer::step(bool (wc::HitNavigator::*move)(), void (Viewer::*past_end)()) {
    VIEWER_GUARDED({
        if ((browser_.navigator().*move)()) {
            getSignalLayerCurrentItemData();
        } else if (browser_.filter() && past_end != nullptr) {
            emit(this->*past_end)();
        }
    });
}

void Widget_ResultsViewer::on_Index_pressed() {
    VIEWER_GUARDED({
        bool ok = false;
        const long long index = m_pIndexLE->text().toLongLong(&ok);
        if (ok && browser_.navigator().goToIndex(index)) {
            getSignalLayerCurrentItemData();
        } else {
            change_current_result_label();  // puts the current index back
        }
    });
}

void Widget_ResultsViewer::on_Level_changed(const QString&) {
    VIEWER_GUARDED({
        applyLevelStyle();
        refreshCategories();
    });
}

void Widget_ResultsViewer::on_m_pShowAllCB_CheckState_Changed(int) {
    VIEWER_GUARDED({ showAgain(); });
}

void Widget_ResultsViewer::on_m_pSelectionCB_CheckState_Changed(int state) {
    VIEWER_GUARDED({
        if (state == Qt::Unchecked) {
            selection_.clear();
        } else if (browser_.navigator().valid()) {
            selection_.select(*browser_.hitAt(browser_.navigator().position()).hit);
        }
    });
}

void Widget_ResultsViewer::on_Auto_changed(const QString&) {
    VIEWER_GUARDED({ showAgain(); });
}

void Widget_ResultsViewer::on_Replace_changed(const QString&) {
    VIEWER_GUARDED({ showAgain(); });
}

void Widget_ResultsViewer::on_Close_clicked() {
    close();
}

// Hands the pad snapping result to an external editor; no editor is reachable from this
// library, so the user is told.
void Widget_ResultsViewer::on_ToCAD_clicked() {
    VIEWER_GUARDED({
        LOG(INFO) << "pad snapping result: no external editor connected";
        QMessageBox::information(this, tr("Information"), tr("No external editor is connected"),
                                 QMessageBox::Ok);
    });
}

void Widget_ResultsViewer::change_unit() {
    VIEWER_GUARDED({
        // "Meas:" values are display values: a chosen one does not survive the change.
        wc::HitNavigator& navigator = browser_.navigator();
        const bool keep_position = !browser_.measureKey() && navigator.valid();
        const std::size_t position = navigator.position();
        clearMeasureValueList();
        applyPass();  // the text filter reads values in the new unit
        browser_.setMeasureKey(std::nullopt, displayPerEngine());
        refreshTable();
        if (keep_position) {
            navigator.moveTo(position);
        }
        change_current_result_label();
        if (histogram_ != nullptr && histogram_->isVisible()) {
            getResultHistogramData();
        }
    });
}

void Widget_ResultsViewer::change_language() {
    wc::retranslate(this);
    VIEWER_GUARDED({
        relabelCategories();
        m_pHitTable->hitModel()->retranslate();
        if (m_pGroupCB->currentIndex() != int(wc::GroupKey::None)) {
            refreshTable();  // the group of hits without a net is named
            change_current_result_label();
        }
    });
    if (histogram_ != nullptr) {
        histogram_->change_language();
    }
}

// ---- showing hits ---------------------------------------------------------------------------

void Widget_ResultsViewer::showCurrent() {
    if (m_pShowAllCB->isChecked()) {
        getSignalLayerCurrentItemAllData();
        change_current_result_label();
    } else if (browser_.navigator().valid()) {
        getSignalLayerCurrentItemData();
    } else {
        selection_.clear();
        change_current_result_label();
    }
}

void Widget_ResultsViewer::showAgain() {
    if (m_pShowAllCB->isChecked()) {
        getSignalLayerCurrentItemAllData();
    } else if (browser_.navigator().valid()) {
        getSignalLayerCurrentItemData();
    }
}

void Widget_ResultsViewer::getSignalLayerCurrentItemData() {
    const wc::HitRef hit = browser_.hitAt(browser_.navigator().position());
    if (hit.hit == nullptr) {
        return;
    }
    startDrawing(int(browser_.navigator().index()));
    drawing_.layer_names = browser_.model().layers()[std::size_t(hit.layer)].layer_names;
    drawing_.value_text = wc::hitValueText(mode_->value_style, *hit.hit, handle_).toStdString();
    wc::addShape(drawing_, *hit.hit, 0);
    wc::sendDrawing(handle_, mode_->one_hit_code, drawing_);
    if (browser_.sharedModel() == shown_) {
        if (visited_.size() != shown_->total()) {
            visited_.assign(shown_->total(), 0);
        }
        visited_[hit.number] = 1;
        m_pHitTable->viewport()->update();
    }
    if (m_pSelectionCB->isChecked()) {
        selection_.select(*hit.hit);
    }
    change_current_result_label();
}

// Every hit that passes, each drawn on the first name of its layer in the message's names.
void Widget_ResultsViewer::getSignalLayerCurrentItemAllData() {
    startDrawing(0);
    const std::vector<int> first_name =
        wc::addLayerNames(drawing_, browser_.model(), browser_.hits());
    const std::size_t count = browser_.navigator().count();
    drawing_.shapes.reserve(count);
    for (std::size_t position = 0; position < count; ++position) {
        const wc::HitRef hit = browser_.hitAt(position);
        wc::addShape(drawing_, *hit.hit, first_name[std::size_t(hit.layer)]);
    }
    wc::sendDrawing(handle_, mode_->all_hits_code, drawing_);
}

void Widget_ResultsViewer::startDrawing(int index) {
    wc::startDrawing(drawing_, m_pAutoCB->currentIndex() == 1, m_pReplaceCB->currentIndex() == 0,
                     browser_.itemName(), index, int(browser_.navigator().count()));
}

void Widget_ResultsViewer::change_current_result_label() {
    const QSignalBlocker blocker(m_pIndexLE);
    const wc::HitNavigator& navigator = browser_.navigator();
    if (!navigator.valid()) {
        m_pIndexLE->clear();
        m_pCurrentResultLabel->setText(QStringLiteral("0/%1").arg(qulonglong(navigator.count())));
        return;
    }
    const wc::HitRef hit = browser_.hitAt(navigator.position());
    m_pIndexLE->setText(QString::number(qulonglong(navigator.index())));
    const QString state = m_pTriage->active() ? m_pTriage->stateText(hit.number) : QString();
    m_pCurrentResultLabel->setText(QStringLiteral("%1/%2  %3  %4")
                                       .arg(qulonglong(navigator.index()))
                                       .arg(qulonglong(navigator.count()))
                                       .arg(wc::hitValueText(mode_->value_style, *hit.hit, handle_))
                                       .arg(layerListName(hit.layer)) +
                                   (state.isEmpty() ? QString() : QStringLiteral("  ") + state));
    m_pHitTable->showPosition(navigator.position());
}

// ---- closing --------------------------------------------------------------------------------

void Widget_ResultsViewer::closeEvent(QCloseEvent* event) {
    guardedSlot(__LINE__, [&]() {
        selection_.clear();
        if (histogram_ != nullptr) {
            histogram_->close();
        }
    });
    // The view clears the analysis drawing whatever happened above.
    startDrawing(0);
    drawing_.count = 0;
    wc::sendDrawing(handle_, wc::code::ViewerClosed, drawing_);
    QWidget::closeEvent(event);
}

#include "TriagePanel.h"

#include <glog/logging.h>

#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardItemModel>
#include <set>
#include <tuple>

#include "Korvo_API.h"
#include "StaleWaiversDialog.h"
#include "WaiverDialog.h"
#include "WaiverFile.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/Translate.h"

#define TRIAGE_GUARDED(...) ::wc::guarded(viewer_, kSourceFile, __LINE__, [&]() __VA_ARGS__)

namespace wc {

namespace api = Korvo::API;

namespace {

constexpr int kNone = -1;     // "Compare with:" nothing
constexpr int kEarlier = -2;  // the context's earlier run
// Exceptions are logged under the viewer's file, as the viewer's own slots log them.
const char* const kSourceFile = "Widget_ResultsViewer.cpp";

const char* const kViews[] = {QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Open"),
                              QT_TRANSLATE_NOOP("Widget_ResultsViewer", "New only"),
                              QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Waived"),
                              QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Fixed")};
const char* const kNoRun = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "None");
const char* const kUnavailable =
    QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Waivers and stored runs are not available: %1");
const char* const kNoRuns =
    QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Stored runs are not available: %1");
const char* const kSummary =
    QT_TRANSLATE_NOOP("Widget_ResultsViewer", "%1 waived, %2 waivers stale");
const char* const kComparedSummary = QT_TRANSLATE_NOOP(
    "Widget_ResultsViewer", "%1 waived, %2 waivers stale; %3 new, %4 unchanged, %5 fixed");
const char* const kWaiverFiles = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Waiver files (*.json)");
const char* const kNoStale = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "No waiver is stale.");
const char* const kOnLayer = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "%1 on %2: %3 (%4, %5)");
const char* const kBetween =
    QT_TRANSLATE_NOOP("Widget_ResultsViewer", "%1 between %2: %3 (%4, %5)");
const char* const kStates[] = {QT_TRANSLATE_NOOP("Widget_ResultsViewer", "new"),
                               QT_TRANSLATE_NOOP("Widget_ResultsViewer", "unchanged"),
                               QT_TRANSLATE_NOOP("Widget_ResultsViewer", "waived: %1"),
                               QT_TRANSLATE_NOOP("Widget_ResultsViewer", "fixed")};
const char* const kHistoryLine = QT_TRANSLATE_NOOP("Widget_ResultsViewer", "%1 (%2, %3)");

QString userName() {
    return qEnvironmentVariable("USER", qEnvironmentVariable("USERNAME"));
}

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

}  // namespace

TriagePanel::TriagePanel(QWidget* viewer) : QWidget(viewer), viewer_(viewer) {
    build();
    m_pWaiveRowsAction->setVisible(false);
    setVisible(false);
}

void TriagePanel::build() {
    const auto make = [this](auto* widget, const char* name, const char* source) {
        widget->setObjectName(QLatin1String(name));
        if (source != nullptr) {
            setSourceText(viewer_, widget, source);
        }
        return widget;
    };
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    m_pViewLabel =
        make(new QLabel(this), "m_pViewLabel", QT_TRANSLATE_NOOP("Widget_ResultsViewer", "View:"));
    m_pViewCB = make(new QComboBox(this), "m_pViewCB", nullptr);
    setSourceItems(viewer_, m_pViewCB, {kViews[0], kViews[1], kViews[2], kViews[3]});
    m_pCompareLabel = make(new QLabel(this), "m_pCompareLabel",
                           QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Compare with:"));
    m_pCompareCB = make(new QComboBox(this), "m_pCompareCB", nullptr);
    m_pCompareCB->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_pCompareCB->setMinimumContentsLength(12);
    m_pWaivePB = make(new QPushButton(this), "m_pWaivePB",
                      QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Waive..."));
    m_pWaiversPB = make(new QPushButton(this), "m_pWaiversPB",
                        QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Waivers"));
    auto* menu = new QMenu(m_pWaiversPB);
    m_pStaleAction = make(menu->addAction(QString()), "m_pStaleAction",
                          QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Stale waivers..."));
    m_pExportAction = make(menu->addAction(QString()), "m_pExportAction",
                           QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Export waivers..."));
    m_pImportAction = make(menu->addAction(QString()), "m_pImportAction",
                           QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Import waivers..."));
    m_pWaiversPB->setMenu(menu);
    m_pWaiveRowsAction = make(new QAction(this), "m_pWaiveRowsAction",
                              QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Waive..."));
    m_pTriageStatus = make(new QLabel(this), "m_pTriageStatus", nullptr);
    m_pTriageStatus->setWordWrap(true);
    int column = 0;
    for (QWidget* widget : std::initializer_list<QWidget*>{
             m_pViewLabel, m_pViewCB, m_pCompareLabel, m_pCompareCB, m_pWaivePB, m_pWaiversPB}) {
        grid->addWidget(widget, 0, column++);
    }
    grid->setColumnStretch(3, 1);
    grid->addWidget(m_pTriageStatus, 1, 0, 1, column);

    connect(m_pViewCB, qOverload<int>(&QComboBox::activated), this,
            [this](int entry) { TRIAGE_GUARDED({ chooseView(entry); }); });
    connect(m_pCompareCB, qOverload<int>(&QComboBox::activated), this,
            [this](int entry) { TRIAGE_GUARDED({ compareWith(entry); }); });
    connect(m_pWaivePB, &QPushButton::clicked, this, &TriagePanel::waiveAsked);
    connect(m_pWaiveRowsAction, &QAction::triggered, this, &TriagePanel::waiveRowsAsked);
    connect(m_pStaleAction, &QAction::triggered, this,
            [this] { TRIAGE_GUARDED({ removeStale(); }); });
    connect(m_pExportAction, &QAction::triggered, this, [this] {
        TRIAGE_GUARDED({
            const QString path = QFileDialog::getSaveFileName(
                viewer_, m_pExportAction->text(),
                text(context_.scope.job + "_" + context_.scope.step + "_waivers.json"),
                translateFor(viewer_, QString::fromUtf8(kWaiverFiles)));
            if (!path.isEmpty()) {
                exportWaivers(path);
            }
        });
    });
    connect(m_pImportAction, &QAction::triggered, this, [this] {
        TRIAGE_GUARDED({
            const QString path = QFileDialog::getOpenFileName(
                viewer_, m_pImportAction->text(), QString(),
                translateFor(viewer_, QString::fromUtf8(kWaiverFiles)));
            if (!path.isEmpty()) {
                importWaivers(path);
            }
        });
    });
}

// ---- starting and stopping ------------------------------------------------------------------

void TriagePanel::start(const TriageContext& context, std::shared_ptr<const ResultsModel> shown) {
    context_ = context;
    triage_.start(std::move(shown));
    problem_ = context.unavailable;
    runs_problem_.clear();
    waivers_usable_ = problem_.isEmpty();
    if (waivers_usable_) {
        loadFromDatabase();
    }
    fillCompare();
    triage_.compareWith(context.earlier);
    compare_entry_ = context.earlier ? 1 : 0;
    m_pCompareCB->setCurrentIndex(compare_entry_);
    m_pViewCB->setCurrentIndex(int(TriageView::Open));
    refreshControls();
    m_pWaiveRowsAction->setVisible(true);
    setVisible(true);
}

void TriagePanel::stop() {
    triage_.clear();
    context_ = TriageContext();
    m_pWaiveRowsAction->setVisible(false);
    setVisible(false);
}

// The waivers of the scope; the stored runs are only listed, so their failure leaves the
// waivers usable.
void TriagePanel::loadFromDatabase() {
    const TriageScope& scope = context_.scope;
    std::vector<api::analysis_waiver> waivers;
    std::string error;
    if (api::getAnalysisWaivers(scope.kind, scope.job, scope.step, waivers, error)) {
        triage_.setWaivers(std::move(waivers));
    } else {
        LOG(ERROR) << "waivers of " << scope.job << "/" << scope.step << ": " << error;
        waivers_usable_ = false;
        problem_ = text(error);
    }
}

void TriagePanel::fillCompare() {
    m_pCompareCB->clear();
    compare_ids_ = {kNone};
    setSourceItems(viewer_, m_pCompareCB, {kNoRun});
    if (context_.earlier) {
        m_pCompareCB->addItem(context_.earlier_label);
        compare_ids_.push_back(kEarlier);
    }
    if (!context_.unavailable.isEmpty()) {
        return;
    }
    std::vector<api::analysis_run_info> runs;
    std::string error;
    const TriageScope& scope = context_.scope;
    if (!api::getAnalysisRuns(scope.kind, scope.job, scope.step, runs, error)) {
        LOG(ERROR) << "stored runs of " << scope.job << "/" << scope.step << ": " << error;
        runs_problem_ = text(error);
        return;
    }
    for (const api::analysis_run_info& run : runs) {
        if (run.id != context_.run_id) {
            m_pCompareCB->addItem(text(run.time + "  " + run.description).trimmed());
            compare_ids_.push_back(run.id);
        }
    }
}

// ---- the user's choices ---------------------------------------------------------------------

// A stored run that does not load leaves the comparison as it was.
void TriagePanel::compareWith(int entry) {
    if (entry < 0 || std::size_t(entry) >= compare_ids_.size()) {
        return;
    }
    const int id = compare_ids_[std::size_t(entry)];
    std::shared_ptr<const ResultsModel> earlier;
    if (id == kEarlier) {
        earlier = context_.earlier;
    } else if (id != kNone) {
        auto loaded = std::make_shared<ResultsModel>();
        QString error;
        if (!context_.load_run || !context_.load_run(id, *loaded, &error)) {
            m_pCompareCB->setCurrentIndex(compare_entry_);
            information(error);
            return;
        }
        earlier = std::move(loaded);
    }
    const bool was_fixed = triage_.view() == TriageView::Fixed;
    triage_.compareWith(std::move(earlier));
    compare_entry_ = entry;
    refreshControls();
    emit changed(was_fixed || triage_.view() == TriageView::Fixed);
}

void TriagePanel::chooseView(int entry) {
    const bool was_fixed = triage_.view() == TriageView::Fixed;
    triage_.setView(TriageView(entry));
    refreshControls();
    emit changed(was_fixed != (triage_.view() == TriageView::Fixed));
}

// ---- waivers --------------------------------------------------------------------------------

bool TriagePanel::waive(const std::vector<std::size_t>& numbers) {
    if (!waivers_usable_ || numbers.empty() || triage_.view() == TriageView::Fixed) {
        return false;
    }
    const TriageRun& run = triage_.run();
    bool between_nets = true;
    for (std::size_t number : numbers) {
        between_nets = between_nets && waiverForNets(run, number, {}, {}, {}).has_value();
    }
    const auto answer = WaiverDialog::ask(viewer_, int(numbers.size()), between_nets);
    if (!answer) {
        return false;
    }
    const std::string reason = answer->reason.toStdString();
    const std::string user = userName().toStdString();
    std::vector<api::analysis_waiver> waivers;
    std::set<std::tuple<int, std::vector<std::string>>> pairs;  // one waiver per item and nets
    for (std::size_t number : numbers) {
        if (!answer->net_pair) {
            waivers.push_back(waiverForHit(run, number, context_.scope, reason, user));
        } else if (auto waiver = waiverForNets(run, number, context_.scope, reason, user);
                   waiver && pairs.emplace(waiver->item, waiver->nets).second) {
            waivers.push_back(std::move(*waiver));
        }
    }
    return store(waivers);
}

// Stores each waiver in turn; the first refusal is shown and ends the stores, and what was
// stored before it is applied.
bool TriagePanel::store(const std::vector<api::analysis_waiver>& waivers) {
    std::vector<api::analysis_waiver> stored;
    QString refusal;
    for (const api::analysis_waiver& waiver : waivers) {
        const auto answer = api::insertAnalysisWaiver(waiver);
        if (!answer.success) {
            refusal = text(answer.message);
            break;
        }
        stored.push_back(waiver);
        stored.back().id = answer.id;
    }
    if (!stored.empty()) {
        triage_.addWaivers(stored);
    }
    return conclude(!stored.empty(), refusal);
}

// After the database stored or removed waivers (`done`) and perhaps refused one: the lists
// follow what it did, then its refusal is shown.
bool TriagePanel::conclude(bool done, const QString& refusal) {
    if (done) {
        refreshControls();
        emit changed(false);
    }
    if (!refusal.isEmpty()) {
        information(refusal);
    }
    return refusal.isEmpty() && done;
}

bool TriagePanel::removeStale() {
    const std::vector<api::analysis_waiver> stale = triage_.staleWaivers();
    if (stale.empty()) {
        information(translateFor(viewer_, QString::fromUtf8(kNoStale)));
        return false;
    }
    QStringList lines;
    for (const api::analysis_waiver& waiver : stale) {
        lines << describe(waiver);
    }
    std::vector<int> removed;
    QString refusal;
    for (std::size_t i : StaleWaiversDialog::ask(viewer_, lines)) {
        std::string error;
        if (!api::deleteAnalysisWaiver(stale[i].id, error)) {
            refusal = text(error);
            break;
        }
        removed.push_back(stale[i].id);
    }
    if (!removed.empty()) {
        triage_.removeWaivers(removed);
    }
    return conclude(!removed.empty(), refusal);
}

bool TriagePanel::exportWaivers(const QString& path) {
    QString error;
    if (!writeWaiverFile(path, context_.scope, triage_.waivers(), &error)) {
        information(error);
        return false;
    }
    return true;
}

// Each reason of a waiver's history is stored in turn, oldest first, so that the database
// keeps the history the file holds.
bool TriagePanel::importWaivers(const QString& path) {
    std::vector<api::analysis_waiver> read;
    QString error;
    if (!waivers_usable_ || !readWaiverFile(path, context_.scope, read, &error)) {
        information(waivers_usable_ ? error : problem_);
        return false;
    }
    std::vector<api::analysis_waiver> each_reason;
    for (const api::analysis_waiver& waiver : read) {
        if (waiver.history.empty()) {
            each_reason.push_back(waiver);
        }
        for (const api::waiver_reason& reason : waiver.history) {
            each_reason.push_back(waiver);
            each_reason.back().reason = reason.reason;
            each_reason.back().user = reason.user;
            each_reason.back().time = reason.time;
        }
    }
    return each_reason.empty() || store(each_reason);
}

// ---- what the panel shows -------------------------------------------------------------------

void TriagePanel::refreshControls() {
    const bool compared = triage_.compared();
    if (auto* views = qobject_cast<QStandardItemModel*>(m_pViewCB->model())) {
        views->item(int(TriageView::NewOnly))->setEnabled(compared);
        views->item(int(TriageView::Fixed))->setEnabled(compared);
    }
    m_pViewCB->setCurrentIndex(int(triage_.view()));
    const bool on_shown = triage_.view() != TriageView::Fixed;
    m_pWaivePB->setEnabled(waivers_usable_ && on_shown);
    m_pWaiveRowsAction->setEnabled(waivers_usable_ && on_shown);
    for (QAction* action : {m_pStaleAction, m_pImportAction}) {
        action->setEnabled(waivers_usable_);
    }
    if (!problem_.isEmpty() || !runs_problem_.isEmpty()) {
        setSourceText(viewer_, m_pTriageStatus, problem_.isEmpty() ? kNoRuns : kUnavailable,
                      {problem_.isEmpty() ? runs_problem_ : problem_});
        return;
    }
    QStringList counts{QString::number(qulonglong(triage_.waivedCount())),
                       QString::number(qulonglong(triage_.staleWaivers().size()))};
    if (compared) {
        counts << QString::number(qulonglong(triage_.count(RunState::New)))
               << QString::number(qulonglong(triage_.count(RunState::Unchanged)))
               << QString::number(qulonglong(triage_.fixedCount()));
    }
    setSourceText(viewer_, m_pTriageStatus, compared ? kComparedSummary : kSummary, counts);
}

QString TriagePanel::stateText(std::size_t number) const {
    const auto state = [this](int which) {
        return translateFor(viewer_, QString::fromUtf8(kStates[which]));
    };
    switch (triage_.mark(number)) {
        case HitMark::New:
            return state(0);
        case HitMark::Unchanged:
            return state(1);
        case HitMark::Waived:
            return state(2).arg(text(triage_.waiverOf(number)->reason));
        case HitMark::Fixed:
            return state(3);
        case HitMark::None:
            break;
    }
    return {};
}

QString TriagePanel::stateTip(std::size_t number) const {
    const api::analysis_waiver* waiver =
        triage_.mark(number) == HitMark::Waived ? triage_.waiverOf(number) : nullptr;
    if (waiver == nullptr) {
        return {};
    }
    QStringList lines;
    for (const api::waiver_reason& reason : waiver->history) {
        lines << translateFor(viewer_, QString::fromUtf8(kHistoryLine))
                     .arg(text(reason.reason), text(reason.user), text(reason.time));
    }
    return lines.join(QLatin1Char('\n'));
}

QString TriagePanel::itemName(int item) const {
    if (triage_.active()) {
        for (const ResultLayer& layer : triage_.viewed()->layers()) {
            for (const ResultCategory& category : layer.categories) {
                if (category.item == item) {
                    return text(category.name);
                }
            }
        }
    }
    return QString::number(item);
}

QString TriagePanel::describe(const api::analysis_waiver& waiver) const {
    QStringList nets;
    for (const std::string& net : waiver.nets) {
        nets << text(net);
    }
    const bool pair = waiver.scope == api::waive_net_pair;
    return translateFor(viewer_, QString::fromUtf8(pair ? kBetween : kOnLayer))
        .arg(itemName(waiver.item), pair ? nets.join(QStringLiteral(" / ")) : text(waiver.layer),
             text(waiver.reason), text(waiver.user), text(waiver.time));
}

void TriagePanel::information(const QString& message) const {
    QMessageBox::information(viewer_, translateFor(viewer_, QStringLiteral("Information")), message,
                             QMessageBox::Ok);
}

}  // namespace wc

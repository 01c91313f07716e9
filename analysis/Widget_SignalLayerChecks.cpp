#include "Widget_SignalLayerChecks.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QDateTime>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "ZeLineEdit.h"
#include "analysis/ResultWindows.h"
#include "analysis/SignalCheckDatabase.h"
#include "analysis/SignalCheckRun.h"
#include "analysis/SignalCheckTemplates.h"
#include "common_cache.h"
#include "frame/DialogShell.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/RunControls.h"

namespace {

using Korvo::API::signal_check_params;
using Korvo::API::signal_check_result_map;
using Korvo::API::signal_layers_checks_list;

const char* const kGroupStyle = "QGroupBox::title{font-weight:bold;}";

// The distance rows in on-screen order; limits in mil.
const std::vector<wc::FieldRow<signal_check_params>>& distanceRows() {
    static const std::vector<wc::FieldRow<signal_check_params>> rows = {
        {" Spacing:", "pp_spacing", "Spacing", 10.0, 0.0, 1000.0, "10"},
        {" Rout to Cu:", "pp_r2c", "Rout to Cu", 25.0, 0.0, 1000.0, "25"},
        {" Drill to Cu:", "pp_d2c", "Drill to Cu", 14.0, 0.0, 1000.0, "14"},
        {" Sliver min:", "pp_sliver", "Sliver min", 10.0, 0.0, 1000.0, "10"},
        {" Minimum pad overlap:", "pp_min_pad_overlap", "Minimum Pad overlap", 5.0, 0.0, 1000.0,
         "5"},
    };
    return rows;
}

}  // namespace

Widget_SignalLayerChecks::Widget_SignalLayerChecks(const QString& job, const QString& step,
                                                   QWidget* parent, Korvo::UIAPI::Check_Type type)
    : QWidget(parent, Qt::Window), type_(type) {
    wc::RunControlsOptions options;
    options.range_key = QLatin1String(wc::kSignalRangeKey);
    options.layer_text = QStringLiteral(".type=signal|mixed&side=top|bottom&context=board");
    options.erf_text = QStringLiteral("Outer(Mils)");
    shell_ = new wc::DialogShell(this, parent, job, step, options);
    controls_ = &shell_->controls();
    windows_ = std::make_unique<wc::ResultWindows>(*shell_);
    templates_ = new wc::SignalCheckTemplates(this, *controls_);
    database_ = new wc::SignalCheckDatabase(this, *shell_);
    initSignalLayerChecks();
}

Widget_SignalLayerChecks::~Widget_SignalLayerChecks() = default;

void Widget_SignalLayerChecks::initSignalLayerChecks() {
    // The default filter is long; it should be readable whole.
    controls_->layerEdit()->setMinimumWidth(320);
    distances_ = std::make_unique<wc::FieldTable<signal_check_params>>(this, shell_->handle(),
                                                                       distanceRows());
    test_group_ = new QGroupBox(this);
    test_group_->setObjectName(QStringLiteral("groupBox_TestList"));
    wc::setSourceText(this, test_group_, QT_TR_NOOP("Test List"));
    test_group_->setStyleSheet(QLatin1String(kGroupStyle));
    auto* test_grid = new QGridLayout(test_group_);
    const auto& order = wc::signalTestScreenOrder();
    for (int position = 0; position < wc::kSignalTestCount; ++position) {
        const signal_layers_checks_list test = order[static_cast<size_t>(position)];
        const QString label = wc::signalTestLabel(test);
        auto* box = new QCheckBox(test_group_);
        box->setObjectName(QStringLiteral("checkBox_") + QString(label).remove(QLatin1Char(' ')));
        wc::setSourceText(this, box, label.toUtf8().constData());
        box->setChecked(true);
        tests_[test] = box;
        test_grid->addWidget(box, position / 2, position % 2);
    }
    // The choices and their defaults.
    const wc::SignalCheckForm defaults;
    apply_to_ = wc::makeChoiceGroup(this, QStringLiteral("ApplyTo"), QT_TR_NOOP("Apply to"),
                                    {QT_TR_NOOP("All"), QT_TR_NOOP("Selected")}, defaults.apply_to);
    missing_pads_ = wc::makeChoiceGroup(
        this, QStringLiteral("MissingPads"), QT_TR_NOOP("Check Missing Pads for Drills"),
        {QT_TR_NOOP("Yes"), QT_TR_NOOP("No")}, defaults.missing_pads);
    compensated_rout_ = wc::makeChoiceGroup(
        this, QStringLiteral("CompensatedRout"), QT_TR_NOOP("Use Compensated Rout"),
        {QT_TR_NOOP("Yes"), QT_TR_NOOP("No"), QT_TR_NOOP("Skeleton")}, defaults.compensated_rout);
    sm_spacing_ = wc::makeChoiceGroup(this, QStringLiteral("SmSpacing"),
                                      QT_TR_NOOP("Sort Spacing by Solder Mask"),
                                      {QT_TR_NOOP("Yes"), QT_TR_NOOP("No")}, defaults.sm_spacing);
    for (const wc::ChoiceGroup* group : choiceGroups()) {
        group->box->setStyleSheet(QLatin1String(kGroupStyle));
    }

    summary_ = new QLabel(this);
    summary_->setObjectName(QStringLiteral("label_Summary"));
    summary_->setFixedWidth(24);
    summary_->setAlignment(Qt::AlignCenter);
    save_db_ = new QPushButton(this);
    save_db_->setObjectName(QStringLiteral("pushButton_SaveToDb"));
    wc::setSourceText(this, save_db_, QT_TR_NOOP("Save"));
    load_db_ = new QPushButton(this);
    load_db_->setObjectName(QStringLiteral("pushButton_LoadFromDb"));
    wc::setSourceText(this, load_db_, QT_TR_NOOP("Load"));
    wc::setSourceText(this, this, QT_TR_NOOP("Signal Layer Check"));
    layOut();
    wireUp();
}

void Widget_SignalLayerChecks::layOut() {
    auto* distance_grid = new QGridLayout;
    distances_->addToGrid(distance_grid, 0);
    auto* database_row = new QHBoxLayout;
    database_row->addWidget(controls_->rangesButton());
    database_row->addStretch();
    database_row->addWidget(save_db_);
    database_row->addWidget(load_db_);
    QHBoxLayout* run_row = controls_->makeRunRow();
    run_row->addWidget(summary_);
    auto* close_row = new QHBoxLayout;
    close_row->addStretch();
    close_row->addWidget(controls_->closeButton());
    auto* choices = new QGridLayout;
    choices->addWidget(apply_to_.box, 0, 0);
    choices->addWidget(missing_pads_.box, 0, 1);
    choices->addWidget(compensated_rout_.box, 1, 0);
    choices->addWidget(sm_spacing_.box, 1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeLayerRow());
    layout->addLayout(controls_->makeErfRow());
    layout->addLayout(distance_grid);
    layout->addWidget(test_group_);
    layout->addLayout(choices);
    layout->addLayout(database_row);
    layout->addLayout(run_row);
    layout->addWidget(controls_->timeLabel());
    layout->addWidget(controls_->statusLabel());
    layout->addLayout(close_row);
}

void Widget_SignalLayerChecks::wireUp() {
    wc::RunControls::Callbacks callbacks;
    callbacks.run = [this](int scope) { signalLayerChecks(scope); };
    callbacks.view = [this] { showResultsViewer(true); };
    callbacks.ranges = [this] { windows_->openRanges(this, "Signal Layer Check"); };
    callbacks.save_as = [this] { templates_->askName(); };
    controls_->connectTo(callbacks, __FILE__, __LINE__);
    connect(controls_, &wc::RunControls::erfChosen, this, &Widget_SignalLayerChecks::get_ERF_text);
    connect(save_db_, &QPushButton::clicked, this, &Widget_SignalLayerChecks::on_SaveToDb_clicked);
    connect(load_db_, &QPushButton::clicked, this,
            &Widget_SignalLayerChecks::on_LoadFromDb_clicked);
    connect(this, &Widget_SignalLayerChecks::send_Sel_Template_Name, this,
            &Widget_SignalLayerChecks::get_ERF_Name);
    connect(database_, &wc::SignalCheckDatabase::resultLoaded, this,
            &Widget_SignalLayerChecks::showLoadedResult);
    connect(database_, &wc::SignalCheckDatabase::stored, this, [this](int id) {
        triage_.setStoredId(id);
        if (Widget_ResultsViewer* viewer = windows_->viewer()) {
            viewer->setTriage(triage_.context());
        }
    });

    // Any change of a parameter makes the shown result stale.
    QList<QObject*> parameters = distances_->editObjects();
    for (QCheckBox* box : tests_) {
        parameters.append(box);
    }
    for (const wc::ChoiceGroup* group : choiceGroups()) {
        parameters.append(group->group);
    }
    parameters.append(controls_->layerEdit());
    controls_->markStaleOnChange(parameters);
}

std::array<const wc::ChoiceGroup*, 4> Widget_SignalLayerChecks::choiceGroups() const {
    return {&apply_to_, &missing_pads_, &compensated_rout_, &sm_spacing_};
}

// ---- host calls -----------------------------------------------------------------------------

void Widget_SignalLayerChecks::changeJobAndStep(const QString& new_job, const QString& new_step) {
    const std::string old_job = shell_->job().toStdString();
    const std::string old_step = shell_->step().toStdString();
    LOG(INFO) << "Widget_SignalLayerChecks::changeJobAndStep function exec before"
              << " old job :" << old_job << " new job :" << new_job.toStdString()
              << "old step :" << old_step << "new step :" << new_step.toStdString();
    shell_->updateJobStep(new_job, new_step);
    LOG(INFO) << "Widget_SignalLayerChecks::changeJobAndStep function exec end"
              << " old job :" << old_job << " new job :" << new_job.toStdString()
              << "old step :" << old_step << "new step :" << new_step.toStdString();
}

void Widget_SignalLayerChecks::setAffectedLayers(const QStringList& layers) {
    shell_->setAffectedLayers(layers);
}

void Widget_SignalLayerChecks::setErfValues(const QString& name) {
    get_ERF_text(name);
}

void Widget_SignalLayerChecks::Widget_raise() {
    show();
    raise();
    activateWindow();
}

void Widget_SignalLayerChecks::closeDialog() {
    close();
}

int Widget_SignalLayerChecks::rememberedScope() const {
    return controls_->rememberedScope();
}

// ---- the form as values ---------------------------------------------------------------------

wc::SignalCheckForm Widget_SignalLayerChecks::form() const {
    wc::SignalCheckForm form;
    form.layers = controls_->layerEdit()->text();
    const QStringList texts = distances_->texts();
    for (int row = 0; row < wc::kSignalDistanceCount; ++row) {
        form.distances[static_cast<size_t>(row)] = texts.at(row);
    }
    for (int test = 0; test < wc::kSignalTestCount; ++test) {
        form.tests[static_cast<size_t>(test)] = tests_[test]->isChecked();
    }
    form.apply_to = apply_to_.group->checkedId();
    form.missing_pads = missing_pads_.group->checkedId();
    form.compensated_rout = compensated_rout_.group->checkedId();
    form.sm_spacing = sm_spacing_.group->checkedId();
    return form;
}

void Widget_SignalLayerChecks::setForm(const wc::SignalCheckForm& form) {
    QStringList texts;
    for (const QString& text : form.distances) {
        texts.append(text);
    }
    distances_->setTexts(texts);
    for (int test = 0; test < wc::kSignalTestCount; ++test) {
        tests_[test]->setChecked(form.tests[static_cast<size_t>(test)]);
    }
    apply_to_.check(form.apply_to);
    missing_pads_.check(form.missing_pads);
    compensated_rout_.check(form.compensated_rout);
    sm_spacing_.check(form.sm_spacing);
}

QString Widget_SignalLayerChecks::getSignalLayerParams() const {
    return wc::signalLayerParams(form());
}

int Widget_SignalLayerChecks::getTestListCnt() const {
    return wc::checkedSignalTestCount(form());
}

// ---- the buttons ----------------------------------------------------------------------------

WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_Layer_clicked, controls_->openLayerPopup())
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_m_pERFPB_clicked, controls_->openErfPopup())
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_Ranges_clicked, controls_->openRanges())
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_RunGlobally_clicked, controls_->run(wc::ScopeGlobal))
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_RunScreen_clicked, controls_->run(wc::ScopeScreen))
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_RunProfile_clicked, controls_->run(wc::ScopeProfile))
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_ViewResult_clicked, controls_->view())
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_Close_clicked, controls_->close())
WC_FORWARD_SLOT(Widget_SignalLayerChecks, on_m_pSaveAsPB_clicked, controls_->saveAs())

void Widget_SignalLayerChecks::get_ERF_Name(QString name) {
    WC_GUARDED({ templates_->save(name); });
}

void Widget_SignalLayerChecks::get_ERF_text(QString name) {
    WC_GUARDED({ templates_->load(name); });
}

bool Widget_SignalLayerChecks::isErfFileExist(const QString& name) const {
    return shell_->isErfFileExist(name);
}

void Widget_SignalLayerChecks::readConfigJson() {
    // Nothing: parameters come back only from templates and database results (kept on purpose).
}

// ---- the run --------------------------------------------------------------------------------

void Widget_SignalLayerChecks::signalLayerChecks(int scope) {
    const std::vector<std::string> layers = checkLayer();
    if (layers.empty()) {
        controls_->setStatus(tr("No layers were processed"));
        return;
    }
    if (!islineEditsValid()) {
        LOG(INFO) << "a distance field holds text its validator refuses";
        return;
    }
    if (wc::firstEmptySignalDistance(form()) >= 0) {
        information(tr("illegal floating parameter"));
        return;
    }
    signal_check_params params;
    setSignalCheckParams(params);
    const std::vector<signal_layers_checks_list> tests = wc::checkedSignalTests(form());
    const int run_scope = wc::runScope(scope, apply_to_.group->checkedId() == 1);
    controls_->rememberScope(run_scope);
    database_->rememberRun(params, tests);
    Korvo::CheckList::signal_check_request request =
        wc::signalCheckRequest(shell_->job(), shell_->step(), params, tests, run_scope);
    if (type_ == Korvo::UIAPI::Check_Engine) {
        runPerLayer(request, layers);
    } else {
        request.parameters = getSignalLayerParams().toStdString();
        runOnService(request);
    }
}

std::vector<std::string> Widget_SignalLayerChecks::checkLayer() {
    const wc::LayerResolution resolution = controls_->resolveLayerField();
    for (const QString& name : resolution.missing) {
        QMessageBox::warning(this, tr("WARNING!"), name + tr(" is not exists !"));
    }
    return resolution.layers;
}

bool Widget_SignalLayerChecks::islineEditsValid() const {
    return distances_->allAcceptable();
}

void Widget_SignalLayerChecks::setSignalCheckParams(signal_check_params& params) const {
    params = wc::signalCheckParams(form(), shell_->handle());
}

void Widget_SignalLayerChecks::runPerLayer(const Korvo::CheckList::signal_check_request& request,
                                           const std::vector<std::string>& layers) {
    const QDateTime start = QDateTime::currentDateTime();
    QElapsedTimer timer;
    timer.start();
    const wc::SignalRunEnd end =
        wc::runSignalChecksPerLayer(this, request, layers, result_, processed_layers_);
    // A dialog destroyed during the run is not touched again, not even to ask it.
    if (end == wc::SignalRunEnd::DialogGone || !showRunEnd(end, start, timer.elapsed())) {
        return;
    }
    controls_->setStatus(wc::layersProcessedText(this, processed_layers_));
    showResultsViewer(false);
}

void Widget_SignalLayerChecks::runOnService(const Korvo::CheckList::signal_check_request& request) {
    const QDateTime start = QDateTime::currentDateTime();
    QElapsedTimer timer;
    timer.start();
    const wc::SignalRunEnd end =
        wc::runSignalChecksOnService(this, request, result_, processed_layers_);
    if (end == wc::SignalRunEnd::DialogGone || !showRunEnd(end, start, timer.elapsed())) {
        return;
    }
    showResultsViewer(false);
    controls_->setStatus(tr("%n layers were processed", nullptr, processed_layers_));
}

// What every end of a run shows; true when the run is done and its result shown.
bool Widget_SignalLayerChecks::showRunEnd(wc::SignalRunEnd end, const QDateTime& start,
                                          qint64 elapsed_ms) {
    switch (end) {
        case wc::SignalRunEnd::DialogGone:
            return false;  // the callers leave before: the dialog is no more
        case wc::SignalRunEnd::Stopped:
            controls_->setStatus(tr("SignalLayer check terminated"));
            controls_->setViewState(wc::RunControls::ViewState::Stopped);
            return false;
        case wc::SignalRunEnd::ServiceBusy:
            controls_->setStatus(tr("the service is busy"));
            return false;
        case wc::SignalRunEnd::ServiceFailed:
            controls_->setStatus(tr("The check-list service failed"));
            return false;
        case wc::SignalRunEnd::Done:
            break;
    }
    publishResult();
    triageResult(-1);
    setLayerWithinCheckInfo();
    controls_->showTime(start, elapsed_ms);
    setColor();
    return true;
}

void Widget_SignalLayerChecks::setLayerWithinCheckInfo() {
    layers_within_check_.clear();
    for (const auto& layer : result_) {
        layers_within_check_.append(QString::fromStdString(layer.first));
    }
}

void Widget_SignalLayerChecks::setColor() {
    controls_->setViewState(wc::RunControls::ViewState::Fresh);
    // Waived hits do not colour the summary.
    switch (triage_.summary()) {
        case wc::ResultSummary::Red:
            summary_->setText(QStringLiteral("!!"));
            summary_->setStyleSheet(QStringLiteral("QLabel{background:red;}"));
            break;
        case wc::ResultSummary::Yellow:
            summary_->setText(QStringLiteral("!"));
            summary_->setStyleSheet(QStringLiteral("QLabel{background:yellow;}"));
            break;
        case wc::ResultSummary::Green:
            summary_->setText(QString());
            summary_->setStyleSheet(QStringLiteral("QLabel{background:green;}"));
            break;
        case wc::ResultSummary::NoHit:
            break;  // the label keeps what it showed
    }
}

void Widget_SignalLayerChecks::change_viewbtn_stylesheet() {
    controls_->markStale();
}

void Widget_SignalLayerChecks::change_viewbtn_stylesheet(int) {
    controls_->markStale();
}

// ---- the result database --------------------------------------------------------------------

void Widget_SignalLayerChecks::on_db_connected(bool connected) {
    database_->setConnected(connected);
}

void Widget_SignalLayerChecks::on_SaveToDb_clicked() {
    WC_GUARDED({ database_->save(result_, processed_layers_); });
}

void Widget_SignalLayerChecks::on_check_result_2_db_end(
    const Quorin::DBS_API::CreateSesult& answer) {
    WC_GUARDED({ database_->showSaveAnswer(answer); });
}

void Widget_SignalLayerChecks::on_LoadFromDb_clicked() {
    WC_GUARDED({ database_->openBrowser(); });
}

void Widget_SignalLayerChecks::get_analysis_result_from_db(QString& id) {
    WC_GUARDED({ database_->loadCheck(id); });
}

void Widget_SignalLayerChecks::get_tq_analysis_result_from_db(QString& id) {
    WC_GUARDED({ database_->loadTqCheck(id); });
}

void Widget_SignalLayerChecks::refresh_load_result(int index) {
    WC_GUARDED({ database_->loadAt(index); });
}

void Widget_SignalLayerChecks::showLoadedResult(const signal_check_result_map& result) {
    result_ = result;
    processed_layers_ = static_cast<int>(result_.size());
    publishResult();
    triageResult(-1);
    setLayerWithinCheckInfo();
    setColor();
    controls_->setStatus(wc::layersProcessedText(this, processed_layers_));
    showResultsViewer(true);
}

void Widget_SignalLayerChecks::viewSetShowResult() {
    WC_GUARDED({
        published_ = Korvo::Cache::common_cache::instance()->getSignalResult();
        result_ = *published_;
        processed_layers_ = static_cast<int>(result_.size());
        triageResult(-1);
        setLayerWithinCheckInfo();
        controls_->setStatus(
            wc::layersProcessedText(this, processed_layers_, wc::CountWording::Viewer));
        on_ViewResult_clicked();
        LOG(INFO) << "show view signal check has successful";
    });
}

// ---- viewer and range editor ----------------------------------------------------------------

// result_ as one immutable copy for the shared cache and the viewer.
void Widget_SignalLayerChecks::publishResult() {
    published_ = std::make_shared<const signal_check_result_map>(result_);
    Korvo::Cache::common_cache::instance()->setSignalResult(published_);
}

// The waivers of the job and step applied to the published result. When the database cannot
// give them the hits all stay shown, and the dialog says why once, without holding up its user.
void Widget_SignalLayerChecks::triageResult(int stored_id) {
    triage_.setResult(published_, shell_->job(), shell_->step(), stored_id);
    const QString& why = triage_.unavailable();
    if (why.isEmpty() || why == told_unavailable_) {
        return;
    }
    told_unavailable_ = why;
    auto* box =
        new QMessageBox(QMessageBox::Information, tr("Information"), why, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

// A run refreshes a viewer that is already open; the view button opens it. The viewer's raise
// reaches the host through Signal_check_raise.
void Widget_SignalLayerChecks::showResultsViewer(bool open) {
    if (!published_) {
        publishResult();
    }
    windows_->showViewer(
        this, open, &Widget_ResultsViewer::Signal_check_raise,
        [this] {
            auto* viewer = new Widget_ResultsViewer(0, shell_->host(), published_);
            connect(viewer, &Widget_ResultsViewer::Signal_check_raise, this,
                    &Widget_SignalLayerChecks::Signal_check_raise);
            viewer->setTriage(triage_.context());
            return viewer;
        },
        [this](Widget_ResultsViewer& viewer) {
            viewer.RefreshSignalLayerChecksData(published_);
            viewer.setTriage(triage_.context());
        });
}

// ---- language and units ---------------------------------------------------------------------

void Widget_SignalLayerChecks::change_language() {
    WC_GUARDED({
        wc::retranslate(this);
        distances_->changeLanguage();
    });
}

void Widget_SignalLayerChecks::change_units() {
    WC_GUARDED({
        distances_->changeUnit();
        emit unit_changed();
    });
}

void Widget_SignalLayerChecks::information(const QString& text) {
    QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
}

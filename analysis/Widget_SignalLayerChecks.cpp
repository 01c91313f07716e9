#include "Widget_SignalLayerChecks.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QDateTime>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "CheckListService.h"
#include "CheckResultBrowser.h"
#include "Common.h"
#include "Korvo_API.h"
#include "ZeLineEdit.h"
#include "analysis/ResultWindows.h"
#include "common_cache.h"
#include "frame/BackgroundRun.h"
#include "frame/DialogShell.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/ParameterSetForm.h"
#include "frame/ParameterSetStore.h"
#include "frame/RangeMap.h"
#include "frame/RunControls.h"

namespace {

using Korvo::API::signal_check_params;
using Korvo::API::signal_check_range;
using Korvo::API::signal_check_result;
using Korvo::API::signal_check_result_map;
using Korvo::API::signal_layers_checks_items;
using Korvo::API::signal_layers_checks_list;

const QString kRangeKey = QStringLiteral("SignalLayerRanges");
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

// The progress block of one layer: the engine's block plus the layer's answer.
struct LayerBlock : Korvo::COMMON::progress_value<signal_check_result_map> {
    std::map<signal_layers_checks_items, signal_check_result> layer_result;
    bool ok = false;
};

struct ServiceBlock : Korvo::COMMON::progress_value<void> {
    signal_check_result_map result;
    Korvo::CheckList::service_answer answer = Korvo::CheckList::service_answer::failed;
};

struct SaveBlock : Korvo::COMMON::progress_value<void> {
    Quorin::DBS_API::CreateSesult answer;
};

wc::BackgroundRunOptions runOptions(QWidget* owner, const QString& label, const QString& title,
                                    int line) {
    wc::BackgroundRunOptions options;
    options.parent = owner;
    options.label = label;
    options.title = title;
    options.source_file = "Widget_SignalLayerChecks.cpp";
    options.source_line = line;
    return options;
}

}  // namespace

Widget_SignalLayerChecks::Widget_SignalLayerChecks(const QString& job, const QString& step,
                                                   QWidget* parent, Korvo::UIAPI::Check_Type type)
    : QWidget(parent, Qt::Window), type_(type) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    wc::RunControlsOptions options;
    options.range_key = kRangeKey;
    options.layer_text = QStringLiteral(".type=signal|mixed&side=top|bottom&context=board");
    options.erf_text = QStringLiteral("Outer(Mils)");
    shell_ = new wc::DialogShell(this, parent, job, step, options);
    controls_ = &shell_->controls();
    windows_ = std::make_unique<wc::ResultWindows>(*shell_);
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
    callbacks.save_as = [this] { askTemplateName(); };
    controls_->connectTo(callbacks, __FILE__, __LINE__);
    connect(controls_, &wc::RunControls::erfChosen, this, &Widget_SignalLayerChecks::get_ERF_text);
    connect(save_db_, &QPushButton::clicked, this, &Widget_SignalLayerChecks::on_SaveToDb_clicked);
    connect(load_db_, &QPushButton::clicked, this,
            &Widget_SignalLayerChecks::on_LoadFromDb_clicked);
    connect(this, &Widget_SignalLayerChecks::send_Sel_Template_Name, this,
            &Widget_SignalLayerChecks::get_ERF_Name);

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

void Widget_SignalLayerChecks::on_Layer_clicked() {
    WC_GUARDED({ controls_->showLayerPopup(); });
}

void Widget_SignalLayerChecks::on_m_pERFPB_clicked() {
    WC_GUARDED({ controls_->showErfPopup(); });
}

void Widget_SignalLayerChecks::on_Ranges_clicked() {
    controls_->openRanges();
}

void Widget_SignalLayerChecks::on_RunGlobally_clicked() {
    controls_->run(wc::ScopeGlobal);
}

void Widget_SignalLayerChecks::on_RunScreen_clicked() {
    controls_->run(wc::ScopeScreen);
}

void Widget_SignalLayerChecks::on_RunProfile_clicked() {
    controls_->run(wc::ScopeProfile);
}

void Widget_SignalLayerChecks::on_ViewResult_clicked() {
    controls_->view();
}

void Widget_SignalLayerChecks::on_Close_clicked() {
    controls_->close();
}

void Widget_SignalLayerChecks::on_m_pSaveAsPB_clicked() {
    controls_->saveAs();
}

void Widget_SignalLayerChecks::askTemplateName() {
    if (name_dialog_ == nullptr) {
        name_dialog_ = new QInputDialog(this);
        name_dialog_->setObjectName(QStringLiteral("templateNameDialog"));
        name_dialog_->setWindowTitle(tr("Save as"));
        name_dialog_->setLabelText(tr("Template name:"));
        connect(name_dialog_, &QInputDialog::textValueSelected, this,
                &Widget_SignalLayerChecks::send_Sel_Template_Name);
    }
    name_dialog_->setTextValue(controls_->erfEdit()->text());
    name_dialog_->open();
}

void Widget_SignalLayerChecks::get_ERF_Name(QString name) {
    WC_GUARDED({
        const QString problem = wc::ParameterSetStore::nameProblem(name);
        if (!problem.isEmpty()) {
            QMessageBox::warning(this, tr("Warning"), tr(problem.toUtf8().constData()));
            return;
        }
        wc::ParameterSetStore store(kRangeKey);
        if (store.exists(name)) {
            const auto answer = QMessageBox::warning(
                this, tr("Warning"), name + tr(" have a same name file! Do you want to overwrite?"),
                QMessageBox::Yes | QMessageBox::No);
            if (answer != QMessageBox::Yes) {
                return;
            }
            store.remove(name);
        }
        if (writeConfigJson(name)) {
            controls_->erfEdit()->setText(name);
        }
    });
}

bool Widget_SignalLayerChecks::writeConfigJson(const QString& name) {
    QString error;
    const QJsonObject root = wc::withRanges(kRangeKey, wc::signalCheckTemplate(form()));
    if (wc::ParameterSetStore(kRangeKey).save(name, root, &error) !=
        wc::ParameterSetStore::SaveResult::Saved) {
        LOG(ERROR) << "template " << name.toStdString() << " not saved: " << error.toStdString();
        QMessageBox::warning(this, tr("Warning"), error);
        return false;
    }
    return true;
}

void Widget_SignalLayerChecks::get_ERF_text(QString name) {
    WC_GUARDED({
        controls_->erfEdit()->setText(name);
        QJsonObject root;
        QString error;
        if (wc::ParameterSetStore(kRangeKey).load(name, root, &error) !=
            wc::ParameterSetStore::LoadResult::Loaded) {
            LOG(ERROR) << "template " << name.toStdString()
                       << " not loaded: " << error.toStdString();
            information(error);
            return;
        }
        wc::SignalCheckForm loaded = form();
        if (error = wc::rangesShapeProblem(root); error.isEmpty()) {
            wc::readSignalCheckTemplate(root, loaded, &error);
        }
        if (!error.isEmpty()) {
            LOG(ERROR) << "template " << name.toStdString()
                       << " not loaded: " << error.toStdString();
            information(name + QStringLiteral(": ") + error);
            return;
        }
        setForm(loaded);
        wc::applyRangesList(kRangeKey, root);
        change_viewbtn_stylesheet();
    });
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
    last_params_ = params;
    last_tests_ = tests;
    if (type_ == Korvo::UIAPI::Check_Engine) {
        runPerLayer(layers, params, tests, run_scope);
    } else {
        runOnService(params, tests, run_scope);
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

void Widget_SignalLayerChecks::runPerLayer(const std::vector<std::string>& layers,
                                           const signal_check_params& params,
                                           const std::vector<signal_layers_checks_list>& tests,
                                           int scope) {
    const auto ranges = wc::buildRangeMap<signal_layers_checks_items, signal_check_range>(
        kRangeKey.toStdString(), wc::toCheckRange);
    const QDateTime start = QDateTime::currentDateTime();
    QElapsedTimer timer;
    timer.start();
    result_.clear();
    processed_layers_ = 0;

    wc::BackgroundRunOptions options =
        runOptions(this, tr("Please wait"), tr("Processing"), __LINE__);
    // Each layer's answer is complete before the next starts, so a stop keeps whole layers.
    options.stop = wc::StopBehaviour::WaitForWorker;
    wc::BackgroundRun run(options);
    const std::string job = shell_->job().toStdString();
    const std::string step = shell_->step().toStdString();
    bool stopped = false;
    for (const std::string& layer : layers) {
        if (run.stopRequested()) {
            stopped = true;
            break;
        }
        auto block = std::make_shared<LayerBlock>();
        const wc::RunOutcome outcome =
            run.step(block, [job, step, layer, params, tests, ranges, scope](LayerBlock& b) {
                Korvo::UIAPI::getContourAccuracy();
                b.ok = Korvo::API::signal_layers_checks(job, step, layer, params, tests, ranges,
                                                        b.layer_result, &b, scope);
            });
        if (outcome.owner_destroyed) {
            return;  // the dialog is gone: nothing of it may be touched
        }
        if (outcome.worker_returned && !outcome.worker_threw) {
            if (!block->ok) {
                LOG(ERROR) << "signal_layers_checks failed on layer " << layer;
            }
            result_[layer] = std::move(block->layer_result);
            ++processed_layers_;
        }
        if (!outcome.finished() || run.stopRequested()) {
            stopped = true;
            break;
        }
    }
    run.finish();

    if (stopped) {
        controls_->setStatus(tr("SignalLayer check terminated"));
        controls_->setViewState(wc::RunControls::ViewState::Stopped);
        return;
    }
    publishResult();
    setLayerWithinCheckInfo();
    controls_->showTime(start, timer.elapsed());
    setColor();
    controls_->setStatus(wc::layersProcessedText(this, processed_layers_));
    showResultsViewer(false);
}

void Widget_SignalLayerChecks::runOnService(const signal_check_params& params,
                                            const std::vector<signal_layers_checks_list>& tests,
                                            int scope) {
    Korvo::CheckList::signal_check_request request;
    request.job = shell_->job().toStdString();
    request.step = shell_->step().toStdString();
    request.job_folder =
        (Common::getPath_database() + QStringLiteral("/job/") + shell_->job()).toStdString();
    request.parameters = getSignalLayerParams().toStdString();
    request.params = params;
    request.tests = tests;
    request.ranges = wc::buildRangeMap<signal_layers_checks_items, signal_check_range>(
        kRangeKey.toStdString(), wc::toCheckRange);
    request.scope = scope;

    const QDateTime start = QDateTime::currentDateTime();
    QElapsedTimer timer;
    timer.start();
    auto block = std::make_shared<ServiceBlock>();
    const wc::RunOutcome outcome = wc::BackgroundRun::once(
        runOptions(this, tr("Please wait"), tr("Processing"), __LINE__), block,
        [request](ServiceBlock& b) {
            b.answer = Korvo::CheckList::runSignalLayerCheckList(request, b.result, &b);
        });
    if (outcome.owner_destroyed) {
        return;
    }
    if (!outcome.worker_returned || outcome.worker_threw) {
        controls_->setStatus(tr("SignalLayer check terminated"));
        controls_->setViewState(wc::RunControls::ViewState::Stopped);
        return;
    }
    switch (block->answer) {
        case Korvo::CheckList::service_answer::busy:
            controls_->setStatus(tr("the service is busy"));
            return;
        case Korvo::CheckList::service_answer::failed:
            LOG(ERROR) << "the check-list service failed on " << request.parameters;
            controls_->setStatus(tr("The check-list service failed"));
            return;
        case Korvo::CheckList::service_answer::done:
            break;
    }
    result_ = std::move(block->result);
    processed_layers_ = static_cast<int>(result_.size());
    publishResult();
    setLayerWithinCheckInfo();
    controls_->showTime(start, timer.elapsed());
    setColor();
    showResultsViewer(false);
    controls_->setStatus(tr("%n layers were processed", nullptr, processed_layers_));
}

void Widget_SignalLayerChecks::setLayerWithinCheckInfo() {
    layers_within_check_.clear();
    for (const auto& layer : result_) {
        layers_within_check_.append(QString::fromStdString(layer.first));
    }
}

void Widget_SignalLayerChecks::setColor() {
    controls_->setViewState(wc::RunControls::ViewState::Fresh);
    switch (wc::summariseSignalResult(result_)) {
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
    db_connected_ = connected;
}

// Like the run buttons, "Save" does nothing while this dialog's run or save is under way.
void Widget_SignalLayerChecks::on_SaveToDb_clicked() {
    if (shell_->busy()) {
        return;
    }
    WC_GUARDED({ signalLayerCheckResult2DB(); });
}

void Widget_SignalLayerChecks::signalLayerCheckResult2DB() {
    if (!db_connected_ || processed_layers_ == 0) {
        LOG(ERROR) << "nothing saved: " << (db_connected_ ? "no result" : "no database");
        information(tr("Save 2 db failed"));
        return;
    }
    Korvo::API::dms_signal_check_params record;
    record.job = shell_->job().toStdString();
    record.step = shell_->step().toStdString();
    record.params = last_params_;
    record.tests = last_tests_;
    record.scope = controls_->rememberedScope();
    const signal_check_result_map result = result_;
    auto block = std::make_shared<SaveBlock>();
    const wc::RunOutcome outcome = wc::BackgroundRun::once(
        runOptions(this, tr("Processing"), tr("Please wait"), __LINE__), block,
        [record, result](SaveBlock& b) {
            b.answer = Korvo::API::insertSignalLayerAnalysisResult(record, result);
        });
    if (outcome.owner_destroyed) {
        return;
    }
    if (!outcome.worker_returned || outcome.worker_threw) {
        information(tr("Save 2 db failed"));
        return;
    }
    on_check_result_2_db_end(block->answer);
}

void Widget_SignalLayerChecks::on_check_result_2_db_end(
    const Quorin::DBS_API::CreateSesult& answer) {
    WC_GUARDED({
        information(
            QStringLiteral("%1: %2").arg(answer.success ? tr("Save success") : tr("Save failed"),
                                         QString::fromStdString(answer.message)));
    });
}

void Widget_SignalLayerChecks::on_LoadFromDb_clicked() {
    WC_GUARDED({
        if (!db_connected_) {
            information(tr("DB connection failed"));
            return;
        }
        if (browser_ == nullptr) {
            using Quorin::DBS_API::CheckResultBrowser;
            browser_ = Quorin::DBS_API::createCheckResultBrowser(this);
            connect(browser_, &CheckResultBrowser::send_check_id_text, this,
                    &Widget_SignalLayerChecks::get_analysis_result_from_db);
            connect(browser_, &CheckResultBrowser::send_tq_check_id_text, this,
                    &Widget_SignalLayerChecks::get_tq_analysis_result_from_db);
            connect(browser_, &CheckResultBrowser::send_load_index, this,
                    &Widget_SignalLayerChecks::refresh_load_result);
        }
        browser_->show();
        browser_->raise();
    });
}

void Widget_SignalLayerChecks::get_analysis_result_from_db(QString& id) {
    WC_GUARDED({
        bool number = false;
        const int check_id = id.toInt(&number);
        Korvo::API::dms_signal_check_params record;
        signal_check_result_map result;
        if (!number || !Korvo::API::getSignalLayerAnalysisResult(check_id, record, result)) {
            LOG(ERROR) << "no stored signal layer check " << id.toStdString();
            information(tr("No stored check with id ") + id);
            return;
        }
        params2ui(record.params, record.tests);
        last_params_ = record.params;
        last_tests_ = record.tests;
        showLoadedResult(result);
    });
}

void Widget_SignalLayerChecks::get_tq_analysis_result_from_db(QString& id) {
    WC_GUARDED({
        signal_check_result_map result;
        if (!Korvo::API::getTqSignalLayerAnalysisResult(id.toStdString(), result)) {
            LOG(ERROR) << "no stored signal layer result " << id.toStdString();
            information(tr("No stored check with id ") + id);
            return;
        }
        showLoadedResult(result);
    });
}

void Widget_SignalLayerChecks::refresh_load_result(int index) {
    WC_GUARDED({
        const auto master = Korvo::API::getCheckResultMaster();
        if (index < 0 || index >= static_cast<int>(master.size())) {
            LOG(ERROR) << "no stored check at position " << index;
            return;
        }
        QString id = QString::number(std::next(master.begin(), index)->first);
        get_analysis_result_from_db(id);
    });
}

void Widget_SignalLayerChecks::params2ui(const signal_check_params& params,
                                         const std::vector<signal_layers_checks_list>& tests) {
    wc::SignalCheckForm shown = form();
    wc::showSignalCheckParams(params, tests, shown);
    setForm(shown);
}

void Widget_SignalLayerChecks::showLoadedResult(const signal_check_result_map& result) {
    result_ = result;
    processed_layers_ = static_cast<int>(result_.size());
    publishResult();
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
        setLayerWithinCheckInfo();
        controls_->setStatus(
            wc::layersProcessedText(this, processed_layers_, wc::CountWording::Viewer));
        on_ViewResult_clicked();
        LOG(INFO) << "show view signal check has successful";
    });
}

// ---- viewer and range editor ----------------------------------------------------------------

// Opens the results viewer on result_ (open true), or refreshes it with
// RefreshSignalLayerChecksData when it is already shown.
void Widget_SignalLayerChecks::publishResult() {
    published_ = std::make_shared<const signal_check_result_map>(result_);
    Korvo::Cache::common_cache::instance()->setSignalResult(published_);
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
            return viewer;
        },
        [this](Widget_ResultsViewer& viewer) { viewer.RefreshSignalLayerChecksData(published_); });
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

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
#include "analysis/Widget_Ranges.h"
#include "analysis/Widget_ResultsViewer.h"
#include "common_cache.h"
#include "frame/BackgroundRun.h"
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
    : QWidget(parent, Qt::Window), handle_(parent), job_(job), step_(step), type_(type) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initSignalLayerChecks();
}

Widget_SignalLayerChecks::~Widget_SignalLayerChecks() = default;

void Widget_SignalLayerChecks::initSignalLayerChecks() {
    wc::RunControlsOptions options;
    options.range_key = kRangeKey;
    options.layer_text = QStringLiteral(".type=signal|mixed&side=top|bottom&context=board");
    options.erf_text = QStringLiteral("Outer(Mils)");
    controls_ = new wc::RunControls(this, options);
    controls_->setJob(job_);
    // The default filter is long; it should be readable whole.
    controls_->layerEdit()->setMinimumWidth(320);

    distances_ =
        std::make_unique<wc::FieldTable<signal_check_params>>(this, handle_, distanceRows());
    auto* distance_grid = new QGridLayout;
    distances_->addToGrid(distance_grid, 0);

    test_group_ = new QGroupBox(tr("Test List"), this);
    test_group_->setObjectName(QStringLiteral("groupBox_TestList"));
    test_group_->setStyleSheet(QLatin1String(kGroupStyle));
    auto* test_grid = new QGridLayout(test_group_);
    const auto& order = wc::signalTestScreenOrder();
    for (int position = 0; position < wc::kSignalTestCount; ++position) {
        const signal_layers_checks_list test = order[static_cast<size_t>(position)];
        const QString label = wc::signalTestLabel(test);
        auto* box = new QCheckBox(tr(label.toUtf8().constData()), test_group_);
        box->setObjectName(QStringLiteral("checkBox_") + QString(label).remove(QLatin1Char(' ')));
        box->setChecked(true);
        tests_[test] = box;
        test_grid->addWidget(box, position / 2, position % 2);
    }

    QGroupBox* apply_to =
        makeChoiceGroup(QStringLiteral("ApplyTo"), "Apply to", {"All", "Selected"}, apply_to_);
    QGroupBox* missing_pads =
        makeChoiceGroup(QStringLiteral("MissingPads"), "Check Missing Pads for Drills",
                        {"Yes", "No"}, missing_pads_);
    QGroupBox* compensated =
        makeChoiceGroup(QStringLiteral("CompensatedRout"), "Use Compensated Rout",
                        {"Yes", "No", "Skeleton"}, compensated_rout_);
    QGroupBox* sm_spacing = makeChoiceGroup(
        QStringLiteral("SmSpacing"), "Sort Spacing by Solder Mask", {"Yes", "No"}, sm_spacing_);
    // The choices' defaults.
    const wc::SignalCheckForm defaults;
    apply_to_->button(defaults.apply_to)->setChecked(true);
    missing_pads_->button(defaults.missing_pads)->setChecked(true);
    compensated_rout_->button(defaults.compensated_rout)->setChecked(true);
    sm_spacing_->button(defaults.sm_spacing)->setChecked(true);

    summary_ = new QLabel(this);
    summary_->setObjectName(QStringLiteral("label_Summary"));
    summary_->setFixedWidth(24);
    summary_->setAlignment(Qt::AlignCenter);
    save_db_ = new QPushButton(tr("Save"), this);
    save_db_->setObjectName(QStringLiteral("pushButton_SaveToDb"));
    load_db_ = new QPushButton(tr("Load"), this);
    load_db_->setObjectName(QStringLiteral("pushButton_LoadFromDb"));
    close_ = new QPushButton(tr("Close"), this);
    close_->setObjectName(QStringLiteral("pushButton_Close"));

    auto* database_row = new QHBoxLayout;
    database_row->addWidget(controls_->rangesButton());
    database_row->addStretch();
    database_row->addWidget(save_db_);
    database_row->addWidget(load_db_);
    QHBoxLayout* run_row = controls_->makeRunRow();
    run_row->addWidget(summary_);
    auto* close_row = new QHBoxLayout;
    close_row->addStretch();
    close_row->addWidget(close_);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeLayerRow());
    layout->addLayout(controls_->makeErfRow());
    layout->addLayout(distance_grid);
    layout->addWidget(test_group_);
    auto* choices = new QGridLayout;
    choices->addWidget(apply_to, 0, 0);
    choices->addWidget(missing_pads, 0, 1);
    choices->addWidget(compensated, 1, 0);
    choices->addWidget(sm_spacing, 1, 1);
    layout->addLayout(choices);
    layout->addLayout(database_row);
    layout->addLayout(run_row);
    layout->addWidget(controls_->timeLabel());
    layout->addWidget(controls_->statusLabel());
    layout->addLayout(close_row);

    connect(controls_->rangesButton(), SIGNAL(clicked()), this, SLOT(on_Ranges_clicked()));
    connect(controls_->runButton(wc::ScopeGlobal), SIGNAL(clicked()), this,
            SLOT(on_RunGlobally_clicked()));
    connect(controls_->runButton(wc::ScopeScreen), SIGNAL(clicked()), this,
            SLOT(on_RunScreen_clicked()));
    connect(controls_->runButton(wc::ScopeProfile), SIGNAL(clicked()), this,
            SLOT(on_RunProfile_clicked()));
    connect(controls_->viewButton(), SIGNAL(clicked()), this, SLOT(on_ViewResult_clicked()));
    connect(controls_->saveAsButton(), SIGNAL(clicked()), this, SLOT(on_m_pSaveAsPB_clicked()));
    connect(controls_, &wc::RunControls::erfChosen, this, &Widget_SignalLayerChecks::get_ERF_text);
    connect(save_db_, SIGNAL(clicked()), this, SLOT(on_SaveToDb_clicked()));
    connect(load_db_, SIGNAL(clicked()), this, SLOT(on_LoadFromDb_clicked()));
    connect(close_, SIGNAL(clicked()), this, SLOT(on_Close_clicked()));
    connect(this, &Widget_SignalLayerChecks::send_Sel_Template_Name, this,
            &Widget_SignalLayerChecks::get_ERF_Name);

    // Any change of a parameter makes the shown result stale.
    for (QCheckBox* box : tests_) {
        connect(box, SIGNAL(stateChanged(int)), this, SLOT(change_viewbtn_stylesheet(int)));
    }
    for (QButtonGroup* group : {apply_to_, missing_pads_, compensated_rout_, sm_spacing_}) {
        for (QAbstractButton* button : group->buttons()) {
            connect(button, SIGNAL(clicked()), this, SLOT(change_viewbtn_stylesheet()));
        }
    }
    for (QObject* edit : distances_->editObjects()) {
        connect(edit, SIGNAL(editingFinished()), this, SLOT(change_viewbtn_stylesheet()));
    }
    connect(controls_->layerEdit(), SIGNAL(editingFinished()), this,
            SLOT(change_viewbtn_stylesheet()));

    setWindowTitle(tr("Signal Layer Check"));
}

QGroupBox* Widget_SignalLayerChecks::makeChoiceGroup(const QString& name, const char* title,
                                                     const std::vector<const char*>& choices,
                                                     QButtonGroup*& group) {
    auto* box = new QGroupBox(tr(title), this);
    box->setObjectName(QStringLiteral("groupBox_") + name);
    box->setStyleSheet(QLatin1String(kGroupStyle));
    group = new QButtonGroup(box);
    group->setObjectName(QStringLiteral("buttonGroup_") + name);
    auto* row = new QHBoxLayout(box);
    for (size_t id = 0; id < choices.size(); ++id) {
        auto* radio = new QRadioButton(tr(choices[id]), box);
        radio->setObjectName(QStringLiteral("radioButton_") + name + QLatin1Char('_') +
                             QString::fromLatin1(choices[id]));
        group->addButton(radio, static_cast<int>(id));
        row->addWidget(radio);
    }
    row->addStretch();
    choice_groups_.append(box);
    return box;
}

// ---- host calls -----------------------------------------------------------------------------

void Widget_SignalLayerChecks::changeJobAndStep(const QString& new_job, const QString& new_step) {
    LOG(INFO) << "Widget_SignalLayerChecks::changeJobAndStep function exec before"
              << " old job :" << job_.toStdString() << " new job :" << new_job.toStdString()
              << "old step :" << step_.toStdString() << "new step :" << new_step.toStdString();
    job_ = new_job;
    step_ = new_step;
    controls_->setJob(job_);
    LOG(INFO) << "Widget_SignalLayerChecks::changeJobAndStep function exec end"
              << " old job :" << job_.toStdString() << " new job :" << new_job.toStdString()
              << "old step :" << step_.toStdString() << "new step :" << new_step.toStdString();
}

void Widget_SignalLayerChecks::setAffectedLayers(const QStringList& layers) {
    controls_->layerEdit()->setText(layers.join(QLatin1Char(';')));
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
    form.apply_to = apply_to_->checkedId();
    form.missing_pads = missing_pads_->checkedId();
    form.compensated_rout = compensated_rout_->checkedId();
    form.sm_spacing = sm_spacing_->checkedId();
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
    auto check = [](QButtonGroup* group, int id) {
        if (QAbstractButton* button = group->button(id)) {
            button->setChecked(true);
        }
    };
    check(apply_to_, form.apply_to);
    check(missing_pads_, form.missing_pads);
    check(compensated_rout_, form.compensated_rout);
    check(sm_spacing_, form.sm_spacing);
}

QString Widget_SignalLayerChecks::getSignalLayerParams() const {
    return wc::signalLayerParams(form());
}

int Widget_SignalLayerChecks::getTestListCnt() const {
    return wc::checkedSignalTestCount(form());
}

// ---- slots in the order the user meets them -------------------------------------------------

void Widget_SignalLayerChecks::on_Layer_clicked() {
    WC_GUARDED({ controls_->showLayerPopup(); });
}

void Widget_SignalLayerChecks::on_m_pERFPB_clicked() {
    WC_GUARDED({ controls_->showErfPopup(); });
}

void Widget_SignalLayerChecks::on_Ranges_clicked() {
    WC_GUARDED({ openRangeEditor(); });
}

void Widget_SignalLayerChecks::on_RunGlobally_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeGlobal);
        signalLayerChecks(wc::ScopeGlobal);
    });
}

void Widget_SignalLayerChecks::on_RunScreen_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeScreen);
        signalLayerChecks(wc::ScopeScreen);
    });
}

void Widget_SignalLayerChecks::on_RunProfile_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeProfile);
        signalLayerChecks(wc::ScopeProfile);
    });
}

void Widget_SignalLayerChecks::on_ViewResult_clicked() {
    WC_GUARDED({ showResultsViewer(true); });
}

void Widget_SignalLayerChecks::on_Close_clicked() {
    WC_GUARDED({ close(); });
}

void Widget_SignalLayerChecks::on_m_pSaveAsPB_clicked() {
    WC_GUARDED({
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
    });
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
    return wc::ParameterSetStore(kRangeKey).exists(name);
}

void Widget_SignalLayerChecks::readConfigJson() {
    // Nothing: parameters come back only from templates and database results (kept on purpose).
}

// ---- the run --------------------------------------------------------------------------------

void Widget_SignalLayerChecks::signalLayerChecks(int scope) {
    if (wc::BackgroundRun::activeFor(this)) {
        return;  // a second click while this dialog's run is under way
    }
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
    const int run_scope = wc::runScope(scope, apply_to_->checkedId() == 1);
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
    params = wc::signalCheckParams(form(), handle_);
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
    const std::string job = job_.toStdString();
    const std::string step = step_.toStdString();
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
    controls_->setStatus(tr(wc::layersProcessedText(processed_layers_).toUtf8().constData()));
    showResultsViewer(false);
}

void Widget_SignalLayerChecks::runOnService(const signal_check_params& params,
                                            const std::vector<signal_layers_checks_list>& tests,
                                            int scope) {
    Korvo::CheckList::signal_check_request request;
    request.job = job_.toStdString();
    request.step = step_.toStdString();
    request.job_folder =
        (Common::getPath_database() + QStringLiteral("/job/") + job_).toStdString();
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
    controls_->setStatus(QString::number(processed_layers_) + tr(" layers were processed"));
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

void Widget_SignalLayerChecks::on_SaveToDb_clicked() {
    WC_GUARDED({ signalLayerCheckResult2DB(); });
}

void Widget_SignalLayerChecks::signalLayerCheckResult2DB() {
    if (!db_connected_ || processed_layers_ == 0) {
        LOG(ERROR) << "nothing saved: " << (db_connected_ ? "no result" : "no database");
        information(tr("Save 2 db failed"));
        return;
    }
    Korvo::API::dms_signal_check_params record;
    record.job = job_.toStdString();
    record.step = step_.toStdString();
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
            browser_ = Quorin::DBS_API::createCheckResultBrowser(this);
            connect(browser_, SIGNAL(send_check_id_text(QString&)), this,
                    SLOT(get_analysis_result_from_db(QString&)));
            connect(browser_, SIGNAL(send_tq_check_id_text(QString&)), this,
                    SLOT(get_tq_analysis_result_from_db(QString&)));
            connect(browser_, SIGNAL(send_load_index(int)), this, SLOT(refresh_load_result(int)));
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
    controls_->setStatus(tr(wc::layersProcessedText(processed_layers_).toUtf8().constData()));
    showResultsViewer(true);
}

void Widget_SignalLayerChecks::viewSetShowResult() {
    WC_GUARDED({
        published_ = Korvo::Cache::common_cache::instance()->getSignalResult();
        result_ = *published_;
        processed_layers_ = static_cast<int>(result_.size());
        setLayerWithinCheckInfo();
        controls_->setStatus(tr(wc::layersProcessedText(processed_layers_, wc::CountWording::Viewer)
                                    .toUtf8()
                                    .constData()));
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

// A run refreshes a viewer that is already open; the view button opens it.
void Widget_SignalLayerChecks::showResultsViewer(bool open) {
    if (!published_) {
        publishResult();
    }
    if (viewer_.isNull()) {
        if (!open) {
            return;
        }
        auto* host = static_cast<QWidget*>(const_cast<void*>(handle_));
        viewer_ = new Widget_ResultsViewer(0, host, published_);
        viewer_->setJobAndStep(job_, step_);
        connect(this, &Widget_SignalLayerChecks::unit_changed, viewer_,
                &Widget_ResultsViewer::change_unit);
        connect(viewer_, &Widget_ResultsViewer::Signal_check_raise, this, [this] {
            show();
            raise();
            activateWindow();
        });
    } else {
        viewer_->RefreshSignalLayerChecksData(published_);
    }
    if (open || viewer_->isVisible()) {
        viewer_->show();
        viewer_->raise();
    }
}

void Widget_SignalLayerChecks::openRangeEditor() {
    Widget_Ranges::openFor(ranges_, this, handle_, kRangeKey, "Signal Layer Check");
}

// ---- language and units ---------------------------------------------------------------------

void Widget_SignalLayerChecks::change_language() {
    WC_GUARDED({
        controls_->changeLanguage();
        distances_->changeLanguage();
        test_group_->setTitle(tr("Test List"));
        for (int test = 0; test < wc::kSignalTestCount; ++test) {
            tests_[test]->setText(
                tr(wc::signalTestLabel(static_cast<signal_layers_checks_list>(test))
                       .toUtf8()
                       .constData()));
        }
        const char* titles[] = {"Apply to", "Check Missing Pads for Drills", "Use Compensated Rout",
                                "Sort Spacing by Solder Mask"};
        for (int i = 0; i < choice_groups_.size(); ++i) {
            choice_groups_[i]->setTitle(tr(titles[i]));
        }
        for (QButtonGroup* group : {apply_to_, missing_pads_, compensated_rout_, sm_spacing_}) {
            for (QAbstractButton* button : group->buttons()) {
                const QString choice = button->objectName().section(QLatin1Char('_'), -1);
                button->setText(tr(choice.toUtf8().constData()));
            }
        }
        save_db_->setText(tr("Save"));
        load_db_->setText(tr("Load"));
        close_->setText(tr("Close"));
        setWindowTitle(tr("Signal Layer Check"));
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

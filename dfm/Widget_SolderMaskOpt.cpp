#include "Widget_SolderMaskOpt.h"

#include <glog/logging.h>

#include <QCheckBox>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "Korvo_API.h"
#include "analysis/ResultWindows.h"
#include "dfm/RangeTableBox.h"
#include "frame/BackgroundRun.h"
#include "frame/DialogShell.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/OptimisationRun.h"
#include "frame/ParameterSetActions.h"
#include "frame/RangeMap.h"
#include "frame/RunControls.h"
#include "frame/UnitChange.h"

namespace {

using Korvo::API::dfm_range_value;
using Korvo::API::solder_mask_DFM_op_items;
using Params = Korvo::API::solder_mask_DFM_params;

const QString kRangeKey = QStringLiteral("SolderMaskOptRanges");
const char* const kTitle = QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Solder Mask Optimization");
const char* const kTerminated =
    QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "SolderMask opt terminated");

}  // namespace

Widget_SolderMaskOpt::Widget_SolderMaskOpt(const QString& job, const QString& step, QWidget* parent)
    : QWidget(parent, Qt::Window),
      shell_(
          new wc::DialogShell(this, parent, job, step,
                              wc::spacedLabels(wc::runOptions(
                                  kRangeKey, QStringLiteral(".type=solder_mask&context=board"))))),
      controls_(&shell_->controls()),
      windows_(std::make_unique<wc::ResultWindows>(*shell_)),
      result_(std::make_shared<const Result>()) {
    initSolderMaskOpt();
}

Widget_SolderMaskOpt::~Widget_SolderMaskOpt() = default;

void Widget_SolderMaskOpt::initSolderMaskOpt() {
    controls_->viewButton()->setIcon(QIcon(QStringLiteral(":/Widget_Common/Resources/zoom.png")));
    form_.setupUi(this, shell_->handle());

    summary_ = new QLabel(this);
    summary_->setObjectName(QStringLiteral("label_Summary"));
    summary_->setFixedWidth(24);
    summary_->setAlignment(Qt::AlignCenter);
    changes_ = new QLabel(this);
    changes_->setObjectName(QStringLiteral("label_Changes"));
    wc::setSourceText(this, this, kTitle);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeLayerRow());
    layout->addLayout(controls_->makeErfRow());
    layout->addWidget(form_.pages);
    controls_->addClosingRows(layout, {changes_, summary_});
    wireUp();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
}

void Widget_SolderMaskOpt::wireUp() {
    wc::RunControls::Callbacks callbacks;
    callbacks.run = [this](int scope) { solderMaskOpt(scope); };
    callbacks.view = [this] { showViewer(true); };
    callbacks.ranges = [this] { windows_->openRanges(this, kTitle); };
    controls_->connectTo(callbacks, __FILE__, __LINE__);
    wc::ParameterSetActions& sets = shell_->useParameterSets([this] { return parameterWidgets(); });
    connect(&sets, &wc::ParameterSetActions::saved, this,
            &Widget_SolderMaskOpt::send_Sel_Template_Name);
    connect(&sets, &wc::ParameterSetActions::loaded, this, [this] {
        form_.smd->restoreEditors();
        form_.gas->restoreEditors();
    });
    connect(form_.advance, &QCheckBox::stateChanged, this,
            &Widget_SolderMaskOpt::on_m_pAdvancedSurplusCB_stateChanged);
    connect(form_.smd->addButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_AddTableRowPB_Clicked);
    connect(form_.smd->deleteButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_DeleteTableRowPB_Clicked);
    connect(form_.gas->addButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_addgastablerowpb_clicked);
    connect(form_.gas->deleteButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_deletegastablerowpb_clicked);
    // Any change of a parameter makes the shown result stale.
    for (wc::RangeTableBox* table : {form_.smd, form_.gas}) {
        connect(table, &wc::RangeTableBox::changed, controls_, &wc::RunControls::markStale);
    }
    controls_->markStaleOnChange(form_.changeSources() << controls_->layerEdit());
}

// ---- the form -------------------------------------------------------------------------------

QList<QObject*> Widget_SolderMaskOpt::parameterWidgets() const {
    return form_.parameterWidgets();
}

void Widget_SolderMaskOpt::setAffectedLayers(const QStringList& layers) {
    setLayerText(layers.join(QLatin1Char(';')));
}

void Widget_SolderMaskOpt::setLayerText(const QString& text) {
    controls_->layerEdit()->setText(text);
    controls_->markStale();
}

void Widget_SolderMaskOpt::setErfValues(const QString& name) {
    WC_GUARDED({ shell_->setErfValues(name); });
}

void Widget_SolderMaskOpt::Widget_raise() {
    show();
    raise();
    activateWindow();
}

void Widget_SolderMaskOpt::closeDialog() {
    close();
}

wc::RangeRows Widget_SolderMaskOpt::smdCompensateRows() const {
    return form_.smd->rows();
}

wc::RangeRows Widget_SolderMaskOpt::gasRows() const {
    return form_.gas->rows();
}

void Widget_SolderMaskOpt::setTableRow(const wc::RangeRows& rows) {
    form_.smd->setRows(rows);
}

void Widget_SolderMaskOpt::setgastablerow(const wc::RangeRows& rows) {
    form_.gas->setRows(rows);
}

// ---- slots in the order the user meets them -------------------------------------------------

void Widget_SolderMaskOpt::UpdateJobStep(const QString& job, const QString& step) {
    WC_GUARDED({ shell_->updateJobStep(job, step); });
}

WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pLayerPB_clicked, controls_->openLayerPopup())
WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_ERF_clicked, controls_->openErfPopup())
WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pSaveAsPB_clicked, controls_->saveAs())

void Widget_SolderMaskOpt::on_m_pAdvancedSurplusCB_stateChanged(int state) {
    WC_GUARDED({ form_.advanced_group->setEnabled(state == Qt::Checked); });
}

void Widget_SolderMaskOpt::on_AddTableRowPB_Clicked() {
    WC_GUARDED({ form_.smd->addRow(); });
}

void Widget_SolderMaskOpt::on_DeleteTableRowPB_Clicked() {
    WC_GUARDED({ form_.smd->deleteRow(); });
}

void Widget_SolderMaskOpt::on_addgastablerowpb_clicked() {
    WC_GUARDED({ form_.gas->addRow(); });
}

void Widget_SolderMaskOpt::on_deletegastablerowpb_clicked() {
    WC_GUARDED({ form_.gas->deleteRow(); });
}

WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pRangesPB_clicked, controls_->openRanges())
WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pRunGlobalPB_clicked, controls_->run(wc::ScopeGlobal))
WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pScreenOnlyPB_clicked, controls_->run(wc::ScopeScreen))
WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pInsideProfilePB_clicked,
                controls_->run(wc::ScopeProfile))
WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pViewResultPB_clicked, controls_->view())
WC_FORWARD_SLOT(Widget_SolderMaskOpt, on_m_pClosePB_clicked, controls_->close())

void Widget_SolderMaskOpt::change_viewbtn_stylesheet() {
    controls_->markStale();
}

void Widget_SolderMaskOpt::mouseMoveEvent(QMouseEvent* event) {
    form_.fields->commitPendingOnLeave(event->pos());
    QWidget::mouseMoveEvent(event);
}

// ---- the run --------------------------------------------------------------------------------

void Widget_SolderMaskOpt::solderMaskOpt(int scope) {
    if (!Judge_Lineedit_Legality()) {
        return;
    }
    controls_->setStatus(QString());
    const std::vector<std::string> layers = getCheckLayerList();
    if (layers.empty()) {
        controls_->setStatus(tr("No layers were processed"));
        return;
    }
    Params params;
    set_sm_dfm_params(params, scope);
    if (!judgeEngineValues(params)) {
        return;
    }
    controls_->rememberScope(params.scope);

    wc::OptimisationTexts texts;
    texts.terminated = kTerminated;
    texts.processed = QT_TR_N_NOOP("%n layers were processed");
    const std::string job = shell_->job().toStdString();
    const std::string step = shell_->step().toStdString();
    Result result;
    const wc::OptimisationOutcome outcome = wc::runOptimisation(
        *controls_, this, "Widget_SolderMaskOpt.cpp", texts, shell_->job(), layers, result,
        [job, step, params](const std::vector<std::string>& run_layers, Result& out,
                            Korvo::COMMON::progress_value<void>* progress) {
            return Korvo::API::solder_mask_DFM_op(job, step, run_layers, params, out, progress);
        });
    if (outcome.dialog_gone) {
        return;  // nothing of this object may be touched any more
    }
    if (!outcome.engine_ok) {
        LOG(ERROR) << "solder_mask_DFM_op did not succeed on job " << job;
    }
    // The viewer may still show the previous result: it keeps it alive until refreshed.
    result_ = std::make_shared<const Result>(std::move(result));
    has_results_ = true;
    setColor();
    setMeasureValue();
    showViewer(false);
}

bool Widget_SolderMaskOpt::Judge_Lineedit_Legality() {
    const QString problem = wc::solderMaskDisplayProblem(form_.displayChecked(), shell_->handle());
    if (problem.isEmpty()) {
        return true;
    }
    LOG(INFO) << problem.toStdString();
    information(tr(problem.toUtf8().constData()));
    return false;
}

std::vector<std::string> Widget_SolderMaskOpt::getCheckLayerList() {
    const wc::LayerResolution resolution = controls_->resolveLayerField();
    for (const QString& name : resolution.missing) {
        QMessageBox::warning(this, tr("WARNING!"), name + tr(" is not exists !"));
    }
    return resolution.layers;
}

void Widget_SolderMaskOpt::set_sm_dfm_params(Params& params, int scope) const {
    form_.fill(params, shell_->handle());
    params.ranges = wc::buildRangeMap<solder_mask_DFM_op_items, dfm_range_value>(
        kRangeKey.toStdString(), wc::toDfmRangeValue, wc::RangeLookup::ByRow);
    params.scope = wc::runScope(scope, !form_.appliesToAll());
}

bool Widget_SolderMaskOpt::judgeEngineValues(const Params& params) {
    const QString problem =
        wc::solderMaskEngineProblem(params, form_.engineChecked(), shell_->handle());
    if (problem.isEmpty()) {
        return true;
    }
    LOG(INFO) << problem.toStdString();
    information(tr(problem.toUtf8().constData()));
    return false;
}

// The summary label by the worst severity of the result.
void Widget_SolderMaskOpt::setColor() {
    const wc::OptSummary summary = wc::summariseSolderMaskOpt(*result_);
    if (summary.red > 0) {
        summary_->setText(QStringLiteral("!!"));
        summary_->setStyleSheet(QStringLiteral("QLabel{background:red;}"));
    } else if (summary.yellow > 0) {
        summary_->setText(QStringLiteral("!"));
        summary_->setStyleSheet(QStringLiteral("QLabel{background:yellow;}"));
    } else if (summary.green > 0) {
        summary_->setText(QString());
        summary_->setStyleSheet(QStringLiteral("QLabel{background:green;}"));
    } else {
        summary_->setText(QString());
        summary_->setStyleSheet(QString());
    }
}

// How many changes the engine made or reports.
void Widget_SolderMaskOpt::setMeasureValue() {
    changes_->setText(tr("Changes: ") +
                      QString::number(wc::summariseSolderMaskOpt(*result_).total()));
}

// The view button opens the viewer; a run refreshes a viewer that exists, shown or not.
void Widget_SolderMaskOpt::showViewer(bool open) {
    windows_->showViewer(
        this, open, &Widget_ResultsViewer::SolderMask_DFM_raise,
        [this] {
            return new Widget_ResultsViewer(8, shell_->host(), wc::SharedResult<Result>(result_));
        },
        [this](Widget_ResultsViewer& viewer) {
            viewer.RefreshSolderMaskOptData(wc::SharedResult<Result>(result_));
        });
}

// ---- language and units ---------------------------------------------------------------------

void Widget_SolderMaskOpt::change_language() {
    WC_GUARDED({
        wc::retranslate(this);
        form_.fields->changeLanguage();
    });
}

void Widget_SolderMaskOpt::change_units() {
    WC_GUARDED({
        form_.fields->changeUnit();
        wc::changeZeUnits(shell_->handle(), form_.smd->cells() + form_.gas->cells());
        emit unit_changed();
    });
}

void Widget_SolderMaskOpt::information(const QString& text) {
    QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
}

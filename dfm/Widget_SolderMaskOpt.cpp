#include "Widget_SolderMaskOpt.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

#include "Korvo_API.h"
#include "ZeLineEdit.h"
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
using Korvo::API::solder_mask_DFM_params;
using Params = solder_mask_DFM_params;

const QString kRangeKey = QStringLiteral("SolderMaskOptRanges");
const char* const kTitle = QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Solder Mask Optimization");
const char* const kTerminated =
    QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "SolderMask opt terminated");
// Fields the run checks in engine units are not limited when typed.
constexpr double kNoLimit = 1000000.0;

enum Row {
    BridgeSize,
    ClearanceMin,
    ClearanceOpt,
    CoverageMin,
    CoverageOpt,
    MaxOversizeClearance,
    IntersectWidth,
    CutSurplusCoverage,
    CutSurplusClearance,
    SmdSurplusCoverage,
    SmdSurplusClearance,
    BgaSurplusCoverage,
    BgaSurplusClearance,
    FlowAdd,
    FlowDel,
    GasNoDrill,
    GasHasDrill,
    PartialGasResize,
    PartialClearance,
    PadInSurfaceClearance,
};

// Defaults and limits in mil; the upper limit is the one the run checks before it starts.
const std::vector<wc::FieldRow<Params>>& fieldRows() {
    static const std::vector<wc::FieldRow<Params>> rows = {
        {"Bridge Size :", "bridge_size", "BridgeSize", 4.0, 0.0, 20.0, "4", &Params::bridge_size},
        {"Clearance Min :", "clearance_min", "ClearanceMin", 3.0, 0.0, 100.0, "3",
         &Params::clearance_min},
        {"Clearance Opt", "clearance_opt", "ClearanceOpt", 5.0, 0.0, 200.0, "5",
         &Params::clearance_opt},
        {"Coverage Min:", "coverage_min", "CoverageMin", 3.0, 0.0, 20.0, "3",
         &Params::coverage_min},
        {"Coverage Opt", "coverage_opt", "CoverageOpt", 5.0, 0.0, 270.0, "5",
         &Params::coverage_opt},
        {"Max Oversize Clearance :", "max_oversize_clearance", "MaxOversizeClearance", 6.0, 0.0,
         kNoLimit, "6", &Params::max_oversize_clearance},
        {"Intersect Width :", "intersect_width", "IntersectWidth", 8.0, 0.0, kNoLimit, "8",
         &Params::intersect_width},
        {"Cut Surplus Coverage :", "cut_surplus_coverage", "CutSurplusCoverage", 0.5, 0.0, kNoLimit,
         "0.5", &Params::cut_surplus_coverage},
        {"Cut Surplus Clearance :", "cut_surplus_clearance", "CutSurplusClearance", 0.5, 0.0,
         kNoLimit, "0.5", &Params::cut_surplus_clearance},
        {"SMD Surplus Coverage  :", "smd_surplus_coverage", "SMDSurplusCoverage", 0.5, 0.0,
         kNoLimit, "0.5", &Params::smd_surplus_coverage},
        {"SMD Surplus Clearance :", "smd_surplus_clearance", "SMDSurplusClearance", 0.5, 0.0,
         kNoLimit, "0.5", &Params::smd_surplus_clearance},
        {"BGA Surplus Coverage  :", "bga_surplus_coverage", "BGASurplusCoverage", 0.5, 0.0,
         kNoLimit, "0.5", &Params::bga_surplus_coverage},
        {"BGA Surplus Clearance :", "bga_surplus_clearance", "BGASurplusClearance", 0.5, 0.0,
         kNoLimit, "0.5", &Params::bga_surplus_clearance},
        {"Prevent Vertical Flow Add :", "prevent_vertical_flow_add", "PreventVerticalFlowAdd", 0.0,
         -kNoLimit, kNoLimit, "0", &Params::prevent_vertical_flow_add},
        {"Prevent Vertical Flow Del :", "prevent_vertical_flow_del", "PreventVerticalFlowDel", 0.0,
         0.0, kNoLimit, "0", &Params::prevent_vertical_flow_delete},
        {"Gas Resize(No Drill) :", "gas_resize_no_drill", "GasResizeNoDrill", 0.0, 0.0, kNoLimit,
         "0", &Params::gas_resize_without_drill},
        {"Gas Resize(Has Drill) :", "gas_resize_has_drill", "GasResizeHasDrill", 0.0, 0.0, kNoLimit,
         "0", &Params::gas_resize_with_drill},
        {"Partial&Gas Resize :", "partial_gas_resize", "PartialGasResize", 0.0, 0.0, kNoLimit, "0",
         &Params::partial_and_gas_resize},
        {"Partial Clearance :", "partial_clearance", "PartialClearance", 0.0, 0.0, kNoLimit, "0",
         &Params::partial_clearance},
        {"Pad in Surface Clearance:", "pad_in_surface_clearance", "PadInSurfaceClearance", 5.0, 0.0,
         270.0, "5", &Params::pad_in_surface_clearance},
    };
    return rows;
}

// The first round of checks, in the order the run makes them.
const Row kDisplayChecked[] = {BridgeSize,   ClearanceMin, CoverageMin,
                               ClearanceOpt, CoverageOpt,  PadInSurfaceClearance};

enum Choice { UseExistingMask, IsRound, ApplyTo, FanShave, Pth, DoResize, UseShaves };

struct ChoiceSpec {
    const char* label;
    const char* key;
    const char* first;
    const char* second;
};

// Every choice starts on its first answer.
const ChoiceSpec kChoices[] = {
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Use Existing Mask"), "UseExistingMask",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Yes"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "No")},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Is Round"), "IsRound",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Yes"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "No")},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Apply to"), "ApplyTo",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "All"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Selected")},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Fan Shave:"), "FanShave",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Yes"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "No")},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "PTH:"), "PTH",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Yes"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "No")},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Do Resize"), "DoResize",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Yes"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "No")},
    {QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Use Shaves"), "UseShaves",
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "Yes"),
     QT_TRANSLATE_NOOP("Widget_SolderMaskOpt", "No")},
};

}  // namespace

Widget_SolderMaskOpt::Widget_SolderMaskOpt(const QString& job, const QString& step, QWidget* parent)
    : QWidget(parent, Qt::Window), result_(std::make_shared<const Result>()) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    wc::RunControlsOptions options;
    options.range_key = kRangeKey;
    options.layer_text = QStringLiteral(".type=solder_mask&context=board");
    shell_ = new wc::DialogShell(this, parent, job, step, wc::spacedLabels(options));
    controls_ = &shell_->controls();
    windows_ = std::make_unique<wc::ResultWindows>(*shell_);
    initSolderMaskOpt();
}

Widget_SolderMaskOpt::~Widget_SolderMaskOpt() = default;

void Widget_SolderMaskOpt::initSolderMaskOpt() {
    controls_->viewButton()->setIcon(QIcon(QStringLiteral(":/Widget_Common/Resources/zoom.png")));
    fields_ = std::make_unique<wc::FieldTable<Params>>(this, shell_->handle(), fieldRows());
    wc::setSourceToolTip(this, fields_->edit(ClearanceOpt), QT_TR_NOOP("Clearance Opt"));
    wc::setSourceToolTip(this, fields_->edit(CoverageOpt), QT_TR_NOOP("Coverage Opt"));

    pages_ = new QTabWidget(this);
    pages_->setObjectName(QStringLiteral("tabWidget_Pages"));
    pages_->addTab(makeMainPage(), QString());
    pages_->addTab(makeAdvancedPage(), QString());
    wc::setSourceItems(this, pages_, {QT_TR_NOOP("Main"), QT_TR_NOOP("Advanced")});

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
    layout->addWidget(pages_);
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
        smd_->restoreEditors();
        gas_->restoreEditors();
    });
    connect(advance_, &QCheckBox::stateChanged, this,
            &Widget_SolderMaskOpt::on_m_pAdvancedSurplusCB_stateChanged);
    connect(smd_->addButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_AddTableRowPB_Clicked);
    connect(smd_->deleteButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_DeleteTableRowPB_Clicked);
    connect(gas_->addButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_addgastablerowpb_clicked);
    connect(gas_->deleteButton(), &QPushButton::clicked, this,
            &Widget_SolderMaskOpt::on_deletegastablerowpb_clicked);
    // Any change of a parameter makes the shown result stale.
    for (wc::RangeTableBox* table : {smd_, gas_}) {
        connect(table, &wc::RangeTableBox::changed, controls_, &wc::RunControls::markStale);
    }
    QList<QObject*> parameters = fields_->editObjects();
    for (QButtonGroup* group : choices_) {
        parameters.append(group);
    }
    controls_->markStaleOnChange(parameters << advance_ << controls_->layerEdit());
}

QWidget* Widget_SolderMaskOpt::makeMainPage() {
    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("page_Main"));
    auto* grid = new QGridLayout;
    auto* opt_header = new QLabel(page);
    opt_header->setObjectName(QStringLiteral("label_OptHeader"));
    wc::setSourceText(this, opt_header, QT_TR_NOOP("Opt :"));
    grid->addWidget(opt_header, 0, 3);
    int line = 1;
    auto place = [&](int row, int column) {
        grid->addWidget(fields_->label(row), line, column);
        grid->addWidget(fields_->edit(row), line, column + 1);
        grid->addWidget(fields_->unitLabel(row), line, column + 2);
    };
    auto single = [&](int row) {
        place(row, 0);
        ++line;
    };
    // The optimum sits in the second column under "Opt :"; its own label names it only in the
    // tool tip.
    auto pair = [&](int min_row, int opt_row) {
        place(min_row, 0);
        grid->addWidget(fields_->edit(opt_row), line, 3);
        grid->addWidget(fields_->unitLabel(opt_row), line, 4);
        fields_->label(opt_row)->setParent(page);
        fields_->label(opt_row)->hide();
        ++line;
    };
    single(BridgeSize);
    pair(ClearanceMin, ClearanceOpt);
    pair(CoverageMin, CoverageOpt);
    for (int row : {MaxOversizeClearance, IntersectWidth, CutSurplusCoverage, CutSurplusClearance,
                    PadInSurfaceClearance}) {
        single(row);
    }

    auto* choice_grid = new QGridLayout;
    int position = 0;
    for (const ChoiceSpec& spec : kChoices) {
        const QString key = QString::fromLatin1(spec.key);
        auto* label = new QLabel(page);
        label->setObjectName(QStringLiteral("label_") + key);
        wc::setSourceText(this, label, spec.label);
        auto* group = new QButtonGroup(this);
        group->setObjectName(QStringLiteral("buttonGroup_") + key);
        auto* first = new QRadioButton(page);
        first->setObjectName(QStringLiteral("radioButton_%1_%2").arg(key, spec.first));
        auto* second = new QRadioButton(page);
        second->setObjectName(QStringLiteral("radioButton_%1_%2").arg(key, spec.second));
        wc::setSourceText(this, first, spec.first);
        wc::setSourceText(this, second, spec.second);
        group->addButton(first, 0);
        group->addButton(second, 1);
        first->setChecked(true);
        choice_grid->addWidget(label, position, 0);
        choice_grid->addWidget(first, position, 1);
        choice_grid->addWidget(second, position, 2);
        choices_.append(group);
        ++position;
    }

    grid->setColumnStretch(5, 1);
    choice_grid->setColumnStretch(3, 1);
    auto* layout = new QVBoxLayout(page);
    layout->addLayout(grid);
    layout->addLayout(choice_grid);
    layout->addStretch();
    return page;
}

QWidget* Widget_SolderMaskOpt::makeAdvancedPage() {
    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("page_Advanced"));
    advance_ = new QCheckBox(page);
    advance_->setObjectName(QStringLiteral("checkBox_Advance"));
    wc::setSourceText(this, advance_, QT_TR_NOOP("Advance"));
    advanced_group_ = new QGroupBox(page);
    advanced_group_->setObjectName(QStringLiteral("groupBox_AdvancedSurplus"));
    wc::setSourceText(this, advanced_group_, QT_TR_NOOP("Advanced Surplus"));
    auto* surplus = new QGridLayout(advanced_group_);
    int line = 0;
    for (int row :
         {SmdSurplusCoverage, SmdSurplusClearance, BgaSurplusCoverage, BgaSurplusClearance}) {
        surplus->addWidget(fields_->label(row), line, 0);
        surplus->addWidget(fields_->edit(row), line, 1);
        surplus->addWidget(fields_->unitLabel(row), line, 2);
        ++line;
    }
    advanced_group_->setEnabled(false);

    auto* grid = new QGridLayout;
    line = 0;
    for (int row :
         {FlowAdd, FlowDel, GasNoDrill, GasHasDrill, PartialGasResize, PartialClearance}) {
        grid->addWidget(fields_->label(row), line, 0);
        grid->addWidget(fields_->edit(row), line, 1);
        grid->addWidget(fields_->unitLabel(row), line, 2);
        ++line;
    }

    smd_ = new wc::RangeTableBox(this, QStringLiteral("SMDCompensateRange"), QStringLiteral("SMD"),
                                 QT_TR_NOOP("SMD Compensate Range"));
    gas_ = new wc::RangeTableBox(this, QStringLiteral("GasRange"), QStringLiteral("Gas"),
                                 QT_TR_NOOP("Gas Range"));
    auto* tables = new QHBoxLayout;
    tables->addWidget(smd_->box());
    tables->addWidget(gas_->box());

    surplus->setColumnStretch(3, 1);
    grid->setColumnStretch(3, 1);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(advance_);
    layout->addWidget(advanced_group_);
    layout->addLayout(grid);
    layout->addLayout(tables);
    return page;
}

// ---- the form -------------------------------------------------------------------------------

QList<QObject*> Widget_SolderMaskOpt::parameterWidgets() const {
    QList<QObject*> widgets = fields_->editObjects();
    for (QButtonGroup* group : choices_) {
        widgets.append(group);
    }
    widgets.append(advance_);
    widgets.append(smd_->table());
    widgets.append(gas_->table());
    return widgets;
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
    return smd_->rows();
}

wc::RangeRows Widget_SolderMaskOpt::gasRows() const {
    return gas_->rows();
}

void Widget_SolderMaskOpt::setTableRow(const wc::RangeRows& rows) {
    smd_->setRows(rows);
}

void Widget_SolderMaskOpt::setgastablerow(const wc::RangeRows& rows) {
    gas_->setRows(rows);
}

// ---- slots in the order the user meets them -------------------------------------------------

void Widget_SolderMaskOpt::UpdateJobStep(const QString& job, const QString& step) {
    WC_GUARDED({ shell_->updateJobStep(job, step); });
}

void Widget_SolderMaskOpt::on_m_pLayerPB_clicked() {
    WC_GUARDED({ controls_->showLayerPopup(); });
}

void Widget_SolderMaskOpt::on_ERF_clicked() {
    WC_GUARDED({ controls_->showErfPopup(); });
}

void Widget_SolderMaskOpt::on_m_pSaveAsPB_clicked() {
    controls_->saveAs();
}

void Widget_SolderMaskOpt::on_m_pAdvancedSurplusCB_stateChanged(int state) {
    WC_GUARDED({ advanced_group_->setEnabled(state == Qt::Checked); });
}

void Widget_SolderMaskOpt::on_AddTableRowPB_Clicked() {
    WC_GUARDED({ smd_->addRow(); });
}

void Widget_SolderMaskOpt::on_DeleteTableRowPB_Clicked() {
    WC_GUARDED({ smd_->deleteRow(); });
}

void Widget_SolderMaskOpt::on_addgastablerowpb_clicked() {
    WC_GUARDED({ gas_->addRow(); });
}

void Widget_SolderMaskOpt::on_deletegastablerowpb_clicked() {
    WC_GUARDED({ gas_->deleteRow(); });
}

void Widget_SolderMaskOpt::on_m_pRangesPB_clicked() {
    controls_->openRanges();
}

void Widget_SolderMaskOpt::on_m_pRunGlobalPB_clicked() {
    controls_->run(wc::ScopeGlobal);
}

void Widget_SolderMaskOpt::on_m_pScreenOnlyPB_clicked() {
    controls_->run(wc::ScopeScreen);
}

void Widget_SolderMaskOpt::on_m_pInsideProfilePB_clicked() {
    controls_->run(wc::ScopeProfile);
}

void Widget_SolderMaskOpt::on_m_pViewResultPB_clicked() {
    controls_->view();
}

void Widget_SolderMaskOpt::on_m_pClosePB_clicked() {
    controls_->close();
}

void Widget_SolderMaskOpt::change_viewbtn_stylesheet() {
    controls_->markStale();
}

void Widget_SolderMaskOpt::mouseMoveEvent(QMouseEvent* event) {
    fields_->commitPendingOnLeave(event->pos());
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
    std::vector<wc::LimitedText> checked;
    for (Row row : kDisplayChecked) {
        checked.push_back({fields_->edit(row)->text(), fields_->spec(row).upper_mil});
    }
    const QString problem = wc::solderMaskDisplayProblem(checked, shell_->handle());
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
    fields_->fill(params);
    auto yes = [this](Choice choice) { return choices_[choice]->checkedId() == 0; };
    params.advanced_surplus = advance_->isChecked();
    params.is_round = yes(IsRound);
    params.apply_to_all = yes(ApplyTo);
    params.use_existing_mask = yes(UseExistingMask);
    params.use_shaves = yes(UseShaves);
    params.do_resize = yes(DoResize);
    params.fan_shave = yes(FanShave);
    params.pth = yes(Pth);
    params.smd_compensate_ranges = wc::rangeTableMap(smd_->rows(), shell_->handle());
    params.gas_ranges = wc::rangeTableMap(gas_->rows(), shell_->handle());
    params.ranges = wc::buildRangeMap<solder_mask_DFM_op_items, dfm_range_value>(
        kRangeKey.toStdString(), wc::toDfmRangeValue, wc::RangeLookup::ByRow);
    params.scope = wc::runScope(scope, !yes(ApplyTo));
}

bool Widget_SolderMaskOpt::judgeEngineValues(const Params& params) {
    wc::EngineCheckedTexts texts;
    texts.flow_add = fields_->edit(FlowAdd)->text();
    texts.flow_del = fields_->edit(FlowDel)->text();
    texts.partial_clearance = fields_->edit(PartialClearance)->text();
    texts.gas_no_drill = fields_->edit(GasNoDrill)->text();
    texts.gas_has_drill = fields_->edit(GasHasDrill)->text();
    texts.partial_gas = fields_->edit(PartialGasResize)->text();
    const QString problem = wc::solderMaskEngineProblem(params, texts, shell_->handle());
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
        fields_->changeLanguage();
    });
}

void Widget_SolderMaskOpt::change_units() {
    WC_GUARDED({
        fields_->changeUnit();
        wc::changeZeUnits(shell_->handle(), smd_->cells() + gas_->cells());
        emit unit_changed();
    });
}

void Widget_SolderMaskOpt::information(const QString& text) {
    QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
}

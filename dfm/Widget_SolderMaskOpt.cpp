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
#include "analysis/Widget_Ranges.h"
#include "analysis/Widget_ResultsViewer.h"
#include "frame/BackgroundRun.h"
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
const char* const kTitle = "Solder Mask Optimization";
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
    {"Use Existing Mask", "UseExistingMask", "Yes", "No"},
    {"Is Round", "IsRound", "Yes", "No"},
    {"Apply to", "ApplyTo", "All", "Selected"},
    {"Fan Shave:", "FanShave", "Yes", "No"},
    {"PTH:", "PTH", "Yes", "No"},
    {"Do Resize", "DoResize", "Yes", "No"},
    {"Use Shaves", "UseShaves", "Yes", "No"},
};

QTableWidget* tableOfCell(QWidget* cell) {
    for (QWidget* w = cell; w != nullptr; w = w->parentWidget()) {
        if (auto* table = qobject_cast<QTableWidget*>(w)) {
            return table;
        }
    }
    return nullptr;
}

}  // namespace

Widget_SolderMaskOpt::Widget_SolderMaskOpt(const QString& job, const QString& step, QWidget* parent)
    : QWidget(parent, Qt::Window),
      handle_(parent),
      host_(parent),
      job_(job),
      step_(step),
      result_(std::make_shared<const Result>()) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initSolderMaskOpt();
}

Widget_SolderMaskOpt::~Widget_SolderMaskOpt() = default;

void Widget_SolderMaskOpt::initSolderMaskOpt() {
    wc::RunControlsOptions options;
    options.range_key = kRangeKey;
    options.layer_text = QStringLiteral(".type=solder_mask&context=board");
    controls_ = new wc::RunControls(this, wc::spacedLabels(options));
    controls_->setJob(job_);
    controls_->viewButton()->setIcon(QIcon(QStringLiteral(":/Widget_Common/Resources/zoom.png")));

    fields_ = std::make_unique<wc::FieldTable<Params>>(this, handle_, fieldRows());

    pages_ = new QTabWidget(this);
    pages_->setObjectName(QStringLiteral("tabWidget_Pages"));
    pages_->addTab(makeMainPage(), QString());
    pages_->addTab(makeAdvancedPage(), QString());

    summary_ = new QLabel(this);
    summary_->setObjectName(QStringLiteral("label_Summary"));
    summary_->setFixedWidth(24);
    summary_->setAlignment(Qt::AlignCenter);
    changes_ = new QLabel(this);
    changes_->setObjectName(QStringLiteral("label_Changes"));
    close_ = new QPushButton(this);
    close_->setObjectName(QStringLiteral("pushButton_Close"));

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeLayerRow());
    layout->addLayout(controls_->makeErfRow());
    layout->addWidget(pages_);
    controls_->addClosingRows(layout, close_, {changes_, summary_});

    actions_ = new wc::ParameterSetActions(this, controls_, kRangeKey,
                                           [this] { return parameterWidgets(); });
    connect(actions_, &wc::ParameterSetActions::saved, this,
            &Widget_SolderMaskOpt::send_Sel_Template_Name);
    connect(actions_, &wc::ParameterSetActions::loaded, this, [this] {
        restoreTableEditors(smd_table_);
        restoreTableEditors(gas_table_);
    });

    controls_->connectTo(this,
                         {{SLOT(on_m_pRunGlobalPB_clicked()), SLOT(on_m_pScreenOnlyPB_clicked()),
                           SLOT(on_m_pInsideProfilePB_clicked())},
                          SLOT(on_m_pViewResultPB_clicked()),
                          SLOT(on_m_pSaveAsPB_clicked()),
                          SLOT(on_m_pRangesPB_clicked())});
    connect(close_, SIGNAL(clicked()), this, SLOT(on_m_pClosePB_clicked()));
    connect(advance_, SIGNAL(stateChanged(int)), this,
            SLOT(on_m_pAdvancedSurplusCB_stateChanged(int)));
    connect(add_smd_, SIGNAL(clicked()), this, SLOT(on_AddTableRowPB_Clicked()));
    connect(delete_smd_, SIGNAL(clicked()), this, SLOT(on_DeleteTableRowPB_Clicked()));
    connect(add_gas_, SIGNAL(clicked()), this, SLOT(on_addgastablerowpb_clicked()));
    connect(delete_gas_, SIGNAL(clicked()), this, SLOT(on_deletegastablerowpb_clicked()));

    // Any change of a parameter makes the shown result stale.
    for (QObject* edit : fields_->editObjects()) {
        connect(edit, SIGNAL(editingFinished()), this, SLOT(change_viewbtn_stylesheet()));
    }
    for (QButtonGroup* group : choices_) {
        connect(group, SIGNAL(buttonClicked(QAbstractButton*)), this,
                SLOT(change_viewbtn_stylesheet()));
    }
    connect(advance_, SIGNAL(clicked()), this, SLOT(change_viewbtn_stylesheet()));
    connect(controls_->layerEdit(), SIGNAL(editingFinished()), this,
            SLOT(change_viewbtn_stylesheet()));

    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    applyTexts();
}

QWidget* Widget_SolderMaskOpt::makeMainPage() {
    auto* page = new QWidget(this);
    page->setObjectName(QStringLiteral("page_Main"));
    auto* grid = new QGridLayout;
    opt_header_ = new QLabel(page);
    opt_header_->setObjectName(QStringLiteral("label_OptHeader"));
    grid->addWidget(opt_header_, 0, 3);
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
        auto* group = new QButtonGroup(this);
        group->setObjectName(QStringLiteral("buttonGroup_") + key);
        auto* first = new QRadioButton(page);
        first->setObjectName(QStringLiteral("radioButton_%1_%2").arg(key, spec.first));
        auto* second = new QRadioButton(page);
        second->setObjectName(QStringLiteral("radioButton_%1_%2").arg(key, spec.second));
        group->addButton(first, 0);
        group->addButton(second, 1);
        first->setChecked(true);
        choice_grid->addWidget(label, position, 0);
        choice_grid->addWidget(first, position, 1);
        choice_grid->addWidget(second, position, 2);
        choice_labels_.append(label);
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
    advanced_group_ = new QGroupBox(page);
    advanced_group_->setObjectName(QStringLiteral("groupBox_AdvancedSurplus"));
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

    smd_box_ = makeTableBox(QStringLiteral("SMDCompensateRange"), QStringLiteral("SMD"), smd_table_,
                            add_smd_, delete_smd_);
    gas_box_ = makeTableBox(QStringLiteral("GasRange"), QStringLiteral("Gas"), gas_table_, add_gas_,
                            delete_gas_);
    auto* tables = new QHBoxLayout;
    tables->addWidget(smd_box_);
    tables->addWidget(gas_box_);

    surplus->setColumnStretch(3, 1);
    grid->setColumnStretch(3, 1);
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(advance_);
    layout->addWidget(advanced_group_);
    layout->addLayout(grid);
    layout->addLayout(tables);
    return page;
}

QGroupBox* Widget_SolderMaskOpt::makeTableBox(const QString& key, const QString& button_key,
                                              QTableWidget*& table, QPushButton*& add,
                                              QPushButton*& remove) {
    auto* box = new QGroupBox(this);
    box->setObjectName(QStringLiteral("groupBox_") + key);
    table = new QTableWidget(0, 2, box);
    table->setObjectName(QStringLiteral("tableWidget_") + key);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->setMinimumHeight(120);
    add = new QPushButton(box);
    add->setObjectName(QStringLiteral("pushButton_Add%1Row").arg(button_key));
    remove = new QPushButton(box);
    remove->setObjectName(QStringLiteral("pushButton_Delete%1Row").arg(button_key));
    // The buttons must not take the focus from the cell whose row is to be deleted.
    add->setFocusPolicy(Qt::NoFocus);
    remove->setFocusPolicy(Qt::NoFocus);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(box);
    layout->addWidget(table);
    layout->addLayout(buttons);
    return box;
}

// Every translated text; the same at construction and on a language change.
void Widget_SolderMaskOpt::applyTexts() {
    controls_->changeLanguage();
    fields_->changeLanguage();
    fields_->edit(ClearanceOpt)->setToolTip(tr("Clearance Opt"));
    fields_->edit(CoverageOpt)->setToolTip(tr("Coverage Opt"));
    opt_header_->setText(tr("Opt :"));
    for (int i = 0; i < choices_.size(); ++i) {
        choice_labels_[i]->setText(tr(kChoices[i].label));
        choices_[i]->button(0)->setText(tr(kChoices[i].first));
        choices_[i]->button(1)->setText(tr(kChoices[i].second));
    }
    pages_->setTabText(0, tr("Main"));
    pages_->setTabText(1, tr("Advanced"));
    advance_->setText(tr("Advance"));
    advanced_group_->setTitle(tr("Advanced Surplus"));
    smd_box_->setTitle(tr("SMD Compensate Range"));
    gas_box_->setTitle(tr("Gas Range"));
    for (QTableWidget* table : {smd_table_, gas_table_}) {
        table->setHorizontalHeaderLabels({tr("Range"), tr("Value")});
    }
    for (QPushButton* add : {add_smd_, add_gas_}) {
        add->setText(tr("Add"));
    }
    for (QPushButton* remove : {delete_smd_, delete_gas_}) {
        remove->setText(tr("Delete"));
    }
    close_->setText(tr("Close"));
    setWindowTitle(tr(kTitle));
}

// ---- the form -------------------------------------------------------------------------------

QList<QObject*> Widget_SolderMaskOpt::parameterWidgets() const {
    QList<QObject*> widgets = fields_->editObjects();
    for (QButtonGroup* group : choices_) {
        widgets.append(group);
    }
    widgets.append(advance_);
    widgets.append(smd_table_);
    widgets.append(gas_table_);
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
    WC_GUARDED({ actions_->load(name); });
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
    return rowsOf(smd_table_);
}

wc::RangeRows Widget_SolderMaskOpt::gasRows() const {
    return rowsOf(gas_table_);
}

void Widget_SolderMaskOpt::setTableRow(const wc::RangeRows& rows) {
    setRows(smd_table_, rows);
}

void Widget_SolderMaskOpt::setgastablerow(const wc::RangeRows& rows) {
    setRows(gas_table_, rows);
}

// ---- slots in the order the user meets them -------------------------------------------------

void Widget_SolderMaskOpt::UpdateJobStep(const QString& job, const QString& step) {
    WC_GUARDED({
        job_ = job;
        step_ = step;
        controls_->setJob(job);
        if (!viewer_.isNull()) {
            viewer_->setJobAndStep(job, step);
        }
    });
}

void Widget_SolderMaskOpt::on_m_pLayerPB_clicked() {
    WC_GUARDED({ controls_->showLayerPopup(); });
}

void Widget_SolderMaskOpt::on_ERF_clicked() {
    WC_GUARDED({ controls_->showErfPopup(); });
}

void Widget_SolderMaskOpt::on_m_pSaveAsPB_clicked() {
    WC_GUARDED({ actions_->askName(); });
}

void Widget_SolderMaskOpt::on_m_pAdvancedSurplusCB_stateChanged(int state) {
    WC_GUARDED({ advanced_group_->setEnabled(state == Qt::Checked); });
}

void Widget_SolderMaskOpt::on_AddTableRowPB_Clicked() {
    WC_GUARDED({ addRow(smd_table_); });
}

void Widget_SolderMaskOpt::on_DeleteTableRowPB_Clicked() {
    WC_GUARDED({ deleteRow(smd_table_); });
}

void Widget_SolderMaskOpt::on_addgastablerowpb_clicked() {
    WC_GUARDED({ addRow(gas_table_); });
}

void Widget_SolderMaskOpt::on_deletegastablerowpb_clicked() {
    WC_GUARDED({ deleteRow(gas_table_); });
}

void Widget_SolderMaskOpt::on_m_pRangesPB_clicked() {
    WC_GUARDED({ Widget_Ranges::openFor(ranges_, this, host_, kRangeKey, kTitle); });
}

void Widget_SolderMaskOpt::on_m_pRunGlobalPB_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeGlobal);
        solderMaskOpt(wc::ScopeGlobal);
    });
}

void Widget_SolderMaskOpt::on_m_pScreenOnlyPB_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeScreen);
        solderMaskOpt(wc::ScopeScreen);
    });
}

void Widget_SolderMaskOpt::on_m_pInsideProfilePB_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeProfile);
        solderMaskOpt(wc::ScopeProfile);
    });
}

void Widget_SolderMaskOpt::on_m_pViewResultPB_clicked() {
    WC_GUARDED({ showViewer(true); });
}

void Widget_SolderMaskOpt::on_m_pClosePB_clicked() {
    WC_GUARDED({ close(); });
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
    if (wc::BackgroundRun::activeFor(this)) {
        return;  // a second click while this dialog's run is under way
    }
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
    const std::string job = job_.toStdString();
    const std::string step = step_.toStdString();
    Result result;
    const wc::OptimisationOutcome outcome = wc::runOptimisation(
        *controls_, this, "Widget_SolderMaskOpt.cpp", texts, job_, layers, result,
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
    const QString problem = wc::solderMaskDisplayProblem(checked, handle_);
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
    params.smd_compensate_ranges = wc::rangeTableMap(rowsOf(smd_table_), handle_);
    params.gas_ranges = wc::rangeTableMap(rowsOf(gas_table_), handle_);
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
    const QString problem = wc::solderMaskEngineProblem(params, texts, handle_);
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

// The view button opens the viewer; a run refreshes a viewer that is already open.
void Widget_SolderMaskOpt::showViewer(bool open) {
    if (viewer_.isNull()) {
        if (!open) {
            return;
        }
        viewer_ = new Widget_ResultsViewer(8, host_, wc::SharedResult<Result>(result_));
        viewer_->setJobAndStep(job_, step_);
        connect(this, &Widget_SolderMaskOpt::unit_changed, viewer_,
                &Widget_ResultsViewer::change_unit);
        connect(viewer_, &Widget_ResultsViewer::SolderMask_DFM_raise, this,
                &Widget_SolderMaskOpt::Widget_raise);
    } else {
        viewer_->RefreshSolderMaskOptData(wc::SharedResult<Result>(result_));
    }
    if (open) {
        viewer_->show();
        viewer_->raise();
    }
}

// ---- range tables ---------------------------------------------------------------------------

void Widget_SolderMaskOpt::InitTableItem(QTableWidget* table, int row, const QString& range,
                                         const QString& value) {
    setTableItem(table, row, 0, range);
    setTableItem(table, row, 1, value);
}

void Widget_SolderMaskOpt::setTableItem(QTableWidget* table, int row, int column,
                                        const QString& text) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled);
    // The editor paints the text; the item only carries it.
    item->setForeground(QBrush(Qt::transparent));
    table->setItem(row, column, item);
    auto* edit = new Korvo::UIAPI::ZeLineEdit(text, Korvo::UIAPI::ZeE_Float, this);
    edit->setObjectName(
        table->objectName().replace(QStringLiteral("tableWidget_"), QStringLiteral("lineEdit_")) +
        QStringLiteral("Cell"));
    edit->setAutoFillBackground(true);
    table->setCellWidget(row, column, edit);
    connect(edit, &QLineEdit::textChanged, this, [edit](const QString& shown) {
        QTableWidget* owner = tableOfCell(edit);
        if (owner == nullptr) {
            return;
        }
        for (int r = 0; r < owner->rowCount(); ++r) {
            for (int c = 0; c < owner->columnCount(); ++c) {
                if (owner->cellWidget(r, c) == edit && owner->item(r, c) != nullptr) {
                    owner->item(r, c)->setText(shown);
                    return;
                }
            }
        }
    });
    connect(edit, SIGNAL(editingFinished()), this, SLOT(change_viewbtn_stylesheet()));
}

void Widget_SolderMaskOpt::setRows(QTableWidget* table, const wc::RangeRows& rows) {
    table->setRowCount(0);
    table->setColumnCount(2);
    table->setRowCount(rows.size());
    for (int row = 0; row < rows.size(); ++row) {
        InitTableItem(table, row, rows[row].first, rows[row].second);
    }
    controls_->markStale();
}

wc::RangeRows Widget_SolderMaskOpt::rowsOf(const QTableWidget* table) const {
    auto cell = [table](int row, int column) {
        if (auto* edit = qobject_cast<const QLineEdit*>(table->cellWidget(row, column))) {
            return edit->text();
        }
        const QTableWidgetItem* item = table->item(row, column);
        return item != nullptr ? item->text() : QString();
    };
    wc::RangeRows rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        rows.append({cell(row, 0), cell(row, 1)});
    }
    return rows;
}

void Widget_SolderMaskOpt::addRow(QTableWidget* table) {
    const int row = table->rowCount();
    table->insertRow(row);
    InitTableItem(table, row, QString(), QString());
    table->cellWidget(row, 0)->setFocus();
    controls_->markStale();
}

// Deletes the row being edited, else the current row, else the last one.
void Widget_SolderMaskOpt::deleteRow(QTableWidget* table) {
    if (table->rowCount() == 0) {
        return;
    }
    int target = table->currentRow();
    for (int row = 0; row < table->rowCount(); ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            QWidget* cell = table->cellWidget(row, column);
            if (cell != nullptr && cell->hasFocus()) {
                target = row;
            }
        }
    }
    if (target < 0 || target >= table->rowCount()) {
        target = table->rowCount() - 1;
    }
    table->removeRow(target);
    controls_->markStale();
}

void Widget_SolderMaskOpt::restoreTableEditors(QTableWidget* table) {
    wc::RangeRows rows;
    for (int row = 0; row < table->rowCount(); ++row) {
        const QTableWidgetItem* range = table->item(row, 0);
        const QTableWidgetItem* value = table->item(row, 1);
        rows.append({range != nullptr ? range->text() : QString(),
                     value != nullptr ? value->text() : QString()});
    }
    setRows(table, rows);
}

void Widget_SolderMaskOpt::changeTableData() {
    QList<Korvo::UIAPI::ZeLineEdit*> cells;
    for (QTableWidget* table : {smd_table_, gas_table_}) {
        for (int row = 0; row < table->rowCount(); ++row) {
            for (int column = 0; column < table->columnCount(); ++column) {
                if (auto* edit =
                        qobject_cast<Korvo::UIAPI::ZeLineEdit*>(table->cellWidget(row, column))) {
                    cells.append(edit);
                }
            }
        }
    }
    wc::changeZeUnits(handle_, cells);
}

// ---- language and units ---------------------------------------------------------------------

void Widget_SolderMaskOpt::change_language() {
    WC_GUARDED({ applyTexts(); });
}

void Widget_SolderMaskOpt::change_units() {
    WC_GUARDED({
        fields_->changeUnit();
        changeTableData();
        emit unit_changed();
    });
}

void Widget_SolderMaskOpt::information(const QString& text) {
    QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
}

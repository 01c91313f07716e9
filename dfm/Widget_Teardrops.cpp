#include "Widget_Teardrops.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QRegExpValidator>
#include <QVBoxLayout>

#include "Korvo_API.h"
#include "Korvo_UIAPI.h"
#include "ZeLineEdit.h"
#include "analysis/ResultWindows.h"
#include "frame/DialogShell.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/LimitCheck.h"
#include "frame/OptimisationRun.h"
#include "frame/ParameterSetActions.h"
#include "frame/RangeMap.h"
#include "frame/RecordedCalls.h"
#include "frame/RunControls.h"

namespace {

using Korvo::API::teardrop_create_DFM_op_items;
using Korvo::API::teardrop_create_DFM_op_params;
using Korvo::API::teardrop_result_map;

const QString kRangeKey = QStringLiteral("TeardropsRanges");
const char* const kTitle = QT_TRANSLATE_NOOP("Widget_Teardrops", "Advanced Teardrop Creation");

// The largest length an int32 record field holds, in mil (2^31 nm is 84,546 mil).
constexpr double kEngineReachMil = 80000.0;

enum LengthRow {
    RingMin,
    DrillMin,
    DrillMax,
    TraceMin,
    TraceMax,
    CuSpacing,
    DrillSpacing,
    OvalExcess,
    Extend,
};

// Screen order; defaults and limits in mil. Rows without a limit of their own are held to what
// the record can carry.
const std::vector<wc::FieldRow<teardrop_create_DFM_op_params>>& lengthRows() {
    using P = teardrop_create_DFM_op_params;
    static const std::vector<wc::FieldRow<P>> rows = {
        {"Ann. Ring Min:", "annular_ring_min", "AnnRingMin", 5.0, 0.0, 20.0, "5",
         &P::annular_ring_min},
        {"Drill Size Min", "drill_size_min", "DrillSizeMin", 0.0, 0.0, 100.0, "0",
         &P::drill_size_min},
        {" Max:", "drill_size_max", "DrillSizeMax", 80.0, 0.0, 200.0, "80", &P::drill_size_max},
        {"Connection Trace Width Min:", "trace_width_min", "TraceWidthMin", 0.0, 0.0,
         kEngineReachMil, "0", &P::trace_width_min},
        {" Max:", "trace_width_max", "TraceWidthMax", 15.0, 0.0, kEngineReachMil, "15",
         &P::trace_width_max},
        {"Cu. Spacing:", "copper_spacing", "CuSpacing", 5.0, 0.0, 20.0, "5", &P::copper_spacing},
        {" Drill Spacing:", "drill_spacing", "DrillSpacing", 11.0, 0.0, 270.0, "11",
         &P::drill_spacing},
        {"Oval TD > Connection Trace:", "oval_excess_over_trace", "OvalExcess", 3.0, 0.0,
         kEngineReachMil, "3", &P::oval_excess_over_trace},
        {" Extend:", "extend", "Extend", 11.0, 0.0, kEngineReachMil, "11", &P::extend},
    };
    return rows;
}

// Judge_Lineedit_Legality's order: the five limited lengths, then the rest within what the
// record can carry.
struct RangeCheck {
    LengthRow row;
    double limit_mil;
};
const RangeCheck kRangeChecks[] = {
    {RingMin, 20.0},
    {DrillMin, 100.0},
    {CuSpacing, 20.0},
    {DrillMax, 200.0},
    {DrillSpacing, 270.0},
    {TraceMin, kEngineReachMil},
    {TraceMax, kEngineReachMil},
    {OvalExcess, kEngineReachMil},
    {Extend, kEngineReachMil},
};

const QList<const char*> kTypes = {QT_TRANSLATE_NOOP("Widget_Teardrops", "Filleted"),
                                   QT_TRANSLATE_NOOP("Widget_Teardrops", "Straight"),
                                   QT_TRANSLATE_NOOP("Widget_Teardrops", "Triangular"),
                                   QT_TRANSLATE_NOOP("Widget_Teardrops", "Rounded"),
                                   QT_TRANSLATE_NOOP("Widget_Teardrops", "Oval")};

}  // namespace

namespace wc {

QString teardropRangeProblem(const void* handle, const QString& text, double limit_mil) {
    if (withinZeroTo(handle, text, limit_mil)) {
        return QString();
    }
    return QStringLiteral("The Value : ") + text + QStringLiteral(" is outside of (0,") +
           limitText(handle, limit_mil) + QStringLiteral(") !");
}

}  // namespace wc

Widget_Teardrops::Widget_Teardrops(const QString& job, const QString& step, QWidget* parent)
    : QWidget(parent, Qt::Window),
      shell_(new wc::DialogShell(this, parent, job, step,
                                 wc::spacedLabels(wc::runOptions(
                                     kRangeKey, QStringLiteral(".type=signal&context=board"))))),
      controls_(&shell_->controls()),
      windows_(std::make_unique<wc::ResultWindows>(*shell_)),
      result_(std::make_shared<const teardrop_result_map>()) {
    initTeardrops();
}

Widget_Teardrops::~Widget_Teardrops() = default;

Widget_ResultsViewer* Widget_Teardrops::resultsViewer() const {
    return windows_->viewer();
}

void Widget_Teardrops::initTeardrops() {
    const void* handle = shell_->handle();
    ratio_label_ = new QLabel(this);
    ratio_label_->setObjectName(QStringLiteral("label_LineWidthRatio"));
    wc::setSourceText(this, ratio_label_, QT_TR_NOOP("Teardrop Line Width Ratio:"));
    ratio_ = new QLineEdit(QStringLiteral("0.5"), this);
    ratio_->setObjectName(QStringLiteral("lineEdit_LineWidthRatio"));
    ratio_->setValidator(
        new QRegExpValidator(QRegExp(QStringLiteral("[0-9]*[0-9][0-9.][0-9]*[0-9]")), ratio_));
    type_label_ = new QLabel(this);
    type_label_->setObjectName(QStringLiteral("label_Type"));
    wc::setSourceText(this, type_label_, QT_TR_NOOP("Type"));
    type_ = new QComboBox(this);
    type_->setObjectName(QStringLiteral("comboBox_Type"));
    wc::setSourceItems(this, type_, kTypes);
    arc_label_ = new QLabel(this);
    arc_label_->setObjectName(QStringLiteral("label_ArcAngle"));
    wc::setSourceText(this, arc_label_, QT_TR_NOOP("Arc Angle:"));
    arc_angle_ = new QLineEdit(this);
    arc_angle_->setObjectName(QStringLiteral("lineEdit_ArcAngle"));
    // Only what the hint promises can be typed.
    arc_angle_->setValidator(
        new QRegExpValidator(QRegExp(QStringLiteral("[0-9]|1[0-9]|20")), arc_angle_));
    arc_hint_ = new QLabel(this);
    arc_hint_->setObjectName(QStringLiteral("label_ArcAngleHint"));
    wc::setSourceText(this, arc_hint_, QT_TR_NOOP("(0-20)"));

    operate_label_ = new QLabel(this);
    operate_label_->setObjectName(QStringLiteral("label_Operate"));
    wc::setSourceText(this, operate_label_, QT_TR_NOOP("Operate"));
    drilled_ = new QCheckBox(this);
    drilled_->setObjectName(QStringLiteral("checkBox_DrilledPads"));
    wc::setSourceText(this, drilled_, QT_TR_NOOP("Drilled Pads"));
    drilled_->setChecked(true);
    undrilled_ = new QCheckBox(this);
    undrilled_->setObjectName(QStringLiteral("checkBox_UndrilledPads"));
    // Spelled so on purpose.
    wc::setSourceText(this, undrilled_, QT_TR_NOOP("UNndrilled Pads"));
    undrilled_->setChecked(true);

    lengths_ =
        std::make_unique<wc::FieldTable<teardrop_create_DFM_op_params>>(this, handle, lengthRows());
    delete_old_ = wc::makeChoiceGroup(this, QStringLiteral("DeleteOld"), "Delete Old Teardrops",
                                      {"Yes", "No", "Skip"}, 0);
    apply_to_ =
        wc::makeChoiceGroup(this, QStringLiteral("ApplyTo"), "Apply to", {"All", "Selected"}, 0);
    work_mode_ =
        wc::makeChoiceGroup(this, QStringLiteral("WorkMode"), "Work Mode", {"Report", "Repair"}, 1);
    solder_mask_ = wc::makeChoiceGroup(this, QStringLiteral("ConsiderSolderMask"),
                                       "Consider Solder Mask", {"Yes", "No"}, 1);
    set_unit_ = new QLabel(this);
    set_unit_->setObjectName(QStringLiteral("label_ParameterSetUnit"));
    set_unit_->hide();
    wc::setSourceText(this, this, kTitle);

    layOut();
    wireUp();
}

// Label, field, unit; pairs of min and max share a row.
void Widget_Teardrops::layOut() {
    auto* grid = new QGridLayout;
    auto place = [&](int row, int grid_row, int column) {
        grid->addWidget(lengths_->label(row), grid_row, column);
        grid->addWidget(lengths_->edit(row), grid_row, column + 1);
        grid->addWidget(lengths_->unitLabel(row), grid_row, column + 2);
    };
    grid->addWidget(ratio_label_, 0, 0);
    grid->addWidget(ratio_, 0, 1);
    grid->addWidget(type_label_, 1, 0);
    grid->addWidget(type_, 1, 1);
    grid->addWidget(arc_label_, 2, 0);
    grid->addWidget(arc_angle_, 2, 1);
    grid->addWidget(arc_hint_, 2, 2);
    grid->addWidget(operate_label_, 3, 0);
    grid->addWidget(drilled_, 3, 1);
    grid->addWidget(undrilled_, 3, 3, 1, 2);
    place(RingMin, 4, 0);
    place(DrillMin, 5, 0);
    place(DrillMax, 5, 3);
    place(TraceMin, 6, 0);
    place(TraceMax, 6, 3);
    place(CuSpacing, 7, 0);
    place(DrillSpacing, 7, 3);
    place(OvalExcess, 8, 0);
    place(Extend, 8, 3);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(4, 1);

    auto* choices = new QGridLayout;
    choices->addWidget(delete_old_.box, 0, 0);
    choices->addWidget(apply_to_.box, 0, 1);
    choices->addWidget(work_mode_.box, 1, 0);
    choices->addWidget(solder_mask_.box, 1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeErfRow());
    layout->addLayout(grid);
    layout->addLayout(choices);
    layout->addLayout(controls_->makeLayerRow());
    controls_->addClosingRows(layout);
}

void Widget_Teardrops::wireUp() {
    wc::RunControls::Callbacks callbacks;
    callbacks.run = [this](int scope) { RunonRanges(scope); };
    callbacks.view = [this] { showResultsViewer(true); };
    callbacks.ranges = [this] { windows_->openRanges(this, kTitle); };
    controls_->connectTo(callbacks, __FILE__, __LINE__);
    wc::ParameterSetActions& sets = shell_->useParameterSets([this] { return parameterWidgets(); });
    connect(&sets, &wc::ParameterSetActions::saved, this,
            &Widget_Teardrops::send_Sel_Template_Name);
    connect(&sets, &wc::ParameterSetActions::loaded, this, [this] { fitLoadedUnit(); });
    // Any change of a parameter makes the shown result stale.
    controls_->markStaleOnChange(parameterWidgets() << controls_->layerEdit());

    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_MouseTracking);
}

// ---- host calls -----------------------------------------------------------------------------

void Widget_Teardrops::UpdateJobStep(const QString& job, const QString& step) {
    shell_->updateJobStep(job, step);
}

void Widget_Teardrops::setAffectedLayers(const QStringList& layers) {
    shell_->setAffectedLayers(layers);
}

void Widget_Teardrops::setErfValues(const QString& name) {
    WC_GUARDED({ shell_->setErfValues(name); });
}

bool Widget_Teardrops::isErfFileExist(const QString& name) const {
    return shell_->isErfFileExist(name);
}

QStringList Widget_Teardrops::get_Teardrops_ERF() const {
    return shell_->erfNames();
}

QStringList Widget_Teardrops::getDefaultLayerList() const {
    return shell_->layerNames([](const Korvo::API::layer_info& layer) {
        return layer.context == "board" && layer.type == "signal";
    });
}

// ---- the buttons ----------------------------------------------------------------------------

WC_FORWARD_SLOT(Widget_Teardrops, on_ERF_clicked, controls_->openErfPopup())

WC_FORWARD_SLOT(Widget_Teardrops, on_m_pSaveAsPB_clicked, controls_->saveAs())

WC_FORWARD_SLOT(Widget_Teardrops, on_m_pLayerPB_clicked, controls_->openLayerPopup())

WC_FORWARD_SLOT(Widget_Teardrops, on_m_pRangesPB_clicked, controls_->openRanges())
WC_FORWARD_SLOT(Widget_Teardrops, on_m_pRunGlobalPB_clicked, controls_->run(wc::ScopeGlobal))
WC_FORWARD_SLOT(Widget_Teardrops, on_m_pScreenOnlyPB_clicked, controls_->run(wc::ScopeScreen))
WC_FORWARD_SLOT(Widget_Teardrops, on_m_pInsideProfilePB_clicked, controls_->run(wc::ScopeProfile))
WC_FORWARD_SLOT(Widget_Teardrops, on_m_pViewResultPB_clicked, controls_->view())
WC_FORWARD_SLOT(Widget_Teardrops, on_m_pClosePB_clicked, controls_->close())

// ---- the run --------------------------------------------------------------------------------

void Widget_Teardrops::RunonRanges(int scope) {
    if (!islineEditsValid() || !Judge_Lineedit_Legality()) {
        return;
    }
    teardrop_create_DFM_op_params params;
    getData(params, scope);
    controls_->rememberScope(params.scope);
    const std::vector<std::string> layers = shell_->runLayers();
    if (layers.empty()) {
        controls_->setStatus(tr("No layers were processed"));
        return;
    }

    const std::string job = shell_->job().toStdString();
    const std::string step = shell_->step().toStdString();
    wc::OptimisationTexts texts;
    texts.terminated = QT_TR_NOOP("TearDrop dfm terminated");
    texts.processed = QT_TR_N_NOOP("%n layers were processed");
    teardrop_result_map fresh;
    const wc::OptimisationOutcome outcome = wc::runOptimisation(
        *controls_, this, "Widget_Teardrops", texts, shell_->job(), layers, fresh,
        [job, step, params](const std::vector<std::string>& run_layers, teardrop_result_map& out,
                            Korvo::COMMON::progress_value<void>* progress) {
            return Korvo::API::teardrop_create_DFM_op(job, step, run_layers, params, out, progress);
        });
    if (!outcome.resultToShow("teardrop_create_DFM_op")) {
        return;
    }
    result_ = std::make_shared<const teardrop_result_map>(std::move(fresh));
    processed_layers_ = layers;
    has_results_ = true;
    showResultsViewer(false);
}

// Every field but the arc angle must hold a number; the arc angle may stay empty.
bool Widget_Teardrops::islineEditsValid() {
    QList<QLineEdit*> edits{ratio_};
    for (int row = 0; row < lengths_->size(); ++row) {
        edits.append(lengths_->edit(row));
    }
    for (QLineEdit* edit : edits) {
        if (edit->text().isEmpty()) {
            information(tr("Illegal floating parameter : Empty text-box ! "));
            return false;
        }
    }
    // Half-typed text ("-", ".") is refused; a whole number the pattern would still extend
    // ("0", "12") is taken as it reads.
    for (QLineEdit* edit : edits) {
        bool number = false;
        edit->text().toDouble(&number);
        if (!number) {
            information(tr("Illegal floating parameter : ") + edit->text());
            return false;
        }
    }
    return true;
}

bool Widget_Teardrops::Judge_Lineedit_Legality() {
    for (const RangeCheck& check : kRangeChecks) {
        const QString problem = wc::teardropRangeProblem(
            shell_->handle(), lengths_->edit(check.row)->text(), check.limit_mil);
        if (!problem.isEmpty()) {
            information(problem);
            return false;
        }
    }
    return true;
}

void Widget_Teardrops::getData(teardrop_create_DFM_op_params& params, int scope) const {
    params.drilled_pads = drilled_->isChecked();
    params.undrilled_pads = undrilled_->isChecked();
    lengths_->fill(params);
    params.delete_old_teardrops = delete_old_.group->checkedId();
    params.ranges = wc::buildRangeMap<teardrop_create_DFM_op_items, Korvo::API::dfm_range_value>(
        kRangeKey.toStdString(), wc::toDfmRangeValue, wc::RangeLookup::ByRow);
    params.teardrop_type = type_->currentIndex();
    params.line_width_ratio = ratio_->text().toDouble();
    params.arc_angle_given = !arc_angle_->text().isEmpty();
    params.arc_angle = arc_angle_->text().toInt();
    params.consider_solder_mask = solder_mask_.group->checkedId() == 0;
    params.scope = wc::runScope(scope, apply_to_.group->checkedId() == 1);
    params.report_only = work_mode_.group->checkedId() == 0;
}

// Fixed order; the unit tag says in which unit the lengths were written.
QList<QObject*> Widget_Teardrops::parameterWidgets() const {
    set_unit_->setText(QString::number(Korvo::UIAPI::getUnit(shell_->handle())));
    QList<QObject*> widgets{set_unit_, ratio_, type_, arc_angle_, drilled_, undrilled_};
    widgets += lengths_->editObjects();
    for (const wc::ChoiceGroup* group : {&delete_old_, &apply_to_, &work_mode_, &solder_mask_}) {
        widgets.append(group->group);
    }
    return widgets;
}

// Lengths saved in another unit are re-expressed in the current one by the fields themselves:
// told the saved unit first, then the current one.
void Widget_Teardrops::fitLoadedUnit() {
    bool known = false;
    const int saved = set_unit_->text().toInt(&known);
    const int current = Korvo::UIAPI::getUnit(shell_->handle());
    if (!known || saved == current) {
        return;
    }
    for (int row = 0; row < lengths_->size(); ++row) {
        Korvo::UIAPI::ZeLineEdit* edit = lengths_->edit(row);
        const QString text = edit->text();
        edit->changeunit(saved);
        edit->setText(text);
        edit->changeunit(current);
    }
}

void Widget_Teardrops::change_viewbtn_stylesheet() {
    controls_->markStale();
}

void Widget_Teardrops::mouseMoveEvent(QMouseEvent* event) {
    lengths_->commitPendingOnLeave(event->pos());
    QWidget::mouseMoveEvent(event);
}

// ---- viewer, language and units -------------------------------------------------------------

// The view button opens the viewer; a run refreshes it when it is already open.
void Widget_Teardrops::showResultsViewer(bool open) {
    windows_->showViewer(
        this, open, &Widget_ResultsViewer::TearDrop_DFM_raise,
        [this] {
            return new Widget_ResultsViewer(0, shell_->host(), processed_layers_,
                                            wc::SharedResult<wc::TeardropsResult>(result_));
        },
        [this](Widget_ResultsViewer& viewer) {
            viewer.RefreshTeardropsData(processed_layers_, result_);
        });
}

void Widget_Teardrops::change_language() {
    WC_GUARDED({
        wc::retranslate(this);
        lengths_->changeLanguage();
    });
}

void Widget_Teardrops::change_units() {
    WC_GUARDED({
        lengths_->changeUnit();
        emit unit_changed();
    });
}

void Widget_Teardrops::information(const QString& text) {
    QMessageBox::information(this, tr("Information"), text, QMessageBox::Ok);
}

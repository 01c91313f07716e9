#include "Widget_SignalLayerOpt.h"

#include <glog/logging.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "Korvo_API.h"
#include "ZeLineEdit.h"
#include "analysis/ResultWindows.h"
#include "frame/BackgroundRun.h"
#include "frame/ChoiceGroup.h"
#include "frame/DialogShell.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/LimitCheck.h"
#include "frame/ListPopup.h"
#include "frame/OptimisationRun.h"
#include "frame/ParameterSetActions.h"
#include "frame/RangeMap.h"
#include "frame/RecordedCalls.h"
#include "frame/RunControls.h"

namespace {

using Params = Widget_SignalLayerOpt::Params;
using Korvo::API::signal_layer_DFM_op_items;

const QString kRangeKey = QStringLiteral("SignalLayerOptRanges");
const char* const kSource = "Widget_SignalLayerOpt";

constexpr double kTwenty = 20.0;
constexpr double kThirty = 30.0;

// The numeric fields in the order of the record, then the rows that are shown, checked and
// converted but deliberately built disabled and never sent (NVIA AR, LRE, %Reduction, Abs.Min).
// The upper limit is the one the run checks against.
enum Row {
    PthMin,
    PthOpt,
    ViaMin,
    ViaOpt,
    LaserMin,
    LaserOpt,
    BuriedMin,
    BuriedOpt,
    SpacingMin,
    SpacingOpt,
    PadToPadMin,
    PadToPadOpt,
    AloneDrill,
    SmdToSmd,
    BgaToBga,
    SmdShaving,
    BgaShaving,
    NviaMin,
    NviaOpt,
    LreFrom,
    LreTo,
    Reduction,
    AbsMin,
    RowCount
};

const std::vector<wc::FieldRow<Params>>& fieldRows() {
    static const std::vector<wc::FieldRow<Params>> rows = {
        {"PTH AR:", "pth_ar_min", "PTHARMin", 4, 0, kTwenty, "", &Params::pth_ar_min},
        {"PTH AR:", "pth_ar_opt", "PTHAROpt", 6, 0, kTwenty, "", &Params::pth_ar_opt},
        {"VIA AR:", "via_ar_min", "VIAARMin", 4, 0, kTwenty, "", &Params::via_ar_min},
        {"VIA AR:", "via_ar_opt", "VIAAROpt", 6, 0, kTwenty, "", &Params::via_ar_opt},
        {"Laser AR:", "laser_ar_min", "LaserARMin", 4, 0, kTwenty, "", &Params::laser_ar_min},
        {"Laser AR:", "laser_ar_opt", "LaserAROpt", 6, 0, kTwenty, "", &Params::laser_ar_opt},
        {"Buried AR:", "buried_ar_min", "BuriedARMin", 4, 0, kTwenty, "", &Params::buried_ar_min},
        {"Buried AR:", "buried_ar_opt", "BuriedAROpt", 6, 0, kTwenty, "", &Params::buried_ar_opt},
        {"Spacing:", "spacing_min", "SpacingMin", 3, 0, kTwenty, "", &Params::spacing_min},
        {"Spacing:", "spacing_opt", "SpacingOpt", 3, 0, kTwenty, "", &Params::spacing_opt},
        {"Pad to Pad Spacing:", "pad_to_pad_min", "PadToPadMin", 5, 0, kTwenty, "",
         &Params::pad_to_pad_spacing_min},
        {"Pad to Pad Spacing:", "pad_to_pad_opt", "PadToPadOpt", 8, 0, kTwenty, "",
         &Params::pad_to_pad_spacing_opt},
        {"Alone-Drill to Pad:", "alone_drill_to_pad", "AloneDrill", 12, 0, kTwenty, "",
         &Params::alone_drill_to_pad},
        {"SMD to SMD:", "smd_to_smd", "SMDtoSMD", 0, 0, kTwenty, "", &Params::smd_to_smd},
        {"BGA to BGA:", "bga_to_bga", "BGAtoBGA", 0, 0, kTwenty, "", &Params::bga_to_bga},
        {"Limit SMD Shaving to:", "smd_shaving_limit", "SMDShaving", 0, 0, kTwenty, "",
         &Params::smd_shaving_limit},
        {"Limit BGA Shaving to:", "bga_shaving_limit", "BGAShaving", 0, 0, kTwenty, "",
         &Params::bga_shaving_limit},
        {"NVIA AR:", "nvia_ar_min", "NVIAARMin", 0, 0, kTwenty, "", {}, false},
        {"NVIA AR:", "nvia_ar_opt", "NVIAAROpt", 0, 0, kTwenty, "", {}, false},
        {"From:", "lre_from", "LREFrom", 4, 0, kThirty, "", {}, false},
        {"To:", "lre_to", "LRETo", 10, 0, kThirty, "", {}, false},
        {"%Reduction:", "reduction", "Reduction", 10, 0, kThirty, "", {}, false},
        {"Abs.Min:", "abs_min", "AbsMin", 5, 0, kThirty, "", {}, false},
    };
    return rows;
}

// The fields IsTextEmpty looks at, in its order.
constexpr Row kRequired[] = {PthMin, ViaMin, SpacingMin, PadToPadMin, AloneDrill};

// "Modification" check boxes and their defaults, in on-screen order.
enum Modification { PadUp, PadDn, ReRout, Shave, ShaveSameNet, LineDn, ReShape };
const std::vector<std::pair<const char*, bool>> kModifications = {
    {"PadUp", true},          {"PadDn", true},   {"ReRout", false},  {"Shave", true},
    {"Shave Same Net", true}, {"LineDn", false}, {"ReShape", false},
};

}  // namespace

Widget_SignalLayerOpt::Widget_SignalLayerOpt(const QString& job, const QString& step,
                                             QWidget* parent)
    : QWidget(parent, Qt::Window),
      shell_(new wc::DialogShell(
          this, parent, job, step,
          wc::runOptions(kRangeKey, QStringLiteral(".type=signal&context=board")))),
      controls_(&shell_->controls()),
      windows_(std::make_unique<wc::ResultWindows>(*shell_)) {
    initSignalLayerOpt();
    initRanges();
}

Widget_SignalLayerOpt::~Widget_SignalLayerOpt() = default;

void Widget_SignalLayerOpt::initSignalLayerOpt() {
    fields_ = std::make_unique<wc::FieldTable<Params>>(this, shell_->handle(), fieldRows());
    auto* grid = new QGridLayout;
    auto* min_header = new QLabel(this);
    auto* opt_header = new QLabel(this);
    wc::setSourceText(this, min_header, "Min:");
    wc::setSourceText(this, opt_header, "Opt:");
    grid->addWidget(min_header, 0, 1);
    grid->addWidget(opt_header, 0, 2);
    int line = 1;
    // The Min/Opt pairs share a row: the Min row's label, both fields, the Opt row's unit.
    for (int min : {PthMin, ViaMin, LaserMin, BuriedMin, NviaMin, SpacingMin, PadToPadMin}) {
        grid->addWidget(fields_->label(min), line, 0);
        grid->addWidget(fields_->edit(min), line, 1);
        grid->addWidget(fields_->edit(min + 1), line, 2);
        grid->addWidget(fields_->unitLabel(min + 1), line, 3);
        fields_->label(min + 1)->hide();
        fields_->unitLabel(min)->hide();
        ++line;
    }
    auto* lre = new QLabel(this);
    lre->setObjectName(QStringLiteral("label_LRERange"));
    wc::setSourceText(this, lre, "LRE Range:");
    lre->setEnabled(false);
    grid->addWidget(lre, line, 0);
    auto* lre_row = new QHBoxLayout;
    for (int row : {LreFrom, LreTo}) {
        lre_row->addWidget(fields_->label(row));
        lre_row->addWidget(fields_->edit(row));
    }
    grid->addLayout(lre_row, line, 1, 1, 2);
    grid->addWidget(fields_->unitLabel(LreTo), line, 3);
    fields_->unitLabel(LreFrom)->hide();
    ++line;
    for (int row : {Reduction, AbsMin, AloneDrill, SmdToSmd, BgaToBga, SmdShaving, BgaShaving}) {
        grid->addWidget(fields_->label(row), line, 0);
        grid->addWidget(fields_->edit(row), line, 1);
        grid->addWidget(fields_->unitLabel(row), line, 2);
        ++line;
    }

    via_expand_ = new QCheckBox(this);
    via_expand_->setObjectName(QStringLiteral("checkBox_VIAPadExpand"));
    wc::setSourceText(this, via_expand_, "VIA Pad expand within the Copper");
    apply_to_ = wc::makeChoiceGroup(this, QStringLiteral("ApplyTo"), QT_TR_NOOP("Apply to"),
                                    {QT_TR_NOOP("All"), QT_TR_NOOP("Selected")}, 0);
    QGroupBox* work_on =
        wc::makeCheckGroup(this, QStringLiteral("WorkOn"), "Work on",
                           {{"Pads", true}, {"SMDs", true}, {"Drills", true}}, work_on_, 3);
    QGroupBox* modification = wc::makeCheckGroup(this, QStringLiteral("Modification"),
                                                 "Modification", kModifications, modifications_, 4);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeErfRow());
    layout->addLayout(controls_->makeLayerRow());
    layout->addLayout(grid);
    layout->addWidget(via_expand_);
    layout->addWidget(apply_to_.box);
    layout->addWidget(work_on);
    layout->addWidget(modification);
    controls_->addClosingRows(layout);
    wc::setSourceText(this, this, QT_TR_NOOP("Signal Layer Optimization"));
    wireUp();
}

void Widget_SignalLayerOpt::wireUp() {
    wc::RunControls::Callbacks callbacks;
    callbacks.run = [this](int scope) { SignalLayerDFM(scope); };
    callbacks.view = [this] { showResultsViewer(true); };
    callbacks.ranges = [this] { windows_->openRanges(this, "Signal Layer Optimization"); };
    controls_->connectTo(callbacks, __FILE__, __LINE__);
    // The layer popup lists every layer of the job; "ERF:" goes through the dialog's slot too.
    controls_->layerButton()->disconnect(controls_);
    controls_->erfButton()->disconnect(controls_);
    connect(controls_->layerButton(), &QPushButton::clicked, this,
            &Widget_SignalLayerOpt::on_Layer_clicked);
    connect(controls_->erfButton(), &QPushButton::clicked, this,
            &Widget_SignalLayerOpt::on_ERF_clicked);
    connect(modifications_[Shave], &QCheckBox::clicked, this,
            &Widget_SignalLayerOpt::on_Shave_clicked);
    connect(&shell_->useParameterSets([this] { return formWidgets(); }),
            &wc::ParameterSetActions::saved, this, &Widget_SignalLayerOpt::send_Sel_Template_Name);
    controls_->markStaleOnChange(fields_->editObjects());
}

QList<QObject*> Widget_SignalLayerOpt::formWidgets() const {
    QList<QObject*> widgets = fields_->editObjects();
    widgets << via_expand_ << apply_to_.group;
    for (QCheckBox* box : work_on_ + modifications_) {
        widgets << box;
    }
    widgets << controls_->layerEdit();
    return widgets;
}

void Widget_SignalLayerOpt::initRanges() {
    range_table_ = Korvo::UIAPI::getRanges(kRangeKey.toStdString());
}

// ---- host calls -----------------------------------------------------------------------------

void Widget_SignalLayerOpt::UpdateJobStep(const QString& job, const QString& step) {
    shell_->updateJobStep(job, step);
}

void Widget_SignalLayerOpt::setAffectedLayers(const QStringList& layers) {
    shell_->setAffectedLayers(layers);
}

void Widget_SignalLayerOpt::setErfValues(const QString& name) {
    if (shell_->sets()->load(name)) {
        on_Shave_clicked();
    }
}

void Widget_SignalLayerOpt::Widget_raise() {
    show();
    raise();
    activateWindow();
}

void Widget_SignalLayerOpt::closeDialog() {
    close();
}

void Widget_SignalLayerOpt::on_parent_closed() {
    close();
}

QStringList Widget_SignalLayerOpt::getAllLayerList() const {
    return shell_->layerNames();
}

QStringList Widget_SignalLayerOpt::getLayerList() const {
    return shell_->layerNames([](const Korvo::API::layer_info& layer) {
        return layer.context == "board" && layer.type == "signal";
    });
}

// ---- slots ----------------------------------------------------------------------------------

WC_FORWARD_SLOT(Widget_SignalLayerOpt, on_unGlobally_clicked, controls_->run(wc::ScopeGlobal))
WC_FORWARD_SLOT(Widget_SignalLayerOpt, on_RunScreen_clicked, controls_->run(wc::ScopeScreen))
WC_FORWARD_SLOT(Widget_SignalLayerOpt, on_RunProfile_clicked, controls_->run(wc::ScopeProfile))

void Widget_SignalLayerOpt::on_Layer_clicked() {
    WC_GUARDED({
        wc::ListPopup* popup = controls_->layerPopup();
        popup->setItems(getAllLayerList());
        popup->popUp(controls_->layerButton());
    });
}

void Widget_SignalLayerOpt::get_Layer_TEXT(QString text) {
    WC_GUARDED({ controls_->layerEdit()->setText(text); });
}

WC_FORWARD_SLOT(Widget_SignalLayerOpt, on_ERF_clicked, controls_->openErfPopup())

void Widget_SignalLayerOpt::get_ERF_Name(QString name) {
    WC_GUARDED({ setErfValues(name); });
}

WC_FORWARD_SLOT(Widget_SignalLayerOpt, on_m_pSaveAsPB_clicked, controls_->saveAs())
WC_FORWARD_SLOT(Widget_SignalLayerOpt, on_Range_clicked, controls_->openRanges())
WC_FORWARD_SLOT(Widget_SignalLayerOpt, on_Check_clicked, controls_->view())

// The view button creates the viewer once and shows it; a run refreshes it when it exists.
void Widget_SignalLayerOpt::showResultsViewer(bool open) {
    windows_->showViewer(
        this, open, nullptr,
        [this] {
            return new Widget_ResultsViewer(7, shell_->host(), wc::SharedResult<Result>(result_));
        },
        [this](Widget_ResultsViewer& viewer) {
            viewer.RefreshSignalLayerDFMData(wc::SharedResult<Result>(result_));
        });
}

void Widget_SignalLayerOpt::on_Shave_clicked() {
    // Only enabled: the check state stays and still reaches the record.
    modifications_[ShaveSameNet]->setEnabled(modifications_[Shave]->isChecked());
}

void Widget_SignalLayerOpt::change_viewbtn_stylesheet() {
    controls_->markStale();
}

// ---- the run --------------------------------------------------------------------------------

void Widget_SignalLayerOpt::SignalLayerDFM(int scope) {
    Params params;
    if (!getOptData(params)) {
        return;
    }
    params.scope = wc::runScope(scope, apply_to_.group->checkedId() == 1);
    controls_->rememberScope(params.scope);
    controls_->setStatus(QString());
    std::vector<std::string> layers;
    if (!getCheckLayerList(layers)) {
        controls_->setStatus(tr("No layers were processed"));
        return;
    }
    LOG(INFO) << "signal layer optimisation of " << layers.size() << " layers, scope "
              << params.scope;
    const std::string job = shell_->job().toStdString();
    const std::string step = shell_->step().toStdString();
    wc::OptimisationTexts texts;
    texts.terminated = QT_TR_NOOP("SignalLayer opt terminated");
    texts.processed = QT_TR_N_NOOP("%n layers were processed");
    Result fresh;
    const wc::OptimisationOutcome outcome = wc::runOptimisation(
        *controls_, this, kSource, texts, shell_->job(), layers, fresh,
        [job, step, params](const std::vector<std::string>& names, Result& result,
                            Korvo::COMMON::progress_value<void>* progress) {
            return Korvo::API::signal_layer_DFM_op(job, step, names, params, result, progress);
        });
    if (!outcome.completed) {
        return;
    }
    result_ = std::make_shared<const Result>(std::move(fresh));
    result_layer_count_ = static_cast<int>(result_->size());
    has_results_ = true;
    showResultsViewer(false);
}

bool Widget_SignalLayerOpt::getOptData(Params& params) {
    if (!IsTextEmpty() || !Judge_LineEdit()) {
        return false;
    }
    fields_->fill(params);
    params.pad_up = modifications_[PadUp]->isChecked();
    params.shave = modifications_[Shave]->isChecked();
    params.pad_down = modifications_[PadDn]->isChecked();
    params.reroute = modifications_[ReRout]->isChecked();
    params.line_down = modifications_[LineDn]->isChecked();
    params.reshape = modifications_[ReShape]->isChecked();
    params.shave_same_net = modifications_[ShaveSameNet]->isChecked();
    params.via_pad_expand_within_copper = via_expand_->isChecked();

    // The range table is read again: the range editor may have changed it since.
    initRanges();
    const auto ranges = wc::buildRangeMap<signal_layer_DFM_op_items, Korvo::API::dfm_range_value>(
        kRangeKey.toStdString(), range_table_, wc::toDfmRangeValue, wc::RangeLookup::ByRow);
    for (const auto& entry : ranges) {
        range_map_[entry.first] = entry.second;
    }
    params.ranges = range_map_;
    return true;
}

bool Widget_SignalLayerOpt::getCheckLayerList(std::vector<std::string>& layers) {
    layers.clear();
    const QString text = controls_->layerEdit()->text();
    if (!text.isEmpty()) {
        layers =
            Korvo::UIAPI::getAnalyzeAndDFMLayers(shell_->job().toStdString(), text.toStdString());
    }
    return !layers.empty();
}

bool Widget_SignalLayerOpt::IsTextEmpty() {
    for (Row row : kRequired) {
        if (fields_->edit(row)->text().isEmpty()) {
            QMessageBox::information(this, tr("Information"), tr("Illegal floating parameter"));
            return false;
        }
    }
    return true;
}

bool Widget_SignalLayerOpt::Judge_LineEdit() {
    for (int row = 0; row < RowCount; ++row) {
        const QString text = fields_->edit(row)->text();
        if (text.isEmpty()) {
            continue;
        }
        const bool thirty = fields_->spec(row).upper_mil == kThirty;
        if (!(thirty ? Judge_zero2Thirty(text) : Judge_zero2Twenty(text))) {
            return false;
        }
    }
    return true;
}

bool Widget_SignalLayerOpt::Judge_zero2Twenty(const QString& text) {
    if (wc::withinZeroTo(shell_->handle(), text, kTwenty)) {
        return true;
    }
    outOfRange(text, kTwenty);
    return false;
}

bool Widget_SignalLayerOpt::Judge_zero2Thirty(const QString& text) {
    if (wc::withinZeroTo(shell_->handle(), text, kThirty)) {
        return true;
    }
    outOfRange(text, kThirty);
    return false;
}

void Widget_SignalLayerOpt::outOfRange(const QString& text, double limit_mil) {
    LOG(INFO) << "signal layer optimisation refused " << text.toStdString();
    QMessageBox::information(this, tr("Information"),
                             tr("Floating parameter out of range Value ") + text +
                                 tr(" is outside of (0, ") +
                                 wc::limitText(shell_->handle(), limit_mil) + QStringLiteral(")"));
}

// ---- language and units ---------------------------------------------------------------------

void Widget_SignalLayerOpt::change_language() {
    WC_GUARDED({
        wc::retranslate(this);
        fields_->changeLanguage();
    });
}

void Widget_SignalLayerOpt::change_units() {
    WC_GUARDED({
        fields_->changeUnit();
        emit unit_changed();
    });
}

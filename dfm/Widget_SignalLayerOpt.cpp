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
#include "analysis/Widget_Ranges.h"
#include "analysis/Widget_ResultsViewer.h"
#include "frame/BackgroundRun.h"
#include "frame/ChoiceGroup.h"
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
    : QWidget(parent, Qt::Window), handle_(parent), job_(job), step_(step) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initSignalLayerOpt();
    initRanges();
}

Widget_SignalLayerOpt::~Widget_SignalLayerOpt() = default;

void Widget_SignalLayerOpt::initSignalLayerOpt() {
    wc::RunControlsOptions options;
    options.range_key = kRangeKey;
    options.layer_text = QStringLiteral(".type=signal&context=board");
    controls_ = new wc::RunControls(this, options);
    controls_->setJob(job_);
    sets_ =
        new wc::ParameterSetActions(this, controls_, kRangeKey, [this] { return formWidgets(); });

    fields_ = std::make_unique<wc::FieldTable<Params>>(this, handle_, fieldRows());
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
    const wc::ChoiceGroup apply_to =
        wc::makeChoiceGroup(this, QStringLiteral("ApplyTo"), "Apply to", {"All", "Selected"}, 0);
    apply_to_ = apply_to.group;
    QGroupBox* work_on =
        wc::makeCheckGroup(this, QStringLiteral("WorkOn"), "Work on",
                           {{"Pads", true}, {"SMDs", true}, {"Drills", true}}, work_on_, 3);
    QGroupBox* modification = wc::makeCheckGroup(this, QStringLiteral("Modification"),
                                                 "Modification", kModifications, modifications_, 4);

    close_ = new QPushButton(this);
    close_->setObjectName(QStringLiteral("pushButton_Close"));
    wc::setSourceText(this, close_, "Close");

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeErfRow());
    layout->addLayout(controls_->makeLayerRow());
    layout->addLayout(grid);
    layout->addWidget(via_expand_);
    layout->addWidget(apply_to.box);
    layout->addWidget(work_on);
    layout->addWidget(modification);
    controls_->addClosingRows(layout, close_);

    controls_->connectTo(this, {{SLOT(on_unGlobally_clicked()), SLOT(on_RunScreen_clicked()),
                                 SLOT(on_RunProfile_clicked())},
                                SLOT(on_Check_clicked()),
                                SLOT(on_m_pSaveAsPB_clicked()),
                                SLOT(on_Range_clicked())});
    connect(controls_->layerButton(), SIGNAL(clicked()), this, SLOT(on_Layer_clicked()));
    // The run controls open the popups themselves; the dialog's slots are for the host.
    controls_->layerButton()->disconnect(controls_);
    controls_->erfButton()->disconnect(controls_);
    connect(controls_->erfButton(), SIGNAL(clicked()), this, SLOT(on_ERF_clicked()));
    connect(modifications_[Shave], SIGNAL(clicked()), this, SLOT(on_Shave_clicked()));
    connect(close_, &QPushButton::clicked, this, &QWidget::close);
    connect(sets_, &wc::ParameterSetActions::saved, this,
            &Widget_SignalLayerOpt::send_Sel_Template_Name);
    for (QObject* edit : fields_->editObjects()) {
        connect(edit, SIGNAL(editingFinished()), this, SLOT(change_viewbtn_stylesheet()));
    }

    wc::setSourceText(this, this, "Signal Layer Optimization");
}

QList<QObject*> Widget_SignalLayerOpt::formWidgets() const {
    QList<QObject*> widgets = fields_->editObjects();
    widgets << via_expand_ << apply_to_;
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
    job_ = job;
    step_ = step;
    controls_->setJob(job_);
    if (!viewer_.isNull()) {
        viewer_->setJobAndStep(job_, step_);
    }
}

void Widget_SignalLayerOpt::setAffectedLayers(const QStringList& layers) {
    controls_->layerEdit()->setText(layers.join(QLatin1Char(';')));
}

void Widget_SignalLayerOpt::setErfValues(const QString& name) {
    if (sets_->load(name)) {
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
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    wc::recordedGetGraphics(job_.toStdString(), steps, layers);
    QStringList names;
    for (const Korvo::API::layer_info& layer : layers) {
        names.append(QString::fromStdString(layer.name));
    }
    return names;
}

QStringList Widget_SignalLayerOpt::getLayerList() const {
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    wc::recordedGetGraphics(job_.toStdString(), steps, layers);
    QStringList names;
    for (const Korvo::API::layer_info& layer : layers) {
        if (layer.context == "board" && layer.type == "signal") {
            names.append(QString::fromStdString(layer.name));
        }
    }
    return names;
}

// ---- slots ----------------------------------------------------------------------------------

void Widget_SignalLayerOpt::on_unGlobally_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeGlobal);
        SignalLayerDFM(wc::ScopeGlobal);
    });
}

void Widget_SignalLayerOpt::on_RunScreen_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeScreen);
        SignalLayerDFM(wc::ScopeScreen);
    });
}

void Widget_SignalLayerOpt::on_RunProfile_clicked() {
    WC_GUARDED({
        controls_->pressRun(wc::ScopeProfile);
        SignalLayerDFM(wc::ScopeProfile);
    });
}

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

void Widget_SignalLayerOpt::on_ERF_clicked() {
    WC_GUARDED({ controls_->showErfPopup(); });
}

void Widget_SignalLayerOpt::get_ERF_Name(QString name) {
    WC_GUARDED({ setErfValues(name); });
}

void Widget_SignalLayerOpt::on_m_pSaveAsPB_clicked() {
    WC_GUARDED({ sets_->askName(); });
}

void Widget_SignalLayerOpt::on_Range_clicked() {
    WC_GUARDED({
        Widget_Ranges::openFor(ranges_, this, handle_, kRangeKey, "Signal Layer Optimization");
    });
}

void Widget_SignalLayerOpt::on_Check_clicked() {
    WC_GUARDED({
        if (viewer_.isNull()) {
            auto* host = static_cast<QWidget*>(const_cast<void*>(handle_));
            viewer_ = new Widget_ResultsViewer(7, host, wc::SharedResult<Result>(result_));
            viewer_->setJobAndStep(job_, step_);
            connect(this, &Widget_SignalLayerOpt::unit_changed, viewer_,
                    &Widget_ResultsViewer::change_unit);
        }
        viewer_->show();
        viewer_->raise();
        viewer_->RefreshSignalLayerDFMData(wc::SharedResult<Result>(result_));
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
    if (wc::BackgroundRun::activeFor(this)) {
        return;  // a second click while this dialog's run is under way
    }
    Params params;
    if (!getOptData(params)) {
        return;
    }
    params.scope = wc::runScope(scope, apply_to_->checkedId() == 1);
    controls_->rememberScope(params.scope);
    controls_->setStatus(QString());
    std::vector<std::string> layers;
    if (!getCheckLayerList(layers)) {
        controls_->setStatus(tr("No layers were processed"));
        return;
    }
    LOG(INFO) << "signal layer optimisation of " << layers.size() << " layers, scope "
              << params.scope;
    const std::string job = job_.toStdString();
    const std::string step = step_.toStdString();
    Result fresh;
    const wc::OptimisationOutcome outcome = wc::runOptimisation(
        *controls_, this, kSource, {"SignalLayer opt terminated"}, job_, layers, fresh,
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
    if (!viewer_.isNull()) {
        viewer_->RefreshSignalLayerDFMData(wc::SharedResult<Result>(result_));
    }
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
        layers = Korvo::UIAPI::getAnalyzeAndDFMLayers(job_.toStdString(), text.toStdString());
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
    if (wc::withinZeroTo(handle_, text, kTwenty)) {
        return true;
    }
    outOfRange(text, kTwenty);
    return false;
}

bool Widget_SignalLayerOpt::Judge_zero2Thirty(const QString& text) {
    if (wc::withinZeroTo(handle_, text, kThirty)) {
        return true;
    }
    outOfRange(text, kThirty);
    return false;
}

void Widget_SignalLayerOpt::outOfRange(const QString& text, double limit_mil) {
    LOG(INFO) << "signal layer optimisation refused " << text.toStdString();
    QMessageBox::information(this, tr("Information"),
                             tr("Floating parameter out of range Value ") + text +
                                 tr(" is outside of (0, ") + wc::limitText(handle_, limit_mil) +
                                 QStringLiteral(")"));
}

// ---- language and units ---------------------------------------------------------------------

void Widget_SignalLayerOpt::change_language() {
    WC_GUARDED({
        controls_->changeLanguage();
        fields_->changeLanguage();
        wc::retranslate(this);
    });
}

void Widget_SignalLayerOpt::change_units() {
    WC_GUARDED({
        fields_->changeUnit();
        emit unit_changed();
    });
}

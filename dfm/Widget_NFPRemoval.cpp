#include "Widget_NFPRemoval.h"

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
#include "Korvo_UIAPI.h"
#include "analysis/ResultWindows.h"
#include "frame/DialogShell.h"
#include "frame/DialogTexts.h"
#include "frame/ExceptionGuard.h"
#include "frame/OptimisationRun.h"
#include "frame/ParameterSetActions.h"
#include "frame/RangeMap.h"
#include "frame/RecordedCalls.h"
#include "frame/RunControls.h"

namespace {

using Korvo::API::NFP_removal_DFM_op_items;
using Korvo::API::NFP_removal_DFM_op_params;
using Korvo::API::NFP_removal_result_map;

const QString kRangeKey = QStringLiteral("NFPRemoval");
const char* const kTitle = QT_TRANSLATE_NOOP("Widget_NFPRemoval", "NFP Removal");

enum Drill { Pth, PthPressfit, Npth, ViaLaser, Via, ViaPhoto };
const char* const kDrills[] = {QT_TRANSLATE_NOOP("Widget_NFPRemoval", "PTH"),
                               QT_TRANSLATE_NOOP("Widget_NFPRemoval", "PTH - Pressfit"),
                               QT_TRANSLATE_NOOP("Widget_NFPRemoval", "NPTH"),
                               QT_TRANSLATE_NOOP("Widget_NFPRemoval", "Via - Laser"),
                               QT_TRANSLATE_NOOP("Widget_NFPRemoval", "Via"),
                               QT_TRANSLATE_NOOP("Widget_NFPRemoval", "Via - Photo")};
const char* const kDrillNames[] = {"PTH", "PTHPressfit", "NPTH", "ViaLaser", "Via", "ViaPhoto"};

QCheckBox* checkBox(QWidget* parent, const QString& name, bool checked) {
    auto* box = new QCheckBox(parent);
    box->setObjectName(QStringLiteral("checkBox_") + name);
    box->setChecked(checked);
    return box;
}

}  // namespace

namespace wc {

std::vector<int32_t> nfpPadKinds(bool isolated, bool drilled_over, bool duplicate, bool covered) {
    std::vector<int32_t> kinds;
    if (isolated) {
        kinds.push_back(1);
    }
    if (drilled_over) {
        kinds.push_back(3);
    }
    if (duplicate) {
        kinds.push_back(2);
    }
    if (covered) {
        kinds.push_back(4);
    }
    return kinds;
}

NfpSeverity worstSeverity(const Korvo::API::NFP_removal_result_map& result) {
    auto any = [&](auto list) {
        for (const auto& item : result) {
            if (!(item.second.*list).empty()) {
                return true;
            }
        }
        return false;
    };
    using Levels = Korvo::API::check_levels;
    if (any(&Levels::red)) {
        return NfpSeverity::Red;
    }
    if (any(&Levels::yellow)) {
        return NfpSeverity::Yellow;
    }
    if (any(&Levels::green)) {
        return NfpSeverity::Green;
    }
    return NfpSeverity::NoHit;
}

}  // namespace wc

Widget_NFPRemoval::Widget_NFPRemoval(const QString& job, const QString& step, QWidget* parent)
    : QWidget(parent, Qt::Window),
      shell_(new wc::DialogShell(
          this, parent, job, step,
          wc::spacedLabels(wc::runOptions(
              kRangeKey, QStringLiteral(".type=signal|mixed&side=inner&context=board"))))),
      controls_(&shell_->controls()),
      windows_(std::make_unique<wc::ResultWindows>(*shell_)),
      result_(std::make_shared<const NFP_removal_result_map>()) {
    initNFPRemoval();
}

Widget_NFPRemoval::~Widget_NFPRemoval() = default;

Widget_ResultsViewer* Widget_NFPRemoval::resultsViewer() const {
    return windows_->viewer();
}

// Pads on the outer layers carry components; non-functional pads are an inner-layer matter:
// the default layer filter names the inner signal and mixed layers.
void Widget_NFPRemoval::initNFPRemoval() {
    // The default filter is long; it should be readable whole.
    controls_->layerEdit()->setMinimumWidth(320);

    delete_box_ = new QGroupBox(this);
    delete_box_->setObjectName(QStringLiteral("groupBox_Delete"));
    wc::setSourceText(this, delete_box_, QT_TR_NOOP("Delete"));
    isolated_ = checkBox(delete_box_, QStringLiteral("Isolated"), true);
    wc::setSourceText(this, isolated_, QT_TR_NOOP("Isolated"));
    drilled_over_ = checkBox(delete_box_, QStringLiteral("DrilledOver"), false);
    wc::setSourceText(this, drilled_over_, QT_TR_NOOP("Drilled Over"));
    duplicate_ = checkBox(delete_box_, QStringLiteral("Duplicate"), false);
    wc::setSourceText(this, duplicate_, QT_TR_NOOP("Duplicate"));
    covered_ = checkBox(delete_box_, QStringLiteral("Covered"), true);
    wc::setSourceText(this, covered_, QT_TR_NOOP("Covered"));
    auto* delete_row = new QHBoxLayout(delete_box_);
    for (QCheckBox* box : {isolated_, drilled_over_, duplicate_, covered_}) {
        delete_row->addWidget(box);
    }

    drills_box_ = new QGroupBox(this);
    drills_box_->setObjectName(QStringLiteral("groupBox_Drills"));
    wc::setSourceText(this, drills_box_, QT_TR_NOOP("Drills"));
    auto* drills_grid = new QGridLayout(drills_box_);
    for (int drill = Pth; drill <= ViaPhoto; ++drill) {
        QCheckBox* box = checkBox(drills_box_, QString::fromLatin1(kDrillNames[drill]),
                                  drill == Pth || drill == Via);
        wc::setSourceText(this, box, kDrills[drill]);
        drills_.append(box);
        drills_grid->addWidget(box, drill / 2, drill % 2);
    }

    work_on_ = wc::makeChoiceGroup(this, QStringLiteral("WorkOn"), QT_TR_NOOP("Work On"),
                                   {QT_TR_NOOP("Copper"), QT_TR_NOOP("Features")}, 1);
    undrilled_ = wc::makeChoiceGroup(this, QStringLiteral("RemoveUndrilled"),
                                     QT_TR_NOOP("Remove Undrilled Pads"),
                                     {QT_TR_NOOP("Yes"), QT_TR_NOOP("No")}, 0);
    apply_to_ = wc::makeChoiceGroup(this, QStringLiteral("ApplyTo"), QT_TR_NOOP("Apply to"),
                                    {QT_TR_NOOP("ALL"), QT_TR_NOOP("Selected")}, 0);
    action_ = wc::makeChoiceGroup(this, QStringLiteral("Action"), "",
                                  {QT_TR_NOOP("Remove"), QT_TR_NOOP("Mark")}, 0);
    wc::setSourceText(this, this, kTitle);

    auto* choices = new QGridLayout;
    choices->addWidget(work_on_.box, 0, 0);
    choices->addWidget(undrilled_.box, 0, 1);
    choices->addWidget(apply_to_.box, 1, 0);
    choices->addWidget(action_.box, 1, 1);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(controls_->makeErfRow());
    layout->addWidget(delete_box_);
    layout->addWidget(drills_box_);
    layout->addLayout(choices);
    layout->addLayout(controls_->makeLayerRow());
    controls_->addClosingRows(layout);
    wireUp();
}

void Widget_NFPRemoval::wireUp() {
    wc::RunControls::Callbacks callbacks;
    callbacks.run = [this](int scope) { run(scope); };
    callbacks.view = [this] { showResultsViewer(true); };
    callbacks.ranges = [this] { windows_->openRanges(this, kTitle); };
    controls_->connectTo(callbacks, __FILE__, __LINE__);
    connect(&shell_->useParameterSets([this] { return parameterWidgets(); }),
            &wc::ParameterSetActions::saved, this, &Widget_NFPRemoval::send_Sel_Template_Name);
    // Any change of a parameter makes the shown result stale.
    controls_->markStaleOnChange(parameterWidgets() << controls_->layerEdit());
}

// ---- host calls -----------------------------------------------------------------------------

void Widget_NFPRemoval::UpdateJobStep(const QString& job, const QString& step) {
    shell_->updateJobStep(job, step);
}

void Widget_NFPRemoval::setAffectedLayers(const QStringList& layers) {
    shell_->setAffectedLayers(layers);
}

void Widget_NFPRemoval::setErfValues(const QString& name) {
    WC_GUARDED({ shell_->setErfValues(name); });
}

bool Widget_NFPRemoval::isErfFileExist(const QString& name) const {
    return shell_->isErfFileExist(name);
}

QStringList Widget_NFPRemoval::getInnerLayers() const {
    return shell_->layerNames([](const Korvo::API::layer_info& layer) {
        return layer.context == "board" && layer.side == "inner" &&
               (layer.type == "signal" || layer.type == "mixed");
    });
}

// ---- the buttons ----------------------------------------------------------------------------

WC_FORWARD_SLOT(Widget_NFPRemoval, on_ERF_clicked, controls_->openErfPopup())

WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pSaveAsPB_clicked, controls_->saveAs())

WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pLayerPB_clicked, controls_->openLayerPopup())

WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pRangesPB_clicked, controls_->openRanges())
WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pRunGlobalPB_clicked, controls_->run(wc::ScopeGlobal))
WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pScreenOnlyPB_clicked, controls_->run(wc::ScopeScreen))
WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pInsideProfilePB_clicked, controls_->run(wc::ScopeProfile))
WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pViewResultPB_clicked, controls_->view())
WC_FORWARD_SLOT(Widget_NFPRemoval, on_m_pClosePB_clicked, controls_->close())

// ---- the run --------------------------------------------------------------------------------

void Widget_NFPRemoval::run(int scope) {
    NFP_removal_DFM_op_params params;
    std::vector<std::string> layers;
    if (!getCfgData(params, scope, layers)) {
        return;
    }
    controls_->rememberScope(params.scope);

    const std::string job = shell_->job().toStdString();
    const std::string step = shell_->step().toStdString();
    wc::OptimisationTexts texts;
    texts.terminated = "Remove NFP terminated";
    texts.processed = QT_TR_N_NOOP("%n NFP Removal layers processed");
    NFP_removal_result_map fresh;
    const wc::OptimisationOutcome outcome = wc::runOptimisation(
        *controls_, this, "Widget_NFPRemoval", texts, shell_->job(), layers, fresh,
        [job, step, params](const std::vector<std::string>& run_layers, NFP_removal_result_map& out,
                            Korvo::COMMON::progress_value<void>* progress) {
            return Korvo::API::NFP_removal_DFM_op(job, step, run_layers, params, out, progress);
        });
    if (!outcome.resultToShow("NFP_removal_DFM_op")) {
        return;
    }
    result_ = std::make_shared<const NFP_removal_result_map>(std::move(fresh));
    processed_layers_ = layers;
    has_results_ = true;
    setResultLBColor();
    Refresh_View();
}

bool Widget_NFPRemoval::getCfgData(NFP_removal_DFM_op_params& params, int scope,
                                   std::vector<std::string>& layers) {
    QStringList missing;
    layers = shell_->runLayers(&missing);
    if (!layercheck(layers, missing)) {
        QMessageBox::information(this, tr("Information"), tr("Layer error!"), QMessageBox::Ok);
        return false;
    }
    params.pth = drills_[Pth]->isChecked();
    params.npth = drills_[Npth]->isChecked();
    params.via = drills_[Via]->isChecked();
    params.remove_undrilled_pads = undrilled_.group->checkedId() == 0;
    params.apply_to = apply_to_.group->checkedId();
    params.action = action_.group->checkedId();
    params.pad_kinds = wc::nfpPadKinds(isolated_->isChecked(), drilled_over_->isChecked(),
                                       duplicate_->isChecked(), covered_->isChecked());
    params.ranges = wc::buildRangeMap<NFP_removal_DFM_op_items, Korvo::API::dfm_range_value>(
        kRangeKey.toStdString(), wc::toDfmRangeValue, wc::RangeLookup::ByRow);
    params.scope = wc::runScope(scope, params.apply_to == 1);
    return true;
}

// A run needs at least one layer, and every name typed must be a layer of the job.
bool Widget_NFPRemoval::layercheck(const std::vector<std::string>& layers,
                                   const QStringList& missing) const {
    if (layers.empty() || !missing.isEmpty()) {
        LOG(ERROR) << "layer error: " << layers.size() << " layers, missing "
                   << missing.join(QLatin1Char(';')).toStdString();
        return false;
    }
    return true;
}

// The result label takes the colour of the worst hit; no hit leaves it plain.
void Widget_NFPRemoval::setResultLBColor() {
    QString style;
    switch (wc::worstSeverity(*result_)) {
        case wc::NfpSeverity::Red:
            style = QStringLiteral("QLabel{background-color:rgb(255,0,0);}");
            break;
        case wc::NfpSeverity::Yellow:
            style = QStringLiteral("QLabel{background-color:rgb(255,255,0);}");
            break;
        case wc::NfpSeverity::Green:
            style = QStringLiteral("QLabel{background-color:rgb(0,255,0);}");
            break;
        case wc::NfpSeverity::NoHit:
            break;
    }
    controls_->timeLabel()->setStyleSheet(style);
}

// Brings an open results viewer to the new result with the processed layers.
void Widget_NFPRemoval::Refresh_View() {
    showResultsViewer(false);
}

// The view button opens the viewer; a run refreshes it when it is already open.
void Widget_NFPRemoval::showResultsViewer(bool open) {
    windows_->showViewer(
        this, open, &Widget_ResultsViewer::NFP_DFM_raise,
        [this] {
            return new Widget_ResultsViewer(0, shell_->host(), processed_layers_,
                                            wc::SharedResult<wc::NFPRemovalResult>(result_));
        },
        [this](Widget_ResultsViewer& viewer) {
            viewer.RefreshNFPRemovalData(processed_layers_, result_);
        });
}

void Widget_NFPRemoval::change_viewbtn_stylesheet() {
    controls_->markStale();
}

QList<QObject*> Widget_NFPRemoval::parameterWidgets() const {
    QList<QObject*> widgets{isolated_, drilled_over_, duplicate_, covered_};
    for (QCheckBox* box : drills_) {
        widgets.append(box);
    }
    for (const wc::ChoiceGroup* group : {&work_on_, &undrilled_, &apply_to_, &action_}) {
        widgets.append(group->group);
    }
    return widgets;
}

void Widget_NFPRemoval::change_language() {
    WC_GUARDED({ wc::retranslate(this); });
}

void Widget_NFPRemoval::change_units() {
    WC_GUARDED({ emit unit_changed(); });
}

#include "Widget_ResultsViewer.h"

#include <glog/logging.h>

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

#include "HitTableModel.h"
#include "Korvo_API.h"
#include "LazyComboBox.h"
#include "QTpluginsManger4CAM.h"
#include "Widget_ResultsHistogram.h"
#include "ZeLineEdit.h"
#include "frame/ExceptionGuard.h"
#include "frame/PluginMessages.h"
#include "frame/RecordedCalls.h"

namespace {

using Korvo::API::analysis_drawing_data;
using Korvo::API::analysis_drawing_shape;

constexpr double kNanometresPerMil = 25400.0;
constexpr int kValueDecimals = 3;
constexpr int kHistogramBins = 20;
constexpr int kDefaultLevel = wc::SevGreen;

const char* const kSelectedBlack =
    "QListWidget::item:selected{background-color:rgb(0, 0, 0); color:rgb(255, 255, 255)}";
const char* const kSelectedBlue =
    "QListWidget::Item:selected{background:blue;}QListWidget::item:selected:!active{background:"
    "lightblue;}";
const char* const kComboItems = "QComboBox QAbstractItemView::item{height:20px}";
const char* const kHistogramPicture =
    "QPushButton{background-image:url(:/Widget_Common/Resources/Results histogram1.jpg)}";

// The "Sv:" entries and their colours.
const char* const kLevelTexts[wc::kSeverityCount] = {"!!", "!", "  ", "All"};
const QColor kLevelColours[wc::kSeverityCount] = {QColor(255, 0, 0), QColor(255, 255, 0),
                                                  QColor(0, 255, 0), QColor(255, 255, 255)};

QString fromStd(const std::string& text) {
    return QString::fromStdString(text);
}

QString joined(const std::vector<std::string>& names) {
    QStringList out;
    for (const std::string& name : names) {
        out << fromStd(name);
    }
    return out.join(QLatin1Char(';'));
}

}  // namespace

#define VIEWER_GUARDED(...) guardedSlot(__LINE__, [&]() __VA_ARGS__)

template <typename Body>
bool Widget_ResultsViewer::guardedSlot(int line, Body&& body) {
    return wc::guarded(this, mode_->source_file, line, std::forward<Body>(body));
}

// ---- construction ---------------------------------------------------------------------------

Widget_ResultsViewer::Widget_ResultsViewer(QWidget* parent)
    : QWidget(parent, Qt::Window), handle_(parent), mode_(&wc::viewerMode(wc::ViewerKind::None)) {
    setWindowFlags(Qt::WindowFlags(0x8001003));
    initResultsViewer(mode_->number);
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::SignalLayerResult> result,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    RefreshSignalLayerChecksData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::SignalLayerDFMResult> result)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    RefreshSignalLayerDFMData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::SolderMaskResult> result,
                                           const QString& job, int kind, const QStringList& layers,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    job_ = job;
    LOG(INFO) << "solder mask results of " << job.toStdString() << " (kind " << kind << ", "
              << layers.size() << " layers checked)";
    RefreshSolderMaskData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::SolderMaskOptResult> result)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    RefreshSolderMaskOptData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::SilkScreenResult> result,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    RefreshSilkScreenData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::DrillResult> result,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    RefreshDrillData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::DrillTableResult> result,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    RefreshDrillData_g(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::BoardDrillResult> result,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    RefreshBoardDrillData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::PowerGroundResult> result,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    RefreshPowerGroundCheckData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::PowerGroundDFMResult> result,
                                           const QString& job, const QString& step)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    setJobAndStep(job, step);
    RefreshPowerGroundDFMData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::PrepareResult> result,
                                           const QString& step)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    step_ = step;
    RefreshPrepareCheck(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::MrcResult> result)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    RefreshMrcCheck(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::SurfaceAnalyzerResult> result,
                                           Check_Type type)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    check_type_ = type;
    RefreshSurfaceAnalyzerData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::PadSnappingResult> result)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    RefreshPadSnappingData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           const std::vector<std::string>& layers,
                                           wc::SharedResult<wc::TeardropsResult> result)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    RefreshTeardropsData(layers, std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           const std::vector<std::string>& layers,
                                           wc::SharedResult<wc::NFPRemovalResult> result)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    RefreshNFPRemovalData(layers, std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           const std::vector<std::string>& layers,
                                           wc::SharedResult<wc::AvoidConductorResult> result)
    : Widget_ResultsViewer(parent) {
    tag_ = tag;
    RefreshAVoidConductorData(layers, std::move(result));
}

Widget_ResultsViewer::~Widget_ResultsViewer() = default;

void Widget_ResultsViewer::initResultsViewer(int mode) {
    LOG(INFO) << "results viewer built in mode " << mode;
    const auto button = [this](const char* name) {
        auto* b = new QPushButton(this);
        b->setObjectName(QString::fromLatin1(name));
        return b;
    };
    const auto label = [this](const char* name) {
        auto* l = new QLabel(this);
        l->setObjectName(QString::fromLatin1(name));
        return l;
    };
    const auto combo = [this](const char* name, int items) {
        auto* c = new QComboBox(this);
        c->setObjectName(QString::fromLatin1(name));
        for (int i = 0; i < items; ++i) {
            c->addItem(QString());
        }
        c->setStyleSheet(QString::fromLatin1(kComboItems));
        return c;
    };

    m_pNamePB = button("m_pNamePB");
    m_pLayersLabel = label("m_pLayersLabel");
    m_pNonePB = button("m_pNonePB");
    m_pAllPB = button("m_pAllPB");
    m_pLayersList = new QListWidget(this);
    m_pLayersList->setObjectName(QStringLiteral("m_pLayersList"));
    m_pLayersList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pLayersList->setStyleSheet(QString::fromLatin1(kSelectedBlack));
    m_pCategoriesLabel = label("m_pCategoriesLabel");
    m_pCategoriesList = new QListWidget(this);
    m_pCategoriesList->setObjectName(QStringLiteral("m_pCategoriesList"));
    m_pCategoriesList->setStyleSheet(QString::fromLatin1(kSelectedBlue));
    m_pCategoriesList->setUniformItemSizes(true);
    m_pLayersList->setMinimumHeight(150);
    m_pCategoriesList->setMinimumHeight(150);

    m_pMeasLabel = label("m_pMeasLabel");
    auto* measure = new wc::LazyComboBox(this);
    measure->setObjectName(QStringLiteral("m_pMeasCB"));
    measure->addItem(QString());
    measure->setStyleSheet(QString::fromLatin1(kComboItems));
    measure->setFiller([this] {
        if (measure_stale_) {
            refreshMeasureValueList();
        }
    });
    m_pMeasCB = measure;
    m_pMeasCB->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_pMeasCB->setMinimumContentsLength(10);
    m_pLevelLabel = label("m_pLevelLabel");
    m_pLevelCB = combo("m_pLevelCB", wc::kSeverityCount);
    for (int level = 0; level < wc::kSeverityCount; ++level) {
        m_pLevelCB->setItemData(level, kLevelColours[level], Qt::BackgroundRole);
    }
    m_pLevelCB->setCurrentIndex(kDefaultLevel);
    applyLevelStyle();

    m_pFirstPB = button("m_pFirstPB");
    m_pLeftPB = button("m_pLeftPB");
    m_pRightPB = button("m_pRightPB");
    m_pLastPB = button("m_pLastPB");
    m_pIndexLabel = label("m_pIndexLabel");
    m_pIndexLE = new Korvo::UIAPI::ZeLineEdit(Korvo::UIAPI::ZeE_PositiveInteger, this);
    m_pIndexLE->setObjectName(QStringLiteral("m_pIndexLE"));
    m_pIndexLE->setFixedWidth(80);
    m_pCurrentResultLabel = label("m_pCurrentResultLabel");
    m_pCurrentResultLabel->setMinimumWidth(220);

    m_pShowAllCB = new QCheckBox(this);
    m_pShowAllCB->setObjectName(QStringLiteral("m_pShowAllCB"));
    m_pSelectionCB = new QCheckBox(this);
    m_pSelectionCB->setObjectName(QStringLiteral("m_pSelectionCB"));
    m_pAutoCB = combo("m_pAutoCB", 2);
    m_pReplaceCB = combo("m_pReplaceCB", 2);

    hit_table_model_ = new wc::HitTableModel(this);
    m_pHitTable = new QTableView(this);
    m_pHitTable->setObjectName(QStringLiteral("m_pHitTable"));
    m_pHitTable->setModel(hit_table_model_);
    m_pHitTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pHitTable->setSelectionMode(QAbstractItemView::SingleSelection);
    m_pHitTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_pHitTable->verticalHeader()->hide();
    m_pHitTable->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_pHitTable->verticalHeader()->setDefaultSectionSize(20);
    m_pHitTable->horizontalHeader()->setStretchLastSection(true);
    m_pHitTable->horizontalHeader()->setSortIndicator(wc::HitTableModel::IndexColumn,
                                                      Qt::AscendingOrder);
    m_pHitTable->setSortingEnabled(true);
    m_pHitTable->setMinimumHeight(160);
    m_pHitTable->setColumnWidth(wc::HitTableModel::IndexColumn, 90);
    m_pHitTable->setColumnWidth(wc::HitTableModel::ValueColumn, 130);

    m_pViewPB = button("m_pViewPB");
    m_pViewPB->setStyleSheet(QString::fromLatin1(kHistogramPicture));
    m_pViewPB->setFixedSize(32, 32);
    m_pFilterPB = button("m_pFilterPB");
    m_pToCADPB = button("m_pToCADPB");
    m_pClosePB = button("m_pClosePB");

    auto* lists = new QGridLayout;
    auto* layer_head = new QHBoxLayout;
    layer_head->addWidget(m_pLayersLabel);
    layer_head->addStretch();
    layer_head->addWidget(m_pNonePB);
    layer_head->addWidget(m_pAllPB);
    lists->addLayout(layer_head, 0, 0);
    lists->addWidget(m_pCategoriesLabel, 0, 1);
    lists->addWidget(m_pLayersList, 1, 0);
    lists->addWidget(m_pCategoriesList, 1, 1);
    lists->setColumnStretch(0, 2);
    lists->setColumnStretch(1, 3);

    auto* choices = new QHBoxLayout;
    choices->addWidget(m_pMeasLabel);
    choices->addWidget(m_pMeasCB, 1);
    choices->addSpacing(12);
    choices->addWidget(m_pLevelLabel);
    choices->addWidget(m_pLevelCB);

    auto* navigation = new QHBoxLayout;
    for (QWidget* w : {static_cast<QWidget*>(m_pFirstPB), static_cast<QWidget*>(m_pLeftPB),
                       static_cast<QWidget*>(m_pRightPB), static_cast<QWidget*>(m_pLastPB)}) {
        navigation->addWidget(w);
    }
    navigation->addSpacing(12);
    navigation->addWidget(m_pIndexLabel);
    navigation->addWidget(m_pIndexLE);
    navigation->addWidget(m_pCurrentResultLabel, 1);

    auto* show = new QHBoxLayout;
    show->addWidget(m_pShowAllCB);
    show->addWidget(m_pSelectionCB);
    show->addStretch();
    show->addWidget(m_pAutoCB);
    show->addWidget(m_pReplaceCB);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_pViewPB);
    buttons->addWidget(m_pFilterPB);
    buttons->addWidget(m_pToCADPB);
    buttons->addStretch();
    buttons->addWidget(m_pClosePB);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pNamePB);
    layout->addLayout(lists, 2);
    layout->addLayout(choices);
    layout->addLayout(navigation);
    layout->addLayout(show);
    layout->addWidget(m_pHitTable, 3);
    layout->addLayout(buttons);

    setFocusPolicy(Qt::StrongFocus);
    setTexts();
    change_language();
    resize(560, 640);

    connect(m_pNamePB, SIGNAL(clicked()), this, SLOT(on_Name_clicked()));
    connect(m_pLayersList, SIGNAL(itemClicked(QListWidgetItem*)), this,
            SLOT(on_m_pLayersList_itemClicked(QListWidgetItem*)));
    connect(m_pNonePB, SIGNAL(clicked()), this, SLOT(on_None_clicked()));
    connect(m_pAllPB, SIGNAL(clicked()), this, SLOT(on_All_clicked()));
    connect(m_pCategoriesList, SIGNAL(itemClicked(QListWidgetItem*)), this,
            SLOT(on_m_pCategoriesList_itemClicked(QListWidgetItem*)));
    connect(m_pMeasCB, SIGNAL(activated(QString)), this, SLOT(on_Meas_changed(QString)));
    connect(m_pFirstPB, SIGNAL(clicked()), this, SLOT(on_First_clicked()));
    connect(m_pLeftPB, SIGNAL(clicked()), this, SLOT(on_Left_clicked()));
    connect(m_pRightPB, SIGNAL(clicked()), this, SLOT(on_Right_clicked()));
    connect(m_pLastPB, SIGNAL(clicked()), this, SLOT(on_Last_clicked()));
    connect(m_pIndexLE, SIGNAL(returnPressed()), this, SLOT(on_Index_pressed()));
    connect(m_pLevelCB, SIGNAL(activated(QString)), this, SLOT(on_Level_changed(QString)));
    connect(m_pShowAllCB, SIGNAL(stateChanged(int)), this,
            SLOT(on_m_pShowAllCB_CheckState_Changed(int)));
    connect(m_pSelectionCB, SIGNAL(stateChanged(int)), this,
            SLOT(on_m_pSelectionCB_CheckState_Changed(int)));
    connect(m_pAutoCB, SIGNAL(activated(QString)), this, SLOT(on_Auto_changed(QString)));
    connect(m_pReplaceCB, SIGNAL(activated(QString)), this, SLOT(on_Replace_changed(QString)));
    connect(m_pViewPB, SIGNAL(clicked()), this, SLOT(on_View_clicked()));
    connect(m_pFilterPB, SIGNAL(clicked()), this, SLOT(on_Filter_clicked()));
    connect(m_pToCADPB, SIGNAL(clicked()), this, SLOT(on_ToCAD_clicked()));
    connect(m_pClosePB, SIGNAL(clicked()), this, SLOT(on_Close_clicked()));
    connect(m_pHitTable->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (syncing_table_ || !current.isValid()) {
                    return;
                }
                VIEWER_GUARDED({
                    // Sorting moves the current row but not the hit: nothing new to show.
                    const std::size_t position = hit_table_model_->positionOfRow(current.row());
                    if (position != navigator_.position() && navigator_.moveTo(position)) {
                        getSignalLayerCurrentItemData();
                    }
                });
            });
}

// Texts that change with the mode; change_language() re-applies the rest.
void Widget_ResultsViewer::setTexts() {
    m_pNamePB->setText(tr(mode_->caption));
    m_pToCADPB->setVisible(mode_->kind == wc::ViewerKind::PadSnapping);
}

// ---- refresh operations ---------------------------------------------------------------------

void Widget_ResultsViewer::RefreshSignalLayerChecksData(
    wc::SharedResult<wc::SignalLayerResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::SignalLayerChecks);
    showResult(row.kind, wc::signalLayerModel(result.pointer(), row.range_key));
}

void Widget_ResultsViewer::RefreshSignalLayerDFMData(
    wc::SharedResult<wc::SignalLayerDFMResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::SignalLayerDFM);
    showResult(row.kind, wc::signalLayerDFMModel(result.pointer(), row.range_key));
}

bool Widget_ResultsViewer::RefreshSolderMaskData(wc::SharedResult<wc::SolderMaskResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::SolderMask);
    showResult(row.kind, wc::solderMaskModel(result.pointer(), row.range_key));
    return !model_.empty();
}

void Widget_ResultsViewer::RefreshSolderMaskOptData(
    wc::SharedResult<wc::SolderMaskOptResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::SolderMaskOpt);
    showResult(row.kind, wc::solderMaskOptModel(result.pointer(), row.range_key,
                                                tr("All layers").toStdString(), {}));
}

void Widget_ResultsViewer::RefreshSilkScreenData(wc::SharedResult<wc::SilkScreenResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::SilkScreen);
    showResult(row.kind, wc::silkScreenModel(result.pointer(), row.range_key));
}

void Widget_ResultsViewer::RefreshDrillData(wc::SharedResult<wc::DrillResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::Drill);
    showResult(row.kind, wc::drillModel(result.pointer(), row.range_key));
}

void Widget_ResultsViewer::RefreshDrillData_g(wc::SharedResult<wc::DrillTableResult> result) {
    showResult(wc::ViewerKind::DrillTable, wc::drillTableModel(result.pointer()));
}

void Widget_ResultsViewer::RefreshBoardDrillData(wc::SharedResult<wc::BoardDrillResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::BoardDrill);
    showResult(row.kind, wc::boardDrillModel(result.pointer(), row.range_key));
}

void Widget_ResultsViewer::RefreshPowerGroundCheckData(
    wc::SharedResult<wc::PowerGroundResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::PowerGroundCheck);
    showResult(row.kind, wc::powerGroundModel(result.pointer(), row.range_key));
}

void Widget_ResultsViewer::RefreshPowerGroundDFMData(
    wc::SharedResult<wc::PowerGroundDFMResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::PowerGroundDFM);
    showResult(row.kind, wc::powerGroundDFMModel(result.pointer(), row.range_key));
}

void Widget_ResultsViewer::RefreshPrepareCheck(wc::SharedResult<wc::PrepareResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::Prepare);
    const QString name = step_.isEmpty() ? tr("All layers") : step_;
    showResult(row.kind, wc::prepareModel(result.pointer(), row.range_key, name.toStdString()));
}

void Widget_ResultsViewer::RefreshMrcCheck(wc::SharedResult<wc::MrcResult> result) {
    showResult(wc::ViewerKind::Mrc, wc::mrcModel(result.pointer()));
}

void Widget_ResultsViewer::RefreshSurfaceAnalyzerData(
    wc::SharedResult<wc::SurfaceAnalyzerResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::SurfaceAnalyzer);
    showResult(row.kind, wc::surfaceAnalyzerModel(result.pointer(), row.range_key));
}

void Widget_ResultsViewer::RefreshPadSnappingData(wc::SharedResult<wc::PadSnappingResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::PadSnapping);
    showResult(row.kind, wc::padSnappingModel(result.pointer(), row.range_key,
                                              tr("All layers").toStdString()));
}

void Widget_ResultsViewer::RefreshTeardropsData(const std::vector<std::string>& layers,
                                                wc::SharedResult<wc::TeardropsResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::Teardrops);
    showResult(row.kind, wc::teardropsModel(result.pointer(), row.range_key,
                                            joined(layers).toStdString(), layers));
}

void Widget_ResultsViewer::RefreshNFPRemovalData(const std::vector<std::string>& layers,
                                                 wc::SharedResult<wc::NFPRemovalResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::NFPRemoval);
    showResult(row.kind, wc::NFPRemovalModel(result.pointer(), row.range_key,
                                             joined(layers).toStdString(), layers));
}

void Widget_ResultsViewer::RefreshAVoidConductorData(
    const std::vector<std::string>& layers, wc::SharedResult<wc::AvoidConductorResult> result) {
    const auto& row = wc::viewerMode(wc::ViewerKind::AvoidConductor);
    showResult(row.kind, wc::avoidConductorModel(result.pointer(), row.range_key,
                                                 joined(layers).toStdString(), layers));
}

void Widget_ResultsViewer::setJobAndStep(const QString& job, const QString& step) {
    clearSelectedFeatures();
    job_ = job;
    step_ = step;
}

void Widget_ResultsViewer::showResult(wc::ViewerKind kind, wc::ResultsModel model) {
    mode_ = &wc::viewerMode(kind);
    VIEWER_GUARDED({
        clearSelectedFeatures();
        setTexts();
        filter_items_.reset();
        model_ = std::move(model);
        refreshSingalLayerList();
        if (m_pLayersList->count() > 0) {
            m_pLayersList->setCurrentRow(0);
        }
        current_item_ = -1;
        refreshCategories();
    });
}

// ---- lists ----------------------------------------------------------------------------------

void Widget_ResultsViewer::refreshSingalLayerList() {
    const QSignalBlocker blocker(m_pLayersList);
    m_pLayersList->clear();
    for (int i = 0; i < int(model_.layers().size()); ++i) {
        auto* item = new QListWidgetItem(layerListName(i), m_pLayersList);
        item->setData(Qt::UserRole, i);
    }
}

std::vector<int> Widget_ResultsViewer::chosenLayers() const {
    std::vector<int> layers;
    for (int row = 0; row < m_pLayersList->count(); ++row) {
        if (m_pLayersList->item(row)->isSelected()) {
            layers.push_back(m_pLayersList->item(row)->data(Qt::UserRole).toInt());
        }
    }
    return layers;
}

// The categories of the chosen layers with their counts under "Sv:"; the current category stays
// current when it is still listed, otherwise the first listed becomes current.
void Widget_ResultsViewer::refreshCategories() {
    const int level = m_pLevelCB->currentIndex();
    const auto entries = model_.categories(chosenLayers(), level);
    {
        const QSignalBlocker blocker(m_pCategoriesList);
        m_pCategoriesList->clear();
        int current_row = -1;
        for (const wc::CategoryEntry& entry : entries) {
            auto* item = new QListWidgetItem(
                QStringLiteral("%1 (%2)").arg(fromStd(entry.name)).arg(qulonglong(entry.count)),
                m_pCategoriesList);
            item->setData(Qt::UserRole, entry.item);
            if (entry.item == current_item_) {
                current_row = m_pCategoriesList->count() - 1;
            }
        }
        if (current_row < 0 && !entries.empty()) {
            current_row = 0;
        }
        m_pCategoriesList->setCurrentRow(current_row);
    }
    const int item =
        entries.empty() ? -1 : m_pCategoriesList->currentItem()->data(Qt::UserRole).toInt();
    if (item != current_item_ && filter_items_) {
        filter_items_.reset();
        emit send_reset_filter();
    }
    current_item_ = item;
    refreshHits(false);
}

void Widget_ResultsViewer::refreshHits(bool announce) {
    hits_ = current_item_ < 0
                ? wc::HitSequence()
                : model_.hits(chosenLayers(), current_item_, m_pLevelCB->currentIndex());
    clearMeasureValueList();
    refreshAdmitted();
    if (announce) {
        // The view learns which category is being browsed, with its layers and count.
        fillDrawingFrame(0);
        for (int layer : hits_.layers()) {
            for (const std::string& name : model_.layers()[std::size_t(layer)].layer_names) {
                drawing_.layer_names.push_back(name);
            }
        }
        send(wc::code::CategoryClicked);
    }
    showCurrent();
}

// "Meas:": "All", then every distinct value of the category as the display shows it. The entries
// cost a pass over the category's hits, so they are built when the list opens.
void Widget_ResultsViewer::clearMeasureValueList() {
    measure_key_.reset();
    measure_keys_.clear();
    measure_stale_ = true;
    const QSignalBlocker blocker(m_pMeasCB);
    m_pMeasCB->clear();
    m_pMeasCB->addItem(tr("All"));
}

void Widget_ResultsViewer::refreshMeasureValueList() {
    measure_stale_ = false;
    const double factor = displayPerEngine() * 1000.0;
    measure_keys_.clear();
    measure_keys_.reserve(hits_.size());
    for (std::size_t i = 0; i < hits_.size(); ++i) {
        measure_keys_.push_back(std::llround(hits_.at(i).hit->value * factor));
    }
    std::sort(measure_keys_.begin(), measure_keys_.end());
    measure_keys_.erase(std::unique(measure_keys_.begin(), measure_keys_.end()),
                        measure_keys_.end());
    QStringList entries;
    entries.reserve(int(measure_keys_.size()) + 1);
    entries << tr("All");
    for (long long key : measure_keys_) {
        entries << QString::number(double(key) / 1000.0, 'f', kValueDecimals);
    }
    // One insertion for the whole list: a combo box re-measures itself on every insertion.
    const QSignalBlocker blocker(m_pMeasCB);
    m_pMeasCB->clear();
    m_pMeasCB->addItems(entries);
}

// The hits the navigation steps through: the category's admitted hits, narrowed by the "Meas:"
// value and the feature filter when either is set.
void Widget_ResultsViewer::refreshAdmitted() {
    restricted_ = measure_key_.has_value() || filter_items_.has_value();
    admitted_.clear();
    if (restricted_) {
        std::set<int> passing;
        if (filter_items_) {
            for (const auto& [item, position] : *filter_items_) {
                if (item == current_item_) {
                    passing.insert(position);
                }
            }
        }
        const double factor = displayPerEngine() * 1000.0;
        for (std::size_t i = 0; i < hits_.size(); ++i) {
            if (filter_items_ && passing.count(int(i)) == 0) {
                continue;
            }
            if (measure_key_ && std::llround(hits_.at(i).hit->value * factor) != *measure_key_) {
                continue;
            }
            admitted_.push_back(std::uint32_t(i));
        }
    }
    navigator_.reset(restricted_ ? admitted_.size() : hits_.size());
    QStringList names;
    for (int i = 0; i < int(model_.layers().size()); ++i) {
        names << layerListName(i);
    }
    const QSignalBlocker blocker(m_pHitTable->selectionModel());
    hit_table_model_->setHits(&hits_, restricted_ ? &admitted_ : nullptr, names, displayPerEngine(),
                              kValueDecimals,
                              tr(Korvo::UIAPI::getUnitStringType(handle_, 1).c_str()));
}

wc::HitRef Widget_ResultsViewer::hitAt(std::size_t position) const {
    return hit_table_model_->hitAt(position);
}

QString Widget_ResultsViewer::layerListName(int layer) const {
    return fromStd(model_.layers()[std::size_t(layer)].name);
}

std::string Widget_ResultsViewer::itemName(int item) const {
    for (const wc::ResultLayer& layer : model_.layers()) {
        for (const wc::ResultCategory& category : layer.categories) {
            if (category.item == item) {
                return category.name;
            }
        }
    }
    return {};
}

double Widget_ResultsViewer::displayPerEngine() const {
    return Korvo::UIAPI::getUnitJudgeDouble(handle_, 1.0) / kNanometresPerMil;
}

// The "Sv:" box takes the colour of its entry.
void Widget_ResultsViewer::applyLevelStyle() {
    m_pLevelCB->setStyleSheet(QStringLiteral("QComboBox{background:%1;}")
                                  .arg(kLevelColours[m_pLevelCB->currentIndex()].name()) +
                              QString::fromLatin1(kComboItems));
}

// ---- slots, in the order the user meets them ------------------------------------------------

void Widget_ResultsViewer::on_Name_clicked() {
    VIEWER_GUARDED({
        if (*mode_->raise_signal != '\0') {
            QMetaObject::invokeMethod(this, mode_->raise_signal, Qt::DirectConnection);
        }
    });
}

void Widget_ResultsViewer::on_m_pLayersList_itemClicked(QListWidgetItem*) {
    VIEWER_GUARDED({ refreshCategories(); });
}

void Widget_ResultsViewer::on_None_clicked() {
    VIEWER_GUARDED({
        m_pLayersList->clearSelection();
        refreshCategories();
    });
}

void Widget_ResultsViewer::on_All_clicked() {
    VIEWER_GUARDED({
        m_pLayersList->selectAll();
        refreshCategories();
    });
}

void Widget_ResultsViewer::on_m_pCategoriesList_itemClicked(QListWidgetItem* item) {
    VIEWER_GUARDED({
        if (item == nullptr) {
            return;
        }
        const int chosen = item->data(Qt::UserRole).toInt();
        if (chosen != current_item_ && filter_items_) {
            filter_items_.reset();
            emit send_reset_filter();
        }
        current_item_ = chosen;
        refreshHits(true);
    });
}

void Widget_ResultsViewer::on_Meas_changed(const QString&) {
    VIEWER_GUARDED({
        const int index = m_pMeasCB->currentIndex();
        if (index > 0 && index <= int(measure_keys_.size())) {
            measure_key_ = measure_keys_[std::size_t(index - 1)];
        } else {
            measure_key_.reset();
        }
        refreshAdmitted();
        showCurrent();
    });
}

void Widget_ResultsViewer::on_First_clicked() {
    VIEWER_GUARDED({
        if (navigator_.first()) {
            getSignalLayerCurrentItemData();
        }
    });
}

void Widget_ResultsViewer::on_Left_clicked() {
    VIEWER_GUARDED({
        if (navigator_.previous()) {
            getSignalLayerCurrentItemData();
        } else if (filter_items_) {
            emit send_prev_filter();  // before the first filtered hit: the filter's previous set
        }
    });
}

void Widget_ResultsViewer::on_Right_clicked() {
    VIEWER_GUARDED({
        if (navigator_.next()) {
            getSignalLayerCurrentItemData();
        } else if (filter_items_) {
            emit send_next_filter();  // past the last filtered hit: the filter's next set
        }
    });
}

void Widget_ResultsViewer::on_Last_clicked() {
    VIEWER_GUARDED({
        if (navigator_.last()) {
            getSignalLayerCurrentItemData();
        }
    });
}

void Widget_ResultsViewer::on_Index_pressed() {
    VIEWER_GUARDED({
        bool ok = false;
        const long long index = m_pIndexLE->text().toLongLong(&ok);
        if (ok && navigator_.goToIndex(index)) {
            getSignalLayerCurrentItemData();
        } else {
            change_current_result_label();  // puts the current index back
        }
    });
}

void Widget_ResultsViewer::on_Level_changed(const QString&) {
    VIEWER_GUARDED({
        applyLevelStyle();
        refreshCategories();
    });
}

void Widget_ResultsViewer::on_m_pShowAllCB_CheckState_Changed(int) {
    VIEWER_GUARDED({ showAgain(); });
}

void Widget_ResultsViewer::on_m_pSelectionCB_CheckState_Changed(int state) {
    VIEWER_GUARDED({
        if (state == Qt::Unchecked) {
            clearSelectedFeatures();
        } else if (navigator_.valid()) {
            selectFeatures(hitAt(navigator_.position()));
        }
    });
}

void Widget_ResultsViewer::on_Auto_changed(const QString&) {
    VIEWER_GUARDED({ showAgain(); });
}

void Widget_ResultsViewer::on_Replace_changed(const QString&) {
    VIEWER_GUARDED({ showAgain(); });
}

void Widget_ResultsViewer::on_View_clicked() {
    VIEWER_GUARDED({
        if (histogram_ == nullptr) {
            histogram_ = new Widget_ResultsHistogram(this);
            histogram_->setObjectName(QStringLiteral("m_pHistogram"));
        }
        getResultHistogramData();
        histogram_->show();
        histogram_->raise();
    });
}

void Widget_ResultsViewer::on_Filter_clicked() {
    VIEWER_GUARDED({
        filter_info_ = Korvo::API::AnalysisFilterInfo();
        const std::vector<int> layers = chosenLayers();
        if (!layers.empty()) {
            filter_info_.layer = model_.layers()[std::size_t(layers.front())].name;
        }
        filter_info_.item = current_item_;
        filter_info_.level = m_pLevelCB->currentIndex();
        emit send_begin_filter(&filter_info_);
    });
}

void Widget_ResultsViewer::on_Close_clicked() {
    close();
}

// Hands the pad snapping result to an external editor; no editor is reachable from this
// library, so the user is told.
void Widget_ResultsViewer::on_ToCAD_clicked() {
    VIEWER_GUARDED({
        LOG(INFO) << "pad snapping result: no external editor connected";
        QMessageBox::information(this, tr("Information"), tr("No external editor is connected"),
                                 QMessageBox::Ok);
    });
}

void Widget_ResultsViewer::change_unit() {
    VIEWER_GUARDED({
        // "Meas:" values are display values: a chosen one does not survive the change.
        const bool keep_position = !measure_key_ && navigator_.valid();
        const std::size_t position = navigator_.position();
        clearMeasureValueList();
        refreshAdmitted();
        if (keep_position) {
            navigator_.moveTo(position);
        }
        change_current_result_label();
        if (histogram_ != nullptr && histogram_->isVisible()) {
            getResultHistogramData();
        }
    });
}

void Widget_ResultsViewer::change_language() {
    setWindowTitle(tr("Results Viewer"));
    m_pNamePB->setText(tr(mode_->caption));
    m_pLayersLabel->setText(tr("Layers"));
    m_pNonePB->setText(tr("None"));
    m_pAllPB->setText(tr("All"));
    m_pCategoriesLabel->setText(tr("Categories"));
    m_pMeasLabel->setText(tr("Meas:"));
    if (m_pMeasCB->count() > 0) {
        m_pMeasCB->setItemText(0, tr("All"));
    }
    m_pLevelLabel->setText(tr("Sv:"));
    for (int level = 0; level < wc::kSeverityCount; ++level) {
        m_pLevelCB->setItemText(level, tr(kLevelTexts[level]));
    }
    m_pFirstPB->setText(tr("First"));
    m_pLeftPB->setText(tr("<---"));
    m_pRightPB->setText(tr("--->"));
    m_pLastPB->setText(tr("Last"));
    m_pIndexLabel->setText(tr("Index:"));
    m_pShowAllCB->setText(tr("Show All"));
    m_pSelectionCB->setText(tr("Selection"));
    m_pAutoCB->setItemText(0, tr("Auto Zoom"));
    m_pAutoCB->setItemText(1, tr("Pan Only"));
    m_pReplaceCB->setItemText(0, tr("Replace layers"));
    m_pReplaceCB->setItemText(1, tr("Keep layers"));
    m_pFilterPB->setText(tr("Filter"));
    m_pToCADPB->setText(tr("Edit"));
    m_pClosePB->setText(tr("Close"));
    if (histogram_ != nullptr) {
        histogram_->change_language();
    }
}

// ---- filter protocol ------------------------------------------------------------------------

void Widget_ResultsViewer::get_begin_filter_result(Korvo::API::AnalysisFilterInfo* info) {
    VIEWER_GUARDED({
        if (info != nullptr) {
            getSignalLayerFilterResult(*info);
        }
    });
}

void Widget_ResultsViewer::get_next_filter_result() {
    on_Right_clicked();
}

void Widget_ResultsViewer::get_prev_filter_result() {
    on_Left_clicked();
}

void Widget_ResultsViewer::reset_filter_result() {
    on_unfilter_analysis_items();
}

void Widget_ResultsViewer::on_filter_analysis_items(
    const std::vector<std::tuple<int, int>>& items) {
    VIEWER_GUARDED({
        filter_items_ = items;
        refreshAdmitted();
        showCurrent();
    });
}

void Widget_ResultsViewer::on_unfilter_analysis_items() {
    VIEWER_GUARDED({
        if (!filter_items_) {
            return;
        }
        filter_items_.reset();
        refreshAdmitted();
        showCurrent();
    });
}

// The filter answers with (item, hit position) pairs; the viewer then steps through those of the
// current category only and tells the other listeners which they are.
void Widget_ResultsViewer::getSignalLayerFilterResult(const Korvo::API::AnalysisFilterInfo& info) {
    filter_items_ = info.items;
    refreshAdmitted();
    showCurrent();
    emit filter_analysis_items(*filter_items_);
}

// ---- showing hits ---------------------------------------------------------------------------

void Widget_ResultsViewer::showCurrent() {
    if (m_pShowAllCB->isChecked()) {
        getSignalLayerCurrentItemAllData();
        change_current_result_label();
    } else if (navigator_.valid()) {
        getSignalLayerCurrentItemData();
    } else {
        clearSelectedFeatures();
        change_current_result_label();
    }
}

void Widget_ResultsViewer::showAgain() {
    if (m_pShowAllCB->isChecked()) {
        getSignalLayerCurrentItemAllData();
    } else if (navigator_.valid()) {
        getSignalLayerCurrentItemData();
    }
}

void Widget_ResultsViewer::getSignalLayerCurrentItemData() {
    const wc::HitRef hit = hitAt(navigator_.position());
    if (hit.hit == nullptr) {
        return;
    }
    fillDrawingFrame(int(navigator_.index()));
    drawing_.layer_names = model_.layers()[std::size_t(hit.layer)].layer_names;
    drawing_.value_text = wc::hitValueText(mode_->value_style, *hit.hit, handle_).toStdString();
    addShape(hit);
    drawing_.shapes.back().layer = 0;
    send(mode_->one_hit_code);
    if (m_pSelectionCB->isChecked()) {
        selectFeatures(hit);
    }
    change_current_result_label();
}

void Widget_ResultsViewer::getSignalLayerCurrentItemAllData() {
    fillDrawingFrame(0);
    std::vector<int> first_name(model_.layers().size(), 0);
    for (int layer : hits_.layers()) {
        first_name[std::size_t(layer)] = int(drawing_.layer_names.size());
        for (const std::string& name : model_.layers()[std::size_t(layer)].layer_names) {
            drawing_.layer_names.push_back(name);
        }
    }
    const std::size_t count = navigator_.count();
    drawing_.shapes.reserve(count);
    for (std::size_t position = 0; position < count; ++position) {
        const wc::HitRef hit = hitAt(position);
        addShape(hit);
        drawing_.shapes.back().layer = first_name[std::size_t(hit.layer)];
    }
    send(mode_->all_hits_code);
}

void Widget_ResultsViewer::fillDrawingFrame(int index) {
    drawing_.zoom_policy = m_pAutoCB->currentIndex() == 1 ? analysis_drawing_data::pan_only
                                                          : analysis_drawing_data::auto_zoom;
    drawing_.replace_layers = m_pReplaceCB->currentIndex() == 0;
    drawing_.layer_names.clear();
    drawing_.item_name = itemName(current_item_);
    drawing_.value_text.clear();
    drawing_.index = index;
    drawing_.count = int(navigator_.count());
    drawing_.shapes.clear();
    const double inf = std::numeric_limits<double>::infinity();
    drawing_.bounds = {inf, inf, -inf, -inf};
}

void Widget_ResultsViewer::addShape(const wc::HitRef& hit) {
    const Korvo::API::check_points& shape = hit.hit->shape;
    analysis_drawing_shape out;
    out.kind = shape.kind;
    out.points = shape.points.data();
    out.point_count = int32_t(shape.points.size());
    out.value = hit.hit->value;
    drawing_.shapes.push_back(out);
    Korvo::API::reply_box& box = drawing_.bounds;
    for (const Korvo::API::point& p : shape.points) {
        box.xmin = std::min(box.xmin, p.x);
        box.ymin = std::min(box.ymin, p.y);
        box.xmax = std::max(box.xmax, p.x);
        box.ymax = std::max(box.ymax, p.y);
    }
}

void Widget_ResultsViewer::send(int code) {
    if (drawing_.bounds.xmin > drawing_.bounds.xmax) {
        drawing_.bounds = {};  // nothing to draw
    }
    PluginMetaData message;
    message.sender = wc::module::AnalysisMenu;
    message.receiver = wc::module::GraphicView;
    message.code = code;
    message.payload = &drawing_;
    QTpluginsManger4CAM::instance()->recMegToPlugin(const_cast<void*>(handle_), message);
}

void Widget_ResultsViewer::change_current_result_label() {
    const QSignalBlocker blocker(m_pIndexLE);
    if (!navigator_.valid()) {
        m_pIndexLE->clear();
        m_pCurrentResultLabel->setText(QStringLiteral("0/%1").arg(qulonglong(navigator_.count())));
        return;
    }
    const wc::HitRef hit = hitAt(navigator_.position());
    m_pIndexLE->setText(QString::number(qulonglong(navigator_.index())));
    m_pCurrentResultLabel->setText(QStringLiteral("%1/%2  %3  %4")
                                       .arg(qulonglong(navigator_.index()))
                                       .arg(qulonglong(navigator_.count()))
                                       .arg(wc::hitValueText(mode_->value_style, *hit.hit, handle_))
                                       .arg(layerListName(hit.layer)));
    const int row = hit_table_model_->rowOfPosition(navigator_.position());
    if (row >= 0) {
        syncing_table_ = true;
        m_pHitTable->selectRow(row);
        m_pHitTable->scrollTo(hit_table_model_->index(row, 0));
        syncing_table_ = false;
    }
}

// ---- selection ------------------------------------------------------------------------------

// Selects the hit's features in the job; the previous hit's selection is cleared first.
void Widget_ResultsViewer::selectFeatures(const wc::HitRef& hit) {
    clearSelectedFeatures();
    if (hit.hit == nullptr || hit.hit->features.empty()) {
        return;
    }
    if (job_.isEmpty()) {
        LOG(INFO) << "no job given: the hit's features are not selected";
        return;
    }
    std::vector<std::string> steps;
    std::vector<Korvo::API::layer_info> layers;
    wc::recordedGetMatrix(job_.toStdString(), steps, layers);
    for (const Korvo::API::feature_ref& ref : hit.hit->features) {
        auto layer = std::find_if(layers.begin(), layers.end(),
                                  [&ref](const auto& l) { return l.row == ref.layer_row; });
        if (layer == layers.end()) {
            LOG(ERROR) << "no layer in row " << ref.layer_row << " of " << job_.toStdString();
            continue;
        }
        Korvo::API::featureInfo feature;
        feature.id = ref.id;
        feature.layer = layer->name;
        if (!Korvo::API::select_feature_by_info(job_.toStdString(), step_.toStdString(),
                                                layer->name, feature)) {
            LOG(ERROR) << "feature " << ref.id << " of " << layer->name << " not selected";
        }
        if (std::find(selected_layers_.begin(), selected_layers_.end(), layer->name) ==
            selected_layers_.end()) {
            selected_layers_.push_back(layer->name);
        }
    }
}

void Widget_ResultsViewer::clearSelectedFeatures() {
    for (const std::string& layer : selected_layers_) {
        wc::recordedClearSelectedFeatures(job_.toStdString(), step_.toStdString(), layer);
    }
    selected_layers_.clear();
}

// ---- histogram and closing ------------------------------------------------------------------

void Widget_ResultsViewer::getResultHistogramData() {
    std::vector<double> values;
    values.reserve(navigator_.count());
    const double factor = displayPerEngine();
    for (std::size_t position = 0; position < navigator_.count(); ++position) {
        values.push_back(hitAt(position).hit->value * factor);
    }
    const QString title = m_pCategoriesList->currentItem() != nullptr
                              ? m_pCategoriesList->currentItem()->text()
                              : QString();
    histogram_->setHistogram(title, tr(Korvo::UIAPI::getUnitStringType(handle_, 1).c_str()),
                             wc::histogramOf(values, kHistogramBins));
}

void Widget_ResultsViewer::closeEvent(QCloseEvent* event) {
    guardedSlot(__LINE__, [&]() {
        clearSelectedFeatures();
        if (histogram_ != nullptr) {
            histogram_->close();
        }
    });
    // The view clears the analysis drawing whatever happened above.
    fillDrawingFrame(0);
    drawing_.count = 0;
    send(wc::code::ViewerClosed);
    QWidget::closeEvent(event);
}

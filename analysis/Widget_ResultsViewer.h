#pragma once
// The one window in which every analysis and optimisation result is browsed: layers, categories
// with exact counts under the "Sv:" entry, stepping through the admitted hits, a sortable hit
// table (grouped by item, layer or net on demand, narrowed by a text filter, each hit marked once
// shown) and a histogram. It draws nothing itself: each hit or set of hits shown goes to the
// graphic view as a message carrying an analysis_drawing_data.
//
// A check dialog may hand it a wc::TriageContext (setTriage): the viewer then identifies its
// hits, applies the waivers of the result database (waived hits leave the counts and lists until
// the "Waived" view is chosen), and marks each hit new or unchanged against an earlier run.
//
// Results are taken as wc::SharedResult: pass a std::shared_ptr to the (const) result and the
// viewer keeps it alive while it shows it, or pass the map itself and it is lent: the calling
// dialog keeps it alive and unchanged until it refreshes the viewer with a newer one. The viewer
// never copies a result.

#include <QRegularExpression>
#include <QStringList>
#include <QWidget>
#include <cstdint>
#include <optional>
#include <tuple>
#include <vector>

#include "HitBrowser.h"
#include "HitSelection.h"
#include "Korvo_UIAPI.h"
#include "ResultAdapters.h"
#include "SharedResult.h"
#include "TriageContext.h"
#include "ViewerModes.h"
#include "analysis_drawing_data.h"
#include "frame/WidgetCommonExport.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class Widget_ResultsHistogram;
namespace Korvo::UIAPI {
class ZeLineEdit;
}
namespace wc {
class HitTableView;
class MeasureComboBox;
class TriagePanel;
struct HitColumns;
}  // namespace wc

class WIDGET_COMMON_EXPORT Widget_ResultsViewer : public QWidget {
    Q_OBJECT
public:
    using Check_Type = Korvo::UIAPI::Check_Type;

    explicit Widget_ResultsViewer(QWidget* parent);
    // One constructor and one refresh operation per kind of result, generated from the kind's
    // row in Widget_ResultsViewer_Kinds.cpp.
    // The leading int is the opening dialog's own tag; the viewer keeps it (tag()) and does not
    // interpret it.
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::SignalLayerResult> result,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    Widget_ResultsViewer(int tag, QWidget* parent,
                         wc::SharedResult<wc::SignalLayerDFMResult> result);
    // `job` is where "Selection" selects; `layers` are the layers that were checked.
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::SolderMaskResult> result,
                         const QString& job, int kind, const QStringList& layers,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    Widget_ResultsViewer(int tag, QWidget* parent,
                         wc::SharedResult<wc::SolderMaskOptResult> result);
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::SilkScreenResult> result,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::DrillResult> result,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::DrillTableResult> result,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::BoardDrillResult> result,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::PowerGroundResult> result,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    // `job` and `step` are where "Selection" selects.
    Widget_ResultsViewer(int tag, QWidget* parent,
                         wc::SharedResult<wc::PowerGroundDFMResult> result, const QString& job,
                         const QString& step);
    // `step` names the single entry under "Layers".
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::PrepareResult> result,
                         const QString& step);
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::MrcResult> result);
    Widget_ResultsViewer(int tag, QWidget* parent,
                         wc::SharedResult<wc::SurfaceAnalyzerResult> result,
                         Check_Type type = Korvo::UIAPI::Check_Engine);
    Widget_ResultsViewer(int tag, QWidget* parent, wc::SharedResult<wc::PadSnappingResult> result);
    Widget_ResultsViewer(int tag, QWidget* parent, const std::vector<std::string>& layers,
                         wc::SharedResult<wc::TeardropsResult> result);
    Widget_ResultsViewer(int tag, QWidget* parent, const std::vector<std::string>& layers,
                         wc::SharedResult<wc::NFPRemovalResult> result);
    Widget_ResultsViewer(int tag, QWidget* parent, const std::vector<std::string>& layers,
                         wc::SharedResult<wc::AvoidConductorResult> result);
    ~Widget_ResultsViewer() override;

    // Replace the shown result; each sets the mode, resets the position and rebuilds the lists.
    void RefreshSignalLayerChecksData(wc::SharedResult<wc::SignalLayerResult> result);
    void RefreshSignalLayerDFMData(wc::SharedResult<wc::SignalLayerDFMResult> result);
    // False when the result holds no layer.
    bool RefreshSolderMaskData(wc::SharedResult<wc::SolderMaskResult> result);
    void RefreshSolderMaskOptData(wc::SharedResult<wc::SolderMaskOptResult> result);
    void RefreshSilkScreenData(wc::SharedResult<wc::SilkScreenResult> result);
    void RefreshDrillData(wc::SharedResult<wc::DrillResult> result);
    void RefreshDrillData_g(wc::SharedResult<wc::DrillTableResult> result);
    void RefreshBoardDrillData(wc::SharedResult<wc::BoardDrillResult> result);
    void RefreshPowerGroundCheckData(wc::SharedResult<wc::PowerGroundResult> result);
    void RefreshPowerGroundDFMData(wc::SharedResult<wc::PowerGroundDFMResult> result);
    void RefreshPrepareCheck(wc::SharedResult<wc::PrepareResult> result);
    void RefreshMrcCheck(wc::SharedResult<wc::MrcResult> result);
    void RefreshSurfaceAnalyzerData(wc::SharedResult<wc::SurfaceAnalyzerResult> result);
    void RefreshPadSnappingData(wc::SharedResult<wc::PadSnappingResult> result);
    void RefreshTeardropsData(const std::vector<std::string>& layers,
                              wc::SharedResult<wc::TeardropsResult> result);
    void RefreshNFPRemovalData(const std::vector<std::string>& layers,
                               wc::SharedResult<wc::NFPRemovalResult> result);
    void RefreshAVoidConductorData(const std::vector<std::string>& layers,
                                   wc::SharedResult<wc::AvoidConductorResult> result);

    // The job and step in which "Selection" selects the shown hit's features.
    void setJobAndStep(const QString& job, const QString& step);
    // Waivers and the comparison with an earlier run for the result just shown; a refresh ends
    // them, so a dialog that gives a context gives it again after each refresh.
    void setTriage(const wc::TriageContext& context);
    const wc::TriagePanel& triage() const { return *m_pTriage; }

    int mode() const { return mode_->number; }
    wc::ViewerKind kind() const { return mode_->kind; }
    int tag() const { return tag_; }
    Check_Type checkType() const { return check_type_; }
    const wc::ResultsModel& model() const { return browser_.model(); }
    // What the last message carried.
    const Korvo::API::analysis_drawing_data& drawingData() const { return drawing_; }
    // Admitted hits of the current category, and the position among them (from 1; 0 for none).
    std::size_t currentCount() const { return browser_.navigator().count(); }
    std::size_t currentIndex() const { return browser_.navigator().index(); }

public slots:
    void on_Name_clicked();
    void on_m_pLayersList_itemClicked(QListWidgetItem* item);
    void on_None_clicked();
    void on_All_clicked();
    void on_m_pCategoriesList_itemClicked(QListWidgetItem* item);
    void on_Meas_changed(const QString& text);
    void on_First_clicked();
    void on_Left_clicked();
    void on_Right_clicked();
    void on_Last_clicked();
    void on_Index_pressed();
    void on_Level_changed(const QString& text);
    void on_m_pShowAllCB_CheckState_Changed(int state);
    void on_m_pSelectionCB_CheckState_Changed(int state);
    void on_Auto_changed(const QString& text);
    void on_Replace_changed(const QString& text);
    void on_View_clicked();
    void on_Filter_clicked();
    void on_Close_clicked();
    void on_ToCAD_clicked();
    void on_Group_changed(const QString& text);
    void on_Find_pressed();
    // A point picked in the graphic view (engine units): the listed hit nearest to it within
    // `radius` becomes current and is shown; false when none is that near.
    bool pickHitAt(const Korvo::API::point& at, double radius);
    void change_unit();
    void change_language();

    // Filter protocol with the feature filter.
    void get_begin_filter_result(Korvo::API::AnalysisFilterInfo* info);
    void get_next_filter_result();
    void get_prev_filter_result();
    void reset_filter_result();
    void on_filter_analysis_items(const std::vector<std::tuple<int, int>>& items);
    void on_unfilter_analysis_items();

signals:
    void Signal_check_raise();
    void Signal_DFM_raise();
    void SolderMask_check_raise();
    void SolderMask_DFM_raise();
    void Silk_check_raise();
    void Drill_check_raise();
    void BoardDrill_check_raise();
    void PowerGround_raise();
    void PowerGround_DFM_raise();
    void Prepare_check_raise();
    void Mrc_check_raise();
    void Surface_check_raise();
    void PadSnapping_raise();
    void TearDrop_DFM_raise();
    void NFP_DFM_raise();
    void Avoid_Conductor_DFM_raise();

    void send_begin_filter(Korvo::API::AnalysisFilterInfo* info);
    void send_next_filter();
    void send_prev_filter();
    void send_reset_filter();
    // (item, hit position) pairs the viewer now steps through, and the end of that restriction.
    void filter_analysis_items(const std::vector<std::tuple<int, int>>& items);
    void unfilter_analysis_items();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    using Raise = void (Widget_ResultsViewer::*)();

    Widget_ResultsViewer(QWidget* parent, int tag, Check_Type type);
    void initResultsViewer(int mode);
    void buildControls();
    void configureControls();

    // The one entry of every kind: shows `result` through the adapter of its type, in the mode
    // of `kind`. A result of a whole step is listed as `entry` ("All layers" when not given),
    // standing for the job's `layers`.
    template <typename Result>
    void showResult(wc::ViewerKind kind, Raise raise, wc::SharedResult<Result> result,
                    std::optional<QString> entry = std::nullopt,
                    const std::vector<std::string>& layers = {});
    void showModel(const wc::ViewerMode& mode, Raise raise, wc::ResultsModel model);

    // Lists, from the outside in: layers, categories, then the hits of the category.
    void refreshSingalLayerList();  // the layer list; the name is written so on purpose
    // Each chooses the category again; `keep` puts the navigation back near where it stood.
    void refreshCategories(std::optional<std::size_t> keep = std::nullopt);
    // announce: tell the view the category was chosen
    void refreshHits(int item, bool announce, std::optional<std::size_t> keep = std::nullopt);
    void relabelCategories();
    void clearMeasureValueList();
    void refreshTable();

    std::vector<int> chosenLayers() const;
    void step(bool (wc::HitNavigator::*move)(), void (Widget_ResultsViewer::*past_end)());
    void showPicked(int item, std::size_t position);
    wc::HitColumns hitColumns() const;
    void applyFind();
    // Triage: what the view admits, the category lines, and the answers to the panel.
    void applyPass();
    // (item, line) of each category of the chosen layers under the severity entry.
    std::vector<std::pair<int, QString>> listedCategories(int severity) const;
    void triageChanged(bool other_run);
    // Browses `model`, on the layers chosen so far (keep_layers) or on its first.
    void browse(std::shared_ptr<const wc::ResultsModel> model, bool keep_layers);
    void waiveCurrent();
    void waiveRows();
    void change_current_result_label();
    void showCurrent();  // the category's hits after a change of layer, category or entry
    void showAgain();    // the same hit or hits, after a change of zoom or layer policy
    // The one-hit and all-hits operations of every mode; the row of the mode gives the codes.
    void getSignalLayerCurrentItemData();
    void getSignalLayerCurrentItemAllData();
    void getSignalLayerFilterResult(const Korvo::API::AnalysisFilterInfo& info);
    void startDrawing(int index);
    void getResultHistogramData();
    double displayPerEngine() const;
    QString layerListName(int layer) const;
    void applyLevelStyle();

    template <typename Body>
    bool guardedSlot(int line, Body&& body);

    const void* handle_;
    int tag_ = 0;
    Check_Type check_type_ = Korvo::UIAPI::Check_Engine;
    const wc::ViewerMode* mode_;
    Raise raise_ = nullptr;  // the signal that asks the owning dialog to come to the front
    wc::HitBrowser browser_;
    // The result shown; browser_ browses the earlier run's instead under the "Fixed" view.
    std::shared_ptr<const wc::ResultsModel> shown_ = std::make_shared<wc::ResultsModel>();
    std::vector<std::uint8_t> visited_;  // per hit number of shown_
    QRegularExpression find_;            // the table's text filter; none when empty
    Korvo::API::analysis_drawing_data drawing_;
    Korvo::API::AnalysisFilterInfo filter_info_;
    wc::HitSelection selection_;

    QPushButton* m_pNamePB = nullptr;
    QLabel* m_pLayersLabel = nullptr;
    QPushButton* m_pNonePB = nullptr;
    QPushButton* m_pAllPB = nullptr;
    QListWidget* m_pLayersList = nullptr;
    QLabel* m_pCategoriesLabel = nullptr;
    QListWidget* m_pCategoriesList = nullptr;
    QLabel* m_pMeasLabel = nullptr;
    wc::MeasureComboBox* m_pMeasCB = nullptr;
    QLabel* m_pLevelLabel = nullptr;
    QComboBox* m_pLevelCB = nullptr;
    QPushButton* m_pFirstPB = nullptr;
    QPushButton* m_pLeftPB = nullptr;
    QPushButton* m_pRightPB = nullptr;
    QPushButton* m_pLastPB = nullptr;
    QLabel* m_pIndexLabel = nullptr;
    Korvo::UIAPI::ZeLineEdit* m_pIndexLE = nullptr;
    QLabel* m_pCurrentResultLabel = nullptr;
    QCheckBox* m_pShowAllCB = nullptr;
    QCheckBox* m_pSelectionCB = nullptr;
    QComboBox* m_pAutoCB = nullptr;
    QComboBox* m_pReplaceCB = nullptr;
    QLabel* m_pGroupLabel = nullptr;
    QComboBox* m_pGroupCB = nullptr;
    QLabel* m_pFindLabel = nullptr;
    QLineEdit* m_pFindLE = nullptr;
    QLabel* m_pFindStatus = nullptr;
    wc::TriagePanel* m_pTriage = nullptr;
    wc::HitTableView* m_pHitTable = nullptr;
    QPushButton* m_pViewPB = nullptr;
    QPushButton* m_pFilterPB = nullptr;
    QPushButton* m_pToCADPB = nullptr;
    QPushButton* m_pClosePB = nullptr;
    Widget_ResultsHistogram* histogram_ = nullptr;
};

#include <glog/logging.h>

#include "Widget_ResultsViewer.h"

// The results viewer's entry for each kind of result: its constructors and refresh operations,
// generated from one row per kind. A row names the result type, its kind (its row of
// ViewerModes), its refresh operation and its raise signal. A constructor is the plain viewer
// followed by the refresh; a refresh shows the result through the adapter of its type.

namespace {

QString joined(const std::vector<std::string>& names) {
    QStringList out;
    for (const std::string& name : names) {
        out << QString::fromStdString(name);
    }
    return out.join(QLatin1Char(';'));
}

}  // namespace

template <typename Result>
void Widget_ResultsViewer::showResult(wc::ViewerKind kind, Raise raise,
                                      wc::SharedResult<Result> result, std::optional<QString> entry,
                                      const std::vector<std::string>& layers) {
    const wc::ViewerMode& mode = wc::viewerMode(kind);
    const QString name = entry ? *entry : tr("All layers");
    showModel(mode, raise,
              wc::modelOf(result.pointer(), {mode.range_key, name.toStdString(), layers}));
}

// The refresh alone: the constructor is written out below.
#define VIEWER_REFRESH(Result, Kind, Refresh, Raise)                                       \
    void Widget_ResultsViewer::Refresh(wc::SharedResult<wc::Result> result) {              \
        showResult(wc::ViewerKind::Kind, &Widget_ResultsViewer::Raise, std::move(result)); \
    }

// A check: the constructor takes the check type last.
#define VIEWER_CHECK(Result, Kind, Refresh, Raise)                                      \
    Widget_ResultsViewer::Widget_ResultsViewer(                                         \
        int tag, QWidget* parent, wc::SharedResult<wc::Result> result, Check_Type type) \
        : Widget_ResultsViewer(parent, tag, type) {                                     \
        Refresh(std::move(result));                                                     \
    }                                                                                   \
    VIEWER_REFRESH(Result, Kind, Refresh, Raise)

// The constructor takes the result only.
#define VIEWER_PLAIN(Result, Kind, Refresh, Raise)                                  \
    Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,            \
                                               wc::SharedResult<wc::Result> result) \
        : Widget_ResultsViewer(parent, tag, Korvo::UIAPI::Check_Engine) {           \
        Refresh(std::move(result));                                                 \
    }                                                                               \
    VIEWER_REFRESH(Result, Kind, Refresh, Raise)

// An optimisation of the layers of its run: both take the layers first, listed as one entry.
#define VIEWER_OVER_LAYERS(Result, Kind, Refresh, Raise)                                  \
    Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,                  \
                                               const std::vector<std::string>& layers,    \
                                               wc::SharedResult<wc::Result> result)       \
        : Widget_ResultsViewer(parent, tag, Korvo::UIAPI::Check_Engine) {                 \
        Refresh(layers, std::move(result));                                               \
    }                                                                                     \
    void Widget_ResultsViewer::Refresh(const std::vector<std::string>& layers,            \
                                       wc::SharedResult<wc::Result> result) {             \
        showResult(wc::ViewerKind::Kind, &Widget_ResultsViewer::Raise, std::move(result), \
                   joined(layers), layers);                                               \
    }

// clang-format off
//           result type, kind, refresh operation, raise signal
VIEWER_CHECK(SignalLayerResult, SignalLayerChecks, RefreshSignalLayerChecksData, Signal_check_raise)
VIEWER_CHECK(SilkScreenResult, SilkScreen, RefreshSilkScreenData, Silk_check_raise)
VIEWER_CHECK(DrillResult, Drill, RefreshDrillData, Drill_check_raise)
VIEWER_CHECK(DrillTableResult, DrillTable, RefreshDrillData_g, Drill_check_raise)
VIEWER_CHECK(BoardDrillResult, BoardDrill, RefreshBoardDrillData, BoardDrill_check_raise)
VIEWER_CHECK(PowerGroundResult, PowerGroundCheck, RefreshPowerGroundCheckData, PowerGround_raise)
VIEWER_CHECK(SurfaceAnalyzerResult, SurfaceAnalyzer, RefreshSurfaceAnalyzerData, Surface_check_raise)
VIEWER_PLAIN(SignalLayerDFMResult, SignalLayerDFM, RefreshSignalLayerDFMData, Signal_DFM_raise)
VIEWER_PLAIN(SolderMaskOptResult, SolderMaskOpt, RefreshSolderMaskOptData, SolderMask_DFM_raise)
VIEWER_PLAIN(MrcResult, Mrc, RefreshMrcCheck, Mrc_check_raise)
VIEWER_PLAIN(PadSnappingResult, PadSnapping, RefreshPadSnappingData, PadSnapping_raise)
VIEWER_OVER_LAYERS(TeardropsResult, Teardrops, RefreshTeardropsData, TearDrop_DFM_raise)
VIEWER_OVER_LAYERS(NFPRemovalResult, NFPRemoval, RefreshNFPRemovalData, NFP_DFM_raise)
VIEWER_OVER_LAYERS(AvoidConductorResult, AvoidConductor, RefreshAVoidConductorData, Avoid_Conductor_DFM_raise)
VIEWER_REFRESH(PowerGroundDFMResult, PowerGroundDFM, RefreshPowerGroundDFMData, PowerGround_DFM_raise)
// clang-format on

#undef VIEWER_OVER_LAYERS
#undef VIEWER_PLAIN
#undef VIEWER_CHECK
#undef VIEWER_REFRESH

// The kinds whose constructor or refresh takes more.
Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::SolderMaskResult> result,
                                           const QString& job, int kind, const QStringList& layers,
                                           Check_Type type)
    : Widget_ResultsViewer(parent, tag, type) {
    selection_.setJobAndStep(job, selection_.step());
    LOG(INFO) << "solder mask results of " << job.toStdString() << " (kind " << kind << ", "
              << layers.size() << " layers checked)";
    RefreshSolderMaskData(std::move(result));
}

bool Widget_ResultsViewer::RefreshSolderMaskData(wc::SharedResult<wc::SolderMaskResult> result) {
    showResult(wc::ViewerKind::SolderMask, &Widget_ResultsViewer::SolderMask_check_raise,
               std::move(result));
    return !browser_.model().empty();
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::PowerGroundDFMResult> result,
                                           const QString& job, const QString& step)
    : Widget_ResultsViewer(parent, tag, Korvo::UIAPI::Check_Engine) {
    setJobAndStep(job, step);
    RefreshPowerGroundDFMData(std::move(result));
}

Widget_ResultsViewer::Widget_ResultsViewer(int tag, QWidget* parent,
                                           wc::SharedResult<wc::PrepareResult> result,
                                           const QString& step)
    : Widget_ResultsViewer(parent, tag, Korvo::UIAPI::Check_Engine) {
    selection_.setJobAndStep(selection_.job(), step);
    RefreshPrepareCheck(std::move(result));
}

// The single entry is the step's.
void Widget_ResultsViewer::RefreshPrepareCheck(wc::SharedResult<wc::PrepareResult> result) {
    const QString& step = selection_.step();
    showResult(wc::ViewerKind::Prepare, &Widget_ResultsViewer::Prepare_check_raise,
               std::move(result), step.isEmpty() ? std::nullopt : std::optional<QString>(step));
}

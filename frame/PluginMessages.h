#pragma once
// Module names and message codes the dialogs exchange with the host's other modules, written
// once so that no dialog retypes a number.

#include <QString>

namespace wc {
namespace module {
inline const QString GraphicView = QStringLiteral("Graphic_View.dll");
inline const QString JobList = QStringLiteral("Graphic_JobList.dll");
inline const QString Matrix = QStringLiteral("Matrix.dll");
inline const QString AnalysisMenu = QStringLiteral("Graphic_MenuBar_Analysis.dll");
inline const QString ActionsMenu = QStringLiteral("Graphic_MenuBar_Actions.dll");
inline const QString StepMenu = QStringLiteral("Graphic_MenuBar_Step.dll");
inline const QString MoveToolbar = QStringLiteral("Graphic_Toolbar_Move.dll");
// The sender of the notifications after an optimisation changed the job.
inline const QString DataView = QStringLiteral("CAM_PNData_View.dll");
}  // namespace module

namespace code {
// Host bookkeeping.
constexpr int RefreshGraphic = 20002400;       // "DstType" = "Graphic"
constexpr int RefreshMatrix = 20002401;        // "DstType" = "Matrix"
constexpr int CheckTypeChanged = 20002407;     // "CheckType"
constexpr int ReferenceJobChanged = 20001700;  // "RefJobName" and related keys

// Results shown in the graphic view.
constexpr int ShowOneHit = 20002803;
constexpr int ShowAllHits = 20002808;
constexpr int ViewerClosed = 20002810;
constexpr int SolderMaskOptOneHit = 20002817;
constexpr int SolderMaskOptAllHits = 20002818;
constexpr int NfpOrConductorOneHit = 20002819;
constexpr int TeardropOneHit = 20002822;
constexpr int DrillTableOneHit = 20002825;
constexpr int DrillTableAllHits = 20002826;
constexpr int CategoryClicked = 20002829;
constexpr int MrcOneHit = 20002832;
constexpr int MrcAllHits = 20002833;
constexpr int PrepareOneHit = 20002834;
constexpr int PrepareAllHits = 20002835;
constexpr int PadSnappingOneHit = 20002836;
constexpr int PadSnappingAllHits = 20002807;
constexpr int PowerGroundOneHit = 20002840;
constexpr int PowerGroundAllHits = 20002841;
constexpr int PowerGroundOptAllHits = 20002844;

// Feature filter popup to the job list and the view.
constexpr int FilterChanged = 20000017;
constexpr int FilterSelect = 20000018;
constexpr int FilterUnselect = 20000019;
constexpr int FilterHighlight = 20000020;
constexpr int FilterTurnOff = 20000021;
constexpr int FilterHistogramOrClose = 20000031;
constexpr int PickIncludeSymbol = 20000061;
constexpr int PickAddIncludeSymbol = 20000062;
constexpr int PickExcludeSymbol = 20000063;
constexpr int PickAddExcludeSymbol = 20000064;
constexpr int ZoomToFeature = 20000065;

// Step-and-repeat editor: puts the view into picking mode.
constexpr int PickReferenceStep = 20000267;
}  // namespace code

// After an operation changed `job`: tells the matrix, then the job list and graphics, through
// QTpluginsManger4CAM::Ze_UpdateJob.
void notifyJobChanged(const QString& job, const QString& sender = module::DataView);

}  // namespace wc

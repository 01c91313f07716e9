#include "ViewerModes.h"

#include <QtGlobal>
#include <algorithm>

#include "Korvo_UIAPI.h"
#include "frame/PluginMessages.h"

namespace wc {
namespace {

constexpr double kNanometresPerMil = 25400.0;
const char* const kViewerFile = "Widget_ResultsViewer.cpp";
const char* const kViewerNfpFile = "Widget_ResultsViewer_NFP.cpp";

}  // namespace

const std::vector<ViewerMode>& viewerModes() {
    using namespace code;
    using K = ViewerKind;
    using V = ValueStyle;
    // Modes whose all-hits code is not fixed elsewhere use the common "Show All" code. The
    // captions are the viewer's texts, translated in its context.
    static const std::vector<ViewerMode> modes = {
        {K::None, 0, "", "", ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::Drill, 1, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Drill Checks"), "DrillRanges",
         ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::BoardDrill, 2, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Board-DrillChecks"),
         "BoardDrillRanges", ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::DrillTable, 1, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Drill Checks"), "DrillRanges",
         DrillTableOneHit, DrillTableAllHits, kViewerFile, V::Extents},
        {K::SilkScreen, 4, QT_TRANSLATE_NOOP("Widget_ResultsViewer", " Silk Screen Checks "),
         "SilkScreenRanges", ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::SolderMask, 5, QT_TRANSLATE_NOOP("Widget_ResultsViewer", " Solder Mask Check "),
         "SolderMaskRanges", ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::SignalLayerChecks, 6, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Signal Layer Checks"),
         "SignalLayerRanges", ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::SignalLayerDFM, 7, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Signal Layer Opt"),
         "SignalLayerOptRanges", ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::SolderMaskOpt, 8, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Solder Mask Opt"),
         "SolderMaskOptRanges", SolderMaskOptOneHit, SolderMaskOptAllHits, kViewerFile, V::Length},
        {K::PowerGroundCheck, 9, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Power Ground Checks"),
         "PowerGroundRanges", PowerGroundOneHit, PowerGroundAllHits, kViewerFile, V::Length},
        {K::PowerGroundDFM, 10, QT_TRANSLATE_NOOP("Widget_ResultsViewer", " Power Ground Opt "),
         "PowerGroundOptRanges", ShowOneHit, PowerGroundOptAllHits, kViewerFile, V::Length},
        {K::Prepare, 11, QT_TRANSLATE_NOOP("Widget_ResultsViewer", " Prepare Checks "),
         "PrePareRanges", PrepareOneHit, PrepareAllHits, kViewerFile, V::Length},
        {K::Mrc, 12, QT_TRANSLATE_NOOP("Widget_ResultsViewer", " MRC "), "", MrcOneHit, MrcAllHits,
         kViewerFile, V::Difference},
        {K::SurfaceAnalyzer, 13, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Surface Analyzer"),
         "SurfaceAnalyzerRanges", ShowOneHit, ShowAllHits, kViewerFile, V::Length},
        {K::PadSnapping, 14, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Pad Snapping"),
         "PadSnappingRanges", PadSnappingOneHit, PadSnappingAllHits, kViewerFile, V::Length},
        {K::Teardrops, 15, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Advanced Teardrops Creation"),
         "TeardropsRanges", TeardropOneHit, ShowAllHits, kViewerNfpFile, V::Length},
        {K::NFPRemoval, 16, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "NFP Removal"), "NFPRemoval",
         NfpOrConductorOneHit, ShowAllHits, kViewerNfpFile, V::Length},
        {K::AvoidConductor, 17, QT_TRANSLATE_NOOP("Widget_ResultsViewer", "Avoid Conductor DFM"),
         "NFPRemoval", NfpOrConductorOneHit, ShowAllHits, kViewerNfpFile, V::Length},
    };
    return modes;
}

const ViewerMode& viewerMode(ViewerKind kind) {
    const auto& modes = viewerModes();
    auto found = std::find_if(modes.begin(), modes.end(),
                              [kind](const ViewerMode& mode) { return mode.kind == kind; });
    return found == modes.end() ? modes.front() : *found;
}

QString hitValueText(ValueStyle style, const Korvo::API::check_info& hit, const void* handle) {
    const QString unit = QString::fromStdString(Korvo::UIAPI::getUnitStringType(handle, 1));
    const auto length = [handle](double engine) {
        return Korvo::UIAPI::getUnitJudgeString(handle, engine / kNanometresPerMil, 3);
    };
    const double value = Korvo::UIAPI::getMeasureValue(hit);
    switch (style) {
        case ValueStyle::Difference:
            return QStringLiteral("Difference: ") + length(value) + QLatin1Char(' ') + unit;
        case ValueStyle::Extents: {
            const auto& points = hit.shape.points;
            if (points.empty()) {
                return length(value) + QStringLiteral(" x ") + length(value) +
                       QStringLiteral("mil ");
            }
            auto [min_x, max_x] = std::minmax_element(points.begin(), points.end(),
                                                      [](auto& a, auto& b) { return a.x < b.x; });
            auto [min_y, max_y] = std::minmax_element(points.begin(), points.end(),
                                                      [](auto& a, auto& b) { return a.y < b.y; });
            // The unit text is fixed to "mil " in this form, whatever the display unit: kept on
            // purpose, the drill table's readers expect it.
            return length(max_x->x - min_x->x) + QStringLiteral(" x ") +
                   length(max_y->y - min_y->y) + QStringLiteral("mil ");
        }
        case ValueStyle::Length:
            break;
    }
    return length(value) + QLatin1Char(' ') + unit;
}

}  // namespace wc

#pragma once
// What differs between the results viewer's modes: one row per kind of result.

#include <QString>
#include <vector>

#include "Korvo_Analysis_types.h"
#include "frame/WidgetCommonExport.h"

namespace wc {

enum class ViewerKind {
    None,
    SignalLayerChecks,
    SignalLayerDFM,
    SolderMask,
    SolderMaskOpt,
    SilkScreen,
    Drill,
    DrillTable,  // the second drill result form, categories named by text
    BoardDrill,
    PowerGroundCheck,
    PowerGroundDFM,
    Prepare,
    Mrc,
    SurfaceAnalyzer,
    PadSnapping,
    Teardrops,
    NFPRemoval,
    AvoidConductor,
};

// How one hit's value is written in the current-result label and the drawing data.
enum class ValueStyle {
    Length,      // "3.500 mil"
    Difference,  // "Difference: 3.500 mil"
    Extents,     // the measurement box, "10.000 x 20.000mil "
};

// The row of one kind. The result type, refresh operation and raise signal of each kind are
// the viewer's entry table (Widget_ResultsViewer.cpp).
struct WIDGET_COMMON_EXPORT ViewerMode {
    ViewerKind kind;
    int number;           // the mode number the viewer keeps; both drill result forms are 1
    const char* caption;  // the name button's text, blanks included
    const char* range_key;
    int one_hit_code;
    int all_hits_code;
    const char* source_file;  // file name in the exception log
    ValueStyle value_style;
};

const std::vector<ViewerMode>& viewerModes();
// The row of `kind`; the row of ViewerKind::None for a kind without one.
const ViewerMode& viewerMode(ViewerKind kind);

// The text of one hit's value. Lengths are engine values shown in the unit of `handle`.
QString hitValueText(ValueStyle style, const Korvo::API::check_info& hit, const void* handle);

}  // namespace wc

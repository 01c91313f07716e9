#pragma once
// Panel geometry of the step-and-repeat editor: expansion of table rows into instances, instance
// boxes, and every editing operation as a function from the table (with its selection) to a new
// table. No widgets and no engine calls: the dialog reads the table, the child profile boxes, the
// panel box, gap and margins, calls one of these, and writes back what comes out.
//
// Placement of an instance, as the engine places it: the child is mirrored about its own y axis
// (x becomes -x) when the row is mirrored, turned clockwise by the row's angle about its origin,
// then moved to (x + i * dx, y + j * dy). Right angles are applied exactly.
//
// Operations that move instances work on single-instance rows: a row with a selected instance is
// split into one row per instance (selected ones keep selection {0}); a row without one stays
// whole. The selection stays on the instances an operation moved, so the user sees what changed.

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace wc {
namespace panel {

using Korvo::API::point;
using Korvo::API::reply_box;
using Korvo::API::step_repeat_op;
using Rows = std::vector<step_repeat_op>;
using ChildBoxes = std::map<std::string, reply_box>;  // child step name -> its profile box

// Distances kept free along each panel edge, engine units.
struct Margins {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
};

// What the operations measure against.
struct PanelFrame {
    ChildBoxes child_boxes;
    reply_box panel;  // the panel step's profile box
    Margins margins;
    int gap = 0;  // free distance kept between instances
};

// Answers whether the outlines of two single-instance rows overlap; asked only for pairs whose
// boxes overlap, where a box test cannot decide. Without one, overlapping boxes count.
using OutlinesOverlap = std::function<bool(const step_repeat_op&, const step_repeat_op&)>;

enum class Refusal {
    None,
    Overlap,      // selected instances overlap each other
    NotAligned,   // grid: different steps, angles or mirrors
    AngleRange,   // rotate: outside 0..360
    NoEntry,      // modify entry: no selected row
    ManyEntries,  // modify entry: more than one selected row
    BadEntry,     // modify entry: nx or ny below 1
    Nesting,      // reduce nesting: a cycle or deeper than the engine allows
    UnknownStep,  // a child step without a known profile box
};

struct Outcome {
    Refusal refusal = Refusal::None;
    Rows rows;  // the new table; the input table when refused
    bool ok() const { return refusal == Refusal::None; }
};

struct Expansion {
    Rows rows;                  // in table order; every selected instance is a single row
    std::vector<int> selected;  // positions in rows of the selected instances
};

// ---- instances and boxes --------------------------------------------------------------------
Expansion expandInstances(const Rows& rows);
int instanceCount(const Rows& rows);
int selectedCount(const Rows& rows);
int selectedRowCount(const Rows& rows);
Rows withAllSelected(Rows rows);
Rows withNoneSelected(Rows rows);

// A child point as it lands in the parent for this angle and mirror (no move).
point placePoint(const point& p, int angle, bool mirror);
// Box of instance (i, j) of `row`: the extremes of the transformed corners of the child box.
reply_box instanceBox(const reply_box& child, const step_repeat_op& row, int i = 0, int j = 0);
// Box of every instance, row by row, i fastest. Rows of unknown steps give empty boxes.
std::vector<reply_box> instanceBoxes(const Rows& rows, const ChildBoxes& boxes);
// Whether two boxes share an area (touching edges do not).
bool boxesOverlap(const reply_box& a, const reply_box& b);
// Angle in 0..359.
int normalAngle(long long angle);

// ---- align to a reference instance ----------------------------------------------------------
enum class AlignKind { Left, Right, Top, Bottom, CenterX, CenterY };

// Moves every selected instance so that its box edge (or midpoint) meets the reference box's.
// Box extremes are truncated to integers first; midpoints are integer halves truncated towards
// zero, so an odd sum of -3 gives -1.
Outcome alignToReference(const Rows& rows, const reply_box& reference, AlignKind kind,
                         const ChildBoxes& boxes);

// ---- packing ----------------------------------------------------------------------------------
enum class PackEdge { Left = 1, Right = 2, Top = 3, Bottom = 4 };
enum class Axis { Horizontal, Vertical };

// Packs the selected instances towards one panel edge.
// Rule: instances travel as their boxes, straight towards the edge, nearest to the edge first.
// Each stops at the panel edge less its margin, or `gap` before the first box in its way (any
// instance, selected or not, whose box overlaps its path widened by the gap on either side).
// Selected instances at the same distance from the edge do not block each other. The distance
// travelled is truncated to an integer; an instance never moves away from the edge (one already
// closer than the gap to a box in its way stays). Selected instances whose outlines overlap
// refuse the whole pack and nothing is written.
Outcome do_align(const Rows& rows, PackEdge edge, const PanelFrame& frame,
                 const OutlinesOverlap& overlap = {});

// Pack left and right (Horizontal) or top and bottom (Vertical): instances whose box centre lies
// before the panel's centre line pack towards the near edge, the others towards the far edge.
Outcome packBothWays(const Rows& rows, Axis axis, const PanelFrame& frame,
                     const OutlinesOverlap& overlap = {});

// Pack to the panel's centre line (x for Horizontal, y for Vertical): instances on each side
// travel towards the line, nearest first, and stop half a gap short of it (the far side takes
// the odd unit) or a gap before another box. Instances straddling the line stay and block.
Outcome packToCentre(const Rows& rows, Axis axis, const PanelFrame& frame,
                     const OutlinesOverlap& overlap = {});

// ---- space evenly -----------------------------------------------------------------------------
// Space evenly along the axis. Grouping: selected instances whose boxes overlap across the axis
// (same row for Horizontal, same column for Vertical, chained) form one group. Within a group,
// boxes sorted by their lower edge: when the span from the lowest lower edge to the highest upper
// edge is larger than the sum of the extents, the difference divided by (count - 1) and
// truncated is the gap, and each box after the first is put that gap beyond the one before.
// Otherwise the group stays. A group that would come to overlap an unselected instance stays.
Outcome arrange_selected_steps(const Rows& rows, Axis axis, const PanelFrame& frame);

// ---- align to grid ----------------------------------------------------------------------------
// Rule: the selected instances (all of one step, angle and mirror, else NotAligned) are sorted
// into columns and rows by the overlap of their boxes; column k moves to x0 + k * dx where x0 is
// the least x and dx the mean column pitch truncated (never below the box width), rows likewise.
// When every grid cell holds exactly one instance the result is merged into one array row.
Outcome alignToGrid(const Rows& rows, const PanelFrame& frame);

// ---- edits -----------------------------------------------------------------------------------
enum class Anchor { StepDatum, StepCenter, CenterOfSet };
enum class MirrorKind { Horizontal, Vertical, Flip };

// Copies every selected instance by (dx, dy); when both are 0 the copies go beside the selection
// on the right, `gap` beyond its box. The copies are selected, the originals no longer.
Outcome copyInstances(const Rows& rows, int dx, int dy, const PanelFrame& frame);
Outcome moveInstances(const Rows& rows, int dx, int dy);
Outcome deleteInstances(const Rows& rows);

// Turns the selected instances clockwise by `angle` (0..360, else AngleRange) about their datum
// (position kept), their own box centre, or the centre of the selection's box. Positions that a
// turn makes fractional are rounded to the nearest unit.
Outcome rotateInstances(const Rows& rows, int angle, Anchor anchor, const ChildBoxes& boxes);

// Horizontal mirrors about a vertical line, Vertical about a horizontal line, through the anchor
// as for rotation. Flip turns each instance over in place (about its own box centre, left to
// right). Only the placement changes; the engine's mirror flag carries layer and drill data.
Outcome mirrorInstances(const Rows& rows, MirrorKind kind, Anchor anchor, const ChildBoxes& boxes);

// Gives the selected instances another child step, keeping each box centre where it was.
Outcome replaceInstances(const Rows& rows, const std::string& step, const ChildBoxes& boxes);

// The one row that holds a selection, -1 for none, -2 for more than one.
int selectedEntry(const Rows& rows);
// Replaces the placement (x, y, dx, dy, nx, ny, angle, mirror) of the one selected row by
// `entry`'s; the step name and the selection inside the new array are kept.
Outcome modifyEntry(const Rows& rows, const step_repeat_op& entry);

// Replaces every selected instance of a step that has a table of its own by that table, placed
// as the instance is. `highest_only` reduces one level; otherwise until only leaf steps remain.
// Arrays stay arrays under a plain placement (angle 0, no mirror) and are expanded otherwise.
// The placed children are selected.
Outcome reduceNesting(const Rows& rows, const std::map<std::string, Rows>& tables,
                      bool highest_only);

}  // namespace panel
}  // namespace wc

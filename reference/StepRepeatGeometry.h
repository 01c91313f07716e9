#pragma once
// Plain geometry of step-and-repeat tables and outlines, as the reference engine applies it.
//
// Placement of an instance: the child step's coordinates are first mirrored about the y axis
// (x becomes -x) when the row is mirrored, then rotated clockwise by the row's angle about the
// child's origin, then moved to the instance position (x + i * dx, y + j * dy). Multiples of
// 90 degrees are applied exactly; other angles go through sine and cosine.

#include <vector>

#include "Korvo_API_types.h"

namespace wcref {

// One placed instance of a step-and-repeat row.
struct RepeatInstance {
    int row = 0;    // index of the row in its table
    int index = 0;  // position inside the row: i + j * nx, the key of step_repeat_op::selection
    int i = 0;
    int j = 0;
    Korvo::API::point position;
    int angle = 0;
    bool mirror = false;
};

// Every instance of every row, rows in table order, inside a row by index.
std::vector<RepeatInstance> expandRepeatRows(const std::vector<Korvo::API::step_repeat_op>& rows);

// A point of the child step as it lands in the parent for this angle and mirror (no move).
Korvo::API::point placePoint(const Korvo::API::point& p, double angle, bool mirror);

// The child's profile box as it lies in the parent for this instance.
Korvo::API::reply_box instanceBox(const Korvo::API::reply_box& child_box,
                                  const RepeatInstance& instance);

// Box of a set of points; all zero for an empty set.
Korvo::API::reply_box boxOfPoints(const std::vector<Korvo::API::point>& points);

Korvo::API::point boxCentre(const Korvo::API::reply_box& box);

// Edges count as inside.
bool boxContains(const Korvo::API::reply_box& box, const Korvo::API::point& p);

// Closed polygon given by its vertices (the last joins the first); edges count as inside.
bool pointInPolygon(const Korvo::API::point& p, const std::vector<Korvo::API::point>& polygon);

// Exact shortest distance between two closed outlines and the points that realise it. Zero when
// the outlines cross or touch, or when one lies inside the other (the points are then a common
// point, or a vertex of the inner outline). Negative when an outline has no points.
double polygonDistance(const std::vector<Korvo::API::point>& first,
                       const std::vector<Korvo::API::point>& second, Korvo::API::point& on_first,
                       Korvo::API::point& on_second);

}  // namespace wcref

// Where a point is along a segment, as a number that stays when the segment is moved, turned or scaled: 0 at the
// first anchor, 1 at the last, between them the parameter of the curve. It names points that were snapped onto the
// segment.
#pragma once

#include "plugin/geometry/bezier.h"

namespace quorvel {

// The place nearest to the point. On a straight segment it may be outside 0 to 1.
double PlaceOnSegment(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                      const DoublePoint& point);
DoublePoint PointAtPlace(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, double place);
// The middle of the bounds, control points included, that the segments have in axes turned by angle (radians), in the
// document's own axes. count: at least 1.
DoublePoint TurnedBoundsMiddle(const PathSegment* segments, int count, double angle);

}  // namespace quorvel

// The geometry of a rounded corner: the circle of a given radius that touches two picked segments on the sides of the
// picks, as two cubics. Straight segments and circular arcs, in each pairing. Everything is pure; points are document
// points, angles radians.
#pragma once

#include "plugin/geometry/bezier.h"

namespace quorvel {

// A segment from s to t, and where on it the user has picked.
struct FilletPick {
    PathSegment s, t;
    DoublePoint point;
};

// The tangent point on the first shape, the middle of the arc, the tangent point on the second shape.
constexpr int kFilletRecords = 3;
struct FilletArc {
    PathSegment records[kFilletRecords];
};

// Each is false when no such arc exists: parallel lines, a radius that does not fit, a curve that is no arc, a tangent
// point beyond the end of an arc. Which of the two shapes of SolveLineArc is straight is asked of the picks.
bool SolveLineLine(const FilletPick& first, const FilletPick& second, double radius, FilletArc* arc);
bool SolveLineArc(const BezierBasisTables& tables, const FilletPick& first, const FilletPick& second, double radius,
                  FilletArc* arc);
bool SolveArcArc(const BezierBasisTables& tables, const FilletPick& first, const FilletPick& second, double radius,
                 FilletArc* arc);

// From the ideal circle onto the segment as drawn. False only for a miss of a curve.
bool PushOntoSegment(const BezierBasisTables& tables, DoublePoint* point, const PathSegment& s, const PathSegment& t,
                     double tolerance);

// What carries one chord onto another: about the first chord's start by ratio and turn, then by shift.
struct TwoPointMap {
    DoublePoint origin;
    DoublePoint shift;
    double ratio = 1;
    double turn = 0;
};
TwoPointMap MapOfChords(const DoublePoint& from0, const DoublePoint& from1, const DoublePoint& to0,
                        const DoublePoint& to1);
DoublePoint MapByTwoPoints(const TwoPointMap& map, const DoublePoint& point);

// Raises one of two directions by a turn when they are more than half a turn apart.
void WrapDirections(double* u1, double* u2);
// The crossing of the tangents at a and b of a circle. A radius that rises less than levelRadius counts as level, and
// its tangent as upright; false when both are.
bool CrossTangents(const DoublePoint& centre, const DoublePoint& a, const DoublePoint& b, double levelRadius,
                   DoublePoint* crossing);

}  // namespace quorvel

// Measuring, picking and offsetting of path segments. A segment is the cubic between two consecutive PathSegment
// records S and T with the control points S.p, S.out, T.in, T.p. It is straight, a circular arc or a general curve;
// curves are sampled through a precomputed basis into 256 chords. There is no iteration to convergence anywhere.
#pragma once

#include <cstdint>

#include "plugin/geometry/vector.h"

namespace quorvel {

// The two first cubic Bernstein polynomials at t = k / N; the other two are read with the index reversed.
struct BezierBasisTables {
    double b0n32[33], b1n32[33];
    double b0n256[257], b1n256[257];
    double b0n64[65], b1n64[65];
};

// The result form of OffsetSegment.
constexpr int kSegmentListCapacity = 258;
struct SegmentList {
    std::int16_t count = 0;
    PathSegment segments[kSegmentListCapacity];
};

struct ArcCircle {
    DoublePoint centre;
    double radius = 0;
};

// Values of anyCurve and of side below.
constexpr std::int16_t kArcsOnly = 0, kAnyCurve = 1;
constexpr std::int16_t kRightSide = 0, kLeftSide = 1;

void BuildBezierBasisTables(BezierBasisTables* tables);
// The point at table index k of the table with n = 32, 64 or 256 steps.
DoublePoint BezierSample(const BezierBasisTables& tables, int n, int k, const DoublePoint& p0, const DoublePoint& p1,
                         const DoublePoint& p2, const DoublePoint& p3);

bool IsStraightSegment(const PathSegment& s, const PathSegment& t);
// By perpendicular bisectors; false if there is none.
bool CircleThroughPoints(const DoublePoint& a, const DoublePoint& b, const DoublePoint& c, DoublePoint* centre,
                         double* radius);
// False if the end normals give no common centre.
bool ArcCenterFromNormals(const PathSegment& s, const PathSegment& t, DoublePoint* centre, double* radius);
bool IsCircularArc(const PathSegment& s, const PathSegment& t, DoublePoint* centre, double* radius);

// Snaps: true when the point was within the tolerance (document points) and has been moved.
bool SnapPointToFlatLine(RealPoint* point, const RealPoint& a, const RealPoint& b, double tolerance);  // along one axis
bool SnapPointToChord(DoublePoint* point, const DoublePoint& a, const DoublePoint& b, double tolerance);
// The walk over a general curve's chords, on the double point (arcs are not told apart).
bool SnapPointToChords(const BezierBasisTables& tables, DoublePoint* point, const PathSegment& s, const PathSegment& t,
                       double tolerance);
bool SnapPointToCurve(const BezierBasisTables& tables, RealPoint* point, const PathSegment& s, const PathSegment& t,
                      double tolerance, std::int16_t anyCurve);
bool SnapToSegment(const BezierBasisTables& tables, RealPoint* point, const PathSegment& s, const PathSegment& t,
                   double tolerance, std::int16_t anyCurve);
bool SnapToCurvedSegment(const BezierBasisTables& tables, RealPoint* point, const PathSegment& s, const PathSegment& t,
                         double tolerance);
bool SnapToStraightSegment(RealPoint* point, const PathSegment& s, const PathSegment& t, double tolerance);
bool SnapToPoint(RealPoint* point, const RealPoint& target, double tolerance);
bool SnapToRectCenter(RealPoint* point, const RealRect& rect, double tolerance);

// Is angle a within the arc that runs from angle a0 to angle a1 the shorter way? (The wrap test of SnapPointToCurve.)
bool AngleLiesOnArc(double a, double a0, double a1);

// nearest and side may be null. kNoDistance when the curve gave no chord. side: kRightSide or kLeftSide of the
// direction of travel.
double DistanceToSegment(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                         const DoublePoint& point, DoublePoint* nearest, std::int16_t* side);
// Up to stop when that is not null. A straight segment and a general curve move the stop onto themselves: onto the
// first chord that contains it, else onto the nearest.
double SegmentLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, DoublePoint* stop);
// False when the segment is shorter. On an arc the angle points back along the path.
bool PointAtLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, double length,
                   DoublePoint* point, double* angle);
// Parallel copy, at the distance on the side, of the piece between from and to (either may be null). fit: 0 gives a
// polyline, nonzero fitted cubics, for a general curve.
void OffsetSegment(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, const DoublePoint* from,
                   const DoublePoint* to, std::int16_t side, double distance, SegmentList* out, std::int16_t fit);
void FitCubicsToPolyline(const BezierBasisTables& tables, const DoublePoint* points, int count, SegmentList* out);

// Handle ratio of an arc piece of delta radians, from the anchor to the crossing of the tangents.
double ArcHandleRatio(double delta);

// Area enclosed by a closed path of count segments, without sign; curves in 128 steps.
double ClosedPathArea(const PathSegment* segments, int count);

}  // namespace quorvel

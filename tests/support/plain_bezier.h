// The table method read plainly, one chord after the other and nothing left out: what the kernel's faster roads must
// equal to the last bit, and what the benchmarks set them beside.
#pragma once

#include <vector>

#include "plugin/geometry/bezier.h"

namespace quorvel::plain {

double LineDistance(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p, DoublePoint* nearest);
bool SnapToChord(DoublePoint* point, const DoublePoint& a, const DoublePoint& b, double tolerance);

// General curves alone.
bool SnapToChords(const BezierBasisTables& tables, DoublePoint* point, const PathSegment& s, const PathSegment& t,
                  double tolerance);
double DistanceToCurve(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                       const DoublePoint& point, DoublePoint* nearest, std::int16_t* side);
double CurveLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, DoublePoint* stop);
bool PointAtCurveLength(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t, double length,
                        DoublePoint* point, double* angle);
// The polyline of an offset curve, before it becomes records.
std::vector<DoublePoint> OffsetCurve(const BezierBasisTables& tables, const PathSegment& s, const PathSegment& t,
                                     const DoublePoint* from, const DoublePoint* to, std::int16_t side,
                                     double distance);
void FitCubics(const BezierBasisTables& tables, const std::vector<DoublePoint>& points, SegmentList* out);

}  // namespace quorvel::plain

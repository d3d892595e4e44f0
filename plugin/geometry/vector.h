// Points, angles and straight lines: the bottom of the geometry kernel. Lengths are document points with v up, angles
// are radians, counter-clockwise from the positive h axis, in the range of atan2. Everything is pure; 32-bit points are
// widened on entry and narrowed only when a result is written back.
#pragma once

#include <cstdint>

#include "hostapi/types.h"

namespace quorvel {

struct DoublePoint {
    double h = 0, v = 0;
};

// Short decimals, used as they are: the wrap-around arithmetic of the tools depends on these very values.
constexpr double kPi = 3.141593;
constexpr double kTwoPi = 6.283186;
constexpr double kHalfPi = 1.570796;            // left or right normal of a direction
constexpr double kHalfPiWide = 1.5707965;       // quarter turn in arc, angle and fillet constructions: half of kPi
constexpr double kQuarterPi = 0.78539825;       // eighth turn in the same constructions
constexpr double kNoDistance = 32000.0;         // "none": above any distance in a document; also an unknown tangent
constexpr float kLargestFloat = 3.4028235e38F;  // the failure mark of a parsed number, the bounds of nothing

double SignOf(double x);  // -1 if 0 > x, else +1
double MinOf(double a, double b);
double MaxOf(double a, double b);
float MinOfFloat(float a, float b);
float MaxOfFloat(float a, float b);
double AbsOf(double x);
bool NearlyEqual(double a, double b);      // 0.0001 > |a - b|
std::int32_t RoundToInt(double x);         // half rounds away from zero
double PowerOf(double x, std::int16_t n);  // 1.0 if n < 1
double SinOf(double x);
double CosOf(double x);
double Atan2Of(double y, double x);
double SqrtOf(double x);

DoublePoint ToDoublePoint(const RealPoint& p);
RealPoint ToRealPoint(const DoublePoint& p);               // each coordinate rounded to the nearest float
bool PointsEqual(const RealPoint& a, const RealPoint& b);  // exactly
bool PointsEqual(const DoublePoint& a, const DoublePoint& b);
double WrapAngle(double angle);  // one turn added or taken when it is outside half a turn; equals stay
DoublePoint PolarPoint(const DoublePoint& origin, double length, double angle);

double AngleBetweenPoints(const DoublePoint& a, const DoublePoint& b);  // direction from a to b; (0, 0) gives 0
double DistanceBetweenPoints(const DoublePoint& a, const DoublePoint& b);

// Distance from p to the line segment a to b; nearest may be null, and is not set when a equals b.
double PointToLineSegment(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p, DoublePoint* nearest);

// Crossing of the line through throughA with the direction dirA0 to dirA1 and the line likewise of B. False for
// parallel lines: x is a copy of throughB then.
bool IntersectLines(const DoublePoint& dirA0, const DoublePoint& dirA1, const DoublePoint& throughA,
                    const DoublePoint& dirB0, const DoublePoint& dirB1, const DoublePoint& throughB, DoublePoint* x);

}  // namespace quorvel

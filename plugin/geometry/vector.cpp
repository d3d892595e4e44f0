// Numbers, points and straight lines as all tools compare and combine them. A user sees these rules wherever two values
// almost agree: which end of a line is nearer, whether a foot still lies on it, how a half is rounded.
#include "plugin/geometry/vector.h"

#include <cmath>
#include <limits>

#include "plugin/geometry/chord.h"

namespace quorvel {

double SignOf(double x) { return 0 > x ? -1.0 : 1.0; }
double MinOf(double a, double b) { return LesserOf(a, b); }
double MaxOf(double a, double b) { return GreaterOf(a, b); }
float MinOfFloat(float a, float b) { return static_cast<double>(b) > static_cast<double>(a) ? a : b; }
float MaxOfFloat(float a, float b) { return static_cast<double>(a) > static_cast<double>(b) ? a : b; }
double AbsOf(double x) { return x >= 0 ? x : -x; }
bool NearlyEqual(double a, double b) { return 0.0001 > AbsOf(a - b); }

std::int32_t RoundToInt(double x) {
    const double shifted = x >= 0 ? x + 0.5 : x - 0.5;
    // What has no place in 32 bits becomes the processor's own mark for it, instead of undefined behaviour.
    if (!(shifted > -2147483649.0 && shifted < 2147483648.0)) return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(shifted);
}

double PowerOf(double x, std::int16_t n) {
    double power = 1.0;
    for (std::int16_t i = 0; i < n; ++i) power *= x;
    return power;
}

double SinOf(double x) { return std::sin(x); }
double CosOf(double x) { return std::cos(x); }
double Atan2Of(double y, double x) { return std::atan2(y, x); }
double SqrtOf(double x) { return std::sqrt(x); }

DoublePoint ToDoublePoint(const RealPoint& p) { return {p.h, p.v}; }
RealPoint ToRealPoint(const DoublePoint& p) { return {static_cast<float>(p.h), static_cast<float>(p.v)}; }
bool PointsEqual(const RealPoint& a, const RealPoint& b) { return a.h == b.h && a.v == b.v; }
bool PointsEqual(const DoublePoint& a, const DoublePoint& b) { return a.h == b.h && a.v == b.v; }

double WrapAngle(double angle) {
    if (angle > kPi) angle -= kTwoPi;
    if (-kPi > angle) angle += kTwoPi;
    return angle;
}

DoublePoint PolarPoint(const DoublePoint& origin, double length, double angle) {
    return {origin.h + length * CosOf(angle), origin.v + length * SinOf(angle)};
}

double AngleBetweenPoints(const DoublePoint& a, const DoublePoint& b) { return Atan2Of(b.v - a.v, b.h - a.h); }

double DistanceBetweenPoints(const DoublePoint& a, const DoublePoint& b) { return std::sqrt(SquaredDistance(a, b)); }

double PointToLineSegment(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p, DoublePoint* nearest) {
    const ChordDistance found = MeasureChord(a, b, p);
    if (nearest != nullptr && !PointsEqual(a, b)) *nearest = found.nearest;
    return found.distance;
}

bool IntersectLines(const DoublePoint& dirA0, const DoublePoint& dirA1, const DoublePoint& throughA,
                    const DoublePoint& dirB0, const DoublePoint& dirB1, const DoublePoint& throughB, DoublePoint* x) {
    const bool verticalA = dirA0.h == dirA1.h;
    const bool verticalB = dirB0.h == dirB1.h;
    double slopeA = 0, interceptA = 0, slopeB = 0, interceptB = 0;
    if (!verticalA) {
        slopeA = (dirA1.v - dirA0.v) / (dirA1.h - dirA0.h);
        interceptA = throughA.v - slopeA * throughA.h;
    }
    if (!verticalB) {
        slopeB = (dirB1.v - dirB0.v) / (dirB1.h - dirB0.h);
        interceptB = throughB.v - slopeB * throughB.h;
    }
    // x may be one of the points that were given, so it is written last.
    if (verticalA && !verticalB) {
        *x = {throughA.h, throughA.h * slopeB + interceptB};
        return true;
    }
    if (verticalB && !verticalA) {
        *x = {throughB.h, throughB.h * slopeA + interceptA};
        return true;
    }
    if (slopeA == slopeB) {
        *x = throughB;
        return false;
    }
    const double h = (interceptA - interceptB) / (slopeB - slopeA);
    *x = {h, h * slopeA + interceptA};
    return true;
}

}  // namespace quorvel

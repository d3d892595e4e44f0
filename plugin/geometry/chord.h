// One chord of a curve: the distance to it and the snap onto it, written for the inner loops of this room. The public
// functions of vector.h and bezier.h of the same meaning are these. What rejects a chord early is here too, because
// it is true only of these very computations.
#pragma once

#include <cmath>

#include "plugin/geometry/vector.h"

namespace quorvel {

inline double LesserOf(double a, double b) { return b > a ? a : b; }
inline double GreaterOf(double a, double b) { return a > b ? a : b; }

// A product and no call of the power function: the library's integer power multiplies too, its real one may be off by
// the last bit.
inline double SquaredDistance(const DoublePoint& a, const DoublePoint& b) {
    const double h = b.h - a.h, v = b.v - a.v;
    return h * h + v * v;
}

// The foot of the perpendicular from p to the line through a and b, which differ, by slope and intercept.
inline DoublePoint FootOnLine(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p) {
    if (a.h == b.h) return {a.h, p.v};
    if (a.v == b.v) return {p.h, a.v};
    const double slope = (b.v - a.v) / (b.h - a.h);
    const double intercept = a.v - slope * a.h;
    const double normalSlope = (a.h - b.h) / (b.v - a.v);
    const double normalIntercept = p.v - normalSlope * p.h;
    const double h = (intercept - normalIntercept) / (normalSlope - slope);
    return {h, h * slope + intercept};
}

struct ChordDistance {
    double squared;  // distance is its root
    double distance;
    DoublePoint nearest;  // the foot, or an end of the chord: always inside the chord's box
};

inline ChordDistance MeasureChord(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p) {
    const double toA = SquaredDistance(p, a);
    if (a.h == b.h && a.v == b.v) return {toA, std::sqrt(toA), a};
    const DoublePoint foot = FootOnLine(a, b, p);
    if (foot.h >= LesserOf(a.h, b.h) && foot.h <= GreaterOf(a.h, b.h) && foot.v >= LesserOf(a.v, b.v) &&
        foot.v <= GreaterOf(a.v, b.v)) {
        const double toFoot = SquaredDistance(p, foot);
        return {toFoot, std::sqrt(toFoot), foot};
    }
    // The rule compares the distances: two squares that differ in the last bit may have the same root, and a wins then.
    const double toB = SquaredDistance(p, b);
    const double rootA = std::sqrt(toA), rootB = std::sqrt(toB);
    if (rootA > rootB) return {toB, rootB, b};
    return {toA, rootA, a};
}

// A lower bound of MeasureChord(a, b, p).squared for all chords inside the box, which holds to the last bit: the
// nearest point that is measured lies in the chord's box, and rounding never turns the order of two differences,
// products or sums round. Anything that is no number makes the bound 0.
inline double BoxBound(double lowH, double highH, double lowV, double highV, const DoublePoint& p) {
    const double h = GreaterOf(GreaterOf(lowH - p.h, p.h - highH), 0.0);
    const double v = GreaterOf(GreaterOf(lowV - p.v, p.v - highV), 0.0);
    return h * h + v * v;
}

inline double ChordBound(const DoublePoint& a, const DoublePoint& b, const DoublePoint& p) {
    return BoxBound(LesserOf(a.h, b.h), GreaterOf(a.h, b.h), LesserOf(a.v, b.v), GreaterOf(a.v, b.v), p);
}

// Is p in the box of a and b grown by the tolerance?
inline bool ChordBoxHolds(const DoublePoint& p, const DoublePoint& a, const DoublePoint& b, double tolerance) {
    return p.h >= LesserOf(a.h, b.h) - tolerance && p.h <= GreaterOf(a.h, b.h) + tolerance &&
           p.v >= LesserOf(a.v, b.v) - tolerance && p.v <= GreaterOf(a.v, b.v) + tolerance;
}

inline double ClampTo(double x, double a, double b) {
    const double low = LesserOf(a, b), high = GreaterOf(a, b);
    if (x < low) return low;
    return x > high ? high : x;
}

inline bool SnapToChord(DoublePoint* point, const DoublePoint& a, const DoublePoint& b, double tolerance) {
    if (!ChordBoxHolds(*point, a, b, tolerance)) return false;
    if (a.h == b.h && a.v == b.v) {
        *point = a;
        return true;
    }
    DoublePoint foot = FootOnLine(a, b, *point);
    foot.h = ClampTo(foot.h, a.h, b.h);
    foot.v = ClampTo(foot.v, a.v, b.v);
    if (!(tolerance > std::sqrt(SquaredDistance(foot, *point)))) return false;
    *point = foot;
    return true;
}

}  // namespace quorvel

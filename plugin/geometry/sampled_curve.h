// A general curve as the polyline on which it is measured: all its samples for lengths, the samples that a search
// visits, and boxes round runs of those so that most of them need not be computed. Every sample is BezierSample's, to
// the last bit.
#pragma once

#include <initializer_list>

#include "plugin/geometry/bezier.h"
#include "plugin/geometry/chord.h"

namespace quorvel {

struct CurveControls {
    DoublePoint p0, p1, p2, p3;
};

inline CurveControls ControlsOf(const PathSegment& s, const PathSegment& t) {
    return {{s.p.h, s.p.v}, {s.out.h, s.out.v}, {t.in.h, t.in.v}, {t.p.h, t.p.v}};
}

// How near a chord a stop or a cut has to be to count as on it, document points. Points are kept as 32-bit floats: from
// 1,024 on, where their spacing comes near the tolerance, it is twice that spacing at the largest coordinate.
inline double ChordTolerance(const CurveControls& c, const DoublePoint& point) {
    constexpr double kTolerance = 0.0001, kFineTo = 1024.0;
    double largest = GreaterOf(std::fabs(point.h), std::fabs(point.v));
    for (const DoublePoint& p : {c.p0, c.p1, c.p2, c.p3})
        largest = GreaterOf(largest, GreaterOf(std::fabs(p.h), std::fabs(p.v)));
    if (!(largest >= kFineTo) || !std::isfinite(largest)) return kTolerance;
    constexpr int kFloatDigits = 24;
    return 2.0 * std::ldexp(1.0, std::ilogb(largest) + 1 - kFloatDigits);
}

constexpr int kFineSteps = 256;

inline DoublePoint FineSample(const BezierBasisTables& tables, const CurveControls& c, int k) {
    const double w0 = tables.b0n256[k], w1 = tables.b1n256[k];
    const double w2 = tables.b1n256[kFineSteps - k], w3 = tables.b0n256[kFineSteps - k];
    return {w0 * c.p0.h + w1 * c.p1.h + w2 * c.p2.h + w3 * c.p3.h,
            w0 * c.p0.v + w1 * c.p1.v + w2 * c.p2.v + w3 * c.p3.v};
}

// All samples, in two plain arrays so that the compiler works on several at a time.
struct FineCurve {
    double h[kFineSteps + 1], v[kFineSteps + 1];

    DoublePoint Point(int k) const { return {h[k], v[k]}; }
};

// The samples from first to last.
inline void SampleFine(const BezierBasisTables& tables, const CurveControls& c, int first, int last,
                       FineCurve* __restrict curve) {
    const double *b0 = tables.b0n256, *b1 = tables.b1n256;
    for (int k = first; k <= last; ++k) {
        const double w0 = b0[k], w1 = b1[k], w2 = b1[kFineSteps - k], w3 = b0[kFineSteps - k];
        curve->h[k] = w0 * c.p0.h + w1 * c.p1.h + w2 * c.p2.h + w3 * c.p3.h;
        curve->v[k] = w0 * c.p0.v + w1 * c.p1.v + w2 * c.p2.v + w3 * c.p3.v;
    }
}

// A search visits the first anchor and the samples 1, 3, 5 ... 255, 256: the coarse points 0 to 129. Coarse chord i
// ends at point i.
constexpr int kCoarseChords = 129;
inline int CoarseIndex(int i) { return i < kCoarseChords ? 2 * i - 1 : kFineSteps; }
inline DoublePoint CoarsePoint(const BezierBasisTables& tables, const CurveControls& c, int i) {
    return i == 0 ? c.p0 : FineSample(tables, c, CoarseIndex(i));
}

// Blocks of four coarse chords, the last of five. A block's points are 4 block to 4 block + 4, its chords end at the
// points after the first.
constexpr int kBlocks = 32;
inline int FirstPointOfBlock(int block) { return 4 * block; }
inline int LastPointOfBlock(int block) { return block < kBlocks - 1 ? 4 * block + 4 : kCoarseChords; }

// For each block a box that holds all its samples.
struct BlockBoxes {
    double lowH[kBlocks], highH[kBlocks], lowV[kBlocks], highV[kBlocks];
};

// How far the samples of a block can be outside the box of its two end samples: a curve leaves the chord over a
// stretch w of its parameter by at most w^2 / 8 times its second derivative, which is at most 6 times the larger second
// difference of its controls; 9 / 256 is the longest stretch. The rounding of basis and sums is less than fifty units
// in the last place of the largest control.
inline double BlockGrowth(double p0, double p1, double p2, double p3) {
    constexpr double kStretch = 9.0 / kFineSteps;
    const double bend = GreaterOf(std::fabs(p0 - 2 * p1 + p2), std::fabs(p1 - 2 * p2 + p3));
    const double largest = GreaterOf(GreaterOf(std::fabs(p0), std::fabs(p1)), GreaterOf(std::fabs(p2), std::fabs(p3)));
    return kStretch * kStretch * (6.0 / 8.0) * bend + 1e-14 * largest;
}

inline void BoxBlocks(const BezierBasisTables& tables, const CurveControls& c, BlockBoxes* __restrict boxes) {
    double h[kBlocks + 1], v[kBlocks + 1];
    for (int block = 0; block <= kBlocks; ++block) {
        const DoublePoint p = CoarsePoint(tables, c, block < kBlocks ? FirstPointOfBlock(block) : kCoarseChords);
        h[block] = p.h;
        v[block] = p.v;
    }
    const double growH = BlockGrowth(c.p0.h, c.p1.h, c.p2.h, c.p3.h);
    const double growV = BlockGrowth(c.p0.v, c.p1.v, c.p2.v, c.p3.v);
    for (int i = 0; i < kBlocks; ++i) {
        boxes->lowH[i] = LesserOf(h[i], h[i + 1]) - growH;
        boxes->highH[i] = GreaterOf(h[i], h[i + 1]) + growH;
        boxes->lowV[i] = LesserOf(v[i], v[i + 1]) - growV;
        boxes->highV[i] = GreaterOf(v[i], v[i + 1]) + growV;
    }
}

}  // namespace quorvel

// When two anchors of an outline are one.
#pragma once

#include <cmath>

#include "hostapi/types.h"

namespace quorvel::svg {

// Two anchors nearer than this are one where a subpath closes: relative path data drifts in its last digits.
constexpr float kClosingTolerance = 1e-3F;

inline bool samePoint(RealPoint a, RealPoint b) { return a.h == b.h && a.v == b.v; }

inline bool meet(RealPoint a, RealPoint b) {
    return std::abs(a.h - b.h) <= kClosingTolerance && std::abs(a.v - b.v) <= kClosingTolerance;
}

}  // namespace quorvel::svg

// Where two picked segments cross near the cursor. Pure: two hit records, the cursor and the tolerance in, a point out.
#pragma once

#include "plugin/geometry/bezier.h"

namespace quorvel {

// A segment under the cursor: previous and segment are its two ends, index is that of its end.
struct SegmentHit {
    AIArtHandle art = nullptr;
    std::int16_t index = -1;
    PathSegment previous, segment;
};

// False when they do not cross within the tolerance of the cursor.
bool FindCrossing(const BezierBasisTables& tables, const SegmentHit& first, const SegmentHit& second,
                  const RealPoint& cursor, double tolerance, RealPoint* crossing);

}  // namespace quorvel

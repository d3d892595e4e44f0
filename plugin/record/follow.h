// Moving a dimension's points to where its art has them now. A point whose art is where the record says stays as it is
// recorded, to the last digit; where nothing has moved, neither does the placement.
#pragma once

#include "plugin/record/dimension_record.h"

namespace quorvel {

// Where its art puts a measured point.
struct PointNow {
    LinkState state = kLinkFree;
    int link = 0;        // of its list, for the cause
    RealPoint point;     // when held
    bool moved = false;  // held, and not where the record says
};

struct FollowedPoints {
    PointNow from, to;
    std::vector<PointNow> stops;
};

bool IsLinearKind(std::int16_t kind);  // Oblique, Straight, Curve

// Of the record that liveState was read from. Changes nothing.
FollowedPoints FindPointsNow(const PluginGlobals* globals, const DimensionRecord& record);

// The measured points of the record that liveState was read from: from, to, stops.
std::vector<DimensionEnd> FindEnds(const PluginGlobals* globals, const DimensionRecord& record);

// Moves the points of liveState, which was read from the record. A linear dimension can always be built then; false: a
// dimension of another kind whose links do not both live.
bool FollowArt(PluginGlobals* globals, const DimensionRecord& record);

}  // namespace quorvel

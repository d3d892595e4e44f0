// The Arc tools: a circular arc from three inputs, drawn into a group of its own on the current layer. Preview and
// build ask the same solver, so that the picture and the result agree.
#pragma once

#include "hostapi/messages.h"
#include "plugin/shell/globals.h"

namespace quorvel {

enum ArcMode : std::int16_t {
    kArcTangential = 0,   // start, a point on the tangent there, end
    kArcThreePoints = 1,  // start, a point on the way, end
    kArcCenter = 2,       // centre, start, end
};

AIErr ArcTrack(const AIToolMessage* message);
AIErr ArcDown(const AIToolMessage* message);
AIErr ArcUp(const AIToolMessage* message);

// Radians. The sweep is end - start, whatever its sign.
struct CircleArc {
    DoublePoint centre;
    double radius = 0, start = 0, end = 0;
};

// False when there is no such arc. In kArcCenter the sweep follows the way by which the cursor has left the start:
// previousCursor is where the last call had it, sweepDirection points from the centre into the arc (kNoDistance: not
// known yet). Both are kept from call to call; the other modes leave them alone.
bool SolveArc(std::int16_t mode, const DoublePoint& third, const DoublePoint& first, const DoublePoint& second,
              CircleArc* arc, DoublePoint* previousCursor, double* sweepDirection);

// From fromPoint, toPoint and endPoint of liveState. False when there is no arc or the layer is blocked.
bool BuildArc();
// Four cubics of a quarter of the sweep each, in the host's current style.
void BuildArcPath(AIArtHandle group, const CircleArc& arc);
// The arc piece about c from a to b: p and out of the first record, p and in of the second. Nothing is written when
// both radii are level.
void ArcPieceToCubic(const DoublePoint& c, const DoublePoint& a, const DoublePoint& b, PathSegment* first,
                     PathSegment* second);

}  // namespace quorvel

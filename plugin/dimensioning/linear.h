// The linear dimension tools: Oblique, Straight and (with curve.h) Curve. Press on the first point, drag to the second,
// Alt and a press drop stops on the way, let go, move to where the line shall stand, click.
#pragma once

#include "hostapi/messages.h"
#include "plugin/shell/globals.h"

namespace quorvel {

AIErr LinearTrack(const AIToolMessage* message);
AIErr LinearDown(const AIToolMessage* message);
AIErr LinearUp(const AIToolMessage* message);

// Runs the chain on the cursor and stores what it found.
void LinearSnap(bool secondPoint, std::int16_t* kind);
// 1 for a level dimension line, 2 for an upright one. tmpPos and axisWord keep what was chosen and where.
std::int16_t StraightAxis(const DoublePoint& E, const DoublePoint& P1, const DoublePoint& P2, double pixel,
                          DoublePoint* tmpPos, std::int16_t* axisWord);
// Feet of P1, P2 and the stops on the dimension line through E. stops: pairs of measured point and foot, feet filled
// here. 0 when P1 equals P2.
std::int32_t ProjectFeet(const DoublePoint& E, const DoublePoint& P1, const DoublePoint& P2, DoublePoint* A,
                         DoublePoint* B, DoublePoint* tmpPos, std::int16_t stopCount, DoublePoint* S,
                         std::int16_t* axisWord);
void BuildSpan(AIArtHandle group, DoublePoint P1, DoublePoint P2, DoublePoint A, DoublePoint B, DoublePoint* lineStart,
               DoublePoint* lineEnd, std::int32_t index);
// Makes the dimension of liveState; replaces oldGroup when that is not null. 1, or 0 when nothing was made.
std::int32_t BuildLinearDimension(AIArtHandle oldGroup);

}  // namespace quorvel

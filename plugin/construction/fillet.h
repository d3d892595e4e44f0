// The Fillet tools: press on one segment, let go on another, and the corner between them is rounded by an arc of the
// radius flRadius. The three tools differ in what becomes of a corner within one path.
#pragma once

#include "hostapi/messages.h"
#include "plugin/shell/globals.h"

namespace quorvel {

enum FilletMode : std::int16_t {
    kFilletAddition = 0,  // the arc is a path of its own
    kFilletSeparate = 1,  // the arc goes into the path, the corner becomes a path of its own
    kFilletReplace = 2,   // the arc goes into the path, the corner is dropped
};

AIErr FilletEditOptions(const AIToolMessage* message);
AIErr FilletTrack(const AIToolMessage* message);
AIErr FilletDown(const AIToolMessage* message);
AIErr FilletUp(const AIToolMessage* message);

// From fromPoint, toPoint and the first cells of liveState. A radius of 0 is asked for first. False when there is no
// such arc or the layer is blocked.
bool BuildFillet();

}  // namespace quorvel

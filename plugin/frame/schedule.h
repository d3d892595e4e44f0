// The two Schedule tools: drag a rectangle, and the drawing sheet's frame is in it.
#pragma once

#include "hostapi/messages.h"

namespace quorvel {

AIErr ScheduleTrack(const AIToolMessage* message);
AIErr ScheduleDown(const AIToolMessage* message);
AIErr ScheduleUp(const AIToolMessage* message);

}  // namespace quorvel

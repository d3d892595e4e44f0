// Edit Options of the Schedule tools: the dialog, and the redrawing of the selected frame.
#pragma once

#include "hostapi/messages.h"

namespace quorvel {

AIErr ScheduleEditOptions(const AIToolMessage* message);

}  // namespace quorvel

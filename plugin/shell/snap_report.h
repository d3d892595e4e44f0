// What each search of a tool's chain finds at a point: an answer for commands and windows that explain snapping.
#pragma once

#include "hostapi/messages.h"

namespace quorvel {

AIErr SnapReport(QuorvelSnapMessage* message);

}  // namespace quorvel

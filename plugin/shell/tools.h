// The drafting tools in the host's palette, and the way of a tool's event to the family that serves it.
#pragma once

#include "hostapi/messages.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

// At start-up. The first failure ends it; the tools added until then stay.
AIErr AddTools();

AIErr ToolEditOptions(const AIToolMessage* message);
AIErr ToolTrack(const AIToolMessage* message);  // of Track Cursor and of Mouse Drag
AIErr ToolDown(const AIToolMessage* message);
AIErr ToolUp(const AIToolMessage* message);
AIErr ToolSelect(const AIToolMessage* message);
AIErr ToolDeselect(const AIToolMessage* message);

// False for a handle that is none of ours.
bool SnapFamilyOfTool(AIToolHandle tool, SnapFamily* family);

}  // namespace quorvel

// The information panel: live measures, the snap switches and the grid fields.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// Puts the text (system code page) into field n, 1 to 6. Without a panel, and for another n, nothing happens.
void SetPanelField(int n, const char* text);
// Fields 1 to 4 as a tool shows them: a point, and an offset from it or nothing (null).
void SetPanelPoint(const RealPoint& point, const RealPoint* offset);
// Fields 1 to 4 of a tool with two points: the cursor while idle, then fromPoint and the cursor's offset from it; the
// cursor alone while a result is placed.
void SetPanelRun(const ToolState& state);
// Once, when the host has given the panel's window.
void BuildInfoPanel(AIPlatformWindow window);
void RefreshPanelTheme(AIPlatformWindow window);
void SyncGridFields();

}  // namespace quorvel

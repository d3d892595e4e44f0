// The information panel as the host holds it: made once when the host has started, shown and hidden from the menu. A
// host that gives no panel leaves the plug-in without one, and everything here then does nothing.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// Makes flyout and panel, fills the panel and shows it.
void CreateInfoPanel(PluginGlobals* globals);
bool InfoPanelIsShown(const PluginGlobals* globals);
void ShowInfoPanel(const PluginGlobals* globals, bool shown);
// The window that holds the controls; null without a panel.
AIPlatformWindow InfoPanelWindow(const PluginGlobals* globals);

}  // namespace quorvel

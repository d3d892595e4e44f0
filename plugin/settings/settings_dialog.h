// The Settings dialog: the style of all dimensions, and the units of lengths and areas.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// Modal, in the current language. True when it was left by OK; Cancel stores nothing.
bool RunSettingsDialog(PluginGlobals* globals);

}  // namespace quorvel

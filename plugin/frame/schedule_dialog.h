// The Schedule dialog: frame type, title block texts, the parts rows in ten pages of ten, and the presets.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// True for OK. Cancel stores nothing, but what a preset or an import has replaced stays.
bool RunScheduleDialog(PluginGlobals* globals);

}  // namespace quorvel

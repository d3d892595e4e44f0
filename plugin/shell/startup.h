// The life of the one record: what fills it at start-up, and what is saved and given back at shutdown.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// The first nonzero result ends it; what was made until then stays until ShutDown.
AIErr StartUp(PluginGlobals* globals, SPPluginRef self);
void ShutDown(PluginGlobals* globals);

}  // namespace quorvel

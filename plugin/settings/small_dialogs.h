// The dialogs that set one or two fields. Each is given the fields and returns whether OK was chosen; Cancel stores
// nothing.
#pragma once

#include <string>

#include "plugin/shell/globals.h"

namespace quorvel {

bool RunCommentDialog(PluginGlobals* globals);
bool RunObjectNumberDialog(PluginGlobals* globals);
// A radius of 0 and below is refused.
bool FilletRadiusDialog(PluginGlobals* globals);
bool RunRadiusDialog(PluginGlobals* globals);
bool RunDiameterDialog(PluginGlobals* globals);
// name: proposed, and what was typed (up to 255 bytes, unchecked).
bool RunSaveAsDialog(PluginGlobals* globals, std::string* name);

}  // namespace quorvel

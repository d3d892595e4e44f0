// Presets: named copies of the schedule block, one file each. Names are bytes of the system code page.
#pragma once

#include <string>
#include <vector>

#include "plugin/settings/prefs_file.h"

namespace quorvel {

constexpr int kPresetLimit = 100;

// At most kPresetLimit names, sorted without regard to case.
std::vector<std::string> ListPresetNames();
// The first free name "Custom-%d" or its Japanese counterpart, the last one tried when all are taken.
std::string ProposePresetName();
bool PresetExists(const std::string& name);

}  // namespace quorvel

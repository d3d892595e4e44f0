// The tags beside the format proper: written where they are needed, read where they are found.
#pragma once

#include "plugin/record/point_hold.h"

namespace quorvel {

constexpr int kCurrentLanguage = -1;

// Finds how the points of a fresh dimension are held on their art. Points of a record keep what is recorded.
void FindHolds(PluginGlobals* globals, std::int16_t kind);
// Of liveState, the settings and the language.
void WriteAdditions(const PluginGlobals* globals, AIArtHandle group, std::int16_t kind);

HoldRecord ReadHold(AIArtHandle group, const char* tagName);
void WriteHold(AIArtHandle group, const char* tagName, const HoldRecord& record);
const char* HoldTagOf(std::string_view listTag);  // beside a list of links
const char* StopHoldTag(int number);              // from 1
// The recorded point as it was before "%g"; the point itself when the record says no more, or says another point by
// now.
RealPoint ExactPoint(const HoldRecord& record, const RealPoint& point);
// Puts settings that "%g" does not give back to their exact numbers.
void ReadExactSettings(AIArtHandle group, PluginGlobals* globals);
// The language of the signs, kCurrentLanguage when none is recorded.
int ReadChoices(AIArtHandle group, BuildChoices* choices);

}  // namespace quorvel

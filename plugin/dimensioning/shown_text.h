// The texts of a dimension that is being rebuilt. Where the value is the one shown but for the precision of the
// drawing's own coordinates, the text stays: a half that "%.1f" has rounded up once is not rounded down when its art
// was turned.
#pragma once

#include "plugin/dimensioning/units.h"

namespace quorvel {

// The texts directly in the group, the lowest first, as UTF-16 units; the host offers sDimension.
std::vector<std::vector<std::uint16_t>> TextsOf(AIArtHandle group);

// Held while a builder rebuilds the group. tolerance: how far a measured point may be off, document points; 0 keeps no
// text.
class ShownTexts {
  public:
    ShownTexts(AIArtHandle group, double tolerance);
    ~ShownTexts();
    ShownTexts(const ShownTexts&) = delete;
    ShownTexts& operator=(const ShownTexts&) = delete;
};

// How far a measured point may be off in this rebuild; 0 while nothing is rebuilt.
double ShownTextTolerance();

// FormatLength and FormatAngle, but for a shown text that says the same. index: of the dimension's texts, the lowest
// first. slack: how far the length in points, or the angle in radians, may be off.
void FormatLengthShown(const PluginGlobals* globals, int index, double length, LengthKind kind, double slack,
                       char* text);
void FormatAngleShown(const PluginGlobals* globals, double radians, double slack, char* text);

}  // namespace quorvel

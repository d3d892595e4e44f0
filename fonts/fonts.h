// The fonts of the machine: their names, in a fixed order, and the width of a character.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::fonts {

struct Font {
    std::string fullName;        // such as "DejaVu Sans Bold"
    std::string postScriptName;  // such as "DejaVuSans-Bold"
    std::string family;          // for CSS
    int weight = 400;            // CSS
    bool italic = false;
    std::string file;
    int faceIndex = 0;
};

// The standard font ("DejaVu Sans", or the system's own sans) first, then all scalable fonts by full name, one of each.
const std::vector<Font>& fonts();
// Null when no font has the full name.
const Font* findFont(std::string_view fullName);
// By CSS family, weight and slant; the standard font when there is none.
const Font& matchFont(std::string_view family, int weight, bool italic);
// The first family of a CSS list, as it is written there, when it is neither one of the machine's nor a generic one;
// else empty.
std::string missingFamily(std::string_view families);
// Unhinted advance at size 1. A character that the font lacks is measured in the first font that has it.
float characterWidth(const Font& font, char32_t character);

}  // namespace quorvel::fonts

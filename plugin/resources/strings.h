// The texts of the lists that dialogs and the panel show, by resource id, in Japanese and in English. The English text
// of a row has the Japanese id plus 100.
#pragma once

#include <cstdint>

namespace quorvel {

// First ids of the runs. A "-" inside a run is a separator that list filling passes over.
constexpr std::int32_t kErrorStrings = 16050;             // 13 rows
constexpr std::int32_t kAccuracyStrings = 16140;          // 7 rows
constexpr std::int32_t kUnitStrings = 16147;              // 5 rows
constexpr std::int32_t kRadiusPositionStrings = 16152;    // 3 rows
constexpr std::int32_t kGridStepStrings = 16155;          // 10 rows
constexpr std::int32_t kTextSizeStrings = 16165;          // 6 rows
constexpr std::int32_t kRulerUnitStrings = 16171;         // 5 rows
constexpr std::int32_t kShapeHeadingString = 16176;       // 1 row
constexpr std::int32_t kArrowShapeStrings = 16177;        // 4 rows
constexpr std::int32_t kSpecialCharacterStrings = 16181;  // 3 rows, 2 in English
constexpr std::int32_t kPresetCommandStrings = 16191;     // 7 rows; the first 4 load as Save, Save As, Delete
constexpr std::int32_t kFrameTypeStrings = 16201;         // 3 rows
constexpr std::int32_t kLengthUnitStrings = 16211;        // 5 rows
constexpr std::int32_t kAreaUnitStrings = 16216;          // 5 rows
constexpr std::int32_t kScaleStrings = 16221;             // 13 rows

// UTF-8; null for an id that no string has. Pictures are numbered apart, so that one number may name a string and a
// picture.
const char* FindResourceString(std::int32_t id);

}  // namespace quorvel

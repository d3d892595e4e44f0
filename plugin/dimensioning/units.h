// Numbers to the words on the drawing and back: values of dimensions in the drawing's scale and unit, angles, scale
// texts, the settings' length fields, the width of a text, and byte texts into the host's text. Lengths are points;
// texts are bytes of the system code page in buffers of the caller.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/shell/globals.h"

namespace quorvel {

constexpr int kValueTextSize = 512;
constexpr int kUnitCount = 6;

enum class LengthKind : std::uint8_t { plain, radius, diameter };

// A row of the unit table, indexed by flArUnit and flArLenUnit.
struct LengthUnit {
    double divisor;      // of the dimension chain's last step; 1.0 for none
    bool metric;         // the chain starts with a factor 25.4
    const char* suffix;  // of a dimension
    double factor;       // points to the unit, in comments and read-outs
    const char* name;    // in comments and read-outs
    const char* squaredName;
};
extern const LengthUnit kLengthUnits[kUnitCount];

// The number of a dimension's text before it is rounded, and how many digits an angle has.
double LengthInUnit(const PluginGlobals* globals, double length, LengthKind kind);
int AngleDigits(const PluginGlobals* globals);
// For diameter the length is the radius.
void FormatLength(const PluginGlobals* globals, double length, LengthKind kind, char* text);
void FormatAngle(const PluginGlobals* globals, double radians, char* text);
// Removes the last byte while it is "0", at most digits times, then a "." that is last. Counts at most 20 bytes.
void StripTrailingZeros(char* text, int digits);

double ParseScaleText(const char* text);
void FormatScaleText(double value, char* text);

void FormatPointsWithRulerUnit(double points, char* text);
// Without a suffix the ruler unit counts.
void ParsePointsWithUnit(const char* text, float* points);
// Without a suffix the number is points.
float ParsePointsNoDefault(const char* text);
// x to the power n by repeated squaring; a negative n gives the reciprocal.
double PowerBySquaring(double base, int exponent);

std::int32_t MeasureTextWidth(const PluginGlobals* globals, const char* text);  // at flArFSize, rounded, points
double MeasureTextUnitWidth(const PluginGlobals* globals, const char* text);    // at size 1
// The last font of the host's list whose name is flArFName, index 0 when there is none; null without fonts.
AIFontKey FindDimensionFont(const PluginGlobals* globals);
// Inserts the text behind the range, which then spans it.
void SetTextFromInternal(const PluginGlobals* globals, ATETextRangeRef range, const char* text);
// The UTF-16 units that SetTextFromInternal inserts.
std::vector<std::uint16_t> UnitsFromInternal(const PluginGlobals* globals, const char* text);

// A string of the resources by its Japanese id; the English row, 100 above, when language is exactly 1. System code
// page; the empty text for an unknown id.
std::string LoadResourceString(const PluginGlobals* globals, std::int32_t id);
// Rows from the first id on, rows that begin with "-" skipped.
std::vector<std::string> LoadStringRows(const PluginGlobals* globals, std::int32_t firstId, int count);

// Byte-string helpers, each capped as its name's table says.
std::int32_t TextLength(const char* text);                    // up to 32000
std::uint16_t CompareTexts(const char* a, const char* b);     // 0, 1 or 65535; signed bytes
void CopyText(char* to, const char* from);                    // up to 32000 bytes
std::int32_t FindInText(const char* text, const char* part);  // in the first 255 positions; -1
void RemoveFromText(char* text, const char* part);            // the first occurrence, in place
void PascalToText(const std::uint8_t* from, char* to, int limit);
void TextToPascal(const char* from, std::uint8_t* to, int limit);

}  // namespace quorvel

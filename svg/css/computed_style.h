// The computed style of an element, in its user space: every property that says how something is drawn or set. It is
// made of three groups, each of which is kept once however many elements share it. Texts are views into the file's
// StyleTable.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "hostapi/types.h"
#include "svg/values/color.h"
#include "svg/values/paint.h"

namespace quorvel::svg {

// The words of stroke-linecap and stroke-linejoin in the order of the host's numbers.
inline constexpr std::array<std::string_view, 3> kCapWords = {"butt", "round", "square"};
inline constexpr std::array<std::string_view, 3> kJoinWords = {"miter", "round", "bevel"};

enum class FillRule : std::uint8_t { kNonZero, kEvenOdd };
enum class PaintLayer : std::uint8_t { kFill, kStroke, kMarkers };
enum class WritingMode : std::uint8_t { kHorizontal, kVerticalRl, kVerticalLr };
enum class Direction : std::uint8_t { kLeftToRight, kRightToLeft };
enum class Baseline : std::uint8_t {
    kAuto,
    kAlphabetic,
    kTextTop,
    kTextBottom,
    kCentral,
    kMiddle,
    kHanging,
    kMathematical
};
enum class BlendMode : std::uint8_t {
    kNormal,
    kMultiply,
    kScreen,
    kOverlay,
    kDarken,
    kLighten,
    kColorDodge,
    kColorBurn,
    kHardLight,
    kSoftLight,
    kDifference,
    kExclusion,
    kHue,
    kSaturation,
    kColor,
    kLuminosity
};
enum class Overflow : std::uint8_t { kByElement, kVisible, kHidden };  // kByElement: what the element does by itself
enum class MaskType : std::uint8_t { kLuminance, kAlpha };

// Inherited: how outlines are painted.
struct PaintStyle {
    SvgPaint fill{SvgPaint::kColor, {}, {}}, stroke;
    CssColor color;
    double strokeWidth = 1, miterLimit = 4, dashOffset = 0;
    std::array<double, 6> dashes{};
    double fillOpacity = 1, strokeOpacity = 1;
    std::uint8_t dashCount = 0, cap = 0, join = 0;
    FillRule fillRule = FillRule::kNonZero;
    std::array<PaintLayer, 3> paintOrder = {PaintLayer::kFill, PaintLayer::kStroke, PaintLayer::kMarkers};

    bool operator==(const PaintStyle&) const = default;
    std::uint64_t hash() const;
};

// Inherited: fonts, text, markers and visibility.
struct TextStyle {
    std::string_view fontFamily;
    double fontSize = 16;
    double baselineShift = 0;  // of all around together
    double letterSpacing = 0, wordSpacing = 0;
    std::array<std::string_view, 3> markers;  // ids for the first, the inner and the last anchors; empty: none
    std::int16_t fontWeight = 400;
    bool italic = false, preserveSpace = false, visible = true;
    ATEJustification anchor = kJustifyLeft;
    WritingMode writingMode = WritingMode::kHorizontal;
    Direction direction = Direction::kLeftToRight;
    Baseline dominantBaseline = Baseline::kAuto;
    FillRule clipRule = FillRule::kNonZero;

    bool operator==(const TextStyle&) const = default;
    std::uint64_t hash() const;
};

// Not inherited: what acts on the element as a whole, and the properties of gradient stops and masks.
struct ElementStyle {
    double opacity = 1;
    std::string_view clipPath, mask;  // ids; empty: none
    std::string_view filter;          // as it is written; empty: none
    SvgPaint stopColor{SvgPaint::kColor, {}, {}};
    double stopOpacity = 1;
    bool displayed = true, isolated = false, hasFixedStroke = false;  // of vector-effect: the stroke is not scaled
    BlendMode blendMode = BlendMode::kNormal;
    Overflow overflow = Overflow::kByElement;
    MaskType maskType = MaskType::kLuminance;
    Baseline alignmentBaseline = Baseline::kAuto;

    bool operator==(const ElementStyle&) const = default;
    std::uint64_t hash() const;
};

struct ComputedStyle : PaintStyle, TextStyle, ElementStyle {
    // Set by StyleTable: equal only for equal styles.
    struct Number {
        std::uint32_t paint = 0, text = 0, element = 0;
        bool operator==(const Number&) const = default;
    };
    std::uint32_t number = 0;
    Number groups;
};

}  // namespace quorvel::svg

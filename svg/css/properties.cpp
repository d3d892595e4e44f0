#include "svg/css/properties.h"

#include <array>

#include "svg/css/declarations.h"
#include "svg/css/property_readers.h"
#include "svg/values/reference.h"

namespace quorvel::svg {
namespace {

using Style = ComputedStyle;

// --- words ---------------------------------------------------------------------------------------------------------

constexpr Keyword<FillRule> kFillRules[] = {{"nonzero", FillRule::kNonZero}, {"evenodd", FillRule::kEvenOdd}};
constexpr Keyword<ATEJustification> kAnchors[] = {
    {"start", kJustifyLeft}, {"middle", kJustifyCenter}, {"end", kJustifyRight}};
constexpr Keyword<Direction> kDirections[] = {{"ltr", Direction::kLeftToRight}, {"rtl", Direction::kRightToLeft}};
constexpr Keyword<WritingMode> kWritingModes[] = {
    {"horizontal-tb", WritingMode::kHorizontal}, {"lr", WritingMode::kHorizontal},
    {"lr-tb", WritingMode::kHorizontal},         {"rl", WritingMode::kHorizontal},
    {"rl-tb", WritingMode::kHorizontal},         {"tb", WritingMode::kVerticalRl},
    {"tb-lr", WritingMode::kVerticalLr},         {"tb-rl", WritingMode::kVerticalRl},
    {"vertical-lr", WritingMode::kVerticalLr},   {"vertical-rl", WritingMode::kVerticalRl}};
constexpr Keyword<Baseline> kBaselines[] = {{"auto", Baseline::kAuto},
                                            {"baseline", Baseline::kAlphabetic},
                                            {"alphabetic", Baseline::kAlphabetic},
                                            {"before-edge", Baseline::kTextTop},
                                            {"text-before-edge", Baseline::kTextTop},
                                            {"text-top", Baseline::kTextTop},
                                            {"after-edge", Baseline::kTextBottom},
                                            {"text-after-edge", Baseline::kTextBottom},
                                            {"text-bottom", Baseline::kTextBottom},
                                            {"ideographic", Baseline::kTextBottom},
                                            {"central", Baseline::kCentral},
                                            {"middle", Baseline::kMiddle},
                                            {"hanging", Baseline::kHanging},
                                            {"mathematical", Baseline::kMathematical}};
constexpr Keyword<bool> kVisibilities[] = {{"visible", true}, {"hidden", false}, {"collapse", false}};
constexpr Keyword<bool> kIsolations[] = {{"auto", false}, {"isolate", true}};
constexpr Keyword<bool> kVectorEffects[] = {{"none", false}, {"non-scaling-stroke", true}};
constexpr Keyword<MaskType> kMaskTypes[] = {{"luminance", MaskType::kLuminance}, {"alpha", MaskType::kAlpha}};
constexpr Keyword<Overflow> kOverflows[] = {{"auto", Overflow::kVisible},
                                            {"hidden", Overflow::kHidden},
                                            {"scroll", Overflow::kHidden},
                                            {"visible", Overflow::kVisible}};
constexpr Keyword<BlendMode> kBlendModes[] = {{"normal", BlendMode::kNormal},
                                              {"multiply", BlendMode::kMultiply},
                                              {"screen", BlendMode::kScreen},
                                              {"overlay", BlendMode::kOverlay},
                                              {"darken", BlendMode::kDarken},
                                              {"lighten", BlendMode::kLighten},
                                              {"color-dodge", BlendMode::kColorDodge},
                                              {"color-burn", BlendMode::kColorBurn},
                                              {"hard-light", BlendMode::kHardLight},
                                              {"soft-light", BlendMode::kSoftLight},
                                              {"difference", BlendMode::kDifference},
                                              {"exclusion", BlendMode::kExclusion},
                                              {"hue", BlendMode::kHue},
                                              {"saturation", BlendMode::kSaturation},
                                              {"color", BlendMode::kColor},
                                              {"luminosity", BlendMode::kLuminosity}};

// --- readers -------------------------------------------------------------------------------------------------------

void readDisplay(const PropertyValue& value, Style* style) { style->displayed = value.text != "none"; }

// A reference to an element of the file, or none.
template <auto kMember>
void readReference(const PropertyValue& value, Style* style) {
    style->*kMember = value.styles.keep(urlFragment(value.text));
}

// Kept as it is written: a list of references and functions.
void readFilter(const PropertyValue& value, Style* style) {
    const std::string_view text = trimmed(value.text);
    style->filter = text == "none" ? std::string_view() : value.styles.keep(text);
}

template <std::size_t kFirst, std::size_t kLast>
void readMarkers(const PropertyValue& value, Style* style) {
    const std::string_view id = value.styles.keep(urlFragment(value.text));
    for (std::size_t i = kFirst; i <= kLast; ++i) style->markers[i] = id;
}
template <std::size_t kFirst, std::size_t kLast>
void copyMarkers(const Style& from, Style* style) {
    for (std::size_t i = kFirst; i <= kLast; ++i) style->markers[i] = from.markers[i];
}

// --- the table -----------------------------------------------------------------------------------------------------

constexpr std::uint8_t kPaint = StyleTable::kPaint, kText = StyleTable::kText, kElement = StyleTable::kElement;
constexpr bool kInherited = true, kOwn = false, kComesFirst = true, kSetsFontSize = true, kHasNames = true;

constexpr std::array kProperties = {
    Property{"alignment-baseline", kElement, kOwn, false, readKeyword<&Style::alignmentBaseline, kBaselines>,
             copyMembers<&Style::alignmentBaseline>},
    Property{"baseline-shift", kText, kInherited, false, readBaselineShift, copyMembers<&Style::baselineShift>},
    Property{"clip-path", kElement, kOwn, false, readReference<&Style::clipPath>, copyMembers<&Style::clipPath>},
    Property{"clip-rule", kText, kInherited, false, readKeyword<&Style::clipRule, kFillRules>,
             copyMembers<&Style::clipRule>},
    Property{"color", kPaint, kInherited, false, readColor, copyMembers<&Style::color>},
    Property{"direction", kText, kInherited, false, readKeyword<&Style::direction, kDirections>,
             copyMembers<&Style::direction>},
    Property{"display", kElement, kOwn, false, readDisplay, copyMembers<&Style::displayed>},
    Property{"dominant-baseline", kText, kInherited, false, readKeyword<&Style::dominantBaseline, kBaselines>,
             copyMembers<&Style::dominantBaseline>},
    Property{"fill", kPaint, kInherited, false, readFill, copyMembers<&Style::fill>},
    Property{"fill-opacity", kPaint, kInherited, false, readShare<&Style::fillOpacity>,
             copyMembers<&Style::fillOpacity>},
    Property{"fill-rule", kPaint, kInherited, false, readKeyword<&Style::fillRule, kFillRules>,
             copyMembers<&Style::fillRule>},
    Property{"filter", kElement, kOwn, false, readFilter, copyMembers<&Style::filter>},
    Property{"font", kText, kInherited, false, readFont,
             copyMembers<&Style::fontFamily, &Style::fontSize, &Style::fontWeight, &Style::italic>, kSetsFontSize,
             kHasNames},
    Property{"font-family", kText, kInherited, false, readFontFamily, copyMembers<&Style::fontFamily>, false,
             kHasNames},
    Property{"font-size", kText, kInherited, false, readFontSize, copyMembers<&Style::fontSize>, kSetsFontSize},
    Property{"font-style", kText, kInherited, false, readFontStyle, copyMembers<&Style::italic>},
    Property{"font-weight", kText, kInherited, false, readFontWeight, copyMembers<&Style::fontWeight>},
    Property{"isolation", kElement, kOwn, false, readKeyword<&Style::isolated, kIsolations>,
             copyMembers<&Style::isolated>},
    Property{"letter-spacing", kText, kInherited, false, readLetterSpacing, copyMembers<&Style::letterSpacing>},
    Property{"marker", kText, kInherited, kComesFirst, readMarkers<0, 2>, copyMarkers<0, 2>},
    Property{"marker-end", kText, kInherited, false, readMarkers<2, 2>, copyMarkers<2, 2>},
    Property{"marker-mid", kText, kInherited, false, readMarkers<1, 1>, copyMarkers<1, 1>},
    Property{"marker-start", kText, kInherited, false, readMarkers<0, 0>, copyMarkers<0, 0>},
    Property{"mask", kElement, kOwn, false, readReference<&Style::mask>, copyMembers<&Style::mask>},
    Property{"mask-type", kElement, kOwn, false, readKeyword<&Style::maskType, kMaskTypes>,
             copyMembers<&Style::maskType>},
    Property{"mix-blend-mode", kElement, kOwn, false, readKeyword<&Style::blendMode, kBlendModes>,
             copyMembers<&Style::blendMode>},
    Property{"opacity", kElement, kOwn, false, readShare<&Style::opacity>, copyMembers<&Style::opacity>},
    Property{"overflow", kElement, kOwn, false, readKeyword<&Style::overflow, kOverflows>,
             copyMembers<&Style::overflow>},
    Property{"paint-order", kPaint, kInherited, false, readPaintOrder, copyMembers<&Style::paintOrder>},
    Property{"stop-color", kElement, kOwn, false, readStopColor, copyMembers<&Style::stopColor>},
    Property{"stop-opacity", kElement, kOwn, false, readShare<&Style::stopOpacity>, copyMembers<&Style::stopOpacity>},
    Property{"stroke", kPaint, kInherited, false, readStroke, copyMembers<&Style::stroke>},
    Property{"stroke-dasharray", kPaint, kInherited, false, readDashes, copyMembers<&Style::dashes, &Style::dashCount>},
    Property{"stroke-dashoffset", kPaint, kInherited, false, readDashOffset, copyMembers<&Style::dashOffset>},
    Property{"stroke-linecap", kPaint, kInherited, false, readLineCap, copyMembers<&Style::cap>},
    Property{"stroke-linejoin", kPaint, kInherited, false, readLineJoin, copyMembers<&Style::join>},
    Property{"stroke-miterlimit", kPaint, kInherited, false, readMiterLimit, copyMembers<&Style::miterLimit>},
    Property{"stroke-opacity", kPaint, kInherited, false, readShare<&Style::strokeOpacity>,
             copyMembers<&Style::strokeOpacity>},
    Property{"stroke-width", kPaint, kInherited, false, readStrokeWidth, copyMembers<&Style::strokeWidth>},
    Property{"text-anchor", kText, kInherited, false, readKeyword<&Style::anchor, kAnchors>,
             copyMembers<&Style::anchor>},
    Property{"vector-effect", kElement, kOwn, false, readKeyword<&Style::hasFixedStroke, kVectorEffects>,
             copyMembers<&Style::hasFixedStroke>},
    Property{"visibility", kText, kInherited, false, readKeyword<&Style::visible, kVisibilities>,
             copyMembers<&Style::visible>},
    Property{"white-space", kText, kInherited, false, readWhiteSpace, copyMembers<&Style::preserveSpace>},
    Property{"word-spacing", kText, kInherited, false, readWordSpacing, copyMembers<&Style::wordSpacing>},
    Property{"writing-mode", kText, kInherited, false, readKeyword<&Style::writingMode, kWritingModes>,
             copyMembers<&Style::writingMode>},
    Property{"xml:space", kText, kInherited, false, readXmlSpace, copyMembers<&Style::preserveSpace>, false, kHasNames},
};

// Most names of attributes are no properties: a hash table says so at once.
constexpr std::size_t kPlaces = 256;

constexpr std::size_t placeOf(std::string_view name) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(name[i]); };
    const std::size_t size = name.size();
    return (size * 37 + at(0) * 5u + at(size / 2) * 11u + at(size - 1) * 23u) % kPlaces;
}

constexpr std::array<std::uint8_t, kPlaces> kTable = [] {
    std::array<std::uint8_t, kPlaces> table{};
    for (std::size_t i = 0; i < kProperties.size(); ++i) {
        std::size_t place = placeOf(kProperties[i].name);
        while (table[place] != 0) place = (place + 1) % kPlaces;
        table[place] = static_cast<std::uint8_t>(i + 1);
    }
    return table;
}();

constexpr Style kInitial{};

}  // namespace

const Property* findProperty(std::string_view name) {
    if (name.empty()) return nullptr;
    for (std::size_t place = placeOf(name); kTable[place] != 0; place = (place + 1) % kPlaces) {
        const Property& property = kProperties[kTable[place] - std::size_t{1}];
        if (property.name == name) return &property;
    }
    return nullptr;
}

void applyProperty(const Property& property, const PropertyValue& value, ComputedStyle* style) {
    // In brackets and quotes are names.
    if (!property.hasNames && hasCapitals(value.text) && value.text.find_first_of("('\"") == std::string_view::npos) {
        const std::string lower = lowerCase(value.text);
        return applyProperty(property, {lower, value.parent, value.diagonal, value.styles, value.rootFontSize}, style);
    }
    const bool isUnset = value.text == "unset";
    if (value.text == "inherit" || (isUnset && property.inherited)) return property.copy(value.parent, style);
    if (value.text == "initial" || isUnset) return property.copy(kInitial, style);
    property.read(value, style);
}

}  // namespace quorvel::svg

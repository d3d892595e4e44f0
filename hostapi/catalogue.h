// The host's suites by name and version, stated once: the plug-in acquires them by these rows and the host offers them
// by these rows. A row and the type of its record are tied together by kSuiteKey.
#pragma once

#include <iterator>
#include <string_view>

#include "hostapi/dimensions.h"
#include "hostapi/suites.h"

namespace quorvel {

struct SuiteEntry {
    const char* name = nullptr;
    std::int32_t version = 0;
};

// Of a suite whose slots are called; other types have no name.
template <typename Suite>
inline constexpr SuiteEntry kSuiteKey = {};
template <>
inline constexpr SuiteEntry kSuiteKey<SPAccessSuite> = {"SP Access Suite", 3};
template <>
inline constexpr SuiteEntry kSuiteKey<AIPluginSuite> = {"AI Plugin Suite", 4};
template <>
inline constexpr SuiteEntry kSuiteKey<AIRealMathSuite> = {"AI Real Math Suite", 2};
template <>
inline constexpr SuiteEntry kSuiteKey<AIArtSuite> = {"AI Art Suite", 16};
template <>
inline constexpr SuiteEntry kSuiteKey<AIUIThemeSuite> = {"AI User Interface Theme Suite", 1};
template <>
inline constexpr SuiteEntry kSuiteKey<AIPanelSuite> = {"AI Panel Suite", 1};
template <>
inline constexpr SuiteEntry kSuiteKey<AIPanelFlyoutMenuSuite> = {"AI Panel Flyout Menu Suite", 1};
template <>
inline constexpr SuiteEntry kSuiteKey<AILayerSuite> = {"AI Layer Suite", 12};
template <>
inline constexpr SuiteEntry kSuiteKey<AIUserSuite> = {"AI User Suite", 10};
template <>
inline constexpr SuiteEntry kSuiteKey<AIPathSuite> = {"AI Path Suite", 10};
template <>
inline constexpr SuiteEntry kSuiteKey<AIPathStyleSuite> = {"AI Path Style Suite", 12};
template <>
inline constexpr SuiteEntry kSuiteKey<AIDocumentViewSuite> = {"AI Document View Suite", 11};
template <>
inline constexpr SuiteEntry kSuiteKey<AITransformArtSuite> = {"AI Transform Art Suite", 2};
template <>
inline constexpr SuiteEntry kSuiteKey<AITextFrameSuite> = {"AI Text Frame Suite", 3};
template <>
inline constexpr SuiteEntry kSuiteKey<AIFontSuite> = {"AI Font Suite", 5};
template <>
inline constexpr SuiteEntry kSuiteKey<AIATEPaintSuite> = {"AIATE Paint Suite", 2};
template <>
inline constexpr SuiteEntry kSuiteKey<ATECharFeaturesSuite> = {"ATE CharFeatures Suite", 101};
template <>
inline constexpr SuiteEntry kSuiteKey<ATEParaFeaturesSuite> = {"ATE ParaFeatures Suite", 101};
template <>
inline constexpr SuiteEntry kSuiteKey<ATETextRangeSuite> = {"ATE TextRange Suite", 1};
template <>
inline constexpr SuiteEntry kSuiteKey<AIUndoSuite> = {"AI Undo Suite", 6};
template <>
inline constexpr SuiteEntry kSuiteKey<AITagSuite> = {"AI Tag Suite", 3};
template <>
inline constexpr SuiteEntry kSuiteKey<AIRandomSuite> = {"AI Random Suite", 4};
template <>
inline constexpr SuiteEntry kSuiteKey<AIMenuSuite> = {"AI Menu Suite", 10};
template <>
inline constexpr SuiteEntry kSuiteKey<AIToolSuite> = {"AI Tool Suite", 12};
template <>
inline constexpr SuiteEntry kSuiteKey<AITimerSuite> = {"AI Timer Suite", 4};
template <>
inline constexpr SuiteEntry kSuiteKey<AINotifierSuite> = {"AI Notifier Suite", 3};
template <>
inline constexpr SuiteEntry kSuiteKey<AIActionManagerSuite> = {"AI Action Manager Suite", 4};
template <>
inline constexpr SuiteEntry kSuiteKey<AIUnicodeStringSuite> = {"AI Unicode String Suite", 7};
template <>
inline constexpr SuiteEntry kSuiteKey<AIArtQuerySuite> = {"Quorvel Art Query Suite", 1};
template <>
inline constexpr SuiteEntry kSuiteKey<AIDimensionSuite> = {"Quorvel Dimension Suite", 1};

// All suites in the order in which they are acquired. Those without a type are held while a message runs and never
// called. The rows from kSharedSuiteCount on are offered by our own host alone.
constexpr SuiteEntry kSuiteCatalogue[] = {
    {"SP Blocks Suite", 2},
    kSuiteKey<SPAccessSuite>,
    kSuiteKey<AIPluginSuite>,
    {"AI MdMemory Suite", 2},
    kSuiteKey<AIRealMathSuite>,
    kSuiteKey<AIArtSuite>,
    kSuiteKey<AIUIThemeSuite>,
    kSuiteKey<AIPanelSuite>,
    kSuiteKey<AIPanelFlyoutMenuSuite>,
    kSuiteKey<AILayerSuite>,
    kSuiteKey<AIUserSuite>,
    {"AI Runtime Suite", 11},
    {"AI Data Filter Suite", 7},
    kSuiteKey<AIPathSuite>,
    kSuiteKey<AIPathStyleSuite>,
    {"AI Matching Art Suite", 6},
    {"AI Document Suite", 13},
    kSuiteKey<AIDocumentViewSuite>,
    kSuiteKey<AITransformArtSuite>,
    kSuiteKey<AITextFrameSuite>,
    kSuiteKey<AIFontSuite>,
    {"AI Foreign Object Suite", 3},
    kSuiteKey<AIATEPaintSuite>,
    {"ATE ApplicationPaint Suite", 1},
    {"ATE CompFont Suite", 1},
    {"ATE CompFontClass Suite", 1},
    {"ATE CompFontClassSet Suite", 1},
    {"ATE CompFontComponent Suite", 1},
    {"ATE CompFontSet Suite", 1},
    {"ATE GlyphRun Suite", 1},
    {"ATE GlyphRunsIterator Suite", 1},
    {"ATE MojiKumi Suite", 1},
    {"ATE MojiKumiSet Suite", 1},
    {"ATE TextFrame Suite", 101},
    {"ATE TextFramesIterator Suite", 1},
    {"ATE TextLine Suite", 1},
    {"ATE TextLinesIterator Suite", 1},
    {"ATE TextResources Suite", 1},
    {"ATE ApplicationTextResources Suite", 1},
    {"ATE DocumentTextResources Suite", 101},
    {"ATE ArrayApplicationPaintRef Suite", 1},
    {"ATE ArrayReal Suite", 1},
    {"ATE ArrayBool Suite", 1},
    {"ATE ArrayInteger Suite", 1},
    {"ATE ArrayLineCapType Suite", 1},
    {"ATE ArrayFigureStyle Suite", 1},
    {"ATE ArrayLineJoinType Suite", 1},
    {"ATE ArrayWariChuJustification Suite", 1},
    {"ATE ArrayStyleRunAlignment Suite", 1},
    {"ATE ArrayAutoKernType Suite", 1},
    {"ATE ArrayBaselineDirection Suite", 1},
    {"ATE ArrayLanguage Suite", 1},
    {"ATE ArrayFontCapsOption Suite", 1},
    {"ATE ArrayFontBaselineOption Suite", 1},
    {"ATE ArrayParagraphJustification Suite", 1},
    {"ATE ArrayArrayReal Suite", 1},
    {"ATE ArrayBurasagariType Suite", 1},
    {"ATE ArrayPreferredKinsokuOrder Suite", 1},
    {"ATE ArrayKinsokuRef Suite", 1},
    {"ATE ArrayMojiKumiRef Suite", 1},
    {"ATE ArrayMojiKumiSetRef Suite", 1},
    {"ATE ArrayTabStopsRef Suite", 1},
    {"ATE ArrayLeadingType Suite", 1},
    {"ATE ArrayFontRef Suite", 1},
    {"ATE ArrayGlyphID Suite", 1},
    {"ATE ArrayRealPoint Suite", 1},
    {"ATE ArrayRealMatrix Suite", 1},
    kSuiteKey<ATECharFeaturesSuite>,
    {"ATE CharInspector Suite", 101},
    {"ATE CharStyle Suite", 1},
    {"ATE CharStyles Suite", 1},
    {"ATE CharStylesIterator Suite", 1},
    {"ATE Find Suite", 101},
    {"ATE Font Suite", 1},
    {"ATE Glyph Suite", 1},
    {"ATE Glyphs Suite", 1},
    {"ATE GlyphsIterator Suite", 1},
    {"ATE Kinsoku Suite", 1},
    {"ATE KinsokuSet Suite", 1},
    kSuiteKey<ATEParaFeaturesSuite>,
    {"ATE Paragraph Suite", 1},
    {"ATE ParagraphsIterator Suite", 1},
    {"ATE ParaInspector Suite", 101},
    {"ATE ParaStyle Suite", 1},
    {"ATE ParaStyles Suite", 1},
    {"ATE ParaStylesIterator Suite", 1},
    {"ATE Spell Suite", 101},
    {"ATE Stories Suite", 1},
    {"ATE Story Suite", 1},
    {"ATE TabStop Suite", 1},
    {"ATE TabStops Suite", 1},
    {"ATE TabStopsIterator Suite", 1},
    kSuiteKey<ATETextRangeSuite>,
    {"ATE TextRanges Suite", 1},
    {"ATE TextRangesIterator Suite", 1},
    {"ATE TextRunsIterator Suite", 1},
    {"ATE WordsIterator Suite", 1},
    kSuiteKey<AIUndoSuite>,
    {"AI Context Suite", 6},
    {"AI Preference Suite", 5},
    {"AI Hard Soft Suite", 4},
    kSuiteKey<AITagSuite>,
    kSuiteKey<AIRandomSuite>,
    kSuiteKey<AIMenuSuite>,
    kSuiteKey<AIToolSuite>,
    kSuiteKey<AITimerSuite>,
    kSuiteKey<AINotifierSuite>,
    kSuiteKey<AIActionManagerSuite>,
    {"AI File Path Suite", 3},
    kSuiteKey<AIUnicodeStringSuite>,
    kSuiteKey<AIArtQuerySuite>,
    kSuiteKey<AIDimensionSuite>,
};
constexpr int kSuiteCount = static_cast<int>(std::size(kSuiteCatalogue));
constexpr int kSharedSuiteCount = 110;

// The row of a suite's type. A type that no row names does not compile.
template <typename Suite>
consteval int SuiteRow() {
    int row = 0;
    while (std::string_view(kSuiteCatalogue[row].name) != kSuiteKey<Suite>.name) ++row;
    return row;
}

}  // namespace quorvel

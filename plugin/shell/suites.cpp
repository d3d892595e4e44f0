// Taking hold of the host's suites for the length of a message. The outermost message acquires all rows of the table
// in order and releases them at its end; messages that nest in it, through a modal dialog, only count.
#include "plugin/shell/suites.h"

#include <cstdio>
#include <iterator>
#include <type_traits>

#include "plugin/shell/alert.h"
#include "plugin/shell/globals.h"

namespace quorvel {

const SPAccessSuite* sSPAccess = nullptr;
const AIPluginSuite* sAIPlugin = nullptr;
const AIRealMathSuite* sAIRealMath = nullptr;
const AIArtSuite* sAIArt = nullptr;
const AIUIThemeSuite* sAIUITheme = nullptr;
const AIPanelSuite* sAIPanel = nullptr;
const AIPanelFlyoutMenuSuite* sAIPanelFlyoutMenu = nullptr;
const AILayerSuite* sAILayer = nullptr;
const AIUserSuite* sAIUser = nullptr;
const AIPathSuite* sAIPath = nullptr;
const AIPathStyleSuite* sAIPathStyle = nullptr;
const AIDocumentViewSuite* sAIDocumentView = nullptr;
const AITransformArtSuite* sAITransformArt = nullptr;
const AITextFrameSuite* sAITextFrame = nullptr;
const AIFontSuite* sAIFont = nullptr;
const AIATEPaintSuite* sAIATEPaint = nullptr;
const ATETextRangeSuite* sATETextRange = nullptr;
const ATECharFeaturesSuite* sATECharFeatures = nullptr;
const ATEParaFeaturesSuite* sATEParaFeatures = nullptr;
const AIUndoSuite* sAIUndo = nullptr;
const AITagSuite* sAITag = nullptr;
const AIRandomSuite* sAIRandom = nullptr;
const AIMenuSuite* sAIMenu = nullptr;
const AIToolSuite* sAITool = nullptr;
const AITimerSuite* sAITimer = nullptr;
const AINotifierSuite* sAINotifier = nullptr;
const AIActionManagerSuite* sAIActionManager = nullptr;
const AIUnicodeStringSuite* sAIUnicodeString = nullptr;
const AIArtQuerySuite* sArtQuery = nullptr;
const AIDimensionSuite* sDimension = nullptr;

std::int16_t suiteUseCount = 0;

namespace {

template <auto& pointer>
void Publish(const void* suite) {
    pointer = static_cast<std::remove_reference_t<decltype(pointer)>>(suite);
}

struct SuiteEntry {
    const char* name;
    std::int32_t version;
    void (*publish)(const void* suite) = nullptr;  // null: held while a message runs, never called by us
};

const SuiteEntry kSuites[] = {
    {"SP Blocks Suite", 2},
    {"SP Access Suite", 3, Publish<sSPAccess>},
    {"AI Plugin Suite", 4, Publish<sAIPlugin>},
    {"AI MdMemory Suite", 2},
    {"AI Real Math Suite", 2, Publish<sAIRealMath>},
    {"AI Art Suite", 16, Publish<sAIArt>},
    {"AI User Interface Theme Suite", 1, Publish<sAIUITheme>},
    {"AI Panel Suite", 1, Publish<sAIPanel>},
    {"AI Panel Flyout Menu Suite", 1, Publish<sAIPanelFlyoutMenu>},
    {"AI Layer Suite", 12, Publish<sAILayer>},
    {"AI User Suite", 10, Publish<sAIUser>},
    {"AI Runtime Suite", 11},
    {"AI Data Filter Suite", 7},
    {"AI Path Suite", 10, Publish<sAIPath>},
    {"AI Path Style Suite", 12, Publish<sAIPathStyle>},
    {"AI Matching Art Suite", 6},
    {"AI Document Suite", 13},
    {"AI Document View Suite", 11, Publish<sAIDocumentView>},
    {"AI Transform Art Suite", 2, Publish<sAITransformArt>},
    {"AI Text Frame Suite", 3, Publish<sAITextFrame>},
    {"AI Font Suite", 5, Publish<sAIFont>},
    {"AI Foreign Object Suite", 3},
    {"AIATE Paint Suite", 2, Publish<sAIATEPaint>},
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
    {"ATE CharFeatures Suite", 101, Publish<sATECharFeatures>},
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
    {"ATE ParaFeatures Suite", 101, Publish<sATEParaFeatures>},
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
    {"ATE TextRange Suite", 1, Publish<sATETextRange>},
    {"ATE TextRanges Suite", 1},
    {"ATE TextRangesIterator Suite", 1},
    {"ATE TextRunsIterator Suite", 1},
    {"ATE WordsIterator Suite", 1},
    {"AI Undo Suite", 6, Publish<sAIUndo>},
    {"AI Context Suite", 6},
    {"AI Preference Suite", 5},
    {"AI Hard Soft Suite", 4},
    {"AI Tag Suite", 3, Publish<sAITag>},
    {"AI Random Suite", 4, Publish<sAIRandom>},
    {"AI Menu Suite", 10, Publish<sAIMenu>},
    {"AI Tool Suite", 12, Publish<sAITool>},
    {"AI Timer Suite", 4, Publish<sAITimer>},
    {"AI Notifier Suite", 3, Publish<sAINotifier>},
    {"AI Action Manager Suite", 4, Publish<sAIActionManager>},
    {"AI File Path Suite", 3},
    {"AI Unicode String Suite", 7, Publish<sAIUnicodeString>},
};
constexpr int kSuiteCount = static_cast<int>(std::size(kSuites));
static_assert(kSuiteCount == 110);

// Where each row's pointer lands; the typed variables above are copies of it.
const void* sHeld[kSuiteCount] = {};

void PublishRow(int row) {
    if (kSuites[row].publish != nullptr) kSuites[row].publish(sHeld[row]);
}

void ReportMissingSuite(AIErr result, const SuiteEntry& suite) {
    char text[256];
    std::snprintf(text, sizeof text, "Error: %d, suite: %s, version: %d!", result, suite.name, suite.version);
    ShowErrorAlert(text);
}

// A failure counts only from the row on at which it can be shown: before that the next row is tried, and what is
// missing shows when a tool needs it.
AIErr AcquireRows() {
    AIErr result = kNoErr;
    for (int row = 0; row < kSuiteCount; ++row) {
        const SuiteEntry& suite = kSuites[row];
        result = gBasic->AcquireSuite(suite.name, suite.version, &sHeld[row]);
        PublishRow(row);
        if (result != kNoErr && sAIUser != nullptr) {
            ReportMissingSuite(result, suite);
            break;
        }
    }
    return result;
}

// Every row is released, acquired or not; the host answers 0 for one that is not held.
AIErr ReleaseRows() {
    for (int row = 0; row < kSuiteCount; ++row) {
        const AIErr result = gBasic->ReleaseSuite(kSuites[row].name, kSuites[row].version);
        if (result != kNoErr) return result;
        sHeld[row] = nullptr;
        PublishRow(row);
    }
    return kNoErr;
}

template <auto& pointer>
void AcquireOwn(const char* name, std::int32_t version) {
    const void* suite = nullptr;
    if (gBasic->AcquireSuite(name, version, &suite) != kNoErr) suite = nullptr;
    Publish<pointer>(suite);
}

template <auto& pointer>
void ReleaseOwn(const char* name, std::int32_t version) {
    if (pointer == nullptr) return;
    gBasic->ReleaseSuite(name, version);
    pointer = nullptr;
}

void AcquireOwnSuites() {
    AcquireOwn<sArtQuery>(kArtQuerySuiteName, kArtQuerySuiteVersion);
    AcquireOwn<sDimension>(kDimensionSuiteName, kDimensionSuiteVersion);
}

void ReleaseOwnSuites() {
    ReleaseOwn<sDimension>(kDimensionSuiteName, kDimensionSuiteVersion);
    ReleaseOwn<sArtQuery>(kArtQuerySuiteName, kArtQuerySuiteVersion);
}

}  // namespace

AIErr AcquireSuites() {
    AIErr result = kNoErr;
    if (suiteUseCount == 0) {
        result = AcquireRows();
        if (result == kNoErr) AcquireOwnSuites();
    }
    // Failure included, so that the release that always follows brings the count back.
    suiteUseCount = static_cast<std::int16_t>(suiteUseCount + 1);
    return result;
}

AIErr ReleaseSuites() {
    AIErr result = kNoErr;
    if (suiteUseCount == 1) {
        ReleaseOwnSuites();
        result = ReleaseRows();
    }
    suiteUseCount = static_cast<std::int16_t>(suiteUseCount - 1);
    return result;
}

}  // namespace quorvel

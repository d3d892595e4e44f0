// Taking hold of the host's suites for the length of a message. The outermost message acquires all rows of the table
// in order and releases them at its end; messages that nest in it, through a modal dialog, only count.
#include "plugin/shell/suites.h"

#include <array>
#include <cstdio>
#include <type_traits>

#include "hostapi/catalogue.h"
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

using PublishFunction = void (*)(const void* suite);

template <auto& pointer>
void Publish(const void* suite) {
    pointer = static_cast<std::remove_reference_t<decltype(pointer)>>(suite);
}

// Ties each pointer to the row of its suite.
template <auto&... pointers>
constexpr std::array<PublishFunction, kSuiteCount> PublishEach() {
    std::array<PublishFunction, kSuiteCount> functions{};
    ((functions[SuiteRow<std::remove_cvref_t<decltype(*pointers)>>()] = Publish<pointers>), ...);
    return functions;
}

// By row; null for a suite that is held while a message runs and never called by us.
constexpr std::array<PublishFunction, kSuiteCount> kPublish =
    PublishEach<sSPAccess, sAIPlugin, sAIRealMath, sAIArt, sAIUITheme, sAIPanel, sAIPanelFlyoutMenu, sAILayer, sAIUser,
                sAIPath, sAIPathStyle, sAIDocumentView, sAITransformArt, sAITextFrame, sAIFont, sAIATEPaint,
                sATECharFeatures, sATEParaFeatures, sATETextRange, sAIUndo, sAITag, sAIRandom, sAIMenu, sAITool,
                sAITimer, sAINotifier, sAIActionManager, sAIUnicodeString, sArtQuery, sDimension>();

// Where each row's pointer lands; the typed variables above are copies of it.
const void* sHeld[kSuiteCount] = {};

void PublishRow(int row) {
    if (kPublish[row] != nullptr) kPublish[row](sHeld[row]);
}

AIErr AcquireRow(int row) {
    const SuiteEntry& suite = kSuiteCatalogue[row];
    const AIErr result = gBasic->AcquireSuite(suite.name, suite.version, &sHeld[row]);
    PublishRow(row);
    return result;
}

AIErr ReleaseRow(int row) { return gBasic->ReleaseSuite(kSuiteCatalogue[row].name, kSuiteCatalogue[row].version); }

void DropRow(int row) {
    sHeld[row] = nullptr;
    PublishRow(row);
}

void ReportMissingSuite(AIErr result, const SuiteEntry& suite) {
    char text[256];
    std::snprintf(text, sizeof text, "Error: %d, suite: %s, version: %d!", result, suite.name, suite.version);
    ShowErrorAlert(text);
}

// A failure counts only from the row on at which it can be shown: before that the next row is tried, and what is
// missing shows when a tool needs it.
AIErr AcquireSharedRows() {
    AIErr result = kNoErr;
    for (int row = 0; row < kSharedSuiteCount; ++row) {
        result = AcquireRow(row);
        if (result != kNoErr && sAIUser != nullptr) {
            ReportMissingSuite(result, kSuiteCatalogue[row]);
            break;
        }
    }
    return result;
}

// Every row is released, acquired or not; the host answers 0 for one that is not held.
AIErr ReleaseSharedRows() {
    for (int row = 0; row < kSharedSuiteCount; ++row) {
        if (const AIErr result = ReleaseRow(row); result != kNoErr) return result;
        DropRow(row);
    }
    return kNoErr;
}

// Other hosts lack them: no failure.
void AcquireOwnRows() {
    for (int row = kSharedSuiteCount; row < kSuiteCount; ++row) {
        if (AcquireRow(row) != kNoErr) DropRow(row);
    }
}

void ReleaseOwnRows() {
    for (int row = kSuiteCount - 1; row >= kSharedSuiteCount; --row) {
        if (sHeld[row] == nullptr) continue;
        static_cast<void>(ReleaseRow(row));
        DropRow(row);
    }
}

}  // namespace

AIErr AcquireSuites() {
    AIErr result = kNoErr;
    if (suiteUseCount == 0) {
        result = AcquireSharedRows();
        if (result == kNoErr) AcquireOwnRows();
    }
    // Failure included, so that the release that always follows brings the count back.
    suiteUseCount = static_cast<std::int16_t>(suiteUseCount + 1);
    return result;
}

AIErr ReleaseSuites() {
    AIErr result = kNoErr;
    if (suiteUseCount == 1) {
        ReleaseOwnRows();
        result = ReleaseSharedRows();
    }
    suiteUseCount = static_cast<std::int16_t>(suiteUseCount - 1);
    return result;
}

}  // namespace quorvel

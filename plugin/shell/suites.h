// The host's suites as the plug-in holds them: one pointer each, acquired around every message. The table of all rows
// is in suites.cpp.
#pragma once

#include "hostapi/dimensions.h"
#include "hostapi/suites.h"

namespace quorvel {

extern const SPAccessSuite* sSPAccess;
extern const AIPluginSuite* sAIPlugin;
extern const AIRealMathSuite* sAIRealMath;
extern const AIArtSuite* sAIArt;
extern const AIUIThemeSuite* sAIUITheme;
extern const AIPanelSuite* sAIPanel;
extern const AIPanelFlyoutMenuSuite* sAIPanelFlyoutMenu;
extern const AILayerSuite* sAILayer;
extern const AIUserSuite* sAIUser;
extern const AIPathSuite* sAIPath;
extern const AIPathStyleSuite* sAIPathStyle;
extern const AIDocumentViewSuite* sAIDocumentView;
extern const AITransformArtSuite* sAITransformArt;
extern const AITextFrameSuite* sAITextFrame;
extern const AIFontSuite* sAIFont;
extern const AIATEPaintSuite* sAIATEPaint;
extern const ATETextRangeSuite* sATETextRange;
extern const ATECharFeaturesSuite* sATECharFeatures;
extern const ATEParaFeaturesSuite* sATEParaFeatures;
extern const AIUndoSuite* sAIUndo;
extern const AITagSuite* sAITag;
extern const AIRandomSuite* sAIRandom;
extern const AIMenuSuite* sAIMenu;
extern const AIToolSuite* sAITool;
extern const AITimerSuite* sAITimer;
extern const AINotifierSuite* sAINotifier;
extern const AIActionManagerSuite* sAIActionManager;
extern const AIUnicodeStringSuite* sAIUnicodeString;

// Offered by our own host alone: null elsewhere. Acquired behind the table, and their absence is no failure.
extern const AIArtQuerySuite* sArtQuery;
extern const AIDimensionSuite* sDimension;

AIErr AcquireSuites();
AIErr ReleaseSuites();
extern std::int16_t suiteUseCount;

}  // namespace quorvel

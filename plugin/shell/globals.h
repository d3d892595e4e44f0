// The one record of state. The host allocates it at start-up and keeps its address between the calls; everything in the
// plug-in reaches it through the one pointer. A function that needs it names it once, at its top.
#pragma once

#include <cstdint>

#include "hostapi/names.h"
#include "hostapi/suites.h"
#include "platform/dialog.h"
#include "plugin/geometry/bezier.h"
#include "plugin/settings/prefs_record.h"
#include "plugin/shell/tool_state.h"

namespace quorvel {

enum DistanceMode : std::int16_t { kObliqueMode = 0, kStraightMode = 1, kCurveMode = 3 };

// A chain of segments in a fixed block of memory.
constexpr int kChainBlockSize = 114736;
struct ChainBuffer {
    std::uint16_t count;
    std::uint16_t reversed;   // the chain runs against the art's direction
    double length;            // along the curve
    PathSegment segments[1];  // as many as the block holds
};
constexpr int kChainCapacity = static_cast<int>((kChainBlockSize - 16) / sizeof(PathSegment));

constexpr std::uint16_t kCommandNone = 0, kCommandSettings = 1001, kCommandRecalculate = 1002;
constexpr int kPanelToggleCount = 10;

struct PluginGlobals {
    // Shell words and the information panel.
    std::uint16_t spareWord;
    std::uint16_t pendingCommand;  // kCommandNone, kCommandSettings, kCommandRecalculate
    std::uint16_t windowProbeLog;  // nonzero: the view-window finder traces to the error log
    platform::WindowRef panelWindow;
    std::int16_t themeValue;
    float panelBackColor[4], panelTextColor[4];  // the last three are red, green, blue
    std::int16_t panelToggles[kPanelToggleCount];
    char panelUnitText[64];  // the ruler unit's text at the last tick

    AIToolHandle toolHandles[kToolKindCount];
    AIMenuItemHandle settingsMenuHandle;
    std::uint16_t toolMode;
    std::uint16_t hitKind;  // the snap kind under the cursor, 0 for nothing
    SPPluginRef pluginRef;
    ToolState liveState, drawnState;
    std::uint32_t drawnGeneration;  // the surface's generation when drawnState was drawn
    PrefsRecord prefs;
    BezierBasisTables bezierTables;
    ChainBuffer *workBufferA, *workBufferB, *workBufferC;
    AIArtHandle builtGroup;  // what the last builder that came to its end has made

    // Host handles.
    const SPBasicSuite* basicAtStart;
    AIPanelRef infoPanel;
    AIPanelFlyoutMenuRef infoFlyout;
    AIMenuItemHandle aboutMenuHandle;
    std::uint16_t timerBusy;
    AINotifierHandle notifierTrack, notifierRecalc;
    AITimerHandle timerHandle;
    AIMenuItemHandle infoMenuHandle;
    std::int32_t lastProgress;  // percent
    double pressWords[2];       // zeroed at every Mouse Down

    std::uint16_t oldmode, language;
    std::int16_t flCsvRaw;  // nonzero: parts lists are written without a guard against formulas
    char* settingsOnFile;   // the main preference file's text as it was read or written last; null before
    char productName[64];
    char productVersion[64];
};

extern PluginGlobals* gGlobals;     // taken from each message
extern const SPBasicSuite* gBasic;  // stored anew from each message
extern SPPlatformModule gModule;    // the plug-in's own module, from which resources come

// Clears both tool states and the counts of the chain buffers A and B. Draws nothing.
void ContextBracket(PluginGlobals* globals);

}  // namespace quorvel

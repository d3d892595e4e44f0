// The tool set as one table: titles, icons, the order in the palette, the slot a tool shares, its family and the
// setting by which the family later knows which of its tools runs. Adding, routing and selecting read it.
#include "plugin/shell/tools.h"

#include <cstddef>
#include <iterator>
#include <string>

#include "hostapi/names.h"
#include "plugin/annotation/comment.h"
#include "plugin/construction/arc.h"
#include "plugin/construction/fillet.h"
#include "plugin/construction/slant.h"
#include "plugin/dimensioning/angle.h"
#include "plugin/dimensioning/diameter.h"
#include "plugin/dimensioning/linear.h"
#include "plugin/dimensioning/radius.h"
#include "plugin/frame/schedule.h"
#include "plugin/frame/schedule_edit.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/snap.h"

namespace quorvel {
namespace {

using ToolHandler = AIErr (*)(const AIToolMessage* message);

// A null handler answers 0.
struct ToolFamily {
    ToolHandler editOptions;
    ToolHandler track;
    ToolHandler down;
    ToolHandler up;
    SnapFamily snaps;
};

const ToolFamily kLinear = {nullptr, LinearTrack, LinearDown, LinearUp, SnapFamily::linear};
const ToolFamily kRadius = {RadiusEditOptions, RadiusTrack, RadiusDown, RadiusUp, SnapFamily::radius};
const ToolFamily kDiameter = {DiameterEditOptions, DiameterTrack, DiameterDown, DiameterUp, SnapFamily::diameter};
const ToolFamily kFillet = {FilletEditOptions, FilletTrack, FilletDown, FilletUp, SnapFamily::fillet};
const ToolFamily kAngle = {nullptr, AngleTrack, AngleDown, AngleUp, SnapFamily::angle};
const ToolFamily kSlant = {nullptr, SlantTrack, SlantDown, SlantUp, SnapFamily::slant};
const ToolFamily kArc = {nullptr, ArcTrack, ArcDown, ArcUp, SnapFamily::arc};
const ToolFamily kComment = {CommentEditOptions, CommentTrack, CommentDown, CommentUp, SnapFamily::comment};
const ToolFamily kSchedule = {ScheduleEditOptions, ScheduleTrack, ScheduleDown, ScheduleUp, SnapFamily::schedule};

using ModeSetting = std::int16_t PrefsRecord::*;
constexpr ModeSetting kNoSetting = nullptr;

struct ToolRow {
    ToolTitle title;
    std::int32_t iconId;
    std::int32_t darkIconId;
    int place;        // in the order of adding, from 1; 0: never added
    ToolKind opener;  // the tool that opens the palette slot; itself for the first of a slot
    const ToolFamily* family;
    ModeSetting setting;  // takes mode when the tool is selected
    std::int16_t mode;
};

// Indexed by ToolKind.
const ToolRow kTools[] = {
    {kObliqueToolTitle, 16251, 16351, 1, kObliqueTool, &kLinear, &PrefsRecord::flDistanceMode, kObliqueMode},
    {{"Radius Tool", "半径ツール"}, 16252, 16352, 4, kRadiusTool, &kRadius, kNoSetting, 0},
    {{"Diameter Tool", "直径ツール"}, 16253, 16353, 5, kRadiusTool, &kDiameter, kNoSetting, 0},
    {{"Fillet Tool [Addition]", "フィレットツール [追加型]"},
     16254,
     16354,
     6,
     kFilletAdditionTool,
     &kFillet,
     &PrefsRecord::flFiletMode,
     0},
    {{"Angle Tool", "角度ツール"}, 16255, 16355, 9, kAngleTool, &kAngle, &PrefsRecord::flAngleMode, 0},
    {{"Straight Dimension Tool", "寸法線ツール"},
     16256,
     16356,
     2,
     kObliqueTool,
     &kLinear,
     &PrefsRecord::flDistanceMode,
     kStraightMode},
    {{"Radius Tool [Surface]", "半径ツール [表面表示]"}, 0, 0, 0, kRadiusSurfaceTool, nullptr, kNoSetting, 0},
    {{"Diameter Tool [Surface]", "直径ツール [表面表示]"}, 0, 0, 0, kDiameterSurfaceTool, nullptr, kNoSetting, 0},
    {{"Fillet Tool [Separate]", "フィレットツール [分割型]"},
     16259,
     16359,
     7,
     kFilletAdditionTool,
     &kFillet,
     &PrefsRecord::flFiletMode,
     1},
    {{"Fillet Tool [Replace]", "フィレットツール [削除型]"},
     16260,
     16360,
     8,
     kFilletAdditionTool,
     &kFillet,
     &PrefsRecord::flFiletMode,
     2},
    {{"Slant Tool", "スラントツール"}, 16261, 16361, 10, kSlantTool, &kSlant, &PrefsRecord::flSlantMode, 0},
    {{"Arc Tool [Tangential Line]", "円弧ツール [接線と１点]"},
     16262,
     16362,
     11,
     kArcTangentialTool,
     &kArc,
     &PrefsRecord::flArcMode,
     0},
    {{"Arc Tool [Three Points]", "円弧ツール [３点]"},
     16263,
     16363,
     12,
     kArcTangentialTool,
     &kArc,
     &PrefsRecord::flArcMode,
     1},
    {{"Arc Tool [Center and Two Points]", "円弧ツール [中心と２点]"},
     16264,
     16364,
     13,
     kArcTangentialTool,
     &kArc,
     &PrefsRecord::flArcMode,
     2},
    {{"Curve Dimension Tool", "曲線寸法線ツール"},
     16265,
     16365,
     3,
     kObliqueTool,
     &kLinear,
     &PrefsRecord::flDistanceMode,
     kCurveMode},
    {{"Comment Tool", "コメントツール"}, 16266, 16366, 14, kCommentTool, &kComment, &PrefsRecord::flMarkMode, 0},
    {{"Object Number Tool", "部品番号ツール"}, 16267, 16367, 15, kCommentTool, &kComment, &PrefsRecord::flMarkMode, 1},
    {{"Length Comment Tool", "レングスコメントツール"},
     16290,
     16390,
     16,
     kCommentTool,
     &kComment,
     &PrefsRecord::flMarkMode,
     2},
    {{"Dimention Comment Tool", "面積コメントツール"},
     16290,
     16390,
     17,
     kCommentTool,
     &kComment,
     &PrefsRecord::flMarkMode,
     3},
    {kScheduleBottomToolTitle, 16268, 16368, 18, kScheduleBottomTool, &kSchedule, &PrefsRecord::flZukiwakuMode, 0},
    {kScheduleTopToolTitle, 16269, 16369, 19, kScheduleBottomTool, &kSchedule, &PrefsRecord::flZukiwakuMode, 1},
};
static_assert(std::size(kTools) == kToolKindCount);

constexpr int kAddedToolCount = 19;
constexpr int kOldModeToolCount = 13;  // the palette of an earlier version ended with the arc tools
constexpr std::int32_t kAddToolOptions = 3;

int KindAtPlace(int place) {
    int kind = 0;
    while (kTools[kind].place != place) ++kind;
    return kind;
}

std::string TitleOf(int kind) { return ChooseText(kTools[kind].title.japanese, kTools[kind].title.english); }

// kNoTool for the tool itself: it opens its own group or slot.
AIErr NumberOfOther(int other, int kind, std::int32_t* number) {
    *number = kNoTool;
    return other == kind ? kNoErr : sAITool->GetToolNumberFromName(TitleOf(other).c_str(), number);
}

AIErr AddTool(PluginGlobals* globals, int kind) {
    const ToolRow& row = kTools[kind];
    const std::string title = TitleOf(kind);
    AIAddToolData data;
    data.title = title.c_str();
    data.tooltip = title.c_str();
    data.iconId = row.iconId;
    data.darkIconId = row.darkIconId;
    if (const AIErr result = NumberOfOther(kObliqueTool, kind, &data.sameGroupAs); result != kNoErr) return result;
    if (const AIErr result = NumberOfOther(row.opener, kind, &data.sameToolsetAs); result != kNoErr) return result;
    return sAITool->AddTool(globals->pluginRef, title.c_str(), &data, kAddToolOptions, &globals->toolHandles[kind]);
}

// Exactly English: the Korean settings keep all tools.
bool UsesOldPalette(const PluginGlobals* globals) { return globals->language == kEnglish && globals->oldmode != 0; }

// The row of a tool's handle; null for a handle that is none of ours.
const ToolRow* FindTool(const PluginGlobals* globals, AIToolHandle tool) {
    if (tool == nullptr) return nullptr;
    for (int kind = 0; kind < kToolKindCount; ++kind) {
        if (kTools[kind].family != nullptr && globals->toolHandles[kind] == tool) return &kTools[kind];
    }
    return nullptr;
}

AIErr CallFamily(const AIToolMessage* message, ToolHandler ToolFamily::*event) {
    const ToolRow* row = FindTool(gGlobals, message->tool);
    if (row == nullptr) return kNoErr;
    const ToolHandler handler = row->family->*event;
    return handler == nullptr ? kNoErr : handler(message);
}

// Brings the host's view up to date before the event; each family asks for what it needs of it again.
void FetchView() {
    AIDocumentViewHandle view = nullptr;
    float zoom = 0;
    RealPoint centre;
    if (sAIDocumentView->GetNthDocumentView(0, &view) != kNoErr || view == nullptr) return;
    sAIDocumentView->GetDocumentViewZoom(view, &zoom);
    sAIDocumentView->GetDocumentViewCenter(view, &centre);
}

}  // namespace

AIErr AddTools() {
    PluginGlobals* globals = gGlobals;
    for (int place = 1; place <= kAddedToolCount; ++place) {
        if (place > kOldModeToolCount && UsesOldPalette(globals)) {
            for (int kind = kCommentTool; kind < kToolKindCount; ++kind) globals->toolHandles[kind] = nullptr;
            return kNoErr;
        }
        if (const AIErr result = AddTool(globals, KindAtPlace(place)); result != kNoErr) return result;
    }
    return kNoErr;
}

AIErr ToolEditOptions(const AIToolMessage* message) {
    gGlobals->pluginRef = message->d.self;
    return CallFamily(message, &ToolFamily::editOptions);
}

AIErr ToolTrack(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    ToolState& live = globals->liveState;
    globals->pluginRef = message->d.self;
    FetchView();
    // A cursor that stands still costs no search, even when a modifier key has changed.
    if (sAIRealMath->AIRealPointsEqual(&message->cursor, &live.previousCursor) != 0) return kNoErr;
    live.previousCursor = message->cursor;
    live.cursorPoint = message->cursor;
    live.cursorModifiers = message->event == nullptr ? std::uint16_t{0} : message->event->modifiers;
    return CallFamily(message, &ToolFamily::track);
}

// Down and up leave the message's cursor alone: cursorPoint is where the last tracking has put it, snapped.
AIErr ToolDown(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    globals->pluginRef = message->d.self;
    for (double& word : globals->pressWords) word = 0;
    FetchView();
    return CallFamily(message, &ToolFamily::down);
}

AIErr ToolUp(const AIToolMessage* message) {
    gGlobals->pluginRef = message->d.self;
    FetchView();
    return CallFamily(message, &ToolFamily::up);
}

AIErr ToolSelect(const AIToolMessage* message) {
    PluginGlobals* globals = gGlobals;
    ContextBracket(globals);
    globals->pluginRef = message->d.self;
    const ToolRow* row = FindTool(globals, message->tool);
    if (row != nullptr && row->setting != kNoSetting) globals->prefs.*(row->setting) = row->mode;
    return kNoErr;
}

// A run that is left in the middle is cleared by the next Select, of whatever tool.
AIErr ToolDeselect(const AIToolMessage*) { return kNoErr; }

bool SnapFamilyOfTool(AIToolHandle tool, SnapFamily* family) {
    const ToolRow* row = FindTool(gGlobals, tool);
    if (row == nullptr) return false;
    *family = row->family->snaps;
    return true;
}

}  // namespace quorvel

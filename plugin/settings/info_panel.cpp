// The information panel's logic: what the tools and the timer write into its fields, the snap switches that a press
// turns, the grid steps that are read while the user types, and the host's theme.
#include "plugin/settings/info_panel.h"

#include <cmath>
#include <cstring>

#include "hostapi/names.h"
#include "plugin/dimensioning/units.h"
#include "plugin/resources/panel_rows.h"
#include "plugin/resources/strings.h"
#include "plugin/settings/dialogs.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

using platform::ControlKind;
using platform::ControlRow;
using platform::WindowRef;

// The text of field n at place n - 1.
constexpr std::int32_t kFieldControls[] = {kPanelField1, kPanelField2, kPanelField3,
                                           kPanelField4, kPanelLength, kPanelArea};
constexpr int kFieldCount = static_cast<int>(std::size(kFieldControls));

// In the order of their numbers, which index panelToggles.
struct PanelToggle {
    std::int32_t control;
    std::int16_t PrefsRecord::*field;
    int emptiedField;  // at once, when it is switched either way; the next tick fills it again. 0: none
};
constexpr PanelToggle kToggles[] = {
    {kPanelGrid, &PrefsRecord::flUseGrid, 0},       {kPanelAnchor, &PrefsRecord::flUseFcur, 0},
    {kPanelCrossing, &PrefsRecord::flUseFcrs, 0},   {kPanelPath, &PrefsRecord::flUseFops, 0},
    {kPanelStraight, &PrefsRecord::flUseFrad, 0},   {kPanelLengthToggle, &PrefsRecord::flUseFlng, 5},
    {kPanelSpacing, &PrefsRecord::flUseFdis, 0},    {kPanelCenter, &PrefsRecord::flUseFcnt, 0},
    {kPanelAreaToggle, &PrefsRecord::flUseFdim, 6},
};
constexpr int kToggleCount = static_cast<int>(std::size(kToggles));
static_assert(kToggleCount < kPanelToggleCount);

struct GridField {
    std::int32_t control;
    float PrefsRecord::*field;
};
constexpr GridField kGridFields[] = {
    {kPanelGridWidth, &PrefsRecord::flGrWidth},
    {kPanelGridHeight, &PrefsRecord::flGrHeight},
    {kPanelGridDistance, &PrefsRecord::flGrDistance},
};
constexpr int kGridStepCount = 10;

constexpr char kPanelFont[] = "system";
constexpr float kPanelFontSize = 9;
constexpr std::uint32_t kFirstHighlight = 0x444444, kSecondHighlight = 0xAAAAAA;
constexpr std::int32_t kActionDialogState = 1;

// --- theme -------------------------------------------------------------------------------------------------------

bool ReadThemeColors(PluginGlobals* globals) {
    if (sAIUITheme == nullptr) return false;
    return sAIUITheme->GetUIThemeColor(kThemeBackground, globals->panelBackColor) == kNoErr &&
           sAIUITheme->GetUIThemeColor(kThemeText, globals->panelTextColor) == kNoErr;
}

// The present value when the host cannot tell.
std::int16_t ReadThemeValue(const PluginGlobals* globals, AIPlatformWindow window) {
    std::int16_t value = 0;
    const bool told = sAIUITheme != nullptr && sAIUITheme->GetThemeValue(window, &value) == kNoErr;
    return told ? value : globals->themeValue;
}

// The colour that is seen has eight bits, cut and not rounded.
float CutToEightBits(float channel) { return std::floor(255.0F * channel) / 255.0F; }

// A host that gives no colours leaves the last ones in effect; the icons follow its theme all the same.
void ApplyTheme(PluginGlobals* globals) {
    ReadThemeColors(globals);
    platform::PanelTheme theme;
    for (int i = 0; i < 3; ++i) {
        theme.background[i] = CutToEightBits(globals->panelBackColor[i + 1]);
        theme.text[i] = CutToEightBits(globals->panelTextColor[i + 1]);
    }
    theme.secondIcons = globals->themeValue != 0;
    theme.highlight = theme.secondIcons ? kSecondHighlight : kFirstHighlight;
    platform::SetPanelTheme(globals->panelWindow, theme);
}

// --- the user's hand ---------------------------------------------------------------------------------------------

void PressToggle(PluginGlobals* globals, WindowRef window, int number) {
    globals->panelToggles[number] = globals->panelToggles[number] != 0 ? 0 : 1;
    for (int i = 0; i < kToggleCount; ++i) globals->prefs.*kToggles[i].field = globals->panelToggles[i];
    platform::SetChecked(window, kToggles[number].control, globals->panelToggles[number] != 0);
    SetPanelField(kToggles[number].emptiedField, "");
}

// A press comes from the window and not in a message, so that no suite is held.
void PlayRecalculation(const PluginGlobals* globals) {
    if (globals->basicAtStart == nullptr) return;
    gBasic = globals->basicAtStart;
    if (AcquireSuites() == kNoErr && sAIActionManager != nullptr) {
        sAIActionManager->PlayActionEvent(kRecalculateAction, kActionDialogState, nullptr);
    }
    ReleaseSuites();
}

void OnPanelEvent(WindowRef window, std::int32_t control, void* context) {
    PluginGlobals* globals = static_cast<PluginGlobals*>(context);
    for (int i = 0; i < kToggleCount; ++i) {
        if (kToggles[i].control == control) PressToggle(globals, window, i);
    }
    if (control == kPanelRecalculate) PlayRecalculation(globals);
}

// --- the controls' first content ---------------------------------------------------------------------------------

void SetFonts(WindowRef window) {
    for (const ControlRow& row : PanelRows()) {
        if (row.kind == ControlKind::text || row.kind == ControlKind::editList) {
            platform::SetControlFont(window, row.id, kPanelFont, kPanelFontSize);
        }
    }
}

void ShowToggles(PluginGlobals* globals) {
    for (int i = 0; i < kToggleCount; ++i) {
        globals->panelToggles[i] = globals->prefs.*kToggles[i].field;
        platform::SetChecked(globals->panelWindow, kToggles[i].control, globals->panelToggles[i] != 0);
    }
}

void FillGridLists(const PluginGlobals* globals) {
    for (const GridField& grid : kGridFields) {
        FillList(globals, globals->panelWindow, grid.control, kGridStepStrings, kGridStepCount);
    }
}

void ShowGridFields(const PluginGlobals* globals) {
    for (const GridField& grid : kGridFields) {
        char text[kValueTextSize];
        FormatPointsWithRulerUnit(globals->prefs.*grid.field, text);
        platform::SetControlText(globals->panelWindow, grid.control, text);
    }
}

// Half-typed values count as they are; what is no step keeps the old one.
void ReadGridFields(PluginGlobals* globals) {
    for (const GridField& grid : kGridFields) {
        float points = 0;
        const std::string text = ControlText(globals->panelWindow, grid.control, kControlTextLimit);
        ParsePointsWithUnit(text.c_str(), &points);
        if (points > 0 && points < kLargestFloat) globals->prefs.*grid.field = points;
    }
}

void ShowLength(int field, float points) {
    char text[kValueTextSize];
    FormatPointsWithRulerUnit(points, text);
    SetPanelField(field, text);
}

}  // namespace

void SetPanelField(int n, const char* text) {
    if (gGlobals == nullptr || gGlobals->panelWindow == nullptr || n < 1 || n > kFieldCount) return;
    platform::SetControlText(gGlobals->panelWindow, kFieldControls[n - 1], text);
}

void SetPanelPoint(const RealPoint& point, const RealPoint* offset) {
    if (gGlobals == nullptr || gGlobals->panelWindow == nullptr) return;
    ShowLength(1, point.h);
    ShowLength(2, point.v);
    if (offset != nullptr) {
        ShowLength(3, offset->h);
        ShowLength(4, offset->v);
    } else {
        SetPanelField(3, "");
        SetPanelField(4, "");
    }
}

void SetPanelRun(const ToolState& state) {
    if (state.toolStep != 1) {
        SetPanelPoint(state.cursorPoint, nullptr);
        return;
    }
    const RealPoint offset = {sAIRealMath->AIRealSubtract(state.cursorPoint.h, state.fromPoint.h),
                              sAIRealMath->AIRealSubtract(state.cursorPoint.v, state.fromPoint.v)};
    SetPanelPoint(state.fromPoint, &offset);
}

void BuildInfoPanel(AIPlatformWindow window) {
    PluginGlobals* globals = gGlobals;
    globals->themeValue = ReadThemeValue(globals, window);
    platform::WindowLogic logic;
    logic.event = OnPanelEvent;
    const auto language = globals->language != kJapanese ? platform::Language::english : platform::Language::japanese;
    const std::span<const ControlRow> rows = PanelRows();
    if (!platform::BuildPanel(window, rows.data(), static_cast<std::int32_t>(rows.size()), language, logic, globals,
                              &globals->panelWindow)) {
        return;
    }
    ApplyTheme(globals);
    SetFonts(globals->panelWindow);
    ShowToggles(globals);
    FillGridLists(globals);
    ShowGridFields(globals);
}

void RefreshPanelTheme(AIPlatformWindow window) {
    PluginGlobals* globals = gGlobals;
    const std::int16_t value = ReadThemeValue(globals, window);
    if (value == globals->themeValue) return;
    globals->themeValue = value;
    ApplyTheme(globals);
}

void SyncGridFields() {
    PluginGlobals* globals = gGlobals;
    if (globals->panelWindow == nullptr) return;
    // The ruler unit by the text that it gives to nothing.
    char unitText[kValueTextSize];
    FormatPointsWithRulerUnit(0.0, unitText);
    if (std::strcmp(unitText, globals->panelUnitText) == 0) {
        ReadGridFields(globals);
    } else if (globals->panelUnitText[0] != '\0') {
        ShowGridFields(globals);
    }
    CopyBytes(globals->panelUnitText, sizeof globals->panelUnitText, unitText);
}

}  // namespace quorvel

// Logic of the small dialogs and of the About box.
#include "plugin/settings/small_dialogs.h"

#include <cstdio>
#include <cstdlib>

#include "plugin/dimensioning/units.h"
#include "plugin/resources/small_dialog_controls.h"
#include "plugin/resources/strings.h"
#include "plugin/settings/about_dialog.h"
#include "plugin/settings/dialogs.h"

namespace quorvel {

namespace {

using platform::WindowRef;

// Most dialogs need the settings alone: OK stores and closes, unless a value is refused.
using StoreFunction = bool (*)(PluginGlobals* globals, WindowRef window);

template <StoreFunction Store>
void OkOrCancel(WindowRef window, std::int32_t control, void* context) {
    if (control == kCancelControl) platform::CloseWindow(window, kResultCancel);
    if (control == kOkControl && Store(static_cast<PluginGlobals*>(context), window))
        platform::CloseWindow(window, kResultOk);
}

template <StoreFunction Store>
bool RunSimpleDialog(PluginGlobals* globals, DialogId id, void (*opening)(WindowRef, void*)) {
    platform::WindowLogic logic;
    logic.opening = opening;
    logic.event = OkOrCancel<Store>;
    return RunPluginDialog(globals, id, logic, globals) == kResultOk;
}

std::int16_t ReadInteger(WindowRef window, std::int32_t control) {
    // Out of a long's range the number is the range's end; 16 bits are kept.
    const long value = std::strtol(ControlText(window, control, kControlTextLimit - 1).c_str(), nullptr, 10);
    return static_cast<std::int16_t>(static_cast<std::uint64_t>(value) & 0xFFFF);
}

bool StoreComment(PluginGlobals* globals, WindowRef window) {
    CopyBytes(globals->prefs.flMrkComment, sizeof globals->prefs.flMrkComment, ControlText(window, kCommentEdit, 63));
    return true;
}

bool StoreObjectNumber(PluginGlobals* globals, WindowRef window) {
    globals->prefs.flMrkItemNo = ReadInteger(window, kStartNumberEdit);
    globals->prefs.flMrkINStep = ReadInteger(window, kNumberStepEdit);
    return true;
}

bool StoreFilletRadius(PluginGlobals* globals, WindowRef window) {
    float points = 0;
    ParsePointsWithUnit(ControlText(window, kFilletRadiusEdit, kControlTextLimit).c_str(), &points);
    if (!(points > 0) || !(points < kLargestFloat)) {
        RefuseControl(window, kFilletRadiusEdit);
        return false;
    }
    globals->prefs.flRadius = points;
    return true;
}

// --- Radius and Diameter --------------------------------------------------------------------------------------------

template <std::int16_t PrefsRecord::*Mode>
void OpenRound(WindowRef window, void* context) {
    const PluginGlobals* globals = static_cast<PluginGlobals*>(context);
    platform::SetChecked(window, kCenterRadio, globals->prefs.*Mode == 0);
    platform::SetChecked(window, kSurfaceRadio, globals->prefs.*Mode != 0);
    FillList(globals, window, kPositionList, kRadiusPositionStrings, 3);
    platform::SelectRow(window, kPositionList, globals->prefs.flRdSpos);
}

template <std::int16_t PrefsRecord::*Mode>
bool StoreRound(PluginGlobals* globals, WindowRef window) {
    globals->prefs.*Mode = platform::IsChecked(window, kCenterRadio) ? 0 : 1;
    globals->prefs.flRdSpos = static_cast<std::int16_t>(platform::GetSelectedRow(window, kPositionList));
    return true;
}

template <std::int16_t PrefsRecord::*Mode>
bool RunRoundDialog(PluginGlobals* globals, DialogId id) {
    return RunSimpleDialog<StoreRound<Mode>>(globals, id, OpenRound<Mode>);
}

// --- preset name ----------------------------------------------------------------------------------------------------

void NameEvent(WindowRef window, std::int32_t control, void* context) {
    if (control == kCancelControl) platform::CloseWindow(window, kResultCancel);
    if (control != kOkControl) return;
    *static_cast<std::string*>(context) = ControlText(window, kPresetNameEdit, 255);
    platform::CloseWindow(window, kResultOk);
}

}  // namespace

bool RunCommentDialog(PluginGlobals* globals) {
    return RunSimpleDialog<StoreComment>(globals, kCommentDialog, [](WindowRef window, void* context) {
        platform::SetControlText(window, kCommentEdit, static_cast<PluginGlobals*>(context)->prefs.flMrkComment);
    });
}

bool RunObjectNumberDialog(PluginGlobals* globals) {
    return RunSimpleDialog<StoreObjectNumber>(globals, kObjectNumberDialog, [](WindowRef window, void* context) {
        const PrefsRecord& prefs = static_cast<PluginGlobals*>(context)->prefs;
        ShowInteger(window, kStartNumberEdit, prefs.flMrkItemNo);
        ShowInteger(window, kNumberStepEdit, prefs.flMrkINStep);
    });
}

bool FilletRadiusDialog(PluginGlobals* globals) {
    return RunSimpleDialog<StoreFilletRadius>(globals, kFilletDialog, [](WindowRef window, void* context) {
        char text[kValueTextSize];
        FormatPointsWithRulerUnit(static_cast<PluginGlobals*>(context)->prefs.flRadius, text);
        platform::SetControlText(window, kFilletRadiusEdit, text);
    });
}

bool RunRadiusDialog(PluginGlobals* globals) {
    return RunRoundDialog<&PrefsRecord::flRadiusMode>(globals, kRadiusDialog);
}

bool RunDiameterDialog(PluginGlobals* globals) {
    return RunRoundDialog<&PrefsRecord::flDiameterMode>(globals, kDiameterDialog);
}

bool RunSaveAsDialog(PluginGlobals* globals, std::string* name) {
    platform::WindowLogic logic;
    logic.opening = [](WindowRef window, void* context) {
        platform::SetControlText(window, kPresetNameEdit, static_cast<std::string*>(context)->c_str());
    };
    logic.event = NameEvent;
    return RunPluginDialog(globals, kSaveAsDialog, logic, name) == kResultOk;
}

AIErr AboutBox() {
    platform::WindowLogic logic;
    logic.opening = [](WindowRef window, void* context) {
        const PluginGlobals* globals = static_cast<PluginGlobals*>(context);
        char text[160];
        std::snprintf(text, sizeof text, "%s %s", globals->productName, globals->productVersion);
        platform::SetControlText(window, kVersionText, text);
    };
    logic.event = [](WindowRef window, std::int32_t control, void*) {
        if (control == kOkControl || control == kCancelControl) platform::CloseWindow(window, control);
    };
    RunPluginDialog(gGlobals, kAboutDialog, logic, gGlobals);
    return kNoErr;
}

}  // namespace quorvel

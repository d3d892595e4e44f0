// Puts the information panel into the host, with a flyout whose one command opens the settings. The flyout only leaves
// a note for the next timer tick: a modal dialog must not open inside the host's own menu handling.
#include "plugin/shell/panel.h"

#include "hostapi/names.h"
#include "plugin/settings/info_panel.h"
#include "plugin/shell/menus.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr char kPanelTitle[] = "Quorvel Info";  // the same in every language
constexpr AIPanelSize kPanelSize = {240, 203};
constexpr std::int32_t kPanelStates = 1;
constexpr std::int32_t kSettingsItem = 1;

// Called by the host outside of any message.
void OnFlyout(AIPanelRef, std::int32_t item) {
    if (gGlobals != nullptr && item == kSettingsItem) gGlobals->pendingCommand = kCommandSettings;
}

AIPanelFlyoutMenuRef MakeFlyout() {
    AIPanelFlyoutMenuRef flyout = nullptr;
    if (sAIPanelFlyoutMenu == nullptr || sAIPanelFlyoutMenu->Create(&flyout) != kNoErr) return nullptr;
    sAIPanelFlyoutMenu->InsertItem(flyout, kSettingsItem, HostString(SettingsCommandText()));
    return flyout;
}

AIPanelRef MakePanel(const PluginGlobals* globals) {
    AIPanelRef panel = nullptr;
    const AIErr result = sAIPanel->Create(globals->pluginRef, kInfoPanelIdentifier, HostString(kPanelTitle),
                                          kPanelStates, kPanelSize, globals->infoFlyout, &panel);
    return result == kNoErr ? panel : nullptr;
}

}  // namespace

void CreateInfoPanel(PluginGlobals* globals) {
    if (sAIPanel == nullptr || globals->infoPanel != nullptr) return;
    ReachModule();
    if (globals->infoFlyout == nullptr) globals->infoFlyout = MakeFlyout();
    globals->infoPanel = MakePanel(globals);
    if (globals->infoPanel == nullptr) return;
    sAIPanel->SetFlyoutMenuProc(globals->infoPanel, OnFlyout);
    BuildInfoPanel(InfoPanelWindow(globals));
    ShowInfoPanel(globals, true);
}

bool InfoPanelIsShown(const PluginGlobals* globals) {
    AIBoolean shown = 0;
    if (globals->infoPanel == nullptr || sAIPanel == nullptr) return false;
    return sAIPanel->IsShown(globals->infoPanel, &shown) == kNoErr && shown != 0;
}

void ShowInfoPanel(const PluginGlobals* globals, bool shown) {
    if (globals->infoPanel != nullptr && sAIPanel != nullptr) sAIPanel->Show(globals->infoPanel, shown ? 1 : 0);
}

AIPlatformWindow InfoPanelWindow(const PluginGlobals* globals) {
    AIPlatformWindow window = nullptr;
    if (globals->infoPanel == nullptr || sAIPanel == nullptr) return nullptr;
    return sAIPanel->GetPlatformWindow(globals->infoPanel, &window) == kNoErr ? window : nullptr;
}

}  // namespace quorvel

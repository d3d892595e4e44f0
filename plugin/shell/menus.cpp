// The plug-in's commands in the host's menus: the settings, the information panel, and its own line in the About
// submenu that it shares with the other plug-ins of the family.
#include "plugin/shell/menus.h"

#include "hostapi/names.h"
#include "plugin/settings/about_dialog.h"
#include "plugin/settings/settings_dialog.h"
#include "plugin/shell/panel.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr char kSharedGroup[] = "SELKIE_PLUGINS_ABOUT";

struct MenuRow {
    const char* name;  // null: the shared group's, "_" and the product's
    const char* group;
    const char* english;  // null: the product's name and three dots
    const char* japanese;
    std::int32_t options;
    AIMenuItemHandle PluginGlobals::*handle;  // null: not kept
    bool opensSharedGroup = false;            // only the first plug-in of the family adds it
};

constexpr MenuRow kMenuRows[] = {
    {kSettingsMenuItem, kPreferencesMenu, "Quorvel Settings...", "Quorvel 設定...", kMenuItemNoOptions,
     &PluginGlobals::settingsMenuHandle},
    {kInfoMenuItem, kToolPalettesMenu, "Quorvel Information", "Quorvel 情報", kMenuItemWantsUpdate,
     &PluginGlobals::infoMenuHandle},
    {kSharedGroup, kAboutMenu, "About Plug-ins (Selkie Works)", "About Plug-ins (Selkie Works)", kMenuItemNoOptions,
     nullptr, true},
    {nullptr, kSharedGroup, nullptr, nullptr, kMenuItemNoOptions, &PluginGlobals::aboutMenuHandle},
};
constexpr const MenuRow& kSettingsRow = kMenuRows[0];

std::string ItemName(const PluginGlobals* globals, const MenuRow& row) {
    return row.name != nullptr ? row.name : std::string(kSharedGroup) + "_" + globals->productName;
}

std::string ItemText(const PluginGlobals* globals, const MenuRow& row) {
    return row.english != nullptr ? ChooseText(row.japanese, row.english) : std::string(globals->productName) + "...";
}

// A walk that fails found nothing.
bool SharedGroupExists() {
    std::int32_t count = 0;
    if (sAIMenu->CountMenuGroups(&count) != kNoErr) return false;
    for (std::int32_t i = 0; i < count; ++i) {
        AIMenuGroup group = nullptr;
        const char* name = nullptr;
        if (sAIMenu->GetNthMenuGroup(i, &group) != kNoErr) return false;
        if (sAIMenu->GetMenuGroupName(group, &name) != kNoErr || name == nullptr) return false;
        if (std::string_view(name) == kSharedGroup) return true;
    }
    return false;
}

AIErr AddMenuRow(PluginGlobals* globals, const MenuRow& row) {
    const std::string name = ItemName(globals, row), text = ItemText(globals, row);
    AIMenuItemData data;
    data.group = row.group;
    data.text = HostString(text);
    AIMenuItemHandle item = nullptr;
    AIErr result = sAIMenu->AddMenuItem(globals->pluginRef, name.c_str(), &data, row.options, &item);
    if (result != kNoErr) return result;
    if (row.handle != nullptr) globals->*row.handle = item;
    if (row.opensSharedGroup) {
        AIMenuGroup group = nullptr;
        result = sAIMenu->AddMenuGroupAsSubMenu(kSharedGroup, kMenuGroupSorted, item, &group);
    }
    return result;
}

}  // namespace

AIErr AddMenus() {
    PluginGlobals* globals = gGlobals;
    for (const MenuRow& row : kMenuRows) {
        if (row.opensSharedGroup && SharedGroupExists()) continue;
        if (const AIErr result = AddMenuRow(globals, row); result != kNoErr) return result;
    }
    return kNoErr;
}

std::string SettingsCommandText() { return ItemText(gGlobals, kSettingsRow); }

AIErr MenuGo(const AIMenuMessage* message) {
    PluginGlobals* globals = gGlobals;
    const AIMenuItemHandle item = message->menuItem;
    if (item == globals->settingsMenuHandle) RunSettingsDialog(globals);
    if (item == globals->infoMenuHandle) ShowInfoPanel(globals, !InfoPanelIsShown(globals));
    if (item == globals->aboutMenuHandle) AboutBox();
    return kNoErr;
}

AIErr MenuUpdate(const AIMenuMessage*) {
    const PluginGlobals* globals = gGlobals;
    if (globals->infoPanel == nullptr) return kNoErr;
    return sAIMenu->CheckItem(globals->infoMenuHandle, InfoPanelIsShown(globals) ? 1 : 0);
}

}  // namespace quorvel

// Names by which the plug-in, its host and the programs round the host find the same thing.
#pragma once

#include <cstdint>

namespace quorvel {

// --- notifications -------------------------------------------------------------------------------------------------

constexpr char kApplicationStartedNotifier[] = "AI Application Started Notifier";
// After a message or an edit that has changed art, layers or the selection.
constexpr char kArtChangedNotifier[] = "AI Art Changed Notifier";
// Ask the plug-in to let dimensions follow the selected art that has moved, and to recalculate them. They belong to
// programs of the same family; the plug-in receives them and sends none.
constexpr char kTrackNotifier[] = "2644-3993-9293-3747-5729-7605";
constexpr char kRecalculateNotifier[] = "2644-3993-9293-3747-5729-5825";

// --- the plug-in's own names -----------------------------------------------------------------------------------------

constexpr char kRecalculateAction[] = "Recalculate_Dimension_lines";
constexpr char kInfoPanelIdentifier[] = "QUORVEL_INFO_PANEL";
constexpr char kSettingsMenuItem[] = "Orvane Group", kInfoMenuItem[] = "Orvane Info Group";
// The host's menus that the plug-in adds to.
constexpr char kPreferencesMenu[] = "Preferences", kToolPalettesMenu[] = "Tool Palettes", kAboutMenu[] = "About";

// One text serves as name, title and tooltip of a tool, so what a document names depends on the language.
struct ToolTitle {
    const char* english;
    const char* japanese;  // UTF-8
};
constexpr ToolTitle kObliqueToolTitle = {"Oblique Dimension Tool", "斜め寸法線ツール"};
constexpr ToolTitle kScheduleBottomToolTitle = {"Schedule Tool [bottom]", "図面枠ツール [下に部品]"};
constexpr ToolTitle kScheduleTopToolTitle = {"Schedule Tool [top + bottom]", "図面枠ツール [上に部品]"};

// --- the dialogs as a script answers them
// ------------------------------------------------------------------------------

// A dialog has the id of its Japanese template; the English template's is higher by this.
constexpr std::int32_t kEnglishDialogOffset = 100;
constexpr std::int32_t kScheduleDialogId = 16159;
// The panel's button that recalculates; the panel's other buttons are switches.
constexpr std::int32_t kRecalculateButton = 31;
// The Schedule dialog's list of presets: at least one preset, then rows of commands, the last of which imports parts.
constexpr std::int32_t kPresetListControl = 106, kPresetCommandRows = 7;

// --- the settings file -----------------------------------------------------------------------------------------------

// Below the user's documents folder.
constexpr const char* kSettingsFolders[] = {"Adobe", "Illustrator", "Prefs"};
constexpr char kSettingsFile[] = "Quorvel.ini";
// The key of the language, and its words by LanguageWord.
constexpr char kLanguageKey[] = "language";
constexpr const char* kLanguageWords[] = {"JAPANESE", "ENGLISH", "KOREAN"};
enum LanguageWord : std::uint16_t { kJapanese = 0, kEnglish = 1, kKorean = 2 };

}  // namespace quorvel

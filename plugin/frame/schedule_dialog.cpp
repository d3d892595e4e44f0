// Logic of the Schedule dialog: filling and collecting its fields, the pages, and what the rows of the Preset list do.
// Commands that open further dialogs are posted, so that they run after the selection's event has ended.
#include "plugin/frame/schedule_dialog.h"

#include <cstdio>
#include <cstdlib>

#include "platform/file.h"
#include "plugin/dimensioning/units.h"
#include "plugin/resources/schedule_controls.h"
#include "plugin/resources/strings.h"
#include "plugin/settings/dialogs.h"
#include "plugin/settings/parts_csv.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/settings/prefs_keys.h"
#include "plugin/settings/presets.h"
#include "plugin/settings/small_dialogs.h"
#include "plugin/shell/services.h"

namespace quorvel {

namespace {

using platform::WindowRef;

constexpr std::int32_t kLastPage = 9;
constexpr std::int16_t kUniversalType = 2;
constexpr char kCsvFilter[] = "*.csv", kProposedCsv[] = "Untitled.csv";

// The tail of the Preset list, by distance from its end.
constexpr std::int32_t kTailRows = kPresetCommandRows;
enum TailRow : std::int32_t {
    kUpperSeparator = 7,
    kSaveRow = 6,
    kSaveAsRow = 5,
    kDeleteRow = 4,
    kLowerSeparator = 3,
    kExportRow = 2,
    kImportRow = 1,
};
enum PresetCommand : std::int32_t {
    kSaveCommand = 2025,
    kSaveAsCommand = 2026,
    kDeleteCommand = 2027,
    kExportCommand = 2028,
    kImportCommand = 2029,
};

struct ScheduleDialogState {
    PluginGlobals* globals = nullptr;
    std::int32_t schedulePage = -1;  // the page shown
    std::int32_t lastPresetRow = -1;
};

// The edits of the header texts, by key.
struct HeaderEdit {
    std::int32_t control;
    const char* key;
};
constexpr HeaderEdit kHeaderEdits[] = {
    {kTitleEdit, "flZwkTitle"},        {kCompanyEdit, "flZwkCorp"},    {kDateEdit, "flZwkDate"},
    {kDrawingScaleEdit, "flZwkScale"}, {kProjectionEdit, "flZwkType"}, {kDrawingNumberEdit, "flZwkPatNo"},
    {kRemark1Edit, "flZwkComm1"},      {kRemark2Edit, "flZwkComm2"},   {kRemark3Edit, "flZwkComm3"},
};

// --- fields -------------------------------------------------------------------------------------------------------

void StorePage(WindowRef window, const ScheduleDialogState& state) {
    for (std::int32_t k = 0; k < kPageRows; ++k) {
        ZwkPartRow* row = &state.globals->prefs.flZwkParts[state.schedulePage * kPageRows + k];
        for (std::int32_t c = 0; c < kPartEditCount; ++c)
            StorePartText(row, kPartColumns[c],
                          ControlText(window, PartEdit(k, c), static_cast<int>(kPartColumns[c].size) - 1));
    }
}

void ShowPage(WindowRef window, ScheduleDialogState* state, std::int32_t page) {
    if (page == state->schedulePage) return;
    if (state->schedulePage != -1) StorePage(window, *state);
    if (page == -1) return;
    state->schedulePage = page;
    for (std::int32_t k = 0; k < kPageRows; ++k) {
        const std::int32_t index = page * kPageRows + k;
        ShowInteger(window, PartLabel(k), index + 1);
        for (std::int32_t c = 0; c < kPartEditCount; ++c)
            platform::SetControlText(window, PartEdit(k, c),
                                     PartText(state->globals->prefs.flZwkParts[index], kPartColumns[c]));
    }
}

// Shows the fields, page 0 of the rows first. What was typed in the rows is dropped.
void Refill(WindowRef window, ScheduleDialogState* state) {
    PluginGlobals* globals = state->globals;
    PrefsRecord& prefs = globals->prefs;
    const bool english = globals->language != kJapanese;
    if (english && prefs.flZwkDrawType < kUniversalType) prefs.flZwkDrawType = kUniversalType;
    platform::SelectRow(window, kTypeList, english ? prefs.flZwkDrawType - kUniversalType : prefs.flZwkDrawType);
    for (const HeaderEdit& edit : kHeaderEdits)
        platform::SetControlText(window, edit.control, FormatPrefsField(globals, *FindPrefsKey(edit.key)).c_str());
    ShowInteger(window, kPartCountEdit, prefs.flZwkNumOfParts);
    state->schedulePage = -1;
    ShowPage(window, state, 0);
}

void Collect(WindowRef window, ScheduleDialogState* state) {
    PluginGlobals* globals = state->globals;
    const bool english = globals->language != kJapanese;
    const std::int32_t type = platform::GetSelectedRow(window, kTypeList) + (english ? kUniversalType : 0);
    globals->prefs.flZwkDrawType = static_cast<std::int16_t>(type);
    for (const HeaderEdit& edit : kHeaderEdits) {
        const PrefsKey& key = *FindPrefsKey(edit.key);
        StorePrefsField(globals, key, ControlText(window, edit.control, static_cast<int>(key.size) - 1));
    }
    StorePrefsField(globals, *FindPrefsKey("flZwkNumOfParts"), ControlText(window, kPartCountEdit, 63));
    ShowPage(window, state, -1);
}

// --- the preset list ----------------------------------------------------------------------------------------------

std::int32_t PresetRowCount(WindowRef window) { return platform::CountRows(window, kPresetList) - kTailRows; }

// Texts are bytes of the system code page.
std::string PresetText(WindowRef window, std::int32_t row) {
    char text[256];
    platform::GetRowText(window, kPresetList, row, text, sizeof text);
    return text;
}

void SetPresetName(PluginGlobals* globals, const std::string& name) {
    CopyBytes(globals->prefs.zwk_prefspath, sizeof globals->prefs.zwk_prefspath, name);
}

void SelectCurrentPreset(WindowRef window, ScheduleDialogState* state) {
    const std::int32_t row = state->globals->prefs.zwkPresetIndex;
    platform::SelectRow(window, kPresetList, row);
    state->lastPresetRow = row;
}

void FillPresetList(WindowRef window, ScheduleDialogState* state) {
    PluginGlobals* globals = state->globals;
    platform::ClearRows(window, kPresetList);
    platform::AddRow(window, kPresetList, "-");
    FillList(globals, window, kPresetList, kPresetCommandStrings, 4);
    platform::AddRow(window, kPresetList, "-");
    platform::AddRow(window, kPresetList, ChooseText("書き出し...", "Export...").c_str());
    platform::AddRow(window, kPresetList, ChooseText("読み込み...", "Import...").c_str());
    globals->prefs.zwkPresetIndex = -1;
    std::int32_t row = 0;
    for (const std::string& name : ListPresetNames()) {
        if (globals->prefs.zwkPresetIndex < 0 && name == globals->prefs.zwk_prefspath)
            globals->prefs.zwkPresetIndex = row;
        platform::InsertRow(window, kPresetList, row++, name.c_str());
    }
    if (globals->prefs.zwkPresetIndex < 0) {
        platform::InsertRow(window, kPresetList, 0, kUntitledPreset);
        SetPresetName(globals, kUntitledPreset);
        globals->prefs.zwkPresetIndex = 0;
    }
    SelectCurrentPreset(window, state);
}

bool IsUntitled(const PluginGlobals* globals) { return std::string(globals->prefs.zwk_prefspath) == kUntitledPreset; }

// The name may be the "Untitled" that reads the factory file. A preset that vanished leaves the fields as they are.
void ReadCurrentPreset(WindowRef window, ScheduleDialogState* state) {
    static_cast<void>(ReadPrefsFile(state->globals, state->globals->prefs.zwk_prefspath));
    Refill(window, state);
}

bool AskWithName(const char* japanese, const char* english, const std::string& name) {
    char text[768];
    std::snprintf(text, sizeof text, ChooseText(japanese, english).c_str(), name.c_str());
    return platform::ShowMessageBox(text, "Quorvel", platform::MessageButtons::okCancel,
                                    platform::MessageIcon::question);
}

void ReportFailedWrite(const std::string& name) {
    char text[768];
    const std::string format =
        ChooseText("\"%s\" ファイルを作成出来ませんでした。[%d]\rファイル名が不適切か重複しています。",
                   "Create '%s' File is Failed.\rDestination file already exists or filename is invalid.");
    // The English text has no place for the number; it is passed over.
    std::snprintf(text, sizeof text, format.c_str(), name.c_str(), -1);
    Beep();
    platform::ShowMessageBox(text, "Quorvel", platform::MessageButtons::ok, platform::MessageIcon::information);
}

void SavePreset(WindowRef window, ScheduleDialogState* state) {
    Collect(window, state);
    const std::string name = state->globals->prefs.zwk_prefspath;
    if (WritePrefsFile(state->globals, name.c_str()) == 0) ReportFailedWrite(name);
}

// A taken name that the user agrees to overwrite saves into the preset that was current before.
void SavePresetAs(WindowRef window, ScheduleDialogState* state) {
    PluginGlobals* globals = state->globals;
    const std::string former = globals->prefs.zwk_prefspath;
    std::string name = ProposePresetName();
    if (!RunSaveAsDialog(globals, &name)) return;
    SetPresetName(globals, name);
    const bool taken = PresetExists(name);
    if (taken) {
        if (!AskWithName("プリセット \"%s\" が重複しています。\r上書きしてよろしいですか？",
                         "The file already exists. \rDo you want the '%s' file to overwrite?", name))
            return;
        SetPresetName(globals, former);
    }
    Collect(window, state);
    const std::string written = globals->prefs.zwk_prefspath;
    if (WritePrefsFile(globals, written.c_str()) == 0) {
        ReportFailedWrite(written);
        SetPresetName(globals, former);
    } else if (!taken) {
        const std::int32_t row = PresetRowCount(window);
        platform::InsertRow(window, kPresetList, row, name.c_str());
        globals->prefs.zwkPresetIndex = row;
    }
}

void DeletePreset(WindowRef window, ScheduleDialogState* state) {
    PluginGlobals* globals = state->globals;
    const std::string name = globals->prefs.zwk_prefspath;
    if (!AskWithName("プリセット \"%s\" を完全に削除しますか？", "Do you want to completely remove the file \"%s\"?",
                     name))
        return;
    platform::DeleteFile(PresetPath(name.c_str()));
    if (PresetRowCount(window) < 2) {
        platform::RemoveRow(window, kPresetList, 0);
        platform::InsertRow(window, kPresetList, 0, kUntitledPreset);
        globals->prefs.zwkPresetIndex = 0;
    } else {
        platform::RemoveRow(window, kPresetList, globals->prefs.zwkPresetIndex);
        if (globals->prefs.zwkPresetIndex >= PresetRowCount(window)) --globals->prefs.zwkPresetIndex;
    }
    SetPresetName(globals, PresetText(window, globals->prefs.zwkPresetIndex));
    ReadCurrentPreset(window, state);
}

void ExportParts(WindowRef window, ScheduleDialogState* state) {
    std::string path;
    if (!platform::AskSaveFile(kCsvFilter, kProposedCsv, &path)) return;
    Collect(window, state);
    if (WritePartsCsv(state->globals, path) != 0) return;
    platform::ShowMessageBox(ChooseText("CSV ファイルに書き込めません。", "The CSV file cannot be written.").c_str(),
                             "Quorvel", platform::MessageButtons::ok, platform::MessageIcon::information);
}

bool AskToReplace(const platform::UnwritableCharacter& unwritable) {
    char text[256];
    const std::string format =
        ChooseText("%d 行 %d 列の文字 U+%04X はコードページ 932 にありません。\r\"?\" に置き換えて読み込みますか？",
                   "Row %d, column %d: code page 932 has no character U+%04X.\rRead the list with \"?\" in its place?");
    std::snprintf(text, sizeof text, format.c_str(), unwritable.row, unwritable.column,
                  static_cast<unsigned>(unwritable.codePoint));
    return platform::ShowMessageBox(text, "Quorvel", platform::MessageButtons::okCancel,
                                    platform::MessageIcon::question);
}

void ImportParts(WindowRef window, ScheduleDialogState* state) {
    std::string path;
    if (!platform::AskOpenFile(kCsvFilter, kProposedCsv, &path)) return;
    platform::UnwritableCharacter unwritable;
    if (ReadPartsCsv(state->globals, path, false, &unwritable) == 0 && unwritable.row > 0 && AskToReplace(unwritable))
        static_cast<void>(ReadPartsCsv(state->globals, path, true, &unwritable));
    Refill(window, state);
}

void ChoosePreset(WindowRef window, ScheduleDialogState* state, std::int32_t row) {
    PluginGlobals* globals = state->globals;
    if (row == globals->prefs.zwkPresetIndex) return;
    globals->prefs.zwkPresetIndex = row;
    SetPresetName(globals, PresetText(window, row));
    ReadCurrentPreset(window, state);
}

void PresetEvent(WindowRef window, ScheduleDialogState* state) {
    const std::int32_t row = platform::GetSelectedRow(window, kPresetList);
    if (row < 0 || row == state->lastPresetRow) return;
    state->lastPresetRow = row;
    const bool untitled = IsUntitled(state->globals);
    switch (platform::CountRows(window, kPresetList) - row) {
        case kUpperSeparator:
        case kLowerSeparator:
            return SelectCurrentPreset(window, state);
        case kSaveRow:
            return untitled ? SelectCurrentPreset(window, state) : platform::PostCommand(window, kSaveCommand);
        case kSaveAsRow:
            return platform::PostCommand(window, kSaveAsCommand);
        case kDeleteRow:
            return untitled ? SelectCurrentPreset(window, state) : platform::PostCommand(window, kDeleteCommand);
        case kExportRow:
            return platform::PostCommand(window, kExportCommand);
        case kImportRow:
            return platform::PostCommand(window, kImportCommand);
        default:
            return ChoosePreset(window, state, row);
    }
}

// --- the window's logic -------------------------------------------------------------------------------------------

ScheduleDialogState* StateOf(void* context) { return static_cast<ScheduleDialogState*>(context); }

void OpenDialog(WindowRef window, void* context) {
    ScheduleDialogState* state = StateOf(context);
    const bool english = state->globals->language != kJapanese;
    // The English dialog offers the last of the three types alone.
    FillList(state->globals, window, kTypeList, kFrameTypeStrings + (english ? kUniversalType : 0), english ? 1 : 3);
    FillPresetList(window, state);
    Refill(window, state);
}

void HandleEvent(WindowRef window, std::int32_t control, void* context) {
    ScheduleDialogState* state = StateOf(context);
    switch (control) {
        case kOkControl:
            Collect(window, state);
            return platform::CloseWindow(window, kResultOk);
        case kCancelControl:
            return platform::CloseWindow(window, kResultCancel);
        case kPreviousPage:
            if (state->schedulePage >= 1) ShowPage(window, state, state->schedulePage - 1);
            return;
        case kNextPage:
            if (state->schedulePage < kLastPage) ShowPage(window, state, state->schedulePage + 1);
            return;
        case kPresetList:
            return PresetEvent(window, state);
        default:
            return;
    }
}

void HandleCommand(WindowRef window, std::int32_t number, void* context) {
    ScheduleDialogState* state = StateOf(context);
    switch (number) {
        case kSaveCommand:
            SavePreset(window, state);
            break;
        case kSaveAsCommand:
            SavePresetAs(window, state);
            break;
        case kDeleteCommand:
            DeletePreset(window, state);
            break;
        case kExportCommand:
            ExportParts(window, state);
            break;
        case kImportCommand:
            ImportParts(window, state);
            break;
        default:
            return;
    }
    SelectCurrentPreset(window, state);
}

// Saving to and deleting "Untitled" cannot be chosen.
bool RowIsDisabled(WindowRef window, std::int32_t control, std::int32_t row, void* context) {
    if (control != kPresetList || !IsUntitled(StateOf(context)->globals)) return false;
    const std::int32_t fromEnd = platform::CountRows(window, kPresetList) - row;
    return fromEnd == kSaveRow || fromEnd == kDeleteRow;
}

}  // namespace

bool RunScheduleDialog(PluginGlobals* globals) {
    ScheduleDialogState state;
    state.globals = globals;
    const platform::WindowLogic logic{OpenDialog, HandleEvent, HandleCommand, RowIsDisabled};
    return RunPluginDialog(globals, kScheduleDialog, logic, &state) == kResultOk;
}

}  // namespace quorvel

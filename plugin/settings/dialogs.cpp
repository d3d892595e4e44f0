// A dialog in the user's language, the bytes of its fields, and the refusal of a value that a user sees in every dialog
// alike.
#include "plugin/settings/dialogs.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "plugin/dimensioning/units.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/shell/services.h"

namespace quorvel {

std::int32_t RunPluginDialog(PluginGlobals* globals, DialogId id, const platform::WindowLogic& logic, void* context) {
    const std::int32_t offset = globals->language != kJapanese ? kEnglishDialogOffset : 0;
    const platform::DialogTemplate* dialog = FindDialogTemplate(id + offset);
    if (dialog == nullptr) return kResultCancel;
    const std::int32_t result = platform::RunDialog(*dialog, logic, context);
    // A preset's name is only part of what the dialog around it confirms.
    if (result == kResultOk && id != kSaveAsDialog && !SaveChangedSettings(globals)) ReportUnsavedSettings();
    return result;
}

void ReportUnsavedSettings() {
    const std::string text = ChooseText("設定をファイルに保存できません。", "The settings cannot be saved.");
    platform::ShowMessageBox(text.c_str(), "Quorvel", platform::MessageButtons::ok, platform::MessageIcon::information);
}

std::string ControlText(platform::WindowRef window, std::int32_t control, int limit) {
    std::string text(static_cast<std::size_t>(limit) + 1, '\0');
    text.resize(static_cast<std::size_t>(platform::GetControlText(window, control, text.data(), limit + 1)));
    return text;
}

void ShowInteger(platform::WindowRef window, std::int32_t control, int value) {
    platform::SetControlText(window, control, std::to_string(value).c_str());
}

void FillList(const PluginGlobals* globals, platform::WindowRef window, std::int32_t control, std::int32_t firstString,
              int count) {
    for (const std::string& row : LoadStringRows(globals, firstString, count))
        platform::AddRow(window, control, row.c_str());
}

void RefuseControl(platform::WindowRef window, std::int32_t control) {
    platform::FocusSelectingAll(window, control);
    Beep();
}

void CopyBytes(char* to, std::size_t size, const std::string& from) {
    const std::size_t count = std::min(from.size(), size - 1);
    std::memcpy(to, from.data(), count);
    to[count] = '\0';
}

}  // namespace quorvel

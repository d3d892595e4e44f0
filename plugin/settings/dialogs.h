// What all dialogs share: running the template of the current language, numbers and texts in controls, and the
// refusal of a value.
#pragma once

#include <cstdint>
#include <string>

#include "platform/dialog.h"
#include "plugin/resources/dialog_templates.h"
#include "plugin/shell/globals.h"

namespace quorvel {

constexpr int kControlTextLimit = 80;  // bytes read from a field of a number

// The template of id, or the English one when language is not 0. Gives the dialog's result: kResultOk, kResultCancel.
std::int32_t RunPluginDialog(PluginGlobals* globals, DialogId id, const platform::WindowLogic& logic, void* context);
// Tells the user that changed settings are not on the disk.
void ReportUnsavedSettings();
std::string ControlText(platform::WindowRef window, std::int32_t control, int limit);
void ShowInteger(platform::WindowRef window, std::int32_t control, int value);
// Adds rows of the string table to the list; none is selected.
void FillList(const PluginGlobals* globals, platform::WindowRef window, std::int32_t control, std::int32_t firstString,
              int count);
// The control gets the focus with all its text selected, and a beep sounds; there is no message.
void RefuseControl(platform::WindowRef window, std::int32_t control);
// Copies up to size - 1 bytes and a closing zero.
void CopyBytes(char* to, std::size_t size, const std::string& from);

}  // namespace quorvel

// The functions of dialogs and panels, handed to the backend that is installed.
#include "platform/dialog.h"

#include <vector>

#include "platform/backend/backend.h"
#include "platform/system_text.h"

namespace quorvel::platform {

namespace {

Dialogs* InstalledDialogs() { return installedBackend() != nullptr ? &installedBackend()->dialogs() : nullptr; }

}  // namespace

// --- windows

std::int32_t RunDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context) {
    Dialogs* dialogs = InstalledDialogs();
    return dialogs != nullptr ? dialogs->run(dialog, logic, context) : 0;
}

void CloseWindow(WindowRef window, std::int32_t result) {
    if (ControlWindow* found = living(window)) found->close(result);
}

bool BuildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount, Language language,
                const WindowLogic& logic, void* context, WindowRef* window) {
    Dialogs* dialogs = InstalledDialogs();
    const WindowContent content{{rows, static_cast<std::size_t>(rowCount)}, language, logic, context};
    *window = dialogs != nullptr && panelWindow != nullptr ? dialogs->buildPanel(panelWindow, content) : nullptr;
    return *window != nullptr;
}

void DestroyPanel(WindowRef window) {
    Dialogs* dialogs = InstalledDialogs();
    if (dialogs != nullptr && living(window) != nullptr) dialogs->destroyPanel(window);
}

void SetPanelTheme(WindowRef window, const PanelTheme& theme) {
    if (ControlWindow* found = living(window)) found->setTheme(theme);
}

// --- controls

std::int32_t GetControlText(WindowRef window, std::int32_t control, char* text, std::int32_t size) {
    const ControlWindow* found = living(window);
    return CopyToSystem(found != nullptr ? found->text(control) : "", text, size);
}

void SetControlText(WindowRef window, std::int32_t control, const char* text) {
    if (ControlWindow* found = living(window)) found->setText(control, FieldFromSystem(text));
}

std::int32_t CountRows(WindowRef window, std::int32_t control) {
    const ControlWindow* found = living(window);
    return found != nullptr ? static_cast<std::int32_t>(found->rows(control).size()) : 0;
}

void AddRow(WindowRef window, std::int32_t control, const char* text) { InsertRow(window, control, -1, text); }

void InsertRow(WindowRef window, std::int32_t control, std::int32_t row, const char* text) {
    if (ControlWindow* found = living(window)) found->insertRow(control, row, FieldFromSystem(text));
}

void RemoveRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (ControlWindow* found = living(window)) found->removeRow(control, row);
}

void ClearRows(WindowRef window, std::int32_t control) {
    for (std::int32_t row = CountRows(window, control) - 1; row >= 0; --row) RemoveRow(window, control, row);
}

std::int32_t GetRowText(WindowRef window, std::int32_t control, std::int32_t row, char* text, std::int32_t size) {
    std::vector<std::string> rows;
    if (const ControlWindow* found = living(window)) rows = found->rows(control);
    const bool there = row >= 0 && static_cast<std::size_t>(row) < rows.size();
    return CopyToSystem(there ? rows[static_cast<std::size_t>(row)] : "", text, size);
}

std::int32_t GetSelectedRow(WindowRef window, std::int32_t control) {
    const ControlWindow* found = living(window);
    return found != nullptr ? found->selectedRow(control) : -1;
}

void SelectRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (ControlWindow* found = living(window)) found->selectRow(control, row);
}

bool IsChecked(WindowRef window, std::int32_t control) {
    const ControlWindow* found = living(window);
    return found != nullptr && found->isChecked(control);
}

void SetChecked(WindowRef window, std::int32_t control, bool checked) {
    if (ControlWindow* found = living(window)) found->setChecked(control, checked);
}

void EnableControl(WindowRef window, std::int32_t control, bool enabled) {
    if (ControlWindow* found = living(window)) found->setEnabled(control, enabled);
}

void ShowControl(WindowRef window, std::int32_t control, bool shown) {
    if (ControlWindow* found = living(window)) found->setShown(control, shown);
}

void FocusSelectingAll(WindowRef window, std::int32_t control) {
    if (ControlWindow* found = living(window)) found->focusSelectingAll(control);
}

void SetControlFont(WindowRef window, std::int32_t control, const char* systemName, float points) {
    if (ControlWindow* found = living(window)) found->setFont(control, FromSystem(systemName), points);
}

void PostCommand(WindowRef window, std::int32_t number) {
    if (ControlWindow* found = living(window)) found->postCommand(number);
}

// --- boxes and files

bool ShowMessageBox(const char* text, const char* title, MessageButtons buttons, MessageIcon icon) {
    Dialogs* dialogs = InstalledDialogs();
    return dialogs != nullptr && dialogs->showMessageBox(FromSystem(text), FromSystem(title), buttons, icon);
}

bool AskSaveFile(const char* filter, const char* proposedName, std::string* path) {
    Dialogs* dialogs = InstalledDialogs();
    return dialogs != nullptr && dialogs->askSaveFile(FromSystem(filter), FromSystem(proposedName), path);
}

bool AskOpenFile(const char* filter, const char* proposedName, std::string* path) {
    Dialogs* dialogs = InstalledDialogs();
    return dialogs != nullptr && dialogs->askOpenFile(FromSystem(filter), FromSystem(proposedName), path);
}

}  // namespace quorvel::platform

// The platform's functions, each handed to the backend that is installed. Texts change here between the system code
// page, which the plug-in works in, and UTF-8, which every backend works in.
#include "platform/backend.h"

#include <algorithm>
#include <cstring>

#include "platform/text.h"

namespace quorvel::platform {

namespace {

Backend* installed = nullptr;

std::string FromSystem(const char* bytes) { return bytes == nullptr ? "" : ToUtf8(bytes, kCodePageJapanese); }

// A text that is too long is cut at its byte, in the middle of a character where that falls so: limits count bytes.
std::int32_t CopyToSystem(const std::string& utf8, char* text, std::int32_t size) {
    if (text == nullptr || size <= 0) return 0;
    const std::string bytes = FromUtf8(utf8, kCodePageJapanese);
    const std::size_t length = std::min(bytes.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(text, bytes.data(), length);
    text[length] = '\0';
    return static_cast<std::int32_t>(std::strlen(text));
}

}  // namespace

void InstallBackend(Backend* backend) { installed = backend; }

// --- the view's window

ViewWindowRef GetTopWindow(ViewWindowRef parent) {
    return installed != nullptr ? installed->topWindow(parent) : nullptr;
}

ViewWindowRef GetNextWindow(ViewWindowRef window) {
    return installed != nullptr && window != nullptr ? installed->nextWindow(window) : nullptr;
}

std::int32_t GetWindowTitle(ViewWindowRef window, char* title, std::int32_t size) {
    const bool known = installed != nullptr && window != nullptr;
    return CopyToSystem(known ? installed->windowTitle(window) : "", title, size);
}

PixelRect GetWindowRect(ViewWindowRef window) {
    return installed != nullptr && window != nullptr ? installed->windowRect(window) : PixelRect{};
}

bool IsWindowVisible(ViewWindowRef window) {
    return installed != nullptr && window != nullptr && installed->windowVisible(window);
}

Pixel ClientToScreen(ViewWindowRef window, Pixel point) {
    return installed != nullptr && window != nullptr ? installed->clientToScreen(window, point) : point;
}

Pixel ScreenToClient(ViewWindowRef window, Pixel point) {
    return installed != nullptr && window != nullptr ? installed->screenToClient(window, point) : point;
}

std::int32_t GetWindowNumber(ViewWindowRef window) {
    return installed != nullptr && window != nullptr ? installed->windowNumber(window) : 0;
}

SurfaceRef BeginSurface(ViewWindowRef window) {
    return installed != nullptr ? installed->beginSurface(window) : nullptr;
}

void EndSurface(SurfaceRef surface) {
    if (installed != nullptr && surface != nullptr) installed->endSurface(surface);
}

std::uint32_t SurfaceGeneration(SurfaceRef surface) {
    return installed != nullptr && surface != nullptr ? installed->surfaceGeneration(surface) : 0;
}

void MoveTo(SurfaceRef surface, Pixel point) {
    if (installed != nullptr && surface != nullptr) installed->moveTo(surface, point);
}

void LineTo(SurfaceRef surface, Pixel point) {
    if (installed != nullptr && surface != nullptr) installed->lineTo(surface, point);
}

void DrawArc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end) {
    if (installed != nullptr && surface != nullptr) installed->drawArc(surface, box, start, end);
}

// --- dialogs and the panel

std::int32_t RunDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context) {
    return installed != nullptr ? installed->runDialog(dialog, logic, context) : 0;
}

void CloseWindow(WindowRef window, std::int32_t result) {
    if (installed != nullptr && window != nullptr) installed->closeWindow(window, result);
}

bool BuildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount, Language language,
                const WindowLogic& logic, void* context, WindowRef* window) {
    *window = installed != nullptr && panelWindow != nullptr
                  ? installed->buildPanel(panelWindow, rows, rowCount, language, logic, context)
                  : nullptr;
    return *window != nullptr;
}

void DestroyPanel(WindowRef window) {
    if (installed != nullptr && window != nullptr) installed->destroyPanel(window);
}

void SetPanelTheme(WindowRef window, const PanelTheme& theme) {
    if (installed != nullptr && window != nullptr) installed->setPanelTheme(window, theme);
}

std::int32_t GetControlText(WindowRef window, std::int32_t control, char* text, std::int32_t size) {
    const bool known = installed != nullptr && window != nullptr;
    return CopyToSystem(known ? installed->controlText(window, control) : "", text, size);
}

void SetControlText(WindowRef window, std::int32_t control, const char* text) {
    if (installed != nullptr && window != nullptr) installed->setControlText(window, control, FromSystem(text));
}

std::int32_t CountRows(WindowRef window, std::int32_t control) {
    if (installed == nullptr || window == nullptr) return 0;
    return static_cast<std::int32_t>(installed->rows(window, control).size());
}

void AddRow(WindowRef window, std::int32_t control, const char* text) { InsertRow(window, control, -1, text); }

void InsertRow(WindowRef window, std::int32_t control, std::int32_t row, const char* text) {
    if (installed != nullptr && window != nullptr) installed->insertRow(window, control, row, FromSystem(text));
}

void RemoveRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (installed != nullptr && window != nullptr) installed->removeRow(window, control, row);
}

void ClearRows(WindowRef window, std::int32_t control) {
    for (std::int32_t row = CountRows(window, control) - 1; row >= 0; --row) RemoveRow(window, control, row);
}

std::int32_t GetRowText(WindowRef window, std::int32_t control, std::int32_t row, char* text, std::int32_t size) {
    std::string found;
    if (installed != nullptr && window != nullptr && row >= 0) {
        const std::vector<std::string> rows = installed->rows(window, control);
        if (static_cast<std::size_t>(row) < rows.size()) found = rows[static_cast<std::size_t>(row)];
    }
    return CopyToSystem(found, text, size);
}

std::int32_t GetSelectedRow(WindowRef window, std::int32_t control) {
    return installed != nullptr && window != nullptr ? installed->selectedRow(window, control) : -1;
}

void SelectRow(WindowRef window, std::int32_t control, std::int32_t row) {
    if (installed != nullptr && window != nullptr) installed->selectRow(window, control, row);
}

bool IsChecked(WindowRef window, std::int32_t control) {
    return installed != nullptr && window != nullptr && installed->checked(window, control);
}

void SetChecked(WindowRef window, std::int32_t control, bool checked) {
    if (installed != nullptr && window != nullptr) installed->setChecked(window, control, checked);
}

void EnableControl(WindowRef window, std::int32_t control, bool enabled) {
    if (installed != nullptr && window != nullptr) installed->enableControl(window, control, enabled);
}

void ShowControl(WindowRef window, std::int32_t control, bool shown) {
    if (installed != nullptr && window != nullptr) installed->showControl(window, control, shown);
}

void FocusSelectingAll(WindowRef window, std::int32_t control) {
    if (installed != nullptr && window != nullptr) installed->focusSelectingAll(window, control);
}

void SetControlFont(WindowRef window, std::int32_t control, const char* systemName, float points) {
    if (installed != nullptr && window != nullptr)
        installed->setControlFont(window, control, FromSystem(systemName), points);
}

void PostCommand(WindowRef window, std::int32_t number) {
    if (installed != nullptr && window != nullptr) installed->postCommand(window, number);
}

bool ShowMessageBox(const char* text, const char* title, MessageButtons buttons, MessageIcon icon) {
    return installed != nullptr && installed->showMessageBox(FromSystem(text), FromSystem(title), buttons, icon);
}

bool AskSaveFile(const char* filter, const char* proposedName, std::string* path) {
    return installed != nullptr && installed->askSaveFile(FromSystem(filter), FromSystem(proposedName), path);
}

bool AskOpenFile(const char* filter, const char* proposedName, std::string* path) {
    return installed != nullptr && installed->askOpenFile(FromSystem(filter), FromSystem(proposedName), path);
}

// --- small services

void MessageBeep(std::uint32_t kind) {
    if (installed != nullptr) installed->beep(kind);
}

CursorRef LoadCursorResource(void* module, std::int32_t id) {
    return installed != nullptr ? installed->loadCursor(module, id) : nullptr;
}

void SetCursor(CursorRef cursor) {
    if (installed != nullptr && cursor != nullptr) installed->setCursor(cursor);
}

void* AllocateZeroed(std::size_t size) { return installed != nullptr ? installed->allocateZeroed(size) : nullptr; }

void FreeZeroed(void* block) {
    if (installed != nullptr && block != nullptr) installed->freeZeroed(block);
}

std::uint32_t LastError() { return installed != nullptr ? installed->lastError() : 0; }

std::string DocumentsFolder() { return installed != nullptr ? installed->documentsFolder() : ""; }

std::string ErrorLogPath() { return installed != nullptr ? installed->errorLogPath() : ""; }

}  // namespace quorvel::platform

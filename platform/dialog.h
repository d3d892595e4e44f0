// Windows with controls: modal dialogs, the information panel, message boxes and file dialogs. A dialog is a table of
// rows and a few plain functions; the backend draws the rows as widgets, or answers them from a script. Texts that pass
// through these functions are bytes of the system code page, zero-terminated; labels in the tables are UTF-8.
#pragma once

#include <cstdint>
#include <string>

#include "platform/window.h"

namespace quorvel::platform {

using WindowRef = class ControlWindow*;

enum class ControlKind : std::uint8_t {
    label,
    text,  // a static text that the logic sets
    edit,
    list,         // a drop-down list of rows
    editList,     // a drop-down list with a text of its own
    commandList,  // a drop-down list whose rows may be separators ("-" or empty) or disabled
    checkBox,
    radio,
    button,
    group,  // a frame with a caption
    frame,  // a frame without one
    line,
    picture,     // resource number in picture
    toggle,      // a button that stays lit; picture and darkPicture are its icons
    pushButton,  // a button with an icon
};

enum class Language : std::uint8_t { japanese = 0, english = 1 };

struct ControlRow {
    std::int32_t id = 0;
    ControlKind kind = ControlKind::label;
    const char* japanese = "";
    const char* english = "";
    PixelRect rect;            // dialog units: pixels at 96 dots per inch
    std::int32_t picture = 0;  // resource number, 0 for none
    std::int32_t darkPicture = 0;
};

struct DialogTemplate {
    std::int32_t id = 0;
    Language language = Language::japanese;  // which label of each row is shown
    const char* title = "";                  // UTF-8
    std::int32_t width = 0, height = 0;
    const ControlRow* rows = nullptr;
    std::int32_t rowCount = 0;
};

// The numbers of these buttons in every dialog.
constexpr std::int32_t kOkControl = 1, kCancelControl = 2;

// The logic of one window. A null function is passed over.
struct WindowLogic {
    // The controls exist; fill them.
    void (*opening)(WindowRef window, void* context) = nullptr;
    // A control was pressed, or its text or selection has changed.
    void (*event)(WindowRef window, std::int32_t control, void* context) = nullptr;
    // A posted command has come round.
    void (*command)(WindowRef window, std::int32_t number, void* context) = nullptr;
    // Is this row of a commandList disabled?
    bool (*rowDisabled)(WindowRef window, std::int32_t control, std::int32_t row, void* context) = nullptr;
};

// Runs the dialog, centred on the desktop, until CloseWindow; gives the result of that. Closing it by the window's own
// means counts as pressing kCancelControl. Result 0: the dialog could not be shown.
std::int32_t RunDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context);
void CloseWindow(WindowRef window, std::int32_t result);

// Makes the rows the content of a window that the host gave for a panel.
bool BuildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount, Language language,
                const WindowLogic& logic, void* context, WindowRef* window);
void DestroyPanel(WindowRef window);
// Colours of a panel: red, green, blue from 0 to 1; and which of the two icons each control shows.
struct PanelTheme {
    float background[3] = {1, 1, 1};
    float text[3] = {0, 0, 0};
    std::uint32_t highlight = 0;  // 0xRRGGBB: a lit button, and every button's frame
    bool secondIcons = false;     // controls show darkPicture in place of picture
};
void SetPanelTheme(WindowRef window, const PanelTheme& theme);

// At most size - 1 bytes and a zero; returns the length. An unknown control gives the empty text.
std::int32_t GetControlText(WindowRef window, std::int32_t control, char* text, std::int32_t size);
void SetControlText(WindowRef window, std::int32_t control, const char* text);
std::int32_t CountRows(WindowRef window, std::int32_t control);
void AddRow(WindowRef window, std::int32_t control, const char* text);
void InsertRow(WindowRef window, std::int32_t control, std::int32_t row, const char* text);
void RemoveRow(WindowRef window, std::int32_t control, std::int32_t row);
void ClearRows(WindowRef window, std::int32_t control);
std::int32_t GetRowText(WindowRef window, std::int32_t control, std::int32_t row, char* text, std::int32_t size);
// -1 for none.
std::int32_t GetSelectedRow(WindowRef window, std::int32_t control);
// Selecting by the logic causes no event.
void SelectRow(WindowRef window, std::int32_t control, std::int32_t row);
bool IsChecked(WindowRef window, std::int32_t control);
void SetChecked(WindowRef window, std::int32_t control, bool checked);
void EnableControl(WindowRef window, std::int32_t control, bool enabled);
void ShowControl(WindowRef window, std::int32_t control, bool shown);
void FocusSelectingAll(WindowRef window, std::int32_t control);
// The font of a static text: system name (PostScript), size in points.
void SetControlFont(WindowRef window, std::int32_t control, const char* systemName, float points);
// Comes back through WindowLogic::command when the event that is running has ended.
void PostCommand(WindowRef window, std::int32_t number);

enum class MessageButtons : std::uint8_t { ok, okCancel };
enum class MessageIcon : std::uint8_t { none, information, question };
// True for OK.
bool ShowMessageBox(const char* text, const char* title, MessageButtons buttons, MessageIcon icon);

// The paths are in the file system's own encoding; false when the user refused. filter: "*.csv".
bool AskSaveFile(const char* filter, const char* proposedName, std::string* path);
bool AskOpenFile(const char* filter, const char* proposedName, std::string* path);

}  // namespace quorvel::platform

// Windows with controls, message boxes and file dialogs, as a backend has them. All texts are UTF-8.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/backend/referenced.h"
#include "platform/dialog.h"

namespace quorvel::platform {

// A dialog while it runs, or the content of a panel. An unknown control is ignored and answers with nothing.
class ControlWindow : public Referenced {
  public:
    virtual std::string text(std::int32_t control) const = 0;
    virtual void setText(std::int32_t control, const std::string& text) = 0;
    virtual std::vector<std::string> rows(std::int32_t control) const = 0;
    // A row below 0 or behind the last goes to the end.
    virtual void insertRow(std::int32_t control, std::int32_t row, const std::string& text) = 0;
    virtual void removeRow(std::int32_t control, std::int32_t row) = 0;
    virtual std::int32_t selectedRow(std::int32_t control) const = 0;  // -1 for none
    virtual void selectRow(std::int32_t control, std::int32_t row) = 0;
    virtual bool isChecked(std::int32_t control) const = 0;
    virtual void setChecked(std::int32_t control, bool checked) = 0;
    virtual void setEnabled(std::int32_t control, bool enabled) = 0;
    virtual void setShown(std::int32_t control, bool shown) = 0;
    virtual void focusSelectingAll(std::int32_t control) = 0;
    virtual void setFont(std::int32_t control, const std::string& systemName, float points) = 0;
    virtual void setTheme(const PanelTheme& theme) = 0;
    virtual void postCommand(std::int32_t number) = 0;
    // Ends a dialog with the result.
    virtual void close(std::int32_t result) = 0;
};

// What the rows of a window are made from. The rows outlive the window.
struct WindowContent {
    std::span<const ControlRow> rows;
    Language language = Language::japanese;
    WindowLogic logic;
    void* context = nullptr;
};

class Dialogs {
  public:
    virtual ~Dialogs() = default;
    // The result that the logic closed it with; 0 when it could not be shown.
    virtual std::int32_t run(const DialogTemplate& dialog, const WindowLogic& logic, void* context) = 0;
    // panelWindow: as the program round the backend made it. Null for one that it did not make.
    virtual ControlWindow* buildPanel(void* panelWindow, const WindowContent& content) = 0;
    virtual void destroyPanel(ControlWindow* window) = 0;
    virtual bool showMessageBox(const std::string& text, const std::string& title, MessageButtons buttons,
                                MessageIcon icon) = 0;
    // False, and *path unchanged, when the user refused.
    virtual bool askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) = 0;
    virtual bool askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) = 0;
};

}  // namespace quorvel::platform

// What stands behind the platform's functions: one installed backend for the process. The library that holds these
// functions is shared, so that the plug-in and the program that loads it meet the same backend.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/dialog.h"
#include "platform/file.h"
#include "platform/system.h"
#include "platform/window.h"

namespace quorvel::platform {

// Every text here is UTF-8: the platform's functions convert from and to the system code page. Files and code pages are
// the same everywhere and are not part of it.
class Backend {
  public:
    virtual ~Backend() = default;

    virtual ViewWindowRef topWindow(ViewWindowRef parent) = 0;
    virtual ViewWindowRef nextWindow(ViewWindowRef window) = 0;
    virtual std::string windowTitle(ViewWindowRef window) = 0;
    virtual PixelRect windowRect(ViewWindowRef window) = 0;
    virtual bool windowVisible(ViewWindowRef window) = 0;
    virtual Pixel clientToScreen(ViewWindowRef window, Pixel point) = 0;
    virtual Pixel screenToClient(ViewWindowRef window, Pixel point) = 0;
    virtual std::int32_t windowNumber(ViewWindowRef window) = 0;

    virtual SurfaceRef beginSurface(ViewWindowRef window) = 0;
    virtual void endSurface(SurfaceRef surface) = 0;
    virtual std::uint32_t surfaceGeneration(SurfaceRef surface) = 0;
    virtual void moveTo(SurfaceRef surface, Pixel point) = 0;
    virtual void lineTo(SurfaceRef surface, Pixel point) = 0;
    virtual void drawArc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end) = 0;

    virtual std::int32_t runDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context) = 0;
    virtual void closeWindow(WindowRef window, std::int32_t result) = 0;
    virtual WindowRef buildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount, Language language,
                                 const WindowLogic& logic, void* context) = 0;
    virtual void destroyPanel(WindowRef window) = 0;
    virtual void setPanelTheme(WindowRef window, const PanelTheme& theme) = 0;
    virtual std::string controlText(WindowRef window, std::int32_t control) = 0;
    virtual void setControlText(WindowRef window, std::int32_t control, const std::string& text) = 0;
    virtual std::vector<std::string> rows(WindowRef window, std::int32_t control) = 0;
    // A row below 0 or behind the last goes to the end.
    virtual void insertRow(WindowRef window, std::int32_t control, std::int32_t row, const std::string& text) = 0;
    virtual void removeRow(WindowRef window, std::int32_t control, std::int32_t row) = 0;
    virtual std::int32_t selectedRow(WindowRef window, std::int32_t control) = 0;
    virtual void selectRow(WindowRef window, std::int32_t control, std::int32_t row) = 0;
    virtual bool checked(WindowRef window, std::int32_t control) = 0;
    virtual void setChecked(WindowRef window, std::int32_t control, bool checked) = 0;
    virtual void enableControl(WindowRef window, std::int32_t control, bool enabled) = 0;
    virtual void showControl(WindowRef window, std::int32_t control, bool shown) = 0;
    virtual void focusSelectingAll(WindowRef window, std::int32_t control) = 0;
    virtual void setControlFont(WindowRef window, std::int32_t control, const std::string& systemName,
                                float points) = 0;
    virtual void postCommand(WindowRef window, std::int32_t number) = 0;
    virtual bool showMessageBox(const std::string& text, const std::string& title, MessageButtons buttons,
                                MessageIcon icon) = 0;
    virtual bool askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) = 0;
    virtual bool askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) = 0;

    virtual void beep(std::uint32_t kind) = 0;
    virtual CursorRef loadCursor(void* module, std::int32_t id) = 0;
    virtual void setCursor(CursorRef cursor) = 0;
    virtual void* allocateZeroed(std::size_t size) = 0;
    virtual void freeZeroed(void* block) = 0;
    virtual std::uint32_t lastError() = 0;

    virtual std::string documentsFolder() = 0;
    virtual std::string errorLogPath() = 0;
};

// The backend must outlive its use; null takes it away. Functions called without a backend do nothing and give
// nothing.
void InstallBackend(Backend* backend);

}  // namespace quorvel::platform

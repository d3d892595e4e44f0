// The backend with a screen: dialogs and message boxes are real windows, cursors are shown, and what the plug-in
// inverts is kept as the set of pixels that the canvas shows inverted.
#pragma once

#include <QCursor>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/backend.h"
#include "platform/headless/headless.h"
#include "platform/headless/view_screen.h"
#include "platform/qt/control_form.h"

namespace quorvel::platform {

// What the program around the backend does at each call, and what it is told of the user's hand. Each may be left
// empty.
struct QtBackendEvents {
    std::function<void()> surfaceDrawn;  // a message has inverted pixels
    std::function<void(std::int32_t id, const QCursor& cursor)> cursorChosen;
    std::function<void()> beeped;
    std::function<void()> dialogOpened;                            // before its logic runs
    std::function<void(const DialogReply& reply)> dialogAnswered;  // of the dialog that was opened last
    std::function<void(bool accepted, bool asked)> boxAnswered;    // asked: there was a choice
    std::function<void(const std::optional<std::string>& path)> fileChosen;
    // Before the logic hears of it. A row that is picked comes with its text.
    std::function<void(const DialogStep& step)> panelUsed;
};

class QtBackend : public Backend {
  public:
    explicit QtBackend(std::string documentsFolder);
    ~QtBackend() override;

    QtBackendEvents events;
    QWidget* dialogParent = nullptr;

    // --- the view ------------------------------------------------------------------------------------------------
    // A view's window stands while a document is open; its title is "NAME @ ZOOM".
    void openView(const std::string& title, int width, int height);
    void closeView();
    void setViewTitle(const std::string& title);
    void viewRepainted();  // what was inverted is gone
    const ViewScreen& screen() const { return screen_; }

    // --- the panel -----------------------------------------------------------------------------------------------
    // Its content is a widget that the program puts where it likes.
    void* createPanelWindow();
    void destroyPanelWindow(void* window);
    static QWidget* panelWidget(void* window) { return static_cast<QWidget*>(window); }
    ControlForm* panelForm() const;

    // Asks and answers a question of the host (an alert, a yes-no alert) as a message box.
    bool askQuestion(const std::string& text);
    void showAlert(const std::string& text);

    // --- Backend -------------------------------------------------------------------------------------------------
    ViewWindowRef topWindow(ViewWindowRef parent) override;
    ViewWindowRef nextWindow(ViewWindowRef window) override;
    std::string windowTitle(ViewWindowRef window) override;
    PixelRect windowRect(ViewWindowRef window) override;
    bool windowVisible(ViewWindowRef window) override;
    Pixel clientToScreen(ViewWindowRef window, Pixel point) override;
    Pixel screenToClient(ViewWindowRef window, Pixel point) override;
    std::int32_t windowNumber(ViewWindowRef window) override;
    SurfaceRef beginSurface(ViewWindowRef window) override;
    void endSurface(SurfaceRef surface) override;
    std::uint32_t surfaceGeneration(SurfaceRef surface) override;
    void moveTo(SurfaceRef surface, Pixel point) override;
    void lineTo(SurfaceRef surface, Pixel point) override;
    void drawArc(SurfaceRef surface, PixelRect box, Pixel start, Pixel end) override;
    std::int32_t runDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context) override;
    void closeWindow(WindowRef window, std::int32_t result) override;
    WindowRef buildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount, Language language,
                         const WindowLogic& logic, void* context) override;
    void destroyPanel(WindowRef window) override;
    void setPanelTheme(WindowRef window, const PanelTheme& theme) override;
    std::string controlText(WindowRef window, std::int32_t control) override;
    void setControlText(WindowRef window, std::int32_t control, const std::string& text) override;
    std::vector<std::string> rows(WindowRef window, std::int32_t control) override;
    void insertRow(WindowRef window, std::int32_t control, std::int32_t row, const std::string& text) override;
    void removeRow(WindowRef window, std::int32_t control, std::int32_t row) override;
    std::int32_t selectedRow(WindowRef window, std::int32_t control) override;
    void selectRow(WindowRef window, std::int32_t control, std::int32_t row) override;
    bool checked(WindowRef window, std::int32_t control) override;
    void setChecked(WindowRef window, std::int32_t control, bool checked) override;
    void enableControl(WindowRef window, std::int32_t control, bool enabled) override;
    void showControl(WindowRef window, std::int32_t control, bool shown) override;
    void focusSelectingAll(WindowRef window, std::int32_t control) override;
    void setControlFont(WindowRef window, std::int32_t control, const std::string& systemName, float points) override;
    void postCommand(WindowRef window, std::int32_t number) override;
    bool showMessageBox(const std::string& text, const std::string& title, MessageButtons buttons,
                        MessageIcon icon) override;
    bool askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) override;
    bool askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) override;
    void beep(std::uint32_t kind) override;
    CursorRef loadCursor(void* module, std::int32_t id) override;
    void setCursor(CursorRef cursor) override;
    void* allocateZeroed(std::size_t size) override;
    void freeZeroed(void* block) override;
    std::uint32_t lastError() override;
    std::string documentsFolder() override;
    std::string errorLogPath() override;

  private:
    struct RunningDialog;

    QWidget* windowInFront() const;  // the dialog shown last, or the window behind all
    // Null for a window that does not stand any more.
    ControlForm* form(WindowRef window) const;
    bool chosen(const QString& path, std::string* out);

    std::string documents_;
    ViewScreen screen_;
    std::unordered_set<ControlForm*> forms_;
    std::vector<RunningDialog*> dialogs_;
    std::unordered_map<QWidget*, std::unique_ptr<ControlForm>> panels_;
    std::unordered_map<std::int32_t, std::unique_ptr<std::int32_t>> cursors_;
    std::unordered_set<void*> blocks_;
    std::uint32_t error_ = 0;
};

}  // namespace quorvel::platform

// The backend without a screen: a scripted user. Replies are queued; an unexpected dialog or question is a fault that
// the transcript names; every call lands in the transcript. The surface keeps the set of pixels that are inverted now.
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "platform/backend.h"

namespace quorvel::platform {

// One step of a scripted user in a dialog.
struct DialogStep {
    enum class Kind { setText, selectRow, check, uncheck, press, expectText } kind;
    std::int32_t control = 0;
    std::string text;      // setText, expectText
    std::int32_t row = 0;  // selectRow
};

struct DialogReply {
    std::int32_t dialogId = 0;
    std::vector<DialogStep> steps;
};

class HeadlessBackend : public Backend {
  public:
    HeadlessBackend();
    ~HeadlessBackend() override;

    // --- what the script sets up ---------------------------------------------------------------------------------
    void setDocumentsFolder(const std::string& path);  // empty: the user's own (XDG)
    void queueAnswer(bool yes);                        // to the next question or message box, in UTF-8 all texts
    void queueDialog(DialogReply reply);
    void queueFile(std::string path);  // to the next file dialog
    void queueFileRefusal();
    void failAllocation(int nth);  // the nth allocation from now on gives null, from 1
    // A view's window stands while a document is open; its title is "NAME @ ZOOM".
    void openView(const std::string& title, int width, int height);
    void closeView();
    void setViewTitle(const std::string& title);
    void viewRepainted();  // what was inverted is gone; the generation changes

    // --- what the script asks ------------------------------------------------------------------------------------
    // Lines since the last call: "beep", "cursor 16105", "dialog 16266 ...", "question \"...\" yes", ...
    std::vector<std::string> takeTranscript();
    // What went wrong: an unexpected dialog or question, a reply for another dialog, an expectation in a dialog that
    // failed, a control that is not there.
    std::vector<Error> takeFaults();
    std::int32_t lastCursor() const;
    std::int32_t lastFocus() const;  // the control that a refusal last selected, 0 for none
    std::size_t visiblePixels() const;
    bool repliesLeft() const;
    int beeps() const;  // since the start
    // Asks and answers a question of the host (an alert, a yes-no alert) as a message box.
    bool askQuestion(const std::string& text);
    void showAlert(const std::string& text);

    // --- the panel's user ----------------------------------------------------------------------------------------
    void* createPanelWindow();
    void destroyPanelWindow(void* window);
    bool panelPress(std::int32_t control);  // false when the panel has no such control
    bool panelType(std::int32_t control, const std::string& text);
    bool panelText(std::int32_t control, std::string* text);
    bool panelToggled(std::int32_t control, bool* on);

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
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace quorvel::platform

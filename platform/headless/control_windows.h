// Windows with controls that nobody sees: what each control holds, the logic behind it, and the hand of the scripted
// user on it. Dialogs and the panel are windows of the same kind.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/result.h"
#include "platform/dialog.h"
#include "platform/headless/scripted_user.h"

namespace quorvel::platform {

struct ControlState {
    std::int32_t id = 0;
    ControlKind kind = ControlKind::label;
    std::string text;  // of a list that has no text of its own: empty
    std::vector<std::string> rows;
    std::int32_t selected = -1;
    bool checked = false, enabled = true, shown = true;
};

struct WindowState {
    std::string number;  // of the dialog, for faults
    std::vector<ControlState> controls;
    WindowLogic logic;
    void* context = nullptr;
    bool open = true;
    std::int32_t result = 0;
    int running = 0;  // calls of the logic that have not returned
    std::deque<std::int32_t> posted;

    // The first with this number: labels may share one. Null for none.
    ControlState* find(std::int32_t control);
};

class ControlWindows {
  public:
    explicit ControlWindows(ScriptedUser& user) : user_(user) {}

    std::int32_t runDialog(const DialogTemplate& dialog, const WindowLogic& logic, void* context);
    void close(WindowRef window, std::int32_t result);
    void post(WindowRef window, std::int32_t number);

    void* createPanelWindow();
    void destroyPanelWindow(void* panelWindow);
    WindowRef buildPanel(void* panelWindow, const ControlRow* rows, std::int32_t rowCount, Language language,
                         const WindowLogic& logic, void* context);
    void destroyPanel(WindowRef window);
    // The user's hand on the panel; false when that cannot be done to such a control.
    bool panelStep(const DialogStep& step);
    // Null without a panel or a control of this number.
    const ControlState* panelControl(std::int32_t control);

    // Null for a window that does not stand any more, or a number that it does not have.
    ControlState* control(WindowRef window, std::int32_t control) const;

  private:
    using Held = std::shared_ptr<WindowState>;

    Held held(WindowRef window) const;
    Held panel() const;
    Held stand(const ControlRow* rows, std::int32_t rowCount, Language language, const WindowLogic& logic,
               void* context);
    void remove(const Held& window);
    template <typename Call>
    void runLogic(const Held& window, Call call);
    void sendEvent(const Held& window, std::int32_t control);
    void runPosted(const Held& window);
    void play(const Held& window, const std::vector<DialogStep>& steps);
    Status perform(const Held& window, const DialogStep& step);
    void escape(const Held& window);

    ScriptedUser& user_;
    std::vector<Held> windows_;
    std::map<void*, std::unique_ptr<Held>> panels_;  // the host's windows and what was built into them
    int dialogsOpen_ = 0;
};

// What a user reads off the control: "on" or "off" of what is switched, the selected row of a list, else the text.
std::string shownText(const ControlState& control);
// Out of range selects nothing. A list with a text of its own takes the row's text over.
void selectControlRow(ControlState& control, std::int32_t row);
void setControlContent(ControlState& control, const std::string& text);
void insertControlRow(ControlState& control, std::int32_t row, const std::string& text);
void removeControlRow(ControlState& control, std::int32_t row);

}  // namespace quorvel::platform

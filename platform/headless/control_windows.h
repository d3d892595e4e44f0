// Windows with controls that nobody sees: what each control holds, the logic behind it, and the steps of the scripted
// user on it. Dialogs and the panel are windows of the same kind.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/result.h"
#include "platform/backend/dialogs.h"
#include "platform/headless/scripted_user.h"

namespace quorvel::platform {

struct ControlState {
    std::int32_t id = 0;
    ControlKind kind = ControlKind::label;
    std::string text;  // of a list that has no text of its own: empty
    std::vector<std::string> rows;
    std::int32_t selected = -1;
    bool checked = false, enabled = true, shown = true;
    std::string font;  // system name; empty before the first is set
    float fontSize = 0;
};

// One window. Calls of its logic hold it, so that it may be removed while its logic runs.
class UnseenWindow final : public ControlWindow, public std::enable_shared_from_this<UnseenWindow> {
  public:
    // number: of the dialog, empty for the panel.
    UnseenWindow(std::string number, const WindowContent& content, ScriptedUser& user);

    void open();    // runs the logic's opening
    void remove();  // nobody finds it any more
    bool isOpen() const { return open_; }
    std::int32_t result() const { return result_; }
    // The user's steps; what a user could not do is a fault and ends them.
    void play(const std::vector<DialogStep>& steps);
    // Does one step, or says why a user could not.
    Status perform(const DialogStep& step);
    // Closes it as a user does who has no more to say.
    void escape();
    const std::vector<PanelTheme>& themes() const { return themes_; }  // in the order in which they came
    // The first with this number: labels may share one. Null for none.
    const ControlState* find(std::int32_t control) const;

    std::string text(std::int32_t control) const override;
    void setText(std::int32_t control, const std::string& text) override;
    std::vector<std::string> rows(std::int32_t control) const override;
    void insertRow(std::int32_t control, std::int32_t row, const std::string& text) override;
    void removeRow(std::int32_t control, std::int32_t row) override;
    std::int32_t selectedRow(std::int32_t control) const override;
    void selectRow(std::int32_t control, std::int32_t row) override;
    bool isChecked(std::int32_t control) const override;
    void setChecked(std::int32_t control, bool checked) override;
    void setEnabled(std::int32_t control, bool enabled) override;
    void setShown(std::int32_t control, bool shown) override;
    void focusSelectingAll(std::int32_t control) override;
    void setFont(std::int32_t control, const std::string& systemName, float points) override;
    void setTheme(const PanelTheme& theme) override { themes_.push_back(theme); }
    void postCommand(std::int32_t number) override;
    void close(std::int32_t result) override;

  private:
    ControlState* find(std::int32_t control);
    void sendEvent(std::int32_t control);
    void runPosted();
    template <typename Call>
    void runLogic(Call call);
    void switchOn(ControlState& control);
    bool pickRow(ControlState& control, std::int32_t row);
    Status allowed(const ControlState& control, const DialogStep& step) const;
    Error refused(ErrorCode code, std::int32_t control, const std::vector<std::string>& more = {}) const;
    bool change(ControlState& control, const DialogStep& step);

    std::string number_;  // of the dialog, for faults
    WindowLogic logic_;
    void* context_;
    ScriptedUser& user_;
    std::vector<ControlState> controls_;
    std::vector<PanelTheme> themes_;
    bool open_ = true;
    std::int32_t result_ = 0;
    int running_ = 0;  // calls of the logic that have not returned
    std::deque<std::int32_t> posted_;
};

class ControlWindows final : public Dialogs {
  public:
    explicit ControlWindows(ScriptedUser& user) : user_(user) {}

    void* createPanelWindow();
    void destroyPanelWindow(void* panelWindow);
    // The user's step on the panel; false when that cannot be done to such a control.
    bool panelStep(const DialogStep& step);
    // Null without a panel or a control of this number.
    const ControlState* panelControl(std::int32_t control) const;

    std::int32_t run(const DialogTemplate& dialog, const WindowLogic& logic, void* context) override;
    ControlWindow* buildPanel(void* panelWindow, const WindowContent& content) override;
    void destroyPanel(ControlWindow* window) override;
    bool showMessageBox(const std::string& text, const std::string& title, MessageButtons buttons,
                        MessageIcon icon) override;
    bool askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) override;
    bool askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) override;

  private:
    using Held = std::shared_ptr<UnseenWindow>;

    Held panel() const;

    ScriptedUser& user_;
    std::map<void*, std::unique_ptr<Held>> panels_;  // the host's windows and what was built into them
    int dialogsOpen_ = 0;
};

}  // namespace quorvel::platform

// A scripted user who also looks: what each dialog shows when it opens and after each step, which controls are enabled
// and shown, and in which font. With it a way to write replies in one line.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/headless/headless.h"

namespace quorvel::tests {

using Steps = std::vector<platform::DialogStep>;

inline platform::DialogStep Type(std::int32_t control, std::string text) {
    return {platform::DialogStep::Kind::setText, control, std::move(text), 0};
}
inline platform::DialogStep Pick(std::int32_t control, std::int32_t row) {
    return {platform::DialogStep::Kind::selectRow, control, {}, row};
}
inline platform::DialogStep Tick(std::int32_t control) { return {platform::DialogStep::Kind::check, control, {}, 0}; }
inline platform::DialogStep Untick(std::int32_t control) {
    return {platform::DialogStep::Kind::uncheck, control, {}, 0};
}
inline platform::DialogStep Press(std::int32_t control) { return {platform::DialogStep::Kind::press, control, {}, 0}; }
inline platform::DialogStep Look(std::int32_t control, std::string text) {
    return {platform::DialogStep::Kind::expectText, control, std::move(text), 0};
}

class DialogSpy : public platform::HeadlessBackend, private platform::Dialogs {
  public:
    // Called inside the dialog: as soon as it is open, and after each event and command of it.
    std::function<void()> opened, changed;

    // Of the dialog on top; for use in the two calls above.
    std::string text(std::int32_t control) const { return window_->text(control); }
    std::vector<std::string> rowsOf(std::int32_t control) const { return window_->rows(control); }
    std::int32_t selected(std::int32_t control) const { return window_->selectedRow(control); }
    bool isChecked(std::int32_t control) const { return window_->isChecked(control); }
    bool isEnabled(std::int32_t control) const { return state(control).enabled; }
    bool isShown(std::int32_t control) const { return state(control).shown; }
    bool rowIsDisabled(std::int32_t control, std::int32_t row) const {
        return logic_->rowDisabled != nullptr && logic_->rowDisabled(window_, control, row, context_);
    }
    // System name and size.
    std::pair<std::string, float> font(std::int32_t control) const {
        return {state(control).font, state(control).fontSize};
    }

    platform::Dialogs& dialogs() override { return *this; }

    platform::MessageIcon lastIcon = platform::MessageIcon::none;
    platform::MessageButtons lastButtons = platform::MessageButtons::ok;
    std::string lastFilter, lastProposedName;

  private:
    platform::Dialogs& played() { return HeadlessBackend::dialogs(); }
    const platform::ControlState& state(std::int32_t control) const {
        return *static_cast<const platform::UnseenWindow*>(window_)->find(control);
    }

    std::int32_t run(const platform::DialogTemplate& dialog, const platform::WindowLogic& logic,
                     void* context) override;
    platform::ControlWindow* buildPanel(void* window, const platform::WindowContent& content) override {
        return played().buildPanel(window, content);
    }
    void destroyPanel(platform::ControlWindow* window) override { played().destroyPanel(window); }
    bool showMessageBox(const std::string& text, const std::string& title, platform::MessageButtons buttons,
                        platform::MessageIcon icon) override;
    bool askSaveFile(const std::string& filter, const std::string& proposedName, std::string* path) override;
    bool askOpenFile(const std::string& filter, const std::string& proposedName, std::string* path) override;

    platform::WindowRef window_ = nullptr;
    const platform::WindowLogic* logic_ = nullptr;
    void* context_ = nullptr;
};

}  // namespace quorvel::tests

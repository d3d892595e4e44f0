// Makes windows, plays the replies that wait for them, and keeps the host's panel windows.
#include "platform/headless/control_windows.h"

#include <optional>
#include <utility>

namespace quorvel::platform {

// --- dialogs

std::int32_t ControlWindows::run(const DialogTemplate& dialog, const WindowLogic& logic, void* context) {
    user_.say("dialog " + std::to_string(dialog.id) + ' ' + quotedForTranscript(dialog.title));
    if (dialogsOpen_++ == 0) user_.lastFocus = 0;
    const std::optional<DialogReply> reply = user_.replyTo(dialog.id);
    const WindowContent content{
        {dialog.rows, static_cast<std::size_t>(dialog.rowCount)}, dialog.language, logic, context};
    const Held window = std::make_shared<UnseenWindow>(std::to_string(dialog.id), content, user_);
    window->open();
    if (reply) window->play(reply->steps);
    if (window->isOpen()) window->escape();
    window->remove();
    --dialogsOpen_;
    return window->result();
}

bool ControlWindows::showMessageBox(const std::string& text, const std::string&, MessageButtons buttons, MessageIcon) {
    const bool asks = buttons == MessageButtons::okCancel;
    return user_.answer(asks ? "question" : "message", text, "ok", asks ? "cancel" : "ok");
}

bool ControlWindows::askSaveFile(const std::string&, const std::string&, std::string* path) {
    return user_.chooseFile(path);
}

bool ControlWindows::askOpenFile(const std::string&, const std::string&, std::string* path) {
    return user_.chooseFile(path);
}

// --- the panel

void* ControlWindows::createPanelWindow() {
    auto slot = std::make_unique<Held>();
    void* window = slot.get();
    panels_.emplace(window, std::move(slot));
    return window;
}

void ControlWindows::destroyPanelWindow(void* panelWindow) {
    const auto found = panels_.find(panelWindow);
    if (found == panels_.end()) return;
    if (*found->second) (*found->second)->remove();
    panels_.erase(found);
}

ControlWindow* ControlWindows::buildPanel(void* panelWindow, const WindowContent& content) {
    const auto found = panels_.find(panelWindow);
    if (found == panels_.end()) return nullptr;
    if (*found->second) (*found->second)->remove();
    const Held window = *found->second = std::make_shared<UnseenWindow>(std::string(), content, user_);
    window->open();
    return window.get();
}

void ControlWindows::destroyPanel(ControlWindow* window) {
    for (auto& [key, slot] : panels_) {
        if (!*slot || slot->get() != window) continue;
        (*slot)->remove();
        slot->reset();
    }
}

ControlWindows::Held ControlWindows::panel() const {
    for (const auto& [key, slot] : panels_)
        if (*slot) return *slot;
    return nullptr;
}

bool ControlWindows::panelStep(const DialogStep& step) {
    const Held window = panel();
    return window && window->perform(step);
}

const ControlState* ControlWindows::panelControl(std::int32_t control) const {
    const Held window = panel();
    return window ? std::as_const(*window).find(control) : nullptr;
}

}  // namespace quorvel::platform

// The backend without a screen: a scripted user. Replies are queued; an unexpected dialog or question is a fault that
// the transcript names; every call lands in the transcript. The surface keeps the set of pixels that are inverted now.
#pragma once

#include <string>
#include <vector>

#include "base/error.h"
#include "platform/backend/common_backend.h"
#include "platform/headless/control_windows.h"
#include "platform/headless/scripted_services.h"
#include "platform/headless/scripted_user.h"

namespace quorvel::platform {

class HeadlessBackend : public CommonBackend {
  public:
    // --- what the script sets up ---------------------------------------------------------------------------------
    void queueAnswer(bool yes) { user_.answers.push_back(yes); }  // to the next question or message box
    void queueDialog(DialogReply reply) { user_.dialogs.push_back(std::move(reply)); }
    void queueFile(std::string path) { user_.files.emplace_back(std::move(path)); }  // to the next file dialog
    void queueFileRefusal() { user_.files.emplace_back(std::nullopt); }
    // The nth allocation from now on gives null, from 1.
    void failAllocation(int nth) { services_.failAllocation(nth); }

    // --- what the script asks ------------------------------------------------------------------------------------
    // Lines since the last call: "beep", "cursor 16105", "dialog 16266 ...", "question \"...\" yes", ...
    std::vector<std::string> takeTranscript() { return user_.takeTranscript(); }
    // What went wrong: an unexpected dialog or question, a reply for another dialog, an expectation in a dialog that
    // failed, a control that is not there.
    std::vector<Error> takeFaults() { return user_.takeFaults(); }
    std::int32_t lastCursor() const { return services_.lastCursor(); }
    std::int32_t lastFocus() const { return user_.lastFocus; }  // the control that a refusal last selected, 0 for none
    std::size_t visiblePixels() const { return screen().inverted().count(); }
    bool hasRepliesLeft() const { return user_.hasRepliesLeft(); }
    int beeps() const { return services_.beeps(); }  // since the start
    // Asks and answers a question of the host (an alert, a yes-no alert) as a message box.
    bool askQuestion(const std::string& text) { return user_.answer("question", text, "yes", "no"); }
    // Nothing is asked, so that no reply is taken from the questions.
    void showAlert(const std::string& text) { user_.say("alert " + quotedForTranscript(text)); }

    // --- the panel's user ----------------------------------------------------------------------------------------
    void* createPanelWindow() { return windows_.createPanelWindow(); }
    void destroyPanelWindow(void* window) { windows_.destroyPanelWindow(window); }
    bool panelPress(std::int32_t control);  // false when the panel has no such control
    bool panelType(std::int32_t control, const std::string& text);
    bool panelText(std::int32_t control, std::string* text) const;
    bool panelToggled(std::int32_t control, bool* on) const;

    Dialogs& dialogs() override { return windows_; }
    Services& services() override { return services_; }

  private:
    ScriptedUser user_;
    ControlWindows windows_{user_};
    ScriptedServices services_{user_};
};

}  // namespace quorvel::platform

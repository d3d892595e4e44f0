// The user that a script plays: replies that wait, each kind in its own queue, the transcript of what the system
// showed, and what went wrong. All texts are UTF-8.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/error.h"
#include "platform/backend/dialog_reply.h"

namespace quorvel::platform {

// In quotes, as a script writes it: the marks of a line's end become \r and \n, so that one event stays one line.
std::string quotedForTranscript(const std::string& text);

class ScriptedUser {
  public:
    std::deque<bool> answers;
    std::deque<DialogReply> dialogs;
    std::deque<std::optional<std::string>> files;  // no path: the user refuses
    std::int32_t lastFocus = 0;

    bool hasRepliesLeft() const { return !answers.empty() || !dialogs.empty() || !files.empty(); }

    void say(std::string line) { transcript_.push_back(std::move(line)); }
    void fault(Error error) { faults_.push_back(std::move(error)); }
    std::vector<std::string> takeTranscript() { return std::exchange(transcript_, {}); }
    std::vector<Error> takeFaults() { return std::exchange(faults_, {}); }

    // The next queued answer, shown as "KIND TEXT YES"; without one a fault, and no.
    bool answer(const char* kind, const std::string& text, const char* yes, const char* no);
    // The reply that waits for this dialog; a fault when none does.
    std::optional<DialogReply> replyTo(std::int32_t dialogId);
    bool chooseFile(std::string* path);

  private:
    std::vector<std::string> transcript_;
    std::vector<Error> faults_;
};

}  // namespace quorvel::platform

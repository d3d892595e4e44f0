// Takes replies off their queues and tells what was shown. Whatever comes up without a reply is a fault and is refused,
// so that a run ends instead of waiting for somebody.
#include "platform/headless/scripted_user.h"

#include <utility>

namespace quorvel::platform {

std::string quotedForTranscript(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '\r') {
            quoted += "\\r";
        } else if (c == '\n') {
            quoted += "\\n";
        } else {
            if (c == '"' || c == '\\') quoted += '\\';
            quoted += c;
        }
    }
    return quoted + '"';
}

bool ScriptedUser::answer(const char* kind, const std::string& text, const char* yes, const char* no) {
    const std::string shown = std::string(kind) + ' ' + quotedForTranscript(text);
    bool accepted = false;
    if (answers.empty()) {
        fault(makeError(ErrorCode::kUnexpectedBox, {shown}));
    } else {
        accepted = answers.front();
        answers.pop_front();
    }
    say(shown + ' ' + (accepted ? yes : no));
    return accepted;
}

std::optional<DialogReply> ScriptedUser::replyTo(std::int32_t dialogId) {
    if (dialogs.empty()) {
        fault(makeError(ErrorCode::kUnexpectedDialog, {std::to_string(dialogId)}));
        return std::nullopt;
    }
    if (dialogs.front().dialogId != dialogId) {
        fault(makeError(ErrorCode::kUnexpectedDialogFirst,
                        {std::to_string(dialogId), std::to_string(dialogs.front().dialogId)}));
        return std::nullopt;
    }
    std::optional<DialogReply> reply = std::move(dialogs.front());
    dialogs.pop_front();
    return reply;
}

bool ScriptedUser::chooseFile(std::string* path) {
    std::optional<std::string> chosen;
    if (files.empty()) {
        fault(makeError(ErrorCode::kUnexpectedFileDialog));
    } else {
        chosen = std::move(files.front());
        files.pop_front();
    }
    say("file " + chosen.value_or("cancel"));
    if (chosen) *path = *chosen;
    return chosen.has_value();
}

}  // namespace quorvel::platform

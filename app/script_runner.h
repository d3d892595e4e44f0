// Replays a script: each line is one thing that a user does, and what happens is told a line each.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/headless_session.h"
#include "app/script.h"

namespace quorvel::app {

struct ScriptOutcome {
    std::optional<ScriptError> error;  // none: every line held
    bool isBadInput = false;           // the error is one of a drawing or the profile, not of the script
};

// name: the script's path. tell: called with each line of what happened.
ScriptOutcome runScript(const std::vector<ScriptLine>& lines, const std::string& name, HeadlessSession& session,
                        const std::function<void(const std::string&)>& tell);

}  // namespace quorvel::app

// Replays a script: each line is one thing that a user does, and what happens is told a line each.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/headless_session.h"
#include "app/script.h"

namespace quorvel::app {

struct ScriptOutcome {
    bool held = true;
    std::string fault;  // "NAME:LINE: what was wrong", empty when the script held
};

// tell: called with each line of what happened. Throws InputError for bad input (a drawing that cannot be read).
ScriptOutcome runScript(const std::vector<ScriptLine>& lines, const std::string& name, HeadlessSession& session,
                        const std::function<void(const std::string&)>& tell);

}  // namespace quorvel::app

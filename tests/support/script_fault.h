// A script run to its end, and what is wrong with it.
#pragma once

#include <functional>
#include <string>

#include "app/headless_session.h"
#include "app/script_runner.h"

namespace quorvel::tests {

// In words; empty when every line held. name: the script's path.
inline std::string faultOf(const std::string& script, const std::string& name, app::HeadlessSession& session) {
    const auto lines = app::parseScript(script);
    if (!lines) return sentence(app::inScript(name, lines.error()), app::Language::english);
    const app::ScriptOutcome outcome = app::runScript(*lines, name, session, [](const std::string&) {});
    return outcome.error ? sentence(*outcome.error, app::Language::english) : "";
}

}  // namespace quorvel::tests

// Replays a script and prints what happens as it happens.
#include <iostream>

#include "app/script_runner.h"
#include "cli/commands.h"
#include "files/file_reader.h"

namespace quorvel::cli {

Result<int> runScriptFile(const Options& options) {
    const auto refuse = [&](const app::ScriptError& error) {
        std::cerr << app::sentence(error, app::languageOf(options)) << '\n';
    };
    constexpr std::size_t kLargestScript = std::size_t{256} << 20;
    const Result<std::string> text = files::readInput(options.file, kLargestScript);
    if (!text) return Error(text.error()).inFile(options.file);
    const Result<std::vector<app::ScriptLine>> lines = app::parseScript(*text);
    if (!lines) {
        refuse(app::inScript(options.file, lines.error()));
        return kExitBadInput;
    }
    app::HeadlessSession session(options);
    if (const Status prepared = session.prepare(); !prepared) return prepared.error();
    const app::ScriptOutcome outcome =
        app::runScript(*lines, options.file, session, [](const std::string& line) { std::cout << line << std::endl; });
    const Status ended = session.shutdown();
    if (!outcome.error && !ended) return ended.error();
    if (!outcome.error) return kExitOk;
    refuse(*outcome.error);
    return outcome.isBadInput ? kExitBadInput : kExitFault;
}

}  // namespace quorvel::cli

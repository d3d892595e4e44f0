// Checks many drawings at once, one process each, as many at a time as there are cores. Results come in the order of
// the files. Exit status: 0 all are true or free, 1 some are not, 2 a file could not be read.
#include <algorithm>
#include <iostream>

#include "app/recalculation.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"
#include "cli/json_output.h"
#include "cli/workers.h"

namespace quorvel::cli {

namespace {

std::string withoutLineEnd(std::string text) {
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

WorkerVerdict verdictOn(const std::string& file, const Options& options) {
    const app::Language language = app::languageOf(options);
    const auto refuse = [&](const Error& error) -> WorkerVerdict {
        if (options.isJson) return {kExitBadInput, errorJson(file, app::sentence(error, language))};
        return {kExitBadInput, sentenceFor(file, error, language) + '\n'};
    };
    const auto drawing = DrawingSession::open(options, file);
    if (!drawing) return refuse(drawing.error());
    const auto checks = app::checkDimensions((*drawing)->session().host(), options.isStrict);
    if (!checks) return refuse(checks.error());
    const bool untrue = std::ranges::any_of(*checks, [](const auto& check) { return check.untrue(); });
    return {untrue ? kExitFault : kExitOk, options.isJson ? checkJson(file, *checks) : app::checkText(file, *checks)};
}

}  // namespace

Result<int> checkDrawings(const Options& options) {
    const std::vector<std::string>& files = options.files;
    const bool json = options.isJson;
    const auto verdicts = runWorkers({files, " drawings checked", app::languageOf(options),
                                      [&](std::size_t file, int) { return verdictOn(files[file], options); }});
    if (!verdicts) return verdicts.error();
    int status = kExitOk;
    if (json) std::cout << checkJsonHead();
    for (std::size_t i = 0; i < files.size(); ++i) {
        const WorkerVerdict& verdict = (*verdicts)[i];
        const bool unreadable = verdict.status == kExitBadInput;
        (unreadable && !json ? std::cerr : std::cout)
            << (verdict.ended || !json ? verdict.words : errorJson(files[i], withoutLineEnd(verdict.words)))
            << (json && i + 1 < files.size() ? ",\n" : "");
        status = std::max(status, verdict.status);
    }
    if (json) std::cout << "\n]}\n";
    return status;
}

}  // namespace quorvel::cli

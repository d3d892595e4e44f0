// Checks many drawings at once, one process each, as many at a time as there are cores. Results come in the order of
// the files. Exit status: 0 all are true or free, 1 some are not, 2 a file could not be read.
#include <algorithm>

#include "app/recalculation.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"
#include "cli/json_output.h"
#include "cli/verdicts.h"

namespace quorvel::cli {

namespace {

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

Result<int> checkDrawings(const Options& options) { return printVerdicts(options, " drawings checked", verdictOn); }

}  // namespace quorvel::cli

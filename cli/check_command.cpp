#include "cli/check_command.h"

#include <algorithm>
#include <iostream>

#include "app/recalculation.h"
#include "app/script.h"
#include "app/sentences.h"
#include "app/temporary_profile.h"
#include "cli/commands.h"
#include "cli/json_output.h"
#include "cli/workers.h"

namespace quorvel::cli {

namespace {

std::string withoutLineEnd(std::string text) {
    if (text.ends_with('\n')) text.pop_back();
    return text;
}

WorkerVerdict checkOne(const std::string& file, const app::SessionOptions& options, bool json) {
    try {
        const app::TemporaryProfile profile(options);
        app::HeadlessSession session(profile.options());
        session.openDrawing(file);
        for (const std::string& warning : app::warningSentences(session.takeWarnings(), app::Language::english))
            std::cerr << file << ": " << warning << '\n';
        session.start();
        const std::vector<app::DimensionCheck> checks = app::checkDimensions(session);
        const bool stale = std::any_of(checks.begin(), checks.end(), [](const auto& check) { return check.stale(); });
        return {stale ? kExitFault : kExitOk, json ? checkJson(file, checks) : app::checkText(file, checks)};
    } catch (const std::exception& error) {
        const std::string what = error.what();
        const std::string line = what.rfind(file, 0) == 0 ? what : file + ": " + what;
        return {kExitBadInput, json ? errorJson(file, withoutLineEnd(what)) : line + '\n'};
    }
}

}  // namespace

int checkMany(const std::vector<std::string>& files, const app::SessionOptions& options, bool json) {
    const std::vector<WorkerVerdict> verdicts = runWorkers(
        files, " drawings checked", [&](std::size_t file, int) { return checkOne(files[file], options, json); });
    int status = kExitOk;
    if (json) std::cout << "[\n";
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
        const WorkerVerdict& verdict = verdicts[i];
        const bool unreadable = verdict.status == kExitBadInput;
        (unreadable && !json ? std::cerr : std::cout)
            << (verdict.ended || !json ? verdict.words : errorJson(files[i], withoutLineEnd(verdict.words)))
            << (json && i + 1 < verdicts.size() ? ",\n" : "");
        status = std::max(status, verdicts[i].status);
    }
    if (json) std::cout << "\n]\n";
    return status;
}

}  // namespace quorvel::cli

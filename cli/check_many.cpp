#include "cli/check_many.h"

#include <algorithm>
#include <iostream>

#include "cli/borrowed_profile.h"
#include "cli/commands.h"
#include "cli/recalculation.h"
#include "cli/script.h"
#include "cli/workers.h"

namespace quorvel::cli {

namespace {

std::string errorJson(const std::string& file, std::string cause) {
    if (cause.ends_with('\n')) cause.pop_back();
    return writtenJson({{"file", file}, {"error", cause}});
}

WorkerVerdict checkOne(const std::string& file, const SessionOptions& options, bool json) {
    try {
        const BorrowedProfile profile(options);
        Session session(profile.options());
        session.openDrawing(file);
        for (const std::string& warning : session.takeWarnings()) std::cerr << file << ": " << warning << '\n';
        session.start();
        const std::vector<DimensionCheck> checks = checkDimensions(session);
        const bool stale = std::any_of(checks.begin(), checks.end(), [](const auto& check) { return check.stale(); });
        return {stale ? kExitFault : kExitOk, json ? writtenJson(checkJson(file, checks)) : checkText(file, checks)};
    } catch (const std::exception& error) {
        const std::string what = error.what();
        const std::string line = what.rfind(file, 0) == 0 ? what : file + ": " + what;
        return {kExitBadInput, json ? errorJson(file, what) : line + '\n'};
    }
}

}  // namespace

int checkMany(const std::vector<std::string>& files, const SessionOptions& options, bool json) {
    const std::vector<WorkerVerdict> verdicts = runWorkers(
        files, " drawings checked", [&](std::size_t file, int) { return checkOne(files[file], options, json); });
    int status = kExitOk;
    if (json) std::cout << "[\n";
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
        const WorkerVerdict& verdict = verdicts[i];
        const bool unreadable = verdict.status == kExitBadInput;
        (unreadable && !json ? std::cerr : std::cout)
            << (verdict.ended || !json ? verdict.words : errorJson(files[i], verdict.words))
            << (json && i + 1 < verdicts.size() ? ",\n" : "");
        status = std::max(status, verdicts[i].status);
    }
    if (json) std::cout << "\n]\n";
    return status;
}

}  // namespace quorvel::cli

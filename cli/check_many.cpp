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

WorkerVerdict checkOne(const std::string& file, const SessionOptions& options, bool json) {
    try {
        const BorrowedProfile profile(options);
        Session session(profile.options());
        session.openDrawing(file);
        session.start();
        const std::vector<DimensionCheck> checks = checkDimensions(session);
        const bool stale = std::any_of(checks.begin(), checks.end(), [](const auto& check) { return check.stale(); });
        return {stale ? kExitFault : kExitOk, json ? checkJson(file, checks).dump(1) : checkText(file, checks)};
    } catch (const std::exception& error) {
        const std::string what = error.what();
        const std::string line = what.rfind(file, 0) == 0 ? what : file + ": " + what;
        if (json) return {kExitBadInput, Json({{"file", file}, {"error", what}}).dump(1)};
        return {kExitBadInput, line + '\n'};
    }
}

}  // namespace

int checkMany(const std::vector<std::string>& files, const SessionOptions& options, bool json) {
    const std::vector<WorkerVerdict> verdicts = runWorkers(
        files, " drawings checked", [&](std::size_t file, int) { return checkOne(files[file], options, json); });
    int status = kExitOk;
    if (json) std::cout << "[\n";
    for (std::size_t i = 0; i < verdicts.size(); ++i) {
        const bool unreadable = verdicts[i].status == kExitBadInput;
        (unreadable && !json ? std::cerr : std::cout)
            << verdicts[i].words << (json && i + 1 < verdicts.size() ? ",\n" : "");
        status = std::max(status, verdicts[i].status);
    }
    if (json) std::cout << "\n]\n";
    return status;
}

}  // namespace quorvel::cli

// Rebuilds the dimensions that are not true and saves the drawing.
#include <filesystem>
#include <iostream>
#include <set>

#include "app/recalculation.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"
#include "cli/output_paths.h"

namespace quorvel::cli {

namespace {

namespace fs = std::filesystem;

Result<std::vector<app::DimensionCheck>> chooseDimensions(const Options& options, app::HeadlessSession& session) {
    const std::set<std::string> asked(options.ids.begin(), options.ids.end());
    std::set<std::string> unknown = asked;
    std::vector<app::DimensionCheck> chosen;
    Result<std::vector<app::DimensionCheck>> checks = app::checkDimensions(session.host(), false);
    if (!checks) return Error(checks.error()).inFile(options.file);
    for (app::DimensionCheck& check : *checks) {
        unknown.erase(check.name);
        if ((asked.empty() || asked.contains(check.name)) && (check.untrue() || options.isForAll))
            chosen.push_back(std::move(check));
    }
    if (!unknown.empty()) return makeError(ErrorCode::kNoDimension, {*unknown.begin()}).inFile(options.file);
    return chosen;
}

// A drawing in which nothing is rebuilt is written nowhere but to another file, which gets its bytes.
Status save(const Options& options, app::HeadlessSession& session, int rebuilt) {
    std::error_code isAnother;
    if (rebuilt == 0 && !isStandardOutput(options.output) && fs::equivalent(options.file, options.output, isAnother))
        return {};
    const Status saved = session.saveDrawing(options.output);
    tellWarnings(options.output, session.takeWarnings(), session.language());
    return saved;
}

}  // namespace

Result<int> recalculateDrawing(const Options& options) {
    if (options.output.empty() && !options.isDryRun)
        return makeError(ErrorCode::kOptionMissing, {"--output"}).inFile("quorvel recalc");
    const auto drawing = DrawingSession::open(options, options.file);
    if (!drawing) return drawing.error();
    app::HeadlessSession& session = (*drawing)->session();
    const Result<std::vector<app::DimensionCheck>> chosen = chooseDimensions(options, session);
    if (!chosen) return chosen.error();
    if (options.isDryRun) {
        for (const app::DimensionCheck& check : *chosen)
            std::cout << options.file << ": " << app::checkLine(check) << '\n';
        return kExitOk;
    }
    std::vector<doc::ArtId> groups;
    for (const app::DimensionCheck& check : *chosen) groups.push_back(check.group);
    const int rebuilt = app::rebuildDimensions(session, groups);
    if (const Status saved = save(options, session, rebuilt); !saved) return saved.error();
    (isStandardOutput(options.output) ? std::cerr : std::cout) << options.output << ": " << rebuilt << " rebuilt\n";
    return kExitOk;
}

}  // namespace quorvel::cli

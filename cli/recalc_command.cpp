// Rebuilds stale dimensions and saves the drawing.
#include <iostream>
#include <set>

#include "app/recalculation.h"
#include "cli/commands.h"
#include "cli/drawing_input.h"

namespace quorvel::cli {

Result<int> recalculateDrawing(const Options& options) {
    const auto drawing = DrawingSession::open(options, options.file);
    if (!drawing) return drawing.error();
    app::HeadlessSession& session = (*drawing)->session();
    const std::set<std::string> asked(options.ids.begin(), options.ids.end());
    std::set<std::string> unknown = asked;
    std::vector<doc::ArtId> chosen;
    for (const app::DimensionCheck& check : app::checkDimensions(session)) {
        unknown.erase(check.name);
        if ((asked.empty() || asked.contains(check.name)) && (check.stale() || options.isForAll))
            chosen.push_back(check.group);
    }
    if (!unknown.empty()) return makeError(ErrorCode::kNoDimension, {*unknown.begin()}).inFile(options.file);
    const int rebuilt = app::rebuildDimensions(session, chosen);
    if (const Status saved = session.saveDrawing(options.output); !saved) return saved.error();
    std::cout << options.output << ": " << rebuilt << " rebuilt\n";
    return kExitOk;
}

}  // namespace quorvel::cli

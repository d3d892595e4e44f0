// Which dimensions of a drawing no longer say what their art measures, and their rebuilding: the plug-in's own action,
// run on the open drawing, compared with what stood there before.
#pragma once

#include <string>
#include <vector>

#include "app/headless_session.h"

namespace quorvel::app {

constexpr double kMovedLimit = 0.01;  // points: a rebuild that moves less says the same

struct DimensionCheck {
    doc::ArtId group = 0;
    std::string name, kind;
    std::string shownText, rebuiltText;
    double moved = 0;     // how far a rebuild would move the farthest of its points
    int lostLinks = 0;    // links to art that is no longer there
    bool rebuilt = true;  // false: a rebuild leaves it as it is, its art being gone

    bool stale() const { return shownText != rebuiltText || moved > kMovedLimit || lostLinks > 0; }
};

// A dry run on the session's drawing, which is as before when it returns. Art on hidden and locked layers counts as all
// other: what is locked against the mouse is measured all the same.
std::vector<DimensionCheck> checkDimensions(HeadlessSession& session);
// Rebuilds these dimensions, on hidden and locked layers too; they keep their SVG ids. Gives how many.
int rebuildDimensions(HeadlessSession& session, const std::vector<doc::ArtId>& groups);

// A line for each stale dimension.
std::string checkText(const std::string& file, const std::vector<DimensionCheck>& checks);

}  // namespace quorvel::app

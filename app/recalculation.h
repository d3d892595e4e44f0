// Which dimensions of a drawing no longer say what their art measures, and their rebuilding: the plug-in rebuilds each,
// and what it makes is compared with what the drawing shows.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/dimension_list.h"
#include "app/headless_session.h"

namespace quorvel::app {

// Points: a rebuild that moves less than this says the same.
constexpr double kMovedLimit = 0.05;
// Points: how far the coordinates of measured art may be off without making a text untrue. Half the third decimal of a
// millimetre, rounded up: as an optimiser leaves them that writes three decimals.
constexpr double kCoordinateTolerance = 0.0015;

// Gravest first; a dimension has the first one that is the case.
enum class Truth {
    lost,   // a point cannot follow its art, or the record is damaged
    value,  // a rebuild shows another text, or somebody has written one
    moved,  // a rebuild moves a point
    free,   // true, and a point follows no art
    isTrue,
};
const char* truthWord(Truth truth);  // "lost", "value", "moved", "free", "true"

struct DimensionCheck {
    doc::ArtId group = 0;
    std::string name, kind;
    std::string shownText, rebuiltText;
    double moved = 0;  // points: how far a rebuild would move the farthest of its points; infinite when it redraws them
    std::vector<DimensionEnd> ends;
    bool canBeRebuilt = true;  // false: the record is damaged, so that nothing tells whether the text is true
    Truth truth = Truth::isTrue;

    bool untrue() const { return truth != Truth::isTrue && truth != Truth::free; }
};

// A trial on the open drawing, which is as before when it returns. Art on hidden and locked layers counts as all other:
// what is locked against the mouse is measured all the same. strict: any difference counts. While a tool runs tryCheck
// gives nothing, and checkDimensions kNotChecked.
std::optional<std::vector<DimensionCheck>> tryCheck(host::Host& host, bool strict);
Result<std::vector<DimensionCheck>> checkDimensions(host::Host& host, bool strict);
// Rebuilds these dimensions, on hidden and locked layers too; they keep their SVG ids. Gives how many.
int rebuildDimensions(HeadlessSession& session, const std::vector<doc::ArtId>& groups);

// "quorvel-1 straight value "50" -> "60", moved 28.3465, to: deleted"
std::string checkLine(const DimensionCheck& check);
// A line for each dimension that is not true, the file's name before it.
std::string checkText(const std::string& file, const std::vector<DimensionCheck>& checks);

}  // namespace quorvel::app

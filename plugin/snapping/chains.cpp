// Which searches a tool family runs, in which order, at which step: an anchor beats a crossing, that a centre, that a
// path, and the grid acts only where no art is near. The order is all; distances are never compared.
#include <iterator>

#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

using F = SnapFamily;
using S = SnapSearch;
using P = PrefsRecord;

constexpr std::uint8_t kEveryStep = 0xFF, kStep1 = 1 << 1, kStep2 = 1 << 2;
constexpr std::uint8_t kNotStep1 = kEveryStep & ~kStep1, kNotStep2 = kEveryStep & ~kStep2;

}  // namespace

const ChainRow kSnapChains[] = {
    {F::linear, S::anchor, kEveryStep, 5, &P::flUseFcur},
    {F::linear, S::intersection, kEveryStep, 5, &P::flUseFcrs},
    {F::linear, S::center, kEveryStep, 1, &P::flUseFcnt},
    {F::linear, S::path, kEveryStep, 1, &P::flUseFops},
    {F::linear, S::tangentNormal, kStep1, 0, &P::flUseFrad},
    {F::linear, S::grid, kNotStep2, 0, &P::flUseGrid},
    {F::linear, S::grid, kStep2, 0, &P::flUseGrid, &P::flUseFdis},
    {F::linear, S::gridSpacing, kStep2, 0, &P::flUseFdis},

    {F::radius, S::arc, kNotStep1, 1, nullptr},
    {F::radius, S::anchor, kStep1, 1, &P::flUseFcur},
    {F::radius, S::intersection, kStep1, 1, &P::flUseFcrs},
    {F::radius, S::center, kStep1, 1, &P::flUseFcnt},
    {F::radius, S::path, kStep1, 1, &P::flUseFops},
    {F::radius, S::grid, kStep1, 0, &P::flUseGrid},

    {F::diameter, S::arc, kNotStep1, 1, nullptr},
    {F::diameter, S::anchor, kStep1, 1, &P::flUseFcur},
    {F::diameter, S::intersection, kStep1, 1, &P::flUseFcrs},
    {F::diameter, S::center, kStep1, 1, &P::flUseFcnt},
    {F::diameter, S::path, kStep1, 1, &P::flUseFops},
    {F::diameter, S::grid, kStep1, 0, &P::flUseGrid},

    {F::angle, S::straightPick, kNotStep2, 1, nullptr},
    {F::angle, S::anchor, kStep2, 1, &P::flUseFcur},
    {F::angle, S::intersection, kStep2, 1, &P::flUseFcrs},
    {F::angle, S::path, kStep2, 1, &P::flUseFops},
    {F::angle, S::grid, kStep2, 0, &P::flUseGrid},

    {F::fillet, S::filletPick, kEveryStep, 1, nullptr},

    {F::slant, S::anchor, kEveryStep, 1, &P::flUseFcur},
    {F::slant, S::intersection, kEveryStep, 1, &P::flUseFcrs},
    {F::slant, S::center, kEveryStep, 1, &P::flUseFcnt},
    {F::slant, S::path, kEveryStep, 1, &P::flUseFops},
    {F::slant, S::tangentNormal, kStep1, 0, &P::flUseFrad},
    {F::slant, S::grid, kEveryStep, 0, &P::flUseGrid},

    {F::arc, S::anchor, kEveryStep, 1, &P::flUseFcur},
    {F::arc, S::intersection, kEveryStep, 1, &P::flUseFcrs},
    {F::arc, S::center, kEveryStep, 1, &P::flUseFcnt},
    {F::arc, S::path, kEveryStep, 1, &P::flUseFops},
    {F::arc, S::tangentNormal, kStep1, 0, &P::flUseFrad},
    {F::arc, S::grid, kEveryStep, 0, &P::flUseGrid},

    {F::comment, S::anchor, kEveryStep, 1, &P::flUseFcur},
    {F::comment, S::intersection, kEveryStep, 1, &P::flUseFcrs},
    {F::comment, S::center, kEveryStep, 1, &P::flUseFcnt},
    {F::comment, S::path, kEveryStep, 1, &P::flUseFops},
    {F::comment, S::tangentNormal, kStep1, 0, &P::flUseFrad},
    {F::comment, S::grid, kEveryStep, 0, &P::flUseGrid},

    {F::schedule, S::grid, kEveryStep, 0, &P::flUseGrid},
};
const int kSnapChainRowCount = static_cast<int>(std::size(kSnapChains));

bool ChainRowRuns(const ChainRow& row, std::int16_t toolStep) {
    return toolStep >= 0 && toolStep <= 7 && (row.steps >> toolStep & 1) != 0;
}

bool ChainRowIsOn(const ChainRow& row, const PrefsRecord& prefs) {
    if (row.setting != nullptr && prefs.*row.setting == 0) return false;
    return row.unless == nullptr || prefs.*row.unless == 0;
}

void RunChainRow(PluginGlobals* globals, const ChainRow& row, SnapResult* result) {
    RealPoint* point = &globals->liveState.cursorPoint;
    std::int16_t* kind = &result->kind;
    SnapCell* cells = result->cells;
    switch (row.search) {
        case S::anchor:
            return SnapAnchorPoint(point, kind, row.cells, cells);
        case S::intersection:
            return SnapIntersection(point, kind, row.cells, cells);
        case S::center:
            return SnapCenterPoint(point, kind, row.cells, cells);
        case S::path:
            return SnapPath(point, kind, cells);
        case S::tangentNormal:
            return SnapTangentNormal(globals, point, kind);
        case S::grid:
            return SnapToGrid(globals->prefs, point);
        case S::gridSpacing:
            return SnapGridSpacing(globals, point);
        case S::arc:
            return SnapArc(point, kind, cells);
        case S::straightPick:
            return PickStraightSegment(point, kind, cells);
        case S::filletPick:
            return PickFilletSegment(point, kind, cells);
    }
}

SnapResult RunSnapChain(PluginGlobals* globals, SnapFamily family) {
    SnapResult result;
    for (const ChainRow& row : kSnapChains) {
        if (result.kind != kSnapNothing) break;
        if (row.family == family && ChainRowRuns(row, globals->liveState.toolStep) &&
            ChainRowIsOn(row, globals->prefs)) {
            RunChainRow(globals, row, &result);
        }
    }
    return result;
}

}  // namespace quorvel

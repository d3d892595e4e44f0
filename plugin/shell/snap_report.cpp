// Runs each row of a tool's chain on its own, from the cursor as it came; the first that is on, runs now and moves the
// cursor is the one that wins.
#include "plugin/shell/snap_report.h"

#include <cstddef>
#include <iterator>

#include "plugin/settings/prefs_keys.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/tools.h"

namespace quorvel {

namespace {

// In the order of SnapSearch.
constexpr const char* kSearchNames[] = {"anchor", "intersection", "center", "path",     "tangent/normal",
                                        "grid",   "grid spacing", "arc",    "straight", "straight or arc"};
static_assert(std::size(kSearchNames) == static_cast<std::size_t>(SnapSearch::filletPick) + 1);

static_assert(kSnapCellCount <= kSnapReportCells);

// The key of the field that a chain row's switch is.
const char* SettingKey(PluginGlobals* globals, std::int16_t PrefsRecord::*setting) {
    if (setting == nullptr) return nullptr;
    const char* field = reinterpret_cast<const char*>(&(globals->prefs.*setting));
    const std::size_t offset = static_cast<std::size_t>(field - reinterpret_cast<const char*>(globals));
    for (const PrefsKey& key : PrefsKeys())
        if (key.offset == offset) return key.name.data();
    return nullptr;
}

// Grids move the cursor and are no hit of their own: where one has moved it the kind is that of a free point.
QuorvelSnapRow ReportRow(PluginGlobals* globals, const ChainRow& chainRow, const RealPoint& cursor) {
    ToolState* live = &globals->liveState;
    live->cursorPoint = cursor;
    SnapResult result;
    RunChainRow(globals, chainRow, &result);
    QuorvelSnapRow row;
    row.search = kSearchNames[static_cast<std::size_t>(chainRow.search)];
    row.setting = SettingKey(globals, chainRow.setting);
    row.on = ChainRowIsOn(chainRow, globals->prefs);
    row.now = ChainRowRuns(chainRow, live->toolStep);
    row.point = live->cursorPoint;
    row.kind = result.kind;
    if (row.kind == kSnapNothing && !PointsEqual(row.point, cursor)) row.kind = kSnapFree;
    for (const SnapCell& cell : result.cells) {
        if (cell.art == nullptr) break;
        row.arts[row.cellCount] = cell.art;
        row.indices[row.cellCount++] = cell.index;
    }
    return row;
}

}  // namespace

AIErr SnapReport(QuorvelSnapMessage* message) {
    PluginGlobals* globals = gGlobals;
    message->rowCount = 0;
    SnapFamily family{};
    if (!SnapFamilyOfTool(message->tool, &family)) return kNoErr;
    const ToolState kept = globals->liveState;
    globals->liveState = {};
    bool won = false;
    for (int i = 0; i < kSnapChainRowCount && message->rowCount < kSnapReportRows; ++i) {
        if (kSnapChains[i].family != family) continue;
        QuorvelSnapRow row = ReportRow(globals, kSnapChains[i], message->cursor);
        row.wins = !won && row.on && row.now && row.kind != kSnapNothing;
        won = won || row.wins;
        message->rows[message->rowCount++] = row;
    }
    globals->liveState = kept;
    return kNoErr;
}

}  // namespace quorvel

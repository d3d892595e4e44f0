// The tail that the chains of the two-point families share.
#include "plugin/snapping/snap.h"

namespace quorvel {

std::int16_t SnapTwoPoints(PluginGlobals* globals, SnapFamily family) {
    ToolState& live = globals->liveState;
    const SnapResult result = RunSnapChain(globals, family);
    ConstrainDirection(live.cursorModifiers, ToDoublePoint(globals->drawnState.fromPoint), &live.cursorPoint);
    const std::int16_t kind = result.kind != kSnapNothing ? result.kind : static_cast<std::int16_t>(kSnapFree);
    globals->hitKind = static_cast<std::uint16_t>(kind);
    if (live.toolStep != 1) {
        live.fromKind = kind;
        live.fromPoint = live.cursorPoint;
        live.fromCells[0] = result.cells[0];
    }
    live.toKind = kind;
    live.toPoint = live.cursorPoint;
    live.toCells[0] = result.cells[0];
    return kind;
}

}  // namespace quorvel

// Snapping: moving the cursor onto what the drawing offers. A family's chain tries the enabled searches in a fixed
// order; the first that hits moves the point in place and fills the cells. Each search over art
// does nothing when the kind is already nonzero, so that a chain is a list of calls.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// The searches over art of all visible layers (locked and hidden art snaps too). point, kind: in and out. cells:
// cleared by the caller; at most capacity are filled.
void SnapAnchorPoint(RealPoint* point, std::int16_t* kind, int capacity, SnapCell* cells);
void SnapIntersection(RealPoint* point, std::int16_t* kind, int capacity, SnapCell* cells);
void SnapCenterPoint(RealPoint* point, std::int16_t* kind, int capacity, SnapCell* cells);
void SnapPath(RealPoint* point, std::int16_t* kind, SnapCell* cell);
void SnapArc(RealPoint* point, std::int16_t* kind, SnapCell* cell);
// Straight segments only, by GetArtBounds: the Angle tool's pick.
void PickStraightSegment(RealPoint* point, std::int16_t* kind, SnapCell* cell);
// Straight segments and arcs of all layers, hidden ones too: the Fillet tools' pick.
void PickFilletSegment(RealPoint* point, std::int16_t* kind, SnapCell* cell);

// Along the tangent (kind 5) or normal (kind 6) through fromPoint, from toolStep 1 on.
void SnapTangentNormal(PluginGlobals* globals, RealPoint* point, std::int16_t* kind);
// The placement point at steps of flGrDistance from what is measured.
void SnapGridSpacing(PluginGlobals* globals, RealPoint* point);
void SnapToGrid(const PrefsRecord& prefs, RealPoint* point);
// With Shift held: the direction from base to point in steps of an eighth turn, the length kept.
void ConstrainDirection(std::uint16_t modifiers, const DoublePoint& base, RealPoint* point);

// What one run of a family's chain found.
struct SnapResult {
    std::int16_t kind = kSnapNothing;
    SnapCell cells[kSnapCellCount];
};

enum class SnapFamily : std::uint8_t { linear, radius, diameter, angle, fillet, slant, arc, comment, schedule };
enum class SnapSearch : std::uint8_t {
    anchor,
    intersection,
    center,
    path,
    tangentNormal,
    grid,
    gridSpacing,
    arc,
    straightPick,
    filletPick,
};

// One row of the chain table: the family runs this search at these steps.
struct ChainRow {
    SnapFamily family;
    SnapSearch search;
    std::uint8_t steps;                           // bit n: runs at toolStep n
    std::int8_t cells;                            // how many cells it may fill; 0 leaves them empty
    std::int16_t PrefsRecord::*setting;           // runs while this is nonzero; null: always
    std::int16_t PrefsRecord::*unless = nullptr;  // does not run while this is nonzero; null: never
};
extern const ChainRow kSnapChains[];
extern const int kSnapChainRowCount;

// Runs the family's chain on cursorPoint of liveState. The kind is as the searches left it, 0 when none hit; the
// caller does the constraint and what its family does with an empty result.
SnapResult RunSnapChain(PluginGlobals* globals, SnapFamily family);

// May the row run at this step, and is its switch on?
bool ChainRowRuns(const ChainRow& row, std::int16_t toolStep);
bool ChainRowIsOn(const ChainRow& row, const PrefsRecord& prefs);
// Runs one search on cursorPoint of liveState, adding to the result.
void RunChainRow(PluginGlobals* globals, const ChainRow& row, SnapResult* result);

// The whole snap of a family that picks two points (Slant, Comment, Arc before its last step): the chain, then Shift
// about fromPoint as drawn, an empty result made kind 1; then fromPoint (until the press freezes it) and toPoint take
// the cursor. Gives the kind, which hitKind takes too.
std::int16_t SnapTwoPoints(PluginGlobals* globals, SnapFamily family);

// The sums over the selected paths of the visible layers, in points and square points.
double SelectedPathLength();
double SelectedPathArea();

}  // namespace quorvel

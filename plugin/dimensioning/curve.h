// The Curve Dimension tool: a mode of the linear family that measures along a path and draws the dimension line as a
// parallel copy of the measured part.
#pragma once

#include "plugin/shell/globals.h"
#include "plugin/snapping/preview.h"

namespace quorvel {

// The first pair of equal art in fromCells and toCells.
bool SharedPath(const ToolState& state, SnapCell* fromCell, SnapCell* toCell);
// Does the curve case hold: a shared path and no stops?
bool CurveCaseHolds(const ToolState& state);
// Fills workBufferA for the placement point E; side is 0 or 1. False when the path cannot be read.
bool BuildCurveChain(PluginGlobals* globals, const DoublePoint& E, bool showProgress, std::int16_t* side);
// The curve case's share of BuildLinearDimension.
std::int32_t BuildCurveDimension(AIArtHandle oldGroup);
// The curve case's preview at toolStep 2.
void PaintCurvePreview(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn);

}  // namespace quorvel

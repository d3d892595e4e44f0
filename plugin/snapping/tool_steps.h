// The steps of a tool's run that families share: press on the first point, follow the cursor, release on the second,
// and build or wait for the placement. A step that is refused ends the run with a beep.
#pragma once

#include "hostapi/messages.h"
#include "plugin/snapping/preview.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

// Is something under the cursor, and do the two points differ?
bool TwoPointsPicked(const PluginGlobals* globals);
// Mouse Down at step 0; nothing at another step.
void PressFirstPoint(PluginGlobals* globals);
// Track Cursor of a family that picks two points: snap, preview, panel, cursor.
AIErr TrackTwoPoints(SnapFamily family, PreviewPainter painter);
// The line from the first point to the cursor at step 1, nothing where they are equal.
void PaintRubberLine(const PreviewPen& pen, PluginGlobals* globals, ToolState* state, bool isDrawn);

// Mouse Up of a run that ends with the release: builds when mayBuild says so. build: false is a beep.
struct TwoStepRun {
    PreviewPainter painter;
    bool (*mayBuild)(const PluginGlobals* globals);
    bool (*build)();
};
AIErr ReleaseTwoStep(const AIToolMessage* message, const TwoStepRun& run);
// Mouse Up of a run that goes on with the placement, when two points were picked.
AIErr ReleaseIntoPlacing(PreviewPainter painter);

// The picks of two segments (Angle, Fillet): on a hit the points follow, the cells take what was found in all cases.
std::int16_t SnapTwoPicks(PluginGlobals* globals, SnapFamily family);

}  // namespace quorvel

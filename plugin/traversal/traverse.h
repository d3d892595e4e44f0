// Walking the document: the layer loop, the art kinds, the test that keeps searches out of dimension groups, and the
// saved selection. This is where geometry meets the host.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

// Two screen pixels in document units, from the zoom of view 0, read afresh at each call: 2 / zoom, or -2 zoom when the
// zoom is not above 0.
double PickTolerance();
// Is the point inside the rectangle grown by the tolerance, a PickTolerance that a search has read once?
bool PointInPickRect(const RealPoint& point, RealRect rect, double tolerance);

// Does the art have the tag QUORVEL_TOOLCNF? Searches never descend into such a group.
bool IsToolGroup(AIArtHandle art);
bool LayerIsBlocked(AILayerHandle layer);  // hidden or not editable
bool ArtLayerIsBlocked(AIArtHandle art);

// Calls visit(root) for each visible layer from the top; ends at the first error or when stop says so.
template <typename Visit, typename Stop>
AIErr WalkLayers(Visit visit, Stop stop);
// One step down: calls visit on each child in order until an error, the end, or stop.
template <typename Visit, typename Stop>
AIErr WalkChildren(AIArtHandle art, Visit visit, Stop stop);

// A path's segments read pair by pair.
int SegmentCount(AIArtHandle path);
bool ReadSegment(AIArtHandle path, int index, PathSegment* segment);
bool PathIsClosed(AIArtHandle path);
// The segment at index and the one before it (the last one before index 0).
bool ReadSegmentPair(AIArtHandle path, int index, PathSegment* previous, PathSegment* segment);
RealRect TransformBounds(AIArtHandle art);

// Sets or clears the selected attribute of the art, and for groups and compound paths of all that is below.
void SetArtSelected(AIArtHandle art);
void ClearArtSelected(AIArtHandle art);

// What is selected, kept and put back; never nested. Art that was made in between ends up unselected.
void SaveSelection();
void RestoreSelection();

// The area a closed path encloses, without sign; 0 for any other art.
double PathArea(AIArtHandle path);

}  // namespace quorvel

#include "plugin/traversal/walk_layers.inc"

// What every search over the document asks of an art or a layer: is the cursor over it, may it be entered, what are its
// segments. A user meets these answers as "the cursor snaps to the drawing, never to a dimension".
#include "plugin/traversal/traverse.h"

#include <vector>

#include "plugin/shell/suites.h"

namespace quorvel {

double PickTolerance() {
    AIDocumentViewHandle view = nullptr;
    float zoom = 0;
    if (sAIDocumentView->GetNthDocumentView(0, &view) == kNoErr && view != nullptr)
        sAIDocumentView->GetDocumentViewZoom(view, &zoom);
    const double z = zoom;
    return z > 0 ? 2.0 / z : 2.0 * -z;
}

bool PointInPickRect(const RealPoint& point, RealRect rect, double tolerance) {
    const float margin = static_cast<float>(-tolerance);
    sAIRealMath->AIRealRectInset(&rect, margin, margin);
    return sAIRealMath->AIRealPointInRect(&rect, &point) != 0;
}

bool IsToolGroup(AIArtHandle art) {
    const void* value = nullptr;
    return sAITag->GetTag(art, kToolConfigTag, kStringTag, &value) == kNoErr && value != nullptr;
}

bool LayerIsBlocked(AILayerHandle layer) {
    AIBoolean visible = 0, editable = 0;
    sAILayer->GetLayerVisible(layer, &visible);
    sAILayer->GetLayerEditable(layer, &editable);
    return !visible || !editable;
}

bool ArtLayerIsBlocked(AIArtHandle art) {
    AILayerHandle layer = nullptr;
    if (sAIArt->GetLayerOfArt(art, &layer) != kNoErr) return true;
    return LayerIsBlocked(layer);
}

int SegmentCount(AIArtHandle path) {
    std::int16_t count = 0;
    return sAIPath->GetPathSegmentCount(path, &count) == kNoErr ? count : 0;
}

bool ReadSegment(AIArtHandle path, int index, PathSegment* segment) {
    return sAIPath->GetPathSegments(path, static_cast<std::int16_t>(index), 1, segment) == kNoErr;
}

bool PathIsClosed(AIArtHandle path) {
    AIBoolean closed = 0;
    return sAIPath->GetPathClosed(path, &closed) == kNoErr && closed != 0;
}

bool ReadSegmentPair(AIArtHandle path, int index, PathSegment* previous, PathSegment* segment) {
    const int before = index > 0 ? index - 1 : SegmentCount(path) - 1;
    return before >= 0 && ReadSegment(path, before, previous) && ReadSegment(path, index, segment);
}

RealRect TransformBounds(AIArtHandle art) {
    RealRect bounds;
    if (sAIArt->GetArtTransformBounds(art, nullptr, kTransformBoundsWithControls, &bounds) == kNoErr) return bounds;
    // Bounds that hold no point, however far they are grown.
    return {kLargestFloat, -kLargestFloat, -kLargestFloat, kLargestFloat};
}

double PathArea(AIArtHandle path) {
    const int count = SegmentCount(path);
    if (count <= 0 || !PathIsClosed(path)) return 0;
    std::vector<PathSegment> segments(count);
    if (sAIPath->GetPathSegments(path, 0, static_cast<std::int16_t>(count), segments.data()) != kNoErr) return 0;
    return ClosedPathArea(segments.data(), count);
}

}  // namespace quorvel

// Where a dimension goes: the current layer, the layer of the dimension that it replaces, or a layer of its own that is
// made when the drawing has none of that name.
#include "plugin/dimensioning/graphics.h"
#include "plugin/record/examine.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

AILayerHandle CurrentLayer() {
    AILayerHandle layer = nullptr;
    sAILayer->GetCurrentLayer(&layer);
    return layer;
}

// Null only when the host could not make the layer.
AILayerHandle NamedLayer(const char* name) {
    AILayerHandle layer = nullptr;
    sAILayer->GetLayerByTitle(HostString(name), &layer);
    if (layer != nullptr) return layer;
    if (sAILayer->InsertLayer(nullptr, kPlaceAboveAll, &layer) == kNoErr) {
        sAILayer->SetLayerTitle(layer, HostString(name));
    }
    return layer;
}

}  // namespace

AILayerHandle ResolveDimensionLayer(AIArtHandle oldGroup) {
    const PrefsRecord& prefs = gGlobals->prefs;
    if (prefs.flOutLayer != 0) return NamedLayer(prefs.flOutLname);
    AILayerHandle layer = CurrentLayer();
    if (oldGroup != nullptr) sAIArt->GetLayerOfArt(oldGroup, &layer);
    return layer;
}

AIArtHandle BeginDimensionGroup(AIArtHandle oldGroup) {
    AIArtHandle group = nullptr;
    if (oldGroup != nullptr) {
        // In its place, whatever layer new dimensions go to.
        if (ArtLayerIsBlocked(oldGroup)) return nullptr;
        return sAIArt->NewArt(kGroupArt, kPlaceAbove, oldGroup, &group) == kNoErr ? group : nullptr;
    }
    const AILayerHandle layer = ResolveDimensionLayer(nullptr);
    if (layer == nullptr || LayerIsBlocked(layer)) return nullptr;
    AIArtHandle root = nullptr;
    if (sAIArt->GetFirstArtOfLayer(layer, &root) != kNoErr) return nullptr;
    return sAIArt->NewArt(kGroupArt, kPlaceInsideOnTop, root, &group) == kNoErr ? group : nullptr;
}

void EndDimensionGroup(AIArtHandle oldGroup, AIArtHandle group) {
    gGlobals->builtGroup = group;
    if (oldGroup == nullptr) return ReportUnheldEnds(group);
    if (sDimension == nullptr || sDimension->ReplaceGroup(oldGroup, group) != kNoErr) sAIArt->DisposeArt(oldGroup);
}

}  // namespace quorvel

// Object ids: how measured art is named, found again and counted. Where the host answers by tag, the cost is that of
// the art that has the id; elsewhere the usable layers are walked. Both give the same result.
#include <cstdio>
#include <cstring>

#include "plugin/record/dimension_record.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr float kFarthest = 999999.0F;

std::int16_t ArtType(AIArtHandle art) {
    std::int16_t kind = kUnknownArt;
    return sAIArt->GetArtType(art, &kind) == kNoErr ? kind : static_cast<std::int16_t>(kUnknownArt);
}

bool TagEquals(AIArtHandle art, const char* name, const char* value) {
    const void* text = nullptr;
    return sAITag->GetTag(art, name, kStringTag, &text) == kNoErr && text != nullptr &&
           std::strcmp(static_cast<const char*>(text), value) == 0;
}

// A path that is painted and no guide, or a text frame.
bool CanBeMeasured(AIArtHandle art, std::int16_t kind) {
    if (kind == kTextFrameArt) return true;
    if (kind != kPathArt || !IsPaintedVisible(art)) return false;
    AIBoolean guide = 0;
    return sAIPath->GetPathGuide(art, &guide) != kNoErr || !guide;
}

bool ArtIsOnUsableLayer(AIArtHandle art) {
    AILayerHandle layer = nullptr;
    return sAIArt->GetLayerOfArt(art, &layer) == kNoErr && LayerIsUsable(layer);
}

AIArtHandle ParentOf(AIArtHandle art) {
    AIArtHandle parent = nullptr;
    return sArtQuery->GetArtParent(art, &parent) == kNoErr ? parent : nullptr;
}

// Is every art above it a plain group? stopAtTools: and none of them a dimension?
bool StandsInGroups(AIArtHandle art, bool stopAtTools) {
    for (AIArtHandle parent = ParentOf(art); parent != nullptr; parent = ParentOf(parent))
        if (ArtType(parent) != kGroupArt || (stopAtTools && IsDimensionGroup(parent))) return false;
    return true;
}

template <typename Visit>
void WalkUsableRoots(Visit visit) {
    std::int32_t count = 0;
    sAILayer->CountLayers(&count);
    for (std::int32_t i = 0; i < count; ++i) {
        AILayerHandle layer = nullptr;
        AIArtHandle root = nullptr;
        if (sAILayer->GetNthLayer(i, &layer) != kNoErr || !LayerIsUsable(layer)) continue;
        if (sAIArt->GetFirstArtOfLayer(layer, &root) == kNoErr && root != nullptr) visit(root);
    }
}

constexpr auto kNeverStop = [] { return false; };

template <typename Visit>
AIErr WalkMeasurable(AIArtHandle art, const Visit& visit) {
    const std::int16_t kind = ArtType(art);
    if (kind == kGroupArt)
        return WalkChildren(
            art, [&](AIArtHandle child) { return WalkMeasurable(child, visit); }, kNeverStop);
    if (CanBeMeasured(art, kind)) visit(art);
    return kNoErr;
}

AIErr WalkDimensions(AIArtHandle art, std::vector<AIArtHandle>* groups) {
    if (ArtType(art) != kGroupArt) return kNoErr;
    if (IsDimensionGroup(art)) {
        groups->push_back(art);
        return kNoErr;
    }
    return WalkChildren(
        art, [&](AIArtHandle child) { return WalkDimensions(child, groups); }, kNeverStop);
}

// Calls visit on each art of the usable layers that bears the id, in walk order.
template <typename Visit>
void ForEachBearer(std::int32_t id, Visit visit) {
    char value[16];
    std::snprintf(value, sizeof value, "%d", id);
    const AIArtHandle* bearers = nullptr;
    std::int32_t count = 0;
    if (sArtQuery != nullptr && sArtQuery->FindArtByTag(kObjectIdTag, value, &bearers, &count) == kNoErr) {
        const std::vector<AIArtHandle> found(bearers, bearers + count);
        for (AIArtHandle art : found)
            if (ArtIsOnUsableLayer(art) && CanBeMeasured(art, ArtType(art)) && StandsInGroups(art, false)) visit(art);
        return;
    }
    WalkUsableRoots([&](AIArtHandle root) {
        WalkMeasurable(root, [&](AIArtHandle art) {
            if (TagEquals(art, kObjectIdTag, value)) visit(art);
        });
    });
}

RealPoint CentreOfBounds(AIArtHandle art) {
    RealRect bounds;
    sAIArt->GetArtBounds(art, &bounds);
    return {(bounds.left + bounds.right) / 2, (bounds.top + bounds.bottom) / 2};
}

// Has the art an anchor of this index?
bool HasAnchor(AIArtHandle art, std::int32_t index) {
    const std::int16_t kind = ArtType(art);
    if (kind == kPathArt) return index >= 0 && index < SegmentCount(art);
    if (kind != kTextFrameArt) return false;
    std::int32_t type = kPointTextType;
    if (sAITextFrame->GetTextFrameType(art, &type) != kNoErr) return false;
    if (type == kPointTextType) return index == 0;
    AIArtHandle path = nullptr;
    return sAITextFrame->GetPathObject(art, &path) == kNoErr && path != nullptr && index >= 0 &&
           index < SegmentCount(path);
}

}  // namespace

bool LayerIsUsable(AILayerHandle layer) { return !LayerIsBlocked(layer); }

bool IsPaintedVisible(AIArtHandle path) {
    std::int32_t attributes = 0;
    sAIArt->GetArtUserAttr(path, kArtHidden, &attributes);
    if (attributes & kArtHidden) return false;
    AIPathStyle style;
    sAIPathStyle->GetPathStyle(path, &style);
    return style.fillPaint || style.strokePaint;
}

AIArtHandle FindArtById(std::int32_t id, std::int32_t index, const RealPoint& near) {
    float best = kFarthest;
    AIArtHandle winner = nullptr;
    ForEachBearer(id, [&](AIArtHandle art) {
        const RealPoint centre = CentreOfBounds(art);
        const float distance = sAIRealMath->AIRealPointLength(&centre, &near);
        if (distance < best) {
            best = distance;
            winner = art;
        }
    });
    return winner != nullptr && HasAnchor(winner, index) ? winner : nullptr;
}

std::int32_t CountArtWithId(std::int32_t id) {
    std::int32_t count = 0;
    ForEachBearer(id, [&](AIArtHandle) { ++count; });
    return count;
}

std::vector<AIArtHandle> CollectDimensionGroups() {
    std::vector<AIArtHandle> groups;
    const AIArtHandle* bearers = nullptr;
    std::int32_t count = 0;
    if (sArtQuery != nullptr && sArtQuery->FindArtByTag(kToolConfigTag, nullptr, &bearers, &count) == kNoErr) {
        const std::vector<AIArtHandle> found(bearers, bearers + count);
        // Siblings share layer and ancestors, and most dimensions are siblings.
        AIArtHandle sharedParent = nullptr;
        bool reached = false;
        for (AIArtHandle art : found) {
            if (ArtType(art) != kGroupArt) continue;
            const AIArtHandle parent = ParentOf(art);
            if (parent == nullptr || parent != sharedParent)
                reached = ArtIsOnUsableLayer(art) && StandsInGroups(art, true);
            sharedParent = parent;
            if (reached) groups.push_back(art);
        }
        return groups;
    }
    WalkUsableRoots([&](AIArtHandle root) { WalkDimensions(root, &groups); });
    return groups;
}

bool CellAnchor(const SnapCell& cell, RealPoint* anchor) {
    AIArtHandle path = cell.art;
    const std::int16_t kind = ArtType(cell.art);
    if (kind == kTextFrameArt) {
        std::int32_t type = kPointTextType;
        if (sAITextFrame->GetTextFrameType(cell.art, &type) != kNoErr) return false;
        if (type == kPointTextType) return sAITextFrame->GetPointTextAnchor(cell.art, anchor) == kNoErr;
        if (sAITextFrame->GetPathObject(cell.art, &path) != kNoErr || path == nullptr) return false;
    } else if (kind != kPathArt) {
        return false;
    }
    PathSegment segment;
    if (!ReadSegment(path, cell.index, &segment)) return false;
    *anchor = segment.p;
    return true;
}

}  // namespace quorvel

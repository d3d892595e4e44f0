// Object ids: how measured art is named, found again and counted. Where the host answers by tag, the cost is that of
// the art that has the id; elsewhere the usable layers are walked. Both give the same result.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "hostapi/record_additions.h"
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

// As the index compares them: zeros ahead of a number do not count.
bool BearsObjectId(AIArtHandle art, const char* id) {
    const void* tag = nullptr;
    if (sAITag->GetTag(art, kObjectIdTag, kStringTag, &tag) != kNoErr || tag == nullptr) return false;
    const char* text = static_cast<const char*>(tag);
    while (text[0] == '0' && text[1] != 0) ++text;
    return std::strcmp(text, id) == 0;
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

// Is every art above it a group or a compound path? A search enters no other art.
bool CanBeReached(AIArtHandle art) {
    for (AIArtHandle parent = ParentOf(art); parent != nullptr; parent = ParentOf(parent)) {
        const std::int16_t kind = ArtType(parent);
        if (kind != kGroupArt && kind != kCompoundPathArt) return false;
    }
    return true;
}

// Is every art above it a plain group, and none of them a dimension?
bool StandsInPlainGroups(AIArtHandle art) {
    for (AIArtHandle parent = ParentOf(art); parent != nullptr; parent = ParentOf(parent))
        if (ArtType(parent) != kGroupArt || IsDimensionGroup(parent)) return false;
    return true;
}

// visit(root, usable) for each layer.
template <typename Visit>
void WalkRoots(Visit visit) {
    std::int32_t count = 0;
    sAILayer->CountLayers(&count);
    for (std::int32_t i = 0; i < count; ++i) {
        AILayerHandle layer = nullptr;
        AIArtHandle root = nullptr;
        if (sAILayer->GetNthLayer(i, &layer) != kNoErr) continue;
        if (sAIArt->GetFirstArtOfLayer(layer, &root) == kNoErr && root != nullptr) visit(root, LayerIsUsable(layer));
    }
}

constexpr auto kNeverStop = [] { return false; };

bool IsHidden(AIArtHandle art) {
    std::int32_t attributes = 0;
    return sAIArt->GetArtUserAttr(art, kArtHidden, &attributes) == kNoErr && (attributes & kArtHidden) != 0;
}

// visit(art, hidden) for paths and text frames, whether they can be measured or not. hidden: as a member of a hidden
// compound path.
template <typename Visit>
AIErr WalkReachable(AIArtHandle art, bool hidden, const Visit& visit) {
    const std::int16_t kind = ArtType(art);
    if (kind == kGroupArt || kind == kCompoundPathArt) {
        const bool below = kind == kCompoundPathArt && IsHidden(art);
        return WalkChildren(
            art, [&](AIArtHandle child) { return WalkReachable(child, below, visit); }, kNeverStop);
    }
    if (kind == kPathArt || kind == kTextFrameArt) visit(art, hidden);
    return kNoErr;
}

AIErr WalkRecorded(AIArtHandle art, const char* tag, std::vector<AIArtHandle>* groups) {
    if (ArtType(art) != kGroupArt) return kNoErr;
    std::string value;
    if (ReadTag(art, tag, &value)) groups->push_back(art);
    if (IsDimensionGroup(art)) return kNoErr;
    return WalkChildren(
        art, [&](AIArtHandle child) { return WalkRecorded(child, tag, groups); }, kNeverStop);
}

// An art that has an object id, and why it cannot be measured: kLinkHeld when it can.
struct Bearer {
    AIArtHandle art;
    LinkState state;
};

LinkState MeasurableState(AIArtHandle art, bool hidden, bool usable) {
    if (hidden || !CanBeMeasured(art, ArtType(art))) return kLinkUnpainted;
    return usable ? kLinkHeld : kLinkLayer;
}

bool IsInHiddenCompound(AIArtHandle art) {
    const AIArtHandle parent = ParentOf(art);
    return parent != nullptr && ArtType(parent) == kCompoundPathArt && IsHidden(parent);
}

// In walk order.
std::vector<Bearer> FindBearers(std::int32_t id) {
    std::vector<Bearer> bearers;
    char value[16];
    std::snprintf(value, sizeof value, "%d", id);
    const AIArtHandle* arts = nullptr;
    std::int32_t count = 0;
    if (sArtQuery != nullptr && sArtQuery->FindArtByTag(kObjectIdTag, value, &arts, &count) == kNoErr) {
        const std::vector<AIArtHandle> found(arts, arts + count);
        for (AIArtHandle art : found) {
            const std::int16_t kind = ArtType(art);
            if ((kind == kPathArt || kind == kTextFrameArt) && CanBeReached(art))
                bearers.push_back({art, MeasurableState(art, IsInHiddenCompound(art), ArtIsOnUsableLayer(art))});
        }
        return bearers;
    }
    WalkRoots([&](AIArtHandle root, bool usable) {
        WalkReachable(root, false, [&](AIArtHandle art, bool hidden) {
            if (BearsObjectId(art, value)) bearers.push_back({art, MeasurableState(art, hidden, usable)});
        });
    });
    return bearers;
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

FoundArt FindLinkedArt(std::int32_t id, std::int32_t index, const RealPoint& near) {
    float best = kFarthest;
    AIArtHandle winner = nullptr;
    LinkState cause = kLinkDeleted;
    bool anotherHasIt = false;
    for (const Bearer& bearer : FindBearers(id)) {
        if (bearer.state != kLinkHeld) {
            if (cause == kLinkDeleted) cause = bearer.state;
            continue;
        }
        anotherHasIt = anotherHasIt || HasAnchor(bearer.art, index);
        const RealPoint centre = CentreOfBounds(bearer.art);
        const float distance = sAIRealMath->AIRealPointLength(&centre, &near);
        if (distance < best) {
            best = distance;
            winner = bearer.art;
        }
    }
    if (winner == nullptr) return {nullptr, cause};
    if (HasAnchor(winner, index)) return {winner, kLinkHeld};
    return {nullptr, anotherHasIt ? kLinkCopy : kLinkSegment};
}

AIArtHandle FindArtById(std::int32_t id, std::int32_t index, const RealPoint& near) {
    return FindLinkedArt(id, index, near).art;
}

bool IsObjectIdInUse(std::int32_t id) { return !FindBearers(id).empty(); }

std::int32_t CountArtWithId(std::int32_t id) {
    const std::vector<Bearer> bearers = FindBearers(id);
    return static_cast<std::int32_t>(
        std::count_if(bearers.begin(), bearers.end(), [](const Bearer& bearer) { return bearer.state == kLinkHeld; }));
}

namespace {

std::vector<AIArtHandle> CollectGroups(const char* tag) {
    std::vector<AIArtHandle> groups;
    const AIArtHandle* bearers = nullptr;
    std::int32_t count = 0;
    if (sArtQuery != nullptr && sArtQuery->FindArtByTag(tag, nullptr, &bearers, &count) == kNoErr) {
        const std::vector<AIArtHandle> found(bearers, bearers + count);
        // Siblings share layer and ancestors, and most dimensions are siblings.
        AIArtHandle sharedParent = nullptr;
        bool reached = false;
        for (AIArtHandle art : found) {
            if (ArtType(art) != kGroupArt) continue;
            const AIArtHandle parent = ParentOf(art);
            if (parent == nullptr || parent != sharedParent)
                reached = ArtIsOnUsableLayer(art) && StandsInPlainGroups(art);
            sharedParent = parent;
            if (reached) groups.push_back(art);
        }
        return groups;
    }
    WalkRoots([&](AIArtHandle root, bool usable) {
        if (usable) WalkRecorded(root, tag, &groups);
    });
    return groups;
}

}  // namespace

std::vector<AIArtHandle> CollectDimensionGroups() { return CollectGroups(kToolConfigTag); }
std::vector<AIArtHandle> CollectMarkGroups() { return CollectGroups(kMarkTag); }

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

// Which art a search has to look at. A host with an index names it at once, any other host is walked; this is the one
// place that knows which. Both visit in walk order, and what the index gives beyond the tests' reach is sorted
// out by the tests themselves, so that the result is the same to the last bit.
#pragma once

#include <algorithm>
#include <cmath>

#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

enum class LayerScope : std::uint8_t { visible, all };

// Calls visit(art, type) on each path and text frame from art downwards, outside tool groups, in walk order.
template <typename Visit, typename Stop>
AIErr WalkArt(AIArtHandle art, Visit& visit, Stop& stop) {
    std::int16_t type = kUnknownArt;
    const AIErr error = sAIArt->GetArtType(art, &type);
    if (error != kNoErr) return error;
    if (type == kPathArt || type == kTextFrameArt) return visit(art, type);
    if ((type != kGroupArt && type != kCompoundPathArt) || IsToolGroup(art)) return kNoErr;
    return WalkChildren(
        art, [&](AIArtHandle child) { return WalkArt(child, visit, stop); }, stop);
}

template <typename Visit, typename Stop>
AIErr VisitFoundArt(const AIArtHandle* arts, std::int32_t count, Visit& visit, Stop& stop) {
    AIErr error = kNoErr;
    for (std::int32_t i = 0; i < count && error == kNoErr && !stop(); ++i) {
        std::int16_t type = kUnknownArt;
        error = sAIArt->GetArtType(arts[i], &type);
        if (error == kNoErr) error = visit(arts[i], type);
    }
    return error;
}

// A layer's candidates for tests that reach this far around the point: from the index, else all that the layer holds.
template <typename Visit, typename Stop>
AIErr VisitLayerCandidates(AILayerHandle layer, const RealPoint& point, float reach, Visit& visit, Stop& stop) {
    const AIArtHandle* arts = nullptr;
    std::int32_t count = 0;
    if (sArtQuery != nullptr &&
        sArtQuery->FindArtAtPoint(layer, &point, reach, kToolConfigTag, &arts, &count) == kNoErr) {
        return VisitFoundArt(arts, count, visit, stop);
    }
    AIArtHandle root = nullptr;
    const AIErr error = sAIArt->GetFirstArtOfLayer(layer, &root);
    return error == kNoErr && root != nullptr ? WalkArt(root, visit, stop) : error;
}

// The tests round to floats here and there; the index must not be stricter by a last digit.
inline float QueryReach(const RealPoint& point, double reach) {
    const double size = std::max(std::fabs(double{point.h}), std::fabs(double{point.v})) + reach;
    return static_cast<float>(reach + size * 1e-6);
}

// The point is taken by value: a visit may move the cursor, while the question to the index stays as it was put.
template <typename Visit, typename Stop>
AIErr VisitCandidates(LayerScope scope, RealPoint point, double reach, Visit visit, Stop stop) {
    const float queryReach = QueryReach(point, reach);
    std::int32_t count = 0;
    AIErr error = sAILayer->CountLayers(&count);
    for (std::int32_t i = 0; i < count && error == kNoErr && !stop(); ++i) {
        AILayerHandle layer = nullptr;
        error = sAILayer->GetNthLayer(i, &layer);
        AIBoolean visible = 1;
        if (error == kNoErr && scope == LayerScope::visible) error = sAILayer->GetLayerVisible(layer, &visible);
        if (error == kNoErr && visible) error = VisitLayerCandidates(layer, point, queryReach, visit, stop);
    }
    return error;
}

// A path of one anchor is hit by that anchor alone, closed or not.
constexpr int kSmallestPair = 2;

// A path's segments in order, fetched from the host a block at a time.
struct SegmentBlock {
    static constexpr int kCapacity = 32;
    AIArtHandle path = nullptr;
    int count = 0;  // of the whole path
    int first = 0, held = 0;
    PathSegment segments[kCapacity];
};

// Null when the host refuses: the path has no further segments then.
inline const PathSegment* SegmentAt(SegmentBlock* block, int index) {
    if (index < block->first || index >= block->first + block->held) {
        const int wanted = std::min(SegmentBlock::kCapacity, block->count - index);
        block->held = 0;
        if (sAIPath->GetPathSegments(block->path, static_cast<std::int16_t>(index), static_cast<std::int16_t>(wanted),
                                     block->segments) != kNoErr) {
            return nullptr;
        }
        block->first = index;
        block->held = wanted;
    }
    return &block->segments[index - block->first];
}

// The index of the first segment that, with the one before it, passes test(previous, segment, index); the closing pair
// of a closed path comes last with index 0. -1 for none.
template <typename Test>
int FindSegmentPair(AIArtHandle path, int count, Test test) {
    SegmentBlock block;
    block.path = path;
    block.count = count;
    if (count < 1) return -1;
    const PathSegment* segment = SegmentAt(&block, 0);
    if (segment == nullptr) return -1;
    const PathSegment first = *segment;
    PathSegment previous = first;
    for (int i = 1; i < count; ++i) {
        segment = SegmentAt(&block, i);
        if (segment == nullptr) return -1;
        if (test(previous, *segment, i)) return i;
        previous = *segment;
    }
    return PathIsClosed(path) && test(previous, first, 0) ? 0 : -1;
}

}  // namespace quorvel

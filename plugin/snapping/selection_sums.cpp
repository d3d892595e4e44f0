// How long and how large the selection is: the sums that the length and area comments write and the information panel
// shows. Both walk the visible layers and pass over dimensions, whose own lines are never summed.
#include "plugin/shell/suites.h"
#include "plugin/snapping/candidates.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

// A member of a compound path is a hole when it lies inside the compound's bounds shrunk by this.
constexpr float kHoleMargin = 0.1f;
constexpr double kSmallestCompound = 0.2;

bool IsSelected(AIArtHandle art) {
    std::int32_t attributes = 0;
    return sAIArt->GetArtUserAttr(art, kArtSelected, &attributes) == kNoErr && (attributes & kArtSelected) != 0;
}

std::int16_t SegmentSelection(AIArtHandle path, int index) {
    std::int16_t selected = kSegmentNotSelected;
    if (sAIPath->GetPathSegmentSelected(path, static_cast<std::int16_t>(index), &selected) != kNoErr) {
        return kSegmentNotSelected;
    }
    return selected;
}

bool LeavingSideSelected(std::int16_t selection) {
    return selection == kSegmentPointSelected || selection == kSegmentOutSelected ||
           selection == kSegmentInAndOutSelected;
}

bool ArrivingSideSelected(std::int16_t selection) {
    return selection == kSegmentPointSelected || selection == kSegmentInSelected ||
           selection == kSegmentInAndOutSelected;
}

double SelectedStretches(const BezierBasisTables& tables, AIArtHandle path) {
    double length = 0.0;
    const int count = SegmentCount(path);
    FindSegmentPair(path, count, [&](const PathSegment& s, const PathSegment& t, int index) {
        const int previous = index > 0 ? index - 1 : count - 1;
        if (LeavingSideSelected(SegmentSelection(path, previous)) &&
            ArrivingSideSelected(SegmentSelection(path, index))) {
            length += SegmentLength(tables, s, t, nullptr);
        }
        return false;
    });
    return length;
}

bool LiesStrictlyInside(const RealRect& inner, const RealRect& outer) {
    return inner.left > outer.left && inner.right < outer.right && inner.top < outer.top && inner.bottom > outer.bottom;
}

bool IsHole(AIArtHandle path, AIArtHandle compound) {
    if (compound == nullptr) return false;
    RealRect outer = TransformBounds(compound);
    const double width = double{outer.right} - outer.left, height = double{outer.top} - outer.bottom;
    if (!(width > kSmallestCompound) || !(height > kSmallestCompound)) return false;
    sAIRealMath->AIRealRectInset(&outer, kHoleMargin, kHoleMargin);
    return LiesStrictlyInside(TransformBounds(path), outer);
}

// compound: the compound path that art is a member of, null outside.
AIErr AddArea(AIArtHandle art, AIArtHandle compound, double* total) {
    std::int16_t type = kUnknownArt;
    const AIErr error = sAIArt->GetArtType(art, &type);
    if (error != kNoErr) return error;
    if (type == kPathArt) {
        if (IsSelected(art)) *total += IsHole(art, compound) ? -PathArea(art) : PathArea(art);
        return kNoErr;
    }
    if ((type != kGroupArt && type != kCompoundPathArt) || IsToolGroup(art)) return kNoErr;
    const AIArtHandle parent = type == kCompoundPathArt ? art : compound;
    return WalkChildren(
        art, [&](AIArtHandle child) { return AddArea(child, parent, total); }, [] { return false; });
}

}  // namespace

double SelectedPathLength() {
    const BezierBasisTables& tables = gGlobals->bezierTables;
    double length = 0.0;
    auto visit = [&](AIArtHandle art, std::int16_t type) {
        if (type == kPathArt && IsSelected(art)) length += SelectedStretches(tables, art);
        return kNoErr;
    };
    auto never = [] { return false; };
    WalkLayers([&](AIArtHandle root) { return WalkArt(root, visit, never); }, never);
    return length;
}

double SelectedPathArea() {
    double total = 0.0;
    WalkLayers([&](AIArtHandle root) { return AddArea(root, nullptr, &total); }, [] { return false; });
    return total;
}

}  // namespace quorvel

// The suites of paths: their segments and their style.
#include <algorithm>
#include <cmath>

#include "host/host_state.h"

namespace quorvel::host {

namespace {

const doc::PathData& pathOf(AIArtHandle handle) {
    const doc::Art& art = artOf(handle);
    require(art.kind == kPathArt && art.path != nullptr);
    return *art.path;
}

// A count is 16 bits wide: later segments stay in the drawing but the plug-in cannot see them. Changing
// such a path is refused, since it would tear it.
bool wholeCount(AIArtHandle path) { return pathOf(path).segments.size() <= INT16_MAX; }

AIErr getPathSegmentCount(AIArtHandle path, std::int16_t* count) {
    deref(count) = static_cast<std::int16_t>(std::min<std::size_t>(pathOf(path).segments.size(), INT16_MAX));
    return kNoErr;
}

AIErr setPathSegmentCount(AIArtHandle path, std::int16_t count) {
    pathOf(path);
    require(count >= 0 && wholeCount(path));
    require(changeDocument([&](doc::Document& document) {
        return document.setSegmentCount(artOf(path).id, static_cast<std::size_t>(count));
    }));
    return kNoErr;
}

AIErr getPathSegments(AIArtHandle path, std::int16_t first, std::int16_t count, PathSegment* segments) {
    const std::vector<PathSegment>& all = pathOf(path).segments;
    require(segments != nullptr && first >= 0 && count >= 0 && static_cast<std::size_t>(first) + count <= all.size());
    std::copy_n(all.begin() + first, count, segments);
    return kNoErr;
}

bool finitePoint(const RealPoint& point) { return std::isfinite(point.h) && std::isfinite(point.v); }

AIErr setPathSegments(AIArtHandle path, std::int16_t first, std::int16_t count, const PathSegment* segments) {
    require(segments != nullptr && first >= 0 && count >= 0);
    require(static_cast<std::size_t>(first) <= pathOf(path).segments.size() && wholeCount(path));
    require(first + count <= INT16_MAX);
    const std::span<const PathSegment> written(segments, static_cast<std::size_t>(count));
    for (const PathSegment& segment : written)  // a file has no word for what is not a number
        require(finitePoint(segment.p) && finitePoint(segment.in) && finitePoint(segment.out));
    require(changeDocument([&](doc::Document& document) {
        return document.setSegments(artOf(path).id, static_cast<std::size_t>(first), written);
    }));
    return kNoErr;
}

AIErr getPathClosed(AIArtHandle path, AIBoolean* closed) {
    deref(closed) = pathOf(path).closed;
    return kNoErr;
}

AIErr setPathClosed(AIArtHandle path, AIBoolean closed) {
    pathOf(path);
    require(changeDocument([&](doc::Document& document) { return document.setClosed(artOf(path).id, closed != 0); }));
    return kNoErr;
}

AIErr getPathGuide(AIArtHandle path, AIBoolean* guide) {
    deref(guide) = pathOf(path).guide;
    return kNoErr;
}

AIErr getPathSegmentSelected(AIArtHandle path, std::int16_t index, std::int16_t* selected) {
    const doc::PathData& data = pathOf(path);
    require(index >= 0 && static_cast<std::size_t>(index) < data.segments.size());
    const auto at = static_cast<std::size_t>(index);
    const std::int16_t whole = artOf(path).selected ? kSegmentPointSelected : kSegmentNotSelected;
    deref(selected) = at < data.segmentSelection.size() ? data.segmentSelection[at] : whole;
    return kNoErr;
}

AIErr setPathSegmentSelected(AIArtHandle path, std::int16_t index, std::int16_t selected) {
    require(index >= 0 && static_cast<std::size_t>(index) < pathOf(path).segments.size());
    require(selected >= kSegmentNotSelected && selected <= kSegmentInAndOutSelected);
    require(changeDocument([&](doc::Document& document) {
        return document.setSegmentSelected(artOf(path).id, static_cast<std::size_t>(index),
                                           static_cast<AISegmentSelection>(selected));
    }));
    return kNoErr;
}

AIErr getPathStyle(AIArtHandle path, AIPathStyle* style) {
    const doc::StylePtr& own = pathOf(path).style;
    deref(style) = own != nullptr ? *own : theHost().currentStyle;
    return kNoErr;
}

AIErr setPathStyle(AIArtHandle path, const AIPathStyle* style) {
    pathOf(path);
    require(style != nullptr && std::isfinite(style->strokeWidth) && std::isfinite(style->miterLimit));
    require(changeDocument([&](doc::Document& document) { return document.setStyle(artOf(path).id, *style); }));
    return kNoErr;
}

AIErr getCurrentPathStyle(AIPathStyle* style) {
    deref(style) = theHost().currentStyle;
    return kNoErr;
}

}  // namespace

SuiteRecord pathSuite() {
    static const AIPathSuite suite = [] {
        auto s = refusingSuite<AIPathSuite>();
        s.GetPathSegmentCount = slot<getPathSegmentCount>;
        s.SetPathSegmentCount = slot<setPathSegmentCount>;
        s.GetPathSegments = slot<getPathSegments>;
        s.SetPathSegments = slot<setPathSegments>;
        s.GetPathClosed = slot<getPathClosed>;
        s.SetPathClosed = slot<setPathClosed>;
        s.GetPathGuide = slot<getPathGuide>;
        s.GetPathSegmentSelected = slot<getPathSegmentSelected>;
        s.SetPathSegmentSelected = slot<setPathSegmentSelected>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord pathStyleSuite() {
    static const AIPathStyleSuite suite = [] {
        auto s = refusingSuite<AIPathStyleSuite>();
        s.GetPathStyle = slot<getPathStyle>;
        s.SetPathStyle = slot<setPathStyle>;
        s.GetCurrentPathStyle = slot<getCurrentPathStyle>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host

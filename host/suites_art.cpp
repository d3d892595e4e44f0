// The suites over the drawing: art and its tree, layers, paths and their style, tags, transforming, and the questions
// that the index answers.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "host/bounds.h"
#include "host/code_page.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

// --- art
// ---------------------------------------------------------------------------------------------------------------

AIErr newArt(std::int16_t kind, std::int16_t placement, AIArtHandle prep, AIArtHandle* art) {
    require(art != nullptr && (kind == kGroupArt || kind == kPathArt));
    const Placement place = openPlacement(placement, prep);
    const ArtId made = changeDocument(
        [&](Document& document) { return document.insertArt(static_cast<AIArtType>(kind), place.order, place.prep); });
    require(made != 0);
    *art = artHandle(made);
    return kNoErr;
}

AIErr disposeArt(AIArtHandle handle) {
    const Art& art = artOf(handle);
    require(art.parent != 0);  // a layer keeps its root
    require(changeDocument([&](Document& document) { return document.removeArt(art.id); }));
    return kNoErr;
}

AIErr getFirstArtOfLayer(AILayerHandle layer, AIArtHandle* art) {
    require(art != nullptr);
    const Document& document = theDocument();
    const Layer* found = layer == nullptr ? document.layer(document.currentLayer()) : &layerOf(layer);
    *art = artHandle(given(found).root);
    return kNoErr;
}

AIErr getLayerOfArt(AIArtHandle art, AILayerHandle* layer) {
    given(layer) = layerHandle(theDocument().layerOf(artOf(art).id));
    return kNoErr;
}

AIErr getArtType(AIArtHandle art, std::int16_t* kind) {
    given(kind) = artOf(art).kind;
    return kNoErr;
}

AIErr getArtUserAttr(AIArtHandle handle, std::int32_t mask, std::int32_t* attributes) {
    const Art& art = artOf(handle);
    const std::int32_t all =
        (art.selected ? kArtSelected : 0) | (art.locked ? kArtLocked : 0) | (art.hidden ? kArtHidden : 0);
    given(attributes) = all & mask;
    return kNoErr;
}

AIErr setArtUserAttr(AIArtHandle handle, std::int32_t mask, std::int32_t attributes) {
    const ArtId id = artOf(handle).id;
    const bool done = changeDocument([&](Document& document) {
        bool all = true;
        if (mask & kArtSelected) all = document.setSelected(id, attributes & kArtSelected) && all;
        if (mask & kArtLocked) all = document.setLocked(id, attributes & kArtLocked) && all;
        if (mask & kArtHidden) all = document.setHidden(id, attributes & kArtHidden) && all;
        return all;
    });
    require(done);
    return kNoErr;
}

AIErr getArtFirstChild(AIArtHandle art, AIArtHandle* child) {
    given(child) = artHandle(artOf(art).firstChild);
    return kNoErr;
}

AIErr getArtSibling(AIArtHandle art, AIArtHandle* sibling) {
    given(sibling) = artHandle(artOf(art).below);
    return kNoErr;
}

AIErr getArtBounds(AIArtHandle art, RealRect* bounds) {
    given(bounds) = theDocument().bounds(artOf(art).id);
    return kNoErr;
}

RealRect transformedBounds(const Document& document, const Art& art, const RealMatrix& matrix) {
    RealRect box = emptyRect();
    if (art.path != nullptr) {
        std::vector<PathSegment> moved = art.path->segments;
        for (PathSegment& segment : moved) {
            segment.p = transformPoint(matrix, segment.p);
            segment.in = transformPoint(matrix, segment.in);
            segment.out = transformPoint(matrix, segment.out);
        }
        return pathControlBounds(moved);
    }
    if (art.firstChild == 0) return transformRect(matrix, document.controlBounds(art.id));
    for (ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
        box = uniteRects(box, transformedBounds(document, *document.find(child), matrix));
    return box;
}

AIErr getArtTransformBounds(AIArtHandle handle, const RealMatrix* matrix, std::int32_t options, RealRect* bounds) {
    require(bounds != nullptr);
    const Art& art = artOf(handle);
    const Document& document = theDocument();
    if (matrix == nullptr) {
        *bounds = options & kTransformBoundsWithControls ? document.controlBounds(art.id) : document.bounds(art.id);
    } else {
        *bounds = options & kTransformBoundsWithControls ? transformedBounds(document, art, *matrix)
                                                         : transformRect(*matrix, document.bounds(art.id));
    }
    return kNoErr;
}

// --- layers
// --------------------------------------------------------------------------------------------------------------

AIErr countLayers(std::int32_t* count) {
    given(count) = static_cast<std::int32_t>(theDocument().layers().size());
    return kNoErr;
}

AIErr getNthLayer(std::int32_t index, AILayerHandle* layer) {
    const std::vector<LayerId>& layers = theDocument().layers();
    require(index >= 0 && static_cast<std::size_t>(index) < layers.size());
    given(layer) = layerHandle(layers[index]);
    return kNoErr;
}

AIErr getCurrentLayer(AILayerHandle* layer) {
    given(layer) = layerHandle(theDocument().currentLayer());
    return kNoErr;
}

AIErr getLayerByTitle(AIUnicodeStringRef title, AILayerHandle* layer) {
    const std::string wanted = utf8Of(title);
    const Document& document = theDocument();
    const auto bears = [&](LayerId id) { return document.layer(id)->title == wanted; };
    const auto found = std::find_if(document.layers().begin(), document.layers().end(), bears);
    given(layer) = found == document.layers().end() ? nullptr : layerHandle(*found);
    return kNoErr;
}

AIErr insertLayer(AILayerHandle prep, std::int16_t placement, AILayerHandle* layer) {
    require(layer != nullptr && (placement == kPlaceAboveAll || placement == kPlaceAbove));
    const LayerId above = placement == kPlaceAbove ? layerOf(prep).id : 0;
    const LayerId made = changeDocument([&](Document& document) {
        const LayerId current = document.currentLayer();
        const LayerId inserted = document.insertLayer("Layer " + std::to_string(document.layers().size() + 1), above);
        if (current != 0) document.setCurrentLayer(current);  // a new layer is not at once the current one
        return inserted;
    });
    require(made != 0);
    *layer = layerHandle(made);
    return kNoErr;
}

AIErr setLayerTitle(AILayerHandle layer, AIUnicodeStringRef title) {
    const LayerId id = layerOf(layer).id;
    const std::string text = utf8Of(title);
    require(changeDocument([&](Document& document) { return document.setLayerTitle(id, text); }));
    return kNoErr;
}

AIErr getLayerVisible(AILayerHandle layer, AIBoolean* visible) {
    given(visible) = layerOf(layer).visible;
    return kNoErr;
}

AIErr getLayerEditable(AILayerHandle layer, AIBoolean* editable) {
    given(editable) = layerOf(layer).editable;
    return kNoErr;
}

// --- paths
// ---------------------------------------------------------------------------------------------------------------

const PathData& pathOf(AIArtHandle handle) {
    const Art& art = artOf(handle);
    require(art.kind == kPathArt && art.path != nullptr);
    return *art.path;
}

// A count is 16 bits wide: what lies behind stays in the drawing and is not seen. A change of the part that is seen
// would tear such a path, and is refused.
bool wholeCount(AIArtHandle path) { return pathOf(path).segments.size() <= INT16_MAX; }

AIErr getPathSegmentCount(AIArtHandle path, std::int16_t* count) {
    given(count) = static_cast<std::int16_t>(std::min<std::size_t>(pathOf(path).segments.size(), INT16_MAX));
    return kNoErr;
}

AIErr setPathSegmentCount(AIArtHandle path, std::int16_t count) {
    pathOf(path);
    require(count >= 0 && wholeCount(path));
    require(changeDocument(
        [&](Document& document) { return document.setSegmentCount(artOf(path).id, static_cast<std::size_t>(count)); }));
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
    require(changeDocument([&](Document& document) {
        return document.setSegments(artOf(path).id, static_cast<std::size_t>(first), written);
    }));
    return kNoErr;
}

AIErr getPathClosed(AIArtHandle path, AIBoolean* closed) {
    given(closed) = pathOf(path).closed;
    return kNoErr;
}

AIErr setPathClosed(AIArtHandle path, AIBoolean closed) {
    pathOf(path);
    require(changeDocument([&](Document& document) { return document.setClosed(artOf(path).id, closed != 0); }));
    return kNoErr;
}

AIErr getPathGuide(AIArtHandle path, AIBoolean* guide) {
    given(guide) = pathOf(path).guide;
    return kNoErr;
}

AIErr getPathSegmentSelected(AIArtHandle path, std::int16_t index, std::int16_t* selected) {
    const PathData& data = pathOf(path);
    require(index >= 0 && static_cast<std::size_t>(index) < data.segments.size());
    const auto at = static_cast<std::size_t>(index);
    const std::int16_t whole = artOf(path).selected ? kSegmentPointSelected : kSegmentNotSelected;
    given(selected) = at < data.segmentSelection.size() ? data.segmentSelection[at] : whole;
    return kNoErr;
}

AIErr setPathSegmentSelected(AIArtHandle path, std::int16_t index, std::int16_t selected) {
    require(index >= 0 && static_cast<std::size_t>(index) < pathOf(path).segments.size());
    require(selected >= kSegmentNotSelected && selected <= kSegmentInAndOutSelected);
    require(changeDocument([&](Document& document) {
        return document.setSegmentSelected(artOf(path).id, static_cast<std::size_t>(index),
                                           static_cast<AISegmentSelection>(selected));
    }));
    return kNoErr;
}

AIErr getPathStyle(AIArtHandle path, AIPathStyle* style) {
    const StylePtr& own = pathOf(path).style;
    given(style) = own != nullptr ? *own : theHost().currentStyle;
    return kNoErr;
}

AIErr setPathStyle(AIArtHandle path, const AIPathStyle* style) {
    pathOf(path);
    require(style != nullptr && std::isfinite(style->strokeWidth) && std::isfinite(style->miterLimit));
    require(changeDocument([&](Document& document) { return document.setStyle(artOf(path).id, *style); }));
    return kNoErr;
}

AIErr getCurrentPathStyle(AIPathStyle* style) {
    given(style) = theHost().currentStyle;
    return kNoErr;
}

// --- tags and transforming
// -------------------------------------------------------------------------------------------------

void requireStringTag(const char* name, const char* type) {
    require(name != nullptr && *name != 0 && type != nullptr && std::strcmp(type, "string") == 0);
}

// A group that bears a record gets an id of its own, by which commands and other programs can speak of it.
void nameTaggedGroup(Document& document, const Art& art) {
    if (art.kind != kGroupArt || !art.svgId.empty() || art.parent == 0) return;
    std::uint32_t& number = theHost().lastGroupNumber;
    std::string name;
    do {
        name = "quorvel-" + std::to_string(++number);
    } while (document.svgIdTaken(name));
    document.setSvgId(art.id, name);
}

AIErr setTag(AIArtHandle art, const char* name, const char* type, const void* value) {
    requireStringTag(name, type);
    require(value != nullptr);
    const ArtId id = artOf(art).id;
    const auto* text = static_cast<const char*>(value);
    require(changeDocument([&](Document& document) {
        nameTaggedGroup(document, *document.find(id));
        return document.setTag(id, name, text);
    }));
    return kNoErr;
}

AIErr getTag(AIArtHandle art, const char* name, const char* type, const void** value) {
    requireStringTag(name, type);
    require(value != nullptr);
    const std::string* text = theDocument().tag(artOf(art).id, name);
    if (text == nullptr) {
        *value = nullptr;
        return kNoErr;
    }
    // A copy, since setting another tag may move the texts of an art.
    *value = theHost().arena.texts.keep(*text);
    return kNoErr;
}

AIErr removeTag(AIArtHandle art, const char* name) {
    require(name != nullptr);
    const ArtId id = artOf(art).id;
    if (theDocument().tag(id, name) == nullptr) return kNoErr;
    require(changeDocument([&](Document& document) { return document.removeTag(id, name); }));
    return kNoErr;
}

AIErr transformArt(AIArtHandle art, const RealMatrix* matrix, float lineScale, std::int32_t options) {
    const ArtId id = artOf(art).id;
    require(isFinite(given(matrix)) && std::isfinite(lineScale));
    if ((options & kTransformObjects) == 0) return kNoErr;  // nothing else is there to be transformed
    require(changeDocument([&](Document& document) { return document.transform(id, *matrix, lineScale); }));
    return kNoErr;
}

// --- questions to the index
// ------------------------------------------------------------------------------------------------

AIErr giveFound(const std::vector<ArtId>& found, const AIArtHandle** arts, std::int32_t* count) {
    std::vector<AIArtHandle>& handles = theHost().arena.foundArt;
    handles.clear();
    handles.reserve(found.size());
    for (const ArtId id : found) handles.push_back(artHandle(id));
    *arts = handles.data();
    *count = static_cast<std::int32_t>(handles.size());
    return kNoErr;
}

AIErr findArtAtPoint(AILayerHandle layer, const RealPoint* point, float tolerance, const char* excludeUnder,
                     const AIArtHandle** arts, std::int32_t* count) {
    require(point != nullptr && arts != nullptr && count != nullptr);
    const LayerId id = layerOf(layer).id;
    std::vector<ArtId> found;
    theHost().artIndex->findAtPoint(id, *point, tolerance, excludeUnder != nullptr ? excludeUnder : "", &found);
    return giveFound(found, arts, count);
}

AIErr findArtByTag(const char* name, const char* value, const AIArtHandle** arts, std::int32_t* count) {
    require(name != nullptr && arts != nullptr && count != nullptr);
    theDocument();
    std::vector<ArtId> found;
    const auto wanted = value != nullptr ? std::optional<std::string_view>(value) : std::nullopt;
    theHost().artIndex->findByTag(name, wanted, &found);
    return giveFound(found, arts, count);
}

AIErr getArtParent(AIArtHandle art, AIArtHandle* parent) {
    given(parent) = artHandle(artOf(art).parent);
    return kNoErr;
}

// The document's own generation in the high bits, so that another drawing never answers the same.
AIErr getChangeCount(std::uint64_t* count) {
    given(count) = std::uint64_t{theHost().documentSerial} << 48 | theDocument().changeCount();
    return kNoErr;
}

}  // namespace

SuiteRecord artSuite() {
    static const AIArtSuite suite = [] {
        auto s = refusingSuite<AIArtSuite>();
        s.NewArt = served<newArt>;
        s.DisposeArt = served<disposeArt>;
        s.GetFirstArtOfLayer = served<getFirstArtOfLayer>;
        s.GetLayerOfArt = served<getLayerOfArt>;
        s.GetArtType = served<getArtType>;
        s.GetArtUserAttr = served<getArtUserAttr>;
        s.SetArtUserAttr = served<setArtUserAttr>;
        s.GetArtFirstChild = served<getArtFirstChild>;
        s.GetArtSibling = served<getArtSibling>;
        s.GetArtBounds = served<getArtBounds>;
        s.GetArtTransformBounds = served<getArtTransformBounds>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord layerSuite() {
    static const AILayerSuite suite = [] {
        auto s = refusingSuite<AILayerSuite>();
        s.CountLayers = served<countLayers>;
        s.GetNthLayer = served<getNthLayer>;
        s.GetCurrentLayer = served<getCurrentLayer>;
        s.GetLayerByTitle = served<getLayerByTitle>;
        s.InsertLayer = served<insertLayer>;
        s.SetLayerTitle = served<setLayerTitle>;
        s.GetLayerVisible = served<getLayerVisible>;
        s.GetLayerEditable = served<getLayerEditable>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord pathSuite() {
    static const AIPathSuite suite = [] {
        auto s = refusingSuite<AIPathSuite>();
        s.GetPathSegmentCount = served<getPathSegmentCount>;
        s.SetPathSegmentCount = served<setPathSegmentCount>;
        s.GetPathSegments = served<getPathSegments>;
        s.SetPathSegments = served<setPathSegments>;
        s.GetPathClosed = served<getPathClosed>;
        s.SetPathClosed = served<setPathClosed>;
        s.GetPathGuide = served<getPathGuide>;
        s.GetPathSegmentSelected = served<getPathSegmentSelected>;
        s.SetPathSegmentSelected = served<setPathSegmentSelected>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord pathStyleSuite() {
    static const AIPathStyleSuite suite = [] {
        auto s = refusingSuite<AIPathStyleSuite>();
        s.GetPathStyle = served<getPathStyle>;
        s.SetPathStyle = served<setPathStyle>;
        s.GetCurrentPathStyle = served<getCurrentPathStyle>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord tagSuite() {
    static const AITagSuite suite = [] {
        auto s = refusingSuite<AITagSuite>();
        s.SetTag = served<setTag>;
        s.GetTag = served<getTag>;
        s.RemoveTag = served<removeTag>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord transformArtSuite() {
    static const AITransformArtSuite suite = [] {
        auto s = refusingSuite<AITransformArtSuite>();
        s.TransformArt = served<transformArt>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord artQuerySuite() {
    static const AIArtQuerySuite suite = [] {
        auto s = refusingSuite<AIArtQuerySuite>();
        s.FindArtAtPoint = served<findArtAtPoint>;
        s.FindArtByTag = served<findArtByTag>;
        s.GetArtParent = served<getArtParent>;
        s.GetChangeCount = served<getChangeCount>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host

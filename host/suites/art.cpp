// The suites over the drawing: art and its tree, layers, paths and their style, tags, transforming, and the questions
// that the index answers.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

#include "document/bounds.h"
#include "host/code_page.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

// --- art
// ---------------------------------------------------------------------------------------------------------------

AIErr newArt(std::int16_t kind, std::int16_t placement, AIArtHandle prep, AIArtHandle* art) {
    require(art != nullptr && (kind == kGroupArt || kind == kPathArt));
    const Placement place = openPlacement(placement, prep);
    const doc::ArtId made = changeDocument([&](doc::Document& document) {
        return document.insertArt(static_cast<AIArtType>(kind), place.order, place.prep);
    });
    require(made != 0);
    *art = artHandle(made);
    return kNoErr;
}

AIErr disposeArt(AIArtHandle handle) {
    const doc::Art& art = artOf(handle);
    require(art.parent != 0);  // a layer keeps its root
    require(changeDocument([&](doc::Document& document) { return document.removeArt(art.id); }));
    return kNoErr;
}

AIErr getFirstArtOfLayer(AILayerHandle layer, AIArtHandle* art) {
    require(art != nullptr);
    const doc::Document& document = theDocument();
    const doc::Layer* found = layer == nullptr ? document.layer(document.currentLayer()) : &layerOf(layer);
    *art = artHandle(deref(found).root);
    return kNoErr;
}

AIErr getLayerOfArt(AIArtHandle art, AILayerHandle* layer) {
    deref(layer) = layerHandle(theDocument().layerOf(artOf(art).id));
    return kNoErr;
}

AIErr getArtType(AIArtHandle art, std::int16_t* kind) {
    deref(kind) = artOf(art).kind;
    return kNoErr;
}

AIErr getArtUserAttr(AIArtHandle handle, std::int32_t mask, std::int32_t* attributes) {
    const doc::Art& art = artOf(handle);
    const std::int32_t all =
        (art.selected ? kArtSelected : 0) | (art.locked ? kArtLocked : 0) | (art.hidden ? kArtHidden : 0);
    deref(attributes) = all & mask;
    return kNoErr;
}

AIErr setArtUserAttr(AIArtHandle handle, std::int32_t mask, std::int32_t attributes) {
    const doc::ArtId id = artOf(handle).id;
    const bool done = changeDocument([&](doc::Document& document) {
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
    deref(child) = artHandle(artOf(art).firstChild);
    return kNoErr;
}

AIErr getArtSibling(AIArtHandle art, AIArtHandle* sibling) {
    deref(sibling) = artHandle(artOf(art).below);
    return kNoErr;
}

AIErr getArtBounds(AIArtHandle art, RealRect* bounds) {
    deref(bounds) = theDocument().bounds(artOf(art).id);
    return kNoErr;
}

RealRect transformedBounds(const doc::Document& document, const doc::Art& art, const RealMatrix& matrix) {
    RealRect box = doc::emptyRect();
    if (art.path != nullptr) {
        std::vector<PathSegment> moved = art.path->segments;
        for (PathSegment& segment : moved) {
            segment.p = doc::transformPoint(matrix, segment.p);
            segment.in = doc::transformPoint(matrix, segment.in);
            segment.out = doc::transformPoint(matrix, segment.out);
        }
        return doc::pathControlBounds(moved);
    }
    if (art.firstChild == 0) return doc::transformRect(matrix, document.controlBounds(art.id));
    for (doc::ArtId child = art.firstChild; child != 0; child = document.find(child)->below)
        box = doc::uniteRects(box, transformedBounds(document, *document.find(child), matrix));
    return box;
}

AIErr getArtTransformBounds(AIArtHandle handle, const RealMatrix* matrix, std::int32_t options, RealRect* bounds) {
    require(bounds != nullptr);
    const doc::Art& art = artOf(handle);
    const doc::Document& document = theDocument();
    if (matrix == nullptr) {
        *bounds = options & kTransformBoundsWithControls ? document.controlBounds(art.id) : document.bounds(art.id);
    } else {
        *bounds = options & kTransformBoundsWithControls ? transformedBounds(document, art, *matrix)
                                                         : doc::transformRect(*matrix, document.bounds(art.id));
    }
    return kNoErr;
}

// --- layers
// --------------------------------------------------------------------------------------------------------------

AIErr countLayers(std::int32_t* count) {
    deref(count) = static_cast<std::int32_t>(theDocument().layers().size());
    return kNoErr;
}

AIErr getNthLayer(std::int32_t index, AILayerHandle* layer) {
    const std::vector<doc::LayerId>& layers = theDocument().layers();
    require(index >= 0 && static_cast<std::size_t>(index) < layers.size());
    deref(layer) = layerHandle(layers[index]);
    return kNoErr;
}

AIErr getCurrentLayer(AILayerHandle* layer) {
    deref(layer) = layerHandle(theDocument().currentLayer());
    return kNoErr;
}

AIErr getLayerByTitle(AIUnicodeStringRef title, AILayerHandle* layer) {
    const std::string wanted = utf8Of(title);
    const doc::Document& document = theDocument();
    const auto bears = [&](doc::LayerId id) { return document.layer(id)->title == wanted; };
    const auto found = std::find_if(document.layers().begin(), document.layers().end(), bears);
    deref(layer) = found == document.layers().end() ? nullptr : layerHandle(*found);
    return kNoErr;
}

AIErr insertLayer(AILayerHandle prep, std::int16_t placement, AILayerHandle* layer) {
    require(layer != nullptr && (placement == kPlaceAboveAll || placement == kPlaceAbove));
    const doc::LayerId above = placement == kPlaceAbove ? layerOf(prep).id : 0;
    const doc::LayerId made = changeDocument([&](doc::Document& document) {
        const doc::LayerId current = document.currentLayer();
        const doc::LayerId inserted =
            document.insertLayer("Layer " + std::to_string(document.layers().size() + 1), above);
        if (current != 0) document.setCurrentLayer(current);  // a new layer is not at once the current one
        return inserted;
    });
    require(made != 0);
    *layer = layerHandle(made);
    return kNoErr;
}

AIErr setLayerTitle(AILayerHandle layer, AIUnicodeStringRef title) {
    const doc::LayerId id = layerOf(layer).id;
    const std::string text = utf8Of(title);
    require(changeDocument([&](doc::Document& document) { return document.setLayerTitle(id, text); }));
    return kNoErr;
}

AIErr getLayerVisible(AILayerHandle layer, AIBoolean* visible) {
    deref(visible) = layerOf(layer).visible;
    return kNoErr;
}

AIErr getLayerEditable(AILayerHandle layer, AIBoolean* editable) {
    deref(editable) = layerOf(layer).editable;
    return kNoErr;
}

// --- paths
// ---------------------------------------------------------------------------------------------------------------

const doc::PathData& pathOf(AIArtHandle handle) {
    const doc::Art& art = artOf(handle);
    require(art.kind == kPathArt && art.path != nullptr);
    return *art.path;
}

// A count is 16 bits wide: what lies behind stays in the drawing and is not seen. A change of the part that is seen
// would tear such a path, and is refused.
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

// --- tags and transforming
// -------------------------------------------------------------------------------------------------

void requireStringTag(const char* name, const char* type) {
    require(name != nullptr && *name != 0 && type != nullptr && std::strcmp(type, "string") == 0);
}

// A group that bears a record gets an id of its own, by which commands and other programs can speak of it.
void nameTaggedGroup(doc::Document& document, const doc::Art& art) {
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
    const doc::ArtId id = artOf(art).id;
    const auto* text = static_cast<const char*>(value);
    require(changeDocument([&](doc::Document& document) {
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
    const doc::ArtId id = artOf(art).id;
    if (theDocument().tag(id, name) == nullptr) return kNoErr;
    require(changeDocument([&](doc::Document& document) { return document.removeTag(id, name); }));
    return kNoErr;
}

AIErr transformArt(AIArtHandle art, const RealMatrix* matrix, float lineScale, std::int32_t options) {
    const doc::ArtId id = artOf(art).id;
    require(doc::isFinite(deref(matrix)) && std::isfinite(lineScale));
    if ((options & kTransformObjects) == 0) return kNoErr;  // nothing else is there to be transformed
    require(changeDocument([&](doc::Document& document) { return document.transform(id, *matrix, lineScale); }));
    return kNoErr;
}

// --- questions to the index
// ------------------------------------------------------------------------------------------------

AIErr giveFound(const std::vector<doc::ArtId>& found, const AIArtHandle** arts, std::int32_t* count) {
    std::vector<AIArtHandle>& handles = theHost().arena.foundArt;
    handles.clear();
    handles.reserve(found.size());
    for (const doc::ArtId id : found) handles.push_back(artHandle(id));
    *arts = handles.data();
    *count = static_cast<std::int32_t>(handles.size());
    return kNoErr;
}

AIErr findArtAtPoint(AILayerHandle layer, const RealPoint* point, float tolerance, const char* excludeUnder,
                     const AIArtHandle** arts, std::int32_t* count) {
    require(point != nullptr && arts != nullptr && count != nullptr);
    const doc::LayerId id = layerOf(layer).id;
    std::vector<doc::ArtId> found;
    theHost().artIndex->findAtPoint(id, *point, tolerance, excludeUnder != nullptr ? excludeUnder : "", &found);
    return giveFound(found, arts, count);
}

AIErr findArtByTag(const char* name, const char* value, const AIArtHandle** arts, std::int32_t* count) {
    require(name != nullptr && arts != nullptr && count != nullptr);
    theDocument();
    std::vector<doc::ArtId> found;
    const auto wanted = value != nullptr ? std::optional<std::string_view>(value) : std::nullopt;
    theHost().artIndex->findByTag(name, wanted, &found);
    return giveFound(found, arts, count);
}

AIErr getArtParent(AIArtHandle art, AIArtHandle* parent) {
    deref(parent) = artHandle(artOf(art).parent);
    return kNoErr;
}

// The document's own generation in the high bits, so that another drawing never answers the same.
AIErr getChangeCount(std::uint64_t* count) {
    deref(count) = std::uint64_t{theHost().documentSerial} << 48 | theDocument().changeCount();
    return kNoErr;
}

}  // namespace

SuiteRecord artSuite() {
    static const AIArtSuite suite = [] {
        auto s = refusingSuite<AIArtSuite>();
        s.NewArt = slot<newArt>;
        s.DisposeArt = slot<disposeArt>;
        s.GetFirstArtOfLayer = slot<getFirstArtOfLayer>;
        s.GetLayerOfArt = slot<getLayerOfArt>;
        s.GetArtType = slot<getArtType>;
        s.GetArtUserAttr = slot<getArtUserAttr>;
        s.SetArtUserAttr = slot<setArtUserAttr>;
        s.GetArtFirstChild = slot<getArtFirstChild>;
        s.GetArtSibling = slot<getArtSibling>;
        s.GetArtBounds = slot<getArtBounds>;
        s.GetArtTransformBounds = slot<getArtTransformBounds>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord layerSuite() {
    static const AILayerSuite suite = [] {
        auto s = refusingSuite<AILayerSuite>();
        s.CountLayers = slot<countLayers>;
        s.GetNthLayer = slot<getNthLayer>;
        s.GetCurrentLayer = slot<getCurrentLayer>;
        s.GetLayerByTitle = slot<getLayerByTitle>;
        s.InsertLayer = slot<insertLayer>;
        s.SetLayerTitle = slot<setLayerTitle>;
        s.GetLayerVisible = slot<getLayerVisible>;
        s.GetLayerEditable = slot<getLayerEditable>;
        return s;
    }();
    return recordOf(suite);
}

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

SuiteRecord tagSuite() {
    static const AITagSuite suite = [] {
        auto s = refusingSuite<AITagSuite>();
        s.SetTag = slot<setTag>;
        s.GetTag = slot<getTag>;
        s.RemoveTag = slot<removeTag>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord transformArtSuite() {
    static const AITransformArtSuite suite = [] {
        auto s = refusingSuite<AITransformArtSuite>();
        s.TransformArt = slot<transformArt>;
        return s;
    }();
    return recordOf(suite);
}

SuiteRecord artQuerySuite() {
    static const AIArtQuerySuite suite = [] {
        auto s = refusingSuite<AIArtQuerySuite>();
        s.FindArtAtPoint = slot<findArtAtPoint>;
        s.FindArtByTag = slot<findArtByTag>;
        s.GetArtParent = slot<getArtParent>;
        s.GetChangeCount = slot<getChangeCount>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host

// The suites over art: its tree and attributes, its tags, transforming, and the questions that the index answers.
#include <cmath>
#include <cstring>
#include <optional>

#include "document/bounds.h"
#include "host/host_state.h"

namespace quorvel::host {

namespace {

// --- art and its tree

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

// --- tags and transforming

void requireStringTag(const char* name, const char* type) {
    require(name != nullptr && *name != 0 && type != nullptr && std::strcmp(type, kStringTag) == 0);
}

// A group with a record gets an id of its own, so that commands and other programs can name it.
void nameTaggedGroup(doc::Document& document, const doc::Art& art) {
    if (art.kind != kGroupArt || !art.name.empty() || art.parent == 0) return;
    std::uint32_t& number = theHost().lastGroupNumber;
    std::string name;
    do {
        name = "quorvel-" + std::to_string(++number);
    } while (document.isNameTaken(name));
    document.setName(art.id, name);
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

// --- dimensions

AIErr replaceGroup(AIArtHandle former, AIArtHandle replacement) {
    const doc::ArtId old = artOf(former).id, made = artOf(replacement).id;
    const std::string name = artOf(former).name;
    require(old != made && artOf(former).parent != 0 && artOf(replacement).parent != 0);
    require(changeDocument([&](doc::Document& document) {
        return document.removeArt(old) && (name.empty() || document.setName(made, name));
    }));
    return kNoErr;
}

AIErr getText(AIArtHandle frame, const std::uint16_t** units, std::int32_t* count) {
    require(units != nullptr && count != nullptr);
    const doc::Art& art = artOf(frame);
    require(art.text != nullptr);
    std::deque<std::vector<std::uint16_t>>& kept = theHost().arena.strings;
    kept.emplace_back(art.text->text.begin(), art.text->text.end());
    *units = kept.back().data();
    *count = static_cast<std::int32_t>(kept.back().size());
    return kNoErr;
}

AIErr reportEnds(AIArtHandle group, const DimensionEnd* ends, std::int32_t count) {
    require(ends != nullptr && count >= 0);
    artOf(group);
    const auto& told = theHost().host.callbacks.pointsUnheld;
    if (told) told({ends, ends + count});
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

SuiteRecord dimensionSuite() {
    static const AIDimensionSuite suite = [] {
        auto s = refusingSuite<AIDimensionSuite>();
        s.ReplaceGroup = slot<replaceGroup>;
        s.GetText = slot<getText>;
        s.ReportEnds = slot<reportEnds>;
        return s;
    }();
    return recordOf(suite);
}

}  // namespace quorvel::host

// Selecting, moving, turning, copying and deleting art by its SVG id, and the layers' states.
#include "app/editing.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

namespace quorvel::app {

namespace {

void selectBelow(doc::Document& document, doc::ArtId id, bool selected) {
    document.setSelected(id, selected);
    const doc::Art* art = document.find(id);
    for (doc::ArtId child = art->firstChild; child != 0; child = document.find(child)->below)
        selectBelow(document, child, selected);
}

void selectEverything(doc::Document& document, bool selected) {
    for (const doc::LayerId layer : document.layers()) {
        const doc::Art* root = document.find(document.layer(layer)->root);
        for (doc::ArtId child = root->firstChild; child != 0; child = document.find(child)->below)
            selectBelow(document, child, selected);
    }
}

Error noArt(const std::string& id) { return makeError(ErrorCode::kNoArt, {id}); }

template <typename Change>
Status changeArt(host::Host& host, const std::string& id, const char* name, Change change) {
    const doc::ArtId art = ArtNames(*host.document()).find(id);
    if (art == 0) return noArt(id);
    if (!host.edit(name, [&](doc::Document& document) { return change(document, art); }))
        return makeError(ErrorCode::kArtNotEditable, {id});
    return {};
}

}  // namespace

void ArtNames::count(doc::ArtId parent) {
    for (doc::ArtId child = document_.find(parent)->firstChild; child != 0; child = document_.find(child)->below) {
        places_.emplace(child, arts_.size());
        arts_.push_back(child);
        count(child);
    }
}

void ArtNames::countAll() {
    if (!arts_.empty()) return;
    for (const doc::LayerId layer : document_.layers()) count(document_.layer(layer)->root);
}

doc::ArtId ArtNames::find(const std::string& name) {
    if (const doc::ArtId art = document_.findByName(name); art != 0 || name.empty() || name[0] != '@') return art;
    std::size_t place = 0;
    const char* end = name.data() + name.size();
    const auto read = std::from_chars(name.data() + 1, end, place);
    if (read.ec != std::errc{} || read.ptr != end) return 0;
    countAll();
    return place < arts_.size() ? arts_[place] : 0;
}

std::string ArtNames::of(doc::ArtId art) {
    if (const std::string& id = document_.find(art)->name; !id.empty()) return id;
    countAll();
    return "@" + std::to_string(places_.at(art));
}

// --- copies
// -----------------------------------------------------------------------------------------------------------

bool isEditable(const doc::Document& document, doc::ArtId id) {
    const doc::Layer* layer = document.layer(document.layerOf(id));
    if (layer == nullptr || !layer->visible || !layer->editable) return false;
    for (const doc::Art* art = document.find(id); art != nullptr; art = document.find(art->parent))
        if (art->hidden || art->locked) return false;
    return true;
}

namespace {

// The root of the layer that takes what comes from elsewhere; 0 for none.
doc::ArtId openRoot(const doc::Document& document) {
    std::vector<doc::LayerId> layers = document.layers();
    layers.insert(layers.begin(), document.currentLayer());
    for (const doc::LayerId id : layers)
        if (const doc::Layer* layer = document.layer(id); layer != nullptr && isEditable(document, layer->root))
            return layer->root;
    return 0;
}

// Foreign art that insertCopy leaves out.
std::size_t leftOut(const doc::ArtCopy& copy, const doc::Document& document) {
    std::size_t count = copy.kind == kForeignArt && copy.drawing != document.number() ? 1 : 0;
    for (const doc::ArtCopy& child : copy.children) count += leftOut(child, document);
    return count;
}

}  // namespace

void Clipboard::take(const doc::Document& document, const std::vector<doc::ArtId>& arts) {
    copies_.clear();
    for (const doc::ArtId art : arts) copies_.push_back(document.copyOf(art));
}

std::optional<Clipboard::Pasted> Clipboard::paste(doc::Document& document, RealPoint by) const {
    const RealMatrix matrix{1, 0, 0, 1, by.h, by.v};
    const doc::ArtId root = openRoot(document);
    Pasted pasted;
    for (auto copy = copies_.rbegin(); copy != copies_.rend(); ++copy) {
        const bool hasOriginal = copy->drawing == document.number() && isEditable(document, copy->original);
        if (!hasOriginal && root == 0) return std::nullopt;
        const doc::ArtId made = hasOriginal ? document.insertCopy(*copy, kPlaceAbove, copy->original)
                                            : document.insertCopy(*copy, kPlaceInsideOnTop, root);
        pasted.left += leftOut(*copy, document);
        if (made == 0) continue;
        if (!document.transform(made, matrix, 1)) return std::nullopt;
        pasted.arts.push_back(made);
    }
    std::reverse(pasted.arts.begin(), pasted.arts.end());
    return pasted;
}

Status takeArt(host::Host& host, const std::vector<std::string>& ids, Clipboard* clipboard) {
    ArtNames names(*host.document());
    std::vector<doc::ArtId> arts;
    for (const std::string& id : ids) {
        arts.push_back(names.find(id));
        if (arts.back() == 0) return noArt(id);
    }
    clipboard->take(*host.document(), arts);
    return {};
}

Status pasteArt(host::Host& host, const Clipboard& clipboard, double h, double v) {
    if (clipboard.empty()) return makeError(ErrorCode::kNothingToPaste);
    const RealPoint by{static_cast<float>(h), static_cast<float>(v)};
    const bool done =
        host.edit("Paste", [&](doc::Document& document) { return clipboard.paste(document, by).has_value(); });
    if (!done) return makeError(ErrorCode::kNotPasteable);
    return {};
}

Status selectArt(host::Host& host, const std::vector<std::string>& ids) {
    std::vector<doc::ArtId> arts;
    const bool all = ids.size() == 1 && ids[0] == "all", none = ids.size() == 1 && ids[0] == "none";
    if (!all && !none) {
        ArtNames names(*host.document());
        for (const std::string& id : ids) {
            arts.push_back(names.find(id));
            if (arts.back() == 0) return noArt(id);
        }
    }
    host.edit("Select", [&](doc::Document& document) {
        selectEverything(document, all);
        for (const doc::ArtId art : arts) selectBelow(document, art, true);
        return true;
    });
    return {};
}

Status moveArt(host::Host& host, const std::string& id, double h, double v) {
    const RealMatrix matrix{1, 0, 0, 1, static_cast<float>(h), static_cast<float>(v)};
    return changeArt(host, id, "Move",
                     [&](doc::Document& document, doc::ArtId art) { return document.transform(art, matrix, 1); });
}

Status turnArt(host::Host& host, const std::string& id, double degrees, RealPoint pivot) {
    const double angle = degrees * std::numbers::pi / 180;
    const double c = std::cos(angle), s = std::sin(angle);
    const RealMatrix matrix{static_cast<float>(c),
                            static_cast<float>(s),
                            static_cast<float>(-s),
                            static_cast<float>(c),
                            static_cast<float>(pivot.h - c * pivot.h + s * pivot.v),
                            static_cast<float>(pivot.v - s * pivot.h - c * pivot.v)};
    return changeArt(host, id, "Rotate",
                     [&](doc::Document& document, doc::ArtId art) { return document.transform(art, matrix, 1); });
}

Status copyArt(host::Host& host, const std::string& id, const std::string& newId) {
    if (host.document()->findByName(newId) != 0) return makeError(ErrorCode::kIdTaken, {newId});
    return changeArt(host, id, "Copy",
                     [&](doc::Document& document, doc::ArtId art) { return document.duplicateArt(art, newId) != 0; });
}

Status deleteArt(host::Host& host, const std::string& id) {
    return changeArt(host, id, "Delete",
                     [](doc::Document& document, doc::ArtId art) { return document.removeArt(art); });
}

namespace {

// The topmost of the title; 0 when there is none.
doc::LayerId layerTitled(const doc::Document& document, const std::string& title) {
    for (const doc::LayerId layer : document.layers())
        if (document.layer(layer)->title == title) return layer;
    return 0;
}

Error noLayer(const std::string& title) { return makeError(ErrorCode::kNoLayer, {title}); }

Status layerChanged(bool done, const std::string& title) {
    if (!done) return makeError(ErrorCode::kLayerNotEditable, {title});
    return {};
}

}  // namespace

Status renameLayer(host::Host& host, const std::string& title, const std::string& newTitle) {
    const doc::LayerId found = layerTitled(*host.document(), title);
    if (found == 0) return noLayer(title);
    const bool done =
        host.edit("Layer", [&](doc::Document& document) { return document.setLayerTitle(found, newTitle); });
    return layerChanged(done, title);
}

Status changeLayer(host::Host& host, const std::string& title, const std::string& what) {
    const doc::LayerId found = layerTitled(*host.document(), title);
    if (what != "new" && found == 0) return noLayer(title);
    if (what == "current") {
        host.document()->setCurrentLayer(found);
        return {};
    }
    const bool done = host.edit("Layer", [&](doc::Document& document) {
        if (what == "new") {
            const doc::LayerId made = document.insertLayer(title, 0);
            return made != 0 && document.setCurrentLayer(made);
        }
        if (what == "up" || what == "down") {
            const auto& layers = document.layers();
            const auto place = std::size_t(std::find(layers.begin(), layers.end(), found) - layers.begin());
            if (what == "up") return place > 0 && document.moveLayer(found, place - 1);
            return document.moveLayer(found, place + 1);
        }
        if (what == "hide" || what == "show") return document.setLayerVisible(found, what == "show");
        return document.setLayerEditable(found, what == "unlock");
    });
    return layerChanged(done, title);
}

}  // namespace quorvel::app

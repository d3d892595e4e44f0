// Selecting, moving, turning, copying and deleting art by its SVG id, and the layers' states.
#include "cli/editing.h"

#include <cmath>
#include <numbers>

namespace quorvel::cli {

namespace {

void selectBelow(host::Document& document, host::ArtId id, bool selected) {
    document.setSelected(id, selected);
    const host::Art* art = document.find(id);
    for (host::ArtId child = art->firstChild; child != 0; child = document.find(child)->below)
        selectBelow(document, child, selected);
}

void selectEverything(host::Document& document, bool selected) {
    for (const host::LayerId layer : document.layers()) {
        const host::Art* root = document.find(document.layer(layer)->root);
        for (host::ArtId child = root->firstChild; child != 0; child = document.find(child)->below)
            selectBelow(document, child, selected);
    }
}

std::string noArt(const std::string& id) { return "no art has the id \"" + id + "\""; }

template <typename Change>
std::string changeArt(host::Host& host, const std::string& id, const char* name, Change change) {
    const host::ArtId art = host.document()->findBySvgId(id);
    if (art == 0) return noArt(id);
    return host.edit(name, [&](host::Document& document) { return change(document, art); })
               ? std::string{}
               : "\"" + id + "\" cannot be changed";
}

}  // namespace

std::string selectArt(host::Host& host, const std::vector<std::string>& ids) {
    std::vector<host::ArtId> arts;
    const bool all = ids.size() == 1 && ids[0] == "all", none = ids.size() == 1 && ids[0] == "none";
    if (!all && !none) {
        for (const std::string& id : ids) {
            arts.push_back(host.document()->findBySvgId(id));
            if (arts.back() == 0) return noArt(id);
        }
    }
    host.edit("Select", [&](host::Document& document) {
        selectEverything(document, all);
        for (const host::ArtId art : arts) selectBelow(document, art, true);
        return true;
    });
    return {};
}

std::string moveArt(host::Host& host, const std::string& id, double h, double v) {
    const RealMatrix matrix{1, 0, 0, 1, static_cast<float>(h), static_cast<float>(v)};
    return changeArt(host, id, "Move",
                     [&](host::Document& document, host::ArtId art) { return document.transform(art, matrix, 1); });
}

std::string turnArt(host::Host& host, const std::string& id, double degrees, RealPoint pivot) {
    const double angle = degrees * std::numbers::pi / 180;
    const double c = std::cos(angle), s = std::sin(angle);
    const RealMatrix matrix{static_cast<float>(c),
                            static_cast<float>(s),
                            static_cast<float>(-s),
                            static_cast<float>(c),
                            static_cast<float>(pivot.h - c * pivot.h + s * pivot.v),
                            static_cast<float>(pivot.v - s * pivot.h - c * pivot.v)};
    return changeArt(host, id, "Rotate",
                     [&](host::Document& document, host::ArtId art) { return document.transform(art, matrix, 1); });
}

std::string copyArt(host::Host& host, const std::string& id, const std::string& newId) {
    if (host.document()->findBySvgId(newId) != 0) return "the id \"" + newId + "\" is taken";
    return changeArt(host, id, "Copy",
                     [&](host::Document& document, host::ArtId art) { return document.duplicateArt(art, newId) != 0; });
}

std::string deleteArt(host::Host& host, const std::string& id) {
    return changeArt(host, id, "Delete",
                     [](host::Document& document, host::ArtId art) { return document.removeArt(art); });
}

std::string changeLayer(host::Host& host, const std::string& title, const std::string& what) {
    host::LayerId found = 0;
    for (const host::LayerId layer : host.document()->layers())
        if (found == 0 && host.document()->layer(layer)->title == title) found = layer;
    if (what != "new" && found == 0) return "no layer is titled \"" + title + "\"";
    if (what == "current") {
        host.document()->setCurrentLayer(found);
        return {};
    }
    const bool done = host.edit("Layer", [&](host::Document& document) {
        if (what == "new") {
            const host::LayerId made = document.insertLayer(title, 0);
            return made != 0 && document.setCurrentLayer(made);
        }
        if (what == "hide" || what == "show") return document.setLayerVisible(found, what == "show");
        return document.setLayerEditable(found, what == "unlock");
    });
    return done ? std::string{} : "the layer \"" + title + "\" cannot be changed";
}

}  // namespace quorvel::cli

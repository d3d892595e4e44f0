// The host's own editing, as scripts and the window do it: by name, each call one undo step. After an error nothing has
// changed.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/result.h"
#include "host/host.h"

namespace quorvel::app {

// Scripts name art by its SVG id; art without one by its place in the drawing, "@0" for the first, in walk order.
class ArtNames {
  public:
    explicit ArtNames(const doc::Document& document) : document_(document) {}
    doc::ArtId find(const std::string& name);  // 0: there is none
    std::string of(doc::ArtId art);

  private:
    void count(doc::ArtId parent);
    void countAll();

    const doc::Document& document_;
    std::vector<doc::ArtId> arts_;  // filled when a place is first asked for
    std::unordered_map<doc::ArtId, std::size_t> places_;
};

// What was copied last, as it was then. It outlives the drawing that it comes from.
class Clipboard {
  public:
    struct Pasted {
        std::vector<doc::ArtId> arts;  // in the order in which they were taken
        std::size_t left = 0;          // images and the like, which stay in the drawing that they are from
    };
    bool empty() const { return copies_.empty(); }
    void take(const doc::Document& document, const std::vector<doc::ArtId>& arts);  // the top one first
    // Each above its original while that can be edited; else on top of the current layer, or of the topmost that can.
    // Nothing when there is no such layer or a coordinate would overflow; some copies may have been made by then.
    std::optional<Pasted> paste(doc::Document& document, RealPoint by) const;

  private:
    std::vector<doc::ArtCopy> copies_;
};

// What the user can take: neither the art nor anything around it is hidden or locked.
bool isEditable(const doc::Document& document, doc::ArtId art);

// "all", "none" or ids; hidden and locked art too; groups and compound paths with all their members.
Status selectArt(host::Host& host, const std::vector<std::string>& ids);
Status moveArt(host::Host& host, const std::string& id, double h, double v);
Status turnArt(host::Host& host, const std::string& id, double degrees, RealPoint pivot);
Status copyArt(host::Host& host, const std::string& id, const std::string& newId);
Status takeArt(host::Host& host, const std::vector<std::string>& ids, Clipboard* clipboard);
Status pasteArt(host::Host& host, const Clipboard& clipboard, double h, double v);
Status deleteArt(host::Host& host, const std::string& id);
// what: new, current, hide, show, lock, unlock, up, down.
Status changeLayer(host::Host& host, const std::string& title, const std::string& what);
Status renameLayer(host::Host& host, const std::string& title, const std::string& newTitle);

}  // namespace quorvel::app

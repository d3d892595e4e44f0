// The host's own editing, as scripts and the window do it: by name, each call one undo step. The text is the cause
// when it could not be done, else empty.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "host/host.h"

namespace quorvel::cli {

// Scripts name art by its SVG id; art without one by its place in the drawing, "@0" for the first, in walk order.
class ArtNames {
  public:
    explicit ArtNames(const host::Document& document) : document_(document) {}
    host::ArtId find(const std::string& name);  // 0: there is none
    std::string of(host::ArtId art);

  private:
    void count(host::ArtId parent);
    void countAll();

    const host::Document& document_;
    std::vector<host::ArtId> arts_;  // filled when a place is first asked for
    std::unordered_map<host::ArtId, std::size_t> places_;
};

// "all", "none" or ids; hidden and locked art too; groups and compound paths with all their members.
std::string selectArt(host::Host& host, const std::vector<std::string>& ids);
std::string moveArt(host::Host& host, const std::string& id, double h, double v);
std::string turnArt(host::Host& host, const std::string& id, double degrees, RealPoint pivot);
std::string copyArt(host::Host& host, const std::string& id, const std::string& newId);
std::string deleteArt(host::Host& host, const std::string& id);
// what: new, current, hide, show, lock, unlock, up, down.
std::string changeLayer(host::Host& host, const std::string& title, const std::string& what);
std::string renameLayer(host::Host& host, const std::string& title, const std::string& newTitle);

}  // namespace quorvel::cli

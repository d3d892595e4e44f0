// The host's own editing, as scripts and the window do it: by SVG id, each call one undo step. The text is the cause
// when it could not be done, else empty.
#pragma once

#include <string>
#include <vector>

#include "host/host.h"

namespace quorvel::cli {

// "all", "none" or ids; hidden and locked art too; groups and compound paths with all their members.
std::string selectArt(host::Host& host, const std::vector<std::string>& ids);
std::string moveArt(host::Host& host, const std::string& id, double h, double v);
std::string turnArt(host::Host& host, const std::string& id, double degrees, RealPoint pivot);
std::string copyArt(host::Host& host, const std::string& id, const std::string& newId);
std::string deleteArt(host::Host& host, const std::string& id);
// what: new, current, hide, show, lock, unlock.
std::string changeLayer(host::Host& host, const std::string& title, const std::string& what);

}  // namespace quorvel::cli

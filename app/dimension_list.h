// The dimensions and drawing frames of a drawing, read from their tags: no plug-in is needed to see them.
#pragma once

#include <string>
#include <vector>

#include "document/document.h"

namespace quorvel::app {

struct LinkedArt {
    std::string from;  // "from", "to", "stop 1", ...
    std::int32_t objectId = 0;
    std::int32_t anchor = 0;
    std::vector<std::string> names;  // of the art that has the object id
    bool lost = true;                // none of it has such an anchor any more
};

struct RecordedDimension {
    doc::ArtId group = 0;
    std::string name, layer;
    std::string kind;  // "oblique", "straight", "curve", "radius", "diameter", "angle", "frame"
    std::vector<std::string> texts;
    std::vector<std::pair<std::string, RealPoint>> points;  // "from", "to", "end", "stop 1", ...
    std::vector<LinkedArt> links;
};

// In walk order.
std::vector<RecordedDimension> listDimensions(const doc::Document& document);
// A line each, links below it.
std::string listText(const std::vector<RecordedDimension>& dimensions);

}  // namespace quorvel::app

// The dimensions and drawing frames of a drawing, read from their tags. Whether their points can follow their art is
// known to the plug-in alone.
#pragma once

#include <string>
#include <vector>

#include "host/host.h"

namespace quorvel::app {

struct LinkedArt {
    std::string from;  // "from", "to", "stop 1", ...
    std::int32_t objectId = 0;
    std::int32_t anchor = 0;
    std::vector<std::string> names;  // of the art that has the object id
};

struct RecordedDimension {
    doc::ArtId group = 0;
    std::string name, layer;
    std::string kind;  // "oblique", "straight", "curve", "radius", "diameter", "angle"; "comment", "number",
                       // "length", "area" of those that are linked to art; "frame"
    std::vector<std::string> texts;
    std::vector<std::pair<std::string, RealPoint>> points;  // "from", "to", "end", "stop 1", ...
    std::vector<LinkedArt> links;
    std::vector<DimensionEnd> ends;  // after examineEnds, of a dimension
};

std::string endName(const DimensionEnd& end);  // "from", "to", "stop 1", ...
// "held", "free", or why the point cannot follow: "deleted", "unpainted", "layer", "segment gone", "copy",
// "no crossing", "no arc", and "edited" of a text.
const char* linkWord(LinkState state);
// Of a point that cannot follow.
Error unheldPoint(const DimensionEnd& end);

// In walk order, without ends.
std::vector<RecordedDimension> listDimensions(const doc::Document& document);
// Asks the plug-in, which has been started with this drawing open.
void examineEnds(host::Host& host, std::vector<RecordedDimension>* dimensions);
// A line each, links below it.
std::string listText(const std::vector<RecordedDimension>& dimensions);

}  // namespace quorvel::app

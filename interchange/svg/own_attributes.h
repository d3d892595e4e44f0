// Attributes of our own namespace: their names, and the form in which tags, which are bytes under any name, are written
// as attributes.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "svg/values/byte_text.h"

namespace quorvel::interchange {

// Our attributes' names without prefix. A tag's name holds no "-", so that these never meet.
namespace own_attribute {
constexpr const char* kCorners = "path-corners";  // 0 or 1 for each anchor
constexpr const char* kEnds = "path-ends";        // handles of an open path that no curve uses
constexpr const char* kMembers = "path-members";  // a compound path of fewer than two members
constexpr const char* kGuide = "path-guide";
constexpr const char* kFill = "path-fill";  // paints that CSS cannot say
constexpr const char* kStroke = "path-stroke";
constexpr const char* kText = "text-exact";             // what SVG text cannot say
constexpr const char* kLayerTitles = "layer-titles";    // on the root, for art that is in no layer element
constexpr const char* kCurrentLayer = "layer-current";  // on the root, where no named view says it
constexpr const char* kRuler = "page-ruler";
}  // namespace own_attribute

using svg::decodeBytes;
using svg::encodeBytes;

// Texts parted by blanks, each encoded.
std::string encodeList(const std::vector<std::string>& texts);
std::vector<std::string> decodeList(std::string_view list);

// The attribute's name without prefix for a tag, of the element itself or of the member of its compound path with this
// number (the lowest is 0).
struct TagPlace {
    int member = -1;
    std::string name;
};
std::string tagAttribute(const TagPlace& tag);
// Nothing for our other attributes.
std::optional<TagPlace> tagOfAttribute(std::string_view localName);
// The attribute's name for the id of a member, which has no element of its own.
std::string memberIdAttribute(int member);
// Its member; nothing for other attributes.
std::optional<int> memberOfIdAttribute(std::string_view localName);

}  // namespace quorvel::interchange

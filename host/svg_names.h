// Names of a drawing's XML: the namespaces and the prefixes that a file gives them, and the form in which tags, which
// are bytes under any name, stand as attributes.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel::host {

constexpr std::string_view kSvgNamespace = "http://www.w3.org/2000/svg";
constexpr std::string_view kInkscapeNamespace = "http://www.inkscape.org/namespaces/inkscape";
constexpr std::string_view kSodipodiNamespace = "http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd";
constexpr std::string_view kOwnNamespace = "https://quorvel.invalid/ns/1";

// Prefixes with their colon, as the root declares them; the usual ones where it declares none.
struct SvgNames {
    std::string svg;  // empty: elements stand without prefix
    std::string own = "quorvel:", inkscape = "inkscape:", sodipodi = "sodipodi:";
    bool ownDeclared = false, inkscapeDeclared = false, sodipodiDeclared = false;
};

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

// Printable ASCII but "%" as it is, every other byte as %XX.
std::string encodeBytes(std::string_view bytes);
std::string decodeBytes(std::string_view text);

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

}  // namespace quorvel::host

// The namespaces of a drawing's XML and the prefixes that a file gives them.
#pragma once

#include <string>
#include <string_view>

namespace quorvel::svg {

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

}  // namespace quorvel::svg

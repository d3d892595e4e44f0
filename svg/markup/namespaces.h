// The namespaces of a drawing's XML and the prefixes that a file gives them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "svg/markup/xml.h"

namespace quorvel::svg {

constexpr std::string_view kSvgNamespace = "http://www.w3.org/2000/svg";
constexpr std::string_view kInkscapeNamespace = "http://www.inkscape.org/namespaces/inkscape";
constexpr std::string_view kSodipodiNamespace = "http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd";
constexpr std::string_view kOwnNamespace = "https://quorvel.invalid/ns/1";

// Prefixes with their colon, as the root declares them; the usual ones where it declares none.
struct SvgNames {
    std::string svg;  // of the root; empty: elements have no prefix
    std::string own = "quorvel:", inkscape = "inkscape:", sodipodi = "sodipodi:";
    bool ownDeclared = false, inkscapeDeclared = false, sodipodiDeclared = false;
    std::vector<std::string> allSvg;  // every prefix of SVG's namespace, in order; "" among them

    // Whether the element is one of SVG.
    bool isSvg(const XmlNode& element) const;
};

SvgNames readNamespaces(const XmlNode& root);

}  // namespace quorvel::svg

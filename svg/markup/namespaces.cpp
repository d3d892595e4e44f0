#include "svg/markup/namespaces.h"

#include <algorithm>

namespace quorvel::svg {
namespace {

// Of an element or attribute, without colon. The parser lets more pass.
bool isName(std::string_view name) {
    const auto isLetter = [](char c) {
        return c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
    };
    return !name.empty() && isLetter(name.front()) && std::ranges::all_of(name, [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
    });
}

constexpr std::size_t kLongestPrefix = 256;

}  // namespace

bool SvgNames::isSvg(const XmlNode& element) const {
    const std::string_view name = element.name();
    const std::size_t colon = name.find(':');
    const std::string_view prefix = name.substr(0, colon == std::string_view::npos ? 0 : colon + 1);
    return std::ranges::binary_search(allSvg, prefix);
}

SvgNames readNamespaces(const XmlNode& root) {
    SvgNames names;
    const std::string_view name = root.name();
    const std::size_t colon = name.find(':');
    if (colon != std::string_view::npos) names.svg = name.substr(0, colon + 1);
    struct Known {
        std::string_view uri;
        std::string* prefix;
        bool* declared;
    };
    const Known known[] = {{kOwnNamespace, &names.own, &names.ownDeclared},
                           {kInkscapeNamespace, &names.inkscape, &names.inkscapeDeclared},
                           {kSodipodiNamespace, &names.sodipodi, &names.sodipodiDeclared}};
    std::vector<std::string> taken;
    bool defaultIsOther = false;
    for (const XmlAttribute& attribute : root.attributes()) {
        const std::string_view declared = attribute.name();
        const std::string_view uri = attribute.value();
        if (declared == "xmlns") {
            if (uri == kSvgNamespace) names.allSvg.push_back("");
            defaultIsOther = uri != kSvgNamespace;
        }
        // A prefix that could not begin an attribute's name is no prefix that we could write under.
        if (!declared.starts_with("xmlns:") || declared.size() > kLongestPrefix || !isName(declared.substr(6)))
            continue;
        const std::string prefix = std::string(declared.substr(6)) + ":";
        if (uri == kSvgNamespace) names.allSvg.push_back(prefix);
        for (const Known& row : known) {
            if (row.uri != uri || *row.declared) continue;
            *row.prefix = prefix;
            *row.declared = true;
        }
        taken.push_back(prefix);
    }
    for (const Known& row : known) {
        while (!*row.declared && std::ranges::find(taken, *row.prefix) != taken.end())
            row.prefix->insert(row.prefix->size() - 1, "-own");
    }
    // A drawing that names no namespace at all is taken for what it says it is.
    if (names.allSvg.empty() && names.svg.empty() && !defaultIsOther) names.allSvg.push_back("");
    std::ranges::sort(names.allSvg);
    return names;
}

}  // namespace quorvel::svg

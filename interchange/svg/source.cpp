#include "interchange/svg/source.h"

#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {

std::unordered_set<std::string> SvgSource::reservedNames() const {
    std::unordered_set<std::string> ids;
    if (tree.elements.empty()) return ids;
    const std::string_view whole = *text;
    const std::size_t root = tree.elements.front().nameOffset - std::size_t{1};
    std::size_t art = 1;  // the next element that is written in the file, by its place in the tree
    for (const svg::ElementSpan& span : svg::allElements(whole.substr(root))) {
        const std::size_t name = root + span.begin + 1;
        while (art < tree.size() && (tree.elements[art].isInstance || tree.elements[art].nameOffset < name)) ++art;
        const bool isArt = art < tree.size() && tree.elements[art].nameOffset == name && !records[art].isLayer;
        const std::string_view tag = whole.substr(name - 1, span.tagEnd - span.begin);
        if (isArt || tag.find("id") == std::string_view::npos) continue;
        if (const auto id = svg::StartTag(tag, &entities()).attribute("id")) ids.insert(*id);
    }
    return ids;
}

}  // namespace quorvel::interchange

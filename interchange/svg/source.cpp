#include "interchange/svg/source.h"

#include <algorithm>

#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {

std::unordered_set<std::string> SvgSource::reservedNames() const {
    const SvgSource& source = *this;
    std::unordered_set<std::string> ids;
    const std::string_view text = source.text;
    if (source.elements.empty()) return ids;
    const std::size_t root = source.elements[0].nameOffset - std::size_t{1};
    auto art = source.elements.begin();
    for (const svg::ElementSpan& span : svg::allElements(text.substr(root))) {
        const std::size_t begin = root + span.begin;
        while (art != source.elements.end() && art->nameOffset < begin + 1) ++art;
        const bool isArt = art != source.elements.end() && art->nameOffset == begin + 1 &&
                           art->kind != SvgKind::kRoot && art->kind != SvgKind::kLayer;
        const std::string_view tag = text.substr(begin, span.tagEnd - span.begin);
        if (isArt || tag.find("id") == std::string_view::npos) continue;
        if (const auto id = svg::StartTag(tag, &source.entities).attribute("id")) ids.insert(*id);
    }
    return ids;
}

}  // namespace quorvel::interchange

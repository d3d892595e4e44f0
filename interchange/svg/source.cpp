#include "interchange/svg/source.h"

#include "interchange/svg/svg.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/start_tag.h"

namespace quorvel::interchange {

std::string PaintTexts::paintText(std::int32_t reference) const {
    const auto number = static_cast<std::size_t>(reference);
    return reference > 0 && number <= texts_.size() ? texts_[number - 1] : std::string();
}

std::int32_t PaintTexts::paintReference(const std::string& text) {
    const auto [number, added] = numbers_.try_emplace(text, static_cast<std::int32_t>(texts_.size()) + 1);
    if (added) texts_.push_back(text);
    return number->second;
}

const std::vector<std::string>& paintTexts(const doc::Document& document) {
    static const std::vector<std::string> kNone;
    const auto* texts = dynamic_cast<const PaintTexts*>(document.source());
    return texts == nullptr ? kNone : texts->all();
}

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

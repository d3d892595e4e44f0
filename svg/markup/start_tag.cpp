#include "svg/markup/start_tag.h"

#include <algorithm>

#include "svg/markup/scan.h"
#include "svg/values/number.h"

namespace quorvel::svg {

std::string_view StartTag::Attribute::value() const {
    const std::size_t open = raw.find_first_of("\"'");
    if (open == std::string::npos) return {};
    return std::string_view(raw).substr(open + 1, raw.size() - open - 2);
}

StartTag::StartTag(std::string_view text, const XmlEntities* entities) : entities_(entities) {
    std::size_t at = 1;
    const auto blanks = [&] {
        const std::size_t start = at;
        while (at < text.size() && isBlank(text[at])) ++at;
        return std::string(text.substr(start, at - start));
    };
    const auto name = [&] {
        const std::size_t start = at;
        while (at < text.size() && !isBlank(text[at]) && text[at] != '=' && text[at] != '>' && text[at] != '/') ++at;
        return std::string(text.substr(start, at - start));
    };
    name_ = name();
    for (;;) {
        std::string before = blanks();
        if (at >= text.size() || text[at] == '>' || text[at] == '/') {
            tail_ = std::move(before);
            selfClosing_ = at < text.size() && text[at] == '/';
            return;
        }
        Attribute attribute;
        attribute.before = std::move(before);
        attribute.name = name();
        const std::size_t start = at;
        const std::size_t open = text.find_first_of("\"'", at);
        if (attribute.name.empty() || open == std::string_view::npos) return;
        at = behind(text, text.substr(open, 1), open + 1);
        attribute.raw = std::string(text.substr(start, at - start));
        attributes_.push_back(std::move(attribute));
    }
}

const StartTag::Attribute* StartTag::find(std::string_view name) const {
    const auto found = std::ranges::find(attributes_, name, &Attribute::name);
    return found == attributes_.end() ? nullptr : &*found;
}

std::string StartTag::plain(const Attribute& attribute) const {
    static const XmlEntities kNone;
    return unescapeXml(attribute.value(), entities_ ? *entities_ : kNone);
}

std::optional<std::string> StartTag::attribute(std::string_view name) const {
    const Attribute* found = find(name);
    if (!found) return std::nullopt;
    return plain(*found);
}

void StartTag::set(std::string_view name, std::string_view value) {
    std::string escaped = escapeXml(value);
    const auto found = std::ranges::find(attributes_, name, &Attribute::name);
    if (found == attributes_.end()) {
        // A first attribute has no neighbour whose spacing it could take.
        const std::string before = attributes_.empty() ? " " : attributes_.back().before;
        attributes_.push_back({before, std::string(name), "=\"" + escaped + "\""});
        return;
    }
    if (plain(*found) == value) return;
    const std::size_t open = found->raw.find_first_of("\"'");
    const char quote = found->raw[open];
    for (std::size_t at = 0; quote == '\'' && (at = escaped.find('\'', at)) != std::string::npos;)
        escaped.replace(at, 1, "&apos;");
    found->raw = found->raw.substr(0, open + 1) + escaped + quote;
}

void StartTag::remove(std::string_view name) {
    const auto found = std::ranges::find(attributes_, name, &Attribute::name);
    if (found == attributes_.end()) return;
    // What follows the name of the element keeps the blanks that stood there.
    const auto next = found + 1;
    if (found == attributes_.begin() && next != attributes_.end()) next->before = found->before;
    attributes_.erase(found);
}

std::vector<std::string> StartTag::attributeNames() const {
    std::vector<std::string> names;
    for (const Attribute& attribute : attributes_) names.push_back(attribute.name);
    return names;
}

std::string StartTag::str() const {
    std::string out = "<" + name_;
    for (const Attribute& attribute : attributes_) {
        out += attribute.before;
        out += attribute.name;
        out += attribute.raw;
    }
    out += tail_;
    out += selfClosing_ ? "/>" : ">";
    return out;
}

}  // namespace quorvel::svg

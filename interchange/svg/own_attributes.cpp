// Tag names are bytes, attribute names are not: letters, digits and "_" are kept, other bytes as ".XX". "-" is
// thereby free to part what we add: "t-" before a name that could not begin an attribute's, "m3-" for a member, and
// "m3-path-id" for the member's own id.
#include "interchange/svg/own_attributes.h"

#include <algorithm>
#include <charconv>

namespace quorvel::interchange {
namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

constexpr std::string_view kMemberId = "-path-id";

}  // namespace

std::string encodeList(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts) {
        if (&text != &texts.front()) list += ' ';
        for (char c : encodeBytes(text)) {
            if (c == ' ') {
                list += "%20";
            } else {
                list += c;
            }
        }
    }
    return list;
}

std::vector<std::string> decodeList(std::string_view list) {
    std::vector<std::string> texts;
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find(' ', at), list.size());
        texts.push_back(decodeBytes(list.substr(at, end - at)));
        at = end + 1;
    }
    return texts;
}

std::string tagAttribute(const TagPlace& tag) {
    std::string name;
    for (char c : tag.name) {
        if (isLetter(c) || isDigit(c) || c == '_') {
            name += c;
        } else {
            svg::appendEncoded(&name, '.', c);
        }
    }
    if (tag.member >= 0) return "m" + std::to_string(tag.member) + "-" + name;
    const bool canBegin = !name.empty() && (isLetter(name.front()) || name.front() == '_');
    return canBegin ? name : "t-" + name;
}

std::string memberIdAttribute(int member) { return "m" + std::to_string(member) + std::string(kMemberId); }

std::optional<int> memberOfIdAttribute(std::string_view localName) {
    if (!localName.ends_with(kMemberId)) return std::nullopt;
    const std::optional<TagPlace> place = tagOfAttribute(localName);
    if (!place || place->member < 0 || localName != memberIdAttribute(place->member)) return std::nullopt;
    return place->member;
}

std::optional<TagPlace> tagOfAttribute(std::string_view localName) {
    const std::size_t dash = localName.find('-');
    if (dash == std::string_view::npos) return TagPlace{-1, svg::decodeBytes(localName, '.')};
    const std::string_view kind = localName.substr(0, dash);
    const std::string name = svg::decodeBytes(localName.substr(dash + 1), '.');
    if (kind == "t") return TagPlace{-1, name};
    int member = 0;
    if (kind.size() < 2 || kind[0] != 'm') return std::nullopt;
    const auto [end, status] = std::from_chars(kind.data() + 1, kind.data() + kind.size(), member);
    if (status != std::errc() || end != kind.data() + kind.size() || member < 0) return std::nullopt;
    return TagPlace{member, name};
}

}  // namespace quorvel::interchange

#include "svg/css/selector.h"

#include <algorithm>

#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

bool isNameCharacter(char c) {
    return c == '-' || c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

std::string Selector::key() const {
    if (!id.empty()) return "#" + std::string(id);
    if (!classes.empty()) return "." + std::string(classes.front());
    return type.empty() ? "*" : std::string(type);
}

std::optional<Selector> parseSelector(std::string_view text) {
    if (text.empty()) return std::nullopt;
    Selector selector;
    for (std::size_t at = text.front() == '*' ? 1 : 0; at < text.size();) {
        const char mark = text[at];
        const bool isMarked = mark == '#' || mark == '.';
        const std::size_t begin = isMarked ? at + 1 : at;
        at = begin;
        while (at < text.size() && isNameCharacter(text[at])) ++at;
        const std::string_view name = text.substr(begin, at - begin);
        if (name.empty() || (mark == '#' && !selector.id.empty() && selector.id != name)) return std::nullopt;
        if (!isMarked && begin > 0) return std::nullopt;
        if (mark == '#') {
            selector.id = name;
        } else if (mark == '.') {
            selector.classes.push_back(name);
        } else {
            selector.type = name;
        }
        ++selector.specificity[mark == '#' ? 0 : mark == '.' ? 1 : 2];
    }
    return selector;
}

std::vector<std::string_view> classList(std::string_view attribute) {
    std::vector<std::string_view> classes;
    for (std::size_t at = 0; at < attribute.size();) {
        std::size_t end = at;
        while (end < attribute.size() && !isBlank(attribute[end])) ++end;
        if (end > at) classes.push_back(attribute.substr(at, end - at));
        at = end + 1;
    }
    std::ranges::sort(classes);
    classes.erase(std::unique(classes.begin(), classes.end()), classes.end());
    return classes;
}

bool matches(const Selector& selector, const ElementNames& element) {
    return (selector.type.empty() || selector.type == element.type) &&
           (selector.id.empty() || selector.id == element.id) &&
           std::ranges::all_of(selector.classes, [&](std::string_view name) {
               return std::ranges::binary_search(element.classes, name);
           });
}

}  // namespace quorvel::svg

#include "svg/css/declarations.h"

#include "svg/values/number.h"

namespace quorvel::svg {

std::size_t findOutside(std::string_view text, std::size_t from, std::string_view stops) {
    int depth = 0;
    char quote = 0;
    for (std::size_t i = from; i < text.size(); ++i) {
        const char c = text[i];
        if (quote) {
            if (c == '\\') {
                ++i;
            } else if (c == quote) {
                quote = 0;
            }
        } else if (c == '/' && i + 1 < text.size() && text[i + 1] == '*') {
            i = text.find("*/", i + 2);
            if (i == std::string_view::npos) return text.size();
            ++i;
        } else if (depth == 0 && stops.find(c) != std::string_view::npos) {
            return i;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '(') {
            ++depth;
        } else if (c == ')' && depth > 0) {
            --depth;
        }
    }
    return text.size();
}

std::string_view withoutLeadingComments(std::string_view text) {
    text = trimmed(text);
    while (text.starts_with("/*")) {
        const std::size_t end = text.find("*/", 2);
        if (end == std::string_view::npos) return {};
        text = trimmed(text.substr(end + 2));
    }
    return text;
}

void parseDeclarations(std::string_view block, std::vector<CssDeclaration>* declarations) {
    for (std::size_t at = 0; at < block.size();) {
        const std::size_t end = findOutside(block, at, ";");
        const std::string_view item = withoutLeadingComments(block.substr(at, end - at));
        at = end + 1;
        const std::size_t colon = item.find(':');
        if (colon == std::string_view::npos) continue;
        CssDeclaration declaration{trimmed(item.substr(0, colon)), trimmed(item.substr(colon + 1)), false};
        if (declaration.value.ends_with("!important")) {
            declaration.important = true;
            declaration.value = trimmed(declaration.value.substr(0, declaration.value.size() - 10));
        }
        if (!declaration.property.empty() && !declaration.value.empty()) declarations->push_back(declaration);
    }
}

}  // namespace quorvel::svg

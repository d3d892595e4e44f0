#include "svg/css/declarations.h"

#include <algorithm>

#include "svg/css/properties.h"
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

std::string withoutComments(std::string_view text) {
    std::string kept;
    char quote = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (quote == 0 && text.substr(i).starts_with("/*")) {
            kept += ' ';
            i = text.find("*/", i + 2);
            if (i == std::string_view::npos) break;
            ++i;
            continue;
        }
        kept += c;
        if (quote != 0 && c == '\\' && i + 1 < text.size())
            kept += text[++i];
        else if (c == quote)
            quote = 0;
        else if (quote == 0 && (c == '"' || c == '\''))
            quote = c;
    }
    return kept;
}

bool hasCapitals(std::string_view text) {
    return std::ranges::any_of(text, [](char c) { return c >= 'A' && c <= 'Z'; });
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    return lower;
}

namespace {

std::string_view propertyName(std::string_view text) {
    const std::string_view name = trimmed(text.substr(0, text.find("/*")));
    if (!hasCapitals(name)) return name;
    const Property* property = findProperty(lowerCase(name));
    return property != nullptr ? property->name : name;
}

// Takes "!important" off the value. False when something else is behind the mark.
bool takeImportance(CssDeclaration* declaration) {
    const std::size_t mark = findOutside(declaration->value, 0, "!");
    if (mark == declaration->value.size()) return true;
    const std::string word = withoutComments(declaration->value.substr(mark + 1));
    declaration->important = lowerCase(trimmed(word)) == "important";
    declaration->value = trimmed(declaration->value.substr(0, mark));
    return declaration->important;
}

}  // namespace

void parseDeclarations(std::string_view block, std::vector<CssDeclaration>* declarations) {
    for (std::size_t at = 0; at < block.size();) {
        const std::size_t end = findOutside(block, at, ";");
        const std::string_view item = withoutLeadingComments(block.substr(at, end - at));
        at = end + 1;
        const std::size_t colon = findOutside(item, 0, ":");
        if (colon == item.size()) continue;
        CssDeclaration declaration{propertyName(item.substr(0, colon)), withoutLeadingComments(item.substr(colon + 1)),
                                   false};
        if (takeImportance(&declaration) && !declaration.property.empty() && !declaration.value.empty())
            declarations->push_back(declaration);
    }
}

}  // namespace quorvel::svg

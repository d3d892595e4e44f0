#include "svg/css/style_attribute.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "svg/css/declarations.h"
#include "svg/values/number.h"

namespace quorvel::svg {

void setProperty(StartTag* tag, std::string_view property, std::string_view value) {
    const std::string style = tag->attribute("style").value_or("");
    std::vector<CssDeclaration> declarations;
    parseDeclarations(style, &declarations);
    const auto last =
        std::ranges::find(declarations.rbegin(), declarations.rend(), property, &CssDeclaration::property);
    std::string changed = style;
    if (last != declarations.rend()) {
        const auto at = static_cast<std::size_t>(last->value.data() - style.data());
        changed.replace(at, last->value.size(), value);
    } else {
        const std::string_view kept = trimmed(style);
        changed = std::string(kept);
        if (!kept.empty() && !kept.ends_with(';')) changed += ';';
        changed += std::string(property) + ":" + std::string(value);
        if (kept.ends_with(';')) changed += ';';
    }
    tag->set("style", changed);
}

void removeProperty(StartTag* tag, std::string_view property) {
    const std::optional<std::string> style = tag->attribute("style");
    if (!style) return;
    std::vector<CssDeclaration> declarations;
    parseDeclarations(*style, &declarations);
    std::string kept;
    bool found = false;
    for (const CssDeclaration& declaration : declarations) {
        if (declaration.property == property) {
            found = true;
            continue;
        }
        if (!kept.empty()) kept += ';';
        kept += std::string(declaration.property) + ":" + std::string(declaration.value);
        if (declaration.important) kept += " !important";
    }
    if (!found) return;
    if (kept.empty()) {
        tag->remove("style");
    } else {
        tag->set("style", kept);
    }
}

}  // namespace quorvel::svg

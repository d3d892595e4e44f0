// A style sheet is split into rules once; each rule is filed under its rarest name, so that an element asks only the
// rules that may concern it.
#include "svg/css/style_sheet.h"

#include <algorithm>
#include <memory>

#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

// Names, rules and declarations looked at for all elements together. Real drawings have up to ten classes for each
// element and a few declarations for each class.
constexpr std::size_t kWorkAtLeast = 5'000'000;
constexpr std::size_t kWorkForEach = 100;
constexpr std::size_t kWorkAtMost = 150'000'000;
constexpr std::size_t kWorkForOne = 200'000;

// Where the next of the stops stands outside quotes, brackets and comments; the end when there is none.
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

// The HTML comment marks that some writers put round a sheet mean nothing.
void blankOut(std::string* text, std::string_view mark) {
    for (std::size_t at = text->find(mark); at != std::string::npos; at = text->find(mark, at)) {
        text->replace(at, mark.size(), mark.size(), ' ');
    }
}

}  // namespace

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

void StyleSheet::add(std::string text) {
    blankOut(&text, "<!--");
    blankOut(&text, "-->");
    texts_.push_back(std::make_unique<std::string>(std::move(text)));
    addRules(*texts_.back());
}

void StyleSheet::addRules(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t open = findOutside(text, at, "{;");
        const std::string_view prelude = withoutLeadingComments(text.substr(at, open - at));
        if (open == text.size() || text[open] == ';') {
            skippedSome_ |= !prelude.empty();
            at = open + 1;
            continue;
        }
        std::size_t close = findOutside(text, open + 1, "{}");
        if (prelude.starts_with('@')) {
            // A nested block ends with the brace that balances it.
            skippedSome_ = true;
            for (int depth = 1; close < text.size(); close = findOutside(text, close + 1, "{}")) {
                depth += text[close] == '{' ? 1 : -1;
                if (depth == 0) break;
            }
        } else {
            const std::size_t first = declarations_.size();
            parseDeclarations(text.substr(open + 1, close - open - 1), &declarations_);
            const std::size_t count = declarations_.size() - first;
            for (std::size_t from = 0; from <= prelude.size();) {
                const std::size_t comma = findOutside(prelude, from, ",");
                addSelector(withoutLeadingComments(prelude.substr(from, comma - from)), first, count);
                from = comma + 1;
            }
        }
        at = close + 1;
    }
}

void StyleSheet::addSelector(std::string_view selector, std::size_t first, std::size_t count) {
    Rule rule;
    rule.order = rules_.size();
    rule.firstDeclaration = first;
    rule.declarationCount = count;
    const auto isName = [](char c) {
        return c == '-' || c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
               static_cast<unsigned char>(c) >= 0x80;
    };
    std::size_t at = 0;
    const auto takeName = [&] {
        const std::size_t start = at;
        while (at < selector.size() && isName(selector[at])) ++at;
        return selector.substr(start, at - start);
    };
    bool understood = !selector.empty();
    while (understood && at < selector.size()) {
        const char mark = selector[at];
        if (mark == '*' && at == 0) {
            ++at;
            continue;
        }
        if (mark == '#' || mark == '.') ++at;
        const std::string_view name = takeName();
        understood = !name.empty();
        if (mark == '#') {
            rule.id = name;
            rule.specificity += 10000;
        } else if (mark == '.') {
            rule.classes.push_back(name);
            rule.specificity += 100;
        } else {
            rule.type = name;
            rule.specificity += 1;
        }
    }
    if (!understood) {
        skippedSome_ = true;
        return;
    }
    std::string key = "*";
    if (!rule.id.empty()) {
        key = "#" + std::string(rule.id);
    } else if (!rule.classes.empty()) {
        key = "." + std::string(rule.classes.front());
    } else if (!rule.type.empty()) {
        key = std::string(rule.type);
    }
    index_[key].push_back(rules_.size());
    rules_.push_back(std::move(rule));
}

StyleSheet::StyleSheet() : workLeft_(kWorkAtLeast) {}

void StyleSheet::expect(std::size_t elements) {
    workLeft_ = std::min(kWorkAtLeast + kWorkForEach * elements, kWorkAtMost);
}

bool StyleSheet::Asking::spend(std::size_t work) {
    if (work > workLeft) return false;
    workLeft -= work;
    return true;
}

// What is tried is paid for before.
bool StyleSheet::addFitting(const std::string& key, Asking* asking) const {
    const auto rules = index_.find(key);
    if (rules == index_.end()) return true;
    for (std::size_t number : rules->second) {
        const Rule& rule = rules_[number];
        if (!asking->spend(1 + rule.classes.size())) return false;
        const bool fits =
            (rule.type.empty() || rule.type == asking->type) && (rule.id.empty() || rule.id == asking->id) &&
            std::ranges::all_of(
                rule.classes, [&](std::string_view name) { return std::ranges::binary_search(asking->classes, name); });
        if (fits) asking->found.push_back(&rule);
    }
    return true;
}

bool StyleSheet::addFitting(Asking* asking) const {
    if (!addFitting("*", asking) || !addFitting(std::string(asking->type), asking)) return false;
    if (!asking->id.empty() && !addFitting("#" + std::string(asking->id), asking)) return false;
    return std::ranges::all_of(asking->classes,
                               [&](std::string_view name) { return addFitting("." + std::string(name), asking); });
}

bool StyleSheet::match(std::string_view type, std::string_view id, std::string_view classes,
                       std::vector<CssDeclaration>* declarations) const {
    Asking asking{type, id, {}, {}, std::min(workLeft_, kWorkForOne)};
    workLeft_ -= asking.workLeft;
    for (std::size_t at = 0; at < classes.size();) {
        std::size_t end = at;
        while (end < classes.size() && !isBlank(classes[end])) ++end;
        if (end > at) asking.classes.push_back(classes.substr(at, end - at));
        at = end + 1;
    }
    std::ranges::sort(asking.classes);
    asking.classes.erase(std::unique(asking.classes.begin(), asking.classes.end()), asking.classes.end());
    if (!asking.spend(asking.classes.size()) || !addFitting(&asking)) return false;
    std::ranges::sort(asking.found, [](const Rule* a, const Rule* b) {
        return a->specificity != b->specificity ? a->specificity < b->specificity : a->order < b->order;
    });
    for (const Rule* rule : asking.found) {
        if (!asking.spend(rule->declarationCount)) return false;
        const auto begin = declarations_.begin() + static_cast<std::ptrdiff_t>(rule->firstDeclaration);
        declarations->insert(declarations->end(), begin, begin + static_cast<std::ptrdiff_t>(rule->declarationCount));
    }
    workLeft_ += asking.workLeft;  // what it has not used
    return true;
}

}  // namespace quorvel::svg

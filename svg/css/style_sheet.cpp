// A style sheet is split into rules once; each rule is filed under its rarest name, so that an element asks only the
// rules that may concern it.
#include "svg/css/style_sheet.h"

#include <algorithm>
#include <memory>
#include <tuple>

#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

// Names, rules and declarations looked at for all elements together. Real drawings have up to ten classes for each
// element and a few declarations for each class.
constexpr std::size_t kWorkAtLeast = 5'000'000;
constexpr std::size_t kWorkForEach = 100;
constexpr std::size_t kWorkAtMost = 150'000'000;
constexpr std::size_t kWorkForOne = 200'000;

// The HTML comment marks that some writers put round a sheet mean nothing.
void blankOut(std::string* text, std::string_view mark) {
    for (std::size_t at = text->find(mark); at != std::string::npos; at = text->find(mark, at)) {
        text->replace(at, mark.size(), mark.size(), ' ');
    }
}

// Of a selector. A comment between its parts stays.
std::string_view withoutOuterComments(std::string_view text) {
    text = withoutLeadingComments(text);
    const std::size_t comment = std::min(text.find("/*"), text.size());
    return withoutLeadingComments(text.substr(comment)).empty() ? trimmed(text.substr(0, comment)) : text;
}

}  // namespace

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
            addBlock(prelude, text.substr(open + 1, close - open - 1));
        }
        at = close + 1;
    }
}

void StyleSheet::addBlock(std::string_view prelude, std::string_view block) {
    const std::size_t first = declarations_.size();
    parseDeclarations(block, &declarations_);
    for (std::size_t from = 0; from <= prelude.size();) {
        const std::size_t comma = findOutside(prelude, from, ",");
        std::optional<Selector> selector = parseSelector(withoutOuterComments(prelude.substr(from, comma - from)));
        from = comma + 1;
        if (!selector) {
            skippedSome_ = true;
            continue;
        }
        index_[selector->key()].push_back(rules_.size());
        rules_.push_back({*std::move(selector), rules_.size(), first, declarations_.size() - first});
    }
}

StyleSheet::StyleSheet() : workLeft_(kWorkAtLeast) {}

void StyleSheet::expect(std::size_t elements) {
    workLeft_ = std::min(kWorkAtLeast + kWorkForEach * elements, kWorkAtMost);
}

bool StyleSheet::Query::spend(std::size_t work) {
    if (work > workLeft) return false;
    workLeft -= work;
    return true;
}

// What is tried is paid for before.
bool StyleSheet::addMatches(const std::string& key, Query* query) const {
    const auto rules = index_.find(key);
    if (rules == index_.end()) return true;
    for (std::size_t number : rules->second) {
        const Rule& rule = rules_[number];
        if (matches(rule.selector, query->element, &query->workLeft)) query->found.push_back(&rule);
        if (!query->spend(1)) return false;
    }
    return true;
}

bool StyleSheet::addMatches(Query* query) const {
    const ElementNames& element = query->element;
    if (!addMatches("*", query) || !addMatches(std::string(element.type), query)) return false;
    if (!element.id.empty() && !addMatches("#" + std::string(element.id), query)) return false;
    return std::ranges::all_of(element.classes,
                               [&](std::string_view name) { return addMatches("." + std::string(name), query); });
}

bool StyleSheet::match(const ElementNames& element, std::vector<CssDeclaration>* declarations) const {
    Query query{element, {}, std::min(workLeft_, kWorkForOne)};
    workLeft_ -= query.workLeft;
    if (!query.spend(query.element.classes.size()) || !addMatches(&query)) return false;
    std::ranges::sort(query.found, [](const Rule* a, const Rule* b) {
        return std::tie(a->selector.specificity, a->order) < std::tie(b->selector.specificity, b->order);
    });
    for (const Rule* rule : query.found) {
        if (!query.spend(rule->declarationCount)) return false;
        const auto begin = declarations_.begin() + static_cast<std::ptrdiff_t>(rule->firstDeclaration);
        declarations->insert(declarations->end(), begin, begin + static_cast<std::ptrdiff_t>(rule->declarationCount));
    }
    workLeft_ += query.workLeft;  // what it has not used
    return true;
}

}  // namespace quorvel::svg

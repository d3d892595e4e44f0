#include "svg/css/selector.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "svg/css/declarations.h"
#include "svg/values/number.h"

namespace quorvel::svg {
namespace {

bool isNameCharacter(char c) {
    return c == '-' || c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           static_cast<unsigned char>(c) >= 0x80;
}

// --- parsing -------------------------------------------------------------------------------------------------------

// "odd", "even", "3", "2n+1", "-n + 3".
bool parseNth(std::string_view text, StructureTest* test) {
    std::string plain = lowerCase(text);
    std::erase_if(plain, [](char c) { return isBlank(c); });
    if (plain == "odd" || plain == "even") {
        test->step = 2;
        test->offset = plain == "odd" ? 1 : 0;
        return true;
    }
    const auto number = [](std::string_view digits, std::int32_t* value) {
        if (digits.starts_with('+')) digits.remove_prefix(1);
        constexpr double kLargest = 1e6;
        const std::optional<double> read = readWholeNumber(digits);
        if (!read || std::abs(*read) > kLargest || *read != std::nearbyint(*read)) return false;
        *value = static_cast<std::int32_t>(*read);
        return true;
    };
    const std::size_t n = plain.find('n');
    if (n == std::string::npos) {
        test->step = 0;
        return number(plain, &test->offset);
    }
    const std::string_view step = std::string_view(plain).substr(0, n), offset = std::string_view(plain).substr(n + 1);
    test->offset = 0;
    if (step.empty() || step == "+" || step == "-") {
        test->step = step == "-" ? -1 : 1;
    } else if (!number(step, &test->step)) {
        return false;
    }
    return offset.empty() || number(offset, &test->offset);
}

class SelectorParser {
  public:
    explicit SelectorParser(std::string_view text) : text_(text) {}

    std::optional<Selector> parse() {
        Selector selector;
        std::vector<Selector::Step> steps;
        char combinator = ' ';
        for (;;) {
            Compound compound;
            if (!readCompound(&compound)) return std::nullopt;
            const bool isLast = !readCombinator(&combinator);
            if (isLast && at_ != text_.size()) return std::nullopt;
            if (isLast) {
                static_cast<Compound&>(selector) = std::move(compound);
                break;
            }
            steps.push_back({combinator, std::move(compound)});
        }
        selector.before.assign(std::make_move_iterator(steps.rbegin()), std::make_move_iterator(steps.rend()));
        selector.specificity = specificity_;
        return selector;
    }

  private:
    char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    bool skipBlanksAndComments() {
        const std::size_t from = at_;
        for (;;) {
            while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
            if (!text_.substr(at_).starts_with("/*")) return at_ > from;
            const std::size_t end = text_.find("*/", at_ + 2);
            at_ = end == std::string_view::npos ? text_.size() : end + 2;
        }
    }

    bool readCombinator(char* combinator) {
        const bool isParted = skipBlanksAndComments();
        if (at_ == text_.size()) return false;
        const char mark = peek();
        if (mark == '>' || mark == '+' || mark == '~') {
            *combinator = mark;
            ++at_;
            skipBlanksAndComments();
            return true;
        }
        *combinator = ' ';
        return isParted;
    }

    std::string_view readName() {
        const std::size_t begin = at_;
        while (at_ < text_.size() && isNameCharacter(text_[at_])) ++at_;
        return text_.substr(begin, at_ - begin);
    }

    bool readCompound(Compound* compound) {
        const std::size_t begin = at_;
        if (peek() == '*') {
            ++at_;
        } else if (compound->type = readName(); !compound->type.empty()) {
            ++specificity_[2];
        }
        for (;;) {
            const char mark = peek();
            if (mark != '#' && mark != '.' && mark != '[' && mark != ':') return at_ > begin;
            ++at_;
            if (!readSimple(mark, compound)) return false;
        }
    }

    bool readSimple(char mark, Compound* compound) {
        if (mark == '[') return readAttribute(compound);
        const std::string_view name = readName();
        if (name.empty()) return false;
        if (mark == ':') return readPseudoClass(lowerCase(name), compound);
        ++specificity_[mark == '#' ? 0 : 1];
        if (mark == '.') {
            compound->classes.push_back(name);
            return true;
        }
        if (!compound->id.empty() && compound->id != name) return false;
        compound->id = name;
        return true;
    }

    bool readAttribute(Compound* compound) {
        AttributeTest test;
        ++specificity_[1];
        skipBlanksAndComments();
        test.name = readName();
        skipBlanksAndComments();
        if (test.name.empty()) return false;
        if (peek() != ']') {
            test.way = peek();
            ++at_;
            if (test.way != '=' &&
                (std::string_view("~|^$*").find(test.way) == std::string_view::npos || peek() != '='))
                return false;
            if (test.way != '=') ++at_;
            skipBlanksAndComments();
            if (!readValue(&test.value)) return false;
            skipBlanksAndComments();
        }
        if (peek() != ']') return false;
        ++at_;
        compound->attributes.push_back(test);
        return true;
    }

    bool readValue(std::string_view* value) {
        const char quote = peek();
        if (quote != '"' && quote != '\'') {
            *value = readName();
            return !value->empty();
        }
        const std::size_t end = text_.find(quote, at_ + 1);
        if (end == std::string_view::npos) return false;
        *value = text_.substr(at_ + 1, end - at_ - 1);
        at_ = end + 1;
        return value->find('\\') == std::string_view::npos;
    }

    bool readPseudoClass(const std::string& name, Compound* compound) {
        struct Row {
            std::string_view name;
            Structure kind;
            bool hasArgument;
        };
        static constexpr Row kRows[] = {{"root", Structure::kRoot, false},
                                        {"empty", Structure::kEmpty, false},
                                        {"first-child", Structure::kNthChild, false},
                                        {"last-child", Structure::kNthLastChild, false},
                                        {"first-of-type", Structure::kNthOfType, false},
                                        {"last-of-type", Structure::kNthLastOfType, false},
                                        {"nth-child", Structure::kNthChild, true},
                                        {"nth-last-child", Structure::kNthLastChild, true},
                                        {"nth-of-type", Structure::kNthOfType, true},
                                        {"nth-last-of-type", Structure::kNthLastOfType, true}};
        std::string_view argument;
        const bool hasArgument = peek() == '(';
        if (hasArgument && !readBracketed(&argument)) return false;
        if (name == "not" && hasArgument) return readExcluded(argument, compound);
        ++specificity_[1];
        if (name == "only-child" && !hasArgument) {
            compound->structures.push_back({Structure::kNthChild});
            compound->structures.push_back({Structure::kNthLastChild});
            return true;
        }
        const auto row = std::ranges::find_if(
            kRows, [&](const Row& one) { return one.name == name && one.hasArgument == hasArgument; });
        if (row == std::end(kRows)) return false;
        StructureTest test{row->kind};
        if (hasArgument && !parseNth(argument, &test)) return false;
        compound->structures.push_back(test);
        return true;
    }

    bool readBracketed(std::string_view* argument) {
        const std::size_t end = text_.find(')', at_);
        if (end == std::string_view::npos) return false;
        *argument = trimmed(text_.substr(at_ + 1, end - at_ - 1));
        at_ = end + 1;
        return true;
    }

    bool readExcluded(std::string_view argument, Compound* compound) {
        std::optional<Selector> excluded = parseSelector(argument);
        if (!excluded || !excluded->before.empty() || !excluded->excluded.empty()) return false;
        for (std::size_t i = 0; i < specificity_.size(); ++i) specificity_[i] += excluded->specificity[i];
        compound->excluded.push_back(static_cast<Compound&>(*excluded));
        return true;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::array<std::uint32_t, 3> specificity_{};
};

// --- matching ------------------------------------------------------------------------------------------------------

bool holdsOf(const AttributeTest& test, const XmlNode& node) {
    const XmlAttribute attribute = node.attribute(test.name);
    if (!attribute) return false;
    const std::string_view value = attribute.value(), asked = test.value;
    switch (test.way) {
        case 0:
            return true;
        case '=':
            return value == asked;
        case '~': {
            const std::vector<std::string_view> words = classList(value);
            return std::ranges::binary_search(words, asked);
        }
        case '|':
            return value.starts_with(asked) && (value.size() == asked.size() || value[asked.size()] == '-');
        case '^':
            return !asked.empty() && value.starts_with(asked);
        case '$':
            return !asked.empty() && value.ends_with(asked);
        default:
            return !asked.empty() && value.find(asked) != std::string_view::npos;
    }
}

class Matcher {
  public:
    Matcher(std::size_t* work, Unplaced unplaced) : work_(*work), unplaced_(unplaced) {}

    bool compoundHolds(const Compound& compound, const ElementNames& element) {
        if (!spend(1 + compound.classes.size() + compound.attributes.size())) return false;
        const bool namesHold = (compound.type.empty() || compound.type == element.type) &&
                               (compound.id.empty() || compound.id == element.id) &&
                               std::ranges::all_of(compound.classes, [&](std::string_view name) {
                                   return std::ranges::binary_search(element.classes, name);
                               });
        if (!namesHold) return false;
        if (!element.node && asksForPlace(compound)) return unplaced_ == Unplaced::kHolds;
        return std::ranges::all_of(compound.attributes,
                                   [&](const AttributeTest& test) { return holdsOf(test, element.node); }) &&
               std::ranges::all_of(compound.structures,
                                   [&](const StructureTest& test) { return holdsOf(test, element.node); }) &&
               std::ranges::none_of(compound.excluded,
                                    [&](const Compound& one) { return compoundHolds(one, element) || spent_; });
    }

    // The steps from the one of that number on hold for what is around the node.
    bool stepsHold(const Selector& selector, std::size_t number, const XmlNode& node) {
        if (number == selector.before.size()) return true;
        const Selector::Step& step = selector.before[number];
        const bool isOnce = step.combinator == '>' || step.combinator == '+';
        const bool isUp = step.combinator == '>' || step.combinator == ' ';
        for (XmlNode at = isUp ? node.parent() : elementBefore(node); at.isElement() && !spent_;
             at = isUp ? at.parent() : elementBefore(at)) {
            const ElementNames names{at.localName(), at.attribute("id").value(),
                                     classList(at.attribute("class").value()), at};
            if (compoundHolds(step.compound, names) && stepsHold(selector, number + 1, at)) return true;
            if (isOnce) return false;
        }
        return false;
    }

  private:
    static bool asksForPlace(const Compound& compound) {
        return !compound.attributes.empty() || !compound.structures.empty() || !compound.excluded.empty();
    }

    bool spend(std::size_t work) {
        spent_ |= work > work_;
        work_ = spent_ ? 0 : work_ - work;
        return !spent_;
    }

    XmlNode elementBefore(XmlNode node) {
        do node = node.previousSibling();
        while (node && !node.isElement() && spend(1));
        return node;
    }

    bool holdsOf(const AttributeTest& test, const XmlNode& node) const { return svg::holdsOf(test, node); }

    bool holdsOf(const StructureTest& test, const XmlNode& node) {
        if (test.kind == Structure::kRoot) return !node.parent().isElement();
        if (test.kind == Structure::kEmpty) return !node.firstChild();
        const bool isFromEnd = test.kind == Structure::kNthLastChild || test.kind == Structure::kNthLastOfType;
        const bool isOfType = test.kind == Structure::kNthOfType || test.kind == Structure::kNthLastOfType;
        std::int32_t number = 1;
        for (XmlNode at = isFromEnd ? node.nextSibling() : node.previousSibling(); at && spend(1);
             at = isFromEnd ? at.nextSibling() : at.previousSibling()) {
            number += at.isElement() && (!isOfType || at.name() == node.name()) ? 1 : 0;
            if (test.step == 0 && number > test.offset) return false;
        }
        const std::int32_t behind = number - test.offset;
        if (spent_ || test.step == 0) return !spent_ && behind == 0;
        return behind % test.step == 0 && behind / test.step >= 0;
    }

    std::size_t& work_;
    Unplaced unplaced_;
    bool spent_ = false;
};

}  // namespace

std::string Selector::key() const {
    if (!id.empty()) return "#" + std::string(id);
    if (!classes.empty()) return "." + std::string(classes.front());
    return type.empty() ? "*" : std::string(type);
}

std::optional<Selector> parseSelector(std::string_view text) { return SelectorParser(text).parse(); }

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

bool matches(const Selector& selector, const ElementNames& element, std::size_t* work) {
    Matcher matcher(work, element.unplaced);
    if (!matcher.compoundHolds(selector, element)) return false;
    if (selector.before.empty()) return true;
    return element.node ? matcher.stepsHold(selector, 0, element.node) : element.unplaced == Unplaced::kHolds;
}

}  // namespace quorvel::svg

// A style sheet is split into rules once; each rule is filed under its rarest name, so that an element asks only the
// rules that may concern it.
#include "host/css.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>

#include "host/svg_affine.h"

namespace quorvel::host {
namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

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

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::optional<double> readWholeNumber(std::string_view text) {
    text = trimmed(text);
    const char* at = text.data();
    const char* end = at + text.size();
    double value = 0;
    if (!readNumber(&at, end, &value) || at != end) return std::nullopt;
    return value;
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

namespace {

struct NamedColor {
    std::string_view name;
    unsigned rgb;
};

constexpr std::array kNamedColors = {NamedColor{"aliceblue", 0xf0f8ff},
                                     NamedColor{"antiquewhite", 0xfaebd7},
                                     NamedColor{"aqua", 0x00ffff},
                                     NamedColor{"aquamarine", 0x7fffd4},
                                     NamedColor{"azure", 0xf0ffff},
                                     NamedColor{"beige", 0xf5f5dc},
                                     NamedColor{"bisque", 0xffe4c4},
                                     NamedColor{"black", 0x000000},
                                     NamedColor{"blanchedalmond", 0xffebcd},
                                     NamedColor{"blue", 0x0000ff},
                                     NamedColor{"blueviolet", 0x8a2be2},
                                     NamedColor{"brown", 0xa52a2a},
                                     NamedColor{"burlywood", 0xdeb887},
                                     NamedColor{"cadetblue", 0x5f9ea0},
                                     NamedColor{"chartreuse", 0x7fff00},
                                     NamedColor{"chocolate", 0xd2691e},
                                     NamedColor{"coral", 0xff7f50},
                                     NamedColor{"cornflowerblue", 0x6495ed},
                                     NamedColor{"cornsilk", 0xfff8dc},
                                     NamedColor{"crimson", 0xdc143c},
                                     NamedColor{"cyan", 0x00ffff},
                                     NamedColor{"darkblue", 0x00008b},
                                     NamedColor{"darkcyan", 0x008b8b},
                                     NamedColor{"darkgoldenrod", 0xb8860b},
                                     NamedColor{"darkgray", 0xa9a9a9},
                                     NamedColor{"darkgreen", 0x006400},
                                     NamedColor{"darkgrey", 0xa9a9a9},
                                     NamedColor{"darkkhaki", 0xbdb76b},
                                     NamedColor{"darkmagenta", 0x8b008b},
                                     NamedColor{"darkolivegreen", 0x556b2f},
                                     NamedColor{"darkorange", 0xff8c00},
                                     NamedColor{"darkorchid", 0x9932cc},
                                     NamedColor{"darkred", 0x8b0000},
                                     NamedColor{"darksalmon", 0xe9967a},
                                     NamedColor{"darkseagreen", 0x8fbc8f},
                                     NamedColor{"darkslateblue", 0x483d8b},
                                     NamedColor{"darkslategray", 0x2f4f4f},
                                     NamedColor{"darkslategrey", 0x2f4f4f},
                                     NamedColor{"darkturquoise", 0x00ced1},
                                     NamedColor{"darkviolet", 0x9400d3},
                                     NamedColor{"deeppink", 0xff1493},
                                     NamedColor{"deepskyblue", 0x00bfff},
                                     NamedColor{"dimgray", 0x696969},
                                     NamedColor{"dimgrey", 0x696969},
                                     NamedColor{"dodgerblue", 0x1e90ff},
                                     NamedColor{"firebrick", 0xb22222},
                                     NamedColor{"floralwhite", 0xfffaf0},
                                     NamedColor{"forestgreen", 0x228b22},
                                     NamedColor{"fuchsia", 0xff00ff},
                                     NamedColor{"gainsboro", 0xdcdcdc},
                                     NamedColor{"ghostwhite", 0xf8f8ff},
                                     NamedColor{"gold", 0xffd700},
                                     NamedColor{"goldenrod", 0xdaa520},
                                     NamedColor{"gray", 0x808080},
                                     NamedColor{"green", 0x008000},
                                     NamedColor{"greenyellow", 0xadff2f},
                                     NamedColor{"grey", 0x808080},
                                     NamedColor{"honeydew", 0xf0fff0},
                                     NamedColor{"hotpink", 0xff69b4},
                                     NamedColor{"indianred", 0xcd5c5c},
                                     NamedColor{"indigo", 0x4b0082},
                                     NamedColor{"ivory", 0xfffff0},
                                     NamedColor{"khaki", 0xf0e68c},
                                     NamedColor{"lavender", 0xe6e6fa},
                                     NamedColor{"lavenderblush", 0xfff0f5},
                                     NamedColor{"lawngreen", 0x7cfc00},
                                     NamedColor{"lemonchiffon", 0xfffacd},
                                     NamedColor{"lightblue", 0xadd8e6},
                                     NamedColor{"lightcoral", 0xf08080},
                                     NamedColor{"lightcyan", 0xe0ffff},
                                     NamedColor{"lightgoldenrodyellow", 0xfafad2},
                                     NamedColor{"lightgray", 0xd3d3d3},
                                     NamedColor{"lightgreen", 0x90ee90},
                                     NamedColor{"lightgrey", 0xd3d3d3},
                                     NamedColor{"lightpink", 0xffb6c1},
                                     NamedColor{"lightsalmon", 0xffa07a},
                                     NamedColor{"lightseagreen", 0x20b2aa},
                                     NamedColor{"lightskyblue", 0x87cefa},
                                     NamedColor{"lightslategray", 0x778899},
                                     NamedColor{"lightslategrey", 0x778899},
                                     NamedColor{"lightsteelblue", 0xb0c4de},
                                     NamedColor{"lightyellow", 0xffffe0},
                                     NamedColor{"lime", 0x00ff00},
                                     NamedColor{"limegreen", 0x32cd32},
                                     NamedColor{"linen", 0xfaf0e6},
                                     NamedColor{"magenta", 0xff00ff},
                                     NamedColor{"maroon", 0x800000},
                                     NamedColor{"mediumaquamarine", 0x66cdaa},
                                     NamedColor{"mediumblue", 0x0000cd},
                                     NamedColor{"mediumorchid", 0xba55d3},
                                     NamedColor{"mediumpurple", 0x9370db},
                                     NamedColor{"mediumseagreen", 0x3cb371},
                                     NamedColor{"mediumslateblue", 0x7b68ee},
                                     NamedColor{"mediumspringgreen", 0x00fa9a},
                                     NamedColor{"mediumturquoise", 0x48d1cc},
                                     NamedColor{"mediumvioletred", 0xc71585},
                                     NamedColor{"midnightblue", 0x191970},
                                     NamedColor{"mintcream", 0xf5fffa},
                                     NamedColor{"mistyrose", 0xffe4e1},
                                     NamedColor{"moccasin", 0xffe4b5},
                                     NamedColor{"navajowhite", 0xffdead},
                                     NamedColor{"navy", 0x000080},
                                     NamedColor{"oldlace", 0xfdf5e6},
                                     NamedColor{"olive", 0x808000},
                                     NamedColor{"olivedrab", 0x6b8e23},
                                     NamedColor{"orange", 0xffa500},
                                     NamedColor{"orangered", 0xff4500},
                                     NamedColor{"orchid", 0xda70d6},
                                     NamedColor{"palegoldenrod", 0xeee8aa},
                                     NamedColor{"palegreen", 0x98fb98},
                                     NamedColor{"paleturquoise", 0xafeeee},
                                     NamedColor{"palevioletred", 0xdb7093},
                                     NamedColor{"papayawhip", 0xffefd5},
                                     NamedColor{"peachpuff", 0xffdab9},
                                     NamedColor{"peru", 0xcd853f},
                                     NamedColor{"pink", 0xffc0cb},
                                     NamedColor{"plum", 0xdda0dd},
                                     NamedColor{"powderblue", 0xb0e0e6},
                                     NamedColor{"purple", 0x800080},
                                     NamedColor{"rebeccapurple", 0x663399},
                                     NamedColor{"red", 0xff0000},
                                     NamedColor{"rosybrown", 0xbc8f8f},
                                     NamedColor{"royalblue", 0x4169e1},
                                     NamedColor{"saddlebrown", 0x8b4513},
                                     NamedColor{"salmon", 0xfa8072},
                                     NamedColor{"sandybrown", 0xf4a460},
                                     NamedColor{"seagreen", 0x2e8b57},
                                     NamedColor{"seashell", 0xfff5ee},
                                     NamedColor{"sienna", 0xa0522d},
                                     NamedColor{"silver", 0xc0c0c0},
                                     NamedColor{"skyblue", 0x87ceeb},
                                     NamedColor{"slateblue", 0x6a5acd},
                                     NamedColor{"slategray", 0x708090},
                                     NamedColor{"slategrey", 0x708090},
                                     NamedColor{"snow", 0xfffafa},
                                     NamedColor{"springgreen", 0x00ff7f},
                                     NamedColor{"steelblue", 0x4682b4},
                                     NamedColor{"tan", 0xd2b48c},
                                     NamedColor{"teal", 0x008080},
                                     NamedColor{"thistle", 0xd8bfd8},
                                     NamedColor{"tomato", 0xff6347},
                                     NamedColor{"turquoise", 0x40e0d0},
                                     NamedColor{"violet", 0xee82ee},
                                     NamedColor{"wheat", 0xf5deb3},
                                     NamedColor{"white", 0xffffff},
                                     NamedColor{"whitesmoke", 0xf5f5f5},
                                     NamedColor{"yellow", 0xffff00},
                                     NamedColor{"yellowgreen", 0x9acd32}};
static_assert(std::ranges::is_sorted(kNamedColors, {}, &NamedColor::name));

CssColor fromBytes(unsigned rgb) { return {(rgb >> 16 & 255) / 255.0, (rgb >> 8 & 255) / 255.0, (rgb & 255) / 255.0}; }

std::optional<CssColor> parseHex(std::string_view digits) {
    unsigned value = 0;
    const auto [end, status] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (status != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    if (digits.size() == 8 || digits.size() == 4) value >>= digits.size() == 8 ? 8 : 4;  // alpha
    if (digits.size() == 6 || digits.size() == 8) return fromBytes(value);
    if (digits.size() != 3 && digits.size() != 4) return std::nullopt;
    return fromBytes((value >> 8 & 15) * 0x110000 + (value >> 4 & 15) * 0x1100 + (value & 15) * 0x11);
}

std::optional<CssColor> parseRgb(std::string_view arguments) {
    const char* at = arguments.data();
    const char* end = at + arguments.size();
    double channels[3];
    for (double& channel : channels) {
        skipSeparator(&at, end);
        if (!readNumber(&at, end, &channel)) return std::nullopt;
        if (at != end && *at == '%') {
            ++at;
            channel /= 100;
        } else {
            channel /= 255;
        }
        channel = std::clamp(channel, 0.0, 1.0);
    }
    return CssColor{channels[0], channels[1], channels[2]};
}

}  // namespace

std::optional<CssColor> parseColor(std::string_view text) {
    text = trimmed(text);
    if (text.starts_with('#')) return parseHex(text.substr(1));
    const std::size_t open = text.find('(');
    if (open != std::string_view::npos && text.ends_with(')')) {
        const std::string_view function = text.substr(0, open);
        if (function != "rgb" && function != "rgba") return std::nullopt;
        return parseRgb(text.substr(open + 1, text.size() - open - 2));
    }
    std::array<char, 24> lower{};
    if (text.size() > lower.size()) return std::nullopt;
    std::ranges::transform(text, lower.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
    const std::string_view name(lower.data(), text.size());
    const auto row = std::ranges::lower_bound(kNamedColors, name, {}, &NamedColor::name);
    if (row == kNamedColors.end() || row->name != name) return std::nullopt;
    return fromBytes(row->rgb);
}

std::string_view lengthUnit(std::string_view text) {
    text = trimmed(text);
    const char* at = text.data();
    const char* end = at + text.size();
    double number = 0;
    if (!readNumber(&at, end, &number)) return {};
    return trimmed({at, static_cast<std::size_t>(end - at)});
}

std::optional<double> parseLength(std::string_view text, const LengthContext& context) {
    text = trimmed(text);
    const char* at = text.data();
    const char* end = at + text.size();
    double number = 0;
    if (!readNumber(&at, end, &number)) return std::nullopt;
    struct Unit {
        std::string_view name;
        double pixels;
    };
    static constexpr Unit kUnits[] = {{"", 1},           {"px", 1},         {"pt", 96.0 / 72}, {"pc", 16},
                                      {"mm", 96 / 25.4}, {"cm", 96 / 2.54}, {"in", 96},        {"Q", 96 / 101.6}};
    const std::string_view unit = trimmed({at, static_cast<std::size_t>(end - at)});
    for (const Unit& row : kUnits) {
        if (row.name == unit) return number * row.pixels;
    }
    if (unit == "%") return number / 100 * context.percentOf;
    if (unit == "em" || unit == "rem") return number * context.fontSize;
    if (unit == "ex") return number * context.fontSize / 2;
    return std::nullopt;
}

}  // namespace quorvel::host

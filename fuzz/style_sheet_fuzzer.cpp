// A small drawing with style sheets, style attributes and presentation attributes is made from the input, with blanks,
// comments and capitals where CSS takes no notice of them. The computed style of each element is held against a plain
// cascade, which sorts all declarations of a property and knows no text.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "fuzz/require.h"
#include "svg/tree/file.h"

using namespace quorvel;
using fuzz::require;

namespace {

// --- what can be declared ----------------------------------------------------------------------------------------

enum class Sort : std::uint8_t { kNumber, kOfFontSize, kOfParent, kInherit, kInitial, kUnset, kInvalid };

struct ValueRow {
    const char* text;
    Sort sort = Sort::kInvalid;
    double number = 0;
};

constexpr ValueRow kInherit{"inherit", Sort::kInherit}, kInitial{"initial", Sort::kInitial},
    kUnset{"unset", Sort::kUnset}, kNonsense{"nonsense"}, kNone{};

struct PropertyRow {
    const char* name;
    bool isInherited;
    double initial;
    double (*computed)(const svg::ComputedStyle& style);
    std::array<ValueRow, 10> values;  // up to kNone
};

// A paint as one number.
constexpr double kNoPaint = -1, kCurrentColor = -2;
double colorNumber(const svg::CssColor& c) {
    const auto byte = [](double share) { return std::round(share * 255); };
    return (byte(c.r) * 256 + byte(c.g)) * 256 + byte(c.b);
}
double paintNumber(const svg::SvgPaint& paint) {
    if (paint.kind == svg::SvgPaint::kNone) return kNoPaint;
    return paint.kind == svg::SvgPaint::kCurrentColor ? kCurrentColor : colorNumber(paint.color);
}

using Style = svg::ComputedStyle;
constexpr Sort kNumber = Sort::kNumber;
// The font size is the first: others are counted by it.
constexpr PropertyRow kProperties[] = {
    {"font-size",
     true,
     16,
     [](const Style& s) { return s.fontSize; },
     {{{"10px", kNumber, 10},
       {"2em", Sort::kOfParent, 2},
       {"50%", Sort::kOfParent, 0.5},
       {"larger", Sort::kOfParent, 1.2},
       {"x-small", kNumber, 10},
       kInherit,
       kInitial,
       kNonsense,
       kNone}}},
    {"fill",
     true,
     0,
     [](const Style& s) { return paintNumber(s.fill); },
     {{{"red", kNumber, 0xff0000},
       {"#0Af", kNumber, 0x00aaff},
       {"rgb(1, 2,3)", kNumber, 0x010203},
       {"none", kNumber, kNoPaint},
       {"currentColor", kNumber, kCurrentColor},
       kInherit,
       kInitial,
       kUnset,
       kNone}}},
    {"color",
     true,
     0,
     [](const Style& s) { return colorNumber(s.color); },
     {{{"lime", kNumber, 0x00ff00}, {"#123456", kNumber, 0x123456}, kInherit, kInitial, kNonsense, kNone}}},
    {"stroke-width",
     true,
     1,
     [](const Style& s) { return s.strokeWidth; },
     {{{"3", kNumber, 3},
       {".5px", kNumber, 0.5},
       {"2em", Sort::kOfFontSize, 2},
       {"1in", kNumber, 96},
       kInherit,
       kUnset,
       kNonsense,
       {"-1"},
       kNone}}},
    {"stroke-dasharray",
     true,
     0,
     [](const Style& s) { return s.dashes[0] + 100 * s.dashes[1]; },
     {{{"1 2", kNumber, 201}, {"3, 4px", kNumber, 403}, {"none", kNumber, 0}, kInherit, kNonsense, {"1 -2"}, kNone}}},
    {"paint-order",
     true,
     5,
     [](const Style& s) { return 9.0 * int(s.paintOrder[0]) + 3 * int(s.paintOrder[1]) + int(s.paintOrder[2]); },
     {{{"normal", kNumber, 5},
       {"stroke", kNumber, 11},
       {"markers stroke", kNumber, 21},
       {"fill markers stroke", kNumber, 7},
       kInherit,
       kInitial,
       kNonsense,
       kNone}}},
    {"opacity",
     false,
     1,
     [](const Style& s) { return s.opacity; },
     {{{"0.5", kNumber, 0.5},
       {"25%", kNumber, 0.25},
       {"7", kNumber, 1},
       {"-1e0", kNumber, 0},
       kInherit,
       kInitial,
       kUnset,
       kNonsense,
       kNone}}},
    {"stroke-linecap",
     true,
     0,
     [](const Style& s) { return double(s.cap); },
     {{{"butt", kNumber, 0}, {"round", kNumber, 1}, {"square", kNumber, 2}, kInherit, kNonsense, kNone}}},
    {"visibility",
     true,
     1,
     [](const Style& s) { return double(s.visible); },
     {{{"visible", kNumber, 1},
       {"hidden", kNumber, 0},
       {"collapse", kNumber, 0},
       kInherit,
       kInitial,
       kNonsense,
       kNone}}},
    {"text-anchor",
     true,
     0,
     [](const Style& s) { return s.anchor == kJustifyLeft     ? 0.0
                                 : s.anchor == kJustifyCenter ? 1.0
                                                              : 2.0; },
     {{{"start", kNumber, 0}, {"middle", kNumber, 1}, {"end", kNumber, 2}, kUnset, kNonsense, kNone}}},
    {"letter-spacing",
     true,
     0,
     [](const Style& s) { return s.letterSpacing; },
     {{{"normal", kNumber, 0}, {"3px", kNumber, 3}, {"-1em", Sort::kOfFontSize, -1}, kInherit, kNonsense, kNone}}},
    {"mix-blend-mode",
     false,
     0,
     [](const Style& s) { return double(s.blendMode); },
     {{{"normal", kNumber, 0}, {"multiply", kNumber, 1}, {"luminosity", kNumber, 15}, kInherit, kNonsense, kNone}}},
};
constexpr std::size_t kPropertyCount = std::size(kProperties);

// --- the drawing -------------------------------------------------------------------------------------------------

struct Declaration {
    std::size_t property;
    ValueRow value;
    bool isImportant;
};

struct Selector {
    int type, id;           // -1: any
    unsigned classes;       // one bit each
    unsigned classesTwice;  // those that are named a second time
};

struct Rule {
    std::vector<Selector> selectors;
    std::vector<Declaration> declarations;
};

struct DrawnElement {
    int type = 0, parent = -1;
    unsigned classes = 0;
    std::vector<Declaration> attributes, inlineStyle;
};

constexpr const char* kTypes[] = {"svg", "g", "path", "rect"};
constexpr const char* kClasses[] = {"a", "B", "c-1", "_d"};

// Makes the drawing and its text together.
class Maker {
  public:
    Maker(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

    void make() {
        for (int i = upTo(8); i > 0; --i) rules_.push_back(rule());
        const int count = 1 + upTo(6);
        for (int i = 0; i < count; ++i) elements_.push_back(element(i));
    }

    std::string text() {
        std::string sheets[2];
        const std::size_t split = static_cast<std::size_t>(upTo(8));
        for (std::size_t i = 0; i < rules_.size(); ++i) sheets[i < split ? 0 : 1] += written(rules_[i]);
        std::string made = written(0, styleElement(sheets[0]));
        made.insert(made.rfind("</svg>"), styleElement(sheets[1]));
        return made;
    }

    const std::vector<DrawnElement>& elements() const { return elements_; }
    const std::vector<Rule>& rules() const { return rules_; }

  private:
    int upTo(int last) { return bytes_.ConsumeIntegralInRange<int>(0, last); }
    bool isOneIn(int count) { return upTo(count - 1) == 1; }

    Declaration declaration(bool mayBeImportant) {
        const auto property = static_cast<std::size_t>(upTo(int{kPropertyCount} - 1));
        const auto& values = kProperties[property].values;
        const auto count = std::ranges::find(values, nullptr, &ValueRow::text) - values.begin();
        const ValueRow value = values[static_cast<std::size_t>(upTo(static_cast<int>(count) - 1))];
        return {property, value, mayBeImportant && isOneIn(4)};
    }
    std::vector<Declaration> declarations(int most, bool mayBeImportant) {
        std::vector<Declaration> made;
        for (int i = upTo(most); i > 0; --i) made.push_back(declaration(mayBeImportant));
        return made;
    }
    Selector selector() {
        const auto classes = static_cast<unsigned>(upTo(15));
        return {upTo(4) - 1, upTo(9) - 3, classes, classes & static_cast<unsigned>(upTo(15))};
    }
    Rule rule() {
        Rule made{{selector()}, declarations(4, true)};
        while (isOneIn(3)) made.selectors.push_back(selector());
        return made;
    }
    DrawnElement element(int number) {
        if (number == 0) return {0, -1, 0, declarationsOnce(), declarations(3, true)};
        return {1 + upTo(2), upTo(number - 1), static_cast<unsigned>(upTo(15)), declarationsOnce(),
                declarations(3, true)};
    }
    // An attribute is there once.
    std::vector<Declaration> declarationsOnce() {
        std::vector<Declaration> made = declarations(3, false);
        std::ranges::stable_sort(made, {}, &Declaration::property);
        made.erase(std::unique(made.begin(), made.end(),
                               [](const auto& a, const auto& b) { return a.property == b.property; }),
                   made.end());
        return made;
    }

    // --- as text -------------------------------------------------------------------------------------------------
    std::string noise() {
        static constexpr const char* kNoise[] = {"",     "",     "",          "",           "",      " ",
                                                 "\n\t", "/**/", "/* ;}{ */", "/*'\"(<*/ ", "\r\n ", "/* : ! , */"};
        return kNoise[upTo(int{std::size(kNoise)} - 1)];
    }
    std::string recased(std::string word) {
        if (isOneIn(4))
            std::ranges::transform(word, word.begin(), [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
        return word;
    }
    std::string written(const Declaration& one) {
        std::string text = noise() + recased(kProperties[one.property].name) + noise() + ":" + noise();
        for (const char c : recased(one.value.text)) text += c == ' ' ? " " + noise() : std::string(1, c);
        text += noise();
        if (one.isImportant) text += "!" + noise() + recased("important") + noise();
        return text;
    }
    std::string written(const std::vector<Declaration>& all) {
        std::string text = isOneIn(8) ? ";" : "";
        for (const Declaration& one : all) text += written(one) + (isOneIn(8) ? ";;" : ";");
        if (!all.empty() && isOneIn(2)) text.pop_back();
        return text + noise();
    }
    std::string written(const Selector& selector) {
        std::string text = selector.type >= 0 ? kTypes[selector.type] : "";
        const auto classes = [&](unsigned bits) {
            for (std::size_t i = 0; i < std::size(kClasses); ++i)
                if ((bits >> i & 1) != 0) text += std::string(".") + kClasses[i];
        };
        classes(selector.classes);
        if (selector.id >= 0) text += "#e" + std::to_string(selector.id);
        classes(selector.classesTwice);
        return text.empty() ? "*" : text;
    }
    std::string written(const Rule& rule) {
        static constexpr const char* kPassedOver[] = {"",
                                                      "",
                                                      "",
                                                      "",
                                                      "@import url(x.css);",
                                                      "@media print{*{fill:red!important}}",
                                                      "@font-face{font-family:\"}\";src:url(x)}",
                                                      "<!--",
                                                      "-->"};
        std::string text = noise() + kPassedOver[upTo(int{std::size(kPassedOver)} - 1)] + noise();
        for (std::size_t i = 0; i < rule.selectors.size(); ++i)
            text += (i == 0 ? "" : ",") + noise() + written(rule.selectors[i]) + noise();
        return text + "{" + written(rule.declarations) + "}" + noise();
    }
    static std::string escaped(const std::string& text) {
        std::string made;
        for (const char c : text) {
            if (c == '<')
                made += "&lt;";
            else if (c == '"')
                made += "&quot;";
            else if (c < ' ')
                made += "&#" + std::to_string(int{c}) + ";";
            else
                made += c;
        }
        return made;
    }
    std::string styleElement(const std::string& sheet) {
        return "<style>" + (isOneIn(2) ? escaped(sheet) : "<![CDATA[" + sheet + "]]>") + "</style>";
    }
    std::string written(int number, const std::string& inside) {
        const DrawnElement& one = elements_[static_cast<std::size_t>(number)];
        std::string text = std::string("<") + kTypes[one.type] + " id=\"e" + std::to_string(number) + "\"";
        if (number == 0) text += " xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"";
        std::string classes;
        for (std::size_t i = 0; i < std::size(kClasses); ++i)
            if ((one.classes >> i & 1) != 0) classes = kClasses[i] + std::string(isOneIn(2) ? "\n" : " ") + classes;
        if (!classes.empty()) text += " class=\"" + escaped(classes) + "\"";
        std::vector<Declaration> attributes = one.attributes;
        if (isOneIn(2)) std::ranges::reverse(attributes);
        for (const Declaration& attribute : attributes)
            text +=
                std::string(" ") + kProperties[attribute.property].name + "=\"" + recased(attribute.value.text) + "\"";
        if (!one.inlineStyle.empty()) text += " style=\"" + escaped(written(one.inlineStyle)) + "\"";
        text += ">" + inside;
        for (std::size_t i = 1; i < elements_.size(); ++i)
            if (elements_[i].parent == number) text += written(static_cast<int>(i), "");
        return text + "</" + kTypes[one.type] + ">";
    }

    FuzzedDataProvider bytes_;
    std::vector<DrawnElement> elements_;
    std::vector<Rule> rules_;
};

// --- the plain cascade -------------------------------------------------------------------------------------------

// The later one of two that are equal wins.
using Weight = std::tuple<bool, int, int, int, int>;  // important; place; ids, classes, types of the selector

std::optional<Weight> weightOf(const Selector& selector, const DrawnElement& element, int number, bool isImportant) {
    const bool matches = (selector.type < 0 || selector.type == element.type) &&
                         (selector.id < 0 || selector.id == number) &&
                         (selector.classes & element.classes) == selector.classes;
    if (!matches) return std::nullopt;
    const int classes = __builtin_popcount(selector.classes) + __builtin_popcount(selector.classesTwice);
    return Weight{isImportant, 1, selector.id >= 0, classes, selector.type >= 0};
}

using Values = std::array<double, kPropertyCount>;

class PlainCascade {
  public:
    explicit PlainCascade(const Maker& drawing) : drawing_(drawing) {}

    Values compute(int number) {
        Values parent;
        std::ranges::transform(kProperties, parent.begin(), [](const PropertyRow& row) { return row.initial; });
        const DrawnElement& element = drawing_.elements()[static_cast<std::size_t>(number)];
        if (element.parent >= 0) parent = compute(element.parent);
        Values values = parent;
        for (std::size_t i = 0; i < kPropertyCount; ++i)
            values[i] = resolved(i, winner(element, number, i), parent, values[0]);
        return values;
    }

  private:
    ValueRow winner(const DrawnElement& element, int number, std::size_t property) const {
        ValueRow best = kUnset;
        std::optional<Weight> bestWeight;
        const auto offer = [&](const Declaration& one, const std::optional<Weight>& weight) {
            if (one.property != property || one.value.sort == Sort::kInvalid || !weight) return;
            if (bestWeight && *weight < *bestWeight) return;
            best = one.value;
            bestWeight = weight;
        };
        for (const Declaration& one : element.attributes) offer(one, Weight{false, 0, 0, 0, 0});
        for (const Rule& rule : drawing_.rules())
            for (const Selector& selector : rule.selectors)
                for (const Declaration& one : rule.declarations)
                    offer(one, weightOf(selector, element, number, one.isImportant));
        for (const Declaration& one : element.inlineStyle) offer(one, Weight{one.isImportant, 2, 0, 0, 0});
        return best;
    }

    static double resolved(std::size_t property, const ValueRow& value, const Values& parent, double fontSize) {
        const PropertyRow& row = kProperties[property];
        switch (value.sort) {
            case Sort::kNumber:
                return value.number;
            case Sort::kOfFontSize:
                return value.number * fontSize;
            case Sort::kOfParent:
                return value.number * parent[property];
            case Sort::kInitial:
                return row.initial;
            case Sort::kInherit:
                return parent[property];
            default:
                return row.isInherited ? parent[property] : row.initial;
        }
    }

    const Maker& drawing_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Maker drawing(data, size);
    drawing.make();
    const std::string text = drawing.text();
    fuzz::show(text);
    const auto file = svg::File::open(text);
    require(static_cast<bool>(file));
    PlainCascade plain(drawing);
    for (std::size_t i = 0; i < drawing.elements().size(); ++i) {
        svg::ComputedStyle style;
        require((*file)->cascade().computeInPlace((*file)->find("e" + std::to_string(i)), 1, &style));
        const Values expected = plain.compute(static_cast<int>(i));
        for (std::size_t k = 0; k < kPropertyCount; ++k) {
            const double found = kProperties[k].computed(style);
            const bool isSame = std::abs(found - expected[k]) <= 1e-9 * std::max(1.0, std::abs(expected[k]));
            if (!isSame) std::fprintf(stderr, "e%zu %s: %g, not %g\n", i, kProperties[k].name, found, expected[k]);
            require(isSame);
        }
    }
    return 0;
}

// A small drawing with style sheets, style attributes and presentation attributes is made from the input, with blanks,
// comments and capitals where CSS takes no notice of them. The computed style of each element is held against a plain
// cascade, which sorts all declarations of a property and knows no text.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "fuzz/require.h"
#include "svg/tree/file.h"

using namespace quorvel;
using fuzz::require;

namespace {

// --- what can be declared ----------------------------------------------------------------------------------------

using Style = svg::ComputedStyle;

struct Value {
    std::string text;
    char sort =
        '=';  // '=' a number, 'e' times the font size, 'p' times the parent's, '^' inherited, '0' initial, 'u' unset,
              // '!' no value
    double number = 0;
};

struct Property {
    const char* name;
    bool isInherited;
    double initial;
    double (*computed)(const Style& style);
    const char* values;  // each with what it comes to behind a blank; those of all properties apart
};

// A paint as one number.
double colorNumber(const svg::CssColor& c) {
    const auto byte = [](double share) { return std::round(share * 255); };
    return (byte(c.r) * 256 + byte(c.g)) * 256 + byte(c.b);
}
double paintNumber(const svg::SvgPaint& paint) {
    if (paint.kind == svg::SvgPaint::kNone) return -1;
    return paint.kind == svg::SvgPaint::kCurrentColor ? -2 : colorNumber(paint.color);
}

// The font size is the first: others are counted by it.
constexpr Property kProperties[] = {
    {"font-size", true, 16, [](const Style& s) { return s.fontSize; },
     "10px =10;2em p2;50% p0.5;larger p1.2;x-small =10;nonsense !"},
    {"fill", true, 0, [](const Style& s) { return paintNumber(s.fill); },
     "red =16711680;#0Af =43775;rgb(1, 2,3) =66051;none =-1;currentColor =-2"},
    {"color", true, 0, [](const Style& s) { return colorNumber(s.color); }, "lime =65280;#123456 =1193046;nonsense !"},
    {"stroke-width", true, 1, [](const Style& s) { return s.strokeWidth; },
     "3 =3;.5px =0.5;2em e2;1in =96;nonsense !;-1 !"},
    {"stroke-dasharray", true, 0, [](const Style& s) { return s.dashes[0] + 100 * s.dashes[1]; },
     "1 2 =201;3, 4px =403;none =0;nonsense !;1 -2 !"},
    {"paint-order", true, 5,
     [](const Style& s) { return 9.0 * int(s.paintOrder[0]) + 3 * int(s.paintOrder[1]) + int(s.paintOrder[2]); },
     "normal =5;stroke =11;markers stroke =21;fill markers stroke =7;nonsense !"},
    {"opacity", false, 1, [](const Style& s) { return s.opacity; }, "0.5 =0.5;25% =0.25;7 =1;-1e0 =0;nonsense !"},
    {"stroke-linecap", true, 0, [](const Style& s) { return double(s.cap); }, "butt =0;round =1;square =2;nonsense !"},
    {"visibility", true, 1, [](const Style& s) { return double(s.visible); },
     "visible =1;hidden =0;collapse =0;nonsense !"},
    {"text-anchor", true, kJustifyLeft, [](const Style& s) { return double(s.anchor); },
     "start =0;end =1;middle =2;nonsense !"},
    {"letter-spacing", true, 0, [](const Style& s) { return s.letterSpacing; }, "normal =0;3px =3;-1em e-1;nonsense !"},
    {"mix-blend-mode", false, 0, [](const Style& s) { return double(s.blendMode); },
     "normal =0;multiply =1;luminosity =15;nonsense !"}};
constexpr std::size_t kPropertyCount = std::size(kProperties);
static_assert(kJustifyLeft == 0 && kJustifyRight == 1 && kJustifyCenter == 2);

const std::vector<Value>& valuesOf(std::size_t property) {
    static const auto all = [] {
        std::array<std::vector<Value>, kPropertyCount> made;
        for (std::size_t i = 0; i < kPropertyCount; ++i) {
            std::istringstream rows(std::string(kProperties[i].values) + ";inherit ^;initial 0;unset u");
            for (std::string row; std::getline(rows, row, ';');) {
                const std::size_t end = row.rfind(' ');
                made[i].push_back({row.substr(0, end), row[end + 1], std::strtod(row.c_str() + end + 2, nullptr)});
            }
        }
        return made;
    }();
    return all[property];
}

// --- the drawing -------------------------------------------------------------------------------------------------

struct Declaration {
    std::size_t property;
    Value value;
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
        const std::vector<Value>& values = valuesOf(property);
        return {property, values[static_cast<std::size_t>(upTo(static_cast<int>(values.size()) - 1))],
                mayBeImportant && isOneIn(4)};
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
        DrawnElement made;
        if (number > 0) made = {1 + upTo(2), upTo(number - 1), static_cast<unsigned>(upTo(15)), {}, {}};
        for (const Declaration& one : declarations(3, false))  // an attribute is there once
            if (std::ranges::find(made.attributes, one.property, &Declaration::property) == made.attributes.end())
                made.attributes.push_back(one);
        made.inlineStyle = declarations(3, true);
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
        for (const Declaration& attribute : one.attributes)
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
        std::ranges::transform(kProperties, parent.begin(), &Property::initial);
        const DrawnElement& element = drawing_.elements()[static_cast<std::size_t>(number)];
        if (element.parent >= 0) parent = compute(element.parent);
        Values values = parent;
        for (std::size_t i = 0; i < kPropertyCount; ++i)
            values[i] = resolved(i, winner(element, number, i), parent, values[0]);
        return values;
    }

  private:
    Value winner(const DrawnElement& element, int number, std::size_t property) const {
        Value best{"", 'u'};
        std::optional<Weight> bestWeight;
        const auto offer = [&](const Declaration& one, const std::optional<Weight>& weight) {
            if (one.property != property || one.value.sort == '!' || !weight) return;
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

    static double resolved(std::size_t property, const Value& value, const Values& parent, double fontSize) {
        const bool isInherited = value.sort == '^' || (value.sort == 'u' && kProperties[property].isInherited);
        if (isInherited) return parent[property];
        if (value.sort == '0' || value.sort == 'u') return kProperties[property].initial;
        return value.number * (value.sort == 'e' ? fontSize : value.sort == 'p' ? parent[property] : 1);
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

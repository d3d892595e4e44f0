#include "render/text/text_characters.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "interchange/svg/own_attributes.h"
#include "svg/markup/element_spans.h"
#include "svg/markup/entities.h"
#include "svg/markup/xml_file.h"
#include "svg/values/length.h"
#include "svg/values/number.h"
#include "svg/values/utf8.h"

namespace quorvel::render {
namespace {

constexpr std::size_t kMostSpans = 20'000, kMostLengths = 256;
constexpr std::size_t kLongestElement = std::size_t{1} << 24;  // bytes, with its entities written out

class Reader {
  public:
    Reader(const interchange::SvgSource& source, std::int32_t element)
        : cascade_(source.tree.file->cascade()), viewport_(source.tree.viewportIn(element)) {}

    bool element(const svg::XmlNode& element, const svg::ComputedStyle& style) {
        const std::size_t begin = out_.characters.size() + (pendingBlank_ ? 1 : 0);
        const std::size_t number = out_.styles.size();
        if (number >= kMostSpans) return false;
        out_.styles.push_back(style);
        placeDocumentText(element, style);
        for (const svg::XmlNode& child : element.children()) {
            if (child.isText()) {
                characters(child.value(), number);
            } else if (child.isElement() && (child.localName() == "tspan" || child.localName() == "a")) {
                svg::ComputedStyle inner;
                if (!cascade_.compute(child, style, viewport_.diagonal(), &inner)) return false;
                // What is not aligned itself is on the baseline of the text around it.
                if (inner.alignmentBaseline == svg::Baseline::kAuto && inner.dominantBaseline == style.dominantBaseline)
                    inner.alignmentBaseline = style.alignmentBaseline;
                if (inner.displayed && !this->element(child, inner)) return false;
            }
        }
        addPlaces(element, style, begin);
        return true;
    }

    TextCharacters take() { return std::move(out_); }

  private:
    // As the document's reader places its text: what is said until the first character is there.
    void placeDocumentText(const svg::XmlNode& element, const svg::ComputedStyle& style) {
        if (!out_.characters.empty()) return;
        const auto first = [&](const char* name) {
            const std::string_view list = svg::trimmed(element.attribute(name).value());
            return svg::parseLength(list.substr(0, list.find_first_of(", \t\n")),
                                    {viewport_.diagonal(), style.fontSize});
        };
        out_.x = first("x").value_or(out_.x) + first("dx").value_or(0);
        out_.y = first("y").value_or(out_.y) + first("dy").value_or(0);
    }

    void characters(std::string_view text, std::size_t style) {
        for (std::size_t at = 0; at < text.size();) {
            const char32_t code = svg::takeCharacter(text, &at);
            const bool isBlank = code == ' ' || code == '\t' || code == '\n' || code == '\r';
            if (isBlank && !out_.styles[style].preserveSpace) {
                if (!out_.text.empty() && !endsInBlank_ && !pendingBlank_) pendingBlank_ = style;
                continue;
            }
            if (pendingBlank_) add(' ', *pendingBlank_);
            pendingBlank_.reset();
            add(isBlank ? U' ' : code, style);
            endsInBlank_ = false;
        }
    }

    void add(char32_t code, std::size_t style) {
        TextCharacter character;
        character.style = style;
        character.unit = out_.units.size();
        out_.characters.push_back(character);
        out_.text += code;
        svg::appendUtf16(&out_.units, code);
        endsInBlank_ = code == ' ';
    }

    // What an inner element has placed stays.
    void addPlaces(const svg::XmlNode& element, const svg::ComputedStyle& style, std::size_t begin) {
        const std::size_t end = out_.characters.size();
        const auto each = [&](const char* name, double percentOf, auto set) {
            const std::string_view list = element.attribute(name).value();
            std::size_t at = 0;
            for (std::size_t i = begin; i < end; ++i) {
                at = list.find_first_not_of(", \t\r\n", at);
                if (at == std::string_view::npos) return;
                const std::size_t stop = std::min(list.find_first_of(", \t\r\n", at), list.size());
                const auto value = svg::parseLength(list.substr(at, stop - at), {percentOf, style.fontSize});
                if (!value || !(std::abs(*value) < 1e9)) return;
                set(&out_.characters[i], *value);
                at = stop;
            }
        };
        each("x", viewport_.width, [](TextCharacter* one, double value) { one->x = one->x.value_or(value); });
        each("y", viewport_.height, [](TextCharacter* one, double value) { one->y = one->y.value_or(value); });
        each("dx", viewport_.width, [](TextCharacter* one, double value) { one->dx = one->dx != 0 ? one->dx : value; });
        each("dy", viewport_.height,
             [](TextCharacter* one, double value) { one->dy = one->dy != 0 ? one->dy : value; });
        std::optional<double> last;  // holds for all behind it
        std::size_t next = begin;
        each("rotate", 0, [&](TextCharacter* one, double value) {
            one->rotate = one->rotate.value_or(value);
            last = value;
            ++next;
        });
        for (; last && next < end; ++next) out_.characters[next].rotate = out_.characters[next].rotate.value_or(*last);
        const auto length =
            svg::parseLength(element.attribute("textLength").value(), {viewport_.width, style.fontSize});
        if (length && *length >= 0 && *length < 1e9 && end > begin && out_.lengths.size() < kMostLengths)
            out_.lengths.push_back(
                {begin, end, *length, element.attribute("lengthAdjust").value() == "spacingAndGlyphs"});
    }

    svg::Cascade& cascade_;
    const svg::Viewport& viewport_;
    TextCharacters out_;
    std::optional<std::size_t> pendingBlank_;  // that counts when a character follows
    bool endsInBlank_ = false;
};

}  // namespace

std::optional<TextCharacters> readTextCharacters(const interchange::SvgSource& source, std::int32_t number) {
    const svg::Element& element = source.element(number);
    const std::string_view markup = svg::elementText(*source.text, element.nameOffset);
    std::size_t allowance = kLongestElement;
    const std::optional<std::string> plain = svg::expandMarkup(markup, source.entities(), &allowance);
    svg::XmlFile fragment;
    if (!plain || !fragment.parseWithBlanks(*plain)) return std::nullopt;
    const svg::XmlNode root = fragment.root();
    if (root.attribute(source.names().own, interchange::own_attribute::kText)) return std::nullopt;
    Reader reader(source, number);
    if (!reader.element(root, source.tree.file->styles().at(element.style))) return std::nullopt;
    return reader.take();
}

}  // namespace quorvel::render

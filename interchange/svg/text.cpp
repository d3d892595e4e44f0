// Text is written so that other programs show it right, then read back by the same code that opens files: what did not
// come back the same goes into one attribute of our own, together with a fingerprint of what SVG alone says. When
// another program has changed the element, the fingerprint no longer fits and the attribute is passed over.
#include "interchange/svg/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "fonts/fonts.h"
#include "interchange/svg/art_hash.h"
#include "interchange/svg/exact_text.h"
#include "interchange/svg/own_attributes.h"
#include "svg/markup/entities.h"
#include "svg/markup/xml_file.h"
#include "svg/values/length.h"
#include "svg/values/number.h"
#include "svg/values/paint.h"
#include "svg/values/utf8.h"

namespace quorvel::interchange {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isLineBreak(char16_t unit) { return unit == u'\r' || unit == u'\n' || unit == 3; }

std::string toUtf8(std::u16string_view text) {
    std::string out;
    const auto add = [&](unsigned value) { out += static_cast<char>(value); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        const bool high = code >= 0xD800 && code < 0xDC00;
        const bool pair = high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000;
        if (pair) {
            code = ((code - 0xD7C0) << 10) + (text[++i] - 0xDC00);
        } else if (code >= 0xD800 && code < 0xE000) {
            code = kReplacement;
        }
        if (code < 0x80) {
            add(code);
        } else if (code < 0x800) {
            add(0xC0 | code >> 6);
            add(0x80 | (code & 63));
        } else if (code < 0x10000) {
            add(0xE0 | code >> 12);
            add(0x80 | (code >> 6 & 63));
            add(0x80 | (code & 63));
        } else {
            add(0xF0 | code >> 18);
            add(0x80 | (code >> 12 & 63));
            add(0x80 | (code >> 6 & 63));
            add(0x80 | (code & 63));
        }
    }
    return out;
}

class Collector {
  public:
    Collector(const svg::Affine& toDocument, TextContext* context, SvgText* result)
        : map_(toDocument), scale_(toDocument.scale()), context_(*context), result_(*result) {}

    bool element(const svg::XmlNode& element, const svg::ComputedStyle& style) {
        place(element, style);
        for (const svg::XmlNode& child : element.children()) {
            if (child.isText()) {
                characters(child.value(), style);
            } else if (child.isElement() && (child.localName() == "tspan" || child.localName() == "a")) {
                svg::ComputedStyle inner;
                if (!context_.cascade.compute(child, style, context_.diagonal, &inner)) return false;
                if (inner.displayed && !this->element(child, inner)) return false;
            }
        }
        return true;
    }

    void finish(const svg::ComputedStyle& style) {
        doc::TextData& text = result_.text;
        if (text.runs.empty()) {
            text.runs.push_back({0, features(style)});
            text.justification = style.anchor;
        }
    }

  private:
    // Positions count until the first character is placed; later ones move lines of the same text.
    void place(const svg::XmlNode& element, const svg::ComputedStyle& style) {
        if (!result_.text.text.empty()) return;
        const auto first = [&](const char* name) -> std::optional<double> {
            const std::string_view list = svg::trimmed(element.attribute(name).value());
            return svg::parseLength(list.substr(0, list.find_first_of(", \t\n")), {context_.diagonal, style.fontSize});
        };
        result_.x = first("x").value_or(result_.x) + first("dx").value_or(0);
        result_.y = first("y").value_or(result_.y) + first("dy").value_or(0);
    }

    void characters(std::string_view text, const svg::ComputedStyle& style) {
        const doc::CharFeatures look = features(style);
        for (std::size_t at = 0; at < text.size();) {
            const char32_t code = svg::takeCharacter(text, &at);
            const bool blank = code == ' ' || code == '\t' || code == '\n' || code == '\r';
            if (blank && !style.preserveSpace) {
                // Runs of blanks are one blank, none at either end.
                if (!result_.text.text.empty() && !endsInBlank_ && !pending_) pending_ = look;
                continue;
            }
            if (pending_) add(' ', *pending_);
            pending_.reset();
            if (result_.text.text.empty()) result_.text.justification = style.anchor;
            add(blank ? U' ' : code, look);
            endsInBlank_ = false;
        }
    }

    void add(char32_t code, const doc::CharFeatures& look) {
        doc::TextData& text = result_.text;
        const std::size_t before = text.text.size();
        svg::appendUtf16(&text.text, code);
        if (text.runs.empty() || !(text.runs.back().features == look)) text.runs.push_back({0, look});
        text.runs.back().length += static_cast<std::int32_t>(text.text.size() - before);
        endsInBlank_ = code == ' ';
    }

    doc::CharFeatures features(const svg::ComputedStyle& style) {
        doc::CharFeatures look;
        std::string& name = context_.fonts[{style.fontFamily, style.fontWeight, style.italic}];
        if (name.empty()) name = fonts::matchFont(style.fontFamily, style.fontWeight, style.italic).fullName;
        look.font = name;
        look.size = svg::finiteFloat(style.fontSize * scale_);
        look.baselineShift = svg::finiteFloat(style.baselineShift * scale_);
        look.fillOn = style.fill.kind != svg::SvgPaint::kNone;
        look.strokeOn = style.stroke.kind != svg::SvgPaint::kNone;
        look.fill = colorOf(style.fill, style.color, map_, &context_.paints);
        look.stroke = colorOf(style.stroke, style.color, map_, &context_.paints);
        return look;
    }

    svg::Affine map_;
    double scale_;
    TextContext& context_;
    SvgText& result_;
    std::optional<doc::CharFeatures> pending_;  // a blank that counts when a character follows
    bool endsInBlank_ = false;
};

}  // namespace

RealMatrix textMatrix(const svg::Affine& map, double x, double y) {
    const double scale = map.scale() > 0 ? map.scale() : 1;
    const RealPoint place = map.point(x, y);
    return {svg::finiteFloat(map.a / scale),  svg::finiteFloat(map.b / scale), svg::finiteFloat(-map.c / scale),
            svg::finiteFloat(-map.d / scale), svg::finiteFloat(place.h),       svg::finiteFloat(place.v)};
}

bool readText(const svg::XmlNode& element, const svg::Affine& toDocument, const svg::ComputedStyle& style,
              TextContext* context, SvgText* result) {
    *result = {};
    Collector collector(toDocument, context, result);
    if (!collector.element(element, style)) return false;
    collector.finish(style);
    result->text.matrix = textMatrix(toDocument, result->x, result->y);
    const svg::XmlAttribute exact = element.attribute(context->names.own, own_attribute::kText);
    if (exact) applyExact(exact.value(), toDocument, &context->paints, &result->text);
    return true;
}

// --- writing -------------------------------------------------------------------------------------------------------

svg::Affine concat(const RealMatrix& motion, const svg::Affine& was) {
    return svg::compose(svg::Affine{motion.a, motion.b, motion.c, motion.d, motion.tx, motion.ty}, was);
}

std::string formatMatrix(const svg::Affine& m) {
    // 14 digits of the largest numbers: what lies below is the noise of the sums that led here.
    const double linear = std::max({std::abs(m.a), std::abs(m.b), std::abs(m.c), std::abs(m.d)});
    const double shift = std::max({linear, std::abs(m.e), std::abs(m.f)});
    std::string text = "matrix(";
    const auto add = [&](double value, double largest) {
        if (text.back() != '(') text += ' ';
        svg::appendNumber(&text,
                          svg::fewestDecimals(value, [&](double q) { return std::abs(q - value) <= 1e-14 * largest; }));
    };
    for (double value : {m.a, m.b, m.c, m.d}) add(value, linear);
    for (double value : {m.e, m.f}) add(value, shift);
    return text + ")";
}

namespace {

svg::Affine roundedLinear(const svg::Affine& m, double power) {
    const auto rounded = [&](double value) { return std::nearbyint(value * power) / power + 0.0; };
    return {rounded(m.a), rounded(m.b), rounded(m.c), rounded(m.d), m.e, m.f};
}

std::string quotedFamily(std::string_view family) {
    std::string out = "'";
    for (char c : family) {
        if (c != '\'' && c != '"' && c != '\\' && c != ';') out += c;
    }
    return out + "'";
}

class TextFormatter {
  public:
    TextFormatter(const doc::TextData& text, const svg::Affine& toDocument, const svg::SvgNames& names,
                  const PaintSources& sources)
        : text_(text), container_(toDocument), names_(names), sources_(sources) {}

    SvgTextParts format(const std::vector<StyleProperty>& reset) {
        findTransform();
        SvgTextParts parts;
        if (hasTransform_) {
            parts.transform = formatMatrix(transform_);
        } else {
            svg::appendNumber(&parts.x, transform_.e);
            svg::appendNumber(&parts.y, transform_.f);
        }
        parts.style = runStyle(text_.runs.front().features);
        static constexpr const char* kAnchors[] = {"start", "end", "middle"};
        parts.style += std::string(";text-anchor:") + kAnchors[text_.justification];
        if (!reset.empty()) parts.style += ";" + joinProperties(reset);
        const std::u16string& units = text_.text;
        parts.preserveSpace = units.find(u"  ") != std::u16string::npos || units.starts_with(u' ') ||
                              units.ends_with(u' ') || units.find(u'\t') != std::u16string::npos;
        parts.content = content(parts.x);
        return parts;
    }

  private:
    // The common scale of all characters goes into the transform, so that any program shows it.
    void findTransform() {
        const doc::CharFeatures& first = text_.runs.front().features;
        const bool common = std::ranges::all_of(text_.runs, [&](const doc::TextRun& run) {
            return run.features.horizontalScale == first.horizontalScale &&
                   run.features.verticalScale == first.verticalScale;
        });
        const double h = common && first.horizontalScale > 0 ? first.horizontalScale : 1;
        const double v = common && first.verticalScale > 0 ? first.verticalScale : 1;
        const RealMatrix& m = text_.matrix;
        svg::Affine inverse;
        scale_ = container_.scale();
        if (!svg::invert(container_, &inverse)) {
            scale_ = 1;
            return;
        }
        const svg::LocalPoint place = svg::localPoint(container_, inverse, {m.tx, m.ty});
        const svg::Affine wanted{m.a * h * scale_, m.b * h * scale_, -m.c * v * scale_, -m.d * v * scale_, 0, 0};
        svg::Affine linear = inverse;
        linear.e = linear.f = 0;
        linear = svg::compose(linear, wanted);
        const auto near = [](double a, double b) { return std::abs(a - b) < 1e-9; };
        if (near(linear.a, 1) && near(linear.b, 0) && near(linear.c, 0) && near(linear.d, 1)) linear = {};
        linear.e = place.x;
        linear.f = place.y;
        const auto asFloat = [](double value) {
            return svg::fewestDecimals(value,
                                       [&](double q) { return static_cast<float>(q) == static_cast<float>(value); });
        };
        transform_ = {asFloat(linear.a), asFloat(linear.b), asFloat(linear.c), asFloat(linear.d), place.x, place.y};
        for (double power = 1e3; power <= 1e15; power *= 10) {
            const svg::Affine rounded = roundedLinear(linear, power);
            if (sameMatrix(textMatrix(svg::compose(container_, rounded), 0, 0), m)) {
                transform_ = rounded;
                break;
            }
        }
        hasTransform_ = !(transform_ == svg::Affine{1, 0, 0, 1, transform_.e, transform_.f});
        // A scale of the matrix itself is the transform's to show, not the size's to make good.
        const bool turnsOnly = std::abs(std::abs(double(m.a) * m.d - double(m.b) * m.c) - 1) < 1e-5;
        if (h == 1 && v == 1 && turnsOnly) scale_ = svg::compose(container_, transform_).scale();
    }

    std::string length(float points) const {
        std::string out;
        svg::appendNumber(&out, svg::localLength(scale_, points));
        return out;
    }

    std::string runStyle(const doc::CharFeatures& f) const {
        const fonts::Font* font = fonts::findFont(f.font);
        std::string style = "font-family:" + quotedFamily(font ? font->family : f.font);
        style += ";font-size:" + length(f.size) + "px;font-weight:" + std::to_string(font ? font->weight : 400);
        style += font && font->italic ? ";font-style:italic" : ";font-style:normal";
        style += ";fill:" + cssPaint(f.fillOn, f.fill, sources_);
        style += ";stroke:" + cssPaint(f.strokeOn, f.stroke, sources_);
        return style;
    }

    std::string content(const std::string& lineStart) const {
        const bool plain = text_.runs.size() == 1 && text_.runs[0].features.baselineShift == 0 &&
                           std::ranges::none_of(text_.text, isLineBreak);
        if (plain) return svg::escapeXml(toUtf8(text_.text));
        std::string out;
        float shift = 0;
        std::size_t at = 0;
        int breaks = 0;
        for (const doc::TextRun& run : text_.runs) {
            const std::u16string_view units =
                std::u16string_view(text_.text).substr(at, static_cast<std::size_t>(run.length));
            at += static_cast<std::size_t>(run.length);
            for (std::size_t from = 0; from < units.size();) {
                std::size_t to = from;
                while (to < units.size() && !isLineBreak(units[to])) ++to;
                if (to > from) {
                    const float lines = static_cast<float>(breaks) * 1.2F * run.features.size;
                    out += span(units.substr(from, to - from), run.features, shift + lines, breaks > 0, lineStart);
                    shift = run.features.baselineShift;
                    breaks = 0;
                }
                if (to < units.size()) ++breaks;
                from = to + 1;
            }
        }
        return out;
    }

    // drop: how far the line lies below the one before, with the last run's own shift.
    std::string span(std::u16string_view units, const doc::CharFeatures& f, float drop, bool newLine,
                     const std::string& lineStart) const {
        const std::string name = names_.svg + "tspan";
        std::string out = "<" + name;
        if (newLine) out += " x=\"" + (lineStart.empty() ? "0" : lineStart) + "\"";
        const float dy = drop - f.baselineShift;
        if (dy != 0) out += " dy=\"" + length(dy) + "\"";
        if (text_.runs.size() > 1) out += " style=\"" + svg::escapeXml(runStyle(f)) + "\"";
        return out + ">" + svg::escapeXml(toUtf8(units)) + "</" + name + ">";
    }

    const doc::TextData& text_;
    svg::Affine container_, transform_;
    const svg::SvgNames& names_;
    const PaintSources& sources_;
    double scale_ = 1;  // of the element's own space, to points
    bool hasTransform_ = false;
};

// References come back as the colours of the text that is written.
class WrittenPaints : public PaintLookup {
  public:
    WrittenPaints(const doc::TextData& text, const PaintSources& sources) : text_(text), sources_(sources) {}
    AIColor paintOf(std::string_view reference, const svg::Affine&) override {
        for (const doc::TextRun& run : text_.runs) {
            for (const AIColor* color : {&run.features.fill, &run.features.stroke}) {
                const auto number = static_cast<std::size_t>(color->reference);
                if (number > 0 && number <= sources_.size() && sources_[number - 1] == reference) return *color;
            }
        }
        AIColor other;
        other.kind = kOtherPaint;
        return other;
    }

  private:
    const doc::TextData& text_;
    const PaintSources& sources_;
};

std::string elementOf(const SvgTextParts& parts) {
    std::string out = "<text";
    if (parts.transform.empty()) {
        out += " x=\"" + parts.x + "\" y=\"" + parts.y + "\"";
    } else {
        out += " transform=\"" + parts.transform + "\"";
    }
    if (parts.preserveSpace) out += " xml:space=\"preserve\"";
    return out + " style=\"" + svg::escapeXml(parts.style) + "\">" + parts.content + "</text>";
}

}  // namespace

SvgTextParts formatText(const doc::TextData& text, const svg::Affine& toDocument, const svg::SvgNames& names,
                        const std::vector<StyleProperty>& reset, const PaintSources& sources) {
    SvgTextParts parts = TextFormatter(text, toDocument, names, sources).format(reset);
    svg::XmlFile fragment;
    if (!fragment.parseWithBlanks(elementOf(parts))) return parts;
    svg::StyleTable styles;
    svg::Cascade cascade(&styles);
    WrittenPaints paints(text, sources);
    FontNames fonts;
    TextContext context{cascade, paints, fonts, names, 0};
    const svg::XmlNode node = fragment.root();
    svg::Affine own;
    // The same sums as when the file is read.
    svg::Affine inner = toDocument;
    if (svg::parseTransform(node.attribute("transform").value(), &own)) inner = svg::compose(toDocument, own);
    svg::ComputedStyle style;
    SvgText plain;
    if (!cascade.compute(node, svg::ComputedStyle{}, 0, &style) || !readText(node, inner, style, &context, &plain)) {
        return parts;
    }
    const bool sameWording = textHash(plain.text, true) == textHash(text, true);
    const bool samePlace = sameMatrix(plain.text.matrix, text.matrix);
    if (sameWording && samePlace) return parts;
    parts.exact = fingerprintOf(plain.text);
    if (!samePlace) appendMatrix(&parts.exact, text.matrix);
    if (!sameWording) appendWording(&parts.exact, text, sources);
    return parts;
}

}  // namespace quorvel::interchange

#include "tests/support/compact_dump.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <sstream>

#include "host/code_page.h"

namespace quorvel::tests {
namespace {

constexpr double kTolerance = 1e-4;

std::string number(double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, std::abs(value) < 1 ? "%.5f" : "%.6g", value);
    if (std::abs(value) < 1) {
        char* end = digits + std::strlen(digits);
        while (end[-1] == '0') --end;
        if (end[-1] == '.') --end;
        *end = 0;
    }
    return std::strcmp(digits, "-0") == 0 ? "0" : digits;
}

std::string numbers(std::initializer_list<float> values) {
    std::string text;
    for (const float value : values) text += (text.empty() ? "" : ",") + number(value);
    return text;
}

std::string quoted(const std::string& text, char quote) {
    std::string result(1, quote);
    for (const char c : text) {
        if (c == quote || c == '\\') result += '\\';
        if (c == '\n' || c == '\r' || c == '\t')
            result += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        else
            result += c;
    }
    return result + quote;
}

std::string boxText(const RealRect& box) {
    if (box.left > box.right) return " []";
    return " [" + numbers({box.left, box.top}) + " " + numbers({box.right, box.bottom}) + "]";
}

class Dump {
  public:
    Dump(const doc::Document& document, Selection selection) : document_(document), selection_(selection) {}

    void addArt(doc::ArtId id, int depth) {
        const doc::Art& art = *document_.find(id);
        text_ += std::string(static_cast<std::size_t>(depth), ' ') + kindName(art.kind);
        if (!art.name.empty()) text_ += " #" + art.name;
        if (art.selected && selection_ == Selection::kShown) text_ += " selected";
        if (art.hidden) text_ += " hidden";
        if (art.locked) text_ += " locked";
        if (art.kind != kPathArt) text_ += boxText(document_.bounds(id));
        for (const doc::Tag& tag : art.tags)
            text_ += " " + tag.name + "=" + quoted(host::systemTextToUtf8(tag.value), '\'');
        if (art.path != nullptr) addPath(*art.path);
        if (art.text != nullptr) addText(*art.text);
        text_ += '\n';
        for (doc::ArtId child = art.firstChild; child != 0; child = document_.find(child)->below)
            addArt(child, depth + 1);
    }

    std::string text_;

  private:
    static const char* kindName(AIArtType kind) {
        return kind == kGroupArt          ? "group"
               : kind == kCompoundPathArt ? "compound"
               : kind == kPathArt         ? "path"
               : kind == kTextFrameArt    ? "text"
                                          : "other";
    }

    void addPaint(const char* name, bool on, const AIColor& color) {
        if (!on) return;
        text_ += std::string(" ") + name;
        if (color.kind == kGrayPaint) {
            text_ += " " + number(color.gray);
        } else if (color.kind == kRgbPaint) {
            text_ += " rgb(" + numbers({color.rgb[0], color.rgb[1], color.rgb[2]}) + ")";
        } else {
            const std::string text = document_.source() ? document_.source()->paintText(color.reference) : "";
            text_ += text.empty() ? " unknown" : " " + text;
            if (color.kind == kGradientPaint)
                text_ += " turned(" + numbers({color.gradientAngle, color.gradientHiliteAngle}) + ")";
        }
    }

    void addPath(const doc::PathData& path) {
        const AIPathStyle style = path.style == nullptr ? AIPathStyle{} : *path.style;
        if (path.closed) text_ += " closed";
        if (path.guide) text_ += " guide";
        addPaint("fill", style.fillPaint != 0, style.fill);
        addPaint("stroke", style.strokePaint != 0, style.stroke);
        text_ += " w" + number(style.strokeWidth);
        if (style.miterLimit != 4) text_ += " miter " + number(style.miterLimit);
        text_ += " =";
        for (const PathSegment& segment : path.segments) {
            const std::string p = numbers({segment.p.h, segment.p.v}), in = numbers({segment.in.h, segment.in.v}),
                              out = numbers({segment.out.h, segment.out.v});
            text_ += " " + p;
            if (in != p || out != p) text_ += "(" + in + " " + out + ")";
            if (segment.corner == 0) text_ += "~";
        }
    }

    void addText(const doc::TextData& text) {
        static constexpr const char* kJustify[] = {"left", "right", "center"};
        const RealMatrix& m = text.matrix;
        text_ += std::string(" ") + kJustify[text.justification];
        if (text.type != kPointTextType) text_ += " frame " + std::to_string(text.type);
        text_ += " matrix(" + numbers({m.a, m.b, m.c, m.d, m.tx, m.ty}) + ") =";
        std::size_t start = 0;
        for (const doc::TextRun& run : text.runs) {
            const doc::CharFeatures& features = run.features;
            const std::size_t length = static_cast<std::size_t>(run.length);
            text_ += " " + quoted(host::toUtf8(text.text.substr(start, length)), '"') + " " +
                     quoted(features.font, '"') + " " + number(features.size);
            if (features.horizontalScale != 1 || features.verticalScale != 1)
                text_ += " scale(" + numbers({features.horizontalScale, features.verticalScale}) + ")";
            if (features.baselineShift != 0) text_ += " shift " + number(features.baselineShift);
            addPaint("fill", features.fillOn, features.fill);
            addPaint("stroke", features.strokeOn, features.stroke);
            start += length;
        }
    }

    const doc::Document& document_;
    Selection selection_;
};

bool linesMatch(const std::string& expected, const std::string& actual) {
    const char *a = expected.data(), *b = actual.data();
    const char *aEnd = a + expected.size(), *bEnd = b + actual.size();
    char quote = 0, before = ' ';
    while (a != aEnd && b != bEnd) {
        double x = 0, y = 0;
        const bool beginsWord = quote == 0 && std::strchr(" ,([w", before) != nullptr;
        const std::from_chars_result aNumber = std::from_chars(a, aEnd, x), bNumber = std::from_chars(b, bEnd, y);
        if (beginsWord && aNumber.ec == std::errc() && bNumber.ec == std::errc()) {
            if (!(std::abs(x - y) <= kTolerance * std::max({1.0, std::abs(x), std::abs(y)}))) return false;
            a = aNumber.ptr;
            b = bNumber.ptr;
            before = '0';
            continue;
        }
        if (*a != *b) return false;
        if (quote == 0 && (*a == '"' || *a == '\'')) {
            quote = *a;
        } else if (*a == quote && before != '\\') {
            quote = 0;
        }
        before = before == '\\' && *a == '\\' ? ' ' : *a;
        ++a;
        ++b;
    }
    return a == aEnd && b == bEnd;
}

}  // namespace

std::string compactDump(const doc::Document& document, const std::string& rulerUnit, Selection selection) {
    Dump dump(document, selection);
    dump.text_ = "page " + numbers({document.width(), document.height()}) + " " + rulerUnit + "\n";
    for (const doc::LayerId id : document.layers()) {
        const doc::Layer& layer = *document.layer(id);
        dump.text_ += "layer " + quoted(layer.title, '"') + (layer.visible ? "" : " hidden") +
                      (layer.editable ? "" : " locked") + (document.currentLayer() == id ? " current" : "") + "\n";
        for (doc::ArtId art = document.find(layer.root)->firstChild; art != 0; art = document.find(art)->below)
            dump.addArt(art, 1);
    }
    return dump.text_;
}

std::string firstDifference(const std::string& expected, const std::string& actual) {
    std::istringstream expectedLines(expected), actualLines(actual);
    for (int line = 1;; ++line) {
        std::string a, b;
        const bool hasA = !!std::getline(expectedLines, a), hasB = !!std::getline(actualLines, b);
        if (!hasA && !hasB) return {};
        if (hasA == hasB && linesMatch(a, b)) continue;
        return "line " + std::to_string(line) + " is\n" + (hasB ? b : "absent") + "\nexpected\n" +
               (hasA ? a : "nothing");
    }
}

}  // namespace quorvel::tests

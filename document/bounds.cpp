// Extrema of cubics, and the boxes of texts from the advances of their characters.
#include "document/bounds.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace quorvel::doc {

namespace {

constexpr float kFar = std::numeric_limits<float>::max();
constexpr double kDefaultAdvance = 0.6;                          // em, of a character while no fonts are known
constexpr double kAscent = 0.8, kDescent = 0.2, kLeading = 1.2;  // em

TextMeasure textMeasure = nullptr;

void widen(double value, float* low, float* high) {
    const auto narrow = float(value);
    if (narrow < *low) *low = narrow;
    if (narrow > *high) *high = narrow;
}

double cubicAt(double t, double p0, double p1, double p2, double p3) {
    const double s = 1 - t;
    return s * s * s * p0 + 3 * s * s * t * p1 + 3 * s * t * t * p2 + t * t * t * p3;
}

// Widens low and high by the inner extrema of one coordinate of a cubic; its ends are the caller's.
void widenByExtrema(double p0, double p1, double p2, double p3, float* low, float* high) {
    // A cubic stays inside the hull of its control points.
    if (p1 >= *low && p1 <= *high && p2 >= *low && p2 <= *high) return;
    // A third of the derivative: a t^2 + 2 b t + c.
    const double a = p3 - 3 * p2 + 3 * p1 - p0;
    const double b = p2 - 2 * p1 + p0;
    const double c = p1 - p0;
    const double discriminant = b * b - a * c;
    if (!(discriminant >= 0)) return;
    // The form that does not cancel; c / q is the other root, and the only one when a is 0.
    const double q = -(b + std::copysign(std::sqrt(discriminant), b));
    for (double t : {q / a, c / q}) {
        if (t > 0 && t < 1) widen(cubicAt(t, p0, p1, p2, p3), low, high);
    }
}

void widenByCurve(const PathSegment& from, const PathSegment& to, RealRect* box) {
    widenByExtrema(from.p.h, from.out.h, to.in.h, to.p.h, &box->left, &box->right);
    widenByExtrema(from.p.v, from.out.v, to.in.v, to.p.v, &box->bottom, &box->top);
}

void widenByPoint(RealPoint point, RealRect* box) {
    box->left = std::min(box->left, point.h);
    box->right = std::max(box->right, point.h);
    box->bottom = std::min(box->bottom, point.v);
    box->top = std::max(box->top, point.v);
}

char32_t characterAt(const std::u16string& text, std::size_t* at) {
    const char16_t unit = text[(*at)++];
    if (unit < 0xD800 || unit > 0xDBFF || *at >= text.size()) return unit;
    const char16_t low = text[*at];
    if (low < 0xDC00 || low > 0xDFFF) return unit;
    ++*at;
    return 0x10000 + ((char32_t(unit) - 0xD800) << 10) + (char32_t(low) - 0xDC00);
}

bool endsLine(char32_t character) { return character == '\r' || character == '\n' || character == 3; }

struct Line {
    double advance = 0, ascent = 0, descent = 0, leading = 0;
};

// Finds the features in effect at a place of the text; places are asked in rising order.
class RunReader {
  public:
    explicit RunReader(const std::vector<TextRun>& runs) : runs_(runs) {}
    const CharFeatures& at(std::size_t place) {
        while (index_ + 1 < runs_.size() && place >= end_ + std::size_t(runs_[index_].length)) {
            end_ += std::size_t(runs_[index_].length);
            ++index_;
        }
        return runs_[index_].features;
    }

  private:
    const std::vector<TextRun>& runs_;
    std::size_t index_ = 0, end_ = 0;
};

void addCharacter(const CharFeatures& features, char32_t character, Line* line) {
    const double height = double(features.size) * double(features.verticalScale);
    line->ascent = std::max(line->ascent, kAscent * height + double(features.baselineShift));
    line->descent = std::max(line->descent, kDescent * height - double(features.baselineShift));
    line->leading = std::max(line->leading, kLeading * double(features.size));
    if (endsLine(character)) return;
    const double advance = textMeasure != nullptr ? double(textMeasure(features.font, character)) : kDefaultAdvance;
    line->advance += advance * double(features.size) * double(features.horizontalScale);
}

// In the text's own space, where a line's anchor has the h 0.
RealRect lineBox(const Line& line, double baseline, ATEJustification justification) {
    double left = 0;
    if (justification == kJustifyRight) left = -line.advance;
    if (justification == kJustifyCenter) left = -line.advance / 2;
    return {float(left), float(baseline + line.ascent), float(left + line.advance), float(baseline - line.descent)};
}

}  // namespace

TextMeasure setTextMeasure(TextMeasure measure) { return std::exchange(textMeasure, measure); }

RealRect emptyRect() { return {kFar, -kFar, -kFar, kFar}; }

bool isEmpty(const RealRect& rect) { return !(rect.left <= rect.right && rect.bottom <= rect.top); }

RealRect uniteRects(const RealRect& a, const RealRect& b) {
    if (isEmpty(a)) return isEmpty(b) ? emptyRect() : b;
    if (isEmpty(b)) return a;
    return {std::min(a.left, b.left), std::max(a.top, b.top), std::max(a.right, b.right), std::min(a.bottom, b.bottom)};
}

RealRect pathBounds(std::span<const PathSegment> segments, bool closed) {
    RealRect box = emptyRect();
    for (const PathSegment& segment : segments) widenByPoint(segment.p, &box);
    for (std::size_t i = 1; i < segments.size(); ++i) widenByCurve(segments[i - 1], segments[i], &box);
    if (closed && !segments.empty()) widenByCurve(segments.back(), segments.front(), &box);
    return box;
}

RealRect pathControlBounds(std::span<const PathSegment> segments) {
    RealRect box = emptyRect();
    for (const PathSegment& segment : segments) {
        widenByPoint(segment.p, &box);
        widenByPoint(segment.in, &box);
        widenByPoint(segment.out, &box);
    }
    return box;
}

RealRect textBounds(const TextData& text) {
    if (text.text.empty() || text.runs.empty()) return emptyRect();
    RunReader runs(text.runs);
    RealRect box = emptyRect();
    Line line;
    double baseline = 0;
    for (std::size_t at = 0; at < text.text.size();) {
        const CharFeatures& features = runs.at(at);
        const char32_t character = characterAt(text.text, &at);
        addCharacter(features, character, &line);
        if (!endsLine(character)) continue;
        box = uniteRects(box, lineBox(line, baseline, text.justification));
        baseline -= line.leading;
        line = {};
    }
    if (line.leading > 0) box = uniteRects(box, lineBox(line, baseline, text.justification));
    return transformRect(text.matrix, box);
}

RealPoint transformPoint(const RealMatrix& m, RealPoint point) {
    const double h = point.h, v = point.v;
    return {float(double(m.a) * h + double(m.c) * v + double(m.tx)),
            float(double(m.b) * h + double(m.d) * v + double(m.ty))};
}

RealMatrix concatMatrix(const RealMatrix& first, const RealMatrix& second) {
    const double a = second.a, b = second.b, c = second.c, d = second.d;
    return {float(a * first.a + c * first.b),
            float(b * first.a + d * first.b),
            float(a * first.c + c * first.d),
            float(b * first.c + d * first.d),
            float(a * first.tx + c * first.ty + double(second.tx)),
            float(b * first.tx + d * first.ty + double(second.ty))};
}

RealRect transformRect(const RealMatrix& matrix, const RealRect& rect) {
    if (isEmpty(rect)) return emptyRect();
    RealRect box = emptyRect();
    for (float h : {rect.left, rect.right}) {
        for (float v : {rect.bottom, rect.top}) widenByPoint(transformPoint(matrix, {h, v}), &box);
    }
    return box;
}

bool isFinite(const RealMatrix& m) {
    return std::isfinite(m.a) && std::isfinite(m.b) && std::isfinite(m.c) && std::isfinite(m.d) &&
           std::isfinite(m.tx) && std::isfinite(m.ty);
}

bool isFinite(const RealRect& rect) {
    return std::isfinite(rect.left) && std::isfinite(rect.top) && std::isfinite(rect.right) &&
           std::isfinite(rect.bottom);
}

}  // namespace quorvel::doc

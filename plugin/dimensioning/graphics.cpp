// The lines, heads, dots and arcs of a dimension: plain black art in the stroke width of the settings, each piece the
// topmost of its group. Points are computed in doubles and become the host's floats only in the segments.
#include "plugin/dimensioning/graphics.h"

#include <cmath>

#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

constexpr float kBlack = 1.0F;
constexpr float kMiterLimit = 4.0F;
constexpr double kCircleHandleRatio = 0.552277;  // of a quarter circle
constexpr double kLevelRadius = 0.0001;          // a radius less high than this has an upright tangent
constexpr int kArcAnchorCount = 5;

DoublePoint Offset(const DoublePoint& p, double h, double v) { return {p.h + h, p.v + v}; }

PathSegment SmoothAt(const DoublePoint& anchor, const DoublePoint& in, const DoublePoint& out) {
    return {ToRealPoint(anchor), ToRealPoint(in), ToRealPoint(out), 0};
}

// A tangent of a circle as v = slope h + intercept; upright ones have no slope.
struct Tangent {
    bool hasSlope = false;
    double slope = 0, intercept = 0;
};

Tangent TangentAt(const DoublePoint& c, const DoublePoint& p) {
    Tangent tangent;
    tangent.hasSlope = std::fabs(p.v - c.v) >= kLevelRadius;
    if (!tangent.hasSlope) return tangent;
    tangent.slope = -(c.h - p.h) / (c.v - p.v);
    tangent.intercept = p.v - tangent.slope * p.h;
    return tangent;
}

// Of the two at least one has a slope.
DoublePoint CrossTangents(const Tangent& atP, const DoublePoint& p, const Tangent& atQ, const DoublePoint& q) {
    if (!atQ.hasSlope) return {q.h, q.h * atP.slope + atP.intercept};
    if (!atP.hasSlope) return {p.h, p.h * atQ.slope + atQ.intercept};
    const double h = (atP.intercept - atQ.intercept) / (atQ.slope - atP.slope);
    return {h, h * atP.slope + atP.intercept};
}

// The angle between the radii to p and q, the shorter way.
double SweepBetween(const DoublePoint& c, const DoublePoint& p, const DoublePoint& q) {
    double a = AngleBetweenPoints(c, p);
    double b = AngleBetweenPoints(c, q);
    if (std::fabs(b - a) > kPi) {
        if (b >= 0.0) {
            a += kTwoPi;
        } else {
            b += kTwoPi;
        }
    }
    return std::fabs(b - a);
}

RealPoint Towards(const DoublePoint& from, const DoublePoint& to, double ratio) {
    return ToRealPoint({from.h + (to.h - from.h) * ratio, from.v + (to.v - from.v) * ratio});
}

}  // namespace

void InitDimensionStyle(AIPathStyle* style, bool fill, bool stroke) {
    *style = AIPathStyle{};
    style->fillPaint = fill ? 1 : 0;
    style->strokePaint = stroke ? 1 : 0;
    style->fill.kind = kGrayPaint;
    style->fill.gray = kBlack;
    style->stroke = style->fill;
    style->strokeWidth = gGlobals->prefs.flArThick;
    style->miterLimit = kMiterLimit;
}

PathSegment CornerAt(const DoublePoint& anchor) {
    const RealPoint p = ToRealPoint(anchor);
    return {p, p, p, 1};
}

AIArtHandle AddStyledPath(AIArtHandle group, const AIPathStyle& style, const PathSegment* segments, int count,
                          bool closed) {
    AIArtHandle path = nullptr;
    if (sAIArt->NewArt(kPathArt, kPlaceInsideOnTop, group, &path) != kNoErr || path == nullptr) return nullptr;
    sAIPathStyle->SetPathStyle(path, &style);
    if (closed) sAIPath->SetPathClosed(path, 1);
    for (int i = 0; i < count; ++i) sAIPath->SetPathSegments(path, static_cast<std::int16_t>(i), 1, &segments[i]);
    return path;
}

void AddLine2(AIArtHandle group, const DoublePoint& a, const DoublePoint& b) {
    AIPathStyle style;
    InitDimensionStyle(&style, false, true);
    const PathSegment segments[] = {CornerAt(a), CornerAt(b)};
    AddStyledPath(group, style, segments, 2, false);
}

void AddLine3(AIArtHandle group, const DoublePoint& a, const DoublePoint& b, const DoublePoint& c, bool fill) {
    AIPathStyle style;
    InitDimensionStyle(&style, fill, true);
    const PathSegment segments[] = {CornerAt(a), CornerAt(b), CornerAt(c)};
    AddStyledPath(group, style, segments, 3, false);
}

void AddLeader(AIArtHandle group, const DoublePoint& a, const DoublePoint& b, const DoublePoint& c) {
    if (gGlobals->prefs.flRdSpos == 0) {
        AddLine2(group, a, b);
    } else {
        AddLine3(group, a, b, c, false);
    }
}

void AddDot(AIArtHandle group, const DoublePoint& centre) {
    AddDot(group, centre, static_cast<double>(gGlobals->prefs.flArSize4), true);
}

void AddDot(AIArtHandle group, const DoublePoint& centre, double diameter, bool fill) {
    const double h = diameter / 2;
    const double k = h * kCircleHandleRatio;
    const DoublePoint& c = centre;
    const PathSegment segments[] = {
        SmoothAt(Offset(c, h, 0), Offset(c, h, -k), Offset(c, h, k)),
        SmoothAt(Offset(c, 0, h), Offset(c, k, h), Offset(c, -k, h)),
        SmoothAt(Offset(c, -h, 0), Offset(c, -h, k), Offset(c, -h, -k)),
        SmoothAt(Offset(c, 0, -h), Offset(c, -k, -h), Offset(c, k, -h)),
    };
    AIPathStyle style;
    InitDimensionStyle(&style, fill, true);
    AddStyledPath(group, style, segments, 4, true);
}

void AddArcSpan(const DoublePoint& c, const DoublePoint& p, const DoublePoint& q, RealPoint* out, RealPoint* in) {
    const Tangent atP = TangentAt(c, p);
    const Tangent atQ = TangentAt(c, q);
    if (!atP.hasSlope && !atQ.hasSlope) return;
    const DoublePoint crossing = CrossTangents(atP, p, atQ, q);
    const double ratio = ArcHandleRatio(SweepBetween(c, p, q));
    *out = Towards(p, crossing, ratio);
    *in = Towards(q, crossing, ratio);
}

void AddDimensionArc(AIArtHandle group, double radius, double startAngle, double endAngle, const DoublePoint& centre) {
    constexpr double kParts[kArcAnchorCount] = {0.0, 0.25, 0.5, 0.75, 1.0};
    DoublePoint anchors[kArcAnchorCount];
    PathSegment segments[kArcAnchorCount];
    for (int i = 0; i < kArcAnchorCount; ++i) {
        const double angle = i == kArcAnchorCount - 1 ? endAngle : startAngle + (endAngle - startAngle) * kParts[i];
        anchors[i] = PolarPoint(centre, radius, angle);
        segments[i] = CornerAt(anchors[i]);
        segments[i].corner = i == 0 || i == kArcAnchorCount - 1 ? 1 : 0;
    }
    for (int i = 1; i < kArcAnchorCount; ++i)
        AddArcSpan(centre, anchors[i - 1], anchors[i], &segments[i - 1].out, &segments[i].in);
    AIPathStyle style;
    InitDimensionStyle(&style, false, true);
    AddStyledPath(group, style, segments, kArcAnchorCount, false);
}

double ArrowWingAngle(const PrefsRecord& prefs) { return static_cast<double>(prefs.flArAngle) * kPi / 180.0; }

double ArrowWingLength(const PrefsRecord& prefs, bool truncated) {
    const double length = static_cast<double>(prefs.flArType == kArrowOpen ? prefs.flArSize1 : prefs.flArSize2);
    return truncated ? std::trunc(length) : length;
}

bool HeadsAreOutside(PluginGlobals* globals, double length, std::int32_t span) {
    const std::int16_t shape = globals->prefs.flArType;
    if (shape != kArrowOpen && shape != kArrowTriangular) return false;
    const double limit = static_cast<double>(globals->prefs.flOsLimt);
    ToolState& live = globals->liveState;
    char& choice = live.choices.heads[span];
    bool outside = length < limit;
    const bool isKnown = live.fromRecord && (choice == kHeadsInside || choice == kHeadsOutside);
    if (isKnown && std::fabs(length - limit) <= 2 * kClearMargin) outside = choice == kHeadsOutside;
    choice = kHeadsByLength;
    if (std::fabs(length - limit) <= kClearMargin || outside != (length < limit))
        choice = outside ? kHeadsOutside : kHeadsInside;
    return outside;
}

void ArrowWings(const DoublePoint& tip, double d, double wingAngle, std::int16_t shape, double length,
                DoublePoint* wing1, DoublePoint* wing2) {
    if (shape == kArrowOpen || shape == kArrowTriangular) {
        *wing1 = PolarPoint(tip, length, d + wingAngle);
        *wing2 = PolarPoint(tip, length, d - wingAngle);
    } else if (shape == kArrowObliqueLine) {
        const double half = static_cast<double>(gGlobals->prefs.flArSize3) / 2;
        *wing1 = PolarPoint(tip, half, d + wingAngle);
        *wing2 = PolarPoint(tip, half, d + wingAngle + kPi);
    }
}

void ArrowWings(const DoublePoint& tip, double d, std::int16_t shape, double length, DoublePoint* wing1,
                DoublePoint* wing2) {
    ArrowWings(tip, d, ArrowWingAngle(gGlobals->prefs), shape, length, wing1, wing2);
}

void AddArrowMark(AIArtHandle group, const DoublePoint& tip, double d, double wingAngle, double length) {
    const std::int16_t shape = gGlobals->prefs.flArType;
    if (shape == kArrowDot) {
        AddDot(group, tip);
        return;
    }
    // A number that is no shape leaves the wings on the tip.
    DoublePoint wing1 = tip;
    DoublePoint wing2 = tip;
    ArrowWings(tip, d, wingAngle, shape, length, &wing1, &wing2);
    AddLine3(group, wing1, tip, wing2, shape == kArrowTriangular);
}

void AddArrowMark(AIArtHandle group, const DoublePoint& tip, double d, double length) {
    AddArrowMark(group, tip, d, ArrowWingAngle(gGlobals->prefs), length);
}

}  // namespace quorvel

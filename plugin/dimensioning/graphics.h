// The art of a dimension: stroke style, lines and arrowheads, dots, arcs, the text, the choice of layer and the steps
// that make and end a dimension's group. Points are document points in doubles. A primitive never reports a failure: a
// missing piece leaves the group otherwise whole.
#pragma once

#include "plugin/shell/globals.h"

namespace quorvel {

enum ArrowShape : std::int16_t { kArrowOpen = 0, kArrowTriangular = 1, kArrowObliqueLine = 2, kArrowDot = 3 };

void InitDimensionStyle(AIPathStyle* style, bool fill, bool stroke);
// A corner: both handles on the anchor.
PathSegment CornerAt(const DoublePoint& anchor);
void AddLine2(AIArtHandle group, const DoublePoint& a, const DoublePoint& b);
void AddLine3(AIArtHandle group, const DoublePoint& a, const DoublePoint& b, const DoublePoint& c, bool fill);
// Two segments a, b when flRdSpos is 0, else three.
void AddLeader(AIArtHandle group, const DoublePoint& a, const DoublePoint& b, const DoublePoint& c);
void AddDot(AIArtHandle group, const DoublePoint& centre);  // diameter flArSize4, filled
void AddDot(AIArtHandle group, const DoublePoint& centre, double diameter, bool fill);
// Five anchors from startAngle to endAngle by plain interpolation; radians.
void AddDimensionArc(AIArtHandle group, double radius, double startAngle, double endAngle, const DoublePoint& centre);
// Handles of the arc piece about c from p to q: p's out and q's in. Left alone when both radii are level.
void AddArcSpan(const DoublePoint& c, const DoublePoint& p, const DoublePoint& q, RealPoint* out, RealPoint* in);
// A point text, centred on the midpoint of p1 and p2, turned to the direction p1 to p2. Internal bytes.
void AddDimensionText(AIArtHandle group, const DoublePoint& p1, const DoublePoint& p2, const char* text);
// A new path of the segments, written one by one. Null when the host made none.
AIArtHandle AddStyledPath(AIArtHandle group, const AIPathStyle& style, const PathSegment* segments, int count,
                          bool closed);

// The text object that dimensions, comments and frame cells share: made at the origin, empty, with font, size, black
// fill and no stroke in the features (not yet applied). False when the host made none.
struct TextParts {
    AIArtHandle frame = nullptr;
    ATETextRangeRef range = nullptr;
    ATECharFeaturesRef characters = nullptr;
    ATEParaFeaturesRef paragraph = nullptr;
};
bool BeginText(AIArtHandle group, TextParts* parts);
void ApplyParagraph(const TextParts& parts, ATEJustification justification);

// Wings of the shape (0 to 2) at the tip, trailing in the direction d (radians). length: the wing length for shapes 0
// and 1.
void ArrowWings(const DoublePoint& tip, double d, std::int16_t shape, double length, DoublePoint* wing1,
                DoublePoint* wing2);
// The same with the angle between wing and direction given, for heads that are turned about.
void ArrowWings(const DoublePoint& tip, double d, double wingAngle, std::int16_t shape, double length,
                DoublePoint* wing1, DoublePoint* wing2);
double ArrowWingAngle(const PrefsRecord& prefs);  // flArAngle in radians
double ArrowWingLength(const PrefsRecord& prefs, bool truncated);
// Are the heads of this span of the dimension outside, because it is shorter than flOsLimt? A length near the limit
// keeps the choice that the record has for it; the choice goes into liveState.
bool HeadsAreOutside(PluginGlobals* globals, double length, std::int32_t span);
// How far a measured length may drift, points, without another decision about how the dimension is drawn.
constexpr double kClearMargin = 0.05;
// The mark of flArType at the tip: wings or a dot.
void AddArrowMark(AIArtHandle group, const DoublePoint& tip, double d, double length);
void AddArrowMark(AIArtHandle group, const DoublePoint& tip, double d, double wingAngle, double length);

// The layer of a new dimension, or of the group that is being rebuilt.
AILayerHandle ResolveDimensionLayer(AIArtHandle oldGroup);
// The group of a builder: null when its layer is blocked, and the builder returns 0 then. On top of its layer, or
// directly above the group that it is to replace.
AIArtHandle BeginDimensionGroup(AIArtHandle oldGroup);
// The group is whole and takes the place of the old one, which may be null.
void EndDimensionGroup(AIArtHandle oldGroup, AIArtHandle group);

}  // namespace quorvel

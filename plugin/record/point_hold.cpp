#include "plugin/record/point_hold.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "hostapi/record_additions.h"
#include "plugin/geometry/segment_place.h"
#include "plugin/record/dimension_record.h"
#include "plugin/record/words.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/crossing.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

// How far off a segment its crossing may be: this share of its size, and as much as makes nothing untrue.
constexpr double kCrossingShare = 1e-4, kCrossingSlack = 0.05;
constexpr double kWholeTurn = 2 * std::numbers::pi;
constexpr double kSameTurn = 1e-3;  // radians: directions of a path turned by the same angle

struct HeldSegment {
    PathSegment s, t;

    DoublePoint Chord() const {
        const DoublePoint a = ToDoublePoint(s.p), b = ToDoublePoint(t.p);
        return {b.h - a.h, b.v - a.v};
    }
    // Of its control polygon: grows with the segment and is never 0 but for a point.
    double Size() const {
        const DoublePoint p0 = ToDoublePoint(s.p), p1 = ToDoublePoint(s.out), p2 = ToDoublePoint(t.in);
        return DistanceBetweenPoints(p0, p1) + DistanceBetweenPoints(p1, p2) +
               DistanceBetweenPoints(p2, ToDoublePoint(t.p));
    }
};

bool ReadHeldSegment(AIArtHandle art, int index, HeldSegment* segment) {
    std::int16_t kind = kUnknownArt;
    if (art == nullptr || sAIArt->GetArtType(art, &kind) != kNoErr || kind != kPathArt) return false;
    const int count = SegmentCount(art);
    if (index < 0 || index >= count || count < 2 || (index == 0 && !PathIsClosed(art))) return false;
    return ReadSegmentPair(art, index, &segment->s, &segment->t);
}

std::vector<PathSegment> ReadSegments(AIArtHandle art) {
    std::vector<PathSegment> segments(static_cast<std::size_t>(SegmentCount(art)));
    if (sAIPath->GetPathSegments(art, 0, static_cast<std::int16_t>(segments.size()), segments.data()) != kNoErr)
        segments.clear();
    return segments;
}

PointHold HoldOnSegment(const BezierBasisTables& tables, const HeldSegment& segment, std::int16_t index,
                        const RealPoint& point) {
    PointHold hold;
    hold.kind = HoldKind::segment;
    hold.segment = index;
    hold.numbers[0] = PlaceOnSegment(tables, segment.s, segment.t, ToDoublePoint(point));
    return hold;
}

// --- crossings ----------------------------------------------------------------------------------------------------

double DistanceOff(const BezierBasisTables& tables, const HeldSegment& segment, const RealPoint& point) {
    return DistanceToSegment(tables, segment.s, segment.t, ToDoublePoint(point), nullptr, nullptr);
}

// The crossing nearest to where it was along the first segment.
bool CrossingNear(const BezierBasisTables& tables, const HeldSegment& first, const HeldSegment& second, double place,
                  RealPoint* crossing) {
    const SegmentHit one{nullptr, 0, first.s, first.t}, two{nullptr, 0, second.s, second.t};
    const RealPoint guess = ToRealPoint(PointAtPlace(tables, first.s, first.t, place));
    const double size = first.Size() + second.Size();
    for (double reach = size * 1e-3; reach < size * 8; reach *= 4)
        if (FindCrossing(tables, one, two, guess, reach, crossing)) return true;
    return false;
}

LinkState PlaceCrossing(const BezierBasisTables& tables, const PointHold& hold, const SnapCell* cells,
                        RealPoint* point) {
    HeldSegment segments[2];
    for (int i = 0; i < 2; ++i)
        if (!ReadHeldSegment(cells[i].art, cells[i].index, &segments[i])) return kLinkSegment;
    // Segments that end on one another may miss by what a rounding has moved them.
    if (!CrossingNear(tables, segments[0], segments[1], hold.numbers[0], point))
        *point = ToRealPoint(PointAtPlace(tables, segments[0].s, segments[0].t, hold.numbers[0]));
    for (int i = 0; i < 2; ++i) {
        const double allowed = (hold.numbers[2 + i] * 1.01 + kCrossingShare) * segments[i].Size() + kCrossingSlack;
        if (!(DistanceOff(tables, segments[i], *point) <= allowed)) return kLinkNoCrossing;
    }
    return kLinkHeld;
}

PointHold HoldCrossing(const BezierBasisTables& tables, const RealPoint& point, const SnapCell* cells) {
    PointHold hold;
    for (int i = 0; i < 2; ++i) {
        HeldSegment segment;
        if (!ReadHeldSegment(cells[i].art, cells[i].index, &segment)) return {};
        hold.numbers[i] = PlaceOnSegment(tables, segment.s, segment.t, ToDoublePoint(point));
        const double size = segment.Size(), off = DistanceOff(tables, segment, point);
        hold.numbers[2 + i] = size > 0 && off > kCrossingShare * size ? off / size : 0;
    }
    hold.kind = HoldKind::crossing;
    return hold;
}

// --- centres ------------------------------------------------------------------------------------------------------

// Two directions of a path that an edit of one of its parts turns unlike each other.
void DirectionsOf(const std::vector<PathSegment>& segments, double* first, double* second) {
    const std::size_t n = segments.size();
    const auto direction = [&](std::size_t a, std::size_t b) {
        return AngleBetweenPoints(ToDoublePoint(segments[a].p), ToDoublePoint(segments[b].p));
    };
    *first = n < 2 ? 0 : direction(0, n / 2);
    *second = n < 3 ? *first : direction(1, n - 1);
}

bool FindCircle(AIArtHandle art, int index, DoublePoint* centre, double* radius) {
    HeldSegment segment;
    return ReadHeldSegment(art, index, &segment) && !IsStraightSegment(segment.s, segment.t) &&
           ArcCenterFromNormals(segment.s, segment.t, centre, radius);
}

PointHold HoldCentre(const RealPoint& point, const SnapCell& cell) {
    PointHold hold;
    const std::vector<PathSegment> segments = cell.art == nullptr ? std::vector<PathSegment>{} : ReadSegments(cell.art);
    if (segments.empty()) return hold;
    DoublePoint centre;
    double radius = 0;
    const int index = PathIsClosed(cell.art) ? 0 : 1;
    if (FindCircle(cell.art, index, &centre, &radius) &&
        DistanceBetweenPoints(centre, ToDoublePoint(point)) <= 0.01 + radius * 1e-4) {
        hold.kind = HoldKind::centre;
        hold.segment = static_cast<std::int16_t>(index);
        return hold;
    }
    hold.kind = HoldKind::bounds;
    DirectionsOf(segments, &hold.numbers[0], &hold.numbers[1]);
    return hold;
}

LinkState PlaceCentre(const PointHold& hold, const SnapCell& cell, RealPoint* point) {
    HeldSegment segment;
    if (!ReadHeldSegment(cell.art, hold.segment, &segment)) return kLinkSegment;
    DoublePoint centre;
    double radius = 0;
    if (!FindCircle(cell.art, hold.segment, &centre, &radius)) return kLinkNoArc;
    *point = ToRealPoint(centre);
    return kLinkHeld;
}

LinkState PlaceBounds(const PointHold& hold, const SnapCell& cell, RealPoint* point) {
    const std::vector<PathSegment> segments = ReadSegments(cell.art);
    if (segments.empty()) return kLinkSegment;
    double first = 0, second = 0;
    DirectionsOf(segments, &first, &second);
    const double turn = std::remainder(first - hold.numbers[0], kWholeTurn);
    const double other = std::remainder(second - hold.numbers[1], kWholeTurn);
    const bool turned = std::fabs(std::remainder(turn - other, kWholeTurn)) < kSameTurn;
    *point = ToRealPoint(TurnedBoundsMiddle(segments.data(), static_cast<int>(segments.size()), turned ? turn : 0.0));
    return kLinkHeld;
}

// --- points off a segment -----------------------------------------------------------------------------------------

PointHold HoldOffset(const RealPoint& point, const RealPoint& from, const SnapCell& fromCell) {
    HeldSegment segment;
    PointHold hold;
    if (!ReadHeldSegment(fromCell.art, fromCell.index, &segment)) return hold;
    const DoublePoint chord = segment.Chord(), p = ToDoublePoint(point), base = ToDoublePoint(from);
    const double square = chord.h * chord.h + chord.v * chord.v;
    if (!(square > 0)) return hold;
    const double h = p.h - base.h, v = p.v - base.v;
    hold.kind = HoldKind::offset;
    hold.segment = fromCell.index;
    hold.numbers[0] = (h * chord.h + v * chord.v) / square;
    hold.numbers[1] = (v * chord.h - h * chord.v) / square;
    return hold;
}

LinkState PlaceOffset(const PointHold& hold, const DoublePoint& from, const SnapCell& fromCell, RealPoint* point) {
    HeldSegment segment;
    if (!ReadHeldSegment(fromCell.art, hold.segment, &segment)) return kLinkSegment;
    const DoublePoint chord = segment.Chord();
    *point = ToRealPoint({from.h + hold.numbers[0] * chord.h - hold.numbers[1] * chord.v,
                          from.v + hold.numbers[0] * chord.v + hold.numbers[1] * chord.h});
    return kLinkHeld;
}

// --- texts --------------------------------------------------------------------------------------------------------

// A hold's keyword, and how many numbers follow: of the segment's index first where it has one.
struct HoldRow {
    HoldKind kind;
    const char* word;
    bool hasSegment;
    int numbers, optional;
};
constexpr HoldRow kHoldRows[] = {
    {HoldKind::segment, kHoldSegment, true, 1, 0}, {HoldKind::crossing, kHoldCrossing, false, 2, 2},
    {HoldKind::centre, kHoldCentre, true, 0, 0},   {HoldKind::bounds, kHoldBounds, false, 2, 0},
    {HoldKind::offset, kHoldOffset, true, 2, 0},
};

bool ParseHoldRow(const HoldRow& row, Words* words, PointHold* hold) {
    PointHold read;
    read.kind = row.kind;
    double index = 0;
    if (row.hasSegment && !(words->Number(&index) && index >= 0 && index <= INT16_MAX)) return false;
    if (row.hasSegment) read.segment = static_cast<std::int16_t>(index);
    for (int i = 0; i < row.numbers; ++i)
        if (!words->Number(&read.numbers[i])) return false;
    for (int i = row.numbers; i < row.numbers + row.optional; ++i) words->Number(&read.numbers[i]);
    *hold = read;
    return true;
}

// Half the sixth digit.
double RoundingOf(double value) {
    if (value == 0 || !std::isfinite(value)) return 0;
    return 0.5 * std::pow(10.0, std::floor(std::log10(std::fabs(value))) - 5);
}

bool IsNear(float now, float recorded) {
    const double spacing = std::nextafter(std::fabs(recorded), INFINITY) - std::fabs(recorded);
    return std::fabs(static_cast<double>(now) - recorded) <= RoundingOf(recorded) * 1.0001 + 2 * spacing;
}

}  // namespace

std::string HoldText(const HoldRecord& record) {
    std::string text;
    for (const HoldRow& row : kHoldRows) {
        if (row.kind != record.hold.kind) continue;
        text = row.word;
        if (row.hasSegment) AppendNumber(&text, record.hold.segment, kPlaceDigits);
        const double* numbers = record.hold.numbers;
        const bool whole = row.optional > 0 && (numbers[row.numbers] != 0 || numbers[row.numbers + 1] != 0);
        for (int i = 0; i < row.numbers + (whole ? row.optional : 0); ++i)
            AppendNumber(&text, numbers[i], kPlaceDigits);
    }
    if (record.hold.kind == HoldKind::anchor && record.hold.links != 0) {
        AppendWord(&text, kHoldLinks);
        AppendNumber(&text, record.hold.links, kPlaceDigits);
    }
    if (record.hasExact) {
        AppendWord(&text, kHoldExact);
        AppendNumber(&text, record.exact.h, kFloatDigits);
        AppendNumber(&text, record.exact.v, kFloatDigits);
    }
    if (record.hasAnchor) {
        AppendWord(&text, kHoldAnchor);
        AppendNumber(&text, record.anchor.h, kFloatDigits);
        AppendNumber(&text, record.anchor.v, kFloatDigits);
    }
    return text;
}

// What is no word of the grammar ends the reading.
HoldRecord ParseHold(std::string_view text) {
    HoldRecord record;
    Words words(text);
    for (std::string word = words.Next(); !word.empty(); word = words.Next()) {
        DoublePoint point;
        const auto* row = std::find_if(std::begin(kHoldRows), std::end(kHoldRows),
                                       [&](const HoldRow& one) { return word == one.word; });
        if (row != std::end(kHoldRows)) {
            if (!ParseHoldRow(*row, &words, &record.hold)) break;
        } else if (double links = 0; word == kHoldLinks && words.Number(&links) && links > 0 && links <= UINT8_MAX) {
            record.hold.links = static_cast<std::uint8_t>(links);
        } else if ((word == kHoldExact || word == kHoldAnchor) && words.Number(&point.h) && words.Number(&point.v)) {
            (word == kHoldExact ? record.hasExact : record.hasAnchor) = true;
            if (word == kHoldExact)
                record.exact = ToRealPoint(point);
            else
                record.anchor = point;
        } else {
            break;
        }
    }
    return record;
}

PointHold HoldOfSnap(const PluginGlobals* globals, std::int16_t snapKind, const RealPoint& point, const SnapCell* cells,
                     const RealPoint& from, const SnapCell& fromCell) {
    HeldSegment segment;
    switch (snapKind) {
        case kSnapIntersection:
            return HoldCrossing(globals->bezierTables, point, cells);
        case kSnapPath:
            return ReadHeldSegment(cells[0].art, cells[0].index, &segment)
                       ? HoldOnSegment(globals->bezierTables, segment, cells[0].index, point)
                       : PointHold{};
        case kSnapCenter:
            return HoldCentre(point, cells[0]);
        case kSnapTangent:
        case kSnapNormal:
            return HoldOffset(point, from, fromCell);
        default:
            return HoldAtAnchor(point, cells);
    }
}

PointHold HoldAtAnchor(const RealPoint& point, const SnapCell* cells) {
    PointHold hold;
    bool allAreAt = true;
    for (int i = 0; i < kSnapCellCount && cells[i].art != nullptr; ++i) {
        RealPoint anchor;
        const bool isAt = CellAnchor(cells[i], &anchor) && PointsEqual(anchor, point);
        if (isAt) hold.links = static_cast<std::uint8_t>(hold.links | 1U << i);
        allAreAt = allAreAt && isAt;
    }
    if (allAreAt) hold.links = 0;
    return hold;
}

PointHold HoldOfPick(const PluginGlobals* globals, const RealPoint& point, const SnapCell& cell) {
    HeldSegment segment;
    const bool holds = ReadHeldSegment(cell.art, cell.index, &segment) && IsStraightSegment(segment.s, segment.t);
    return holds ? HoldOnSegment(globals->bezierTables, segment, cell.index, point) : PointHold{};
}

LinkState PlaceHeldPoint(const PluginGlobals* globals, const PointHold& hold, const SnapCell* cells,
                         const DoublePoint& from, const SnapCell& fromCell, RealPoint* point) {
    const BezierBasisTables& tables = globals->bezierTables;
    HeldSegment segment;
    switch (hold.kind) {
        case HoldKind::segment:
            if (!ReadHeldSegment(cells[0].art, hold.segment, &segment)) return kLinkSegment;
            *point = ToRealPoint(PointAtPlace(tables, segment.s, segment.t, hold.numbers[0]));
            return kLinkHeld;
        case HoldKind::crossing:
            return PlaceCrossing(tables, hold, cells, point);
        case HoldKind::centre:
            return PlaceCentre(hold, cells[0], point);
        case HoldKind::bounds:
            return PlaceBounds(hold, cells[0], point);
        case HoldKind::offset:
            return PlaceOffset(hold, from, fromCell, point);
        case HoldKind::anchor:
            break;
    }
    return kLinkFree;
}

bool IsWhereRecorded(const RealPoint& now, const RealPoint& recorded) {
    return IsNear(now.h, recorded.h) && IsNear(now.v, recorded.v);
}

}  // namespace quorvel

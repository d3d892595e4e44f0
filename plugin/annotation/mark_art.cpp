// The art of the annotation tools: leader and arrowhead, then by mode a comment on its shelf, a balloon with a running
// number, or the length or area of what is pointed at or selected.
#include <cstdio>
#include <cstring>
#include <optional>

#include "plugin/annotation/comment.h"
#include "plugin/annotation/mark_record.h"
#include "plugin/dimensioning/graphics.h"
#include "plugin/dimensioning/units.h"
#include "plugin/record/examine.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/snap.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

constexpr double kSmallestSpan = 1.0;   // shorter is no leader and no line to write along
constexpr double kTextMargin = 2.0;     // what a shelf, or a line written along, leaves beside its text
constexpr double kTextRise = 0.2;       // of the font size, from shelf to baseline
constexpr double kBalloonRadius = 0.7;  // of the font size
constexpr double kBalloonDrop = 0.4;    // of the font size, from the balloon's centre to the baseline

struct Mark {
    AIArtHandle group = nullptr;
    DoublePoint A, B;
    bool hasLeader = false;
};

void AddMarkLeader(const PrefsRecord& prefs, const Mark& mark) {
    if (!mark.hasLeader) return;
    AddLine2(mark.group, mark.A, mark.B);
    AddArrowMark(mark.group, mark.A, AngleBetweenPoints(mark.A, mark.B), ArrowWingLength(prefs, false));
}

// The shelf under the text, on the side to which the leader runs, and the text on it.
void AddShelf(const PluginGlobals* globals, const Mark& mark, const char* text) {
    const double size = globals->prefs.flArFSize;
    DoublePoint p1 = mark.B, p2 = mark.B;
    if (mark.hasLeader) {
        double angle = AngleBetweenPoints(mark.A, mark.B);
        if (angle > kPi) angle = -(kTwoPi - angle);
        const double width = MeasureTextUnitWidth(globals, text) * size;
        if (angle > -kHalfPiWide && angle <= kHalfPiWide)
            p2.h += width + kTextMargin;
        else
            p1.h -= width + kTextMargin;
        AddLine2(mark.group, p1, p2);
    }
    p1.v += size * kTextRise;
    p2.v = p1.v;
    AddCommentText(mark.group, p1, p2, text, false);
}

void AddBalloon(PluginGlobals* globals, const Mark& mark) {
    PrefsRecord& prefs = globals->prefs;
    if (prefs.flMrkItemNo == 0) return;
    const double size = prefs.flArFSize, radius = size * kBalloonRadius;
    const DoublePoint centre = mark.hasLeader ? PolarPoint(mark.B, radius, AngleBetweenPoints(mark.A, mark.B))
                                              : DoublePoint{(mark.A.h + mark.B.h) / 2, (mark.A.v + mark.B.v) / 2};
    const DoublePoint p1{centre.h - (size + 2.0) / 2.0, centre.v - size * kBalloonDrop};
    char text[16];
    std::snprintf(text, sizeof text, "%d", prefs.flMrkItemNo);
    AddDot(mark.group, centre, radius * 2.0, false);
    AddCommentText(mark.group, p1, {p1.h + size + 2.0, p1.v}, text, true);
    prefs.flMrkItemNo = static_cast<std::int16_t>(prefs.flMrkItemNo + prefs.flMrkINStep);
}

bool IsSelected(AIArtHandle art) {
    std::int32_t attributes = 0;
    return sAIArt->GetArtUserAttr(art, kArtSelected, &attributes) == kNoErr && (attributes & kArtSelected) != 0;
}

double WholePathLength(const BezierBasisTables& tables, AIArtHandle path) {
    const int count = SegmentCount(path);
    if (count == 0) return 0;
    double length = 0;
    PathSegment first, previous, segment;
    if (!ReadSegment(path, 0, &first)) return 0;
    previous = first;
    for (int i = 1; i < count && ReadSegment(path, i, &segment); ++i) {
        length += SegmentLength(tables, previous, segment, nullptr);
        previous = segment;
    }
    return PathIsClosed(path) ? length + SegmentLength(tables, previous, first, nullptr) : length;
}

// A leader to a selected stretch means the selection, to anything else the whole path.
double LengthPointedAt(const PluginGlobals* globals, const SnapCell& cell) {
    std::int16_t state = kSegmentNotSelected;
    if (IsSelected(cell.art) && cell.index < SegmentCount(cell.art))
        sAIPath->GetPathSegmentSelected(cell.art, cell.index, &state);
    return state == kSegmentNotSelected ? WholePathLength(globals->bezierTables, cell.art) : SelectedPathLength();
}

double AreaPointedAt(const SnapCell& cell) { return IsSelected(cell.art) ? SelectedPathArea() : PathArea(cell.art); }

// What the mode measures; nothing when there is neither art under the leader nor a selection of any size.
std::optional<double> Measure(const PluginGlobals* globals, const Mark& mark) {
    const SnapCell& cell = globals->liveState.fromCells[0];
    const bool length = globals->prefs.flMarkMode == kLengthMark;
    if (mark.hasLeader && cell.art != nullptr) return length ? LengthPointedAt(globals, cell) : AreaPointedAt(cell);
    const double selected = length ? SelectedPathLength() : SelectedPathArea();
    if (selected == 0) return std::nullopt;
    return selected;
}

const LengthUnit* UnitAt(std::int16_t index) {
    return index >= 0 && index < kUnitCount ? &kLengthUnits[index] : nullptr;
}

std::string MeasureText(const PrefsRecord& prefs, double value, const char* unit) {
    char text[kValueTextSize];
    std::snprintf(text, sizeof text, "%1.*f", prefs.flScFix, value);
    if (prefs.flScFix > 0 && prefs.flUseZero == 0) StripTrailingZeros(text, prefs.flScFix);
    return prefs.flUseTani != 0 ? std::string(text) + " " + unit : std::string(text);
}

bool ShowsValue(const PluginGlobals* globals) {
    return globals->prefs.flMarkMode == kLengthMark || globals->prefs.flMarkMode == kAreaMark;
}

std::string MeasuredText(const PluginGlobals* globals, double measured) {
    return globals->prefs.flMarkMode == kLengthMark ? LengthCommentText(globals, measured)
                                                    : AreaCommentText(globals, measured);
}

// The mode's own art, and its text; false when there is nothing to measure.
bool AddModeArt(PluginGlobals* globals, const Mark& mark, std::string* text) {
    const PrefsRecord& prefs = globals->prefs;
    if (prefs.flMarkMode == kObjectNumberMark) {
        if (prefs.flMrkItemNo != 0) *text = std::to_string(prefs.flMrkItemNo);
        AddBalloon(globals, mark);
        return true;
    }
    if (prefs.flMarkMode == kCommentMark) {
        *text = prefs.flMrkComment;
    } else {
        const std::optional<double> measured = Measure(globals, mark);
        if (!measured) return false;
        if (*measured != 0) *text = MeasuredText(globals, *measured);
    }
    if (!text->empty()) AddShelf(globals, mark, text->c_str());
    return true;
}

double MeasureWhole(const PluginGlobals* globals) {
    AIArtHandle art = globals->liveState.fromCells[0].art;
    return globals->prefs.flMarkMode == kLengthMark ? WholePathLength(globals->bezierTables, art) : PathArea(art);
}

// A value that is that of a selection has no art of its own.
void LinkMark(PluginGlobals* globals, const Mark& mark, const std::string& text) {
    if (!mark.hasLeader || text.empty() || globals->liveState.fromCells[0].art == nullptr) return;
    if (ShowsValue(globals) && MeasuredText(globals, MeasureWhole(globals)) != text) return;
    WriteMarkRecord(mark.group, text);
    ReportUnheldEnds(mark.group);
}

// --- the text object ------------------------------------------------------------------------------------------------

bool IsAsciiLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Cuts the last "2" behind a letter off a text of more than two bytes.
bool TakeSuperscript(std::string* text) {
    const std::size_t n = text->size();
    if (n <= 2 || (*text)[n - 1] != '2' || !IsAsciiLetter((*text)[n - 2])) return false;
    text->pop_back();
    return true;
}

// How far the text must be narrowed to fit on the line; never above 1.
double SqueezeScale(const PluginGlobals* globals, const DoublePoint& p1, const DoublePoint& p2, const char* text) {
    if (!(DistanceBetweenPoints(p1, p2) > kSmallestSpan)) return 1.0;
    const double width = MeasureTextUnitWidth(globals, text) * globals->prefs.flArFSize;
    if (width == 0) return 1.0;
    const double scale = (AbsOf(p2.h - p1.h) - kTextMargin) / width;
    return scale > 1.0 ? 1.0 : scale;
}

void AddSuperscriptTwo(const TextParts& parts, double size) {
    static constexpr std::uint16_t kTwo = '2';
    std::int32_t start = 0, end = 0;
    sATETextRange->GetStart(parts.range, &start);
    sATETextRange->GetEnd(parts.range, &end);
    sATETextRange->SetRange(parts.range, end, end);
    sATECharFeatures->SetFontSize(parts.characters, static_cast<float>(size * 0.5));
    sATECharFeatures->SetBaselineShift(parts.characters, static_cast<float>(size * 0.3));
    sATETextRange->SetLocalCharFeatures(parts.range, parts.characters);
    sATETextRange->InsertAfter(parts.range, &kTwo, 1);
    sATETextRange->SetRange(parts.range, start, end + 1);
}

void PlaceText(AIArtHandle frame, const DoublePoint& p1, const DoublePoint& p2, bool centred) {
    RealMatrix matrix;
    if (DistanceBetweenPoints(p1, p2) > kSmallestSpan) {
        sAIRealMath->AIRealMatrixSetRotate(&matrix, static_cast<float>(AngleBetweenPoints(p1, p2)));
        sAITransformArt->TransformArt(frame, &matrix, 1.0F, kTransformObjects);
    }
    const RealPoint place =
        ToRealPoint(centred ? DoublePoint{(p1.h + p2.h) / 2, (p1.v + p2.v) / 2} : DoublePoint{p1.h + 1.0, p1.v});
    sAIRealMath->AIRealMatrixSetTranslate(&matrix, place.h, place.v);
    sAITransformArt->TransformArt(frame, &matrix, 1.0F, kTransformObjects);
}

}  // namespace

void AddCommentText(AIArtHandle group, const DoublePoint& p1, const DoublePoint& p2, const char* text, bool centred) {
    const PluginGlobals* globals = gGlobals;
    std::string shown = text;
    const bool superscript = TakeSuperscript(&shown);
    if (shown.empty()) shown = "     ";
    TextParts parts;
    if (!BeginText(group, &parts)) return;
    sATECharFeatures->SetHorizontalScale(parts.characters,
                                         static_cast<float>(SqueezeScale(globals, p1, p2, shown.c_str())));
    sATECharFeatures->SetVerticalScale(parts.characters, 1.0F);
    sATETextRange->SetLocalCharFeatures(parts.range, parts.characters);
    SetTextFromInternal(globals, parts.range, shown.c_str());
    if (superscript) AddSuperscriptTwo(parts, globals->prefs.flArFSize);
    ApplyParagraph(parts, centred ? kJustifyCenter : kJustifyLeft);
    PlaceText(parts.frame, p1, p2, centred);
}

std::string LengthCommentText(const PluginGlobals* globals, double length) {
    const PrefsRecord& prefs = globals->prefs;
    const LengthUnit* unit = UnitAt(prefs.flArLenUnit);
    const double value = length * (unit == nullptr ? 1.0 : unit->factor) / prefs.flArLenScale;
    return MeasureText(prefs, value, unit == nullptr ? "" : unit->name);
}

std::string AreaCommentText(const PluginGlobals* globals, double area) {
    const PrefsRecord& prefs = globals->prefs;
    const LengthUnit* unit = UnitAt(prefs.flArDim1ConvUnit);
    const double factor = unit == nullptr ? 1.0 : PowerBySquaring(unit->factor, 2);
    const double value = area * factor / PowerBySquaring(prefs.flArLenScale, 2);
    return MeasureText(prefs, value, unit == nullptr ? "" : unit->squaredName);
}

std::int32_t BuildMarkArt() {
    PluginGlobals* globals = gGlobals;
    const ToolState& live = globals->liveState;
    Mark mark;
    mark.A = ToDoublePoint(live.fromPoint);
    mark.B = ToDoublePoint(live.toPoint);
    mark.hasLeader = DistanceBetweenPoints(mark.A, mark.B) > kSmallestSpan;
    AILayerHandle layer = nullptr;
    sAILayer->GetCurrentLayer(&layer);
    if (layer == nullptr || LayerIsBlocked(layer)) return 0;
    SaveSelection();
    AIArtHandle root = nullptr;
    sAIArt->GetFirstArtOfLayer(layer, &root);
    sAIArt->NewArt(kGroupArt, kPlaceInsideOnTop, root, &mark.group);
    AddMarkLeader(globals->prefs, mark);
    std::string text;
    if (!AddModeArt(globals, mark, &text)) return 0;
    RestoreSelection();
    LinkMark(globals, mark, text);
    return 1;
}

AIArtHandle BuildMarkAgain(AIArtHandle oldGroup, const std::string& text) {
    PluginGlobals* globals = gGlobals;
    const ToolState& live = globals->liveState;
    Mark mark;
    mark.A = ToDoublePoint(live.fromPoint);
    mark.B = ToDoublePoint(live.toPoint);
    mark.hasLeader = true;
    std::string shown = text;
    if (ShowsValue(globals)) shown = MeasuredText(globals, MeasureWhole(globals));
    mark.group = BeginDimensionGroup(oldGroup);
    if (mark.group == nullptr) return nullptr;
    AddMarkLeader(globals->prefs, mark);
    if (globals->prefs.flMarkMode == kObjectNumberMark)
        AddBalloon(globals, mark);
    else
        AddShelf(globals, mark, shown.c_str());
    WriteMarkRecord(mark.group, shown);
    EndDimensionGroup(oldGroup, mark.group);
    return mark.group;
}

}  // namespace quorvel

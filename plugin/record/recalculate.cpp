// The recalculation and the tracking pass: each reads a dimension's record, moves the stored points to where the art
// has them now, and has the family's builder replace the group.
#include "plugin/record/recalculate.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "plugin/annotation/mark_record.h"
#include "plugin/dimensioning/angle.h"
#include "plugin/dimensioning/diameter.h"
#include "plugin/dimensioning/linear.h"
#include "plugin/dimensioning/radius.h"
#include "plugin/dimensioning/shown_text.h"
#include "plugin/record/examine.h"
#include "plugin/record/follow.h"
#include "plugin/record/record_additions.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/traversal/traverse.h"

namespace quorvel {

namespace {

bool ViewIsOpen() {
    AIDocumentViewHandle view = nullptr;
    return sAIDocumentView->GetNthDocumentView(0, &view) == kNoErr && view != nullptr;
}

bool IsSelected(AIArtHandle art) {
    std::int32_t attributes = 0;
    return art != nullptr && sAIArt->GetArtUserAttr(art, kArtSelected, &attributes) == kNoErr &&
           (attributes & kArtSelected) != 0;
}

// Builds what liveState says in the place of the group. A builder that fails leaves the old group; the pass goes on.
void Build(AIArtHandle group, std::int16_t kind) {
    if (IsLinearKind(kind)) static_cast<void>(BuildLinearDimension(group));
    if (kind == kAngleTool) static_cast<void>(BuildAngleDimension(group));
    if (kind == kRadiusTool) static_cast<void>(BuildRadiusDimension(group));
    if (kind == kDiameterTool) static_cast<void>(BuildDiameterDimension(group));
}

// While it lives the signs are those of a record's language.
class RecordedLanguage {
  public:
    RecordedLanguage(PluginGlobals* globals, int language) : globals_(globals), current_(globals->language) {
        if (language != kCurrentLanguage) globals->language = static_cast<std::uint16_t>(language);
    }
    ~RecordedLanguage() { globals_->language = current_; }
    RecordedLanguage(const RecordedLanguage&) = delete;
    RecordedLanguage& operator=(const RecordedLanguage&) = delete;

  private:
    PluginGlobals* globals_;
    std::uint16_t current_;
};

// How far the coordinates of a dimension's art may be off: transforming them rounds each to a 32-bit float.
double PrecisionOf(const ToolState& state) {
    constexpr double kRoundings = 4.0;
    double largest = 256;
    for (const RealPoint& point : {state.fromPoint, state.toPoint, state.endPoint})
        largest = MaxOf(largest, MaxOf(AbsOf(point.h), AbsOf(point.v)));
    return kRoundings * std::ldexp(1.0, std::ilogb(largest) - 23);
}

bool IsInRange(const RealPoint& point) {
    return std::fabs(point.h) <= kLargestCoordinate && std::fabs(point.v) <= kLargestCoordinate;
}

// A damaged record draws nothing that cannot be read again, and does not keep the others of its pass from being drawn.
bool CanBeDrawn(const PluginGlobals* globals) {
    const ToolState& state = globals->liveState;
    const auto isStopInRange = [](const StopRecord& stop) { return IsInRange(stop.point); };
    const PrefsRecord& prefs = globals->prefs;
    const float lengths[] = {prefs.flScLead,  prefs.flScOfst,  prefs.flOsLead,  prefs.flArSize1,
                             prefs.flArSize2, prefs.flArSize3, prefs.flArSize4, prefs.flArLead,
                             prefs.flArThick, prefs.flArFSize, prefs.flArAngle};
    return IsInRange(state.fromPoint) && IsInRange(state.toPoint) && IsInRange(state.endPoint) &&
           std::all_of(state.stops, state.stops + state.stopCount, isStopInRange) &&
           std::all_of(std::begin(lengths), std::end(lengths), [](float length) {
               constexpr float kLargestLength = kLargestCoordinate / 100;
               return std::fabs(length) <= kLargestLength;
           });
}

void RebuildGroup(PluginGlobals* globals, AIArtHandle group, const DimensionRecord& record, double tolerance) {
    if (!CanBeDrawn(globals)) return ContextBracket(globals);
    const RecordedLanguage language(globals, record.language);
    if (tolerance != 0) tolerance = MaxOf(tolerance, PrecisionOf(globals->liveState));
    const ShownTexts shown(group, tolerance);
    Build(group, record.kind);
    ContextBracket(globals);
}

constexpr double kByPrecision = -1;

void RecalculateGroup(PluginGlobals* globals, AIArtHandle group, double tolerance) {
    const DimensionRecord record = ReadDimensionRecord(group);
    if (FollowArt(globals, record)) RebuildGroup(globals, group, record, tolerance);
}

bool MeasuresSelected(const RecordedPoint& point) {
    const RecordedLink* links = point.links.links;
    return std::any_of(links, links + point.links.count,
                       [](const RecordedLink& link) { return IsSelected(link.found.art); });
}

bool MeasuresSelected(const DimensionRecord& record) {
    return MeasuresSelected(record.from) || MeasuresSelected(record.to) ||
           std::any_of(record.stops.begin(), record.stops.end(),
                       [](const RecordedPoint& stop) { return MeasuresSelected(stop); });
}

bool UserAgrees(bool selectedOnly) {
    const std::string text = selectedOnly ? ChooseText("選択された寸法線を再計算します。\rよろしいですか？",
                                                       "Are you sure you want to recalculate selected dimension-lines?")
                                          : ChooseText("全ての寸法線を再計算します。\rよろしいですか？",
                                                       "Are you sure you want to recalculate all dimension-lines?");
    return sAIUser->YesNoAlert(HostString(text)) == 1;
}

}  // namespace

void RecalculateDimensions() {
    PluginGlobals* globals = gGlobals;
    if (!ViewIsOpen()) return;
    const std::vector<AIArtHandle> groups = CollectDimensionGroups();
    if (groups.empty()) return;
    bool selectedOnly = false;
    for (AIArtHandle group : groups) selectedOnly = selectedOnly || IsSelected(group);
    if (!UserAgrees(selectedOnly)) return;
    for (AIArtHandle group : groups)
        if (!selectedOnly || IsSelected(group)) RecalculateGroup(globals, group, kByPrecision);
    for (AIArtHandle group : CollectMarkGroups())
        if (!selectedOnly || IsSelected(group)) RebuildMark(group);
}

AIArtHandle RebuildDimension(AIArtHandle group, double tolerance) {
    PluginGlobals* globals = gGlobals;
    if (!IsDimensionGroup(group)) return RebuildMark(group);
    globals->builtGroup = nullptr;
    RecalculateGroup(globals, group, tolerance);
    return globals->builtGroup;
}

void FollowSelectedArt() {
    PluginGlobals* globals = gGlobals;
    const KeptState kept(globals);
    for (AIArtHandle group : CollectDimensionGroups()) {
        const DimensionRecord record = ReadDimensionRecord(group);
        if (MeasuresSelected(record) && FollowArt(globals, record)) RebuildGroup(globals, group, record, kByPrecision);
    }
    for (AIArtHandle group : CollectMarkGroups())
        if (MeasuresSelected(ReadDimensionRecord(group))) RebuildMark(group);
}

void TrackMovedArt() {
    PluginGlobals* globals = gGlobals;
    if (!ViewIsOpen()) return;
    for (AIArtHandle group : CollectDimensionGroups()) {
        const DimensionRecord record = ReadDimensionRecord(group);
        if (!IsLinearKind(record.kind)) continue;
        const ToolState& state = globals->liveState;
        const bool selected = IsSelected(state.fromCells[0].art) || IsSelected(state.toCells[0].art);
        FollowArt(globals, record);
        if (selected) RebuildGroup(globals, group, record, kByPrecision);
    }
}

}  // namespace quorvel

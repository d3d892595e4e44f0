#include "plugin/annotation/mark_record.h"

#include <algorithm>
#include <cstdlib>

#include "hostapi/record_additions.h"
#include "plugin/annotation/comment.h"
#include "plugin/dimensioning/shown_text.h"
#include "plugin/record/examine.h"
#include "plugin/record/follow.h"
#include "plugin/record/words.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

struct MarkRecord {
    std::int16_t mode = 0, lengthUnit = 0, areaUnit = 0;
    std::uint16_t language = 0;
    float scale = 1;
    std::string text;
};

std::string MarkText(const PluginGlobals* globals, const std::string& text) {
    const PrefsRecord& prefs = globals->prefs;
    std::string row;
    for (const int number :
         {int{prefs.flMarkMode}, int{globals->language}, int{prefs.flArLenUnit}, int{prefs.flArDim1ConvUnit}})
        AppendNumber(&row, number, kPlaceDigits);
    AppendNumber(&row, static_cast<double>(prefs.flArLenScale), kFloatDigits);
    return row + ' ' + text;
}

bool ReadMark(AIArtHandle group, MarkRecord* mark) {
    std::string row;
    if (!ReadTag(group, kMarkTag, &row)) return false;
    Words words(row);
    double numbers[5];
    for (double& number : numbers)
        if (!words.Number(&number)) return false;
    for (int i = 0; i < 4; ++i)
        if (!(numbers[i] >= 0 && numbers[i] <= INT16_MAX)) return false;
    mark->mode = static_cast<std::int16_t>(numbers[0]);
    mark->language = static_cast<std::uint16_t>(numbers[1]);
    mark->lengthUnit = static_cast<std::int16_t>(numbers[2]);
    mark->areaUnit = static_cast<std::int16_t>(numbers[3]);
    mark->scale = static_cast<float>(numbers[4]);
    mark->text = words.Rest();
    return mark->mode <= kAreaMark && mark->scale != 0;
}

// While it lives the settings, the language and liveState are those of the mark.
class ReadMarkState {
  public:
    ReadMarkState(PluginGlobals* globals, AIArtHandle group, const MarkRecord& mark)
        : kept_(globals), globals_(globals), language_(globals->language), record(ReadDimensionRecord(group)) {
        PrefsRecord& prefs = globals->prefs;
        globals->language = mark.language;
        prefs.flMarkMode = mark.mode;
        prefs.flArLenUnit = mark.lengthUnit;
        prefs.flArDim1ConvUnit = mark.areaUnit;
        prefs.flArLenScale = mark.scale;
        if (mark.mode == kObjectNumberMark) prefs.flMrkItemNo = static_cast<std::int16_t>(std::atoi(mark.text.c_str()));
    }
    ~ReadMarkState() { globals_->language = language_; }
    ReadMarkState(const ReadMarkState&) = delete;
    ReadMarkState& operator=(const ReadMarkState&) = delete;

  private:
    KeptState kept_;
    PluginGlobals* globals_;
    std::uint16_t language_;

  public:
    const DimensionRecord record;
};

// Is the text that the group shows another one than it was given?
bool IsEdited(const PluginGlobals* globals, AIArtHandle group, const std::string& text) {
    if (sDimension == nullptr) return false;
    const std::vector<std::vector<std::uint16_t>> shown = TextsOf(group);
    const std::vector<std::uint16_t> given = UnitsFromInternal(globals, text.c_str());
    return shown.size() != 1 || !std::equal(given.begin(), std::find(given.begin(), given.end(), 0), shown[0].begin(),
                                            std::find(shown[0].begin(), shown[0].end(), 0));
}

}  // namespace

void WriteMarkRecord(AIArtHandle group, const std::string& text) {
    ToolState& live = gGlobals->liveState;
    ClearSnapCells(live.toCells, kSnapCellCount);
    live.toKind = kSnapFree;
    // The search gives one art alone.
    if (live.fromKind == kSnapIntersection) live.fromKind = kSnapPath;
    WriteLinkedTip(group);
    WriteTag(group, kMarkTag, MarkText(gGlobals, text));
}

std::vector<DimensionEnd> ExamineMark(AIArtHandle group) {
    MarkRecord mark;
    if (!ReadMark(group, &mark)) return {};
    const ReadMarkState state(gGlobals, group, mark);
    std::vector<DimensionEnd> ends{{kFromEnd, FindPointsNow(gGlobals, state.record).from.state}};
    if (IsEdited(gGlobals, group, mark.text)) ends.push_back({kTextEnd, kTextEdited});
    return ends;
}

AIArtHandle RebuildMark(AIArtHandle group) {
    PluginGlobals* globals = gGlobals;
    MarkRecord mark;
    if (!ReadMark(group, &mark)) return nullptr;
    const ReadMarkState state(globals, group, mark);
    if (IsEdited(globals, group, mark.text)) return nullptr;
    if (FindPointsNow(globals, state.record).from.state != kLinkHeld) return nullptr;
    FollowArt(globals, state.record);
    return BuildMarkAgain(group, mark.text);
}

}  // namespace quorvel

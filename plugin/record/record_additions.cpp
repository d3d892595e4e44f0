#include "plugin/record/record_additions.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <vector>

#include "hostapi/names.h"
#include "hostapi/record_additions.h"
#include "plugin/record/dimension_record.h"
#include "plugin/record/words.h"
#include "plugin/settings/prefs_keys.h"

namespace quorvel {

namespace {

float AsPrinted(float value) {
    char text[40];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return static_cast<float>(std::atof(text));
}

bool PrintsExactly(const RealPoint& point) { return AsPrinted(point.h) == point.h && AsPrinted(point.v) == point.v; }

bool IsRound(std::int16_t kind) { return kind == kRadiusTool || kind == kDiameterTool; }

// An anchor gives its own exact place; every other point has to be kept.
HoldRecord RecordOf(const PointHold& hold, const RealPoint& point, const SnapCell* cells) {
    HoldRecord record;
    record.hold = hold;
    record.hasExact = (cells[0].art == nullptr || hold.kind != HoldKind::anchor) && !PrintsExactly(point);
    record.exact = point;
    return record;
}

float RealSetting(const PluginGlobals* globals, const PrefsKey& key) {
    float value = 0;
    std::memcpy(&value, reinterpret_cast<const char*>(globals) + key.offset, sizeof value);
    return value;
}

std::string ExactSettingsText(const PluginGlobals* globals) {
    std::string text;
    for (const PrefsKey& key : RecordKeys()) {
        if (key.type != FieldType::real) continue;
        const float value = RealSetting(globals, key);
        if (AsPrinted(value) == value) continue;
        AppendWord(&text, key.name);
        AppendNumber(&text, value, kFloatDigits);
    }
    return text;
}

// Which kinds show a sign that the language decides.
bool ShowsSign(std::int16_t kind) { return kind == kAngleTool || kind == kDiameterTool; }

// plain: the letter of a span without a choice.
void AppendLetters(std::string* text, const char* word, const char* letters, char plain) {
    if (std::string_view(letters).find_first_not_of(plain) == std::string_view::npos) return;
    AppendWord(text, word);
    AppendWord(text, letters);
}

std::string ChoicesText(const PluginGlobals* globals, std::int16_t kind) {
    const BuildChoices& choices = globals->liveState.choices;
    std::string text;
    if (ShowsSign(kind) && globals->language < std::size(kLanguageWords)) {
        AppendWord(&text, kChoiceLanguage);
        AppendWord(&text, kLanguageWords[globals->language]);
    }
    if (choices.pixel > 0) {
        AppendWord(&text, kChoicePixel);
        AppendNumber(&text, choices.pixel, kPlaceDigits);
    }
    AppendLetters(&text, kChoiceHeads, choices.heads, kHeadsByLength);
    AppendLetters(&text, kChoiceSpans, choices.spans, kSpanByFeet);
    if (choices.way != CurveWay::nearest) {
        AppendWord(&text, kChoiceWay);
        AppendWord(&text, choices.way == CurveWay::forward ? kWayForward : kWayBack);
    }
    if (choices.side != CurveSide::placed) {
        AppendWord(&text, kChoiceSide);
        AppendWord(&text, choices.side == CurveSide::left ? kSideLeft : kSideRight);
    }
    if (choices.sector == AngleSector::reflex) {
        AppendWord(&text, kChoiceSector);
        AppendWord(&text, kSectorReflex);
    }
    return text;
}

// Writes the tag, or takes off what a former record left.
void WriteOrRemove(AIArtHandle group, const char* tagName, const std::string& text) {
    if (!text.empty())
        WriteTag(group, tagName, text);
    else
        RemoveTag(group, tagName);
}

template <std::size_t N>
void ReadLetters(const std::string& word, char (&letters)[N]) {
    for (std::size_t i = 0; i < word.size() && i + 1 < N; ++i) letters[i] = word[i];
}

}  // namespace

void FindHolds(PluginGlobals* globals, std::int16_t kind) {
    ToolState& live = globals->liveState;
    if (live.fromRecord || IsRound(kind)) return;
    const auto find = [&](std::int16_t snapKind, const RealPoint& point, const SnapCell* cells) {
        if (kind == kAngleTool) return HoldOfPick(globals, point, cells[0]);
        return HoldOfSnap(globals, snapKind, point, cells, live.fromPoint, live.fromCells[0]);
    };
    live.fromHold = find(live.fromKind, live.fromPoint, live.fromCells);
    live.toHold = find(live.toKind, live.toPoint, live.toCells);
    for (int i = 0; i < live.stopCount; ++i) {
        StopRecord& stop = live.stops[i];
        stop.hold = find(stop.kind, stop.point, stop.cells);
    }
}

void WriteAdditions(const PluginGlobals* globals, AIArtHandle group, std::int16_t kind) {
    const ToolState& live = globals->liveState;
    if (!IsRound(kind)) {
        WriteHold(group, kFromHoldTag, RecordOf(live.fromHold, live.fromPoint, live.fromCells));
        WriteHold(group, kToHoldTag, RecordOf(live.toHold, live.toPoint, live.toCells));
    }
    constexpr SnapCell kFree[1] = {};
    WriteHold(group, kEndHoldTag, RecordOf({}, live.endPoint, kFree));
    for (int i = 0; i < live.stopCount; ++i)
        WriteHold(group, StopHoldTag(i + 1), RecordOf(live.stops[i].hold, live.stops[i].point, live.stops[i].cells));
    WriteOrRemove(group, kSettingHoldTag, ExactSettingsText(globals));
    WriteOrRemove(group, kChoiceTag, ChoicesText(globals, kind));
}

const char* HoldTagOf(std::string_view listTag) {
    if (listTag == kFromCellTag) return kFromHoldTag;
    if (listTag == kToCellTag) return kToHoldTag;
    int number = 1;
    while (number < kStopLimit && listTag != StopTagName(number)) ++number;
    return StopHoldTag(number);
}

const char* StopHoldTag(int number) {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> made;
        char name[40];
        for (int i = 0; i <= kStopLimit; ++i) {
            std::snprintf(name, sizeof name, "%s%2.2d", kStopHoldPrefix, i);
            made.emplace_back(name);
        }
        return made;
    }();
    return names[static_cast<std::size_t>(number)].c_str();
}

HoldRecord ReadHold(AIArtHandle group, const char* tagName) {
    std::string text;
    return ReadTag(group, tagName, &text) ? ParseHold(text) : HoldRecord{};
}

void WriteHold(AIArtHandle group, const char* tagName, const HoldRecord& record) {
    WriteOrRemove(group, tagName, HoldText(record));
}

RealPoint ExactPoint(const HoldRecord& record, const RealPoint& point) {
    const bool same = record.hasExact && AsPrinted(record.exact.h) == point.h && AsPrinted(record.exact.v) == point.v;
    return same ? record.exact : point;
}

void ReadExactSettings(AIArtHandle group, PluginGlobals* globals) {
    std::string text;
    if (!ReadTag(group, kSettingHoldTag, &text)) return;
    Words words(text);
    double number = 0;
    for (std::string name = words.Next(); !name.empty() && words.Number(&number); name = words.Next()) {
        const PrefsKey* key = FindPrefsKey(name);
        if (key == nullptr || key->type != FieldType::real) return;
        const float exact = static_cast<float>(number);
        if (AsPrinted(exact) == RealSetting(globals, *key))
            std::memcpy(reinterpret_cast<char*>(globals) + key->offset, &exact, sizeof exact);
    }
}

int ReadChoices(AIArtHandle group, BuildChoices* choices) {
    int language = kCurrentLanguage;
    std::string text;
    if (!ReadTag(group, kChoiceTag, &text)) return language;
    Words words(text);
    for (std::string word = words.Next(); !word.empty(); word = words.Next()) {
        if (word == kChoicePixel) {
            if (!words.Number(&choices->pixel)) break;
            continue;
        }
        const std::string value = words.Next();
        if (word == kChoiceHeads) ReadLetters(value, choices->heads);
        if (word == kChoiceSpans) ReadLetters(value, choices->spans);
        if (word == kChoiceWay && value == kWayForward) choices->way = CurveWay::forward;
        if (word == kChoiceWay && value == kWayBack) choices->way = CurveWay::back;
        if (word == kChoiceSide && value == kSideLeft) choices->side = CurveSide::left;
        if (word == kChoiceSide && value == kSideRight) choices->side = CurveSide::right;
        if (word == kChoiceSector && value == kSectorReflex) choices->sector = AngleSector::reflex;
        for (std::size_t i = 0; word == kChoiceLanguage && i < std::size(kLanguageWords); ++i)
            if (value == kLanguageWords[i]) language = static_cast<int>(i);
    }
    return language;
}

}  // namespace quorvel

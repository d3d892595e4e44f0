// The Settings dialog: its lists, boxes and edits by table, what their events do, and the checks that come before
// anything is stored.
#include "plugin/settings/settings_dialog.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "plugin/dimensioning/units.h"
#include "plugin/resources/settings_controls.h"
#include "plugin/resources/strings.h"
#include "plugin/settings/dialogs.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {

namespace {

using platform::WindowRef;

constexpr std::int32_t kShapeCount = 4;
constexpr float kStandardFontSize = 12.0F;

// A list whose row is the setting's value. extra: a row that the code appends.
struct ListRow {
    std::int32_t control, firstString;
    int count;
    const char *extraJapanese, *extraEnglish;
    std::int16_t PrefsRecord::*setting;
};
constexpr ListRow kLists[] = {
    {kShapeList, kArrowShapeStrings, 4, nullptr, nullptr, &PrefsRecord::flArType},
    {kAccuracyList, kAccuracyStrings, 7, nullptr, nullptr, &PrefsRecord::flScFix},
    {kUnitList, kUnitStrings, 5, "ポイント", "Points", &PrefsRecord::flArUnit},
    {kSpecialList, kSpecialCharacterStrings, 3, nullptr, nullptr, &PrefsRecord::flArSpStr},
    {kLengthUnitList, kLengthUnitStrings, 5, "pt", "pt", &PrefsRecord::flArLenUnit},
    {kArea1UnitList, kAreaUnitStrings, 5, "pt2", "pt2", &PrefsRecord::flArDim1ConvUnit},
    {kArea2FactorUnitList, kAreaUnitStrings, 5, "pt2", "pt2", &PrefsRecord::flArDim2ConvUnit},
    {kArea3FactorUnitList, kAreaUnitStrings, 5, "pt2", "pt2", &PrefsRecord::flArDim3ConvUnit},
};

struct BoxRow {
    std::int32_t control;
    std::int16_t PrefsRecord::*setting;
};
constexpr BoxRow kBoxes[] = {{kShowUnitBox, &PrefsRecord::flUseTani},
                             {kKeepZerosBox, &PrefsRecord::flUseZero},
                             {kOutLayerBox, &PrefsRecord::flOutLayer},
                             {kArea2Box, &PrefsRecord::flArDim2Show},
                             {kArea3Box, &PrefsRecord::flArDim3Show}};

// What an area box enables.
struct AreaControls {
    std::int32_t box;
    std::int32_t controls[3];
};
constexpr AreaControls kAreaControls[] = {{kArea2Box, {kArea2UnitEdit, kArea2FactorEdit, kArea2FactorUnitList}},
                                          {kArea3Box, {kArea3UnitEdit, kArea3FactorEdit, kArea3FactorUnitList}}};

// The lengths of a dimension, in the order of the checks; the shape's size is among them.
struct LengthRow {
    std::int32_t control;
    float PrefsRecord::*setting;  // null: the size of the shape chosen
};
constexpr LengthRow kLengths[] = {
    {kExtensionRunEdit, &PrefsRecord::flArLead}, {kShapeSizeEdit, nullptr},
    {kExtensionGapEdit, &PrefsRecord::flScOfst}, {kTextGapEdit, &PrefsRecord::flScLead},
    {kStubLengthEdit, &PrefsRecord::flOsLead},   {kOutsideLimitEdit, &PrefsRecord::flOsLimt}};
constexpr float PrefsRecord::*kShapeSizes[kShapeCount] = {&PrefsRecord::flArSize1, &PrefsRecord::flArSize2,
                                                          &PrefsRecord::flArSize3, &PrefsRecord::flArSize4};

PluginGlobals* GlobalsOf(void* context) { return static_cast<PluginGlobals*>(context); }

float PrefsRecord::*ShapeSize(std::int32_t shape) { return kShapeSizes[shape >= 0 && shape < kShapeCount ? shape : 0]; }

void ShowNumber(WindowRef window, std::int32_t control, double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    platform::SetControlText(window, control, text);
}

void ShowPoints(WindowRef window, std::int32_t control, double points) {
    char text[kValueTextSize];
    FormatPointsWithRulerUnit(points, text);
    platform::SetControlText(window, control, text);
}

float ReadPoints(WindowRef window, std::int32_t control) {
    float points = 0;
    ParsePointsWithUnit(ControlText(window, control, kControlTextLimit).c_str(), &points);
    return points;
}

// --- fonts --------------------------------------------------------------------------------------------------------

AIFontKey NthFont(std::int32_t index) {
    AIFontKey font = nullptr;
    return sAIFont->GetNthFont(index, &font) == kNoErr ? font : nullptr;
}

std::string FullFontName(AIFontKey font) {
    char name[128] = {};
    sAIFont->GetFullFontName(font, name, sizeof name);
    return ToCodePage(name);
}

void FillFonts(const PluginGlobals* globals, WindowRef window) {
    platform::ClearRows(window, kFontList);
    std::int32_t count = 0, chosen = 0;
    bool found = false;
    sAIFont->CountFonts(&count);
    for (std::int32_t i = 0; i < count; ++i) {
        const std::string name = FullFontName(NthFont(i));
        platform::AddRow(window, kFontList, name.c_str());
        if (found || name != globals->prefs.flArFName) continue;
        found = true;
        chosen = i;
    }
    platform::SelectRow(window, kFontList, chosen);
}

// In whole points.
void ShowFontPreview(WindowRef window, float size) {
    if (!(size < kLargestFloat)) return;
    char systemName[256] = {};
    sAIFont->GetSystemFontName(NthFont(platform::GetSelectedRow(window, kFontList)), systemName, sizeof systemName);
    platform::SetControlFont(window, kFontPreview, systemName, std::trunc(size));
}

// --- opening ------------------------------------------------------------------------------------------------------

void FillLists(const PluginGlobals* globals, WindowRef window) {
    for (const ListRow& list : kLists) {
        const bool two = list.control == kSpecialList && globals->language == kEnglish;
        FillList(globals, window, list.control, list.firstString, two ? 2 : list.count);
        if (list.extraEnglish != nullptr)
            platform::AddRow(window, list.control, ChooseText(list.extraJapanese, list.extraEnglish).c_str());
        platform::SelectRow(window, list.control, globals->prefs.*list.setting);
    }
    FillList(globals, window, kSizeEdit, kTextSizeStrings, 6);
    FillList(globals, window, kScaleEdit, kScaleStrings, 13);
    FillList(globals, window, kLengthScaleEdit, kScaleStrings, 13);
}

void ShowShape(const PluginGlobals* globals, WindowRef window, std::int32_t shape) {
    ShowNumber(window, kShapeSizeEdit, globals->prefs.*ShapeSize(shape));
    for (std::int32_t i = 0; i < kShapeCount; ++i) platform::ShowControl(window, kFirstShapePicture + i, i == shape);
}

void EnableAreaControls(WindowRef window) {
    for (const AreaControls& area : kAreaControls)
        for (const std::int32_t control : area.controls)
            platform::EnableControl(window, control, platform::IsChecked(window, area.box));
}

void ShowTexts(const PrefsRecord& prefs, WindowRef window) {
    platform::SetControlText(window, kScaleEdit, prefs.flScaleText);
    platform::SetControlText(window, kLayerEdit, prefs.flOutLname);
    platform::SetControlText(window, kLengthScaleEdit, prefs.flArLenScaleText);
    platform::SetControlText(window, kArea2UnitEdit, prefs.flArDim2UnitName);
    platform::SetControlText(window, kArea2FactorEdit, prefs.flArDim2ConvText);
    platform::SetControlText(window, kArea3UnitEdit, prefs.flArDim3UnitName);
    platform::SetControlText(window, kArea3FactorEdit, prefs.flArDim3ConvText);
}

void ProvideScaleText(double scale, char* text, std::size_t size) {
    if (text[0] != '\0') return;
    char made[kValueTextSize];
    FormatScaleText(scale, made);
    CopyBytes(text, size, made);
}

void OpenSettings(WindowRef window, void* context) {
    PluginGlobals* globals = GlobalsOf(context);
    PrefsRecord& prefs = globals->prefs;
    FillLists(globals, window);
    FillFonts(globals, window);
    if (!(prefs.flArFSize > 0) || !(prefs.flArFSize < kLargestFloat)) prefs.flArFSize = kStandardFontSize;
    ShowPoints(window, kSizeEdit, prefs.flArFSize);
    // The size itself: its text in the ruler's unit may lie below a whole number of points.
    ShowFontPreview(window, prefs.flArFSize);
    for (const BoxRow& box : kBoxes) platform::SetChecked(window, box.control, prefs.*box.setting != 0);
    ProvideScaleText(prefs.flScale, prefs.flScaleText, sizeof prefs.flScaleText);
    ProvideScaleText(prefs.flArLenScale, prefs.flArLenScaleText, sizeof prefs.flArLenScaleText);
    ShowPoints(window, kWidthEdit, prefs.flArThick);
    ShowNumber(window, kAngleEdit, prefs.flArAngle);
    for (const LengthRow& row : kLengths)
        if (row.setting != nullptr) ShowNumber(window, row.control, prefs.*row.setting);
    ShowShape(globals, window, prefs.flArType);
    ShowTexts(prefs, window);
    platform::SetChecked(window, kArea1Box, true);
    platform::EnableControl(window, kArea1Box, false);
    EnableAreaControls(window);
}

// --- closing ------------------------------------------------------------------------------------------------------

// Reads a number of a control; false, with the refusal shown, when it is not within its bounds. NaN and the largest
// float are never within.
bool Accept(WindowRef window, std::int32_t control, float value, bool zeroAllowed) {
    const bool accepted = (zeroAllowed ? value >= 0 : value > 0) && value < kLargestFloat;
    if (!accepted) RefuseControl(window, control);
    return accepted;
}

// Into a copy of the settings: a refused OK changes nothing.
bool ReadNumbers(WindowRef window, PrefsRecord* prefs) {
    prefs->flArFSize = ReadPoints(window, kSizeEdit);
    if (!Accept(window, kSizeEdit, prefs->flArFSize, false)) return false;
    prefs->flArThick = ReadPoints(window, kWidthEdit);
    if (!Accept(window, kWidthEdit, prefs->flArThick, true)) return false;
    prefs->flArAngle = static_cast<float>(std::atof(ControlText(window, kAngleEdit, kControlTextLimit).c_str()));
    if (!Accept(window, kAngleEdit, prefs->flArAngle, true)) return false;
    for (const LengthRow& row : kLengths) {
        const float value = ParsePointsNoDefault(ControlText(window, row.control, kControlTextLimit).c_str());
        if (!Accept(window, row.control, value, true)) return false;
        prefs->*(row.setting != nullptr ? row.setting : ShapeSize(prefs->flArType)) = value;
    }
    return true;
}

template <std::size_t Size>
void ReadText(WindowRef window, std::int32_t control, char (&field)[Size]) {
    CopyBytes(field, Size, ControlText(window, control, static_cast<int>(Size) - 1));
}

void ReadTexts(WindowRef window, PrefsRecord* prefs) {
    ReadText(window, kScaleEdit, prefs->flScaleText);
    ReadText(window, kLayerEdit, prefs->flOutLname);
    ReadText(window, kLengthScaleEdit, prefs->flArLenScaleText);
    ReadText(window, kArea2UnitEdit, prefs->flArDim2UnitName);
    ReadText(window, kArea2FactorEdit, prefs->flArDim2ConvText);
    ReadText(window, kArea3UnitEdit, prefs->flArDim3UnitName);
    ReadText(window, kArea3FactorEdit, prefs->flArDim3ConvText);
    prefs->flScale = static_cast<float>(ParseScaleText(prefs->flScaleText));
    prefs->flArLenScale = static_cast<float>(ParseScaleText(prefs->flArLenScaleText));
    CopyBytes(prefs->flArFName, sizeof prefs->flArFName,
              FullFontName(NthFont(platform::GetSelectedRow(window, kFontList))));
}

bool StoreSettings(WindowRef window, PluginGlobals* globals) {
    PrefsRecord prefs = globals->prefs;
    for (const BoxRow& box : kBoxes) prefs.*box.setting = platform::IsChecked(window, box.control) ? 1 : 0;
    for (const ListRow& list : kLists)
        prefs.*list.setting = static_cast<std::int16_t>(platform::GetSelectedRow(window, list.control));
    if (!ReadNumbers(window, &prefs)) return false;
    ReadTexts(window, &prefs);
    globals->prefs = prefs;
    return true;
}

void HandleEvent(WindowRef window, std::int32_t control, void* context) {
    PluginGlobals* globals = GlobalsOf(context);
    switch (control) {
        case kOkControl:
            if (StoreSettings(window, globals)) platform::CloseWindow(window, kResultOk);
            return;
        case kCancelControl:
            return platform::CloseWindow(window, kResultCancel);
        case kShapeList:
            return ShowShape(globals, window, platform::GetSelectedRow(window, kShapeList));
        case kFontList:
        case kSizeEdit:
            return ShowFontPreview(window, ReadPoints(window, kSizeEdit));
        case kArea2Box:
        case kArea3Box:
            return EnableAreaControls(window);
        default:
            return;
    }
}

}  // namespace

bool RunSettingsDialog(PluginGlobals* globals) {
    platform::WindowLogic logic;
    logic.opening = OpenSettings;
    logic.event = HandleEvent;
    return RunPluginDialog(globals, kSettingsDialog, logic, globals) == kResultOk;
}

}  // namespace quorvel

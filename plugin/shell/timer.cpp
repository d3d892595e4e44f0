// The heartbeat, five times a second: the panel follows the theme, the ruler and the selection, and a command that was
// left pending is run.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "plugin/dimensioning/units.h"
#include "plugin/record/recalculate.h"
#include "plugin/settings/info_panel.h"
#include "plugin/settings/settings_dialog.h"
#include "plugin/shell/menus.h"
#include "plugin/shell/panel.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"
#include "plugin/snapping/snap.h"

namespace quorvel {

namespace {

constexpr char kTimerName[] = "Orvane_timer";
constexpr std::int32_t kTimerPeriod = 12;  // sixtieths of a second
constexpr std::int16_t kPointsUnit = 5;
constexpr int kLengthField = 5, kAreaField = 6;
constexpr int kMaxStrippedZeros = 4;

// A modal dialog that a tick opens lets further ticks in, which must do nothing.
class BusyMark {
  public:
    explicit BusyMark(PluginGlobals* globals) : globals_(globals) { globals_->timerBusy = 1; }
    ~BusyMark() { globals_->timerBusy = 0; }
    BusyMark(const BusyMark&) = delete;
    BusyMark& operator=(const BusyMark&) = delete;

  private:
    PluginGlobals* globals_;
};

// --- the sums of the selection -----------------------------------------------------------------------------------

// What the last tick found. A host that counts its changes spares the walk while the count stands still; with another
// host each tick walks. Texts are made anew each time, since units and scales may change under the same sums.
struct SelectionSums {
    std::optional<std::uint64_t> changeCount;
    std::optional<double> length, area;
};
SelectionSums sSums;

std::optional<std::uint64_t> ChangeCount() {
    std::uint64_t count = 0;
    if (sArtQuery == nullptr || sArtQuery->GetChangeCount(&count) != kNoErr) return std::nullopt;
    return count;
}

void DropStaleSums() {
    const std::optional<std::uint64_t> count = ChangeCount();
    if (!count || count != sSums.changeCount) sSums = {};
    sSums.changeCount = count;
}

double CachedSum(std::optional<double>* sum, double (*compute)()) {
    if (!*sum) *sum = compute();
    return **sum;
}

// Zero shows as nothing; what is no number fails too.
bool ShowsSum(double sum) { return std::abs(sum) > 0.0; }

bool DocumentIsOpen() {
    AIDocumentViewHandle view = nullptr;
    return sAIDocumentView->GetNthDocumentView(0, &view) == kNoErr && view != nullptr;
}

// --- the read-outs -----------------------------------------------------------------------------------------------

// Null for a number that is no unit: the name is empty then and the factor stays what it last was in this tick.
const LengthUnit* FindUnit(std::int16_t unit) { return unit >= 0 && unit < kUnitCount ? &kLengthUnits[unit] : nullptr; }

std::string ValueText(double value, const char* name) {
    char text[128];
    std::snprintf(text, sizeof text, "%g %s", value, name);
    return text;
}

std::string PointsText(double value) {
    char digits[512];  // the largest double has 309 digits before the point
    std::snprintf(digits, sizeof digits, "%1.4f", value);
    std::string text = digits;
    for (int i = 0; i < kMaxStrippedZeros && text.ends_with('0'); ++i) text.pop_back();
    if (text.ends_with('.')) text.pop_back();
    return text + " " + kLengthUnits[kPointsUnit].name;
}

std::string LengthText(const PrefsRecord& prefs, double length, double* factor) {
    const LengthUnit* unit = FindUnit(prefs.flArLenUnit);
    if (unit != nullptr) *factor = unit->factor;
    const double value = length * *factor / static_cast<double>(prefs.flArLenScale);
    if (prefs.flArLenUnit == kPointsUnit) return PointsText(value);
    return ValueText(value, unit != nullptr ? unit->name : "");
}

// A second or third area line, in a unit of the user's own naming.
struct AreaLine {
    std::int16_t PrefsRecord::*show;
    std::int16_t PrefsRecord::*unit;
    char (PrefsRecord::*convText)[32];
    char (PrefsRecord::*unitName)[32];
};
constexpr AreaLine kAreaLines[] = {
    {&PrefsRecord::flArDim2Show, &PrefsRecord::flArDim2ConvUnit, &PrefsRecord::flArDim2ConvText,
     &PrefsRecord::flArDim2UnitName},
    {&PrefsRecord::flArDim3Show, &PrefsRecord::flArDim3ConvUnit, &PrefsRecord::flArDim3ConvText,
     &PrefsRecord::flArDim3UnitName},
};

const LengthUnit* SquaredFactor(std::int16_t number, double* factor) {
    const LengthUnit* unit = FindUnit(number);
    if (unit != nullptr) *factor = PowerBySquaring(unit->factor, 2);
    return unit;
}

std::string AreaText(const PrefsRecord& prefs, double area, double* factor) {
    const double squaredScale = PowerBySquaring(static_cast<double>(prefs.flArLenScale), 2);
    const LengthUnit* unit = SquaredFactor(prefs.flArDim1ConvUnit, factor);
    std::string text = ValueText(area * *factor / squaredScale, unit != nullptr ? unit->squaredName : "");
    for (const AreaLine& line : kAreaLines) {
        if (prefs.*line.show == 0) continue;
        SquaredFactor(prefs.*line.unit, factor);
        const double converted = *factor * std::atof(prefs.*line.convText);
        text += "\r" + ValueText(area * converted / squaredScale, prefs.*line.unitName);
    }
    return text;
}

void ShowReadOuts(const PluginGlobals* globals) {
    const PrefsRecord& prefs = globals->prefs;
    std::string lengthText, areaText;
    if (DocumentIsOpen()) {
        DropStaleSums();
        double factor = 1.0;
        if (prefs.flUseFlng != 0) {
            const double length = CachedSum(&sSums.length, SelectedPathLength);
            if (ShowsSum(length)) lengthText = LengthText(prefs, length, &factor);
        }
        if (prefs.flUseFdim != 0) {
            const double area = CachedSum(&sSums.area, SelectedPathArea);
            if (ShowsSum(area)) areaText = AreaText(prefs, area, &factor);
        }
    }
    SetPanelField(kLengthField, lengthText.c_str());
    SetPanelField(kAreaField, areaText.c_str());
}

// --- one tick ----------------------------------------------------------------------------------------------------

// Whether the panel is visible.
bool RefreshPanel(const PluginGlobals* globals) {
    if (globals->infoPanel == nullptr) return false;
    const bool shown = InfoPanelIsShown(globals);
    ReachModule();
    RefreshPanelTheme(InfoPanelWindow(globals));
    return shown;
}

// The word is cleared behind the command, so that what was chosen while its dialog stood open asks for no second one.
bool RunPendingCommand(PluginGlobals* globals) {
    switch (globals->pendingCommand) {
        case kCommandSettings:
            RunSettingsDialog(globals);
            break;
        case kCommandRecalculate:
            RecalculateDimensions();
            break;
        default:
            return false;
    }
    globals->pendingCommand = kCommandNone;
    return true;
}

}  // namespace

AIErr AddTimer() {
    sSums = {};  // of the host that ran before
    return sAITimer->AddTimer(gGlobals->pluginRef, kTimerName, kTimerPeriod, &gGlobals->timerHandle);
}

AIErr TimerGo(const AITimerMessage* message) {
    PluginGlobals* globals = gGlobals;
    if (globals->timerBusy != 0 || message->timer != globals->timerHandle) return kNoErr;
    const BusyMark busy(globals);
    const bool shown = RefreshPanel(globals);
    if (RunPendingCommand(globals)) return kNoErr;
    if (shown) {
        SyncGridFields();
        ShowReadOuts(globals);
    }
    return kNoErr;
}

}  // namespace quorvel

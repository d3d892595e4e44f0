// The dialogs as data: for each a table of rows (id, kind, label in two languages, rectangle), from which the template
// of each language is made. The English template's id is the Japanese one's plus 100.
#pragma once

#include <cstdint>
#include <span>

#include "hostapi/names.h"
#include "platform/dialog.h"

namespace quorvel {

// Ids of the Japanese templates.
enum DialogId : std::int32_t {
    kAboutDialog = 16150,
    kSaveAsDialog = 16152,
    kCommentDialog = 16157,
    kObjectNumberDialog = 16158,
    kScheduleDialog = kScheduleDialogId,
    kFilletDialog = 16160,
    kDiameterDialog = 16165,
    kRadiusDialog = 16166,
    kSettingsDialog = 16181,
};
using platform::kCancelControl;
using platform::kOkControl;
constexpr std::int32_t kResultOk = 1, kResultCancel = 2;

// What both templates of a dialog are made from.
struct DialogSource {
    DialogId id;
    const char* japaneseTitle;
    const char* englishTitle;
    std::int32_t width, height;
    std::span<const platform::ControlRow> japaneseRows;
    std::span<const platform::ControlRow> englishRows;  // the same rows but where the layout differs
};

// Null for an unknown id. The template lives as long as the plug-in.
const platform::DialogTemplate* FindDialogTemplate(std::int32_t id);

// The sources by subject.
std::span<const DialogSource> SmallDialogSources();
std::span<const DialogSource> ScheduleDialogSources();
std::span<const DialogSource> SettingsDialogSources();

}  // namespace quorvel

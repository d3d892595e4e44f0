// The small dialogs' rows: about, preset name, comment, object number, fillet radius, radius and diameter.
#include "plugin/resources/dialog_templates.h"
#include "plugin/resources/small_dialog_controls.h"

namespace quorvel {

namespace {

using platform::ControlKind;
using platform::ControlRow;

constexpr std::int32_t kFilletPicture = 16158, kAboutIcon = 16052;

constexpr ControlRow kAboutRows[] = {
    {kAboutPicture, ControlKind::picture, "", "", {16, 16, 64, 64}, kAboutIcon, kAboutIcon},
    {kVersionText, ControlKind::text, "", "", {80, 32, 264, 50}},
    {kOkControl, ControlKind::button, "OK", "OK", {192, 80, 264, 104}},
};

constexpr ControlRow kSaveAsRows[] = {
    {kPresetNameLabel, ControlKind::label, "設定の名称：", "Preset Name :", {12, 15, 100, 33}},
    {kPresetNameEdit, ControlKind::edit, "", "", {104, 12, 308, 34}},
    {kOkControl, ControlKind::button, "OK", "OK", {156, 48, 228, 72}},
    {kCancelControl, ControlKind::button, "Cancel", "Cancel", {236, 48, 308, 72}},
};

constexpr ControlRow kCommentRows[] = {
    {kCommentLabel, ControlKind::label, "コメント：", "Comment :", {12, 15, 84, 33}},
    {kCommentEdit, ControlKind::edit, "", "", {88, 12, 308, 34}},
    {kOkControl, ControlKind::button, "OK", "OK", {156, 48, 228, 72}},
    {kCancelControl, ControlKind::button, "Cancel", "Cancel", {236, 48, 308, 72}},
};

// The English template has its two buttons the other way round from all other dialogs.
template <std::int32_t kLeftButton, std::int32_t kRightButton>
constexpr ControlRow kObjectNumberRows[] = {
    {kStartNumberLabel, ControlKind::label, "開始番号：", "Starting number :", {12, 15, 116, 33}},
    {kStartNumberEdit, ControlKind::edit, "", "", {120, 12, 228, 34}},
    {kNumberStepLabel, ControlKind::label, "ステップ：", "Step :", {12, 43, 116, 61}},
    {kNumberStepEdit, ControlKind::edit, "", "", {120, 40, 228, 62}},
    {kLeftButton,
     ControlKind::button,
     kLeftButton == kOkControl ? "OK" : "Cancel",
     kLeftButton == kOkControl ? "OK" : "Cancel",
     {76, 76, 148, 100}},
    {kRightButton,
     ControlKind::button,
     kRightButton == kOkControl ? "OK" : "Cancel",
     kRightButton == kOkControl ? "OK" : "Cancel",
     {156, 76, 228, 100}},
};

constexpr ControlRow kFilletRows[] = {
    {kFilletDiagram, ControlKind::picture, "", "", {12, 12, 60, 60}, kFilletPicture, kFilletPicture},
    {kFilletRadiusLabel, ControlKind::label, "半径：", "Radius:", {72, 27, 124, 45}},
    {kFilletRadiusEdit, ControlKind::edit, "", "", {128, 24, 228, 46}},
    {kOkControl, ControlKind::button, "OK", "OK", {76, 72, 148, 96}},
    {kCancelControl, ControlKind::button, "Cancel", "Cancel", {156, 72, 228, 96}},
};

constexpr ControlRow kRoundRows[] = {
    {kCenterRadio, ControlKind::radio, "中心表示(&C)", "Show &Center", {16, 12, 228, 32}},
    {kSurfaceRadio, ControlKind::radio, "表面表示(&S)", "Show &Surface", {16, 34, 228, 54}},
    {kPositionLabel, ControlKind::label, "表示位置：", "Position:", {12, 67, 84, 85}},
    {kPositionList, ControlKind::list, "", "", {88, 64, 228, 86}},
    {kOkControl, ControlKind::button, "OK", "OK", {76, 100, 148, 124}},
    {kCancelControl, ControlKind::button, "Cancel", "Cancel", {156, 100, 228, 124}},
};

constexpr auto& kJapaneseNumberRows = kObjectNumberRows<kOkControl, kCancelControl>;
constexpr auto& kEnglishNumberRows = kObjectNumberRows<kCancelControl, kOkControl>;

const DialogSource kSources[] = {
    {kAboutDialog, "Quorvel について", "About Quorvel", 280, 116, kAboutRows, kAboutRows},
    {kSaveAsDialog, "保存", "Save File As", 320, 84, kSaveAsRows, kSaveAsRows},
    {kCommentDialog, "コメント", "Comment", 320, 84, kCommentRows, kCommentRows},
    {kObjectNumberDialog, "部品番号", "Object Number", 240, 112, kJapaneseNumberRows, kEnglishNumberRows},
    {kFilletDialog, "フィレット", "Fillet", 240, 108, kFilletRows, kFilletRows},
    {kDiameterDialog, "直径", "Diameter", 240, 136, kRoundRows, kRoundRows},
    {kRadiusDialog, "半径", "Radius", 240, 136, kRoundRows, kRoundRows},
};

}  // namespace

std::span<const DialogSource> SmallDialogSources() { return kSources; }

}  // namespace quorvel

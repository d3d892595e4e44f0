// The Schedule dialog's rows: presets and type, the title block's texts, ten rows of parts.
#include <array>

#include "plugin/resources/schedule_controls.h"

namespace quorvel {

namespace {

using platform::ControlKind;
using platform::ControlRow;

struct Column {
    const char* japanese;
    const char* english;
    std::int32_t left, right;
};

constexpr Column kColumns[kPartEditCount] = {
    {"名称", "Item", 44, 270},    {"材質", "Material", 274, 384},      {"個数", "Quantity", 388, 448},
    {"重量", "Weight", 452, 522}, {"工程", "Work Schedule", 526, 646}, {"記事", "Description", 650, 836},
};
constexpr std::int32_t kWidth = 856, kHeight = 560;
constexpr std::int32_t kHeadTop = 198, kFirstRowTop = 220, kRowPitch = 25;

constexpr ControlRow kFixedRows[] = {
    {kPartsGroup, ControlKind::group, "", "", {8, 186, 848, 478}},
    {kPresetLabel, ControlKind::label, "プリセット：", "Preset :", {12, 15, 128, 33}},
    {kPresetList, ControlKind::commandList, "", "", {132, 12, 420, 34}},
    {kTypeLabel, ControlKind::label, "タイプ：", "Type :", {436, 15, 580, 33}},
    {kTypeList, ControlKind::list, "", "", {584, 12, 844, 34}},
    {kTitleLabel, ControlKind::label, "図　名：", "Drawing :", {12, 47, 128, 65}},
    {kTitleEdit, ControlKind::edit, "", "", {132, 44, 420, 66}},
    {kCompanyLabel, ControlKind::label, "社　名：", "Company :", {12, 75, 128, 93}},
    {kCompanyEdit, ControlKind::edit, "", "", {132, 72, 420, 94}},
    {kRemark1Label, ControlKind::label, "備考１：", "Remark 1 :", {12, 103, 128, 121}},
    {kRemark1Edit, ControlKind::edit, "", "", {132, 100, 420, 122}},
    {kRemark2Label, ControlKind::label, "備考２：", "Remark 2 :", {12, 131, 128, 149}},
    {kRemark2Edit, ControlKind::edit, "", "", {132, 128, 420, 150}},
    {kRemark3Label, ControlKind::label, "備考３：", "Remark 3 :", {12, 159, 128, 177}},
    {kRemark3Edit, ControlKind::edit, "", "", {132, 156, 420, 178}},
    {kDateLabel, ControlKind::label, "日　付：", "Date :", {436, 47, 580, 65}},
    {kDateEdit, ControlKind::edit, "", "", {584, 44, 844, 66}},
    {kDrawingNumberLabel, ControlKind::label, "図　番：", "Drawing Number :", {436, 75, 580, 93}},
    {kDrawingNumberEdit, ControlKind::edit, "", "", {584, 72, 844, 94}},
    {kDrawingScaleLabel, ControlKind::label, "尺　度：", "Scale :", {436, 103, 580, 121}},
    {kDrawingScaleEdit, ControlKind::edit, "", "", {584, 100, 844, 122}},
    {kProjectionLabel, ControlKind::label, "投影法：", "Method of Projection :", {436, 131, 580, 149}},
    {kProjectionEdit, ControlKind::edit, "", "", {584, 128, 844, 150}},
    {kPartCountLabel, ControlKind::label, "部品番号：", "Object number :", {436, 159, 580, 177}},
    {kPartCountEdit, ControlKind::edit, "", "", {584, 156, 664, 178}},
    {kPartCountNote, ControlKind::label, "0～99行", "0...99", {672, 159, 844, 177}},
    {kPreviousPage, ControlKind::button, "＜前頁", "< Previous page", {12, 488, 140, 512}},
    {kNextPage, ControlKind::button, "次頁＞", "Next page >", {148, 488, 276, 512}},
    {kOkControl, ControlKind::button, "OK", "OK", {692, 524, 764, 548}},
    {kCancelControl, ControlKind::button, "Cancel", "Cancel", {772, 524, 844, 548}},
};

constexpr std::size_t kRowCount = std::size(kFixedRows) + kPartEditCount + kPageRows * (1 + kPartEditCount);

// The fixed rows with the column heads and the ten rows of the page behind the last header row.
constexpr std::array<ControlRow, kRowCount> MakeRows() {
    std::array<ControlRow, kRowCount> rows{};
    std::size_t next = 0;
    const auto addPage = [&] {
        for (std::int32_t c = 0; c < kPartEditCount; ++c)
            rows[next++] = {kFirstColumnLabel + c,
                            ControlKind::label,
                            kColumns[c].japanese,
                            kColumns[c].english,
                            {kColumns[c].left, kHeadTop, kColumns[c].right, kHeadTop + 18}};
        for (std::int32_t k = 0; k < kPageRows; ++k) {
            const std::int32_t top = kFirstRowTop + k * kRowPitch;
            rows[next++] = {PartLabel(k), ControlKind::text, "", "", {14, top + 3, 40, top + 21}};
            for (std::int32_t c = 0; c < kPartEditCount; ++c)
                rows[next++] = {
                    PartEdit(k, c), ControlKind::edit, "", "", {kColumns[c].left, top, kColumns[c].right, top + 22}};
        }
    };
    for (const ControlRow& row : kFixedRows) {
        if (row.id == kPreviousPage) addPage();
        rows[next++] = row;
    }
    return rows;
}

constexpr std::array<ControlRow, kRowCount> kRows = MakeRows();

const DialogSource kSources[] = {{kScheduleDialog, "図面枠", "Schedule", kWidth, kHeight, kRows, kRows}};

}  // namespace

std::span<const DialogSource> ScheduleDialogSources() { return kSources; }

}  // namespace quorvel

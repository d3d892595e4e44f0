// The Schedule dialog's control numbers.
#pragma once

#include <cstdint>

#include "plugin/resources/dialog_templates.h"

namespace quorvel {

enum ScheduleControl : std::int32_t {
    kTypeLabel = 3,
    kTypeList = 4,
    kPreviousPage = 5,
    kNextPage = 6,
    kTitleLabel = 7,
    kTitleEdit = 8,
    kCompanyLabel = 9,
    kCompanyEdit = 10,
    kRemark1Label = 11,
    kRemark1Edit = 12,
    kRemark2Label = 13,
    kRemark2Edit = 14,
    kRemark3Label = 15,
    kRemark3Edit = 16,
    kDateLabel = 17,
    kDateEdit = 18,
    kDrawingNumberLabel = 19,
    kDrawingNumberEdit = 20,
    kDrawingScaleLabel = 21,
    kDrawingScaleEdit = 22,
    kProjectionLabel = 23,
    kProjectionEdit = 24,
    kPartCountLabel = 25,
    kPartCountEdit = 26,
    kPartCountNote = 27,
    kFirstColumnLabel = 28,  // and five more, one for each column
    kPartsGroup = 104,
    kPresetLabel = 105,
    kPresetList = kPresetListControl,
};
constexpr std::int32_t kPageRows = 10, kPartEditCount = 6;

// The number label and the edits of row k (from 0) on the page.
constexpr std::int32_t PartLabel(std::int32_t k) { return 34 + 7 * k; }
constexpr std::int32_t PartEdit(std::int32_t k, std::int32_t column) { return 35 + 7 * k + column; }

}  // namespace quorvel

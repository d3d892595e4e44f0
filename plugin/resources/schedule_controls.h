// The Schedule dialog's control numbers.
#pragma once

#include <cstdint>

#include "plugin/resources/dialog_templates.h"

namespace quorvel {

constexpr std::int32_t kTypeList = 4, kPreviousPage = 5, kNextPage = 6, kPartCountEdit = 26,
                       kPresetList = kPresetListControl;
constexpr std::int32_t kPageRows = 10, kPartEditCount = 6;

// The number label and the edits of row k (from 0) on the page.
constexpr std::int32_t PartLabel(std::int32_t k) { return 34 + 7 * k; }
constexpr std::int32_t PartEdit(std::int32_t k, std::int32_t column) { return 35 + 7 * k + column; }

}  // namespace quorvel

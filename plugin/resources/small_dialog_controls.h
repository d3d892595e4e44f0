// The small dialogs' control numbers, one list for each dialog.
#pragma once

#include <cstdint>

namespace quorvel {

enum AboutControl : std::int32_t { kAboutPicture = 3, kVersionText = 6 };
enum SaveAsControl : std::int32_t { kPresetNameEdit = 3, kPresetNameLabel = 4 };
enum CommentControl : std::int32_t { kCommentLabel = 4, kCommentEdit = 5 };
enum ObjectNumberControl : std::int32_t {
    kStartNumberEdit = 5,
    kNumberStepEdit = 6,
    kStartNumberLabel = 7,
    kNumberStepLabel = 8,
};
enum FilletControl : std::int32_t { kFilletRadiusEdit = 5, kFilletDiagram = 6, kFilletRadiusLabel = 7 };
// Of the Radius and the Diameter dialog.
enum RoundControl : std::int32_t { kCenterRadio = 5, kSurfaceRadio = 6, kPositionList = 7, kPositionLabel = 8 };

}  // namespace quorvel

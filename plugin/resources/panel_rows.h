// The information panel's content as data: its controls with their rectangles, icons and labels in two languages.
#pragma once

#include <span>

#include "platform/dialog.h"

namespace quorvel {

// Controls that the logic names; the others are labels and lines.
enum PanelControl : std::int32_t {
    kPanelField1 = 2,
    kPanelField2 = 4,
    kPanelField3 = 6,
    kPanelField4 = 8,
    kPanelLength = 10,
    kPanelGrid = 11,
    kPanelAnchor = 12,
    kPanelCrossing = 13,
    kPanelPath = 14,
    kPanelStraight = 15,
    kPanelSpacing = 16,
    kPanelCenter = 17,
    kPanelLengthToggle = 18,
    kPanelGridWidth = 20,
    kPanelGridHeight = 22,
    kPanelGridDistance = 24,
    kPanelAreaToggle = 28,
    kPanelArea = 30,
    kPanelRecalculate = 31,
};

// In the order in which they are made. Each row's picture is of the first icon set, its darkPicture of the second.
std::span<const platform::ControlRow> PanelRows();

}  // namespace quorvel

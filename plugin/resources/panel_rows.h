// The information panel's content as data: its controls with their rectangles, icons and labels in two languages.
#pragma once

#include <span>

#include "hostapi/names.h"
#include "platform/dialog.h"

namespace quorvel {

enum PanelControl : std::int32_t {
    kPanelField1Icon = 1,
    kPanelField1 = 2,
    kPanelField2Icon = 3,
    kPanelField2 = 4,
    kPanelField3Icon = 5,
    kPanelField3 = 6,
    kPanelField4Icon = 7,
    kPanelField4 = 8,
    kPanelLengthIcon = 9,
    kPanelLength = 10,
    kPanelGrid = 11,
    kPanelAnchor = 12,
    kPanelCrossing = 13,
    kPanelPath = 14,
    kPanelStraight = 15,
    kPanelSpacing = 16,
    kPanelCenter = 17,
    kPanelLengthToggle = 18,
    kPanelGridWidthIcon = 19,
    kPanelGridWidth = 20,
    kPanelGridHeightIcon = 21,
    kPanelGridHeight = 22,
    kPanelGridDistanceIcon = 23,
    kPanelGridDistance = 24,
    kPanelUpperLine = 25,
    kPanelLowerLine = 26,
    kPanelAreaToggle = 28,
    kPanelAreaIcon = 29,
    kPanelArea = 30,
    kPanelRecalculate = kRecalculateButton,
};

// In the order in which they are made. Each row's picture is of the first icon set, its darkPicture of the second.
std::span<const platform::ControlRow> PanelRows();

}  // namespace quorvel

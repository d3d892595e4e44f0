// The rows of the information panel. The labels of its buttons are seen as tooltips and read out as their names.
#include "plugin/resources/panel_rows.h"

namespace quorvel {

namespace {

using platform::ControlKind;
using platform::ControlRow;

constexpr ControlRow kRows[] = {
    {kPanelField1Icon, ControlKind::picture, "", "", {10, 6, 26, 19}, 16270, 16370},
    {kPanelField1, ControlKind::text, "", "", {29, 5, 116, 21}},
    {kPanelField2Icon, ControlKind::picture, "", "", {10, 26, 26, 39}, 16271, 16371},
    {kPanelField2, ControlKind::text, "", "", {29, 25, 116, 41}},
    {kPanelField3Icon, ControlKind::picture, "", "", {119, 6, 135, 19}, 16272, 16372},
    {kPanelField3, ControlKind::text, "", "", {138, 5, 235, 21}},
    {kPanelField4Icon, ControlKind::picture, "", "", {119, 26, 135, 39}, 16273, 16373},
    {kPanelField4, ControlKind::text, "", "", {138, 25, 235, 41}},
    {kPanelLengthIcon, ControlKind::picture, "", "", {10, 50, 26, 63}, 16274, 16374},
    {kPanelLength, ControlKind::text, "", "", {29, 49, 205, 65}},
    {kPanelGridWidthIcon, ControlKind::picture, "", "", {104, 120, 124, 140}, 16280, 16380},
    {kPanelGridHeightIcon, ControlKind::picture, "", "", {104, 148, 124, 168}, 16281, 16381},
    {kPanelGridDistanceIcon, ControlKind::picture, "", "", {104, 176, 124, 196}, 16284, 16384},
    {kPanelGrid, ControlKind::toggle, "グリッド", "Snap to Grid", {8, 120, 28, 140}, 16275, 16375},
    {kPanelAnchor, ControlKind::toggle, "頂点フィット", "Snap to Anchor Point", {32, 120, 52, 140}, 16276, 16376},
    {kPanelCrossing, ControlKind::toggle, "交点フィット", "Snap to Intersection", {56, 120, 76, 140}, 16277, 16377},
    {kPanelPath, ControlKind::toggle, "パス線上フィット", "Snap to Path", {80, 120, 100, 140}, 16278, 16378},
    {kPanelStraight,
     ControlKind::toggle,
     "垂直水平フィット",
     "Vertical/Horizontal Snap",
     {80, 148, 100, 168},
     16279,
     16379},
    {kPanelSpacing, ControlKind::toggle, "距離グリッド", "Grid Spacing", {80, 176, 100, 196}, 16283, 16383},
    {kPanelCenter, ControlKind::toggle, "中心フィット", "Snap to Center Point", {56, 148, 76, 168}, 16286, 16386},
    {kPanelLengthToggle, ControlKind::toggle, "レングス", "Length", {209, 50, 229, 70}, 16282, 16382},
    {kPanelAreaToggle, ControlKind::toggle, "", "", {209, 78, 229, 98}, 16287, 16387},
    {kPanelAreaIcon, ControlKind::picture, "", "", {10, 66, 26, 81}, 16288, 16388},
    {kPanelArea, ControlKind::text, "", "", {29, 65, 205, 111}},
    {kPanelGridWidth, ControlKind::editList, "", "", {128, 119, 232, 135}},
    {kPanelGridHeight, ControlKind::editList, "", "", {128, 147, 232, 163}},
    {kPanelGridDistance, ControlKind::editList, "", "", {128, 175, 232, 191}},
    {kPanelUpperLine, ControlKind::line, "", "", {4, 44, 236, 45}},
    {kPanelLowerLine, ControlKind::line, "", "", {4, 113, 236, 114}},
    {kPanelRecalculate,
     ControlKind::pushButton,
     "再計算(寸法線)",
     "Recalculate(Dimension lines)",
     {8, 174, 28, 194},
     16204,
     16304},
};

}  // namespace

std::span<const platform::ControlRow> PanelRows() { return kRows; }

}  // namespace quorvel

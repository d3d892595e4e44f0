// The Settings dialog's rows: terminators and value text on the left, the dimension's lengths round their diagram and
// the length and area units on the right.
#include "plugin/resources/dialog_templates.h"
#include "plugin/resources/settings_controls.h"

namespace quorvel {

namespace {

using platform::ControlKind;
using platform::ControlRow;

constexpr std::int32_t kFirstShapeImage = 16152, kDimensionImage = 16156;

// One over the other; the logic shows the one of the shape chosen.
constexpr ControlRow ShapePicture(std::int32_t shape) {
    const std::int32_t image = kFirstShapeImage + shape;
    return {kFirstShapePicture + shape, ControlKind::picture, "", "", {228, 12, 300, 44}, image, image};
}

constexpr ControlRow kRows[] = {
    {kSettingsFrame, ControlKind::frame, "", "", {4, 4, 644, 466}},
    {kShapeLabel, ControlKind::label, "形状：", "Shape :", {12, 15, 92, 33}},
    {kShapeList, ControlKind::list, "", "", {96, 12, 216, 34}},
    ShapePicture(0),
    ShapePicture(1),
    ShapePicture(2),
    ShapePicture(3),
    {kShapeSizeEdit, ControlKind::edit, "", "", {228, 48, 300, 70}},
    {kAccuracyLabel, ControlKind::label, "精度：", "Accuracy :", {12, 47, 92, 65}},
    {kAccuracyList, ControlKind::list, "", "", {96, 44, 216, 66}},
    {kUnitLabel, ControlKind::label, "単位：", "Units :", {12, 79, 92, 97}},
    {kUnitList, ControlKind::list, "", "", {96, 76, 216, 98}},
    {kShowUnitBox, ControlKind::checkBox, "単位表示", "Unit Ind.", {12, 106, 150, 126}},
    {kKeepZerosBox, ControlKind::checkBox, "零未省略", "Unit Acc.", {156, 106, 300, 126}},
    {kOutLayerBox, ControlKind::checkBox, "別レイヤーに表示", "Create in another layer", {12, 132, 300, 152}},
    {kLayerLabel, ControlKind::label, "レイヤー名：", "Layer name :", {12, 161, 100, 179}},
    {kLayerEdit, ControlKind::edit, "", "", {104, 158, 300, 180}},
    {kFontGroup, ControlKind::group, "フォント", "Font", {8, 190, 312, 336}},
    {kFontList, ControlKind::list, "", "", {20, 210, 300, 232}},
    {kSizeLabel, ControlKind::label, "サイズ：", "Size :", {20, 243, 84, 261}},
    {kSizeEdit, ControlKind::editList, "", "", {88, 240, 180, 262}},
    {kFontPreview,
     ControlKind::text,
     "The quick brown fox jumps over the lazy dog.",
     "The quick brown fox jumps over the lazy dog.",
     {20, 268, 300, 298}},
    {kSpecialLabel, ControlKind::label, "特殊文字：", "Special Characters :", {20, 307, 148, 325}},
    {kSpecialList, ControlKind::list, "", "", {152, 304, 300, 326}},
    {kDimensionGroup, ControlKind::group, "寸法線設定", "Dimensions", {320, 8, 640, 252}},
    {kDimensionDiagram, ControlKind::picture, "", "", {400, 44, 560, 172}, kDimensionImage, kDimensionImage},
    {kExtensionRunEdit, ControlKind::edit, "", "", {332, 44, 392, 66}},
    {kStubLengthEdit, ControlKind::edit, "", "", {332, 98, 392, 120}},
    {kExtensionGapEdit, ControlKind::edit, "", "", {332, 148, 392, 170}},
    {kOutsideLimitEdit, ControlKind::edit, "", "", {450, 20, 510, 42}},
    {kTextGapEdit, ControlKind::edit, "", "", {568, 74, 628, 96}},
    {kScaleLabel, ControlKind::label, "縮尺：", "Scale :", {332, 187, 384, 205}},
    {kScaleEdit, ControlKind::editList, "", "", {388, 184, 480, 206}},
    {kWidthLabel, ControlKind::label, "線幅：", "Width :", {492, 187, 540, 205}},
    {kWidthEdit, ControlKind::edit, "", "", {544, 184, 628, 206}},
    {kAngleLabel, ControlKind::label, "角度：", "Angle :", {492, 217, 540, 235}},
    {kAngleEdit, ControlKind::edit, "", "", {544, 214, 628, 236}},
    {kLengthAreaGroup, ControlKind::group, "レングス・面積", "Length / Dimentions", {320, 260, 640, 460}},
    {kLengthUnitLabel, ControlKind::label, "レングス単位：", "Length Units", {332, 283, 424, 301}},
    {kLengthUnitList, ControlKind::list, "", "", {428, 280, 488, 302}},
    {kLengthScaleLabel, ControlKind::label, "縮尺：", "Scale :", {496, 283, 540, 301}},
    {kLengthScaleEdit, ControlKind::editList, "", "", {544, 280, 628, 302}},
    {kArea1Box, ControlKind::checkBox, "面積１", "Dimention1", {332, 310, 432, 330}},
    {kArea1UnitLabel, ControlKind::label, "単位：", "Units :", {436, 313, 484, 331}},
    {kArea1UnitList, ControlKind::list, "", "", {488, 310, 560, 332}},
    {kArea2Box, ControlKind::checkBox, "面積２", "Dimention2", {332, 340, 432, 360}},
    {kArea2UnitLabel, ControlKind::label, "単位：", "Units :", {436, 343, 484, 361}},
    {kArea2UnitEdit, ControlKind::edit, "", "", {488, 340, 628, 362}},
    {kArea2FactorLabel, ControlKind::label, "換算：", "Unit Conv.:", {348, 371, 432, 389}},
    {kArea2FactorEdit, ControlKind::edit, "", "", {436, 368, 540, 390}},
    {kArea2FactorUnitList, ControlKind::list, "", "", {548, 368, 628, 390}},
    {kArea3Box, ControlKind::checkBox, "面積２", "Dimention3", {332, 400, 432, 420}},
    {kArea3UnitLabel, ControlKind::label, "単位：", "Units :", {436, 403, 484, 421}},
    {kArea3UnitEdit, ControlKind::edit, "", "", {488, 400, 628, 422}},
    {kArea3FactorLabel, ControlKind::label, "換算：", "Unit Conv.:", {348, 431, 432, 449}},
    {kArea3FactorEdit, ControlKind::edit, "", "", {436, 428, 540, 450}},
    {kArea3FactorUnitList, ControlKind::list, "", "", {548, 428, 628, 450}},
    {kOkControl, ControlKind::button, "OK", "OK", {488, 476, 560, 500}},
    {kCancelControl, ControlKind::button, "Cancel", "Cancel", {568, 476, 640, 500}},
};

const DialogSource kSources[] = {{kSettingsDialog, "Quorvel 設定", "Quorvel Settings", 648, 512, kRows, kRows}};

}  // namespace

std::span<const DialogSource> SettingsDialogSources() { return kSources; }

}  // namespace quorvel

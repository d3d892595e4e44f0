// The Settings dialog's rows: terminators and value text on the left, the dimension's lengths round their diagram and
// the length and area units on the right.
#include "plugin/resources/dialog_templates.h"

namespace quorvel {

namespace {

using platform::ControlKind;
using platform::ControlRow;

constexpr ControlRow kRows[] = {
    {61, ControlKind::frame, "", "", {4, 4, 644, 466}},
    {4, ControlKind::label, "形状：", "Shape :", {12, 15, 92, 33}},
    {5, ControlKind::list, "", "", {96, 12, 216, 34}},
    {65, ControlKind::picture, "", "", {228, 12, 300, 44}, 16152, 16152},
    {66, ControlKind::picture, "", "", {228, 12, 300, 44}, 16153, 16153},
    {67, ControlKind::picture, "", "", {228, 12, 300, 44}, 16154, 16154},
    {68, ControlKind::picture, "", "", {228, 12, 300, 44}, 16155, 16155},
    {28, ControlKind::edit, "", "", {228, 48, 300, 70}},
    {3, ControlKind::label, "精度：", "Accuracy :", {12, 47, 92, 65}},
    {6, ControlKind::list, "", "", {96, 44, 216, 66}},
    {31, ControlKind::label, "単位：", "Units :", {12, 79, 92, 97}},
    {7, ControlKind::list, "", "", {96, 76, 216, 98}},
    {12, ControlKind::checkBox, "単位表示", "Unit Ind.", {12, 106, 150, 126}},
    {13, ControlKind::checkBox, "零未省略", "Unit Acc.", {156, 106, 300, 126}},
    {15, ControlKind::checkBox, "別レイヤーに表示", "Create in another layer", {12, 132, 300, 152}},
    {35, ControlKind::label, "レイヤー名：", "Layer name :", {12, 161, 100, 179}},
    {36, ControlKind::edit, "", "", {104, 158, 300, 180}},
    {62, ControlKind::group, "フォント", "Font", {8, 190, 312, 336}},
    {8, ControlKind::list, "", "", {20, 210, 300, 232}},
    {9, ControlKind::label, "サイズ：", "Size :", {20, 243, 84, 261}},
    {10, ControlKind::editList, "", "", {88, 240, 180, 262}},
    {29,
     ControlKind::text,
     "The quick brown fox jumps over the lazy dog.",
     "The quick brown fox jumps over the lazy dog.",
     {20, 268, 300, 298}},
    {37, ControlKind::label, "特殊文字：", "Special Characters :", {20, 307, 148, 325}},
    {38, ControlKind::list, "", "", {152, 304, 300, 326}},
    {63, ControlKind::group, "寸法線設定", "Dimensions", {320, 8, 640, 252}},
    {26, ControlKind::picture, "", "", {400, 44, 560, 172}, 16156, 16156},
    {21, ControlKind::edit, "", "", {332, 44, 392, 66}},
    {22, ControlKind::edit, "", "", {332, 98, 392, 120}},
    {23, ControlKind::edit, "", "", {332, 148, 392, 170}},
    {24, ControlKind::edit, "", "", {450, 20, 510, 42}},
    {25, ControlKind::edit, "", "", {568, 74, 628, 96}},
    {14, ControlKind::label, "縮尺：", "Scale :", {332, 187, 384, 205}},
    {18, ControlKind::editList, "", "", {388, 184, 480, 206}},
    {16, ControlKind::label, "線幅：", "Width :", {492, 187, 540, 205}},
    {19, ControlKind::edit, "", "", {544, 184, 628, 206}},
    {17, ControlKind::label, "角度：", "Angle :", {492, 217, 540, 235}},
    {20, ControlKind::edit, "", "", {544, 214, 628, 236}},
    {64, ControlKind::group, "レングス・面積", "Length / Dimentions", {320, 260, 640, 460}},
    {39, ControlKind::label, "レングス単位：", "Length Units", {332, 283, 424, 301}},
    {40, ControlKind::list, "", "", {428, 280, 488, 302}},
    {41, ControlKind::label, "縮尺：", "Scale :", {496, 283, 540, 301}},
    {42, ControlKind::editList, "", "", {544, 280, 628, 302}},
    {44, ControlKind::checkBox, "面積１", "Dimention1", {332, 310, 432, 330}},
    {45, ControlKind::label, "単位：", "Units :", {436, 313, 484, 331}},
    {46, ControlKind::list, "", "", {488, 310, 560, 332}},
    {47, ControlKind::checkBox, "面積２", "Dimention2", {332, 340, 432, 360}},
    {48, ControlKind::label, "単位：", "Units :", {436, 343, 484, 361}},
    {49, ControlKind::edit, "", "", {488, 340, 628, 362}},
    {50, ControlKind::label, "換算：", "Unit Conv.:", {348, 371, 432, 389}},
    {51, ControlKind::edit, "", "", {436, 368, 540, 390}},
    {52, ControlKind::list, "", "", {548, 368, 628, 390}},
    {53, ControlKind::checkBox, "面積２", "Dimention3", {332, 400, 432, 420}},
    {54, ControlKind::label, "単位：", "Units :", {436, 403, 484, 421}},
    {55, ControlKind::edit, "", "", {488, 400, 628, 422}},
    {56, ControlKind::label, "換算：", "Unit Conv.:", {348, 431, 432, 449}},
    {57, ControlKind::edit, "", "", {436, 428, 540, 450}},
    {58, ControlKind::list, "", "", {548, 428, 628, 450}},
    {kOkControl, ControlKind::button, "OK", "OK", {488, 476, 560, 500}},
    {kCancelControl, ControlKind::button, "Cancel", "Cancel", {568, 476, 640, 500}},
};

const DialogSource kSources[] = {{kSettingsDialog, "Quorvel 設定", "Quorvel Settings", 648, 512, kRows, kRows}};

}  // namespace

std::span<const DialogSource> SettingsDialogSources() { return kSources; }

}  // namespace quorvel

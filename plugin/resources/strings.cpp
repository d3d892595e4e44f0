// The string table of the dialogs, the panel and the error texts. One row holds both languages of a text.
#include "plugin/resources/strings.h"

namespace quorvel {

namespace {

constexpr std::int32_t kEnglishOffset = 100;

// A null text: the language has no row there.
struct StringRow {
    std::int32_t id;  // of the Japanese text
    const char* japanese;
    const char* english;
};

// The error texts have one language and one id, which is the first.
constexpr StringRow kStrings[] = {
    {16050, "<Mac strings begin at index 1>", nullptr},
    {16051, "-108", nullptr},
    {16052, "The filter cannot complete because there isn't enough memory (RAM) available.", nullptr},
    {16053, "271", nullptr},
    {16054, "The filter cannot complete because there isn't enough memory (RAM) available.", nullptr},
    {16055, "SEGM", nullptr},
    {16056, "The filter cannot complete because a layer is locked or invisible.", nullptr},
    {16057, "NESS", nullptr},
    {16058, "The filter cannot complete because a path has too many anchor points.", nullptr},
    {16059, "!sel", nullptr},
    {16060, "The selection is not valid for this filter.", nullptr},
    {16061, "<Others>", nullptr},
    {16062, "The filter cannot complete because of an unknown error.", nullptr},

    {16140, "0", "0"},
    {16141, "0.0", "0.0"},
    {16142, "0.00", "0.00"},
    {16143, "0.000", "0.000"},
    {16144, "0.0000", "0.0000"},
    {16145, "0.00000", "0.00000"},
    {16146, "0.000000", "0.000000"},

    {16147, "ミリメートル", "Millimeters"},
    {16148, "センチメートル", "Centimeters"},
    {16149, "メートル", "Meters"},
    {16150, "インチ", "Inches"},
    {16151, "フィート", "Feet"},

    {16152, "寸法線に沿う", "Along line"},
    {16153, "左側に補助線", "Sub line (Left)"},
    {16154, "右側に補助線", "Sub line (Right)"},

    {16155, "0.25", ".25"},
    {16156, "0.5", ".5"},
    {16157, "-", "-"},
    {16158, "1", "1"},
    {16159, "-", "-"},
    {16160, "5", "5"},
    {16161, "10", "10"},
    {16162, "20", "20"},
    {16163, "50", "50"},
    {16164, "100", "100"},

    {16165, "9", "9"},
    {16166, "10", "10"},
    {16167, "12", "12"},
    {16168, "14", "14"},
    {16169, "18", "18"},
    {16170, "24", "24"},

    {16171, "ポイント", "Points"},
    {16172, "パイカ", "Picas"},
    {16173, "インチ", "Inches"},
    {16174, "ミリメートル", "Millimeters"},
    {16175, "センチメートル", "Centimeters"},

    {16176, "形状", "Shape"},
    {16177, "矩形", "Arrow"},
    {16178, "三角", "Triangular"},
    {16179, "斜線", "Oblique Line"},
    {16180, "黒丸", "Dot"},

    {16181, "漢字", "Apple ASCII"},
    {16182, "Apple ASCII", "Microsoft ASCII"},
    {16183, "Microsoft ASCII", nullptr},

    {16191, "-", "-"},
    {16192, "保存", "Save"},
    {16193, "別名で保存...", "Save As..."},
    {16194, "削除", "Delete"},
    {16195, "-", "-"},
    {16196, "書き出し...", "Export..."},
    {16197, "読み込み...", "Import..."},

    {16201, "Narrow", "Narrow"},
    {16202, "Wide", "Wide"},
    {16203, "Wide(Universal)", "Wide(Universal)"},

    {16211, "mm", "mm"},
    {16212, "cm", "cm"},
    {16213, "m", "m"},
    {16214, "in", "in"},
    {16215, "ft", "ft"},

    {16216, "mm2", "mm2"},
    {16217, "cm2", "cm2"},
    {16218, "m2", "m2"},
    {16219, "in2", "in2"},
    {16220, "ft2", "ft2"},

    {16221, "1/100", "1/100"},
    {16222, "1/10", "1/10"},
    {16223, "1/5", "1/5"},
    {16224, "1/3", "1/3"},
    {16225, "1/2", "1/2"},
    {16226, "-", "-"},
    {16227, "1/1", "1/1"},
    {16228, "-", "-"},
    {16229, "2/1", "2/1"},
    {16230, "3/1", "3/1"},
    {16231, "4/1", "4/1"},
    {16232, "10/1", "10/1"},
    {16233, "100/1", "100/1"},
};

}  // namespace

const char* FindResourceString(std::int32_t id) {
    for (const StringRow& row : kStrings) {
        if (row.id == id) return row.japanese;
        if (row.english != nullptr && row.id + kEnglishOffset == id) return row.english;
    }
    return nullptr;
}

}  // namespace quorvel

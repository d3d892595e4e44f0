// The settings, each field named by its key in the preference file. Lengths are points, angles degrees, texts bytes of
// the system code page with a closing zero.
#pragma once

#include <cstdint>

namespace quorvel {

constexpr int kPartRowCount = 100;

// One row of the parts list; empty when all six texts are.
struct ZwkPartRow {
    char Name[128] = {};
    char Source[64] = {};  // material
    char Quantity[32] = {};
    char Weight[32] = {};
    char Progress[64] = {};  // work schedule
    char News[64] = {};      // description
};

struct PrefsRecord {
    float flRadius;
    float flScale;
    char flScaleText[64];
    std::int16_t flScFix;
    float flScLead, flScOfst, flOsLead, flOsLimt, flArSize1, flArSize2, flArSize3, flArSize4, flArLead;
    std::int16_t flArType;
    float flArThick, flArAngle;
    std::int16_t flArUnit;
    float flArFSize;
    char flArFName[64];
    std::int16_t flArSpStr, flRdSpos, flRdLead, flUseTani, flUseZero;
    std::int16_t flFiletMode, flDistanceMode, flDiameterMode, flRadiusMode, flAngleMode, flSlantMode, flArcMode;
    std::int16_t flMarkMode, flZukiwakuMode;
    std::int16_t flUseGrid, flUseFcur, flUseFcrs, flUseFops, flUseFrad, flUseFdis, flUseFlng, flUseFdim, flUseFcnt;
    float flGrWidth, flGrHeight, flGrDistance;
    char flMrkComment[64];
    std::int16_t flMrkItemNo, flMrkINStep;
    // The schedule block: title block texts and parts rows.
    std::int16_t flZwkDrawType;
    char flZwkTitle[128];
    char flZwkCorp[128];
    char flZwkDate[32], flZwkScale[32], flZwkType[32], flZwkPatNo[32];
    char flZwkComm1[64], flZwkComm2[64], flZwkComm3[64];
    std::int16_t flZwkNumOfParts;
    ZwkPartRow flZwkParts[kPartRowCount];
    std::int32_t zwkPresetIndex;
    char zwk_prefspath[256];
    std::int16_t flArLenUnit;
    float flArLenScale;
    char flArLenScaleText[64];
    std::int16_t flArDim1ConvUnit, flArDim2Show;
    char flArDim2UnitName[32], flArDim2ConvText[32];
    std::int16_t flArDim2ConvUnit, flArDim3Show;
    char flArDim3UnitName[32], flArDim3ConvText[32];
    std::int16_t flArDim3ConvUnit, flOutLayer;
    char flOutLname[82];
};

}  // namespace quorvel

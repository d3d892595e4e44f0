// The exact texts of a dimension's tags, and what is read from tags that are missing, cut or damaged.
#include <cstring>

#include "tests/record/record_rig.h"

namespace quorvel::tests {
namespace {

class RecordTexts : public RecordRig {};

TEST_F(RecordTexts, TagsHaveTheirExactTexts) {
    live.toolStep = 2;
    live.cursorPoint = {1234.567F, -0.5F};
    live.cursorModifiers = 0xA00;
    live.previousCursor = {0.00001F, 1e7F};
    live.axisWord = -3;
    live.fromTangent = 1.5707965;
    live.fromKind = 2;
    live.fromPoint = {100, 200.25F};
    live.toKind = 7;
    live.toPoint = {-1e-7F, 123456.78F};
    live.endKind = 1;
    live.endPoint = {3, 4};
    live.tmpPos = {1.0 / 3, 2e20};
    const ArtId group = write(5, 1);
    EXPECT_EQ(table.tag(group, "QUORVEL_TOOLCNF"), "5001,2,1234.57,-0.5,2560");
    EXPECT_EQ(table.tag(group, "QUORVEL_CURSPOS"), "1e-05,1e+07,32000,-3");
    EXPECT_EQ(table.tag(group, "QUORVEL_FROMPOS"), "1.5708,2,100,200.25");
    EXPECT_EQ(table.tag(group, "QUORVEL_TOPOS"), "32000,7,-1e-07,123457");
    EXPECT_EQ(table.tag(group, "QUORVEL_ENDPOS"), "32000,1,3,4");
    EXPECT_EQ(table.tag(group, "QUORVEL_TMPPOS"), "0.333333,2e+20");
    EXPECT_EQ(table.tag(group, "QUORVEL_SETTING_1"),
              "0,1,\"\",0,2,0,10,30,10,10,20,2,10,0,0.1,15,0,12,\"\",0,0,5,0,0,0,0,0,0,0,0,0");
    for (const char* absent : {"QUORVEL_SETTING_2", "QUORVEL_FROMCELL", "QUORVEL_TOCELL", "QUORVEL_STOPCELL01"})
        EXPECT_EQ(table.tag(group, absent), "(none)") << absent;

    ContextBracket(&table.globals());
    const Read found = read(group);
    EXPECT_EQ(found.kind, 5);
    EXPECT_EQ(found.mode, 1);
    EXPECT_EQ(live.toolStep, 2);
    EXPECT_EQ(live.cursorPoint.h, 1234.57F);
    EXPECT_EQ(live.cursorModifiers, 0xA00);
    EXPECT_EQ(live.previousCursor.v, 1e7F);
    EXPECT_EQ(live.axisWord, -3);
    EXPECT_EQ(live.fromTangent, 1.5708);
    EXPECT_EQ(live.toKind, 7);
    EXPECT_EQ(live.toPoint.v, 123456.78F) << "its tag keeps six digits, the addition all";
    EXPECT_EQ(live.endPoint.v, 4);
    EXPECT_EQ(live.tmpPos.h, 0.333333);
    EXPECT_EQ(found.from.h, 0);
}

TEST_F(RecordTexts, SettingsComeBackAndStayInForce) {
    std::strcpy(prefs.flScaleText, "1,5 / 2");
    std::strcpy(prefs.flArFName, "DejaVu Sans, Bold");
    prefs.flScale = 0.75F;
    prefs.flArcMode = 2;
    prefs.flOsLimt = 29.5F;
    const ArtId group = write(0, 0);
    prefs.flScale = 9;
    prefs.flScaleText[0] = prefs.flArFName[0] = 0;
    prefs.flArcMode = 1;
    prefs.flOsLimt = 1;
    prefs.flArThick = 3;
    read(group);
    EXPECT_STREQ(prefs.flScaleText, "1,5 / 2");
    EXPECT_STREQ(prefs.flArFName, "DejaVu Sans, Bold");
    EXPECT_EQ(prefs.flScale, 0.75F);
    EXPECT_EQ(prefs.flArcMode, 2);
    EXPECT_EQ(prefs.flOsLimt, 29.5F);
    EXPECT_EQ(prefs.flArThick, 0.1F);
    // A number that is missing leaves what is there, a text that is empty leaves nothing.
    setTag(group, "QUORVEL_SETTING_1", "7,,\"\",4");
    read(group);
    EXPECT_EQ(prefs.flRadius, 7);
    EXPECT_EQ(prefs.flScale, 0.75F);
    EXPECT_STREQ(prefs.flScaleText, "");
    EXPECT_STREQ(prefs.flArFName, "DejaVu Sans, Bold") << "behind the record's end";
    EXPECT_EQ(prefs.flScFix, 4);
}

TEST_F(RecordTexts, SettingsAreCutEvery255Bytes) {
    for (float* number : {&prefs.flRadius, &prefs.flScale, &prefs.flScLead, &prefs.flScOfst, &prefs.flOsLead,
                          &prefs.flOsLimt, &prefs.flArSize1, &prefs.flArSize2, &prefs.flArSize3})
        *number = -1.23456e-20F;  // twelve bytes
    std::memset(prefs.flArFName, 'f', 63);
    std::size_t length = table.tag(write(0, 0), "QUORVEL_SETTING_1").size();
    ASSERT_LT(length, 255U);
    ASSERT_GE(length, 255U - 62);
    std::memset(prefs.flScaleText, 's', 255 - length);
    ArtId group = write(0, 0);
    EXPECT_EQ(table.tag(group, "QUORVEL_SETTING_1").size(), 255U);
    EXPECT_EQ(table.tag(group, "QUORVEL_SETTING_2"), "(none)");
    prefs.flScaleText[255 - length] = 's';
    group = write(0, 0);
    EXPECT_EQ(table.tag(group, "QUORVEL_SETTING_1").size(), 255U);
    EXPECT_EQ(table.tag(group, "QUORVEL_SETTING_2"), "0");
    prefs.flArcMode = 1;
    read(group);
    EXPECT_EQ(prefs.flArcMode, 0);
    // Pieces end where they end, also within a number; at most four are written, and stale ones go.
    std::string text;
    while (text.size() < 1100) text += "12345,";
    std::string joined;
    table.inside([&] {
        WriteTagPieces(table.handle(group), "QUORVEL_SETTING", text);
        joined = JoinTagPieces(table.handle(group), "QUORVEL_SETTING");
        RemoveTag(table.handle(group), "QUORVEL_SETTING_2");
    });
    EXPECT_EQ(joined, text.substr(0, 1020));
    table.inside([&] { joined = JoinTagPieces(table.handle(group), "QUORVEL_SETTING"); });
    EXPECT_EQ(joined, text.substr(0, 255) + text.substr(510, 510));
    table.inside([&] {
        WriteTagPieces(table.handle(group), "QUORVEL_SETTING", "7");
        joined = JoinTagPieces(table.handle(group), "QUORVEL_SETTING");
    });
    EXPECT_EQ(joined, "7");
}

TEST(RecordFields, QuotesGuardCommas) {
    const struct {
        const char* text;
        int index;
        const char* field;
        int result;
    } rows[] = {
        {"a,b,c", 0, "a", 1},         {"a,b,c", 2, "c", 1},       {"a,b,c", 3, "", 0},  {"a,,c", 1, "", 1},
        {"a,\"b,c\",d", 1, "b,c", 1}, {"a,\"b,c\",d", 2, "d", 1}, {"\"\",x", 0, "", 1}, {"x\"y\"z,w", 0, "xyz", 1},
        {"\"a,b", 0, "a,b", 1},       {"\"a,b", 1, "", 0},        {"a,", 1, "", 1},     {"a,", 2, "", 0},
    };
    for (const auto& row : rows) {
        std::string field = "before";
        EXPECT_EQ(SplitField(row.text, row.index, &field), row.result) << row.text << " " << row.index;
        EXPECT_EQ(field, row.field) << row.text << " " << row.index;
    }
}

TEST_F(RecordTexts, MissingAndDamagedTagsLeaveWhatTheBracketLeft) {
    const ArtId group = write(2, 0);
    table.change([&](Document& document) { return document.removeTag(group, "QUORVEL_FROMPOS"); });
    setTag(group, "QUORVEL_ENDPOS", "x,y,12abc");
    live.fromTangent = 5;
    EXPECT_EQ(read(group).kind, 2);
    EXPECT_EQ(live.fromTangent, 32000.0);
    EXPECT_EQ(live.endTangent, 0);
    EXPECT_EQ(live.endPoint.h, 12);
    EXPECT_EQ(live.endPoint.v, 0);
}

}  // namespace
}  // namespace quorvel::tests

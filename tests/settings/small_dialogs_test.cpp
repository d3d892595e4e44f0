// The small dialogs under a scripted hand, in both languages: what they show, what OK stores and what is refused.
#include "plugin/settings/small_dialogs.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/drafting_table.h"
#include "tests/support/errors.h"

namespace quorvel::tests {
namespace {

using Step = platform::DialogStep;
using Kind = Step::Kind;

class SmallDialogs : public testing::TestWithParam<const char*> {
  protected:
    bool japanese() const { return std::strcmp(GetParam(), "JAPANESE") == 0; }
    std::int32_t id(std::int32_t english) const { return japanese() ? english - 100 : english; }
    const char* text(const char* english, const char* other) const { return japanese() ? other : english; }
    // Whether the dialog gave OK; the reply must have fitted.
    bool run(std::int32_t english, std::vector<Step> steps, bool (*dialog)(PluginGlobals*)) {
        table.user().queueDialog({id(english), std::move(steps)});
        bool agreed = false;
        table.inside([&] { agreed = dialog(&table.globals()); });
        EXPECT_EQ(said(table.user().takeFaults()), "");
        EXPECT_FALSE(table.user().hasRepliesLeft());
        return agreed;
    }
    static Step look(std::int32_t control, const std::string& shown) { return {Kind::expectText, control, shown, 0}; }
    static Step type(std::int32_t control, const std::string& typed) { return {Kind::setText, control, typed, 0}; }
    static Step press(std::int32_t control) { return {Kind::press, control, "", 0}; }

    DraftingTable table{[] {
        PluginHostOptions options;
        options.language = GetParam();
        return options;
    }()};
    PrefsRecord& prefs = table.prefs();
};
INSTANTIATE_TEST_SUITE_P(Languages, SmallDialogs, testing::Values("ENGLISH", "KOREAN", "JAPANESE"));

TEST_P(SmallDialogs, Comment) {
    EXPECT_FALSE(run(16257,
                     {look(4, text("Comment :", "コメント：")), look(5, "sample comment"), type(5, "no"), press(2)},
                     RunCommentDialog));
    EXPECT_STREQ(prefs.flMrkComment, "sample comment");
    EXPECT_TRUE(run(16257, {type(5, std::string(70, 'x')), press(1)}, RunCommentDialog));
    EXPECT_EQ(prefs.flMrkComment, std::string(63, 'x'));
    EXPECT_TRUE(run(16257, {type(5, "表"), press(1)}, RunCommentDialog));
    EXPECT_STREQ(prefs.flMrkComment, "\x95\x5C");
}

TEST_P(SmallDialogs, ObjectNumber) {
    prefs.flMrkItemNo = -7;
    prefs.flMrkINStep = 10;
    EXPECT_FALSE(run(16258,
                     {look(7, text("Starting number :", "開始番号：")), look(5, "-7"),
                      look(8, text("Step :", "ステップ：")), look(6, "10"), type(5, "3"), press(2)},
                     RunObjectNumberDialog));
    EXPECT_EQ(prefs.flMrkItemNo, -7);
    EXPECT_TRUE(run(16258, {type(5, " 12 pieces"), type(6, "-2"), press(1)}, RunObjectNumberDialog));
    EXPECT_EQ(prefs.flMrkItemNo, 12);
    EXPECT_EQ(prefs.flMrkINStep, -2);
    EXPECT_TRUE(run(16258, {type(5, "abc"), type(6, ""), press(1)}, RunObjectNumberDialog));
    EXPECT_EQ(prefs.flMrkItemNo, 0);
    EXPECT_EQ(prefs.flMrkINStep, 0);
}

TEST_P(SmallDialogs, FilletRefusesWhatIsNoRadius) {
    table.host().setRulerUnit("mm");
    EXPECT_FALSE(run(16260, {look(7, text("Radius:", "半径：")), look(5, "0 mm"), press(2)}, FilletRadiusDialog));
    for (const char* refused : {"0", "-3mm", "", "1e39", "radius"}) {
        const int beeps = table.beeps();
        EXPECT_FALSE(run(16260, {type(5, refused), press(1), look(5, refused), press(2)}, FilletRadiusDialog))
            << refused;
        EXPECT_EQ(table.beeps(), beeps + 1) << refused;
        EXPECT_EQ(table.user().lastFocus(), 5) << refused;
        EXPECT_EQ(prefs.flRadius, 0) << refused;
    }
    EXPECT_TRUE(run(16260, {type(5, "0"), press(1), type(5, "3mm"), press(1)}, FilletRadiusDialog));
    EXPECT_FLOAT_EQ(prefs.flRadius, 8.503937F);
    EXPECT_TRUE(run(16260, {look(5, "3 mm"), type(5, "2"), press(1)}, FilletRadiusDialog));
    EXPECT_FLOAT_EQ(prefs.flRadius, 5.669291F);  // without a unit the ruler's
}

// The two dialogs are one but for the mode's field; the row of the list belongs to both.
TEST_P(SmallDialogs, RadiusAndDiameterShareThePosition) {
    const std::int32_t list = 7;
    // Lists speak English in English alone.
    const bool english = std::strcmp(GetParam(), "ENGLISH") == 0;
    const auto row = [&](const char* name, const char* other) { return look(list, english ? name : other); };
    EXPECT_FALSE(run(16266,
                     {look(5, "on"),
                      look(6, "off"),
                      row("Along line", "寸法線に沿う"),
                      press(6),
                      {Kind::selectRow, list, "", 2},
                      press(2)},
                     RunRadiusDialog));
    EXPECT_EQ(prefs.flRadiusMode, 0);
    EXPECT_EQ(prefs.flRdSpos, 0);
    EXPECT_TRUE(run(16266, {press(6), {Kind::selectRow, list, "", 2}, press(1)}, RunRadiusDialog));
    EXPECT_EQ(prefs.flRadiusMode, 1);
    EXPECT_EQ(prefs.flRdSpos, 2);
    EXPECT_EQ(prefs.flDiameterMode, 0);
    EXPECT_TRUE(run(16265,
                    {look(5, "on"),
                     row("Sub line (Right)", "右側に補助線"),
                     press(6),
                     press(5),
                     press(6),
                     {Kind::selectRow, list, "", 1},
                     press(1)},
                    RunDiameterDialog));
    EXPECT_EQ(prefs.flDiameterMode, 1);
    EXPECT_TRUE(run(16266, {look(5, "off"), look(6, "on"), row("Sub line (Left)", "左側に補助線"), press(5), press(1)},
                    RunRadiusDialog));
    EXPECT_EQ(prefs.flRadiusMode, 0);
    EXPECT_EQ(prefs.flRdSpos, 1);
}

TEST_P(SmallDialogs, ToolsOpenTheirOptions) {
    const struct {
        const char *english, *japanese;
        std::int32_t dialog;
    } rows[] = {{"Radius Tool", "半径ツール", 16266},
                {"Diameter Tool", "直径ツール", 16265},
                {"Fillet Tool [Separate]", "フィレットツール [分割型]", 16260}};
    for (const auto& row : rows) {
        table.user().queueDialog({id(row.dialog), {press(2)}});
        const host::ToolRecord* tool = table.host().toolByTitle(text(row.english, row.japanese));
        ASSERT_NE(tool, nullptr) << row.english;
        EXPECT_EQ(table.host().editOptions(*tool), kNoErr);
        EXPECT_EQ(said(table.user().takeFaults()), "") << row.english;
        EXPECT_FALSE(table.user().hasRepliesLeft()) << row.english;
    }
}

TEST_P(SmallDialogs, SaveAsGivesTheNameUnchecked) {
    std::string name = "mine";
    const auto ask = [&](std::vector<Step> steps) {
        table.user().queueDialog({id(16252), std::move(steps)});
        bool agreed = false;
        table.inside([&] { agreed = RunSaveAsDialog(&table.globals(), &name); });
        EXPECT_EQ(said(table.user().takeFaults()), "");
        return agreed;
    };
    EXPECT_FALSE(ask({look(4, text("Preset Name :", "設定の名称：")), look(3, "mine"), type(3, "other"), press(2)}));
    EXPECT_EQ(name, "mine");
    EXPECT_TRUE(ask({type(3, std::string(300, 'n')), press(1)}));
    EXPECT_EQ(name, std::string(255, 'n'));
    EXPECT_TRUE(ask({type(3, ""), press(1)}));
    EXPECT_EQ(name, "");
}

TEST_P(SmallDialogs, AboutNamesTheProductAndItsVersion) {
    table.user().queueDialog({id(16250), {look(6, "Quorvel 4.5.1.3"), press(1)}});
    table.user().takeTranscript();
    EXPECT_EQ(table.host().about(), kNoErr);
    EXPECT_EQ(said(table.user().takeFaults()), "");
    const std::string title = text("About Quorvel", "Quorvel について");
    EXPECT_EQ(table.user().takeTranscript().front(), "dialog " + std::to_string(id(16250)) + " \"" + title + "\"");
}

}  // namespace
}  // namespace quorvel::tests

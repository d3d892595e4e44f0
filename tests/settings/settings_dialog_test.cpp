// The Settings dialog in each language: its lists, what it shows, what it refuses and
// what OK stores.
#include "plugin/settings/settings_dialog.h"

#include <cmath>

#include "fonts/fonts.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/settings/prefs_keys.h"
#include "tests/support/drawing_hand.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

using Texts = std::vector<std::string>;

constexpr std::int32_t kOk = 1, kCancel = 2;

struct Language {
    const char* word;
    std::int32_t dialog;
    bool english;  // templates
    bool tables;   // rows of the string tables
};
const Language kLanguages[] = {
    {"JAPANESE", 16181, false, false}, {"ENGLISH", 16281, true, true}, {"KOREAN", 16281, true, false}};

struct SettingsDialog : testing::TestWithParam<Language> {
    SettingsDialog() : hand(DrawingHand::speaking(GetParam().word)) { hand.host().setRulerUnit("mm"); }

    void run(Steps steps) {
        hand.spy->queueDialog({GetParam().dialog, std::move(steps)});
        ASSERT_EQ(hand.host().menuGo("Orvane Group"), kNoErr);
    }
    std::string snapshot() {
        std::string all;
        for (const PrefsKey& key : PrefsKeys()) all += FormatPrefsField(&hand.plugin->globals(), key) + '\n';
        return all;
    }

    std::string onFile() { return readBytes(hand.plugin->settingsPath()); }

    DrawingHand hand;
};
INSTANTIATE_TEST_SUITE_P(Languages, SettingsDialog, testing::ValuesIn(kLanguages),
                         [](const auto& info) { return info.param.word; });

TEST_P(SettingsDialog, ListsHoldTheirRows) {
    const bool tables = GetParam().tables, english = GetParam().english;
    const Texts scales = {"1/100", "1/10", "1/5", "1/3", "1/2", "1/1", "2/1", "3/1", "4/1", "10/1", "100/1"};
    const Texts areas = {"mm2", "cm2", "m2", "in2", "ft2", "pt2"};
    Texts fonts;
    for (const fonts::Font& font : fonts::fonts()) fonts.push_back(font.fullName);
    Texts units = tables ? Texts{"Millimeters", "Centimeters", "Meters", "Inches", "Feet"}
                         : Texts{"ミリメートル", "センチメートル", "メートル", "インチ", "フィート"};
    units.push_back(english ? "Points" : "ポイント");
    const std::pair<std::int32_t, Texts> lists[] = {
        {5, tables ? Texts{"Arrow", "Triangular", "Oblique Line", "Dot"} : Texts{"矩形", "三角", "斜線", "黒丸"}},
        {6, {"0", "0.0", "0.00", "0.000", "0.0000", "0.00000", "0.000000"}},
        {7, units},
        {8, fonts},
        {10, {"9", "10", "12", "14", "18", "24"}},
        {18, scales},
        {42, scales},
        {38, tables ? Texts{"Apple ASCII", "Microsoft ASCII"} : Texts{"漢字", "Apple ASCII", "Microsoft ASCII"}},
        {40, {"mm", "cm", "m", "in", "ft", "pt"}},
        {46, areas},
        {52, areas},
        {58, areas},
    };
    hand.spy->opened = [&] {
        for (const auto& [control, rows] : lists) EXPECT_EQ(hand.spy->rowsOf(control), rows) << control;
    };
    run({Press(kCancel)});
}

TEST_P(SettingsDialog, ShowsTheSettings) {
    PrefsRecord& p = hand.prefs();
    p.flArType = 2;
    p.flScFix = 3;
    p.flArUnit = 5;
    p.flArDim1ConvUnit = 4;
    p.flUseZero = 7;  // any number but 0 is on
    p.flScale = 0.02F;
    p.flArDim3Show = 1;
    std::snprintf(p.flArLenScaleText, sizeof p.flArLenScaleText, "1/50 ");
    std::snprintf(p.flArDim3UnitName, sizeof p.flArDim3UnitName, "%s", Sjis("坪").c_str());
    hand.spy->opened = [&] {
        DialogSpy& spy = *hand.spy;
        const std::pair<std::int32_t, const char*> texts[] = {{10, "4.23333 mm"}, {19, "0.0352778 mm"},
                                                              {20, "15"},         {21, "10"},
                                                              {22, "10"},         {23, "0"},
                                                              {24, "30"},         {25, "2"},
                                                              {28, "20"},         {18, "2 / 100"},
                                                              {42, "1/50 "},      {36, "<<dimension lines>>"},
                                                              {55, "坪"},         {49, ""}};
        for (const auto& [control, text] : texts) EXPECT_EQ(spy.text(control), text) << control;
        const std::pair<std::int32_t, std::int32_t> rows[] = {{5, 2},  {6, 3},  {7, 5}, {38, 0},
                                                              {40, 0}, {46, 4}, {52, 2}};
        for (const auto& [control, row] : rows) EXPECT_EQ(spy.selected(control), row) << control;
        for (const std::int32_t box : {12, 13, 15, 44, 47, 53})
            EXPECT_EQ(spy.isChecked(box), box == 13 || box == 44 || box == 53) << box;
        EXPECT_FALSE(spy.isEnabled(44));
        for (const std::int32_t control : {49, 51, 52}) EXPECT_FALSE(spy.isEnabled(control)) << control;
        for (const std::int32_t control : {55, 57, 58}) EXPECT_TRUE(spy.isEnabled(control)) << control;
        for (std::int32_t shape = 0; shape < 4; ++shape) EXPECT_EQ(spy.isShown(65 + shape), shape == 2) << shape;
    };
    run({Press(kCancel)});
    EXPECT_STREQ(p.flScaleText, "2 / 100");
    p.flArFSize = 0;
    hand.spy->opened = [&] { EXPECT_EQ(hand.spy->text(10), "4.23333 mm"); };
    run({Press(kCancel)});
    EXPECT_EQ(p.flArFSize, 12) << "no text has the size 0";
}

TEST_P(SettingsDialog, OkStoresEachField) {
    const std::string longText(100, 'x');
    run({Pick(5, 1),         Pick(6, 4),      Pick(7, 2),         Pick(8, 1),       Pick(38, 1),
         Pick(40, 3),        Pick(46, 5),     Tick(12),           Tick(13),         Tick(15),
         Tick(47),           Tick(53),        Type(36, longText), Type(10, "10pt"), Type(19, "0.5"),
         Type(20, "30"),     Type(21, "5mm"), Type(22, "1cm"),    Type(23, "2"),    Type(24, "1in"),
         Type(25, "3pt"),    Type(28, "7"),   Type(18, "1 / 50"), Type(42, "1/0"),  Type(49, "tsubo" + longText),
         Type(51, "0.3025"), Pick(52, 0),     Type(55, "are"),    Type(57, "0.01"), Pick(58, 1),
         Press(kOk)});
    EXPECT_EQ(onFile(), ComposePrefsText(&hand.plugin->globals(), true)) << "already before the shutdown";
    const PrefsRecord& p = hand.prefs();
    const std::pair<std::int16_t, std::int16_t> words[] = {
        {p.flArType, 1},         {p.flScFix, 4},      {p.flArUnit, 2},     {p.flArSpStr, 1},
        {p.flArLenUnit, 3},      {p.flUseTani, 1},    {p.flUseZero, 1},    {p.flOutLayer, 1},
        {p.flArDim1ConvUnit, 5}, {p.flArDim2Show, 1}, {p.flArDim3Show, 1}, {p.flArDim2ConvUnit, 0},
        {p.flArDim3ConvUnit, 1}};
    for (const auto& [stored, expected] : words) EXPECT_EQ(stored, expected) << &stored - &words[0].first;
    const std::pair<float, float> numbers[] = {{p.flArFSize, 10},        {p.flArThick, 1.4173228F}, {p.flArAngle, 30},
                                               {p.flArLead, 14.173228F}, {p.flOsLead, 28.346457F},  {p.flScOfst, 2},
                                               {p.flOsLimt, 72},         {p.flScLead, 3},           {p.flArSize2, 7},
                                               {p.flArSize1, 10},        {p.flScale, 0.02F}};
    for (const auto& [stored, expected] : numbers) EXPECT_FLOAT_EQ(stored, expected);
    EXPECT_EQ(p.flArLenScale, INFINITY);
    EXPECT_STREQ(p.flScaleText, "1 / 50");
    EXPECT_STREQ(p.flArLenScaleText, "1/0");
    EXPECT_EQ(std::string(p.flOutLname), std::string(81, 'x'));
    EXPECT_EQ(std::string(p.flArDim2UnitName), ("tsubo" + longText).substr(0, 31));
    EXPECT_STREQ(p.flArDim2ConvText, "0.3025");
    EXPECT_STREQ(p.flArDim3UnitName, "are");
    EXPECT_STREQ(p.flArDim3ConvText, "0.01");
    EXPECT_EQ(std::string(p.flArFName), fonts::fonts()[1].fullName.substr(0, 63));
    // Width 0 is a width, an empty scale is 0, and a font that is not there becomes the first.
    std::snprintf(hand.prefs().flArFName, sizeof p.flArFName, "No Such Font");
    run({Type(19, "0"), Type(18, ""), Untick(12), Untick(47), Press(kOk)});
    EXPECT_TRUE(p.flArThick == 0 && p.flScale == 0 && p.flUseTani == 0 && p.flArDim2Show == 0);
    EXPECT_EQ(std::string(p.flArFName), fonts::fonts()[0].fullName);
}

TEST_P(SettingsDialog, CancelStoresNothing) {
    std::string before;
    const std::string file = onFile();
    hand.spy->opened = [&] { before = snapshot(); };
    run({Pick(5, 3), Tick(12), Type(10, "30"), Type(36, "layer"), Type(18, "1/7"), Press(kCancel)});
    EXPECT_EQ(snapshot(), before);
    EXPECT_EQ(onFile(), file);
}

TEST_P(SettingsDialog, RefusedValuesAreShownOneAfterTheOther) {
    const std::int32_t order[] = {10, 19, 20, 21, 28, 23, 25, 22, 24};
    for (const char* bad : {"-1", "nan", "-0.001mm"}) {
        std::string before;
        hand.spy->opened = [&] { before = snapshot(); };
        Steps steps = {Pick(6, 2), Tick(12), Type(36, "layer")};
        for (const std::int32_t control : order) steps.push_back(Type(control, bad));
        for (const std::int32_t control : order) {
            steps.push_back(Press(kOk));
            steps.push_back(Type(control, "1"));
        }
        steps.push_back(Press(kCancel));
        std::vector<std::int32_t> refused;
        int beeps = hand.spy->beeps();
        hand.spy->changed = [&] {
            if (hand.spy->beeps() == beeps) return;
            beeps = hand.spy->beeps();
            refused.push_back(hand.spy->lastFocus());
        };
        run(steps);
        EXPECT_EQ(refused, std::vector<std::int32_t>(std::begin(order), std::end(order))) << bad;
        EXPECT_EQ(snapshot(), before) << bad;
        hand.spy->changed = nullptr;
        hand.spy->opened = nullptr;
    }
    for (const auto& [control, bad] : {std::pair{10, "0"}, {10, "abc"}, {20, "3.4028235e38"}, {24, "3.4028235e38"}}) {
        const int beeps = hand.spy->beeps();
        run({Type(control, bad), Press(kOk), Press(kCancel)});
        EXPECT_EQ(hand.spy->beeps(), beeps + 1) << bad;
        EXPECT_EQ(hand.spy->lastFocus(), control);
    }
}

TEST_P(SettingsDialog, AShapeBringsItsOwnSize) {
    run({Type(28, "99"), Pick(5, 3), Look(28, "2"), Type(28, "4"), Pick(5, 2), Look(28, "20"), Pick(5, 3),
         Look(28, "2"), Type(28, "5"), Press(kOk)});
    const PrefsRecord& p = hand.prefs();
    EXPECT_TRUE(p.flArSize1 == 10 && p.flArSize2 == 10 && p.flArSize3 == 20 && p.flArSize4 == 5);
    hand.spy->changed = [&] {
        for (std::int32_t shape = 0; shape < 4; ++shape)
            EXPECT_EQ(hand.spy->isShown(65 + shape), shape == hand.spy->selected(5));
    };
    run({Pick(5, 0), Pick(5, 1), Pick(5, 2), Press(kCancel)});
}

TEST_P(SettingsDialog, AnAreaBoxWakesItsControls) {
    std::vector<std::string> seen;
    hand.spy->changed = [&] {
        std::string states;
        for (const std::int32_t control : {49, 51, 52, 55, 57, 58}) states += hand.spy->isEnabled(control) ? '1' : '0';
        seen.push_back(states);
    };
    run({Tick(47), Tick(53), Untick(47), Press(kCancel)});
    EXPECT_EQ(seen, (std::vector<std::string>{"111000", "111111", "000111", "000111"}));
}

TEST_P(SettingsDialog, ThePreviewFollowsFontAndSize) {
    if (fonts::fonts().size() < 2) GTEST_SKIP() << "one font alone";
    const auto& fonts = fonts::fonts();
    std::vector<std::pair<std::string, float>> seen;
    hand.spy->opened = [&] { EXPECT_EQ(hand.spy->font(29), (std::pair{fonts[0].postScriptName, 12.0F})); };
    hand.spy->changed = [&] { seen.push_back(hand.spy->font(29)); };
    run({Pick(8, 1), Pick(10, 5), Type(10, "14.9pt"), Type(10, "nan"), Type(10, "3.5e38pt"), Type(10, "1e30pt"),
         Press(kCancel)});
    const std::string& name = fonts[1].postScriptName;
    // The text for 12 points, 4.23333 mm, is a little less than 12; 24 without a suffix are millimetres here. What is
    // no size leaves the preview.
    const std::vector<std::pair<std::string, float>> expected = {
        {name, 11.0F}, {name, 68.0F}, {name, 14.0F}, {name, 14.0F}, {name, 14.0F}, {name, 1e30F}, {name, 1e30F}};
    EXPECT_EQ(seen, expected);
}

}  // namespace
}  // namespace quorvel::tests

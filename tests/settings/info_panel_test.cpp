// The information panel under its user's hand, in a whole plug-in: switches, fields, the grid steps that are read while
// they are typed, and the theme.
#include "plugin/settings/info_panel.h"

#include <gtest/gtest.h>

#include <set>

#include "plugin/resources/panel_rows.h"
#include "tests/support/errors.h"
#include "tests/support/plugin_host.h"

namespace quorvel {
namespace {

using tests::PluginHost;
using tests::PluginHostOptions;

constexpr float kPointsPerMillimetre = 2.8346457F;

// A panel over an open drawing whose rulers show millimetres, after the tick in which it first sees them.
class InfoPanelTest : public testing::Test {
  protected:
    void begin(PluginHostOptions options = {}) {
        plugin_ = std::make_unique<PluginHost>(std::move(options));
        plugin_->newDrawing();
        plugin_->host().setRulerUnit("mm");
        ASSERT_EQ(plugin_->start(), kNoErr);
        tick();
    }
    void tick() { ASSERT_EQ(plugin_->host().tick(), kNoErr); }
    std::vector<std::string> rowsOf(std::int32_t control) { return plugin_->globals().panelWindow->rows(control); }
    const std::vector<platform::PanelTheme>& themes() {
        return static_cast<platform::UnseenWindow*>(plugin_->globals().panelWindow)->themes();
    }

    std::unique_ptr<PluginHost> plugin_;
};

TEST(PanelRows, NoTwoControlsLieUponEachOther) {
    std::set<std::int32_t> ids;
    for (const platform::ControlRow& a : PanelRows()) {
        EXPECT_TRUE(ids.insert(a.id).second) << a.id;
        EXPECT_TRUE(a.rect.left >= 0 && a.rect.left < a.rect.right && a.rect.right <= 240) << a.id;
        EXPECT_TRUE(a.rect.top >= 0 && a.rect.top < a.rect.bottom && a.rect.bottom <= 203) << a.id;
        for (const platform::ControlRow& b : PanelRows()) {
            const bool apart = a.rect.right <= b.rect.left || b.rect.right <= a.rect.left ||
                               a.rect.bottom <= b.rect.top || b.rect.bottom <= a.rect.top;
            EXPECT_TRUE(a.id == b.id || apart) << a.id << " and " << b.id;
        }
        // The second icon set is numbered a hundred above the first.
        EXPECT_TRUE(a.darkPicture == (a.picture == 0 ? 0 : a.picture + 100)) << a.id;
    }
    EXPECT_EQ(ids.size(), 30U);
    EXPECT_EQ(*ids.rbegin(), 31) << "27 is no control";
    EXPECT_FALSE(ids.contains(27));
}

TEST_F(InfoPanelTest, EachSwitchTurnsItsFieldAndLightsUp) {
    begin();
    struct Switch {
        std::int32_t control;
        std::int16_t PrefsRecord::*field;
        bool atFirst;
    };
    const Switch switches[] = {
        {11, &PrefsRecord::flUseGrid, false}, {12, &PrefsRecord::flUseFcur, true}, {13, &PrefsRecord::flUseFcrs, true},
        {14, &PrefsRecord::flUseFops, true},  {15, &PrefsRecord::flUseFrad, true}, {16, &PrefsRecord::flUseFdis, false},
        {17, &PrefsRecord::flUseFcnt, false}, {18, &PrefsRecord::flUseFlng, true}, {28, &PrefsRecord::flUseFdim, true},
    };
    for (const Switch& s : switches) {
        EXPECT_EQ(plugin_->panelLit(s.control), s.atFirst) << s.control;
        ASSERT_TRUE(plugin_->user().panelPress(s.control));
        EXPECT_EQ(plugin_->panelLit(s.control), !s.atFirst) << s.control;
        EXPECT_EQ(plugin_->prefs().*s.field, s.atFirst ? 0 : 1) << s.control;
    }
    // The buttons lead and the fields follow: a press takes back what else has changed them.
    plugin_->prefs().flUseGrid = 0;
    ASSERT_TRUE(plugin_->user().panelPress(12));
    EXPECT_EQ(plugin_->prefs().flUseGrid, 1);
    EXPECT_EQ(plugin_->prefs().flUseFcur, 1);
}

TEST_F(InfoPanelTest, ThePanelTakesTheSettingsOfTheFile) {
    PluginHostOptions options;
    options.settings = {{"flUseGrid", "1"}, {"flUseFcur", "0"}, {"flGrHeight", "28.346457"}};
    begin(std::move(options));
    EXPECT_TRUE(plugin_->panelLit(11));
    EXPECT_FALSE(plugin_->panelLit(12));
    EXPECT_EQ(plugin_->panelText(20), "5 mm");
    EXPECT_EQ(plugin_->panelText(22), "10 mm");
}

TEST_F(InfoPanelTest, ReadOutSwitchesEmptyTheirFieldEitherWay) {
    begin();
    plugin_->addPath({{0, 0}, {72, 0}, {72, 72}, {0, 72}}, true, true);
    tick();
    EXPECT_EQ(plugin_->panelText(10), "101.6 mm");
    EXPECT_EQ(plugin_->panelText(30), "0.00064516 m2");
    for (const auto& [toggle, field, text] : {std::tuple{18, 10, "101.6 mm"}, {28, 30, "0.00064516 m2"}}) {
        ASSERT_TRUE(plugin_->user().panelPress(toggle));
        EXPECT_EQ(plugin_->panelText(field), "");
        tick();
        EXPECT_EQ(plugin_->panelText(field), "") << "off";
        ASSERT_TRUE(plugin_->user().panelPress(toggle));
        EXPECT_EQ(plugin_->panelText(field), "") << "on, before the tick";
        tick();
        EXPECT_EQ(plugin_->panelText(field), text);
    }
}

TEST_F(InfoPanelTest, GridStepsAreReadAsTheyAreTyped) {
    begin();
    const auto typed = [&](const char* text) {
        EXPECT_TRUE(plugin_->user().panelType(20, text));
        tick();
        return plugin_->prefs().flGrWidth;
    };
    EXPECT_FLOAT_EQ(typed("2"), 2 * kPointsPerMillimetre) << "half of what is meant, in the ruler's unit";
    EXPECT_FLOAT_EQ(typed("2i"), 2 * kPointsPerMillimetre) << "no unit yet";
    EXPECT_FLOAT_EQ(typed("2in"), 144);
    for (const char* refused : {"0", "", "-3 mm", "mm", "1e50", "nan"}) EXPECT_FLOAT_EQ(typed(refused), 144) << refused;
    EXPECT_FLOAT_EQ(typed("7 H"), 4.9606299F);
    EXPECT_FLOAT_EQ(plugin_->prefs().flGrHeight, 5 * kPointsPerMillimetre);
    ASSERT_TRUE(plugin_->user().panelType(24, "1 pc"));
    tick();
    EXPECT_FLOAT_EQ(plugin_->prefs().flGrDistance, 12);
}

TEST_F(InfoPanelTest, AHiddenPanelIsNotRead) {
    begin();
    ASSERT_EQ(plugin_->host().menuGo("Orvane Info Group"), kNoErr);
    ASSERT_TRUE(plugin_->user().panelType(20, "9 mm"));
    tick();
    EXPECT_FLOAT_EQ(plugin_->prefs().flGrWidth, 5 * kPointsPerMillimetre);
}

TEST_F(InfoPanelTest, WhatIsTypedBeforeTheFirstTickStands) {
    begin();
    plugin_->globals().panelUnitText[0] = '\0';  // as before the first tick
    ASSERT_TRUE(plugin_->user().panelType(20, "3 mm"));
    tick();
    EXPECT_EQ(plugin_->panelText(20), "3 mm") << "not rewritten";
    tick();
    EXPECT_FLOAT_EQ(plugin_->prefs().flGrWidth, 3 * kPointsPerMillimetre);
}

TEST_F(InfoPanelTest, AChangeOfTheRulerRewritesTheStepsAndKeepsThem) {
    begin();
    ASSERT_TRUE(plugin_->user().panelType(22, "25.4 mm"));
    tick();
    const float height = plugin_->prefs().flGrHeight;
    plugin_->host().setRulerUnit("in");
    ASSERT_TRUE(plugin_->user().panelType(24, "99"));  // lost: in which unit it was meant is not known
    tick();
    EXPECT_EQ(plugin_->panelText(22), "1 in");
    EXPECT_EQ(plugin_->panelText(24), "0.19685 in");
    EXPECT_EQ(plugin_->prefs().flGrHeight, height);
    EXPECT_FLOAT_EQ(plugin_->prefs().flGrDistance, 5 * kPointsPerMillimetre);
}

TEST_F(InfoPanelTest, ListsAndLabelsAreInTheLanguageInForce) {
    const std::vector<std::string> rest = {"1", "5", "10", "20", "50", "100"};
    for (const auto& [language, label, first] : {std::tuple{"ENGLISH", "Snap to Path", ".25"},
                                                 {"KOREAN", "Snap to Path", "0.25"},
                                                 {"JAPANESE", "パス線上フィット", "0.25"}}) {
        PluginHostOptions options;
        options.language = language;
        begin(std::move(options));
        EXPECT_EQ(plugin_->panelText(14), label);
        EXPECT_EQ(plugin_->host().panels().at(0).title, "Quorvel Info") << "in every language";
        for (const std::int32_t list : {20, 22, 24}) {
            const std::vector<std::string> rows = rowsOf(list);
            ASSERT_EQ(rows.size(), 8U) << "separators are left out";
            EXPECT_EQ(rows[0], first);
            EXPECT_EQ(std::vector<std::string>(rows.begin() + 2, rows.end()), rest);
        }
        plugin_.reset();
    }
}

TEST_F(InfoPanelTest, ARunShowsItsPointAndTheWayFromIt) {
    begin();
    plugin_->host().setRulerUnit("pt");
    // The ruler is asked in a message: a tool's events are the ones that show it.
    ASSERT_EQ(plugin_->host().selectTool(*plugin_->host().toolByTitle("Oblique Dimension Tool")), kNoErr);
    const auto shown = [&] {
        return plugin_->panelText(2) + " | " + plugin_->panelText(4) + " | " + plugin_->panelText(6) + " | " +
               plugin_->panelText(8);
    };
    ASSERT_EQ(plugin_->host().sendTool(kSelectorTrackCursor, {100, 50}, 0), kNoErr);
    EXPECT_EQ(shown(), "100 pt | 50 pt |  | ");
    ASSERT_EQ(plugin_->host().sendTool(kSelectorMouseDown, {100, 50}, 0), kNoErr);
    ASSERT_EQ(plugin_->host().sendTool(kSelectorMouseDrag, {130.5F, 40}, 0), kNoErr);
    EXPECT_EQ(shown(), "100 pt | 50 pt | 30.5 pt | -10 pt");
    ASSERT_EQ(plugin_->host().sendTool(kSelectorMouseUp, {130.5F, 40}, 0), kNoErr);
    ASSERT_EQ(plugin_->host().sendTool(kSelectorTrackCursor, {110, 90}, 0), kNoErr);
    EXPECT_EQ(shown(), "110 pt | 90 pt |  | ");
    SetPanelField(0, "x");
    SetPanelField(7, "x");
    EXPECT_EQ(shown(), "110 pt | 90 pt |  | ");
}

TEST_F(InfoPanelTest, TheThemeFollowsTheHost) {
    begin();
    ASSERT_EQ(themes().size(), 1U) << "an unchanged theme is not painted again";
    EXPECT_FALSE(themes()[0].secondIcons) << "dark strokes on the light ground";
    EXPECT_EQ(themes()[0].highlight, 0x444444U);
    host::Theme dark;
    dark.value = 1;
    dark.background[1] = 0.2F;  // 51 of 255
    dark.background[2] = 0.999F;
    dark.text[3] = 1;
    plugin_->host().setTheme(dark);
    tick();
    ASSERT_EQ(themes().size(), 2U);
    EXPECT_TRUE(themes()[1].secondIcons);
    EXPECT_EQ(themes()[1].highlight, 0xAAAAAAU);
    EXPECT_FLOAT_EQ(themes()[1].background[0], 51.0F / 255);
    EXPECT_FLOAT_EQ(themes()[1].background[1], 254.0F / 255) << "cut, not rounded";
    EXPECT_FLOAT_EQ(themes()[1].text[2], 1);
}

TEST(InfoPanel, WithoutAPanelFieldsAreDropped) {
    PluginHostOptions options;
    options.host.failAdding = "panel";
    PluginHost plugin(std::move(options));
    ASSERT_EQ(plugin.start(), kNoErr);
    SetPanelField(5, "x");
    SetPanelPoint({1, 2}, nullptr);
    EXPECT_EQ(plugin.panelText(10), "(absent)");
    EXPECT_EQ(said(plugin.user().takeFaults()), "");
}

}  // namespace
}  // namespace quorvel

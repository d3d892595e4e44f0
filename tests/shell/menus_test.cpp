// What the plug-in adds to a host apart from its tools, and what its commands, ticks, notifications and its action do
// in a whole plug-in.
#include "plugin/shell/menus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>

#include "plugin/shell/suites.h"
#include "tests/support/errors.h"
#include "tests/support/plugin_host.h"

namespace quorvel {
namespace {

using tests::PluginHost;
using tests::PluginHostOptions;

constexpr std::int32_t kLengthText = 10, kAreaText = 30;

// --- adding the menu items against groups of a host's own ----------------------------------------------------------

struct Menus {
    std::vector<const char*> groups;
    int failWalkAt = std::numeric_limits<int>::max(), failAddAt = std::numeric_limits<int>::max();
    std::vector<std::string> added = {}, submenus = {};
};
Menus* sMenus = nullptr;

AIErr FakeAdd(SPPluginRef, const char* name, const AIMenuItemData*, std::int32_t, AIMenuItemHandle*) {
    if (static_cast<int>(sMenus->added.size()) == sMenus->failAddAt) return kBadParameterErr;
    sMenus->added.emplace_back(name);
    return kNoErr;
}
AIErr FakeCount(std::int32_t* count) {
    *count = static_cast<std::int32_t>(sMenus->groups.size());
    return kNoErr;
}
AIErr FakeNth(std::int32_t index, AIMenuGroup* group) {
    if (index == sMenus->failWalkAt) return kBadParameterErr;
    *group = reinterpret_cast<AIMenuGroup>(static_cast<std::intptr_t>(index) + 1);
    return kNoErr;
}
AIErr FakeName(AIMenuGroup group, const char** name) {
    *name = sMenus->groups.at(reinterpret_cast<std::size_t>(group) - 1);
    return kNoErr;
}
AIErr FakeSubMenu(const char* name, std::int32_t options, AIMenuItemHandle, AIMenuGroup*) {
    EXPECT_EQ(options, 1);
    sMenus->submenus.emplace_back(name);
    return kNoErr;
}

AIErr AddTo(Menus* menus) {
    static const AIMenuSuite suite = {FakeAdd, nullptr, FakeCount, FakeNth, FakeName, FakeSubMenu};
    static AIUnicodeStringSuite strings = {};
    strings.FromCodePage = [](const char*, std::int32_t, std::int32_t, AIUnicodeStringRef*) { return kRefusedErr; };
    auto globals = std::make_unique<PluginGlobals>();
    std::copy_n("Quorvel", 8, globals->productName);
    gGlobals = globals.get();
    sAIMenu = &suite;
    sAIUnicodeString = &strings;
    sMenus = menus;
    const AIErr result = AddMenus();
    sAIMenu = nullptr;
    sAIUnicodeString = nullptr;
    gGlobals = nullptr;
    return result;
}

TEST(AddMenus, TheFamilySharesOneSubmenu) {
    const std::vector<std::string> all = {"Orvane Group", "Orvane Info Group", "SELKIE_PLUGINS_ABOUT",
                                          "SELKIE_PLUGINS_ABOUT_Quorvel"};
    const std::vector<std::string> later = {all[0], all[1], all[3]};
    Menus first{.groups = {"File", "SELKIE_PLUGINS_ABOUT2", "selkie_plugins_about"}};
    EXPECT_EQ(AddTo(&first), kNoErr);
    EXPECT_EQ(first.added, all);
    EXPECT_EQ(first.submenus, std::vector<std::string>{"SELKIE_PLUGINS_ABOUT"});

    Menus second{.groups = {"File", "SELKIE_PLUGINS_ABOUT"}};
    EXPECT_EQ(AddTo(&second), kNoErr);
    EXPECT_EQ(second.added, later);
    EXPECT_TRUE(second.submenus.empty());

    Menus failing{.groups = {"File", "SELKIE_PLUGINS_ABOUT"}, .failWalkAt = 0};
    EXPECT_EQ(AddTo(&failing), kNoErr);
    EXPECT_EQ(failing.added, all) << "a walk that fails has found nothing";

    for (int at = 0; at < 4; ++at) {
        Menus refusing{.groups = {"File"}, .failAddAt = at};
        EXPECT_EQ(AddTo(&refusing), kBadParameterErr);
        EXPECT_EQ(refusing.added, std::vector<std::string>(all.begin(), all.begin() + at));
    }
}

// --- the whole plug-in ---------------------------------------------------------------------------------------------

class MenusTest : public testing::Test {
  protected:
    void begin(PluginHostOptions options = {}) {
        plugin_ = std::make_unique<PluginHost>(std::move(options));
        ASSERT_EQ(plugin_->start(), kNoErr);
        plugin_->user().takeTranscript();
    }
    void beginDrawing(PluginHostOptions options = {}) {
        begin(std::move(options));
        plugin_->newDrawing();
    }
    void TearDown() override {
        if (plugin_ == nullptr) return;
        EXPECT_EQ(plugin_->host().suitesHeld(), 0);
        EXPECT_EQ(said(plugin_->user().takeFaults()), "");
        EXPECT_FALSE(plugin_->user().hasRepliesLeft());
    }
    void tick() { ASSERT_EQ(plugin_->host().tick(), kNoErr); }
    std::string lengthAfterTick() {
        tick();
        return plugin_->panelText(kLengthText);
    }
    std::string areaAfterTick() {
        tick();
        return plugin_->panelText(kAreaText);
    }
    const host::MenuItemRecord& item(std::string_view name) {
        const auto& items = plugin_->host().menuItems();
        return *std::find_if(items.begin(), items.end(), [&](const auto& one) { return one.name == name; });
    }
    // A free dimension over (100, 100) to (200, 100), placed at a height of 150.
    void drawDimension(const char* title) {
        host::Host& host = plugin_->host();
        ASSERT_NE(host.toolByTitle(title), nullptr);
        host.selectTool(*host.toolByTitle(title));
        host.sendTool(kSelectorTrackCursor, {100, 100}, 0);
        host.sendTool(kSelectorMouseDown, {100, 100}, 0);
        host.sendTool(kSelectorMouseDrag, {200, 100}, 0);
        host.sendTool(kSelectorMouseUp, {200, 100}, 0);
        host.sendTool(kSelectorTrackCursor, {150, 150}, 0);
        host.sendTool(kSelectorMouseDown, {150, 150}, 0);
        host.sendTool(kSelectorMouseUp, {150, 150}, 0);
        plugin_->user().takeTranscript();
    }

    std::unique_ptr<PluginHost> plugin_;
};

TEST_F(MenusTest, AHostGetsCommandsTimerActionAndPanel) {
    begin();
    host::Host& host = plugin_->host();
    ASSERT_EQ(host.menuItems().size(), 4U);
    EXPECT_EQ(item("Orvane Group").group, "Preferences");
    EXPECT_EQ(item("Orvane Group").text, "Quorvel Settings...");
    EXPECT_EQ(item("Orvane Info Group").group, "Tool Palettes");
    EXPECT_EQ(item("Orvane Info Group").text, "Quorvel Information");
    EXPECT_TRUE(item("Orvane Info Group").wantsUpdate);
    EXPECT_EQ(item("SELKIE_PLUGINS_ABOUT").text, "About Plug-ins (Selkie Works)");
    EXPECT_EQ(item("SELKIE_PLUGINS_ABOUT_Quorvel").group, "SELKIE_PLUGINS_ABOUT");
    EXPECT_EQ(item("SELKIE_PLUGINS_ABOUT_Quorvel").text, "Quorvel...");
    ASSERT_EQ(host.timers().size(), 1U);
    EXPECT_EQ(host.timers()[0].period, 12);
    ASSERT_EQ(host.actions().size(), 1U);
    EXPECT_EQ(host.actions()[0].event, "Recalculate_Dimension_lines");
    EXPECT_EQ(host.actions()[0].localizedName, "Recalculate(Dimension_lines)");
    ASSERT_EQ(host.panels().size(), 1U);
    EXPECT_EQ(host.panels()[0].identifier, "QUORVEL_INFO_PANEL");
    EXPECT_EQ(host.panels()[0].minimum.height, 203);
    EXPECT_TRUE(host.panels()[0].shown);
    host.notify(kApplicationStartedNotifier);
    EXPECT_EQ(host.panels().size(), 1U) << "once";
}

TEST_F(MenusTest, WithoutAPanelTheRestGoesOn) {
    PluginHostOptions options;
    options.host.failAdding = "panel";
    beginDrawing(std::move(options));
    host::Host& host = plugin_->host();
    EXPECT_EQ(host.menuUpdate("Orvane Info Group"), kNoErr);
    EXPECT_EQ(host.menuGo("Orvane Info Group"), kNoErr);
    plugin_->addPath({{0, 0}, {72, 0}}, false, true);
    plugin_->globals().pendingCommand = kCommandRecalculate;
    tick();
    EXPECT_EQ(plugin_->globals().pendingCommand, kCommandNone);
    drawDimension("Oblique Dimension Tool");
    plugin_->user().queueAnswer(true);
    EXPECT_EQ(host.playAction("Recalculate_Dimension_lines"), kNoErr);
}

TEST_F(MenusTest, TheMenuShowsAndHidesThePanel) {
    begin();
    host::Host& host = plugin_->host();
    for (const bool shown : {false, true}) {
        EXPECT_EQ(host.menuGo("Orvane Info Group"), kNoErr);
        EXPECT_EQ(host.panels()[0].shown, shown);
        EXPECT_EQ(host.menuUpdate("Orvane Info Group"), kNoErr);
        EXPECT_EQ(item("Orvane Info Group").checked, shown);
    }
    plugin_->user().queueDialog({16250, {{platform::DialogStep::Kind::press, 1, {}, 0}}});
    EXPECT_EQ(host.menuGo("SELKIE_PLUGINS_ABOUT_Quorvel"), kNoErr);
}

TEST_F(MenusTest, MenuAndFlyoutOpenTheSettings) {
    beginDrawing();
    host::Host& host = plugin_->host();
    const platform::DialogReply cancel = {16281, {{platform::DialogStep::Kind::press, 2, {}, 0}}};
    plugin_->user().queueDialog(cancel);
    EXPECT_EQ(host.menuGo("Orvane Group"), kNoErr);

    plugin_->addPath({{0, 0}, {72, 0}}, false, true);
    host.chooseFlyout(1);
    host.chooseFlyout(1);
    EXPECT_EQ(plugin_->globals().pendingCommand, kCommandSettings);
    plugin_->user().queueDialog(cancel);
    EXPECT_EQ(lengthAfterTick(), "") << "a tick with a command shows nothing";
    EXPECT_FALSE(plugin_->user().hasRepliesLeft()) << "two choices open one dialog";
    EXPECT_EQ(lengthAfterTick(), "25.4 mm");
}

// 72 points are an inch; the square of 72 by 72 encloses a square inch.
TEST_F(MenusTest, ReadOutsInEachUnit) {
    beginDrawing();
    const doc::ArtId square = plugin_->addPath({{0, 0}, {72, 0}, {72, 72}, {0, 72}}, true, true);
    struct Row {
        std::int16_t unit;
        const char* length;
        const char* area;
    };
    const Row rows[] = {
        {0, "101.6 mm", "645.16 mm2"}, {1, "10.16 cm", "6.4516 cm2"},        {2, "0.1016 m", "0.00064516 m2"},
        {3, "4 in", "1 in2"},          {4, "0.333333 ft", "0.00694444 ft2"}, {5, "288 pt", "5184 pt2"},
    };
    PrefsRecord& prefs = plugin_->prefs();
    for (const Row& row : rows) {
        prefs.flArLenUnit = prefs.flArDim1ConvUnit = row.unit;
        EXPECT_EQ(lengthAfterTick(), row.length);
        EXPECT_EQ(plugin_->panelText(kAreaText), row.area);
    }
    // Without a name, at the factor that stood last: none at first, the length's own for the area.
    prefs.flArLenUnit = prefs.flArDim1ConvUnit = 6;
    EXPECT_EQ(lengthAfterTick(), "288 ");
    EXPECT_EQ(plugin_->panelText(kAreaText), "5184 ");
    prefs.flArLenUnit = 3;
    EXPECT_EQ(areaAfterTick(), "72 ");

    prefs.flArLenUnit = prefs.flArDim1ConvUnit = 3;
    prefs.flArLenScale = 0.5F;
    EXPECT_EQ(lengthAfterTick(), "8 in") << "the scale counts at once, with nothing drawn";
    EXPECT_EQ(plugin_->panelText(kAreaText), "4 in2");
    plugin_->select(square, false);
    EXPECT_EQ(lengthAfterTick(), "");
    EXPECT_EQ(plugin_->panelText(kAreaText), "");
}

TEST_F(MenusTest, PointsLoseTheirZeros) {
    beginDrawing();
    plugin_->prefs().flArLenUnit = 5;
    for (const auto& [end, text] : {std::pair{12.5F, "12.5 pt"},
                                    {12.0F, "12 pt"},
                                    {100.0F, "100 pt"},
                                    {0.0625F, "0.0625 pt"},
                                    {0.03125F, "0.0312 pt"}}) {
        const doc::ArtId line = plugin_->addPath({{0, 0}, {end, 0}}, false, true);
        EXPECT_EQ(lengthAfterTick(), text);
        plugin_->select(line, false);
    }
    plugin_->addPath({{5, 5}, {5, 5}}, false, true);
    EXPECT_EQ(lengthAfterTick(), "") << "a length of nothing";
}

TEST_F(MenusTest, FurtherAreasInUnitsOfTheUsersOwn) {
    beginDrawing();
    plugin_->addPath({{0, 0}, {720, 0}, {720, 720}, {0, 720}}, true, true);  // 100 square inches
    PrefsRecord& prefs = plugin_->prefs();
    prefs.flArDim1ConvUnit = 3;
    prefs.flArDim3Show = 1;
    prefs.flArDim3ConvUnit = 5;
    std::copy_n("0.5x", 5, prefs.flArDim3ConvText);
    std::copy_n("half", 5, prefs.flArDim3UnitName);
    EXPECT_EQ(areaAfterTick(), "100 in2\r259200 half");
    prefs.flArDim2Show = 1;
    prefs.flArDim2ConvUnit = 3;
    std::copy_n("tsubo", 6, prefs.flArDim2UnitName);
    EXPECT_EQ(areaAfterTick(), "100 in2\r0 tsubo\r259200 half") << "no factor typed";
    std::copy_n("0.3025", 7, prefs.flArDim2ConvText);
    prefs.flArLenScale = 2;
    EXPECT_EQ(areaAfterTick(), "25 in2\r7.5625 tsubo\r64800 half");
}

TEST_F(MenusTest, NoDocumentShowsNothing) {
    beginDrawing();
    plugin_->addPath({{0, 0}, {72, 0}, {72, 72}}, true, true);
    EXPECT_EQ(areaAfterTick(), "0.00032258 m2");
    plugin_->host().closeDocument();
    EXPECT_EQ(lengthAfterTick(), "");
    EXPECT_EQ(plugin_->panelText(kAreaText), "");
}

// The sums are kept between ticks, but never beyond the change that makes them stale.
TEST_F(MenusTest, ReadOutsFollowEveryChange) {
    for (const bool query : {true, false}) {
        PluginHostOptions options;
        options.host.offerArtQuery = query;
        beginDrawing(std::move(options));
        plugin_->prefs().flArLenUnit = 5;
        const doc::ArtId line = plugin_->addPath({{0, 0}, {50, 0}}, false, true);
        EXPECT_EQ(lengthAfterTick(), "50 pt");
        EXPECT_EQ(lengthAfterTick(), "50 pt");
        host::Host& host = plugin_->host();
        host.edit("Stretch", [&](doc::Document& d) { return d.transform(line, {2, 0, 0, 1, 0, 0}, 1); });
        EXPECT_EQ(lengthAfterTick(), "100 pt");
        ASSERT_TRUE(host.undo());
        EXPECT_EQ(lengthAfterTick(), "50 pt");
        const doc::LayerId layer = host.document()->layerOf(line);
        host.edit("Hide", [&](doc::Document& d) { return d.setLayerVisible(layer, false); });
        EXPECT_EQ(lengthAfterTick(), "");
        ASSERT_TRUE(host.undo());
        plugin_->newDrawing();
        plugin_->addPath({{0, 0}, {7, 0}}, false, true);
        EXPECT_EQ(lengthAfterTick(), "7 pt") << "another drawing";
        plugin_.reset();
    }
}

TEST_F(MenusTest, AnUnchangedSelectionCostsNoWalk) {
    beginDrawing();
    constexpr int kPaths = 20000;
    const PathSegment ends[] = {{{0, 0}, {0, 0}, {0, 0}, 1}, {{1, 0}, {1, 0}, {1, 0}, 1}};
    plugin_->host().edit("Draw", [&](doc::Document& document) {
        for (int i = 0; i < kPaths; ++i) {
            const doc::ArtId path = document.insertArt(kPathArt, kPlaceAboveAll, 0);
            document.setSegments(path, 0, ends);
            document.setSelected(path, true);
        }
        return true;
    });
    plugin_->prefs().flArLenUnit = 5;
    const auto timed = [&] {
        const auto start = std::chrono::steady_clock::now();
        tick();
        return std::chrono::steady_clock::now() - start;
    };
    const auto walk = timed();
    auto kept = timed();
    for (int i = 0; i < 5; ++i) kept = std::min(kept, timed());
    EXPECT_EQ(plugin_->panelText(kLengthText), "20000 pt");
    EXPECT_LT(kept * 4, walk);
}

TEST_F(MenusTest, TheActionAsksAndNamesItsStepEitherWay) {
    beginDrawing();
    host::Host& host = plugin_->host();
    drawDimension("Oblique Dimension Tool");
    for (const bool yes : {false, true}) {
        plugin_->user().queueAnswer(yes);
        const std::uint64_t before = host.document()->changeCount();
        EXPECT_EQ(host.playAction("Recalculate_Dimension_lines"), kNoErr);
        EXPECT_EQ(host.document()->changeCount() != before, yes);
        EXPECT_EQ(host.lastUndoName(), "Undo Recalculate(Dimension lines)");
    }
    // The panel's button plays the same action.
    plugin_->user().queueAnswer(false);
    EXPECT_TRUE(plugin_->user().panelPress(31));
    EXPECT_FALSE(plugin_->user().hasRepliesLeft());
}

TEST_F(MenusTest, ABusyTimerAndAForeignTimerDoNothing) {
    beginDrawing();
    plugin_->globals().timerBusy = 1;
    plugin_->globals().pendingCommand = kCommandRecalculate;
    tick();
    EXPECT_EQ(plugin_->globals().pendingCommand, kCommandRecalculate);
    plugin_->globals().timerBusy = 0;
    AITimerMessage foreign;
    EXPECT_EQ(plugin_->host().send(kCallerTimer, kSelectorGo, &foreign.d), kNoErr);
    EXPECT_EQ(plugin_->globals().pendingCommand, kCommandRecalculate);
    tick();
    EXPECT_EQ(plugin_->globals().pendingCommand, kCommandNone);
    EXPECT_EQ(plugin_->globals().timerBusy, 0);
}

TEST_F(MenusTest, PanelAndSettingsOutliveAPurge) {
    beginDrawing();
    ASSERT_TRUE(plugin_->user().panelPress(11));
    EXPECT_EQ(plugin_->host().unload(), kNoErr);
    EXPECT_EQ(plugin_->host().reload(), kNoErr);
    plugin_->addPath({{0, 0}, {72, 0}}, false, true);
    EXPECT_EQ(lengthAfterTick(), "25.4 mm");
    EXPECT_EQ(plugin_->prefs().flUseGrid, 1);
    EXPECT_EQ(plugin_->stop(), kNoErr);
    EXPECT_TRUE(plugin_->host().panels().empty());
    EXPECT_EQ(plugin_->panelText(kLengthText), "(absent)");
}

}  // namespace
}  // namespace quorvel

// The plug-in's life in a whole host, from start-up to shutdown: each step of it that can fail, being unloaded and
// loaded again, and the settings file. Whatever happened, no suite stays acquired and nothing is left for the leak
// checker.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "plugin/shell/globals.h"
#include "plugin/shell/suites.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// What a host may still send to a plug-in whose start-up has failed.
void SendEverything(PluginHost& plugin) {
    plugin.newDrawing();
    plugin.host().notify(kApplicationStartedNotifier);
    plugin.host().tick();
    for (const host::MenuItemRecord& item : plugin.host().menuItems()) plugin.host().menuUpdate(item.name);
    for (const host::ToolRecord& tool : plugin.host().tools()) {
        plugin.host().selectTool(tool);
        plugin.host().sendTool(kSelectorTrackCursor, {50, 50}, 0);
        plugin.host().sendTool(kSelectorMouseDown, {50, 50}, 0);
        plugin.host().sendTool(kSelectorMouseUp, {50, 50}, 0);
    }
}

TEST(Lifecycle, TheSettingsComeBeforeTheTools) {
    PluginHostOptions options;
    options.language = "KOREAN";
    options.settings = {{"flScFix", "4"}};
    DraftingTable table(std::move(options));
    PluginGlobals& globals = table.globals();
    EXPECT_EQ(table.host().tools().at(0).title, "Oblique Dimension Tool") << "Korean settings show English titles";
    EXPECT_EQ(globals.prefs.flScFix, 4);
    EXPECT_EQ(globals.prefs.flRdLead, 5);
    table.inside([&] {
        std::int32_t bits = 0;
        EXPECT_EQ(sAIPlugin->GetPluginOptions(globals.pluginRef, &bits), kNoErr);
        EXPECT_EQ(bits & 2, 2);
    });
    EXPECT_EQ(globals.liveState.toolStep, 0);
    EXPECT_EQ(static_cast<std::uint16_t>(globals.drawnState.toolStep), 65535);
    EXPECT_EQ(globals.drawnState.stops[31].cells[4].index, kNoAnchorIndex);
    EXPECT_EQ(globals.liveState.cursorTangent, 32000.0);
    EXPECT_STREQ(globals.productVersion, "4.5.1.3");
    EXPECT_EQ(globals.bezierTables.b1n32[16], 0.375) << "3 t (1 - t) squared at one half";
    ASSERT_NE(globals.workBufferC, nullptr);
    EXPECT_EQ(globals.workBufferC->segments[kChainCapacity - 1].corner, 0) << "zeroed to its end";
    globals.workBufferA->count = globals.workBufferB->count = globals.workBufferC->count = 9;
    ContextBracket(&globals);
    EXPECT_EQ(globals.workBufferA->count, 0);
    EXPECT_EQ(globals.workBufferB->count, 0);
    EXPECT_EQ(globals.workBufferC->count, 9) << "scratch";
}

TEST(Lifecycle, EachAdditionMayFail) {
    for (const char* what : {"tool", "notifier", "menu", "timer"}) {
        SCOPED_TRACE(what);
        PluginHostOptions options;
        options.host.failAdding = what;
        PluginHost plugin(std::move(options));
        EXPECT_EQ(plugin.host().startup(), kRefusedErr);
        EXPECT_EQ(plugin.user().takeTranscript().size(), 1U) << "one alert";
        EXPECT_EQ(plugin.host().suitesHeld(), 0);
        EXPECT_EQ(plugin.host().tools().size(), std::string(what) == "tool" ? 0U : 19U);
        EXPECT_TRUE(plugin.host().actions().empty() && plugin.host().panels().empty());
        SendEverything(plugin);
        EXPECT_EQ(plugin.host().suitesHeld(), 0);
        EXPECT_EQ(plugin.host().shutdown(), kNoErr);
        EXPECT_EQ(gGlobals, nullptr);
        EXPECT_EQ(plugin.host().suitesHeld(), 0);
        EXPECT_NE(ReadAll(plugin.settingsPath()).find("flScFix = 0"), std::string::npos) << "settings are kept";
    }
}

TEST(Lifecycle, EachChainBufferMayFail) {
    for (int nth = 1; nth <= 3; ++nth) {
        SCOPED_TRACE(nth);
        PluginHost plugin;
        plugin.user().failAllocation(nth);
        EXPECT_EQ(plugin.host().startup(), kOutOfMemoryErr);
        EXPECT_EQ(plugin.user().takeTranscript().size(), 1U);
        EXPECT_EQ(plugin.globals().workBufferA != nullptr, nth > 1);
        EXPECT_EQ(plugin.globals().workBufferB != nullptr, nth > 2);
        EXPECT_EQ(plugin.globals().workBufferC, nullptr);
        SendEverything(plugin);
        EXPECT_EQ(plugin.host().shutdown(), kNoErr);
        EXPECT_EQ(plugin.host().suitesHeld(), 0);
    }
}

TEST(Lifecycle, WithoutItsBlockItStaysAbsent) {
    PluginHostOptions options;
    options.host.failAdding = "block";
    PluginHost plugin(std::move(options));
    const std::string settings = ReadAll(plugin.settingsPath());
    EXPECT_NE(plugin.host().startup(), kNoErr);
    EXPECT_EQ(gGlobals, nullptr);
    EXPECT_EQ(plugin.user().takeTranscript().size(), 1U);
    SendEverything(plugin);
    EXPECT_EQ(plugin.host().shutdown(), kNoErr);
    EXPECT_TRUE(plugin.host().tools().empty());
    EXPECT_EQ(plugin.host().suitesHeld(), 0);
    EXPECT_EQ(ReadAll(plugin.settingsPath()), settings);
}

TEST(Lifecycle, LoadedAgainItGoesOnWhereItWas) {
    PluginHost plugin;
    ASSERT_EQ(plugin.start(), kNoErr);
    const PluginGlobals* block = gGlobals;
    for (int round = 0; round < 3; ++round) {
        plugin.prefs().flScFix = static_cast<std::int16_t>(round + 2);
        ASSERT_EQ(plugin.host().unload(), kNoErr);
        EXPECT_EQ(plugin.host().suitesHeld(), 0);
        ASSERT_EQ(plugin.host().reload(), kNoErr);
        ASSERT_EQ(gGlobals, block);
        EXPECT_EQ(plugin.prefs().flScFix, round + 2);
        SendEverything(plugin);
        EXPECT_EQ(plugin.host().panels().size(), 1U);
        EXPECT_EQ(plugin.host().suitesHeld(), 0);
    }
    EXPECT_EQ(plugin.stop(), kNoErr);
    EXPECT_EQ(gGlobals, nullptr);
    EXPECT_EQ(plugin.host().suitesHeld(), 0);
}

TEST(Lifecycle, SettingsAreWrittenOnceAtTheEnd) {
    PluginHost plugin;
    ASSERT_EQ(plugin.start(), kNoErr);
    ASSERT_TRUE(fs::remove(plugin.settingsPath()));
    SendEverything(plugin);
    plugin.prefs().flScFix = 4;
    ASSERT_EQ(plugin.host().unload(), kNoErr);
    ASSERT_EQ(plugin.host().reload(), kNoErr);
    EXPECT_FALSE(fs::exists(plugin.settingsPath())) << "only the shutdown writes";
    EXPECT_EQ(plugin.stop(), kNoErr);
    const std::string text = ReadAll(plugin.settingsPath());
    const std::size_t first = text.find("flScFix = 4");
    ASSERT_NE(first, std::string::npos);
    EXPECT_EQ(text.find("flScFix", first + 1), std::string::npos);
    ASSERT_TRUE(fs::remove(plugin.settingsPath()));
    EXPECT_EQ(plugin.host().notify(kApplicationStartedNotifier), kNoErr);
    EXPECT_FALSE(fs::exists(plugin.settingsPath()));
}

}  // namespace
}  // namespace quorvel::tests

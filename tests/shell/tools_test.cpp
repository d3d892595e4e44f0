// The tool set as the host's palette sees it, and what the events of a tool leave in the record.
#include "plugin/shell/tools.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "plugin/settings/prefs_file.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/services.h"
#include "tests/support/drafting_table.h"

namespace quorvel::tests {
namespace {

PluginHostOptions with(const char* language, const char* oldMode = "0") {
    PluginHostOptions options;
    options.language = language;
    options.settings = {{"oldmode", oldMode}};
    return options;
}

class Tools : public testing::Test {
  protected:
    // An event of a tool that is none of ours, unless the test names one: the record alone changes.
    AIErr send(const char* selector) { return plugin.host().send(kCallerTool, selector, &message.d); }

    DraftingTable plugin{with("ENGLISH")};
    PluginGlobals& globals = plugin.globals();
    AIEvent event{kAltModifier};
    AIToolMessage message = [this] {
        AIToolMessage made;
        made.event = &event;
        made.cursor = {3, 4};
        return made;
    }();
};

TEST_F(Tools, ThePaletteHasItsSlotsInOneGroup) {
    const std::vector<host::ToolRecord>& tools = plugin.host().tools();
    ASSERT_EQ(tools.size(), 19U);
    EXPECT_EQ(tools[2].title, "Curve Dimension Tool");
    EXPECT_EQ(tools[8].title, "Angle Tool");
    EXPECT_EQ(tools[18].title, "Schedule Tool [top + bottom]");
    std::vector<int> slotSizes;
    int opener = 0;
    for (const host::ToolRecord& tool : tools) {
        EXPECT_EQ(tool.group, tools[0].number);
        EXPECT_EQ(tool.darkIconId, tool.iconId + 100);
        EXPECT_EQ(tool.tooltip, tool.title);
        if (tool.toolset == tool.number) {
            opener = tool.number;
            slotSizes.push_back(0);
        }
        ASSERT_FALSE(slotSizes.empty());
        EXPECT_EQ(tool.toolset, opener);
        ++slotSizes.back();
    }
    EXPECT_EQ(slotSizes, (std::vector<int>{3, 2, 3, 1, 1, 3, 4, 2}));
    EXPECT_TRUE(tools[15].iconId == 16290 && tools[16].iconId == 16290);
    EXPECT_EQ(globals.toolHandles[kCurveTool], tools[2].handle);
    EXPECT_EQ(globals.toolHandles[kRadiusSurfaceTool], nullptr);
    EXPECT_EQ(globals.toolHandles[kDiameterSurfaceTool], nullptr);
}

TEST(OldPalette, IsEnglishOnly) {
    for (const char* language : {"ENGLISH", "JAPANESE", "KOREAN"}) {
        PluginHost plugin(with(language, "1"));
        ASSERT_EQ(plugin.start(), kNoErr);
        const bool isOld = std::string(language) == "ENGLISH";
        EXPECT_EQ(plugin.host().tools().size(), isOld ? 13U : 19U);
        for (int kind = kCommentTool; kind <= kScheduleTopTool; ++kind)
            EXPECT_EQ(plugin.globals().toolHandles[kind] == nullptr, isOld) << kind;
    }
}

TEST_F(Tools, SelectClearsTheRunAndNotesTheMode) {
    const PrefsRecord& prefs = globals.prefs;
    const auto select = [&](ToolKind kind) {
        globals.liveState.toolStep = 2;
        globals.hitKind = kSnapAnchor;
        message.tool = globals.toolHandles[kind];
        EXPECT_EQ(send(kSelectorSelect), kNoErr);
        EXPECT_EQ(globals.liveState.toolStep, 0);
        EXPECT_EQ(globals.drawnState.toolStep, -1);
        EXPECT_EQ(globals.hitKind, kSnapNothing);
    };
    const struct {
        ToolKind kind;
        std::int16_t PrefsRecord::*mode;
        int value;
    } rows[] = {{kCurveTool, &PrefsRecord::flDistanceMode, 3},
                {kFilletReplaceTool, &PrefsRecord::flFiletMode, 2},
                {kArcThreePointsTool, &PrefsRecord::flArcMode, 1},
                {kAreaCommentTool, &PrefsRecord::flMarkMode, 3},
                {kScheduleTopTool, &PrefsRecord::flZukiwakuMode, 1}};
    for (const auto& row : rows) {
        select(row.kind);
        EXPECT_EQ(prefs.*row.mode, row.value) << row.kind;
    }
    const std::string before = ComposePrefsText(&globals, true);
    select(kRadiusTool);
    select(kDiameterTool);
    message.tool = nullptr;
    EXPECT_EQ(send(kSelectorSelect), kNoErr);
    EXPECT_EQ(ComposePrefsText(&globals, true), before);
}

TEST_F(Tools, EventsTakeTheCursorOnlyWhenItMoves) {
    EXPECT_EQ(send(kSelectorTrackCursor), kNoErr);
    EXPECT_EQ(globals.liveState.cursorPoint.h, 3);
    EXPECT_EQ(globals.liveState.cursorModifiers, kAltModifier);
    event.modifiers = kShiftModifier;
    globals.liveState.cursorPoint = {5, 5};  // as a snap would
    EXPECT_EQ(send(kSelectorTrackCursor), kNoErr);
    EXPECT_EQ(globals.liveState.cursorPoint.h, 5);
    EXPECT_EQ(globals.liveState.cursorModifiers, kAltModifier) << "even when a key has changed";
    message.cursor = {9, 9};
    globals.pressWords[1] = 7;
    EXPECT_EQ(send(kSelectorMouseDown), kNoErr);
    EXPECT_EQ(send(kSelectorMouseUp), kNoErr);
    EXPECT_EQ(globals.liveState.cursorPoint.h, 5);
    EXPECT_EQ(globals.pressWords[1], 0);
}

TEST_F(Tools, CursorsTellWhatIsUnderThem) {
    plugin.drawLines({{100, 100}, {300, 100}}, false);
    plugin.drawCircle({600, 600}, 50);
    const RealPoint anchor{100, 100}, onLine{200, 100.5F}, onArc{635.35534F, 635.35534F}, paper{800, 300};
    const struct {
        const char* tool;
        RealPoint at;
        std::int32_t cursor;
    } rows[] = {{"Straight Dimension Tool", anchor, 16105},
                {"Curve Dimension Tool", onLine, 16107},
                {"Radius Tool", onArc, 16104},
                {"Diameter Tool", onArc, 16104},
                {"Angle Tool", onLine, 16104},
                {"Fillet Tool [Replace]", onLine, 16104},
                {"Fillet Tool [Replace]", paper, 16102},
                {"Slant Tool", anchor, 16105},
                {"Arc Tool [Three Points]", anchor, 16105},
                {"Oblique Dimension Tool", paper, 16104}};
    for (const auto& row : rows) {
        plugin.choose(row.tool);
        plugin.track({50, 700});
        plugin.track(row.at);
        EXPECT_EQ(plugin.user().lastCursor(), row.cursor) << row.tool << " " << row.at.h;
    }
}

TEST_F(Tools, ACommittedCursorIsTheEndPoint) {
    globals.liveState.toolStep = 2;
    globals.liveState.cursorPoint = {3, 4};
    globals.liveState.cursorModifiers = kAltModifier;
    CommitCursor(&globals);
    EXPECT_EQ(globals.liveState.endPoint.v, 4);
    EXPECT_EQ(globals.liveState.cursorPoint.v, 0);
    EXPECT_EQ(globals.liveState.cursorModifiers, 0);
    EXPECT_EQ(globals.liveState.toolStep, 0);
}

}  // namespace
}  // namespace quorvel::tests

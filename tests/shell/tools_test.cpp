// The tool set as the host's palette sees it, and what the events of a tool leave in the record.
#include "plugin/shell/tools.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "hostapi/suites.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/services.h"
#include "plugin/shell/suites.h"

namespace quorvel {
namespace {

struct AddedTool {
    std::string name;
    AIAddToolData data;
};

struct Palette {
    std::vector<AddedTool> tools;
    int failAt = -1;
    std::vector<std::string> strings;
    std::vector<std::string> calls;
};
Palette* sPalette = nullptr;

constexpr std::int32_t kFirstNumber = 100;

AIToolHandle HandleOf(std::size_t place) { return reinterpret_cast<AIToolHandle>(0x1000 + place); }

AIErr FakeAddTool(SPPluginRef, const char* name, const AIAddToolData* data, std::int32_t options, AIToolHandle* tool) {
    if (static_cast<int>(sPalette->tools.size()) == sPalette->failAt) return kBadParameterErr;
    EXPECT_EQ(options, 3);
    EXPECT_STREQ(data->title, name);
    EXPECT_STREQ(data->tooltip, name);
    *tool = HandleOf(sPalette->tools.size());
    sPalette->tools.push_back({name, *data});
    return kNoErr;
}

AIErr FakeNumber(const char* name, std::int32_t* number) {
    for (std::size_t i = 0; i < sPalette->tools.size(); ++i) {
        if (sPalette->tools[i].name != name) continue;
        *number = kFirstNumber + static_cast<std::int32_t>(i);
        return kNoErr;
    }
    return kBadParameterErr;
}

AIErr FakeTitle(AIToolHandle tool, char* title, std::int32_t size) {
    const std::size_t place = reinterpret_cast<std::size_t>(tool) - 0x1000;
    std::snprintf(title, static_cast<std::size_t>(size), "%s", sPalette->tools[place].name.c_str());
    return kNoErr;
}

AIErr FakeUndoChanges() {
    sPalette->calls.push_back("drop");
    return kNoErr;
}

AIErr FakeSetUndo(AIUnicodeStringRef undo, AIUnicodeStringRef redo) {
    for (const AIUnicodeStringRef string : {undo, redo}) {
        sPalette->calls.push_back(sPalette->strings[reinterpret_cast<std::size_t>(string) - 1]);
    }
    return kNoErr;
}

AIErr FakeString(const char* bytes, std::int32_t size, std::int32_t, AIUnicodeStringRef* string) {
    sPalette->strings.emplace_back(bytes, static_cast<std::size_t>(size));
    *string = reinterpret_cast<AIUnicodeStringRef>(sPalette->strings.size());
    return kNoErr;
}

AIBoolean FakeEqual(const RealPoint* a, const RealPoint* b) { return a->h == b->h && a->v == b->v; }

AIErr NoView(std::int32_t, AIDocumentViewHandle* view) {
    *view = nullptr;
    return kNoErr;
}

class ToolsTest : public testing::Test {
  protected:
    void SetUp() override {
        tool_.AddTool = FakeAddTool;
        tool_.GetToolNumberFromName = FakeNumber;
        tool_.GetToolTitle = FakeTitle;
        math_.AIRealPointsEqual = FakeEqual;
        view_.GetNthDocumentView = NoView;
        undo_.UndoChanges = FakeUndoChanges;
        undo_.SetUndoTextUS = FakeSetUndo;
        strings_.FromCodePage = FakeString;
        sAITool = &tool_;
        sAIRealMath = &math_;
        sAIDocumentView = &view_;
        sAIUndo = &undo_;
        sAIUnicodeString = &strings_;
        sPalette = &palette_;
        StoreDefaults(&globals_);
        ContextBracket(&globals_);
        globals_.language = kEnglish;
        gGlobals = &globals_;
    }
    void TearDown() override {
        sAITool = nullptr;
        sAIRealMath = nullptr;
        sAIDocumentView = nullptr;
        sAIUndo = nullptr;
        sAIUnicodeString = nullptr;
        gGlobals = nullptr;
    }

    AIToolSuite tool_{};
    AIRealMathSuite math_{};
    AIDocumentViewSuite view_{};
    AIUndoSuite undo_{};
    AIUnicodeStringSuite strings_{};
    Palette palette_;
    std::unique_ptr<PluginGlobals> owned_ = std::make_unique<PluginGlobals>();
    PluginGlobals& globals_ = *owned_;
};

TEST_F(ToolsTest, ThePaletteHasItsSlotsInOneGroup) {
    ASSERT_EQ(AddTools(), kNoErr);
    ASSERT_EQ(palette_.tools.size(), 19U);
    EXPECT_EQ(palette_.tools[2].name, "Curve Dimension Tool");
    EXPECT_EQ(palette_.tools[8].name, "Angle Tool");
    EXPECT_EQ(palette_.tools[18].name, "Schedule Tool [top + bottom]");

    std::vector<int> slotSizes;
    std::int32_t opener = 0;
    for (std::size_t i = 0; i < palette_.tools.size(); ++i) {
        const AIAddToolData& data = palette_.tools[i].data;
        EXPECT_EQ(data.sameGroupAs, i == 0 ? kNoTool : kFirstNumber);
        EXPECT_EQ(data.darkIconId, data.iconId + 100);
        if (data.sameToolsetAs == kNoTool) {
            opener = kFirstNumber + static_cast<std::int32_t>(i);
            slotSizes.push_back(1);
        } else {
            EXPECT_EQ(data.sameToolsetAs, opener);
            ++slotSizes.back();
        }
    }
    EXPECT_EQ(slotSizes, (std::vector<int>{3, 2, 3, 1, 1, 3, 4, 2}));
    EXPECT_EQ(palette_.tools[15].data.iconId, 16290);
    EXPECT_EQ(palette_.tools[16].data.iconId, 16290);
    EXPECT_EQ(globals_.toolHandles[kCurveTool], HandleOf(2));
    EXPECT_EQ(globals_.toolHandles[kRadiusSurfaceTool], nullptr);
    EXPECT_EQ(globals_.toolHandles[kDiameterSurfaceTool], nullptr);
}

TEST_F(ToolsTest, TheOldPaletteIsEnglishOnly) {
    globals_.oldmode = 1;
    globals_.toolHandles[kScheduleTopTool] = HandleOf(40);
    ASSERT_EQ(AddTools(), kNoErr);
    EXPECT_EQ(palette_.tools.size(), 13U);
    for (int kind = kCommentTool; kind <= kScheduleTopTool; ++kind) EXPECT_EQ(globals_.toolHandles[kind], nullptr);
    for (const LanguageWord language : {kJapanese, kKorean}) {
        palette_ = Palette{};
        globals_.language = language;
        ASSERT_EQ(AddTools(), kNoErr);
        EXPECT_EQ(palette_.tools.size(), 19U);
    }
}

TEST_F(ToolsTest, AToolThatCannotBeAddedEndsIt) {
    palette_.failAt = 4;
    EXPECT_EQ(AddTools(), kBadParameterErr);
    EXPECT_EQ(palette_.tools.size(), 4U);
    EXPECT_NE(globals_.toolHandles[kRadiusTool], nullptr);
    EXPECT_EQ(globals_.toolHandles[kDiameterTool], nullptr);
}

TEST_F(ToolsTest, SelectClearsTheRunAndNotesTheMode) {
    ASSERT_EQ(AddTools(), kNoErr);
    const PrefsRecord& prefs = globals_.prefs;
    AIToolMessage message;
    const auto select = [&](ToolKind kind) {
        globals_.liveState.toolStep = 2;
        globals_.hitKind = kSnapAnchor;
        message.tool = globals_.toolHandles[kind];
        EXPECT_EQ(ToolSelect(&message), kNoErr);
        EXPECT_EQ(globals_.liveState.toolStep, 0);
        EXPECT_EQ(globals_.drawnState.toolStep, -1);
        EXPECT_EQ(globals_.hitKind, kSnapNothing);
    };
    select(kCurveTool);
    EXPECT_EQ(prefs.flDistanceMode, 3);
    select(kFilletReplaceTool);
    EXPECT_EQ(prefs.flFiletMode, 2);
    select(kArcThreePointsTool);
    EXPECT_EQ(prefs.flArcMode, 1);
    select(kAreaCommentTool);
    EXPECT_EQ(prefs.flMarkMode, 3);
    select(kScheduleTopTool);
    EXPECT_EQ(prefs.flZukiwakuMode, 1);
    const std::string before = ComposePrefsText(&globals_, true);
    select(kRadiusTool);
    select(kDiameterTool);
    message.tool = HandleOf(77);
    EXPECT_EQ(ToolSelect(&message), kNoErr);
    EXPECT_EQ(ComposePrefsText(&globals_, true), before);
}

TEST_F(ToolsTest, EventsTakeTheCursorOnlyWhenItMoves) {
    AIEvent event{kAltModifier};
    AIToolMessage message;
    message.tool = HandleOf(77);  // no tool of ours: the record alone changes
    message.cursor = {3, 4};
    message.event = &event;
    EXPECT_EQ(ToolTrack(&message), kNoErr);
    EXPECT_EQ(globals_.liveState.cursorPoint.h, 3);
    EXPECT_EQ(globals_.liveState.cursorModifiers, kAltModifier);
    event.modifiers = kShiftModifier;
    globals_.liveState.cursorPoint = {5, 5};  // as a snap would
    EXPECT_EQ(ToolTrack(&message), kNoErr);
    EXPECT_EQ(globals_.liveState.cursorPoint.h, 5);
    EXPECT_EQ(globals_.liveState.cursorModifiers, kAltModifier) << "even when a key has changed";
    message.cursor = {9, 9};
    globals_.pressWords[1] = 7;
    EXPECT_EQ(ToolDown(&message), kNoErr);
    EXPECT_EQ(ToolUp(&message), kNoErr);
    EXPECT_EQ(globals_.liveState.cursorPoint.h, 5);
    EXPECT_EQ(globals_.pressWords[1], 0);
}

TEST_F(ToolsTest, UndoIsNamedAfterTheTool) {
    ASSERT_EQ(AddTools(), kNoErr);
    NameUndoForTool(globals_.toolHandles[kSlantTool]);
    EXPECT_EQ(palette_.calls, (std::vector<std::string>{"drop", "Undo Slant Tool", "Redo Slant Tool"}));
    palette_ = Palette{};
    globals_.language = kJapanese;
    ASSERT_EQ(AddTools(), kNoErr);
    NameUndoForTool(globals_.toolHandles[kAngleTool]);
    EXPECT_EQ(palette_.calls,
              (std::vector<std::string>{"drop", ToCodePage("角度の取り消し"), ToCodePage("角度のやり直し")}));
}

TEST_F(ToolsTest, ACommittedCursorIsTheEndPoint) {
    globals_.liveState.toolStep = 2;
    globals_.liveState.cursorPoint = {3, 4};
    globals_.liveState.cursorModifiers = kAltModifier;
    CommitCursor(&globals_);
    EXPECT_EQ(globals_.liveState.endPoint.v, 4);
    EXPECT_EQ(globals_.liveState.cursorPoint.v, 0);
    EXPECT_EQ(globals_.liveState.cursorModifiers, 0);
    EXPECT_EQ(globals_.liveState.toolStep, 0);
}

}  // namespace
}  // namespace quorvel

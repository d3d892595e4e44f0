#include "platform/dialog.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

#include "platform/file.h"
#include "platform/headless/headless.h"
#include "tests/support/errors.h"

namespace quorvel::platform {
namespace {

using Kind = DialogStep::Kind;
using Lines = std::vector<std::string>;

constexpr ControlRow kRows[] = {
    {1, ControlKind::button, "OK", "OK", {}},
    {2, ControlKind::button, "キャンセル", "Cancel", {}},
    {4, ControlKind::label, "半径：", "Radius:", {}},
    {5, ControlKind::edit, "", "", {}},
    {7, ControlKind::list, "", "", {}},
    {8, ControlKind::commandList, "", "", {}},
    {10, ControlKind::editList, "", "", {}},
    {12, ControlKind::checkBox, "単位", "Unit", {}},
    {20, ControlKind::radio, "&C", "&C", {}},
    {21, ControlKind::radio, "&S", "&S", {}},
    {30, ControlKind::toggle, "0", "0", {}},
};
constexpr DialogTemplate kDialog = {
    16260, Language::english, "Radius \"R\"", 100, 100, kRows, static_cast<std::int32_t>(std::size(kRows))};

// A dialog's logic as three changeable functions, with a record of what reached it.
struct Logic {
    std::function<void(WindowRef)> opening = [](WindowRef) {};
    std::function<void(WindowRef, std::int32_t)> event = [](WindowRef, std::int32_t) {};
    std::vector<std::int32_t> events, commands;
    std::int32_t disabledRow = -1;
    bool closes = true;  // on controls 1 and 2

    std::int32_t run(std::int32_t id = 16260) {
        DialogTemplate dialog = kDialog;
        dialog.id = id;
        return RunDialog(dialog, functions(), this);
    }
    static Logic& of(void* context) { return *static_cast<Logic*>(context); }
    static WindowLogic functions() {
        WindowLogic logic;
        logic.opening = [](WindowRef w, void* c) { of(c).opening(w); };
        logic.event = [](WindowRef w, std::int32_t control, void* c) {
            of(c).events.push_back(control);
            of(c).event(w, control);
            if (of(c).closes && control <= 2) CloseWindow(w, control);
        };
        logic.command = [](WindowRef w, std::int32_t number, void* c) {
            of(c).commands.push_back(number);
            if (number == 1) PostCommand(w, 3);
        };
        logic.rowDisabled = [](WindowRef, std::int32_t, std::int32_t row, void* c) { return row == of(c).disabledRow; };
        return logic;
    }
};

std::string TextOf(WindowRef window, std::int32_t control) {
    char text[64];
    GetControlText(window, control, text, sizeof text);
    return text;
}

class DialogTest : public testing::Test {
  protected:
    void SetUp() override { installBackend(&user_); }
    void TearDown() override { installBackend(nullptr); }

    HeadlessBackend user_;
    Logic logic_;
};

TEST_F(DialogTest, AReplyIsPlayedStepByStepThroughTheCodePage) {
    std::string read;
    logic_.opening = [](WindowRef w) {
        SetControlText(w, 5, "\x95\x5C");
        for (const char* row : {"9", "10", "12"}) AddRow(w, 10, row);
        InsertRow(w, 10, 0, "8");
        SelectRow(w, 10, 3);
    };
    logic_.event = [&](WindowRef w, std::int32_t control) {
        if (control == 5) read = TextOf(w, 5);
    };
    user_.queueDialog({16260,
                       {{Kind::expectText, 5, "表", 0},
                        {Kind::expectText, 4, "Radius:", 0},
                        {Kind::expectText, 10, "12", 0},
                        {Kind::setText, 5, "ソ-가", 0},
                        {Kind::selectRow, 10, {}, 0},
                        {Kind::expectText, 10, "8", 0},
                        {Kind::setText, 10, "11.5", 0},
                        {Kind::check, 12, {}, 0},
                        {Kind::expectText, 12, "on", 0},
                        {Kind::press, 12, {}, 0},
                        {Kind::expectText, 12, "off", 0},
                        {Kind::press, 1, {}, 0}}});
    EXPECT_EQ(logic_.run(), 1);
    EXPECT_EQ(read, "\x83\x5C-?");
    EXPECT_EQ(logic_.events, (std::vector<std::int32_t>{5, 10, 10, 12, 12, 1})) << "the logic's own changes cause none";
    EXPECT_EQ(said(user_.takeFaults()), "");
    EXPECT_EQ(user_.takeTranscript(), Lines{"dialog 16260 \"Radius \\\"R\\\"\""});
    EXPECT_FALSE(user_.hasRepliesLeft());
}

TEST_F(DialogTest, AReadStopsAtItsByteLimitAndUnknownControlsAreEmpty) {
    logic_.opening = [](WindowRef w) {
        SetControlText(w, 5, "\x95\x5C\x95\x5C\x95\x5C");
        char text[4] = "xyz";
        EXPECT_EQ(GetControlText(w, 5, text, sizeof text), 3);
        EXPECT_STREQ(text, "\x95\x5C\x95") << "bytes count, not characters";
        EXPECT_EQ(GetControlText(w, 99, text, sizeof text), 0);
        EXPECT_STREQ(text, "");
        EXPECT_EQ(GetSelectedRow(w, 7), -1);
        for (const char* row : {"a", "b", "c"}) AddRow(w, 7, row);
        SelectRow(w, 7, 1);
        RemoveRow(w, 7, 0);
        EXPECT_EQ(GetSelectedRow(w, 7), 0) << "the selection stays on its row";
        EXPECT_EQ(TextOf(w, 7), "b");
        RemoveRow(w, 7, 0);
        EXPECT_EQ(GetSelectedRow(w, 7), -1);
        EXPECT_EQ(GetRowText(w, 7, 0, text, sizeof text), 1);
        ClearRows(w, 7);
        EXPECT_EQ(CountRows(w, 7), 0);
    };
    user_.queueDialog({16260, {{Kind::press, 2, {}, 0}}});
    EXPECT_EQ(logic_.run(), 2);
}

TEST_F(DialogTest, ARefusedOkLeavesTheDialogOpenWithFocusAndBeep) {
    logic_.closes = false;
    logic_.event = [](WindowRef w, std::int32_t control) {
        if (control == 2 || TextOf(w, 5) == "3mm") return CloseWindow(w, control);
        FocusSelectingAll(w, 5);
        MessageBeep(0);
    };
    user_.queueDialog({16260, {{Kind::press, 1, {}, 0}, {Kind::press, 2, {}, 0}}});
    EXPECT_EQ(logic_.run(), 2);
    EXPECT_EQ(user_.takeTranscript(), (Lines{"dialog 16260 \"Radius \\\"R\\\"\"", "focus 5", "beep"}));
    EXPECT_EQ(user_.lastFocus(), 5);
    user_.queueDialog({16260, {{Kind::setText, 5, "3mm", 0}}});
    EXPECT_EQ(logic_.run(), 5);
    EXPECT_EQ(user_.lastFocus(), 0);
    EXPECT_EQ(said(user_.takeFaults()), "");
}

TEST_F(DialogTest, RadiosClearEachOtherAndDisabledRowsCannotBeChosen) {
    logic_.opening = [](WindowRef w) {
        for (const char* row : {"Untitled", "-", "Save"}) AddRow(w, 8, row);
        SelectRow(w, 8, 0);
        SetChecked(w, 20, true);
    };
    logic_.disabledRow = 2;
    user_.queueDialog({16260,
                       {{Kind::press, 21, {}, 0},
                        {Kind::expectText, 20, "off", 0},
                        {Kind::check, 20, {}, 0},
                        {Kind::expectText, 21, "off", 0},
                        {Kind::selectRow, 8, {}, 2},
                        {Kind::expectText, 8, "Untitled", 0},
                        {Kind::selectRow, 8, {}, 1},
                        {Kind::press, 30, {}, 0},
                        {Kind::expectText, 30, "off", 0},
                        {Kind::press, 1, {}, 0}}});
    EXPECT_EQ(logic_.run(), 1);
    EXPECT_EQ(logic_.events, (std::vector<std::int32_t>{21, 20, 8, 30, 1}));
    EXPECT_EQ(said(user_.takeFaults()), "");
}

TEST_F(DialogTest, WhatAUserCouldNotDoIsAFaultAndTheDialogIsLeft) {
    logic_.opening = [](WindowRef w) {
        EnableControl(w, 5, false);
        ShowControl(w, 10, false);
        AddRow(w, 7, "only");
    };
    const struct {
        DialogStep step;
        const char* fault;
    } cases[] = {
        {{Kind::press, 99, {}, 0}, "dialog 16260: control 99 is not there"},
        {{Kind::setText, 5, "x", 0}, "dialog 16260: control 5 is disabled"},
        {{Kind::setText, 10, "x", 0}, "dialog 16260: control 10 is hidden"},
        {{Kind::press, 4, {}, 0}, "dialog 16260: control 4 cannot be pressed"},
        {{Kind::setText, 7, "x", 0}, "dialog 16260: control 7 takes no text"},
        {{Kind::selectRow, 7, {}, 1}, "dialog 16260: control 7 has no row 1"},
        {{Kind::uncheck, 20, {}, 0}, "dialog 16260: control 20 cannot be switched off"},
        {{Kind::expectText, 5, "x", 0}, "dialog 16260: control 5: expected \"x\", found \"\""},
    };
    for (const auto& c : cases) {
        user_.queueDialog({16260, {c.step}});
        logic_.events.clear();
        EXPECT_EQ(logic_.run(), 2);
        EXPECT_EQ(logic_.events, std::vector<std::int32_t>{2}) << "left by Esc";
        EXPECT_EQ(said(user_.takeFaults()), c.fault);
    }
    user_.queueDialog({16260, {{Kind::press, 2, {}, 0}, {Kind::press, 1, {}, 0}}});
    logic_.run();
    EXPECT_EQ(said(user_.takeFaults()), "dialog 16260 was closed before control 1");
    logic_.closes = false;
    user_.queueDialog({16260, {}});
    EXPECT_EQ(logic_.run(), 2);
    EXPECT_EQ(said(user_.takeFaults()), "dialog 16260 was not closed");
}

TEST_F(DialogTest, AnUnexpectedDialogQuestionOrFileIsAFaultAndIsRefused) {
    EXPECT_EQ(logic_.run(), 2);
    EXPECT_EQ(said(user_.takeFaults()), "unexpected dialog 16260");
    user_.queueDialog({16258, {{Kind::press, 1, {}, 0}}});
    EXPECT_EQ(logic_.run(), 2);
    EXPECT_EQ(said(user_.takeFaults()), "unexpected dialog 16260, the next reply is for dialog 16258");
    EXPECT_EQ(logic_.run(16258), 1) << "the reply waits for its own dialog";
    user_.takeTranscript();

    EXPECT_FALSE(ShowMessageBox("a\rb", "", MessageButtons::okCancel, MessageIcon::question));
    std::string path = "kept";
    EXPECT_FALSE(AskOpenFile("*.csv", "Untitled.csv", &path));
    EXPECT_EQ(path, "kept");
    EXPECT_EQ(said(user_.takeFaults()), "unexpected question \"a\\rb\"; unexpected file dialog");
    EXPECT_EQ(said(user_.takeFaults()), "");

    user_.queueAnswer(true);
    user_.queueAnswer(true);
    user_.queueAnswer(false);
    user_.queueFile("/tmp/表.csv");
    user_.queueFileRefusal();
    EXPECT_TRUE(ShowMessageBox("\x95\x5C", "", MessageButtons::okCancel, MessageIcon::question));
    EXPECT_TRUE(ShowMessageBox("done", "", MessageButtons::ok, MessageIcon::information));
    EXPECT_FALSE(user_.askQuestion("All?"));
    user_.showAlert("Error");
    EXPECT_TRUE(AskSaveFile("*.csv", "Untitled.csv", &path));
    EXPECT_EQ(path, "/tmp/表.csv");
    EXPECT_FALSE(AskSaveFile("*.csv", "Untitled.csv", &path));
    EXPECT_EQ(user_.takeTranscript(),
              (Lines{"question \"a\\rb\" cancel", "file cancel", "question \"表\" ok", "message \"done\" ok",
                     "question \"All?\" no", "alert \"Error\"", "file /tmp/表.csv", "file cancel"}));
    EXPECT_EQ(said(user_.takeFaults()), "");
}

TEST_F(DialogTest, PostedCommandsComeWhenTheEventHasEndedAlsoRoundANestedDialog) {
    Logic inner;
    std::vector<std::int32_t> afterInner;
    logic_.event = [&](WindowRef w, std::int32_t control) {
        if (control != 12) return;
        PostCommand(w, 1);
        PostCommand(w, 2);
        EXPECT_EQ(inner.run(16252), 1);
        EXPECT_TRUE(logic_.commands.empty()) << "the outer event is still running";
    };
    user_.queueDialog({16260, {{Kind::check, 12, {}, 0}, {Kind::press, 1, {}, 0}}});
    user_.queueDialog({16252, {{Kind::setText, 5, "Custom-1", 0}, {Kind::press, 1, {}, 0}}});
    EXPECT_EQ(logic_.run(), 1);
    EXPECT_EQ(logic_.commands, (std::vector<std::int32_t>{1, 2, 3})) << "a command may post another";
    EXPECT_EQ(inner.events, (std::vector<std::int32_t>{5, 1}));
    EXPECT_EQ(said(user_.takeFaults()), "");

    Logic closing;
    closing.event = [](WindowRef w, std::int32_t) { PostCommand(w, 7); };
    user_.queueDialog({16260, {{Kind::press, 1, {}, 0}}});
    closing.run();
    EXPECT_TRUE(closing.commands.empty()) << "a closed dialog takes no command";
}

TEST_F(DialogTest, ThePanelIsAWindowOfTheSameKind) {
    void* place = user_.createPanelWindow();
    WindowRef panel = nullptr;
    logic_.opening = [](WindowRef w) { SetChecked(w, 30, true); };
    logic_.event = [](WindowRef w, std::int32_t control) {
        if (control == 30) SetChecked(w, 30, !IsChecked(w, 30));
    };
    EXPECT_FALSE(user_.panelPress(30));
    EXPECT_FALSE(BuildPanel(&panel, kRows, 11, Language::japanese, Logic::functions(), &logic_, &panel));
    ASSERT_TRUE(BuildPanel(place, kRows, 11, Language::japanese, Logic::functions(), &logic_, &panel));
    bool on = false;
    EXPECT_TRUE(user_.panelToggled(30, &on));
    EXPECT_TRUE(on);
    EXPECT_TRUE(user_.panelPress(30));
    EXPECT_TRUE(user_.panelToggled(30, &on));
    EXPECT_FALSE(on);
    EXPECT_TRUE(user_.panelType(10, "5 mm"));
    std::string text;
    EXPECT_TRUE(user_.panelText(10, &text));
    EXPECT_EQ(text, "5 mm");
    EXPECT_FALSE(user_.panelPress(99));
    EXPECT_FALSE(user_.panelText(99, &text));
    PostCommand(panel, 2);
    EXPECT_EQ(logic_.commands, std::vector<std::int32_t>{2}) << "at once while nothing runs";
    DestroyPanel(panel);
    EXPECT_FALSE(user_.panelPress(30));
    SetControlText(panel, 10, "gone");
    user_.destroyPanelWindow(place);
}

TEST_F(DialogTest, CursorsAreToldWhenTheyChange) {
    EXPECT_EQ(LoadCursorResource(nullptr, 16100), nullptr);
    EXPECT_EQ(LoadCursorResource(nullptr, 16111), nullptr);
    for (const std::int32_t id : {16101, 16101, 16110, 16101}) SetCursor(LoadCursorResource(nullptr, id));
    SetCursor(nullptr);
    EXPECT_EQ(user_.takeTranscript(), (Lines{"cursor 16101", "cursor 16110", "cursor 16101"}));
    EXPECT_EQ(user_.lastCursor(), 16101);
}

TEST_F(DialogTest, TheNamedAllocationFailsOnceAndMemoryIsZeroed) {
    user_.failAllocation(2);
    auto* first = static_cast<unsigned char*>(AllocateZeroed(4096));
    ASSERT_NE(first, nullptr);
    for (int i = 0; i < 4096; ++i) ASSERT_EQ(first[i], 0);
    EXPECT_EQ(AllocateZeroed(16), nullptr);
    EXPECT_EQ(LastError(), 8u);
    EXPECT_NE(AllocateZeroed(16), nullptr);  // left for the backend to free
    FreeZeroed(first);
    EXPECT_EQ(said(user_.takeFaults()), "");
    FreeZeroed(first);
    EXPECT_NE(said(user_.takeFaults()), "");
}

TEST(WithoutBackend, NothingHappens) {
    installBackend(nullptr);
    char text[8] = "abc";
    std::string path = "kept";
    EXPECT_EQ(RunDialog(kDialog, {}, nullptr), 0);
    EXPECT_EQ(GetTopWindow(nullptr), nullptr);
    EXPECT_EQ(BeginSurface(nullptr), nullptr);
    EXPECT_EQ(GetControlText(nullptr, 1, text, 8), 0);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(GetSelectedRow(nullptr, 1), -1);
    EXPECT_FALSE(ShowMessageBox("", "", MessageButtons::ok, MessageIcon::none));
    EXPECT_FALSE(AskOpenFile("", "", &path));
    EXPECT_EQ(AllocateZeroed(1), nullptr);
    EXPECT_EQ(DocumentsFolder(), "");
    MessageBeep(0);
}

}  // namespace
}  // namespace quorvel::platform

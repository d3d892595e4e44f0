// One message is one transaction: what becomes a step, under which name, what is told afterwards, and what a failing
// plug-in leaves behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <stdexcept>

#include "tests/host/fake_plugin.h"
#include "tests/support/errors.h"

namespace quorvel::host {
namespace {

class Messages : public testing::Test {
  protected:
    Messages() {
        host.attachPlugin(FakePlugin::main, nullptr);
        host.newDocument(400, 300);
        host.callbacks.stepMade = [this](const std::string& name) { steps.push_back(name); };
    }
    ~Messages() override { FakePlugin::handler = nullptr; }

    AIErr sendTest(const std::string& selector = "Test") {
        SPMessageData message;
        return host.send(kCallerInterface, selector.c_str(), &message);
    }
    // Adds a notifier inside the message that is running.
    static void subscribe(const SPMessageData* message, const char* type) {
        AINotifierHandle notifier = nullptr;
        suiteOf<AINotifierSuite>().AddNotifier(message->self, "test", type, &notifier);
    }

    Host host;
    std::vector<std::string> steps;
};

TEST_F(Messages, ChangesBecomeOneStepUnderTheNameGiven) {
    FakePlugin::within(host, [](SPMessageData*) {
        newPath({{0, 0}, {1, 1}});
        newPath({{0, 0}, {2, 2}});
        undoing().SetUndoTextUS(hostText("Undo 寸法"), hostText("Redo 寸法"));
    });
    EXPECT_EQ(steps, std::vector<std::string>{"Undo 寸法"});
    EXPECT_EQ(host.lastUndoName(), "Undo 寸法");
    EXPECT_EQ(*host.document()->undoName(), "Undo 寸法");
    EXPECT_TRUE(host.undo());
    EXPECT_EQ(host.document()->artCount(), 0u);
    EXPECT_EQ(*host.document()->redoName(), "Redo 寸法");
    EXPECT_TRUE(host.redo());
    EXPECT_EQ(host.document()->artCount(), 2u);

    FakePlugin::within(host, [](SPMessageData*) { newPath(); });
    EXPECT_EQ(steps.back(), "Undo");  // nothing of the message before
    EXPECT_EQ(host.lastUndoName(), "");

    FakePlugin::within(host, [](SPMessageData*) { undoing().SetUndoTextUS(hostText("Undo x"), hostText("Redo x")); });
    EXPECT_EQ(steps.size(), 2u);  // named, but nothing has changed
    EXPECT_EQ(host.lastUndoName(), "Undo x");
}

TEST_F(Messages, UndoChangesGoesBackToTheBeginningOfTheMessage) {
    FakePlugin::within(host, [](SPMessageData*) { newPath(); });
    FakePlugin::within(host, [this](SPMessageData*) {
        newPath();
        EXPECT_EQ(undoing().UndoChanges(), kNoErr);
        EXPECT_EQ(host.document()->artCount(), 1u);
        newPath();
        newPath();
    });
    EXPECT_EQ(host.document()->artCount(), 3u);
    EXPECT_TRUE(host.undo());
    EXPECT_EQ(host.document()->artCount(), 1u);
    EXPECT_NE(undoing().UndoChanges(), kNoErr);  // no message is running
}

TEST_F(Messages, NestedMessagesJoinTheOuterOne) {
    const auto& manager = suiteOf<AIActionManagerSuite>();
    FakePlugin::within(host, [&](SPMessageData* message) {
        AIActionParamValueRef parameters = nullptr;
        manager.NewActionParamValue(&parameters);
        EXPECT_EQ(manager.RegisterActionEvent(message->self, "act", "Act", 1, parameters), kNoErr);
        EXPECT_EQ(manager.DeleteActionParamValue(parameters), kNoErr);
        EXPECT_EQ(manager.DeleteActionParamValue(parameters), kStaleHandleErr);
    });
    FakePlugin::handler = [&](const std::string& caller, const std::string&, SPMessageData*) {
        newPath();
        if (caller == kCallerAction) {
            undoing().SetUndoTextUS(hostText("Undo act"), hostText("Redo act"));
            return kNoErr;
        }
        const AIUnicodeStringRef outer = hostText("outer");
        EXPECT_EQ(manager.PlayActionEvent("act", 0, nullptr), kNoErr);
        EXPECT_NE(manager.PlayActionEvent("unknown", 0, nullptr), kNoErr);
        const std::uint16_t* units = nullptr;
        std::int32_t count = 0;
        EXPECT_EQ(strings().GetUTF16(outer, &units, &count), kNoErr);  // lives on
        return kNoErr;
    };
    EXPECT_EQ(sendTest(), kNoErr);
    EXPECT_EQ(steps, std::vector<std::string>{"Undo act"});
    EXPECT_TRUE(host.undo());
    EXPECT_EQ(host.document()->artCount(), 0u);
}

TEST_F(Messages, TheGlobalsWordIsKeptBetweenCalls) {
    int block = 0;
    std::vector<void*> seen;
    FakePlugin::handler = [&](const std::string&, const std::string& selector, SPMessageData* message) {
        seen.push_back(message->globals);
        EXPECT_NE(message->self, nullptr);
        if (selector == kSelectorStartup) message->globals = &block;
        if (selector == kSelectorShutdown) message->globals = nullptr;
        return kNoErr;
    };
    host.startup();
    host.unload();
    host.reload();
    host.shutdown();
    sendTest();
    EXPECT_EQ(seen, (std::vector<void*>{nullptr, &block, &block, &block, nullptr}));
}

TEST_F(Messages, NotificationsWaitUntilTheMessageHasReturned) {
    std::string order;
    FakePlugin::handler = [&](const std::string& caller, const std::string& selector, SPMessageData* message) {
        if (caller == kCallerNotifier) {
            order += "[" + std::string(reinterpret_cast<AINotifierMessage*>(message)->type) + "]";
            newPath();
            undoing().SetUndoTextUS(hostText("Undo notified"), hostText("Redo notified"));
            if (order.size() < 6) host.notify("b");  // set off by a notification
            return kNoErr;
        }
        if (selector == "Subscribe") {
            subscribe(message, "a");
            subscribe(message, "b");
            return kNoErr;
        }
        host.notify("a");
        order += "(outer)";
        return kNoErr;
    };
    sendTest("Subscribe");
    order.clear();
    sendTest();
    EXPECT_EQ(order, "(outer)[a]");
    order.clear();
    EXPECT_EQ(host.notify("a"), kNoErr);
    EXPECT_EQ(order, "[a][b]");
    EXPECT_EQ(steps, (std::vector<std::string>(3, "Undo notified")));  // each is a step of its own
}

TEST_F(Messages, ChangesOfTheArtAreToldOnceAndNotTheAnswersToThem) {
    int told = 0;
    FakePlugin::handler = [&](const std::string& caller, const std::string& selector, SPMessageData* message) {
        if (caller == kCallerNotifier) {
            ++told;
            newPath();
        } else if (selector == "Subscribe") {
            subscribe(message, kArtChangedNotifier);
        } else if (selector == "Change") {
            newPath();
            newPath();
            undoing().SetUndoTextUS(hostText("Undo change"), hostText("Redo change"));
        }
        return kNoErr;
    };
    sendTest("Subscribe");
    sendTest("Look");
    EXPECT_EQ(told, 0);
    sendTest("Change");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(host.lastUndoName(), "Undo change");
    sendTest("Look");
    EXPECT_EQ(told, 1);
    host.undo();
    EXPECT_EQ(told, 2);
    host.edit("Select", [](doc::Document& document) {
        const doc::LayerId layer = document.currentLayer();
        return document.setSelected(document.find(document.layer(layer)->root)->firstChild, true);
    });
    EXPECT_EQ(told, 3);
}

TEST_F(Messages, AThrowingPluginLosesItsChangesAndNothingElse) {
    Error failure;
    host.callbacks.pluginFailed = [&](const Error& error) { failure = error; };
    FakePlugin::within(host, [](SPMessageData*) { newPath(); });
    FakePlugin::handler = [](const std::string&, const std::string&, SPMessageData*) -> AIErr {
        newPath();
        throw std::runtime_error("broken");
    };
    EXPECT_LT(sendTest(), 0);
    EXPECT_EQ(failure, makeError(ErrorCode::kPluginFailed, {"broken"}));
    EXPECT_EQ(host.document()->artCount(), 1u);
    FakePlugin::within(host, [](SPMessageData*) { newPath(); });
    EXPECT_EQ(host.document()->artCount(), 2u);
    // A result that is not 0 is passed on; what was made stays.
    FakePlugin::handler = [](const std::string&, const std::string&, SPMessageData*) {
        newPath();
        return kCanceledErr;
    };
    EXPECT_EQ(sendTest(), kCanceledErr);
    EXPECT_EQ(host.document()->artCount(), 3u);
}

TEST_F(Messages, WhatACallbackThrowsDoesNotCrossTheSlot) {
    host.callbacks.yesNoAlert = [](const std::string&) -> bool { throw std::runtime_error("no user"); };
    FakePlugin::within(host,
                       [](SPMessageData*) { EXPECT_EQ(suiteOf<AIUserSuite>().YesNoAlert(hostText("sure?")), 0); });
}

TEST_F(Messages, EditsAreStepsAndRefusedInsideAMessage) {
    const auto addLayer = [](doc::Document& document) { return document.insertLayer("x", 0) != 0; };
    EXPECT_TRUE(host.edit("Layer", addLayer));
    EXPECT_EQ(steps, std::vector<std::string>{"Undo Layer"});
    EXPECT_FALSE(host.edit("Layer", [&](doc::Document& document) { return addLayer(document) && false; }));
    EXPECT_EQ(host.document()->layers().size(), 2u);
    FakePlugin::within(host, [&](SPMessageData*) {
        EXPECT_FALSE(host.edit("Layer", addLayer));
        EXPECT_FALSE(host.undo());
    });
    EXPECT_TRUE(host.undo());
    EXPECT_FALSE(host.undo());
}

TEST_F(Messages, ANewDrawingInsideAMessageIsChangedByItsRest) {
    FakePlugin::within(host, [this](SPMessageData*) {
        newPath();
        host.newDocument(10, 10);
        newPath();
    });
    EXPECT_EQ(host.document()->artCount(), 1u);
    EXPECT_TRUE(host.undo());
}

// --- what the plug-in adds
// ---------------------------------------------------------------------------------------------

AIErr addTool(SPPluginRef self, const char* title, std::int32_t group, std::int32_t toolset, AIToolHandle* tool) {
    const AIAddToolData data{title, title, 1, 2, group, toolset};
    return suiteOf<AIToolSuite>().AddTool(self, title, &data, 3, tool);
}

TEST_F(Messages, ToolsHaveNumbersGroupsAndTheirTitlesBytes) {
    const auto& suite = suiteOf<AIToolSuite>();
    FakePlugin::within(host, [&](SPMessageData* message) {
        AIToolHandle first = nullptr, second = nullptr, third = nullptr;
        std::int32_t number = -1;
        ASSERT_EQ(addTool(message->self, "First", kNoTool, kNoTool, &first), kNoErr);
        EXPECT_EQ(suite.GetToolNumberFromName("First", &number), kNoErr);
        ASSERT_EQ(addTool(message->self, "Second", number, kNoTool, &second), kNoErr);
        EXPECT_EQ(suite.GetToolNumberFromName("Second", &number), kNoErr);
        ASSERT_EQ(addTool(message->self, "\x8A\x70\x93\x78", number, number, &third), kNoErr);
        EXPECT_NE(suite.GetToolNumberFromName("Third", &number), kNoErr);
        EXPECT_NE(addTool(message->self, "Fourth", 17, kNoTool, &third), kNoErr);
        EXPECT_NE(addTool(nullptr, "Fourth", kNoTool, kNoTool, &third), kNoErr);
        char title[16] = "";
        EXPECT_EQ(suite.GetToolTitle(third, title, sizeof(title)), kNoErr);
        EXPECT_STREQ(title, "\x8A\x70\x93\x78");
    });
    ASSERT_EQ(host.tools().size(), 3u);
    EXPECT_EQ(host.tools()[2].group, host.tools()[0].number);
    EXPECT_EQ(host.tools()[2].toolset, host.tools()[1].number);
    EXPECT_EQ(host.toolByTitle("角度"), &host.tools()[2]);
}

TEST_F(Messages, SelectingAToolTellsTheFormerOneFirst) {
    FakePlugin::within(host, [](SPMessageData* message) {
        AIToolHandle tool = nullptr;
        addTool(message->self, "First", kNoTool, kNoTool, &tool);
        addTool(message->self, "Second", kNoTool, kNoTool, &tool);
    });
    std::string order;
    int repainted = 0;
    host.callbacks.viewRepainted = [&] { ++repainted; };
    FakePlugin::handler = [&](const std::string&, const std::string& selector, SPMessageData* message) {
        const auto& tool = *reinterpret_cast<AIToolMessage*>(message);
        order += selector + (tool.tool == host.tools()[0].handle ? " 1;" : " 2;");
        if (selector == kSelectorMouseDown) {
            EXPECT_EQ(tool.cursor.h, 3);
            EXPECT_EQ(tool.event->modifiers, kAltModifier);
        }
        return kNoErr;
    };
    EXPECT_NE(host.sendTool(kSelectorMouseDown, {3, 4}, 0), kNoErr);  // none is selected
    host.selectTool(host.tools()[0]);
    host.selectTool(host.tools()[1]);
    host.sendTool(kSelectorMouseDown, {3, 4}, kAltModifier);
    host.editOptions(host.tools()[0]);
    EXPECT_EQ(order, "AI Select 1;AI Deselect 1;AI Select 2;AI Mouse Down 2;AI Edit Options 1;");
    EXPECT_EQ(repainted, 2);
}

TEST_F(Messages, MenusTakeKnownGroupsAndListTheirSubmenus) {
    const auto& menus = suiteOf<AIMenuSuite>();
    AIMenuItemHandle item = nullptr;
    FakePlugin::within(host, [&](SPMessageData* message) {
        const AIMenuItemData unknown{"Nowhere", hostText("x")}, about{"About", hostText("About…")};
        EXPECT_NE(menus.AddMenuItem(message->self, "A", &unknown, 0, &item), kNoErr);
        ASSERT_EQ(menus.AddMenuItem(message->self, "A", &about, kMenuItemWantsUpdate, &item), kNoErr);
        AIMenuGroup group = nullptr;
        EXPECT_EQ(menus.AddMenuGroupAsSubMenu("Family", kMenuGroupSorted, item, &group), kNoErr);
        EXPECT_NE(menus.AddMenuGroupAsSubMenu("Family", kMenuGroupSorted, item, &group), kNoErr);
        const AIMenuItemData inside{"Family", hostText("x")};
        EXPECT_EQ(menus.AddMenuItem(message->self, "B", &inside, 0, nullptr), kNoErr);
        std::int32_t count = 0;
        std::set<std::string> names;
        menus.CountMenuGroups(&count);
        for (std::int32_t i = 0; i < count; ++i) {
            const char* name = nullptr;
            menus.GetNthMenuGroup(i, &group);
            EXPECT_EQ(menus.GetMenuGroupName(group, &name), kNoErr);
            names.insert(name);
        }
        EXPECT_EQ(names, (std::set<std::string>{"Preferences", "Tool Palettes", "About", "Family"}));
    });
    EXPECT_EQ(host.menuItems()[0].text, "About…");
    std::string order;
    FakePlugin::handler = [&](const std::string&, const std::string& selector, SPMessageData* message) {
        EXPECT_EQ(reinterpret_cast<AIMenuMessage*>(message)->menuItem, item);
        order += selector;
        return menus.CheckItem(item, 1);
    };
    EXPECT_EQ(host.menuUpdate("B"), kNoErr);  // does not ask for it
    EXPECT_EQ(host.menuUpdate("A"), kNoErr);
    EXPECT_TRUE(host.menuItems()[0].checked);
    EXPECT_EQ(host.menuGo("A"), kNoErr);
    EXPECT_NE(host.menuGo("C"), kNoErr);
    EXPECT_EQ(order, "AI UpdateAI Go");
}

TEST_F(Messages, PanelsHaveAWindowAFlyoutAndAnEnd) {
    const auto& panels = suiteOf<AIPanelSuite>();
    const auto& flyouts = suiteOf<AIPanelFlyoutMenuSuite>();
    int window = 0, destroyed = 0;
    static int chosen = 0;
    chosen = 0;
    host.callbacks.createPanelWindow = [&](const PanelRecord&) { return &window; };
    host.callbacks.destroyPanelWindow = [&](void* one) { destroyed += one == &window; };
    AIPanelRef panel = nullptr;
    FakePlugin::within(host, [&](SPMessageData* message) {
        AIPanelFlyoutMenuRef menu = nullptr;
        flyouts.Create(&menu);
        flyouts.InsertItem(menu, 1, hostText("Settings"));
        ASSERT_EQ(panels.Create(message->self, "ID", hostText("Info"), 1, {240, 203}, menu, &panel), kNoErr);
        flyouts.InsertItem(menu, 2, hostText("More"));
        panels.SetFlyoutMenuProc(panel, [](AIPanelRef, std::int32_t item) { chosen = item; });
        panels.Show(panel, 1);
        AIPlatformWindow shown = nullptr;
        EXPECT_EQ(panels.GetPlatformWindow(panel, &shown), kNoErr);
        EXPECT_EQ(shown, &window);
    });
    EXPECT_TRUE(host.panels()[0].shown);
    EXPECT_EQ(host.panels()[0].flyoutItems[1].second, "More");
    host.chooseFlyout(3);
    EXPECT_EQ(chosen, 0);
    host.chooseFlyout(2);
    EXPECT_EQ(chosen, 2);
    host.shutdown();
    EXPECT_EQ(destroyed, 1);
    AIBoolean shown = 0;
    EXPECT_EQ(panels.IsShown(panel, &shown), kStaleHandleErr);
}

TEST(FailingAdditions, FailOneKindEach) {
    for (const char* kind : {"tool", "menu", "timer", "notifier", "panel"}) {
        Host host(HostOptions{.failAdding = kind});
        host.attachPlugin(FakePlugin::main, nullptr);
        FakePlugin::within(host, [&](SPMessageData* message) {
            const SPPluginRef self = message->self;
            AIToolHandle tool = nullptr;
            AITimerHandle timer = nullptr;
            AINotifierHandle notifier = nullptr;
            AIPanelRef panel = nullptr;
            const AIMenuItemData item{"About", hostText("x")};
            std::vector<std::string> failed;
            const auto note = [&](const char* name, AIErr result) {
                if (result != kNoErr) failed.emplace_back(name);
            };
            note("tool", addTool(self, "T", kNoTool, kNoTool, &tool));
            note("menu", suiteOf<AIMenuSuite>().AddMenuItem(self, "M", &item, 0, nullptr));
            note("timer", suiteOf<AITimerSuite>().AddTimer(self, "T", 12, &timer));
            note("notifier", suiteOf<AINotifierSuite>().AddNotifier(self, "", "t", &notifier));
            note("panel", suiteOf<AIPanelSuite>().Create(self, "ID", hostText("x"), 1, {1, 1}, nullptr, &panel));
            EXPECT_EQ(failed, std::vector<std::string>{kind});
        });
    }
}

TEST(Loader, SaysWhatIsWrongWithTheFile) {
    Host host;
    EXPECT_EQ(host.loadPlugin("/nowhere/plugin.so").error().file, "/nowhere/plugin.so");
    const std::filesystem::path text = std::filesystem::temp_directory_path() / "quorvel_no_library.so";
    std::ofstream(text) << "no library";
    const Status noLibrary = host.loadPlugin(text.string());
    EXPECT_EQ(noLibrary.error().code, ErrorCode::kPluginNotLoaded);
    EXPECT_EQ(noLibrary.error().arguments[0].find('\n'), std::string::npos);
    std::filesystem::remove(text);
    EXPECT_FALSE(host.loadPlugin("libm.so.6"));  // not the system's folders
    EXPECT_EQ(host.startup(), kBadParameterErr);
}

TEST(Loader, LoadsThePluginItself) {
    Host host;
    EXPECT_TRUE(host.loadPlugin(QUORVEL_PLUGIN_FILE));
}

}  // namespace
}  // namespace quorvel::host

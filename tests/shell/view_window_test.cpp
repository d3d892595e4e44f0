// Finding the document's window in window trees as systems build them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <vector>

#include "platform/headless/headless.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/services.h"

namespace quorvel {
namespace {

using platform::Pixel;
using platform::PixelRect;
using platform::ViewWindowRef;

struct TreeWindow {
    std::string title;
    PixelRect rect;  // on the screen; no window has a frame of its own
    int parent = -1;
    bool visible = true;
};

// Windows by their place in the list, siblings in list order.
class TreeBackend : public platform::HeadlessBackend, private platform::ViewWindows, private platform::Files {
  public:
    std::vector<TreeWindow> windows;
    std::string log;

    // -1 for none.
    static int indexOf(ViewWindowRef window) { return window == nullptr ? -1 : static_cast<Node*>(window)->index; }

    platform::ViewWindows& viewWindows() override { return *this; }
    platform::Files& files() override { return *this; }

  private:
    struct Node : platform::ViewWindow {
        Node(const TreeBackend* owner, int place) : tree(owner), index(place) {}

        const TreeWindow& self() const { return tree->windows[static_cast<std::size_t>(index)]; }
        std::string title() const override { return self().title; }
        PixelRect rect() const override { return self().rect; }
        Pixel clientOrigin() const override { return {self().rect.left, self().rect.top}; }
        bool isVisible() const override { return self().visible; }
        std::int32_t number() const override { return 500 + index; }
        ViewWindow* firstChild() const override { return tree->firstFrom(0, index); }
        ViewWindow* nextSibling() const override { return tree->firstFrom(index + 1, self().parent); }

        const TreeBackend* tree;
        int index;
    };

    platform::ViewWindow* firstFrom(int index, int parent) const {
        for (; index < static_cast<int>(windows.size()); ++index)
            if (windows[static_cast<std::size_t>(index)].parent == parent)
                return &nodes_.try_emplace(index, this, index).first->second;
        return nullptr;
    }
    platform::ViewWindow* topWindow() const override { return firstFrom(0, -1); }
    std::string documentsFolder() const override { return {}; }
    std::string errorLogPath() const override { return log; }

    mutable std::map<int, Node> nodes_;
};

class ViewWindowTest : public testing::Test {
  protected:
    void SetUp() override {
        log_ = std::filesystem::path(testing::TempDir()) / "quorvel_view_window.txt";
        std::filesystem::remove(log_);
        backend_.log = log_.string();
        platform::installBackend(&backend_);
        gGlobals = globals_.get();
    }
    void TearDown() override {
        gGlobals = nullptr;
        platform::installBackend(nullptr);
        std::filesystem::remove(log_);
    }
    int find() { return TreeBackend::indexOf(FindViewWindow()); }

    TreeBackend backend_;
    std::unique_ptr<PluginGlobals> globals_ = std::make_unique<PluginGlobals>();
    std::filesystem::path log_;
};

TEST_F(ViewWindowTest, TheSmallestWindowUnderThePoint) {
    backend_.windows = {
        {"Mail", {0, 0, 900, 900}},
        {"plan.svg @ 100%", {0, 0, 900, 600}},
        {"other.svg @ 50%", {0, 0, 900, 600}},
        {"canvas", {10, 10, 800, 500}, 1},
        {"hidden", {250, 150, 350, 250}, 3, false},
        {"view", {20, 20, 700, 450}, 3},
        {"ruler", {0, 0, 300, 200}, 1},  // the point (300, 200) lies on its edge
    };
    EXPECT_EQ(find(), 5);
    // Of equal windows the later one in the walk is the last of the list.
    backend_.windows.push_back({"twin", {20, 20, 700, 450}, 3});
    EXPECT_EQ(find(), 7);
}

TEST_F(ViewWindowTest, AWindowAnywhereOnTheScreen) {
    backend_.windows = {{"plan.svg @ 100%", {3000, -800, 3900, -200}}};
    EXPECT_EQ(find(), 0);
    backend_.windows[0].title = "plan.svg@100%";
    EXPECT_EQ(find(), -1);
    backend_.windows.clear();
    EXPECT_EQ(find(), -1);
}

TEST_F(ViewWindowTest, TheListIsBounded) {
    backend_.windows = {{"plan.svg @ 100%", {0, 0, 900, 900}}};
    for (int i = 1; i < 40; ++i) backend_.windows.push_back({"", {0, 0, 900 - i, 900}, i - 1});
    EXPECT_EQ(find(), 31);
}

TEST_F(ViewWindowTest, TheSearchIsTracedOnce) {
    backend_.windows = {{"a @ 1", {0, 0, 900, 600}}, {"in", {0, 0, 800, 600}, 0}, {"rest", {0, 0, 10, 10}, 0}};
    globals_->windowProbeLog = 1;
    EXPECT_EQ(find(), 1);
    EXPECT_EQ(find(), 1);
    std::stringstream text;
    text << std::ifstream(log_, std::ios::binary).rdbuf();
    EXPECT_EQ(text.str(), "*9* : (900, 600)[a @ 1](500:0)\r\n*9* : (800, 600)[in](501:1)\r\n");
    backend_.windows.clear();
    globals_->windowProbeLog = 1;
    EXPECT_EQ(find(), -1);
    EXPECT_EQ(globals_->windowProbeLog, 0) << "asked for once, also when there was nothing to trace";
}

}  // namespace
}  // namespace quorvel

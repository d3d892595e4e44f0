// Start-up as far as the tools, and the shutdown that follows a start-up which failed.
#include "plugin/shell/startup.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "hostapi/suites.h"
#include "platform/headless/headless.h"
#include "plugin/shell/suites.h"

namespace quorvel {
namespace {

namespace fs = std::filesystem;

constexpr AIErr kNoRoom = 0x46554C4C;
std::int32_t sOptions = 0;
std::string sFirstTool;

AIErr GetOptions(SPPluginRef, std::int32_t* options) {
    *options = sOptions;
    return kNoErr;
}

AIErr SetOptions(SPPluginRef, std::int32_t options) {
    sOptions = options;
    return kNoErr;
}

AIErr RefuseTool(SPPluginRef, const char* name, const AIAddToolData*, std::int32_t, AIToolHandle*) {
    sFirstTool = name;
    return kNoRoom;
}

class StartUpTest : public testing::Test {
  protected:
    void SetUp() override {
        documents_ = fs::path(testing::TempDir()) / "quorvel_startup";
        fs::remove_all(documents_);
        fs::create_directories(settings().parent_path());
        backend_.setDocumentsFolder(documents_.string());
        platform::installBackend(&backend_);
        plugin_.GetPluginOptions = GetOptions;
        plugin_.SetPluginOptions = SetOptions;
        tool_.AddTool = RefuseTool;
        sAIPlugin = &plugin_;
        sAITool = &tool_;
        gGlobals = globals_.get();
        sOptions = 5;
        sFirstTool.clear();
    }
    void TearDown() override {
        sAIPlugin = nullptr;
        sAITool = nullptr;
        gGlobals = nullptr;
        platform::installBackend(nullptr);
        fs::remove_all(documents_);
    }
    fs::path settings() const { return documents_ / "Adobe" / "Illustrator" / "Prefs" / "Quorvel.ini"; }

    fs::path documents_;
    platform::HeadlessBackend backend_;
    AIPluginSuite plugin_{};
    AIToolSuite tool_{};
    std::unique_ptr<PluginGlobals> globals_ = std::make_unique<PluginGlobals>();
};

TEST_F(StartUpTest, TheSettingsComeBeforeTheTools) {
    std::ofstream(settings()) << "language = KOREAN\nflScFix = 4\n";
    SPPluginRef self = reinterpret_cast<SPPluginRef>(&plugin_);
    EXPECT_EQ(StartUp(globals_.get(), self), kNoRoom);
    EXPECT_EQ(sFirstTool, "Oblique Dimension Tool") << "Korean settings show English titles";
    EXPECT_EQ(sOptions, 7);
    EXPECT_EQ(globals_->pluginRef, self);
    EXPECT_EQ(globals_->prefs.flScFix, 4);
    EXPECT_EQ(globals_->prefs.flRdLead, 5);
    EXPECT_EQ(globals_->liveState.toolStep, 0);
    EXPECT_EQ(static_cast<std::uint16_t>(globals_->drawnState.toolStep), 65535);
    EXPECT_EQ(globals_->drawnState.stops[31].cells[4].index, kNoAnchorIndex);
    EXPECT_EQ(globals_->liveState.cursorTangent, 32000.0);
    EXPECT_STREQ(globals_->productVersion, "4.5.1.3");
    EXPECT_EQ(globals_->bezierTables.b1n32[16], 0.375) << "3 t (1 - t) squared at one half";
    ASSERT_NE(globals_->workBufferC, nullptr);
    EXPECT_EQ(globals_->workBufferC->segments[kChainCapacity - 1].corner, 0) << "zeroed to its end";

    globals_->workBufferA->count = globals_->workBufferB->count = globals_->workBufferC->count = 9;
    ContextBracket(globals_.get());
    EXPECT_EQ(globals_->workBufferA->count, 0);
    EXPECT_EQ(globals_->workBufferB->count, 0);
    EXPECT_EQ(globals_->workBufferC->count, 9) << "scratch";
    ShutDown(globals_.get());
    EXPECT_EQ(globals_->workBufferA, nullptr);
}

}  // namespace
}  // namespace quorvel

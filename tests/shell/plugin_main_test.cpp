// The door of the plug-in against a host that counts: which suites are asked for, what is shown of a failure, and what
// the host gets back.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "hostapi/catalogue.h"
#include "hostapi/messages.h"
#include "plugin/shell/alert.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/property_list.h"
#include "plugin/shell/suites.h"

namespace quorvel {
namespace {

constexpr AIErr kFault = 0x46415554;  // 'FAUT'

struct Suite {
    std::string name;
    std::int32_t version;
    bool operator==(const Suite&) const = default;
};

struct FakeHost {
    std::vector<Suite> acquired, released;
    std::vector<std::string> alerts;
    int failingRow = -1;  // of the acquisitions of one message
    AIErr failure = kFault;
    int failingRelease = -1;
    AIErr blockResult = kFault;
    int blocks = 0;
};
FakeHost* sHost = nullptr;
std::string sString;

AIErr FromCodePage(const char* bytes, std::int32_t size, std::int32_t codePage, AIUnicodeStringRef* string) {
    EXPECT_EQ(codePage, 932);
    sString.assign(bytes, static_cast<std::size_t>(size));
    *string = reinterpret_cast<AIUnicodeStringRef>(&sString);
    return kNoErr;
}

AIErr ErrorAlert(AIUnicodeStringRef) {
    sHost->alerts.push_back(sString);
    return kNoErr;
}

AIErr Acquire(const char* name, std::int32_t version, const void** suite) {
    static AIUserSuite user{};
    static AIUnicodeStringSuite strings{};
    static const int other = 0;
    user.ErrorAlert = ErrorAlert;
    strings.FromCodePage = FromCodePage;
    const int row = static_cast<int>(sHost->acquired.size());
    sHost->acquired.push_back({name, version});
    *suite = nullptr;
    if (std::strncmp(name, "Quorvel ", 8) == 0) return kSuiteNotFoundErr;
    if (row == sHost->failingRow) return sHost->failure;
    *suite = &other;
    if (std::strcmp(name, kSuiteKey<AIUserSuite>.name) == 0) *suite = &user;
    if (std::strcmp(name, kSuiteKey<AIUnicodeStringSuite>.name) == 0) *suite = &strings;
    return kNoErr;
}

AIErr Release(const char* name, std::int32_t version) {
    const int row = static_cast<int>(sHost->released.size());
    sHost->released.push_back({name, version});
    return row == sHost->failingRelease ? kFault : kNoErr;
}

AIBoolean IsEqual(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

AIErr Allocate(std::int64_t, void** block) {
    ++sHost->blocks;
    *block = nullptr;
    return sHost->blockResult;
}

AIErr Free(void*) { return kNoErr; }

const SPBasicSuite kBasic = {Acquire, Release, IsEqual, Allocate, Free};

class PluginMainTest : public testing::Test {
  protected:
    void SetUp() override {
        sHost = &host_;
        suiteUseCount = 0;
        message_.basic = &kBasic;
    }
    // What one case holds is released here, so that the next one meets empty pointers.
    void TearDown() override {
        host_ = FakeHost{};
        suiteUseCount = 1;
        gBasic = &kBasic;
        ReleaseSuites();
        gGlobals = nullptr;
        sHost = nullptr;
    }
    // A Startup whose block is refused with this result is the shortest way to a handler's result.
    AIErr startWith(AIErr result) {
        host_.blockResult = result;
        return PluginMain(kCallerInterface, kSelectorStartup, &message_);
    }
    AIErr sendUnknown() { return PluginMain(kCallerInterface, "Sing", &message_); }

    FakeHost host_;
    SPMessageData message_;
};

TEST_F(PluginMainTest, SuitesAreHeldAroundAnyMessage) {
    EXPECT_EQ(sendUnknown(), kNoErr);
    ASSERT_EQ(host_.acquired.size(), 112U) << "the table, and our own two suites behind it";
    EXPECT_EQ(host_.acquired[0], (Suite{"SP Blocks Suite", 2}));
    EXPECT_EQ(host_.acquired[10], (Suite{"AI User Suite", 10}));
    EXPECT_EQ(host_.acquired[33], (Suite{"ATE TextFrame Suite", 101}));
    EXPECT_EQ(host_.acquired[97], (Suite{"AI Undo Suite", 6}));
    EXPECT_EQ(host_.acquired[109], (Suite{"AI Unicode String Suite", 7}));
    std::set<std::string> names;
    for (const Suite& suite : host_.acquired) names.insert(suite.name);
    EXPECT_EQ(names.size(), 112U) << "a suite stands in the table twice";
    host_.acquired.resize(110);
    EXPECT_EQ(host_.released, host_.acquired);
    EXPECT_EQ(suiteUseCount, 0);
    EXPECT_EQ(sAIUser, nullptr);
}

TEST_F(PluginMainTest, ANestedMessageOnlyCounts) {
    suiteUseCount = 1;
    EXPECT_EQ(sendUnknown(), kNoErr);
    EXPECT_TRUE(host_.acquired.empty());
    EXPECT_TRUE(host_.released.empty());
    EXPECT_EQ(suiteUseCount, 1);
}

TEST_F(PluginMainTest, AnEarlyMissingSuiteIsPassedOver) {
    for (int row = 0; row <= 9; ++row) {
        host_ = FakeHost{};
        host_.failingRow = row;
        EXPECT_EQ(startWith(1), 1) << "the handler runs";
        EXPECT_TRUE(host_.alerts.empty());
        EXPECT_EQ(host_.acquired.size(), 112U);
    }
    // The User Suite's own failure is one too: it is not held.
    host_ = FakeHost{};
    host_.failingRow = 10;
    EXPECT_EQ(startWith(kFault), kFault);
    EXPECT_TRUE(host_.alerts.empty());
    EXPECT_EQ(host_.blocks, 1);
}

TEST_F(PluginMainTest, ALateMissingSuiteEndsTheMessage) {
    host_.failingRow = 17;
    EXPECT_EQ(startWith(1), kFault);
    EXPECT_EQ(host_.blocks, 0) << "no handler runs";
    ASSERT_EQ(host_.alerts.size(), 2U);
    EXPECT_EQ(host_.alerts[0], "Error: 1178686804, suite: AI Document View Suite, version: 11!");
    EXPECT_EQ(host_.alerts[1], "Error=46415554, TUAF (caller : SP Interface, selector : Startup)");
    EXPECT_EQ(host_.acquired[17].name, "AI Document View Suite");
    for (std::size_t i = 18; i < host_.acquired.size(); ++i) {
        EXPECT_EQ(host_.acquired[i].name, "AI Unicode String Suite") << "only the alerts ask for more";
    }
    EXPECT_EQ(suiteUseCount, 0);

    // A suite that was not found is told once, by its name.
    host_ = FakeHost{};
    host_.failingRow = 109;
    host_.failure = kSuiteNotFoundErr;
    EXPECT_EQ(startWith(1), kSuiteNotFoundErr);
    EXPECT_EQ(host_.blocks, 0);
    EXPECT_EQ(host_.alerts.size(), 1U);
}

TEST_F(PluginMainTest, ReleaseStopsAtItsFirstFailure) {
    host_.failingRelease = 50;
    EXPECT_EQ(sendUnknown(), kNoErr) << "the message's own result is returned";
    EXPECT_EQ(host_.released.size(), 51U);
    EXPECT_EQ(suiteUseCount, 0);
    EXPECT_EQ(sAIUser, nullptr);
    EXPECT_NE(sAIUnicodeString, nullptr) << "not released, not cleared";
    EXPECT_TRUE(host_.alerts.empty());
}

TEST_F(PluginMainTest, AFailureIsShownOnce) {
    EXPECT_EQ(startWith(kOutOfMemoryErr), kOutOfMemoryErr);
    ASSERT_EQ(host_.alerts.size(), 1U);
    EXPECT_EQ(host_.alerts[0], "Error=ffffff94, \x94\xff\xff\xff (caller : SP Interface, selector : Startup)");
    EXPECT_EQ(message_.globals, nullptr);
    for (const AIErr silent : {AIErr{1}, kCanceledErr, kSuiteNotFoundErr}) {
        host_ = FakeHost{};
        EXPECT_EQ(startWith(silent), silent);
        EXPECT_TRUE(host_.alerts.empty());
    }
}

TEST_F(PluginMainTest, InternalErrorsReadForward) {
    ReportInternalError(kFault);
    EXPECT_TRUE(host_.alerts.empty()) << "nothing without the User Suite";
    gBasic = &kBasic;
    ASSERT_EQ(AcquireSuites(), kNoErr);
    ReportInternalError(kFault);
    ReleaseSuites();
    EXPECT_EQ(host_.alerts, std::vector<std::string>{"Unexpected internal error=46415554, FAUT"});
}

TEST_F(PluginMainTest, WithoutGlobalsEveryMessageIsQuiet) {
    AIToolMessage tool;
    tool.d.basic = &kBasic;
    for (const char* selector : {kSelectorSelect, kSelectorTrackCursor, kSelectorMouseDown, kSelectorEditOptions}) {
        EXPECT_EQ(PluginMain(kCallerTool, selector, &tool), kNoErr);
    }
    AITimerMessage timer;
    timer.d.basic = &kBasic;
    EXPECT_EQ(PluginMain(kCallerTimer, kSelectorGo, &timer), kNoErr);
    EXPECT_EQ(PluginMain(kCallerInterface, kSelectorShutdown, &message_), kNoErr);
    EXPECT_EQ(PluginMain(kCallerInterface, kSelectorAbout, &message_), kNoErr);
}

TEST_F(PluginMainTest, TheGlobalsOutliveAPurge) {
    int block = 0;
    message_.globals = &block;
    EXPECT_EQ(PluginMain(kCallerAccess, kSelectorUnload, &message_), kNoErr);
    EXPECT_EQ(message_.globals, &block);
    gGlobals = nullptr;
    suiteUseCount = 3;
    EXPECT_EQ(PluginMain(kCallerAccess, kSelectorReload, &message_), kNoErr);
    EXPECT_EQ(static_cast<void*>(gGlobals), &block);
    EXPECT_EQ(suiteUseCount, 0);
    EXPECT_EQ(PluginMain(kCallerAccess, "Sing", &message_), kNoErr);
    EXPECT_TRUE(host_.acquired.empty()) << "no suite on this road";
}

}  // namespace
}  // namespace quorvel

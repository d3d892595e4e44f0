#include "platform/file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "platform/text.h"

namespace quorvel::platform {
namespace {

namespace fs = std::filesystem;

class FileTest : public testing::Test {
  protected:
    void SetUp() override {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        folder_ = (fs::temp_directory_path() / ("quorvel_" + std::to_string(getpid()) + test->name())).string();
        fs::remove_all(folder_);
        ASSERT_TRUE(CreateFolder(folder_));
    }
    void TearDown() override { fs::remove_all(folder_); }

    void write(const std::string& path, std::string_view bytes) {
        const FileRef file = CreateNewFile(path);
        ASSERT_NE(file, nullptr) << path;
        EXPECT_TRUE(WriteToFile(file, bytes));
        EXPECT_TRUE(CloseFile(file));
    }
    std::string read(const std::string& path) {
        std::string bytes = "untouched";
        return ReadWholeFile(path, &bytes) ? bytes : "refused, " + bytes;
    }

    std::string folder_;
};

TEST_F(FileTest, JoinPathKeepsEveryNameInsideTheFolder) {
    EXPECT_EQ(JoinPath("/a/b", "Custom-1.ini"), "/a/b/Custom-1.ini");
    EXPECT_EQ(JoinPath("/a/b/", ".hidden"), "/a/b/.hidden");
    EXPECT_EQ(JoinPath("D:\\a\\", "x"), "D:\\a\\x");
    for (const std::string name : {"", "..", "../x", "..\\x", "a..b", "a/b", "a\\b", "/etc", "a\nb", "a\x7F"})
        EXPECT_EQ(JoinPath("/a/b", name), "") << name;
    EXPECT_EQ(JoinPath("/a/b", std::string("x\0y", 3)), "");
    EXPECT_EQ(JoinPath("", "x"), "") << "a file at the root";
}

TEST_F(FileTest, BytesComeBackWholeAndAppendingGoesBehindTheEnd) {
    const std::string path = JoinPath(folder_, "bytes"), content("a\r\n\0\xFF\x1Az", 7);
    write(path, content);
    EXPECT_EQ(read(path), content);
    const FileRef file = OpenForAppending(path);
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(WriteToFile(file, "!"));
    CloseFile(file);
    EXPECT_EQ(read(path), content + "!");
    write(path, "");
    EXPECT_EQ(read(path), "") << "an existing file is emptied";
    CloseFile(OpenForAppending(JoinPath(folder_, "new")));
    EXPECT_TRUE(FileCanBeOpened(JoinPath(folder_, "new")));
    EXPECT_TRUE(DeleteFile(path));
    EXPECT_FALSE(DeleteFile(path));
    EXPECT_FALSE(FileCanBeOpened(path));
}

TEST_F(FileTest, AFileStaysUntilItsSuccessorIsWhole) {
    const std::string path = JoinPath(folder_, "kept");
    write(path, "old");
    const FileRef file = CreateNewFile(path);
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(WriteToFile(file, "new"));
    EXPECT_EQ(read(path), "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{2, before.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_FALSE(WriteToFile(file, "er"));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_TRUE(WriteToFile(file, "est")) << "the disk has room again, but a piece is missing";
    EXPECT_FALSE(CloseFile(file));
    EXPECT_EQ(read(path), "old");
    EXPECT_EQ(FileNames(folder_), std::vector<std::string>{"kept"});
}

// The second byte of these characters in the system code page is a backslash; as a part of a name it separates nothing.
TEST_F(FileTest, NamesWhoseBytesHoldABackslashStayNames) {
    for (const char* bytes : {"\x95\x5C", "\x83\x5C\x95\x5C-1", "\x8F\x5C\x94\x5C"}) {
        const std::string name = ToUtf8(bytes, kCodePageJapanese) + ".ini";
        write(JoinPath(folder_, name), bytes);
        EXPECT_EQ(read(folder_ + "\\" + name), bytes);
        const std::vector<std::string> names = FileNames(folder_);
        EXPECT_EQ(std::count(names.begin(), names.end(), name), 1) << name;
    }
    EXPECT_EQ(FileNames(folder_).size(), 3u);
}

TEST_F(FileTest, FoldersAreMadeOnceAndNeverTakenForFiles) {
    const std::string deep = folder_ + "\\Adobe\\Illustrator";
    EXPECT_TRUE(CreateFolder(deep));
    EXPECT_TRUE(CreateFolder(deep));
    EXPECT_TRUE(fs::is_directory(folder_ + "/Adobe/Illustrator"));
    EXPECT_FALSE(FileCanBeOpened(deep));
    EXPECT_EQ(read(deep), "refused, untouched");
    EXPECT_EQ(CreateNewFile(deep), nullptr);
    EXPECT_EQ(OpenForAppending(deep), nullptr);
    EXPECT_FALSE(DeleteFile(deep));
    EXPECT_TRUE(FileNames(folder_).empty());
    write(JoinPath(folder_, "plain"), "x");
    EXPECT_FALSE(CreateFolder(JoinPath(folder_, "plain")));
    EXPECT_EQ(FileNames(folder_), std::vector<std::string>{"plain"});
}

TEST_F(FileTest, WhatIsNoPlainFileIsRefusedWithoutWaiting) {
    const std::string huge = JoinPath(folder_, "huge");
    write(huge, "");
    fs::resize_file(huge, (std::uintmax_t{256} << 20) + 1);
    EXPECT_EQ(read(huge), "refused, untouched");
    EXPECT_EQ(read("/dev/zero"), "refused, untouched");
    EXPECT_EQ(CreateNewFile("/dev/null"), nullptr);
    for (const std::string& path : {std::string(), std::string("x\0y", 3), folder_ + "/none/x"}) {
        EXPECT_FALSE(FileCanBeOpened(path));
        EXPECT_EQ(read(path), "refused, untouched");
        EXPECT_EQ(CreateNewFile(path), nullptr);
        EXPECT_FALSE(DeleteFile(path));
        EXPECT_TRUE(FileNames(path).empty());
    }
    EXPECT_FALSE(CreateFolder(""));
    EXPECT_FALSE(WriteToFile(nullptr, "x"));
    EXPECT_FALSE(CloseFile(nullptr));
}

}  // namespace
}  // namespace quorvel::platform

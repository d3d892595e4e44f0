#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/file.h"
#include "platform/headless/headless.h"

namespace quorvel::platform {
namespace {

// Points the variables of the base directories into a folder of the test's own.
class FoldersTest : public testing::Test {
  protected:
    void SetUp() override {
        home_ = (std::filesystem::temp_directory_path() / ("quorvel_home_" + std::to_string(getpid()))).string();
        std::filesystem::remove_all(home_);
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"}) {
            const char* value = std::getenv(name);
            saved_.emplace_back(name, value == nullptr ? "" : value);
            unsetenv(name);
        }
        setenv("HOME", home_.c_str(), 1);
        installBackend(&user_);
    }
    void TearDown() override {
        installBackend(nullptr);
        for (const auto& [name, value] : saved_)
            value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
        std::filesystem::remove_all(home_);
    }
    void chooseFolders(const std::string& lines) {
        ASSERT_TRUE(CreateFolder(home_ + "/.config"));
        const FileRef file = CreateNewFile(home_ + "/.config/user-dirs.dirs");
        EXPECT_TRUE(WriteToFile(file, lines));
        CloseFile(file);
    }

    std::string home_;
    std::vector<std::pair<std::string, std::string>> saved_;
    HeadlessBackend user_;
};

TEST_F(FoldersTest, DocumentsAreWhereTheDesktopHasThem) {
    EXPECT_EQ(DocumentsFolder(), home_ + "/Documents");
    const std::pair<std::string, std::string> cases[] = {
        {"XDG_MUSIC_DIR=\"$HOME/Music\"\nXDG_DOCUMENTS_DIR=\"$HOME/書類\"\n", home_ + "/書類"},
        {"# XDG_DOCUMENTS_DIR=\"$HOME/No\"\n  XDG_DOCUMENTS_DIR=\"/data/My \\\"Docs\\\"/\"", "/data/My \"Docs\""},
        {"XDG_DOCUMENTS_DIR=\"$HOME/\"\n", home_},
        {"XDG_DOCUMENTS_DIR=\"relative\"\n", home_ + "/Documents"},
    };
    for (const auto& [lines, folder] : cases) {
        chooseFolders(lines);
        EXPECT_EQ(DocumentsFolder(), folder) << lines;
    }
    user_.setDocumentsFolder("/some/profile/");
    EXPECT_EQ(DocumentsFolder(), "/some/profile");
}

TEST_F(FoldersTest, TheErrorLogLiesInTheStateFolderOrTheProfile) {
    EXPECT_EQ(ErrorLogPath(), home_ + "/.local/state/quorvel/ERROR MSG.TXT");
    EXPECT_TRUE(std::filesystem::is_directory(home_ + "/.local/state/quorvel"));
    setenv("XDG_STATE_HOME", (home_ + "/state").c_str(), 1);
    EXPECT_EQ(ErrorLogPath(), home_ + "/state/quorvel/ERROR MSG.TXT");
    user_.setDocumentsFolder(home_ + "/profile");
    EXPECT_EQ(ErrorLogPath(), home_ + "/profile/ERROR MSG.TXT");
    unsetenv("HOME");
    unsetenv("XDG_STATE_HOME");
    user_.setDocumentsFolder("");
    EXPECT_EQ(ErrorLogPath(), "");
    EXPECT_EQ(DocumentsFolder(), "");
}

}  // namespace
}  // namespace quorvel::platform

// What was there before stays until the new content is on the disk; what a file is besides its content stays for good.
#include "files/file_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "files/backups.h"
#include "files/file_reader.h"
#include "files/state_folder.h"
#include "files/target.h"

namespace quorvel::files {
namespace {

namespace fs = std::filesystem;

class FileWriterTest : public testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "files-XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
        ::setenv("XDG_STATE_HOME", (folder_ / "state").c_str(), 1);
        fs::create_directory(folder_ / "work");
        fs::permissions(folder_, fs::perms::all);
    }
    void TearDown() override { fs::remove_all(folder_); }

    std::string at(const std::string& name) const { return (folder_ / "work" / name).string(); }
    static void put(const std::string& path, const std::string& text) { std::ofstream(path) << text; }
    static std::string content(const std::string& path) {
        std::ifstream in(path);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    // Everything in the working folder, by name.
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder_ / "work")) all.push_back(entry.path().filename());
        std::sort(all.begin(), all.end());
        return all;
    }
    using Names = std::vector<std::string>;
    fs::path folder_;
};

// Runs in a process of its own; true when it does what it says there.
bool holdsInChild(const std::function<bool()>& work) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(work() ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(FileWriterTest, KeepsWhatAFileIsBesideItsContent) {
    const std::string file = at("a.svg");
    put(file, "old");
    ::chmod(file.c_str(), 0640);
    const bool hasAttributes = ::setxattr(file.c_str(), "user.author", "me", 2, 0) == 0;
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(file.c_str(), 12, 34), 0);
    }
    const fs::path link = at("link.svg");
    fs::create_symlink("a.svg", link);

    ASSERT_TRUE(writeFile(link, "new"));
    EXPECT_EQ(content(file), "new");
    EXPECT_TRUE(fs::is_symlink(link));
    struct stat info {};
    ASSERT_EQ(::stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0640U);
    if (::geteuid() == 0) {
        EXPECT_EQ(info.st_uid, 12U);
        EXPECT_EQ(info.st_gid, 34U);
    }
    char value[8] = {};
    if (hasAttributes) {
        EXPECT_EQ(::getxattr(file.c_str(), "user.author", value, sizeof value), 2);
    }
    EXPECT_EQ(names(), (Names{"a.svg", "link.svg"}));

    fs::create_hard_link(file, at("twin.svg"));
    ASSERT_TRUE(writeFile(file, "newer"));
    EXPECT_EQ(content(at("twin.svg")), "newer");
    ASSERT_TRUE(writeFile(file, "x"));
    EXPECT_EQ(content(at("twin.svg")), "x") << "a shorter text leaves nothing of the longer one";
}

TEST_F(FileWriterTest, RefusesWhatItMayNotReplace) {
    fs::create_symlink("nowhere.svg", at("dangling.svg"));
    EXPECT_EQ(writeFile(at("dangling.svg"), "x").error().code, ErrorCode::kDanglingLink);
    EXPECT_EQ(names(), (Names{"dangling.svg"}));
    EXPECT_EQ(writeFile(at("no/such/folder.svg"), "x").error(), systemError(ENOENT));
    EXPECT_EQ(writeFile(folder_ / "work", "x").error(), systemError(EISDIR));

    put(at("fixed.svg"), "old");
    ::chmod(at("fixed.svg").c_str(), 0444);
    EXPECT_EQ(writeFile(at("fixed.svg"), "x").error().code, ErrorCode::kReadOnlyFile);
    EXPECT_EQ(content(at("fixed.svg")), "old");
    ASSERT_TRUE(writeFile(at("fixed.svg"), "forced", {.replacesReadOnly = true}));
    EXPECT_EQ(content(at("fixed.svg")), "forced");
    EXPECT_EQ(fs::status(at("fixed.svg")).permissions(), fs::perms(0444));
}

TEST_F(FileWriterTest, WritesAFileInAFolderThatMayNotBeWritten) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs to become another user";
    put(at("a.svg"), "old");
    fs::permissions(at("a.svg"), fs::perms(0666));
    fs::permissions(folder_ / "work", fs::perms(0555));
    constexpr unsigned kNobody = 65534;
    EXPECT_TRUE(holdsInChild([&] {
        return ::setegid(kNobody) == 0 && ::seteuid(kNobody) == 0 && bool(writeFile(at("a.svg"), "new")) &&
               writeFile(at("b.svg"), "new").error() == systemError(EACCES);
    }));
    EXPECT_EQ(content(at("a.svg")), "new");
}

TEST_F(FileWriterTest, AFullDiskLeavesTheOldFile) {
    const auto limited = [&](const std::string& file) {
        return holdsInChild([&] {
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{100, 100};
            ::setrlimit(RLIMIT_FSIZE, &limit);
            return writeFile(file, std::string(1000, 'x')).error() == systemError(EFBIG);
        });
    };
    put(at("a.svg"), "old");
    EXPECT_TRUE(limited(at("a.svg")));
    EXPECT_TRUE(limited(at("new.svg")));
    fs::create_hard_link(at("a.svg"), at("twin.svg"));
    EXPECT_TRUE(limited(at("a.svg"))) << "overwritten in place";
    EXPECT_EQ(content(at("a.svg")), "old");
    EXPECT_EQ(names(), (Names{"a.svg", "twin.svg"}));
}

TEST_F(FileWriterTest, WithoutCommitNothingHappens) {
    put(at("a.svg"), "old");
    {
        Result<FileWriter> writer = FileWriter::open(at("a.svg"));
        ASSERT_TRUE(writer);
        ASSERT_TRUE(writer->write("half"));
    }
    EXPECT_EQ(content(at("a.svg")), "old");
    EXPECT_EQ(names(), (Names{"a.svg"}));
}

TEST_F(FileWriterTest, RemovesWhatAKilledWriterHasLeftAndNothingElse) {
    const std::string name = "a.svg";
    const std::string prefix = ".qv" + hexOf(pathHash(name)).substr(0, 8) + "-";
    const pid_t ended = ::fork();
    if (ended == 0) ::_exit(0);
    ::waitpid(ended, nullptr, 0);
    const std::string leftover = prefix + std::to_string(ended) + "-00000001";
    const std::string alive = prefix + std::to_string(::getpid()) + "-00000002";
    const std::string ofAnother = ".qv00000000-" + std::to_string(ended) + "-00000003";
    const std::string notOurs = ".qv" + std::to_string(ended), unknown = ".qvzzzzzzzz_" + std::to_string(ended) + "-1";
    for (const std::string& file : {leftover, alive, ofAnother, notOurs, unknown}) put(at(file), "half");
    ASSERT_TRUE(writeFile(at(name), "new"));
    Names expected{alive, notOurs, unknown, name};
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(names(), expected);
}

TEST_F(FileWriterTest, TakesTheLongestName) {
    const std::string name(255, 'n');
    ASSERT_TRUE(writeFile(at(name), "1"));
    ASSERT_TRUE(writeFile(at(name), "2"));
    EXPECT_EQ(content(at(name)), "2");
}

TEST_F(FileWriterTest, WritesToAStreamAndLeavesItOne) {
    const std::string pipe = at("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_TRUE(writeFile(pipe, "through"));
    char text[16] = {};
    EXPECT_EQ(::read(reader, text, sizeof text), 7);
    EXPECT_STREQ(text, "through");
    ::close(reader);
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_EQ(readFile(pipe, 100).error().code, ErrorCode::kNotRegular);
    EXPECT_EQ(writeFile("/dev/full", "x").error(), systemError(ENOSPC));

    // A redirected output is appended to, whatever name it goes by.
    for (const char* name : {"-", "/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"}) {
        const std::string file = at("out.txt");
        EXPECT_TRUE(holdsInChild([&] {
            const int out = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            ::dup2(out, STDOUT_FILENO);
            return ::write(out, "a", 1) == 1 && bool(writeFile(name, "b")) && ::write(out, "c", 1) == 1;
        })) << name;
        EXPECT_EQ(content(file), "abc") << name;
    }
}

TEST_F(FileWriterTest, KeepsOneBackupADayAndTenAFile) {
    const std::string file = at("a.svg");
    ASSERT_TRUE(keepDailyBackup(file)) << "nothing to keep";
    put(file, "first");
    const Result<std::string> backups = stateFolder("backups/" + hexOf(pathHash(fs::canonical(file).string())));
    ASSERT_TRUE(backups);
    for (int day = 1; day <= 12; ++day)
        put(*backups + "/" + std::to_string(day) + "-2020-01-" + std::to_string(day + 10) + "-a.svg", "past");
    ASSERT_TRUE(keepDailyBackup(file));
    put(file, "second");
    ASSERT_TRUE(keepDailyBackup(file)) << "today's is there";
    std::size_t count = 0;
    for (const auto& entry : fs::directory_iterator(*backups)) {
        ++count;
        const std::string name = entry.path().filename();
        if (name.starts_with("13-")) {
            EXPECT_EQ(content(entry.path()), "first");
        }
        EXPECT_FALSE(name.starts_with("3-")) << "the oldest go first";
    }
    EXPECT_EQ(count, 10U);
}

}  // namespace
}  // namespace quorvel::files

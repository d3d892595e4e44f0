// What the program does to the files, pipes and devices that it is given, and what it leaves behind when it is ended.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <filesystem>

#include "tests/support/program_run.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

constexpr char kSquare[] =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100pt\" height=\"100pt\" viewBox=\"0 0 100 100\">"
    "<path id=\"square\" d=\"M 10,10 H 90 V 90 H 10 Z\"/></svg>";

class Files : public ProgramRun {
  protected:
    void SetUp() override {
        write("square.svg", kSquare);
        write("list.csv", "1\r\n\"Title\"\r\n");
        write("empty.script", "new 9 9\n");
        fs::create_directory(path("temporary"));
    }
    // Quorvel is "$q", and `move FILE` moves the square in a drawing and saves it.
    int runShell(const std::string& text) {
        write("header.sh",
              "export TMPDIR=\"$PWD/temporary\"\nq='timeout --preserve-status -s KILL 60 " QUORVEL_PROGRAM_FILE
              "'\n"
              "move() { printf 'open square.svg\\nmove square 5 0\\nsave \"%s\"\\n' \"$1\" | $q run - $2 "
              "--profile profile; }\n"
              "children() { cat /proc/$1/task/$1/children; }\n");
        write("shell.sh", ". ./header.sh\n" + text + '\n');
        return runCommand("sh shell.sh");
    }
    std::string content(const std::string& name) const { return readBytes(path(name)); }
    std::size_t countBelow(const std::string& folder) const {
        std::size_t count = 0;
        std::error_code absent;
        for (const auto& entry : fs::recursive_directory_iterator(path(folder), absent))
            count += entry.is_regular_file();
        return count;
    }
};

TEST_F(Files, ADashAndDescriptorsAreTheStandardStreams) {
    const bool canPaint = fs::exists(fs::path(QUORVEL_PROGRAM_FILE).parent_path() / "quorvel-desktop");
    const struct {
        const char *words, *start;
        bool paints = false;
    } rows[] = {
        {"$q dump - <square.svg", "{\n \"page\""},
        {"cat square.svg | $q dump /dev/stdin", "{\n \"page\""},
        {"$q check - --json <square.svg", "{\"version\": 1, \"drawings\": [\n{\n \"file\": \"-\""},
        {"$q recalc - -o - <square.svg", kSquare},
        {"$q recalc square.svg --all -o /dev/stdout", kSquare},
        {"echo 'open square.svg\nsave -' | $q run -", kSquare},
        {"$q frame square.svg --parts - --at 0,0,90,90 -o - <list.csv", "<svg "},
        {"$q export - -o - <square.svg", "%PDF", true},
        {"$q export square.svg -o /dev/stdout --format png", "\x89PNG", true},
        {"n=$(printf 'caf\\351'); cp square.svg $n.svg; $q export $n.svg -o $n.pdf && cat $n.pdf", "%PDF", true},
        {"mkfifo pipe; cat pipe & $q export square.svg -o pipe; wait", "%PDF", true},
    };
    for (const auto& row : rows) {
        if (row.paints && !canPaint) continue;
        EXPECT_EQ(runShell(row.words), 0) << row.words << err_;
        EXPECT_TRUE(out_.starts_with(row.start)) << row.words << out_.substr(0, 80);
    }
    // The painting program is not taken from a folder of others.
    EXPECT_EQ(runShell("mkdir alone; cp " QUORVEL_PROGRAM_FILE " alone; cp /bin/true quorvel-desktop\n"
                       "PATH=\":.:$PATH\" alone/quorvel export square.svg -o painted.pdf"),
              2);
    EXPECT_EQ(err_, "export: quorvel-desktop, which paints, is neither beside quorvel nor in its installation\n");
    EXPECT_EQ(runShell("$q recalc square.svg -o /dev/null; test -c /dev/null"), 0) << "the device is still one";
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{AF_UNIX, {}};
    path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(listener, 1), 0);
    EXPECT_EQ(runShell("$q recalc square.svg -o socket"), 0) << err_;
    char text[sizeof kSquare] = {};
    EXPECT_EQ(::read(::accept(listener, nullptr, nullptr), text, sizeof text), ssize_t{sizeof kSquare - 1});
    EXPECT_STREQ(text, kSquare);
    EXPECT_EQ(runShell("mkfifo waits; $q dump waits"), 2);
    EXPECT_EQ(err_, "waits: a device or pipe, not a file\n");
}

TEST_F(Files, OutputThatIsLostIsNoticed) {
    for (const char* words : {"dump square.svg", "check square.svg --json", "snap square.svg --at 1,2",
                              "recalc square.svg -o new.svg", "recalc square.svg -o -", "--help", "dump --help"}) {
        EXPECT_EQ(runShell(std::string("$q ") + words + " >/dev/full"), 2) << words;
        EXPECT_TRUE(err_.ends_with(": No space left on device\n")) << words << err_;
        EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
        // The reader has gone before the program begins.
        runShell(std::string("{ sleep 0.2; $q ") + words + "; echo $? >status; } | :");
        EXPECT_EQ(content("status"), "2\n") << words;
        EXPECT_TRUE(err_.ends_with(": Broken pipe\n")) << words << err_;
        EXPECT_EQ(runShell(std::string("$q ") + words + " >&-"), 2) << words;
    }
    EXPECT_EQ(runShell("ulimit -f 1; $q dump square.svg"), 2);
    EXPECT_TRUE(err_.ends_with(": File too large\n")) << err_;
    // Settings that cannot be written when the script has ended.
    EXPECT_EQ(runShell("$q run empty.script --profile profile; chmod 444 profile/*/*/*/*.ini\n"
                       "printf 'new 9 9\\nset flArFSize 31\\n' | $q run - --profile profile"),
              2);
    EXPECT_EQ(err_, "profile/Adobe/Illustrator/Prefs/Quorvel.ini: the file is read-only\n");
}

TEST_F(Files, WhatMayNotBeReplacedStays) {
    write("fixed.svg", "old");
    fs::permissions(path("fixed.svg"), fs::perms(0444));
    EXPECT_EQ(runShell("move fixed.svg"), 2);
    EXPECT_EQ(err_, "-:3: fixed.svg: the file is read-only\n");
    EXPECT_EQ(content("fixed.svg"), "old");
    EXPECT_EQ(runShell("move fixed.svg --force"), 0) << err_;
    EXPECT_NE(content("fixed.svg"), "old");
    EXPECT_EQ(fs::status(path("fixed.svg")).permissions(), fs::perms(0444));

    const std::string changed = content("fixed.svg"), longest = std::string(251, 'n') + ".svg";
    write("twin.svg", "old");
    fs::create_hard_link(path("twin.svg"), path("other.svg"));
    const bool isRoot = ::chown(path("twin.svg").c_str(), 12, 34) == 0;
    EXPECT_EQ(runShell("move twin.svg && move " + longest + " && move " + longest), 0) << err_;
    EXPECT_EQ(content("other.svg"), changed);
    EXPECT_EQ(content(longest), changed);
    struct stat info {};
    ASSERT_EQ(::stat(path("twin.svg").c_str(), &info), 0);
    EXPECT_EQ(info.st_gid, isRoot ? 34U : ::getegid());

    EXPECT_EQ(runShell("ln -s nowhere link.svg; move link.svg"), 2);
    EXPECT_EQ(err_, "-:3: link.svg: the link leads to \"nowhere\", which does not exist\n");
    EXPECT_EQ(runShell("$q recalc square.svg -o none/new.svg"), 2);
    EXPECT_FALSE(fs::exists(path("none")));
    EXPECT_EQ(runShell("$q frame square.svg --parts list.csv --at 0,0,90,90 --out-dir made"), 0);
    EXPECT_EQ(err_, "frame: the folder \"made\" was not there and has been made\n");
    EXPECT_EQ(runShell("$q frame square.svg --parts list.csv --at 0,0,90,90 --out-dir two/folders"), 2);
    for (const auto& entry : fs::recursive_directory_iterator(folder_))
        EXPECT_FALSE(entry.path().filename().string().starts_with(".qv")) << entry.path();
}

TEST_F(Files, AReadOnlyFolderCostsNoDrawing) {
    if (::geteuid() != 0) GTEST_SKIP() << "needs to become another user";
    fs::create_directory(path("closed"));
    write("closed/a.svg", "old");
    fs::permissions(path("closed/a.svg"), fs::perms(0666));
    fs::permissions(path("closed"), fs::perms(0555));
    for (const char* name : {"", "temporary", "state", "profile"}) {
        fs::create_directories(path(name));
        fs::permissions(path(name), fs::perms(0777));
    }
    const std::string nobody = "setpriv --reuid=65534 --clear-groups ";
    if (runShell(nobody + "test -x " QUORVEL_PROGRAM_FILE) != 0) GTEST_SKIP() << "the program is closed to others";
    EXPECT_EQ(runShell(nobody + "sh -c '. ./header.sh; move closed/a.svg'"), 0) << err_;
    EXPECT_TRUE(content("closed/a.svg").starts_with("<svg"));
}

TEST_F(Files, TheVersionBeforeADaysFirstSaveIsKept) {
    EXPECT_EQ(runShell("move square.svg --no-backup"), 0) << err_;
    EXPECT_EQ(countBelow("state"), 0U);
    const std::string first = content("square.svg");
    EXPECT_EQ(runShell("move square.svg && move square.svg"), 0) << err_;
    ASSERT_EQ(countBelow("state/quorvel/backups"), 1U);
    for (const auto& entry : fs::recursive_directory_iterator(path("state")))
        if (entry.is_regular_file()) {
            EXPECT_EQ(readBytes(entry.path()), first);
        }
    // A folder for backups that cannot be made keeps nobody from saving.
    EXPECT_EQ(runShell("rm -r state; touch state; move square.svg"), 0) << err_;
    EXPECT_NE(out_.find("is not kept as a backup: "), std::string::npos) << out_;
}

TEST_F(Files, ProgramsOnOneProfileKeepEachOthersSettings) {
    std::string all;
    for (const char* key : {"flZwkTitle", "flZwkCorp", "flZwkDate", "flZwkScale", "flZwkType", "flZwkPatNo"})
        all += "{ for i in 1 2 3 4; do printf 'new 9 9\\nset " + std::string(key) +
               " \"v%s\"\\n' $i | $q run - --language en --profile profile; done; } & ";
    EXPECT_EQ(runShell(all + "wait; grep -c '\"v4\"' profile/*/*/*/*.ini"), 0) << err_;
    EXPECT_EQ(out_, "6\n");
}

TEST_F(Files, ASignalLeavesNothingBehind) {
    const std::pair<const char*, int> rows[] = {{"INT", 130}, {"TERM", 143}};
    for (const auto& [signal, status] : rows) {
        // Waits for a drawing that never comes: in its own process, and in a worker's.
        for (const char* words : {"recalc - -o out.svg", "check -", "check - -"}) {
            const std::string end = std::string("timeout --preserve-status -s ") + signal + " 1 ";
            EXPECT_EQ(runShell("test -p never || mkfifo never; " + end + QUORVEL_PROGRAM_FILE " " + words + " <>never"),
                      status)
                << signal << words << err_;
            EXPECT_TRUE(fs::is_empty(path("temporary"))) << signal << words;
        }
    }
    // A worker that is ended alone is told, and the parent's end is that of all workers.
    EXPECT_EQ(runShell("$q check - <>never & sleep 0.7; kill -TERM $(children $(children $!)); wait $!"), 2);
    EXPECT_EQ(err_, "-: its process ended on signal 15\n");
    EXPECT_TRUE(fs::is_empty(path("temporary")));
    EXPECT_FALSE(fs::exists(path("out.svg")));
}

}  // namespace
}  // namespace quorvel::tests

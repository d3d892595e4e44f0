// What the program says to input that it cannot use: one clear line on standard error, exit 2, and nothing written.
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>

#include "tests/support/program_run.h"
#include "tests/support/sanitized.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

constexpr char kHead[] = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100pt\" height=\"100pt\">";

std::string withPath(const std::string& data) { return kHead + ("<path d=\"" + data + "\"/></svg>"); }

std::string nested(int depth) {
    std::string text = kHead;
    for (int i = 0; i < depth; ++i) text += "<g>";
    for (int i = 0; i < depth; ++i) text += "</g>";
    return text + "</svg>";
}

std::string entityBomb() {
    std::string text = "<?xml version=\"1.0\"?><!DOCTYPE svg [<!ENTITY a0 \"aaaaaaaaaa\">";
    for (int i = 1; i < 12; ++i) {
        text += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int j = 0; j < 10; ++j) text += "&a" + std::to_string(i - 1) + ";";
        text += "\">";
    }
    return text + "]>" + kHead + "<text>&a11;</text></svg>";
}

class BadInput : public ProgramRun {
  protected:
    void expectRefused(const std::string& arguments, const std::string& named) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(runProgram(arguments), 2);
        EXPECT_EQ(out_, "");
        EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
        EXPECT_NE(err_.find(named), std::string::npos) << err_;
        EXPECT_LT(err_.size(), 300U) << err_;
        EXPECT_FALSE(std::filesystem::exists(path("saved.svg")));
    }
};

TEST_F(BadInput, EndsInOneLineThatNamesTheFile) {
    const std::pair<const char*, std::string> files[] = {
        {"empty.svg", ""},
        {"words.svg", "This is no XML at all.\n"},
        {"page.svg", "<?xml version=\"1.0\"?><html><body/></html>"},
        {"cut.svg", std::string(kHead) + "<g><path d=\"M 0,0 L 10,1"},
        {"open.svg", std::string(kHead) + "<g><path d=\"M 0,0 L 10,10\"/>"},
        {"deep.svg", nested(100000)},
        {"huge.svg", withPath("M 0,0 L 1e20,5")},
        {"bomb.svg", entityBomb()},
    };
    for (const auto& [name, bytes] : files) {
        write(name, bytes);
        write("open.script", std::string("open ") + name + "\nsave saved.svg\n");
        expectRefused(std::string("dump ") + name, name);
        expectRefused("run open.script", "open.script:1: ");
        expectRefused(std::string("recalc ") + name + " -o saved.svg", name);
    }
    expectRefused("dump absent.svg", "absent.svg");
    write("open.script", "open absent.svg\nsave saved.svg\n");
    expectRefused("run open.script", "absent.svg");
}

TEST_F(BadInput, NamesTheLineOfAByteThatIsNoUtf8) {
    const auto titled = [](const std::string& title) {
        return std::string(kHead) + "\n<title>" + title + "</title>\n<path d=\"M 0,0 L 10,10\"/></svg>";
    };
    // Of each length the first and the last that there is, and the neighbours of the surrogates.
    write("good.svg", titled("\t\x7F|\xC2\x80\xDF\xBF|\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF|"
                             "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"));
    EXPECT_EQ(runProgram("dump good.svg"), 0) << err_;
    const char* const foreign[] = {
        "Pl\xE4tte",     // Latin-1
        "12345678\xE4",  // behind eight that are sound
        "\xC0\xAF",
        "\xC1\xBF",
        "\xE0\x9F\xBF",  // overlong
        "\xF0\x8F\xBF\xBF",
        "\xED\xA0\x80",
        "\xED\xBF\xBF",  // overlong; surrogates
        "\xF4\x90\x80\x80",
        "\xF5\x80\x80\x80",
        "\xFF",  // beyond the last character
        "\x80",
        "\xC3",
        "\xE3\x81|",
        "\xF0\x9F\x98|",
    };
    for (const char* title : foreign) {
        write("foreign.svg", titled(title));
        expectRefused("dump foreign.svg", "foreign.svg: line 2: a byte that is no UTF-8");
    }
}

// Small files that once took minutes or gigabytes.
TEST_F(BadInput, IsRefusedWithinASecondAndLittleMemory) {
    if (kSanitized) GTEST_SKIP() << "the sanitizer itself takes more memory than the test allows";
    const auto repeated = [](const std::string& text, int times) {
        std::string all;
        for (int i = 0; i < times; ++i) all += text;
        return all;
    };
    write("entity.svg", "<!DOCTYPE svg [<!ENTITY x \"" + std::string(2000, 'y') + "\">]>" + kHead + "\n<g id=\"" +
                            repeated("&x;", 1000000) + "\"/></svg>");
    write("rules.svg", std::string(kHead) + "<style>" + repeated(".a,", 30000) + ".a{" + repeated("fill:red;", 30000) +
                           "}</style>\n<g class=\"a\"/></svg>");
    write("copies.svg", kHead + ("\n<defs><polyline id=\"a\" points=\"1,1" + std::string(200000, ' ') + "\"/></defs>") +
                            repeated("<use href=\"#a\"/>", 150000) + "</svg>");
    write("long.svg", kHead + std::string("</svg>"));
    std::filesystem::resize_file(path("long.svg"), std::uintmax_t{1} << 40);  // takes no room on the disk
    ASSERT_EQ(mkfifo(path("pipe.svg").c_str(), 0600), 0);
    const std::pair<const char*, const char*> files[] = {
        {"entity.svg", "entity.svg: line 2: the entities expand to too much"},
        {"rules.svg", "rules.svg: line 2: g: the style sheets ask for too much work"},
        {"copies.svg", "copies.svg: line 2: polyline \"a\": too many copies"},
        {"long.svg", "long.svg: the file is larger than 512 MB"},
        {"pipe.svg", "pipe.svg: a device or pipe, not a file"},
        {"/dev/zero", "/dev/zero: a device or pipe, not a file"},
    };
    for (const auto& [file, said] : files) {
        SCOPED_TRACE(file);
        const std::string limits = "ulimit -v 600000; ulimit -t 10; ";
        EXPECT_EQ(runCommand(limits + "timeout 30 '" QUORVEL_PROGRAM_FILE "' dump --profile profile " + file), 2);
        EXPECT_TRUE(err_.starts_with(said)) << err_;
        EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
    }
}

TEST_F(BadInput, LeavesATargetThatStoodBefore) {
    write("good.svg", withPath("M 0,0 L 10,10"));
    write("bad.svg", withPath("M 0,0 L 1e20,5"));
    write("both.script", "open good.svg\nopen bad.svg\nsave good.svg\n");
    expectRefused("run both.script", "both.script:2: ");
    EXPECT_EQ(readBytes(path("good.svg")), withPath("M 0,0 L 10,10"));
}

TEST_F(BadInput, IsFoundInAScriptBeforeAnyOfItRuns) {
    const std::pair<std::string, std::string> endings[] = {
        {"squeeze 1 2", "bad.script:4: "},       {"track 1", "bad.script:4: "},
        {"track 1 1e999", "bad.script:4: "},     {"track one two", "bad.script:4: "},
        {"tool \"Angle Tool", "bad.script:4: "}, {"expect wonders", "bad.script:4: "},
    };
    write("good.svg", withPath("M 0,0 L 10,10"));
    for (const auto& [line, named] : endings) {
        write("bad.script", "open good.svg\n\nsave saved.svg\n" + line + "\n");
        expectRefused("run bad.script", named);
    }
    expectRefused("run absent.script", "absent.script");
}

TEST_F(BadInput, IsNotAScriptThatDoesNothing) {
    for (const char* text : {"", "\n\n", "# nothing\n"}) {
        write("idle.script", text);
        EXPECT_EQ(runProgram("run idle.script"), 0) << err_;
        EXPECT_EQ(err_, "");
    }
}

// A fault in the run itself is another thing than bad input: exit 1, with the line.
TEST_F(BadInput, IsToldFromAnExpectationThatFails) {
    write("fails.script", "new 100 100\nexpect beep\n");
    EXPECT_EQ(runProgram("run fails.script"), 1);
    EXPECT_EQ(err_.rfind("fails.script:2: ", 0), 0U) << err_;
}

}  // namespace
}  // namespace quorvel::tests

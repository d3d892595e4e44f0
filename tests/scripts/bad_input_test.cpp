// What the program says to input that it cannot use: one clear line on standard error, exit 2, and nothing written.
#include <algorithm>
#include <filesystem>

#include "tests/support/program_run.h"
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
        {"garbage.svg", withPath("M 0,0 L banana 5")},
        {"nan.svg", withPath("M 0,0 L NaN,5")},
        {"huge.svg", withPath("M 0,0 L 1e400,5")},
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

TEST_F(BadInput, LeavesATargetThatStoodBefore) {
    write("good.svg", withPath("M 0,0 L 10,10"));
    write("bad.svg", withPath("M 0,0 L NaN,5"));
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

// A fault in the run itself is another thing than bad input: exit 1, with the line.
TEST_F(BadInput, IsToldFromAnExpectationThatFails) {
    write("fails.script", "new 100 100\nexpect beep\n");
    EXPECT_EQ(runProgram("run fails.script"), 1);
    EXPECT_EQ(err_.rfind("fails.script:2: ", 0), 0U) << err_;
}

}  // namespace
}  // namespace quorvel::tests

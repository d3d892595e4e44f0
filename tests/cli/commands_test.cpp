// The command line itself: what it refuses, in one line, and what its questions print.
#include <algorithm>
#include <filesystem>

#include "tests/support/program_run.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

// A square of 80 points from (10, 10), y up, on a page of 100.
constexpr char kSquare[] =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100pt\" height=\"100pt\" viewBox=\"0 0 100 100\">"
    "<path id=\"square\" d=\"M 10,10 H 90 V 90 H 10 Z\"/></svg>";

class Commands : public ProgramRun {
  protected:
    void SetUp() override { write("square.svg", kSquare); }
    int runScript(const std::string& text) {
        write("test.script", text);
        return runProgram("run test.script");
    }
};

TEST_F(Commands, WrongWordsAreRefusedInOneLineThatNamesTheCommand) {
    const std::pair<const char*, const char*> wrong[] = {
        {"recalc square.svg", "quorvel recalc: --output is required\n"},
        {"recalc", "quorvel recalc: FILE is required\n"},
        {"dump square.svg more and", "quorvel dump: The following arguments were not expected: and more\n"},
        {"dump square.svg --seed x", "quorvel dump: Could not convert: --seed = x\n"},
        {"dump square.svg --language fr", "quorvel dump: --language: fr not in {ja,en,ko}\n"},
        {"export square.svg --dpi 0", "quorvel export: --dpi: Value 0 not in range 1.000000 to 10000.000000\n"},
        {"snap square.svg --at 1,2 --at 3,4", "quorvel snap: --at: At Most 1 required but received 2\n"},
        {"snap square.svg --at 1,2 --zoom 0", "quorvel snap: --zoom: a number above 0\n"},
        {"snap square.svg --at 1,2 --zoom inf", "quorvel snap: --zoom: a number above 0\n"},
        {"snap square.svg --at 1", "--at 1: \"\" is no number\n"},
        {"snap square.svg --at 1,2 --tool Nope", "--tool: no tool is titled \"Nope\"\n"},
        {"dump nothing.svg", "nothing.svg: No such file or directory\n"},
    };
    for (const auto& [words, said] : wrong) {
        EXPECT_EQ(runProgram(words), 2) << words;
        EXPECT_EQ(err_, said) << words;
        EXPECT_EQ(out_, "") << words;
    }
    EXPECT_EQ(runProgram("squeeze square.svg"), 2);
    EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
}

TEST_F(Commands, ErrorsAreInTheLanguageAskedFor) {
    write("bad.svg",
          "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9pt\" height=\"9pt\">\n<path id=\"p\" d=\"M 0 "
          "1e20\"/></svg>");
    write("odd.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9pt\" height=\"9pt\"><image/></svg>");
    write("move.script", "open square.svg\nmove circle 1 1\n");
    write("open.script", "open bad.svg\n");
    write("turn.script", "\nturn square 1 1\n");
    const std::string bad = "bad.svg: 2 行目: path \"p\": パスデータの座標が範囲を超えています\n";
    const std::string kept = "odd.svg: image 要素はそのまま保持します\n";
    const std::pair<const char*, std::string> rows[] = {
        {"dump bad.svg", bad},
        {"check bad.svg", bad},
        {"run open.script", "open.script:1: " + bad},
        {"run move.script", "move.script:2: id が \"circle\" のオブジェクトはありません\n"},
        {"run turn.script", "turn.script:2: turn の語数が正しくありません\n"},
        {"list odd.svg", kept},
        {"snap odd.svg --at 1,2", kept},
        {"frame square.svg --parts none.csv --at 0,0,9,9 -o out.svg",
         "none.csv: ファイルまたはフォルダーがありません\n"},
        {"frame square.svg --parts none.csv --at 0,0,9 -o out.svg",
         "--at 0,0,9: 4 つの数値 LEFT,BOTTOM,RIGHT,TOP を指定してください\n"},
        {"frame square.svg odd.svg --parts none.csv --at 0,0,9,9 -o out.svg",
         "frame: 図面が複数なら --out-dir を指定してください\n"},
        {"recalc square.svg", "quorvel recalc: --output を指定してください\n"},
        {"snap square.svg --at 1,2 --zoom 0", "quorvel snap: --zoom: 0 より大きい数値を指定してください\n"},
        {"dump square.svg extra", "quorvel dump: 余分な引数です: extra\n"},
        {"squeeze square.svg", "quorvel コマンドを指定してください\n"},
    };
    for (const auto& [words, said] : rows) {
        runProgram(std::string(words) + " --language ja");
        EXPECT_EQ(err_, said) << words;
    }
    // There are no sentences in Korean, and the profile's language is that of the tools alone.
    EXPECT_EQ(runProgram("dump none.svg --language ko"), 2);
    EXPECT_EQ(err_, "none.svg: No such file or directory\n");
    write("ja.script", "set language JAPANESE\nnew 9 9\nundo\n");
    EXPECT_EQ(runProgram("run ja.script"), 1);
    EXPECT_EQ(err_, "ja.script:3: there is nothing to undo\n");
    EXPECT_EQ(runProgram("check bad.svg --json --language ja"), 2);
    EXPECT_EQ(printed("/drawings/0/error"), R"("bad.svg: 2 行目: path \"p\": パスデータの座標が範囲を超えています")");
}

TEST_F(Commands, AListInFrontOfTheDrawingDoesNotSwallowIt) {
    EXPECT_EQ(runProgram("recalc --ids a,b square.svg -o out.svg"), 2);
    EXPECT_EQ(err_, "square.svg: no dimension has the id a\n");
    write("list.csv", "1\r\n");
    EXPECT_EQ(runProgram("frame --set flZwkTitle=A --set flZwkScale=B square.svg --parts list.csv --at 0,0,90,90 "
                         "-o framed.svg"),
              0)
        << err_;
}

TEST_F(Commands, SnapTellsWhatEachSearchFindsAndWhichOneWins) {
    EXPECT_EQ(runProgram("snap square.svg --at 10.5,89.5 --language en"), 0) << err_;
    EXPECT_EQ(out_.substr(0, out_.find('\n')), "Oblique Dimension Tool at 10.5,89.5 lands on 10.0,90.0 (anchor)");
    EXPECT_NE(out_.find("anchor          wins: anchor 10.0,90.0  square[0]\n"), std::string::npos) << out_;
    EXPECT_NE(out_.find("did not run: anchor came before it"), std::string::npos) << out_;
    EXPECT_EQ(runProgram("snap square.svg --at 50,89.5 --json --language en"), 0) << err_;
    EXPECT_EQ(printed("/kind"), "\"path\"");
    EXPECT_EQ(printed("/point"), "[50.0,90.0]");
    int searches = 0;
    for (std::string search = "/searches/0"; printed(search) != "(absent)";
         search = "/searches/" + std::to_string(++searches)) {
        const bool path = printed(search + "/search") == "\"path\"";
        EXPECT_EQ(printed(search + "/outcome") == "\"wins\"", path) << printed(search);
        if (path) {
            EXPECT_EQ(printed(search + "/art"), R"([{"id":"square","index":1}])");
        }
    }
    EXPECT_GT(searches, 3);
    // Farther away than two pixels there is nothing to land on.
    EXPECT_EQ(runProgram("snap square.svg --at 50,87 --json --language en"), 0) << err_;
    EXPECT_EQ(printed("/kind"), "\"free\"");
    EXPECT_EQ(runProgram("snap square.svg --at 50,87 --zoom 0.5 --json --language en"), 0) << err_;
    EXPECT_EQ(printed("/kind"), "\"path\"");
}

TEST_F(Commands, SlipsInAScriptFailIt) {
    const struct {
        const char *script, *said;
        int status;
    } slips[] = {
        {"set flTypoo 3\nopen square.svg\n", "test.script:1: unknown setting flTypoo\n", 1},
        {"open square.svg\nset flTypoo 3\n", "test.script:2: unknown setting flTypoo\n", 1},
        {"open square.svg\nzoom 0\n", "test.script:2: a zoom is above 0\n", 1},
        {"open square.svg\nflyout 99\n", "test.script:2: the panel's flyout has no item 99\n", 1},
        {"open square.svg\nanswer ok\n", "test.script:2: the end is reached and a reply has not been asked for\n", 1},
        {"open square.svg\nsave saved.svg\nflyout 1.5\n", "test.script:3: \"1.5\" is no whole number\n", 2},
        {"open square.svg\nsave saved.svg\ntick 2147483647\n",
         "test.script:3: Value 2147483647 not in range 0 to 100000\n", 2},
        {"open square.svg\nsave saved.svg\nmove square 1e300 0\n",
         "test.script:3: Value 1e300 not in range -3e+38 to 3e+38\n", 2},
        {"open square.svg\nsave saved.svg\ndialog 5 press:x\n", "test.script:3: \"x\" is no number\n", 2},
        {"open square.svg\nmove square 5 5\nexpect undo \"Undo Other\"\n",
         "test.script:3: expected undo \"Undo Other\", found \"Undo Move\"\n", 1},
        {"open square.svg\nmove square 5 5\nundo\nexpect undo \"Undo Move\"\n",
         "test.script:4: expected undo \"Undo Move\", found \"\"\n", 1},
    };
    for (const auto& [script, said, status] : slips) {
        EXPECT_EQ(runScript(script), status) << script;
        EXPECT_EQ(err_, said) << script;
    }
    EXPECT_FALSE(std::filesystem::exists(path("saved.svg"))) << "a slip is found before anything runs";
    EXPECT_EQ(runScript(""), 0) << "nothing to do is done: " << err_;
}

}  // namespace
}  // namespace quorvel::tests

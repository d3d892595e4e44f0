// A drawing with dimensions goes through another editor and comes back: the check names exactly the dimensions whose
// art was changed there, one recalculation makes them true, and a second one finds nothing to do. The editor is
// Inkscape, driven from its command line; where it is not installed the tests are skipped.
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "tests/cli/measured_drawing.h"
#include "tests/support/program_run.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

bool editorIsInstalled() { return std::system("command -v inkscape >/dev/null 2>&1") == 0; }

// The lines of a text without their beginning.
std::set<std::string> linesBehind(const std::string& beginning, const std::string& text) {
    std::set<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        EXPECT_EQ(line.rfind(beginning, 0), 0U) << line;
        lines.insert(line.substr(std::min(beginning.size(), line.size())));
    }
    return lines;
}

// The group with the measured art, as the bytes stand in the file.
std::string partsOf(const std::string& svg) {
    const std::size_t from = svg.find("id=\"parts\"");
    const std::size_t to = svg.find("</g>", from);
    return from == std::string::npos || to == std::string::npos ? std::string() : svg.substr(from, to - from);
}

constexpr char kFreeLine[] = "quorvel-6 oblique free \"50\", from: free, to: free";
constexpr char kFreeMoved[] = "quorvel-6 oblique moved \"50\", moved, from: free, to: free";

class OtherEditor : public ProgramRun {
  protected:
    void SetUp() override {
        if (!editorIsInstalled()) GTEST_SKIP() << "inkscape is not installed";
        write("plain.svg", kMeasuredDrawing);
        const ScriptRun run(kTheirSettings + ("open \"" + path("plain.svg") + "\"") + kItsDimensions + "save \"" +
                            path("drawn.svg") + "\"\n");
        ASSERT_EQ(run.fault(), "");
        ASSERT_EQ(shown("drawn.svg"), kTrueTexts);
    }
    int runProgram(const std::string& arguments) { return ProgramRun::runProgram(arguments + " --language en"); }

    // Opens drawn.svg in the editor, does this there (moves are in pixels, 4/3 to a point), and saves it as edited.svg.
    // Its settings are its first ones, in which a stroke grows with its path.
    void edit(const std::string& actions) {
        fs::remove(path("edited.svg"));
        runCommand("env -u DISPLAY HOME=. INKSCAPE_PROFILE_DIR=./editor timeout 60 inkscape drawn.svg --actions='" +
                   actions + "export-filename:edited.svg;export-do'");
        ASSERT_TRUE(fs::exists(path("edited.svg"))) << err_;
    }

    // What the dimensions show, without points and links.
    std::set<std::string> shown(const std::string& file) {
        EXPECT_EQ(runProgram("list " + file + " --json"), 0) << err_;
        std::set<std::string> texts;
        const auto bare = [&](const std::string& pointer) {
            const std::string json = printed(pointer);
            return json.substr(1, json.size() - 2);
        };
        for (int i = 0; printed("/" + std::to_string(i)) != "(absent)"; ++i) {
            const std::string dimension = "/" + std::to_string(i);
            texts.insert(bare(dimension + "/id") + " " + bare(dimension + "/kind") + " " +
                         printed(dimension + "/texts/0"));
        }
        return texts;
    }

    void expectSilent(const std::string& file) {
        EXPECT_EQ(runProgram("check " + file), 0);
        for (const std::string& line : linesBehind(file + ": ", out_))
            EXPECT_NE(line.find(" free "), std::string::npos) << line;
    }
};

TEST_F(OtherEditor, LeavesDimensionsTrueWhoseArtItDoesNotChange) {
    const char* const edits[] = {
        "",
        "export-plain-svg;",
        "select-by-id:unmeasured;transform-translate:30,-15;transform-scale:2;",
        "select-by-id:parts;selection-ungroup;",
        "select-by-id:hole;selection-group;",
        "select-by-id:plate;object-set-attribute:style, stroke-width:3;",
    };
    for (const char* actions : edits) {
        SCOPED_TRACE(actions);
        ASSERT_NO_FATAL_FAILURE(edit(actions));
        EXPECT_EQ(shown("edited.svg"), kTrueTexts);
        expectSilent("edited.svg");
        EXPECT_EQ(runProgram("recalc edited.svg -o again.svg"), 0) << err_;
        EXPECT_EQ(readBytes(path("again.svg")), readBytes(path("edited.svg")));
    }
}

TEST_F(OtherEditor, MakesStaleExactlyWhatOneRecalculationMends) {
    struct Edit {
        const char* actions;
        std::set<std::string> stale;
    };
    const Edit edits[] = {
        {"select-by-id:plate;transform-scale:1.5;", {"quorvel-1 straight value \"100\" -> \"150\", moved"}},
        {"select-by-id:slope;transform-translate:30,-15;", {"quorvel-2 oblique moved \"100\", moved"}},
        {"select-by-id:channel;transform-scale:0.5;", {"quorvel-3 curve value \"300\" -> \"150\", moved"}},
        {"select-by-id:hole;transform-scale:2;", {"quorvel-4 radius value \"R36\" -> \"R72\", moved"}},
        // Clockwise as one looks at it: the leg that rises by 45 degrees to the right sinks to 30.
        {"select-by-id:leg;transform-rotate:15;", {"quorvel-5 angle value \" 45˚\" -> \" 30˚\", moved"}},
        // The line on free paper goes back to the points that it was drawn on.
        {"select-by-id:quorvel-6;transform-translate:8,8;", {kFreeMoved}},
        {"select-by-id:slope;delete-selection;", {"quorvel-2 oblique lost \"100\", from: deleted, to: deleted"}},
        {"select-by-id:slope;transform-translate:-9,6;transform-scale:1.2;select-clear;"
         "select-by-id:hole;transform-translate:12,0;",
         {"quorvel-2 oblique value \"100\" -> \"120\", moved", "quorvel-4 radius moved \"R36\", moved"}},
        {"select-by-id:parts;transform-scale:1.1;",
         {"quorvel-1 straight value \"100\" -> \"110\", moved", "quorvel-2 oblique value \"100\" -> \"110\", moved",
          "quorvel-3 curve value \"300\" -> \"330\", moved", "quorvel-4 radius value \"R36\" -> \"R39.6\", moved",
          "quorvel-5 angle moved \" 45˚\", moved"}},
    };
    for (const auto& [actions, stale] : edits) {
        SCOPED_TRACE(actions);
        ASSERT_NO_FATAL_FAILURE(edit(actions));
        EXPECT_EQ(runProgram("check edited.svg"), 1) << err_;
        std::set<std::string> lines = stale;
        if (!stale.contains(kFreeMoved)) lines.insert(kFreeLine);
        EXPECT_EQ(linesBehind("edited.svg: ", std::regex_replace(out_, std::regex("moved [0-9.e]+"), "moved")), lines);
        EXPECT_EQ(shown("edited.svg"), kTrueTexts);

        EXPECT_EQ(runProgram("recalc edited.svg -o mended.svg"), 0) << err_;
        EXPECT_EQ(out_, "mended.svg: " + std::to_string(stale.size()) + " rebuilt\n");
        expectSilent("mended.svg");
        std::set<std::string> mended = kTrueTexts;
        for (const std::string& line : stale) {
            std::smatch found;  // the dimension, its text, and the new one if there is one
            ASSERT_TRUE(
                std::regex_search(line, found, std::regex("^(\\S+ \\S+) \\w+ (\"[^\"]*\")(?: -> (\"[^\"]*\"))?")));
            mended.erase(found.str(1) + " " + found.str(2));
            mended.insert(found.str(1) + " " + found.str(found[3].matched ? 3 : 2));
        }
        EXPECT_EQ(shown("mended.svg"), mended);
        const std::string art = partsOf(readBytes(path("edited.svg")));
        EXPECT_FALSE(art.empty());
        EXPECT_EQ(partsOf(readBytes(path("mended.svg"))), art);

        EXPECT_EQ(runProgram("recalc mended.svg -o again.svg"), 0) << err_;
        EXPECT_EQ(readBytes(path("again.svg")), readBytes(path("mended.svg")));
    }
}

}  // namespace
}  // namespace quorvel::tests

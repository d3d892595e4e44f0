// Checking and recalculating from the command line after the measured art was changed by hand in the file: what is
// named, what is rebuilt, and that nothing else is touched, neither in the drawing nor in the user's settings.
#include <algorithm>
#include <filesystem>
#include <regex>

#include "tests/cli/measured_drawing.h"
#include "tests/support/program_run.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

// One unit is one point.
constexpr char kDrawing[] =
    R"(<svg xmlns="http://www.w3.org/2000/svg" width="400pt" height="300pt" viewBox="0 0 400 300"
   xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape"
   xmlns:sodipodi="http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd">
  <g id="parts" inkscape:groupmode="layer" inkscape:label="Parts" fill="none" stroke="#000000">
    <path id="plate" d="M 40,40 H 140 V 100 H 40 Z"/>
    <path id="bar" d="M 200,40 H 260"/>
  </g>
  <g id="notes" inkscape:groupmode="layer" inkscape:label="Notes"/>
</svg>
)";

// The plate's width and the bar's length.
constexpr char kDimensions[] = R"(
tool "Straight Dimension Tool"
track 40 260
down
drag 140 260
up
track 90 285
down
tool "Straight Dimension Tool"
track 200 260
down
drag 260 260
up
track 230 285
down
expect no-beep
)";

std::string with(std::string text, const std::string& old, const std::string& now) {
    const std::size_t at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return at == std::string::npos ? text : text.replace(at, old.size(), now);
}

// The text without the lines of the dimension; a rebuilt one lies on top of its layer.
std::string without(const std::string& text, const std::string& id) {
    const std::string end = "\n    </g>";
    const std::size_t from = text.find("\n    <g id=\"" + id + "\""), to = text.find(end, from);
    EXPECT_NE(from, std::string::npos) << text;
    EXPECT_NE(to, std::string::npos) << text;
    return to == std::string::npos ? text : text.substr(0, from) + text.substr(to + end.size());
}

class Recalculation : public ProgramRun {
  protected:
    void SetUp() override {
        write("plain.svg", kDrawing);
        const ScriptRun run(kTheirSettings + ("open \"" + path("plain.svg") + "\"") + kDimensions + "save \"" +
                            path("drawn.svg") + "\"\n");
        ASSERT_EQ(run.fault(), "");
        drawn_ = readBytes(path("drawn.svg"));
        longer_ = with(drawn_, "H 140 V 100", "H 160 V 100");
    }

    // Nothing to mend, told in silence, and kept to the byte.
    void expectTrue(const std::string& file) {
        EXPECT_EQ(runProgram("check " + file), 0) << err_;
        EXPECT_EQ(out_, "");
        EXPECT_EQ(runProgram("recalc " + file + " -o again.svg"), 0) << err_;
        EXPECT_EQ(readBytes(path("again.svg")), readBytes(path(file)));
    }

    std::string drawn_, longer_;
};

TEST_F(Recalculation, SeesThroughHiddenAndLockedLayers) {
    const char *parts = "id=\"parts\"", *notes = "id=\"notes\"";
    const char *locked = " sodipodi:insensitive=\"true\"", *hidden = " style=\"display:none\"";
    const std::vector<std::pair<const char*, const char*>> states[] = {{},
                                                                       {{parts, locked}},
                                                                       {{notes, locked}},
                                                                       {{parts, hidden}},
                                                                       {{notes, hidden}},
                                                                       {{parts, locked}, {notes, hidden}}};
    for (const auto& state : states) {
        std::string still = drawn_, changed = longer_;
        for (const auto& [layer, how] : state) {
            still = with(still, layer, std::string(layer) + how);
            changed = with(changed, layer, std::string(layer) + how);
        }
        SCOPED_TRACE(still.substr(0, 700));
        write("still.svg", still);
        write("changed.svg", changed);
        expectTrue("still.svg");
        EXPECT_EQ(runProgram("check changed.svg"), 1) << err_;
        EXPECT_EQ(out_, "changed.svg: quorvel-1 straight value \"100\" -> \"120\", moved 20\n");
        EXPECT_EQ(runProgram("recalc changed.svg -o mended.svg"), 0) << err_;
        EXPECT_EQ(out_, "mended.svg: 1 rebuilt\n");
        const std::string mended = readBytes(path("mended.svg"));
        EXPECT_EQ(without(mended, "quorvel-1"), without(changed, "quorvel-1"));
        EXPECT_NE(mended.find(">120<"), std::string::npos);
        expectTrue("mended.svg");
    }
}

TEST_F(Recalculation, RebuildsWhatIsNamedOrAll) {
    const std::string both = with(longer_, "M 200,40 H 260", "M 200,40 H 290");
    write("both.svg", both);
    EXPECT_EQ(runProgram("check both.svg"), 1);
    EXPECT_EQ(out_,
              "both.svg: quorvel-2 straight value \"60\" -> \"90\", moved 30\n"
              "both.svg: quorvel-1 straight value \"100\" -> \"120\", moved 20\n")
        << "the top one first";
    EXPECT_EQ(runProgram("recalc both.svg -o one.svg --ids quorvel-2"), 0) << err_;
    EXPECT_EQ(runProgram("check one.svg"), 1);
    EXPECT_EQ(out_, "one.svg: quorvel-1 straight value \"100\" -> \"120\", moved 20\n");
    EXPECT_EQ(runProgram("recalc one.svg -o all.svg --all"), 0) << err_;
    EXPECT_EQ(out_, "all.svg: 2 rebuilt\n");
    expectTrue("all.svg");
    // The record has no text of the scale; the profile's comes to none.
    EXPECT_EQ(
        runCommand("printf 'set flScaleText \"1/7\"\\nnew 9 9\\n' | " QUORVEL_PROGRAM_FILE " run - --profile profile"),
        0);
    EXPECT_EQ(runProgram("recalc one.svg -o other.svg --all"), 0) << err_;
    EXPECT_EQ(readBytes(path("other.svg")), readBytes(path("all.svg")));
    EXPECT_EQ(runProgram("recalc both.svg -o none.svg --ids quorvel-2,quorvel-9"), 2);
    EXPECT_EQ(err_, "both.svg: no dimension has the id quorvel-9\n");
    EXPECT_FALSE(fs::exists(path("none.svg")));
    // Another program has taken the ids away.
    write("nameless.svg", with(with(longer_, " id=\"quorvel-1\"", ""), " id=\"quorvel-2\"", ""));
    EXPECT_EQ(runProgram("check nameless.svg"), 1);
    EXPECT_EQ(out_, "nameless.svg: (no id) straight value \"100\" -> \"120\", moved 20\n");
    EXPECT_EQ(runProgram("recalc nameless.svg -o named.svg"), 0) << err_;
    EXPECT_EQ(out_, "named.svg: 1 rebuilt\n");
    expectTrue("named.svg");
}

// The channel's way is 50 + 100 + 50 now, the hole's radius twice, the leg rises by 60 tan 30, the slope is gone.
TEST_F(Recalculation, MendsEveryKindAndNamesWhatHasLostItsArt) {
    write("plain.svg", kMeasuredDrawing);
    const ScriptRun run(kTheirSettings + ("open \"" + path("plain.svg") + "\"") + kItsDimensions + "save \"" +
                        path("kinds.svg") + "\"\n");
    ASSERT_EQ(run.fault(), "");
    std::string text = readBytes(path("kinds.svg"));
    text = with(text, "M 40,250 V 150 H 140", "M 40,250 V 200 H 140");
    text = with(text, "r=\"36\"", "r=\"72\"");
    text = with(text, "L 360,220", "L 360,245.35898");
    const std::size_t slope = text.find("<path id=\"slope\"");
    ASSERT_NE(slope, std::string::npos);
    text.erase(slope, text.find("/>", slope) + 2 - slope);
    write("changed.svg", text);
    EXPECT_EQ(runProgram("check changed.svg --language en"), 1) << err_;
    EXPECT_EQ(std::regex_replace(out_, std::regex("moved [0-9.e]+"), "moved"),
              "changed.svg: quorvel-6 oblique free \"50\", from: free, to: free\n"
              "changed.svg: quorvel-5 angle value \" 45˚\" -> \" 30˚\", moved\n"
              "changed.svg: quorvel-4 radius value \"R36\" -> \"R72\", moved\n"
              "changed.svg: quorvel-3 curve value \"300\" -> \"200\", moved\n"
              "changed.svg: quorvel-2 oblique lost \"100\", from: deleted, to: deleted\n");
    EXPECT_EQ(runProgram("recalc changed.svg -o mended.svg --language en"), 0) << err_;
    EXPECT_EQ(out_, "mended.svg: 4 rebuilt\n");
    EXPECT_EQ(runProgram("check mended.svg --language ja"), 0) << out_;
    EXPECT_EQ(out_,
              "mended.svg: quorvel-6 oblique free \"50\", from: free, to: free\n"
              "mended.svg: quorvel-2 oblique free \"100\", from: free, to: free\n")
        << "the link has ended; the signs keep their language";
}

TEST_F(Recalculation, ManyFilesAreCheckedInOneCall) {
    write("longer.svg", longer_);
    write("broken.svg", drawn_.substr(0, drawn_.size() / 2));
    EXPECT_EQ(runProgram("check drawn.svg longer.svg drawn.svg"), 1) << err_;
    EXPECT_EQ(out_, "longer.svg: quorvel-1 straight value \"100\" -> \"120\", moved 20\n");
    EXPECT_EQ(runProgram("check broken.svg longer.svg drawn.svg --json"), 2);
    EXPECT_EQ(printed("/version"), "1");
    EXPECT_EQ(printed("/drawings/0/file"), "\"broken.svg\"");
    EXPECT_GT(printed("/drawings/0/error").size(), 2U);
    EXPECT_EQ(printed("/drawings/1/dimensions/1/rebuilt"), "\"120\"");
    EXPECT_EQ(printed("/drawings/1/dimensions/1/state"), "\"value\"");
    EXPECT_EQ(printed("/drawings/1/dimensions/0/state"), "\"true\"");
    EXPECT_EQ(printed("/drawings/2/dimensions/0/points/to"), "\"held\"");
    EXPECT_EQ(printed("/drawings/3"), "(absent)");
}

// A dimension brings the settings with which it was drawn; the user's own are not these.
TEST_F(Recalculation, LeavesNoTraceInTheProfile) {
    write("longer.svg", longer_);
    const char* const commands[] = {"check longer.svg", "recalc longer.svg -o mended.svg",
                                    "snap longer.svg --at 40,260", "list longer.svg",
                                    "check longer.svg drawn.svg --language ja"};
    const auto run = [&](const char* command) {
        const bool checks = std::string(command).starts_with("check");
        EXPECT_EQ(runProgram(command), checks ? 1 : 0) << command << ": " << err_;
    };
    for (const char* command : commands) run(command);
    EXPECT_FALSE(fs::exists(path("profile")));
    const std::string prefs = "profile/Adobe/Illustrator/Prefs";
    fs::create_directories(path(prefs));
    const std::string settings = "language = \"ENGLISH\"\r\nflArUnit = 3\r\nflArFSize = 6\r\n";
    write(prefs + "/Quorvel.ini", settings);
    for (const char* command : commands) {
        run(command);
        EXPECT_EQ(readBytes(path(prefs + "/Quorvel.ini")), settings) << command;
    }
}

}  // namespace
}  // namespace quorvel::tests

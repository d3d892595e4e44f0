// What the command says of drawings whose art was changed by other programs, and that it says nothing of the others:
// each row draws one dimension, changes the file, and gives the line of the check. Values are worked out by hand from
// the changed coordinates.
#include <filesystem>
#include <regex>

#include "tests/support/program_run.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

struct Case {
    const char* name;
    const char* size;  // of the page, SVG attributes
    const char* art;
    const char* steps;
    const char *was, *is;  // in the file; empty: it stays
    const char* says;      // behind the file's name and the id, without the figures of what has moved
};

constexpr char kMillimetres[] = R"(width="100mm" height="100mm" viewBox="0 0 100 100")";
constexpr char kPoints[] = R"(width="300pt" height="300pt" viewBox="0 0 300 300")";

const Case kCases[] = {
    {"Rigid", R"(width="200mm" height="100mm" viewBox="0 0 200 100")", R"(<path id="p" d="M60 40 L63 55.6"/>)",
     "tool \"Straight Dimension Tool\"\ntrack 170.0787 170.0787\ndown\ndrag 178.5827 125.8583\nup\ntrack 183 "
     "158\ndown\n",
     "<path id=\"p\"", "<path transform=\"translate(20,20)\" id=\"p\"", "straight moved \"15.6\", moved"},
    {"Rounded", R"(width="200mm" height="100mm" viewBox="0 0 200 100")",
     R"(<path id="p" d="M60.00049 40.00049 L63.00021 55.59951"/>)",
     "tool \"Straight Dimension Tool\"\ntrack 170.0787 170.0787\ndown\ndrag 178.5827 125.8583\nup\ntrack 183 "
     "158\ndown\n",
     "M60.00049 40.00049 L63.00021 55.59951", "M60 40L63 55.6", ""},
    {"Compound", kMillimetres, R"(<path id="plate" d="M10 10H60V50H10ZM20 20h10v10h-10z"/>)",
     "tool \"Straight Dimension Tool\"\ntrack 28.34646 255.11811\ndown\ndrag 170.07874 255.11811\nup\ntrack 100 270\n"
     "down\n",
     "M10 10H60V50", "M10 10H70V50", "straight value \"50\" -> \"60\", moved"},
    {"Midpoint", kPoints, R"(<path id="a" d="M 50 250 V 50"/><path id="b" d="M 200 250 V 50"/>)",
     "tool \"Straight Dimension Tool\"\ntrack 50 80\ndown\ndrag 200 250\nup\ntrack 120 20\ndown\n", "", "", ""},
    // From the middle of the left edge to the right one: (200 - 50) pt, then (230 - 50) pt.
    {"MidpointMoved", kPoints, R"(<path id="a" d="M 50 250 V 50"/><path id="b" d="M 200 250 V 50"/>)",
     "tool \"Straight Dimension Tool\"\ntrack 50 80\ndown\ndrag 200 250\nup\ntrack 50 290\ndown\n", "M 200 250 V 50",
     "M 230 250 V 50", "straight value \"52.917\" -> \"63.5\", moved"},
    // The crossing of the level line v = 150 and the upright one h = 120, which goes to h = 135.
    {"Crossing", kPoints, R"(<path id="a" d="M 20 150 H 280"/><path id="b" d="M 120 20 V 280"/>)",
     "tool \"Oblique Dimension Tool\"\ntrack 20 150\ndown\ndrag 120 150\nup\ntrack 70 180\ndown\n", "M 120 20 V 280",
     "M 135 20 V 280", "oblique value \"35.278\" -> \"40.569\", moved"},
    {"CrossingGone", kPoints, R"(<path id="a" d="M 20 150 H 280"/><path id="b" d="M 120 20 V 280"/>)",
     "tool \"Oblique Dimension Tool\"\ntrack 20 150\ndown\ndrag 120 150\nup\ntrack 70 180\ndown\n", "M 120 20 V 280",
     "M 120 20 V 90", "oblique lost \"35.278\", to: no crossing"},
    // On the path itself, 0.0004 pt of which decide about the side.
    {"OnItsPath", kPoints, R"(<path id="a" d="M 50 149.9996 H 250"/>)",
     "tool \"Curve Dimension Tool\"\ntrack 50 150\ndown\ndrag 250 150\nup\ntrack 150 150.0002\ndown\n", "149.9996",
     "150", ""},
    // Along b, from a corner that it shares with a; a rounding parts them.
    {"SharedCorner", kPoints, R"(<path id="b" d="M 20 200 L 50 150 H 150 V 50"/><path id="a" d="M 50 250 V 150"/>)",
     "tool \"Curve Dimension Tool\"\ntrack 50 150\ndown\ndrag 150 250\nup\ntrack 100 180\ndown\n", "250 V 150",
     "250 V 150.001", ""},
    // Upright was clicked, but points within a pixel of one level show their level distance: at twice the size too.
    {"Scaled", kPoints, R"(<g id="all"><path id="a" d="M 10 250 V 150 L 110 149.2 V 250"/></g>)",
     "tool \"Straight Dimension Tool\"\ntrack 10 150\ndown\ndrag 110 150.8\nup\ntrack 140 150\ndown\n", "id=\"all\"",
     "id=\"all\" transform=\"scale(2)\"", "straight value \"35.278\" -> \"70.556\", moved"},
    // The stop is above the first point: a span of no length, whose heads 0.0004 pt turn about.
    {"SpanOfNoLength", kPoints, R"(<path id="a" d="M 50.0004 250 V 200"/><path id="b" d="M 50 100 H 150"/>)",
     "tool \"Straight Dimension Tool\"\ntrack 50 50\ndown\ntrack 50 200 alt\ndown alt\nup alt\ndrag 150 200\nup\n"
     "track 100 290\ndown\n",
     "50.0004", "49.9996", ""},
    {"LostStop", kPoints,
     R"(<path id="a" d="M 20.12345 250 V 149.45679"/><path id="b" d="M 220.98765 250 V 148.76544"/>)"
     R"(<path id="c" d="M 100.12345 280 V 209.87655" stroke="none"/>)",
     "tool \"Oblique Dimension Tool\"\ntrack 20.12345 150.54321\ndown\ntrack 100.12345 90.12345 alt\ndown alt\nup alt\n"
     "drag 220.98765 151.23456\nup\ntrack 120 180\ndown\n",
     "", "", "oblique lost \"28.149 | 42.712\", stop 1: unpainted"},
    {"Centre", kPoints, R"(<circle id="c" cx="200" cy="150" r="40"/><path id="a" d="M 20 150 V 100"/>)",
     "set flUseFcnt 1\ntool \"Oblique Dimension Tool\"\ntrack 20 150\ndown\ndrag 200 150\nup\ntrack 70 190\ndown\n",
     "r=\"40\"", "r=\"60\"", ""},
    {"Unpainted", R"(width="40mm" height="40mm" viewBox="0 0 40 40")",
     R"(<path id="pin" d="M5 20H35"/><rect id="terminal" x="4.88" y="19.88" width=".24" height=".24" stroke="none"/>)",
     "tool \"Straight Dimension Tool\"\ntrack 14.1732 56.6929\ndown\ndrag 99.2126 56.6929\nup\ntrack 56 40\ndown\n", "",
     "", "straight lost \"30.12\", from: unpainted"},
    {"Emptied", kPoints, R"(<path id="a" d="M 50 250 V 50"/>)",
     "tool \"Oblique Dimension Tool\"\ntrack 50 50\ndown\ndrag 50 250\nup\ntrack 80 150\ndown\n",
     R"(d="M 50 250 V 50")", R"(d="")", "oblique lost \"70.556\", from: segment gone, to: segment gone"},
    {"FreePaper", kPoints, R"(<path id="a" d="M 50 250 V 50"/>)",
     "tool \"Oblique Dimension Tool\"\ntrack 250 50\ndown\ndrag 250 250\nup\ntrack 280 150\ndown\n", "", "",
     "oblique free \"70.556\", from: free, to: free"},
    // In another language than the settings' the sign stays.
    {"Diameter", kPoints, R"(<circle id="c" cx="150" cy="150" r="36"/>)",
     "tool \"Diameter Tool\"\ntrack 175.456 175.456\ndown\ndrag 220 220\nup\n", "", "", ""},
    // A level line of 100 pt, then of 140 pt; the leader points at its middle.
    {"LengthComment", kPoints, R"(<path id="l" d="M 20 280 H 120"/>)",
     "tool \"Length Comment Tool\"\ntrack 70 20\ndown\ndrag 150 60\nup\n", "H 120", "H 160",
     "length value \"35.278\" -> \"49.389\", moved"},
    // A square of 100 pt, 1244.522 mm2, then a rectangle of 100 by 50.
    {"AreaComment", kPoints, R"(<path id="l" d="M 20 280 H 120 V 180 H 20 Z"/>)",
     "set flArDim1ConvUnit 0\ntool \"Dimention Comment Tool\"\ntrack 20 20\ndown\ndrag 5 5\nup\n", "V 180", "V 230",
     "area value \"1244.522\" -> \"622.261\", moved"},
    {"Balloon", kPoints, R"(<path id="l" d="M 20 280 H 120"/>)",
     "set flMrkItemNo 7\ntool \"Object Number Tool\"\ntrack 120 20\ndown\ndrag 150 60\nup\n", "M 20 280", "M 20 270",
     "number moved \"7\", moved"},
};

class Truth : public ProgramRun, public testing::WithParamInterface<Case> {};

TEST_P(Truth, IsSaidAndMended) {
    const Case& one = GetParam();
    write("plain.svg", std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" ") + one.size +
                           "><g fill=\"none\" stroke=\"#000\" stroke-width=\".3\">" + one.art + "</g></svg>\n");
    const ScriptRun run("set language ENGLISH\nset flScFix 3\nset flUseGrid 0\nopen \"" + path("plain.svg") + "\"\n" +
                        one.steps + "expect no-beep\nsave \"" + path("drawn.svg") + "\"\n");
    ASSERT_EQ(run.fault(), "");
    std::string text = readBytes(path("drawn.svg"));
    const std::size_t at = text.find(one.was);
    ASSERT_NE(at, std::string::npos) << text;
    text.replace(at, std::string(one.was).size(), one.is);
    write("edited.svg", text);
    const std::string says = one.says;
    const bool isUntrue = !says.empty() && says.find(" free ") == std::string::npos;
    for (const char* language : {"en", "ja"}) {
        EXPECT_EQ(runProgram(std::string("check edited.svg --language ") + language), isUntrue ? 1 : 0) << err_;
        EXPECT_EQ(std::regex_replace(out_, std::regex("moved [0-9.e-]+"), "moved"),
                  says.empty() ? "" : "edited.svg: quorvel-1 " + says + "\n");
    }
    EXPECT_EQ(runProgram("recalc edited.svg -o edited.svg --dry-run"), 0) << err_;
    EXPECT_EQ(out_.empty(), !isUntrue);
    EXPECT_EQ(readBytes(path("edited.svg")), text);
    EXPECT_EQ(runProgram("recalc edited.svg -o mended.svg"), 0) << err_;
    EXPECT_EQ(runProgram("check mended.svg"), 0) << out_;
    if (isUntrue)
        EXPECT_EQ(runProgram("check mended.svg --strict"), 0) << out_;
    else
        EXPECT_EQ(readBytes(path("mended.svg")), text);
    const fs::file_time_type before = fs::last_write_time(path("mended.svg"));
    EXPECT_EQ(runProgram("recalc mended.svg -o mended.svg"), 0) << err_;
    EXPECT_EQ(fs::last_write_time(path("mended.svg")), before) << "nothing to rebuild, nothing written";
    EXPECT_EQ(runProgram("recalc mended.svg -o again.svg --all"), 0) << err_;
    EXPECT_EQ(runProgram("recalc again.svg -o twice.svg --all"), 0) << err_;
    EXPECT_EQ(readBytes(path("again.svg")), readBytes(path("twice.svg")));
}

INSTANTIATE_TEST_SUITE_P(Cases, Truth, testing::ValuesIn(kCases),
                         [](const testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

// A text that somebody has written, an angle that has lost a leg, a setting of the record that no drawing can hold.
TEST_F(ProgramRun, WhatCannotBeMendedIsReportedAndKept) {
    const Case cases[] = {
        {"", "", R"(<path id="l" d="M 20 280 H 120"/>)",
         "tool \"Length Comment Tool\"\ntrack 70 20\ndown\ndrag 150 60\nup\n", ">35<", ">about 40<",
         "length value \"about 40\", text: edited"},
        {"", "", R"(<path id="a" d="M 20 280 H 220"/><path id="b" d="M 20 280 L 120 180"/>)",
         "tool \"Angle Tool\"\ntrack 120 20\ndown\ndrag 80 80\nup\ntrack 150 60\ndown\n", "M 20 280 L 120 180", "",
         "angle lost \" 45˚\", to: segment gone"},
        {"", "", R"(<path id="a" d="M 20 150 H 120"/>)",
         "tool \"Oblique Dimension Tool\"\ntrack 20 150\ndown\ndrag 120 150\nup\ntrack 70 180\ndown\n",
         ",10,30,10,10,20,", ",1e12,30,10,10,20,", "oblique lost \"35\", damaged record"},
    };
    for (const Case& one : cases) {
        write("plain.svg", std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" ") + kPoints +
                               "><g fill=\"none\" stroke=\"#000\">" + one.art + "</g></svg>");
        write("draw.script", std::string("set language ENGLISH\nopen plain.svg\n") + one.steps + "save drawn.svg\n");
        ASSERT_EQ(runProgram("run draw.script"), 0) << err_;
        std::string text = readBytes(path("drawn.svg"));
        const std::size_t at = text.find(one.was);
        ASSERT_NE(at, std::string::npos) << text;
        text.replace(at, std::string(one.was).size(), one.is);
        write("edited.svg", text);
        EXPECT_EQ(runProgram("check edited.svg"), 1);
        EXPECT_EQ(out_, std::string("edited.svg: quorvel-1 ") + one.says + "\n");
        EXPECT_EQ(runProgram("recalc edited.svg -o edited.svg --all"), 0) << err_;
        EXPECT_EQ(readBytes(path("edited.svg")), text);
    }
}

TEST_F(ProgramRun, EveryKindFollowsMovedArt) {
    write("plain.svg", std::string("<svg xmlns=\"http://www.w3.org/2000/svg\" ") + kPoints +
                           R"(><g fill="none" stroke="#000"><circle id="c" cx="150" cy="150" r="36"/>)" +
                           R"(<path id="l" d="M 20 280 L 120 280 L 120 180"/></g></svg>)");
    for (const bool follows : {true, false}) {
        write("move.script",
              std::string("set language ENGLISH\nopen plain.svg\ntool \"Radius Tool\"\ntrack 175.456 175.456\ndown\n"
                          "drag 220 220\nup\nexpect no-beep\ntool \"Angle Tool\"\ntrack 60 20\ndown\n"
                          "drag 120 80\nup\ntrack 90 40\ndown\nexpect no-beep\nselect c l\nmove c 9 4\nmove l 9 4\n") +
                  (follows ? "follow\n" : "") + "save moved.svg\n");
        EXPECT_EQ(runProgram("run move.script"), 0) << err_;
        EXPECT_EQ(runProgram("check moved.svg"), follows ? 0 : 1) << out_;
        EXPECT_EQ(std::count(out_.begin(), out_.end(), '\n'), follows ? 0 : 2) << out_;
    }
}

// Each beeps, and what is saved afterwards opens.
TEST_F(ProgramRun, DrawsNothingThatCannotBeOpened) {
    const char* const scripts[] = {
        "set flUseFcur 0\nset flUseFcrs 0\nset flUseFops 0\nset flUseFrad 0\n"
        "tool \"Arc Tool [Three Points]\"\ntrack 100 100\ndown\ndrag 100.1 300.2\nup\ntrack 100.05 200.1\ndown\n",
        "set flScLead 2e9\ntool \"Oblique Dimension Tool\"\ntrack 100 100\ndown\ndrag 200 200\nup\ntrack 150 "
        "200\ndown\n",
    };
    for (const char* script : scripts) {
        write("far.script", std::string("set language ENGLISH\nnew 600 600\n") + script +
                                "expect beep\nsave far.svg\nopen far.svg\n");
        EXPECT_EQ(runProgram("run far.script"), 0) << err_ << script;
    }
    write("far.script", "new 600 600\nopen far.svg\nmove @0 2e9 0\n");
    EXPECT_NE(runProgram("run far.script"), 0);
}

}  // namespace
}  // namespace quorvel::tests

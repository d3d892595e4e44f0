// A whole day's work as the examples have it, in both languages: every tool, dialog and command in one run, held by the
// script's own expectations, by the dimensions that it promises, by taking all of it back, and by the pictures that
// other programs make of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "interchange/svg/svg.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

struct Day : testing::TestWithParam<const char*> {
    std::string script() const { return std::string(QUORVEL_SOURCE_DIR) + "/examples/" + GetParam() + ".script"; }
    // As a user runs it: the drawing is found beside the script, and what it makes goes to the folder out.
    void SetUp() override {
        text = readBytes(script());
        // A run works in a folder of its own, which it does not know before it is made.
        const std::string saved = "save out/", here = "save ";
        for (std::size_t at; (at = text.find(saved)) != std::string::npos;) text.replace(at, saved.size(), here);
        for (std::size_t at; (at = text.find("file out/")) != std::string::npos;) text.replace(at, 9, "file ");
        run = std::make_unique<ScriptRun>(text, script());
        ASSERT_EQ(run->fault(), "");
    }

    std::string text;
    std::unique_ptr<ScriptRun> run;
};
INSTANTIATE_TEST_SUITE_P(Languages, Day, testing::Values("day", "day_ja"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(Day, UsesEveryToolAndDialog) {
    std::set<std::string> taken, dialogs;
    for (const app::ScriptLine& line : run->lines()) {
        if (line.verb == "tool") taken.insert(line.words[0].text);
        if (line.verb == "dialog") dialogs.insert(line.words[0].text);
    }
    for (const host::ToolRecord& tool : run->session().host().tools()) EXPECT_TRUE(taken.contains(tool.title));
    EXPECT_EQ(taken.size(), 19U);
    EXPECT_EQ(dialogs.size(), 9U);
    EXPECT_FALSE(run->session().user().hasRepliesLeft());
}

TEST_P(Day, ShowsTheDimensionsItPromises) {
    std::vector<std::string> promised, shown;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.starts_with("# shows ")) promised.push_back(line.substr(8));
    for (const app::RecordedDimension& dimension : run->dimensions()) {
        if (dimension.kind == "frame") continue;
        std::string line = dimension.kind;
        for (const std::string& value : dimension.texts) line += " \"" + value + "\"";
        shown.push_back(line);
    }
    // The script tells them by what they measure, the drawing holds them by when they were rebuilt.
    std::ranges::sort(shown);
    std::ranges::sort(promised);
    EXPECT_EQ(shown, promised);
}

TEST_P(Day, GoesBackToTheBytesItBeganWith) {
    const std::string done = run->saved();
    EXPECT_EQ(done, readBytes(run->folder() + "/" + GetParam() + ".svg"));
    host::Host& host = run->session().host();
    int steps = 0;
    while (host.undo()) ++steps;
    EXPECT_EQ(run->saved(), readBytes(std::string(QUORVEL_SOURCE_DIR) + "/examples/day.svg"));
    for (int i = 0; i < steps; ++i) ASSERT_TRUE(host.redo());
    EXPECT_FALSE(host.redo());
    EXPECT_EQ(run->saved(), done);
    const std::size_t undone = static_cast<std::size_t>(std::count_if(
        run->lines().begin(), run->lines().end(), [](const app::ScriptLine& line) { return line.verb == "redo"; }));
    EXPECT_EQ(static_cast<int>(undone), steps) << "the script takes back all that it did";
    EXPECT_EQ(host.suitesHeld(), 0);
}

bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

struct Picture {
    unsigned width = 0, height = 0;
    std::size_t bytes = 0;
};
// What a program makes of a drawing: the command reads drawn.svg and writes drawn.png.
Picture pictureOf(const std::string& svg, const std::string& command) {
    fs::remove("drawn.png");
    std::ofstream("drawn.svg", std::ios::binary) << svg;
    EXPECT_EQ(std::system((command + " >/dev/null 2>&1").c_str()), 0) << command;
    if (!fs::exists("drawn.png")) return {};
    const std::string png = readBytes("drawn.png");
    const auto number = [&png](std::size_t at) {
        unsigned value = 0;
        for (std::size_t i = at; i < at + 4; ++i) value = value << 8 | static_cast<unsigned char>(png.at(i));
        return value;
    };
    EXPECT_TRUE(png.starts_with("\x89PNG\r\n\x1a\n") && png.substr(png.size() - 8, 4) == "IEND") << "no whole picture";
    return {number(16), number(20), png.size()};
}

// At two pixels a millimetre the page is 840 by 594. The day's lines and texts make its picture more than twice as big
// as the morning's, which it would not be without the texts.
void expectDrawn(const std::string& done, const std::string& command) {
    const std::string morning = readBytes(std::string(QUORVEL_SOURCE_DIR) + "/examples/day.svg");
    const std::string empty = done.substr(0, done.find('>', done.find("<svg")) + 1) + "</svg>";
    const Picture evening = pictureOf(done, command);
    EXPECT_EQ(evening.width, 840U);
    EXPECT_EQ(evening.height, 594U);
    const Picture before = pictureOf(morning, command), nothing = pictureOf(empty, command);
    EXPECT_GT(nothing.bytes, 0U);
    EXPECT_GT(before.bytes, 4 * nothing.bytes);
    EXPECT_GT(evening.bytes, 2 * before.bytes);
}

TEST_P(Day, IsDrawnByRsvgConvert) {
    if (!isInstalled("rsvg-convert")) GTEST_SKIP() << "rsvg-convert is not installed";
    expectDrawn(readBytes(GetParam() + std::string(".svg")), "rsvg-convert -d 50.8 -p 50.8 -o drawn.png drawn.svg");
}

TEST_P(Day, IsDrawnByInkscape) {
    if (!isInstalled("inkscape")) GTEST_SKIP() << "inkscape is not installed";
    expectDrawn(readBytes(GetParam() + std::string(".svg")),
                "env -u DISPLAY HOME=. INKSCAPE_PROFILE_DIR=./editor timeout 60 inkscape drawn.svg --export-area-page "
                "--export-dpi=50.8 --export-filename=drawn.png");
}

}  // namespace
}  // namespace quorvel::tests

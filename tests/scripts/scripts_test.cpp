// Every NAME.script of this folder is a test. It must run through with its own expectations held; the drawing that it
// leaves must come back from its file as it was, and go back to the bytes it was opened from by undoing. Lines
//   # shows KIND "TEXT" "TEXT"
// name the dimensions on it in the order of making, with values that were worked out by hand. A file NAME.expected.txt
// beside it holds the drawing as compactDump writes it; tools/accept takes new ones over after they were looked at.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "interchange/svg/svg.h"
#include "tests/support/compact_dump.h"
#include "tests/support/errors.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;

std::string folderOfScripts() { return std::string(QUORVEL_SOURCE_DIR) + "/tests/scripts"; }

std::vector<std::string> scriptNames() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folderOfScripts()))
        if (entry.path().extension() == ".script") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string shownBy(const app::RecordedDimension& dimension) {
    std::string line = dimension.kind;
    for (const std::string& text : dimension.texts) line += " \"" + text + "\"";
    return line;
}

std::vector<std::string> promised(const std::string& script) {
    static constexpr std::string_view kMark = "# shows ";
    std::vector<std::string> found;
    std::istringstream in(script);
    for (std::string line; std::getline(in, line);)
        if (line.rfind(kMark, 0) == 0) found.push_back(line.substr(kMark.size()));
    return found;
}

std::string drawn(ScriptRun& run, Selection selection) {
    return compactDump(run.document(), run.session().host().rulerUnit(), selection);
}

void expectDump(const std::string& name, const std::string& actual) {
    const fs::path base = fs::path(folderOfScripts()) / name;
    const fs::path expectedFile = base.string() + ".expected.txt", actualFile = base.string() + ".actual.txt";
    if (!fs::exists(expectedFile)) return;
    const bool accept = std::getenv("QUORVEL_ACCEPT") != nullptr;
    const std::string difference = firstDifference(readBytes(expectedFile.string()), actual);
    if (difference.empty()) {
        fs::remove(actualFile);
        return;
    }
    std::ofstream out(accept ? expectedFile : actualFile);
    out << actual;
    ASSERT_TRUE(out.good());
    if (!accept) ADD_FAILURE() << difference << "\nthe whole dump is in " << actualFile.string();
}

void expectComesBackFromItsFile(ScriptRun& run) {
    const std::string bytes = run.saved();
    const Result<interchange::SvgDrawing> again = interchange::readSvg(bytes);
    ASSERT_TRUE(again) << again.error();
    EXPECT_EQ(firstDifference(drawn(run, Selection::kLeftOut),
                              compactDump(*again->document, again->rulerUnit, Selection::kLeftOut)),
              "");
    EXPECT_TRUE(interchange::writeSvg(*again->document) == bytes) << "a second save writes other bytes";
}

// The file that the drawing was opened from; empty when it is a new page or was saved over since.
std::string openedFile(const ScriptRun& run) {
    std::string file;
    for (const app::ScriptLine& line : run.lines()) {
        if (line.verb == "open") file = line.words[0].text;
        if (line.verb == "new" || (line.verb == "save" && line.words[0].text == file)) file.clear();
    }
    if (file.empty() || fs::exists(file)) return file;
    return folderOfScripts() + "/" + file;
}

void expectUndoGoesAllTheWay(ScriptRun& run) {
    const std::string file = openedFile(run);
    if (file.empty()) return;
    const std::string before = drawn(run, Selection::kLeftOut);
    host::Host& host = run.session().host();
    int steps = 0;
    while (host.undo()) ++steps;
    EXPECT_TRUE(run.saved() == readBytes(file)) << "undoing " << steps << " steps does not give the file's bytes";
    while (steps > 0 && host.redo()) --steps;
    EXPECT_EQ(steps, 0) << "steps that could not be done again";
    EXPECT_EQ(firstDifference(before, drawn(run, Selection::kLeftOut)), "");
}

class Scripts : public testing::TestWithParam<std::string> {};

TEST_P(Scripts, Hold) {
    const std::string file = folderOfScripts() + "/" + GetParam() + ".script";
    const std::string text = readBytes(file);
    ScriptRun run(text, file);
    if (!run.absent().empty()) GTEST_SKIP() << run.absent() << " is not here";
    ASSERT_EQ(run.fault(), "");
    EXPECT_FALSE(run.session().user().hasRepliesLeft()) << "a reply was never asked for";
    EXPECT_EQ(run.session().user().visiblePixels(), 0U);
    ASSERT_NE(run.session().document(), nullptr);

    std::vector<std::string> shown;
    for (const app::RecordedDimension& dimension : run.dimensions()) shown.push_back(shownBy(dimension));
    if (const std::vector<std::string> lines = promised(text); !lines.empty()) {
        EXPECT_EQ(shown, lines);
    }
    expectDump(GetParam(), drawn(run, Selection::kShown));
    expectComesBackFromItsFile(run);
    expectUndoGoesAllTheWay(run);
}

INSTANTIATE_TEST_SUITE_P(Folder, Scripts, testing::ValuesIn(scriptNames()),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });

}  // namespace
}  // namespace quorvel::tests

// Every NAME.script of this folder is a test. It must run through with its own expectations held; the drawing that it
// leaves must come back from its file as it was, and go back to the bytes it was opened from by undoing. Lines
//   # shows KIND "TEXT" "TEXT"
// name the dimensions on it in the order of making, with values that were worked out by hand. Where NAME.expected.json
// stands beside it, the drawing's dump is held against that; tools/accept takes new dumps over after they were looked
// at.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "interchange/svg/svg.h"
#include "tests/support/script_run.h"

namespace quorvel::tests {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr double kNumberTolerance = 1e-4;  // of the number, or of 1 below it

std::string folderOfScripts() { return std::string(QUORVEL_SOURCE_DIR) + "/tests/scripts"; }

std::vector<std::string> scriptNames() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folderOfScripts()))
        if (entry.path().extension() == ".script") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Where the two part first, with both values; empty when they do not.
std::string firstDifference(const Json& expected, const Json& actual, const std::string& place = "drawing") {
    if (expected.is_number() && actual.is_number()) {
        const double a = expected.get<double>(), b = actual.get<double>();
        const double size = std::max({1.0, std::abs(a), std::abs(b)});
        if (a == b || std::abs(a - b) <= kNumberTolerance * size) return {};
    } else if (expected.is_object() && actual.is_object()) {
        for (const auto& [key, value] : expected.items()) {
            if (!actual.contains(key)) return place + "." + key + " is missing";
            if (std::string found = firstDifference(value, actual[key], place + "." + key); !found.empty())
                return found;
        }
        for (const auto& [key, value] : actual.items())
            if (!expected.contains(key)) return place + "." + key + " is new: " + value.dump().substr(0, 80);
        return {};
    } else if (expected.is_array() && actual.is_array()) {
        for (std::size_t i = 0; i < std::min(expected.size(), actual.size()); ++i) {
            const std::string item = place + "[" + std::to_string(i) + "]";
            if (std::string found = firstDifference(expected[i], actual[i], item); !found.empty()) return found;
        }
        if (expected.size() == actual.size()) return {};
        return place + " has " + std::to_string(actual.size()) + " items, expected " + std::to_string(expected.size());
    } else if (expected == actual) {
        return {};
    }
    return place + " is " + actual.dump().substr(0, 200) + ", expected " + expected.dump().substr(0, 200);
}

// What a file does not keep: what is selected.
Json withoutSelection(Json json) {
    if (json.is_object()) json.erase("selected");
    if (json.is_structured())
        for (Json& part : json) part = withoutSelection(std::move(part));
    return json;
}

// What fits stands on one line, so that a change shows as a few lines.
void print(const Json& json, std::ostream& out, const std::string& indent = "") {
    const std::string flat = json.dump();
    if (!json.is_structured() || json.empty() || indent.size() + flat.size() <= 118) {
        out << flat;
        return;
    }
    const std::string deeper = indent + " ";
    const char* before = "";
    out << (json.is_array() ? "[" : "{");
    for (const auto& [key, value] : json.items()) {
        out << before << '\n' << deeper;
        if (json.is_object()) out << Json(key).dump() << ": ";
        print(value, out, deeper);
        before = ",";
    }
    out << '\n' << indent << (json.is_array() ? "]" : "}");
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

void expectDump(const std::string& name, const Json& actual) {
    const fs::path base = fs::path(folderOfScripts()) / name;
    const fs::path expectedFile = base.string() + ".expected.json", actualFile = base.string() + ".actual.json";
    if (!fs::exists(expectedFile)) return;
    const bool accept = std::getenv("QUORVEL_ACCEPT") != nullptr;
    const Json expected = Json::parse(readBytes(expectedFile.string()), nullptr, false);
    const std::string difference = firstDifference(expected, actual);
    if (difference.empty()) {
        fs::remove(actualFile);
        return;
    }
    std::ofstream out(accept ? expectedFile : actualFile);
    print(actual, out);
    out << '\n';
    ASSERT_TRUE(out.good());
    if (!accept) ADD_FAILURE() << difference << "\nthe whole dump is in " << actualFile.string();
}

void expectComesBackFromItsFile(ScriptRun& run) {
    const std::string bytes = run.saved();
    const interchange::SvgReadResult again = interchange::readSvg(bytes);
    ASSERT_NE(again.document, nullptr) << again.error;
    EXPECT_EQ(firstDifference(withoutSelection(Json::parse(run.dump())),
                              withoutSelection(Json::parse(app::dumpDocument(*again.document, again.rulerUnit)))),
              "");
    EXPECT_TRUE(interchange::writeSvg(*again.document) == bytes) << "a second save writes other bytes";
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
    const Json drawn = withoutSelection(Json::parse(run.dump()));
    host::Host& host = run.session().host();
    int steps = 0;
    while (host.undo()) ++steps;
    EXPECT_TRUE(run.saved() == readBytes(file)) << "undoing " << steps << " steps does not give the file's bytes";
    while (steps > 0 && host.redo()) --steps;
    EXPECT_EQ(steps, 0) << "steps that could not be done again";
    EXPECT_EQ(firstDifference(drawn, withoutSelection(Json::parse(run.dump()))), "");
}

class Scripts : public testing::TestWithParam<std::string> {};

TEST_P(Scripts, Hold) {
    const std::string file = folderOfScripts() + "/" + GetParam() + ".script";
    const std::string text = readBytes(file);
    ScriptRun run(text, file);
    if (!run.absent().empty()) GTEST_SKIP() << run.absent() << " is not here";
    ASSERT_EQ(run.fault(), "");
    EXPECT_FALSE(run.session().user().repliesLeft()) << "a reply was never asked for";
    EXPECT_EQ(run.session().user().visiblePixels(), 0U);
    ASSERT_NE(run.session().document(), nullptr);

    std::vector<std::string> shown;
    for (const app::RecordedDimension& dimension : run.dimensions()) shown.push_back(shownBy(dimension));
    if (const std::vector<std::string> lines = promised(text); !lines.empty()) {
        EXPECT_EQ(shown, lines);
    }
    expectDump(GetParam(), Json::parse(run.dump()));
    expectComesBackFromItsFile(run);
    expectUndoGoesAllTheWay(run);
}

INSTANTIATE_TEST_SUITE_P(Folder, Scripts, testing::ValuesIn(scriptNames()),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });

}  // namespace
}  // namespace quorvel::tests

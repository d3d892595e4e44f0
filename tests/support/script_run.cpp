#include "tests/support/script_run.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "cli/script_runner.h"
#include "host/svg.h"

namespace quorvel::tests {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kShared = "../shared/drawings/";

std::string newFolder() {
    static int made = 0;
    const fs::path folder =
        fs::path(testing::TempDir()) / ("quorvel_script_" + std::to_string(getpid()) + "_" + std::to_string(++made));
    fs::create_directories(folder / "profile");
    return folder.string();
}

}  // namespace

std::string sharedDrawing(const std::string& name) {
    for (fs::path folder = QUORVEL_SOURCE_DIR;; folder = folder.parent_path()) {
        const fs::path drawing = folder / "shared" / "drawings" / name;
        if (fs::exists(drawing)) return drawing.string();
        if (folder == folder.parent_path()) return {};
    }
}

std::string readBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    EXPECT_TRUE(in.good()) << path;
    return bytes.str();
}

ScriptRun::ScriptRun(const std::string& text, const std::string& name)
    : folder_(newFolder()), returnTo_(fs::current_path().string()) {
    fs::current_path(folder_);
    lines_ = cli::parseScript(text, name);
    for (cli::ScriptLine& line : lines_) {
        if (line.verb != "open" || line.words[0].text.rfind(kShared, 0) != 0) continue;
        const std::string drawing = sharedDrawing(line.words[0].text.substr(kShared.size()));
        if (drawing.empty()) absent_ = line.words[0].text;
        line.words[0].text = drawing;
    }
    if (!absent_.empty()) return;
    cli::SessionOptions options;
    options.profile = folder_ + "/profile";
    options.seed = 1;
    options.pluginFile = QUORVEL_PLUGIN_FILE;
    session_ = std::make_unique<cli::Session>(options);
    fault_ = cli::runScript(lines_, name, *session_, [this](const std::string& line) { told_.push_back(line); }).fault;
}

ScriptRun::~ScriptRun() {
    session_.reset();
    fs::current_path(returnTo_);
    fs::remove_all(folder_);
}

cli::Json ScriptRun::dump() { return cli::dumpDocument(document(), session_->host().rulerUnit()); }

std::string ScriptRun::saved() { return host::writeSvg(document(), session_->host().rulerUnit()); }

std::vector<cli::RecordedDimension> ScriptRun::dimensions() {
    std::vector<cli::RecordedDimension> found = cli::listDimensions(document());
    std::reverse(found.begin(), found.end());
    return found;
}

const host::Art& ScriptRun::art(const std::string& svgId) {
    const host::Art* found = document().find(document().findBySvgId(svgId));
    if (found == nullptr) throw std::runtime_error("no art has the id " + svgId);
    return *found;
}

std::vector<const host::Art*> ScriptRun::pieces(const cli::RecordedDimension& dimension) {
    std::vector<const host::Art*> found;
    for (host::ArtId id = document().find(dimension.group)->lastChild; id != 0; id = document().find(id)->above)
        found.push_back(document().find(id));
    return found;
}

std::string ScriptRun::tag(host::ArtId art, const std::string& name) {
    const std::string* value = document().tag(art, name);
    return value == nullptr ? "(absent)" : *value;
}

}  // namespace quorvel::tests

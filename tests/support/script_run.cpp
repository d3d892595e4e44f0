#include "tests/support/script_run.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/script_runner.h"
#include "hostapi/record_additions.h"
#include "interchange/svg/svg.h"

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
    Result<std::vector<app::ScriptLine>> lines = app::parseScript(text);
    if (!lines) {
        fault_ = app::sentence(app::inScript(name, lines.error()), app::Language::english);
        return;
    }
    lines_ = std::move(*lines);
    for (app::ScriptLine& line : lines_) {
        if (line.verb != "open" || line.words[0].text.rfind(kShared, 0) != 0) continue;
        const std::string drawing = sharedDrawing(line.words[0].text.substr(kShared.size()));
        if (drawing.empty()) absent_ = line.words[0].text;
        line.words[0].text = drawing;
    }
    if (!absent_.empty()) return;
    app::SessionOptions options;
    options.profile = folder_ + "/profile";
    options.seed = 1;
    options.pluginFile = QUORVEL_PLUGIN_FILE;
    session_ = std::make_unique<app::HeadlessSession>(options);
    const app::ScriptOutcome outcome =
        app::runScript(lines_, name, *session_, [this](const std::string& line) { told_.push_back(line); });
    if (outcome.error) fault_ = app::sentence(*outcome.error, app::Language::english);
}

ScriptRun::~ScriptRun() {
    session_.reset();
    fs::current_path(returnTo_);
    fs::remove_all(folder_);
}

std::string ScriptRun::dump() { return app::dumpDocument(document(), session_->host().rulerUnit()); }

std::string ScriptRun::saved() { return interchange::writeSvg(document(), session_->host().rulerUnit()); }

std::vector<app::RecordedDimension> ScriptRun::dimensions() {
    std::vector<app::RecordedDimension> found = app::listDimensions(document());
    std::erase_if(found, [&](const auto& one) { return document().tag(one.group, kMarkTag) != nullptr; });
    std::reverse(found.begin(), found.end());
    return found;
}

const doc::Art& ScriptRun::art(const std::string& name) {
    const doc::Art* found = document().find(document().findByName(name));
    if (found == nullptr) throw std::runtime_error("no art has the id " + name);
    return *found;
}

std::vector<const doc::Art*> ScriptRun::pieces(const app::RecordedDimension& dimension) {
    std::vector<const doc::Art*> found;
    for (doc::ArtId id = document().find(dimension.group)->lastChild; id != 0; id = document().find(id)->above)
        found.push_back(document().find(id));
    return found;
}

std::string ScriptRun::tag(doc::ArtId art, const std::string& name) {
    const std::string* value = document().tag(art, name);
    return value == nullptr ? "(absent)" : *value;
}

}  // namespace quorvel::tests

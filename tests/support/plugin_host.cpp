#include "tests/support/plugin_host.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "plugin/shell/property_list.h"
#include "tests/support/errors.h"

namespace quorvel::tests {

namespace {

namespace fs = std::filesystem;

std::string NewProfile() {
    static int made = 0;
    const fs::path folder =
        fs::path(testing::TempDir()) / ("quorvel_profile_" + std::to_string(getpid()) + "_" + std::to_string(++made));
    fs::create_directories(folder / "Adobe" / "Illustrator" / "Prefs");
    return folder.string();
}

}  // namespace

PluginHost::PluginHost(PluginHostOptions options) : profile_(NewProfile()), user_(std::move(options.user)) {
    if (user_ == nullptr) user_ = std::make_unique<platform::HeadlessBackend>();
    user_->setDocumentsFolder(profile_);
    platform::installBackend(user_.get());
    std::ofstream settings(settingsPath());
    settings << "language = \"" << options.language << "\"\r\n";
    for (const auto& [key, value] : options.settings) settings << key << " = \"" << value << "\"\r\n";
    if (!options.host.seed) options.host.seed = 1;
    host_ = std::make_unique<host::Host>(options.host);
    connect();
    static const char module = 0;
    host_->attachPlugin(PluginMain, const_cast<char*>(&module));
}

PluginHost::~PluginHost() {
    stop();
    host_.reset();
    platform::installBackend(nullptr);
    fs::remove_all(profile_);
}

void PluginHost::connect() {
    host::HostCallbacks& callbacks = host_->callbacks;
    callbacks.errorAlert = [this](const std::string& text) { user_->showAlert(text); };
    callbacks.pluginFailed = [](const Error& error) { ADD_FAILURE() << error; };
    callbacks.yesNoAlert = [this](const std::string& text) { return user_->askQuestion(text); };
    callbacks.createPanelWindow = [this](const host::PanelRecord&) { return user_->createPanelWindow(); };
    callbacks.destroyPanelWindow = [this](void* window) { user_->destroyPanelWindow(window); };
    callbacks.viewRepainted = [this] { user_->screen().repainted(); };
}

AIErr PluginHost::start() {
    started_ = true;
    return host_->startup();
}

AIErr PluginHost::stop() {
    if (!started_) return kNoErr;
    started_ = false;
    return host_->shutdown();
}

std::string PluginHost::settingsPath() const { return profile_ + "/Adobe/Illustrator/Prefs/Quorvel.ini"; }

void PluginHost::newDrawing(float width, float height) {
    host_->newDocument(width, height);
    user_->screen().openView("Untitled @ 100%", host_->view().width, host_->view().height);
}

doc::ArtId PluginHost::addPath(const std::vector<RealPoint>& anchors, bool closed, bool selected) {
    std::vector<PathSegment> segments;
    for (const RealPoint& anchor : anchors) segments.push_back({anchor, anchor, anchor, 1});
    doc::ArtId path = 0;
    const bool drawn = host_->edit("Draw", [&](doc::Document& document) {
        path = document.insertArt(kPathArt, kPlaceAboveAll, 0);
        return path != 0 && document.setSegments(path, 0, segments) && document.setClosed(path, closed) &&
               document.setSelected(path, selected);
    });
    EXPECT_TRUE(drawn);
    return path;
}

void PluginHost::select(doc::ArtId art, bool selected) {
    EXPECT_TRUE(host_->edit("Select", [&](doc::Document& document) { return document.setSelected(art, selected); }));
}

std::string PluginHost::panelText(std::int32_t control) {
    std::string text = "(absent)";
    user_->panelText(control, &text);
    return text;
}

bool PluginHost::panelLit(std::int32_t control) {
    bool lit = false;
    EXPECT_TRUE(user_->panelToggled(control, &lit)) << control;
    return lit;
}

}  // namespace quorvel::tests

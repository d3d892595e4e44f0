// Sets up host, plug-in and scripted user for a command, and takes them down again.
#include "app/headless_session.h"

#include <filesystem>
#include <iterator>
#include <utility>

#include "app/dimension_list.h"
#include "interchange/svg/svg.h"
#include "platform/system.h"

namespace quorvel::app {

HeadlessSession::HeadlessSession(const SessionOptions& options)
    : language_(languageOf(options)),
      choices_{options.replacesReadOnly, !options.skipsBackups},
      user_(std::make_unique<platform::HeadlessBackend>()) {
    user_->setDocumentsFolder(options.profile);
    platform::installBackend(user_.get());
    plugin_ = std::make_unique<PluginSession>(options);
    connectHost();
}

HeadlessSession::~HeadlessSession() {
    plugin_.reset();
    platform::installBackend(nullptr);
}

void HeadlessSession::connectHost() {
    host::HostCallbacks& calls = host().callbacks;
    calls.errorAlert = [this](const std::string& text) { user_->showAlert(text); };
    calls.pluginFailed = [this](const Error& error) { user_->showAlert(sentence(error, language_)); };
    calls.yesNoAlert = [this](const std::string& text) { return user_->askQuestion(text); };
    calls.createPanelWindow = [this](const host::PanelRecord&) { return user_->createPanelWindow(); };
    calls.destroyPanelWindow = [this](void* window) { user_->destroyPanelWindow(window); };
    calls.viewRepainted = [this] {
        user_->screen().setTitle(viewName_ + " @ " + std::to_string(static_cast<int>(host().view().zoom * 100)) + "%");
        user_->screen().repainted();
    };
    calls.rangeRefused = [] { platform::MessageBeep(0); };
    calls.pointsUnheld = [this](const std::vector<DimensionEnd>& ends) {
        for (const DimensionEnd& end : ends) warnings_.push_back(unheldPoint(end));
    };
    calls.stepMade = [this](const std::string& name) { steps_.push_back(name); };
}

Status HeadlessSession::writeSetting(std::string_view key, std::string_view valueUtf8) {
    return plugin_->writeSetting(key, valueUtf8);
}

void HeadlessSession::viewOpened(const std::string& name) {
    viewName_ = name;
    const host::View& view = host().view();
    user_->screen().openView(name + " @ 100%", view.width, view.height);
}

Status HeadlessSession::openDrawing(const std::string& path) {
    Result<interchange::SvgDrawing> drawing = interchange::readSvgFile(path);
    if (!drawing) return drawing.error();
    warnings_.insert(warnings_.end(), drawing->warnings.begin(), drawing->warnings.end());
    host().setDocument(std::move(drawing->document), drawing->rulerUnit);
    viewOpened(std::filesystem::path(path).filename().string());
    return {};
}

void HeadlessSession::newDrawing(float width, float height) {
    host().newDocument(width, height);
    viewOpened("Untitled");
}

Status HeadlessSession::saveDrawing(const std::string& path) {
    return app::saveDrawing(document(), path, host().rulerUnit(), choices_, &warnings_);
}

std::vector<Error> HeadlessSession::takeWarnings() { return std::exchange(warnings_, {}); }

std::vector<std::string> HeadlessSession::takeSteps() { return std::exchange(steps_, {}); }

}  // namespace quorvel::app

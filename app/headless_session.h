// A host with the plug-in and a scripted user, as each command needs it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/plugin_session.h"
#include "app/saving.h"
#include "platform/headless/headless.h"

namespace quorvel::app {

class HeadlessSession {
  public:
    explicit HeadlessSession(const SessionOptions& options);
    ~HeadlessSession();
    HeadlessSession(const HeadlessSession&) = delete;
    HeadlessSession& operator=(const HeadlessSession&) = delete;

    // As those of PluginSession.
    Status prepare() { return plugin_->prepare(); }
    Status writeSetting(std::string_view key, std::string_view valueUtf8);
    Status start() { return plugin_->start(); }
    bool started() const { return plugin_->started(); }
    Status shutdown() { return plugin_->shutdown(); }

    Status openDrawing(const std::string& path);
    void newDrawing(float width, float height);
    Status saveDrawing(const std::string& path);

    host::Host& host() { return plugin_->host(); }
    platform::HeadlessBackend& user() { return *user_; }
    doc::Document* document() { return host().document(); }
    Language language() const { return language_; }
    // What opened and saved files and new dimensions leave to be said, once.
    std::vector<Error> takeWarnings();
    void warn(Error warning) { warnings_.push_back(std::move(warning)); }
    // Names of the undo steps made since the last call.
    std::vector<std::string> takeSteps();

  private:
    void connectHost();
    void viewOpened(const std::string& name);

    Language language_;
    SaveChoices choices_;
    std::unique_ptr<platform::HeadlessBackend> user_;
    std::unique_ptr<PluginSession> plugin_;
    std::string viewName_;
    std::vector<Error> warnings_;
    std::vector<std::string> steps_;
};

}  // namespace quorvel::app

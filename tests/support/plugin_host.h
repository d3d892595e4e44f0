// A real host with the plug-in linked in, a scripted user and a folder of settings of its own: for tests that drive the
// whole plug-in by messages. One at a time; taking it down shuts the plug-in down and removes the folder.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/host.h"
#include "platform/headless/headless.h"
#include "plugin/shell/globals.h"

namespace quorvel::tests {

struct PluginHostOptions {
    std::string language = "ENGLISH";  // as the settings file says it: "ENGLISH", "KOREAN", "JAPANESE"
    std::vector<std::pair<std::string, std::string>> settings;  // further lines of the settings file
    host::HostOptions host;
    std::unique_ptr<platform::HeadlessBackend> user;  // null: a plain one
};

class PluginHost {
  public:
    explicit PluginHost(PluginHostOptions options = {});
    ~PluginHost();
    PluginHost(const PluginHost&) = delete;
    PluginHost& operator=(const PluginHost&) = delete;

    AIErr start();  // Startup, and the notification that the host has started
    AIErr stop();   // Shutdown; once

    host::Host& host() { return *host_; }
    platform::HeadlessBackend& user() { return *user_; }
    PluginGlobals& globals() { return *gGlobals; }
    PrefsRecord& prefs() { return gGlobals->prefs; }
    const std::string& profile() const { return profile_; }
    std::string settingsPath() const;

    void newDrawing(float width = 600, float height = 400);
    // A path of straight segments on top of the current layer, as a step of the host's own.
    doc::ArtId addPath(const std::vector<RealPoint>& anchors, bool closed, bool selected);
    void select(doc::ArtId art, bool selected);

    // The information panel as its user sees it. An absent control reads as "(absent)".
    std::string panelText(std::int32_t control);
    bool panelLit(std::int32_t control);

  private:
    void connect();

    std::string profile_;
    std::unique_ptr<platform::HeadlessBackend> user_;
    std::unique_ptr<host::Host> host_;
    bool started_ = false;
};

}  // namespace quorvel::tests

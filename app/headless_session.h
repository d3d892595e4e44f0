// A host with the plug-in and a scripted user, as each command needs it: the profile's folder, the language and the
// random numbers are settled before the plug-in starts.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "host/host.h"
#include "platform/headless/headless.h"

namespace quorvel::app {

struct SessionOptions {
    std::string profile;   // stands for the documents folder; empty: the user's own
    std::string language;  // "ja", "en", "ko"; empty: as the profile's settings say
    std::optional<std::uint64_t> seed;
    std::string pluginFile;  // empty: beside the program
};

// Where the plug-in keeps its settings below a documents folder.
std::string settingsFileBelow(const std::string& documents);

class HeadlessSession {
  public:
    explicit HeadlessSession(const SessionOptions& options);
    ~HeadlessSession();
    HeadlessSession(const HeadlessSession&) = delete;
    HeadlessSession& operator=(const HeadlessSession&) = delete;

    // Writes a setting into the profile's file; the plug-in reads it when it starts.
    void writeSetting(std::string_view key, std::string_view valueUtf8);
    // Loads and starts the plug-in, once. Throws InputError when that fails.
    void start();
    bool started() const { return started_; }
    void shutdown();

    void openDrawing(const std::string& path);  // throws InputError
    void newDrawing(float width, float height);
    void saveDrawing(const std::string& path);  // throws InputError

    host::Host& host() { return *host_; }
    platform::HeadlessBackend& user() { return *user_; }
    doc::Document* document() { return host_->document(); }
    // What the file that was opened last leaves to be said, once.
    std::vector<Error> takeWarnings();
    // Names of the undo steps made since the last call.
    std::vector<std::string> takeSteps();

  private:
    std::string settingsPath() const;
    void viewOpened(const std::string& name);

    SessionOptions options_;
    std::unique_ptr<platform::HeadlessBackend> user_;
    std::unique_ptr<host::Host> host_;
    bool started_ = false;
    std::string viewName_;
    std::vector<Error> warnings_;
    std::vector<std::string> steps_;
};

// The plug-in's library beside the program or in the library folder of its installation.
std::string findPluginFile();

}  // namespace quorvel::app

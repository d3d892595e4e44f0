// A host with its plug-in, as the command and the window need it alike: where the plug-in is, the language and the
// random numbers that it starts with, and its start and end.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "app/sentences.h"
#include "base/result.h"
#include "host/host.h"

namespace quorvel::app {

struct SessionOptions {
    std::string profile;   // used as the documents folder; empty: the user's own
    std::string language;  // "ja", "en", "ko"; empty: as the profile's settings say
    std::optional<std::uint64_t> seed;
    std::string pluginFile;         // empty: beside the program
    bool replacesReadOnly = false;  // drawings without write permission too
    bool skipsBackups = false;      // of the versions that saving replaces
};

// The language of sentences when nothing but the options is known.
Language languageOf(const SessionOptions& options);

class PluginSession {
  public:
    // The platform's backend is installed before, and stays until this is gone.
    explicit PluginSession(const SessionOptions& options);
    ~PluginSession();
    PluginSession(const PluginSession&) = delete;
    PluginSession& operator=(const PluginSession&) = delete;

    // Writes the language into the profile, once, before anything of it is read. start and writeSetting do it first.
    Status prepare();
    // Into the profile's file; the plug-in reads it when it starts.
    Status writeSetting(std::string_view key, std::string_view valueUtf8);
    // Loads and starts the plug-in, once.
    Status start();
    bool started() const { return started_; }
    Status shutdown();  // an error when the settings cannot be written

    host::Host& host() { return *host_; }

  private:
    SessionOptions options_;
    std::unique_ptr<host::Host> host_;
    bool prepared_ = false, started_ = false;
};

}  // namespace quorvel::app

#include "app/plugin_session.h"

#include <filesystem>
#include <iterator>

#include "app/profile.h"
#include "hostapi/names.h"
#include "platform/backend/backend.h"
#include "platform/file.h"

namespace quorvel::app {

namespace {

constexpr const char* kLanguageOptions[] = {"ja", "en", "ko"};  // by LanguageWord

// Beside the program or in the library folder of its installation.
std::string findPluginFile() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path folder = program.parent_path();
    for (const char* place : {"quorvel_plugin.so", "../lib/quorvel/quorvel_plugin.so"})
        if (std::filesystem::exists(folder / place, error)) return (folder / place).string();
    return (folder / "quorvel_plugin.so").string();
}

host::HostOptions hostOptions(const SessionOptions& options) {
    host::HostOptions made;
    made.seed = options.seed;
    return made;
}

}  // namespace

Language languageOf(const SessionOptions& options) {
    return options.language == "ja" ? Language::japanese : Language::english;
}

PluginSession::PluginSession(const SessionOptions& options)
    : options_(options), host_(std::make_unique<host::Host>(hostOptions(options))) {}

PluginSession::~PluginSession() { static_cast<void>(shutdown()); }

Status PluginSession::prepare() {
    if (prepared_) return {};
    prepared_ = true;
    for (std::size_t word = 0; word < std::size(kLanguageOptions); ++word)
        if (options_.language == kLanguageOptions[word])
            return app::writeSetting(platform::DocumentsFolder(), kLanguageKey, kLanguageWords[word]);
    return {};
}

Status PluginSession::writeSetting(std::string_view key, std::string_view valueUtf8) {
    if (const Status prepared = prepare(); !prepared) return prepared;
    return app::writeSetting(platform::DocumentsFolder(), key, valueUtf8);
}

Status PluginSession::start() {
    if (started_) return {};
    if (const Status prepared = prepare(); !prepared) return prepared;
    const std::string file = options_.pluginFile.empty() ? findPluginFile() : options_.pluginFile;
    if (const Status loaded = host_->loadPlugin(file); !loaded) return loaded;
    started_ = true;
    const AIErr result = host_->startup();
    if (result != kNoErr) return makeError(ErrorCode::kStartFailed, {std::to_string(result)}).inFile(file);
    return {};
}

Status PluginSession::shutdown() {
    if (!started_) return {};
    started_ = false;
    platform::takeFailedWrite();  // of a preset or list, which the plug-in has told
    host_->shutdown();
    if (const std::optional<Error> failure = platform::takeFailedWrite()) return *failure;
    return {};
}

}  // namespace quorvel::app

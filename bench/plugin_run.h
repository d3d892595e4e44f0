// The plug-in in a host, as a benchmark drives it: loaded from its library, with a scripted user and a folder of
// settings of its own. Beside it the clock that all these benchmarks read, and the line that says whether a promise is
// kept.
#pragma once

#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/headless_session.h"
#include "app/profile.h"
#include "host/host.h"
#include "platform/headless/headless.h"

namespace quorvel::bench {

// Time that this process has computed: what others do on the machine only disturbs it through the caches.
inline double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <typename Work>
double secondsOf(Work work) {
    const double start = cpuSeconds();
    work();
    return cpuSeconds() - start;
}

inline double middleOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// One line for each promise; the program's exit code tells whether all were kept.
class Promises {
  public:
    void check(const std::string& what, double value, double limit) {
        const bool kept = value <= limit;  // what is no number is not kept
        allKept_ = allKept_ && kept;
        std::printf("%s  %s: %.4g, at most %.4g\n", kept ? "PASS" : "FAIL", what.c_str(), value, limit);
    }
    int exitCode() const { return allKept_ ? 0 : 1; }

  private:
    bool allKept_ = true;
};

struct RunOptions {
    bool artQuery = true;
    std::vector<std::pair<std::string, std::string>> settings = {};
};

class PluginRun {
  public:
    explicit PluginRun(RunOptions options) {
        std::array<char, 64> folder{"/tmp/quorvel_bench_XXXXXX"};
        if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no folder for the settings");
        profile_ = folder.data();
        writeSettings(options.settings);
        user_.setDocumentsFolder(profile_.string());
        platform::installBackend(&user_);
        host::HostOptions hostOptions;
        hostOptions.seed = 1;
        hostOptions.offerArtQuery = options.artQuery;
        host_.emplace(hostOptions);
        connect();
        if (!host_->loadPlugin(QUORVEL_PLUGIN_FILE)) throw std::runtime_error("the plug-in cannot be loaded");
        if (host_->startup() != kNoErr) throw std::runtime_error("the plug-in did not start");
    }

    ~PluginRun() {
        host_->shutdown();
        host_.reset();
        platform::installBackend(nullptr);
        std::filesystem::remove_all(profile_);
    }
    PluginRun(const PluginRun&) = delete;
    PluginRun& operator=(const PluginRun&) = delete;

    host::Host& host() { return *host_; }
    platform::HeadlessBackend& user() { return user_; }
    doc::Document& document() { return *host_->document(); }

    void open(std::unique_ptr<doc::Document> document) {
        host_->setDocument(std::move(document), "mm");
        user_.screen().openView("Drawing @ 100%", host_->view().width, host_->view().height);
    }

    const host::ToolRecord& tool(std::string_view title) const {
        const host::ToolRecord* found = host_->toolByTitle(title);
        if (found == nullptr) throw std::runtime_error("no tool \"" + std::string(title) + "\"");
        return *found;
    }

  private:
    void writeSettings(const std::vector<std::pair<std::string, std::string>>& settings) const {
        const std::filesystem::path path = app::settingsFileBelow(profile_.string());
        std::filesystem::create_directories(path.parent_path());
        std::ofstream file(path);
        file << kLanguageKey << " = \"" << kLanguageWords[kEnglish] << "\"\r\n";
        for (const auto& [key, value] : settings) file << key << " = \"" << value << "\"\r\n";
        if (!file.flush()) throw std::runtime_error("the settings cannot be written");
    }

    void connect() {
        host::HostCallbacks& callbacks = host_->callbacks;
        callbacks.errorAlert = [](const std::string& text) {
            std::fprintf(stderr, "alert: %s\n", text.c_str());
            std::exit(1);
        };
        callbacks.yesNoAlert = [](const std::string&) { return true; };
        callbacks.createPanelWindow = [this](const host::PanelRecord&) { return user_.createPanelWindow(); };
        callbacks.destroyPanelWindow = [this](void* window) { user_.destroyPanelWindow(window); };
        callbacks.viewRepainted = [this] { user_.screen().repainted(); };
    }

    std::filesystem::path profile_;
    platform::HeadlessBackend user_;
    std::optional<host::Host> host_;
};

}  // namespace quorvel::bench

// What the fuzzers of the plug-in share: a record of settings in which every text must end within its field, and the
// plug-in in a real host with a drawing whose tags come from the input.
#pragma once

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/require.h"
#include "host/host.h"
#include "platform/headless/headless.h"
#include "plugin/settings/prefs_file.h"
#include "plugin/settings/prefs_keys.h"
#include "plugin/shell/globals.h"
#include "plugin/shell/property_list.h"

namespace quorvel::fuzz {

// Each field of the settings, as a file would hold it. A text that runs out of its field is none.
inline std::string scheduleText(const PluginGlobals& globals) {
    std::string all;
    const auto add = [&](std::string_view text, std::size_t size) {
        require(text.size() < size);
        all.append(text).push_back('\n');
    };
    for (const PrefsKey& key : PrefsKeys())
        if (key.group == KeyGroup::schedule)
            add(FormatPrefsField(&globals, key), key.type == FieldType::text ? key.size : 16);
    for (const ZwkPartRow& row : globals.prefs.flZwkParts)
        for (const PartColumn& column : kPartColumns) add(PartText(row, column), column.size);
    return all;
}

// The values of a C string each: the input cut at its zero bytes.
inline std::vector<std::string> cutAtZeros(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> values(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == 0)
            values.emplace_back();
        else
            values.back().push_back(static_cast<char>(data[i]));
    }
    return values;
}

// One for the process: starting the plug-in takes longer than what is tried in it.
class PluginUnderTest {
  public:
    PluginUnderTest() {
        profile_ = std::filesystem::temp_directory_path() / ("quorvel-fuzz-" + std::to_string(getpid()));
        std::filesystem::create_directories(profile_);
        user_.setDocumentsFolder(profile_.string());
        platform::installBackend(&user_);
        host::HostOptions options;
        options.seed = 1;
        host_ = std::make_unique<host::Host>(options);
        host_->callbacks.yesNoAlert = [this](const std::string& text) { return user_.askQuestion(text); };
        static char module = 0;
        host_->attachPlugin(PluginMain, &module);
        require(host_->startup() == kNoErr);
        atStart_ = std::make_unique<PrefsRecord>(gGlobals->prefs);
    }
    ~PluginUnderTest() {
        host_->shutdown();
        host_.reset();
        platform::installBackend(nullptr);
        std::error_code error;
        std::filesystem::remove_all(profile_, error);
    }

    // An empty page and the settings of a first start.
    doc::Document& begin() {
        gGlobals->prefs = *atStart_;
        host_->newDocument(600, 400);
        return *host_->document();
    }
    // What the run has left behind is whole: no suite is held, no reply of ours was wrong.
    void end() {
        require(host_->suitesHeld() == 0);
        require(user_.takeFaults().empty());
        require(!user_.hasRepliesLeft());
        user_.takeTranscript();
    }
    host::Host& host() { return *host_; }
    platform::HeadlessBackend& user() { return user_; }

  private:
    std::filesystem::path profile_;
    platform::HeadlessBackend user_;
    std::unique_ptr<host::Host> host_;
    std::unique_ptr<PrefsRecord> atStart_;
};

}  // namespace quorvel::fuzz

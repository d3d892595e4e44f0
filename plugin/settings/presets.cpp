// Finds the presets that lie in their folder, and the names that are still free there.
#include "plugin/settings/presets.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/file.h"
#include "platform/text.h"
#include "plugin/shell/services.h"

namespace quorvel {

namespace {

constexpr int kLastCustomNumber = 998;
constexpr std::size_t kNameLimit = 255;

char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool ComesAfter(const std::string& a, const std::string& b) {
    return std::lexicographical_compare(b.begin(), b.end(), a.begin(), a.end(), [](char x, char y) {
        return static_cast<unsigned char>(LowerCase(x)) < static_cast<unsigned char>(LowerCase(y));
    });
}

bool EndsInIni(std::string_view name) {
    constexpr std::string_view kExtension = ".ini";
    return name.size() >= kExtension.size() &&
           std::equal(kExtension.begin(), kExtension.end(), name.end() - kExtension.size(),
                      [](char wanted, char c) { return LowerCase(c) == wanted; });
}

// The name in front of the first extension; empty for a file that is no preset.
std::string PresetNameOfFile(const std::string& fileName) {
    if (!EndsInIni(fileName)) return {};
    const std::string bytes = platform::FromUtf8(fileName, platform::kCodePageJapanese);
    // A name that the code page cannot say cannot be opened by it either.
    if (platform::ToUtf8(bytes, platform::kCodePageJapanese) != fileName) return {};
    std::size_t extension = bytes.find(".INI");
    if (extension == std::string::npos) extension = bytes.find(".ini");
    if (extension == std::string::npos || extension < 1 || bytes[0] == '@') return {};
    if (bytes.compare(0, std::strlen(kUntitledPreset), kUntitledPreset) == 0) return {};
    return bytes.substr(0, std::min(extension, kNameLimit));
}

}  // namespace

std::vector<std::string> ListPresetNames() {
    std::vector<std::string> files = platform::FileNames(PresetFolder());
    std::sort(files.begin(), files.end());
    std::vector<std::string> names;
    for (const std::string& file : files) {
        const std::string name = PresetNameOfFile(file);
        if (name.empty()) continue;
        const auto place =
            std::find_if(names.begin(), names.end(), [&](const std::string& other) { return ComesAfter(other, name); });
        names.insert(place, name);
        if (names.size() >= static_cast<std::size_t>(kPresetLimit)) break;
    }
    return names;
}

bool PresetExists(const std::string& name) { return platform::FileCanBeOpened(PresetPath(name.c_str())); }

std::string ProposePresetName() {
    const std::string base = ChooseText("カスタム-", "Custom-");
    for (int number = 1; number < kLastCustomNumber; ++number) {
        std::string name = base + std::to_string(number);
        if (!PresetExists(name)) return name;
    }
    return base + std::to_string(kLastCustomNumber);
}

}  // namespace quorvel

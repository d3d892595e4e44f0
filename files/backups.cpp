#include "files/backups.h"

#include <algorithm>
#include <charconv>
#include <ctime>
#include <filesystem>
#include <vector>

#include "files/file_reader.h"
#include "files/file_writer.h"
#include "files/state_folder.h"
#include "files/target.h"

namespace quorvel::files {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostBackups = 10;
constexpr std::size_t kLargestBackup = std::size_t{1} << 30;
constexpr std::size_t kLongestName = 200;  // bytes of the drawing's own name that are kept

std::string today() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char text[16];
    std::strftime(text, sizeof text, "%Y-%m-%d", &local);
    return text;
}

struct Backup {
    long number = 0;
    fs::path path;
};

std::vector<Backup> backupsIn(const std::string& folder) {
    std::vector<Backup> all;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        Backup backup{0, entry->path()};
        const auto [stop, status] = std::from_chars(name.data(), name.data() + name.size(), backup.number);
        if (status == std::errc() && *stop == '-') all.push_back(std::move(backup));
    }
    std::ranges::sort(all, {}, &Backup::number);
    return all;
}

}  // namespace

Status keepDailyBackup(const std::string& path) {
    const Result<Target> target = resolveTarget(path);
    if (!target) return target.error();
    if (target->kind != TargetKind::kRegular) return {};
    const std::string file = target->folder + "/" + target->name;
    const Result<std::string> folder = stateFolder("backups/" + hexOf(pathHash(file)));
    if (!folder) return folder.error();
    const std::vector<Backup> kept = backupsIn(*folder);
    const std::string date = today();
    const auto isOfToday = [&](const Backup& backup) {
        return backup.path.filename().string().find("-" + date + "-") != std::string::npos;
    };
    if (std::ranges::any_of(kept, isOfToday)) return {};
    const Result<std::string> content = readFile(file, kLargestBackup);
    if (!content) return content.error();
    const long number = kept.empty() ? 1 : kept.back().number + 1;
    const std::string name = std::to_string(number) + "-" + date + "-" + target->name.substr(0, kLongestName);
    if (Status written = writeFile(*folder + "/" + name, *content); !written) return written;
    std::error_code ignored;  // one too many is no loss
    for (std::size_t i = 0; i + kMostBackups <= kept.size(); ++i) fs::remove(kept[i].path, ignored);
    return {};
}

}  // namespace quorvel::files

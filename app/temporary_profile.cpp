#include "app/temporary_profile.h"

#include <stdlib.h>

#include <filesystem>
#include <utility>

#include "app/profile.h"
#include "platform/backend/folders.h"

namespace quorvel::app {

namespace fs = std::filesystem;

namespace {

void removeFolder(const std::string& folder) {
    std::error_code ignored;  // what cannot be removed is left to the system's own cleaning
    if (!folder.empty()) fs::remove_all(folder, ignored);
}

}  // namespace

Result<TemporaryProfile> TemporaryProfile::make(const SessionOptions& lender) {
    TemporaryProfile made(lender);
    std::string folder = (fs::temp_directory_path() / "quorvel-XXXXXX").string();
    made.options_.profile.clear();
    const files::TerminationPause pause;
    if (mkdtemp(folder.data()) == nullptr) return makeError(ErrorCode::kNotCreatable).inFile(folder);
    made.options_.profile = folder;
    made.removal_ = std::make_unique<files::TerminationAction>([folder] { removeFolder(folder); });
    const fs::path from = settingsFileBelow(lender.profile.empty() ? platform::userDocumentsFolder() : lender.profile);
    const fs::path to = settingsFileBelow(folder);
    std::error_code error;
    if (!fs::is_regular_file(from, error)) return made;  // a first run has none
    fs::create_directories(to.parent_path(), error);
    if (!fs::copy_file(from, to, error))
        return makeError(ErrorCode::kSystem, {std::to_string(error.value())}).inFile(from.string());
    return made;
}

TemporaryProfile::TemporaryProfile(TemporaryProfile&& other) noexcept
    : options_(std::move(other.options_)), removal_(std::move(other.removal_)) {
    other.options_.profile.clear();
}

TemporaryProfile::~TemporaryProfile() { removeFolder(options_.profile); }

}  // namespace quorvel::app

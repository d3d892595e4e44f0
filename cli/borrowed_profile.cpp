#include "cli/borrowed_profile.h"

#include <stdlib.h>

#include <filesystem>

#include "cli/script.h"
#include "platform/headless/folders.h"

namespace quorvel::cli {

namespace fs = std::filesystem;

BorrowedProfile::BorrowedProfile(const SessionOptions& lender) : options_(lender) {
    std::string pattern = (fs::temp_directory_path() / "quorvel-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) throw InputError(pattern + ": cannot be created");
    options_.profile = pattern;
    const fs::path from = settingsFileBelow(lender.profile.empty() ? platform::UserDocumentsFolder() : lender.profile);
    const fs::path to = settingsFileBelow(options_.profile);
    std::error_code error;
    if (!fs::is_regular_file(from, error)) return;  // a first run has none
    fs::create_directories(to.parent_path(), error);
    if (!fs::copy_file(from, to, error)) throw InputError(from.string() + ": " + error.message());
}

BorrowedProfile::~BorrowedProfile() {
    std::error_code error;
    fs::remove_all(options_.profile, error);
}

}  // namespace quorvel::cli

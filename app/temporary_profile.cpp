#include "app/temporary_profile.h"

#include <stdlib.h>

#include <filesystem>

#include "app/script.h"
#include "platform/headless/folders.h"

namespace quorvel::app {

namespace fs = std::filesystem;

TemporaryProfile::Folder::Folder() : path_((fs::temp_directory_path() / "quorvel-XXXXXX").string()) {
    if (mkdtemp(path_.data()) == nullptr) throw InputError(path_ + ": cannot be created");
}

TemporaryProfile::Folder::~Folder() {
    std::error_code ignored;  // what cannot be removed is left to the system's own cleaning
    fs::remove_all(path_, ignored);
}

TemporaryProfile::TemporaryProfile(const SessionOptions& lender) : options_(lender) {
    options_.profile = folder_.path();
    const fs::path from = settingsFileBelow(lender.profile.empty() ? platform::userDocumentsFolder() : lender.profile);
    const fs::path to = settingsFileBelow(options_.profile);
    std::error_code error;
    if (!fs::is_regular_file(from, error)) return;  // a first run has none
    fs::create_directories(to.parent_path(), error);
    if (!fs::copy_file(from, to, error)) throw InputError(from.string() + ": " + error.message());
}

}  // namespace quorvel::app

// A run with a folder of its own leaves nothing in the user's: the log of errors goes into that folder too.
#include "platform/backend/user_files.h"

#include "platform/backend/folders.h"
#include "platform/file.h"

namespace quorvel::platform {

void UserFiles::setDocumentsFolder(const std::string& path) { documents_ = withoutEndSeparator(path); }

std::string UserFiles::documentsFolder() const { return documents_.empty() ? userDocumentsFolder() : documents_; }

std::string UserFiles::errorLogPath() const {
    const std::string folder = documents_.empty() ? userStateFolder() : documents_;
    return CreateFolder(folder) ? JoinPath(folder, "ERROR MSG.TXT") : "";
}

}  // namespace quorvel::platform

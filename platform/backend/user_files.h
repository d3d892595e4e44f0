// The user's own folders: one that a script or an option gives, else those of the desktop's base directories.
#pragma once

#include <string>

#include "platform/backend/files.h"

namespace quorvel::platform {

class UserFiles final : public Files {
  public:
    void setDocumentsFolder(const std::string& path);  // empty: the user's own

    std::string documentsFolder() const override;
    std::string errorLogPath() const override;

  private:
    std::string documents_;
};

}  // namespace quorvel::platform

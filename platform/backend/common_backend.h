// What both backends have alike: the unseen screen round the view, and the user's folders.
#pragma once

#include <string>

#include "platform/backend/backend.h"
#include "platform/backend/user_files.h"
#include "platform/backend/view_screen.h"

namespace quorvel::platform {

class CommonBackend : public Backend {
  public:
    ViewScreen& screen() { return screen_; }
    const ViewScreen& screen() const { return screen_; }
    void setDocumentsFolder(const std::string& path) { files_.setDocumentsFolder(path); }  // empty: the user's own

    ViewWindows& viewWindows() override { return screen_; }
    Surfaces& surfaces() override { return screen_; }
    Files& files() override { return files_; }

  private:
    ViewScreen screen_;
    UserFiles files_;
};

}  // namespace quorvel::platform

// One writer at a time in a folder, among all processes: who reads a file, changes it and writes it back.
#pragma once

#include <string>

#include "files/descriptor.h"

namespace quorvel::files {

// Held until it is destroyed, or until the process ends, however it ends. Waits for another holder, but not for one
// that hangs: after two seconds, or where the file system has no locks, the work goes on without it. Not to be nested.
class FolderLock {
  public:
    explicit FolderLock(const std::string& folder);
    bool isHeld() const { return folder_.isOpen(); }

  private:
    Descriptor folder_;
};

}  // namespace quorvel::files

#include "files/folder_lock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace quorvel::files {

// The folder itself is locked, so that no file of locks is left in it.
FolderLock::FolderLock(const std::string& folder)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    constexpr auto kPause = std::chrono::milliseconds(5), kPatience = std::chrono::milliseconds(2000);
    for (auto waited = kPause; folder_.isOpen() && ::flock(folder_.get(), LOCK_EX | LOCK_NB) != 0; waited += kPause) {
        if ((errno == EWOULDBLOCK || errno == EINTR) && waited <= kPatience)
            std::this_thread::sleep_for(kPause);
        else
            folder_.reset();
    }
}

}  // namespace quorvel::files

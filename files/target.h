// What a path that is to be written leads to. Symbolic links are followed, so that they stay links.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <string>

#include "base/result.h"

namespace quorvel::files {

enum class TargetKind {
    kAbsent,   // a new file in an existing folder
    kRegular,  // a file that is there
    kStream,   // a device, pipe or socket, or one of the process's own descriptors: never replaced
};

struct Target {
    TargetKind kind = TargetKind::kAbsent;
    std::string folder, name;  // of a file, behind all links; the folder is absolute
    std::string path;          // of a stream that is opened by its name
    int descriptor = -1;       // of the process's own, such as 1 for "-" and /dev/stdout
    struct stat info {};       // of a regular file
};

// "-" is the standard output. Fails for a folder, a link that leads nowhere, and a folder that does not exist.
Result<Target> resolveTarget(const std::string& path);

// The number of a descriptor of this process that the path names, such as /dev/stdout.
std::optional<int> ownDescriptor(const std::string& path);

// An error with the system's own words for an errno.
Error systemError(int number);

}  // namespace quorvel::files

// Where the user's own files are, as a backend has it. What is done with a file is the same everywhere.
#pragma once

#include <string>

namespace quorvel::platform {

class Files {
  public:
    virtual ~Files() = default;
    virtual std::string documentsFolder() const = 0;  // without a separator at its end; empty when there is none
    virtual std::string errorLogPath() const = 0;     // empty when its folder cannot be made
};

}  // namespace quorvel::platform

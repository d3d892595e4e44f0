// The temporary file that becomes the target. Its name is short and its own, whatever the target's name is:
// ".qv" + 8 digits of the target's hash + "-" + the writer's process + "-" + a random number.
#pragma once

#include <memory>
#include <string>

#include "base/result.h"
#include "files/descriptor.h"
#include "files/termination.h"

namespace quorvel::files {

class Temporary {
  public:
    // Without a name where the system can do that, so that a killed process leaves nothing. The folder stays open as
    // long as this.
    static Result<Temporary> make(int folder, const std::string& targetName, unsigned mode);
    Temporary(Temporary&&) = default;
    Temporary& operator=(Temporary&&) = default;

    int get() const { return file_.get(); }
    // Under the target's name afterwards, in place of what had it.
    [[nodiscard]] Status moveTo(int folder, const std::string& targetName);
    void discard(int folder);

  private:
    Temporary(Descriptor file, std::string name) : file_(std::move(file)), name_(std::move(name)) {}
    Descriptor file_;
    std::string name_;                            // empty while it has none
    std::unique_ptr<TerminationAction> removal_;  // of the name
};

// Removes the temporary files that killed writers have left in the folder, of whatever target: a window's copy against
// a crash has another name in each process.
void removeLeftovers(int folder);

}  // namespace quorvel::files

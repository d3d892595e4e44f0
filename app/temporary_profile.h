// A profile for one run with the settings of another: what the run makes of them (a parts list read in, the settings
// that rebuilt dimensions carry) is not written into the user's own, and it has no presets.
#pragma once

#include <memory>
#include <string>

#include "app/plugin_session.h"
#include "files/termination.h"

namespace quorvel::app {

class TemporaryProfile {
  public:
    // Copies the lender's settings into a folder of its own, which is gone when this is. A lender without settings
    // lends the defaults.
    static Result<TemporaryProfile> make(const SessionOptions& lender);
    TemporaryProfile(TemporaryProfile&& other) noexcept;
    TemporaryProfile& operator=(TemporaryProfile&&) = delete;
    ~TemporaryProfile();

    // The lender's, with this profile.
    const SessionOptions& options() const { return options_; }

  private:
    explicit TemporaryProfile(const SessionOptions& lender) : options_(lender) {}

    SessionOptions options_;  // their profile is the folder; empty when it has been moved from
    std::unique_ptr<files::TerminationAction> removal_;
};

}  // namespace quorvel::app

// A profile for one run with the settings of another: what the run makes of them (a parts list read in, the settings
// that rebuilt dimensions carry) does not end up in the user's own, and no preset stands in its way.
#pragma once

#include "cli/session.h"

namespace quorvel::cli {

class BorrowedProfile {
  public:
    // Throws InputError when the settings cannot be copied; a lender without settings lends the defaults.
    explicit BorrowedProfile(const SessionOptions& lender);
    ~BorrowedProfile();
    BorrowedProfile(const BorrowedProfile&) = delete;
    BorrowedProfile& operator=(const BorrowedProfile&) = delete;

    // The lender's, with this profile.
    const SessionOptions& options() const { return options_; }

  private:
    SessionOptions options_;
};

}  // namespace quorvel::cli

// A profile for one run with the settings of another: what the run makes of them (a parts list read in, the settings
// that rebuilt dimensions carry) does not end up in the user's own, and no preset stands in its way.
#pragma once

#include "app/headless_session.h"

namespace quorvel::app {

class TemporaryProfile {
  public:
    // Throws InputError when the settings cannot be copied; a lender without settings lends the defaults.
    explicit TemporaryProfile(const SessionOptions& lender);

    // The lender's, with this profile.
    const SessionOptions& options() const { return options_; }

  private:
    // A folder of its own, gone with it.
    class Folder {
      public:
        Folder();
        ~Folder();
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        const std::string& path() const { return path_; }

      private:
        std::string path_;
    };

    Folder folder_;
    SessionOptions options_;
};

}  // namespace quorvel::app

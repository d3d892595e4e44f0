// What the platform's functions call: one installed backend for the process, in five small interfaces. The
// library that holds the functions is shared, so that the plug-in and the program that loads it use the same backend.
// Code pages and the reading and writing of files are the same everywhere and have no interface.
#pragma once

#include <optional>

#include "base/error.h"
#include "platform/backend/dialogs.h"
#include "platform/backend/files.h"
#include "platform/backend/services.h"
#include "platform/backend/surfaces.h"
#include "platform/backend/view_windows.h"

namespace quorvel::platform {

class Backend {
  public:
    virtual ~Backend() = default;
    virtual ViewWindows& viewWindows() = 0;
    virtual Surfaces& surfaces() = 0;
    virtual Dialogs& dialogs() = 0;
    virtual Files& files() = 0;
    virtual Services& services() = 0;
};

// The backend must outlive its use; null takes it away. Functions called without a backend do nothing and give
// nothing.
void installBackend(Backend* backend);
Backend* installedBackend();

// Why a new file of the plug-in's was not written, once, with its path; the plug-in itself cannot say it when it ends.
std::optional<Error> takeFailedWrite();

}  // namespace quorvel::platform

// The beep, cursors and zeroed memory, as a backend has them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/system.h"

namespace quorvel::platform {

class Services {
  public:
    virtual ~Services() = default;
    virtual void beep(std::uint32_t kind) = 0;
    virtual CursorRef loadCursor(void* module, std::int32_t id) = 0;  // null when there is none
    virtual void setCursor(CursorRef cursor) = 0;                     // one that was loaded
    virtual void* allocateZeroed(std::size_t size) = 0;               // null when there is no memory
    virtual void freeZeroed(void* block) = 0;                         // one that was allocated
    virtual std::uint32_t lastError() const = 0;                      // of the last allocation; 0 for none
};

}  // namespace quorvel::platform

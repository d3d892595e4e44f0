// Small services of the system: the beep, cursors and zeroed memory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorvel::platform {

void MessageBeep(std::uint32_t kind);

using CursorRef = struct Cursor*;
// A cursor of the plug-in's own resources, null when there is none.
CursorRef LoadCursorResource(void* module, std::int32_t id);
// Null is passed over.
void SetCursor(CursorRef cursor);

// Zeroed memory, null when there is none; LastError is nonzero then.
void* AllocateZeroed(std::size_t size);
void FreeZeroed(void* block);
std::uint32_t LastError();

}  // namespace quorvel::platform

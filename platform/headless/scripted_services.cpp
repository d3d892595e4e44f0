// A cursor is told once, when it changes.
#include "platform/headless/scripted_services.h"

namespace quorvel::platform {

namespace {

// The cursors that the plug-in's resources hold.
constexpr std::int32_t kFirstCursor = 16101, kCursorCount = 10;

// Only addresses are used: each element is the handle of one cursor.
char cursorPlaces[kCursorCount];

}  // namespace

void ScriptedServices::beep(std::uint32_t) {
    ++beeps_;
    user_.say("beep");
}

CursorRef ScriptedServices::loadCursor(void*, std::int32_t id) {
    if (id < kFirstCursor || id >= kFirstCursor + kCursorCount) return nullptr;
    return reinterpret_cast<CursorRef>(&cursorPlaces[id - kFirstCursor]);
}

void ScriptedServices::setCursor(CursorRef cursor) {
    const auto id = static_cast<std::int32_t>(kFirstCursor + (reinterpret_cast<char*>(cursor) - cursorPlaces));
    if (id != cursor_) user_.say("cursor " + std::to_string(id));
    cursor_ = id;
}

void ScriptedServices::freeZeroed(void* block) {
    if (!blocks_.free(block)) user_.fault(makeError(ErrorCode::kBlockFreed));
}

}  // namespace quorvel::platform

// The small services, handed to the backend that is installed.
#include "platform/system.h"

#include "platform/backend/backend.h"

namespace quorvel::platform {

namespace {

Services* InstalledServices() { return installedBackend() != nullptr ? &installedBackend()->services() : nullptr; }

}  // namespace

void MessageBeep(std::uint32_t kind) {
    if (Services* services = InstalledServices()) services->beep(kind);
}

CursorRef LoadCursorResource(void* module, std::int32_t id) {
    Services* services = InstalledServices();
    return services != nullptr ? services->loadCursor(module, id) : nullptr;
}

void SetCursor(CursorRef cursor) {
    Services* services = InstalledServices();
    if (services != nullptr && cursor != nullptr) services->setCursor(cursor);
}

void* AllocateZeroed(std::size_t size) {
    Services* services = InstalledServices();
    return services != nullptr ? services->allocateZeroed(size) : nullptr;
}

void FreeZeroed(void* block) {
    Services* services = InstalledServices();
    if (services != nullptr && block != nullptr) services->freeZeroed(block);
}

std::uint32_t LastError() {
    const Services* services = InstalledServices();
    return services != nullptr ? services->lastError() : 0;
}

}  // namespace quorvel::platform

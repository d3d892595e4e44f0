// The functions of the view's windows, handed to the backend that is installed.
#include "platform/window.h"

#include "platform/backend/backend.h"
#include "platform/system_text.h"

namespace quorvel::platform {

ViewWindowRef GetTopWindow(ViewWindowRef parent) {
    if (parent == nullptr)
        return installedBackend() != nullptr ? installedBackend()->viewWindows().topWindow() : nullptr;
    const ViewWindow* found = living(parent);
    return found != nullptr ? found->firstChild() : nullptr;
}

ViewWindowRef GetNextWindow(ViewWindowRef window) {
    const ViewWindow* found = living(window);
    return found != nullptr ? found->nextSibling() : nullptr;
}

std::int32_t GetWindowTitle(ViewWindowRef window, char* title, std::int32_t size) {
    const ViewWindow* found = living(window);
    return CopyToSystem(found != nullptr ? found->title() : "", title, size);
}

PixelRect GetWindowRect(ViewWindowRef window) {
    const ViewWindow* found = living(window);
    return found != nullptr ? found->rect() : PixelRect{};
}

bool IsWindowVisible(ViewWindowRef window) {
    const ViewWindow* found = living(window);
    return found != nullptr && found->isVisible();
}

Pixel ClientToScreen(ViewWindowRef window, Pixel point) {
    const ViewWindow* found = living(window);
    const Pixel origin = found != nullptr ? found->clientOrigin() : Pixel{};
    return {point.h + origin.h, point.v + origin.v};
}

Pixel ScreenToClient(ViewWindowRef window, Pixel point) {
    const ViewWindow* found = living(window);
    const Pixel origin = found != nullptr ? found->clientOrigin() : Pixel{};
    return {point.h - origin.h, point.v - origin.v};
}

std::int32_t GetWindowNumber(ViewWindowRef window) {
    const ViewWindow* found = living(window);
    return found != nullptr ? found->number() : 0;
}

}  // namespace quorvel::platform

// Finding the window that shows the document, so that a preview can be drawn on it: hosts offer no handle to it, and it
// is told by its place under a point and by its size. A trace of the search goes to the error log on request.
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "platform/file.h"
#include "platform/window.h"
#include "plugin/shell/services.h"

namespace quorvel {
namespace {

constexpr int kStackCapacity = 32;
constexpr std::int32_t kWindowTitleSize = 1024;
constexpr char kDocumentTitleMark[] = " @ ";  // a document's title ends in " @ " and its zoom

struct WindowStack {
    int count = 0;
    platform::ViewWindowRef windows[kStackCapacity];
};

std::int32_t Width(const platform::PixelRect& rect) { return rect.right - rect.left; }
std::int32_t Height(const platform::PixelRect& rect) { return rect.bottom - rect.top; }

std::int32_t SizeOf(platform::ViewWindowRef window) {
    const platform::PixelRect rect = platform::GetWindowRect(window);
    return Width(rect) + Height(rect);
}

platform::ViewWindowRef FindDocumentWindow() {
    char title[kWindowTitleSize];
    platform::ViewWindowRef window = platform::GetTopWindow(nullptr);
    while (window != nullptr) {
        if (platform::GetWindowTitle(window, title, kWindowTitleSize) > 0 && std::strstr(title, kDocumentTitleMark)) {
            return window;
        }
        window = platform::GetNextWindow(window);
    }
    return nullptr;
}

// A third into the window. The rectangle's own corner is carried through the conversion to screen coordinates, and
// LiesUnder compares with the rectangle in the same way, so that the window itself always lies under the point.
platform::Pixel ProbePoint(platform::ViewWindowRef window) {
    const platform::PixelRect rect = platform::GetWindowRect(window);
    const platform::Pixel third = {rect.left + Width(rect) / 3, rect.top + Height(rect) / 3};
    return platform::ClientToScreen(window, third);
}

bool LiesUnder(platform::ViewWindowRef window, platform::Pixel screenPoint) {
    if (!platform::IsWindowVisible(window)) return false;
    const platform::Pixel point = platform::ScreenToClient(window, screenPoint);
    const platform::PixelRect rect = platform::GetWindowRect(window);
    return point.h > rect.left && point.h < rect.right && point.v > rect.top && point.v < rect.bottom;
}

// Largest first; of equal sizes the earlier found stays ahead.
void InsertBySize(WindowStack* stack, platform::ViewWindowRef window) {
    if (stack->count == kStackCapacity) return;
    int at = 0;
    while (at < stack->count && SizeOf(stack->windows[at]) >= SizeOf(window)) ++at;
    for (int i = stack->count; i > at; --i) stack->windows[i] = stack->windows[i - 1];
    stack->windows[at] = window;
    ++stack->count;
}

void CollectUnder(platform::ViewWindowRef window, platform::Pixel screenPoint, WindowStack* stack) {
    if (LiesUnder(window, screenPoint)) InsertBySize(stack, window);
    platform::ViewWindowRef child = platform::GetTopWindow(window);
    while (child != nullptr) {
        CollectUnder(child, screenPoint, stack);
        child = platform::GetNextWindow(child);
    }
}

int SiblingsBehind(platform::ViewWindowRef window) {
    int count = 0;
    while ((window = platform::GetNextWindow(window)) != nullptr) ++count;
    return count;
}

void TraceStack(const WindowStack& stack) {
    char title[kWindowTitleSize];
    char line[kWindowTitleSize + 128];
    for (int i = 0; i < stack.count; ++i) {
        const platform::ViewWindowRef window = stack.windows[i];
        const platform::PixelRect rect = platform::GetWindowRect(window);
        title[0] = '\0';
        platform::GetWindowTitle(window, title, kWindowTitleSize);
        std::snprintf(line, sizeof line, "%s : (%d, %d)[%s](%d:%d)\r\n", "*9*", Width(rect), Height(rect), title,
                      platform::GetWindowNumber(window), SiblingsBehind(window));
        AppendErrorLog(line);
    }
}

}  // namespace

platform::ViewWindowRef FindViewWindow() {
    PluginGlobals* globals = gGlobals;
    WindowStack stack;
    const platform::ViewWindowRef document = FindDocumentWindow();
    if (document != nullptr) CollectUnder(document, ProbePoint(document), &stack);
    if (globals->windowProbeLog != 0) TraceStack(stack);
    globals->windowProbeLog = 0;
    return stack.count == 0 ? nullptr : stack.windows[stack.count - 1];
}

// A log that cannot be written is passed over: it must not disturb the work that it traces.
void AppendErrorLog(std::string_view text) {
    const platform::FileRef file = platform::OpenForAppending(platform::ErrorLogPath());
    if (file == nullptr) return;
    platform::WriteToFile(file, text);
    platform::CloseFile(file);
}

}  // namespace quorvel

// The window tree round the document's view, as a backend has it.
#pragma once

#include <cstdint>
#include <string>

#include "platform/backend/referenced.h"
#include "platform/window.h"

namespace quorvel::platform {

class ViewWindow : public Referenced {
  public:
    virtual std::string title() const = 0;  // UTF-8
    virtual PixelRect rect() const = 0;     // on the screen
    virtual Pixel clientOrigin() const = 0;
    virtual bool isVisible() const = 0;
    virtual std::int32_t number() const = 0;
    // In z order; null for none.
    virtual ViewWindow* firstChild() const = 0;
    virtual ViewWindow* nextSibling() const = 0;
};

class ViewWindows {
  public:
    virtual ~ViewWindows() = default;
    virtual ViewWindow* topWindow() const = 0;  // null for none
};

}  // namespace quorvel::platform

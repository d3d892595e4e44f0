// The backend with a screen: dialogs and message boxes are real windows, cursors are shown, and what the plug-in
// inverts is kept as the set of pixels that the canvas shows inverted.
#pragma once

#include <QCursor>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/backend/common_backend.h"
#include "platform/backend/zeroed_blocks.h"
#include "platform/qt/qt_dialogs.h"

namespace quorvel::platform {

// The beep, cursors from the plug-in's pictures, and memory.
class QtServices final : public Services {
  public:
    // What the program does at each call; each may be left empty.
    std::function<void(std::int32_t id, const QCursor& cursor)> cursorChosen;
    std::function<void()> beeped;
    std::function<qreal()> pixelRatio;  // of the screen that shows the cursor

    void beep(std::uint32_t kind) override;
    CursorRef loadCursor(void* module, std::int32_t id) override;
    void setCursor(CursorRef cursor) override;
    void* allocateZeroed(std::size_t size) override { return blocks_.allocate(size); }
    void freeZeroed(void* block) override { blocks_.free(block); }
    std::uint32_t lastError() const override { return blocks_.lastError(); }

  private:
    std::unordered_map<std::int32_t, std::unique_ptr<std::int32_t>> cursors_;
    ZeroedBlocks blocks_;
};

class QtBackend final : public CommonBackend {
  public:
    explicit QtBackend(const std::string& documentsFolder);

    QtDialogs& dialogs() override { return dialogs_; }
    QtServices& services() override { return services_; }

  private:
    QtDialogs dialogs_;
    QtServices services_;
};

}  // namespace quorvel::platform

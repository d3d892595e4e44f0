// The small services without a screen: what a user would hear and see of them goes into the transcript.
#pragma once

#include "platform/backend/services.h"
#include "platform/backend/zeroed_blocks.h"
#include "platform/headless/scripted_user.h"

namespace quorvel::platform {

class ScriptedServices final : public Services {
  public:
    explicit ScriptedServices(ScriptedUser& user) : user_(user) {}

    int beeps() const { return beeps_; }
    std::int32_t lastCursor() const { return cursor_; }  // 0 before the first
    void failAllocation(int nth) { blocks_.failAllocation(nth); }

    void beep(std::uint32_t kind) override;
    CursorRef loadCursor(void* module, std::int32_t id) override;
    void setCursor(CursorRef cursor) override;
    void* allocateZeroed(std::size_t size) override { return blocks_.allocate(size); }
    void freeZeroed(void* block) override;
    std::uint32_t lastError() const override { return blocks_.lastError(); }

  private:
    ScriptedUser& user_;
    ZeroedBlocks blocks_;
    std::int32_t cursor_ = 0;
    int beeps_ = 0;
};

}  // namespace quorvel::platform

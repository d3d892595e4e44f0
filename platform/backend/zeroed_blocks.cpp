// Blocks are kept in a set, so that a block is freed once at most.
#include "platform/backend/zeroed_blocks.h"

#include <cstdlib>

namespace quorvel::platform {

namespace {

constexpr std::uint32_t kNotEnoughMemory = 8;

}  // namespace

ZeroedBlocks::~ZeroedBlocks() {
    for (void* block : blocks_) std::free(block);
}

void* ZeroedBlocks::allocate(std::size_t size) {
    const bool refused = failing_.erase(++allocations_) != 0;
    void* block = refused ? nullptr : std::calloc(1, size == 0 ? 1 : size);
    error_ = block == nullptr ? kNotEnoughMemory : 0;
    if (block != nullptr) blocks_.insert(block);
    return block;
}

bool ZeroedBlocks::free(void* block) {
    if (blocks_.erase(block) == 0) return false;
    std::free(block);
    return true;
}

void ZeroedBlocks::failAllocation(int nth) { failing_.insert(allocations_ + nth); }

}  // namespace quorvel::platform

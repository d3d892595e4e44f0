// Zeroed memory as the services give it. What was not freed goes with the owner.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <unordered_set>

namespace quorvel::platform {

class ZeroedBlocks {
  public:
    ZeroedBlocks() = default;
    ~ZeroedBlocks();
    ZeroedBlocks(const ZeroedBlocks&) = delete;
    ZeroedBlocks& operator=(const ZeroedBlocks&) = delete;

    void* allocate(std::size_t size);  // null, and the error set, when there is no memory
    bool free(void* block);            // false for a block that is not allocated
    std::uint32_t lastError() const { return error_; }
    void failAllocation(int nth);  // the nth from now on gives null, from 1

  private:
    std::unordered_set<void*> blocks_;
    std::int64_t allocations_ = 0;
    std::set<std::int64_t> failing_;  // counted from the first allocation
    std::uint32_t error_ = 0;
};

}  // namespace quorvel::platform

// Large blocks that are filled as a whole: on large pages the system has far fewer of them to hand out, and a drawing
// of many megabytes opens in less time.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>

namespace quorvel::svg {

// To be called before the block is filled. Only advice: a system that has no large pages takes no notice.
inline void adviseHugePages(void* block, std::size_t size) {
    constexpr std::size_t kWorthIt = std::size_t{4} << 20;
    if (size < kWorthIt) return;
    const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    const auto start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t from = (start + page - 1) / page * page, to = (start + size) / page * page;
    static_cast<void>(::madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE));
}

}  // namespace quorvel::svg

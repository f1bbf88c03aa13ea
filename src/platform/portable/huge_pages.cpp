#include "platform/huge_pages.h"

#include <sys/mman.h>

#include <cstdint>

namespace tq {

void AdviseHugePages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes) noexcept {
#if defined(MADV_HUGEPAGE)
    // Smaller blocks are mostly recycled by the allocator, their pages already there.
    constexpr std::size_t kWorthwhile = std::size_t{16} << 20;
    if (bytes < kWorthwhile) return;
    // The pages that lie whole inside the block; its ends share theirs with other blocks.
    constexpr std::uintptr_t kHugePage = std::uintptr_t{2} << 20;
    const auto start = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t first = (start + kHugePage - 1) / kHugePage * kHugePage;
    const std::uintptr_t end = (start + bytes) / kHugePage * kHugePage;
    if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

}  // namespace tq

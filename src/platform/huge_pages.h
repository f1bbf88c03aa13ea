#pragma once

#include <cstddef>

namespace tq {

/// Asks the system to back a large new block with huge pages, before anything is written to it. The 128 MB of
/// an 8000 x 8000 image are 32,000 page faults otherwise, which cost more than filling them. Only advice:
/// where there are no huge pages nothing changes.
void AdviseHugePages(void* block, std::size_t bytes) noexcept;

}  // namespace tq

#include "platform/huge_pages.h"

namespace tq {

// Large pages need a privilege that hosts do not have.
void AdviseHugePages(void*, std::size_t) noexcept {}

}  // namespace tq

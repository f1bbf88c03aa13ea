#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <unordered_map>

#include "tqimage/automation.h"

namespace {

struct Block {
    SIZE_T bytes = 0;
    UINT flags = 0;
    UINT locks = 0;
};

/// Every live block by its handle, so that a handle which is not one, or not any more, is refused as the
/// system would refuse it. A handle is the block's address.
class Registry {
  public:
    static Registry& Instance() {
        static Registry registry;
        return registry;
    }

    void Add(void* handle, const Block& block) {
        const std::scoped_lock lock(mutex_);
        blocks_.emplace(Key(handle), block);
    }
    bool Remove(void* handle) {
        const std::scoped_lock lock(mutex_);
        return blocks_.erase(Key(handle)) != 0;
    }
    /// Gives `use` the block under the lock; `otherwise` when there is none.
    template <class Result, class Use>
    Result With(void* handle, Result otherwise, Use&& use) {
        const std::scoped_lock lock(mutex_);
        const auto found = blocks_.find(Key(handle));
        return found == blocks_.end() ? otherwise : use(found->second);
    }

  private:
    /// The complement hides the address from leak checkers, which otherwise would take the registry for an
    /// owner and never report a handle that nobody frees.
    static std::uintptr_t Key(void* handle) noexcept { return ~reinterpret_cast<std::uintptr_t>(handle); }

    std::mutex mutex_;
    std::unordered_map<std::uintptr_t, Block> blocks_;
};

bool IsMoveable(const Block& block) noexcept {
    return (block.flags & GMEM_MOVEABLE) != 0;
}

}  // namespace

HGLOBAL TQ_CALL GlobalAlloc(UINT uFlags, SIZE_T dwBytes) {
    // No object is larger; hosts that compute a size wrong end up here.
    if (dwBytes > static_cast<SIZE_T>(PTRDIFF_MAX)) return nullptr;
    // One byte at least, so that every handle is an address of its own.
    void* const memory = std::calloc(dwBytes == 0 ? 1 : dwBytes, 1);
    if (memory == nullptr) return nullptr;
    try {
        Registry::Instance().Add(memory, Block{dwBytes, uFlags, 0});
    } catch (...) {
        std::free(memory);
        return nullptr;
    }
    return memory;
}

void* TQ_CALL GlobalLock(HGLOBAL hMem) {
    return Registry::Instance().With(hMem, static_cast<void*>(nullptr), [&](Block& block) -> void* {
        if (!IsMoveable(block)) return hMem;
        if (block.bytes == 0) return nullptr;
        ++block.locks;
        return hMem;
    });
}

BOOL TQ_CALL GlobalUnlock(HGLOBAL hMem) {
    return Registry::Instance().With(hMem, BOOL{0}, [](Block& block) -> BOOL {
        if (!IsMoveable(block)) return 1;
        if (block.locks != 0) --block.locks;
        return block.locks != 0;
    });
}

SIZE_T TQ_CALL GlobalSize(HGLOBAL hMem) {
    return Registry::Instance().With(hMem, SIZE_T{0}, [](const Block& block) { return block.bytes; });
}

HGLOBAL TQ_CALL GlobalFree(HGLOBAL hMem) {
    if (!Registry::Instance().Remove(hMem)) return hMem;
    std::free(hMem);
    return nullptr;
}

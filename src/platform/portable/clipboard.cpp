#include "platform/clipboard.h"

#include <mutex>
#include <utility>

#include "tqimage/automation.h"

namespace tq {

// Without a system's clipboard the process has one of its own, so that the handle has an owner here too.
void PutDibOnClipboard(void*, void* dib) noexcept {
    static std::mutex mutex;
    static HGLOBAL held = nullptr;
    const std::scoped_lock lock(mutex);
    HGLOBAL const before = std::exchange(held, dib);
    if (before != dib) GlobalFree(before);
}

}  // namespace tq

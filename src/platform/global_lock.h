#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/automation.h"

namespace tq {

/// The bytes of a host's global memory, locked for a scope; none when the handle cannot be locked.
class GlobalLockGuard {
  public:
    explicit GlobalLockGuard(HGLOBAL handle) noexcept
        : handle_(handle), address_(handle == nullptr ? nullptr : GlobalLock(handle)) {}
    GlobalLockGuard(const GlobalLockGuard&) = delete;
    GlobalLockGuard& operator=(const GlobalLockGuard&) = delete;
    ~GlobalLockGuard() {
        if (Locked()) GlobalUnlock(handle_);
    }

    bool Locked() const noexcept { return address_ != nullptr; }
    std::span<const std::uint8_t> Bytes() const noexcept {
        return {static_cast<const std::uint8_t*>(address_), Locked() ? std::size_t{GlobalSize(handle_)} : 0};
    }

  private:
    HGLOBAL handle_;
    void* address_;
};

}  // namespace tq

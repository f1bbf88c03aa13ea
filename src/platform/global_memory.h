#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "platform/automation.h"

namespace tq {

/// The bytes of a handle, kept in place for a scope. Null for a handle that is not one and for one of 0
/// bytes.
class GlobalLockGuard {
  public:
    explicit GlobalLockGuard(HGLOBAL handle) noexcept : handle_(handle) {
        bytes_ = handle == nullptr ? nullptr : static_cast<std::uint8_t*>(GlobalLock(handle));
    }
    GlobalLockGuard(const GlobalLockGuard&) = delete;
    GlobalLockGuard& operator=(const GlobalLockGuard&) = delete;
    ~GlobalLockGuard() {
        if (bytes_ != nullptr) GlobalUnlock(handle_);
    }

    std::uint8_t* Bytes() const noexcept { return bytes_; }

  private:
    HGLOBAL handle_;
    std::uint8_t* bytes_;
};

/// Memory that the library makes for a host, until the host has it. Null when it cannot be had.
class OwnedGlobal {
  public:
    explicit OwnedGlobal(std::size_t bytes) noexcept : handle_(GlobalAlloc(GMEM_MOVEABLE, bytes)) {}
    OwnedGlobal(const OwnedGlobal&) = delete;
    OwnedGlobal& operator=(const OwnedGlobal&) = delete;
    ~OwnedGlobal() {
        if (handle_ != nullptr) GlobalFree(handle_);
    }

    HGLOBAL Get() const noexcept { return handle_; }
    HGLOBAL Release() noexcept { return std::exchange(handle_, nullptr); }

  private:
    HGLOBAL handle_;
};

}  // namespace tq

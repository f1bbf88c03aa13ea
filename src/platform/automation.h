#pragma once

/// Everything that the library knows about a host's SAFEARRAYs. On Windows they are the system's.
#if defined(_WIN32)
#include "platform/windows/system.h"
#endif

#include <cstdint>
#include <cstring>

#include "tqimage/automation.h"

namespace tq {

/// Keeps an array's data in place for a scope. Some contracts leave the array locked after a failure, and
/// hosts take that lock back themselves: KeepLocked.
class SafeArrayLockGuard {
  public:
    explicit SafeArrayLockGuard(SAFEARRAY* array) noexcept
        : array_(array != nullptr && SafeArrayLock(array) >= 0 ? array : nullptr) {}
    SafeArrayLockGuard(const SafeArrayLockGuard&) = delete;
    SafeArrayLockGuard& operator=(const SafeArrayLockGuard&) = delete;
    ~SafeArrayLockGuard() { Unlock(); }

    bool Locked() const noexcept { return array_ != nullptr; }
    void KeepLocked() noexcept { array_ = nullptr; }
    /// For the functions that report a failure to unlock. True as well when there is nothing to unlock.
    bool Unlock() noexcept {
        SAFEARRAY* const array = array_;
        array_ = nullptr;
        return array == nullptr || SafeArrayUnlock(array) >= 0;
    }

  private:
    SAFEARRAY* array_;
};

/// The element type that an array carries; VT_EMPTY when it carries none, as arrays assembled by hand do.
inline VARTYPE CarriedType(const SAFEARRAY& array) noexcept {
    if ((array.fFeatures & FADF_HAVEVARTYPE) == 0) return VT_EMPTY;
    // The published layout keeps the type in the four bytes before the descriptor.
    std::uint32_t type = 0;
    std::memcpy(&type, reinterpret_cast<const unsigned char*>(&array) - sizeof type, sizeof type);
    return static_cast<VARTYPE>(type);
}

/// True for elements that are not numbers: references, whose bytes mean nothing to an image.
inline bool HoldsReferences(const SAFEARRAY& array) noexcept {
    return (array.fFeatures & (FADF_RECORD | FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT)) != 0;
}

/// Integers of 4 bytes, signed or not. Null arrays have none, so this is the first test of every array
/// function.
inline bool HasInt32Elements(const SAFEARRAY* array) noexcept {
    if (array == nullptr || array->cbElements != 4 || HoldsReferences(*array)) return false;
    const VARTYPE type = CarriedType(*array);
    return type == VT_EMPTY || type == VT_I4 || type == VT_INT || type == VT_UI4 || type == VT_UINT;
}

/// Integers of 2 bytes, signed or not.
inline bool HasInt16Elements(const SAFEARRAY* array) noexcept {
    if (array == nullptr || array->cbElements != 2 || HoldsReferences(*array)) return false;
    const VARTYPE type = CarriedType(*array);
    return type == VT_EMPTY || type == VT_I2 || type == VT_UI2;
}

inline bool HasDoubleElements(const SAFEARRAY* array) noexcept {
    if (array == nullptr || array->cbElements != 8 || HoldsReferences(*array)) return false;
    const VARTYPE type = CarriedType(*array);
    return type == VT_EMPTY || type == VT_R8;
}

/// Number of elements of a dimension, counted as the descriptor stores them: 0 is the one declared last.
inline std::uint32_t StoredCount(const SAFEARRAY& array, unsigned stored) noexcept {
    return array.rgsabound[stored].cElements;
}

}  // namespace tq

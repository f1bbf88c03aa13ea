#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "platform/automation.h"

namespace tq {

inline constexpr std::int32_t kOldArrayNotDestroyed = -3;
inline constexpr std::int32_t kArrayNotCreated = -4;
inline constexpr std::int32_t kArrayNotLocked = -5;
inline constexpr std::int32_t kArrayNotUnlocked = -6;

/// Hands values to the host as a one-dimensional array with lower bound 0. An array that the host's pointer
/// holds is destroyed first; from then on the pointer holds the new array or, when it could not be created,
/// null. 0 or one of the codes above.
template <class Value>
std::int32_t ReplaceArray(SAFEARRAY** host, VARTYPE type, std::span<const Value> values) noexcept {
    if (*host != nullptr && SafeArrayDestroy(*host) < 0) return kOldArrayNotDestroyed;
    SAFEARRAYBOUND bound{static_cast<ULONG>(values.size()), 0};
    *host = SafeArrayCreate(type, 1, &bound);
    if (*host == nullptr) return kArrayNotCreated;
    SafeArrayLockGuard lock(*host);
    if (!lock.Locked()) return kArrayNotLocked;
    if (!values.empty()) std::memcpy((*host)->pvData, values.data(), values.size_bytes());
    return lock.Unlock() ? 0 : kArrayNotUnlocked;
}

}  // namespace tq

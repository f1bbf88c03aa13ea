#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "platform/automation.h"

namespace tq {

/// What a function says when a step of handing over an array fails.
struct NewArrayCodes {
    std::int32_t oldNotDestroyed;
    std::int32_t notCreated;
    std::int32_t notLocked;
    std::int32_t notUnlocked;
};

/// Codes of the functions that hand over an array and little else.
inline constexpr NewArrayCodes kArrayCodes{-3, -4, -5, -6};

/// Hands values to the host as an array with these numbers of elements, leftmost first, and lower bounds 0.
/// The values lie as in the array: the leftmost index varies fastest. An array that the host's pointer holds
/// is destroyed first; from then on the pointer holds the new array or, when it could not be created, null.
/// 0 or one of the codes.
template <class Value, std::size_t kDimensions>
std::int32_t ReplaceArray(SAFEARRAY** host, VARTYPE type, const std::size_t (&counts)[kDimensions],
                          std::span<const Value> values, const NewArrayCodes& codes = kArrayCodes) noexcept {
    SAFEARRAYBOUND bounds[kDimensions];
    for (std::size_t i = 0; i < kDimensions; ++i)
        bounds[i] = {static_cast<ULONG>(counts[i]), 0};
    if (*host != nullptr && SafeArrayDestroy(*host) < 0) return codes.oldNotDestroyed;
    *host = SafeArrayCreate(type, static_cast<UINT>(kDimensions), bounds);
    if (*host == nullptr) return codes.notCreated;
    SafeArrayLockGuard lock(*host);
    if (!lock.Locked()) return codes.notLocked;
    if (!values.empty()) std::memcpy((*host)->pvData, values.data(), values.size_bytes());
    return lock.Unlock() ? 0 : codes.notUnlocked;
}

/// The same for an array of one dimension.
template <class Value>
std::int32_t ReplaceArray(SAFEARRAY** host, VARTYPE type, std::span<const Value> values) noexcept {
    return ReplaceArray(host, type, {values.size()}, values);
}

}  // namespace tq

#pragma once

#include "core/numerics.h"

namespace tq {

/// Truncates and limits numbers of any size: the limit precedes the conversion, in which a number too large
/// for 32 bits would come out dark. What is not a number is 0.
inline Pel SaturatedPel(double value) noexcept {
    if (value >= kLargestPel) return Pel{kLargestPel};
    return value > 0.0 ? WrapToPel(TruncToInt32(value)) : Pel{0};
}

}  // namespace tq

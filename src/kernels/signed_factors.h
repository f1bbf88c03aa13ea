#pragma once

#include <cstddef>

#include "core/numerics.h"

namespace tq::kernels {

/// pel * factor + 0.5, truncated and clamped; what is not a number counts as dark. The ceiling precedes the
/// conversion, in which what is beyond 32 bits would come out dark.
inline Pel ScaledPel(Pel pel, double factor) noexcept {
    const double value = pel * factor + 0.5;
    if (value >= kLargestPel) return kLargestPel;
    return value > 0.0 ? WrapToPel(TruncToInt32(value)) : Pel{0};
}

/// What factors are when a correction image has none.
inline constexpr Pel kNoFactor = 65535;

/// out[i] = ScaledPel of pels[i] with the factor stored[i], a signed number, times `unit`; with 1 where there
/// is none.
void ScaleBySigned(const Pel* pels, const Pel* stored, double unit, std::size_t count, Pel* out);

}  // namespace tq::kernels

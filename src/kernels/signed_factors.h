#pragma once

#include <cstddef>

#include "core/saturated_pel.h"

namespace tq::kernels {

/// The pel nearest to pel * factor, halves upward.
inline Pel ScaledPel(Pel pel, double factor) noexcept {
    return SaturatedPel(pel * factor + 0.5);
}

/// What factors are when a correction image has none.
inline constexpr Pel kNoFactor = 65535;

/// out[i] = ScaledPel of pels[i] with the factor stored[i], a signed number, times `unit`; with 1 where there
/// is none.
void ScaleBySigned(const Pel* pels, const Pel* stored, double unit, std::size_t count, Pel* out);

}  // namespace tq::kernels

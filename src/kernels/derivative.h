#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

namespace tq::kernels {

/// How a derivative is formed from the pels around a place on a line.
enum class Derivative { kNone, kBackward, kForward, kCentral, kFivePoint };

/// `at(k)` is the pel k places further on the line. Halves and twelfths are raised by one half and truncated
/// toward zero, so falling edges come out one smaller than rising ones.
template <class At>
constexpr std::int32_t DerivativeOf(Derivative kind, At&& at) {
    switch (kind) {
        case Derivative::kBackward:
            return at(0) - at(-1);
        case Derivative::kForward:
            return at(1) - at(0);
        case Derivative::kCentral:
            return (at(1) - at(-1) + 1) / 2;
        case Derivative::kFivePoint:
            return (at(-2) - 8 * at(-1) + 8 * at(1) - at(2) + 6) / 12;
        default:
            return 0;
    }
}

/// out[i] = the derivative at pels[i] along the line whose places lie `step` pels apart.
void Derive(Derivative kind, const std::uint16_t* pels, std::ptrdiff_t step, std::size_t count,
            std::int32_t* out);

/// The length of a gradient, in single precision and truncated.
inline std::int32_t Magnitude(std::int32_t x, std::int32_t y) noexcept {
    const auto fx = static_cast<float>(x);
    const auto fy = static_cast<float>(y);
    return TruncToInt32(static_cast<double>(std::sqrt(fx * fx + fy * fy)));
}

/// out[i] = Magnitude(x[i], y[i]), at most 65535. Returns the largest before that cap, 0 of none. Derivatives
/// are those of pels.
std::int32_t Magnitudes(const std::int32_t* x, const std::int32_t* y, std::size_t count, std::uint16_t* out);

}  // namespace tq::kernels

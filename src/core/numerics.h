#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace tq {

using Pel = std::uint16_t;

inline constexpr std::int32_t kLargestPel = 65535;
/// Number of values that a pel can have.
inline constexpr std::size_t kGreyLevels = std::size_t{kLargestPel} + 1;

/// Truncates toward zero. Whatever does not fit, NaN included, becomes INT32_MIN: the processor's "integer
/// indefinite", on which the clamps and wraps that follow a conversion have always built.
inline std::int32_t TruncToInt32(double value) noexcept {
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return fits ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

constexpr Pel ClampToPel(std::int32_t value) noexcept {
    return static_cast<Pel>(std::clamp(value, 0, kLargestPel));
}

/// The low 16 bits, for results that wrap modulo 65536.
constexpr Pel WrapToPel(std::int32_t value) noexcept {
    return static_cast<Pel>(value & 0xFFFF);
}

}  // namespace tq

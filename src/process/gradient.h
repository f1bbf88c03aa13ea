#pragma once

#include <cstdint>
#include <cstdlib>

namespace tq {

/// The methods that the gradient routines accept. Numbers between them have never been in use; hosts take
/// the refusal for "not available".
inline constexpr std::int32_t kSobel = 0;
inline constexpr std::int32_t kForward = 2;
inline constexpr std::int32_t kCentral = 3;
inline constexpr std::int32_t kFivePoint = 5;

constexpr bool IsGradientMethod(std::int32_t method) noexcept {
    return method == kSobel || method == kForward || method == kCentral || method == kFivePoint;
}

/// The difference that Sobel's operator smooths: central, doubled at the ends where it spans one pel.
/// `at(k)` is pel k of a line of n >= 2 pels.
template <class At>
constexpr std::int32_t SobelDifference(std::int32_t i, std::int32_t n, At&& at) {
    if (i == 0) return 2 * (at(1) - at(0));
    if (i == n - 1) return 2 * (at(i) - at(i - 1));
    return at(i + 1) - at(i - 1);
}

/// Derivative at pel i of a line of n pels by a method other than Sobel's; 0 for a line of one. Halves and
/// twelfths are raised by one half and truncated toward zero, so falling edges come out one smaller than
/// rising ones.
template <class At>
constexpr std::int32_t LineDerivative(std::int32_t method, std::int32_t i, std::int32_t n, At&& at) {
    if (n < 2) return 0;
    if (i == n - 1) return at(i) - at(i - 1);
    if (i == 0 || method == kForward) return at(i + 1) - at(i);
    if (method == kCentral || i == 1 || i == n - 2) return (at(i + 1) - at(i - 1) + 1) / 2;
    return (at(i - 2) - 8 * at(i - 1) + 8 * at(i + 1) - at(i + 2) + 6) / 12;
}

}  // namespace tq

#pragma once

#include <cstdint>

#include "kernels/derivative.h"

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

/// How a method other than Sobel's differentiates at pel i of a line of n pels: near the ends with what there
/// is.
constexpr kernels::Derivative DerivativeAt(std::int32_t method, std::int32_t i, std::int32_t n) noexcept {
    using kernels::Derivative;
    if (n < 2) return Derivative::kNone;
    if (i == n - 1) return Derivative::kBackward;
    if (i == 0 || method == kForward) return Derivative::kForward;
    return method == kCentral || i == 1 || i == n - 2 ? Derivative::kCentral : Derivative::kFivePoint;
}

}  // namespace tq

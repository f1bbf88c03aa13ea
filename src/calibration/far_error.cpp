#include "calibration/far_error.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "calibration/chebyshev.h"

// Along a line through the square, at the distance t beyond its edge or more, d^2 = (x - s)(x - s') with s
// and its conjugate s' off -1..1. With s = (v + 1/v) / 2 the modulus r of v is at least t + sqrt(t^2 + 1):
// the sum of the distances from s to -1 and 1 is r + 1/r, and at least 2 sqrt(t^2 + 1). Chebyshev
// coefficients fall like powers of 1/r, and interpolation at n nodes is off by at most twice the sum of the
// coefficients from the n-th on, as each of the polynomials T_n ... is confused with one that has values of
// at most 1. Measured on a centre straight beside the square, the bounds of the logarithms are 10 to 50 times
// the errors; those of the inverse squares 700 times at the distance 4, 4000 times at 2 and more below.

namespace tq {
namespace {

constexpr double kN = kNodes;

/// Interpolation of the rows after that of the columns: what the columns leave is enlarged by at most
/// Lebesgue's constant, which is below 1 + 2/pi ln n.
constexpr double kTwoAxes = 1.0 + 2.8;
static_assert(kNodes <= 16, "1 + 2/pi ln 16 = 2.77");

struct Decay {
    double ratio;    ///< r
    double inverse;  ///< 1/r

    explicit Decay(double distance) noexcept {
        const double beyond = distance - 1.0;
        ratio = beyond + std::sqrt(beyond * beyond + 1.0);
        inverse = 1.0 / ratio;
    }
    double Power(std::size_t exponent) const noexcept {
        double power = 1.0;
        for (std::size_t i = 0; i < exponent; ++i)
            power *= inverse;
        return power;
    }
};

/// ln(x - s) has the coefficients -2/k v^-k, and (x - s) ln(x - s), but for a linear part its integral,
/// g_k <= (1 + r^-2) r^-(k-1) / (k (k - 1)). The term is (x - s')(x - s) ln(x - s) and its conjugate, so its
/// coefficients are at most |g_(k-1)| + |g_(k+1)| + 2 |s| |g_k| <= 2 (1 + r^-2)^2 r^-(k-2) / ((k-1)(k-2)).
double LogRadialError(double distance) noexcept {
    const Decay decay(distance);
    const double one = 1.0 + decay.inverse * decay.inverse;
    const double last = 2.0 * one * one * decay.Power(kNodes - 2) / ((kN - 1.0) * (kN - 2.0));
    return kTwoAxes * 2.0 * last / (1.0 - decay.inverse);
}

/// 1 / (x - s) is a series of powers v^-|k| times p = 2 / |v - 1/v| <= 2 / (r - 1/r). That of the product
/// with its conjugate has coefficients of at most 2 p^2 r^-k (k + 1 + 2 / (r^2 - 1)), which are added up from
/// n on. The term itself is at least 1 / (2 (distance + 1)^2), and the share falls with the distance: r^-n
/// does so faster than the square grows.
double InverseSquareError(double distance) noexcept {
    const Decay decay(distance);
    const double p = 2.0 / (decay.ratio - decay.inverse);
    const double rest = 1.0 - decay.inverse;
    const double head = kN + 1.0 + 2.0 / (decay.ratio * decay.ratio - 1.0);
    const double sum = decay.Power(kNodes) * (head / rest + decay.inverse / (rest * rest));
    const double reciprocal = 2.0 * (distance + 1.0) * (distance + 1.0);
    return kTwoAxes * 2.0 * (2.0 * p * p * sum) * reciprocal;
}

}  // namespace

template <class Bound>
FarError::FarError(Bound bound) noexcept {
    for (std::size_t i = 0; i < kDistances; ++i)
        errors_[i] = bound(Distance(i));
}

FarError FarError::OfLogRadial() noexcept {
    return FarError(LogRadialError);
}

FarError FarError::OfInverseSquare() noexcept {
    return FarError(InverseSquareError);
}

double FarError::DistanceFor(double error) const noexcept {
    if (std::isnan(error)) return std::numeric_limits<double>::infinity();
    const auto enough = std::lower_bound(errors_.begin(), errors_.end(), error, std::greater<>());
    if (enough == errors_.end()) return std::numeric_limits<double>::infinity();
    return Distance(static_cast<std::size_t>(enough - errors_.begin()));
}

}  // namespace tq

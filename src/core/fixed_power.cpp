#include "core/fixed_power.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/portable_math.h"

namespace tq {
namespace {

constexpr double kLn2 = 0.693147180559945309417;
constexpr double kLog2E = 1.44269504088896340736;

constexpr int kMantissaBits = 52;
constexpr std::int64_t kExponentBias = 1023;
constexpr std::uint64_t kMantissa = (std::uint64_t{1} << kMantissaBits) - 1;

/// Far from the subnormal numbers, where products are no longer exact to the last place.
constexpr double kLeast = -1000.0;

double PowerOfTwo(std::int64_t exponent) noexcept {
    return std::bit_cast<double>(static_cast<std::uint64_t>(exponent + kExponentBias) << kMantissaBits);
}

}  // namespace

FixedPower::FixedPower(double exponent) : exponent_(exponent) {
    for (std::size_t i = 0; i < parts_.size(); ++i) {
        const double middle = 1.0 + (static_cast<double>(i) + 0.5) / static_cast<double>(parts_.size());
        parts_[i] = {1.0 / middle, middle, portable::Log(middle) * kLog2E};
    }
    for (std::size_t i = 0; i < powers_.size(); ++i)
        powers_[i] = portable::Pow(2.0, static_cast<double>(i) / static_cast<double>(powers_.size()));
}

double FixedPower::operator()(double value) const noexcept {
    if (!(value > 0.0)) return 0.0;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto doubling = static_cast<std::int64_t>(bits >> kMantissaBits) - kExponentBias;
    const double mantissa = std::bit_cast<double>((bits & kMantissa) | std::bit_cast<std::uint64_t>(1.0));
    const Part& part = parts_[(bits & kMantissa) >> (kMantissaBits - kLogBits)];
    // |r| <= 2^-8, so what the series leaves out is below 2^-58.
    const double r = (mantissa - part.middle) * part.reciprocal;
    const double log1p =
        r * (1.0 - r * (1.0 / 2 - r * (1.0 / 3 - r * (1.0 / 4 - r * (1.0 / 5 - r * (1.0 / 6))))));
    const double log2 = static_cast<double>(doubling) + (part.log2 + log1p * kLog2E);

    const double y = exponent_ * log2;
    if (!(y > kLeast)) return 0.0;
    // A value of 1 may come out a rounding above 0; the power is then a rounding above 1.
    const double steps = std::floor(y * static_cast<double>(powers_.size()));
    const auto step = static_cast<std::int64_t>(steps);
    // At most ln 2 / 64, so what the series leaves out is below 2^-57.
    const double x = (y - steps / static_cast<double>(powers_.size())) * kLn2;
    const double exp = 1.0 + x * (1.0 + x / 2 * (1.0 + x / 3 * (1.0 + x / 4 * (1.0 + x / 5))));
    const auto fraction = static_cast<std::size_t>(step & ((1 << kExpBits) - 1));
    return PowerOfTwo(step >> kExpBits) * (powers_[fraction] * exp);
}

}  // namespace tq

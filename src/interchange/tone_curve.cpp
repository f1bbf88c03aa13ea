#include "interchange/tone_curve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/portable_math.h"

namespace tq {
namespace {

// The encoding of IEC 61966-2-1. Its exponent 1/2.4 is 0.4166 here: the bitmaps that hosts compare with were
// made so, and 1/2.4 gives other bytes.
constexpr double kLinearLimit = 0.0031308;
constexpr double kLinearSlope = 12.92;
constexpr double kGain = 1.055;
constexpr double kOffset = 0.055;
constexpr double kExponent = 0.4166;

constexpr double kLargestByte = 255.0;

/// Twelve orders of magnitude above the error of any C library's pow at this scale, and so narrow that hardly
/// a level in a million falls inside.
constexpr double kDoubt = 1e-6;

double EncodedByte(double power) noexcept {
    return (kGain * power - kOffset) * kLargestByte;
}

/// 255 times the encoded value. The C libraries' pow differs from platform to platform in the last place;
/// that can change a truncated byte only next to a whole number, so only there is the slow, exact one asked.
double ScaledTone(double value, double exponent) {
    if (!(value > kLinearLimit)) return kLinearSlope * value * kLargestByte;
    const double scaled = EncodedByte(std::pow(value, exponent));
    const bool doubtful =
        std::fabs(scaled - std::nearbyint(scaled)) <= kDoubt && scaled <= kLargestByte + 1.0;
    return doubtful ? EncodedByte(portable::Pow(value, exponent)) : scaled;
}

std::uint8_t ToByte(double scaled) noexcept {
    return static_cast<std::uint8_t>(std::clamp(TruncToInt32(std::min(scaled, kLargestByte)), 0, 255));
}

}  // namespace

std::vector<std::uint8_t> MakeToneTable(double gamma, double fullScale, Pel largest) {
    const double exponent = (gamma == 0.0 ? 1.0 : gamma) * kExponent;
    const bool curved = gamma >= 0.0;
    std::vector<std::uint8_t> table(static_cast<std::size_t>(largest) + 1);
    for (std::size_t pel = 0; pel < table.size(); ++pel) {
        const double value = static_cast<double>(pel) / fullScale;
        table[pel] = ToByte(curved ? ScaledTone(value, exponent) : value * kLargestByte);
    }
    return table;
}

}  // namespace tq

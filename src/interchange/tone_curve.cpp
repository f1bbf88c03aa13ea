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

/// Fills what lies between two pels whose bytes are known. On the curve a brighter pel never gets a smaller
/// byte (its power and every rounding rise with it), so between equal ends there is nothing to ask: a few
/// thousand powers make a table of 65536.
template <class ByteAt>
void FillRising(std::vector<std::uint8_t>& table, std::size_t first, std::size_t last, const ByteAt& byteAt) {
    if (last - first < 2) return;
    if (table[first] == table[last]) {
        std::fill(table.begin() + static_cast<std::ptrdiff_t>(first + 1),
                  table.begin() + static_cast<std::ptrdiff_t>(last), table[first]);
        return;
    }
    const std::size_t middle = first + (last - first) / 2;
    table[middle] = byteAt(middle);
    FillRising(table, first, middle, byteAt);
    FillRising(table, middle, last, byteAt);
}

}  // namespace

std::vector<std::uint8_t> MakeToneTable(double gamma, double fullScale, Pel largest) {
    std::vector<std::uint8_t> table(static_cast<std::size_t>(largest) + 1);
    const std::size_t last = table.size() - 1;
    const auto valueOf = [&](std::size_t pel) { return static_cast<double>(pel) / fullScale; };
    if (!(gamma >= 0.0)) {
        for (std::size_t pel = 0; pel <= last; ++pel)
            table[pel] = ToByte(valueOf(pel) * kLargestByte);
        return table;
    }
    const double exponent = (gamma == 0.0 ? 1.0 : gamma) * kExponent;
    const auto byteAt = [&](std::size_t pel) { return ToByte(ScaledTone(valueOf(pel), exponent)); };
    // The straight part pel by pel: where the curve takes over, the byte may fall.
    std::size_t first = 0;
    while (first < last && !(valueOf(first) > kLinearLimit)) {
        table[first] = byteAt(first);
        ++first;
    }
    table[first] = byteAt(first);
    table[last] = byteAt(last);
    FillRising(table, first, last, byteAt);
    return table;
}

}  // namespace tq

#include "interchange/tone_curve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "core/portable_math.h"
#include "kernels/span_statistics.h"

namespace tq {
namespace {

constexpr double kLargestByte = 255.0;

/// A stretch has this many steps above its byte 1.
constexpr double kStretchSteps = 254.0;

/// Twelve orders of magnitude above the error of any C library's pow or log at this scale, and so narrow that
/// hardly a level in a million falls inside.
constexpr double kDoubt = 1e-6;

/// The C libraries differ from platform to platform in the last place; that can change a truncated byte only
/// next to a whole number, so only there is the slow, exact function asked.
double ScaledTone(double value, double exponent) {
    const double scaled = RoughTone(value, exponent);
    return value > kToneLinearLimit && IsDoubtful(scaled) ? ExactTone(value, exponent) : scaled;
}

double ScaledLog(double value, double range) {
    const double rough = 1.0 + kStretchSteps * (std::log(value) / std::log(range));
    return IsDoubtful(rough) ? 1.0 + kStretchSteps * (portable::Log(value) / portable::Log(range)) : rough;
}

/// Fills what lies between two pels whose bytes are known. A brighter pel never gets a smaller byte, or never
/// a larger one (the logarithm, the power and every rounding go one way), so between equal ends there is
/// nothing to ask: a few thousand powers make a table of 65536.
template <class ByteAt>
void FillMonotone(std::vector<std::uint8_t>& table, std::size_t first, std::size_t last,
                  const ByteAt& byteAt) {
    if (last - first < 2) return;
    if (table[first] == table[last]) {
        std::fill(table.begin() + static_cast<std::ptrdiff_t>(first + 1),
                  table.begin() + static_cast<std::ptrdiff_t>(last), table[first]);
        return;
    }
    const std::size_t middle = first + (last - first) / 2;
    table[middle] = byteAt(middle);
    FillMonotone(table, first, middle, byteAt);
    FillMonotone(table, middle, last, byteAt);
}

/// The bytes of all pels from `first` on, the earlier ones being there already.
template <class ByteAt>
void FillFrom(std::vector<std::uint8_t>& table, std::size_t first, const ByteAt& byteAt) {
    const std::size_t last = table.size() - 1;
    if (first > last) return;
    table[first] = byteAt(first);
    table[last] = byteAt(last);
    FillMonotone(table, first, last, byteAt);
}

std::vector<std::uint8_t> EmptyTable(Pel largest) {
    return std::vector<std::uint8_t>(static_cast<std::size_t>(largest) + 1);
}

/// What a level becomes between 1 and 255 before it is limited to them.
double Stretched(std::size_t pel, const Stretch& stretch) {
    const auto level = static_cast<double>(pel);
    // A stretch without extent parts what is brighter from the rest.
    if (stretch.high == stretch.low) return level > stretch.low ? kLargestByte : 1.0;
    if (stretch.logarithmic) {
        return ScaledLog(level / stretch.low, static_cast<double>(stretch.high) / stretch.low);
    }
    return 1.0 + (level - stretch.low) * kStretchSteps / (static_cast<double>(stretch.high) - stretch.low);
}

}  // namespace

ToneSteps::ToneSteps(double gamma) : linear_(!(gamma >= 0.0)) {
    if (linear_) return;
    exponent_ = (gamma == 0.0 ? 1.0 : gamma) * kToneExponent;
    // Full light is 254.99...: no light up to it shows the last byte.
    possible_.fill(std::numeric_limits<double>::infinity());
    sure_ = possible_;
    // The doubt covers the error of the power's base, and this that of its result.
    constexpr double kResultDoubt = 1e-12;
    const auto lightOf = [&](double scaled) {
        return std::pow((scaled / kLargestByte + kToneOffset) / kToneGain, 1.0 / exponent_);
    };
    for (std::size_t byte = 0; byte + 1 < kBytes; ++byte) {
        possible_[byte] = lightOf(static_cast<double>(byte) - kDoubt) * (1.0 - kResultDoubt);
        sure_[byte] = lightOf(static_cast<double>(byte) + kDoubt) * (1.0 + kResultDoubt);
    }
    std::size_t byte = 0;
    for (std::size_t i = 0; i <= kSections; ++i) {
        while (sure_[byte + 1] <= static_cast<double>(i) / static_cast<double>(kSections))
            ++byte;
        atStart_[i] = static_cast<std::uint8_t>(byte);
    }
}

std::uint8_t ToneSteps::ByteOf(double light) const {
    if (linear_) return ToneByte(light * kLargestByte);
    if (!(light > kToneLinearLimit)) return ToneByte(EncodedTone(light, [] { return 0.0; }));
    std::size_t byte = atStart_[static_cast<std::size_t>(TruncToInt32(light * kSections))];
    while (light >= sure_[byte + 1])
        ++byte;
    if (light >= possible_[byte + 1]) return ToneByte(ExactTone(light, exponent_));
    return static_cast<std::uint8_t>(byte);
}

double RoughTone(double value, double exponent) noexcept {
    return EncodedTone(value, [=] { return std::pow(value, exponent); });
}

double ExactTone(double value, double exponent) {
    return EncodedTone(value, [=] { return portable::Pow(value, exponent); });
}

bool IsDoubtful(double scaled) noexcept {
    // Around 0 every result is byte 0.
    const double nearest = std::nearbyint(scaled);
    return nearest >= 1.0 && nearest <= kLargestByte && std::fabs(scaled - nearest) <= kDoubt;
}

std::uint8_t ToneByte(double scaled) noexcept {
    return static_cast<std::uint8_t>(std::clamp(TruncToInt32(std::min(scaled, kLargestByte)), 0, 255));
}

Pel LargestToTabulate(const ConstImageView& image) noexcept {
    return image.Count() > kLargestPel ? Pel{kLargestPel}
                                       : kernels::FindMinMax(image.pels, image.Count()).max;
}

std::vector<std::uint8_t> MakeToneTable(double gamma, double fullScale, Pel largest, double gain) {
    std::vector<std::uint8_t> table = EmptyTable(largest);
    const auto valueOf = [&](std::size_t pel) { return static_cast<double>(pel) * gain / fullScale; };
    if (!(gamma >= 0.0)) {
        FillFrom(table, 0, [&](std::size_t pel) { return ToneByte(valueOf(pel) * kLargestByte); });
        return table;
    }
    const double exponent = (gamma == 0.0 ? 1.0 : gamma) * kToneExponent;
    const auto byteAt = [&](std::size_t pel) { return ToneByte(ScaledTone(valueOf(pel), exponent)); };
    // The straight part pel by pel: where the curve takes over, the byte may fall.
    std::size_t first = 0;
    for (; first < table.size() && !(valueOf(first) > kToneLinearLimit); ++first)
        table[first] = byteAt(first);
    FillFrom(table, first, byteAt);
    return table;
}

std::vector<std::uint8_t> MakeStretchTable(double gamma, const Stretch& stretch, Pel largest) {
    const bool curved = gamma >= 0.0;
    std::vector<std::uint8_t> table =
        curved ? MakeToneTable(gamma, stretch.high, largest) : EmptyTable(largest);
    if (!curved) FillFrom(table, 1, [&](std::size_t pel) { return ToneByte(Stretched(pel, stretch)); });
    table[0] = 0;
    for (std::size_t pel = 1; pel < table.size(); ++pel)
        table[pel] = std::max(table[pel], std::uint8_t{1});
    return table;
}

}  // namespace tq

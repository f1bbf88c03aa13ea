#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/image_view.h"
#include "core/numerics.h"
#include "tqimage/base.h"

namespace tq {

inline constexpr double kLargestByte = 255.0;

/// An image that tells no scale is shown as if it were one of bytes, and says so from then on: a host that
/// converts it twice must see the same picture.
inline void EnsureScale(TqImageHeader& header) noexcept {
    if (header.MaxPelValue <= 0.0f) header.MaxPelValue = static_cast<float>(kLargestByte);
}

/// Bytes a grey level, as hosts are told.
inline double ByteScale(const TqImageHeader& header) noexcept {
    return kLargestByte / header.MaxPelValue;
}

/// A pel that no pel of the image exceeds. An image with more pels than there are levels is not searched for
/// its largest: a table of all levels is made sooner.
Pel LargestToTabulate(const ConstImageView& image) noexcept;

/// The displayed byte of every pel from 0 to `largest`, times `gain`, at this full scale. A gamma of 0 counts
/// as 1, a negative one leaves the grey levels linear.
std::vector<std::uint8_t> MakeToneTable(double gamma, double fullScale, Pel largest, double gain = 1.0);

/// The grey levels between which a host stretches an image.
struct Stretch {
    std::int32_t low;
    std::int32_t high;  ///< not 0
    bool logarithmic;
};

/// As MakeToneTable, stretched: a gamma of 0 or above shows `high` as full scale, a negative one spreads what
/// lies between the two levels. Only a pel of 0 gets byte 0, so that missing data stays apart from dark.
std::vector<std::uint8_t> MakeStretchTable(double gamma, const Stretch& stretch, Pel largest);

// The encoding of IEC 61966-2-1. Its exponent 1/2.4 is 0.4166 here: the bitmaps that hosts compare with were
// made so, and 1/2.4 gives other bytes.
inline constexpr double kToneExponent = 0.4166;
/// Up to here the encoding is a straight line, from here on a power.
inline constexpr double kToneLinearLimit = 0.0031308;
inline constexpr double kToneLinearSlope = 12.92;
inline constexpr double kToneGain = 1.055;
inline constexpr double kToneOffset = 0.055;

/// 255 times the encoded value, not yet truncated; `power()` is the value's power with the exponent.
template <class Power>
double EncodedTone(double value, Power&& power) {
    if (!(value > kToneLinearLimit)) return kToneLinearSlope * value * kLargestByte;
    return (kToneGain * power() - kToneOffset) * kLargestByte;
}

/// The encoding of MakeToneTable for single values: 255 times the encoded value, not yet truncated. The
/// rough form may differ from platform to platform in the last places.
double RoughTone(double value, double exponent) noexcept;
double ExactTone(double value, double exponent);
/// True when a rough result lies so close to a whole number that truncating it may give another byte.
bool IsDoubtful(double scaled) noexcept;
/// Truncated and limited to 0..255.
std::uint8_t ToneByte(double scaled) noexcept;

/// The displayed byte of any light from 0 to 1, where there are too many values for a table and too many
/// pixels for a power each: the light at which each byte begins is found once.
class ToneSteps {
  public:
    /// A gamma of 0 counts as 1, a negative one leaves the light linear.
    explicit ToneSteps(double gamma);

    std::uint8_t ByteOf(double light) const;

  private:
    /// Sections of the curve, each of which knows the byte at its start.
    static constexpr std::size_t kSections = 4096;
    static constexpr std::size_t kBytes = 256;

    bool linear_;
    double exponent_ = 0.0;
    std::array<double, kBytes> possible_;  ///< from this light on the curve may show the byte
    std::array<double, kBytes> sure_;      ///< and from this it shows it, or a larger one
    std::array<std::uint8_t, kSections + 1> atStart_{};
};

}  // namespace tq

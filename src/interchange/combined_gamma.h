#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernels/colour_bytes.h"

namespace tq {

/// Three numbers in the order in which bitmaps store them.
enum Channel : std::size_t { kBlue, kGreen, kRed, kChannels };
using Triple = std::array<double, kChannels>;
/// The rows of bytes that become one row of pixels.
using ByteRows = std::array<std::uint8_t*, kChannels>;

/// The largest of the three.
double Largest(const Triple& values) noexcept;

/// Bytes of the three lights of a pixel (pel * gain / full scale), which one power of the largest of them
/// makes brighter or darker before each is encoded.
void EncodeWithGamma(const Triple& light, double gamma, std::uint8_t* pixel);

/// The same for many pixels. What is encoded is light * largest^(gamma - 1), and its power with the exponent
/// of the encoding is the product of a power of the pel and one of the pel that gives the largest light:
/// tables answer both. They are rough, so that a few pixels in a thousand are left to EncodeWithGamma.
class CombinedGamma {
  public:
    /// True for numbers with which all that is computed stays far within single precision. A gain of 0 stands
    /// for a channel that is absent.
    static bool Holds(double gamma, double fullScale, const Triple& gains) noexcept;

    CombinedGamma(double gamma, double fullScale, const Triple& gains);
    CombinedGamma(const CombinedGamma&) = delete;
    CombinedGamma& operator=(const CombinedGamma&) = delete;

    /// Marks the pixels that are left.
    void Encode(const kernels::ChannelRuns& runs, const ByteRows& out, std::uint8_t* left) const;

  private:
    std::vector<float> tones_, factors_, toneFactors_;
    kernels::TogetherTables tables_{};
};

}  // namespace tq

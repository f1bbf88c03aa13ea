#pragma once

#include <cstddef>
#include <cstdint>

#include "kernels/channel_mix.h"

/// Rows of three channels on their way into a bitmap of colours.
namespace tq::kernels {

/// out[k][i] = light k * 255 / the largest of the three lights, truncated and limited to 0..255; 0 where none
/// of them is above 0. Light k is the pel of channel k times gains[k], which is finite.
void NormalizeToBytes(const ChannelRuns& runs, const double* gains, std::uint8_t* const* out);

/// What EncodeTogether needs, for the lights x = pel * scales[k] of the three channels: tables of 65536
/// powers of the pel, and for each channel what their entries are multiplied by to become powers of x.
struct TogetherTables {
    const float* tones;        ///< x^e: before the encoding's gain and offset
    const float* factors;      ///< x^g: what a pixel whose largest light is x is multiplied by
    const float* toneFactors;  ///< x^(g * e)
    float scales[3];
    float toneGains[3];
    float factorGains[3];
    float toneFactorGains[3];
    float linearLimit;  ///< a light up to here is encoded as linearSlope * light
    float linearSlope;
    float toneGain;  ///< a brighter one as toneGain * light^e - toneOffset
    float toneOffset;
};

/// out[k][i] = the encoded byte of x * largest^g, where `largest` is the largest of the three lights. All
/// that is computed has to stay far within single precision. doubtful[i] is not 0 where rounding may have
/// changed a byte: it then differs from one instruction set to the next.
void EncodeTogether(const ChannelRuns& runs, const TogetherTables& tables, std::uint8_t* const* out,
                    std::uint8_t* doubtful);

/// out[3i + k] = channels[k][i].
void InterleaveBytes(const std::uint8_t* const* channels, std::uint8_t* out, std::size_t count);

}  // namespace tq::kernels

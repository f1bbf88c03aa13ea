#pragma once

#include <cstddef>
#include <cstdint>

#include "kernels/channel_mix.h"

/// Chromaticities of rows of three channels, and how far they lie from a reference.
namespace tq::kernels {

/// Averages of three channels.
struct ChannelRows {
    const double* first;
    const double* second;
    const double* third;
    std::size_t count;
};

/// A row of three channels: averages where there are some, else pels.
struct ChannelValues {
    ChannelValues(const ChannelRows& rows) : averages(rows) {}
    ChannelValues(const ChannelRuns& runs) : pels(runs) {}

    ChannelRows averages{};
    ChannelRuns pels{};
};

/// A quotient of tristimulus values, X, Y and Z being the matrix times the channels:
/// factor * numerator / (X + y * Y + z * Z), or / Y alone.
struct ChromaticRatio {
    double matrix[9];
    double factor;
    double y;
    double z;
    int numerator;       ///< 0 X, 1 Y, 2 Z
    bool overLuminance;  ///< the denominator is Y, and not guarded against 0
};

/// out[i] = (ratio - low) * gain, truncated and clamped to a pel; a guarded denominator of 0 has the ratio 0,
/// and what is not finite becomes 0.
void StoreRatios(const ChannelValues& row, const ChromaticRatio& ratio, double low, double gain,
                 std::uint16_t* out);

/// A luminance below this is none to compare with.
inline constexpr double kNoLuminance = 1e-7;

struct ColourReference {
    double u;
    double v;
    double luminance;
};

struct ColourWeights {
    double matrix[9];
    double luxPerGrey;  ///< of the second channel
    double chromaticity;
    double luminance;
};

/// out[i] = sqrt(((v' - v)^2 + (u' - u)^2) * chromaticity + dL^2 * luminance), rounded to float, with
/// dL = (second * luxPerGrey - L) / L, or 0 where L is none to compare with.
void ColourDifferences(const ChannelValues& row, const ColourWeights& weights, const ColourReference& from,
                       float* out);

/// The same from what is around each pel: u', v' and L of the channels `around`, rounded to float.
void LocalDifferences(const ChannelValues& row, const ChannelRows& around, const ColourWeights& weights,
                      float* out);

struct ToleranceEllipse {
    double matrix[9];
    float u;
    float v;
    double uu;  ///< coefficient of du^2
    double uv;
    double vv;
};

/// out[i] = sqrt(vv * dv^2 + 2 uv * du * dv + uu * du^2), rounded to float as are du, dv, X, Y, Z and
/// X + 15 Y + 3 Z.
void EllipseDistances(const ChannelValues& row, const ToleranceEllipse& ellipse, float* out);

/// The largest of the values and `largest`; what is not a number is not larger.
float LargestOf(const float* values, std::size_t count, float largest);

/// values[i] = -1, which no difference is, where the pel is 0.
void LeaveOut(const std::uint16_t* pels, std::size_t count, float* values);

/// out[i] = 0 where the value was left out, and at least 1 elsewhere.
void RaiseCounted(const float* values, std::size_t count, std::uint16_t* out);

/// out[i] = values[i] * scale in single precision, truncated and clamped to a pel.
void StoreScaled(const float* values, std::size_t count, float scale, std::uint16_t* out);

}  // namespace tq::kernels

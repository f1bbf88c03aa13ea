#pragma once

#include <cstddef>
#include <cstdint>

#include "core/fixed_power.h"
#include "kernels/channel_mix.h"

/// Mixing by matrices that depend on the colour of the pel: each calibration counts the more, the nearer its
/// chromaticity is.
namespace tq::kernels {

inline constexpr std::size_t kMostCalibrations = 64;

struct Calibration {
    double u;
    double v;
    double matrix[9];
};

struct AdaptiveMix {
    double base[9];  ///< tells the chromaticity by which the calibrations are weighed
    double scales[3];
    const Calibration* calibrations;
    std::size_t count;        ///< 1 .. kMostCalibrations
    const FixedPower* power;  ///< weight as a function of (nearest / distance)^2; null: the value itself
};

/// out[k][i] = mixed channel k of the pels at i: the means of the calibrations' coefficients, weighed by the
/// distances of their u'v' from that of the base matrix, times the scaled pels. A calibration closer than
/// 1e-6, the first of them, has the word alone; one at a distance that is no number does not count.
void MixAdaptively(const ChannelRuns& runs, const AdaptiveMix& mix, double* const* out);

/// out[i] = 1 + number of the nearest calibration, the first of equals; 0 where X + 15 Y + 3 Z is 0.
void SelectNearest(const ChannelRuns& runs, const AdaptiveMix& mix, std::uint16_t* out);

}  // namespace tq::kernels

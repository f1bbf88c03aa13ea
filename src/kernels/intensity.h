#pragma once

#include <cstddef>
#include <cstdint>

namespace tq::kernels {

/// The axis of a measurement as the whole-image searches take it: positions in single precision.
struct SinglePrecisionAxis {
    float centerCol;
    float centerRow;
    float pelsPerMeterX;
    float pelsPerMeterY;
    double distance;
};

/// Running sums of a mean, one for every eighth column: the same ones whatever the vector length, so that the
/// mean has the same bits on every instruction set.
struct IntensitySums {
    static constexpr std::size_t kLanes = 8;
    double lanes[kLanes] = {};
};

/// Adds the intensity R^2 * (sums[i] / blockPels) * luxPerGrey / cos(theta) of each block; its reference pel
/// is (firstCol + i, row). Distances from the axis and intensities are single precision, the steps between
/// double.
void AddBlockIntensities(const double* sums, std::size_t count, const SinglePrecisionAxis& axis,
                         std::int32_t row, std::int32_t firstCol, double blockPels, double luxPerGrey,
                         IntensitySums& total);

}  // namespace tq::kernels

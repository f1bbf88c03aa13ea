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

/// Adds the intensity R^2 / cos(theta) * luxPerGrey * sums[i] / blockPels of each block; its reference pel is
/// (firstCol + i, row). Distances from the axis and intensities are single precision. Between them the steps
/// are double, with R^2 / cos(theta) taken as R^3 / D: what the order of the steps changes is lost 29 bits
/// below the last one of the result, and the divisions are one a call.
void AddBlockIntensities(const double* sums, std::size_t count, const SinglePrecisionAxis& axis,
                         std::int32_t row, std::int32_t firstCol, double blockPels, double luxPerGrey,
                         IntensitySums& total);

}  // namespace tq::kernels

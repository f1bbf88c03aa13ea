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

/// intensities[i] = R^2 * (sums[i] / blockPels) * luxPerGrey / cos(theta) of the block whose reference pel is
/// (firstCol + i, row). Distances from the axis and results are single precision, the steps between double.
void BlockIntensities(const double* sums, std::size_t count, const SinglePrecisionAxis& axis,
                      std::int32_t row, std::int32_t firstCol, double blockPels, double luxPerGrey,
                      float* intensities);

}  // namespace tq::kernels

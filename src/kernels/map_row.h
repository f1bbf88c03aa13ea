#pragma once

#include <cstddef>

#include "core/numerics.h"
#include "kernels/bilinear.h"

/// Rows of images corrected through a map. Its places are pairs of column and row; a place that is negative
/// or no number is none, and its pel becomes 0. Values are truncated, and their low 16 bits stored.
namespace tq::kernels {

/// out[i] = the value at the place `places` + 2 i, 0 also for a place that is not below the image's columns
/// and rows. In the last pel's square values are extrapolated.
void SampleWithin(const SourcePels& source, const float* places, std::size_t count, Pel* out);

/// From an unbinned sensor into the pels of an image.
struct SensorWindow {
    float col;  ///< of the image's first pel
    float row;
    float colStep;  ///< sensor pels a pel
    float rowStep;
};

/// out[i] = the value at the place `places` + 2 i of the sensor, clamped to the image; 1 instead of 0, which
/// is kept for pels without a place.
void SampleClamped(const SourcePels& source, const float* places, std::size_t count,
                   const SensorWindow& window, Pel* out);

}  // namespace tq::kernels

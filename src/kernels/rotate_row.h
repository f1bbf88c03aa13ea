#pragma once

#include <cstdint>

#include "core/numerics.h"
#include "kernels/bilinear.h"

namespace tq::kernels {

/// From the pels of a turned image back into its source. Every step is single precision.
struct RotationBack {
    float sine;
    float cosine;
    float centreCol;
    float centreRow;
    float left;  ///< x of the first column
};

/// One row of a turned image, `y` high with the axis pointing up: the truncated Blend at each pel's place in
/// the source, its low 16 bits, and 0 where the place lies outside the source's columns 0 <= col < cols or
/// rows. In the last pel's square values are extrapolated.
void RotateRow(const SourcePels& source, const RotationBack& back, float y, Pel* out, std::int32_t cols);

}  // namespace tq::kernels

#pragma once

#include <cstddef>
#include <cstdint>

#include "core/numerics.h"

/// Sampling between pels.
namespace tq::kernels {

/// The value between four pels: near[0] and near[next] of one row, far[0] and far[next] of the row below.
/// The one place of the products and of their order, which every record of a resampled image depends on.
inline double Blend(const Pel* near, const Pel* far, std::ptrdiff_t next, double fx, double fy) noexcept {
    double value = (1.0 - fy) * fx * near[next] + (1.0 - fy) * (1.0 - fx) * near[0];
    value += fx * fy * far[next];
    value += fy * (1.0 - fx) * far[0];
    return value;
}

/// The places of a row that are sampled, for every row the same: the cell's first column and the distance
/// from it. `next` is 1, or 0 where the rows have one pel only.
struct RowPlaces {
    const std::int32_t* cells;
    const double* weights;
    std::size_t count;
    std::ptrdiff_t next;
};

/// out[i] = low 16 bits of trunc(Blend + bias) at place i between the rows `near` and `far`. The weights lie
/// in 0 .. 2, so every value fits into 32 bits.
void BlendRow(const Pel* near, const Pel* far, const RowPlaces& places, double fy, double bias, Pel* out);

}  // namespace tq::kernels

#pragma once

#include <cstddef>

#include "core/numerics.h"

/// From what a surface is at the pels of an image to the pels of a correction image.
namespace tq::kernels {

/// out[i] = values[i], at least `least` and finite in single precision; what is not a number counts as 0.
void NarrowValues(const double* values, double least, std::size_t count, float* out);

/// The largest absolute value among those above `bound`, 0 without any.
float LargestAbove(const float* values, float bound, std::size_t count);

/// out[i] = the low 16 bits of values[i] * `pel` / `largest`, truncated; `none` where values[i] is below
/// `bound`.
struct ValueCode {
    double pel;
    double largest;
    float bound;
    Pel none;
};
void EncodeValues(const float* values, const ValueCode& code, std::size_t count, Pel* out);

}  // namespace tq::kernels

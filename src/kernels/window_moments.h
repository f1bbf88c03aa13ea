#pragma once

#include <cstddef>
#include <cstdint>

/// Central moments of windows in single precision. Sums of squares round at every step, so a figure is only
/// the same when its order of additions is: each window is summed row by row, and neighbouring windows share
/// a vector instead.
namespace tq::kernels {

void PelsToFloat(const std::uint16_t* pels, std::size_t count, float* out);

struct WindowBand {
    const float* const* rows;  ///< the rows of the windows
    std::size_t windowRows;
    std::size_t windowCols;
    std::size_t windows;  ///< window i starts at column i
    bool holes;           ///< false when no value of the rows is 0
};

/// out[i] = mean of |v - m|^order over the non-zero values v of window i with the mean m, 0 for a window
/// without any. Returns the largest of them and 0.
float WindowMoments(const WindowBand& band, std::int32_t order, float* out);

/// out[i] = values[i] / scale truncated, the low 16 bits; values at least 0 and never NaN.
void ScaledPels(const float* values, std::size_t count, float scale, std::uint16_t* out);

}  // namespace tq::kernels

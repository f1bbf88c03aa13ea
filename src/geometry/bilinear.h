#pragma once

#include <algorithm>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"

namespace tq {

/// The bilinear mixture of the cell whose first pel is (col, row), at the place (fx, fy) inside it; the
/// weights may extrapolate. The products are in double and in this order in every resampling, so that one
/// grey level never depends on which function took the sample. On an axis of one pel that pel is all there
/// is, whatever the weight.
inline double InterpolateCell(const ConstImageView& image, std::int32_t col, std::int32_t row, double fx,
                              double fy) noexcept {
    const bool oneCol = image.cols == 1;
    const bool oneRow = image.rows == 1;
    if (oneCol) fx = 0.0;
    if (oneRow) fy = 0.0;
    const Pel* near = image.Row(row) + col;
    const Pel* far = oneRow ? near : near + image.cols;
    const std::ptrdiff_t next = oneCol ? 0 : 1;
    double value = (1.0 - fy) * fx * near[next] + (1.0 - fy) * (1.0 - fx) * near[0];
    value += fx * fy * far[next];
    value += fy * (1.0 - fx) * far[0];
    return value;
}

/// The grey level at a place between pels; 0.0 where the place, truncated, lies outside. The last column and
/// row belong to the last cell, and a place up to one pel beyond them is extrapolated from that cell: results
/// on record were made so.
inline double InterpolatePel(const ConstImageView& image, double col, double row) noexcept {
    std::int32_t i = TruncToInt32(col);
    std::int32_t j = TruncToInt32(row);
    if (!image.Contains(i, j)) return 0.0;
    i = std::max(std::min(i, image.cols - 2), 0);
    j = std::max(std::min(j, image.rows - 2), 0);
    return InterpolateCell(image, i, j, col - i, row - j);
}

}  // namespace tq

#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "images.h"

namespace tqtest {

/// The sample between four pels, the products in the order that every resampling has: the last column and
/// row belong to the cell before them, an axis of one pel has that pel only, and outside there is 0.
inline double Sample(const Image& image, double col, double row) {
    const int cols = image.Cols(), rows = image.Rows();
    if (!(col > -1.0 && col < cols && row > -1.0 && row < rows)) return 0.0;
    const int i = cols == 1 ? 0 : std::min(static_cast<int>(col), cols - 2);
    const int j = rows == 1 ? 0 : std::min(static_cast<int>(row), rows - 2);
    const int right = cols == 1 ? 0 : i + 1, below = rows == 1 ? 0 : j + 1;
    const double fx = cols == 1 ? 0.0 : col - i, fy = rows == 1 ? 0.0 : row - j;
    double value = (1 - fy) * fx * image(right, j) + (1 - fy) * (1 - fx) * image(i, j);
    value = value + fx * fy * image(right, below);
    return value + fy * (1 - fx) * image(i, below);
}

/// Grey on which samples are exact, so that a place can be read off it.
inline Image Ramp(std::int32_t cols, std::int32_t rows) {
    return MakeImage(cols, rows, [](int col, int row) { return 1000 + 16 * col + 256 * row; });
}

/// The entry of a map that changes nothing.
inline std::pair<float, float> OwnPlace(std::int32_t col, std::int32_t row) {
    return {static_cast<float>(col), static_cast<float>(row)};
}

/// Different in every field, so that no mix-up stays unseen.
inline TqImageHeader DistinctHeader(std::int32_t cols, std::int32_t rows) {
    return {cols, rows, 1100, 1200, 10.25f, 4.5f, 123456, 0.5f, 77, 88, 3, 2, 3, 0xDEADBEEF};
}

inline Image Noise(std::int32_t cols, std::int32_t rows) {
    Image image = RandomImage(cols, rows, 6);
    image.Header() = DistinctHeader(cols, rows);
    return image;
}

}  // namespace tqtest

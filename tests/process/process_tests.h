#pragma once

/// What nearly every test of this folder needs: the ends of the ranges, rectangles, and formulas over pels.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <numeric>
#include <optional>
#include <vector>

#include "failing_allocator.h"
#include "images.h"
#include "pel_formula.h"
#include "windows.h"

namespace tqtest {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// A rectangle as hosts ask for it, and the pels of a 61 x 23 image that it is.
struct Rectangle {
    std::int32_t left, top, right, bottom;
    std::int32_t firstCol, firstRow, lastCol, lastRow;

    bool Holds(std::int32_t col, std::int32_t row) const {
        return Inside(col, row, firstCol, firstRow, lastCol, lastRow);
    }
};

constexpr Rectangle kRectangles[] = {{0, 0, 0, 0, 0, 0, 60, 22},       {5, 3, 31, 9, 5, 3, 31, 9},
                                     {kMin, -1, kMax, 4, 0, 0, 60, 4}, {20, 0, 10, 0, 1, 1, 0, 0},
                                     {0, 21, 0, 20, 1, 1, 0, 0},       {-9, -9, -3, -3, 0, 0, 60, 22},
                                     {60, 22, 90, 90, 60, 22, 60, 22}};

/// The source with fn(col, row) in the rectangle.
template <class Fn>
Image Within(const Image& source, const Rectangle& rectangle, Fn&& fn) {
    return MakeImage(source.Cols(), source.Rows(), [&](std::int32_t col, std::int32_t row) {
        return rectangle.Holds(col, row) ? static_cast<std::int64_t>(fn(col, row)) : source(col, row);
    });
}

inline std::uint16_t LargestOf(const Image& image) {
    return *std::max_element(image.Pels(), image.Pels() + image.Count());
}

inline double SumOf(const Image& image) {
    return std::accumulate(image.Pels(), image.Pels() + image.Count(), 0.0);
}

}  // namespace tqtest

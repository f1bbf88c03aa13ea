#pragma once

/// What nearly every test of this folder needs: the ends of the ranges, noise, and sums over pels.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <optional>
#include <vector>

#include "images.h"
#include "windows.h"

namespace tqtest {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Noise with both ends of the range, small enough for every test and large enough for every vector.
inline Image Noise(std::uint32_t seed) {
    Image image = RandomImage(61, 23, seed);
    image(0, 0) = image(60, 22) = 65535;
    image(1, 0) = image(30, 11) = 0;
    image(2, 0) = 1;
    image(3, 0) = 65534;
    image.Header().Spare = 0xDEADBEEF;
    image.Header().BinCols = 3;
    return image;
}

/// The header with the one field changed that a function writes.
template <class Field, class Value>
TqImageHeader With(TqImageHeader header, Field TqImageHeader::*field, Value value) {
    header.*field = static_cast<Field>(value);
    return header;
}

inline std::uint16_t LargestOf(const Image& image) {
    return *std::max_element(image.Pels(), image.Pels() + image.Count());
}

inline double SumOf(const Image& image) {
    return std::accumulate(image.Pels(), image.Pels() + image.Count(), 0.0);
}

}  // namespace tqtest

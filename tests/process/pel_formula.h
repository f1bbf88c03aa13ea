#pragma once

#include <cstdint>
#include <limits>

#include "images.h"

namespace tqtest {

/// What every function makes of a number with a fraction.
inline std::int64_t Truncated(double value) {
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return fits ? static_cast<std::int64_t>(value) : std::numeric_limits<std::int32_t>::min();
}

/// The image whose pels are the low 16 bits of fn(pel), pel by pel.
template <class Fn>
Image MapImage(const Image& source, Fn&& fn) {
    return MakeImage(source.Cols(), source.Rows(),
                     [&](std::int32_t col, std::int32_t row) { return fn(source(col, row)); });
}

/// The same of two images of one size.
template <class Fn>
Image MapImages(const Image& a, const Image& b, Fn&& fn) {
    return MakeImage(a.Cols(), a.Rows(),
                     [&](std::int32_t col, std::int32_t row) { return fn(a(col, row), b(col, row)); });
}

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

}  // namespace tqtest

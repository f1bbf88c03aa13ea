#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

#include "tqimage/bitmap.h"

namespace tqtest {

/// Red, green and blue.
using Colour = std::array<int, 3>;

/// A host's bitmap record: zeros at first, released with the scope.
struct Bitmap : TqLeadBitmap {
    Bitmap() : TqLeadBitmap{} {}
    /// The bitmap of an image.
    Bitmap(TqImage* image, std::int32_t code, double gamma) : Bitmap() {
        double scale = 0;
        if (tqImageToLeadBmp(this, &scale, image, code, gamma) != 0) throw std::runtime_error("no bitmap");
    }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    ~Bitmap() { tqFreeLeadBmp(this); }

    int At(std::int32_t col, std::int32_t row) const {
        return rows[static_cast<std::ptrdiff_t>(row) * bytesPerLine + col];
    }
    /// Of a bitmap of colours.
    Colour ColourAt(std::int32_t col, std::int32_t row) const {
        return {At(3 * col + 2, row), At(3 * col + 1, row), At(3 * col, row)};
    }
};

/// A power in extended precision, rounded to double where the definitions have a double.
inline double PlainPower(double base, double exponent) {
    return static_cast<double>(std::pow(static_cast<long double>(base), static_cast<long double>(exponent)));
}

/// The tone curve of a gamma of 0 or above, 255 for full light, neither limited nor truncated.
inline double PlainTone(double light, double gamma) {
    const double exponent = (gamma == 0.0 ? 1.0 : gamma) * 0.4166;
    return 255.0 * (light > 0.0031308 ? 1.055 * PlainPower(light, exponent) - 0.055 : 12.92 * light);
}

}  // namespace tqtest

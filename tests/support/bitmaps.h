#pragma once

#include <cstddef>
#include <cstdint>

#include "tqimage/bitmap.h"

namespace tqtest {

/// A host's bitmap record: zeros at first, released with the scope.
struct Bitmap : TqLeadBitmap {
    Bitmap() : TqLeadBitmap{} {}
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;
    ~Bitmap() { tqFreeLeadBmp(this); }

    int At(std::int32_t col, std::int32_t row) const {
        return rows[static_cast<std::ptrdiff_t>(row) * bytesPerLine + col];
    }
};

}  // namespace tqtest

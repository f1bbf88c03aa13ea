#include "interchange/bitmap_object.h"

#include <cstddef>
#include <cstring>

namespace tq {
namespace {

constexpr std::int32_t kTopDown = 1;
constexpr std::int32_t kBottomUp = 2;
constexpr std::int32_t kBitsPerPixel = 8;

/// Rows begin on 4-byte boundaries, as DIBs and BMP files want them.
std::int32_t PaddedLine(std::int32_t width) noexcept {
    return (width + 3) / 4 * 4;
}

std::ptrdiff_t RowStart(const TqLeadBitmap& bitmap, std::int32_t storedRow) noexcept {
    return static_cast<std::ptrdiff_t>(storedRow) * bitmap.bytesPerLine;
}

}  // namespace

OwnedBitmap::OwnedBitmap(std::int32_t width, std::int32_t height, const Palette* palette) {
    bitmap_.structSize = sizeof(TqLeadBitmap);
    bitmap_.width = width;
    bitmap_.height = height;
    bitmap_.bitsPerPixel = kBitsPerPixel;
    bitmap_.bytesPerLine = PaddedLine(width);
    bitmap_.viewPerspective = kTopDown;
    if (palette != nullptr) {
        bitmap_.paletteEntries = static_cast<std::int32_t>(palette->size());
        palette_.reset(new std::uint8_t[sizeof(Palette)]);
        std::memcpy(palette_.get(), palette->data(), sizeof(Palette));
    }
    rows_ = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(RowStart(bitmap_, height)));
    bitmap_.palette = palette_.get();
    bitmap_.rows = rows_.get();
}

std::uint8_t* OwnedBitmap::Row(std::int32_t row) const noexcept {
    return bitmap_.rows + RowStart(bitmap_, row);
}

TqLeadBitmap OwnedBitmap::Release() noexcept {
    palette_.release();
    rows_.release();
    return bitmap_;
}

const std::uint8_t* DisplayedRow(const TqLeadBitmap& bitmap, std::int32_t row) noexcept {
    const bool flipped = bitmap.viewPerspective == kBottomUp;
    return bitmap.rows + RowStart(bitmap, flipped ? bitmap.height - 1 - row : row);
}

void FreeBitmap(TqLeadBitmap& bitmap) noexcept {
    delete[] bitmap.palette;
    delete[] bitmap.rows;
    bitmap = {};
}

}  // namespace tq

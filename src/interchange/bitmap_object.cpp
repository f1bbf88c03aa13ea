#include "interchange/bitmap_object.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "core/image_block.h"

namespace tq {
namespace {

constexpr std::int32_t kTopDown = 1;
constexpr std::int32_t kBottomUp = 2;
constexpr std::int32_t kBlueFirst = 1;

std::ptrdiff_t RowStart(const TqLeadBitmap& bitmap, std::int32_t storedRow) noexcept {
    return static_cast<std::ptrdiff_t>(storedRow) * bitmap.bytesPerLine;
}

bool HasKnownDepth(const TqLeadBitmap& bitmap) noexcept {
    return bitmap.bitsPerPixel == static_cast<std::int32_t>(BitmapDepth::kBytes) ||
           bitmap.bitsPerPixel == static_cast<std::int32_t>(BitmapDepth::kColours);
}

}  // namespace

std::int64_t PaddedLine(std::int64_t width, std::int64_t bitsPerPixel) noexcept {
    return (width * bitsPerPixel + 31) / 32 * 4;
}

OwnedBitmap::OwnedBitmap(std::int32_t width, std::int32_t height, BitmapDepth depth, const Palette* palette,
                         NewPixels pixels) {
    const auto bits = static_cast<std::int32_t>(depth);
    const std::size_t bytes = GridBytes(0, 1, PaddedLine(width, bits), height);
    bitmap_.structSize = sizeof(TqLeadBitmap);
    bitmap_.width = width;
    bitmap_.height = height;
    bitmap_.bitsPerPixel = bits;
    bitmap_.bytesPerLine = static_cast<std::int32_t>(PaddedLine(width, bits));
    bitmap_.viewPerspective = kTopDown;
    bitmap_.colorOrder = depth == BitmapDepth::kColours ? kBlueFirst : 0;
    if (palette != nullptr) {
        bitmap_.paletteEntries = static_cast<std::int32_t>(palette->size());
        palette_.reset(new std::uint8_t[sizeof(Palette)]);
        std::memcpy(palette_.get(), palette->data(), sizeof(Palette));
    }
    const bool zero = pixels == NewPixels::kZero;
    rows_.reset(zero ? new std::uint8_t[bytes]() : new std::uint8_t[bytes]);
    bitmap_.palette = palette_.get();
    bitmap_.rows = rows_.get();
    if (!zero) ClearPadding();
}

OwnedBitmap::OwnedBitmap(std::int32_t width, std::int32_t height, const Palette* palette, NewPixels pixels)
    : OwnedBitmap(width, height, BitmapDepth::kBytes, palette, pixels) {}

OwnedBitmap OwnedBitmap::OfColours(std::int32_t width, std::int32_t height, NewPixels pixels) {
    return {width, height, BitmapDepth::kColours, nullptr, pixels};
}

void OwnedBitmap::ClearPadding() noexcept {
    const std::ptrdiff_t used = static_cast<std::ptrdiff_t>(bitmap_.width) * bitmap_.bitsPerPixel / 8;
    if (used == bitmap_.bytesPerLine) return;
    for (std::int32_t row = 0; row < bitmap_.height; ++row)
        std::fill(Row(row) + used, Row(row) + bitmap_.bytesPerLine, std::uint8_t{0});
}

std::uint8_t* OwnedBitmap::Row(std::int32_t row) const noexcept {
    return bitmap_.rows + RowStart(bitmap_, row);
}

TqLeadBitmap OwnedBitmap::Release() noexcept {
    palette_.release();
    rows_.release();
    return bitmap_;
}

bool IsReadable(const TqLeadBitmap& bitmap) noexcept {
    if (bitmap.rows == nullptr || bitmap.width < 1 || bitmap.height < 1 || !HasKnownDepth(bitmap))
        return false;
    const std::int64_t pixelBytes = std::int64_t{bitmap.width} * bitmap.bitsPerPixel / 8;
    // As it lies in memory and, with lines padded, in DIBs and BMP files: their sizes have 32 bits.
    const std::int64_t line =
        std::max<std::int64_t>(bitmap.bytesPerLine, PaddedLine(bitmap.width, bitmap.bitsPerPixel));
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    return bitmap.bytesPerLine >= pixelBytes && line <= kMost / bitmap.height;
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

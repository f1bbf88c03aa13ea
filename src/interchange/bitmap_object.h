#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "interchange/palette.h"
#include "tqimage/bitmap.h"

namespace tq {

/// The services that the conversions ask of a bitmap library; another library can be put behind them.

/// Bits a pixel.
enum class BitmapDepth : std::int32_t {
    kBytes = 8,     ///< an entry of the palette
    kColours = 24,  ///< blue, green, red
};

/// What the pixels of a new bitmap hold. The bytes that pad its lines are always 0.
enum class NewPixels {
    kZero,
    kUnwritten,  ///< for makers that write every pixel
};

/// A bitmap that the library is making, until the host has it.
class OwnedBitmap {
  public:
    /// 8 bits a pixel, top-down; `palette` may be null. Throws std::bad_alloc.
    OwnedBitmap(std::int32_t width, std::int32_t height, const Palette* palette, NewPixels pixels);
    /// 24 bits a pixel, top-down. Throws std::bad_alloc.
    static OwnedBitmap OfColours(std::int32_t width, std::int32_t height, NewPixels pixels);

    const TqLeadBitmap& Get() const noexcept { return bitmap_; }
    std::uint8_t* Row(std::int32_t row) const noexcept;
    TqLeadBitmap Release() noexcept;

  private:
    OwnedBitmap(std::int32_t width, std::int32_t height, BitmapDepth depth, const Palette* palette,
                NewPixels pixels);
    void ClearPadding() noexcept;

    TqLeadBitmap bitmap_{};
    std::unique_ptr<std::uint8_t[]> palette_;
    std::unique_ptr<std::uint8_t[]> rows_;
};

/// Bytes of a row that ends on a 4-byte boundary, as DIBs and BMP files want it.
std::int64_t PaddedLine(std::int64_t width, std::int64_t bitsPerPixel) noexcept;

/// False for a host's record that does not describe rows which can be read; the other services rely on it.
bool IsReadable(const TqLeadBitmap& bitmap) noexcept;

/// The row as it is displayed, 0 at the top, whichever way the bitmap stores its rows.
const std::uint8_t* DisplayedRow(const TqLeadBitmap& bitmap, std::int32_t row) noexcept;

/// Releases palette and rows and leaves a record of zeros, which may be freed again.
void FreeBitmap(TqLeadBitmap& bitmap) noexcept;

/// The bitmap as a packed DIB in global memory; null when there is no memory.
void* BitmapToDib(const TqLeadBitmap& bitmap) noexcept;

/// Writes the bitmap as a Windows BMP file of its own depth. False when that fails; no half-written file
/// stays behind.
bool SaveBitmap(const char* fileName, const TqLeadBitmap& bitmap) noexcept;

/// Reads a BMP file. Pixels with a palette keep their entry at 8 bits and become its colour at 24; colours
/// become grey at 8 bits. None when there is no such file, it is malformed, or memory is short.
std::optional<OwnedBitmap> LoadBitmap(const char* fileName, BitmapDepth depth) noexcept;

}  // namespace tq

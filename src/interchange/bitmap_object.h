#pragma once

#include <cstdint>
#include <memory>

#include "interchange/palette.h"
#include "tqimage/bitmap.h"

namespace tq {

/// The services that the conversions ask of a bitmap library; another library can be put behind them.

/// A bitmap that the library is making, until the host has it.
class OwnedBitmap {
  public:
    /// 8 bits a pixel, top-down, all pixels 0; `palette` may be null. Throws std::bad_alloc.
    OwnedBitmap(std::int32_t width, std::int32_t height, const Palette* palette);

    const TqLeadBitmap& Get() const noexcept { return bitmap_; }
    std::uint8_t* Row(std::int32_t row) const noexcept;
    TqLeadBitmap Release() noexcept;

  private:
    TqLeadBitmap bitmap_{};
    std::unique_ptr<std::uint8_t[]> palette_;
    std::unique_ptr<std::uint8_t[]> rows_;
};

/// The row as it is displayed, 0 at the top, whichever way the bitmap stores its rows.
const std::uint8_t* DisplayedRow(const TqLeadBitmap& bitmap, std::int32_t row) noexcept;

/// Releases palette and rows and leaves a record of zeros, which may be freed again.
void FreeBitmap(TqLeadBitmap& bitmap) noexcept;

}  // namespace tq

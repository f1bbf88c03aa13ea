#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "interchange/bitmap_object.h"
#include "interchange/bmp_layout.h"

namespace tq {

/// The top-down bitmap of a BMP file's bytes: 1, 4, 8, 16, 24 or 32 bits a pixel, run lengths, bit masks, the
/// headers of Windows and OS/2. None when the file is malformed. Throws std::bad_alloc.
std::optional<OwnedBitmap> ReadBmp(std::span<const std::uint8_t> file, BitmapDepth depth);

}  // namespace tq

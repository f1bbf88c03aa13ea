#pragma once

#include <cstdint>
#include <span>

#include "interchange/bitmap_object.h"

namespace tq {

/// Unpacks the run lengths of a BMP file with 4 or 8 bits a pixel into a bitmap of bytes. Pixels that no run
/// reaches stay as they are. False when the runs leave the bitmap or end before it.
bool UnpackRunLengths(std::span<const std::uint8_t> code, std::uint32_t bits, const OwnedBitmap& to) noexcept;

}  // namespace tq

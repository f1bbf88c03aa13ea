#pragma once

#include "interchange/palette.h"

namespace tq {

/// The palette code under which a host hands in its own palette, as text.
inline constexpr std::int32_t kTextPalette = -2;

/// Reads 256 groups of 16 characters: four fields of four for red, green, blue and the fourth byte, each a
/// decimal number in its first three characters, taken modulo 256. A text that ends early ends the palette
/// with zeros.
Palette ReadTextPalette(const char* text) noexcept;

}  // namespace tq

#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace tq {

/// One colour as bitmaps, DIBs and BMP files store it.
struct PaletteEntry {
    std::uint8_t blue = 0;
    std::uint8_t green = 0;
    std::uint8_t red = 0;
    std::uint8_t reserved = 0;
};
static_assert(sizeof(PaletteEntry) == 4, "palettes are copied as 4 bytes an entry");

using Palette = std::array<PaletteEntry, 256>;

Palette GreyRamp() noexcept;

/// The palette of a host's palette code; none for code 0. A code that means nothing else is a grey ramp.
std::optional<Palette> MakePalette(std::int32_t code) noexcept;

}  // namespace tq

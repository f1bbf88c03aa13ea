#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "interchange/palette.h"

namespace tq {

inline constexpr std::uint32_t kBmpFileHeaderBytes = 14;

/// Where a colour's bits lie in a pixel of 16 or 32 bits.
struct ChannelBits {
    std::uint32_t mask = 0;
    int shift = 0;

    /// 0..255; 0 for a channel without bits.
    std::uint8_t Of(std::uint32_t pixel) const noexcept;
};

/// What the headers of a BMP file say, checked against each other and against the size of the file.
struct BmpLayout {
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool topDown = false;
    std::uint32_t bitsPerPixel = 0;
    bool runLengths = false;
    std::array<ChannelBits, 3> channels;  ///< blue, green, red of 16 and 32 bits a pixel
    Palette colours{};                    ///< of up to 8 bits a pixel; what the file does not name is black
    std::span<const std::uint8_t> pixels;

    bool HasPalette() const noexcept { return bitsPerPixel <= 8; }
    /// Bytes from row to row of pixels that are not run lengths.
    std::size_t RowBytes() const noexcept;
};

/// A little-endian number; the caller knows that it lies in the file.
std::uint32_t GetNumber(std::span<const std::uint8_t> bytes, std::size_t at, int size) noexcept;

/// None for what is not a BMP file, is malformed, or holds a picture of another format inside.
std::optional<BmpLayout> ParseBmp(std::span<const std::uint8_t> file) noexcept;

}  // namespace tq

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "interchange/bitmap_object.h"
#include "interchange/palette.h"

namespace tq {

/// A packed DIB, the form of the clipboard and, behind a file header, of BMP files: a header of 40 bytes, the
/// colour table of an 8-bit bitmap, the rows from bottom to top. All numbers are little-endian.

inline constexpr std::uint32_t kInfoHeaderBytes = 40;

/// Writes the low bytes of a number.
inline void PutNumber(std::uint8_t* at, std::uint32_t value, int bytes) noexcept {
    for (int i = 0; i < bytes; ++i)
        at[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t ColourTableBytes(const TqLeadBitmap& bitmap) noexcept;
/// Header, colour table and rows of a readable bitmap.
std::uint32_t DibBytes(const TqLeadBitmap& bitmap) noexcept;

std::array<std::uint8_t, kInfoHeaderBytes> MakeInfoHeader(const TqLeadBitmap& bitmap) noexcept;
/// The colour table of an 8-bit bitmap. A reader takes an 8-bit file without one for damaged, so a bitmap
/// without a palette is grey.
Palette ColourTable(const TqLeadBitmap& bitmap) noexcept;

inline constexpr std::size_t kRedFirstChunk = 256;
/// Blue and red exchanged in up to kRedFirstChunk pixels.
void ExchangeRedAndBlue(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) noexcept;

/// Gives `sink(const void* data, std::size_t bytes)` one row's pixels, blue first, and its padding.
template <class Sink>
bool WriteDibRow(const TqLeadBitmap& bitmap, std::int32_t row, Sink&& sink) {
    const std::uint8_t* pixels = DisplayedRow(bitmap, row);
    const auto bytes =
        static_cast<std::size_t>(bitmap.width) * static_cast<std::size_t>(bitmap.bitsPerPixel / 8);
    if (bitmap.bitsPerPixel == static_cast<std::int32_t>(BitmapDepth::kColours) && bitmap.colorOrder == 0) {
        std::array<std::uint8_t, 3 * kRedFirstChunk> chunk;
        for (std::size_t at = 0; at < bytes; at += chunk.size()) {
            const std::size_t part = bytes - at < chunk.size() ? bytes - at : chunk.size();
            ExchangeRedAndBlue(pixels + at, part / 3, chunk.data());
            if (!sink(chunk.data(), part)) return false;
        }
    } else if (!sink(pixels, bytes)) {
        return false;
    }
    constexpr std::uint8_t kPadding[3]{};
    return sink(kPadding, (4 - bytes % 4) % 4);
}

/// Gives the sink a readable bitmap part by part until it returns false, which then is the result.
template <class Sink>
bool WriteDib(const TqLeadBitmap& bitmap, Sink&& sink) {
    const auto header = MakeInfoHeader(bitmap);
    if (!sink(header.data(), header.size())) return false;
    const Palette colours = ColourTable(bitmap);
    if (!sink(colours.data(), ColourTableBytes(bitmap))) return false;
    for (std::int32_t row = bitmap.height - 1; row >= 0; --row) {
        if (!WriteDibRow(bitmap, row, sink)) return false;
    }
    return true;
}

}  // namespace tq

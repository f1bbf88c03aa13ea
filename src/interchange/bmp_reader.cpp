#include "interchange/bmp_reader.h"

#include <cstddef>
#include <cstring>
#include <utility>

#include "interchange/run_lengths.h"

namespace tq {
namespace {

constexpr std::ptrdiff_t kColourBytes = 3;

/// Palette entries of less than a byte; the first pixel lies in the highest bits.
void UnpackEntries(const std::uint8_t* packed, std::uint32_t bits, std::int32_t width,
                   std::uint8_t* out) noexcept {
    const std::uint32_t mask = (1u << bits) - 1;
    for (std::int32_t col = 0; col < width; ++col) {
        const std::size_t at = static_cast<std::size_t>(col) * bits;
        out[col] = static_cast<std::uint8_t>(packed[at / 8] >> (8 - bits - at % 8) & mask);
    }
}

void UnpackColours(const BmpLayout& layout, std::size_t start, std::uint8_t* out) noexcept {
    const int bytes = static_cast<int>(layout.bitsPerPixel / 8);
    for (std::int32_t col = 0; col < layout.width; ++col, out += kColourBytes) {
        const std::uint32_t pixel = GetNumber(layout.pixels, start, bytes);
        start += static_cast<std::size_t>(bytes);
        for (std::size_t i = 0; i < 3; ++i)
            out[i] = layout.channels[i].Of(pixel);
    }
}

void UnpackRow(const BmpLayout& layout, std::size_t start, std::uint8_t* out) noexcept {
    const std::uint8_t* packed = layout.pixels.data() + start;
    if (layout.bitsPerPixel < 8) return UnpackEntries(packed, layout.bitsPerPixel, layout.width, out);
    if (layout.bitsPerPixel == 16 || layout.bitsPerPixel == 32) return UnpackColours(layout, start, out);
    std::memcpy(out, packed, static_cast<std::size_t>(layout.width) * (layout.bitsPerPixel / 8));
}

/// At the depth that comes closest to the file's own.
std::optional<OwnedBitmap> Unpack(const BmpLayout& layout) {
    // Run lengths may skip pixels.
    const NewPixels pixels = layout.runLengths ? NewPixels::kZero : NewPixels::kUnwritten;
    OwnedBitmap bitmap = layout.HasPalette()
                             ? OwnedBitmap(layout.width, layout.height, &layout.colours, pixels)
                             : OwnedBitmap::OfColours(layout.width, layout.height, pixels);
    if (layout.runLengths) {
        if (!UnpackRunLengths(layout.pixels, layout.bitsPerPixel, bitmap)) return std::nullopt;
        return bitmap;
    }
    for (std::int32_t row = 0; row < layout.height; ++row) {
        const std::int32_t stored = layout.topDown ? row : layout.height - 1 - row;
        UnpackRow(layout, static_cast<std::size_t>(stored) * layout.RowBytes(), bitmap.Row(row));
    }
    return bitmap;
}

OwnedBitmap ColoursOf(const OwnedBitmap& entries, const Palette& palette) {
    const auto [width, height] = std::pair(entries.Get().width, entries.Get().height);
    OwnedBitmap colours = OwnedBitmap::OfColours(width, height, NewPixels::kUnwritten);
    for (std::int32_t row = 0; row < height; ++row) {
        const std::uint8_t* from = entries.Row(row);
        std::uint8_t* to = colours.Row(row);
        for (std::int32_t col = 0; col < width; ++col, to += kColourBytes)
            std::memcpy(to, &palette[from[col]], kColourBytes);
    }
    return colours;
}

/// Luma of ITU-R BT.601, rounded; a grey colour keeps its level.
std::uint8_t Grey(const std::uint8_t* colour) noexcept {
    return static_cast<std::uint8_t>((299 * colour[2] + 587 * colour[1] + 114 * colour[0] + 500) / 1000);
}

OwnedBitmap GreysOf(const OwnedBitmap& colours) {
    const auto [width, height] = std::pair(colours.Get().width, colours.Get().height);
    const Palette ramp = GreyRamp();
    OwnedBitmap greys(width, height, &ramp, NewPixels::kUnwritten);
    for (std::int32_t row = 0; row < height; ++row) {
        const std::uint8_t* from = colours.Row(row);
        std::uint8_t* to = greys.Row(row);
        for (std::int32_t col = 0; col < width; ++col, from += kColourBytes)
            to[col] = Grey(from);
    }
    return greys;
}

}  // namespace

std::optional<OwnedBitmap> ReadBmp(std::span<const std::uint8_t> file, BitmapDepth depth) {
    const std::optional<BmpLayout> layout = ParseBmp(file);
    if (!layout) return std::nullopt;
    std::optional<OwnedBitmap> bitmap = Unpack(*layout);
    if (!bitmap || layout->HasPalette() == (depth == BitmapDepth::kBytes)) return bitmap;
    return layout->HasPalette() ? ColoursOf(*bitmap, layout->colours) : GreysOf(*bitmap);
}

}  // namespace tq

#include "interchange/dib.h"

#include <cstring>

#include "platform/global_memory.h"

namespace tq {
namespace {

std::uint32_t PixelBytes(const TqLeadBitmap& bitmap) noexcept {
    return static_cast<std::uint32_t>(PaddedLine(bitmap.width, bitmap.bitsPerPixel)) *
           static_cast<std::uint32_t>(bitmap.height);
}

}  // namespace

std::uint32_t ColourTableBytes(const TqLeadBitmap& bitmap) noexcept {
    return bitmap.bitsPerPixel == static_cast<std::int32_t>(BitmapDepth::kBytes) ? sizeof(Palette) : 0;
}

std::uint32_t DibBytes(const TqLeadBitmap& bitmap) noexcept {
    return kInfoHeaderBytes + ColourTableBytes(bitmap) + PixelBytes(bitmap);
}

std::array<std::uint8_t, kInfoHeaderBytes> MakeInfoHeader(const TqLeadBitmap& bitmap) noexcept {
    std::array<std::uint8_t, kInfoHeaderBytes> header{};
    std::uint8_t* const at = header.data();
    PutNumber(at, kInfoHeaderBytes, 4);
    PutNumber(at + 4, static_cast<std::uint32_t>(bitmap.width), 4);
    // A positive height: the rows are stored bottom-up, which every reader understands.
    PutNumber(at + 8, static_cast<std::uint32_t>(bitmap.height), 4);
    PutNumber(at + 12, 1, 2);  // planes
    PutNumber(at + 14, static_cast<std::uint32_t>(bitmap.bitsPerPixel), 2);
    PutNumber(at + 20, PixelBytes(bitmap), 4);
    PutNumber(at + 32, ColourTableBytes(bitmap) / static_cast<std::uint32_t>(sizeof(PaletteEntry)), 4);
    return header;
}

Palette ColourTable(const TqLeadBitmap& bitmap) noexcept {
    Palette colours = GreyRamp();
    if (bitmap.palette != nullptr && bitmap.paletteEntries == static_cast<std::int32_t>(colours.size())) {
        std::memcpy(colours.data(), bitmap.palette, sizeof colours);
    }
    return colours;
}

void ExchangeRedAndBlue(const std::uint8_t* pixels, std::size_t count, std::uint8_t* out) noexcept {
    for (const std::uint8_t* const end = pixels + 3 * count; pixels != end; pixels += 3, out += 3) {
        out[0] = pixels[2];
        out[1] = pixels[1];
        out[2] = pixels[0];
    }
}

void* BitmapToDib(const TqLeadBitmap& bitmap) noexcept {
    OwnedGlobal dib(DibBytes(bitmap));
    {
        const GlobalLockGuard lock(dib.Get());
        std::uint8_t* to = lock.Bytes();
        if (to == nullptr) return nullptr;
        WriteDib(bitmap, [&](const void* data, std::size_t bytes) {
            std::memcpy(to, data, bytes);
            to += bytes;
            return true;
        });
    }
    return dib.Release();
}

}  // namespace tq

#include "interchange/bmp_file.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "core/output_file.h"
#include "interchange/bitmap_object.h"
#include "interchange/palette.h"

namespace tq {
namespace {

// The layout of BITMAPFILEHEADER and BITMAPINFOHEADER, little-endian on every machine.
constexpr std::uint32_t kFileHeaderBytes = 14;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kPixelStart = kFileHeaderBytes + kInfoHeaderBytes + sizeof(Palette);

using Headers = std::array<std::uint8_t, kFileHeaderBytes + kInfoHeaderBytes>;

void Put(Headers& headers, std::size_t at, std::uint32_t value, int bytes) noexcept {
    for (int i = 0; i < bytes; ++i) {
        headers[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

Headers MakeHeaders(const TqLeadBitmap& bitmap) noexcept {
    const auto pixelBytes =
        static_cast<std::uint32_t>(bitmap.bytesPerLine) * static_cast<std::uint32_t>(bitmap.height);
    Headers headers{'B', 'M'};
    Put(headers, 2, kPixelStart + pixelBytes, 4);
    Put(headers, 10, kPixelStart, 4);
    Put(headers, 14, kInfoHeaderBytes, 4);
    Put(headers, 18, static_cast<std::uint32_t>(bitmap.width), 4);
    // A positive height: the file stores its rows bottom-up, which every reader understands.
    Put(headers, 22, static_cast<std::uint32_t>(bitmap.height), 4);
    Put(headers, 26, 1, 2);  // planes
    Put(headers, 28, static_cast<std::uint32_t>(bitmap.bitsPerPixel), 2);
    Put(headers, 34, pixelBytes, 4);
    Put(headers, 46, 256, 4);  // colours in the table
    return headers;
}

bool WriteAll(std::FILE* file, const void* data, std::size_t bytes) noexcept {
    return std::fwrite(data, 1, bytes, file) == bytes;
}

bool WriteContent(std::FILE* file, const TqLeadBitmap& bitmap) noexcept {
    const Headers headers = MakeHeaders(bitmap);
    if (!WriteAll(file, headers.data(), headers.size())) return false;
    // A reader takes an 8-bit file without a colour table for damaged, so a bitmap without one is grey.
    const Palette grey = GreyRamp();
    const void* colours = bitmap.palette != nullptr ? static_cast<const void*>(bitmap.palette) : grey.data();
    if (!WriteAll(file, colours, sizeof(Palette))) return false;
    for (std::int32_t row = bitmap.height - 1; row >= 0; --row) {
        if (!WriteAll(file, DisplayedRow(bitmap, row), static_cast<std::size_t>(bitmap.bytesPerLine))) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool WriteBmpFile(const char* fileName, const TqLeadBitmap& bitmap) noexcept {
    return WriteFile(fileName, "wb", [&](std::FILE* file) { return WriteContent(file, bitmap); });
}

}  // namespace tq

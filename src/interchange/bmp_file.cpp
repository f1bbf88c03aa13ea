#include "interchange/bmp_file.h"

#include <sys/stat.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "interchange/bitmap_object.h"
#include "interchange/palette.h"

namespace tq {
namespace {

// The layout of BITMAPFILEHEADER and BITMAPINFOHEADER, little-endian on every machine.
constexpr std::uint32_t kFileHeaderBytes = 14;
constexpr std::uint32_t kInfoHeaderBytes = 40;
constexpr std::uint32_t kPixelStart = kFileHeaderBytes + kInfoHeaderBytes + sizeof(Palette);

/// The C libraries' own buffer holds hardly one row.
constexpr std::size_t kFileBuffer = 1 << 18;

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

/// Only what writing has created: a device that took the first bytes stays where it is.
void RemoveRegularFile(const char* fileName) noexcept {
    struct stat info {};
    if (::stat(fileName, &info) == 0 && (info.st_mode & S_IFMT) == S_IFREG) std::remove(fileName);
}

}  // namespace

bool WriteBmpFile(const char* fileName, const TqLeadBitmap& bitmap) noexcept {
    std::FILE* file = fileName == nullptr ? nullptr : std::fopen(fileName, "wb");
    if (file == nullptr) return false;
    std::setvbuf(file, nullptr, _IOFBF, kFileBuffer);
    const bool written = WriteContent(file, bitmap);
    // Closing writes what is still buffered and may fail as well.
    const bool closed = std::fclose(file) == 0;
    if (!written || !closed) RemoveRegularFile(fileName);
    return written && closed;
}

}  // namespace tq

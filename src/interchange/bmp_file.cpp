#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

#include "core/guard.h"
#include "core/input_file.h"
#include "core/output_file.h"
#include "interchange/bitmap_object.h"
#include "interchange/bmp_reader.h"
#include "interchange/dib.h"

namespace tq {
namespace {

/// More than the largest image takes at 32 bits a pixel; devices that never end stop here.
constexpr std::size_t kMostFileBytes = std::size_t{1} << 30;

using FileHeader = std::array<std::uint8_t, kBmpFileHeaderBytes>;

FileHeader MakeFileHeader(const TqLeadBitmap& bitmap) noexcept {
    FileHeader header{'B', 'M'};
    PutNumber(header.data() + 2, kBmpFileHeaderBytes + DibBytes(bitmap), 4);
    PutNumber(header.data() + 10, kBmpFileHeaderBytes + kInfoHeaderBytes + ColourTableBytes(bitmap), 4);
    return header;
}

}  // namespace

bool SaveBitmap(const char* fileName, const TqLeadBitmap& bitmap) noexcept {
    return WriteFile(fileName, "wb", [&](std::FILE* file) {
        const auto write = [&](const void* data, std::size_t bytes) {
            return std::fwrite(data, 1, bytes, file) == bytes;
        };
        const FileHeader header = MakeFileHeader(bitmap);
        return write(header.data(), header.size()) && WriteDib(bitmap, write);
    });
}

std::optional<OwnedBitmap> LoadBitmap(const char* fileName, BitmapDepth depth) noexcept {
    return Guarded(std::nullopt, [&]() -> std::optional<OwnedBitmap> {
        const std::optional<std::vector<std::uint8_t>> file = ReadFile(fileName, kMostFileBytes);
        if (!file) return std::nullopt;
        return ReadBmp(*file, depth);
    });
}

}  // namespace tq

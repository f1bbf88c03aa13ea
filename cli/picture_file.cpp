#include "picture_file.h"

#include <cstdint>
#include <vector>

#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "tqimage/bitmap_files.h"

namespace cli {
namespace {

/// Bytes as they are shown: red, green and blue in turn, rows from the top without gaps.
struct ColourBytes {
    std::int32_t cols;
    std::int32_t rows;
    std::vector<std::uint8_t> bytes;

    Raster AsRaster() const noexcept { return {cols, rows, 3, 8, bytes.data()}; }
};

/// The upper byte of a pel: 65535 becomes 255, and 0 stays 0.
ColourBytes InterleavePlanes(const std::array<const HostImage*, 3>& planes) {
    const TqImageHeader header = planes[0]->Header();
    const std::size_t pels =
        static_cast<std::size_t>(header.PelCols) * static_cast<std::size_t>(header.PelRows);
    ColourBytes picture{header.PelCols, header.PelRows, std::vector<std::uint8_t>(pels * 3)};
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const std::uint16_t* const from = planes[plane]->Row(0);
        for (std::size_t i = 0; i < pels; ++i)
            picture.bytes[3 * i + plane] = static_cast<std::uint8_t>(from[i] >> 8);
    }
    return picture;
}

void Append(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

/// A file header, the oldest information header that every reader knows, and rows from the bottom, blue
/// first, each padded to a multiple of four bytes.
void WriteBmp(const std::string& name, const std::string& file, const ColourBytes& picture) {
    constexpr std::uint32_t kHeads = 14 + 40;
    const auto rows = static_cast<std::uint32_t>(picture.rows);
    const auto rowBytes = 3 * static_cast<std::uint32_t>(picture.cols);
    const std::uint32_t stride = (rowBytes + 3) / 4 * 4;
    const std::uint32_t size = stride * rows;  // 24000 x 8000 bytes at most
    std::string bytes = "BM";
    Append(bytes, kHeads + size, 4);
    Append(bytes, 0, 4);
    Append(bytes, kHeads, 4);
    Append(bytes, 40, 4);
    Append(bytes, rowBytes / 3, 4);
    Append(bytes, rows, 4);
    Append(bytes, 1, 2);
    Append(bytes, 24, 2);
    Append(bytes, 0, 4);
    Append(bytes, size, 4);
    bytes.resize(kHeads + size);  // resolution, colour counts and paddings are 0
    for (std::uint32_t row = 0; row < rows; ++row) {
        const std::uint8_t* const from = picture.AsRaster().Row(static_cast<std::int32_t>(row));
        char* const to = bytes.data() + kHeads + stride * (rows - 1 - row);
        for (std::size_t i = 0; i < rowBytes; ++i)
            to[i] = static_cast<char>(from[i - i % 3 + (2 - i % 3)]);
    }
    WriteBytes(name, file, bytes);
}

}  // namespace

void WritePicture(const std::string& name, const std::string& file, const HostImage& picture) {
    if (HasExtension(name, {".bmp"})) {
        WriteBmp(name, file, InterleavePlanes({&picture, &picture, &picture}));
    } else {
        WriteImage(name, file, ToGreyImage(picture));
    }
}

void WritePicture(const std::string& name, const std::string& file,
                  const std::array<const HostImage*, 3>& planes) {
    const ColourBytes picture = InterleavePlanes(planes);
    if (HasExtension(name, {".bmp"})) {
        WriteBmp(name, file, picture);
    } else if (HasExtension(name, {".png"})) {
        WritePng(name, file, picture.AsRaster());
    } else {
        WriteTiff(name, file, picture.AsRaster());
    }
}

void WriteLeadBitmap(const std::string& name, const std::string& file, TqLeadBitmap& bitmap) {
    const bool written = tqLeadBmpToDiskBmp(file.c_str(), &bitmap) == 0;
    tqFreeLeadBmp(&bitmap);
    if (!written) FailFile(name, "the bitmap cannot be written");
}

void CheckPictureName(const std::string& name, bool colour) {
    if (HasExtension(name, {".bmp", ".png", ".tif", ".tiff"})) return;
    if (!colour && HasExtension(name, {".pgm"})) return;
    FailUsage(name + ": a picture is called .png, .tif, .tiff" + (colour ? " or .bmp" : ", .pgm or .bmp"));
}

}  // namespace cli

#include "picture_file.h"

#include <png.h>
#include <tiffio.h>

#include <cstdint>
#include <vector>

#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "text.h"

namespace cli {
namespace {

/// Bytes as they are shown: red, green and blue in turn, rows from the top without gaps.
struct ColourBytes {
    std::uint32_t cols;
    std::uint32_t rows;
    std::vector<std::uint8_t> bytes;

    std::size_t RowBytes() const noexcept { return std::size_t{cols} * 3; }
    const std::uint8_t* Row(std::uint32_t row) const noexcept { return bytes.data() + row * RowBytes(); }
};

/// The upper byte of a pel: 65535 becomes 255, and 0 stays 0.
ColourBytes InterleavePlanes(const std::array<const HostImage*, 3>& planes) {
    const TqImageHeader header = planes[0]->Header();
    ColourBytes picture{
        static_cast<std::uint32_t>(header.PelCols), static_cast<std::uint32_t>(header.PelRows), {}};
    const std::size_t pels = std::size_t{picture.cols} * picture.rows;
    picture.bytes.resize(pels * 3);
    for (std::size_t plane = 0; plane < 3; ++plane) {
        const std::uint16_t* const from = planes[plane]->Row(0);
        for (std::size_t i = 0; i < pels; ++i)
            picture.bytes[3 * i + plane] = static_cast<std::uint8_t>(from[i] >> 8);
    }
    return picture;
}

void WriteColourPng(const std::string& name, const std::string& file, const ColourBytes& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = picture.cols;
    image.height = picture.rows;
    image.format = PNG_FORMAT_RGB;
    if (!png_image_write_to_file(&image, file.c_str(), 0, picture.bytes.data(), 0, nullptr)) {
        FailFile(name, Format("cannot be written (%s)", image.message));
    }
}

void WriteColourTiff(const std::string& name, const std::string& file, const ColourBytes& picture) {
    TIFFSetErrorHandler(nullptr);  // it would write to stderr on its own
    TIFF* const tiff = TIFFOpen(file.c_str(), "w");
    if (tiff == nullptr) FailFile(name, "cannot be written");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, picture.cols);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, picture.rows);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    bool written = true;
    for (std::uint32_t row = 0; row < picture.rows && written; ++row) {
        // libtiff takes a writable row and, without compression, does not write to it.
        written = TIFFWriteScanline(tiff, const_cast<std::uint8_t*>(picture.Row(row)), row) == 1;
    }
    written = TIFFFlush(tiff) == 1 && written;
    TIFFClose(tiff);
    if (!written) FailFile(name, "cannot be written");
}

void Append(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

/// A file header, the oldest information header that every reader knows, and rows from the bottom, blue
/// first, each padded to a multiple of four bytes.
void WriteBmp(const std::string& name, const std::string& file, const ColourBytes& picture) {
    constexpr std::uint32_t kHeads = 14 + 40;
    const std::size_t stride = (picture.RowBytes() + 3) / 4 * 4;
    const auto size = static_cast<std::uint32_t>(stride * picture.rows);  // 8000 x 24000 bytes at most
    std::string bytes = "BM";
    Append(bytes, kHeads + size, 4);
    Append(bytes, 0, 4);
    Append(bytes, kHeads, 4);
    Append(bytes, 40, 4);
    Append(bytes, picture.cols, 4);
    Append(bytes, picture.rows, 4);
    Append(bytes, 1, 2);
    Append(bytes, 24, 2);
    Append(bytes, 0, 4);
    Append(bytes, size, 4);
    bytes.resize(kHeads + size);  // resolution, colour counts and paddings are 0
    for (std::uint32_t row = 0; row < picture.rows; ++row) {
        const std::uint8_t* const from = picture.Row(row);
        char* const to = bytes.data() + kHeads + stride * (picture.rows - 1 - row);
        for (std::size_t i = 0; i < picture.RowBytes(); ++i)
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
        WriteColourPng(name, file, picture);
    } else {
        WriteColourTiff(name, file, picture);
    }
}

void CheckPictureName(const std::string& name, bool colour) {
    if (HasExtension(name, {".bmp", ".png", ".tif", ".tiff"})) return;
    if (!colour && HasExtension(name, {".pgm"})) return;
    FailUsage(name + ": a picture is called .png, .tif, .tiff" + (colour ? " or .bmp" : ", .pgm or .bmp"));
}

}  // namespace cli

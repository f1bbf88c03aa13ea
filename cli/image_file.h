#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace cli {

/// A grey image as it lies in a file: 8-bit values keep their numbers, nothing is scaled.
struct GreyImage {
    std::int32_t cols = 0;
    std::int32_t rows = 0;
    int bitsPerPel = 16;  ///< 8 or 16
    std::vector<std::uint16_t> pels;

    std::size_t Index(std::int32_t col, std::int32_t row) const noexcept {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(cols) + static_cast<std::size_t>(col);
    }
};

/// The longest side of an image that the library takes.
inline constexpr std::int64_t kLargestSide = 8000;

/// Reads a PNG, TIFF or PGM file, told apart by its first bytes.
GreyImage ReadImage(const std::string& path);

/// Writes 16 bits a pel to file; the form follows the extension of name: .png, .tif, .tiff or .pgm.
void WriteImage(const std::string& name, const std::string& file, const GreyImage& image);
/// Refuses, as a usage error, a name that WriteImage would not know a form for.
void CheckImageName(const std::string& name);

/// True when a file's name ends with one of these extensions, in small or large letters.
bool HasExtension(const std::string& name, std::initializer_list<const char*> extensions);

/// An image of this size with room for its pels; sizes outside 1..8000 end with the file's name.
GreyImage MakeGreyImage(const std::string& path, std::int64_t cols, std::int64_t rows, int bitsPerPel);

/// What PNG and TIFF files are written from: grey with 16 bits, or red, green and blue with 8, rows from the
/// top without gaps.
struct Raster {
    std::int32_t cols;
    std::int32_t rows;
    int samples;        ///< a pel: 1 or 3
    int bitsPerSample;  ///< 8 or 16
    const void* pels;

    /// libpng and libtiff take writable rows and do not write to them.
    std::uint8_t* Row(std::int32_t row) const noexcept {
        const auto rowBytes =
            static_cast<std::size_t>(cols) * static_cast<std::size_t>(samples * bitsPerSample / 8);
        auto* const first = static_cast<std::uint8_t*>(const_cast<void*>(pels));
        return first + static_cast<std::size_t>(row) * rowBytes;
    }
};

// One pair a format, each in its own file.
GreyImage ReadPng(const std::string& path);
GreyImage ReadTiff(const std::string& path);
GreyImage ReadPgm(const std::string& path);
void WritePng(const std::string& name, const std::string& file, const Raster& image);
void WriteTiff(const std::string& name, const std::string& file, const Raster& image);
void WritePgm(const std::string& name, const std::string& file, const GreyImage& image);

}  // namespace cli

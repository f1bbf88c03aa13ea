#include <tiffio.h>

#include <cstdarg>
#include <cstdio>
#include <memory>

#include "failure.h"
#include "image_file.h"
#include "text.h"

namespace cli {
namespace {

// libtiff reports through a process-wide handler; this program reads one file at a time.
std::string lastError;

void OnError(const char*, const char* pattern, std::va_list arguments) {
    char text[200];
    std::vsnprintf(text, sizeof text, pattern, arguments);
    lastError = text;
}

struct CloseTiff {
    void operator()(TIFF* tiff) const noexcept { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

Tiff Open(const std::string& path, const char* mode) {
    TIFFSetErrorHandler(OnError);
    TIFFSetWarningHandler(nullptr);
    lastError.clear();
    return Tiff(TIFFOpen(path.c_str(), mode));
}

[[noreturn]] void FailDamaged(const std::string& path) {
    FailFile(path, "damaged TIFF file" + (lastError.empty() ? "" : " (" + lastError + ")"));
}

std::uint16_t ShortTag(TIFF* tiff, std::uint32_t tag) {
    std::uint16_t value = 0;
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : std::uint16_t{0};
}

void CheckForm(const std::string& path, TIFF* tiff) {
    const int samples = ShortTag(tiff, TIFFTAG_SAMPLESPERPIXEL);
    switch (ShortTag(tiff, TIFFTAG_PHOTOMETRIC)) {
        case PHOTOMETRIC_MINISBLACK:
            break;
        case PHOTOMETRIC_MINISWHITE:
            FailFile(path, "its zero is white; a grey image whose zero is black is needed");
        case PHOTOMETRIC_PALETTE:
            FailFile(path, "a palette image; a grey one is needed");
        default:
            FailFile(path, "a colour image; a grey one is needed");
    }
    if (samples != 1) {
        FailFile(path, Format("%d values a pel (alpha or colour); a plain grey image is needed", samples));
    }
    const int format = ShortTag(tiff, TIFFTAG_SAMPLEFORMAT);
    if (format == SAMPLEFORMAT_IEEEFP) FailFile(path, "floating-point pels; unsigned integers are needed");
    if (format != SAMPLEFORMAT_UINT) FailFile(path, "signed or complex pels; unsigned integers are needed");
    const int bits = ShortTag(tiff, TIFFTAG_BITSPERSAMPLE);
    if (bits != 8 && bits != 16) FailFile(path, Format("%d bits a pel; 8 or 16 are needed", bits));
    if (ShortTag(tiff, TIFFTAG_ORIENTATION) != ORIENTATION_TOPLEFT) {
        FailFile(path, "is stored turned or mirrored; regions would mean other pels than the ones shown");
    }
}

void ReadStrips(const std::string& path, TIFF* tiff, GreyImage& image) {
    const std::size_t cols = static_cast<std::size_t>(image.cols);
    const std::size_t rowBytes = cols * static_cast<std::size_t>(image.bitsPerPel / 8);
    if (static_cast<std::size_t>(TIFFScanlineSize(tiff)) != rowBytes) FailDamaged(path);
    std::vector<std::uint8_t> bytes(image.bitsPerPel == 8 ? cols : 0);
    for (std::int32_t row = 0; row < image.rows; ++row) {
        std::uint16_t* const pels = &image.pels[image.Index(0, row)];
        void* const target = bytes.empty() ? static_cast<void*>(pels) : bytes.data();
        if (TIFFReadScanline(tiff, target, static_cast<std::uint32_t>(row)) != 1) FailDamaged(path);
        std::copy(bytes.begin(), bytes.end(), pels);
    }
}

template <typename Sample>
void CopyTile(const std::vector<std::uint16_t>& tile, std::int64_t tileCols, std::int64_t tileRows,
              std::int64_t left, std::int64_t top, GreyImage& image) {
    const auto* const samples = reinterpret_cast<const Sample*>(tile.data());
    const std::int64_t cols = std::min(tileCols, image.cols - left);
    const std::int64_t rows = std::min(tileRows, image.rows - top);
    for (std::int64_t row = 0; row < rows; ++row) {
        const Sample* const from = samples + row * tileCols;
        std::copy(from, from + cols, image.pels.data() + (top + row) * image.cols + left);
    }
}

void ReadTiles(const std::string& path, TIFF* tiff, GreyImage& image) {
    std::uint32_t cols = 0;
    std::uint32_t rows = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &cols);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &rows);
    // A tile may overhang the image, but writers round a side up to a multiple of 16 and no further.
    if (cols < 1 || rows < 1 || cols > kLargestSide + 15 || rows > kLargestSide + 15) FailDamaged(path);
    const std::size_t tileBytes = std::size_t{cols} * rows * static_cast<std::size_t>(image.bitsPerPel / 8);
    if (static_cast<std::size_t>(TIFFTileSize(tiff)) != tileBytes) FailDamaged(path);
    std::vector<std::uint16_t> tile((tileBytes + 1) / 2);
    for (std::int64_t top = 0; top < image.rows; top += rows) {
        for (std::int64_t left = 0; left < image.cols; left += cols) {
            if (TIFFReadTile(tiff, tile.data(), static_cast<std::uint32_t>(left),
                             static_cast<std::uint32_t>(top), 0, 0) < 0) {
                FailDamaged(path);
            }
            if (image.bitsPerPel == 8) {
                CopyTile<std::uint8_t>(tile, cols, rows, left, top, image);
            } else {
                CopyTile<std::uint16_t>(tile, cols, rows, left, top, image);
            }
        }
    }
}

// Reduced copies of the image, as viewers store them, are not pages.
void RefuseFurtherPages(const std::string& path, TIFF* tiff) {
    while (TIFFReadDirectory(tiff) == 1) {
        std::uint32_t kind = 0;
        TIFFGetFieldDefaulted(tiff, TIFFTAG_SUBFILETYPE, &kind);
        if ((kind & FILETYPE_REDUCEDIMAGE) == 0) FailFile(path, "holds more than one page");
    }
    if (!lastError.empty()) FailDamaged(path);
}

}  // namespace

GreyImage ReadTiff(const std::string& path) {
    const Tiff tiff = Open(path, "r");
    if (!tiff) FailDamaged(path);
    std::uint32_t cols = 0;
    std::uint32_t rows = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &cols);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &rows);
    CheckForm(path, tiff.get());
    GreyImage image = MakeGreyImage(path, cols, rows, ShortTag(tiff.get(), TIFFTAG_BITSPERSAMPLE));
    if (TIFFIsTiled(tiff.get())) {
        ReadTiles(path, tiff.get(), image);
    } else {
        ReadStrips(path, tiff.get(), image);
    }
    RefuseFurtherPages(path, tiff.get());
    return image;
}

void WriteTiff(const std::string& name, const std::string& file, const Raster& image) {
    Tiff tiff = Open(file, "w");
    if (!tiff) FailFile(name, "cannot be written (" + lastError + ")");
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(image.cols));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(image.rows));
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, image.bitsPerSample);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, image.samples);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC,
                 image.samples == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff.get(), TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff.get(), 0));
    bool written = true;
    for (std::int32_t row = 0; row < image.rows && written; ++row)
        written = TIFFWriteScanline(tiff.get(), image.Row(row), static_cast<std::uint32_t>(row)) == 1;
    written = TIFFFlush(tiff.get()) == 1 && written;
    tiff.reset();
    if (!written || !lastError.empty()) FailFile(name, "cannot be written (" + lastError + ")");
}

}  // namespace cli

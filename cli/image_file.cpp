#include "image_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>

#include "failure.h"
#include "files.h"
#include "text.h"

namespace cli {
namespace {

enum class Form { kPng, kTiff, kPgm };

Form FormOf(const std::string& name) {
    if (HasExtension(name, {".png"})) return Form::kPng;
    if (HasExtension(name, {".tif", ".tiff"})) return Form::kTiff;
    if (HasExtension(name, {".pgm"})) return Form::kPgm;
    FailUsage(name + ": an image file is called .png, .tif, .tiff or .pgm");
}

}  // namespace

GreyImage ReadImage(const std::string& path) {
    unsigned char magic[8] = {};
    std::size_t count = 0;
    {
        const Stream file = OpenStream(path, path, "rb");
        count = std::fread(magic, 1, sizeof magic, file.get());
        if (std::ferror(file.get())) FailFile(path, std::strerror(errno));
    }
    const auto starts = [&](const void* bytes, std::size_t length) {
        return count >= length && std::memcmp(magic, bytes, length) == 0;
    };
    if (starts("\x89PNG\r\n\x1a\n", 8)) return ReadPng(path);
    // The byte order, then in it the version: 42 is the classic form, 43 the one with 64-bit offsets.
    const int version = starts("II", 2) ? magic[2] | magic[3] << 8 : magic[2] << 8 | magic[3];
    if ((starts("II", 2) || starts("MM", 2)) && (version == 42 || version == 43)) return ReadTiff(path);
    if (starts("P5", 2) || starts("P2", 2)) return ReadPgm(path);
    if (count == 0) FailFile(path, "the file is empty");
    if (magic[0] == 'P' && std::isdigit(magic[1])) FailFile(path, "not a grey image (only P2 and P5 are)");
    FailFile(path, "not a PNG, TIFF or PGM image");
}

void WriteImage(const std::string& name, const std::string& file, const GreyImage& image) {
    const Raster raster{image.cols, image.rows, 1, 16, image.pels.data()};
    switch (FormOf(name)) {
        case Form::kPng:
            return WritePng(name, file, raster);
        case Form::kTiff:
            return WriteTiff(name, file, raster);
        case Form::kPgm:
            return WritePgm(name, file, image);
    }
}

void CheckImageName(const std::string& name) {
    FormOf(name);
}

bool HasExtension(const std::string& name, std::initializer_list<const char*> extensions) {
    const std::size_t dot = name.find_last_of("./");
    std::string extension = dot == std::string::npos ? "" : name.substr(dot);
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}

GreyImage MakeGreyImage(const std::string& path, std::int64_t cols, std::int64_t rows, int bitsPerPel) {
    if (cols < 1 || rows < 1 || cols > kLargestSide || rows > kLargestSide) {
        FailFile(path, Format("%lld x %lld pels; an image has 1 to %lld columns and rows",
                              static_cast<long long>(cols), static_cast<long long>(rows),
                              static_cast<long long>(kLargestSide)));
    }
    GreyImage image;
    image.cols = static_cast<std::int32_t>(cols);
    image.rows = static_cast<std::int32_t>(rows);
    image.bitsPerPel = bitsPerPel;
    image.pels.resize(static_cast<std::size_t>(cols * rows));
    return image;
}

}  // namespace cli

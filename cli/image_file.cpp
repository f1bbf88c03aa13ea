#include "image_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "failure.h"
#include "text.h"

namespace cli {
namespace {

using Writer = void (*)(const std::string&, const std::string&, const GreyImage&);

Writer FindWriter(const std::string& name) {
    if (HasExtension(name, {".png"})) return WritePng;
    if (HasExtension(name, {".tif", ".tiff"})) return WriteTiff;
    if (HasExtension(name, {".pgm"})) return WritePgm;
    FailUsage(name + ": an image file is called .png, .tif, .tiff or .pgm");
}

}  // namespace

GreyImage ReadImage(const std::string& path) {
    std::FILE* const file = std::fopen(path.c_str(), "rb");
    if (!file) FailFile(path, std::strerror(errno));
    unsigned char magic[8] = {};
    errno = 0;
    const std::size_t count = std::fread(magic, 1, sizeof magic, file);
    const int error = std::ferror(file) ? errno : 0;
    std::fclose(file);
    if (error != 0) FailFile(path, std::strerror(error));

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
    FindWriter(name)(name, file, image);
}

void CheckImageName(const std::string& name) {
    FindWriter(name);
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

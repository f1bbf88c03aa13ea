#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <optional>
#include <vector>

#include "commands.h"
#include "failure.h"
#include "files.h"
#include "image_file.h"
#include "library.h"
#include "options.h"
#include "picture_file.h"
#include "text.h"
#include "tqimage/bitmap_files.h"
#include "tqimage/compressed_image.h"
#include "tqimage/exchange.h"
#include "tqimage/image.h"

namespace cli {
namespace {

/// `tqimage convert` as it was typed; empty texts were not given.
struct ConvertOptions {
    std::string image, output;
    HeaderOptions header;
    std::string palette, gamma, stretch;
    bool logarithmic = false;
    std::int32_t quality = -5;
};

enum class Form { kGrey, kBitmap, kJpeg, kByteString };

Form FormOf(const std::string& name) {
    if (HasExtension(name, {".bmp"})) return Form::kBitmap;
    if (HasExtension(name, {".jpg", ".jpeg"})) return Form::kJpeg;
    if (HasExtension(name, {".tqz"})) return Form::kByteString;
    if (HasExtension(name, {".png", ".tif", ".tiff", ".pgm"})) return Form::kGrey;
    FailUsage(name + ": an image file is called .png, .tif, .tiff, .pgm, .bmp, .jpg, .jpeg or .tqz");
}

/// How a bitmap shows the grey levels.
struct Display {
    std::int32_t palette = 6;
    std::string paletteText;
    double gamma = -1.0;  ///< negative: linear
    std::optional<std::array<std::int32_t, 2>> stretch;
};

Display ParseDisplay(const ConvertOptions& options) {
    struct Named {
        const char* name;
        std::int32_t code;
    };
    // The library's codes of the palettes; any that it does not know is a grey ramp.
    constexpr Named kPalettes[] = {{"none", 0},  {"white", 1}, {"false-white", 2}, {"red", 3},
                                   {"green", 4}, {"blue", 5},  {"grey", 6},        {"false", kFalseColours}};
    constexpr std::int32_t kPaletteFromText = -2;
    constexpr char kFile[] = "file:";
    Display display;
    const std::string& palette = options.palette;
    const auto* const named = std::find_if(std::begin(kPalettes), std::end(kPalettes),
                                           [&](const Named& p) { return palette == p.name; });
    if (named != std::end(kPalettes)) {
        display.palette = named->code;
    } else if (palette.rfind(kFile, 0) == 0) {
        display.palette = kPaletteFromText;
        display.paletteText = ReadFile(palette.substr(sizeof kFile - 1));
    } else if (!palette.empty()) {
        FailUsage("--palette is grey, none, white, false, false-white, red, green, blue or file:NAME, not " +
                  palette);
    }
    if (!options.gamma.empty()) {
        const auto gamma = ParseReal(options.gamma);
        if (!gamma || !(*gamma > 0.0)) FailUsage("--gamma is a number above 0, not " + options.gamma);
        display.gamma = *gamma;
    }
    if (options.stretch.empty()) {
        if (options.logarithmic) FailUsage("--log needs --stretch");
        return display;
    }
    if (!options.gamma.empty()) FailUsage("--gamma and --stretch exclude each other");
    display.stretch = ParsePair("--stretch", options.stretch, 0);
    if (display.stretch->front() >= display.stretch->back())
        FailUsage("--stretch goes from a grey level to a higher one, not " + options.stretch);
    return display;
}

void CheckOptions(const ConvertOptions& options) {
    const bool display =
        !options.palette.empty() || !options.gamma.empty() || !options.stretch.empty() || options.logarithmic;
    if (FormOf(options.output) != Form::kBitmap && display)
        FailUsage("--palette, --gamma, --stretch and --log shape a .bmp only");
    if (options.quality < -9 || options.quality > 255) FailUsage("--quality is -9 to 255");
}

/// The header of an image that brings none. 8-bit levels keep their numbers in every form; deeper ones fill
/// the range of a bitmap.
TqImageHeader HeaderFor(const ConvertOptions& options, std::int32_t cols, std::int32_t rows, bool bytes,
                        std::uint16_t largest) {
    TqImageHeader header = MakeHeader(FindHeader(options.image, options.header), cols, rows);
    header.MaxPelValue = bytes ? 255.0f : static_cast<float>(std::max<std::uint16_t>(largest, 1));
    return header;
}

std::unique_ptr<HostImage> ReadGrey(const ConvertOptions& options) {
    const GreyImage grey = ReadImage(options.image);
    const std::uint16_t largest = *std::max_element(grey.pels.begin(), grey.pels.end());
    return std::make_unique<HostImage>(
        grey, HeaderFor(options, grey.cols, grey.rows, grey.bitsPerPel == 8, largest));
}

/// BMP and JPEG files: `read` gives an image of bytes.
template <class Read>
std::unique_ptr<HostImage> ReadBytes(const ConvertOptions& options, const char* reason, Read&& read) {
    auto image = std::make_unique<HostImage>(1, 1);
    const TqImageHeader none{};
    if (read(none, image->Address()) != 0) FailFile(options.image, reason);
    const TqImageHeader made = image->Header();
    image->SetHeader(HeaderFor(options, made.PelCols, made.PelRows, true, 0));
    return image;
}

std::unique_ptr<HostImage> ReadByteString(const ConvertOptions& options, const std::string& bytes) {
    // The stream does not tell its length: a block of a few megabytes, or else room for the largest image.
    constexpr std::uint32_t kLargestBlock = sizeof(TqImageHeader) + 2 * kLargestSide * kLargestSide;
    const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const auto length = static_cast<std::uint32_t>(bytes.size());
    void* block = nullptr;
    if (tqStringToHandle(data, length, &block, 1) != 0 &&
        tqStringToHandle2(data, length, &block, kLargestBlock, 1) != 0) {
        FailFile(options.image, "damaged byte string");
    }
    auto image = std::make_unique<HostImage>(1, 1);
    tqImageFree(image->Address());
    *image->Address() = static_cast<TqImage*>(block);
    TqImageHeader header = *static_cast<const TqImageHeader*>(block);
    const auto valid = [](std::int32_t side) { return side >= 1 && side <= kLargestSide; };
    if (!valid(header.PelCols) || !valid(header.PelRows))
        FailFile(options.image, "a byte string without an image");
    Correct(header, FindHeader(options.image, options.header));
    image->SetHeader(header);
    return image;
}

/// Any form, told apart by its first bytes.
std::unique_ptr<HostImage> Read(const ConvertOptions& options) {
    const std::string bytes = ReadFile(options.image);
    const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
    if (bytes.rfind("BM", 0) == 0) {
        return ReadBytes(options, "damaged BMP file", [&](const TqImageHeader& none, TqImage** image) {
            return tqDiskBmpToImage(options.image.c_str(), &none, image);
        });
    }
    if (bytes.rfind("\xff\xd8", 0) == 0) {
        return ReadBytes(
            options, "not a complete grey JPEG file", [&](const TqImageHeader& none, TqImage** image) {
                return tqDecompressImage(data, static_cast<std::uint32_t>(bytes.size()), &none, image);
            });
    }
    // The first byte of a zlib stream; with the second it makes a multiple of 31.
    if (bytes.size() > 1 && data[0] == 0x78 && (data[0] * 256 + data[1]) % 31 == 0)
        return ReadByteString(options, bytes);
    return ReadGrey(options);
}

void WriteBitmap(const Display& display, bool logarithmic, HostImage& image, const OutputFile& file) {
    TqLeadBitmap bitmap{};
    double scale = 0.0;
    const char* const text = display.paletteText.c_str();
    const std::int32_t status =
        display.stretch
            ? tqImageToLeadBmpScale(&bitmap, &scale, image.Get(), text, display.palette,
                                    display.stretch->front(), display.stretch->back(), logarithmic,
                                    display.gamma)
            : tqImageToLeadBmp0(&bitmap, &scale, image.Get(), text, display.palette, display.gamma);
    Require(status, file.Path(), "making the bitmap");
    WriteLeadBitmap(file.Path(), file.WorkingPath(), bitmap);
}

void WriteJpeg(std::int32_t quality, HostImage& image, OutputFile& file) {
    constexpr std::int32_t kTooSmall = -4;
    std::uint32_t length = 0;
    double scale = 0.0;
    std::int32_t status = tqCompressImage(image.Get(), nullptr, &length, &scale, 0, 0, quality);
    std::vector<std::uint8_t> bytes(length);
    if (status == kTooSmall)
        status = tqCompressImage(image.Get(), bytes.data(), &length, &scale, length, 0, quality);
    Require(status, file.Path(), "compressing");
    file.Write({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void WriteByteString(const HostImage& image, OutputFile& file) {
    const TqImageHeader header = image.Header();
    const std::size_t block = sizeof header + 2 * static_cast<std::size_t>(header.PelCols) *
                                                  static_cast<std::size_t>(header.PelRows);
    // What deflate adds to data that it cannot shorten is far below a thousandth.
    std::vector<std::uint8_t> bytes(block + block / 1000 + 64);
    std::uint32_t length = 0;
    Require(tqHandleToString(image.Get(), bytes.data(), &length, static_cast<std::uint32_t>(bytes.size()), 1),
            file.Path(), "compressing");
    file.Write({reinterpret_cast<const char*>(bytes.data()), length});
}

void Run(const ConvertOptions& options) {
    CheckOptions(options);
    const Display display = ParseDisplay(options);
    const std::unique_ptr<HostImage> image = Read(options);
    OutputFile file(options.output);
    switch (FormOf(options.output)) {
        case Form::kGrey:
            WriteImage(file.Path(), file.WorkingPath(), ToGreyImage(*image));
            break;
        case Form::kBitmap:
            WriteBitmap(display, options.logarithmic, *image, file);
            break;
        case Form::kJpeg:
            WriteJpeg(options.quality, *image, file);
            break;
        case Form::kByteString:
            WriteByteString(*image, file);
            break;
    }
    file.Commit();
}

}  // namespace

void AddConvert(CLI::App& app) {
    const auto typed = std::make_shared<ConvertOptions>();
    ConvertOptions& options = *typed;
    CLI::App& command = *app.add_subcommand(
        "convert", "Convert between PNG, TIFF, PGM, BMP, grey JPEG and the library's byte strings (.tqz)");
    command.add_option("IMAGE", options.image, "Image of any of these forms")->required();
    command
        .add_option("-o,--output", options.output,
                    "File to write: .png, .tif, .tiff or .pgm (16 bits), .bmp, .jpg or .jpeg (8 bits), .tqz "
                    "(with header)")
        ->required();
    AddHeader(command, options.header);
    const char* const bitmap =
        "BMP (8-bit levels keep their numbers, deeper ones fill the range up to the largest)";
    command
        .add_option("--palette", options.palette,
                    "grey, none, white, false, false-white, red, green, blue, or file:NAME for a text (grey)")
        ->group(bitmap);
    command.add_option("--gamma", options.gamma, "Exponent of the tone curve, 1 for a screen (linear)")
        ->group(bitmap);
    command.add_option("--stretch", options.stretch, "LOW,HIGH: grey levels of byte 1 and byte 255")
        ->group(bitmap);
    command.add_flag("--log", options.logarithmic, "Stretch logarithmically")->group(bitmap);
    command.add_option("--quality", options.quality, "2 (finest) to 255, or -1 (finest) to -9")
        ->capture_default_str()
        ->group("JPEG");
    command.callback([typed] { Run(*typed); });
}

}  // namespace cli

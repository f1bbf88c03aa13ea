#include <cstddef>
#include <cstdint>
#include <string>

#include "inputs.h"
#include "tqimage/bitmap.h"

/// The text of a palette, up to its first 0 as hosts pass it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::int32_t kPaletteFromText = -2;
    // Exactly as long as the text, so that a byte read behind its end is found.
    const std::string text(reinterpret_cast<const char*>(data), size);
    TqImageHeader header{};
    header.PelCols = header.PelRows = 1;
    TqImage* image = nullptr;
    tqCreateImage(&header, &image);
    TqLeadBitmap bitmap{};
    double scale = 0.0;
    tqImageToLeadBmp0(&bitmap, &scale, image, text.c_str(), kPaletteFromText, 1.0);
    tqFreeLeadBmp(&bitmap);
    tqImageFree(&image);
    return 0;
}

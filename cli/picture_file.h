#pragma once

#include <array>
#include <string>

#include "library.h"
#include "tqimage/bitmap.h"

namespace cli {

// Pictures are shown, not measured: their levels are what drives a display, without any tone curve.

/// Writes a grey picture under the form that name's extension tells: .bmp with 8 bits, else as WriteImage.
void WritePicture(const std::string& name, const std::string& file, const HostImage& picture);
/// Writes a picture of three planes of one size, red, green and blue, with 8 bits each: .png, .tif, .tiff or
/// .bmp.
void WritePicture(const std::string& name, const std::string& file,
                  const std::array<const HostImage*, 3>& planes);

/// The library's code of the false-colour palette that starts dark.
inline constexpr std::int32_t kFalseColours = -1;

/// Writes a bitmap that the library made as a BMP file, and releases it.
void WriteLeadBitmap(const std::string& name, const std::string& file, TqLeadBitmap& bitmap);

/// Refuses, as a usage error, a name that WritePicture knows no form for.
void CheckPictureName(const std::string& name, bool colour);

}  // namespace cli

#pragma once

#include <array>
#include <string>

#include "library.h"

namespace cli {

// Pictures are shown, not measured: their levels are what drives a display, without any tone curve.

/// Writes a grey picture under the form that name's extension tells: .bmp with 8 bits, else as WriteImage.
void WritePicture(const std::string& name, const std::string& file, const HostImage& picture);
/// Writes a picture of three planes of one size, red, green and blue, with 8 bits each: .png, .tif, .tiff or
/// .bmp.
void WritePicture(const std::string& name, const std::string& file,
                  const std::array<const HostImage*, 3>& planes);

/// Refuses, as a usage error, a name that WritePicture knows no form for.
void CheckPictureName(const std::string& name, bool colour);

}  // namespace cli

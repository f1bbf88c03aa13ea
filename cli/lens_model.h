#pragma once

#include <array>
#include <optional>
#include <string>

#include "lens_map.h"
#include "tqimage/base.h"

namespace cli {

/// What the file holds, for the help.
extern const char kLensModelForm[];

/// Positions of the lens's two rings, between the calibrated ones, too.
using LensSetting = std::array<double, 2>;

/// The map of a lens whose coefficients stand in a JSON file, for the sensor of an image with this header.
/// Without a setting the file's outer model counts.
LensMap ReadLensModel(const std::string& path, const std::optional<LensSetting>& setting,
                      const TqImageHeader& header);

}  // namespace cli

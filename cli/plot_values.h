#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "library.h"
#include "region_argument.h"

namespace cli {

/// How angles off the axis lie in an image; the library's codes.
enum class LensProjection { kFlat = 0, kAngle = 1, kSine = 2 };

/// The image over azimuth (columns) and angle off the axis (rows), as intensity or grey levels.
struct PolarForm {
    double maxAngle = 0.0;  ///< degrees
    LensProjection projection = LensProjection::kFlat;
    bool grey = false;
};
void MakePolar(const HostImage& image, const std::string& name, std::array<std::int32_t, 2> size,
               const PolarForm& form, HostImage& polar);

/// The means of the columns or rows of a rectangle, grey levels.
std::vector<double> ColumnMeans(const HostImage& image, const std::string& name, const Region& area);
std::vector<double> RowMeans(const HostImage& image, const std::string& name, const Region& area);
/// Pels of each grey level from 0 to the largest.
std::vector<double> Histogram(const HostImage& image, const std::string& name);
/// What the polar form holds around the axis at its largest angle, one value a degree: candela or grey
/// levels; NaN where there is none.
std::vector<double> AroundTheAxis(const HostImage& image, const std::string& name, const PolarForm& form);

}  // namespace cli

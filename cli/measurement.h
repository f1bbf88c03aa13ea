#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "library.h"
#include "photometric_header.h"
#include "progress.h"
#include "quantity.h"
#include "region_argument.h"

namespace cli {

struct MeasuringOptions {
    std::uint32_t angleMode = 0;
    /// Width and height of the spot with which the brightest direction of a rectangle is searched.
    std::array<std::int32_t, 2> spot{1, 1};
};

struct Measurement {
    Region region;
    Figures figures;
};

/// Measures every region that the header allows figures for.
std::vector<Measurement> MeasureRegions(const HostImage& image, const PhotometricHeader& header,
                                        const std::vector<Region>& regions, const MeasuringOptions& options,
                                        const Progress& progress);

/// What the two angles of a mode are called.
std::array<const char*, 2> AngleNames(std::uint32_t mode);

}  // namespace cli

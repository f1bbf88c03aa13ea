#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "geometry/distortion_map.h"
#include "geometry/homography.h"

namespace tq {

/// The distortion of a lens in one setting, as Brown described it in 1971.
struct LensModel {
    enum Field : std::size_t { kCenterCol, kCenterRow, kRadius, kK1, kK2, kK3, kP1, kP2, kScale, kFields };
    std::array<double, kFields> fields{};

    double operator[](Field field) const noexcept { return fields[field]; }

    /// False for a model that would fold an image of cols x rows: every field must be finite, radius and
    /// scale positive, and the distorted radius must grow up to the farthest corner.
    bool IsUsable(std::int32_t cols, std::int32_t rows) const noexcept;

    PlanePoint SourceOf(std::int32_t col, std::int32_t row) const noexcept;
};

}  // namespace tq

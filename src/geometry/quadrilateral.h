#pragma once

#include <cstdint>
#include <optional>

#include "core/image_view.h"
#include "geometry/homography.h"

namespace tq {

/// True for four corners in their order, clockwise as displayed, of a convex quadrilateral that is not
/// narrower than a pel.
bool IsConvex(const Quadrilateral& corners) noexcept;

/// The grey half-way between the pels above a threshold and the others; nothing when none is above.
std::optional<double> HalfLevel(const ConstImageView& image, std::int32_t threshold) noexcept;

/// The corners of a bright screen: its borders are the places where rows and columns cross `level`, four
/// lines are fitted to them and intersected. Nothing when a border is not seen.
std::optional<Quadrilateral> FindCorners(const ConstImageView& image, double level);

}  // namespace tq

#pragma once

#include <array>
#include <optional>
#include <span>

#include "geometry/homography.h"

namespace tq {

/// A known point in space and where the camera saw it.
struct Sighting {
    std::array<double, 3> point;
    PlanePoint seen;
};

/// Any camera with straight rays: 3 x 4 coefficients in row order, which take (x, y, z, 1) to the place in
/// the image up to the factor that the last row gives.
using CameraMatrix = std::array<double, 12>;

/// A row of the matrix times (point, w): w is 1 for a point and 0 for a direction.
double CameraRow(const CameraMatrix& camera, std::size_t row, const std::array<double, 3>& point,
                 double w) noexcept;

/// The camera that explains the sightings, six or more around the origin, with the least squares of the
/// distances in the image. Nothing when they do not determine one that has all of them before it.
std::optional<CameraMatrix> Resect(std::span<const Sighting> sightings) noexcept;

}  // namespace tq

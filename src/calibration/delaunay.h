#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "calibration/surface_points.h"

namespace tq {

/// The triangles between points, and the edges around all of them. Points on one line have no triangles; the
/// edges are then those between neighbours. A single point is an edge to itself.
struct Triangulation {
    std::vector<std::array<std::size_t, 3>> triangles;
    std::vector<std::array<std::size_t, 2>> hull;
};

/// Delaunay's triangulation. Deterministic and exact: the places are whole numbers of their quantum.
Triangulation Triangulate(const SurfacePoints& points);

}  // namespace tq

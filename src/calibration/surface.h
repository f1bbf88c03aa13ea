#pragma once

#include <cmath>
#include <cstdint>
#include <memory>

#include "calibration/surface_points.h"

namespace tq {

/// Longest side of the rectangles in which surfaces are evaluated: what is far from such a rectangle looks
/// much the same from all of its pels, and its values stay in the first-level cache.
inline constexpr std::int32_t kTileSide = 64;

/// A rectangle of pels within one of the squares of kTileSide pels that the sensor divides into.
struct SurfaceTile {
    std::int32_t col;
    std::int32_t row;
    std::int32_t cols;
    std::int32_t rows;

    /// The middle, and how far from it the pels in the corners lie.
    double MiddleCol() const noexcept { return col + (cols - 1) / 2.0; }
    double MiddleRow() const noexcept { return row + (rows - 1) / 2.0; }
    double Radius() const noexcept {
        const double halfCols = (cols - 1) / 2.0;
        const double halfRows = (rows - 1) / 2.0;
        return std::sqrt(halfCols * halfCols + halfRows * halfRows);
    }
};

/// A surface through, or along, scattered points.
class Surface {
  public:
    virtual ~Surface() = default;
    /// The surface at the pels of a tile, row after row. What is not finite is left to the reader. Not const:
    /// surfaces keep their buffers.
    virtual void Evaluate(const SurfaceTile& tile, double* values) = 0;
    /// How far from the surface the values may be, but for rounding; and no farther than this from now on.
    virtual double Tolerance() const noexcept { return 0.0; }
    virtual void SetTolerance(double) {}
};

/// The tolerance of surfaces before they are told another one, as a share of the largest value of their
/// points: no more than storing a value in single precision takes away.
inline constexpr double kFirstTolerance = 0x1p-24;

/// The mean of all points, weighted by the inverse squared distance (Shepard 1968).
std::unique_ptr<Surface> MakeShepardSurface(SurfacePoints points);
/// The same of the twelve nearest points, with weights that fall to 0 at the thirteenth (Franke and Little).
std::unique_ptr<Surface> MakeLocalShepardSurface(SurfacePoints points);
/// The polynomial of least squares.
std::unique_ptr<Surface> MakePolynomialSurface(const SurfacePoints& points);
/// The surface of least bending through the points (Duchon 1977).
std::unique_ptr<Surface> MakeThinPlateSurface(SurfacePoints points);
/// The polynomial, and the least bending of what it leaves.
std::unique_ptr<Surface> MakePolynomialThinPlateSurface(SurfacePoints points);
/// Linear on the triangles between the points.
std::unique_ptr<Surface> MakeTriangulatedSurface(const SurfacePoints& points);

}  // namespace tq

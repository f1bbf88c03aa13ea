#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "geometry/homography.h"
#include "tqimage/projection.h"

namespace tq {

/// Metres; x to the right, y upward, z toward the camera that looks straight at the target.
struct Vector {
    double x;
    double y;
    double z;
};

/// A camera with a pinhole.
class PinholeCamera {
  public:
    explicit PinholeCamera(const TqProjection& projection);

    const Vector& Position() const noexcept { return position_; }
    /// Where a point appears, pels; nothing for one that is not before the camera.
    std::optional<PlanePoint> Project(const Vector& point) const noexcept;

  private:
    Vector position_;
    Vector right_;
    Vector up_;
    Vector forward_;
    double focalLength_;
    PlanePoint principal_;
};

enum class Surface { kPlane, kCylinder, kSphere };

/// Nothing for a number that names no surface.
std::optional<Surface> SurfaceNamed(double number) noexcept;

/// The surface of a target, unrolled: a point and the direction out of the surface for every pel of a result.
/// What depends on the column or the row only is computed once, for the sines are costly.
class TargetSurface {
  public:
    TargetSurface(const TqProjection& projection, Surface surface, std::int32_t cols, std::int32_t rows);

    struct Spot {
        Vector point;
        Vector normal;
    };
    /// Nothing beyond half way around the surface.
    std::optional<Spot> At(std::int32_t col, std::int32_t row) const noexcept;

  private:
    /// Sine and cosine of the angle on a curved axis; on a straight one the length and 1.
    struct Step {
        double sine;
        double cosine;
        double length;
        bool exists;
    };
    static Step Bend(double length, double radius, double farthest);

    std::vector<Step> across_;
    std::vector<Step> down_;
    Surface surface_;
    double radius_;
};

}  // namespace tq

#include "geometry/projection_model.h"

#include <cmath>
#include <cstddef>
#include <numbers>

#include "core/portable_math.h"

namespace tq {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kRadiansPerDegree = kPi / 180.0;

double Dot(const Vector& a, const Vector& b) noexcept {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector Minus(const Vector& a, const Vector& b) noexcept {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

Vector Cross(const Vector& a, const Vector& b) noexcept {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// a cos + b sin
Vector Blend(const Vector& a, double cosine, const Vector& b, double sine) noexcept {
    return {a.x * cosine + b.x * sine, a.y * cosine + b.y * sine, a.z * cosine + b.z * sine};
}

}  // namespace

PinholeCamera::PinholeCamera(const TqProjection& projection)
    : position_{projection.CameraX, projection.CameraY, projection.CameraZ},
      focalLength_(projection.FocalLength),
      principal_{projection.PrincipalCol, projection.PrincipalRow} {
    const double yaw = projection.Yaw * kRadiansPerDegree;
    const double pitch = projection.Pitch * kRadiansPerDegree;
    const double roll = projection.Roll * kRadiansPerDegree;
    const double level = portable::Cos(pitch);
    forward_ = {portable::Sin(yaw) * level, portable::Sin(pitch), -portable::Cos(yaw) * level};
    const Vector right{portable::Cos(yaw), 0.0, portable::Sin(yaw)};
    const Vector up = Cross(right, forward_);
    right_ = Blend(right, portable::Cos(roll), up, -portable::Sin(roll));
    up_ = Blend(up, portable::Cos(roll), right, portable::Sin(roll));
}

std::optional<PlanePoint> PinholeCamera::Project(const Vector& point) const noexcept {
    const Vector ray = Minus(point, position_);
    const double depth = Dot(ray, forward_);
    if (!(depth > 0.0)) return std::nullopt;
    return PlanePoint{principal_.col + focalLength_ * Dot(ray, right_) / depth,
                      principal_.row - focalLength_ * Dot(ray, up_) / depth};
}

TargetSurface::Step TargetSurface::Bend(double length, double radius, double farthest) {
    const double angle = length / radius;
    if (!(std::abs(angle) <= farthest)) return {0.0, 1.0, length, false};
    return {portable::Sin(angle), portable::Cos(angle), length, true};
}

std::optional<Surface> SurfaceNamed(double number) noexcept {
    if (number == 0.0) return Surface::kPlane;
    if (number == 1.0) return Surface::kCylinder;
    if (number == 2.0) return Surface::kSphere;
    return std::nullopt;
}

TargetSurface::TargetSurface(const TqProjection& projection, Surface surface, std::int32_t cols,
                             std::int32_t rows)
    : surface_(surface), radius_(projection.Radius) {
    across_.reserve(static_cast<std::size_t>(cols));
    down_.reserve(static_cast<std::size_t>(rows));
    for (std::int32_t col = 0; col < cols; ++col) {
        const double length = (col - projection.CenterCol) / projection.PelsPerMeterX;
        across_.push_back(surface_ == Surface::kPlane ? Step{0.0, 1.0, length, true}
                                                      : Bend(length, radius_, kPi));
    }
    for (std::int32_t row = 0; row < rows; ++row) {
        const double length = (projection.CenterRow - row) / projection.PelsPerMeterY;
        down_.push_back(surface_ == Surface::kSphere ? Bend(length, radius_, kPi / 2.0)
                                                     : Step{0.0, 1.0, length, true});
    }
}

std::optional<TargetSurface::Spot> TargetSurface::At(std::int32_t col, std::int32_t row) const noexcept {
    const Step& across = across_[static_cast<std::size_t>(col)];
    const Step& down = down_[static_cast<std::size_t>(row)];
    if (!across.exists || !down.exists) return std::nullopt;
    if (surface_ == Surface::kPlane) return Spot{{across.length, down.length, 0.0}, {0.0, 0.0, 1.0}};
    const Vector normal{across.sine * down.cosine, down.sine, across.cosine * down.cosine};
    const double height = surface_ == Surface::kSphere ? radius_ * down.sine : down.length;
    // The surface touches the plane z = 0 in the middle of the result.
    return Spot{{radius_ * normal.x, height, radius_ * (normal.z - 1.0)}, normal};
}

}  // namespace tq

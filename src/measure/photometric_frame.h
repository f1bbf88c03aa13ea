#pragma once

#include <cmath>
#include <cstdint>

#include "kernels/polar_ring.h"
#include "tqimage/base.h"

namespace tq {

/// Where a direction meets the target, metres from the optical axis: x to the right, y upward.
struct TargetPoint {
    double x;
    double y;

    double SquaredRho() const noexcept { return x * x + y * y; }
};

/// The geometry of a measurement: pels on a flat target, seen from a source on the axis. The header's single
/// precision fields are widened once; everything is computed in double.
class PhotometricFrame {
  public:
    explicit PhotometricFrame(const TqImageHeader& header) noexcept
        : centerCol_(header.CenterCol),
          centerRow_(header.CenterRow),
          pelsPerMeterX_(header.PelsPerMeterX),
          pelsPerMeterY_(header.PelsPerMeterY),
          distance_(header.SourceDistance),
          luxPerGrey_(header.LuxPerGrey) {}

    /// Most figures refuse a scale only where it is 0 or below, and are NaN where it is; hosts rely on both.
    bool HasScale() const noexcept { return !(pelsPerMeterX_ <= 0.0 || pelsPerMeterY_ <= 0.0); }
    bool HasPositiveScale() const noexcept { return pelsPerMeterX_ > 0.0 && pelsPerMeterY_ > 0.0; }
    bool HasScaleAndDistance() const noexcept { return HasScale() && !(distance_ <= 0.0); }

    double Distance() const noexcept { return distance_; }
    double LuxPerGrey() const noexcept { return luxPerGrey_; }
    double PelsPerSquareMeter() const noexcept { return pelsPerMeterY_ * pelsPerMeterX_; }

    TargetPoint PointOf(std::int32_t col, std::int32_t row) const noexcept {
        return {(col - centerCol_) / pelsPerMeterX_, (centerRow_ - row) / pelsPerMeterY_};
    }
    double ColumnOf(const TargetPoint& point) const noexcept { return pelsPerMeterX_ * point.x + centerCol_; }
    double RowOf(const TargetPoint& point) const noexcept { return centerRow_ - point.y * pelsPerMeterY_; }
    double CenterCol() const noexcept { return centerCol_; }
    /// Where ColumnOf and RowOf put a circle about the axis.
    kernels::RingPlaces Circle(double radius) const noexcept {
        return {radius, centerCol_, centerRow_, pelsPerMeterX_, pelsPerMeterY_};
    }

    double SquaredRange(const TargetPoint& point) const noexcept {
        return point.SquaredRho() + distance_ * distance_;
    }

    /// Intensity toward a point of illuminance lux: E R^2 / cos(theta).
    double Intensity(double lux, const TargetPoint& point) const noexcept {
        const double squaredRange = SquaredRange(point);
        return lux * squaredRange / Cosine(std::sqrt(squaredRange));
    }

    /// cos(theta) for theta = atan(rho / D), as D / R: the same number without the rounding of the angle, and
    /// with square root and division only the same bits on every build.
    double Cosine(double range) const noexcept {
        // Headers without a distance still rank directions; theta is then pi/2, whose double has this cosine.
        constexpr double kCosineOfHalfPi = 6.123233995736766e-17;
        return distance_ == 0.0 ? kCosineOfHalfPi : std::abs(distance_) / range;
    }

  private:
    double centerCol_;
    double centerRow_;
    double pelsPerMeterX_;
    double pelsPerMeterY_;
    double distance_;
    double luxPerGrey_;
};

/// The co-ordinate systems that hosts choose for the two angles of a direction.
enum AngleMode : std::uint32_t {
    kAxisPlanes = 0,
    kVerticalOutOfPlane = 1,
    kHorizontalOutOfPlane = 2,
    kPolar = 3
};

/// Writes the two angles of a point in radians; other modes leave the outputs as they are.
void WriteAngles(const PhotometricFrame& frame, const TargetPoint& point, std::uint32_t mode, double* first,
                 double* second);

/// theta = atan(rho / D)
double OffAxisAngle(const PhotometricFrame& frame, const TargetPoint& point);

/// The block that is measured when a host gives no size along an axis: 0.9 inch at 39.37 inches a metre, but
/// at most a tenth of the image and at least one pel. Given or derived, it is limited to the image.
std::int32_t MeasuringBlock(std::int32_t asked, double pelsPerMeter, std::int32_t pels) noexcept;

}  // namespace tq

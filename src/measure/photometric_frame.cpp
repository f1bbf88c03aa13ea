#include "measure/photometric_frame.h"

#include <algorithm>

#include "core/numerics.h"
#include "core/portable_math.h"

namespace tq {
namespace {

// Nine decimals, as in every report these angles have been compared with.
constexpr double kHalfPi = 1.570796327;
constexpr double kPi = 3.141592654;
constexpr double kThreeHalvesPi = 4.712388981;
constexpr double kTwoPi = 6.283185308;

double Azimuth(const TargetPoint& point) {
    if (point.x == 0.0) return point.y >= 0.0 ? kHalfPi : kThreeHalvesPi;
    const double angle = portable::Atan(point.y / point.x);
    if (point.x < 0.0) return angle + kPi;
    return point.y < 0.0 ? angle + kTwoPi : angle;
}

}  // namespace

void WriteAngles(const PhotometricFrame& frame, const TargetPoint& point, std::uint32_t mode, double* first,
                 double* second) {
    const double distance = frame.Distance();
    const double range = std::sqrt(frame.SquaredRange(point));
    switch (mode) {
        case kAxisPlanes:
            *first = portable::Atan(point.x / distance);
            *second = portable::Atan(point.y / distance);
            break;
        case kVerticalOutOfPlane:
            *first = portable::Atan(point.x / distance);
            *second = portable::Asin(point.y / range);
            break;
        case kHorizontalOutOfPlane:
            *first = portable::Asin(point.x / range);
            *second = portable::Atan(point.y / distance);
            break;
        case kPolar:
            *first = Azimuth(point);
            *second = portable::Acos(distance / range);
            break;
        default:
            break;
    }
}

double OffAxisAngle(const PhotometricFrame& frame, const TargetPoint& point) {
    return portable::Atan(std::sqrt(point.SquaredRho()) / frame.Distance());
}

std::int32_t MeasuringBlock(std::int32_t asked, double pelsPerMeter, std::int32_t pels) noexcept {
    if (asked == 0) {
        asked = std::max(TruncToInt32(std::min(pelsPerMeter * 0.9 / 39.37, pels * 0.1)), 1);
    }
    return std::min(asked, pels);
}

}  // namespace tq

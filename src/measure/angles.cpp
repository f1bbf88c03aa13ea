#include <algorithm>
#include <cstdint>
#include <limits>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/portable_math.h"
#include "measure/photometric_frame.h"
#include "tqimage/photometry.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoScaleOrDistance = -2;
constexpr std::int32_t kUnknownAngleMode = -3;

TargetPoint PointAtAngles(double distance, double first, double second, std::uint32_t mode) {
    switch (mode) {
        case kAxisPlanes:
            return {distance * portable::Tan(first), distance * portable::Tan(second)};
        case kVerticalOutOfPlane:
            return {distance * portable::Tan(first), distance * portable::Tan(second) / portable::Cos(first)};
        case kHorizontalOutOfPlane:
            return {distance * portable::Tan(first) / portable::Cos(second),
                    distance * portable::Tan(second)};
        default:
            return {distance * portable::Tan(second) * portable::Cos(first),
                    distance * portable::Tan(second) * portable::Sin(first)};
    }
}

/// Angles near 90 degrees lie beyond any pel index; they stay on their side of the image.
std::int32_t SaturateToInt32(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    return TruncToInt32(std::clamp<double>(value, Limits::min(), Limits::max()));
}

/// The checks that both directions of the conversion make, in this order.
std::int32_t CheckAngleCall(const ConstImageView& view, std::uint32_t mode) {
    if (!view) return kInvalidImage;
    if (!PhotometricFrame(*view.header).HasScaleAndDistance()) return kNoScaleOrDistance;
    return mode > kPolar ? kUnknownAngleMode : 0;
}

}  // namespace

std::int32_t TQ_CALL tqPelToAngle(const TqImage* image, std::int32_t column, std::int32_t row,
                                  double* firstAngle, double* secondAngle, std::uint32_t angleMode) {
    const ConstImageView view = LocateImage(image);
    if (const std::int32_t status = CheckAngleCall(view, angleMode); status != 0) return status;
    const PhotometricFrame frame(*view.header);
    WriteAngles(frame, frame.PointOf(column, row), angleMode, firstAngle, secondAngle);
    return 0;
}

std::int32_t TQ_CALL tqAngleToPel(const TqImage* image, std::int32_t* column, std::int32_t* row,
                                  double firstAngle, double secondAngle, std::uint32_t angleMode) {
    const ConstImageView view = LocateImage(image);
    if (const std::int32_t status = CheckAngleCall(view, angleMode); status != 0) return status;
    const PhotometricFrame frame(*view.header);
    const TargetPoint point = PointAtAngles(frame.Distance(), firstAngle, secondAngle, angleMode);
    *column = SaturateToInt32(frame.ColumnOf(point));
    *row = SaturateToInt32(frame.RowOf(point));
    return 0;
}

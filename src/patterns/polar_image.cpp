#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/numerics.h"
#include "core/portable_math.h"
#include "geometry/bilinear.h"
#include "measure/photometric_frame.h"
#include "patterns/azimuth.h"
#include "patterns/pattern_image.h"
#include "tqimage/plots.h"

namespace tq {
namespace {

constexpr std::int32_t kBadArgument = -1;
constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;
constexpr double kRightAngle = 90.0;

enum Projection : std::int32_t { kFlatTarget = 0, kAngle = 1, kSine = 2 };
enum Quantity : std::int32_t { kGrey = 0, kIntensity = 1 };

/// Results without a grey scale of their own have their largest value here.
constexpr double kLargestIntensity = 65000.0;

bool IsAngle(double degrees, std::int32_t projection) noexcept {
    return degrees > 0.0 && degrees <= (projection == kAngle ? 2.0 * kRightAngle : kRightAngle);
}

/// What a row of the polar image needs of its angle off the axis.
struct Ring {
    double radius;       ///< on the target, metres
    double candela;      ///< of a grey level
    bool exists = true;  ///< false where the flat target has no such direction
};

Ring MakeRing(const PhotometricFrame& frame, double degrees, std::int32_t projection) {
    const double radians = degrees * kRadiansPerDegree;
    const double distance = frame.Distance();
    const double cosine = degrees < kRightAngle ? portable::Cos(radians) : 0.0;
    // R^2 / cos(angle) with R = D / cos(angle); behind the target plane nothing arrives.
    const double candela =
        cosine > 0.0 ? frame.LuxPerGrey() * (distance * distance / (cosine * cosine * cosine)) : 0.0;
    if (projection == kAngle) return {distance * radians, candela};
    const double sine = portable::Sin(radians);
    if (projection == kSine) return {distance * sine, candela};
    if (cosine == 0.0) return {0.0, 0.0, false};
    return {distance * (sine / cosine), candela};
}

/// The grey levels of an image in polar co-ordinates.
class PolarSampler {
  public:
    PolarSampler(const ConstImageView& image, const PhotometricFrame& frame)
        : image_(image), frame_(frame), sampler_(image) {}

    /// 0.0 outside the image.
    double Grey(const Ring& ring, const Direction& direction) const noexcept {
        const TargetPoint point{ring.radius * direction.cosine, ring.radius * direction.sine};
        const double col = frame_.ColumnOf(point);
        const double row = frame_.RowOf(point);
        const bool inside =
            ring.exists && col >= 0.0 && row >= 0.0 && col <= image_.cols - 1 && row <= image_.rows - 1;
        return inside ? sampler_.AnyPlace(col, row) : 0.0;
    }

  private:
    ConstImageView image_;
    PhotometricFrame frame_;
    BilinearSampler sampler_;
};

/// The polar image as numbers, before they are scaled to pels.
class PolarField {
  public:
    PolarField(const ConstImageView& image, std::int32_t cols, std::int32_t rows, double maxAngle,
               std::int32_t projection)
        : sampler_(image, PhotometricFrame(*image.header)) {
        const PhotometricFrame frame(*image.header);
        const TurnParts parts(cols);
        for (std::int32_t col = 0; col < cols; ++col)
            directions_.push_back(parts[col]);
        for (std::int32_t row = 0; row < rows; ++row) {
            const double degrees = rows == 1 ? 0.0 : row * maxAngle / (rows - 1);
            rings_.push_back(MakeRing(frame, degrees, projection));
        }
    }

    /// visit(row, column, grey, candela of a grey level) for every pel. Sectors are walked one by one from
    /// the axis outward, for neighbouring rings share the cache lines of the image.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        constexpr std::int32_t kSector = 256;
        const auto cols = static_cast<std::int32_t>(directions_.size());
        const auto rows = static_cast<std::int32_t>(rings_.size());
        for (std::int32_t left = 0; left < cols; left += kSector) {
            const std::int32_t end = std::min(left + kSector, cols);
            for (std::int32_t row = 0; row < rows; ++row) {
                const Ring& ring = rings_[static_cast<std::size_t>(row)];
                for (std::int32_t col = left; col < end; ++col) {
                    const double grey = sampler_.Grey(ring, directions_[static_cast<std::size_t>(col)]);
                    visit(row, col, grey, ring.candela);
                }
            }
        }
    }

  private:
    PolarSampler sampler_;
    std::vector<Direction> directions_;
    std::vector<Ring> rings_;
};

void StoreGrey(const PolarField& field, const ImageView& out, const TqImageHeader& source) {
    field.ForEach([&](std::int32_t row, std::int32_t col, double grey, double) {
        out.At(col, row) = ClampToPel(TruncToInt32(grey + 0.5));
    });
    out.header->LuxPerGrey = source.LuxPerGrey;
}

/// The field is sampled twice, for its largest value and to store it: cheaper than an array of doubles.
void StoreIntensity(const PolarField& field, const ImageView& out) {
    double largest = 0.0;
    field.ForEach([&](std::int32_t, std::int32_t, double grey, double candela) {
        if (grey * candela > largest) largest = grey * candela;
    });
    const double scale = largest > 0.0 && std::isfinite(largest) ? kLargestIntensity / largest : 0.0;
    field.ForEach([&](std::int32_t row, std::int32_t col, double grey, double candela) {
        out.At(col, row) = ClampToPel(TruncToInt32(grey * candela * scale + 0.5));
    });
    out.header->MaxPelValue = static_cast<float>(kLargestIntensity);
    out.header->LuxPerGrey = static_cast<float>(largest / kLargestIntensity);
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCreatePolarImage(TqImage** out, const TqImage* image, std::int32_t cols,
                                        std::int32_t rows, float maxAngle, std::int32_t projection,
                                        std::int32_t quantity) {
    if (out == nullptr || !IsValidSide(cols) || !IsValidSide(rows)) return kBadArgument;
    if (projection < kFlatTarget || projection > kSine || !IsAngle(maxAngle, projection)) return kBadArgument;
    if (quantity != kGrey && quantity != kIntensity) return kBadArgument;
    const ConstImageView source = LocateImage(image);
    if (!source || !PhotometricFrame(*source.header).HasScaleAndDistance()) return kInvalidImage;
    return Guarded(kNoMemory, [&] {
        OwnedImage polar = MakeDrawnImage(cols, rows, NewPels::kUnwritten);
        const PolarField field(source, cols, rows, maxAngle, projection);
        if (quantity == kIntensity) {
            StoreIntensity(field, polar.View());
        } else {
            StoreGrey(field, polar.View(), *source.header);
        }
        CommitImage(out, std::move(polar));
        return 0;
    });
}

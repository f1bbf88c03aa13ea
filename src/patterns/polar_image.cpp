#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/image_view.h"
#include "core/numerics.h"
#include "core/portable_math.h"
#include "core/replaced_image.h"
#include "geometry/bilinear.h"
#include "kernels/polar_ring.h"
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

/// The polar image as numbers, before they are scaled to pels.
class PolarField {
  public:
    PolarField(const ConstImageView& image, std::int32_t cols, std::int32_t rows, double maxAngle,
               std::int32_t projection)
        : image_(image), frame_(*image.header), sampler_(image) {
        const TurnParts parts(cols);
        for (std::int32_t col = 0; col < cols; ++col) {
            cosines_.push_back(parts[col].cosine);
            sines_.push_back(parts[col].sine);
        }
        for (std::int32_t row = 0; row < rows; ++row) {
            const double degrees = rows == 1 ? 0.0 : row * maxAngle / (rows - 1);
            rings_.push_back(MakeRing(frame_, degrees, projection));
        }
    }

    /// visit(row, first column, number of columns, greys, candela of a grey level) for runs of pels. Sectors
    /// are walked one by one from the axis outward, for neighbouring rings share the cache lines of the
    /// image.
    template <class Visit>
    void ForEachRun(Visit&& visit) const {
        constexpr std::size_t kSector = 256;
        std::array<double, kSector> greys;
        for (std::size_t left = 0; left < cosines_.size(); left += kSector) {
            const std::size_t count = std::min(kSector, cosines_.size() - left);
            for (std::size_t row = 0; row < rings_.size(); ++row) {
                Sample(rings_[row], left, count, greys.data());
                visit(static_cast<std::int32_t>(row), left, count, greys.data(), rings_[row].candela);
            }
        }
    }

  private:
    /// 0.0 outside the image.
    void Sample(const Ring& ring, std::size_t first, std::size_t count, double* greys) const noexcept {
        if (ring.exists && image_.cols > 1 && image_.rows > 1) {
            kernels::SampleRing({image_.pels, image_.cols, image_.rows}, frame_.Circle(ring.radius),
                                &cosines_[first], &sines_[first], count, greys);
            return;
        }
        for (std::size_t i = 0; i < count; ++i)
            greys[i] = ring.exists ? SampleAt(ring, cosines_[first + i], sines_[first + i]) : 0.0;
    }

    /// In an image of one column or row, which has no cells.
    double SampleAt(const Ring& ring, double cosine, double sine) const noexcept {
        const TargetPoint point{ring.radius * cosine, ring.radius * sine};
        const double col = frame_.ColumnOf(point);
        const double row = frame_.RowOf(point);
        const bool inside = col >= 0.0 && row >= 0.0 && col <= image_.cols - 1 && row <= image_.rows - 1;
        return inside ? sampler_.AnyPlace(col, row) : 0.0;
    }

    ConstImageView image_;
    PhotometricFrame frame_;
    BilinearSampler sampler_;
    std::vector<double> cosines_;
    std::vector<double> sines_;
    std::vector<Ring> rings_;
};

void StoreGrey(const PolarField& field, const ImageView& out, const TqImageHeader& source) {
    field.ForEachRun([&](std::int32_t row, std::size_t col, std::size_t count, const double* greys, double) {
        kernels::StoreProducts(greys, 1.0, 1.0, count, out.Row(row) + col);
    });
    out.header->LuxPerGrey = source.LuxPerGrey;
}

/// The field is sampled twice, for its largest value and to store it: cheaper than an array of doubles.
void StoreIntensity(const PolarField& field, const ImageView& out) {
    double largest = 0.0;
    field.ForEachRun([&](std::int32_t, std::size_t, std::size_t count, const double* greys, double candela) {
        largest = kernels::LargestProduct(greys, candela, count, largest);
    });
    const double scale = largest > 0.0 && std::isfinite(largest) ? kLargestIntensity / largest : 0.0;
    field.ForEachRun(
        [&](std::int32_t row, std::size_t col, std::size_t count, const double* greys, double candela) {
            kernels::StoreProducts(greys, candela, scale, count, out.Row(row) + col);
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
    return ReplaceImage(out, kNoMemory, [&] {
        OwnedImage polar = MakeDrawnImage(cols, rows, NewPels::kUnwritten);
        const PolarField field(source, cols, rows, maxAngle, projection);
        if (quantity == kIntensity) {
            StoreIntensity(field, polar.View());
        } else {
            StoreGrey(field, polar.View(), *source.header);
        }
        return polar;
    });
}

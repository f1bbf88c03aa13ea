#include <algorithm>
#include <cstdint>

#include "core/numerics.h"
#include "core/portable_math.h"
#include "core/replaced_image.h"
#include "geometry/sized_image.h"
#include "kernels/rotate_row.h"
#include "tqimage/resampling.h"

using namespace tq;

namespace {

constexpr std::int32_t kInvalidImage = -2;
constexpr std::int32_t kNoMemory = -3;

/// Radians a degree, to the eight digits that rotated images on record were made with.
constexpr double kRadians = 0.017453293;

/// A turn by any angle about a place. Angles and their functions are single precision, the y axis points up.
class Rotation {
  public:
    Rotation(float degrees, float centreCol, float centreRow)
        : radians_(static_cast<float>(degrees * kRadians)),
          sine_(static_cast<float>(portable::Sin(radians_))),
          cosine_(static_cast<float>(portable::Cos(radians_))),
          centreCol_(centreCol),
          centreRow_(centreRow) {}

    struct Point {
        float x;
        float y;
    };

    /// Where a pel of the source comes to lie.
    Point Forward(std::int32_t col, std::int32_t row) const noexcept {
        const double dx = col - static_cast<double>(centreCol_);
        const double dy = -static_cast<double>(row) + centreRow_;
        return {static_cast<float>(cosine_ * dx - sine_ * dy + centreCol_),
                static_cast<float>(cosine_ * dy + sine_ * dx - centreRow_)};
    }

    /// The way back, for the rows of a result whose first pel lies at (left, top).
    kernels::RotationBack Back(float left) const {
        return {static_cast<float>(portable::Sin(-radians_)), static_cast<float>(portable::Cos(-radians_)),
                centreCol_, centreRow_, left};
    }

  private:
    float radians_;
    float sine_;
    float cosine_;
    float centreCol_;
    float centreRow_;
};

/// The box around the turned corners. Without an angle or a centre it stays inside out and has no size.
struct Box {
    float left = 100000.0f;
    float right = -100000.0f;
    float bottom = 100000.0f;
    float top = -100000.0f;

    void Add(const Rotation::Point& point) noexcept {
        if (point.x < left) left = point.x;
        if (point.x > right) right = point.x;
        if (point.y < bottom) bottom = point.y;
        if (point.y > top) top = point.y;
    }
    // One pel less than the box holds: the sizes that hosts expect of a rotated image.
    std::int32_t Cols() const noexcept { return TruncToInt32(static_cast<double>(right) - left); }
    std::int32_t Rows() const noexcept { return TruncToInt32(static_cast<double>(top) - bottom); }
};

Box BoxAround(const ConstImageView& source, const Rotation& rotation) noexcept {
    Box box;
    for (const std::int32_t col : {0, source.cols - 1}) {
        for (const std::int32_t row : {0, source.rows - 1})
            box.Add(rotation.Forward(col, row));
    }
    return box;
}

OwnedImage Rotate(const ConstImageView& source, const Rotation& rotation) {
    const Box box = BoxAround(source, rotation);
    OwnedImage result = MakeSized(source, box.Cols(), box.Rows(), NewPels::kUnwritten);
    TqImageHeader& header = result.Header();
    const Rotation::Point centre =
        rotation.Forward(TruncToInt32(header.CenterCol), TruncToInt32(header.CenterRow));
    header.CenterCol = centre.x - box.left;
    header.CenterRow = box.top - centre.y;

    const kernels::RotationBack back = rotation.Back(box.left);
    const kernels::SourcePels pels{source.pels, source.cols, source.rows};
    const ImageView out = result.View();
    for (std::int32_t row = 0; row < out.rows; ++row)
        kernels::RotateRow(pels, back, box.top - static_cast<float>(row), out.Row(row), out.cols);
    return result;
}

}  // namespace

std::int32_t TQ_CALL tqRotateImage(TqImage** image, float angle, float centreCol, float centreRow) {
    return ReplaceImage(image, kInvalidImage, kNoMemory, [&](const ConstImageView& source) {
        return Rotate(source, Rotation(angle, centreCol, centreRow));
    });
}

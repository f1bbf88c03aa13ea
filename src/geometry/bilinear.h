#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"
#include "kernels/bilinear.h"

namespace tq {

/// Bilinear sampling of one image: the one rule of every resampling, so that a grey level never depends on
/// which function took the sample. The products are in double and in the order written here.
class BilinearSampler {
  public:
    explicit BilinearSampler(const ConstImageView& image) noexcept
        : image_(image),
          lastCellCol_(std::max(image.cols - 2, 0)),
          lastCellRow_(std::max(image.rows - 2, 0)),
          next_(image.cols == 1 ? 0 : 1),
          below_(image.rows == 1 ? 0 : image.cols) {}

    /// The grey level at a place between pels; 0.0 where the place, truncated, lies outside. A place up to
    /// one pel beyond the last column or row is extrapolated from the last cell: results on record were made
    /// so.
    double AnyPlace(double col, double row) const noexcept {
        const std::int32_t i = TruncToInt32(col);
        const std::int32_t j = TruncToInt32(row);
        if (!image_.Contains(i, j)) return 0.0;
        // On an axis of one pel that pel is all there is, whatever the weight.
        return Cell(i, j, next_ == 0 ? 0.0 : col, below_ == 0 ? 0.0 : row);
    }

    /// The same for a place that the caller has clamped to 0 .. cols - 1 and 0 .. rows - 1.
    double PlaceInside(float col, float row) const noexcept {
        return Cell(TruncToInt32(col), TruncToInt32(row), col, row);
    }

  private:
    /// The last column and row belong to the cell before them.
    double Cell(std::int32_t i, std::int32_t j, double col, double row) const noexcept {
        i = std::min(i, lastCellCol_);
        j = std::min(j, lastCellRow_);
        const Pel* near = image_.Row(j) + i;
        return kernels::Blend(near, near + below_, next_, col - i, row - j);
    }

    ConstImageView image_;
    std::int32_t lastCellCol_;
    std::int32_t lastCellRow_;
    std::ptrdiff_t next_;
    std::ptrdiff_t below_;
};

/// One sample; where a whole image is resampled, make the sampler once.
inline double InterpolatePel(const ConstImageView& image, double col, double row) noexcept {
    return BilinearSampler(image).AnyPlace(col, row);
}

}  // namespace tq

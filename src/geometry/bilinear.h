#pragma once

#include "core/image_view.h"
#include "core/numerics.h"
#include "kernels/bilinear.h"

namespace tq {

/// Bilinear sampling of one image: the one rule of every resampling, so that a grey level never depends on
/// which function took the sample. The products are in double and in the order written here.
class BilinearSampler {
  public:
    explicit BilinearSampler(const ConstImageView& image) noexcept
        : image_(image), cells_(kernels::SourcePels{image.pels, image.cols, image.rows}) {}

    /// The grey level at a place between pels; 0.0 where the place, truncated, lies outside. A place up to
    /// one pel beyond the last column or row is extrapolated from the last cell: results on record were made
    /// so.
    double AnyPlace(double col, double row) const noexcept {
        if (!image_.Contains(TruncToInt32(col), TruncToInt32(row))) return 0.0;
        return cells_.At(col, row);
    }

  private:
    ConstImageView image_;
    kernels::CellSampler cells_;
};

/// One sample; where a whole image is resampled, make the sampler once.
inline double InterpolatePel(const ConstImageView& image, double col, double row) noexcept {
    return BilinearSampler(image).AnyPlace(col, row);
}

}  // namespace tq

#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "core/guard.h"
#include "core/image_block.h"
#include "core/image_view.h"
#include "core/numerics.h"

namespace tq {

/// The pels of a gradient image: magnitudes of any size come in, and their largest scales displays.
class GradientImage {
  public:
    explicit GradientImage(const ConstImageView& source)
        : image_(source, NewPels::kUnwritten), out_(image_.View()) {}

    void Set(std::int32_t col, std::int32_t row, std::int32_t magnitude) noexcept {
        largest_ = std::max(largest_, magnitude);
        out_.At(col, row) = ClampToPel(magnitude);
    }
    Pel* Row(std::int32_t row) noexcept { return out_.Row(row); }
    void Raise(std::int32_t magnitude) noexcept { largest_ = std::max(largest_, magnitude); }

    /// The image with the largest magnitude, before the cap of pels, in MaxPelValue.
    OwnedImage Finish() && {
        image_.Header().MaxPelValue = static_cast<float>(largest_);
        return std::move(image_);
    }

  private:
    OwnedImage image_;
    ImageView out_;
    std::int32_t largest_ = 0;
};

}  // namespace tq

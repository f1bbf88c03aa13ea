#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "core/image_view.h"
#include "core/numerics.h"
#include "geometry/bilinear.h"

namespace tq {

/// The grey levels of one image between its pels, by three kernels. Every place passed has been clamped to
/// 0 .. cols - 1 and 0 .. rows - 1. Each call operator returns a value that may lie outside 0 .. 65535.
class NearestKernel {
  public:
    explicit NearestKernel(const ConstImageView& image) noexcept : image_(image) {}
    double operator()(double col, double row) const noexcept {
        return image_.At(TruncToInt32(col + 0.5), TruncToInt32(row + 0.5));
    }

  private:
    ConstImageView image_;
};

class BilinearKernel {
  public:
    explicit BilinearKernel(const ConstImageView& image) noexcept : sampler_(image) {}
    double operator()(double col, double row) const noexcept { return sampler_.AnyPlace(col, row); }

  private:
    BilinearSampler sampler_;
};

/// Cubic convolution with a = -1/2, which follows a parabola exactly (Keys 1981). Pels beyond the border are
/// those of the border.
class CubicKernel {
  public:
    explicit CubicKernel(const ConstImageView& image) noexcept : image_(image) {}
    double operator()(double col, double row) const noexcept {
        const std::int32_t i = TruncToInt32(col);
        const std::int32_t j = TruncToInt32(row);
        const std::array<double, 4> across = Weights(col - i);
        const std::array<double, 4> down = Weights(row - j);
        double value = 0.0;
        for (std::int32_t y = 0; y < 4; ++y) {
            const Pel* pels = image_.Row(std::clamp(j - 1 + y, 0, image_.rows - 1));
            double line = 0.0;
            for (std::int32_t x = 0; x < 4; ++x) {
                line += across[static_cast<std::size_t>(x)] * pels[std::clamp(i - 1 + x, 0, image_.cols - 1)];
            }
            value += down[static_cast<std::size_t>(y)] * line;
        }
        return value;
    }

  private:
    /// Of the pels at -1, 0, 1 and 2 for a place at t in 0 .. 1.
    static std::array<double, 4> Weights(double t) noexcept {
        return {((-0.5 * t + 1.0) * t - 0.5) * t, (1.5 * t - 2.5) * t * t + 1.0,
                ((-1.5 * t + 2.0) * t + 0.5) * t, (0.5 * t - 0.5) * t * t};
    }

    ConstImageView image_;
};

}  // namespace tq

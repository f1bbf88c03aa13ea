#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "calibration/surface.h"

namespace tq {

/// The pels of a tile in the co-ordinates of a surface.
class TilePlaces {
  public:
    void MoveTo(const SurfaceTile& tile, const SurfaceFrame& frame) {
        const auto cols = static_cast<std::size_t>(tile.cols);
        x_.resize(cols * static_cast<std::size_t>(tile.rows));
        y_.resize(x_.size());
        for (std::size_t i = 0; i < cols; ++i)
            x_[i] = frame.X(tile.col + static_cast<double>(i));
        for (std::int32_t row = 0; row < tile.rows; ++row) {
            const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(row) * tile.cols;
            std::copy_n(x_.begin(), cols, x_.begin() + first);
            std::fill_n(y_.begin() + first, cols, frame.Y(static_cast<double>(tile.row) + row));
        }
    }
    std::size_t Count() const noexcept { return x_.size(); }
    kernels::Places All() const noexcept { return {x_.data(), y_.data(), x_.size()}; }

  private:
    std::vector<double> x_;
    std::vector<double> y_;
};

}  // namespace tq

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
        const std::size_t count = cols * static_cast<std::size_t>(tile.rows);
        x_.resize(count);
        y_.resize(count);
        for (std::size_t i = 0; i < cols; ++i)
            x_[i] = frame.X(tile.col + static_cast<double>(i));
        for (std::size_t first = 0; first < count; first += cols) {
            const auto row = static_cast<double>(first / cols);
            std::copy_n(x_.begin(), cols, x_.begin() + static_cast<std::ptrdiff_t>(first));
            std::fill_n(y_.begin() + static_cast<std::ptrdiff_t>(first), cols, frame.Y(tile.row + row));
        }
    }
    std::size_t Count() const noexcept { return x_.size(); }
    kernels::Places All() const noexcept { return {x_.data(), y_.data(), x_.size()}; }

  private:
    std::vector<double> x_;
    std::vector<double> y_;
};

}  // namespace tq

#pragma once

#include <cstddef>
#include <vector>

#include "calibration/surface.h"

namespace tq {

/// The pels of a tile in the co-ordinates of a surface.
class TilePlaces {
  public:
    void MoveTo(const SurfaceTile& tile, const SurfaceFrame& frame) {
        cols_ = static_cast<std::size_t>(tile.cols);
        const std::size_t count = cols_ * static_cast<std::size_t>(tile.rows);
        x_.resize(count);
        y_.resize(count);
        for (std::size_t i = 0; i < count; ++i) {
            x_[i] = frame.X(tile.col + static_cast<double>(i % cols_));
            y_[i] = frame.Y(tile.row + static_cast<double>(i / cols_));
        }
    }
    std::size_t Count() const noexcept { return x_.size(); }
    std::size_t Cols() const noexcept { return cols_; }
    double X(std::size_t i) const noexcept { return x_[i]; }
    double Y(std::size_t i) const noexcept { return y_[i]; }
    kernels::Places All() const noexcept { return {x_.data(), y_.data(), x_.size()}; }

  private:
    std::size_t cols_ = 0;
    std::vector<double> x_;
    std::vector<double> y_;
};

}  // namespace tq

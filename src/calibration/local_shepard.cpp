#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "calibration/surface.h"
#include "calibration/tile_places.h"

namespace tq {
namespace {

class LocalShepardSurface final : public Surface {
  public:
    explicit LocalShepardSurface(SurfacePoints points) : points_(std::move(points)) {}

    void Evaluate(const SurfaceTile& tile, double* values) override {
        Gather(tile);
        places_.MoveTo(tile, points_.frame);
        kernels::NeighbourMeans({x_.data(), y_.data(), value_.data(), x_.size()}, places_.All(), values);
    }

  private:
    /// The points that can be among the thirteen nearest of any pel of the tile. With the middle of the tile
    /// at most h from its pels and R from its own thirteenth nearest point, the thirteen lie within R + h of
    /// a pel, and so within R + 2 h of the middle. The others would have weight 0, so the bits are those of
    /// the whole list.
    void Gather(const SurfaceTile& tile) {
        const double x = points_.frame.X(tile.MiddleCol());
        const double y = points_.frame.Y(tile.MiddleRow());
        squares_.resize(points_.Count());
        for (std::size_t i = 0; i < squares_.size(); ++i) {
            const double dx = points_.x[i] - x;
            const double dy = points_.y[i] - y;
            squares_[i] = dx * dx + dy * dy;
        }
        double reach = HUGE_VAL;
        if (squares_.size() > kernels::kBoundingRank) {
            ranked_ = squares_;
            const auto bound = ranked_.begin() + (kernels::kBoundingRank - 1);
            std::nth_element(ranked_.begin(), bound, ranked_.end());
            const double radius = tile.Radius() * points_.frame.scale;
            // A billionth on top: far more than the roundings of the distances here and there.
            reach = (std::sqrt(*bound) + 2.0 * radius) * (1.0 + 1e-9);
        }
        x_.clear();
        y_.clear();
        value_.clear();
        for (std::size_t i = 0; i < squares_.size(); ++i) {
            if (squares_[i] > reach * reach) continue;
            x_.push_back(points_.x[i]);
            y_.push_back(points_.y[i]);
            value_.push_back(points_.value[i]);
        }
    }

    SurfacePoints points_;
    TilePlaces places_;
    std::vector<double> squares_;
    std::vector<double> ranked_;
    std::vector<double> x_;
    std::vector<double> y_;
    std::vector<double> value_;
};

}  // namespace

std::unique_ptr<Surface> MakeLocalShepardSurface(SurfacePoints points) {
    return std::make_unique<LocalShepardSurface>(std::move(points));
}

}  // namespace tq

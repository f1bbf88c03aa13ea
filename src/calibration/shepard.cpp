#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "calibration/surface.h"
#include "calibration/tile_places.h"

namespace tq {
namespace {

class ShepardSurface final : public Surface {
  public:
    explicit ShepardSurface(SurfacePoints points) : points_(std::move(points)) {}

    void Evaluate(const SurfaceTile& tile, float* values) override {
        places_.MoveTo(tile, points_.frame);
        sums_.resize(places_.Count());
        norms_.resize(places_.Count());
        kernels::InverseSquareSums(points_.Weighted(points_.value), places_.All(), sums_.data(),
                                   norms_.data());
        for (std::size_t i = 0; i < places_.Count(); ++i)
            values[i] = ToSurfaceValue(sums_[i] / norms_[i]);
    }

  private:
    SurfacePoints points_;
    TilePlaces places_;
    std::vector<double> sums_;
    std::vector<double> norms_;
};

}  // namespace

std::unique_ptr<Surface> MakeShepardSurface(SurfacePoints points) {
    return std::make_unique<ShepardSurface>(std::move(points));
}

}  // namespace tq

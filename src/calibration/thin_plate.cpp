#include "calibration/thin_plate.h"

#include <memory>
#include <utility>

#include "calibration/polynomial.h"
#include "calibration/surface.h"
#include "calibration/tile_places.h"

namespace tq {
namespace {

class ThinPlateSurface final : public Surface {
  public:
    ThinPlateSurface(SurfacePoints points, std::vector<double> weights, const Polynomial& trend)
        : points_(std::move(points)), weights_(std::move(weights)), trend_(trend) {}

    void Evaluate(const SurfaceTile& tile, float* values) override {
        places_.MoveTo(tile, points_.frame);
        sums_.resize(places_.Count());
        kernels::LogRadialSums(points_.Weighted(weights_), places_.All(), sums_.data());
        for (std::size_t i = 0; i < places_.Count(); ++i)
            values[i] = ToSurfaceValue(trend_.At(places_.X(i), places_.Y(i)) + sums_[i]);
    }

  private:
    SurfacePoints points_;
    std::vector<double> weights_;
    Polynomial trend_;
    TilePlaces places_;
    std::vector<double> sums_;
};

std::unique_ptr<Surface> SplineAlong(SurfacePoints points, Polynomial trend) {
    std::vector<double> rest = points.value;
    for (std::size_t i = 0; i < rest.size(); ++i)
        rest[i] -= trend.At(points.x[i], points.y[i]);
    std::vector<double> weights = ThinPlateWeights(points, rest);
    const std::vector<double> sums = LogRadialSumsAtPoints(points, weights);
    for (std::size_t i = 0; i < rest.size(); ++i)
        rest[i] -= sums[i];
    trend += FitPolynomial(points, rest, 1, Deficient::kLeastNorm);
    return std::make_unique<ThinPlateSurface>(std::move(points), std::move(weights), trend);
}

}  // namespace

std::unique_ptr<Surface> MakeThinPlateSurface(SurfacePoints points) {
    return SplineAlong(std::move(points), {});
}

std::unique_ptr<Surface> MakePolynomialThinPlateSurface(SurfacePoints points) {
    const Polynomial polynomial =
        FitPolynomial(points, points.value, SupportedDegree(points.Count()), Deficient::kLowerDegree);
    return SplineAlong(std::move(points), polynomial);
}

}  // namespace tq

#include "calibration/thin_plate.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "calibration/far_error.h"
#include "calibration/far_field.h"
#include "calibration/polynomial.h"
#include "calibration/surface.h"
#include "calibration/tile_places.h"

namespace tq {
namespace {

class ThinPlateSurface final : public Surface {
  public:
    ThinPlateSurface(SurfacePoints points, std::vector<double> weights, const Polynomial& trend)
        : points_(std::move(points)),
          weights_(std::move(weights)),
          trend_(trend),
          far_(points_, weights_, 1, kernels::LogRadialSums) {
        SetTolerance(kFirstTolerance * points_.LargestValue());
    }

    void Evaluate(const SurfaceTile& tile, float* values) override {
        far_.MoveTo(tile);
        places_.MoveTo(tile, points_.frame);
        near_.resize(places_.Count());
        kernels::LogRadialSums(far_.Near(), places_.All(), near_.data());
        sums_.resize(places_.Count());
        far_.ToPels(FarWithTrend().data(), tile, sums_.data());
        for (std::size_t i = 0; i < sums_.size(); ++i)
            values[i] = ToSurfaceValue(sums_[i] + near_[i]);
    }

    double Tolerance() const noexcept override { return tolerance_; }

    /// Every centre may add an equal share to the error, so that one of a large weight counts as near where
    /// others are far.
    void SetTolerance(double tolerance) override {
        tolerance_ = tolerance;
        const FarError error = FarError::OfLogRadial();
        const double share = tolerance / static_cast<double>(points_.Count());
        far_.SetReach([&](std::size_t centre, double half) {
            return error.DistanceFor(share / (std::abs(weights_[centre]) * half * half));
        });
    }

  private:
    /// The trend is a polynomial that the nodes determine.
    const std::array<double, kSquareNodes>& FarWithTrend() noexcept {
        const std::span<const double> far = far_.AtNodes(0);
        const kernels::Places nodes = far_.Nodes();
        for (std::size_t i = 0; i < far.size(); ++i)
            atNodes_[i] = far[i] + trend_.At(nodes.x[i], nodes.y[i]);
        return atNodes_;
    }

    SurfacePoints points_;
    std::vector<double> weights_;
    Polynomial trend_;
    FarField far_;
    double tolerance_ = 0.0;
    TilePlaces places_;
    std::array<double, kSquareNodes> atNodes_{};
    std::vector<double> near_;
    std::vector<double> sums_;
};

static_assert(Polynomial::kMaxDegree < kNodes);

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

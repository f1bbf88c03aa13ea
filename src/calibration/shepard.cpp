#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "calibration/far_error.h"
#include "calibration/far_field.h"
#include "calibration/surface.h"
#include "calibration/tile_places.h"

namespace tq {
namespace {

/// Both sums at the nodes of a square, one after the other.
void SumsAtNodes(const kernels::Centers& centers, const kernels::Places& nodes, double* out) {
    kernels::InverseSquareSums(centers, nodes, out, out + nodes.count);
}

class ShepardSurface final : public Surface {
  public:
    explicit ShepardSurface(SurfacePoints points)
        : points_(std::move(points)), far_(points_, points_.value, 2, SumsAtNodes) {
        SetTolerance(kFirstTolerance * points_.LargestValue());
    }

    void Evaluate(const SurfaceTile& tile, float* values) override {
        far_.MoveTo(tile);
        places_.MoveTo(tile, points_.frame);
        for (std::vector<double>* sums : {&sums_, &norms_, &farSums_, &farNorms_})
            sums->resize(places_.Count());
        kernels::InverseSquareSums(far_.Near(), places_.All(), sums_.data(), norms_.data());
        far_.ToPels(far_.AtNodes(0).data(), tile, farSums_.data());
        far_.ToPels(far_.AtNodes(1).data(), tile, farNorms_.data());
        for (std::size_t i = 0; i < places_.Count(); ++i)
            values[i] = ToSurfaceValue((sums_[i] + farSums_[i]) / (norms_[i] + farNorms_[i]));
    }

    double Tolerance() const noexcept override { return tolerance_; }

    /// When every term is off by at most a share e of itself, the mean is off by e / (1 - e) of the largest
    /// value for the sum and as much for its norm: below 3 e of it. A value of 0 everywhere needs no terms.
    void SetTolerance(double tolerance) override {
        tolerance_ = tolerance;
        const double largest = points_.LargestValue();
        const double share = largest > 0.0 ? std::min(tolerance / largest / 3.0, 0.25) : 0.25;
        const double distance = FarError::OfInverseSquare().DistanceFor(share);
        far_.SetReach([&](std::size_t, double) { return distance; });
    }

  private:
    SurfacePoints points_;
    FarField far_;
    double tolerance_ = 0.0;
    TilePlaces places_;
    std::vector<double> sums_;
    std::vector<double> norms_;
    std::vector<double> farSums_;
    std::vector<double> farNorms_;
};

}  // namespace

std::unique_ptr<Surface> MakeShepardSurface(SurfacePoints points) {
    return std::make_unique<ShepardSurface>(std::move(points));
}

}  // namespace tq

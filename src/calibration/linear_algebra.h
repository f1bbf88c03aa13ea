#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace tq {

/// What least squares say about as many unknowns as `matrix`, stored column after column, has columns.
struct LeastSquares {
    std::vector<double> unknowns;  ///< of several solutions the shortest
    bool determined;               ///< false when there are several
};
LeastSquares SolveLeastSquares(std::span<const double> matrix, std::span<const double> right);

/// The equations of a spline's weights: K w + P a = f, P^T w = 0, with the kernel matrix K and the linear
/// terms P of the points. K is positive on the weights that P^T annihilates, so the equations are reduced to
/// those and factored once; a itself is not asked for.
class SplineEquations {
  public:
    /// `kernel` is square; `linear` has three columns, which need not be independent.
    SplineEquations(std::span<const double> kernel, std::span<const double> linear);
    SplineEquations(SplineEquations&&) noexcept;
    ~SplineEquations();

    std::vector<double> Weights(std::span<const double> values) const;

  private:
    struct Factors;
    std::unique_ptr<Factors> factors_;
};

}  // namespace tq

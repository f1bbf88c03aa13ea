// The same bits on every build: neither vectors nor threads may change the order of a sum, and the
// factorisations used here are those that are not blocked by the size of the processor's cache.
#define EIGEN_DONT_VECTORIZE
#define EIGEN_DONT_PARALLELIZE
#define EIGEN_NO_DEBUG
#include <Eigen/Cholesky>
#include <Eigen/QR>

#include "calibration/linear_algebra.h"

namespace tq {
namespace {

/// Columns count as dependent when less than this share is new. Places are known to about a ten-thousandth of
/// what the points cover, and what would follow from less is noise, enlarged without bounds.
constexpr double kDependent = 1e-4;

using Vector = Eigen::VectorXd;
using Matrix = Eigen::MatrixXd;
using LinearTerms = Eigen::Matrix<double, Eigen::Dynamic, 3>;

Eigen::Index Signed(std::size_t size) noexcept {
    return static_cast<Eigen::Index>(size);
}

}  // namespace

LeastSquares SolveLeastSquares(std::span<const double> matrix, std::span<const double> right) {
    const Eigen::Index rows = Signed(right.size());
    const Eigen::Index cols = Signed(matrix.size()) / rows;
    Eigen::CompleteOrthogonalDecomposition<Matrix> decomposition(rows, cols);
    decomposition.setThreshold(kDependent);
    decomposition.compute(Eigen::Map<const Matrix>(matrix.data(), rows, cols));
    const Vector unknowns = decomposition.solve(Eigen::Map<const Vector>(right.data(), rows));
    return {{unknowns.begin(), unknowns.end()}, decomposition.rank() == cols};
}

struct SplineEquations::Factors {
    Eigen::ColPivHouseholderQR<LinearTerms> terms;
    Eigen::LDLT<Matrix> reduced;
    Eigen::Index rank;

    auto Basis() const { return terms.householderQ().setLength(rank); }
};

SplineEquations::SplineEquations(std::span<const double> kernel, std::span<const double> linear)
    : factors_(std::make_unique<Factors>()) {
    Factors& f = *factors_;
    const Eigen::Index points = Signed(linear.size()) / 3;
    f.terms.setThreshold(kDependent);
    f.terms.compute(Eigen::Map<const LinearTerms>(linear.data(), points, 3));
    f.rank = f.terms.rank();
    Matrix rotated = Eigen::Map<const Matrix>(kernel.data(), points, points);
    rotated.applyOnTheLeft(f.Basis().adjoint());
    rotated.applyOnTheRight(f.Basis());
    const Eigen::Index free = points - f.rank;
    if (free > 0) f.reduced.compute(rotated.bottomRightCorner(free, free));
}

SplineEquations::SplineEquations(SplineEquations&&) noexcept = default;
SplineEquations::~SplineEquations() = default;

std::vector<double> SplineEquations::Weights(std::span<const double> values) const {
    const Factors& f = *factors_;
    Vector rotated = Eigen::Map<const Vector>(values.data(), Signed(values.size()));
    rotated.applyOnTheLeft(f.Basis().adjoint());
    const Eigen::Index free = rotated.size() - f.rank;
    if (free > 0) rotated.tail(free) = f.reduced.solve(rotated.tail(free)).eval();
    rotated.head(f.rank).setZero();
    rotated.applyOnTheLeft(f.Basis());
    return {rotated.begin(), rotated.end()};
}

}  // namespace tq

#include "calibration/polynomial.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

#include "calibration/linear_algebra.h"
#include "calibration/surface.h"

namespace tq {
namespace {

/// The powers x^i y^j up to a total degree, one column of values after the other.
std::vector<double> Powers(const SurfacePoints& points, int degree) {
    std::vector<double> columns;
    for (int j = 0; j <= degree; ++j) {
        for (int i = 0; i <= degree - j; ++i) {
            for (std::size_t p = 0; p < points.Count(); ++p) {
                double power = 1.0;
                for (int k = 0; k < i; ++k)
                    power *= points.x[p];
                for (int k = 0; k < j; ++k)
                    power *= points.y[p];
                columns.push_back(power);
            }
        }
    }
    return columns;
}

class PolynomialSurface final : public Surface {
  public:
    PolynomialSurface(const SurfaceFrame& frame, const Polynomial& polynomial)
        : frame_(frame), polynomial_(polynomial) {}

    void Evaluate(const SurfaceTile& tile, double* values) override {
        std::array<double, kTileSide> x;
        for (std::int32_t col = 0; col < tile.cols; ++col)
            x[static_cast<std::size_t>(col)] = frame_.X(static_cast<double>(tile.col) + col);
        for (std::int32_t row = 0; row < tile.rows; ++row, values += tile.cols) {
            const auto k = polynomial_.OfARow(frame_.Y(static_cast<double>(tile.row) + row));
            static_assert(std::tuple_size_v<decltype(k)> == 5);
            for (std::int32_t col = 0; col < tile.cols; ++col) {
                const double at = x[static_cast<std::size_t>(col)];
                values[col] = k[0] + at * (k[1] + at * (k[2] + at * (k[3] + at * k[4])));
            }
        }
    }

  private:
    SurfaceFrame frame_;
    Polynomial polynomial_;
};

}  // namespace

Polynomial FitPolynomial(const SurfacePoints& points, std::span<const double> values, int degree,
                         Deficient deficient) {
    Polynomial polynomial;
    if (points.Count() == 0) return polynomial;
    LeastSquares fit = SolveLeastSquares(Powers(points, degree), values);
    while (deficient == Deficient::kLowerDegree && !fit.determined && degree > 0)
        fit = SolveLeastSquares(Powers(points, --degree), values);
    polynomial.degree = degree;
    std::size_t next = 0;
    for (int j = 0; j <= degree; ++j) {
        for (int i = 0; i <= degree - j; ++i) {
            polynomial.coefficients[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)] =
                fit.unknowns[next++];
        }
    }
    return polynomial;
}

std::unique_ptr<Surface> MakePolynomialSurface(const SurfacePoints& points) {
    return std::make_unique<PolynomialSurface>(
        points.frame,
        FitPolynomial(points, points.value, SupportedDegree(points.Count()), Deficient::kLowerDegree));
}

}  // namespace tq

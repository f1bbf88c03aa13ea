#include "calibration/polynomial.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

#include "calibration/linear_algebra.h"
#include "calibration/surface.h"

namespace tq {
namespace {

/// What brings the places of a strip to -1 .. 1 along both axes. Otherwise the powers of its short side would
/// be small enough to pass for dependent ones.
struct Stretching {
    double x = 1.0;
    double y = 1.0;
};

Stretching StretchingOf(const SurfacePoints& points) noexcept {
    const auto factor = [](const std::vector<double>& places) {
        double largest = 0.0;
        for (const double place : places)
            largest = std::max(largest, std::abs(place));
        return largest > 0.0 ? 1.0 / largest : 1.0;
    };
    return {factor(points.x), factor(points.y)};
}

double Power(double base, int exponent) noexcept {
    double power = 1.0;
    for (int k = 0; k < exponent; ++k)
        power *= base;
    return power;
}

/// The powers x^i y^j up to a total degree, one column of values after the other.
std::vector<double> Powers(const SurfacePoints& points, const Stretching& stretch, int degree) {
    std::vector<double> columns;
    for (int j = 0; j <= degree; ++j) {
        for (int i = 0; i <= degree - j; ++i) {
            for (std::size_t p = 0; p < points.Count(); ++p)
                columns.push_back(Power(stretch.x * points.x[p], i) * Power(stretch.y * points.y[p], j));
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
    // What is least depends on the scale, and there it is that of the surface.
    const bool isLeast = deficient == Deficient::kLeastNorm;
    const Stretching stretch = isLeast ? Stretching{} : StretchingOf(points);
    LeastSquares fit = SolveLeastSquares(Powers(points, stretch, degree), values);
    while (!isLeast && !fit.determined && degree > 0)
        fit = SolveLeastSquares(Powers(points, stretch, --degree), values);
    polynomial.degree = degree;
    std::size_t next = 0;
    for (int j = 0; j <= degree; ++j) {
        for (int i = 0; i <= degree - j; ++i) {
            polynomial.coefficients[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)] =
                fit.unknowns[next++] * Power(stretch.x, i) * Power(stretch.y, j);
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

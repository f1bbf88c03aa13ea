#pragma once

#include <array>
#include <cstddef>
#include <span>

#include "calibration/surface_points.h"

namespace tq {

/// A polynomial in two variables.
struct Polynomial {
    static constexpr int kMaxDegree = 4;

    /// Of x^i y^j at [j][i].
    std::array<std::array<double, kMaxDegree + 1>, kMaxDegree + 1> coefficients{};
    int degree = 0;

    double At(double x, double y) const noexcept {
        double sum = 0.0;
        for (int j = degree; j >= 0; --j) {
            double row = 0.0;
            for (int i = degree - j; i >= 0; --i)
                row = row * x + coefficients[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)];
            sum = sum * y + row;
        }
        return sum;
    }
    /// The coefficients of the powers of x where y is fixed.
    std::array<double, kMaxDegree + 1> OfARow(double y) const noexcept {
        std::array<double, kMaxDegree + 1> row{};
        for (std::size_t j = row.size(); j-- > 0;) {
            for (std::size_t i = 0; i < row.size(); ++i)
                row[i] = row[i] * y + coefficients[j][i];
        }
        return row;
    }
    Polynomial& operator+=(const Polynomial& other) noexcept {
        for (std::size_t j = 0; j < coefficients.size(); ++j) {
            for (std::size_t i = 0; i < coefficients.size(); ++i)
                coefficients[j][i] += other.coefficients[j][i];
        }
        if (other.degree > degree) degree = other.degree;
        return *this;
    }
};

enum class Deficient {
    kLowerDegree,  ///< the largest degree that the points determine
    kLeastNorm     ///< the smallest coefficients among those that fit equally well
};

/// The polynomial of least squares of the given total degree.
Polynomial FitPolynomial(const SurfacePoints& points, std::span<const double> values, int degree,
                         Deficient deficient);

/// The degree that so many points support: each one has at least a third more points than coefficients.
constexpr int SupportedDegree(std::size_t points) noexcept {
    return points >= 20 ? 4 : points >= 13 ? 3 : points >= 8 ? 2 : points >= 4 ? 1 : 0;
}

}  // namespace tq

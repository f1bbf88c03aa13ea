#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace tq {

/// z = a + bx + cy + dxx + exy + fyy, fitted by least squares to the values of a 3 x 3 neighbourhood in row
/// order, with x and y in -1, 0, 1. On this grid the normal equations come apart into sums.
class Paraboloid {
  public:
    explicit Paraboloid(const std::array<double, 9>& z) noexcept {
        const double left = z[0] + z[3] + z[6];
        const double right = z[2] + z[5] + z[8];
        const double top = z[0] + z[1] + z[2];
        const double bottom = z[6] + z[7] + z[8];
        const double all = top + z[3] + z[4] + z[5] + bottom;
        a_ = (5.0 * all - 3.0 * (left + right) - 3.0 * (top + bottom)) / 9.0;
        b_ = (right - left) / 6.0;
        c_ = (bottom - top) / 6.0;
        d_ = (left + right) / 2.0 - all / 3.0;
        e_ = ((z[0] + z[8]) - (z[2] + z[6])) / 4.0;
        f_ = (top + bottom) / 2.0 - all / 3.0;
        for (const double value : z)
            noise_ = std::max(noise_, kNoise * std::abs(value));
    }

    struct Summit {
        bool exists;
        double x;
        double y;
        double value;
    };

    Summit FindSummit() const noexcept {
        // A flat neighbourhood and a ridge have none, whatever the rounding of their sums looks like.
        const double determinant = 4.0 * d_ * f_ - e_ * e_;
        const double doubt = 16.0 * noise_ * (std::abs(d_) + std::abs(e_) + std::abs(f_));
        if (!(d_ < -noise_ && determinant > doubt)) return {false, 0.0, 0.0, 0.0};
        const double x = (c_ * e_ - 2.0 * b_ * f_) / determinant;
        const double y = (b_ * e_ - 2.0 * c_ * d_) / determinant;
        return {true, x, y, a_ + 0.5 * (b_ * x + c_ * y)};
    }

  private:
    /// Ten times the rounding of a sum of nine, relative to the largest, and far below what the smallest step
    /// of grey levels, or of their logarithms, amounts to.
    static constexpr double kNoise = 1e-14;

    double noise_ = 0.0;
    double a_, b_, c_, d_, e_, f_;
};

}  // namespace tq

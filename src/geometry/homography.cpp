#include "geometry/homography.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <functional>

#include "geometry/linear_system.h"

namespace tq {
namespace {

Homography Forward(const Normalisation& n) noexcept {
    return Homography({n.scale, 0.0, -n.col * n.scale, 0.0, n.scale, -n.row * n.scale, 0.0, 0.0, 1.0});
}

Homography Backward(const Normalisation& n) noexcept {
    return Homography({1.0 / n.scale, 0.0, n.col, 0.0, 1.0 / n.scale, n.row, 0.0, 0.0, 1.0});
}

double Length(double a, double b, double c) noexcept {
    return std::sqrt(a * a + b * b + c * c);
}

}  // namespace

std::optional<Homography> Homography::Between(const Quadrilateral& from, const Quadrilateral& to) {
    const Normalisation before(from, std::identity{});
    const Normalisation after(to, std::identity{});
    LinearSystem<8> system;
    for (std::size_t i = 0; i < from.size(); ++i) {
        const auto [x, y] = before(from[i]);
        const auto [u, v] = after(to[i]);
        system[2 * i] = {x, y, 1.0, 0.0, 0.0, 0.0, -u * x, -u * y, u};
        system[2 * i + 1] = {0.0, 0.0, 0.0, x, y, 1.0, -v * x, -v * y, v};
    }
    // The last coefficient may be set to 1: it belongs to the centre of the corners, which is never on the
    // horizon of a convex quadrilateral.
    std::array<double, 8> h{};
    if (!Solve(system, h)) return std::nullopt;
    const Homography normalised({h[0], h[1], h[2], h[3], h[4], h[5], h[6], h[7], 1.0});
    return Forward(before).Then(normalised).Then(Backward(after));
}

Homography::Slopes Homography::SlopesAt(double col, double row) const noexcept {
    const double weight = Weight(col, row);
    const PlanePoint image = (*this)(col, row);
    return {(m_[0] - image.col * m_[6]) / weight, (m_[1] - image.col * m_[7]) / weight,
            (m_[3] - image.row * m_[6]) / weight, (m_[4] - image.row * m_[7]) / weight};
}

std::optional<Homography> Homography::Inverse() const noexcept {
    const auto& m = m_;
    const std::array<double, 9> adjoint{
        m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
        m[5] * m[6] - m[3] * m[8], m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
        m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]};
    const double determinant = m[0] * adjoint[0] + m[1] * adjoint[3] + m[2] * adjoint[6];
    // The determinant is at most the product of the lengths of the rows, and of the columns; what is smaller
    // by the last bits of a double is the rounding of 0.
    constexpr double kRounding = 1e-15;
    const double rows = Length(m[0], m[1], m[2]) * Length(m[3], m[4], m[5]) * Length(m[6], m[7], m[8]);
    const double columns = Length(m[0], m[3], m[6]) * Length(m[1], m[4], m[7]) * Length(m[2], m[5], m[8]);
    const double bound = std::min(rows, columns);
    if (!std::isfinite(rows) || !std::isfinite(columns) || !(std::abs(determinant) > kRounding * bound)) {
        return std::nullopt;
    }
    return Homography(adjoint);
}

Homography Homography::Then(const Homography& next) const noexcept {
    std::array<double, 9> product{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t col = 0; col < 3; ++col) {
            for (std::size_t k = 0; k < 3; ++k)
                product[3 * row + col] += next.m_[3 * row + k] * m_[3 * k + col];
        }
    }
    return Homography(product);
}

}  // namespace tq

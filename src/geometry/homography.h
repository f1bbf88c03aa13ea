#pragma once

#include <array>
#include <optional>

namespace tq {

/// A place between pels; columns before rows.
struct PlanePoint {
    double col;
    double row;
};

/// Corners in the order top left, top right, bottom right, bottom left.
using Quadrilateral = std::array<PlanePoint, 4>;

/// A projective map of the plane.
class Homography {
  public:
    /// Coefficients in row order; `m` times (column, row, 1) is the result up to a factor.
    explicit Homography(const std::array<double, 9>& m) noexcept : m_(m) {}

    /// The one that takes each corner of `from` to that of `to`; nothing when three of either lie in a line.
    static std::optional<Homography> Between(const Quadrilateral& from, const Quadrilateral& to);

    /// The factor: its sign changes at the horizon, on which it is 0.
    double Weight(double col, double row) const noexcept { return m_[6] * col + m_[7] * row + m_[8]; }
    /// Infinite or not a number on the horizon.
    PlanePoint operator()(double col, double row) const noexcept {
        const double weight = Weight(col, row);
        return {(m_[0] * col + m_[1] * row + m_[2]) / weight, (m_[3] * col + m_[4] * row + m_[5]) / weight};
    }

    /// How the image of a place moves with the place.
    struct Slopes {
        double colByCol, colByRow, rowByCol, rowByRow;
    };
    Slopes SlopesAt(double col, double row) const noexcept;

    /// Nothing when coefficients are not finite or the plane collapses to a line.
    std::optional<Homography> Inverse() const noexcept;

    /// The map that follows this one up with `next`.
    Homography Then(const Homography& next) const noexcept;

  private:
    std::array<double, 9> m_;
};

}  // namespace tq

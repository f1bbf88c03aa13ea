#pragma once

#include <array>
#include <cmath>
#include <functional>
#include <optional>

namespace tq {

/// A place between pels; columns before rows.
struct PlanePoint {
    double col;
    double row;
};

inline double Distance(const PlanePoint& a, const PlanePoint& b) noexcept {
    return std::sqrt((a.col - b.col) * (a.col - b.col) + (a.row - b.row) * (a.row - b.row));
}

/// The similarity that takes the centre of some places to the origin and their mean distance from it to
/// sqrt(2), without which equations for them mix numbers of very different size (Hartley 1997).
struct Normalisation {
    double col = 0.0;
    double row = 0.0;
    double scale = 0.0;

    /// `placeOf` is a function of the items, or a member of theirs.
    template <class Items, class PlaceOf>
    Normalisation(const Items& items, PlaceOf&& placeOf) noexcept {
        const auto count = static_cast<double>(items.size());
        for (const auto& item : items) {
            const PlanePoint& p = std::invoke(placeOf, item);
            col += p.col / count;
            row += p.row / count;
        }
        double distance = 0.0;
        for (const auto& item : items)
            distance += Distance(std::invoke(placeOf, item), {col, row}) / count;
        scale = std::sqrt(2.0) / distance;
    }
    PlanePoint operator()(const PlanePoint& p) const noexcept {
        return {(p.col - col) * scale, (p.row - row) * scale};
    }
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

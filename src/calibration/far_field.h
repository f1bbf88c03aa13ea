#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "calibration/chebyshev.h"
#include "calibration/surface.h"
#include "calibration/surface_points.h"

namespace tq {

/// Sums over scattered centres on a tile, at a cost that hardly depends on their number. The sensor is a
/// square of tiles that is halved until tiles are left. What a square's far centres add up to is smooth
/// there, and computed at the square's nodes only; a square inherits from the one around it what was far from
/// that one, by interpolation, and hands the centres that are near to its quarters. Near a tile remain few.
class FarField {
  public:
    /// Adds up centres at places: one after the other, kSquareNodes numbers for each of `planes` sums.
    using Sum = std::function<void(const kernels::Centers&, const kernels::Places&, double* out)>;
    /// From which distance a centre is far: of a centre by its index, and of squares with this half side in
    /// the co-ordinates of the frame; in half sides.
    using Reach = std::function<double(std::size_t centre, double half)>;

    FarField(const SurfacePoints& points, std::span<const double> weights, std::size_t planes, Sum sum);

    /// Before the first tile, and whenever what counts as far changes.
    void SetReach(const Reach& reach);

    /// The tile must lie in one square of kTileSide pels whose corner is at multiples of it. Neighbours share
    /// the squares around them: that is quick when tiles come square after square.
    void MoveTo(const SurfaceTile& tile);

    /// The centres that are near the tile.
    kernels::Centers Near() const noexcept { return gathered_.Centers(); }
    /// The nodes of the square that the tile lies in, and the sums of the centres that are far from it.
    kernels::Places Nodes() const noexcept { return {nodeX_.data(), nodeY_.data(), kSquareNodes}; }
    std::span<const double> AtNodes(std::size_t plane) const noexcept;
    /// What is known at the nodes, at the pels of the tile, row after row.
    void ToPels(const double* atNodes, const SurfaceTile& tile, double* out);

  private:
    /// A power of two of tiles that covers the largest image.
    static constexpr std::size_t kLevels = 8;
    static constexpr std::int32_t kLargestSide = kTileSide << (kLevels - 1);

    struct Square {
        std::int32_t col = -1;
        std::int32_t row = -1;
        std::vector<double> sums;       ///< at its nodes, plane after plane
        std::vector<std::size_t> near;  ///< centres
        std::vector<double> reach;      ///< of every centre, for squares of this size
    };
    struct Gathered {
        std::vector<double> x, y, weight;

        void Clear() noexcept;
        void Add(const SurfacePoints& points, std::span<const double> weights, std::size_t centre);
        kernels::Centers Centers() const noexcept { return {x.data(), y.data(), weight.data(), x.size()}; }
    };

    void Enter(std::size_t level);
    void PlaceNodes(const Square& square, std::int32_t side);
    void Inherit(const Square& outer, Square& inner) const;

    const SurfacePoints& points_;
    std::span<const double> weights_;
    Sum sum_;
    std::array<double, kNodes> nodes_;
    std::array<ChebyshevBasis, 2> halves_;  ///< the nodes of the lower and of the upper half
    ChebyshevBasis pels_;
    std::array<Square, kLevels> path_;
    std::vector<std::size_t> all_;
    Gathered gathered_;
    std::vector<double> nodeX_;
    std::vector<double> nodeY_;
    std::vector<double> added_;
    std::vector<double> tile_;
};

}  // namespace tq

#include "calibration/far_field.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace tq {
namespace {

/// The nodes of one half of a square, in the co-ordinates of the whole.
ChebyshevBasis Half(const std::array<double, kNodes>& nodes, double middle) {
    std::array<double, kNodes> positions;
    std::transform(nodes.begin(), nodes.end(), positions.begin(),
                   [&](double node) { return middle + node / 2.0; });
    return ChebyshevBasis(positions);
}

/// A tile's side reaches half a pel beyond the middle of its pels, so that four of them fill a square.
ChebyshevBasis PelsOfATile() {
    std::array<double, kTileSide> positions;
    for (std::size_t i = 0; i < positions.size(); ++i)
        positions[i] = static_cast<double>(2 * i + 1) / kTileSide - 1.0;
    return ChebyshevBasis(positions);
}

}  // namespace

void FarField::Gathered::Clear() noexcept {
    x.clear();
    y.clear();
    weight.clear();
}

void FarField::Gathered::Add(const SurfacePoints& points, std::span<const double> weights,
                             std::size_t centre) {
    x.push_back(points.x[centre]);
    y.push_back(points.y[centre]);
    weight.push_back(weights[centre]);
}

FarField::FarField(const SurfacePoints& points, std::span<const double> weights, std::size_t planes, Sum sum)
    : points_(points),
      weights_(weights),
      sum_(std::move(sum)),
      nodes_(ChebyshevNodes()),
      halves_{Half(nodes_, -0.5), Half(nodes_, 0.5)},
      pels_(PelsOfATile()),
      all_(points.Count()),
      nodeX_(kSquareNodes),
      nodeY_(kSquareNodes),
      added_(planes * kSquareNodes),
      tile_(kTileSide * kTileSide) {
    std::iota(all_.begin(), all_.end(), std::size_t{0});
    for (Square& square : path_)
        square.sums.resize(planes * kSquareNodes);
}

void FarField::SetReach(const Reach& reach) {
    double half = kLargestSide / 2 * points_.frame.scale;
    for (Square& square : path_) {
        square.col = square.row = -1;
        square.reach.resize(all_.size());
        std::transform(all_.begin(), all_.end(), square.reach.begin(),
                       [&](std::size_t centre) { return reach(centre, half) * half; });
        half /= 2.0;
    }
}

std::span<const double> FarField::AtNodes(std::size_t plane) const noexcept {
    return std::span(path_.back().sums).subspan(plane * kSquareNodes, kSquareNodes);
}

void FarField::MoveTo(const SurfaceTile& tile) {
    std::int32_t side = kLargestSide;
    for (std::size_t level = 0; level < kLevels; ++level, side /= 2) {
        const std::int32_t col = tile.col / side * side;
        const std::int32_t row = tile.row / side * side;
        if (path_[level].col == col && path_[level].row == row) continue;
        path_[level].col = col;
        path_[level].row = row;
        Enter(level);
    }
}

void FarField::ToPels(const double* atNodes, const SurfaceTile& tile, double* out) {
    Interpolate(atNodes, pels_, pels_, tile_.data());
    for (std::int32_t row = 0; row < tile.rows; ++row) {
        const auto from = tile_.begin() + (tile.row % kTileSide + row) * kTileSide + tile.col % kTileSide;
        out = std::copy_n(from, tile.cols, out);
    }
}

void FarField::Enter(std::size_t level) {
    const std::int32_t side = kLargestSide >> level;
    Square& square = path_[level];
    if (level == 0) {
        std::fill(square.sums.begin(), square.sums.end(), 0.0);
    } else {
        Inherit(path_[level - 1], square);
    }
    const double x = points_.frame.X(square.col + (side - 1) / 2.0);
    const double y = points_.frame.Y(square.row + (side - 1) / 2.0);
    gathered_.Clear();
    square.near.clear();
    for (const std::size_t centre : level == 0 ? all_ : path_[level - 1].near) {
        const double distance = std::max(std::abs(points_.x[centre] - x), std::abs(points_.y[centre] - y));
        if (distance >= square.reach[centre]) {
            gathered_.Add(points_, weights_, centre);
        } else {
            square.near.push_back(centre);
        }
    }
    PlaceNodes(square, side);
    sum_(gathered_.Centers(), Nodes(), added_.data());
    std::transform(added_.begin(), added_.end(), square.sums.begin(), square.sums.begin(), std::plus<>());
    if (level + 1 < kLevels) return;
    gathered_.Clear();
    for (const std::size_t centre : square.near)
        gathered_.Add(points_, weights_, centre);
}

void FarField::PlaceNodes(const Square& square, std::int32_t side) {
    for (std::size_t i = 0; i < kSquareNodes; ++i) {
        nodeX_[i] = points_.frame.X(square.col + (side - 1) / 2.0 + nodes_[i % kNodes] * (side / 2));
        nodeY_[i] = points_.frame.Y(square.row + (side - 1) / 2.0 + nodes_[i / kNodes] * (side / 2));
    }
}

/// Exact but for rounding: the nodes determine the polynomial that it hands on.
void FarField::Inherit(const Square& outer, Square& inner) const {
    const ChebyshevBasis& cols = halves_[inner.col == outer.col ? 0 : 1];
    const ChebyshevBasis& rows = halves_[inner.row == outer.row ? 0 : 1];
    for (std::size_t first = 0; first < inner.sums.size(); first += kSquareNodes)
        Interpolate(&outer.sums[first], cols, rows, &inner.sums[first]);
}

}  // namespace tq

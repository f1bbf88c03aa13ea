#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <vector>

#include "calibration/delaunay.h"
#include "calibration/surface.h"
#include "core/numerics.h"

namespace tq {
namespace {

/// A pel this close to a triangle, in pels, belongs to it. Without it a pel on the line between two
/// triangles could fall between their rounded edges and be taken for one outside of all.
constexpr double kOnTheEdge = 1e-6;

struct Corner {
    double col;
    double row;
    double value;
};

/// The whole numbers from..to that two ends enclose, cut to 0..count - 1; empty when from > to.
struct Range {
    std::int32_t from;
    std::int32_t to;

    Range(double low, double high, std::int32_t count) noexcept
        : from(TruncToInt32(std::ceil(std::clamp(low - kOnTheEdge, 0.0, count * 1.0)))),
          to(TruncToInt32(std::floor(std::clamp(high + kOnTheEdge, -1.0, count - 1.0)))) {}
};

class Triangle {
  public:
    Triangle(const Corner& a, const Corner& b, const Corner& c) noexcept : corners_{a, b, c} {
        const double abCol = b.col - a.col;
        const double abRow = b.row - a.row;
        const double acCol = c.col - a.col;
        const double acRow = c.row - a.row;
        const double area = abCol * acRow - abRow * acCol;
        perCol_ = ((b.value - a.value) * acRow - (c.value - a.value) * abRow) / area;
        perRow_ = ((c.value - a.value) * abCol - (b.value - a.value) * acCol) / area;
        const auto [top, bottom] = std::minmax({a.row, b.row, c.row});
        top_ = top;
        bottom_ = bottom;
    }

    Range Rows(const SurfaceTile& tile) const noexcept {
        return {top_ - tile.row, bottom_ - tile.row, tile.rows};
    }
    /// Columns of the tile inside, on a row of the sensor.
    Range Cols(const SurfaceTile& tile, double row) const noexcept {
        const double y = std::clamp(row, top_, bottom_);
        double left = std::numeric_limits<double>::infinity();
        double right = -left;
        for (std::size_t i = 0; i < 3; ++i) {
            const Corner& a = corners_[i];
            const Corner& b = corners_[(i + 1) % 3];
            if (y < std::min(a.row, b.row) || y > std::max(a.row, b.row)) continue;
            const bool level = a.row == b.row;
            const double at = level ? a.col : a.col + (y - a.row) * (b.col - a.col) / (b.row - a.row);
            left = std::min({left, at, level ? b.col : at});
            right = std::max({right, at, level ? b.col : at});
        }
        return {left - tile.col, right - tile.col, tile.cols};
    }
    double ValueAt(double col, double row) const noexcept {
        const Corner& a = corners_[0];
        return a.value + perCol_ * (col - a.col) + perRow_ * (row - a.row);
    }

  private:
    std::array<Corner, 3> corners_;
    double perCol_;
    double perRow_;
    double top_;
    double bottom_;
};

class HullEdge {
  public:
    HullEdge(const Corner& a, const Corner& b) noexcept : a_(a), b_(b) {}

    /// Squared distance of the nearest point of the edge, and the value there.
    double SquareTo(double col, double row, double* value) const noexcept {
        const double alongCol = b_.col - a_.col;
        const double alongRow = b_.row - a_.row;
        const double length = alongCol * alongCol + alongRow * alongRow;
        const double along = (col - a_.col) * alongCol + (row - a_.row) * alongRow;
        const double t = length > 0.0 ? std::clamp(along / length, 0.0, 1.0) : 0.0;
        *value = t == 1.0 ? b_.value : a_.value + t * (b_.value - a_.value);
        const double dx = col - (a_.col + t * alongCol);
        const double dy = row - (a_.row + t * alongRow);
        return dx * dx + dy * dy;
    }

  private:
    Corner a_;
    Corner b_;
};

class TriangulatedSurface final : public Surface {
  public:
    explicit TriangulatedSurface(const SurfacePoints& points) {
        const Triangulation triangulation = Triangulate(points);
        const auto corner = [&](std::size_t i) {
            return Corner{points.col[i], points.row[i], points.value[i]};
        };
        for (const auto& [a, b, c] : triangulation.triangles)
            triangles_.emplace_back(corner(a), corner(b), corner(c));
        for (const auto& [a, b] : triangulation.hull)
            hull_.emplace_back(corner(a), corner(b));
    }

    void Evaluate(const SurfaceTile& tile, double* values) override {
        known_.assign(static_cast<std::size_t>(tile.cols) * static_cast<std::size_t>(tile.rows), 0);
        for (const Triangle& triangle : triangles_)
            Draw(triangle, tile, values);
        if (std::find(known_.begin(), known_.end(), 0) == known_.end()) return;
        GatherEdges(tile);
        std::size_t i = 0;
        for (std::int32_t row = 0; row < tile.rows; ++row) {
            for (std::int32_t col = 0; col < tile.cols; ++col, ++i) {
                if (known_[i] != 0) continue;
                values[i] =
                    NearestOnHull(static_cast<double>(tile.col) + col, static_cast<double>(tile.row) + row);
            }
        }
    }

  private:
    /// On an edge both triangles have the same value; the first one writes it.
    void Draw(const Triangle& triangle, const SurfaceTile& tile, double* values) {
        const Range rows = triangle.Rows(tile);
        for (std::int32_t row = rows.from; row <= rows.to; ++row) {
            const double y = static_cast<double>(tile.row) + row;
            const Range cols = triangle.Cols(tile, y);
            const auto first = static_cast<std::size_t>(row) * static_cast<std::size_t>(tile.cols);
            for (std::int32_t col = cols.from; col <= cols.to; ++col) {
                const std::size_t i = first + static_cast<std::size_t>(col);
                if (known_[i] != 0) continue;
                known_[i] = 1;
                values[i] = triangle.ValueAt(static_cast<double>(tile.col) + col, y);
            }
        }
    }

    /// The edges that can be the nearest one of a pel of the tile: with h from the middle to a corner and R
    /// to the edge nearest to the middle, none beyond R + 2 h.
    void GatherEdges(const SurfaceTile& tile) {
        double value = 0.0;
        const auto square = [&](const HullEdge& edge) {
            return edge.SquareTo(tile.MiddleCol(), tile.MiddleRow(), &value);
        };
        double least = std::numeric_limits<double>::infinity();
        for (const HullEdge& edge : hull_)
            least = std::min(least, square(edge));
        const double reach = (std::sqrt(least) + 2.0 * tile.Radius()) * (1.0 + 1e-9);
        near_.clear();
        std::copy_if(hull_.begin(), hull_.end(), std::back_inserter(near_),
                     [&](const HullEdge& edge) { return square(edge) <= reach * reach; });
    }

    double NearestOnHull(double col, double row) const noexcept {
        double least = std::numeric_limits<double>::infinity();
        double nearest = 0.0;
        for (const HullEdge& edge : near_) {
            double value = 0.0;
            const double square = edge.SquareTo(col, row, &value);
            if (square >= least) continue;
            least = square;
            nearest = value;
        }
        return nearest;
    }

    std::vector<Triangle> triangles_;
    std::vector<HullEdge> hull_;
    std::vector<HullEdge> near_;
    std::vector<std::uint8_t> known_;  ///< 1 for the pels of the tile that have a value
};

}  // namespace

std::unique_ptr<Surface> MakeTriangulatedSurface(const SurfacePoints& points) {
    return std::make_unique<TriangulatedSurface>(points);
}

}  // namespace tq

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/image_view.h"
#include "core/rectangle.h"

/// The slanted-edge method: an edge that crosses the pel rows at a small angle samples its own profile at
/// every phase, four times finer than the pels.
namespace tq {

/// The pels of a region as lines that cross an edge: x runs across the edge, y along it.
class EdgeRegion {
  public:
    /// The edge is taken to be the steeper way: across it grey levels change most.
    EdgeRegion(const ConstImageView& view, const Rect& rect) noexcept;

    std::int32_t Width() const noexcept { return width_; }
    std::int32_t Lines() const noexcept { return lines_; }
    double Grey(std::int32_t x, std::int32_t y) const noexcept { return first_[x * across_ + y * along_]; }

  private:
    const Pel* first_;
    std::ptrdiff_t across_;
    std::ptrdiff_t along_;
    std::int32_t width_;
    std::int32_t lines_;
};

/// x = start + slope * y
struct EdgeLine {
    double start;
    double slope;

    double At(double y) const noexcept { return start + slope * y; }
};

/// The edge as a straight line; nothing when too few lines of the region show one.
std::optional<EdgeLine> FindEdge(const EdgeRegion& region);

/// Bins of the edge profile in a pel.
inline constexpr double kOversampling = 4.0;

/// Profile of an edge along its normal, centred on the edge: bin i holds the mean grey of the pels at the
/// distances (i - size / 2) / 4 to (i + 1 - size / 2) / 4. Empty when the edge comes too close to an end of
/// the lines.
std::vector<double> EdgeProfile(const EdgeRegion& region, const EdgeLine& edge);

}  // namespace tq

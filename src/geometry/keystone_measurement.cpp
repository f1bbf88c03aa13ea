#include <cstddef>
#include <cstdint>
#include <optional>

#include "core/guard.h"
#include "core/image_view.h"
#include "core/out_value.h"
#include "geometry/distortion_map.h"
#include "geometry/homography.h"
#include "geometry/quadrilateral.h"
#include "tqimage/keystone.h"

namespace tq {
namespace {

constexpr std::int32_t kInvalidImage = -1;
constexpr std::int32_t kNoEdges = -2;
constexpr std::int32_t kNotConvex = -3;
constexpr std::int32_t kNoMemory = -4;
constexpr std::int32_t kNothingLit = -99;

struct Sides {
    double top, right, bottom, left;

    explicit Sides(const Quadrilateral& q) noexcept
        : top(Distance(q[0], q[1])),
          right(Distance(q[1], q[2])),
          bottom(Distance(q[2], q[3])),
          left(Distance(q[3], q[0])) {}
};

double PercentOfSum(double a, double b) noexcept {
    return 100.0 * (a - b) / (a + b);
}

/// Where the diagonals cross, which is the middle of the screen whatever the perspective.
PlanePoint Middle(const Quadrilateral& q) noexcept {
    const PlanePoint a{q[2].col - q[0].col, q[2].row - q[0].row};
    const PlanePoint b{q[3].col - q[1].col, q[3].row - q[1].row};
    // The diagonals of a convex quadrilateral are never parallel.
    const double share =
        ((q[1].col - q[0].col) * b.row - (q[1].row - q[0].row) * b.col) / (a.col * b.row - a.row * b.col);
    return {q[0].col + share * a.col, q[0].row + share * a.row};
}

/// The screen as it shall look: upright, of the mean size of its opposite sides.
Quadrilateral Upright(const Quadrilateral& seen) noexcept {
    const Sides sides(seen);
    const PlanePoint middle = Middle(seen);
    const double halfWidth = 0.25 * (sides.top + sides.bottom);
    const double halfHeight = 0.25 * (sides.left + sides.right);
    return {{{middle.col - halfWidth, middle.row - halfHeight},
             {middle.col + halfWidth, middle.row - halfHeight},
             {middle.col + halfWidth, middle.row + halfHeight},
             {middle.col - halfWidth, middle.row + halfHeight}}};
}

OwnedMap MapOf(const Homography& toSource, const PlanePoint& middle, std::int32_t cols, std::int32_t rows) {
    OwnedMap map(cols, rows);
    const MapView view = map.View();
    // What lies beyond the horizon would be seen upside down.
    const double front = toSource.Weight(middle.col, middle.row);
    for (std::int32_t row = 0; row < rows; ++row) {
        MapEntry* entries = view.Row(row);
        for (std::int32_t col = 0; col < cols; ++col) {
            const PlanePoint source = toSource(col, row);
            const bool visible = toSource.Weight(col, row) * front > 0.0;
            entries[col] = visible ? EntryInside(source.col, source.row, cols, rows) : kNoSource;
        }
    }
    return map;
}

Quadrilateral ReadCorners(const double* corners) noexcept {
    Quadrilateral q{};
    for (std::size_t i = 0; i < q.size(); ++i)
        q[i] = {corners[2 * i], corners[2 * i + 1]};
    return q;
}

void WriteResults(const Quadrilateral& seen, double* corners, double* horizontal, double* vertical) noexcept {
    for (std::size_t i = 0; i < seen.size(); ++i) {
        corners[2 * i] = seen[i].col;
        corners[2 * i + 1] = seen[i].row;
    }
    const Sides sides(seen);
    StoreIfAsked(horizontal, PercentOfSum(sides.left, sides.right));
    StoreIfAsked(vertical, PercentOfSum(sides.top, sides.bottom));
}

}  // namespace
}  // namespace tq

using namespace tq;

std::int32_t TQ_CALL tqCalcKeyStone(TqDistortionMap** map, const TqImage* image, std::int32_t threshold,
                                    double* corners, double* horizontal, double* vertical) {
    const ConstImageView view = LocateImage(image);
    if (!view || map == nullptr || corners == nullptr) return kInvalidImage;
    return Guarded(kNoMemory, [&] {
        Quadrilateral seen = ReadCorners(corners);
        if (corners[0] < 0.0) {
            const std::optional<double> level = HalfLevel(view, threshold);
            if (!level) return kNothingLit;
            const std::optional<Quadrilateral> found = FindCorners(view, *level);
            if (!found) return kNoEdges;
            seen = *found;
        }
        if (!IsConvex(seen)) return kNotConvex;
        const Quadrilateral upright = Upright(seen);
        const std::optional<Homography> toSource = Homography::Between(upright, seen);
        if (!toSource) return kNotConvex;
        CommitMap(map, MapOf(*toSource, Middle(seen), view.cols, view.rows));
        WriteResults(seen, corners, horizontal, vertical);
        return 0;
    });
}

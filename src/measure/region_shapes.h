#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "core/image_view.h"
#include "core/rectangle.h"

/// Every region shape is a producer of row spans: it calls visit(row, first, last) for each row that holds
/// pels of the shape, top to bottom, with both columns inclusive and inside the image. A statistic is a
/// consumer of spans; so each shape and each statistic exists once. Polygons have a header of their own.
namespace tq {

template <class Visit>
void VisitRectangle(const Rect& rect, Visit&& visit) {
    if (rect.left > rect.right) return;
    for (std::int32_t row = rect.top; row <= rect.bottom; ++row)
        visit(row, rect.left, rect.right);
}

/// The integers around `centre` for which `inside` holds, when it holds on one stretch and `half` estimates
/// the stretch's half-length to within a step or two. The estimate only starts the search: `inside` decides,
/// so the ends agree with testing every pel, equality included. first > last when there are none.
template <class Inside>
std::pair<std::int64_t, std::int64_t> FindStretch(double centre, double half, Inside&& inside) {
    auto first = static_cast<std::int64_t>(std::ceil(centre - half));
    auto last = static_cast<std::int64_t>(std::floor(centre + half));
    while (first <= last && !inside(first))
        ++first;
    while (last >= first && !inside(last))
        --last;
    if (first > last) {  // a stretch of one or two pels that the estimate fell short of
        first = static_cast<std::int64_t>(std::floor(centre));
        last = first + 1;
        if (!inside(first)) ++first;
        if (!inside(last)) --last;
        if (first > last) return {first, last};
    }
    while (inside(first - 1))
        --first;
    while (inside(last + 1))
        ++last;
    return {first, last};
}

/// An ellipse given as hosts give it: centre pel and full width and height in pels.
struct Ellipse {
    std::int32_t centerCol;
    std::int32_t centerRow;
    std::int32_t width;
    std::int32_t height;

    /// Without extent the region is the centre pel, whatever lies around it.
    bool IsPoint() const noexcept { return width == 0 || height == 0; }
};

/// Whether the box that bounds the search is laid around the centre as passed or as clamped into the image.
/// The membership test always uses the centre as passed.
enum class EllipseBox { kAroundClampedCentre, kAroundCentre };

/// Columns of one row of an ellipse that has its centre at (0, 0): |column| <= the result, -1 for none.
/// `rowTerm` is row^2 / b^2.
inline std::int64_t EllipseReach(double squaredA, double rowTerm) noexcept {
    const auto inside = [&](std::int64_t col) {
        const auto x = static_cast<double>(col);
        return x * x / squaredA + rowTerm <= 1.0;
    };
    if (!inside(0)) return -1;
    const double half = std::sqrt(std::max(squaredA * (1.0 - rowTerm), 0.0));
    return FindStretch(0.0, half, inside).second;
}

inline double HalfSquared(std::int32_t size) noexcept {
    const double half = 0.5 * size;
    return half * half;
}

template <class Visit>
void VisitEllipse(const ConstImageView& view, const Ellipse& ellipse, EllipseBox box, Visit&& visit) {
    const bool clamped = box == EllipseBox::kAroundClampedCentre;
    const std::int64_t boxCol = clamped ? std::clamp(ellipse.centerCol, 0, view.cols - 1) : ellipse.centerCol;
    const std::int64_t boxRow = clamped ? std::clamp(ellipse.centerRow, 0, view.rows - 1) : ellipse.centerRow;
    const std::int64_t halfCols = ellipse.width / 2;
    const std::int64_t halfRows = ellipse.height / 2;
    const std::int64_t left = std::max<std::int64_t>(boxCol - halfCols, 0);
    const std::int64_t right = std::min<std::int64_t>(boxCol + halfCols, view.cols - 1);
    const std::int64_t top = std::max<std::int64_t>(boxRow - halfRows, 0);
    const std::int64_t bottom = std::min<std::int64_t>(boxRow + halfRows, view.rows - 1);

    const double squaredA = HalfSquared(ellipse.width);
    const double squaredB = HalfSquared(ellipse.height);
    for (std::int64_t row = top; row <= bottom; ++row) {
        const auto y = static_cast<double>(row - ellipse.centerRow);
        const std::int64_t reach = EllipseReach(squaredA, y * y / squaredB);
        const std::int64_t first = std::max(left, ellipse.centerCol - reach);
        const std::int64_t last = std::min(right, ellipse.centerCol + reach);
        if (reach < 0 || first > last) continue;
        visit(static_cast<std::int32_t>(row), static_cast<std::int32_t>(first),
              static_cast<std::int32_t>(last));
    }
}

/// The circle inscribed in a host's rectangle, which need not lie inside an image.
class CircleBlock {
  public:
    explicit CircleBlock(const Rect& block) noexcept {
        const double cols = static_cast<double>(block.right) - block.left;
        const double rows = static_cast<double>(block.bottom) - block.top;
        centreCol_ = block.left + 0.5 * cols;
        centreRow_ = block.top + 0.5 * rows;
        // The longer side spans the circle; of two equal ones the vertical.
        const double span = std::abs(cols) > std::abs(rows) ? cols : rows;
        const double radius = (std::abs(span) + 1.0) * 0.5;
        squaredRadius_ = radius * radius;
    }

    /// Columns of a row inside the circle; first > last for none.
    std::pair<std::int64_t, std::int64_t> Row(std::int64_t row) const noexcept {
        return Stretch(centreCol_, static_cast<double>(row) - centreRow_);
    }
    /// The same along a column: the circle is as good from either side.
    std::pair<std::int64_t, std::int64_t> Column(std::int64_t col) const noexcept {
        return Stretch(centreRow_, static_cast<double>(col) - centreCol_);
    }

  private:
    std::pair<std::int64_t, std::int64_t> Stretch(double centre, double across) const noexcept {
        const double squaredAcross = across * across;
        const double half = std::sqrt(std::max(squaredRadius_ - squaredAcross, 0.0));
        return FindStretch(centre, half, [&](std::int64_t position) {
            const double along = static_cast<double>(position) - centre;
            return along * along + squaredAcross <= squaredRadius_;
        });
    }

    double centreCol_;
    double centreRow_;
    double squaredRadius_;
};

}  // namespace tq

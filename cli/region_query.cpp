#include "region_query.h"

#include <algorithm>

#include "failure.h"
#include "tqimage/region_ellipse.h"
#include "tqimage/region_polygon.h"
#include "tqimage/region_rectangle.h"

namespace cli {
namespace {

std::int32_t Clamp(std::int64_t value, std::int32_t count) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, 0, count - 1));
}

/// Marks the pels of one level inside the box: rank(col, row) where the image holds it, else 0.
template <typename Rank>
void MarkLevel(const HostImage& image, HostImage& marks, std::array<std::int32_t, 4> box, std::int32_t grey,
               Rank rank) {
    for (std::int32_t row = box[1]; row <= box[3]; ++row) {
        const std::uint16_t* const pels = image.Row(row);
        std::uint16_t* const out = marks.Row(row);
        for (std::int32_t col = box[0]; col <= box[2]; ++col) {
            out[col] = pels[col] == grey ? static_cast<std::uint16_t>(rank(col, row)) : std::uint16_t{0};
        }
    }
}

}  // namespace

RegionQuery::RegionQuery(const HostImage& image, const Region& region, HostImage& scratch)
    : image_(image), region_(region), scratch_(scratch) {
    const TqImageHeader header = image.Header();
    const auto bounds = BoundsOf(region);
    bounds_ = {Clamp(bounds[0], header.PelCols), Clamp(bounds[1], header.PelRows),
               Clamp(bounds[2], header.PelCols), Clamp(bounds[3], header.PelRows)};
    if (region.shape != Shape::kPolygon) return;
    // Edges between far vertices are rounded to pels that may lie beside the vertices' own columns.
    bounds_[0] = 0;
    bounds_[2] = header.PelCols - 1;
    vertices_.emplace(2u, static_cast<std::uint32_t>(region.vertices.size()));
    for (std::size_t index = 0; index < region.vertices.size(); ++index) {
        for (std::int32_t axis = 0; axis < 2; ++axis) {
            vertices_->Put(axis, static_cast<std::int32_t>(index),
                           region.vertices[index][static_cast<std::size_t>(axis)]);
        }
    }
}

double RegionQuery::Total(std::int32_t threshold, std::int32_t& count) const {
    const auto& box = region_.box;
    double total = 0.0;
    switch (region_.shape) {
        case Shape::kRectangle:
            total =
                tqGetTotalPelValueInRegion(image_.Get(), &count, box[0], box[1], box[2], box[3], threshold);
            break;
        case Shape::kEllipse:
            total =
                tqGetTotalPelValueInEllipse(image_.Get(), &count, box[0], box[1], box[2], box[3], threshold);
            break;
        case Shape::kPolygon:
            total = tqGetTotalPelValueInPoly(image_.Get(), &count, Vertices(), threshold);
            break;
    }
    return RequirePositive(total, "region " + region_.name, "its total");
}

std::int32_t RegionQuery::Largest(const HostImage& image) const {
    const auto& box = region_.box;
    if (region_.shape == Shape::kEllipse) {
        return tqGetMaxPelValueInEllipse(image.Get(), box[0], box[1], box[2], box[3]);
    }
    return tqGetMaxPelValueInPoly(image.Get(), Vertices());
}

std::int32_t RegionQuery::Smallest(const HostImage& image) const {
    const auto& box = region_.box;
    if (region_.shape == Shape::kEllipse) {
        return tqGetMinPelValueInEllipse(image.Get(), box[0], box[1], box[2], box[3]);
    }
    return tqGetMinPelValueInPoly(image.Get(), Vertices());
}

// The library gives a rectangle's extremes with their positions, and for the other shapes their levels. Which
// pels belong to a shape is the library's to say, so the position is asked for too: in an image whose pels
// rank their row, the last row highest at the top, the largest pel of the same region tells the row; a second
// image tells the column within it.
Extreme RegionQuery::Locate(std::int32_t grey) const {
    const TqImageHeader header = image_.Header();
    MarkLevel(image_, scratch_, bounds_, grey,
              [&](std::int32_t, std::int32_t row) { return header.PelRows - row; });
    const std::int32_t foundRow = header.PelRows - Largest(scratch_);
    MarkLevel(image_, scratch_, bounds_, grey,
              [&](std::int32_t col, std::int32_t row) { return row == foundRow ? header.PelCols - col : 0; });
    const std::int32_t foundCol = header.PelCols - Largest(scratch_);
    MarkLevel(image_, scratch_, bounds_, grey, [](std::int32_t, std::int32_t) { return 0; });
    return {grey, foundCol, foundRow};
}

RegionQuery::Range RegionQuery::Extremes() const {
    if (region_.shape != Shape::kRectangle) return {Locate(Smallest(image_)), Locate(Largest(image_))};
    const auto& box = region_.box;
    Range range;
    double minimum = 0.0;
    double maximum = 0.0;
    Require(
        tqFindMinMaxInRegion(image_.Get(), &minimum, &maximum, &range.lowest.col, &range.lowest.row,
                             &range.highest.col, &range.highest.row, box[0], box[1], box[2], box[3], 0, 1, 1),
        "region " + region_.name, "the search for its extremes");
    range.lowest.grey = static_cast<std::int32_t>(minimum);
    range.highest.grey = static_cast<std::int32_t>(maximum);
    return range;
}

}  // namespace cli

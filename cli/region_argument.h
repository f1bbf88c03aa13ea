#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace cli {

enum class Shape { kRectangle, kEllipse, kPolygon };

/// A region as the command line names it.
struct Region {
    std::string name;  ///< the given name, or else the shape's text
    std::string text;  ///< the shape's text: rect:…, ellipse:… or poly:…
    Shape shape = Shape::kRectangle;
    /// left, top, right, bottom, all inclusive; or centre column, centre row, width, height
    std::array<std::int32_t, 4> box{};
    std::vector<std::array<std::int32_t, 2>> vertices;  ///< column, row; polygons only
};

/// Reads [name=]rect:l,t,r,b | ellipse:c,r,w,h | poly:c,r;c,r;c,r… A malformed one is a usage error.
Region ParseRegion(const std::string& argument);

/// Refuses two regions of one name: reports and expectations tell them apart by it.
void CheckNames(const std::vector<Region>& regions);

/// Cuts a rectangle at the image's border, a right or bottom of 0 meaning the last column or row as
/// everywhere in the library, and refuses shapes that have nothing to do with the image.
void FitRegion(Region& region, std::int32_t cols, std::int32_t rows);

/// A box that holds every pel of the region, in the image or not: left, top, right, bottom, inclusive.
std::array<std::int64_t, 4> BoundsOf(const Region& region);

}  // namespace cli

#pragma once

#include <array>
#include <functional>

#include "region_argument.h"

namespace cli {

/// A place of a region with the part of its area, in pels, that the place stands for.
struct Sample {
    double col;
    double row;
    double area;
};
using Visit = std::function<void(const Sample&)>;

/// A quarter of a million places evenly over the region, for integrals by the midpoint rule. Outlines that
/// cut through pels may be moved outward by parts of one; a rectangle's lie between pels.
void SampleRegion(const Region& region, double outward, const Visit& visit);

/// The same over a rectangle that may lie between pels: left, top, right, bottom, the pels of both included.
void SampleRectangle(const std::array<double, 4>& box, const Visit& visit);

}  // namespace cli

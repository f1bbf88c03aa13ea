#pragma once

#include <cstdint>
#include <vector>

/// Where a pattern's features lie along one axis of an image, as hosts describe it. Counts and steps may have
/// any value, so a list never holds a position twice, and of those outside the image only the nearest on
/// either side: a larger neighbour of the same size covers whatever the others would.
namespace tq {

/// Ascending, at most two more than the axis has pels.
using Positions = std::vector<std::int64_t>;

/// first, first + step ... count of them; fewer than 2 count as 2, because a lattice has corners.
Positions SteppedPositions(std::int32_t first, std::int32_t step, std::int32_t count, std::int32_t pels);

/// The middles of count equal parts of the axis; none when count is 0 or less.
Positions CentredPositions(std::int32_t count, std::int32_t pels);

/// numerator / denominator to the nearest integer, halves to the even one. For numbers of 0 and more.
std::int64_t NearestQuotient(std::int64_t numerator, std::int64_t denominator) noexcept;

/// The position at so many percent of the axis, between its first pel (0) and its last (100).
double PercentOfAxis(double percent, std::int32_t pels) noexcept;

/// A co-ordinate inside an axis, to the nearest pel, halves to the even one.
std::int32_t NearestPel(double position) noexcept;

}  // namespace tq
